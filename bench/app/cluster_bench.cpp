// The cluster explorer in the window over a generated "Twitter1.1" corpus of 100,000 tweets
// whose word index is padded to 2,000 or 5,000 terms (as the session's map benchmark pads it:
// five made-up words per tweet from topic groups of twenty). Loading, indexing and the
// interval models happen once per size, outside the timings; the first visit to the tab
// builds the interval and word maps with the real sfdp (Graphviz from PATH).
//
//  * BM_WordMapShown: "Tweet" level pressed again: similarity, spanning tree, sfdp and drawing
//    until the map is shown, through the job runner; a 16 ms timer repaints the window
//    meanwhile and records the longest gap the user-interface thread left (ui_gap_ms).
//  * BM_HoverAndClick: the pointer moved onto a word node (the node search, the overlay, the
//    tooltip) and the click on it; the interval map's hover (two best terms by weighted
//    z-score over every term). Milliseconds per event, mean and worst.
//  * BM_Recolour: the word map zoomed to its middle quarter, both other maps recoloured and
//    redrawn (the tweet map of the busiest interval).
//  * BM_RelatedTerms: the "Related Words" list of the most frequent word, both sources, first
//    query (with the transposed copy of the source) and a repeated one.
// Size via SYLVORA_BENCH_MAP_TWEETS (default 100,000). Run one size per process
// (--benchmark_filter=.*/2000) for its own peak memory.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
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
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "support/peak_memory.h"

namespace {

using sylvora::MapKind;
using sylvora::app::ClusterExplorerPage;

constexpr std::int32_t kMinDocFrequency = 20;
constexpr int kGroupSize = 20;
constexpr int kWordsPerTweet = 5;

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_MAP_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 100'000;
}

std::string CorpusFile() {
  const std::size_t tweets = TweetCount();
  const auto file = std::filesystem::temp_directory_path() /
                    ("sylvora-bench-" + std::to_string(tweets) + "_twitter11.txt");
  if (!std::filesystem::exists(file)) {
    sylvora::bench::WriteSyntheticCorpus(sylvora::bench::CorpusFormat::kTwitter11, file, tweets);
  }
  return file.string();
}

std::string StopList() { return std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt"; }

// Word j of the made-up vocabulary: letters only, unchanged by the stemmer, no stop word.
std::string MadeUpWord(int j) {
  static constexpr const char kFirst[] = "bdfghjklmnprstvw";
  static constexpr const char* kSyllables[] = {"ba", "de", "gi", "ko", "mu",
                                               "pa", "ri", "su", "ta", "vo"};
  std::string word(1, kFirst[j % 16]);
  word += "o";
  for (int digit = 0, rest = j / 16; digit < 3; ++digit, rest /= 10) word += kSyllables[rest % 10];
  return word + "k";
}

bool LoadAndIndex(sylvora::Session& session, int madeUpWords, std::string& error) {
  sylvora::LoadOptions load;
  load.path = CorpusFile();
  const auto loaded = sylvora::LoadCorpus(session, load, sylvora::DefaultNotifier());
  if (!loaded.loaded) {
    error = loaded.error;
    return false;
  }
  auto& documents = session.Documents();
  const sylvora::FieldIndex content = documents.ContentField();
  const int groups = (madeUpWords + kGroupSize - 1) / kGroupSize;
  if (groups > 0) {
    std::mt19937_64 random(7);
    for (sylvora::DocIndex d = 0; d < documents.DocumentCount(); ++d) {
      const int group = static_cast<int>(random() % static_cast<std::uint64_t>(groups));
      std::string text(documents.Text(d, content));
      for (int w = 0; w < kWordsPerTweet; ++w) {
        const int size = std::min(kGroupSize, madeUpWords - group * kGroupSize);
        const int inGroup = static_cast<int>(random() % static_cast<std::uint64_t>(size));
        text += " " + MadeUpWord(group * kGroupSize + inGroup);
      }
      documents.SetText(d, content, text);
    }
  }
  sylvora::IndexOptions options;
  options.stopListPath = StopList();
  options.minDocFrequency = kMinDocFrequency;
  const auto report = sylvora::BuildIndexes(session, options);
  if (!report.indexed) error = report.error;
  return report.indexed;
}

int BaseTermCount() {
  static const int count = [] {
    sylvora::Session session;
    std::string error;
    return LoadAndIndex(session, 0, error) ? session.WordIndex().TermCount() : -1;
  }();
  return count;
}

QApplication& Application() {
  static int argc = 1;
  static char name[] = "sylvora_app_cluster_bench";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QApplication> application;
  if (!application) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application = std::make_unique<QApplication>(argc, argv);
  }
  return *application;
}

