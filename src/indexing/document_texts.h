#pragma once
// DocumentTexts: the text of every document that an index takes in AssignText. A document's
// text is either a view of a cell of the corpus, when it is that cell as it stands and the
// caller lets the index borrow it, or its own bytes in a few shared buffers (joined fields,
// trimmed or rewritten text), never a heap string per document. A range whose every text is
// one field's cell without its outer spaces keeps nothing per document at all: it reads the
// cells when asked. Documents are appended in
// parts: each part is a contiguous range of documents filled by one thread, and the parts are
// joined in order without copying their bytes.
//
// Documents are numbered 0-based here; TermDocumentMatrix turns its 1-based numbers into
// these. Append is amortised O(length); At is O(parts), and there are a handful. Views stay
// valid until the set is cleared or assigned (and, for borrowed texts, while the corpus stays
// as it is). Nothing throws apart from std::bad_alloc.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/code_points.h"
#include "common/numbering.h"
#include "corpus/document_set.h"

namespace sylvora {

class DocumentTexts {
 public:
  // One range of documents, filled by one thread.
  class Part {
   public:
    // The documents first .. first + count - 1 of `documents`, each the cell of `field` without
    // its leading and trailing spaces; `documents` must outlive the part, unchanged.
    static Part OfCells(const DocumentSet& documents, FieldIndex field, std::size_t first,
                        std::size_t count) {
      Part part;
      part.cells_ = &documents;
      part.field_ = field;
      part.first_ = first;
      part.cellCount_ = count;
      return part;
    }
    void Reserve(std::size_t documents, std::size_t ownBytes) {
      entries_.reserve(documents);
      bytes_.reserve(ownBytes);
    }
    // Copies `text` into the part's own bytes.
    void Append(std::string_view text) {
      entries_.push_back({bytes_.size(), text.size() | kOwned});
      bytes_.append(text);
    }
    // Keeps a view of `text`, which must outlive the part.
    void Borrow(std::string_view text) {
      entries_.push_back({reinterpret_cast<std::uintptr_t>(text.data()), text.size()});
    }
    std::size_t Count() const { return cells_ != nullptr ? cellCount_ : entries_.size(); }
    std::string_view At(std::size_t doc) const {
      if (cells_ != nullptr) {
        return TrimSpaces(cells_->Cell(static_cast<DocIndex>(first_ + doc), field_));
      }
      const Entry& entry = entries_[doc];
      if ((entry.size & kOwned) != 0) return {bytes_.data() + entry.where, entry.size & ~kOwned};
      return {reinterpret_cast<const char*>(entry.where), entry.size};
    }

   private:
    static constexpr std::size_t kOwned = std::size_t{1} << (8 * sizeof(std::size_t) - 1);
    struct Entry {
      std::uintptr_t where;  // offset into bytes_, or the address of a borrowed text
      std::size_t size;      // with kOwned for a text in bytes_
    };
    std::string bytes_;
    std::vector<Entry> entries_;
    const DocumentSet* cells_ = nullptr;  // set for a part that reads the cells
    FieldIndex field_ = 0;
    std::size_t first_ = 0;
    std::size_t cellCount_ = 0;
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
