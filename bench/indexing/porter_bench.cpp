// Stem throughput over a realistic mix of English word forms.
//
// The word list is built here: English base words times common inflectional and derivational
// endings, cut at 15 characters as the tokeniser does. That gives a few thousand distinct forms,
// and most of the stemmer's rows match some of them.

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include "indexing/porter.h"
#include "support/peak_memory.h"

namespace {

constexpr std::string_view kBases[] = {
    "connect", "relate",    "general", "nation", "happy",  "hope",    "adjust",   "govern",
    "organ",   "sense",     "argue",   "digit",  "form",   "operate", "effect",   "depend",
    "control", "decide",    "create",  "real",   "rate",   "agree",   "move",     "act",
    "elect",   "condition", "value",   "commun", "person", "respons", "rational", "care",
    "plaster", "trouble",   "motor",   "size",   "hop",    "fall",    "file",     "use",
    "vote",    "tweet",     "follow",  "share",  "post",   "love",    "hate",     "watch",
    "play",    "win",       "lose",    "call",   "run",    "stop",    "start",    "market",
    "brand",   "product",   "price",   "cost",   "pay",    "buy",     "sell",     "trend",
    "break",   "news",      "report",  "power",  "help",   "fix",     "vision",   "cloud",
    "secure",  "mobile",    "social",  "media",  "global", "local",   "season",   "sport",
};

constexpr std::string_view kEndings[] = {
    "",      "s",       "es",    "ed",     "ing",    "ly",      "er",   "ers",   "ness",    "ful",
    "fully", "ment",    "ments", "ation",  "ations", "ational", "ive",  "ively", "iveness", "able",
    "ably",  "ability", "ize",   "ized",   "izes",   "ization", "al",   "ally",  "ality",   "ity",
    "ities", "ism",     "ist",   "ists",   "ous",    "ously",   "ence", "ency",  "ant",     "ent",
    "ently", "ic",      "ical",  "ically", "ies",    "less",
};

// Short words of everyday text, which make up much of a tweet corpus.
constexpr std::string_view kShortWords[] = {
    "the",   "and",    "for",    "you",     "this",    "that", "with",  "have", "are",
    "was",   "just",   "not",    "get",     "all",     "new",  "now",   "out",  "day",
    "see",   "can",    "what",   "when",    "today",   "good", "great", "time", "people",
    "going", "really", "thanks", "tonight", "morning", "yes",  "lol",
};

std::vector<std::string> WordForms() {
  std::vector<std::string> words;
  for (const std::string_view base : kBases) {
    for (const std::string_view ending : kEndings) {
      std::string word(base);
      word.append(ending);
      if (word.size() > 15) continue;
      words.push_back(std::move(word));
    }
  }
  return words;
}

std::vector<std::string> TweetVocabulary() {
  // About one word in three of running text is a short function word.
  std::vector<std::string> words;
  const std::vector<std::string> forms = WordForms();
  for (std::size_t i = 0; i < forms.size(); ++i) {
    words.push_back(forms[i]);
    if (i % 2 == 0) words.emplace_back(kShortWords[i % std::size(kShortWords)]);
  }
  return words;
}

void RunStem(benchmark::State& state, const std::vector<std::string>& words) {
  std::size_t outputBytes = 0;
  for (auto _ : state) {
    for (const std::string& word : words) {
      std::string stem = sylvora::Porter::Stem(word);
      outputBytes += stem.size();
      benchmark::DoNotOptimize(stem);
    }
  }
  benchmark::DoNotOptimize(outputBytes);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * words.size()));
  state.counters["words"] = static_cast<double>(words.size());
  state.counters["peak_rss_MB"] =
      static_cast<double>(sylvora::bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}

void BM_StemWordForms(benchmark::State& state) {
  static const std::vector<std::string> words = WordForms();
  RunStem(state, words);
}
BENCHMARK(BM_StemWordForms);

void BM_StemTweetVocabulary(benchmark::State& state) {
  static const std::vector<std::string> words = TweetVocabulary();
  RunStem(state, words);
}
BENCHMARK(BM_StemTweetVocabulary);

}  // namespace

BENCHMARK_MAIN();
