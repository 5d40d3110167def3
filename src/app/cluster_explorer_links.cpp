// The cluster explorer's links: hover tooltips, clicks, and the recolouring of the interval and
// tweet maps by the words visible in the word map.
#include <QWidget>

#include "app/cluster_explorer_page.h"
#include "app/cluster_links.h"
#include "app/cluster_map_panel.h"

namespace sylvora::app {

void ClusterExplorerPage::ConnectMaps() {
  PointMap2D& words = Map(MapKind::kWords);
  PointMap2D& intervals = Map(MapKind::kIntervals);
  PointMap2D& tweets = Map(MapKind::kTweets);
  connect(&words, &PointMap2D::OnNewNodeOver, this, &ClusterExplorerPage::TermSimVis_OnNewNodeOver);
  connect(&words, &PointMap2D::OnNodeClick, this, &ClusterExplorerPage::TermSimVis_OnNodeClick);
  connect(&words, &PointMap2D::ViewChanged, this, &ClusterExplorerPage::TermSimVis_ViewChanged);
  connect(&intervals, &PointMap2D::OnNewNodeOver, this, &ClusterExplorerPage::ISVis_OnNewNodeOver);
  connect(&intervals, &PointMap2D::OnNodeClick, this, &ClusterExplorerPage::ISVis_OnNodeClick);
  connect(&intervals, &PointMap2D::ViewChanged, this, [this] { activeMap_ = MapKind::kIntervals; });
  connect(&tweets, &PointMap2D::OnNewNodeOver, this,
          &ClusterExplorerPage::TweetSimVis_OnNewNodeOver);
  connect(&tweets, &PointMap2D::OnNodeClick, this, &ClusterExplorerPage::TweetSimVis_OnNodeClick);
  connect(&tweets, &PointMap2D::SelectionEnded, this,
          &ClusterExplorerPage::TweetSimVis_ViewChanged);
  connect(&tweets, &PointMap2D::ViewChanged, this, &ClusterExplorerPage::TweetSimVis_ViewChanged);
  // Back and Forward change the view without the map's ViewChanged.
  connect(&Panel(MapKind::kWords), &ClusterMapPanel::viewRestored, this,
          &ClusterExplorerPage::TermSimVis_ViewChanged);
  connect(&Panel(MapKind::kTweets), &ClusterMapPanel::viewRestored, this,
          &ClusterExplorerPage::TweetSimVis_ViewChanged);
}

void ClusterExplorerPage::TermSimVis_OnNewNodeOver(int node) {
  activeMap_ = MapKind::kWords;
  SetSurfaceToolTip(MapKind::kWords, Map(MapKind::kWords).NodeLabel(node));
}

void ClusterExplorerPage::TermSimVis_OnNodeClick(int node) {
  if (!SessionReadable() || node < 0 || node >= Map(MapKind::kWords).NodeCount()) return;
  emit wordChosen(node + 1, 1, services_.session.WordModel().IntervalCount());
}

void ClusterExplorerPage::SelectWord(const QString& term) {
  PointMap2D& words = Map(MapKind::kWords);
  if (!words.IsSet() || !SessionReadable()) return;
  const std::int32_t index = services_.session.WordIndex().TermIndex(term.toStdString());
  const std::int32_t node = index - 1;
  // A map laid out before a new index holds other words under the same numbers.
  if (index < 1 || node >= words.NodeCount() || words.NodeLabel(node) != term) return;
  words.SetSelectedNode(node);
}

void ClusterExplorerPage::TermSimVis_ViewChanged() {
  activeMap_ = MapKind::kWords;
  RecolourByVisibleWords();
}

void ClusterExplorerPage::ISVis_OnNewNodeOver(int node) {
  activeMap_ = MapKind::kIntervals;
  if (node < 0 || !SessionReadable()) {
    SetSurfaceToolTip(MapKind::kIntervals, {});
    return;
  }
  const std::int32_t interval = node + 1;
  Session& session = services_.session;
  SetSurfaceToolTip(MapKind::kIntervals,
                    IntervalTooltip(session.WordModel(), session.WordIndex(), interval));
  emit intervalHovered(interval);
}

void ClusterExplorerPage::ISVis_OnNodeClick(int node) {
  if (!SessionReadable() || node < 0 || node >= services_.session.WordModel().IntervalCount()) {
    return;
  }
  selectedInterval_ = node + 1;
  PointMap2D& intervals = Map(MapKind::kIntervals);
  if (node < intervals.NodeCount()) intervals.SetSelectedNode(node);
  emit intervalSelected(selectedInterval_);
  Request request;
  request.interval = selectedInterval_;
  RequestBuild(MapKind::kTweets, request);
}

void ClusterExplorerPage::TweetSimVis_OnNewNodeOver(int node) {
  activeMap_ = MapKind::kTweets;
  const ClusterMap* data = Panel(MapKind::kTweets).Data();
  if (node < 0 || data == nullptr || node >= data->NodeCount() || !SessionReadable()) {
    SetSurfaceToolTip(MapKind::kTweets, {});
    return;
  }
  const DocumentSet& documents = services_.session.Documents();
  SetSurfaceToolTip(MapKind::kTweets, QString::fromStdString(documents.Text(
                                          data->firstDocument + node, documents.ContentField())));
}

void ClusterExplorerPage::TweetSimVis_OnNodeClick(int node) {
  const ClusterMap* data = Panel(MapKind::kTweets).Data();
  if (node < 0 || data == nullptr || node >= data->NodeCount()) return;
  emit tweetChosen(data->firstDocument + node);
}

void ClusterExplorerPage::TweetSimVis_ViewChanged() {
  activeMap_ = MapKind::kTweets;
  EmitVisibleTweets();
}

void ClusterExplorerPage::EmitVisibleTweets() {
  const PointMap2D& map = Map(MapKind::kTweets);
  const ClusterMap* data = Panel(MapKind::kTweets).Data();
  if (data == nullptr || !map.IsSet()) return;
  QVector<int> rows;
  for (std::int32_t node = 0; node < map.NodeCount(); ++node) {
    if (map.NodeVisible(node)) rows.push_back(data->firstDocument + node);
  }
  emit tweetsShown(rows);
}

void ClusterExplorerPage::SelectInterval(int interval) {
  PointMap2D& map = Map(MapKind::kIntervals);
  selectedInterval_ = interval;
  if (map.IsSet()) map.SetSelectedNode(interval - 1);
}

void ClusterExplorerPage::HoverInterval(int interval) {
  PointMap2D& map = Map(MapKind::kIntervals);
  if (map.IsSet()) map.SetHoverNode(interval - 1);
}

void ClusterExplorerPage::RecolourByVisibleWords() {
  if (!SessionReadable()) return;
  const PointMap2D& wordMap = Map(MapKind::kWords);
  const TermDocumentMatrix& index = services_.session.WordIndex();
  const TextStream& model = services_.session.WordModel();
  // A word map of an earlier index says nothing about this one.
  if (!wordMap.IsSet() || wordMap.NodeCount() != index.TermCount()) return;
  std::int32_t visibleCount = 0;
  const std::vector<bool> visible = VisibleTerms(wordMap, visibleCount);
  if (visibleCount == 0) return;

  PointMap2D& intervals = Map(MapKind::kIntervals);
  if (intervals.IsSet() && intervals.NodeCount() == model.IntervalCount()) {
    const std::vector<std::int32_t> counts = VisibleWordsPerInterval(model, visible);
    SetVisibleWordGradient(intervals);
    for (std::int32_t k = 1; k <= model.IntervalCount(); ++k) {
      intervals.SetNodeCluster(k - 1,
                               GradientEntry(counts[static_cast<std::size_t>(k)], visibleCount));
    }
    intervals.RenderView(true, false);
  }

  PointMap2D& tweets = Map(MapKind::kTweets);
  const ClusterMap* data = Panel(MapKind::kTweets).Data();
  if (tweets.IsSet() && data != nullptr &&
      data->firstDocument + tweets.NodeCount() <= index.DocCount()) {
    const std::vector<std::int32_t> counts =
        VisibleWordsPerDocument(index, data->firstDocument, tweets.NodeCount(), visible);
    SetVisibleWordGradient(tweets);
    for (std::int32_t node = 0; node < tweets.NodeCount(); ++node) {
      tweets.SetNodeCluster(node,
                            GradientEntry(counts[static_cast<std::size_t>(node)], visibleCount));
    }
    tweets.RenderView(true, false);
  }
}

}  // namespace sylvora::app
