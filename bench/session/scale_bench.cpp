// Long and large corpora: the interval models and the interval map at 1,000, 10,000 and
// 100,000 intervals, and the tweet map of one interval of 2,000, 5,000 and 20,000 tweets.
//
// Interval corpora: two tweets an hour, one-hour intervals, six made-up words a tweet drawn
// from a band of the vocabulary that moves with time (interval k draws from words k/2 ..
// k/2 + 15), as topics drift over a long history: an interval shares terms with the thirty or
// so around it, so the similarity model and the map grow with the interval count. Tweet
// corpora: the generator's storm corpus of 1.6 times the tweets, cut into intervals of half
// its span; the map is the busiest one's (about the wanted count). 1,500 tweets go the full
// route of small intervals, the others the neighbour lists.
//
// Loading and indexing happen once per size, outside the timing. Counters: sizes, seconds per
// stage, the resident memory before the build and the peak during it (the Graphviz layout, a
// separate process, is included in the tweet map's time but not in its memory; the interval
// map is timed to its DOT text, without the layout).

#include <benchmark/benchmark.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>

#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "layout/layout_folder.h"
#include "networks/proximity_matrix.h"
#include "networks/sparse_spanning_tree.h"
#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "support/peak_memory.h"

namespace {

constexpr double kMB = 1024.0 * 1024.0;

// A letters-only word for vocabulary entry i ("bodaki"-like).
std::string MadeUpWord(int i) {
  static const char* kSyllables[] = {"ba", "do", "fi", "gu", "ka", "lo", "mi", "nu", "pa", "ro",
                                     "si", "tu", "va", "zo", "be", "di", "fo", "ga", "ke", "li"};
  std::string word;
  for (int k = 0; k < 4; ++k) {
    word += kSyllables[i % 20];
    i /= 20;
  }
  return word;
}

// The drifting corpus of `intervals` hours, newest first, in the temp folder (kept).
std::string DriftingCorpus(int intervals) {
  const auto path = std::filesystem::temp_directory_path() /
                    ("sylvora-bench-drift-" + std::to_string(intervals) + ".txt");
  if (std::filesystem::exists(path)) return path.string();
  std::mt19937 random(static_cast<unsigned>(intervals));
  std::uniform_int_distribution<int> band(0, 15);
  std::ofstream out(path);
  const std::time_t start = 946684800;  // 2000-01-01 00:00 UTC
  for (int k = intervals - 1; k >= 0; --k) {
    for (int minute : {40, 10}) {
      const std::time_t when = start + std::time_t{k} * 3600 + minute * 60;
      std::tm parts{};
      gmtime_r(&when, &parts);
      char date[64];
      std::strftime(date, sizeof date, "%a %b %d %H:%M:%S +0000 %Y", &parts);
      std::string text;
      for (int w = 0; w < 6; ++w) text += (w ? " " : "") + MadeUpWord(k / 2 + band(random));
      out << date << "\tann\t" << text << "\t1\tAnn\t10\t20\t0\tUTC\t\t99\t0\t\t2\t-1\t1\n";
    }
  }
  return path.string();
}

bool LoadAndIndex(sylvora::Session& session, const std::string& path, std::string& error) {
  sylvora::SilentNotifier quiet;
  sylvora::LoadOptions load;
  load.path = path;
  const sylvora::LoadReport loaded = sylvora::LoadCorpus(session, load, quiet);
  if (!loaded.loaded) {
    error = loaded.error;
    return false;
  }
  sylvora::IndexOptions index;
  index.stopListPath = std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt";
  index.minDocFrequency = 2;
  const sylvora::IndexReport indexed = sylvora::BuildIndexes(session, index);
  if (!indexed.indexed) error = indexed.error;
  return indexed.indexed;
}

void Memory(benchmark::State& state, std::int64_t before) {
  state.counters["rss_before_MB"] = static_cast<double>(before) / kMB;
  state.counters["peak_rss_MB"] = static_cast<double>(sylvora::bench::StatusBytes("VmHWM")) / kMB;
}

// The drifting corpus of state.range(0) intervals, loaded and indexed; false (the benchmark
// skipped with the reason) when that fails.
bool LoadDrifting(benchmark::State& state, sylvora::Session& session) {
  std::string error;
  if (LoadAndIndex(session, DriftingCorpus(static_cast<int>(state.range(0))), error)) return true;
  state.SkipWithError(error.c_str());
  return false;
}

void BM_IntervalModels(benchmark::State& state) {
  sylvora::Session session;
  if (!LoadDrifting(state, session)) return;
  sylvora::SilentNotifier quiet;
  sylvora::ModelOptions options;
  options.intervalLength = "1";
  const std::int64_t before = sylvora::bench::StatusBytes("VmRSS");
  sylvora::bench::ResetResidentPeak();
  sylvora::ModelReport report;
  for (auto _ : state) {
    report = sylvora::BuildModels(session, options, quiet);
    if (!report.built) {
      state.SkipWithError(report.error.c_str());
      return;
    }
  }
  state.counters["intervals"] = report.intervalCount;
  state.counters["terms"] = session.WordIndex().TermCount();
  std::int64_t cells = 0;
  const sylvora::SparseMatrixSingle& nm = session.WordModel().NM();
  for (std::int32_t c = 1; c <= nm.ColCount(); ++c) cells += nm.Vector(c)->NZElementCount();
  state.counters["nm_cells"] = static_cast<double>(cells);
  for (const auto& stage : report.stages) state.counters[stage.stage + "_s"] = stage.seconds;
  Memory(state, before);
}

void BM_IntervalMap(benchmark::State& state) {
  sylvora::Session session;
  if (!LoadDrifting(state, session)) return;
  sylvora::SilentNotifier quiet;
  sylvora::ModelOptions options;
  options.intervalLength = "1";
  if (!sylvora::BuildModels(session, options, quiet).built) {
    state.SkipWithError("the models could not be built");
    return;
  }
  const std::int64_t before = sylvora::bench::StatusBytes("VmRSS");
  sylvora::bench::ResetResidentPeak();
  std::size_t dotBytes = 0;
  for (auto _ : state) {
    sylvora::SparseTree tree = sylvora::SparseSpanningTree(session.WordModel().NM());
    if (!tree.built) {
      state.SkipWithError(tree.message.c_str());
      return;
    }
    const std::string dot = sylvora::DotFromEdges(std::move(tree.links), 1.0f, 1);
    dotBytes = dot.size();
  }
  state.counters["intervals"] = session.WordModel().IntervalCount();
  state.counters["dot_MB"] = static_cast<double>(dotBytes) / kMB;
  Memory(state, before);
}

void BM_TweetMap(benchmark::State& state) {
  const auto wanted = static_cast<std::size_t>(state.range(0));
  sylvora::Session session;
  std::string error;
  const std::string path =
      sylvora::bench::CachedCorpusFile(sylvora::bench::CorpusFormat::kTwitter11, wanted * 8 / 5);
  if (!LoadAndIndex(session, path, error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  sylvora::SilentNotifier quiet;
  const sylvora::DocumentSet& documents = session.Documents();
  const long span =
      std::stol(documents.Text(documents.DocumentCount() - 1, documents.ElapsedTimeField()));
  sylvora::ModelOptions models;
  models.intervalLength = std::to_string(span / 2);
  const sylvora::ModelReport built = sylvora::BuildModels(session, models, quiet);
  if (!built.built) {
    state.SkipWithError(built.error.c_str());
    return;
  }
  const sylvora::TextStream& words = session.WordModel();
  std::int32_t busiest = 1;
  for (std::int32_t k = 2; k <= words.IntervalCount(); ++k) {
    if (words.IntervalDocCount(k) > words.IntervalDocCount(busiest)) busiest = k;
  }
  sylvora::MapOptions options;
  options.graphvizFolder = sylvora::DefaultGraphvizFolder();
  options.timeLimitMs = 0;
  const std::int64_t before = sylvora::bench::StatusBytes("VmRSS");
  sylvora::bench::ResetResidentPeak();
  std::map<std::string, double> stageSeconds;
  for (auto _ : state) {
    sylvora::ClusterMap map;
    const sylvora::MapReport report =
        sylvora::BuildTweetMap(session.WordIndex(), words, busiest, options, map, quiet);
    if (!report.built) {
      state.SkipWithError(report.error.c_str());
      return;
    }
    for (const auto& stage : report.stages) stageSeconds[stage.stage] += stage.seconds;
  }
  state.counters["tweets"] = words.IntervalDocCount(busiest);
  state.counters["estimate_s"] = sylvora::EstimatedTweetMapSeconds(words.IntervalDocCount(busiest));
  for (const auto& [stage, seconds] : stageSeconds)
    state.counters[stage + "_s"] = seconds / static_cast<double>(state.iterations());
  Memory(state, before);
}

BENCHMARK(BM_IntervalModels)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kSecond)
    ->Iterations(1);
BENCHMARK(BM_IntervalMap)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kSecond)
    ->Iterations(1);
BENCHMARK(BM_TweetMap)
    ->Arg(1500)
    ->Arg(2000)
    ->Arg(5000)
    ->Arg(20000)
    ->Unit(benchmark::kSecond)
    ->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
