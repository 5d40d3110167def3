// The "Load and Index" page: its widgets, the options panel and paths, the document viewer and
// the term lists. The load workflow is in load_index_page_loading.cpp, indexing in
// load_index_page_indexing.cpp.
#include "app/load_index_page.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "app/job_runner.h"
#include "app/platform.h"
#include "app/term_list_model.h"
#include "common/leading_number.h"
#include "session/corpus_index.h"
#include "views/table_lens.h"

#include "app/page_widgets.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

QLineEdit* NumberBox(const QString& name, const QString& text, const QString& toolTip = {}) {
  auto* box = Named(new QLineEdit(text), name);
  box->setToolTip(toolTip);
  box->setMaximumWidth(80);
  return box;
}

QString ListName(IndexKind kind) { return u"All"_s + IndexCaption(kind); }

int TabOf(IndexKind kind) {
  for (std::size_t tab = 0; tab < kTermListOrder.size(); ++tab) {
    if (kTermListOrder[tab] == kind) return static_cast<int>(tab);
  }
  return 0;
}

}  // namespace

LoadIndexPage::LoadIndexPage(PageServices services, QWidget* parent)
    : QWidget(parent), services_(services) {
  setObjectName(u"LoadAndIndexPage"_s);
  BuildWidgets();
  connect(&services_.jobs, &JobRunner::progressed, this,
          [this](const QString& stage, qint64, qint64) { OnJobProgress(stage); });
}

LoadIndexPage::~LoadIndexPage() = default;

void LoadIndexPage::BuildWidgets() {
  auto* columns = new QHBoxLayout(this);
  // The load column scrolls when the advanced options outgrow a short screen (768 pixels),
  // instead of squeezing its boxes or growing the window.
  auto* loadScroll = new QScrollArea;
  loadScroll->setObjectName(u"LoadColumnScroll"_s);
  loadScroll->setWidget(BuildLoadColumn());
  loadScroll->setWidgetResizable(true);
  loadScroll->setFrameShape(QFrame::NoFrame);
  loadScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  loadScroll->setFixedWidth(loadScroll->widget()->width() +
                            loadScroll->verticalScrollBar()->sizeHint().width());
  columns->addWidget(loadScroll, 0);
  columns->addWidget(BuildViewerColumn(), 1);
  columns->addWidget(BuildIndexColumn(), 2);
}

QWidget* LoadIndexPage::BuildLoadColumn() {
  auto* column = new QWidget;
  column->setFixedWidth(360);
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);

  auto* loadFrame = Named(new QGroupBox(u"Twitter File"_s), u"Load_Frame"_s);
  auto* loadLayout = new QGridLayout(loadFrame);
  corpusFilePath_ = Named(new QLineEdit(u"[enter path]"_s), u"CorpusFilePath"_s);
  getCorpusFilePath_ = Named(new QPushButton(u"Browse"_s), u"GetCorpusFilePath"_s);
  radian_ = Named(new QCheckBox(u"Radian 6 data?"_s), u"Radian"_s);
  radian_->setChecked(true);
  loadCorpus_ = Named(new QPushButton(u"Load Twitter File"_s), u"LoadCorpus"_s);
  loadProgress_ = Named(new QLabel, u"LoadProgress"_s);
  loadProgress_->setWordWrap(true);
  loadProgress_->setMinimumHeight(70);
  loadProgress_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  loadProgress_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  loadLayout->addWidget(corpusFilePath_, 0, 0);
  loadLayout->addWidget(getCorpusFilePath_, 0, 1);
  loadLayout->addWidget(radian_, 1, 0);
  loadLayout->addWidget(loadCorpus_, 1, 1);
  loadLayout->addWidget(loadProgress_, 2, 0, 1, 2);
  mapColumns_ = Named(new QPushButton(u"Map Columns..."_s), u"MapColumns"_s);
  mapColumns_->setToolTip(
      u"Choose the columns of a CSV file that hold the date-time, user, text, "
      u"link and sentiment"_s);
  loadLayout->addWidget(mapColumns_, 3, 1);
  layout->addWidget(loadFrame);

  tdmFrame_ = Named(new QGroupBox(u"Create Indexes"_s), u"TDM_Frame"_s);
  tdmFrame_->setEnabled(false);
  auto* tdmLayout = new QVBoxLayout(tdmFrame_);
  tdmLayout->addWidget(BuildWordIndexOptions());
  doIndex_ = Named(new QPushButton(u"Create Tweet Indexes"_s), u"DoIndex"_s);
  doIndex_->setEnabled(false);
  indexingStatusLabel_ = Named(new QLabel, u"IndexingStatus"_s);
  SetIndexingStatus(u"Click button above to start indexing..."_s);
  tdmLog_ = Named(new QPlainTextEdit, u"TDMLog"_s);
  tdmLog_->setReadOnly(true);
  tdmLog_->setMinimumHeight(90);
  tdmLayout->addWidget(doIndex_);
  tdmLayout->addWidget(indexingStatusLabel_);
  tdmLayout->addWidget(tdmLog_, 1);
  layout->addWidget(tdmFrame_, 1);

  showExpPan_ = Named(new QPushButton(u"Show Advanced Options"_s), u"ShowExpPan"_s);
  layout->addWidget(showExpPan_);
  layout->addWidget(BuildExpertPanel());

  connect(getCorpusFilePath_, &QPushButton::clicked, this, &LoadIndexPage::GetCorpusFilePath_Click);
  connect(loadCorpus_, &QPushButton::clicked, this, [this] { LoadCorpus_Click(); });
  connect(doIndex_, &QPushButton::clicked, this, [this] { DoIndex_Click(); });
  connect(showExpPan_, &QPushButton::clicked, this, &LoadIndexPage::ShowExpPan_Click);
  connect(mapColumns_, &QPushButton::clicked, this, [this] { MapColumns_Click(); });
  return column;
}

