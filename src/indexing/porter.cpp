#include "indexing/porter.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "common/code_points.h"

// How the stemmer works on UTF-8 without decoding it:
//  * Every ending and every letter the algorithm tests is ASCII, and no byte of a multi-byte
//    character is ASCII. So a byte comparison with an ending matches exactly where a character
//    comparison would, and a non-ASCII character is never a vowel and never a y.
//  * Scanning bytes instead of characters changes the consonant-vowel pattern only by repeating
//    the "c" of a multi-byte character. This changes neither the measure nor the presence of a
//    vowel, and a y after a multi-byte character is still a y after a non-vowel.
//  * Only the tests on the last characters (doubled consonant, consonant-vowel-consonant,
//    dropping one character, the short-word check) need character boundaries. They step back
//    over UTF-8 continuation bytes.
// Stem works in place in the storage of its result. No step makes the word longer than it was
// when it was passed in.

namespace sylvora::Porter {
namespace {

constexpr bool IsVowelLetter(char c) {
  return c == 'a' || c == 'e' || c == 'i' || c == 'o' || c == 'u';
}

constexpr bool IsContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Whether the character starting at byte `i` is a vowel. Byte i - 1 is the last byte of the
// previous character, and it is a vowel letter only when that whole character is one.
bool IsVowelAt(std::string_view word, std::size_t i) {
  const char c = word[i];
  if (IsVowelLetter(c)) return true;
  return c == 'y' && i > 0 && !IsVowelLetter(word[i - 1]);
}

// The byte offset where the character that ends just before byte `end` (> 0) begins.
std::size_t PreviousCharacterStart(std::string_view word, std::size_t end) {
  assert(end > 0 && end <= word.size());
  std::size_t i = end - 1;
  while (i > 0 && IsContinuationByte(word[i])) --i;
  return i;
}

// Whether `word`, without leading and trailing spaces, has at most 2 characters. Counts no
// further than the third character.
bool HasAtMostTwoCharacters(std::string_view word) {
  if (word.size() <= 2) return true;
  if (word.front() == ' ' || word.back() == ' ') word = TrimSpaces(word);
  int characters = 0;
  for (const char c : word) {
    if (!IsContinuationByte(c) && ++characters > 2) return false;
  }
  return true;
}

// Whether `word` ends with `suffix` and is longer. Compares from the end, where most endings
// already differ in the last or second-last letter.
bool EndsWithEnding(std::string_view word, std::string_view suffix) {
  const std::size_t n = suffix.size();
  if (n >= word.size()) return false;
  const char* end = word.data() + word.size();
  for (std::size_t k = 1; k <= n; ++k) {
    if (*(end - k) != suffix[n - k]) return false;
  }
  return true;
}

// m in [C](VC)^m[V]: how many runs of vowels are followed by a consonant.
int WordMeasure(std::string_view word) {
  int measure = 0;
  bool inVowels = false;
  bool previousIsVowelLetter = false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    const bool isVowelLetter = IsVowelLetter(c);
    if (isVowelLetter || (c == 'y' && i > 0 && !previousIsVowelLetter)) {
      inVowels = true;
    } else if (inVowels) {
      ++measure;
      inVowels = false;
    }
    previousIsVowelLetter = isVowelLetter;
  }
  return measure;
}

// Whether any character is a vowel.
bool ContainsVowel(std::string_view word) {
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (IsVowelAt(word, i)) return true;
  }
  return false;
}

// Whether the last two characters are equal and not a doubled vowel letter. A final "yy"
// counts only in a 2-character word or after one of a, e, i, o, u.
bool EndsWithDoubleConsonant(std::string_view word) {
  if (word.empty()) return false;
  const std::size_t last = PreviousCharacterStart(word, word.size());
  if (last == 0) return false;
  const std::size_t secondLast = PreviousCharacterStart(word, last);
  if (word.substr(secondLast, last - secondLast) != word.substr(last)) return false;
  if (word.size() - last != 1) return true;
  const char c = word[last];
  if (IsVowelLetter(c)) return false;
  if (c == 'y' && secondLast > 0) return IsVowelLetter(word[secondLast - 1]);
  return true;
}

