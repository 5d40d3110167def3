// The cluster explorer in the window over a generated "Twitter1.1" corpus of 100,000 tweets
// whose word index is padded to 2,000 or 5,000 terms (as the session's map benchmark pads it:
// five made-up words per tweet from topic groups of twenty). Loading, indexing and the
// interval models (six-hour intervals) happen once per size, outside the timings; the first
// visit to the tab builds the interval and word maps with the real sfdp (Graphviz from PATH),
// then the tweet map of the busiest interval of at most 2,000 tweets. Every wait has a limit
// (SYLVORA_BENCH_WAIT_S, default 300 s): past it the job is cancelled and the benchmark fails
// with what it waited for and the job's stage; the set-up's steps are noted on stderr.
//
//  * BM_WordMapShown: "Tweet" level pressed again: similarity, spanning tree, sfdp and drawing
//    until the map is shown, through the job runner; a 16 ms timer repaints the window
//    meanwhile and records the longest gap the user-interface thread left (ui_gap_ms).
//  * BM_HoverAndClick: the pointer moved onto a word node (the node search, the overlay, the
//    tooltip), then the click on it (the message list filled with the word's tweets), each
//    with the painting it causes; the interval map's hover (two best terms by weighted
//    z-score over every term). Milliseconds per event, mean and worst.
//  * BM_Recolour: the word map zoomed to its middle quarter, both other maps recoloured and
//    redrawn (the tweet map of the set-up).
//  * BM_RelatedTerms: the "Related Words" list of the most frequent word, both sources, first
//    query (with the transposed copy of the source) and a repeated one.
// Size via SYLVORA_BENCH_MAP_TWEETS (default 100,000). Run one size per process
// (--benchmark_filter=.*/2000) for its own peak memory.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QTabWidget>
#include <QTimer>

#include "app/cluster_explorer_page.h"
#include "app/cluster_map_panel.h"
#include "app/console_platform.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "app/related_terms.h"
#include "app/related_terms_model.h"
#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "layout/layout_folder.h"
#include "padded_word_index.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "support/peak_memory.h"

