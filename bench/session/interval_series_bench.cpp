// The per-interval series of the main time line over a generated "Twitter1.1" corpus of
// 1,000,000 tweets (18 days) in one-hour intervals: ComputeIntervalSeries after the models
// are built, as the time line explorer's build runs it (novelty window 1, ratio burst words).
// Loading, indexing and the model build happen once, outside the timing; their seconds are
// reported beside it. The words model's homogeneity cache is emptied before each run by
// building the models again (outside the timing), so every run computes every score.
//
// Counters: tweets, intervals, the largest interval, seconds of the load, index and model
// stages, and the resident memory at the peak. Size via SYLVORA_BENCH_SERIES_TWEETS (default
// 1,000,000).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "common/notifier.h"
#include "common/stopwatch.h"
#include "generator/corpus_generator.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session/interval_series.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_SERIES_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 1'000'000;
}

// Written under a temporary name and renamed when complete, so that an interrupted run
// leaves no partial corpus behind for the next one.
std::string CorpusFile(std::size_t tweets) {
  const auto folder = std::filesystem::temp_directory_path();
  const auto file = folder / ("sylvora-bench-series-" + std::to_string(tweets) + "_twitter11.txt");
  if (!std::filesystem::exists(file)) {
    const auto partial = folder / ("sylvora-bench-series-" + std::to_string(tweets) + ".partial");
    sylvora::bench::WriteSyntheticCorpus(sylvora::bench::CorpusFormat::kTwitter11, partial, tweets);
    std::filesystem::rename(partial, file);
  }
  return file.string();
}

void BM_IntervalSeries(benchmark::State& state) {
  const std::size_t tweets = TweetCount();
  sylvora::Session session;
  sylvora::SilentNotifier notifier;
  sylvora::Stopwatch watch;
  sylvora::LoadOptions load;
  load.path = CorpusFile(tweets);
  const auto loaded = sylvora::LoadCorpus(session, load, notifier);
  if (!loaded.loaded) {
    state.SkipWithError(loaded.error.c_str());
    return;
  }
  const double loadSeconds = watch.Lap();
  sylvora::IndexOptions index;
  index.stopListPath = SYLVORA_SOURCE_DIR "/data/common_words.txt";
  const auto indexed = sylvora::BuildIndexes(session, index);
  if (!indexed.indexed) {
    state.SkipWithError(indexed.error.c_str());
    return;
  }
  const double indexSeconds = watch.Lap();
  sylvora::ModelOptions models;
  models.intervalLength = "1";
  models.unitCode = "h";
  double modelSeconds = 0.0;
  sylvora::IntervalSeries series;
  for (auto _ : state) {
    state.PauseTiming();
    watch.Lap();
    const auto built = sylvora::BuildModels(session, models, notifier);
    modelSeconds = watch.Lap();
    if (!built.built) {
      state.SkipWithError(built.error.c_str());
      return;
    }
    state.ResumeTiming();
    sylvora::ComputeIntervalSeries(session, 1, sylvora::TextStream::kRatioBurst, series);
    benchmark::DoNotOptimize(series.rows.data());
  }
  state.counters["tweets"] = static_cast<double>(session.Documents().DocumentCount());
  state.counters["intervals"] = static_cast<double>(series.rows.size());
  state.counters["largest_interval"] = series.maxIntervalDocCount;
  state.counters["load_s"] = loadSeconds;
  state.counters["index_s"] = indexSeconds;
  state.counters["models_s"] = modelSeconds;
  state.counters["peak_MB"] =
      static_cast<double>(sylvora::bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}
BENCHMARK(BM_IntervalSeries)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
