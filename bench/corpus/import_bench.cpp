// Imports of today's exports over large generated corpora: X / Twitter API v2 JSON lines through
// the whole load workflow, and the named-column CSV reader against the tab-separated loader on
// the same tweets. Sizes via SYLVORA_BENCH_TWEETS (default 1,000,000).
//
// Peak memory is the process's high-water mark: run one benchmark per process
// (--benchmark_filter) for a figure that belongs to it alone.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "common/notifier.h"
#include "corpus/corpus_import.h"
#include "generator/corpus_generator.h"
#include "session/corpus_load.h"
#include "support/peak_memory.h"

namespace {

using sylvora::bench::CorpusFormat;

std::size_t TweetCount() {
  const char* text = std::getenv("SYLVORA_BENCH_TWEETS");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 1'000'000;
}

// One generated file per shape and size, kept in the temp folder between runs.
std::string CorpusFile(CorpusFormat format) {
  const std::size_t tweets = TweetCount();
  const auto file = std::filesystem::temp_directory_path() /
                    ("sylvora-bench-" + std::to_string(tweets) +
                     std::string(sylvora::bench::CorpusFileSuffix(format)));
  if (!std::filesystem::exists(file)) {
    sylvora::bench::WriteSyntheticCorpus(format, file, tweets);
  }
  return file.string();
}

void Report(benchmark::State& state, const std::string& path, sylvora::DocIndex documents) {
  const auto fileBytes = static_cast<double>(std::filesystem::file_size(path));
  const double peak = static_cast<double>(sylvora::bench::PeakResidentBytes());
  state.counters["tweets"] = documents;
  state.counters["file_MB"] = fileBytes / 1e6;
  state.counters["peak_MB"] = peak / 1e6;
  state.counters["peak_per_file"] = peak / fileBytes;
  state.SetBytesProcessed(static_cast<std::int64_t>(fileBytes) * state.iterations());
}

// Read, detect, import, links, dates, elapsed time, sort, hashtags and mentions.
void BM_LoadWorkflowTwitterV2Json(benchmark::State& state) {
  const std::string path = CorpusFile(CorpusFormat::kTwitterV2Json);
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
  Report(state, path, documents);
}
BENCHMARK(BM_LoadWorkflowTwitterV2Json)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ImportOnlyTwitterV2Json(benchmark::State& state) {
  const std::string path = CorpusFile(CorpusFormat::kTwitterV2Json);
  sylvora::DocIndex documents = 0;
  for (auto _ : state) {
    sylvora::DocumentSet set;
    sylvora::ImportReport report;
    if (sylvora::ImportCorpusFile(path, {}, set, report) != sylvora::DetectionOutcome::kImport) {
      state.SkipWithError(report.error.c_str());
    }
    documents = set.DocumentCount();
    benchmark::DoNotOptimize(documents);
  }
  Report(state, path, documents);
}
BENCHMARK(BM_ImportOnlyTwitterV2Json)->Unit(benchmark::kMillisecond)->Iterations(3);

// The CSV reader and the tab-separated loader, each reading the same tweets into a set.
void BM_ImportOnlyNamedCsv(benchmark::State& state) {
  const std::string path = CorpusFile(CorpusFormat::kNamedCsv);
  sylvora::DocIndex documents = 0;
  for (auto _ : state) {
    sylvora::DocumentSet set;
    sylvora::ImportReport report;
    if (sylvora::ImportCorpusFile(path, {}, set, report) != sylvora::DetectionOutcome::kImport) {
      state.SkipWithError(report.error.c_str());
    }
    documents = set.DocumentCount();
    benchmark::DoNotOptimize(documents);
  }
  Report(state, path, documents);
}
BENCHMARK(BM_ImportOnlyNamedCsv)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoadDocumentsOnlyTsv(benchmark::State& state) {
  const std::string path = CorpusFile(CorpusFormat::kTwitter11);
  sylvora::DocIndex documents = 0;
  for (auto _ : state) {
    sylvora::DocumentSet set;
    std::string file = path;
    set.LoadDocuments(file, 8, "\n", 64, 0, false);
    documents = set.DocumentCount();
    benchmark::DoNotOptimize(documents);
  }
  Report(state, path, documents);
}
BENCHMARK(BM_LoadDocumentsOnlyTsv)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