QGroupBox* LoadIndexPage::BuildWordIndexOptions() {
  auto* frame = Named(new QGroupBox(u"Word Index Options"_s), u"WordIndexOptions_Frame"_s);
  auto* grid = new QGridLayout(frame);
  df_[0] = NumberBox(u"DF"_s, u"2"_s,
                     u"Remove index terms that occur in fewer than this many documents"_s);
  df_[1] = NumberBox(u"DF"_s, u"50"_s,
                     u"Remove index terms that occur in more than <this>% of all documents"_s);
  df_[0]->setProperty("index", 0);
  df_[1]->setProperty("index", 1);
  minChars_ = NumberBox(u"MinChars"_s, u"3"_s, u"Remove tokens of less than this length"_s);
  port_ = Named(new QCheckBox(u"Porter stemming"_s), u"Port"_s);
  port_->setChecked(true);
  abbrev_ = Named(new QCheckBox(u"Index Abbreviations"_s), u"Abbrev"_s);
  abbrev_->setToolTip(u"Treat capitalised word forms as distinct"_s);
  abbrev_->setChecked(true);
  allowNumbers_ = Named(new QCheckBox(u"Allow Numbers"_s), u"AllowNumbers"_s);
  grid->addWidget(new QLabel(u"Min DF"_s), 0, 0);
  grid->addWidget(df_[0], 0, 1);
  grid->addWidget(port_, 0, 2);
  grid->addWidget(new QLabel(u"Max DF (%)"_s), 1, 0);
  grid->addWidget(df_[1], 1, 1);
  grid->addWidget(abbrev_, 1, 2);
  grid->addWidget(new QLabel(u"Min Chars"_s), 2, 0);
  grid->addWidget(minChars_, 2, 1);
  grid->addWidget(allowNumbers_, 2, 2);
  capTerms_ = Named(new QCheckBox(u"Terms per first letter"_s), u"CapTerms"_s);
  capTerms_->setToolTip(
      u"Keep at most this many terms per first letter in each index, in order of first "
      "appearance"_s);
  termsPerLetter_ = Named(new QSpinBox, u"TermsPerLetter"_s);
  termsPerLetter_->setRange(1, 1000000);
  termsPerLetter_->setValue(kDefaultTermsPerLetter);
  termsPerLetter_->setEnabled(false);
  connect(capTerms_, &QCheckBox::toggled, termsPerLetter_, &QSpinBox::setEnabled);
  grid->addWidget(capTerms_, 3, 0, 1, 2);
  grid->addWidget(termsPerLetter_, 3, 2);
  return frame;
}

