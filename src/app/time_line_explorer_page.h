#pragma once
// The time line explorer tab (`TLE_Frame`): the model options (IntervalLen, the unit combo
// ETI_Combo, NovWinSz, TrunK) with "(Re)Build Views", the event time line (GetTL, EventList),
// the term search (FindTermStr, FindTerm), the main time line's place with ChartDetails, the
// term time line TIFMView (a TableLens over the words model's TIFM), the five interval term
// lists IntWords .. IntUsers in IntervalTerms_Frame, and the message list TweetView with its
// caption TweetViewSummary.
//
// Intervals are 1-based everywhere on this page; 0 means "none". Selecting an interval (a
// click in the chart or in the term time line) moves the lens cursor, fills the message list
// and the interval lists, and is announced (intervalSelected) for the other tabs.
//
// The models are built by the session (BuildModels, interval_models.h) on the window's job
// runner. While any job runs the page is disabled and shows nothing of the session (its views
// are detached); a cancelled or failed model build gives the previous models back, so the views
// come back as they were. The page owns its widgets and menus' actions; the window installs
// the menus (InstallMenus) and wires the page to the "Load and Index" page through
// TimeLineLinks.

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QString>
#include <QVector>
#include <QWidget>

#include "app/event_time_line.h"
#include "app/load_index_page.h"
#include "session/interval_models.h"
#include "session/interval_series.h"

class QAction;
class QActionGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;
class QPushButton;
class QScrollBar;
class QSplitter;
class QTabWidget;
class QTableView;

namespace sylvora {
class TableLens;
class TimeLineChart;
}  // namespace sylvora

namespace sylvora::app {

class IntervalTermModel;
class TweetListModel;

// The order of the interval term lists' tabs.
inline constexpr std::array<IndexKind, 5> kIntervalListOrder = kTermListOrder;

class TimeLineExplorerPage final : public QWidget {
  Q_OBJECT

 public:
  // The sentiment averages of the "Sentiment Average" menu.
  enum SentimentAverage : std::int16_t { kMean = 0, kMode = 1, kMedian = 2 };
  // Chooses the file a "Save ..." command writes; empty when cancelled. The default asks with
  // QFileDialog; tests replace it.
  using SaveFileChooser = std::function<QString(const QString& caption, const QString& name)>;

  explicit TimeLineExplorerPage(PageServices services, QWidget* parent = nullptr);
  ~TimeLineExplorerPage() override;

  // ---- Handlers of the page's controls (public so that the window and tests run them) ----
  // Checks the options and starts the build job; false when nothing was started.
  bool BuildModels_Click();
  void ETI_Combo_Click();
  // After a load: puts a length that cuts the corpus into at most about a thousand intervals
  // into "Interval length" and the unit combo, unless the user set them; returns the line that
  // says so ("" when 24 hours fits or the user's choice stands).
  QString ProposeIntervalLength();
  void GetTL_Click();
  // The chart click: selects `interval` everywhere (0 or out of range does nothing).
  void SelectInterval(std::int32_t interval);
  // The pointer over interval `interval` of the chart or the term time line.
  void HoverInterval(std::int32_t interval);
  // A click on row `row` (0-based) of an interval list.
  void IntervalTerm_Click(IndexKind kind, int row);
  // A row click in an all-term list of the "Load and Index" page.
  void AllTermList_Click(IndexKind kind, const QString& term);
  // Lists the messages holding word `term` (1-based) over intervals first..last (the word
  // map's clicks).
  void ShowWordOccurrences(int term, int firstInterval, int lastInterval);
  // Selects and scrolls to the message of corpus row `row` when the list shows it.
  void SelectTweet(int row);
  // Refills the message list with these corpus rows, in this order.
  void ShowTweets(const QVector<int>& rows);
  // FindTerm(0) "Find in Time Line View" (also Enter in FindTermStr), FindTerm(1) "Find in
  // Tweet View".
  void FindTerm_Click(int index);
  void TweetView_HeaderClick(int column);
  // The term time line's events.
  void TIFMView_CellMouseClick(int row, int column, Qt::MouseButton button);
  void TIFMView_CellMouseOver(int column, int row);

