#include "common/progress.h"

#include <gtest/gtest.h>

#include <vector>

namespace sylvora {
namespace {

TEST(ProgressReporter, ReportsEveryIntervalAndStopsOnCancel) {
  std::vector<std::int64_t> seen;
  const ProgressCallback callback = [&](std::string_view stage, std::int64_t done,
                                        std::int64_t total) {
    EXPECT_EQ(stage, "Loading");
    EXPECT_EQ(total, 100);
    seen.push_back(done);
    return done < 30;
  };
  ProgressReporter reporter(callback, "Loading", 100, 10);
  int steps = 0;
  while (reporter.Step()) ++steps;
  EXPECT_EQ(seen, (std::vector<std::int64_t>{10, 20, 30}));
  EXPECT_EQ(steps, 29);
  EXPECT_TRUE(reporter.Cancelled());
  EXPECT_FALSE(reporter.Step());
  // An empty callback never cancels.
  const ProgressCallback none;
  ProgressReporter quiet(none, "Indexing", 0, 2);
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(quiet.Step());
  EXPECT_TRUE(quiet.Report());
}

}  // namespace
}  // namespace sylvora
