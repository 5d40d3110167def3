#include "corpus/row_ranges.h"

#include <algorithm>
#include <cstring>

#include "common/parallel.h"

namespace sylvora {
namespace {

constexpr std::size_t kMinRowsPerRange = 2048;

}  // namespace

std::vector<std::size_t> RowRangeBounds(DocIndex rows) {
  return SplitRange(static_cast<std::size_t>(std::max<DocIndex>(rows, 0)), WorkerCount(),
                    kMinRowsPerRange);
}

void RunRowRanges(const std::vector<std::size_t>& bounds, CellStore& store,
                  const std::function<void(std::size_t, DocIndex, DocIndex, CellStore&)>& body) {
  // Range 0 runs on the calling thread, the only one that touches `store` meanwhile: it
  // stores there directly.
  std::vector<CellStore> arenas(bounds.size() < 3 ? 0 : bounds.size() - 2);
  const auto joinArenas = [&] {
    for (auto& arena : arenas) store.Absorb(std::move(arena));
  };
  try {
    RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
      body(part, static_cast<DocIndex>(begin), static_cast<DocIndex>(end),
           part == 0 ? store : arenas[part - 1]);
    });
  } catch (...) {
    joinArenas();  // cells written before the failure may view them
    throw;
  }
  joinArenas();
}

std::vector<std::size_t> LineRangeBounds(std::string_view text, std::size_t parts,
                                         std::size_t minimumBytes) {
  const std::vector<std::size_t> even = SplitRange(text.size(), parts, minimumBytes);
  std::vector<std::size_t> bounds{0};
  for (std::size_t p = 1; p + 1 < even.size(); ++p) {
    const std::size_t from = std::max(even[p], bounds.back());
    if (from >= text.size()) break;
    const void* hit = std::memchr(text.data() + from, '\n', text.size() - from);
    if (hit == nullptr) break;
    const auto cut = static_cast<std::size_t>(static_cast<const char*>(hit) - text.data()) + 1;
    if (cut < text.size()) bounds.push_back(cut);
  }
  bounds.push_back(text.size());
  return bounds;
}

}  // namespace sylvora