  // ---- Menus ----
  // Adds "Main Time Line", "Term Time Line" and "Users" to `bar`, and the page's save commands
  // to its "File" menu (made when the bar has none).
  void InstallMenus(QMenuBar* bar);
  void SetSentimentAverage(SentimentAverage average);
  void Redraw();
  void SetCellStyle(int style);
  // Ticks the menu item of the style the term time line draws.
  void ShowCellStyle(int style);
  void SetFilterRows(bool filter);
  void SetBurstMeasure(std::int32_t measure);
  // "Follow URL": opens the link of the selected message.
  void FollowUrl();
  // A double-click on the chart: asks "Copy Temporal View to Clipboard?" and on Yes puts a
  // freshly drawn picture of the chart on the clipboard.
  void Chart_DblClick();

  // ---- Saving ----
  void SetSaveFileChooser(SaveFileChooser chooser) { chooseSaveFile_ = std::move(chooser); }
  bool SaveIntervalTerms(IndexKind kind, const QString& path);
  bool SaveTweetList(const QString& path);
  // Asks for a file, then saves; false when cancelled or failed (the failure is shown).
  bool SaveIntervalTermsAs(IndexKind kind);
  bool SaveTweetListAs();
  // The chart as PNG and the per-interval series (the "sylvora-cli timeline" columns) as CSV.
  bool SaveChartPng(const QString& path);
  bool SaveSeries(const QString& path);
  bool SaveChartPngAs();
  bool SaveSeriesAs();

  // ---- State, for the window, the other tabs and tests ----
  bool ModelsBuilt() const { return modelsBuilt_; }
  const QString& IntervalUnit() const { return intervalUnit_; }
  std::int32_t SelectedInterval() const { return selectedInterval_; }
  std::int32_t HoveredInterval() const { return hoveredInterval_; }
  std::int32_t BurstMeasure() const { return burstMeasure_; }
  SentimentAverage CurrentSentimentAverage() const { return sentimentAverage_; }
  const std::vector<TimelineEvent>& Events() const { return events_; }
  const ModelReport& LastReport() const { return lastReport_; }
  TableLens* TIFMView() { return tifmView_.get(); }
  TimeLineChart& Chart() { return *chart_; }
  // The per-interval figures of the last build (what the chart draws and the series CSV holds).
  const IntervalSeries& Series() const { return series_; }
  TweetListModel& TweetList() { return *tweetModel_; }
  QTableView* TweetView() { return tweetView_; }
  // The message list's frame "TweetView_Frame" (TweetViewSummary over TweetView). The tabs share
  // it: the window lends it to the cluster explorer and gives it back with ReclaimTweetViewFrame.
  QWidget* TweetViewFrame() { return tweetViewFrame_; }
  // Puts the frame back beside the interval lists (nothing when it is there).
  void ReclaimTweetViewFrame();
  IntervalTermModel& IntervalTerms(IndexKind kind);
  QTableView* IntervalTermView(IndexKind kind);
  QString TweetViewSummaryText() const;
  QString IntervalTermsCaption() const;
  // The widget the main time line chart goes into, with ChartDetails under it.
  QWidget* ChartHost() { return chartHost_; }
  QLabel* ChartDetails() { return chartDetails_; }
  QAction* Action(const QString& name) const;
  QMenu* TweetMenu() { return tweetMenu_; }
  QMenu* UsersMenu() { return usersMenu_; }

 signals:
  // A build ended; `built` tells whether new models are there.
  void modelsBuilt(bool built);
  void intervalUnitChanged(const QString& code);
  void intervalSelected(int interval);
  void intervalHovered(int interval);
  // A term of an interval list was located in its index: the all-term list selects it.
  void termLocated(sylvora::IndexKind kind, const QString& term);
  // A word's row was marked in the term time line (the word map marks it too).
  void wordMarked(const QString& term);
  // "Copy Selected Users" was chosen (the window copies the all-users list's selection).
  void copySelectedUsersRequested();
  // The chart is to be drawn again (sentiment average, Redraw).
  void chartRedrawRequested();

 private:
  void BuildWidgets();
  QWidget* BuildOptionsRow();
  QWidget* BuildTimeLineArea();
  QWidget* BuildListsArea();
  void BuildMenus();
  bool eventFilter(QObject* watched, QEvent* event) override;