QGroupBox* LoadIndexPage::BuildExpertPanel() {
  expertPanel_ = Named(new QGroupBox(u"Advanced Options"_s), u"ExpertPanel"_s);
  auto* layout = new QVBoxLayout(expertPanel_);

  auto* loadOptions = Named(new QGroupBox(u"Load Options"_s), u"LoadOptions_Frame"_s);
  auto* loadGrid = new QFormLayout(loadOptions);
  minDocLen_ = NumberBox(u"MinDocLen"_s, u"64"_s);
  maxDocCount_ = NumberBox(u"MaxDocCount"_s, u"0"_s);
  loadGrid->addRow(u"Min Chars"_s, minDocLen_);
  loadGrid->addRow(u"Max # Docs"_s, maxDocCount_);
  layout->addWidget(loadOptions);

  auto* secondary = Named(new QGroupBox(u"Index Options for Tags, Links, Users, Mentions "_s),
                          u"SecIndexOptions_Frame"_s);
  auto* secondaryGrid = new QFormLayout(secondary);
  secDF_ = NumberBox(u"SecDF"_s, u"2"_s);
  secondaryGrid->addRow(u"Min DF"_s, secDF_);
  layout->addWidget(secondary);

  auto* paths = Named(new QGroupBox(u"Set Paths"_s), u"Paths_Frame"_s);
  auto* pathsGrid = new QGridLayout(paths);
  stopPath_ = Named(new QLineEdit, u"StopPath"_s);
  graphVisPath_ = Named(new QLineEdit, u"GraphVisPath"_s);
  savePaths_ = Named(new QPushButton(u"Save"_s), u"SavePaths"_s);
  pathsGrid->addWidget(new QLabel(u"Stop List"_s), 0, 0);
  pathsGrid->addWidget(stopPath_, 0, 1);
  pathsGrid->addWidget(new QLabel(u"GraphViz"_s), 1, 0);
  pathsGrid->addWidget(graphVisPath_, 1, 1);
  pathsGrid->addWidget(savePaths_, 2, 1, Qt::AlignRight);
  layout->addWidget(paths);
  connect(savePaths_, &QPushButton::clicked, this, &LoadIndexPage::SavePaths_Click);

  expertPanel_->setVisible(false);
  return expertPanel_;
}

QWidget* LoadIndexPage::BuildViewerColumn() {
  docViewFrame_ = Named(new QGroupBox(u"Document Viewer"_s), u"DocView_Frame"_s);
  auto* layout = new QVBoxLayout(docViewFrame_);
  auto* navigation = new QHBoxLayout;
  docViewIndex_ = Named(new QLineEdit(u"1"_s), u"DocViewIndex"_s);
  docViewIndex_->setMaximumWidth(90);
  docCountLbl_ = Named(new QLabel(u"/0"_s), u"DocCountLbl"_s);
  docViewScroll_ = Named(new QScrollBar(Qt::Horizontal), u"DocViewScroll"_s);
  docViewScroll_->setRange(1, 1);
  navigation->addWidget(docViewIndex_);
  navigation->addWidget(docCountLbl_);
  navigation->addWidget(docViewScroll_, 1);
  layout->addLayout(navigation);
  docView_ = Named(new QPlainTextEdit, u"DocView"_s);
  docView_->setReadOnly(true);
  layout->addWidget(docView_, 3);
  layout->addWidget(new QLabel(u"Fields of the word index:"_s));
  fieldList_ = Named(new QListWidget, u"FieldList"_s);
  fieldList_->setToolTip(
      u"Use this to select fields for main (word) index. Usually this will be Tweet field only."_s);
  layout->addWidget(fieldList_, 2);
  docViewFrame_->setVisible(false);

  connect(docViewIndex_, &QLineEdit::textChanged, this, &LoadIndexPage::DocViewIndex_Change);
  connect(docViewScroll_, &QScrollBar::valueChanged, this, &LoadIndexPage::DocViewScroll_Change);
  connect(fieldList_, &QListWidget::itemChanged, this, &LoadIndexPage::FieldList_ItemCheck);
  return docViewFrame_;
}

