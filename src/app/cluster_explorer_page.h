#pragma once
// The cluster explorer tab of the main window: three linked node maps, each a spanning tree of
// similarities laid out by sfdp (session/cluster_maps.h):
//
//   word map      "TermSimVis"   every term of the word index, tweet or interval level
//                                ("FeatureType": 0 "Tweet ", 1 "Interval ")
//   interval map  "ISVis"        every interval of the words model
//   tweet map     "TweetSimVis"  the tweets of the selected interval
//
// Building. A model build (ModelsRebuilt) marks the word and interval maps stale; the first
// visit to the tab afterwards (PageShown) builds the interval map, then the word map at the
// tweet level. "FeatureType" rebuilds the word map, an interval click builds the tweet map.
// Every build runs on the window's JobRunner (progress, Cancel); requests made while another job
// runs wait for it (one per map, the latest wins). The window caption shows "Computing ...
// cluster visualization..." while the page's builds run and its earlier text afterwards. A map
// keeps its last layout until a new one succeeds. A failed interval map shows the message
// kIntervalMapFailure; failed word and tweet maps stay as they were without a message box, and
// the map's status line says why (no Graphviz, too slow, an interval with one tweet).
//
// Links. Hovering: a word shows its label as the surface's tooltip; an interval shows
// IntervalTooltip (the two best terms) and raises intervalHovered; a tweet shows its text.
// Clicking: a word raises wordChosen (its term over intervals 1..IntervalCount); an interval
// selects it (intervalSelected) and builds its tweet map; a tweet raises tweetChosen (its
// corpus row). A zoom or pan of the word map recolours the interval and tweet maps by the words
// visible in it (cluster_links.h); a selection or view change of the tweet map raises
// tweetsShown with the corpus rows of its visible nodes in node order.
//
// The message list. The time line explorer's message list (TweetView_Frame) is shared by the
// tabs: the window moves it under this page's maps while this tab is current (HostMessageList),
// so that a word, an interval or a tweet chosen here is listed where the user sees it.
//
// The page reads the session's word index and words model on the user-interface thread only
// while no job of another page runs (a model or index build owns them then).

#include <array>
#include <functional>
#include <memory>

#include <QVector>
#include <QWidget>

#include "app/load_index_page.h"
#include "session/cluster_maps.h"
#include "views/point_map_2d.h"

class QDoubleSpinBox;
class QLabel;
class QRadioButton;
class QSlider;
class QToolButton;

namespace sylvora::app {

class ClusterMapPanel;

class ClusterExplorerPage final : public QWidget {
  Q_OBJECT

 public:
  // The label slider's range, steps and start value (documents per thousand).
  static constexpr int kLabelSliderMax = 250;
  static constexpr int kLabelSliderStart = 120;

  explicit ClusterExplorerPage(PageServices services, QWidget* parent = nullptr);
  ~ClusterExplorerPage() override;

  // Where the Graphviz programs are: the "GraphVisPath" box of the Load and Index page, read at
  // each build. "/usr/bin" when no source is set.
  void SetGraphvizFolderSource(std::function<QString()> source) {
    graphvizFolder_ = std::move(source);
  }
  // The layout time limit (tests shorten it).
  void SetLayoutTimeLimit(int milliseconds) { timeLimitMs_ = milliseconds; }

  // ---- The handlers of the page's controls (public so that the window and tests run them) ----
  // The tab became current: build the stale maps.
  void PageShown();
  void FeatureType_Click(int index);
  void AdjTermNodeSz_Click(int index);
  void TermLabelThresh_Change(int value);
  void TermSimVis_OnNewNodeOver(int node);
  void TermSimVis_OnNodeClick(int node);
  void TermSimVis_ViewChanged();
  void ISVis_OnNewNodeOver(int node);
  void ISVis_OnNodeClick(int node);
  void TweetSimVis_OnNewNodeOver(int node);
  void TweetSimVis_OnNodeClick(int node);
  void TweetSimVis_ViewChanged();

