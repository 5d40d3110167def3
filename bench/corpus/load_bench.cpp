// The corpus load workflow over large generated "Twitter1.1" exports: read, split, links,
// dates, elapsed time, sort, hashtags and mentions. Sizes via SYLVORA_BENCH_TWEETS (default
// 1,000,000).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "common/notifier.h"
#include "generator/corpus_generator.h"
#include "session/corpus_load.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 1'000'000;
}

// One generated file per process, kept in the temp folder between runs of the same size.
const std::string& CorpusFile() {
  static const std::string path = [] {
    const std::size_t tweets = TweetCount();
    const auto file = std::filesystem::temp_directory_path() /
                      ("sylvora-bench-" + std::to_string(tweets) + "_twitter11.txt");
    if (!std::filesystem::exists(file)) {
      sylvora::bench::WriteSyntheticCorpus(sylvora::bench::CorpusFormat::kTwitter11, file, tweets);
    }
    return file.string();
  }();
  return path;
}

void BM_LoadWorkflow(benchmark::State& state) {
  const std::string& path = CorpusFile();
  const auto fileBytes = static_cast<double>(std::filesystem::file_size(path));
  sylvora::DocIndex documents = 0;
  for (auto _ : state) {
    sylvora::Session session;
    sylvora::LoadOptions options;
    options.path = path;
    const auto report = sylvora::LoadCorpus(session, options, sylvora::DefaultNotifier());
    if (!report.loaded) state.SkipWithError(report.error.c_str());
    documents = session.Documents().DocumentCount();
    benchmark::DoNotOptimize(documents);
  }
  const double peak = static_cast<double>(sylvora::bench::PeakResidentBytes());
  state.counters["tweets"] = documents;
  state.counters["file_MB"] = fileBytes / 1e6;
  state.counters["peak_MB"] = peak / 1e6;
  state.counters["peak_per_file"] = peak / fileBytes;
  state.SetBytesProcessed(static_cast<std::int64_t>(fileBytes) * state.iterations());
}
BENCHMARK(BM_LoadWorkflow)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoadDocumentsOnly(benchmark::State& state) {
  const std::string& path = CorpusFile();
  for (auto _ : state) {
    sylvora::DocumentSet documents;
    std::string file = path;
    documents.LoadDocuments(file, 8, "\n", 64, 0, false);
    benchmark::DoNotOptimize(documents.DocumentCount());
  }
}
BENCHMARK(BM_LoadDocumentsOnly)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
