// The load workflow over JSON and CSV exports: the three sample files give one document set, and
// detection. (A failed import and skipping bad records: app/import_workflow_test.cpp.) The preview
// for the mapping dialog is checked through the dialog (app/import_workflow_test.cpp).

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "session/corpus_load.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::RecordingNotifier;
using testing::TempDir;

std::string Sample(const char* name) { return (testing::SourceDir() / "data" / name).string(); }

LoadReport LoadFile(Session& session, const std::string& path, RecordingNotifier& notifier) {
  LoadOptions options;
  options.path = path;
  return LoadCorpus(session, options, notifier);
}

// Compares the listed fields of every document of two loaded sets.
void ExpectSameFields(const DocumentSet& expected, const DocumentSet& actual,
                      const std::vector<FieldIndex>& fields, const char* what) {
  ASSERT_EQ(actual.DocumentCount(), expected.DocumentCount()) << what;
  ASSERT_EQ(actual.FieldCount(), expected.FieldCount()) << what;
  for (const FieldIndex field : fields) {
    EXPECT_EQ(actual.FieldName(field), expected.FieldName(field)) << what;
    int differences = 0;
    for (DocIndex d = 0; d < expected.DocumentCount() && differences < 3; ++d) {
      if (actual.Cell(d, field) != expected.Cell(d, field)) {
        ++differences;
        ADD_FAILURE() << what << ": document " << d << ", field " << int(field) << " ("
                      << expected.FieldName(field) << "): \"" << actual.Cell(d, field)
                      << "\" instead of \"" << expected.Cell(d, field) << "\"";
      }
    }
  }
}

TEST(ImportLoad, TheThreeSampleFilesGiveTheSameDocumentSet) {
  RecordingNotifier notifier;
  Session tsv, json, csv;
  const LoadReport tsvReport = LoadFile(tsv, Sample("sample_twitter11.txt"), notifier);
  const LoadReport jsonReport = LoadFile(json, Sample("sample_twitter_v2.jsonl"), notifier);
  const LoadReport csvReport = LoadFile(csv, Sample("sample_twitter.csv"), notifier);
  ASSERT_TRUE(tsvReport.loaded) << tsvReport.error;
  ASSERT_TRUE(jsonReport.loaded) << jsonReport.error;
  ASSERT_TRUE(csvReport.loaded) << csvReport.error;
  EXPECT_EQ(tsvReport.shape, "tab-separated Twitter1.1 export (format 8)");
  EXPECT_EQ(jsonReport.shape, "X / Twitter API v2 JSON lines");
  EXPECT_EQ(csvReport.shape, "named-column CSV");
  EXPECT_TRUE(jsonReport.warnings.empty());
  EXPECT_EQ(json.Corpus().format, CorpusFormat::kTwitter11);
  EXPECT_EQ(csv.Corpus().format, CorpusFormat::kTwitter11);
  EXPECT_EQ(tsv.Documents().DocumentCount(), 5000);

  // Dates (rewritten), users, texts (links, hashtags and mentions moved out), links, sentiment,
  // and the derived elapsed time, hashtags and mentions, document by document in time order.
  const std::vector<FieldIndex> shared = {0, 1, 2, 12, 13, 14, 15, 3, 4, 11, 16, 17, 18};
  ExpectSameFields(tsv.Documents(), json.Documents(), shared, "v2 JSON lines");
  ExpectSameFields(tsv.Documents(), csv.Documents(), shared, "CSV");
  // The JSON carries the user's counts and the coordinates too; the time zone it has not.
  ExpectSameFields(tsv.Documents(), json.Documents(), {5, 6, 7, 9, 10}, "v2 JSON lines");
  EXPECT_EQ(json.Documents().Cell(0, 8), "");
  // The roles are those of the tab-separated load (its own test names them).
  for (const Session* session : {&json, &csv}) {
    const DocumentSet& d = session->Documents();
    for (const auto role : {&DocumentSet::ContentField, &DocumentSet::URLField,
                            &DocumentSet::ElapsedTimeField, &DocumentSet::RefListField}) {
      EXPECT_EQ((d.*role)(), (tsv.Documents().*role)());
    }
    EXPECT_EQ(d.FieldExpressionPattern(), tsv.Documents().FieldExpressionPattern());
  }
}

// The three loaded samples name their shapes above; detection alone names the six-column one
// and says why a file has none.
TEST(ImportLoad, DetectionSaysWhichShapeItFound) {
  std::string error;
  const auto shape = DetectCorpusShape(Sample("sample_twitter.txt"), false, error);
  ASSERT_TRUE(shape.has_value()) << error;
  EXPECT_FALSE(shape->imported);
  EXPECT_EQ(shape->description, "tab-separated Twitter export (format 7)");
  EXPECT_TRUE(DetectCorpusShape(Sample("sample_twitter.csv"), false, error)->imported);
  TempDir dir;
  EXPECT_FALSE(DetectCorpusShape(dir.WriteFile("x.json", "{\"a\":1}\n"), false, error));
  EXPECT_NE(error.find("unknown shape"), std::string::npos) << error;
  EXPECT_FALSE(DetectCorpusShape((dir.Path() / "none").string(), false, error));
}

TEST(ImportLoad, ColumnMapOnATabSeparatedFileIsAWarning) {
  RecordingNotifier notifier;
  Session session;
  LoadOptions options;
  options.path = Sample("sample_twitter11.txt");
  options.columnMap = {{"text", "body"}};
  const LoadReport report = LoadCorpus(session, options, notifier);
  ASSERT_TRUE(report.loaded) << report.error;
  ASSERT_FALSE(report.warnings.empty());
  EXPECT_NE(report.warnings[0].find("applies to CSV files only"), std::string::npos);
}

}  // namespace
}  // namespace sylvora
