// The whole road, again and again, in one process: load the corpus, build the five indexes,
// build the interval models, build the word, interval and tweet maps (with the real sfdp).
// One session is reused, as the window reuses its session on every new load, so that whatever
// a round leaves behind piles up in the next.
//
// After each round it prints the heap in use, the resident set and the peak resident set.
// From round `settle` on, neither the heap in use nor the peak may grow by more than the
// slack: a step that leaks, or keeps a copy per round, fails the run with exit code 1.
// Leaks of unreachable memory are reported by LeakSanitizer at exit in an ASan build.
//
//   sylvora_soak [--rounds N] [--settle R] [--slack-mb M] [--corpus FILE] [--stop-list FILE]
//                [--graphviz FOLDER]

#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session/session.h"

#if defined(__SANITIZE_ADDRESS__)
#define SYLVORA_SOAK_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SYLVORA_SOAK_ASAN 1
#endif
#endif
#ifdef SYLVORA_SOAK_ASAN
// The sanitizer runtime's count of bytes in use (its header is not installed with GCC).
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

struct SoakOptions {
  int rounds = 50;
  int settle = 5;
  double slackMb = 4;
  std::string corpus = std::string(SYLVORA_SOURCE_DIR) + "/data/sample_twitter11.txt";
  std::string stopList = std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt";
  std::string graphviz = "/usr/bin";
};

double HeapInUseMb() {
#ifdef SYLVORA_SOAK_ASAN
  return static_cast<double>(__sanitizer_get_current_allocated_bytes()) / 1e6;
#else
  return static_cast<double>(mallinfo2().uordblks) / 1e6;
#endif
}

// "VmRSS" or "VmHWM" of /proc/self/status, in megabytes.
double StatusMb(std::string_view key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.starts_with(key)) return std::strtod(line.c_str() + key.size() + 1, nullptr) / 1e3;
  }
  return 0;
}

bool ReadOptions(int argc, char** argv, SoakOptions& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view flag = argv[i];
    if (i + 1 >= argc) return false;
    const char* value = argv[++i];
    if (flag == "--rounds")
      options.rounds = std::atoi(value);
    else if (flag == "--settle")
      options.settle = std::atoi(value);
    else if (flag == "--slack-mb")
      options.slackMb = std::strtod(value, nullptr);
    else if (flag == "--corpus")
      options.corpus = value;
    else if (flag == "--stop-list")
      options.stopList = value;
    else if (flag == "--graphviz")
      options.graphviz = value;
    else
      return false;
  }
  return options.rounds > 0 && options.settle >= 1;
}

// One round; an empty result when every step did its work.
std::string Round(sylvora::Session& session, const SoakOptions& options) {
  sylvora::SilentNotifier notifier;
  sylvora::LoadOptions load;
  load.path = options.corpus;
  const auto loaded = sylvora::LoadCorpus(session, load, notifier);
  if (!loaded.loaded) return "load: " + loaded.error;

  sylvora::IndexOptions index;
  index.stopListPath = options.stopList;
  const auto indexed = sylvora::BuildIndexes(session, index);
  if (!indexed.indexed) return "index: " + indexed.error;

  sylvora::ModelOptions models;
  models.intervalLength = "6";
  models.unitCode = "h";
  const auto built = sylvora::BuildModels(session, models, notifier);
  if (!built.built) return "models: " + built.error;

  sylvora::MapOptions map;
  map.graphvizFolder = options.graphviz;
  const auto& words = session.WordIndex();
  const auto& stream = session.WordModel();
  sylvora::ClusterMap wordMap, intervalMap, tweetMap;
  auto report =
      sylvora::BuildWordMap(words, &stream, sylvora::WordMapLevel::kTweet, map, wordMap, notifier);
  if (!report.built) return "word map: " + report.error;
  report = sylvora::BuildIntervalMap(stream, map, intervalMap, notifier);
  if (!report.built) return "interval map: " + report.error;
  // The busiest interval gives the largest tweet map.
  std::int32_t busiest = 1;
  for (std::int32_t i = 1; i <= stream.IntervalCount(); ++i) {
    if (stream.IntervalDocCount(i) > stream.IntervalDocCount(busiest)) busiest = i;
  }
  report = sylvora::BuildTweetMap(words, stream, busiest, map, tweetMap, notifier);
  if (!report.built) return "tweet map: " + report.error;
  return {};
}

}  // namespace

int main(int argc, char** argv) {
  SoakOptions options;
  if (!ReadOptions(argc, argv, options)) {
    std::fprintf(stderr,
                 "usage: sylvora_soak [--rounds N] [--settle R] [--slack-mb M] [--corpus FILE] "
                 "[--stop-list FILE] [--graphviz FOLDER]\n");
    return 2;
  }
  sylvora::Session session;
  double settledHeap = 0, settledPeak = 0;
  int failures = 0;
  std::printf("round  heap_MB    rss_MB   peak_MB\n");
  for (int round = 1; round <= options.rounds; ++round) {
    if (const std::string error = Round(session, options); !error.empty()) {
      std::fprintf(stderr, "round %d failed: %s\n", round, error.c_str());
      return 1;
    }
    const double heap = HeapInUseMb(), peak = StatusMb("VmHWM");
    std::printf("%5d %8.1f %9.1f %9.1f\n", round, heap, StatusMb("VmRSS"), peak);
    std::fflush(stdout);
    if (round == options.settle) {
      settledHeap = heap;
      settledPeak = peak;
    } else if (round > options.settle) {
      if (heap > settledHeap + options.slackMb) {
        std::fprintf(stderr, "round %d: heap in use grew from %.1f MB (round %d) to %.1f MB\n",
                     round, settledHeap, options.settle, heap);
        ++failures;
      }
      if (peak > settledPeak + options.slackMb) {
        std::fprintf(stderr, "round %d: peak memory grew from %.1f MB (round %d) to %.1f MB\n",
                     round, settledPeak, options.settle, peak);
        ++failures;
      }
    }
  }
  if (failures > 0) return 1;
  std::printf("memory flat from round %d to round %d (slack %.1f MB)\n", options.settle,
              options.rounds, options.slackMb);
  return 0;
}
