// The interval models over a large generated "Twitter1.1" corpus with one-hour intervals:
//  * BM_BuildModels: the model building of "(Re)Build Views" (the five TIFMs, TrunK, the
//    words model's NM and sentiment model), indexing excluded;
//  * BM_ChartHomogeneity/HOURS: the homogeneity of every interval of HOURS hours (1 and 24)
//    with the sample step the main time line uses (every pair in interval 1, each document
//    with its successor elsewhere), from an empty cache.
// The corpus is loaded and indexed once, outside the timing. Size via SYLVORA_BENCH_TWEETS
// (default 1,000,000).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 1'000'000;
}

// One generated file per size, kept in the temp folder between runs (shared with the load and
// indexing benchmarks).
std::string CorpusFile() {
  const std::size_t tweets = TweetCount();
  const auto file = std::filesystem::temp_directory_path() /
                    ("sylvora-bench-" + std::to_string(tweets) + "_twitter11.txt");
  if (!std::filesystem::exists(file)) {
    sylvora::bench::WriteSyntheticCorpus(sylvora::bench::CorpusFormat::kTwitter11, file, tweets);
  }
  return file.string();
}

// The loaded and indexed corpus, made on first use; nullptr (with `error`) when that failed.
sylvora::Session* IndexedSession(std::string& error) {
  static std::unique_ptr<sylvora::Session> session;
  static std::string failure;
  if (session == nullptr && failure.empty()) {
    auto fresh = std::make_unique<sylvora::Session>();
    sylvora::LoadOptions load;
    load.path = CorpusFile();
    load.unitCode = "h";
    const auto loaded = sylvora::LoadCorpus(*fresh, load, sylvora::DefaultNotifier());
    if (!loaded.loaded) {
      failure = loaded.error;
    } else {
      sylvora::IndexOptions options;
      options.stopListPath = SYLVORA_SOURCE_DIR "/data/common_words.txt";
      const auto indexed = sylvora::BuildIndexes(*fresh, options);
      if (indexed.indexed) {
        session = std::move(fresh);
      } else {
        failure = indexed.error;
      }
    }
  }
  error = failure;
  return session.get();
}

sylvora::ModelOptions HourlyModels() {
  sylvora::ModelOptions options;
  options.intervalLength = "1";
  options.unitCode = "h";
  return options;
}

void BM_BuildModels(benchmark::State& state) {
  std::string error;
  sylvora::Session* session = IndexedSession(error);
  if (session == nullptr) {
    state.SkipWithError(error.c_str());
    return;
  }
  // Answers OK to the "largest interval" question, as a user going on would.
  sylvora::SilentNotifier notifier;
  std::map<std::string, double> stageSeconds;
  sylvora::ModelReport report;
  for (auto _ : state) {
    report = sylvora::BuildModels(*session, HourlyModels(), notifier);
    if (!report.built) {
      state.SkipWithError(report.error.c_str());
      return;
    }
    for (const auto& stage : report.stages) stageSeconds[stage.stage] += stage.seconds;
    benchmark::DoNotOptimize(session->WordModel().IntervalCount());
  }
  const double iterations = static_cast<double>(state.iterations());
  state.counters["tweets"] = session->Documents().DocumentCount();
  state.counters["intervals"] = report.intervalCount;
  state.counters["max_interval_docs"] = report.maxIntervalDocCount;
  state.counters["trunK"] = report.trunK;
  state.counters["word_terms"] = session->WordIndex().TermCount();
  for (const auto& [stage, seconds] : stageSeconds)
    state.counters[stage + "_s"] = seconds / iterations;
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}
BENCHMARK(BM_BuildModels)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ChartHomogeneity(benchmark::State& state) {
  std::string error;
  sylvora::Session* session = IndexedSession(error);
  if (session == nullptr) {
    state.SkipWithError(error.c_str());
    return;
  }
  sylvora::SilentNotifier notifier;
  if (!session->ModelsBuilt() && !sylvora::BuildModels(*session, HourlyModels(), notifier).built) {
    state.SkipWithError("models not built");
    return;
  }
  sylvora::TextStream& words = session->WordModel();
  const auto field = session->Documents().ElapsedTimeField();
  double pairs = 0;
  for (auto _ : state) {
    state.PauseTiming();
    // A rebuild empties the homogeneity cache.
    words.BuildTermIntervalFrequencyModel(field, static_cast<std::int32_t>(state.range(0)),
                                          notifier);
    state.ResumeTiming();
    double sum = 0;
    pairs = 0;
    for (std::int32_t i = 1; i <= words.IntervalCount(); ++i) {
      const std::int32_t n = words.IntervalDocCount(i);
      sum += words.IntervalHomogScore(i, sylvora::TextStream::ChartHomogSampleStep(i, n));
      pairs += i == 1 ? n * (n - 1.0) / 2 : (n > 1 ? n - 1 : 0);
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["intervals"] = words.IntervalCount();
  state.counters["interval1_docs"] = words.IntervalDocCount(1);
  state.counters["pairs"] = pairs;
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}
BENCHMARK(BM_ChartHomogeneity)->Arg(1)->Arg(24)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
BENCHMARK_MAIN();
