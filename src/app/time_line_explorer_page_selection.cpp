// Selections of the time line explorer: an interval (chart or term time line), a term of an
// interval list or of an all-term list, and the two term searches.
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableView>

#include "app/interval_term_model.h"
#include "app/platform.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "app/tweet_view_summary.h"
#include "views/table_lens.h"
#include "views/time_line_chart.h"

#include "app/page_widgets.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

QString Text(const std::string& text) { return QString::fromStdString(text); }

void SelectRow(QTableView* view, int row) {
  if (row < 0 || row >= view->model()->rowCount()) return;
  const QModelIndex index = view->model()->index(row, 0);
  view->selectionModel()->setCurrentIndex(
      index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  view->scrollTo(index);
}

}  // namespace

void TimeLineExplorerPage::SelectInterval(std::int32_t interval) {
  if (!modelsBuilt_) {
    services_.platform.ShowMessage(
        u"There are no intervals yet: click \"(Re)Build Views\" first."_s, kProgramTitle,
        MessageIcon::kInformation);
    return;
  }
  const TextStream& words = services_.session.WordModel();
  if (interval < 1 || interval > words.IntervalCount()) return;
  selectedInterval_ = interval;
  hoveredInterval_ = interval;
  if (tifmView_) tifmView_->MoveCursor(0, interval);
  chart_->SelectInterval(interval);
  ShowInterval(interval);
  FillIntervalLists(interval);
  emit intervalSelected(interval);
}

void TimeLineExplorerPage::HoverInterval(std::int32_t interval) {
  if (!modelsBuilt_ || interval == hoveredInterval_) return;
  if (interval < 1 || interval > chart_->IntervalCount()) return;
  // The chart's hover: its overlay, ChartDetails and the announcement (HoverChanged).
  chart_->SetHoverInterval(interval);
}

void TimeLineExplorerPage::TIFMView_CellMouseClick(int row, int column, Qt::MouseButton button) {
  if (button != Qt::LeftButton || column < 1) return;
  SelectInterval(column);
  if (row >= 1 && selectedInterval_ == column) {
    ShowTermOccurrences(IndexKind::kWords, row, column, column);
  }
}

void TimeLineExplorerPage::TIFMView_CellMouseOver(int column, int row) {
  if (row > 0) HoverInterval(column);
}

void TimeLineExplorerPage::ShowInterval(std::int32_t interval) {
  const Session& session = services_.session;
  const TextStream& words = session.WordModel();
  std::vector<DocIndex> rows;
  if (words.IntervalDocCount(interval) > 0) {
    const DocIndex first = words.FirstDocumentIndex(interval);
    const DocIndex last = words.LastDocumentIndex(interval);
    rows.reserve(static_cast<std::size_t>(last - first + 1));
    for (DocIndex d = first; d <= last; ++d) rows.push_back(d);
  }
  const auto count = static_cast<std::int64_t>(rows.size());
  const QString span = rows.empty() ? QString()
                                    : ListedSpan(RowDateTime(session.Documents(), rows.front()),
                                                 RowDateTime(session.Documents(), rows.back()));
  tweetModel_->SetRows(std::move(rows));
  tweetView_->horizontalHeader()->setSortIndicatorShown(false);
  const auto bounds = IntervalCalendarBounds(words, interval, session.IntervalUnit());
  SetSummary(IntervalSummary(count, bounds[0], bounds[1]) + span);
}

