#include "corpus/html_text.h"

#include "common/code_points.h"

#include <array>
#include <utility>

namespace sylvora {
namespace {

constexpr std::array<std::pair<std::string_view, char32_t>, 14> kNamed = {{
    {"amp", U'&'},
    {"lt", U'<'},
    {"gt", U'>'},
    {"quot", U'"'},
    {"apos", U'\''},
    {"nbsp", U' '},  // a plain space: the tokeniser and the derivations split at spaces
    {"hellip", U'\u2026'},
    {"mdash", U'\u2014'},
    {"ndash", U'\u2013'},
    {"lsquo", U'\u2018'},
    {"rsquo", U'\u2019'},
    {"ldquo", U'\u201C'},
    {"rdquo", U'\u201D'},
    {"copy", U'\u00A9'},
}};

// Decodes the reference starting at text[pos] == '&'; returns the characters consumed (0 when
// it is no reference we know).
std::size_t DecodeReference(std::string_view text, std::size_t pos, std::string& out) {
  const std::size_t semi = text.find(';', pos + 1);
  if (semi == std::string_view::npos || semi - pos > 12) return 0;
  const std::string_view name = text.substr(pos + 1, semi - pos - 1);
  if (name.size() >= 2 && name[0] == '#') {
    const bool hex = name[1] == 'x' || name[1] == 'X';
    const std::string_view digits = name.substr(hex ? 2 : 1);
    if (digits.empty()) return 0;
    char32_t cp = 0;
    for (const char c : digits) {
      int value = -1;
      if (c >= '0' && c <= '9') value = c - '0';
      if (hex && c >= 'a' && c <= 'f') value = c - 'a' + 10;
      if (hex && c >= 'A' && c <= 'F') value = c - 'A' + 10;
      if (value < 0) return 0;
      cp = cp * (hex ? 16 : 10) + static_cast<char32_t>(value);
      if (cp > 0x10FFFF) cp = 0x110000;  // stays out of range, reported as U+FFFD
    }
    AppendUtf8(cp, out);
    return semi - pos + 1;
  }
  for (const auto& [entity, cp] : kNamed) {
    if (entity == name) {
      AppendUtf8(cp, out);
      return semi - pos + 1;
    }
  }
  return 0;
}

bool TagIs(std::string_view tag, std::string_view name) {
  // `tag` is the text between "<" and ">", e.g. "br /" or "/p" or "p class=x".
  if (tag.size() < name.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = tag[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != name[i]) return false;
  }
  return tag.size() == name.size() || tag[name.size()] == ' ' || tag[name.size()] == '/' ||
         tag[name.size()] == '\t' || tag[name.size()] == '\n';
}

// The quoted value of attribute `name` in a tag's text, references decoded; "" when absent.
std::string Attribute(std::string_view tag, std::string_view name) {
  std::size_t pos = 0;
  while ((pos = tag.find(name, pos)) != std::string_view::npos) {
    const bool starts = pos > 0 && (tag[pos - 1] == ' ' || tag[pos - 1] == '\t');
    std::size_t p = pos + name.size();
    pos = p;
    if (!starts || p >= tag.size() || tag[p] != '=') continue;
    ++p;
    if (p >= tag.size() || (tag[p] != '"' && tag[p] != '\'')) continue;
    const std::size_t end = tag.find(tag[p], p + 1);
    if (end == std::string_view::npos) return {};
    const std::string_view raw = tag.substr(p + 1, end - p - 1);
    std::string value;
    for (std::size_t i = 0; i < raw.size(); ++i) {
      const std::size_t used = raw[i] == '&' ? DecodeReference(raw, i, value) : 0;
      if (used == 0) value.push_back(raw[i]);
      i += used == 0 ? 0 : used - 1;
    }
    return value;
  }
  return {};
}

// The address of an <a> tag that is an ordinary link (not a mention or a hashtag).
std::string LinkOf(std::string_view tag) {
  const std::string classes = Attribute(tag, "class");
  if (classes.find("mention") != std::string::npos ||
      classes.find("hashtag") != std::string::npos) {
    return {};
  }
  return Attribute(tag, "href");
}

void Space(std::string& out) {
  if (!out.empty() && out.back() != ' ') out.push_back(' ');
}

}  // namespace

void AppendUtf8(char32_t cp, std::string& out) {
  // Surrogates and numbers past the last code point become the replacement character.
  if ((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) cp = 0xFFFD;
  sylvora::AppendUtf8(out, cp);
}

std::string HtmlToPlainText(std::string_view html, std::string* firstLink) {
  std::string out;
  out.reserve(html.size());
  std::size_t i = 0;
  while (i < html.size()) {
    const char c = html[i];
    const char next = i + 1 < html.size() ? html[i + 1] : '\0';
    const bool opensTag =
        (next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z') || next == '/' || next == '!';
    if (c == '<' && opensTag) {
      const std::size_t close = html.find('>', i + 1);
      if (close == std::string_view::npos) {  // a lone "<" is text
        out.push_back(c);
        ++i;
        continue;
      }
      const std::string_view tag = html.substr(i + 1, close - i - 1);
      if (TagIs(tag, "br") || TagIs(tag, "/p") || TagIs(tag, "p")) Space(out);
      if (firstLink != nullptr && firstLink->empty() && TagIs(tag, "a")) {
        *firstLink = LinkOf(tag);
      }
      i = close + 1;
    } else if (c == '&') {
      const std::size_t used = DecodeReference(html, i, out);
      if (used == 0) out.push_back(c);
      i += used == 0 ? 1 : used;
    } else if (c == '\n' || c == '\r' || c == '\t') {
      Space(out);
      ++i;
    } else {
      out.push_back(c);
      ++i;
    }
  }
  const std::size_t first = out.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  out.erase(0, first);
  out.erase(out.find_last_not_of(' ') + 1);
  return out;
}

void AppendTweetText(std::string_view text, std::string& out) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '&') {
      const std::string_view rest = text.substr(i);
      if (rest.starts_with("&amp;")) {
        out.push_back('&');
        i += 4;
        continue;
      }
      if (rest.starts_with("&lt;") || rest.starts_with("&gt;")) {
        out.push_back(rest[1] == 'l' ? '<' : '>');
        i += 3;
        continue;
      }
    }
    out.push_back(c == '\n' || c == '\r' || c == '\t' ? ' ' : c);
  }
}

void AppendOneLine(std::string_view text, std::string& out) {
  for (const char c : text) out.push_back(c == '\n' || c == '\r' || c == '\t' ? ' ' : c);
}

}  // namespace sylvora
