// The word map end to end over a generated "Twitter1.1" corpus of 100,000 tweets: the cosine
// similarity of every pair of terms, the dense array, distances, the minimum spanning tree,
// the DOT text and the sfdp layout (Graphviz from PATH), at 2,000 and 5,000 terms. Loading and
// indexing happen once per size, outside the timing.
//
// The generator's own vocabulary gives about 800 terms at Min DF 20, so each tweet gets five
// more words from a made-up vocabulary of topic groups (twenty words each, one group per
// tweet), sized so that the index has exactly the wanted number of terms. The words look like
// "bobadegik": letters only, unchanged by the stemmer, none of them stop words.
//
// Counters: terms, links, seconds per stage, and the resident memory of this process before the
// map build and at its peak during it. The layout program's own memory is not included (the
// kernel's figure for a spawned child starts from the parent's peak, so it says nothing).
// Size via SYLVORA_BENCH_MAP_TWEETS (default 100,000).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "layout/layout_folder.h"
#include "padded_word_index.h"
#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  return sylvora::bench::TweetCountFromEnvironment("SYLVORA_BENCH_MAP_TWEETS", 100'000);
}

std::string CorpusFile() {
  using sylvora::bench::CorpusFormat;
  return sylvora::bench::CachedCorpusFile(CorpusFormat::kTwitter11, TweetCount());
}

void BM_WordMap(benchmark::State& state) {
  const int wanted = static_cast<int>(state.range(0));
  const int base = sylvora::bench::BaseTermCount(CorpusFile());
  if (base < 0 || base > wanted) {
    state.SkipWithError("the corpus could not be indexed, or it has too many terms already");
    return;
  }
  sylvora::Session session;
  std::string error;
  if (!sylvora::bench::LoadAndIndexPadded(session, CorpusFile(), wanted - base, error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  sylvora::MapOptions options;
  options.graphvizFolder = sylvora::DefaultGraphvizFolder();
  // The DOT text and the layout stay in the temp folder, to time or inspect sfdp alone.
  const auto folder =
      std::filesystem::temp_directory_path() / ("sylvora-bench-map-" + std::to_string(wanted));
  std::filesystem::create_directories(folder);
  options.layoutFolder = folder.string();
  const std::int64_t before = sylvora::bench::StatusBytes("VmRSS");
  sylvora::bench::ResetResidentPeak();
  std::map<std::string, double> stageSeconds;
  sylvora::MapReport report;
  for (auto _ : state) {
    sylvora::ClusterMap map;
    report = sylvora::BuildWordMap(session.WordIndex(), nullptr, sylvora::WordMapLevel::kTweet,
                                   options, map, sylvora::DefaultNotifier());
    if (!report.built) {
      state.SkipWithError(report.error.c_str());
      return;
    }
    for (const auto& stage : report.stages) stageSeconds[stage.stage] += stage.seconds;
    benchmark::DoNotOptimize(map.layout.X(0));
  }
  const double iterations = static_cast<double>(state.iterations());
  constexpr double kMB = 1024.0 * 1024.0;
  state.counters["tweets"] = session.Documents().DocumentCount();
  state.counters["terms"] = session.WordIndex().TermCount();
  state.counters["links"] = report.edgeCount;
  for (const auto& [stage, seconds] : stageSeconds)
    state.counters[stage + "_s"] = seconds / iterations;
  state.counters["rss_before_MB"] = static_cast<double>(before) / kMB;
  state.counters["peak_rss_MB"] = static_cast<double>(sylvora::bench::StatusBytes("VmHWM")) / kMB;
}

BENCHMARK(BM_WordMap)->Arg(2000)->Arg(5000)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
