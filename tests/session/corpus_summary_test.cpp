#include "session/corpus_summary.h"

#include <gtest/gtest.h>

namespace sylvora {
namespace {

TEST(CorpusSummary, CountsRoleColumnsAndRanksTerms) {
  DocumentSet docs;
  docs.SetDocuments({{"01/01/11 10:00:00", " http://a.example", " storm rain", ""},
                     {"01/01/11 11:00:00", "", " rain", " ann"},
                     {"01/01/11 12:00:00", " ", " wind storm rain", " bob ann"}},
                    10, 3);
  docs.SetDateTimeField(0);
  docs.SetURLField(1);
  docs.SetKeyWordField(2);
  docs.SetRefListField(3);
  const CorpusSummary summary = SummariseCorpus(docs, 2);
  EXPECT_EQ(summary.documents, 3);
  EXPECT_EQ(summary.firstDateTime, "2011-01-01 10:00:00");
  EXPECT_EQ(summary.lastDateTime, "2011-01-01 12:00:00");
  EXPECT_EQ(summary.withLinks, 1);  // a lone space is no link
  EXPECT_EQ(summary.withHashtags, 3);
  EXPECT_EQ(summary.withMentions, 2);
  ASSERT_EQ(summary.topHashtags.size(), 2u);
  EXPECT_EQ(summary.topHashtags[0].term, "rain");
  EXPECT_EQ(summary.topHashtags[0].count, 3);
  EXPECT_EQ(summary.topHashtags[1].term, "storm");
  ASSERT_EQ(summary.topMentions.size(), 2u);
  EXPECT_EQ(summary.topMentions[0].term, "ann");
  EXPECT_EQ(summary.topMentions[1].term, "bob");  // ties keep first appearance
  // An empty set with a missing field.
  DocumentSet empty;
  empty.SetURLField(40);
  const CorpusSummary none = SummariseCorpus(empty);
  EXPECT_EQ(none.documents + none.withLinks, 0);
  EXPECT_TRUE(none.topHashtags.empty());
  EXPECT_TRUE(none.firstDateTime.empty());
}

}  // namespace
}  // namespace sylvora