  void OnJobStarted(const QString& name);
  void OnJobFinished(const QString& name, bool cancelled);
  void FinishBuild(bool cancelled);
  void DetachViews();
  void AttachViews();
  void ShowTermTimeLine();
  void DropTermTimeLine();
  void FillIntervalLists(std::int32_t interval);
  void ClearIntervalLists();
  void ShowInterval(std::int32_t interval);
  // Lists the documents of intervals a..b holding `term` of `kind`'s index.
  void ShowTermOccurrences(IndexKind kind, std::int32_t term, std::int32_t first,
                           std::int32_t last);
  void SetSummary(const QString& text);
  void MarkWord(std::int32_t term);
  // Reads an option box's leading number; shows the reason and returns false when it is bad.
  bool ReadNovelty(std::uint8_t& window);
  void ShowError(const QString& text);
  void ShowTweetMenu(const QPoint& at);
  void ShowIntervalListMenu(IndexKind kind, const QPoint& at);
  // The main time line: made once, fed from the series of each build.
  void BuildChart();
  void ShowChart();
  // Puts interval i of the chart above column i of the term time line.
  void AlignChart();
  void ScheduleChartAlignment();
  void ShowChartMenu(const QPoint& at);
  // Zoom and pan of the time lines: the term time line shows the new range of intervals and
  // the chart follows it. ZoomTimeLine multiplies the number of intervals shown by `factor`,
  // keeping the interval under chart pixel `anchorX` in place.
  void ZoomTimeLine(double factor, double anchorX);
  // The chart's and its date axis's wheel, pan drags over the chart (Shift, Ctrl or the middle
  // button), the axis and the term time line's header, and the axis's painting; true when the
  // event was used.
  bool TimeLineNavigationEvent(QObject* watched, QEvent* event);

  PageServices services_;
  SaveFileChooser chooseSaveFile_;

  // State
  bool modelsBuilt_ = false;
  QString intervalUnit_ = QStringLiteral("h");
  std::int32_t selectedInterval_ = 0;
  std::int32_t hoveredInterval_ = 0;
  std::int32_t burstMeasure_ = 0;
  SentimentAverage sentimentAverage_ = kMean;
  std::uint8_t noveltyWindow_ = 1;
  std::vector<TimelineEvent> events_;
  ModelReport lastReport_;
  // The models of the last build while a new one runs.
  std::unique_ptr<std::array<TextStream, 5>> previousModels_;
  std::int32_t previousLength_ = 0;
  std::string previousUnit_;
  bool previousBuilt_ = false;

  // Options
  QLineEdit* intervalLen_ = nullptr;
  QComboBox* etiCombo_ = nullptr;
  QLineEdit* novWinSz_ = nullptr;
  QLineEdit* trunK_ = nullptr;
  QPushButton* buildModels_ = nullptr;
  QPushButton* getTL_ = nullptr;
  QComboBox* eventList_ = nullptr;
  QLineEdit* findTermStr_ = nullptr;
  std::array<QPushButton*, 2> findTerm_{};
  // Time lines
  QWidget* chartHost_ = nullptr;
  QLabel* chartDetails_ = nullptr;
  QGroupBox* tifmFrame_ = nullptr;
  QWidget* tifmViewContainer_ = nullptr;
  QScrollBar* tifmViewHScroller_ = nullptr;
  QScrollBar* tifmViewVScroller_ = nullptr;
  std::unique_ptr<TableLens> tifmView_;
  std::unique_ptr<TimeLineChart> chart_;
  QWidget* chartBox_ = nullptr;
  // The strip of dates under the chart ("ChartAxis"): drawn by the chart, a drag pans.
  QWidget* chartAxis_ = nullptr;
  IntervalSeries series_;
  bool alignmentPending_ = false;
  // A pan drag: where it started (x in pixels of the widget it started on) and the first
  // interval shown then.
  bool panning_ = false;
  double panStartX_ = 0.0;
  std::int32_t panStartLeft_ = 1;
  // Lists
  QGroupBox* intervalTermsFrame_ = nullptr;
  QTabWidget* intervalTabs_ = nullptr;
  QSplitter* listsSplit_ = nullptr;
  std::array<QTableView*, 5> intervalViews_{};
  std::array<IntervalTermModel*, 5> intervalModels_{};
  QWidget* tweetViewFrame_ = nullptr;
  QLabel* tweetViewSummary_ = nullptr;
  QTableView* tweetView_ = nullptr;
  TweetListModel* tweetModel_ = nullptr;
  // Menus
  QMenu* mainTimeLineMenu_ = nullptr;
  QMenu* termTimeLineMenu_ = nullptr;
  QMenu* usersMenu_ = nullptr;
  QMenu* tweetMenu_ = nullptr;
  QAction* filterRows_ = nullptr;
  std::array<QAction*, 3> sentiAvg_{};
  std::array<QAction*, 5> cellStyle_{};
  std::optional<int> userCellStyle_;
  bool lengthChosen_ = false;
  std::array<QAction*, 3> burst_{};
};

}  // namespace sylvora::app
