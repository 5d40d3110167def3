#include "indexing/porter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "allocation_count.h"
#include "common/code_points.h"

namespace sylvora::Porter {
namespace {

struct StemCase {
  std::string_view word;
  std::string_view stem;
};

void ExpectStems(const std::vector<StemCase>& cases) {
  for (const StemCase& c : cases) {
    EXPECT_EQ(Stem(c.word), c.stem) << "stemming \"" << c.word << "\"";
  }
}

// The algorithm's classic examples. Each was worked out by hand through all five steps.
TEST(PorterStem, ClassicExamples) {
  ExpectStems({
      {"caresses", "caress"},
      {"ponies", "poni"},
      {"cats", "cat"},
      {"feed", "feed"},
      {"agreed", "agre"},
      {"plastered", "plaster"},
      {"motoring", "motor"},
      {"sing", "sing"},
      {"conflated", "conflat"},
      {"troubled", "troubl"},
      {"sized", "size"},
      {"hopping", "hop"},
      {"falling", "fall"},
      {"filing", "file"},
      {"happy", "happi"},
      {"relational", "relat"},
      {"conditional", "condit"},
      {"digitizer", "digit"},
      {"archaeological", "archaeolog"},
      {"electrical", "electr"},
      {"hopeful", "hope"},
      {"adjustment", "adjust"},
      {"adoption", "adopt"},
      {"controll", "control"},
      {"rate", "rate"},
  });
}

TEST(PorterStem, ShortWordsAndEdgeCases) {
  ExpectStems({
      {"", ""},
      {"s", "s"},
      {"is", "is"},
      {"as", "as"},
      {"ed", "ed"},
      {"yy", "yy"},
      // Leading and trailing spaces do not count toward the two characters, and the word comes
      // back exactly as it was given.
      {" is ", " is "},
      {"as  ", "as  "},
      {"sky", "sky"},          // no vowel before the y
      {"rational", "ration"},  // step 2 leaves it (m of "r" is 0), step 4 removes "al"
  });
}

// A suffix matches only a word strictly longer than itself: the whole word never matches, and
// the next row that does match is used instead.
TEST(PorterStem, SuffixNeverMatchesTheWholeWord) {
  ExpectStems({
      {"ies", "ie"},    // "ies" falls through to the row "s"
      {"sses", "sse"},  // "sses" and "ss" do not match; "s" does
      {"eed", "e"},     // "eed" does not match; "ed" does, and "e" holds a vowel
      {"ing", "ing"},   // nothing left before "ing"
      {"ied", "i"},
  });
}

// Whether a y is a vowel depends only on whether the character before it is literally a, e, i, o
// or u, so a y after another y is a vowel.
TEST(PorterStem, YRule) {
  ExpectStems({
      {"say", "sai"},  // y after a vowel is a consonant, but "sa" holds a vowel
      {"syzygy", "syzygi"},
      {"tyy", "tyi"},      // the y of "ty" follows a consonant, so "ty" holds a vowel
      {"bayou", "bayou"},  // "bay" has m = 1: step 4 keeps "ou"
      {"payyed", "pai"},   // "yy" after a vowel is a doubled consonant: "payy" -> "pay" -> "pai"
      {"toyyed", "toi"},
      // "yy" after a consonant is no doubled consonant: "styy" keeps both, then 1c -> "styi".
      {"styyed", "styi"},
  });
}

// Upper-case letters are never vowels and no ending is upper case.
TEST(PorterStem, UpperCaseIsLeftAlone) {
  ExpectStems({
      {"USA", "USA"},
      {"CATS", "CATS"},
      {"HAPPY", "HAPPY"},
      {"CONFLATED", "CONFLATED"},
      {"Cats", "Cat"},
      {"sAy", "sAy"},      // "sA" holds no vowel, so the y stays
      {"hoPPing", "hoP"},  // "PP" is a doubled consonant like any other
  });
}

// For each row of the step tables: a word whose rest passes the measure condition, then one
// whose rest fails it. Every expectation was worked out by hand through all five steps.
// clang-format off
TEST(PorterStem, Step2Rows) {
  ExpectStems({
      {"relational", "relat"},      {"rational", "ration"},      // ational -> ate
      {"conditional", "condit"},    {"notional", "notion"},      // tional -> tion
      {"valenci", "valenc"},        {"denci", "denci"},          // enci -> ence
      {"hesitanci", "hesit"},       {"fancy", "fanci"},          // anci -> ance
      {"digitizer", "digit"},       {"sizer", "sizer"},          // izer -> ize
      {"conformabli", "conform"},   {"ably", "abli"},            // bli -> ble
      {"radicalli", "radic"},       {"tally", "talli"},          // alli -> al
      {"differentli", "differ"},    {"gently", "gentli"},        // entli -> ent
      {"vileli", "vile"},           {"freely", "freeli"},        // eli -> e
      {"analogousli", "analog"},    {"trously", "trousli"},      // ousli -> ous
      // "sization" ends with both "ization" and "ation"; only the first matching row is tried.
      {"vietnamization", "vietnam"}, {"sization", "sizat"},      // ization -> ize
      {"predication", "predic"},    {"nation", "nation"},        // ation -> ate
      {"operator", "oper"},         {"gator", "gator"},          // ator -> ate
      {"feudalism", "feudal"},      {"realism", "realism"},      // alism -> al
      {"decisiveness", "decis"},    {"liveness", "live"},        // iveness -> ive
      {"hopefulness", "hope"},      {"afulness", "aful"},        // fulness -> ful
      {"callousness", "callous"},   {"nousness", "nous"},        // ousness -> ous
      {"formaliti", "formal"},      {"reality", "realiti"},      // aliti -> al
      {"sensitiviti", "sensit"},    {"divity", "diviti"},        // iviti -> ive
      {"sensibiliti", "sensibl"},   {"ability", "abil"},         // biliti -> ble
      {"analogy", "analog"},        {"geology", "geologi"},      // logi -> log
  });
}
// clang-format on

// clang-format off
TEST(PorterStem, Step3Rows) {
  ExpectStems({
      {"triplicate", "triplic"},    {"plicate", "plicat"},       // icate -> ic
      {"formative", "form"},        {"native", "nativ"},         // ative -> ""
      {"formalize", "formal"},      {"realize", "realiz"},       // alize -> al
      {"electriciti", "electr"},    {"triciti", "triciti"},      // iciti -> ic
      {"electrical", "electr"},     {"stoical", "stoical"},      // ical -> ic
      {"hopeful", "hope"},          {"beful", "beful"},          // ful -> ""
      {"goodness", "good"},         {"freeness", "freeness"},    // ness -> ""
  });
}
// clang-format on

// clang-format off
TEST(PorterStem, Step4Rows) {
  ExpectStems({
      {"revival", "reviv"},         {"rival", "rival"},          // al
      {"allowance", "allow"},       {"balance", "balanc"},       // ance
      {"inference", "infer"},       {"fence", "fenc"},           // ence
      {"airliner", "airlin"},       {"corner", "corner"},        // er
      {"gyroscopic", "gyroscop"},   {"panic", "panic"},          // ic
      {"adjustable", "adjust"},     {"table", "tabl"},           // able
      {"defensible", "defens"},     {"visible", "visibl"},       // ible
      {"irritant", "irrit"},        {"servant", "servant"},      // ant
      {"replacement", "replac"},    {"cement", "cement"},        // ement
      {"adjustment", "adjust"},     {"torment", "torment"},      // ment
      {"dependent", "depend"},      {"patent", "patent"},        // ent
      {"adoption", "adopt"},        {"lotion", "lotion"},        // ion
      // m of "commun" is 2, but it ends with neither s nor t.
      {"adhesion", "adhes"},        {"communion", "communion"},  // ion
      {"homologou", "homolog"},     {"tabou", "tabou"},          // ou
      {"communism", "commun"},      {"truism", "truism"},        // ism
      {"activate", "activ"},        {"debate", "debat"},         // ate
      {"angulariti", "angular"},    {"pity", "piti"},            // iti
      // Step 1a takes the s of a final "ous", so this row sees only what step 2 left.
      {"analogousli", "analog"},    {"callousness", "callous"},  // ous
      {"effective", "effect"},      {"votive", "votiv"},         // ive
      {"bowdlerize", "bowdler"},    {"seize", "seiz"},           // ize
      // Only the first matching ending counts: "ement" fails (m of "agre" is 1), and "ent",
      // which would leave "agreem" with m = 2, is not tried.
      {"agreement", "agreement"},
  });
}
// clang-format on

TEST(PorterStem, Step1Rules) {
  ExpectStems({
      {"caress", "caress"},  // "ss" -> "ss"
      {"ties", "ti"},
      {"feeds", "feed"},
      {"bleed", "bleed"},    // m of "bl" is 0
      {"proceed", "proce"},  // "eed" -> "ee"; step 5 drops an e (m of "proce" is 1, no cvc)
      {"rated", "rate"},     // "at" -> "ate"
      {"bled", "bled"},      // "bl" holds no vowel
      {"tabled", "tabl"},    // "bl" -> "ble", then step 5
      {"sizing", "size"},    // "iz" -> "ize"
      {"hissing", "hiss"},   // a doubled s stays
      {"fizzed", "fizz"},    // a doubled z stays
      {"tanned", "tan"},
      {"hoping", "hope"},   // m = 1 and cvc: "e" comes back
      {"snowing", "snow"},  // cvc ending in w: no "e"
      {"boxed", "box"},
      {"toying", "toi"},  // "toy" does not end cvc (final y); step 1c gives "toi"
      {"cry", "cry"},     // "cr" holds no vowel
  });
}

TEST(PorterStem, Step5Rules) {
  ExpectStems({
      {"probate", "probat"},  // m of "probat" is 2
      {"cease", "ceas"},      // m of "ceas" is 1 and it does not end cvc
      {"hope", "hope"},       // m of "hop" is 1 and it ends cvc
      {"controll", "control"},
      {"roll", "roll"},  // m = 1
      {"tell", "tell"},
  });
}

// Non-ASCII characters are ordinary consonants, and lengths are in characters, not bytes.
TEST(PorterStem, NonAsciiCharactersAreConsonants) {
  ExpectStems({
      {"\xC3\xA9s", "\xC3\xA9s"},       // "és": two characters in three bytes
      {"\xC3\xB1u", "\xC3\xB1u"},       // "ñu"
      {"caf\xC3\xA9s", "caf\xC3\xA9"},  // "cafés" -> "café"
      {"na\xC3\xAFve", "na\xC3\xAFv"},  // "naïve": ï is no vowel, so no "ive" ending
      {"le\xC3\xB1\xC3\xB1"
       "ed",
       "le\xC3\xB1"},  // "leññed": the doubled ñ loses one whole ñ
      {"ta\xC3\xB1ing",
       "ta\xC3\xB1"
       "e"},  // "tañing": "tañ" ends cvc, so "e" comes back
      {"\xE2\x82\xAC"
       "s",
       "\xE2\x82\xAC"
       "s"},  // "€s"
      {"\xF0\x9F\x98\x80"
       "ness",
       "\xF0\x9F\x98\x80"
       "ness"},  // m of the emoji is 0
  });
}

TEST(PorterDetail, CVPattern) {
  using detail::CVPattern;
  EXPECT_EQ(CVPattern(""), "");
  EXPECT_EQ(CVPattern("tree"), "ccvv");
  EXPECT_EQ(CVPattern("toy"), "cvc");        // y after a vowel
  EXPECT_EQ(CVPattern("syzygy"), "cvcvcv");  // y after a consonant
  EXPECT_EQ(CVPattern("yes"), "cvc");        // y at the start
  EXPECT_EQ(CVPattern("yyy"), "cvv");        // y after y is a vowel
  EXPECT_EQ(CVPattern("ay"), "vc");
  EXPECT_EQ(CVPattern("Ay"), "cv");  // upper case is a consonant, so the y follows a consonant
  EXPECT_EQ(CVPattern("AEIOU"), "ccccc");
  EXPECT_EQ(CVPattern("caf\xC3\xA9"), "cvcc");  // one letter per character
  EXPECT_EQ(CVPattern("\xC3\xB1y"), "cv");
}

TEST(PorterDetail, WordMeasure) {
  using detail::WordMeasure;
  for (const std::string_view word : {"", "tr", "ee", "tree", "y", "by", "yyy", "yyyy"}) {
    EXPECT_EQ(WordMeasure(word), 0) << word;
  }
  for (const std::string_view word : {"trouble", "oats", "trees", "ivy", "toy", "caf\xC3\xA9"}) {
    EXPECT_EQ(WordMeasure(word), 1) << word;
  }
  for (const std::string_view word : {"troubles", "private", "oaten", "orrery"}) {
    EXPECT_EQ(WordMeasure(word), 2) << word;
  }
  EXPECT_EQ(WordMeasure("archaeolog"), 3);
  EXPECT_EQ(WordMeasure("\xC3\xA9t\xC3\xA9"), 0);  // "été": é is no vowel
}

TEST(PorterDetail, ContainsVowel) {
  using detail::ContainsVowel;
  EXPECT_TRUE(ContainsVowel("happ"));
  EXPECT_TRUE(ContainsVowel("by"));
  EXPECT_TRUE(ContainsVowel("\xC3\xB1y"));  // "ñy": y after a consonant
  EXPECT_FALSE(ContainsVowel(""));
  EXPECT_FALSE(ContainsVowel("y"));
  EXPECT_FALSE(ContainsVowel("sk"));
  EXPECT_FALSE(ContainsVowel("AEIOU"));
  EXPECT_FALSE(ContainsVowel("\xC3\xA9"));
}

TEST(PorterDetail, EndsWith) {
  using detail::EndsWith;
  EXPECT_TRUE(EndsWith("cats", "s"));
  EXPECT_TRUE(EndsWith("ies", "es"));
  EXPECT_TRUE(EndsWith("cats", ""));
  EXPECT_FALSE(EndsWith("s", "s"));
  EXPECT_FALSE(EndsWith("ies", "ies"));
  EXPECT_FALSE(EndsWith("", ""));
  EXPECT_FALSE(EndsWith("cats", "S"));
  EXPECT_FALSE(EndsWith("at", "cat"));
  EXPECT_TRUE(EndsWith("caf\xC3\xA9", "\xC3\xA9"));
  EXPECT_TRUE(EndsWith("\xC3\xA9\xC3\xA9", "\xC3\xA9"));
  EXPECT_FALSE(EndsWith("\xC3\xA9", "\xC3\xA9"));
}

TEST(PorterDetail, EndsWithDoubleConsonant) {
  using detail::EndsWithDoubleConsonant;
  for (const std::string_view word : {"fall", "hopp", "yy", "ayy", "buyy", "LL", "SS", "hoPP", "11",
                                      "\xC3\xA9\xC3\xA9", "a\xC3\x9F\xC3\x9F"}) {
    EXPECT_TRUE(EndsWithDoubleConsonant(word)) << word;
  }
  for (const std::string_view word : {"", "x", "ab", "tee", "aa", "zuu", "syy", "tyy", "\xC3\xB1yy",
                                      "a\xC3\xA9", "\xC2\xA9\xC3\xA9"}) {
    EXPECT_FALSE(EndsWithDoubleConsonant(word)) << word;
  }
}

TEST(PorterDetail, EndsWithCVC) {
  using detail::EndsWithCVC;
  for (const std::string_view word : {"hop", "fil", "cat", "yat", "ayab",
                                      "\xC3\xA9"
                                      "ab",
                                      "ta\xC3\xB1", "tyt", "taW"}) {
    EXPECT_TRUE(EndsWithCVC(word)) << word;
  }
  for (const std::string_view word : {"", "ab", "hope", "how", "box", "toy", "sky", "tAp", "bayt",
                                      "\xC3\xA9"
                                      "b",
                                      "a\xC3\xA9"
                                      "b",
                                      "oat"}) {
    EXPECT_FALSE(EndsWithCVC(word)) << word;
  }
}

TEST(PorterDetail, ReplaceEnding) {
  using detail::ReplaceEnding;
  EXPECT_EQ(ReplaceEnding("caresses", 2, ""), "caress");
  EXPECT_EQ(ReplaceEnding("happy", 1, "i"), "happi");
  EXPECT_EQ(ReplaceEnding("relational", 7, "ate"), "relate");
  EXPECT_EQ(ReplaceEnding("caf\xC3\xA9", 1, "e"), "cafe");  // drops one character, two bytes
  EXPECT_EQ(ReplaceEnding("ab", 5, "x"), "x");
  EXPECT_EQ(ReplaceEnding("", 0, "ate"), "ate");
  EXPECT_EQ(ReplaceEnding("hop", 0, "e"), "hope");
}

TEST(PorterStem, LongWordsAreStemmedToo) {
  ExpectStems({
      {"internationalization", "internation"},  // "ization" -> "ize", "alize" -> "al", "al"
      {"counterrevolutionaries", "counterrevolutionari"},
  });
}

// The result string is the only allocation, and there is none when it fits the string's own
// inline buffer.
TEST(PorterStem, AllocatesOnlyTheResult) {
  const std::size_t inlineCapacity = std::string().capacity();
  for (const std::string_view word :
       {"caresses", "hopping", "relational", "archaeological", "conditional", "agreement",
        "caf\xC3\xA9s", "internationalization", "counterrevolutionaries"}) {
    int allocations = 0;
    {
      const test::ScopedAllocationCount count;
      const std::string stem = Stem(word);
      allocations = count.Count();
    }
    EXPECT_EQ(allocations, word.size() > inlineCapacity ? 1 : 0) << word;
  }
}

// Whether `text` is well-formed UTF-8 (structure only).
bool IsWellFormedUtf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    std::size_t length = 1;
    if (lead >= 0xF0) {
      length = 4;
    } else if (lead >= 0xE0) {
      length = 3;
    } else if (lead >= 0xC0) {
      length = 2;
    } else if (lead >= 0x80) {
      return false;
    }
    if (i + length > text.size()) return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    }
    i += length;
  }
  return true;
}

