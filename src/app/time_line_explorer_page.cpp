// The time line explorer tab: its widgets, menus and saving. The model build is in
// time_line_explorer_page_build.cpp, the selections and searches in
// time_line_explorer_page_selection.cpp.
#include "app/time_line_explorer_page.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "app/csv_table.h"
#include "app/interval_term_model.h"
#include "app/job_runner.h"
#include "app/platform.h"
#include "app/tweet_list_model.h"
#include "views/table_lens.h"
#include "views/time_line_chart.h"

#include "app/page_widgets.h"
#include "session/interval_length_proposal.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

std::size_t TabOf(IndexKind kind) {
  for (std::size_t tab = 0; tab < kIntervalListOrder.size(); ++tab) {
    if (kIntervalListOrder[tab] == kind) return tab;
  }
  return 0;
}

QTableView* NewListView(const QString& name) {
  auto* view = Named(new QTableView, name);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  view->setSelectionMode(QAbstractItemView::SingleSelection);
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->setWordWrap(false);
  view->setContextMenuPolicy(Qt::CustomContextMenu);
  view->verticalHeader()->setVisible(false);
  view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 4);
  view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view->horizontalHeader()->setSectionsClickable(true);
  view->horizontalHeader()->setStretchLastSection(true);
  return view;
}

const QString kSearchPrompt = u"[enter search term]"_s;

}  // namespace

TimeLineExplorerPage::TimeLineExplorerPage(PageServices services, QWidget* parent)
    : QWidget(parent), services_(services) {
  setObjectName(u"TLE_Frame"_s);
  chooseSaveFile_ = [this](const QString& caption, const QString& name) {
    const QString filter = name.endsWith(u".png"_s) ? u"PNG pictures (*.png);;All files (*)"_s
                                                    : u"CSV files (*.csv);;All files (*)"_s;
    return QFileDialog::getSaveFileName(this, caption, name, filter);
  };
  BuildWidgets();
  BuildChart();
  BuildMenus();
  connect(&services_.jobs, &JobRunner::started, this, &TimeLineExplorerPage::OnJobStarted);
  connect(&services_.jobs, &JobRunner::finished, this, &TimeLineExplorerPage::OnJobFinished);
}

TimeLineExplorerPage::~TimeLineExplorerPage() = default;

void TimeLineExplorerPage::BuildWidgets() {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(BuildOptionsRow());
  auto* split = Named(new QSplitter(Qt::Vertical), u"TLE_Split"_s);
  split->addWidget(BuildTimeLineArea());
  split->addWidget(BuildListsArea());
  // The lists below need room for a dozen rows: they get almost half of the height.
  split->setStretchFactor(0, 5);
  split->setStretchFactor(1, 4);
  layout->addWidget(split, 1);
}

