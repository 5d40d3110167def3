#include "indexing/porter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include "allocation_count.h"
#include "common/code_points.h"
#include "common/text_decoding.h"

namespace sylvora::Porter {
namespace {

struct StemCase {
  std::string_view word;
  std::string_view stem;
};

// Words and their stems, each worked out by hand through all five steps: the algorithm's classic
// examples, for every row of the step tables a word whose rest passes the measure condition and
// one whose rest fails it, suffixes that never match the whole word, the y rule (a y after a, e,
// i, o or u is a consonant, after anything else a vowel), upper case (never a vowel, never an
// ending) and non-ASCII characters (consonants, counted as one character each).
// clang-format off
constexpr StemCase kStems[] = {
    {"caresses", "caress"}, {"ponies", "poni"}, {"cats", "cat"}, {"feed", "feed"},
    {"agreed", "agre"}, {"plastered", "plaster"}, {"motoring", "motor"}, {"sing", "sing"},
    {"conflated", "conflat"}, {"troubled", "troubl"}, {"sized", "size"}, {"hopping", "hop"},
    {"falling", "fall"}, {"filing", "file"}, {"happy", "happi"}, {"relational", "relat"},
    {"conditional", "condit"}, {"digitizer", "digit"}, {"archaeological", "archaeolog"},
    {"electrical", "electr"}, {"hopeful", "hope"}, {"adjustment", "adjust"}, {"adoption", "adopt"},
    {"controll", "control"}, {"rate", "rate"}, {"", ""}, {"s", "s"}, {"is", "is"}, {"as", "as"},
    {"ed", "ed"}, {"yy", "yy"}, {" is ", " is "}, {"as  ", "as  "}, {"sky", "sky"},
    {"rational", "ration"}, {"ies", "ie"}, {"sses", "sse"}, {"eed", "e"}, {"ing", "ing"},
    {"ied", "i"}, {"say", "sai"}, {"syzygy", "syzygi"}, {"tyy", "tyi"}, {"bayou", "bayou"},
    {"payyed", "pai"}, {"toyyed", "toi"}, {"styyed", "styi"}, {"USA", "USA"}, {"CATS", "CATS"},
    {"HAPPY", "HAPPY"}, {"CONFLATED", "CONFLATED"}, {"Cats", "Cat"}, {"sAy", "sAy"},
    {"hoPPing", "hoP"}, {"notional", "notion"}, {"valenci", "valenc"}, {"denci", "denci"},
    {"hesitanci", "hesit"}, {"fancy", "fanci"}, {"sizer", "sizer"}, {"conformabli", "conform"},
    {"ably", "abli"}, {"radicalli", "radic"}, {"tally", "talli"}, {"differentli", "differ"},
    {"gently", "gentli"}, {"vileli", "vile"}, {"freely", "freeli"}, {"analogousli", "analog"},
    {"trously", "trousli"}, {"vietnamization", "vietnam"}, {"sization", "sizat"},
    {"predication", "predic"}, {"nation", "nation"}, {"operator", "oper"}, {"gator", "gator"},
    {"feudalism", "feudal"}, {"realism", "realism"}, {"decisiveness", "decis"},
    {"liveness", "live"}, {"hopefulness", "hope"}, {"afulness", "aful"}, {"callousness", "callous"},
    {"nousness", "nous"}, {"formaliti", "formal"}, {"reality", "realiti"},
    {"sensitiviti", "sensit"}, {"divity", "diviti"}, {"sensibiliti", "sensibl"},
    {"ability", "abil"}, {"analogy", "analog"}, {"geology", "geologi"}, {"triplicate", "triplic"},
    {"plicate", "plicat"}, {"formative", "form"}, {"native", "nativ"}, {"formalize", "formal"},
    {"realize", "realiz"}, {"electriciti", "electr"}, {"triciti", "triciti"},
    {"stoical", "stoical"}, {"beful", "beful"}, {"goodness", "good"}, {"freeness", "freeness"},
    {"revival", "reviv"}, {"rival", "rival"}, {"allowance", "allow"}, {"balance", "balanc"},
    {"inference", "infer"}, {"fence", "fenc"}, {"airliner", "airlin"}, {"corner", "corner"},
    {"gyroscopic", "gyroscop"}, {"panic", "panic"}, {"adjustable", "adjust"}, {"table", "tabl"},
    {"defensible", "defens"}, {"visible", "visibl"}, {"irritant", "irrit"}, {"servant", "servant"},
    {"replacement", "replac"}, {"cement", "cement"}, {"torment", "torment"},
    {"dependent", "depend"}, {"patent", "patent"}, {"lotion", "lotion"}, {"adhesion", "adhes"},
    {"communion", "communion"}, {"homologou", "homolog"}, {"tabou", "tabou"},
    {"communism", "commun"}, {"truism", "truism"}, {"activate", "activ"}, {"debate", "debat"},
    {"angulariti", "angular"}, {"pity", "piti"}, {"effective", "effect"}, {"votive", "votiv"},
    {"bowdlerize", "bowdler"}, {"seize", "seiz"}, {"agreement", "agreement"}, {"caress", "caress"},
    {"ties", "ti"}, {"feeds", "feed"}, {"bleed", "bleed"}, {"proceed", "proce"}, {"rated", "rate"},
    {"bled", "bled"}, {"tabled", "tabl"}, {"sizing", "size"}, {"hissing", "hiss"},
    {"fizzed", "fizz"}, {"tanned", "tan"}, {"hoping", "hope"}, {"snowing", "snow"},
    {"boxed", "box"}, {"toying", "toi"}, {"cry", "cry"}, {"probate", "probat"}, {"cease", "ceas"},
    {"hope", "hope"}, {"roll", "roll"}, {"tell", "tell"}, {"\xC3\xA9s", "\xC3\xA9s"},
    {"\xC3\xB1u", "\xC3\xB1u"}, {"caf\xC3\xA9s", "caf\xC3\xA9"}, {"na\xC3\xAFve", "na\xC3\xAFv"},
    {"le\xC3\xB1\xC3\xB1" "ed", "le\xC3\xB1"}, {"ta\xC3\xB1ing", "ta\xC3\xB1" "e"},
    {"\xE2\x82\xACs", "\xE2\x82\xACs"}, {"\xF0\x9F\x98\x80ness", "\xF0\x9F\x98\x80ness"},
    {"internationalization", "internation"}, {"counterrevolutionaries", "counterrevolutionari"},
};
// clang-format on

TEST(PorterStem, Dictionary) {
  for (const StemCase& c : kStems)
    EXPECT_EQ(Stem(c.word), c.stem) << "stemming \"" << c.word << "\"";
}

// The result string is the only allocation, and there is none when it fits the string's own
// inline buffer.
TEST(PorterStem, AllocatesOnlyTheResult) {
  const std::size_t inlineCapacity = std::string().capacity();
  for (const StemCase& c : kStems) {
    int allocations = 0;
    {
      const test::ScopedAllocationCount count;
      const std::string stem = Stem(c.word);
      allocations = count.Count();
    }
    EXPECT_EQ(allocations, c.word.size() > inlineCapacity ? 1 : 0) << c.word;
  }
}

// Random words over letters the rules test and multi-byte characters stay well-formed and never
// grow; words of at most two characters come back unchanged.
TEST(PorterStem, RandomUtf8StaysWellFormedAndNeverGrows) {
  std::mt19937 random(7);
  const char32_t alphabet[] = {U'a', U'e',      U'i',      U'o',      U'u',          U'y', U's',
                               U'l', U'd',      U't',      U'n',      U'g',          U'b', U'z',
                               U'c', U'\u00E9', U'\u00F1', U'\u20AC', U'\U0001F600', U'A'};
  std::uniform_int_distribution<std::size_t> pick(0, std::size(alphabet) - 1);
  std::uniform_int_distribution<int> pickLength(0, 16);
  for (int n = 0; n < 100000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) AppendUtf8(word, alphabet[pick(random)]);
    const std::string stem = Stem(word);
    ASSERT_LE(stem.size(), word.size()) << word;
    ASSERT_TRUE(IsValidUtf8(stem)) << word << " -> " << stem;
    if (length <= 2) {
      ASSERT_EQ(stem, word);
    }
  }
}

// Malformed UTF-8 is outside the contract, but must not crash or read out of bounds.
TEST(PorterStem, ArbitraryBytesAreSafe) {
  std::mt19937 random(3);
  std::uniform_int_distribution<int> pickByte(0, 255);
  std::uniform_int_distribution<int> pickLength(0, 12);
  for (int n = 0; n < 50000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) word.push_back(static_cast<char>(pickByte(random)));
    ASSERT_LE(Stem(word).size(), word.size());
  }
}

}  // namespace
}  // namespace sylvora::Porter
