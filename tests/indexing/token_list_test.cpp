// The four cleaning steps, one at a time, on tables of input and expected tokens.

#include "indexing/token_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "index_fixtures.h"
#include "indexing/stop_list.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

Strings Tokenise(std::string_view text) {
  TokenList tokens;
  TokeniseDocument(text, tokens);
  return tokens.Strings();
}

struct TokeniseCase {
  const char* text;
  Strings tokens;
};

TEST(TokeniseDocument, SplitsAtEverySeparatorAndDropsEmptyRuns) {
  const TokeniseCase cases[] = {
      {"", {}},
      {"   ", {}},
      {"!!! 2011 ...", {}},
      {"hello", {"hello"}},
      {"  two   words  ", {"two", "words"}},
      {"Don't stop-believing!! 2011", {"Don", "t", "stop", "believing"}},
      {"Caf\u00E9 au lait", {"Caf\u00E9", "au", "lait"}},
      {"caf\u00E9s", {"caf\u00E9s"}},
      {"Stra\u00DFe \u00AByes\u00BB", {"Stra\u00DFe", "yes"}},
      {"\u6771\u4EAC\u3002\u5927\u962A", {"\u6771\u4EAC", "\u5927\u962A"}},
      {"cafe\u0301 \u0301x", {"cafe\u0301", "x"}},  // a mark belongs to the word before it
      {"\u0663\u0664 x\u00D7y", {"\u0663\u0664", "x", "y"}},
      {"tab\there\nnewline", {"tab", "here", "newline"}},
      {"#hashtag @user http://t.co/abc", {"hashtag", "user", "http", "t", "co", "abc"}},
      {"under_score", {"under", "score"}},
      {"it\u2019s", {"it", "s"}},  // curly apostrophe (code 146)
      {"x\u00FFz", {"x\u00FFz"}},  // ÿ (code 255) is a letter
      {"\u0394\u03B5\u03BB\u03C4\u03B1 news", {"\u0394\u03B5\u03BB\u03C4\u03B1", "news"}},
      {"storm\U0001F300now", {"storm", "now"}},  // emoji are symbols
      {"a1b2c3", {"a", "b", "c"}},
      {"\u20ACuro", {"uro"}},
  };
  for (const TokeniseCase& c : cases) EXPECT_EQ(Tokenise(c.text), c.tokens) << c.text;
}

TEST(SplitOnSpaces, KeepsEverythingButTheSpaces) {
  const TokeniseCase cases[] = {
      {"Hello,  World", {"Hello,", "", "World"}},
      {"@Bob @ann", {"@Bob", "@ann"}},
      {"t.co/x", {"t.co/x"}},
      {" lead", {"", "lead"}},
      {"", {""}},
  };
  for (const TokeniseCase& c : cases) {
    TokenList tokens;
    SplitOnSpaces(c.text, tokens);
    EXPECT_EQ(tokens.Strings(), c.tokens) << c.text;
  }
}

struct FoldCase_ {
  const char* text;
  bool keepAbbrevs;
  Strings tokens;
};

TEST(FoldCase, LowersAllButAbbreviationsWhenAskedTo) {
  const FoldCase_ cases[] = {
      {"Hello USA UK Uk uk", false, {"hello", "usa", "uk", "uk", "uk"}},
      {"Hello USA UK Uk uk", true, {"hello", "USA", "UK", "uk", "uk"}},
      {"A I x", false, {"A", "I", "x"}},                // one character: left as it is
      {"NYers McDonald", true, {"NYers", "mcdonald"}},  // only the second character counts
      {"\u0394\u0395\u039B\u03A4\u0391", false, {"\u03B4\u03B5\u03BB\u03C4\u03B1"}},
      // An upper-case second letter keeps a word of any script as it is.
      {"\u0394\u0395\u039B\u03A4\u0391 \u0394\u03AD\u03BB\u03C4\u03B1",
       true,
       {"\u0394\u0395\u039B\u03A4\u0391", "\u03B4\u03AD\u03BB\u03C4\u03B1"}},
      {"\u0130ZMIR \u0130zmir", false, {"izmir", "izmir"}},  // shorter in UTF-8
      {"\u041C\u041E\u0421\u041A\u0412\u0410", false, {"\u043C\u043E\u0441\u043A\u0432\u0430"}},
  };
  for (const FoldCase_& c : cases) {
    TokenList tokens;
    TokeniseDocument(c.text, tokens);
    FoldCase(tokens, c.keepAbbrevs);
    EXPECT_EQ(tokens.Strings(), c.tokens) << c.text << " keepAbbrevs " << c.keepAbbrevs;
  }
}

struct LengthCase {
  const char* text;
  std::size_t minLen;
  Strings tokens;
};

TEST(FoldCase, AbbreviationsAreTokensWhoseSecondCodeIsBelow97) {
  TokenList tokens;
  SplitOnSpaces("X`Y Xa\u00FF XaY", tokens);  // codes 96, 97 and 97
  FoldCase(tokens, true);
  EXPECT_EQ(tokens.Strings(), (Strings{"X`Y", "xa\u00FF", "xay"}));
  // Tokens split at spaces may start with any character: "`" (code 96) is exempt from the
  // minimum length, "a" (97) not.
  TokenList lengths;
  SplitOnSpaces("`x ax Ax", lengths);
  FilterTokenLength(lengths, 3);
  EXPECT_EQ(lengths.Strings(), (Strings{"`x", "", "Ax"}));
}

TEST(FilterTokenLength, AppliesTheMinimumToLowerCaseStartsAndTheMaximumToAll) {
  const LengthCase cases[] = {
      {"to tea UK Ok", 3, {"", "tea", "UK", "Ok"}},
      {"to tea", 0, {"to", "tea"}},
      {"to tea", 4, {"", ""}},
      {"abcdefghijklmno abcdefghijklmnop", 3, {"abcdefghijklmno", ""}},
      {"ABCDEFGHIJKLMNOP", 3, {""}},  // upper case is exempt from the minimum only
      {"\u03B4\u03B5 \u03B4\u03B5\u03BB",
       3,
       {"", "\u03B4\u03B5\u03BB"}},  // Greek counts as above 96
  };
  for (const LengthCase& c : cases) {
    TokenList tokens;
    TokeniseDocument(c.text, tokens);
    FilterTokenLength(tokens, c.minLen);
    EXPECT_EQ(tokens.Strings(), c.tokens) << c.text << " minLen " << c.minLen;
  }
}

TEST(FilterTokenLength, CountsCharactersForTheMaximum) {
  // 15 two-byte letters: 30 bytes but 15 characters, so kept (the list counts characters).
  std::string fifteen;
  for (int i = 0; i < 15; ++i) fifteen += "\u03B1";
  TokenList tokens;
  TokeniseDocument(fifteen + " " + fifteen + "\u03B1", tokens);
  FilterTokenLength(tokens, 3);
  EXPECT_EQ(tokens.Strings(), (Strings{fifteen, ""}));
}

TEST(RemoveStopWords, EmptiesExactCaseSensitiveMatchesOnly) {
  testing::TempDir dir;
  StopList stop;
  stop.Load(testing::WriteStopList(dir, {"the", "and", "The"}), 3);
  TokenList tokens;
  TokeniseDocument("the cat and THE other", tokens);
  RemoveStopWords(tokens, stop);
  EXPECT_EQ(tokens.Strings(), (Strings{"", "cat", "", "THE", "other"}));
}

}  // namespace
}  // namespace sylvora