QWidget* TimeLineExplorerPage::BuildOptionsRow() {
  auto* row = new QWidget;
  auto* lines = new QVBoxLayout(row);
  lines->setContentsMargins(0, 0, 0, 0);
  auto* layout = new QHBoxLayout;
  intervalLen_ = Named(new QLineEdit(u"24"_s), u"IntervalLen"_s);
  intervalLen_->setMaximumWidth(60);
  etiCombo_ = Named(new QComboBox, u"ETI_Combo"_s);
  etiCombo_->addItems({u"Seconds"_s, u"Minutes"_s, u"Hours"_s, u"Days"_s, u"Weeks"_s});
  etiCombo_->setCurrentText(u"Hours"_s);
  novWinSz_ = Named(new QLineEdit(u"1"_s), u"NovWinSz"_s);
  novWinSz_->setMaximumWidth(50);
  trunK_ = Named(new QLineEdit(u"100"_s), u"TrunK"_s);
  trunK_->setMaximumWidth(60);
  buildModels_ = Named(new QPushButton(u"(Re)Build Views"_s), u"BuildModels"_s);
  getTL_ = Named(new QPushButton(u"Get Event Time Line"_s), u"GetTL"_s);
  getTL_->setToolTip(u"Requires R6 data. Will activate once interval models have been built"_s);
  getTL_->setEnabled(false);
  eventList_ = Named(new QComboBox, u"EventList"_s);
  eventList_->setMinimumWidth(200);
  findTermStr_ = Named(new QLineEdit(kSearchPrompt), u"FindTermStr"_s);
  findTermStr_->setMinimumWidth(150);
  findTermStr_->setMaximumWidth(200);
  findTermStr_->installEventFilter(this);
  findTerm_[0] = Named(new QPushButton(u"Find in Time Line View"_s), u"FindTerm"_s);
  findTerm_[1] = Named(new QPushButton(u"Find in Tweet View"_s), u"FindTerm"_s);
  findTerm_[0]->setProperty("index", 0);
  findTerm_[1]->setProperty("index", 1);

  layout->addWidget(new QLabel(u"Interval length"_s));
  layout->addWidget(intervalLen_);
  layout->addWidget(etiCombo_);
  layout->addWidget(new QLabel(u"Novelty comparison period (intervals)"_s));
  layout->addWidget(novWinSz_);
  layout->addWidget(new QLabel(u"TrunK"_s));
  layout->addWidget(trunK_);
  layout->addWidget(buildModels_);
  layout->addStretch(1);
  // The event time line and the searches on a second line, so that the page fits 1280 pixels.
  auto* second = new QHBoxLayout;
  second->addWidget(getTL_);
  second->addWidget(eventList_, 1);
  second->addSpacing(12);
  second->addWidget(findTermStr_);
  second->addWidget(findTerm_[0]);
  second->addWidget(findTerm_[1]);
  lines->addLayout(layout);
  lines->addLayout(second);

  connect(buildModels_, &QPushButton::clicked, this, [this] { BuildModels_Click(); });
  connect(etiCombo_, &QComboBox::currentTextChanged, this, [this] { ETI_Combo_Click(); });
  // What the user types or picks is theirs: no later load proposes over it.
  connect(intervalLen_, &QLineEdit::textEdited, this, [this] { lengthChosen_ = true; });
  connect(etiCombo_, &QComboBox::activated, this, [this] { lengthChosen_ = true; });
  connect(getTL_, &QPushButton::clicked, this, &TimeLineExplorerPage::GetTL_Click);
  connect(findTermStr_, &QLineEdit::returnPressed, this, [this] { FindTerm_Click(0); });
  connect(findTerm_[0], &QPushButton::clicked, this, [this] { FindTerm_Click(0); });
  connect(findTerm_[1], &QPushButton::clicked, this, [this] { FindTerm_Click(1); });
  return row;
}

QWidget* TimeLineExplorerPage::BuildTimeLineArea() {
  auto* area = new QWidget;
  auto* layout = new QVBoxLayout(area);
  layout->setContentsMargins(0, 0, 0, 0);
  // The chart sits in the same grid column as the term time line's surface, so that both
  // start at the same x and have the same width.
  tifmFrame_ = Named(new QGroupBox(u"Time Line"_s), u"TimeLine_Frame"_s);
  auto* grid = new QGridLayout(tifmFrame_);
  chartHost_ = Named(new QWidget, u"ChartHost"_s);
  chartHost_->setMinimumHeight(150);
  auto* chartLayout = new QVBoxLayout(chartHost_);
  chartLayout->setContentsMargins(0, 0, 0, 0);
  chartDetails_ = Named(new QLabel, u"ChartDetails"_s);
  chartDetails_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  tifmViewHScroller_ = Named(new QScrollBar(Qt::Horizontal), u"TIFMViewHScroller"_s);
  tifmViewVScroller_ = Named(new QScrollBar(Qt::Vertical), u"TIFMViewVScroller"_s);
  grid->addWidget(chartHost_, 0, 0);
  grid->addWidget(chartDetails_, 1, 0, 1, 2);
  // Row 2 holds TIFMViewContainer once a build made one.
  grid->addWidget(tifmViewVScroller_, 2, 1);
  grid->addWidget(tifmViewHScroller_, 3, 0);
  grid->setRowStretch(0, 2);
  grid->setRowStretch(2, 3);
  grid->setColumnStretch(0, 1);
  grid->setRowMinimumHeight(2, 180);
  layout->addWidget(tifmFrame_);
  return area;
}

