// The bundled sample corpus through the load workflow, in each of its three layouts.

#include <gtest/gtest.h>

#include "session/corpus_load.h"
#include "session/corpus_summary.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

struct Sample {
  const char* file;
  bool radian;
  CorpusFormat format;
};

class SampleCorpus : public ::testing::TestWithParam<Sample> {};

TEST_P(SampleCorpus, LoadsAllTweetsInTimeOrderWithTheirTags) {
  const Sample sample = GetParam();
  Session session;
  testing::RecordingNotifier notifier;
  LoadOptions options;
  options.path = (testing::SourceDir() / "data" / sample.file).string();
  options.radian = sample.radian;
  const LoadReport report = LoadCorpus(session, options, notifier);
  ASSERT_TRUE(report.loaded) << report.error;
  EXPECT_TRUE(report.warnings.empty());
  const DocumentSet& docs = session.Documents();
  EXPECT_EQ(session.Corpus().format, sample.format);
  // Every layout carries the same 5,000 tweets; a few of the six-column layout's lines
  // lose their text to the repair rules but stay documents.
  EXPECT_EQ(docs.DocumentCount(), 5000);
  EXPECT_EQ(report.minDocFrequency, 7);

  // Elapsed time never decreases.
  const FieldIndex elapsed = docs.ElapsedTimeField();
  long previous = -1;
  for (DocIndex d = 0; d < docs.DocumentCount(); ++d) {
    const long value = std::stol(docs.Text(d, elapsed));
    ASSERT_GE(value, previous) << "row " << d;
    previous = value;
  }
  EXPECT_GT(previous, 24 * 14);  // more than two weeks, in hours

  const CorpusSummary summary = SummariseCorpus(docs);
  EXPECT_GT(summary.withHashtags, 1000);
  EXPECT_GT(summary.withMentions, 1000);
  EXPECT_GT(summary.withLinks, 500);
  ASSERT_FALSE(summary.topHashtags.empty());
  EXPECT_GT(summary.topHashtags[0].count, 100);
  // Hashtags and mentions left the tweet text; markers stand where they were.
  int marked = 0;
  for (DocIndex d = 0; d < docs.DocumentCount(); ++d) {
    const std::string text = docs.Text(d, docs.ContentField());
    marked += text.find("[#]") != std::string::npos;
    std::string rest = text;
    for (const char* marker : {"[#]", "[@]"}) {
      for (std::size_t at; (at = rest.find(marker)) != std::string::npos;) rest.erase(at, 3);
    }
    ASSERT_EQ(rest.find_first_of("#@"), std::string::npos) << "row " << d << ": " << text;
  }
  EXPECT_EQ(marked, summary.withHashtags);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, SampleCorpus,
    ::testing::Values(Sample{"sample_twitter11.txt", false, CorpusFormat::kTwitter11},
                      Sample{"sample_twitter.txt", false, CorpusFormat::kTwitter},
                      Sample{"sample_radian6.txt", true, CorpusFormat::kRadian6}),
    [](const auto& info) {
      return std::string(info.param.file).substr(7, 7) == "radian6" ? std::string("Radian6")
             : std::string(info.param.file) == "sample_twitter.txt" ? std::string("Twitter")
                                                                    : std::string("Twitter11");
    });

}  // namespace
}  // namespace sylvora