void TimeLineExplorerPage::ShowTermOccurrences(IndexKind kind, std::int32_t term,
                                               std::int32_t first, std::int32_t last) {
  const Session& session = services_.session;
  const TermDocumentMatrix& index = session.Index(kind);
  const SparseMatrixSingle& matrix = index.Matrix();
  std::vector<DocIndex> rows;
  QString start;
  QString end;
  DocIndex from = 0;
  DocIndex to = session.Documents().DocumentCount() - 1;
  if (modelsBuilt_) {
    const TextStream& words = session.WordModel();
    from = words.FirstDocumentIndex(first);
    to = words.LastDocumentIndex(last);
    start = IntervalCalendarBounds(words, first, session.IntervalUnit())[0];
    end = IntervalCalendarBounds(words, last, session.IntervalUnit())[1];
  } else {
    // Before a build there are no intervals: the whole corpus, from its first to its last date.
    const DocumentSet& documents = session.Documents();
    start = QString::fromUtf8(documents.Cell(from, documents.DateTimeField()));
    end = QString::fromUtf8(documents.Cell(to, documents.DateTimeField()));
  }
  // Corpus row d is column d + 1 of the index.
  for (DocIndex d = from; d <= to; ++d) {
    if (matrix.Value(term, d + 1) != 0.0f) rows.push_back(d);
  }
  const auto count = static_cast<std::int64_t>(rows.size());
  const QString span = rows.empty() ? QString()
                                    : ListedSpan(RowDateTime(session.Documents(), rows.front()),
                                                 RowDateTime(session.Documents(), rows.back()));
  tweetModel_->SetRows(std::move(rows));
  tweetView_->horizontalHeader()->setSortIndicatorShown(false);
  SetSummary(TermSummary(kind, count, Text(index.Term(term)), start, end) + span);
}

void TimeLineExplorerPage::ShowWordOccurrences(int term, int firstInterval, int lastInterval) {
  const Session& session = services_.session;
  if (!modelsBuilt_ || term < 1 || term > session.WordIndex().TermCount()) return;
  const std::int32_t count = session.WordModel().IntervalCount();
  if (firstInterval < 1 || lastInterval > count || firstInterval > lastInterval) return;
  ShowTermOccurrences(IndexKind::kWords, term, firstInterval, lastInterval);
}

void TimeLineExplorerPage::SelectTweet(int row) {
  for (int listRow = 0; listRow < tweetModel_->rowCount(); ++listRow) {
    if (tweetModel_->DocumentAt(listRow) == row) {
      SelectRow(tweetView_, listRow);
      return;
    }
  }
}

void TimeLineExplorerPage::ShowTweets(const QVector<int>& rows) {
  if (tweetModel_->Documents() == nullptr) return;
  const DocIndex documents = services_.session.Documents().DocumentCount();
  std::vector<DocIndex> shown;
  shown.reserve(static_cast<std::size_t>(rows.size()));
  for (const int row : rows) {
    if (row >= 0 && row < documents) shown.push_back(row);
  }
  const auto count = static_cast<std::int64_t>(shown.size());
  tweetModel_->SetRows(std::move(shown));
  tweetView_->horizontalHeader()->setSortIndicatorShown(false);
  SetSummary(MapViewSummary(count));
}

void TimeLineExplorerPage::ClearIntervalLists() {
  for (IntervalTermModel* model : intervalModels_) model->Clear();
  for (std::size_t tab = 0; tab < kIntervalListOrder.size(); ++tab) {
    intervalTabs_->setTabText(static_cast<int>(tab), IndexCaption(kIntervalListOrder[tab]));
  }
  intervalTermsFrame_->setTitle(u"Interval Term Statistics"_s);
}

void TimeLineExplorerPage::FillIntervalLists(std::int32_t interval) {
  Session& session = services_.session;
  const CorpusInfo& corpus = session.Corpus();
  intervalTermsFrame_->setTitle(u"Interval #"_s + QString::number(interval) +
                                u" Term Statistics"_s);
  for (std::size_t tab = 0; tab < kIntervalListOrder.size(); ++tab) {
    const IndexKind kind = kIntervalListOrder[tab];
    IntervalTermModel* model = intervalModels_[tab];
    model->Fill(session.Model(kind), interval, corpus.sentimentPositiveField,
                corpus.sentimentNegativeField);
    intervalViews_[tab]->horizontalHeader()->setSortIndicatorShown(false);
    intervalTabs_->setTabText(static_cast<int>(tab), IndexCaption(kind) + u" ("_s +
                                                         QString::number(model->rowCount()) + u')');
    SelectRow(intervalViews_[tab], 0);
  }
}

