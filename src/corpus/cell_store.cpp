#include "corpus/cell_store.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

namespace sylvora {

std::string_view CellStore::Adopt(ByteBuffer&& buffer) {
  adopted_.push_back(std::move(buffer));
  return {adopted_.back().Data(), adopted_.back().Size()};
}

std::string_view CellStore::Adopt(std::string_view text) {
  ByteBuffer buffer(text.size());
  if (!text.empty()) std::memcpy(buffer.Data(), text.data(), text.size());
  buffer.SetSize(text.size());
  return Adopt(std::move(buffer));
}

std::string_view CellStore::Store(std::string_view text) {
  if (text.empty()) return {};
  if (text.size() > kBlockSize / 4) {  // a large text gets a block of its own
    auto block = std::make_unique_for_overwrite<char[]>(text.size());
    std::memcpy(block.get(), text.data(), text.size());
    largeBlocks_.push_back(std::move(block));
    arenaBytes_ += text.size();
    return {largeBlocks_.back().get(), text.size()};
  }
  if (blockUsed_ + text.size() > kBlockSize) {
    // Bytes are written before they are read: a new block is not zeroed first.
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(kBlockSize));
    blockUsed_ = 0;
    arenaBytes_ += kBlockSize;
  }
  char* target = blocks_.back().get() + blockUsed_;
  std::memcpy(target, text.data(), text.size());
  blockUsed_ += text.size();
  return {target, text.size()};
}

void CellStore::Overwrite(std::string_view& cell, std::string_view text) {
  if (text.size() <= cell.size() && !cell.empty()) {
    // The cell's bytes are its own (see the ownership rule), so they may be written.
    char* target = const_cast<char*>(cell.data());
    std::memmove(target, text.data(), text.size());
    cell = {target, text.size()};
    return;
  }
  cell = Store(text);
}

void CellStore::Overwrite(CompactCell& cell, std::string_view text) {
  const std::string_view old = cell.View();
  if (text.size() <= old.size() && !old.empty()) {
    char* target = const_cast<char*>(old.data());  // the cell's own bytes, as above
    std::memmove(target, text.data(), text.size());
    cell.Assign({target, text.size()}, *this);
    return;
  }
  cell.Assign(Store(text), *this);
}

const std::string_view* CellStore::KeepLongView(std::string_view text) {
  auto view = std::make_unique<std::string_view>(text);
  const std::lock_guard lock(longViewsLock_.mutex);
  longViews_.push_back(std::move(view));
  return longViews_.back().get();
}

void CompactCell::AssignLong(std::string_view text, CellStore& store) {
  const auto address = reinterpret_cast<std::uintptr_t>(store.KeepLongView(text));
  // Heap addresses of a user-space process stay below 2^47, so this never fires in practice;
  // a cell that pointed elsewhere would be worse than stopping.
  if (address > kAddressMask) std::abort();
  bits_ = (std::uint64_t{kLongText} << kLengthShift) | address;
}

void CellStore::Absorb(CellStore&& other) {
  for (auto& buffer : other.adopted_) adopted_.push_back(std::move(buffer));
  // The block in use stays last, where Store() writes.
  const auto current = blocks_.end() - (blocks_.empty() ? 0 : 1);
  blocks_.insert(current, std::make_move_iterator(other.blocks_.begin()),
                 std::make_move_iterator(other.blocks_.end()));
  for (auto& block : other.largeBlocks_) largeBlocks_.push_back(std::move(block));
  arenaBytes_ += other.arenaBytes_;
  {
    // Cells of long texts point at these views; they move over with the buffers.
    const std::lock_guard lock(longViewsLock_.mutex);
    for (auto& view : other.longViews_) longViews_.push_back(std::move(view));
    other.longViews_.clear();
  }
  other.Clear();
}

void CellStore::Clear() {
  adopted_.clear();
  blocks_.clear();
  largeBlocks_.clear();
  blockUsed_ = kBlockSize;
  arenaBytes_ = 0;
  longViews_.clear();
}

std::size_t CellStore::BytesHeld() const {
  std::size_t total = arenaBytes_ + longViews_.size() * sizeof(std::string_view);
  for (const auto& buffer : adopted_) total += buffer.Capacity();
  return total;
}

}  // namespace sylvora