QWidget* TimeLineExplorerPage::BuildListsArea() {
  auto* split = Named(new QSplitter(Qt::Horizontal), u"TLE_ListsSplit"_s);
  listsSplit_ = split;
  intervalTermsFrame_ =
      Named(new QGroupBox(u"Interval Term Statistics"_s), u"IntervalTerms_Frame"_s);
  auto* framed = new QVBoxLayout(intervalTermsFrame_);
  intervalTabs_ = Named(new QTabWidget, u"IntervalTerms"_s);
  for (std::size_t tab = 0; tab < kIntervalListOrder.size(); ++tab) {
    const IndexKind kind = kIntervalListOrder[tab];
    auto* model = new IntervalTermModel(kind, this);
    auto* view = NewListView(u"Int"_s + IndexCaption(kind));
    view->setModel(model);
    view->setColumnWidth(0, kind == IndexKind::kLinks ? 240 : 110);
    for (int c = 1; c < model->columnCount(); ++c) view->setColumnWidth(c, 58);
    intervalModels_[tab] = model;
    intervalViews_[tab] = view;
    intervalTabs_->addTab(view, IndexCaption(kind));
    connect(view, &QTableView::clicked, this,
            [this, kind](const QModelIndex& index) { IntervalTerm_Click(kind, index.row()); });
    connect(view->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [view, model](int column) {
              model->HeaderClicked(column);
              view->horizontalHeader()->setSortIndicatorShown(true);
            });
    connect(view, &QWidget::customContextMenuRequested, this,
            [this, kind](const QPoint& at) { ShowIntervalListMenu(kind, at); });
  }
  framed->addWidget(intervalTabs_);
  split->addWidget(intervalTermsFrame_);

  auto* tweets = Named(new QGroupBox(u"Tweets"_s), u"TweetView_Frame"_s);
  tweetViewFrame_ = tweets;
  auto* tweetLayout = new QVBoxLayout(tweets);
  tweetViewSummary_ = Named(new QLabel, u"TweetViewSummary"_s);
  tweetViewSummary_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  tweetModel_ = new TweetListModel(this);
  tweetView_ = NewListView(u"TweetView"_s);
  tweetView_->setModel(tweetModel_);
  tweetView_->horizontalHeader()->setStretchLastSection(false);
  tweetView_->horizontalHeader()->setMinimumSectionSize(1);
  // One line per message, elided: wrapping would lay out every visible cell's whole text at each
  // repaint, and the rows are one line high anyway.
  tweetView_->setWordWrap(false);
  tweetLayout->addWidget(tweetViewSummary_);
  tweetLayout->addWidget(tweetView_, 1);
  split->addWidget(tweets);
  split->setStretchFactor(0, 2);
  split->setStretchFactor(1, 3);
  connect(tweetView_->horizontalHeader(), &QHeaderView::sectionClicked, this,
          &TimeLineExplorerPage::TweetView_HeaderClick);
  connect(tweetView_, &QWidget::customContextMenuRequested, this,
          &TimeLineExplorerPage::ShowTweetMenu);
  return split;
}

void TimeLineExplorerPage::ReclaimTweetViewFrame() {
  if (tweetViewFrame_->parentWidget() == listsSplit_) return;
  listsSplit_->insertWidget(1, tweetViewFrame_);
  listsSplit_->setStretchFactor(1, 3);
  // The lists as the page first showed them: two fifths for the interval terms.
  const int width = listsSplit_->width();
  if (width > 0) listsSplit_->setSizes({width * 2 / 5, width - width * 2 / 5});
  tweetViewFrame_->show();
}

bool TimeLineExplorerPage::eventFilter(QObject* watched, QEvent* event) {
  // A click in the search box empties it.
  if (watched == findTermStr_ && event->type() == QEvent::MouseButtonPress) findTermStr_->clear();
  if (watched == tifmViewContainer_ && event->type() == QEvent::Resize) ScheduleChartAlignment();
  if (TimeLineNavigationEvent(watched, event)) return true;
  return QWidget::eventFilter(watched, event);
}

IntervalTermModel& TimeLineExplorerPage::IntervalTerms(IndexKind kind) {
  return *intervalModels_[TabOf(kind)];
}

QTableView* TimeLineExplorerPage::IntervalTermView(IndexKind kind) {
  return intervalViews_[TabOf(kind)];
}

QString TimeLineExplorerPage::TweetViewSummaryText() const { return tweetViewSummary_->text(); }

