// The cluster explorer's map builds: queued requests, one job at a time on the window's
// JobRunner, and the hand-over of a laid-out map to its panel.
#include <QRadioButton>
#include <QSlider>
#include <QWidget>

#include "app/cluster_explorer_page.h"
#include "app/cluster_map_panel.h"
#include "app/job_runner.h"
#include "app/platform.h"
#include "views/session_views.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<MapKind, 3> kBuildOrder = {MapKind::kIntervals, MapKind::kWords,
                                                MapKind::kTweets};

QString JobName(MapKind kind) {
  switch (kind) {
    case MapKind::kWords:
      return u"Word map"_s;
    case MapKind::kIntervals:
      return u"Interval map"_s;
    case MapKind::kTweets:
      return u"Tweet map"_s;
  }
  return {};
}

}  // namespace

MapOptions ClusterExplorerPage::Options() const {
  MapOptions options;
  if (graphvizFolder_) options.graphvizFolder = graphvizFolder_().toStdString();
  options.timeLimitMs = timeLimitMs_;
  return options;
}

bool ClusterExplorerPage::Building() const {
  if (ownJobRunning_) return true;
  for (const Request& request : requests_) {
    if (request.pending) return true;
  }
  return false;
}

bool ClusterExplorerPage::SessionReadable() const {
  return !services_.jobs.Busy() || ownJobRunning_;
}

void ClusterExplorerPage::RequestBuild(MapKind kind, const Request& request) {
  Request& slot = requests_[static_cast<std::size_t>(kind)];
  slot = request;
  slot.pending = true;
  if (!request.caption.isEmpty()) {
    if (!captionShown_) {
      usualCaption_ = window()->windowTitle();
      captionShown_ = true;
    }
  }
  StartPending();
}

void ClusterExplorerPage::StartPending() {
  if (services_.jobs.Busy()) return;
  for (const MapKind kind : kBuildOrder) {
    Request& slot = requests_[static_cast<std::size_t>(kind)];
    if (!slot.pending) continue;
    const Request request = slot;
    slot.pending = false;
    StartBuild(kind, request);
    return;
  }
}

void ClusterExplorerPage::StartBuild(MapKind kind, const Request& request) {
  const Session& session = services_.session;
  const MapOptions options = Options();
  auto built = std::make_shared<std::unique_ptr<ClusterMap>>(std::make_unique<ClusterMap>());
  auto report = std::make_shared<MapReport>();
  const JobRunner::Work work = [&session, kind, request, options, built,
                                report](const ProgressCallback& progress) {
    // Failures are told by the page when the job ends (and for the word and tweet maps not
    // in a box at all), not by the layout on its way.
    SilentNotifier silent;
    ClusterMap& map = **built;
    switch (kind) {
      case MapKind::kWords:
        *report = BuildWordMap(session.WordIndex(), &session.WordModel(), request.level, options,
                               map, silent, progress);
        break;
      case MapKind::kIntervals:
        *report = BuildIntervalMap(session.WordModel(), options, map, silent, progress);
        break;
      case MapKind::kTweets:
        *report = BuildTweetMap(session.WordIndex(), session.WordModel(), request.interval, options,
                                map, silent, progress);
        break;
    }
  };
  const JobRunner::Done done = [this, kind, request, built, report](bool cancelled) {
    FinishBuild(kind, request, cancelled, std::move(*built), *report);
  };
  if (!services_.jobs.Start(JobName(kind), work, done)) {
    // Someone else's job got there first: wait for it.
    requests_[static_cast<std::size_t>(kind)] = request;
    requests_[static_cast<std::size_t>(kind)].pending = true;
    return;
  }
  ownJobRunning_ = true;
  if (!request.caption.isEmpty()) emit captionChanged(request.caption);
  ClusterMapPanel& panel = Panel(kind);
  if (QWidget* surface = panel.Surface()) surface->setCursor(Qt::BusyCursor);
  panel.SetStatus({});
  if (kind == MapKind::kTweets) {
    // The interval map rests while one of its intervals is being mapped.
    if (QWidget* surface = Panel(MapKind::kIntervals).Surface()) surface->setEnabled(false);
  }
}

void ClusterExplorerPage::FinishBuild(MapKind kind, const Request& request, bool cancelled,
                                      std::unique_ptr<ClusterMap> built, const MapReport& report) {
  ownJobRunning_ = false;
  ClusterMapPanel& panel = Panel(kind);
  if (QWidget* surface = panel.Surface()) surface->unsetCursor();
  if (kind == MapKind::kTweets) {
    if (QWidget* surface = Panel(MapKind::kIntervals).Surface()) surface->setEnabled(true);
  }
  const bool shown = report.built && !cancelled && built != nullptr;
  if (shown) {
    if (kind == MapKind::kWords) level_ = request.level;
    panel.SetData(std::move(built));
    ShowMap(kind);
    panel.SetStatus(QString::fromStdString(report.warning));
  } else {
    const bool stopped = cancelled || report.cancelled;
    QString why = stopped ? u"Cancelled"_s : QString::fromStdString(report.error);
    if (panel.Data() != nullptr) why += u" (the map shows its earlier layout)"_s;
    panel.SetStatus(why);
    if (stopped) {
      // Not built: the next visit tries again.
      if (request.lazy && kind == MapKind::kWords) wordMapStale_ = true;
      if (request.lazy && kind == MapKind::kIntervals) intervalMapStale_ = true;
    } else if (kind == MapKind::kIntervals) {
      services_.platform.ShowMessage(
          QString::fromUtf8(kIntervalMapFailure.data(),
                            static_cast<qsizetype>(kIntervalMapFailure.size())),
          kProgramTitle, MessageIcon::kNone);
    }
  }
  if (!Building()) RestoreCaption();
  emit mapFinished(static_cast<int>(kind), shown);
}

void ClusterExplorerPage::ShowMap(MapKind kind) {
  ClusterMapPanel& panel = Panel(kind);
  PointMap2D& map = panel.Map();
  const ClusterMap* data = panel.Data();
  if (data == nullptr) return;
  switch (kind) {
    case MapKind::kWords: {
      // A first look labels a readable handful of the heaviest words; the slider moves on.
      const std::int16_t start = FirstLookLabelThreshold(data->weights);
      {
        const QSignalBlocker block(termLabelThresh_);
        termLabelThresh_->setRange(0, std::max<int>(kLabelSliderMax, start));
        termLabelThresh_->setValue(start);
      }
      TermLabelThresh_Change(start);
      ShowWordMap(map, *data, start);
      const int option = level_ == WordMapLevel::kInterval ? 1 : 0;
      featureType_[static_cast<std::size_t>(option)]->setChecked(true);
      break;
    }
    case MapKind::kIntervals:
      ShowClusterMap(map, *data);
      break;
    case MapKind::kTweets:
      ShowClusterMap(map, *data);
      // Tweets are numbered "1".."n" but not labelled on the map: hundreds of numbers would
      // hide the nodes. The tooltip gives each tweet's text.
      map.SetShowNodeLabels(false);
      map.RenderView(true, false);
      break;
  }
  map.SetHoverNode(-1);
  map.SetSelectedNode(kind == MapKind::kIntervals ? selectedInterval_ - 1 : -1);
  panel.ViewsReset();
  if (kind == MapKind::kTweets) RecolourByVisibleWords();
}

}  // namespace sylvora::app
