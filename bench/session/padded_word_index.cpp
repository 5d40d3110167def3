#include "padded_word_index.h"

#include <algorithm>
#include <cstdint>
#include <random>

#include "common/notifier.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"

namespace sylvora::bench {
namespace {

constexpr std::int32_t kMinDocFrequency = 20;
constexpr int kGroupSize = 20;
constexpr int kWordsPerTweet = 5;

// Word j of the made-up vocabulary: a consonant, "o", three syllables and "k" (letters only,
// unchanged by the stemmer, no stop word). The first letters vary because the vocabulary holds
// a limited number of terms per first letter.
std::string MadeUpWord(int j) {
  static constexpr const char kFirst[] = "bdfghjklmnprstvw";
  static constexpr const char* kSyllables[] = {"ba", "de", "gi", "ko", "mu",
                                               "pa", "ri", "su", "ta", "vo"};
  std::string word(1, kFirst[j % 16]);
  word += "o";
  for (int digit = 0, rest = j / 16; digit < 3; ++digit, rest /= 10) word += kSyllables[rest % 10];
  return word + "k";
}

}  // namespace

std::string StopListPath() { return std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt"; }

bool LoadAndIndexPadded(Session& session, const std::string& corpusPath, int madeUpWords,
                        std::string& error) {
  LoadOptions load;
  load.path = corpusPath;
  const auto loaded = LoadCorpus(session, load, DefaultNotifier());
  if (!loaded.loaded) {
    error = loaded.error;
    return false;
  }
  auto& documents = session.Documents();
  const FieldIndex content = documents.ContentField();
  // Groups of kGroupSize words; the last one may be smaller.
  const int groups = (madeUpWords + kGroupSize - 1) / kGroupSize;
  if (groups > 0) {
    std::mt19937_64 random(7);
    for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
      const int group = static_cast<int>(random() % static_cast<std::uint64_t>(groups));
      std::string text(documents.Text(d, content));
      for (int w = 0; w < kWordsPerTweet; ++w) {
        const int size = std::min(kGroupSize, madeUpWords - group * kGroupSize);
        const int inGroup = static_cast<int>(random() % static_cast<std::uint64_t>(size));
        text += " " + MadeUpWord(group * kGroupSize + inGroup);
      }
      documents.SetText(d, content, text);
    }
  }
  IndexOptions options;
  options.stopListPath = StopListPath();
  options.minDocFrequency = kMinDocFrequency;
  const auto report = BuildIndexes(session, options);
  if (!report.indexed) error = report.error;
  return report.indexed;
}

int BaseTermCount(const std::string& corpusPath) {
  static const int count = [&corpusPath] {
    Session session;
    std::string error;
    return LoadAndIndexPadded(session, corpusPath, 0, error) ? session.WordIndex().TermCount() : -1;
  }();
  return count;
}

}  // namespace sylvora::bench
