#pragma once
// Turning the bytes of an input file into the UTF-8 text every layer works on.
//
// Input files come from Windows tools of several generations: a file that is valid UTF-8 is
// taken as UTF-8 (a leading byte-order mark is dropped); a file that opens with a UTF-16
// byte-order mark is read as UTF-16; in anything else each line that is valid UTF-8 stays
// so, and in the other lines only the bytes that form no UTF-8 character are read as
// Windows-1252, the single-byte code page those tools wrote. So one stray byte does not change
// how the rest of the file reads. Output is always UTF-8.

#include <string>
#include <string_view>

namespace sylvora {

// kMixed: UTF-8 with some lines repaired byte by byte from Windows-1252.
enum class SourceEncoding { kUtf8, kUtf16, kMixed };

// True when `bytes` is well-formed UTF-8 (no overlong forms, no surrogates, nothing past
// U+10FFFF). Linear, with a fast path for ASCII runs.
bool IsValidUtf8(std::string_view bytes);

// Every byte as its Windows-1252 character, written as UTF-8. The five bytes the code page
// leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the control characters of the same
// number, as Windows itself maps them.
std::string Windows1252ToUtf8(std::string_view bytes);

// UTF-16 text after its byte-order mark, little- or big-endian, as UTF-8. Unpaired surrogates
// become U+FFFD; an odd last byte is dropped.
std::string Utf16ToUtf8(std::string_view bytes, bool bigEndian);

// Rewrites every line ("\n"-terminated, or the last) of `bytes` that is not valid UTF-8: its
// well-formed UTF-8 characters stay, every other byte becomes its Windows-1252 character.
// Valid lines are not touched. Returns how many lines were rewritten (0: `bytes` unchanged).
// One validation pass over the lines; only the lines that fail are copied byte by byte.
std::size_t RepairUtf8Lines(std::string& bytes);

// Decodes in place: a valid UTF-8 buffer keeps its storage (only a BOM is removed), a UTF-16
// buffer with its BOM is replaced by its reading, and any other buffer has its invalid lines
// repaired (RepairUtf8Lines). Returns the encoding that was detected and, through
// `repairedLines` when given, how many lines were repaired.
SourceEncoding DecodeText(std::string& bytes, std::size_t* repairedLines = nullptr);

}  // namespace sylvora
