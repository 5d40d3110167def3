#include "indexing/token_list.h"

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

void TokenList::Replace(std::size_t i, std::string_view text) {
  tokens_[i].offset = static_cast<std::uint32_t>(bytes_.size());
  tokens_[i].bytes = static_cast<std::uint32_t>(text.size());
  bytes_.append(text);
}

std::vector<std::string> TokenList::Strings() const {
  std::vector<std::string> strings;
  strings.reserve(Count());
  for (std::size_t i = 0; i < Count(); ++i) strings.emplace_back(Token(i));
  return strings;
}

void TokeniseDocument(std::string_view text, TokenList& tokens) {
  tokens.Clear();
  VisitTokens(
      text, [&](std::string_view token, std::size_t characters) { tokens.Add(token, characters); });
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

// The character at byte `pos` and its byte length.
char32_t CharacterAt(std::string_view token, std::size_t pos, std::size_t& length) {
  const auto byte = static_cast<unsigned char>(token[pos]);
  if (byte < 0x80) {
    length = 1;
    return byte;
  }
  return DecodeUtf8At(token, pos, length);
}

// A lower-case letter in the sense of the case rules: in ASCII any code above 96, outside it
// Unicode's lower case.
bool StartsLowerCase(char32_t cp) { return cp < 0x80 ? cp > 96 : IsLowerCaseLetter(cp); }

// Lower-cases token i: ASCII in place, other letters by Unicode's mapping (which may change
// the byte length, and then the token is rewritten).
void LowerToken(TokenList& tokens, std::size_t i, std::string& scratch) {
  char* data = tokens.MutableData(i);
  const std::string_view token = tokens.Token(i);
  bool ascii = true;
  for (std::size_t pos = 0; pos < token.size(); ++pos) {
    const auto byte = static_cast<unsigned char>(data[pos]);
    if (byte >= 0x80) {
      ascii = false;
      break;
    }
    if (byte >= 'A' && byte <= 'Z') data[pos] = static_cast<char>(byte + 32);
  }
  if (ascii) return;
  scratch.clear();
  std::size_t pos = 0;
  while (pos < token.size()) {
    std::size_t length = 1;
    const char32_t cp = CharacterAt(token, pos, length);
    AppendUtf8(scratch, LowerCase(cp));
    pos += length;
  }
  if (scratch.size() == token.size()) {
    scratch.copy(data, scratch.size());
  } else {
    tokens.Replace(i, scratch);
  }
}

}  // namespace

void FoldCase(TokenList& tokens, bool keepAbbrevs) {
  std::string scratch;
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (tokens.Characters(i) < 2) continue;
    const std::string_view token = tokens.Token(i);
    if (keepAbbrevs) {
      std::size_t firstLength = 1, secondLength = 1;
      CharacterAt(token, 0, firstLength);
      if (!StartsLowerCase(CharacterAt(token, firstLength, secondLength))) continue;
    }
    LowerToken(tokens, i, scratch);
  }
}

void FilterTokenLength(TokenList& tokens, std::size_t minLen, std::size_t maxLen) {
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (tokens.IsEmpty(i)) continue;
    const std::size_t characters = tokens.Characters(i);
    std::size_t length = 1;
    if (characters < minLen && StartsLowerCase(CharacterAt(tokens.Token(i), 0, length))) {
      tokens.Empty(i);
    }
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