QString TimeLineExplorerPage::IntervalTermsCaption() const { return intervalTermsFrame_->title(); }

void TimeLineExplorerPage::SetSummary(const QString& text) { tweetViewSummary_->setText(text); }

void TimeLineExplorerPage::ShowError(const QString& text) {
  services_.platform.ShowMessage(text, kProgramTitle, MessageIcon::kExclamation);
}

QString TimeLineExplorerPage::ProposeIntervalLength() {
  if (lengthChosen_) return {};
  const IntervalLengthProposal proposal =
      sylvora::ProposeIntervalLength(services_.session.Documents());
  intervalLen_->setText(QString::number(proposal.length));
  etiCombo_->setCurrentText(proposal.unitCode == "ww" ? u"Weeks"_s : u"Hours"_s);
  return QString::fromStdString(proposal.Describe());
}

void TimeLineExplorerPage::ETI_Combo_Click() {
  static const std::pair<QString, QString> kUnits[] = {{u"Seconds"_s, u"s"_s},
                                                       {u"Minutes"_s, u"n"_s},
                                                       {u"Hours"_s, u"h"_s},
                                                       {u"Days"_s, u"d"_s},
                                                       {u"Weeks"_s, u"ww"_s}};
  for (const auto& [text, code] : kUnits) {
    if (etiCombo_->currentText() == text) {
      intervalUnit_ = code;
      emit intervalUnitChanged(code);
      return;
    }
  }
}

void TimeLineExplorerPage::GetTL_Click() {
  const QString path = services_.platform.GetOpenFileName(u"Get Event Time Line"_s, QString());
  if (path.isEmpty()) return;
  const EventTimeLine timeLine = ReadEventTimeLine(path.toStdString());
  if (!timeLine.error.empty()) {
    ShowError(QString::fromStdString(timeLine.error));
    return;
  }
  events_ = timeLine.events;
  for (const std::string& entry : timeLine.listEntries) {
    eventList_->addItem(QString::fromStdString(entry));
  }
  getTL_->setEnabled(false);
  if (timeLine.skipped > 0) {
    services_.platform.ShowMessage(
        u"%1 line(s) of the event file were skipped: each event needs a date-time, a tab and a "
        "description."_s.arg(timeLine.skipped),
        kProgramTitle, MessageIcon::kInformation);
  }
}

// ---- Menus ----

