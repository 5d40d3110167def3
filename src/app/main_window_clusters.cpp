// Main's cluster explorer tab and "Related Words" window, and the signals that link them to the
// other pages.
#include <QTabWidget>
#include <QTableView>

#include "app/cluster_explorer_page.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "app/related_terms.h"
#include "app/term_list_model.h"
#include "app/time_line_explorer_page.h"
#include "app/ui_notifier.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

// Selects and shows the row of `term` in a term list; false when the list does not hold it.
bool SelectTermInList(QTableView* view, const TermListModel& model, const QString& term) {
  if (view == nullptr) return false;
  for (int row = 0; row < model.rowCount(); ++row) {
    if (model.CellText(row, TermListModel::kTerm) != term) continue;
    view->selectRow(row);
    view->scrollTo(model.index(row, 0), QAbstractItemView::PositionAtCenter);
    return true;
  }
  return false;
}

}  // namespace

void Main::ComposeClusterExplorer() {
  clusterPage_ = new ClusterExplorerPage(PageServices{platform_, *notifier_, *jobs_, *session_});
  clusterPage_->SetGraphvizFolderSource([this] { return loadIndexPage_->Paths().graphVisPath; });
  tabs_->addTab(clusterPage_, u"Cluster Explorer"_s);
  connect(clusterPage_, &ClusterExplorerPage::captionChanged, this, &QWidget::setWindowTitle);
  connect(tabs_, &QTabWidget::currentChanged, this, [this](int tab) {
    // The message list is shared: it moves into the explorer tab that becomes current (the
    // "Load and Index" tab has its own viewer, so the list stays where it was).
    if (tabs_->widget(tab) == clusterPage_) {
      clusterPage_->HostMessageList(timeLinePage_->TweetViewFrame());
      clusterPage_->PageShown();
    } else if (tabs_->widget(tab) == timeLinePage_) {
      timeLinePage_->ReclaimTweetViewFrame();
    }
  });

  // A word marked on the time line side is selected in the word map too.
  connect(timeLinePage_, &TimeLineExplorerPage::wordMarked, clusterPage_,
          &ClusterExplorerPage::SelectWord);

  relatedTerms_ = new RelatedTerms(this);
  relatedTerms_->SetSessionReadable([this] { return !jobs_->Busy(); });
  connect(loadIndexPage_, &LoadIndexPage::wordDoubleClicked, this, [this](const QString& term) {
    if (!relatedTerms_->ShowRelatedTerms(*session_, term)) return;
    relatedTerms_->show();
    relatedTerms_->raise();
  });
  connect(relatedTerms_, &RelatedTerms::termSelected, this, [this](const QString& term) {
    SelectTermInList(loadIndexPage_->TermListView(IndexKind::kWords),
                     loadIndexPage_->TermList(IndexKind::kWords), term);
  });
  connect(loadIndexPage_, &LoadIndexPage::indexesBuilt, relatedTerms_,
          &RelatedTerms::SourcesChanged);
}

}  // namespace sylvora::app
