#pragma once
// Turning the bytes of an input file into the UTF-8 text every layer works on.
//
// Input files come from Windows tools of several generations: a file that is valid UTF-8 is
// taken as UTF-8 (a leading byte-order mark is dropped); a file that opens with a UTF-16
// byte-order mark is read as UTF-16; anything else is read as Windows-1252, the single-byte
// code page those tools wrote. Output is always UTF-8.

#include <string>
#include <string_view>

namespace sylvora {

enum class SourceEncoding { kUtf8, kUtf16, kWindows1252 };

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

// Decodes in place: a valid UTF-8 buffer keeps its storage (only a BOM is removed), a UTF-16
// buffer with its BOM and any other buffer are replaced by their reading. Returns the encoding
// that was detected.
SourceEncoding DecodeText(std::string& bytes);

}  // namespace sylvora