void TimeLineExplorerPage::IntervalTerm_Click(IndexKind kind, int row) {
  const IntervalTermModel& model = IntervalTerms(kind);
  const QString text = model.TermTextAt(row);
  const std::int32_t term = services_.session.Index(kind).TermIndex(text.toStdString());
  if (term < 1) {
    services_.platform.ShowMessage(u"Couldn't locate term in index"_s, u"Error"_s,
                                   MessageIcon::kCritical);
    return;
  }
  if (modelsBuilt_ && selectedInterval_ >= 1) {
    ShowTermOccurrences(kind, term, selectedInterval_, selectedInterval_);
  }
  emit termLocated(kind, text);
  if (kind == IndexKind::kWords) MarkWord(term);
}

void TimeLineExplorerPage::AllTermList_Click(IndexKind kind, const QString& text) {
  const Session& session = services_.session;
  if (!session.Indexed() || tweetModel_->Documents() == nullptr) return;
  const std::int32_t term = session.Index(kind).TermIndex(text.toStdString());
  if (term < 1) {
    services_.platform.ShowMessage(u"Couldn't locate term in index"_s, u"Error"_s,
                                   MessageIcon::kCritical);
    return;
  }
  ShowTermOccurrences(kind, term, 1, modelsBuilt_ ? session.WordModel().IntervalCount() : 1);
  if (kind == IndexKind::kLinks) {
    tweetModel_->sort(0, Qt::AscendingOrder);
    tweetView_->horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
    tweetView_->horizontalHeader()->setSortIndicatorShown(true);
  }
  if (kind == IndexKind::kWords) MarkWord(term);
}

void TimeLineExplorerPage::MarkWord(std::int32_t term) {
  if (tifmView_ && !tifmView_->RowMarked(term)) tifmView_->SetRowMarked(term, true);
  emit wordMarked(QString::fromStdString(services_.session.WordIndex().Term(term)));
}

void TimeLineExplorerPage::FindTerm_Click(int which) {
  const QString text = findTermStr_->text();
  if (which == 0) {
    const std::int32_t term = services_.session.Indexed()
                                  ? services_.session.WordIndex().TermIndex(text.toStdString())
                                  : -1;
    if (term < 1) {
      services_.platform.ShowMessage(u"Cannot find any variant of "_s + text, kProgramTitle,
                                     MessageIcon::kInformation);
      return;
    }
    if (!tifmView_) {
      services_.platform.ShowMessage(
          u"The term time line is not built yet: click \"(Re)Build Views\" first."_s, kProgramTitle,
          MessageIcon::kInformation);
      return;
    }
    if (!tifmView_->RowMarked(term)) tifmView_->SetRowMarked(term, true);
    SetFilterRows(true);
    return;
  }
  // The message list: forward from the row after the selected one, any column but the first.
  const int rows = tweetModel_->rowCount();
  if (rows == 0 || text.isEmpty()) return;
  const QModelIndexList selected = tweetView_->selectionModel()->selectedRows();
  const int from = selected.isEmpty() ? 0 : selected.first().row() + 1;
  for (int row = from; row < rows; ++row) {
    for (int column = 1; column < tweetModel_->columnCount(); ++column) {
      if (tweetModel_->CellText(row, column).contains(text, Qt::CaseInsensitive)) {
        SelectRow(tweetView_, row);
        return;
      }
    }
  }
}

void TimeLineExplorerPage::TweetView_HeaderClick(int column) {
  tweetModel_->HeaderClicked(column);
  tweetView_->horizontalHeader()->setSortIndicator(tweetModel_->SortColumn(),
                                                   tweetModel_->SortOrder());
  tweetView_->horizontalHeader()->setSortIndicatorShown(true);
}

}  // namespace sylvora::app