TEST(PorterProperty, NeverThrowsAndNeverGrowsOnRandomLowerCaseWords) {
  std::mt19937 random(20240601);
  // Letters weighted toward the ones the rules test, so that most endings get exercised.
  const std::string_view letters = "abcdefghijklmnopqrstuvwxyzaeiouyyslnteditcg";
  std::uniform_int_distribution<std::size_t> pickLetter(0, letters.size() - 1);
  std::uniform_int_distribution<int> pickLength(0, 20);
  for (int n = 0; n < 200000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) word.push_back(letters[pickLetter(random)]);
    std::string stem;
    ASSERT_NO_THROW(stem = Stem(word)) << word;
    ASSERT_LE(stem.size(), word.size()) << word;
    if (word.size() <= 2) {
      ASSERT_EQ(stem, word);
    }
  }
}

TEST(PorterProperty, RandomUtf8StaysWellFormedAndNeverGrows) {
  std::mt19937 random(7);
  const char32_t alphabet[] = {U'a',      U'e',      U'i',      U'y',          U's', U'l',
                               U'd',      U't',      U'n',      U'g',          U'b', U'z',
                               U'\u00E9', U'\u00F1', U'\u20AC', U'\U0001F600', U'A'};
  std::uniform_int_distribution<std::size_t> pick(0, std::size(alphabet) - 1);
  std::uniform_int_distribution<int> pickLength(0, 16);
  for (int n = 0; n < 50000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) AppendUtf8(word, alphabet[pick(random)]);
    std::string stem;
    ASSERT_NO_THROW(stem = Stem(word)) << word;
    ASSERT_LE(stem.size(), word.size()) << word;
    ASSERT_TRUE(IsWellFormedUtf8(stem)) << word << " -> " << stem;
  }
}

