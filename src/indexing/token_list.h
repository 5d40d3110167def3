#pragma once
// TokenList: the tokens of one document while preprocessing cleans them, and the four cleaning
// steps that run on it in this order: TokeniseDocument, FoldCase, FilterTokenLength,
// RemoveStopWords.
//
// Storage. The token bytes sit one after another in one buffer with a (offset, bytes,
// characters) entry per token, so a list reused from document to document allocates nothing
// once it has grown. A step "empties" a token by setting its length to 0; the token keeps its
// place, and preprocessing drops it when it writes the document back. Lengths are counted in
// characters (code points). Tokens are numbered 0-based here (this is internal working
// storage, not an index).
//
// The character classes (what separates tokens, what case folding does, the code of a
// character) are those of character_classes.h. No step fails or throws apart from
// std::bad_alloc.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/code_points.h"
#include "indexing/character_classes.h"

namespace sylvora {

class StopList;

class TokenList {
 public:
  void Clear() {
    bytes_.clear();
    tokens_.clear();
  }

  // Appends a token of `characters` code points.
  void Add(std::string_view token, std::size_t characters);

  std::size_t Count() const { return tokens_.size(); }
  std::string_view Token(std::size_t i) const {
    return std::string_view(bytes_).substr(tokens_[i].offset, tokens_[i].bytes);
  }
  std::size_t Characters(std::size_t i) const { return tokens_[i].characters; }
  bool IsEmpty(std::size_t i) const { return tokens_[i].bytes == 0; }
  void Empty(std::size_t i) { tokens_[i].bytes = tokens_[i].characters = 0; }

  // Writable bytes of token i, for in-place rewriting that keeps the length.
  char* MutableData(std::size_t i) { return bytes_.data() + tokens_[i].offset; }
  // Replaces the text of token i by `text` of the same number of characters (any length in
  // bytes); the old bytes stay unused in the buffer until Clear.
  void Replace(std::size_t i, std::string_view text);

  // Every token as a string, emptied ones included (for tests and diagnostics).
  std::vector<std::string> Strings() const;

 private:
  struct Span {
    std::uint32_t offset;
    std::uint32_t bytes;
    std::uint32_t characters;
  };
  std::string bytes_;
  std::vector<Span> tokens_;
};

// Replaces `tokens` by the tokens of `text`: every separator character turns into a break,
// runs of breaks count as one, and nothing is left at either end. A combining mark belongs to
// the word it follows and is a break where no word precedes it. A text without a letter
// gives no token. One pass over the text.
void TokeniseDocument(std::string_view text, TokenList& tokens);

// The same tokens handed to visit(token, characters) as views into `text`, without copying.
template <typename Visit>
void VisitTokens(std::string_view text, Visit&& visit);

// Splits `text` at single spaces only, keeping case and punctuation: two adjacent spaces give
// an empty token, and so do a leading and a trailing space.
void SplitOnSpaces(std::string_view text, TokenList& tokens);

// Lower-cases every token of at least 2 characters, except, with `keepAbbrevs`, a token whose
// second character is not a lower-case letter: in ASCII a code below 97, outside it anything
// Unicode does not call lower case ("USA", "UK", "ÉCOLE" stay; "Hello" becomes "hello",
// "Straße" "straße"). Tokens of 1 character are left as they are.
void FoldCase(TokenList& tokens, bool keepAbbrevs);

// The longest token an index keeps, in characters.
inline constexpr std::size_t kMaxTokenLength = 15;

// Empties a token shorter than `minLen` characters that starts with a lower-case letter (in
// ASCII a code above 96, outside it Unicode's lower case; so tokens kept upper-case by FoldCase
// and words of scripts without case are exempt), then any token longer than `maxLen`.
void FilterTokenLength(TokenList& tokens, std::size_t minLen, std::size_t maxLen = kMaxTokenLength);

// Empties every token equal (case-sensitive) to a word of `stopWords`.
void RemoveStopWords(TokenList& tokens, const StopList& stopWords);

// ---- implementation ----

template <typename Visit>
void VisitTokens(std::string_view text, Visit&& visit) {
  std::size_t start = 0;       // first byte of the token being read
  std::size_t characters = 0;  // its length so far; 0 between tokens
  std::size_t pos = 0;
  while (pos < text.size()) {
    const auto byte = static_cast<unsigned char>(text[pos]);
    std::size_t length = 1;
    bool separator;
    if (byte < 0x80) {
      separator = IsAsciiSeparator(byte);
    } else {
      const char32_t cp = DecodeUtf8At(text, pos, length);
      separator = IsTokenSeparator(cp) || (characters == 0 && IsCombiningMark(cp));
    }
    if (separator) {
      if (characters > 0) visit(text.substr(start, pos - start), characters);
      characters = 0;
    } else {
      if (characters == 0) start = pos;
      ++characters;
    }
    pos += length;
  }
  if (characters > 0) visit(text.substr(start, pos - start), characters);
}

}  // namespace sylvora
