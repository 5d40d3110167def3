#pragma once
// Storage for the texts of a document table. A corpus of a million tweets has some twenty
// million cells, so a cell is only a reference (pointer and length packed into 8 bytes, see
// CompactCell) into a few large buffers: the decoded bytes of the corpus file, adopted whole,
// and an arena of 1 MiB blocks for texts that are rewritten or derived later. Buffers never
// move once filled, so cells stay valid for the life of the store.
//
// Ownership rule: every non-empty cell points at bytes that belong to that cell alone.
// That lets Overwrite() write a shorter or equal text over the old one in place, which keeps
// memory flat while the derivations rewrite every tweet. Callers never hand a cell a view of
// another cell's bytes; they go through Store() or Overwrite().

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "common/large_allocation.h"

namespace sylvora {

class CellStore;

// One cell of a column: a text owned by a CellStore, in 8 bytes instead of the 16 of a
// string_view. The low 48 bits hold the address (user-space addresses fit there) and the high
// 16 bits the length. Texts of 65,535 bytes or more are rare; for them the length bits hold
// kLongText and the address is that of a string_view kept by the store. An empty cell is all
// zero bits. Copying a cell copies the reference, never the text.
class CompactCell {
 public:
  CompactCell() = default;
  // A cell for `text`, whose bytes already belong to the cell (adopted by or stored in
  // `store`). The store is touched only for a long text; that path may run on several threads.
  CompactCell(std::string_view text, CellStore& store) { Assign(text, store); }

  void Assign(std::string_view text, CellStore& store) {
    const auto address = reinterpret_cast<std::uintptr_t>(text.data());
    if (text.size() < kLongText && address <= kAddressMask) {
      bits_ = text.empty() ? 0 : (std::uint64_t{text.size()} << kLengthShift) | address;
    } else {
      AssignLong(text, store);
    }
  }

  std::string_view View() const {
    const auto length = static_cast<std::size_t>(bits_ >> kLengthShift);
    const auto* address = reinterpret_cast<const char*>(bits_ & kAddressMask);
    if (length == kLongText) return *reinterpret_cast<const std::string_view*>(address);
    return {address, length};
  }
  operator std::string_view() const { return View(); }  // NOLINT: reads like the text it holds

  bool empty() const { return bits_ == 0; }
  std::size_t size() const { return View().size(); }

  friend bool operator==(const CompactCell& cell, std::string_view text) {
    return cell.View() == text;
  }

 private:
  friend class CellStore;
  static constexpr int kLengthShift = 48;
  static constexpr std::uint64_t kAddressMask = (std::uint64_t{1} << kLengthShift) - 1;
  static constexpr std::size_t kLongText = 0xFFFF;

  void AssignLong(std::string_view text, CellStore& store);

  std::uint64_t bits_ = 0;
};
static_assert(sizeof(CompactCell) == 8);

// A column of cells, one per row; large columns come from the large-block allocator.
using CellColumn = std::vector<CompactCell, LargeAllocator<CompactCell>>;

class CellStore {
 public:
  CellStore() = default;
  CellStore(CellStore&&) noexcept = default;
  CellStore& operator=(CellStore&&) noexcept = default;
  CellStore(const CellStore&) = delete;
  CellStore& operator=(const CellStore&) = delete;

  // Takes ownership of a whole buffer (the decoded file) and returns a view of its bytes.
  // Views into it may be used as cells as long as no two cells share bytes.
  std::string_view Adopt(ByteBuffer&& buffer);
  std::string_view Adopt(std::string_view text);  // copies the text into a buffer first

  // Copies `text` into the arena and returns the view to put into a cell.
  std::string_view Store(std::string_view text);

  // Puts `text` into the cell: in place when it fits, else into the arena. `text` may overlap
  // the cell's own bytes.
  void Overwrite(std::string_view& cell, std::string_view text);
  void Overwrite(CompactCell& cell, std::string_view text);

  // Takes over every buffer of `other` (a store another thread filled), keeping the views and
  // cells into them valid; `other` is left empty. Texts stored here later still go into this
  // store's own current block.
  void Absorb(CellStore&& other);

  // Drops every buffer: all views and cells handed out become invalid.
  void Clear();

  // Bytes held by the store, for memory reports.
  std::size_t BytesHeld() const;

 private:
  friend class CompactCell;
  static constexpr std::size_t kBlockSize = 1 << 20;

  // A stable home for the view of a long text, for the cell to point at.
  const std::string_view* KeepLongView(std::string_view text);

  // A mutex that a moved store does not take along: a store is only moved while nobody
  // else uses it.
  struct Lock {
    std::mutex mutex;
    Lock() = default;
    Lock(Lock&&) noexcept {}
    Lock& operator=(Lock&&) noexcept { return *this; }
  };

  std::vector<ByteBuffer> adopted_;  // a ByteBuffer's bytes never move
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::vector<std::unique_ptr<char[]>> largeBlocks_;
  std::size_t blockUsed_ = kBlockSize;  // forces a first block
  std::size_t arenaBytes_ = 0;
  std::vector<std::unique_ptr<std::string_view>> longViews_;  // guarded by longViewsLock_
  Lock longViewsLock_;
};

}  // namespace sylvora
