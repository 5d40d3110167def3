#include <gtest/gtest.h>

#include <algorithm>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"
#include "support/recording_notifier.h"

namespace sylvora {
namespace {

using testing::Column;
using testing::MakeSet;
using testing::RecordingNotifier;
using Cells = std::vector<std::string>;

// A one-column set (format 0 layout) of the given texts.
DocumentSet Texts(const Cells& texts) {
  std::vector<Cells> rows;
  for (const auto& text : texts) rows.push_back({text});
  return MakeSet(rows, 0);
}

TEST(ConvertDates, TwitterLayoutsBecomeDayMonthYearTime) {
  DocumentSet set = Texts({"20110105T10:20:30Z", "20110105T102030Z", "2011"});
  set.ConvertTwitterDateTimeField("Twitter", 0);
  EXPECT_EQ(Column(set, 0), (Cells{"05/01/11 10:20:30", "05/01/11 10:20:30", "//11 ::"}));

  DocumentSet v11 = Texts({"Wed Aug 27 13:08:45 +0000 2008", "Sat Dec 31 23:59:59 +0000 2011",
                           "Wed Foo 27 13:08:45 +0000 2008"});
  v11.ConvertTwitterDateTimeField("Twitter1.1", 0);
  EXPECT_EQ(Column(v11, 0), (Cells{"27/08/08 13:08:45", "31/12/11 23:59:59", "27//08 13:08:45"}));

  DocumentSet other = Texts({"20110105T10:20:30Z"});
  other.ConvertTwitterDateTimeField("Radian", 0);
  other.ConvertTwitterDateTimeField("Twitter", 9);  // no such field
  EXPECT_EQ(other.Text(0, 0), "20110105T10:20:30Z");
}

TEST(ElapsedTime, CountsUnitsFromTheEarliestDocument) {
  DocumentSet set = Texts({"01/01/11 10:00:00", "03/01/11 09:00:00", "\"02/01/11 23:59:59\""});
  ASSERT_TRUE(set.DeriveElapsedTimeField(0, "d", "01 Jan 2011 00:00:01", true));
  ASSERT_EQ(set.FieldCount(), 2);
  EXPECT_EQ(set.FieldName(1), "Elapsed_Days");
  EXPECT_TRUE(set.FieldExpressed(1));
  EXPECT_EQ(Column(set, 1), (Cells{"0", "2", "1"}));
  EXPECT_EQ(set.DateTimeField(), 0);

  ASSERT_TRUE(set.DeriveElapsedTimeField(0, "h", "01 Jan 2011 00:00:01", false));
  EXPECT_EQ(set.FieldName(2), "Elapsed_Hours");
  EXPECT_EQ(Column(set, 2), (Cells{"0", "47", "37"}));
}

// Regression: one row without a date stopped the whole derivation, and the message quoted
// the half-converted cell ("24// 01:04:44") instead of the file's text.
TEST(ElapsedTime, RowsWithoutADateAreListedWithTheFilesText) {
  DocumentSet set = Texts({"01/01/11 10:00:00", "not a date", "02/01/11 10:00:00"});
  ASSERT_TRUE(set.DeriveElapsedTimeField(0, "h", "01 Jan 2011 00:00:01", true));
  EXPECT_EQ(Column(set, 1), (Cells{"0", "", "24"}));
  ASSERT_EQ(set.UndatedRows().size(), 1u);
  EXPECT_EQ(set.UndatedRows()[0].row, 1);
  EXPECT_EQ(set.UndatedRows()[0].text, "not a date");

  DocumentSet v11 = Texts({"Wed Nov 24 01:04:44 +0000 2004", "Wed Nox 24 01:04:44 +0000 2004"});
  v11.ConvertTwitterDateTimeField("Twitter1.1", 0);
  ASSERT_TRUE(v11.DeriveElapsedTimeField(0, "h", "01 Jan 2011 00:00:01", true));
  ASSERT_EQ(v11.UndatedRows().size(), 1u);
  EXPECT_EQ(v11.UndatedRows()[0].text, "Wed Nox 24 01:04:44 +0000 2004");

  DocumentSet none = Texts({"never", "not a date"});
  EXPECT_FALSE(none.DeriveElapsedTimeField(0, "h", "01 Jan 2011 00:00:01", true));
  EXPECT_NE(none.LastError().find("No row has a date"), std::string::npos);
  EXPECT_NE(none.LastError().find("never"), std::string::npos);
  EXPECT_EQ(none.FieldCount(), 1);  // nothing appended

  EXPECT_FALSE(set.DeriveElapsedTimeField(0, "y", "01 Jan 2011 00:00:01", true));
  EXPECT_FALSE(set.DeriveElapsedTimeField(0, "h", "yesterday", true));
  DocumentSet far = Texts({"01/01/1900 00:00", "01/01/2011 00:00"});
  EXPECT_FALSE(far.DeriveElapsedTimeField(0, "s", "01 Jan 2011 00:00:01", true));
  EXPECT_NE(far.LastError().find("too far"), std::string::npos);
}

// Regression: years went through two digits with the pivot at 69, so 1965 became 2065 and
// four-digit years from 1950 to 2070 came out between 1970 and 2050.
TEST(ElapsedTime, FourDigitYearsSurviveTheTwoDigitDateText) {
  struct Case {
    std::string cell;
    std::string text;  // the field's content after the conversion
    std::string full;  // DocumentDateTime
  };
  const std::vector<Case> cases = {
      {"Sat Jan 07 10:00:00 +0000 1950", "07/01/50 10:00:00", "1950-01-07 10:00:00"},
      {"Mon Mar 01 12:30:00 +0000 1965", "01/03/65 12:30:00", "1965-03-01 12:30:00"},
      {"Wed Nov 24 01:04:44 +0000 2004", "24/11/04 01:04:44", "2004-11-24 01:04:44"},
      {"Tue Dec 31 23:59:59 +0000 2069", "31/12/69 23:59:59", "2069-12-31 23:59:59"},
      {"Wed Jan 01 00:00:00 +0000 2070", "01/01/70 00:00:00", "2070-01-01 00:00:00"},
  };
  Cells cells;
  for (const Case& c : cases) cells.push_back(c.cell);
  std::reverse(cells.begin(), cells.end());  // newest first, as exports come
  DocumentSet set = Texts(cells);
  set.ConvertTwitterDateTimeField("Twitter1.1", 0);
  ASSERT_TRUE(set.DeriveElapsedTimeField(0, "d", "01 Jan 2011 00:00:01", true));
  RecordingNotifier notifier;
  set.SortByInt(1, false, notifier);
  EXPECT_TRUE(notifier.Messages().empty());  // a plain reversal
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto d = static_cast<DocIndex>(i);
    EXPECT_EQ(set.Text(d, 0), cases[i].text);
    ASSERT_TRUE(set.DocumentDateTime(d).has_value()) << cases[i].cell;
    EXPECT_EQ(set.DocumentDateTime(d)->Format(), cases[i].full);
  }
  EXPECT_EQ(set.Text(0, 1), "0");
  EXPECT_EQ(set.Text(4, 1), "43824");  // days from 7 Jan 1950 to 1 Jan 2070
}

TEST(Links, FirstLongLinkOfEitherSchemeIsMovedOutOfTheText) {
  DocumentSet set = Texts({"see http://abcdefgh now", "short http://ab link",
                           "two http://first.example/a and http://second.example/b",
                           "end http://example.org/x", "secure https://example.org/x goes",
                           "mixed https://t.co/ab and http://ex.io/c", "not a link: httpsx://y"});
  ASSERT_TRUE(set.DeriveLinksField(0, "Extracted Links", 0));
  ASSERT_EQ(set.FieldCount(), 2);
  EXPECT_EQ(set.FieldName(1), "Extracted Links");
  EXPECT_EQ(Column(set, 0), (Cells{"see  now", "short  link", "two  and ", "end ", "secure  goes",
                                   "mixed  and ", "not a link: httpsx://y"}));
  EXPECT_EQ(Column(set, 1),
            (Cells{" http://abcdefgh", "", " http://first.example/a", " http://example.org/x",
                   " https://example.org/x", " https://t.co/ab", ""}));
  // An existing link field keeps what it holds.
  DocumentSet kept = MakeSet(
      {{"text http://new.example/1", "http://kept.example"}, {"text http://new.example/2", ""}},
      11);
  ASSERT_TRUE(kept.DeriveLinksField(0, "ignored", 1));
  EXPECT_EQ(kept.FieldCount(), 3);
  EXPECT_EQ(Column(kept, 1), (Cells{"http://kept.example", " http://new.example/2"}));
  EXPECT_EQ(Column(kept, 0), (Cells{"text ", "text "}));
  EXPECT_FALSE(kept.DeriveLinksField(0, "x", 40));
}

TEST(Hashtags, TagsMoveToTheirOwnFieldInOrder) {
  DocumentSet set = Texts({"Go #team and #win", "#win and #winner", "it#039s fine", "no tags",
                           "#same #same end", "lone # sign"});
  ASSERT_TRUE(set.DeriveTwitterHashField(0, "HashTags"));
  EXPECT_EQ(set.FieldName(1), "HashTags");
  EXPECT_EQ(Column(set, 1), (Cells{" team win", " win", "", "", " same", " "}));
  EXPECT_EQ(Column(set, 0), (Cells{"Go [#] and [#]", "[#] and [#]ner", "it's fine", "no tags",
                                   "[#] [#] end", "lone [#] sign"}));
}

TEST(Mentions, MentionsMoveToTheirOwnFieldWithoutUnescaping) {
  DocumentSet set = Texts({"RT @anna: hi @bob", "mail me@home", "it#039s @x"});
  ASSERT_TRUE(set.DeriveTwitterMentionField(0, "Mentions"));
  EXPECT_EQ(Column(set, 1), (Cells{" anna: bob", " home", " x"}));
  EXPECT_EQ(Column(set, 0), (Cells{"RT [@] hi [@]", "mail me[@]", "it#039s [@]"}));
  EXPECT_FALSE(set.DeriveTwitterMentionField(9, "Mentions"));
}

// A reversed run flips without a notice; for a descending sort one rise and one fall still
// count as reversed.
TEST(SortByInt, ReversedRunsFlipWithoutANotice) {
  DocumentSet set = Texts({"3", "2", "1"});
  RecordingNotifier notifier;
  set.SortByInt(0, false, notifier);
  EXPECT_EQ(Column(set, 0), (Cells{"1", "2", "3"}));
  set.SortByInt(0, true, notifier);
  EXPECT_EQ(Column(set, 0), (Cells{"3", "2", "1"}));
  DocumentSet fall = Texts({"1", "3", "2"});
  fall.SortByInt(0, true, notifier);
  EXPECT_EQ(Column(fall, 0), (Cells{"2", "3", "1"}));
  EXPECT_TRUE(notifier.Messages().empty());
}

TEST(SortByInt, OtherRunsGetTheNoticeAndAStableSort) {
  DocumentSet set = MakeSet({{"1", "a"}, {"3", "b"}, {"2.5", "c"}, {"x", "d"}, {"2", "e"}}, 11);
  RecordingNotifier notifier;
  set.SortByInt(0, false, notifier);
  // 2.5 rounds half to even: 2, the same key as "2", and stays before it.
  EXPECT_EQ(Column(set, 1), (Cells{"d", "a", "c", "e", "b"}));
  ASSERT_EQ(notifier.Messages().size(), 1u);
  EXPECT_EQ(notifier.Messages()[0].title, "Ascending sort");

  // Now ascending with ties: a descending sort just reverses, so the tie flips too.
  set.SortByInt(0, true, notifier);
  EXPECT_EQ(Column(set, 1), (Cells{"b", "e", "c", "a", "d"}));
  EXPECT_EQ(notifier.Messages().size(), 1u);

  DocumentSet mixed = MakeSet({{"2", "a"}, {"1", "b"}, {"3", "c"}, {"1", "d"}, {"2", "e"}}, 11);
  mixed.SortByInt(0, true, notifier);
  EXPECT_EQ(Column(mixed, 1), (Cells{"c", "a", "e", "b", "d"}));
  EXPECT_EQ(notifier.Messages().back().title, "Descending sort");
}

TEST(SubSet, SelectsMatchingDocumentsWithTheSameLayout) {
  DocumentSet set =
      MakeSet({{"a link", "x"}, {"nothing", "y"}, {"Link", "z"}, {"unlinked", "w"}}, 11);
  set.SetContentField(0);
  set.SetFieldExpressed(2, false);
  const DocumentSet subset = set.SelectSubSetByString(0, "link");
  EXPECT_EQ(subset.DocumentCount(), 2);
  EXPECT_EQ(Column(subset, 1), (Cells{"x", "w"}));
  EXPECT_EQ(subset.FieldExpressionPattern(), "110");
  EXPECT_EQ(subset.FieldName(2), "Content");
  EXPECT_EQ(subset.ContentField(), 0);
  EXPECT_EQ(set.SelectSubSetByString(255, "xlink").DocumentCount(), 0);
  EXPECT_EQ(set.SelectSubSetByString(255, "nothingy").DocumentCount(), 1);
}

}  // namespace
}  // namespace sylvora
