#pragma once
// Plain text out of the markup that platforms put into post texts.

#include <string>
#include <string_view>

namespace sylvora {

// HTML (a Mastodon status's "content") as plain text: tags dropped, a line break (<br>) and
// the end of a paragraph become one space, character references decoded (named ones of the
// common set, decimal and hexadecimal), leading and trailing spaces removed. An unknown or
// unterminated reference stays as written. When `firstLink` is given it receives the address
// (href) of the first link that is not a mention or a hashtag (by the class of its <a> tag).
std::string HtmlToPlainText(std::string_view html, std::string* firstLink = nullptr);

// Appends `text` to `out` with "&amp;", "&lt;" and "&gt;" decoded in one left-to-right pass
// (the three that tweet texts escape), and line feeds, carriage returns and tabs made spaces
// (a cell holds one line, and the derived fields split at spaces).
void AppendTweetText(std::string_view text, std::string& out);

// Appends `text` with line feeds, carriage returns and tabs made spaces.
void AppendOneLine(std::string_view text, std::string& out);

// Appends code point `cp` as UTF-8 (U+FFFD for a surrogate or a value past U+10FFFF).
void AppendUtf8(char32_t cp, std::string& out);

}  // namespace sylvora
