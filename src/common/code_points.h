#pragma once
// Character-level helpers over UTF-8 text. "Characters" in positions and lengths are Unicode
// code points; positions in these helpers are 1-based, like the positions users see in the
// corpus fields. Character classes defined on Windows-1252 apply to code points
// that have a Windows-1252 byte (Windows1252Code); any other code point is an ordinary letter.

#include <cstddef>
#include <string>
#include <string_view>

namespace sylvora {

// Appends one code point as UTF-8.
void AppendUtf8(std::string& out, char32_t cp);

// Decodes the code point that starts at byte `pos` of valid UTF-8 text and stores its byte
// length in `length`.
char32_t DecodeUtf8At(std::string_view text, std::size_t pos, std::size_t& length);

// The number of code points in valid UTF-8 text.
std::size_t CodePointCount(std::string_view text);

// The byte offset of 1-based character `position`; text.size() when the text is shorter.
std::size_t ByteOffsetOfCharacter(std::string_view text, std::size_t position);

// Up to `count` characters starting at 1-based character `start`: shorter (or empty) where
// the text ends first, as Mid$ behaves.
std::string_view MidCharacters(std::string_view text, std::size_t start, std::size_t count);

// The Windows-1252 byte of a code point, or -1 when the code page has none.
int Windows1252Code(char32_t cp);

// Every occurrence of `from` replaced by `to`, scanning left to right without overlap.
// An empty `from` leaves the text as it is.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

// `text` without leading and trailing spaces (only the space character, as Trim$ does).
std::string_view TrimSpaces(std::string_view text);

}  // namespace sylvora