QWidget* LoadIndexPage::BuildIndexColumn() {
  auto* column = new QWidget;
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  termLists_ = Named(new QTabWidget, u"TermLists"_s);
  for (std::size_t tab = 0; tab < kTermListOrder.size(); ++tab) {
    const IndexKind kind = kTermListOrder[tab];
    auto* model = new TermListModel(this);
    auto* view = Named(new QTableView, ListName(kind));
    view->setModel(model);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setWordWrap(false);
    view->verticalHeader()->setVisible(false);
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 4);
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view->horizontalHeader()->setSectionsClickable(true);
    view->horizontalHeader()->setSortIndicatorShown(false);
    view->horizontalHeader()->setStretchLastSection(true);
    view->setColumnWidth(TermListModel::kTerm, kind == IndexKind::kLinks ? 260 : 160);
    for (int c = TermListModel::kDocFreq; c < TermListModel::kColumnCount; ++c) {
      view->setColumnWidth(c, 56);
    }
    termListViews_[tab] = view;
    termListModels_[tab] = model;
    termLists_->addTab(view, IndexCaption(kind));

    connect(view->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [view, model](int column) {
              model->HeaderClicked(column);
              view->horizontalHeader()->setSortIndicatorShown(true);
              view->horizontalHeader()->setSortIndicator(model->SortColumn(), model->SortOrder());
            });
    connect(view, &QTableView::clicked, this, [this, kind, model](const QModelIndex& index) {
      emit termClicked(kind, model->CellText(index.row(), TermListModel::kTerm));
    });
    connect(view, &QTableView::doubleClicked, this,
            [this, kind](const QModelIndex& index) { OnTermListDoubleClicked(kind, index.row()); });
  }
  layout->addWidget(termLists_, 3);
  layout->addWidget(BuildWordIndexViewer(), 2);
  return column;
}

// ---- Settings ----

void LoadIndexPage::SetPaths(const PathSettings& paths) {
  stopPath_->setText(paths.stopPath);
  graphVisPath_->setText(paths.graphVisPath);
}

PathSettings LoadIndexPage::Paths() const { return {stopPath_->text(), graphVisPath_->text()}; }

void LoadIndexPage::SetCorpusPath(const QString& path) { corpusFilePath_->setText(path); }

void LoadIndexPage::SetRadian(bool radian) { radian_->setChecked(radian); }

void LoadIndexPage::SavePaths_Click() {
  QString error;
  if (!SavePathSettings(settingsFile_, Paths(), error)) {
    services_.platform.ShowMessage(error, kProgramTitle, MessageIcon::kExclamation);
  }
}

void LoadIndexPage::ShowExpPan_Click() {
  expertPanel_->setVisible(true);
  showExpPan_->setEnabled(false);
}

void LoadIndexPage::GetCorpusFilePath_Click() {
  const QString chosen = services_.platform.GetOpenFileNameFiltered(
      u"Open a Twitter export"_s, dialogFileName_, CorpusFileFilter());
  if (chosen.isEmpty()) return;
  dialogFileName_ = chosen;
  corpusFilePath_->setText(chosen);
}

std::optional<double> LoadIndexPage::NumberIn(QLineEdit* box, const QString& label) {
  bool ok = false;
  const double value = box->text().trimmed().toDouble(&ok);
  if (ok) return value;
  services_.platform.ShowMessage(u"%1 must be a number, not \"%2\"."_s.arg(label, box->text()),
                                 kProgramTitle, MessageIcon::kExclamation);
  box->setFocus();
  return std::nullopt;
}

std::optional<std::int64_t> LoadIndexPage::WholeNumberIn(QLineEdit* box, const QString& label) {
  const auto value = NumberIn(box, label);
  if (!value) return std::nullopt;
  return RoundHalfEven(*value);
}

// ---- Document viewer ----

void LoadIndexPage::DocViewIndex_Change() {
  const DocumentSet& documents = services_.session.Documents();
  if (services_.jobs.Busy() || documents.DocumentCount() == 0) return;
  const std::int64_t n = LeadingWholeNumber(docViewIndex_->text().toStdString());
  if (n < 1 || n > documents.DocumentCount()) {
    docViewIndex_->setText(QString::number(docViewScroll_->value()));
    return;
  }
  QString text;
  const auto doc = static_cast<DocIndex>(n - 1);
  for (int field = 0; field < documents.FieldCount(); ++field) {
    const auto f = static_cast<FieldIndex>(field);
    if (!documents.FieldExpressed(f)) continue;
    text += QString::fromStdString(documents.FieldName(f)) + u": "_s +
            QString::fromUtf8(documents.Cell(doc, f)) + u"\r\n"_s;
  }
  docViewText_ = text;
  QString shown = text;
  docView_->setPlainText(shown.replace(u"\r\n"_s, u"\n"_s));
  docViewScroll_->setValue(static_cast<int>(n));
}