void WaitIdle(sylvora::app::Main& window) {
  while (window.Jobs().Busy() || window.ClusterExplorer().Building()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
  }
}

// A window whose session holds the padded corpus, its indexes and models, with the word and
// interval maps built and the tweet map of the busiest interval.
struct Explorer {
  sylvora::app::ConsolePlatform platform;
  std::unique_ptr<sylvora::app::Main> window;
  std::string error;
  double firstVisitSeconds = 0.0;

  ClusterExplorerPage& Page() { return window->ClusterExplorer(); }
  sylvora::Session& Session() { return window->CurrentSession(); }
};

Explorer& Prepare(int wanted) {
  static std::map<int, std::unique_ptr<Explorer>> explorers;
  auto& slot = explorers[wanted];
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
  e.window->LoadIndex().SetPaths({QString::fromStdString(StopList()),
                                  QString::fromStdString(sylvora::DefaultGraphvizFolder())});
  const int base = BaseTermCount();
  if (base < 0 || base > wanted) {
    e.error = "the corpus could not be indexed, or it has too many terms already";
    return e;
  }
  if (!LoadAndIndex(e.Session(), wanted - base, e.error)) return e;
  sylvora::ModelOptions options;
  options.intervalLength = "24";
  sylvora::SilentNotifier silent;
  const auto models = sylvora::BuildModels(e.Session(), options, silent);
  if (!models.built) {
    e.error = "no models: " + models.error;
    return e;
  }
  QElapsedTimer clock;
  clock.start();
  e.Page().ModelsRebuilt();
  e.window->Tabs().setCurrentWidget(&e.Page());
  WaitIdle(*e.window);
  e.firstVisitSeconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
  if (!e.Page().Map(MapKind::kWords).IsSet() || !e.Page().Map(MapKind::kIntervals).IsSet()) {
    e.error = "the maps were not built";
    return e;
  }
  const sylvora::TextStream& model = e.Session().WordModel();
  int busiest = 1;
  for (int k = 1; k <= model.IntervalCount(); ++k) {
    if (model.IntervalDocCount(k) > model.IntervalDocCount(busiest)) busiest = k;
  }
  e.Page().ISVis_OnNodeClick(busiest - 1);
  WaitIdle(*e.window);
  if (!e.Page().Map(MapKind::kTweets).IsSet()) e.error = "the tweet map was not built";
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
    WaitIdle(*e.window);
    repaint.stop();
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
  double wordWorst = 0.0, wordTotal = 0.0, intervalWorst = 0.0, intervalTotal = 0.0;
  std::int64_t wordEvents = 0, intervalEvents = 0;
  std::mt19937 random(11);
  for (auto _ : state) {
    const int node = static_cast<int>(random() % static_cast<unsigned>(words.NodeCount()));
    const QPointF at = words.ToPixels(words.NodeX(node), words.NodeY(node));
    QElapsedTimer clock;
    clock.start();
    words.MouseMove(Qt::NoButton, at);
    words.MousePress(Qt::LeftButton, at);
    words.MouseRelease(Qt::LeftButton, at);
    QCoreApplication::processEvents();
    const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    wordWorst = std::max(wordWorst, ms);
    wordTotal += ms;
    ++wordEvents;

    const int interval = static_cast<int>(random() % static_cast<unsigned>(intervals.NodeCount()));
    clock.restart();
    e.Page().ISVis_OnNewNodeOver(interval);
    const double intervalMs = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    intervalWorst = std::max(intervalWorst, intervalMs);
    intervalTotal += intervalMs;
    ++intervalEvents;
  }
  Common(state, e);
  state.counters["word_hover_click_ms"] = wordTotal / static_cast<double>(wordEvents);
  state.counters["word_worst_ms"] = wordWorst;
  state.counters["interval_hover_ms"] = intervalTotal / static_cast<double>(intervalEvents);
  state.counters["interval_worst_ms"] = intervalWorst;
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
    for (const int source : {sylvora::app::RelatedTerms::kSameTweet, sylvora::app::RelatedTerms::kSameInterval}) {
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

BENCHMARK_MAIN();
