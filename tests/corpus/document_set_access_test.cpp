#include <gtest/gtest.h>

#include <filesystem>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"

namespace sylvora {
namespace {

using testing::Column;
using testing::MakeSet;

TEST(DocumentSetAccess, TextReadsCellsWholeDocumentsAndOutOfRangeRows) {
  DocumentSet set = MakeSet({{"a", "b", "c", "d", "e", "f"}, {"g", "h", "i", "", "", ""}});
  EXPECT_EQ(set.Text(0, 1), "b");
  EXPECT_EQ(set.Text(0, 255), "abcdef");
  EXPECT_EQ(set.Text(1, 6), "ghi");
  EXPECT_EQ(set.Text(-1, 0), DocumentSet::kIndexErrorText);
  EXPECT_EQ(set.Text(2, 0), DocumentSet::kIndexErrorText);
  EXPECT_EQ(set.Cell(5, 0), "");
  EXPECT_EQ(set.Cell(0, 200), "");
}

TEST(DocumentSetAccess, WritesOutsideTheTableAreIgnored) {
  DocumentSet set = MakeSet({{"a", "b"}, {"c", "d"}});
  set.SetText(-1, 0, "x");
  set.SetText(2, 0, "x");
  set.SetText(0, 200, "x");
  set.SetText(1, 1, "a longer replacement text");
  set.SetText(0, 0, "");
  EXPECT_EQ(Column(set, 0), (std::vector<std::string>{"", "c"}));
  EXPECT_EQ(set.Text(1, 1), "a longer replacement text");
}

TEST(DocumentSetAccess, ExpressionPatternReadsAndWritesFlags) {
  DocumentSet set;
  set.InitFieldDefs(11, "", "");  // three fields
  set.SetFieldExpressed(1, false);
  EXPECT_EQ(set.FieldExpressionPattern(), "101");
  set.SetFieldExpressionPattern("1");
  EXPECT_EQ(set.FieldExpressionPattern(), "100");
  set.SetFieldExpressionPattern("x11");
  EXPECT_EQ(set.FieldExpressionPattern(), "011");
  EXPECT_FALSE(set.FieldExpressed(200));
}

TEST(DocumentSetAccess, FieldNamesPastTheLastFieldAreEmptyAndUnwritable) {
  DocumentSet set;
  set.InitFieldDefs(3, "", "");
  set.SetFieldExpressionPattern("0000");
  set.InitFieldDefs(12, "", "");  // an unknown code keeps the list and expresses every field
  ASSERT_EQ(set.FieldCount(), 4);
  EXPECT_EQ(set.FieldExpressionPattern(), "1111");
  EXPECT_EQ(set.FieldName(200), "");
  set.SetFieldName(200, "x");
  EXPECT_EQ(set.FieldName(200), "");
  set.SetFieldName(1, "Writers");
  EXPECT_EQ(set.FieldName(1), "Writers");
}

TEST(DocumentSetAccess, RemoveDocumentShiftsLaterRowsUpAndClearKeepsRoles) {
  DocumentSet set = MakeSet({{"A"}, {"B"}, {"C"}});
  EXPECT_TRUE(set.RemoveDocument(0));
  EXPECT_EQ(set.DocumentCount(), 2);
  EXPECT_EQ(Column(set, 0), (std::vector<std::string>{"B", "C"}));
  EXPECT_FALSE(set.RemoveDocument(2));
  EXPECT_FALSE(set.RemoveDocument(-1));
  EXPECT_FALSE(set.LastError().empty());
  EXPECT_EQ(set.DocumentCount(), 2);
  set.SetContentField(2);
  set.Clear();
  EXPECT_EQ(set.DocumentCount() + set.WordCount() + set.FieldCount(), 0);
  EXPECT_EQ(set.ContentField(), 2);
}

}  // namespace
}  // namespace sylvora
