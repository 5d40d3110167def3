#include "corpus/cell_store.h"

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

void CellStore::Absorb(CellStore&& other) {
  for (auto& buffer : other.adopted_) adopted_.push_back(std::move(buffer));
  // The block in use stays last, where Store() writes.
  const auto current = blocks_.end() - (blocks_.empty() ? 0 : 1);
  blocks_.insert(current, std::make_move_iterator(other.blocks_.begin()),
                 std::make_move_iterator(other.blocks_.end()));
  for (auto& block : other.largeBlocks_) largeBlocks_.push_back(std::move(block));
  arenaBytes_ += other.arenaBytes_;
  other.Clear();
}

void CellStore::Clear() {
  adopted_.clear();
  blocks_.clear();
  largeBlocks_.clear();
  blockUsed_ = kBlockSize;
  arenaBytes_ = 0;
}

std::size_t CellStore::BytesHeld() const {
  std::size_t total = arenaBytes_;
  for (const auto& buffer : adopted_) total += buffer.Capacity();
  return total;
}

}  // namespace sylvora
