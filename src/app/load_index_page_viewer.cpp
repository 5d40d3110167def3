// The word index viewer of the "Load and Index" page: a table lens over the word index
// (terms by documents), drawn as vertical bars, with a slider for the number of columns.
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QScrollBar>
#include <QSlider>

#include "app/load_index_page.h"
#include "views/table_lens.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr std::uint8_t kVerticalBars = 4;
// Pixels per document column: narrow enough that the lens keeps bars (over wide columns its
// layout rule turns any style into numbers once three decimals fit).
constexpr int kBarColumnPixels = 12;

}  // namespace

QGroupBox* LoadIndexPage::BuildWordIndexViewer() {
  tdmViewFrame_ = new QGroupBox(u"Word Index Viewer"_s);
  tdmViewFrame_->setObjectName(u"TDMView_Frame"_s);
  auto* grid = new QGridLayout(tdmViewFrame_);
  tdmViewVScroller_ = new QScrollBar(Qt::Vertical);
  tdmViewVScroller_->setObjectName(u"TDMViewVScroller"_s);
  tdmViewHScroller_ = new QScrollBar(Qt::Horizontal);
  tdmViewHScroller_->setObjectName(u"TDMViewHScroller"_s);
  tdmViewCols_ = new QSlider(Qt::Horizontal);
  tdmViewCols_->setObjectName(u"TDMViewCols"_s);
  tdmViewCols_->setRange(1, 10);
  tdmViewCols_->setValue(10);
  tdmViewCols_->setEnabled(false);
  tdmViewCols_->setToolTip(u"Number of documents shown"_s);
  grid->addWidget(tdmViewVScroller_, 0, 1);
  grid->addWidget(tdmViewHScroller_, 1, 0);
  auto* columns = new QHBoxLayout;
  columns->addWidget(new QLabel(u"Documents shown"_s));
  columns->addWidget(tdmViewCols_, 1);
  grid->addLayout(columns, 2, 0, 1, 2);
  grid->setRowStretch(0, 1);
  grid->setColumnStretch(0, 1);
  connect(tdmViewCols_, &QSlider::valueChanged, this, &LoadIndexPage::TDMViewCols_Change);
  return tdmViewFrame_;
}

void LoadIndexPage::DropWordIndexViewer() {
  tdmView_.reset();
  delete tdmViewContainer_;
  tdmViewContainer_ = nullptr;
  tdmViewCols_->setEnabled(false);
}

void LoadIndexPage::ShowWordIndexViewer() {
  DropWordIndexViewer();
  const TermDocumentMatrix& words = services_.session.WordIndex();
  if (words.TermCount() == 0) return;
  // A fresh drawing surface, laid out before the lens measures its capacity.
  tdmViewContainer_ = new QWidget;
  tdmViewContainer_->setObjectName(u"TDMViewContainer"_s);
  tdmViewContainer_->setMinimumHeight(160);
  static_cast<QGridLayout*>(tdmViewFrame_->layout())->addWidget(tdmViewContainer_, 0, 0);
  tdmViewFrame_->layout()->activate();
  if (!tdmViewFrame_->isVisible()) {
    tdmViewContainer_->resize(std::max(tdmViewFrame_->width() - 40, 400),
                              std::max(tdmViewFrame_->height() - 80, 160));
  }

  tdmView_ = std::make_unique<TableLens>(services_.notifier);
  tdmView_->setObjectName(u"TDMView"_s);
  tdmView_->InitializeTLCtl(tdmViewFrame_, tdmViewContainer_, tdmViewHScroller_, tdmViewVScroller_);
  tdmView_->SetNumDataTable(words.Matrix());
  const std::int32_t documents = words.Matrix().ColCount();
  const std::int32_t fitting = std::max(10, tdmViewContainer_->width() / kBarColumnPixels);
  tdmView_->SetVisibleColumns(std::min(documents, fitting));
  // As many terms as the surface holds without the names running into each other.
  if (tdmView_->MaxVisibleRows() >= 1) {
    tdmView_->SetVisibleRows(std::min({words.TermCount(), tdmView_->MaxVisibleRows(), 20}));
  }
  tdmView_->SetCellStyle(kVerticalBars);
  for (std::int32_t term = 1; term <= words.TermCount(); ++term) {
    tdmView_->SetRowName(term, QString::fromStdString(words.Term(term)));
  }
  tdmViewCols_->blockSignals(true);
  tdmViewCols_->setRange(1, std::max(1, std::min(documents, tdmView_->MaxVisibleColumns())));
  tdmViewCols_->setValue(tdmView_->VisibleColumns());
  tdmViewCols_->blockSignals(false);
  tdmViewCols_->setEnabled(true);
}

void LoadIndexPage::TDMViewCols_Change(int columns) {
  if (tdmView_) tdmView_->SetVisibleColumns(columns);
}

}  // namespace sylvora::app
