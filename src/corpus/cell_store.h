#pragma once
// Storage for the texts of a document table. A corpus of a million tweets has some twenty
// million cells, so a cell is only a view (pointer and length) into a few large buffers: the
// decoded bytes of the corpus file, adopted whole, and an arena of 1 MiB blocks for texts that
// are rewritten or derived later. Buffers never move once filled, so views stay valid for the
// life of the store.
//
// Ownership rule: every non-empty cell view points at bytes that belong to that cell alone.
// That lets Overwrite() write a shorter or equal text over the old one in place, which keeps
// memory flat while the derivations rewrite every tweet. Callers never hand a cell a view of
// another cell's bytes; they go through Store() or Overwrite().

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/large_allocation.h"

namespace sylvora {

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

  // Puts `text` into the cell viewed by `cell`: in place when it fits, else into the arena.
  // `text` may overlap the cell's own bytes.
  void Overwrite(std::string_view& cell, std::string_view text);

  // Takes over every buffer of `other` (a store another thread filled), keeping the views into
  // them valid; `other` is left empty. Texts stored here later still go into this store's own
  // current block.
  void Absorb(CellStore&& other);

  // Drops every buffer: all views handed out become invalid.
  void Clear();

  // Bytes held by the store, for memory reports.
  std::size_t BytesHeld() const;

 private:
  static constexpr std::size_t kBlockSize = 1 << 20;

  std::vector<ByteBuffer> adopted_;  // a ByteBuffer's bytes never move
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::vector<std::unique_ptr<char[]>> largeBlocks_;
  std::size_t blockUsed_ = kBlockSize;  // forces a first block
  std::size_t arenaBytes_ = 0;
};

}  // namespace sylvora
