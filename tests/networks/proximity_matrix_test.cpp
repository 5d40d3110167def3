// ProximityMatrix filling: a fresh object, AssignMatrix, Sim2Dis, Value and LinkCount ranges,
// the diagnostic trace, and LoadMatrix on good and malformed files.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "common/errors.h"
#include "network_references.h"
#include "networks/proximity_matrix.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::Cells;
using testing::MakeMatrix;
using testing::TempDir;

constexpr float N = ProximityMatrix::kNoLink;

TEST(ProximityMatrix, AssignMatrixChecksTheSize) {
  ProximityMatrix m;
  EXPECT_TRUE(m.AssignMatrix(std::vector<float>{N, 0.5f, 0.5f, N}, 2, 1));
  EXPECT_EQ(m.NodeCount(), 2);
  EXPECT_EQ(m.CurrentMatrixType(), 1);
  EXPECT_EQ(m.Value(1, 0), 0.5f);
  const std::vector<float> three(9, 0.25f);
  EXPECT_FALSE(m.AssignMatrix(std::span<const float>(three), 2, 3));
  EXPECT_FALSE(m.AssignMatrix(std::vector<float>{}, -1, 3));
  EXPECT_EQ(m.NodeCount(), 2);  // unchanged
  EXPECT_EQ(m.CurrentMatrixType(), 1);
  EXPECT_TRUE(m.AssignMatrix(std::span<const float>(three), 3, 4));
  EXPECT_EQ(m.Value(2, 2), 0.25f);
  // Value and LinkCount reject nodes out of range.
  EXPECT_THROW(m.Value(3, 0), RangeError);
  EXPECT_THROW(m.Value(0, -1), RangeError);
  EXPECT_THROW(m.LinkCount(0, 3), RangeError);
}

TEST(Sim2Dis, TogglesValuesAndTypes) {
  for (const std::int32_t type : {1, 2}) {
    ProximityMatrix m = MakeMatrix(3, type,
                                   {N, 0.8f, N,     //
                                    0.8f, N, 0.0f,  //
                                    N, 0.0f, N});
    m.Sim2Dis();
    EXPECT_EQ(m.CurrentMatrixType(), type + 2);
    EXPECT_EQ(m.Value(1, 0), 1.0f - 0.8f);
    EXPECT_EQ(m.Value(0, 2), N);
    EXPECT_EQ(m.Value(1, 2), 1.0f);
    EXPECT_EQ(m.Value(1, 1), N);  // the diagonal is not touched
    m.Sim2Dis();
    EXPECT_EQ(m.CurrentMatrixType(), type);
    EXPECT_EQ(m.Value(0, 1), 0.8f);
    EXPECT_EQ(m.Value(1, 2), 0.0f);
  }
}

TEST(Sim2Dis, LeavesValuesBelowMinusOneTheDiagonalAndAnEmptyMatrix) {
  ProximityMatrix m = MakeMatrix(2, 3, {0.5f, -2.0f, -2.0f, 0.5f});
  m.Sim2Dis();
  EXPECT_EQ(m.CurrentMatrixType(), 1);
  EXPECT_EQ(Cells(m), (std::vector<float>{0.5f, -2.0f, -2.0f, 0.5f}));
  ProximityMatrix empty;
  empty.Sim2Dis();
  EXPECT_EQ(empty.CurrentMatrixType(), 0);
}

TEST(GetEdgeList, ListsTheUpperTriangleWithinTheBandInScanOrder) {
  const ProximityMatrix m = MakeMatrix(3, 1,
                                       {N, 0.9f, 0.0f,  //
                                        0.9f, N, 1.5f,  //
                                        0.0f, 1.5f, N});
  EXPECT_EQ(m.GetEdgeList(0.0f, 1.0f), (std::vector<EdgeRecord>{{0.9f, 0, 1}, {0.0f, 0, 2}}));
  EXPECT_EQ(m.GetEdgeList(-1.0f, 2.0f).size(), 3u);
  EXPECT_TRUE(m.GetEdgeList(2.0f, 3.0f).empty());
}

