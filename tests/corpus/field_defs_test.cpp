#include <gtest/gtest.h>

#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

TEST(FieldDefs, DefinitionFileGivesMarkersAndNames) {
  testing::TempDir dir;
  const std::string path = dir.WriteFile(
      "fields.def",
      "3\r\n<A>,</A>,First\r\n\"<B>\",\"</B>\",\"Second, with comma\"\n<C>,</C>,Third\n");
  DocumentSet set;
  EXPECT_TRUE(set.InitFieldDefs(1, "#", path));
  ASSERT_EQ(set.FieldCount(), 3);
  EXPECT_EQ(set.FieldName(1), "Second, with comma");
  EXPECT_EQ(set.FieldStartMarker(1), "<B>");
  EXPECT_EQ(set.FieldEndMarker(2), "</C>");
  EXPECT_EQ(set.RecordDelimiter(), "#");
  EXPECT_EQ(set.Mode(), DocumentSet::ParseMode::kMarkers);
}

TEST(FieldDefs, ShortDefinitionFileIsReported) {
  testing::TempDir dir;
  DocumentSet set;
  const std::string path = dir.WriteFile("short.def", "4\n<A>,</A>,First\n");
  EXPECT_FALSE(set.InitFieldDefs(1, "#", path));
  EXPECT_NE(set.LastError().find("declares 4"), std::string::npos);
}

}  // namespace
}  // namespace sylvora