void TimeLineExplorerPage::BuildMenus() {
  const auto checkable = [this](QMenu* menu, QActionGroup* group, const QString& text,
                                const QString& name, int index) {
    QAction* action = menu->addAction(text);
    action->setObjectName(name);
    action->setProperty("index", index);
    action->setCheckable(true);
    if (group != nullptr) group->addAction(action);
    return action;
  };

  mainTimeLineMenu_ = Named(new QMenu(u"Main Time Line"_s, this), u"mTimeLine"_s);
  QMenu* averages = Named(mainTimeLineMenu_->addMenu(u"Sentiment Average"_s), u"mSelSentiAvg"_s);
  auto* averageGroup = new QActionGroup(this);
  const QString averageNames[] = {u"Mean"_s, u"Mode"_s, u"Median"_s};
  for (int i = 0; i < 3; ++i) {
    sentiAvg_[static_cast<std::size_t>(i)] =
        checkable(averages, averageGroup, averageNames[i], u"mSentiAvg"_s, i);
    connect(sentiAvg_[static_cast<std::size_t>(i)], &QAction::triggered, this,
            [this, i] { SetSentimentAverage(static_cast<SentimentAverage>(i)); });
  }
  sentiAvg_[0]->setChecked(true);
  QAction* redraw = mainTimeLineMenu_->addAction(u"Redraw"_s);
  redraw->setObjectName(u"mTVRedraw"_s);
  connect(redraw, &QAction::triggered, this, &TimeLineExplorerPage::Redraw);

  termTimeLineMenu_ = Named(new QMenu(u"Term Time Line"_s, this), u"mTIView"_s);
  filterRows_ =
      checkable(termTimeLineMenu_, nullptr, u"Show Selected Terms Only"_s, u"mFilterRows"_s, 0);
  connect(filterRows_, &QAction::triggered, this, &TimeLineExplorerPage::SetFilterRows);
  QMenu* styles = Named(termTimeLineMenu_->addMenu(u"Cell Style"_s), u"mTIVCellStyle"_s);
  auto* styleGroup = new QActionGroup(this);
  const QString styleNames[] = {u"Text"_s, u"Tile"_s, u"Line"_s, u"Horizontal Bar"_s,
                                u"Vertical Bar"_s};
  for (int i = 0; i < 5; ++i) {
    cellStyle_[static_cast<std::size_t>(i)] =
        checkable(styles, styleGroup, styleNames[i], u"mTIVCell"_s, i);
    connect(cellStyle_[static_cast<std::size_t>(i)], &QAction::triggered, this,
            [this, i] { SetCellStyle(i); });
  }
  cellStyle_[TableLens::kLine]->setChecked(true);
  QMenu* bursts = Named(termTimeLineMenu_->addMenu(u"Burst Terms"_s), u"mBurst"_s);
  burst_[0] = checkable(bursts, nullptr, u"Use Local-Global Ratio "_s, u"mRatioBurst"_s, 0);
  burst_[1] =
      checkable(bursts, nullptr, u"Use Current-Recent (Temporal) Ratio"_s, u"mTemporalBurst"_s, 1);
  burst_[2] = checkable(bursts, nullptr, u"Use Term-Interval Z-score"_s, u"mTIZBurst"_s, 2);
  for (int i = 0; i < 3; ++i) {
    connect(burst_[static_cast<std::size_t>(i)], &QAction::triggered, this,
            [this, i] { SetBurstMeasure(i); });
  }
  burst_[0]->setChecked(true);

  usersMenu_ = Named(new QMenu(u"Users"_s, this), u"mUsers"_s);
  QAction* copyUsers = usersMenu_->addAction(u"Copy Selected Users"_s);
  copyUsers->setObjectName(u"mCopySelectedUsers"_s);
  connect(copyUsers, &QAction::triggered, this, &TimeLineExplorerPage::copySelectedUsersRequested);

  tweetMenu_ = Named(new QMenu(u"Tweet"_s, this), u"mTweet"_s);
  QAction* follow = tweetMenu_->addAction(u"Follow URL"_s);
  follow->setObjectName(u"mFollURL"_s);
  connect(follow, &QAction::triggered, this, &TimeLineExplorerPage::FollowUrl);
  QAction* saveTweets = tweetMenu_->addAction(u"Save Tweet List as CSV..."_s);
  saveTweets->setObjectName(u"mSaveTweetList"_s);
  connect(saveTweets, &QAction::triggered, this, [this] { SaveTweetListAs(); });
}

void TimeLineExplorerPage::InstallMenus(QMenuBar* bar) {
  QMenu* file = bar->findChild<QMenu*>(u"mFile"_s);
  if (file == nullptr) {
    file = Named(new QMenu(u"File"_s, bar), u"mFile"_s);
    bar->insertMenu(bar->actions().isEmpty() ? nullptr : bar->actions().first(), file);
  }
  QAction* saveTerms = file->addAction(u"Save Interval Term List as CSV..."_s);
  saveTerms->setObjectName(u"mSaveIntervalTerms"_s);
  connect(saveTerms, &QAction::triggered, this, [this] {
    SaveIntervalTermsAs(
        kIntervalListOrder[static_cast<std::size_t>(std::max(0, intervalTabs_->currentIndex()))]);
  });
  QAction* saveTweets = file->addAction(u"Save Tweet List as CSV..."_s);
  saveTweets->setObjectName(u"mFileSaveTweetList"_s);
  connect(saveTweets, &QAction::triggered, this, [this] { SaveTweetListAs(); });
  QAction* saveChart = file->addAction(u"Save Time Line Chart as PNG..."_s);
  saveChart->setObjectName(u"mSaveChart"_s);
  connect(saveChart, &QAction::triggered, this, [this] { SaveChartPngAs(); });
  QAction* saveSeries = file->addAction(u"Save Interval Series as CSV..."_s);
  saveSeries->setObjectName(u"mSaveSeries"_s);
  connect(saveSeries, &QAction::triggered, this, [this] { SaveSeriesAs(); });
  bar->addMenu(mainTimeLineMenu_);
  bar->addMenu(termTimeLineMenu_);
  bar->addMenu(usersMenu_);
}