// ---- LoadMatrix ----

class LoadMatrix : public ::testing::Test {
 protected:
  std::string Write(std::string_view text) { return dir_.WriteFile("matrix.txt", text); }
  TempDir dir_;
};

// CR LF or LF line ends, a trailing tab, blank lines at the end; later lines decide a pair and
// field 0 of later lines is ignored (column 0 comes from line 1); leading numbers, exponents and
// non-numbers (as 0) are read.
TEST_F(LoadMatrix, ReadsASquareMatrix) {
  const std::pair<std::string, std::vector<float>> cases[] = {
      {"0\t0.5\t0.25\t\r\n9\t0\t0.75\t\r\n9\t0.75\t0\t\r\n",
       {0, 0.5f, 0.25f, 0.5f, 0, 0.75f, 0.25f, 0.75f, 0}},
      {"0\t1\n1\t0\n\r\n\n", {0, 1, 1, 0}},
      {"1\t0.2\t0.4\n7\t2\t0.1\n7\t0.3\t3\n", {1, 0.2f, 0.4f, 0.2f, 2, 0.3f, 0.4f, 0.3f, 3}},
      {"abc\t1E-05\nx\t 2.5kg\n", {0, 1e-05f, 1e-05f, 2.5f}},
      {"-0.5\t1.5e+2\n0\t1e999\n", {-0.5f, 150, 150, std::numeric_limits<float>::infinity()}},
  };
  for (const auto& [text, cells] : cases) {
    ProximityMatrix m;
    ASSERT_TRUE(m.LoadMatrix(Write(text), 0, 2)) << m.LastLoadError();
    EXPECT_EQ(m.CurrentMatrixType(), 2);
    EXPECT_EQ(Cells(m), cells) << text;
    EXPECT_EQ(m.LinkCount(0, 1), 0);
  }
}

struct MalformedCase {
  const char* name;
  const char* text;
  const char* error;  // the end of LastLoadError()
};

class LoadMatrixMalformed : public ::testing::TestWithParam<MalformedCase> {};

TEST_P(LoadMatrixMalformed, FailsAndLeavesTheObjectAsItWas) {
  const MalformedCase& c = GetParam();
  TempDir dir;
  const std::string path = dir.WriteFile("bad.txt", c.text);
  ProximityMatrix m = MakeMatrix(1, 4, {0.5f});
  EXPECT_FALSE(m.LoadMatrix(path, 0, 2));
  EXPECT_TRUE(m.LastLoadError().ends_with(c.error)) << m.LastLoadError();
  EXPECT_EQ(m.NodeCount(), 1);
  EXPECT_EQ(m.CurrentMatrixType(), 4);
  EXPECT_EQ(m.Value(0, 0), 0.5f);
}

INSTANTIATE_TEST_SUITE_P(
    Files, LoadMatrixMalformed,
    ::testing::Values(
        MalformedCase{"EmptyFile", "", "the first line holds no values"},
        MalformedCase{"EmptyFirstLine", "\r\n0\t1\r\n", "the first line holds no values"},
        MalformedCase{"TooFewLines", "0\t1\t2\n1\t0\t3\n", "3 nodes need 3 lines, the file has 2"},
        MalformedCase{"ShortRow", "0\t1\t2\n1\t0\n2\t3\t0\n",
                      "line 2: 2 fields where the matrix has 3 columns"},
        MalformedCase{"ExtraLines", "0\t1\n1\t0\n5\t5\n",
                      "line 3: more lines than the 2 rows of the matrix"}),
    [](const ::testing::TestParamInfo<MalformedCase>& info) { return info.param.name; });

TEST_F(LoadMatrix, UnknownLayoutFails) {
  ProximityMatrix m;
  EXPECT_FALSE(m.LoadMatrix(Write("0\t1\n1\t0\n"), 1, 3));
  EXPECT_EQ(m.LastLoadError(), "Unknown matrix file layout 1");
  EXPECT_EQ(m.CurrentMatrixType(), 0);
}

}  // namespace
}  // namespace sylvora
