#include "app/time_line_links.h"

#include <algorithm>

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QTabWidget>
#include <QTableView>

#include "app/cluster_explorer_page.h"
#include "app/load_index_page.h"
#include "app/platform.h"
#include "app/term_list_model.h"
#include "app/time_line_explorer_page.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

TimeLineLinks::TimeLineLinks(LoadIndexPage& loadIndex, TimeLineExplorerPage& timeLine,
                             Session& session, Platform& platform, QObject* parent)
    : QObject(parent),
      loadIndex_(loadIndex),
      timeLine_(timeLine),
      session_(session),
      platform_(platform) {
  connect(&loadIndex_, &LoadIndexPage::termClicked, &timeLine_,
          &TimeLineExplorerPage::AllTermList_Click);
  connect(&timeLine_, &TimeLineExplorerPage::termLocated, this,
          [this](IndexKind kind, const QString& term) {
            SelectInAllTermList(static_cast<int>(kind), term);
          });
  connect(&timeLine_, &TimeLineExplorerPage::modelsBuilt, this, [this](bool built) {
    if (built) FillTermListSpans();
  });
  connect(&loadIndex_, &LoadIndexPage::corpusLoaded, &timeLine_, [this](bool loaded) {
    if (!loaded) return;
    const QString proposal = timeLine_.ProposeIntervalLength();
    if (!proposal.isEmpty()) loadIndex_.AppendLoadNote(proposal);
  });
  connect(&timeLine_, &TimeLineExplorerPage::intervalUnitChanged, &loadIndex_,
          &LoadIndexPage::SetIntervalUnitCode);
  connect(&timeLine_, &TimeLineExplorerPage::copySelectedUsersRequested, this,
          [this] { platform_.SetClipboardText(SelectedUsersText()); });

  QTableView* users = loadIndex_.TermListView(IndexKind::kUsers);
  users->setSelectionMode(QAbstractItemView::ExtendedSelection);
  users->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(users, &QWidget::customContextMenuRequested, this, [this, users](const QPoint& at) {
    timeLine_.UsersMenu()->popup(users->viewport()->mapToGlobal(at));
  });
}

void TimeLineLinks::LinkClusterExplorer(ClusterExplorerPage& clusters) {
  connect(&timeLine_, &TimeLineExplorerPage::modelsBuilt, &clusters, [&clusters](bool built) {
    if (built) clusters.ModelsRebuilt();
  });
  connect(&timeLine_, &TimeLineExplorerPage::intervalSelected, &clusters,
          &ClusterExplorerPage::SelectInterval);
  connect(&timeLine_, &TimeLineExplorerPage::intervalHovered, &clusters,
          &ClusterExplorerPage::HoverInterval);
  // A selection coming back from the map changes nothing further there: the guard keeps the
  // two from echoing each other.
  // Only while the time line shows models (a map may be built over models the time line has
  // not taken up yet).
  connect(&clusters, &ClusterExplorerPage::intervalSelected, &timeLine_, [this](int interval) {
    if (timeLine_.ModelsBuilt() && interval != timeLine_.SelectedInterval()) {
      timeLine_.SelectInterval(interval);
    }
  });
  connect(&clusters, &ClusterExplorerPage::intervalHovered, &timeLine_,
          &TimeLineExplorerPage::HoverInterval);
  connect(&clusters, &ClusterExplorerPage::wordChosen, &timeLine_,
          &TimeLineExplorerPage::ShowWordOccurrences);
  connect(&clusters, &ClusterExplorerPage::tweetChosen, &timeLine_,
          &TimeLineExplorerPage::SelectTweet);
  connect(&clusters, &ClusterExplorerPage::tweetsShown, &timeLine_,
          &TimeLineExplorerPage::ShowTweets);
}

QString TimeLineLinks::SelectedUsersText() const {
  QTableView* users = loadIndex_.TermListView(IndexKind::kUsers);
  const TermListModel& model = loadIndex_.TermList(IndexKind::kUsers);
  QModelIndexList rows = users->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end(),
            [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
  QString text;
  for (const QModelIndex& row : rows) {
    text += model.CellText(row.row(), TermListModel::kTerm) + u"\r\n"_s;
  }
  return text;
}

void TimeLineLinks::FillTermListSpans() {
  for (const IndexKind kind : kIndexKinds) {
    const TextStream& model = session_.Model(kind);
    const TextStream::TermSpans spans = model.TermIntervalSpans();
    std::vector<TermListModel::IntervalSpan> rows;
    const std::size_t terms = spans.first.empty() ? 0 : spans.first.size() - 1;
    rows.reserve(terms);
    for (std::size_t t = 1; t <= terms; ++t) {
      const std::int32_t first = spans.first[t];
      const std::int32_t last = spans.last[t];
      rows.push_back({first, last, last - first});
    }
    loadIndex_.TermList(kind).SetIntervalSpans(std::move(rows));
  }
}

void TimeLineLinks::SelectInAllTermList(int kindNumber, const QString& term) {
  const auto kind = static_cast<IndexKind>(kindNumber);
  QTableView* view = loadIndex_.TermListView(kind);
  const TermListModel& model = loadIndex_.TermList(kind);
  for (int row = 0; row < model.rowCount(); ++row) {
    if (model.CellText(row, TermListModel::kTerm) != term) continue;
    if (auto* tabs = loadIndex_.findChild<QTabWidget*>(u"TermLists"_s)) {
      tabs->setCurrentWidget(view);
    }
    const QModelIndex index = model.index(row, 0);
    view->selectionModel()->setCurrentIndex(
        index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->scrollTo(index);
    return;
  }
}

}  // namespace sylvora::app
