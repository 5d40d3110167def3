#include "indexing/token_list.h"

#include <cassert>

#include "common/code_points.h"
#include "indexing/character_classes.h"
#include "indexing/stop_list.h"

namespace sylvora {

void TokenList::Add(std::string_view token, std::size_t characters) {
  tokens_.push_back({static_cast<std::uint32_t>(bytes_.size()),
                     static_cast<std::uint32_t>(token.size()),
                     static_cast<std::uint32_t>(characters)});
  bytes_.append(token);
}

std::vector<std::string> TokenList::Strings() const {
  std::vector<std::string> strings;
  strings.reserve(Count());
  for (std::size_t i = 0; i < Count(); ++i) strings.emplace_back(Token(i));
  return strings;
}

void TokeniseDocument(std::string_view text, TokenList& tokens) {
  tokens.Clear();
  std::size_t start = 0;       // first byte of the token being read
  std::size_t characters = 0;  // its length so far; 0 between tokens
  std::size_t pos = 0;
  const auto finish = [&](std::size_t end) {
    if (characters > 0) tokens.Add(text.substr(start, end - start), characters);
    characters = 0;
  };
  while (pos < text.size()) {
    const auto byte = static_cast<unsigned char>(text[pos]);
    std::size_t length = 1;
    const bool separator =
        byte < 0x80 ? IsAsciiSeparator(byte) : IsTokenSeparator(DecodeUtf8At(text, pos, length));
    if (separator) {
      finish(pos);
    } else {
      if (characters == 0) start = pos;
      ++characters;
    }
    pos += length;
  }
  finish(pos);
}

void SplitOnSpaces(std::string_view text, TokenList& tokens) {
  tokens.Clear();
  std::size_t start = 0;
  while (true) {
    const std::size_t space = text.find(' ', start);
    const std::string_view token = text.substr(
        start, space == std::string_view::npos ? std::string_view::npos : space - start);
    tokens.Add(token, CodePointCount(token));
    if (space == std::string_view::npos) break;
    start = space + 1;
  }
}

namespace {

// The code of the character at byte `pos` and its byte length.
int CodeAt(std::string_view token, std::size_t pos, std::size_t& length) {
  const auto byte = static_cast<unsigned char>(token[pos]);
  if (byte < 0x80) {
    length = 1;
    return byte;
  }
  return CharacterCode(DecodeUtf8At(token, pos, length));
}

void LowerInPlace(char* data, std::size_t bytes) {
  std::size_t pos = 0;
  while (pos < bytes) {
    const auto byte = static_cast<unsigned char>(data[pos]);
    if (byte < 0x80) {
      if (byte >= 'A' && byte <= 'Z') data[pos] = static_cast<char>(byte + 32);
      ++pos;
      continue;
    }
    std::size_t length = 1;
    const std::string_view rest(data + pos, bytes - pos);
    const char32_t cp = DecodeUtf8At(rest, 0, length);
    const char32_t lower = LowerCase(cp);
    if (lower != cp) {
      std::string encoded;
      AppendUtf8(encoded, lower);
      assert(encoded.size() == length);
      encoded.copy(data + pos, length);
    }
    pos += length;
  }
}

}  // namespace

void FoldCase(TokenList& tokens, bool keepAbbrevs) {
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (tokens.Characters(i) < 2) continue;
    const std::string_view token = tokens.Token(i);
    if (keepAbbrevs) {
      std::size_t firstLength = 1, secondLength = 1;
      CodeAt(token, 0, firstLength);
      if (CodeAt(token, firstLength, secondLength) < 97) continue;
    }
    LowerInPlace(tokens.MutableData(i), token.size());
  }
}

void FilterTokenLength(TokenList& tokens, std::size_t minLen, std::size_t maxLen) {
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (tokens.IsEmpty(i)) continue;
    const std::size_t characters = tokens.Characters(i);
    std::size_t length = 1;
    if (characters < minLen && CodeAt(tokens.Token(i), 0, length) > 96) tokens.Empty(i);
    if (characters > maxLen) tokens.Empty(i);
  }
}

void RemoveStopWords(TokenList& tokens, const StopList& stopWords) {
  if (stopWords.Count() == 0) return;
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (stopWords.Contains(tokens.Token(i))) tokens.Empty(i);
  }
}

}  // namespace sylvora
