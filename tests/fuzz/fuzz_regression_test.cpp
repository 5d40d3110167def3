// Replays every kept fuzz input (the seeds, and the inputs that once broke a reader) through
// its target's check, so that a fixed fault stays fixed in the ordinary suite.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "checks/fuzz_check.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> KeptInputs(std::string_view target) {
  std::vector<fs::path> inputs;
  const fs::path root = testing::SourceDir() / "tests" / "fuzz";
  for (const char* kind : {"seeds", "regressions"}) {
    const fs::path folder = root / kind / std::string(target);
    if (!fs::is_directory(folder)) continue;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
  }
  return inputs;
}

class FuzzInputs : public ::testing::TestWithParam<std::string_view> {};

TEST_P(FuzzInputs, EveryKeptInputPassesItsCheck) {
  const auto inputs = KeptInputs(GetParam());
  ASSERT_FALSE(inputs.empty()) << "no seeds for " << GetParam();
  for (const fs::path& input : inputs) {
    const std::string bytes = testing::ReadFile(input);
    EXPECT_EQ(fuzz::FindTarget(GetParam())->check(bytes), "") << input;
  }
}

std::vector<std::string_view> TargetNames() {
  std::vector<std::string_view> names;
  for (const auto& target : fuzz::Targets()) names.push_back(target.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzInputs, ::testing::ValuesIn(TargetNames()),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace sylvora
