#pragma once
// DocumentTokens: the documents of an index once split into tokens, as the threads of one
// pass found them. Each thread takes a contiguous range of documents and keeps, for its
// range, every distinct token once (numbered in order of first appearance inside the range)
// and each document's tokens as those numbers. Numbers are 0-based and local to their range;
// BuildVocab merges the ranges in order into the index's vocabulary, which gives the same
// first appearances as one pass over all documents.
//
// Cost: a token is hashed once per occurrence and its text stored once per range. Nothing
// throws apart from std::bad_alloc. A range belongs to one thread while it is filled; once
// filled, any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sylvora {

struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>{}(text);
  }
};

// Text -> number, looked up by string_view without building a string.
template <typename Value>
using StringMap = std::unordered_map<std::string, Value, StringHash, std::equal_to<>>;

class TokenRange {
 public:
  TokenRange() : starts_{0} {}

  // The number of `token` in this range, giving it the next number when it is new.
  std::int32_t Intern(std::string_view token) {
    const auto known = numbers_.find(token);
    if (known != numbers_.end()) return known->second;
    const auto number = static_cast<std::int32_t>(distinct_.size());
    distinct_.push_back(&numbers_.emplace(std::string(token), number).first->first);
    return number;
  }
  // Room for `documents` documents of `tokens` tokens in all. Reserving an upper bound costs
  // address space only (pages never written are never resident) and spares the copies, and
  // the peaks of old and new storage side by side, that growing step by step makes.
  void Reserve(std::size_t documents, std::size_t tokens) {
    starts_.reserve(documents + 1);
    if (wide_.empty()) narrow_.reserve(tokens);
    reserved_ = tokens;
  }
  // Adds token number `number` to the document being filled. Numbers are kept in 16 bits
  // while the range has fewer distinct tokens than that holds (tweets repeat a small
  // vocabulary), and all move to 32 bits at the first that does not fit.
  void Add(std::int32_t number) {
    if (!isWide_ && number <= UINT16_MAX) {
      narrow_.push_back(static_cast<std::uint16_t>(number));
      return;
    }
    if (!isWide_) Widen();
    wide_.push_back(number);
  }
  // Closes the document being filled; the next Add starts the next one.
  void EndDocument() {
    const std::size_t count = isWide_ ? wide_.size() : narrow_.size();
    if (count > UINT32_MAX) throw std::length_error("more tokens than one range holds");
    starts_.push_back(static_cast<std::uint32_t>(count));
  }

  std::size_t DocumentCount() const { return starts_.size() - 1; }
  // Calls visit(number) for each token of document `doc` in order.
  template <typename Visit>
  void ForEachToken(std::size_t doc, Visit&& visit) const {
    if (isWide_) {
      for (std::size_t k = starts_[doc]; k < starts_[doc + 1]; ++k) visit(wide_[k]);
    } else {
      for (std::size_t k = starts_[doc]; k < starts_[doc + 1]; ++k) {
        visit(static_cast<std::int32_t>(narrow_[k]));
      }
    }
  }
  std::size_t DistinctCount() const { return distinct_.size(); }
  const std::string& Distinct(std::int32_t number) const {
    return *distinct_[static_cast<std::size_t>(number)];
  }
  std::int32_t Find(std::string_view token) const {
    const auto known = numbers_.find(token);
    return known == numbers_.end() ? -1 : known->second;
  }
  // The document's tokens joined by single spaces.
  std::string Text(std::size_t doc) const;

 private:
  StringMap<std::int32_t> numbers_;
  std::vector<const std::string*> distinct_;  // the keys of numbers_, which never move
  void Widen();

  bool isWide_ = false;
  std::vector<std::uint16_t> narrow_;  // the token numbers while all fit 16 bits
  std::vector<std::int32_t> wide_;     // all of them once one does not
  std::size_t reserved_ = 0;
  std::vector<std::uint32_t> starts_;  // document i owns tokens [starts_[i], starts_[i + 1])
};

class DocumentTokens {
 public:
  std::size_t DocumentCount() const { return count_; }
  bool Empty() const { return ranges_.empty(); }
  const std::vector<TokenRange>& Ranges() const { return ranges_; }
  // The range that holds document `doc` (0-based) and the document's place inside it.
  std::pair<const TokenRange*, std::size_t> Locate(std::size_t doc) const;

  void Join(TokenRange&& range) {
    count_ += range.DocumentCount();
    ranges_.push_back(std::move(range));
  }
  void Clear() {
    std::vector<TokenRange>().swap(ranges_);
    count_ = 0;
  }

 private:
  std::vector<TokenRange> ranges_;
  std::size_t count_ = 0;
};

}  // namespace sylvora
