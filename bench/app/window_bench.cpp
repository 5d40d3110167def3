// Loading and indexing a large generated corpus from the window against the same two session
// steps run directly, as "sylvora-cli index" runs them. The window runs them as jobs on its
// worker thread; a 16 ms timer ticks meanwhile (repainting the whole window, or not) and records
// the longest gap the user-interface thread left between two ticks. Sizes via
// SYLVORA_BENCH_TWEETS (default 1,000,000). Run one benchmark per process (--benchmark_filter)
// for its own peak memory.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include "app/console_platform.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "offscreen_benchmark_main.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  return sylvora::bench::TweetCountFromEnvironment("SYLVORA_BENCH_TWEETS", 1'000'000);
}

std::string CorpusFile() {
  using sylvora::bench::CorpusFormat;
  return sylvora::bench::CachedCorpusFile(CorpusFormat::kTwitter11, TweetCount());
}

std::string StopList() { return std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt"; }

void Report(benchmark::State& state, const std::string& path, sylvora::DocIndex documents) {
  state.counters["tweets"] = documents;
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}

// What "sylvora-cli index" does: the load workflow, then the five indexes.
void BM_SessionLoadAndIndex(benchmark::State& state) {
  const std::string path = CorpusFile();
  sylvora::DocIndex documents = 0;
  for (auto _ : state) {
    sylvora::Session session;
    sylvora::LoadOptions options;
    options.path = path;
    const auto load = sylvora::LoadCorpus(session, options, sylvora::DefaultNotifier());
    if (!load.loaded) state.SkipWithError(load.error.c_str());
    sylvora::IndexOptions indexOptions;
    indexOptions.stopListPath = StopList();
    const auto index = sylvora::BuildIndexes(session, indexOptions);
    if (!index.indexed) state.SkipWithError(index.error.c_str());
    documents = session.Documents().DocumentCount();
  }
  Report(state, path, documents);
}
BENCHMARK(BM_SessionLoadAndIndex)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

// The same through the window's buttons, with the window repainted every 16 ms.
void BM_WindowLoadAndIndex(benchmark::State& state) {
  const std::string path = CorpusFile();
  sylvora::DocIndex documents = 0;
  double longestGapMs = 0;
  for (auto _ : state) {
    state.PauseTiming();
    sylvora::app::ConsolePlatform platform;
    sylvora::app::StartupEnvironment environment;
    environment.configFolder = QString::fromStdString(
        (std::filesystem::temp_directory_path() / "sylvora-bench-config").string());
    environment.programFolder = QString::fromStdString(std::string(SYLVORA_SOURCE_DIR) + "/data");
    sylvora::app::Main window(platform, environment);
    window.show();
    window.Start();
    sylvora::app::LoadIndexPage& page = window.LoadIndex();
    page.SetRadian(false);
    page.SetCorpusPath(QString::fromStdString(path));
    // The window is up and painted before the user clicks.
    QCoreApplication::processEvents();
    const bool fullRepaints = state.range(0) == 0;
    QElapsedTimer sinceTick;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &window, [&] {
      longestGapMs = std::max(longestGapMs, static_cast<double>(sinceTick.nsecsElapsed()) / 1e6);
      if (fullRepaints) window.repaint();
      sinceTick.restart();
    });
    state.ResumeTiming();

    sinceTick.start();
    tick.start(16);
    if (!page.LoadCorpus_Click()) state.SkipWithError("the load did not start");
    window.Jobs().WaitForIdle();
    if (!page.DoIndex_Click()) state.SkipWithError("indexing did not start");
    window.Jobs().WaitForIdle();
    tick.stop();
    documents = window.CurrentSession().Documents().DocumentCount();
    if (!window.CurrentSession().Indexed()) state.SkipWithError("not indexed");
  }
  Report(state, path, documents);
  // The longest wait between two ticks, less the timer's own 16 ms.
  state.counters["ui_gap_ms"] = std::max(0.0, longestGapMs - 16.0);
}
// Argument 0: every tick repaints the whole window (sixty full repaints a second, the worst
// case, which itself takes a good part of a core). Argument 1: the ticks only measure, and the
// window repaints what changes (progress bar, stage text) as it does on screen.
BENCHMARK(BM_WindowLoadAndIndex)
    ->ArgName("ticks_only")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();

}  // namespace

SYLVORA_OFFSCREEN_BENCHMARK_MAIN()
