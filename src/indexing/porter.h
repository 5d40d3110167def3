#pragma once
// Porter: reduces an English word to its stem with the Porter suffix-stripping algorithm (1980),
// for the word index when stemming is on and for look-ups into a stemmed vocabulary.
//
// Stem is a pure function: no state, no files, and it reports no errors. It acts only on
// lower-case ASCII letters. Any other character (an upper-case letter, a digit, a non-ASCII
// character) counts as an ordinary consonant and never matches an ending, so upper-case words
// pass through unchanged. Text is UTF-8. Lengths and positions are counted in characters (code
// points), so a multi-byte character counts as one character.
//
// Cost: linear in the word's length, with a few short scans of the word for each step. The only
// allocation is the result string, and there is none for words that fit the string's inline
// buffer (15 bytes with libstdc++). The result is never longer than the input.

#include <cstddef>
#include <string>
#include <string_view>

namespace sylvora::Porter {

// The stem of `word`. A word of at most 2 characters, not counting leading and trailing spaces,
// is returned as it is.
std::string Stem(std::string_view word);

// The building blocks of Stem, exposed so that tests can check them one by one. Other code calls
// Stem only. Every function accepts any UTF-8 text, including the empty string.
namespace detail {

// One letter per character: 'v' for a, e, i, o, u, and for a y that is not the first character
// and follows a character other than a, e, i, o, u (so a y after another y is a vowel). Every
// other character, including every upper-case letter, is 'c'.
std::string CVPattern(std::string_view word);

// m in [C](VC)^m[V]: how many runs of vowels in CVPattern(word) are followed by a consonant.
int WordMeasure(std::string_view word);

// Whether CVPattern(word) contains a 'v'.
bool ContainsVowel(std::string_view word);

// Whether `word` ends with `suffix` and is strictly longer: a suffix never matches a whole word.
bool EndsWith(std::string_view word, std::string_view suffix);

// Whether the last two characters are equal and not a doubled vowel letter ("aa" .. "uu"). A
// final "yy" counts only in a 2-character word or after one of a, e, i, o, u.
bool EndsWithDoubleConsonant(std::string_view word);

// Whether the word has at least 3 characters, its pattern ends with "cvc" and its last character
// is not w, x or y.
bool EndsWithCVC(std::string_view word);

// `word` without its last `n` characters (all of it when it is shorter), then `replacement`.
std::string ReplaceEnding(std::string_view word, std::size_t n, std::string_view replacement);

}  // namespace detail
}  // namespace sylvora::Porter