// Whether the word has at least 3 characters, ends consonant-vowel-consonant, and its last
// character is not w, x or y.
bool EndsWithCVC(std::string_view word) {
  if (word.empty()) return false;
  const std::size_t third = PreviousCharacterStart(word, word.size());
  if (third == 0) return false;
  const std::size_t second = PreviousCharacterStart(word, third);
  if (second == 0) return false;
  const std::size_t first = PreviousCharacterStart(word, second);
  const char last = word[third];
  return !IsVowelAt(word, first) && IsVowelAt(word, second) && !IsVowelAt(word, third) &&
         last != 'w' && last != 'x' && last != 'y';
}

// One row of a suffix table: an ending and the text that takes its place.
struct SuffixRule {
  std::string_view suffix;
  std::string_view replacement;
};

// A suffix table that finds the first matching row, in table order, while looking only at the
// rows that end with the word's last letter.
template <std::size_t N>
class SuffixTable {
 public:
  constexpr explicit SuffixTable(const SuffixRule (&rules)[N]) {
    for (std::size_t row = 0; row < N; ++row) {
      rules_[row] = rules[row];
      const auto letter = static_cast<std::size_t>(rules[row].suffix.back() - 'a');
      rowsByLastLetter_[letter][rowCount_[letter]++] = static_cast<std::uint8_t>(row);
    }
  }

  // The first row whose suffix `word` ends with (and is longer than); nullptr when none.
  const SuffixRule* FirstMatch(std::string_view word) const {
    if (word.empty() || word.back() < 'a' || word.back() > 'z') return nullptr;
    const auto letter = static_cast<std::size_t>(word.back() - 'a');
    for (std::size_t k = 0; k < rowCount_[letter]; ++k) {
      const SuffixRule& rule = rules_[rowsByLastLetter_[letter][k]];
      if (EndsWithEnding(word, rule.suffix)) return &rule;
    }
    return nullptr;
  }

 private:
  std::array<SuffixRule, N> rules_{};
  std::array<std::array<std::uint8_t, N>, 26> rowsByLastLetter_{};
  std::array<std::uint8_t, 26> rowCount_{};
};

constexpr SuffixRule kStep1aRules[] = {{"sses", "ss"}, {"ies", "i"}, {"ss", "ss"}, {"s", ""}};

// Rows "bli" -> "ble" and "logi" -> "log" stand where the published algorithm has
// "abli" -> "able", and the table goes on beyond it.
constexpr SuffixRule kStep2Rules[] = {
    {"ational", "ate"}, {"tional", "tion"}, {"enci", "ence"}, {"anci", "ance"}, {"izer", "ize"},
    {"bli", "ble"},     {"alli", "al"},     {"entli", "ent"}, {"eli", "e"},     {"ousli", "ous"},
    {"ization", "ize"}, {"ation", "ate"},   {"ator", "ate"},  {"alism", "al"},  {"iveness", "ive"},
    {"fulness", "ful"}, {"ousness", "ous"}, {"aliti", "al"},  {"iviti", "ive"}, {"biliti", "ble"},
    {"logi", "log"}};

constexpr SuffixRule kStep3Rules[] = {{"icate", "ic"}, {"ative", ""},  {"alize", "al"},
                                      {"iciti", "ic"}, {"ical", "ic"}, {"ful", ""},
                                      {"ness", ""}};

// Step 4 removes its endings.
constexpr SuffixRule kStep4Rules[] = {
    {"al", ""},  {"ance", ""},  {"ence", ""}, {"er", ""},  {"ic", ""},  {"able", ""}, {"ible", ""},
    {"ant", ""}, {"ement", ""}, {"ment", ""}, {"ent", ""}, {"ion", ""}, {"ou", ""},   {"ism", ""},
    {"ate", ""}, {"iti", ""},   {"ous", ""},  {"ive", ""}, {"ize", ""}};

constexpr SuffixTable kStep1aTable(kStep1aRules);
constexpr SuffixTable kStep2Table(kStep2Rules);
constexpr SuffixTable kStep3Table(kStep3Rules);
constexpr SuffixTable kStep4Table(kStep4Rules);

// The word being stemmed, held in a buffer that it never outgrows.
class WorkingWord {
 public:
  explicit WorkingWord(std::string& storage)
      : data_(storage.data()), size_(storage.size()), capacity_(storage.size()) {}

  std::size_t Size() const { return size_; }
  std::string_view View() const { return {data_, size_}; }
  char Last() const { return data_[size_ - 1]; }

  // The word without an ending of `n` ASCII characters that it ends with.
  std::string_view Without(std::size_t n) const { return {data_, size_ - n}; }