QAction* TimeLineExplorerPage::Action(const QString& name) const {
  return findChild<QAction*>(name);
}

void TimeLineExplorerPage::SetSentimentAverage(SentimentAverage average) {
  sentimentAverage_ = average;
  for (std::size_t i = 0; i < sentiAvg_.size(); ++i) {
    sentiAvg_[i]->setChecked(static_cast<int>(i) == average);
  }
  chart_->SetSentimentAverage(average);
  emit chartRedrawRequested();
}

void TimeLineExplorerPage::SetCellStyle(int style) {
  if (style < 0 || style > 4) return;
  // The user's pick stays, through later layouts and rebuilds.
  userCellStyle_ = style;
  ShowCellStyle(style);
  if (tifmView_) {
    tifmView_->SetKeepCellStyle(true);
    tifmView_->SetCellStyle(static_cast<std::uint8_t>(style));
  }
  ScheduleChartAlignment();
}

void TimeLineExplorerPage::ShowCellStyle(int style) {
  for (std::size_t i = 0; i < cellStyle_.size(); ++i) {
    cellStyle_[i]->setChecked(static_cast<int>(i) == style);
  }
}

void TimeLineExplorerPage::SetFilterRows(bool filter) {
  filterRows_->setChecked(filter);
  if (tifmView_) tifmView_->SetFilterRows(filter);
  ScheduleChartAlignment();
}

void TimeLineExplorerPage::SetBurstMeasure(std::int32_t measure) {
  if (measure < 0 || measure > 2) return;
  burstMeasure_ = measure;
  for (std::size_t i = 0; i < burst_.size(); ++i) {
    burst_[i]->setChecked(static_cast<int>(i) == measure);
  }
}

void TimeLineExplorerPage::ShowTweetMenu(const QPoint& at) {
  tweetMenu_->popup(tweetView_->viewport()->mapToGlobal(at));
}

void TimeLineExplorerPage::ShowIntervalListMenu(IndexKind kind, const QPoint& at) {
  QMenu menu;
  QAction* save = menu.addAction(u"Save List as CSV..."_s);
  QTableView* view = IntervalTermView(kind);
  if (menu.exec(view->viewport()->mapToGlobal(at)) == save) SaveIntervalTermsAs(kind);
}

void TimeLineExplorerPage::FollowUrl() {
  const QModelIndexList selected = tweetView_->selectionModel()->selectedRows();
  if (selected.isEmpty() || tweetModel_->Documents() == nullptr) return;
  const DocIndex doc = tweetModel_->DocumentAt(selected.first().row());
  if (doc < 0) return;
  const std::string_view cell =
      tweetModel_->Documents()->Cell(doc, tweetModel_->Documents()->URLField());
  // A message may carry several links: the first one is followed.
  const QString links =
      QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size())).trimmed();
  if (links.isEmpty()) return;
  services_.platform.OpenLink(links.section(u' ', 0, 0, QString::SectionSkipEmpty));
}

// ---- Saving ----

bool TimeLineExplorerPage::SaveIntervalTerms(IndexKind kind, const QString& path) {
  QString error;
  if (SaveCsv(IntervalTerms(kind), path, error)) return true;
  ShowError(error);
  return false;
}

bool TimeLineExplorerPage::SaveTweetList(const QString& path) {
  QString error;
  if (SaveCsv(*tweetModel_, path, error)) return true;
  ShowError(error);
  return false;
}

bool TimeLineExplorerPage::SaveIntervalTermsAs(IndexKind kind) {
  const QString name =
      u"interval-%1-%2.csv"_s.arg(static_cast<int>(selectedInterval_), 3, 10, QLatin1Char('0'))
          .arg(IndexCaption(kind).toLower());
  const QString path = chooseSaveFile_(u"Save Interval Term List"_s, name);
  return !path.isEmpty() && SaveIntervalTerms(kind, path);
}

bool TimeLineExplorerPage::SaveTweetListAs() {
  const QString path = chooseSaveFile_(u"Save Tweet List"_s, u"tweets.csv"_s);
  return !path.isEmpty() && SaveTweetList(path);
}

}  // namespace sylvora::app
