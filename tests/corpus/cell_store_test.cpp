#include "corpus/cell_store.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"

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

// Cells of every length class (empty, short, the longest packed length, the first long ones,
// a megabyte, texts holding NUL bytes) read back exactly, are rewritten in place when the new
// text fits, move when it does not, and keep their text through sorting and subsets.
TEST(CompactCell, EveryLengthReadsBackExactlyThroughWritesSortsAndSubsets) {
  const auto filled = [](std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>('a' + i % 26);
    return text;
  };
  std::string withNuls = filled(70000);
  withNuls[0] = withNuls[65534] = withNuls.back() = '\0';
  const std::vector<std::string> cases = {"",
                                          "x",
                                          std::string("a\0b", 3),
                                          filled(65534),
                                          filled(65535),
                                          filled(65536),
                                          filled(1 << 20),
                                          withNuls};
  for (const std::string& text : cases) {
    SCOPED_TRACE(text.size());
    CellStore store;
    CompactCell cell(store.Store(text), store);
    EXPECT_TRUE(cell.View() == text);
    EXPECT_EQ(cell.size(), text.size());
    EXPECT_EQ(std::bit_cast<std::uint64_t>(cell) == 0, text.empty());
    if (!text.empty()) {
      const char* before = cell.View().data();
      const std::string_view shorter = std::string_view(text).substr(1);
      store.Overwrite(cell, std::string_view(cell).substr(1));  // overlaps the cell's bytes
      EXPECT_TRUE(cell.View() == shorter);
      if (!shorter.empty()) {
        EXPECT_EQ(cell.View().data(), before);
      }
    }
    const std::string longer = text + "yz";
    store.Overwrite(cell, longer);
    EXPECT_TRUE(cell.View() == longer);

    DocumentSet set = testing::MakeSet({{"2", "short"}, {"1", "marker"}}, 11);
    set.SetText(1, 1, text);
    set.SortByInt(0, false);  // a reversed run: the rows swap
    EXPECT_TRUE(set.Cell(0, 1) == text);
    EXPECT_TRUE(set.Text(0, 255) == "1" + text);
    const DocumentSet subset = set.SelectSubSetByString(0, "1");
    ASSERT_EQ(subset.DocumentCount(), 1);
    EXPECT_TRUE(subset.Text(0, 1) == text);
  }
}

}  // namespace
}  // namespace sylvora
