#include "corpus/cell_store.h"

#include <gtest/gtest.h>

namespace sylvora {
namespace {

TEST(CellStore, StoredViewsSurviveLaterGrowth) {
  CellStore store;
  std::vector<std::string_view> cells;
  std::vector<std::string> expected;
  for (int i = 0; i < 20000; ++i) {  // several arena blocks
    expected.push_back("cell number " + std::to_string(i) +
                       std::string(static_cast<std::size_t>(i % 97), 'x'));
    cells.push_back(store.Store(expected.back()));
  }
  const std::string large(600000, 'L');  // bigger than a quarter block: a block of its own
  const std::string_view largeCell = store.Store(large);
  for (std::size_t i = 0; i < cells.size(); ++i) ASSERT_EQ(cells[i], expected[i]);
  EXPECT_EQ(largeCell, large);
  EXPECT_TRUE(store.Store("").empty());
}

TEST(CellStore, OverwriteWorksInPlaceWhenTheTextFitsAndMayOverlap) {
  CellStore store;
  std::string_view cell = store.Adopt(std::string("Go #team and #win now"));
  const char* before = cell.data();
  store.Overwrite(cell, cell.substr(3));  // overlapping, shorter
  EXPECT_EQ(cell, "#team and #win now");
  EXPECT_EQ(cell.data(), before);
  store.Overwrite(cell, "a much longer text than the cell had room for");
  EXPECT_EQ(cell, "a much longer text than the cell had room for");
  EXPECT_NE(cell.data(), before);
  std::string_view empty;
  store.Overwrite(empty, "x");
  EXPECT_EQ(empty, "x");
}

TEST(CellStore, AdoptedShortBuffersDoNotMoveWhenMoreAreAdopted) {
  CellStore store;
  const std::string_view first = store.Adopt(std::string("tiny"));  // inline string storage
  for (int i = 0; i < 100; ++i) store.Adopt(std::string("more"));
  EXPECT_EQ(first, "tiny");
}

}  // namespace
}  // namespace sylvora
