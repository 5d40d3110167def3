// The whole road as the command line runs it, stage by stage, on generated "Twitter1.1"
// exports of 100,000 and 1,000,000 tweets: load, the five indexes, the interval models of
// 24-hour intervals (what `sylvora-cli timeline` adds) and the word map of the tweets (what
// `sylvora-cli map --kind words` adds to load and index, laid out by sfdp). Each stage reports
// its seconds, the process's peak resident memory so far and what stays resident when it ends
// (rss); models_peak_per_file is
// the peak of load + index + models as a multiple of the file's size, and road_s the time of
// load + index + word map.
//
// One iteration per size, each in a fresh session: run the sizes apart
// (--benchmark_filter=BM_Road/1000000) for peaks that the smaller run does not colour.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "common/large_allocation.h"
#include "common/notifier.h"
#include "common/stopwatch.h"
#include "generator/corpus_generator.h"
#include "layout/layout_folder.h"
#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "support/peak_memory.h"

namespace {

constexpr double kMB = 1e6;

void BM_Road(benchmark::State& state) {
  const std::string path = sylvora::bench::CachedCorpusFile(
      sylvora::bench::CorpusFormat::kTwitter11, static_cast<std::size_t>(state.range(0)));
  const double fileBytes = static_cast<double>(std::filesystem::file_size(path));
  sylvora::SilentNotifier quiet;
  for (auto _ : state) {
    sylvora::bench::ResetResidentPeak();
    sylvora::Session session;
    sylvora::Stopwatch watch;
    const auto stage = [&](const char* name) {
      state.counters[std::string(name) + "_s"] = watch.Lap();
      state.counters[std::string(name) + "_peak_MB"] =
          static_cast<double>(sylvora::bench::StatusBytes("VmHWM")) / kMB;
      state.counters[std::string(name) + "_rss_MB"] =
          static_cast<double>(sylvora::bench::StatusBytes("VmRSS")) / kMB;
    };

    sylvora::LoadOptions load;
    load.path = path;
    const sylvora::LoadReport loaded = sylvora::LoadCorpus(session, load, quiet);
    if (!loaded.loaded) return state.SkipWithError(loaded.error.c_str());
    stage("load");

    sylvora::IndexOptions index;
    index.stopListPath = std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt";
    const sylvora::IndexReport indexed = sylvora::BuildIndexes(session, index);
    if (!indexed.indexed) return state.SkipWithError(indexed.error.c_str());
    stage("index");

    const sylvora::ModelReport models = sylvora::BuildModels(session, {}, quiet);
    if (!models.built) return state.SkipWithError(models.error.c_str());
    stage("models");

    sylvora::ClusterMap map;
    sylvora::MapOptions mapOptions;
    mapOptions.graphvizFolder = sylvora::DefaultGraphvizFolder();
    mapOptions.timeLimitMs = 0;
    const sylvora::MapReport mapped = sylvora::BuildWordMap(
        session.WordIndex(), nullptr, sylvora::WordMapLevel::kTweet, mapOptions, map, quiet);
    if (!mapped.built) return state.SkipWithError(mapped.error.c_str());
    stage("word_map");
  }
  state.counters["file_MB"] = fileBytes / kMB;
  state.counters["models_peak_per_file"] = state.counters["models_peak_MB"] * kMB / fileBytes;
  state.counters["road_s"] =
      state.counters["load_s"] + state.counters["index_s"] + state.counters["word_map_s"];
}
BENCHMARK(BM_Road)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace

// The heap policy of the programs, so that the peaks are theirs.
int main(int argc, char** argv) {
  sylvora::UseReturnableLargeBlocks();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
