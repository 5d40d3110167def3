#pragma once
// DocumentTexts: the private copy of every document's text that an index takes in AssignText,
// kept as a few byte buffers plus an offset per document instead of a heap string per
// document (a million tweets cost a handful of allocations, not a million). Documents are
// appended in parts: each part is a contiguous range of documents filled by one thread, and
// the parts are joined in order without copying their bytes.
//
// Documents are numbered 0-based here; TermDocumentMatrix turns its 1-based numbers into
// these. Append is amortised O(length); At is O(parts), and there are a handful. Views stay
// valid until the set is cleared or assigned. Nothing throws apart from std::bad_alloc.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sylvora {

class DocumentTexts {
 public:
  // One range of documents, filled by one thread.
  class Part {
   public:
    Part() : starts_{0} {}
    void Reserve(std::size_t documents, std::size_t bytes) {
      starts_.reserve(documents + 1);
      bytes_.reserve(bytes);
    }
    void Append(std::string_view text) {
      bytes_.append(text);
      starts_.push_back(bytes_.size());
    }
    std::size_t Count() const { return starts_.size() - 1; }
    std::string_view At(std::size_t doc) const {
      return std::string_view(bytes_).substr(starts_[doc], starts_[doc + 1] - starts_[doc]);
    }

   private:
    std::string bytes_;
    std::vector<std::size_t> starts_;  // document i is bytes_[starts_[i], starts_[i + 1])
  };

  std::size_t Count() const { return count_; }

  std::string_view At(std::size_t doc) const {
    std::size_t part = 0;
    while (doc >= parts_[part].Count()) doc -= parts_[part++].Count();
    return parts_[part].At(doc);
  }

  // Appends the documents of `part` after those already held.
  void Join(Part&& part) {
    count_ += part.Count();
    parts_.push_back(std::move(part));
  }

  // Empties the set and gives its memory back.
  void Clear() {
    std::vector<Part>().swap(parts_);
    count_ = 0;
  }

 private:
  std::vector<Part> parts_;
  std::size_t count_ = 0;
};

}  // namespace sylvora
