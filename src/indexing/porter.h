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

#include <string>
#include <string_view>

namespace sylvora::Porter {

// The stem of `word`. A word of at most 2 characters, not counting leading and trailing spaces,
// is returned as it is.
std::string Stem(std::string_view word);

}  // namespace sylvora::Porter
