#include <gtest/gtest.h>

#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

struct FormatCase {
  int code;
  int fields;
  const char* separator;
  DocumentSet::ParseMode mode;
  bool header;
  int probeField;
  const char* probeName;
};

TEST(FieldDefs, EveryFormatCodeSetsItsLayout) {
  using Mode = DocumentSet::ParseMode;
  const FormatCase cases[] = {
      {0, 1, "|", Mode::kMarkers, false, 0, "All Text"},
      {2, 8, "</DOC>", Mode::kMarkers, false, 5, "Article Text"},
      {3, 4, "\nER\n", Mode::kMarkers, false, 3, "Abstract"},
      {4, 5, "\nER\n", Mode::kMarkers, false, 4, "Times Cited"},
      {5, 9, "\nER\n", Mode::kMarkers, false, 8, "Pearl Relations"},
      {6, 6, "ER - ", Mode::kMarkers, false, 4, "Abstract"},
      {7, 6, "\n", Mode::kColumns, false, 2, "Tweet"},
      {8, 16, "\n", Mode::kColumns, false, 9, "Geo coordinates"},
      {9, 7, "\n", Mode::kColumns, true, 6, "PUBLISH_DATE"},
      {10, 18, "\n", Mode::kColumns, true, 12, "CitationcountWebofScience"},
      {11, 3, "\n", Mode::kColumns, true, 1, "Discovered"},
  };
  for (const auto& c : cases) {
    DocumentSet set;
    EXPECT_TRUE(set.InitFieldDefs(c.code, "|", ""));
    EXPECT_EQ(set.FieldCount(), c.fields) << c.code;
    EXPECT_EQ(set.RecordDelimiter(), c.separator) << c.code;
    EXPECT_EQ(set.Mode(), c.mode) << c.code;
    EXPECT_EQ(set.HasHeaderRow(), c.header) << c.code;
    EXPECT_EQ(set.FieldName(static_cast<FieldIndex>(c.probeField)), c.probeName) << c.code;
    EXPECT_EQ(set.FieldExpressionPattern(), std::string(static_cast<std::size_t>(c.fields), '1'));
  }
}

TEST(FieldDefs, TaggedFormatsKeepLineTagMarkers) {
  DocumentSet set;
  set.InitFieldDefs(4, "", "");
  EXPECT_EQ(set.FieldStartMarker(2), "\nPY ");
  EXPECT_EQ(set.FieldEndMarker(2), "\n");
  set.InitFieldDefs(2, "", "");
  EXPECT_EQ(set.FieldStartMarker(0), "<DOCNO>");
  EXPECT_EQ(set.FieldEndMarker(0), "</DOCNO>");
  set.InitFieldDefs(0, "|", "");
  EXPECT_EQ(set.FieldEndMarker(0), "|");
}

TEST(FieldDefs, BibliographicAndTabularFormatsSetTheirRoles) {
  DocumentSet set;
  set.InitFieldDefs(5, "", "");
  EXPECT_EQ(set.ContentField(), 5);
  EXPECT_EQ(set.AuthorField(), 0);
  EXPECT_EQ(set.CitedField(), 6);
  EXPECT_EQ(set.RefListField(), 7);
  EXPECT_EQ(set.KeyWordField(), 4);
  EXPECT_EQ(set.TitleField(), 2);
  EXPECT_EQ(set.DateTimeField(), 1);
  set.InitFieldDefs(6, "", "");
  EXPECT_EQ(set.ContentField(), 4);
  EXPECT_EQ(set.RefListField(), 7);  // a role the format does not set keeps its value
  set.InitFieldDefs(10, "", "");
  EXPECT_EQ(set.DateTimeField(), 10);
  EXPECT_EQ(set.CitedField(), 12);
  set.InitFieldDefs(11, "", "");
  EXPECT_EQ(set.URLField(), 0);
  EXPECT_EQ(set.DateTimeField(), 1);
  EXPECT_EQ(set.ContentField(), 2);
}

TEST(FieldDefs, UnknownCodeKeepsTheListAndExpressesEveryField) {
  DocumentSet set;
  set.InitFieldDefs(7, "", "");
  set.SetFieldExpressionPattern("000000");
  set.InitFieldDefs(12, "", "");
  EXPECT_EQ(set.FieldCount(), 6);
  EXPECT_EQ(set.FieldExpressionPattern(), "111111");
}

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