namespace {

using sylvora::MapKind;
using sylvora::app::ClusterExplorerPage;

// Six-hour intervals: 72 over the corpus's 18 days, quiet ones under 2,000 tweets at 100,000.
constexpr const char* kIntervalHours = "6";

std::size_t TweetCount() {
  return sylvora::bench::TweetCountFromEnvironment("SYLVORA_BENCH_MAP_TWEETS", 100'000);
}

std::string CorpusFile() {
  using sylvora::bench::CorpusFormat;
  return sylvora::bench::CachedCorpusFile(CorpusFormat::kTwitter11, TweetCount());
}

std::unique_ptr<QApplication>& ApplicationSlot() {
  static std::unique_ptr<QApplication> application;
  return application;
}

QApplication& Application() {
  static int argc = 1;
  static char name[] = "sylvora_app_cluster_bench";
  static char* argv[] = {name, nullptr};
  std::unique_ptr<QApplication>& application = ApplicationSlot();
  if (!application) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application = std::make_unique<QApplication>(argc, argv);
  }
  return *application;
}

// The longest wait for one build (SYLVORA_BENCH_WAIT_S, default 300 s).
qint64 WaitLimitMs() {
  const char* text = std::getenv("SYLVORA_BENCH_WAIT_S");
  const long long seconds = text != nullptr ? std::strtoll(text, nullptr, 10) : 300;
  return std::max(1LL, seconds) * 1000;
}

// Processor time of the calling thread in milliseconds.
double ThreadCpuMs() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

void Note(const std::string& text) {
  std::fprintf(stderr, "[cluster bench] %s\n", text.c_str());
  std::fflush(stderr);
}

// Runs events until the job runner and the page are idle. After the time limit the running
// job is cancelled (and given 30 s to stop) and the answer is a message naming what was
// awaited and the stage it was in; empty when everything ended in time.
std::string WaitIdle(sylvora::app::Main& window, const std::string& what) {
  const auto busy = [&window] {
    return window.Jobs().Busy() || window.ClusterExplorer().Building();
  };
  QElapsedTimer clock;
  clock.start();
  const qint64 limit = WaitLimitMs();
  while (busy()) {
    if (clock.elapsed() > limit) {
      const std::string stage =
          window.findChild<QLabel*>(QStringLiteral("JobStage"))->text().toStdString();
      window.Jobs().Cancel();
      QElapsedTimer cancelClock;
      cancelClock.start();
      while (window.Jobs().Busy() && cancelClock.elapsed() < 30'000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
      }
      return "timed out after " + std::to_string(limit / 1000) + " s waiting for " + what +
             " (stage '" + stage + "'" +
             (window.Jobs().Busy() ? ", and the job did not stop when cancelled)" : ", cancelled)");
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
  }
  return {};
}

// The tweet map compares every tweet of its interval with every other twice (second-order
// similarity): its cost grows with the cube of the interval's size. The busiest day of 100,000
// tweets holds over 20,000 of them, hours of work; the window warns above 2,000 tweets per
// interval, so the bench maps the busiest interval within that bound.
constexpr int kTweetMapMaxTweets = 2000;

int TweetMapInterval(const sylvora::TextStream& model) {
  int chosen = 0;
  for (int k = 1; k <= model.IntervalCount(); ++k) {
    const auto tweets = model.IntervalDocCount(k);
    if (tweets < 2 || tweets > kTweetMapMaxTweets) continue;
    if (chosen == 0 || tweets > model.IntervalDocCount(chosen)) chosen = k;
  }
  return chosen;
}

// A window whose session holds the padded corpus, its indexes and models, with the word and
// interval maps built and the tweet map of one interval (TweetMapInterval).
struct Explorer {
  sylvora::app::ConsolePlatform platform;
  std::unique_ptr<sylvora::app::Main> window;
  std::string error;
  double firstVisitSeconds = 0.0;
  int tweetInterval = 0;

  ClusterExplorerPage& Page() { return window->ClusterExplorer(); }
  sylvora::Session& Session() { return window->CurrentSession(); }
};

// The prepared windows by word count; main closes them before the application ends (Qt's own
// globals, such as the font database, are gone by the time statics are destroyed).
std::map<int, std::unique_ptr<Explorer>>& Explorers() {
  static std::map<int, std::unique_ptr<Explorer>> explorers;
  return explorers;
}

Explorer& Prepare(int wanted) {
  Application();
  auto& slot = Explorers()[wanted];
  if (slot) return *slot;
  slot = std::make_unique<Explorer>();
  Explorer& e = *slot;
  Application();
  sylvora::app::StartupEnvironment environment;
  environment.configFolder = QString::fromStdString(
      (std::filesystem::temp_directory_path() / "sylvora-bench-config").string());
  environment.programFolder = QString::fromStdString(std::string(SYLVORA_SOURCE_DIR) + "/data");
  e.window = std::make_unique<sylvora::app::Main>(e.platform, environment);
  e.window->resize(1280, 800);
  e.window->show();
  e.window->LoadIndex().SetPaths({QString::fromStdString(sylvora::bench::StopListPath()),
                                  QString::fromStdString(sylvora::DefaultGraphvizFolder())});
  const int base = sylvora::bench::BaseTermCount(CorpusFile());
  if (base < 0 || base > wanted) {
    e.error = "the corpus could not be indexed, or it has too many terms already";
    return e;
  }
  Note("loading and indexing " + std::to_string(TweetCount()) + " tweets padded to " +
       std::to_string(wanted) + " words");
  if (!sylvora::bench::LoadAndIndexPadded(e.Session(), CorpusFile(), wanted - base, e.error))
    return e;
  sylvora::ModelOptions options;
  options.intervalLength = kIntervalHours;
  sylvora::SilentNotifier silent;
  const auto models = sylvora::BuildModels(e.Session(), options, silent);
  if (!models.built) {
    e.error = "no models: " + models.error;
    return e;
  }
  QElapsedTimer clock;
  clock.start();
  Note("first visit: interval and word maps of " +
       std::to_string(e.Session().WordIndex().TermCount()) + " words over " +
       std::to_string(e.Session().WordModel().IntervalCount()) + " intervals");
  e.Page().ModelsRebuilt();
  e.window->Tabs().setCurrentWidget(&e.Page());
  e.error = WaitIdle(*e.window, "the first visit's interval and word maps");
  if (!e.error.empty()) return e;
  e.firstVisitSeconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
  if (!e.Page().Map(MapKind::kWords).IsSet() || !e.Page().Map(MapKind::kIntervals).IsSet()) {
    e.error = "the maps were not built: " + e.Page().Panel(MapKind::kWords).Status().toStdString() +
              " / " + e.Page().Panel(MapKind::kIntervals).Status().toStdString();
    return e;
  }
  e.tweetInterval = TweetMapInterval(e.Session().WordModel());
  if (e.tweetInterval < 1) {
    e.error = "no interval holds between 2 and " + std::to_string(kTweetMapMaxTweets) + " tweets";
    return e;
  }
  Note("tweet map of interval " + std::to_string(e.tweetInterval) + " (" +
       std::to_string(e.Session().WordModel().IntervalDocCount(e.tweetInterval)) + " tweets)");
  e.Page().ISVis_OnNodeClick(e.tweetInterval - 1);
  e.error = WaitIdle(*e.window, "the tweet map");
  if (!e.error.empty()) return e;
  if (!e.Page().Map(MapKind::kTweets).IsSet()) {
    e.error =
        "the tweet map was not built: " + e.Page().Panel(MapKind::kTweets).Status().toStdString();
  }
  Note("ready");
  return e;
}

void Common(benchmark::State& state, Explorer& e) {
  state.counters["tweets"] = e.Session().Documents().DocumentCount();
  state.counters["terms"] = e.Session().WordIndex().TermCount();
  state.counters["intervals"] = e.Session().WordModel().IntervalCount();
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}

void BM_WordMapShown(benchmark::State& state) {
  Explorer& e = Prepare(static_cast<int>(state.range(0)));
  if (!e.error.empty()) {
    state.SkipWithError(e.error.c_str());
    return;
  }
  double longestGapMs = 0.0;
  for (auto _ : state) {
    QElapsedTimer sinceRepaint;
    QTimer repaint;
    QObject::connect(&repaint, &QTimer::timeout, e.window.get(), [&] {
      longestGapMs = std::max(longestGapMs, static_cast<double>(sinceRepaint.nsecsElapsed()) / 1e6);
      e.window->repaint();
      sinceRepaint.restart();
    });
    sinceRepaint.start();
    repaint.start(16);
    e.Page().FeatureType_Click(0);
    const std::string waited = WaitIdle(*e.window, "the word map");
    repaint.stop();
    if (!waited.empty()) {
      state.SkipWithError(waited.c_str());
      break;
    }
    if (!e.Page().Panel(MapKind::kWords).Status().isEmpty()) {
      state.SkipWithError(qPrintable(e.Page().Panel(MapKind::kWords).Status()));
    }
  }
  Common(state, e);
  state.counters["first_visit_s"] = e.firstVisitSeconds;
  state.counters["ui_gap_ms"] = std::max(0.0, longestGapMs - 16.0);
}
BENCHMARK(BM_WordMapShown)->Arg(2000)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

void BM_HoverAndClick(benchmark::State& state) {
  Explorer& e = Prepare(static_cast<int>(state.range(0)));
  if (!e.error.empty()) {
    state.SkipWithError(e.error.c_str());
    return;
  }
  sylvora::PointMap2D& words = e.Page().Map(MapKind::kWords);
  sylvora::PointMap2D& intervals = e.Page().Map(MapKind::kIntervals);
  // Each event with the painting it causes (the events that follow run before the clock stops).
  // Wall time and this thread's processor time (the machine may be shared: the processor
  // time is what the event costs, the wall time what the user waited).
  struct Timing {
    double total = 0.0;
    double worst = 0.0;
    double cpu = 0.0;
    std::int64_t events = 0;
    double cpuStart = 0.0;
    void Start(QElapsedTimer& clock) {
      cpuStart = ThreadCpuMs();
      clock.restart();
    }
    void Add(const QElapsedTimer& clock) {
      const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
      cpu += ThreadCpuMs() - cpuStart;
      worst = std::max(worst, ms);
      total += ms;
      ++events;
    }
    double Mean() const { return events > 0 ? total / static_cast<double>(events) : 0.0; }
    double CpuMean() const { return events > 0 ? cpu / static_cast<double>(events) : 0.0; }
  };
  // The events an event posts (a list's delayed layout, repaints) belong to it.
  const auto settle = [] {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
  };
  Timing hover, click, intervalHover;
  std::mt19937 random(11);
  for (auto _ : state) {
    const int node = static_cast<int>(random() % static_cast<unsigned>(words.NodeCount()));
    const QPointF at = words.ToPixels(words.NodeX(node), words.NodeY(node));
    QElapsedTimer clock;
    clock.start();
    hover.Start(clock);
    words.MouseMove(Qt::NoButton, at);
    settle();
    hover.Add(clock);
    click.Start(clock);
    words.MousePress(Qt::LeftButton, at);
    words.MouseRelease(Qt::LeftButton, at);
    settle();
    click.Add(clock);

    const int interval = static_cast<int>(random() % static_cast<unsigned>(intervals.NodeCount()));
    intervalHover.Start(clock);
    e.Page().ISVis_OnNewNodeOver(interval);
    intervalHover.Add(clock);
  }
  Common(state, e);
  state.counters["word_hover_cpu_ms"] = hover.CpuMean();
  state.counters["word_click_cpu_ms"] = click.CpuMean();
  state.counters["word_hover_ms"] = hover.Mean();
  state.counters["word_hover_worst_ms"] = hover.worst;
  state.counters["word_click_ms"] = click.Mean();
  state.counters["word_click_worst_ms"] = click.worst;
  state.counters["interval_hover_ms"] = intervalHover.Mean();
  state.counters["interval_worst_ms"] = intervalHover.worst;
}
BENCHMARK(BM_HoverAndClick)->Arg(2000)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(200);

void BM_Recolour(benchmark::State& state) {
  Explorer& e = Prepare(static_cast<int>(state.range(0)));
  if (!e.error.empty()) {
    state.SkipWithError(e.error.c_str());
    return;
  }
  sylvora::PointMap2D& words = e.Page().Map(MapKind::kWords);
  const auto home = words.HomeView();
  const float w = (home.right - home.left) / 4.0f;
  const float h = (home.bottom - home.top) / 4.0f;
  words.SetView({home.left + w, home.right - w, home.top + h, home.bottom - h});
  int visible = 0;
  for (int node = 0; node < words.NodeCount(); ++node) visible += words.NodeVisible(node);
  for (auto _ : state) {
    e.Page().TermSimVis_ViewChanged();
    benchmark::DoNotOptimize(e.Page().Map(MapKind::kIntervals).NodeCluster(0));
  }
  words.SetView(home);
  Common(state, e);
  state.counters["visible_words"] = visible;
  state.counters["tweet_nodes"] = e.Page().Map(MapKind::kTweets).NodeCount();
  state.counters["tweet_interval"] = e.tweetInterval;
}
BENCHMARK(BM_Recolour)->Arg(2000)->Arg(5000)->Unit(benchmark::kMillisecond);

void BM_RelatedTerms(benchmark::State& state) {
  Explorer& e = Prepare(static_cast<int>(state.range(0)));
  if (!e.error.empty()) {
    state.SkipWithError(e.error.c_str());
    return;
  }
  const sylvora::TermDocumentMatrix& index = e.Session().WordIndex();
  int frequent = 1;
  for (int t = 1; t <= index.TermCount(); ++t) {
    if (index.DocFreq(t) > index.DocFreq(frequent)) frequent = t;
  }
  const QString term = QString::fromStdString(index.Term(frequent));
  sylvora::app::RelatedTerms& related = e.window->RelatedWords();
  double coldMs = 0.0;
  double warmMs = 0.0;
  int rows = 0;
  for (auto _ : state) {
    for (const int source :
         {sylvora::app::RelatedTerms::kSameTweet, sylvora::app::RelatedTerms::kSameInterval}) {
      state.PauseTiming();
      related.SourcesChanged();
      state.ResumeTiming();
      QElapsedTimer clock;
      clock.start();
      related.FeatureType_Click(source);
      related.ShowRelatedTerms(e.Session(), term);
      coldMs = std::max(coldMs, static_cast<double>(clock.nsecsElapsed()) / 1e6);
      clock.restart();
      related.ShowRelatedTerms(e.Session(), term);
      warmMs = std::max(warmMs, static_cast<double>(clock.nsecsElapsed()) / 1e6);
      rows = related.Model().rowCount();
    }
  }
  Common(state, e);
  state.counters["rows"] = rows;
  state.counters["first_query_worst_ms"] = coldMs;
  state.counters["repeat_query_worst_ms"] = warmMs;
}
BENCHMARK(BM_RelatedTerms)->Arg(2000)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  Explorers().clear();
  ApplicationSlot().reset();
  return 0;
}