TEST(PorterProperty, UpperCaseWordsComeBackUnchanged) {
  std::mt19937 random(11);
  std::uniform_int_distribution<int> pickLetter('A', 'Z');
  std::uniform_int_distribution<int> pickLength(0, 15);
  for (int n = 0; n < 20000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) word.push_back(static_cast<char>(pickLetter(random)));
    ASSERT_EQ(Stem(word), word);
  }
}

// Malformed UTF-8 is outside the contract, but must not crash or read out of bounds.
TEST(PorterProperty, ArbitraryBytesAreSafe) {
  std::mt19937 random(3);
  std::uniform_int_distribution<int> pickByte(0, 255);
  std::uniform_int_distribution<int> pickLength(0, 12);
  for (int n = 0; n < 50000; ++n) {
    std::string word;
    const int length = pickLength(random);
    for (int k = 0; k < length; ++k) word.push_back(static_cast<char>(pickByte(random)));
    std::string stem;
    ASSERT_NO_THROW(stem = Stem(word));
    ASSERT_LE(stem.size(), word.size());
    for (const std::string_view probe : {std::string_view(word), std::string_view(stem)}) {
      (void)detail::CVPattern(probe);
      (void)detail::WordMeasure(probe);
      (void)detail::EndsWithDoubleConsonant(probe);
      (void)detail::EndsWithCVC(probe);
      (void)detail::ReplaceEnding(probe, 2, "x");
    }
  }
}

}  // namespace
}  // namespace sylvora::Porter
