// Text forms of a proximity matrix, byte for byte: DOT, the comma-separated matrix, the
// clipboard table and the upper-triangle vector.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "network_references.h"
#include "networks/proximity_matrix.h"

namespace sylvora {
namespace {

using testing::Cells;
using testing::MakeMatrix;

constexpr float N = ProximityMatrix::kNoLink;
constexpr const char* kDotHeader =
    "graph G {\r\n"
    "\tnode [shape=plaintext,height=.0,width=.0];\r\n"
    "\tedge [weight=1.0];\r\n";

// A three-node chain 0 - 1 - 2 of distances 0.5 and 0.25.
ProximityMatrix Chain() {
  return MakeMatrix(3, 4,
                    {N, 0.5f, N,      //
                     0.5f, N, 0.25f,  //
                     N, 0.25f, N});
}

// Edges ascending by length, numbered from the first node (0, else 1), lengths raised to the
// power, and only edges within the band; labels are not written.
TEST(Matrix2Dot, WritesTheEdgesOfTheBand) {
  struct Case {
    float power;
    std::int32_t firstNode;
    const char* labels;
    float low;
    const char* edges;
  };
  const Case cases[] = {
      {1, 1, "", 0, "\t2 -- 3 [len=0.25000];\r\n\t1 -- 2 [len=0.50000];\r\n"},
      {1, 5, "", 0, "\t2 -- 3 [len=0.25000];\r\n\t1 -- 2 [len=0.50000];\r\n"},
      {1, 0, "", 0, "\t1 -- 2 [len=0.25000];\r\n\t0 -- 1 [len=0.50000];\r\n"},
      {2, 1, "", 0, "\t2 -- 3 [len=0.06250];\r\n\t1 -- 2 [len=0.25000];\r\n"},
      {0, 1, "", 0, "\t2 -- 3 [len=1.00000];\r\n\t1 -- 2 [len=1.00000];\r\n"},
      {1, 1, "a\tb\tc", 0.3f, "\t1 -- 2 [len=0.50000];\r\n"},
      {1, 1, "", 0.6f, ""},
  };
  for (const Case& c : cases) {
    ProximityMatrix m = Chain();
    EXPECT_EQ(m.Matrix2Dot(c.power, c.firstNode, c.labels, c.low, 1.0f),
              std::string(kDotHeader) + c.edges + "}")
        << c.power << " " << c.firstNode << " " << c.low;
  }
  EXPECT_EQ(ProximityMatrix().Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f), std::string(kDotHeader) + "}");
}

TEST(Matrix2Dot, ConvertsSimilaritiesInPlace) {
  ProximityMatrix m = MakeMatrix(2, 2, {N, 0.75f, 0.75f, N});
  EXPECT_EQ(m.Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f),
            std::string(kDotHeader) + "\t1 -- 2 [len=0.25000];\r\n}");
  EXPECT_EQ(m.CurrentMatrixType(), 4);
  EXPECT_EQ(m.Value(0, 1), 0.25f);
  // Already distances: a second call writes the same text and changes nothing.
  EXPECT_EQ(m.Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f),
            std::string(kDotHeader) + "\t1 -- 2 [len=0.25000];\r\n}");
  EXPECT_EQ(m.CurrentMatrixType(), 4);
}

TEST(Matrix2Dot, EqualLengthsFollowTheShellSortAndRoundHalfAway) {
  // Five equal lengths and one shorter, listed (0,1) (0,2) (0,3) (1,2) (1,3) (2,3): the gap-3
  // pass moves (1,2) to the front, and (0,1) after it.
  ProximityMatrix m = MakeMatrix(4, 3,
                                 {N, 0.5f, 0.5f, 0.5f,    //
                                  0.5f, N, 0.125f, 0.5f,  //
                                  0.5f, 0.125f, N, 0.5f,  //
                                  0.5f, 0.5f, 0.5f, N});
  EXPECT_EQ(m.Matrix2Dot(1.0f, 0, "", 0.0f, 1.0f), std::string(kDotHeader) +
                                                       "\t1 -- 2 [len=0.12500];\r\n"
                                                       "\t0 -- 2 [len=0.50000];\r\n"
                                                       "\t0 -- 3 [len=0.50000];\r\n"
                                                       "\t0 -- 1 [len=0.50000];\r\n"
                                                       "\t1 -- 3 [len=0.50000];\r\n"
                                                       "\t2 -- 3 [len=0.50000];\r\n"
                                                       "}");
  // 0.000005 is written with its half rounded up.
  ProximityMatrix tiny = MakeMatrix(2, 3, {N, 0.000005f, 0.000005f, N});
  EXPECT_EQ(tiny.Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f),
            std::string(kDotHeader) + "\t1 -- 2 [len=0.00001];\r\n}");
}

TEST(MatrixText, IVCSparseAndClipboardTables) {
  const ProximityMatrix m = MakeMatrix(2, 1, {N, 0.1f, 0.1f, 9999999.0f});
  EXPECT_EQ(m.Matrix2IVCSparse(),
            ",2,2\r"
            "RowLabels,,\r"
            "ColumnLabels,,\r"
            "Data,\r"
            "-1,0.1\r"
            "0.1,9999999\r");
  const ProximityMatrix small = MakeMatrix(1, 1, {0.00001f});
  EXPECT_EQ(small.Matrix2IVCSparse(), ",1,1\rRowLabels,\rColumnLabels,\rData,\r1e-05\r");
  EXPECT_EQ(ProximityMatrix().Matrix2IVCSparse(), ",0,0\rRowLabels\rColumnLabels\rData,\r");
  // The clipboard table: rows of fixed five decimals joined by CR LF.
  EXPECT_EQ(MakeMatrix(2, 1, {N, 0.333333f, 0.333333f, 2.5f}).Copy2Clip(),
            "-1.00000\t0.33333\r\n0.33333\t2.50000");
  EXPECT_EQ(ProximityMatrix().Copy2Clip(), "");
}

TEST(Matrix2Vector, UpperTriangleRowByRow) {
  const std::vector<float> values = {N, 1, 2, 3,  //
                                     1, N, 4, 5,  //
                                     2, 4, N, 6,  //
                                     3, 5, 6, N};
  const ProximityMatrix m = MakeMatrix(4, 1, values);
  EXPECT_EQ(m.Matrix2Vector(), (std::vector<float>{1, 2, 3, 4, 5, 6}));
  EXPECT_TRUE(MakeMatrix(1, 1, {N}).Matrix2Vector().empty());
  EXPECT_TRUE(ProximityMatrix().Matrix2Vector().empty());
  EXPECT_EQ(Cells(m), values);  // unchanged
}

}  // namespace
}  // namespace sylvora
