// A file loaded by ranges on several threads gives the table of a single pass: the cuts between
// ranges fall on every kind of line there is (multi-byte characters, CR LF pairs, lone carriage
// returns, short and empty records, undated rows), and so do the row ranges of the derivations.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::TempDir;
using testing::Tsv;

// Sets the number of threads for one scope.
class Threads {
 public:
  explicit Threads(int count) { ::setenv("SYLVORA_THREADS", std::to_string(count).c_str(), 1); }
  ~Threads() { ::unsetenv("SYLVORA_THREADS"); }
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
};

// A sixteen-column line; every few lines something that a cut could get wrong.
std::string Line(int i) {
  const std::string n = std::to_string(i);
  const std::string date = i % 97 == 0 ? "no date"
                                       : "Thu Sep 19 " + std::to_string(10 + i % 14) + ":0" +
                                             std::to_string(i % 10) + ":5" +
                                             std::to_string(i % 10) + " +0000 2013";
  std::string tweet = "caf\xC3\xA9 \xE2\x98\x95 n" + n + " #tag" + std::to_string(i % 7) +
                      " @user" + std::to_string(i % 5) + ": see http://t.co/x" + n +
                      " \xF0\x9D\x84\x9E";
  if (i % 11 == 0) tweet += " it&#039;s #late";
  if (i % 13 == 0) tweet += "\r in the middle";
  std::string line = Tsv({date, "user" + n, tweet, "id" + n, "Real Name", "10", "20", "0", "UTC",
                          "", "5", std::to_string(i % 3), "", "1", "-1", "0"});
  switch (i % 17) {
    case 3:
      return line + "\r";  // a CR LF pair
    case 5:
      return "";  // an empty record
    case 7:
      return "\xC3\xA9\xC3\xA9x";  // too short to parse
    case 9:
      return "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9";  // 8 characters
    case 11:
      return "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9";  // 9
    default:
      return line;
  }
}

std::string Lines(int count, const std::string& first = "") {
  std::string text = first;
  for (int i = 0; i < count; ++i) text += Line(i) + "\n";
  return text;
}

// Everything a load and the derivations leave: counts, names, every cell, undated rows with
// their lines, the error.
std::string Outcome(const std::string& path, int dType, int minDocLen, int maxCount) {
  DocumentSet set;
  std::string file = path;
  std::string outcome = set.LoadDocuments(file, dType, "\n", minDocLen, maxCount, false)
                            ? "loaded"
                            : "failed: " + set.LastError();
  if (dType == 8 && set.DocumentCount() > 0) {
    set.DeriveLinksField(2, "Extracted Links", 12);
    set.ConvertTwitterDateTimeField("Twitter1.1", 0);
    if (!set.DeriveElapsedTimeField(0, "n", "01 Jan 2011 00:00:01", true)) {
      outcome += " elapsed: " + set.LastError();
    }
    set.DeriveTwitterHashField(2, "HashTags");
    set.DeriveTwitterMentionField(2, "Mentions");
  }
  outcome += " rows " + std::to_string(set.DocumentCount()) + " repaired " +
             std::to_string(set.RepairedLineCount()) + " header " +
             std::to_string(set.HasHeaderRow()) + "\n";
  for (int f = 0; f < set.FieldCount(); ++f) {
    outcome += set.FieldName(static_cast<FieldIndex>(f)) + "\n";
    for (DocIndex d = 0; d < set.DocumentCount(); ++d) {
      outcome.append(set.Cell(d, static_cast<FieldIndex>(f))).append("\t");
    }
  }
  for (const auto& row : set.UndatedRows()) {
    outcome += "\nundated " + std::to_string(row.row) + " " + row.text + " line " +
               std::to_string(row.line);
  }
  return outcome;
}

TEST(LoadingByRanges, EveryCutGivesTheTableOfOnePass) {
  constexpr int kLines = 20000;  // enough for seven ranges of rows and of bytes
  const std::string lines = Lines(kLines);
  struct Case {
    const char* name;
    std::string content;
    int dType;
    int minDocLen;
    int maxCount;
    bool loads;
  };
  std::string notUtf8 = lines;
  notUtf8.insert(notUtf8.size() - 100, "caf\xE9");
  std::string withNul = lines;
  withNul[withNul.size() - 10] = '\0';
  // Format 7 repairs: tabs inside the tweet are joined, stored by the range that meets them.
  std::string tabs;
  for (int i = 0; i < kLines; ++i) {
    tabs += Tsv({"20110105T10:00:00Z", "u" + std::to_string(i), "split",
                 "tweet " + std::to_string(i), "1", "-1", "0"}) +
            (i % 3 == 0 ? "\r\n" : "\n");
  }
  const Case cases[] = {
      {"mixed lines", lines, 8, 0, 0, true},
      {"a minimum that drops records", lines, 8, 40, 0, true},
      {"a document limit", lines, 8, 0, kLines / 2, true},
      {"no line feed at the end", lines.substr(0, lines.size() - 1), 8, 0, 0, true},
      {"a header row longer than a range",
       Lines(kLines, Tsv({"DateTime", "User", "Tweet", std::string(600000, 'h')}) + "\n"), 7, 0, 0,
       true},
      {"a byte that is not UTF-8 near the end", notUtf8, 8, 0, 0, true},
      {"a NUL byte near the end", withNul, 8, 0, 0, false},
      {"tweets split by tabs", tabs, 7, 0, 0, true},
  };
  TempDir dir;
  for (const auto& c : cases) {
    const std::string path = dir.WriteFile("corpus.txt", c.content);
    std::string single;
    {
      const Threads one(1);
      single = Outcome(path, c.dType, c.minDocLen, c.maxCount);
    }
    ASSERT_TRUE(single.starts_with(c.loads ? "loaded" : "failed")) << c.name << ": " << single;
    for (const int threads : {2, 7}) {
      const Threads several(threads);
      EXPECT_EQ(Outcome(path, c.dType, c.minDocLen, c.maxCount), single)
          << c.name << " on " << threads << " threads";
    }
  }
}

// With many threads the first range is shorter than one report interval; the stage still
// reports once it ended, and so can be cancelled as in one pass.
TEST(LoadingByRanges, ACancelIsSeenWhenTheFirstRangeEndsBeforeAReport) {
  TempDir dir;
  std::string path = dir.WriteFile("corpus.txt", Lines(20000));
  const Threads seven(7);
  const auto cancelAt = [](std::string_view wanted) -> ProgressCallback {
    return [wanted](std::string_view stage, std::int64_t, std::int64_t) { return stage != wanted; };
  };
  DocumentSet parsing;
  EXPECT_FALSE(parsing.LoadDocuments(path, 8, "\n", 0, 0, false, cancelAt("Parsing documents")));
  EXPECT_EQ(parsing.LastError(), "Loading cancelled");
  DocumentSet dating;
  ASSERT_TRUE(dating.LoadDocuments(path, 8, "\n", 0, 0, false));
  EXPECT_FALSE(dating.DeriveElapsedTimeField(0, "n", "01 Jan 2011 00:00:01", true,
                                             cancelAt("Deriving elapsed time")));
  EXPECT_EQ(dating.LastError(), "Elapsed time cancelled");
}

}  // namespace
}  // namespace sylvora
