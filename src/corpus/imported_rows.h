#pragma once
// The table an importer builds: rows in the sixteen fields of the "Twitter1.1" layout
// (format 8), so that the load workflow treats an imported corpus as a tab-separated one.
// The cells live in a CellStore that also adopts the input bytes: a row's cells are written
// over the bytes it was read from once the parser is done with them (they always fit for JSON
// lines, whose keys and punctuation take more room than the values), else into the arena.
// Each cell owns its bytes, as CellStore requires. DocumentSet::InstallTable takes the result.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common/large_allocation.h"
#include "common/numbering.h"
#include "corpus/cell_store.h"

namespace sylvora {

// The fields of the "Twitter1.1" layout that imports fill.
enum class LayoutField : FieldIndex {
  kDateTime = 0,
  kUserName = 1,
  kTweet = 2,
  kTweetId = 3,
  kRealName = 4,
  kFollowers = 5,
  kFollowing = 6,
  kPublicLists = 7,
  kTimeZone = 8,
  kGeo = 9,
  kUserTweets = 10,
  kRetweeted = 11,
  kLinkUrl = 12,
  kSentPositive = 13,
  kSentNegative = 14,
  kNetSent = 15,
};
inline constexpr int kLayoutFieldCount = 16;
inline constexpr int kImportFormat = 8;  // the layout's format code

class ImportedRows {
 public:
  using Row = std::array<std::string, kLayoutFieldCount>;

  // `expectedRows` reserves the columns (a guess is fine).
  explicit ImportedRows(std::size_t expectedRows = 0);

  // Takes the input buffer; the returned pointer lets rows be written over its bytes.
  char* AdoptInput(ByteBuffer&& bytes);

  // Adds rows whose source bytes [region, region + regionSize) of the adopted input are no
  // longer read: the cells go there when they fit, else into the arena.
  void AddRows(const Row* rows, std::size_t count, char* region, std::size_t regionSize);
  // Adds a row with its cells copied into the arena.
  void AddRow(const Row& row);
  // Adds a row of ready cell views, each owning its bytes (in the input or from Store()).
  void AddViews(const std::array<std::string_view, kLayoutFieldCount>& cells);
  std::string_view Store(std::string_view text) { return store_.Store(text); }

  DocIndex RowCount() const { return static_cast<DocIndex>(columns_[0].size()); }

  CellStore& Store() { return store_; }
  std::vector<CellColumn>& Columns() { return columns_; }

 private:
  CellStore store_;
  std::vector<CellColumn> columns_;
};

}  // namespace sylvora