void LoadIndexPage::DocViewScroll_Change() {
  const QString position = QString::number(docViewScroll_->value());
  if (position != docViewIndex_->text()) docViewIndex_->setText(position);
}

void LoadIndexPage::FieldList_ItemCheck(QListWidgetItem* item) {
  if (item == nullptr || services_.jobs.Busy()) return;
  DocumentSet& documents = services_.session.Documents();
  const int field = fieldList_->row(item);
  if (field < 0 || field >= documents.FieldCount()) return;
  documents.SetFieldExpressed(static_cast<FieldIndex>(field), item->checkState() == Qt::Checked);
  bool anyChecked = false;
  for (int row = 0; row < fieldList_->count(); ++row) {
    anyChecked = anyChecked || fieldList_->item(row)->checkState() == Qt::Checked;
  }
  tdmFrame_->setVisible(anyChecked);
  DocViewIndex_Change();
}

// ---- Progress texts ----

void LoadIndexPage::AppendLoadNote(const QString& note) {
  SetLoadProgress(loadProgressText_ + u"\r\n"_s + note);
}

void LoadIndexPage::SetLoadProgress(const QString& text) {
  loadProgressText_ = text;
  QString shown = text;
  loadProgress_->setText(shown.replace(u"\r\n"_s, u"\n"_s));
  emit loadProgressChanged(text);
}

void LoadIndexPage::SetIndexingStatus(const QString& status) {
  if (status == indexingStatus_) return;
  indexingStatus_ = status;
  indexingStatusLabel_->setText(status);
  emit indexingStatusChanged(status);
}

// ---- Jobs ----

void LoadIndexPage::BeginJob() {
  // The job owns the session until it ends: nothing on the page may read it meanwhile.
  DetachTermLists();
  DropWordIndexViewer();
  setEnabled(false);
}

void LoadIndexPage::EndJob() { setEnabled(true); }

void LoadIndexPage::DetachTermLists() {
  for (TermListModel* model : termListModels_) model->SetIndex(nullptr);
  for (QTableView* view : termListViews_) view->horizontalHeader()->setSortIndicatorShown(false);
}

void LoadIndexPage::AttachTermLists() {
  const Session& session = services_.session;
  for (std::size_t tab = 0; tab < kTermListOrder.size(); ++tab) {
    const IndexKind kind = kTermListOrder[tab];
    termListModels_[tab]->SetIndex(session.Indexed() ? &session.Index(kind) : nullptr);
    const int terms = session.Indexed() ? session.Index(kind).TermCount() : 0;
    termLists_->setTabText(
        static_cast<int>(tab),
        session.Indexed() ? u"%1 (%2)"_s.arg(IndexCaption(kind)).arg(terms) : IndexCaption(kind));
  }
}

void LoadIndexPage::ResetTermListCaptions() {
  for (std::size_t tab = 0; tab < kTermListOrder.size(); ++tab) {
    termLists_->setTabText(static_cast<int>(tab), IndexCaption(kTermListOrder[tab]));
  }
}

TermListModel& LoadIndexPage::TermList(IndexKind kind) {
  return *termListModels_[static_cast<std::size_t>(TabOf(kind))];
}

QTableView* LoadIndexPage::TermListView(IndexKind kind) {
  return termListViews_[static_cast<std::size_t>(TabOf(kind))];
}

void LoadIndexPage::OnTermListDoubleClicked(IndexKind kind, int row) {
  const QString text = TermList(kind).CellText(row, TermListModel::kTerm);
  if (kind == IndexKind::kLinks) {
    // The link is the text after the first space, or the whole text when it has none.
    const qsizetype space = text.indexOf(u' ');
    services_.platform.OpenLink(space < 0 ? text : text.mid(space + 1));
  } else if (kind == IndexKind::kWords) {
    emit wordDoubleClicked(text);
  }
}

}  // namespace sylvora::app
