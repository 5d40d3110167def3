#include "session/interval_length_proposal.h"

#include <gtest/gtest.h>

#include "session/interval_models.h"
#include "session/session_fixtures.h"

namespace sylvora {
namespace {

// Two tweets `hours` apart: the proposal, and the model built with it has the intervals the
// proposal counted.
TEST(IntervalLengthProposal, FitsAThousandIntervalsAndTheModelAgrees) {
  struct Case {
    int hours;
    bool proposed;
    std::int32_t weeks;
    std::int64_t intervals;
  };
  const Case cases[] = {
      {24 * 999, false, 0, 1000},       // 24 hours fit
      {24 * 1000, true, 1, 144},        // 1,001 days: weeks
      {24 * 365 * 20, true, 2, 522},    // twenty years: fortnights
      {24 * 365 * 400, true, 26, 803},  // four centuries: half years
  };
  for (const Case& c : cases) {
    testing::TempDir dir;
    Session session;
    testing::LoadAndIndex(session, dir, {{0, "storm harbour"}, {c.hours, "storm harbour"}});
    const IntervalLengthProposal proposal = ProposeIntervalLength(session.Documents());
    EXPECT_EQ(proposal.proposed, c.proposed) << c.hours;
    EXPECT_EQ(proposal.intervals, c.intervals) << c.hours;
    if (!c.proposed) continue;
    EXPECT_EQ(proposal.length, c.weeks) << c.hours;
    EXPECT_NE(proposal.Describe().find("24 hours would give"), std::string::npos);
    ModelOptions options;
    options.intervalLength = std::to_string(proposal.length);
    options.unitCode = proposal.unitCode;
    SilentNotifier notifier;  // answers OK to the "fewer than 10 intervals" question
    const ModelReport report = BuildModels(session, options, notifier);
    ASSERT_TRUE(report.built) << report.error;
    EXPECT_EQ(session.WordModel().IntervalCount(), proposal.intervals) << c.hours;
  }
}

}  // namespace
}  // namespace sylvora
