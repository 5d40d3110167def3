// The indexing workflow over a large generated "Twitter1.1" corpus: the five indexes (words,
// links, hashtags, mentions, users), each assigned, preprocessed, given its vocabulary,
// counted and pruned, and the word index weighted by tf-idf. The corpus is loaded once,
// outside the timing. Size via SYLVORA_BENCH_TWEETS (default 1,000,000).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 1'000'000;
}

// One generated file per size, kept in the temp folder between runs (shared with the load
// benchmark).
std::string CorpusFile() {
  const std::size_t tweets = TweetCount();
  const auto file = std::filesystem::temp_directory_path() /
                    ("sylvora-bench-" + std::to_string(tweets) + "_twitter11.txt");
  if (!std::filesystem::exists(file)) {
    sylvora::bench::WriteSyntheticCorpus(sylvora::bench::CorpusFormat::kTwitter11, file, tweets);
  }
  return file.string();
}

std::string StopList() {
#ifdef SYLVORA_SOURCE_DIR
  return SYLVORA_SOURCE_DIR "/data/common_words.txt";
#else
  return "data/common_words.txt";
#endif
}

void BM_IndexWorkflow(benchmark::State& state) {
  sylvora::Session session;
  sylvora::LoadOptions load;
  load.path = CorpusFile();
  const auto loaded = sylvora::LoadCorpus(session, load, sylvora::DefaultNotifier());
  if (!loaded.loaded) {
    state.SkipWithError(loaded.error.c_str());
    return;
  }
  // A run switches every field off; each iteration starts from the load's flags.
  const std::string pattern = session.Documents().FieldExpressionPattern();
  sylvora::IndexOptions options;
  options.stopListPath = StopList();

  std::map<std::string, double> stageSeconds;  // "assign", "preprocess", ... over all indexes
  for (auto _ : state) {
    session.Documents().SetFieldExpressionPattern(pattern);
    const sylvora::IndexReport report = sylvora::BuildIndexes(session, options);
    if (!report.indexed) {
      state.SkipWithError(report.error.c_str());
      return;
    }
    for (const auto& stage : report.stages) {
      stageSeconds[stage.stage.substr(stage.stage.find(": ") + 2)] += stage.seconds;
    }
    benchmark::DoNotOptimize(session.WordIndex().TermCount());
  }
  const double iterations = static_cast<double>(state.iterations());
  state.counters["tweets"] = session.Documents().DocumentCount();
  for (const auto& [stage, seconds] : stageSeconds) {
    state.counters[stage + "_s"] = seconds / iterations;
  }
  for (const sylvora::IndexKind kind : sylvora::kIndexKinds) {
    state.counters[std::string(sylvora::IndexKindName(kind)) + "_terms"] =
        session.Index(kind).TermCount();
  }
  state.counters["word_cells"] = [&] {
    double cells = 0;
    const auto& matrix = session.WordIndex().Matrix();
    for (std::int32_t d = 1; d <= matrix.ColCount(); ++d)
      cells += matrix.Vector(d)->NZElementCount();
    return cells;
  }();
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}
BENCHMARK(BM_IndexWorkflow)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
