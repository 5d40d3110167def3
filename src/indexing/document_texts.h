#pragma once
// DocumentTexts: the private copy of every document's text that an index works on between
// AssignText and BuildTDM, kept as one byte buffer plus an offset per document instead of a
// heap string per document (a million tweets cost two allocations, not a million).
//
// Documents are numbered 0-based here; TermDocumentMatrix turns its 1-based numbers into
// these. Append is amortised O(length); At is O(1). Views stay valid until the next Append,
// Clear or assignment. Nothing throws apart from std::bad_alloc.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sylvora {

class DocumentTexts {
 public:
  DocumentTexts() : starts_{0} {}

  std::size_t Count() const { return starts_.size() - 1; }
  std::size_t Bytes() const { return bytes_.size(); }

  std::string_view At(std::size_t doc) const {
    return std::string_view(bytes_).substr(starts_[doc], starts_[doc + 1] - starts_[doc]);
  }

  void Append(std::string_view text) {
    bytes_.append(text);
    starts_.push_back(bytes_.size());
  }

  void Reserve(std::size_t documents, std::size_t bytes) {
    starts_.reserve(documents + 1);
    bytes_.reserve(bytes);
  }

  // Empties the set and gives its memory back.
  void Clear() {
    std::string().swap(bytes_);
    std::vector<std::size_t>{0}.swap(starts_);
  }

 private:
  std::string bytes_;
  std::vector<std::size_t> starts_;  // document i is bytes_[starts_[i], starts_[i + 1])
};

}  // namespace sylvora