  // EndsWith for the built-in endings, which are ASCII.
  bool EndsWith(std::string_view suffix) const { return EndsWithEnding(View(), suffix); }

  // Replaces the last `n` ASCII characters, which the word was found to end with.
  void ReplaceEnding(std::size_t n, std::string_view replacement) {
    assert(n <= size_ && size_ - n + replacement.size() <= capacity_);
    size_ -= n;
    std::copy(replacement.begin(), replacement.end(), data_ + size_);
    size_ += replacement.size();
  }

  void Append(std::string_view text) { ReplaceEnding(0, text); }
  void SetLast(char c) { data_[size_ - 1] = c; }
  void DropLastCharacter() { size_ = PreviousCharacterStart(View(), size_); }

 private:
  char* data_;
  std::size_t size_;
  std::size_t capacity_;
};

void Step1a(WorkingWord& word) {
  if (const SuffixRule* rule = kStep1aTable.FirstMatch(word.View())) {
    word.ReplaceEnding(rule->suffix.size(), rule->replacement);
  }
}

// After "ed" or "ing" came off: restore an "e" or undouble a final consonant.
void TidyAfterStep1b(WorkingWord& word) {
  if (word.EndsWith("at") || word.EndsWith("bl") || word.EndsWith("iz")) {
    word.Append("e");  // "at" -> "ate", "bl" -> "ble", "iz" -> "ize"
  } else if (EndsWithDoubleConsonant(word.View())) {
    const char last = word.Last();
    if (last != 'l' && last != 's' && last != 'z') word.DropLastCharacter();
  } else if (WordMeasure(word.View()) == 1 && EndsWithCVC(word.View())) {
    word.Append("e");
  }
}

void Step1b(WorkingWord& word) {
  if (word.EndsWith("eed")) {
    if (WordMeasure(word.Without(3)) > 0) word.ReplaceEnding(3, "ee");
    return;
  }
  for (const std::string_view ending : {std::string_view("ed"), std::string_view("ing")}) {
    if (word.EndsWith(ending) && ContainsVowel(word.Without(ending.size()))) {
      word.ReplaceEnding(ending.size(), "");
      TidyAfterStep1b(word);
      return;
    }
  }
}

void Step1c(WorkingWord& word) {
  if (word.EndsWith("y") && ContainsVowel(word.Without(1))) word.SetLast('i');
}

// Steps 2 and 3: only the first row whose ending matches counts; it applies when the rest of
// the word has a measure above 0.
template <std::size_t N>
void ApplyFirstMatchingRule(WorkingWord& word, const SuffixTable<N>& table) {
  const SuffixRule* rule = table.FirstMatch(word.View());
  if (rule == nullptr) return;
  if (WordMeasure(word.Without(rule->suffix.size())) > 0) {
    word.ReplaceEnding(rule->suffix.size(), rule->replacement);
  }
}

// Only the first matching ending counts; it comes off when the rest has a measure above 1, and
// "ion" only after an s or a t.
void Step4(WorkingWord& word) {
  const SuffixRule* rule = kStep4Table.FirstMatch(word.View());
  if (rule == nullptr) return;
  const std::string_view rest = word.Without(rule->suffix.size());
  if (WordMeasure(rest) <= 1) return;
  if (rule->suffix == "ion" && rest.back() != 's' && rest.back() != 't') return;
  word.ReplaceEnding(rule->suffix.size(), "");
}

void Step5(WorkingWord& word) {
  if (word.EndsWith("e")) {
    const std::string_view rest = word.Without(1);
    const int measure = WordMeasure(rest);
    if (measure > 1 || (measure == 1 && !EndsWithCVC(rest))) word.ReplaceEnding(1, "");
  }
  if (word.Size() > 0 && word.Last() == 'l' && WordMeasure(word.View()) > 1 &&
      EndsWithDoubleConsonant(word.View())) {
    word.DropLastCharacter();
  }
}

}  // namespace

std::string Stem(std::string_view word) {
  std::string result(word);
  if (HasAtMostTwoCharacters(word)) return result;

  WorkingWord working(result);
  Step1a(working);
  Step1b(working);
  Step1c(working);
  ApplyFirstMatchingRule(working, kStep2Table);
  ApplyFirstMatchingRule(working, kStep3Table);
  Step4(working);
  Step5(working);
  result.resize(working.Size());
  return result;
}

}  // namespace sylvora::Porter