  // ---- State, for the window and tests ----
  ClusterMapPanel& Panel(MapKind kind) { return *panels_[static_cast<std::size_t>(kind)]; }
  PointMap2D& Map(MapKind kind);
  bool WordMapStale() const { return wordMapStale_; }
  bool IntervalMapStale() const { return intervalMapStale_; }
  std::int32_t SelectedInterval() const { return selectedInterval_; }
  WordMapLevel Level() const { return level_; }
  // True while one of the page's builds runs or waits for the job runner.
  bool Building() const;
  QSlider* LabelSlider() const { return termLabelThresh_; }

  // The message list shared with the time line explorer: while this tab is current its frame
  // sits under the maps ("TweetViewSlot"). The frame stays the other page's widget in every
  // other respect (same model, same signals); this page only lays it out.
  void HostMessageList(QWidget* frame);
  QWidget* MessageListSlot() const { return messageListSlot_; }

 public slots:
  // A model build completed (or was dropped): the word and interval maps are stale.
  void ModelsRebuilt();
  // The time line selected an interval: the interval map marks it (no tweet map is built).
  void SelectInterval(int interval);
  // The time line's pointer is over an interval (0 or less: none).
  void HoverInterval(int interval);
  // A word was marked elsewhere (an interval list, an all-term list): the word map selects its
  // node (term - 1) when the map holds that word. Nothing happens for an unknown word, an
  // empty map or a map built from another index.
  void SelectWord(const QString& term);

 signals:
  void captionChanged(const QString& caption);
  void intervalHovered(int interval);
  void intervalSelected(int interval);
  // List the tweets holding word `term` (1-based) over intervals first..last.
  void wordChosen(int term, int firstInterval, int lastInterval);
  // Select the tweet of this corpus row in the message list.
  void tweetChosen(int row);
  // Refill the message list with these corpus rows, in this order.
  void tweetsShown(const QVector<int>& rows);
  // A build of `kind` (a MapKind) ended; `built` when the map shows the new layout.
  void mapFinished(int kind, bool built);

 private:
  struct Request {
    bool pending = false;
    WordMapLevel level = WordMapLevel::kTweet;
    std::int32_t interval = 0;
    QString caption;
    // Asked for by the first visit after a model build (a cancel leaves the map stale).
    bool lazy = false;
  };

  void BuildWidgets();
  QWidget* BuildWordControls();
  void ConnectMaps();
  MapOptions Options() const;
  // Queues a build of `kind` and starts it when the job runner is free.
  void RequestBuild(MapKind kind, const Request& request);
  void StartPending();
  void StartBuild(MapKind kind, const Request& request);
  void FinishBuild(MapKind kind, const Request& request, bool cancelled,
                   std::unique_ptr<ClusterMap> built, const MapReport& report);
  void ShowMap(MapKind kind);
  void RecolourByVisibleWords();
  void EmitVisibleTweets();
  // The session may be read now: no job of another page holds it.
  bool SessionReadable() const;
  void SetSurfaceToolTip(MapKind kind, const QString& text);
  void RestoreCaption();

  PageServices services_;
  std::function<QString()> graphvizFolder_;
  int timeLimitMs_;
  std::array<ClusterMapPanel*, 3> panels_{};
  std::array<Request, 3> requests_{};
  bool ownJobRunning_ = false;
  bool wordMapStale_ = false;
  bool intervalMapStale_ = false;
  std::int32_t selectedInterval_ = 0;
  WordMapLevel level_ = WordMapLevel::kTweet;
  QString usualCaption_;
  // The map Back and Forward (Alt+Left, Alt+Right) act on: the one used last.
  MapKind activeMap_ = MapKind::kWords;
  bool captionShown_ = false;

  std::array<QRadioButton*, 2> featureType_{};
  std::array<QToolButton*, 2> adjTermNodeSz_{};
  QSlider* termLabelThresh_ = nullptr;
  QDoubleSpinBox* labelPercent_ = nullptr;
  QWidget* messageListSlot_ = nullptr;
};

}  // namespace sylvora::app
