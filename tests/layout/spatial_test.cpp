#include "layout/spatial.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::RecordingNotifier;
using testing::TempDir;

// DOT text as the network export writes it: CR LF line ends, none after the brace.
std::string Dot(std::string_view edgeLines) {
  return "graph G {\r\n\tnode [shape=plaintext,height=.0,width=.0];\r\n\tedge [weight=1.0];\r\n" +
         std::string(edgeLines) + "}";
}

TEST(SetGraphFromDotTest, ReadsEdgeLinesBetweenTheHeadersAndTheBrace) {
  Spatial spatial;
  ASSERT_TRUE(spatial.SetGraphFromDot(
      Dot("\t1 -- 2 [len=0.25000];\r\n\t2 -- 3 [len=0.50000];\r\n\t2 -- 4 [len=1.00000];\r\n"), 1));
  EXPECT_EQ(spatial.Edges(), (std::vector<EdgeRecord>{{0.25f, 0, 1}, {0.5f, 1, 2}, {1.0f, 1, 3}}));
  EXPECT_EQ(spatial.Edge(3), EdgeRecord{});
  EXPECT_EQ(spatial.NodeDegree(0), 1);  // a leaf
  EXPECT_EQ(spatial.NodeDegree(1), 3);
  EXPECT_EQ(spatial.NodeDegree(3), 1);
  EXPECT_EQ(spatial.NodeDegree(-1), 0);
  // A new text replaces the edges; one without edge lines has none.
  ASSERT_TRUE(spatial.SetGraphFromDot(Dot("\t3 -- 4 [len=0.75000];\r\n"), 1));
  ASSERT_EQ(spatial.EdgeCount(), 1);
  EXPECT_EQ(spatial.Edge(0), (EdgeRecord{0.75f, 2, 3}));
  EXPECT_EQ(spatial.NodeDegree(0), 0);
  for (const std::string& empty : {Dot(""), std::string()}) {
    ASSERT_TRUE(spatial.SetGraphFromDot(empty, 1));
    EXPECT_EQ(spatial.EdgeCount(), 0);
  }
}

TEST(SetGraphFromDotTest, FirstNodeZeroKeepsNumbersAndLineFeedsAlone) {
  Spatial spatial;
  const std::string dot = "graph G {\n node;\n edge;\n 0 -- 7 [len=0.125];\n}";
  ASSERT_TRUE(spatial.SetGraphFromDot(dot, 0));
  ASSERT_EQ(spatial.EdgeCount(), 1);
  EXPECT_EQ(spatial.Edge(0), (EdgeRecord{0.125f, 0, 7}));
}

// A foreign text may number a node near the 32-bit limit: it is counted without a table that
// large, and a later text forgets it.
TEST(SetGraphFromDotTest, AHugeNodeNumberIsCountedWithoutAHugeTable) {
  Spatial spatial;
  ASSERT_TRUE(spatial.SetGraphFromDot(
      Dot("\t1 -- 2147483000 [len=0.5];\r\n\t2147483000 -- 3 [len=0.5];\r\n"), 1));
  ASSERT_EQ(spatial.EdgeCount(), 2);
  EXPECT_EQ(spatial.Edge(0), (EdgeRecord{0.5f, 0, 2147482999}));
  EXPECT_EQ(spatial.NodeDegree(2147482999), 2);
  EXPECT_EQ(spatial.NodeDegree(0), 1);
  EXPECT_EQ(spatial.NodeDegree(2), 1);
  ASSERT_TRUE(spatial.SetGraphFromDot(Dot("\t1 -- 2 [len=0.5];\r\n"), 1));
  EXPECT_EQ(spatial.NodeDegree(2147482999), 0);
}

TEST(SetGraphFromDotTest, MalformedLineStopsTheReadingAndKeepsEarlierEdges) {
  Spatial spatial;
  EXPECT_FALSE(spatial.SetGraphFromDot(
      Dot("\t1 -- 2 [len=0.25000];\r\n\t2 -> 3 [len=0.5];\r\n\t3 -- 4 [len=1];\r\n"), 1));
  ASSERT_EQ(spatial.EdgeCount(), 1);
  EXPECT_EQ(spatial.Edge(0), (EdgeRecord{0.25f, 0, 1}));
  EXPECT_FALSE(spatial.SetGraphFromDot(Dot("\t1 -- 2 [len=abc];\r\n"), 1));
  EXPECT_EQ(spatial.EdgeCount(), 0);
}

class LoadGVPlainTest : public ::testing::Test {
 protected:
  bool Load(std::string_view text, std::int32_t firstNode, std::int32_t nodeCount) {
    path_ = dir_.WriteFile("gvout.txt", text);
    error_.clear();
    return spatial_.LoadGVPlain(path_, firstNode, nodeCount, error_);
  }

  TempDir dir_;
  std::string path_;
  std::string error_;
  Spatial spatial_;
};

TEST_F(LoadGVPlainTest, ReadsScaleAndNodePositions) {
  ASSERT_TRUE(
      Load("graph 1 3.5 2.25\n"
           "node 2 1.5 0.75 0.5 0.25 2 solid plaintext black lightgrey\n"
           "node 1 0.5 2 0.5 0.25 1 solid plaintext black lightgrey\n"
           "edge 1 2 4 0.5 2 0.8 1.5 1.1 1.2 1.5 0.75 solid black\n"
           "stop\n",
           1, 2))
      << error_;
  EXPECT_EQ(spatial_.NodeCount(), 2);
  EXPECT_FLOAT_EQ(spatial_.ScaleX(), 3.5f);
  EXPECT_FLOAT_EQ(spatial_.ScaleY(), 2.25f);
  EXPECT_EQ(spatial_.Copy2Clip(), "0.5\t2\r\n1.5\t0.75\r\n");  // every node's x and y
  EXPECT_EQ(spatial_.X(2), 0.0f);
  EXPECT_EQ(spatial_.Y(-1), 0.0f);
}

TEST_F(LoadGVPlainTest, AbsentNodesGoAlongTheBottomEdgeInNodeOrder) {
  // Nodes 1 and 2 are linked; node 3 has no link, so Graphviz never saw it.
  ASSERT_TRUE(Load("graph 1 6 3\r\nnode 1 1 1 0.1 0.1 1\r\nnode 2 2 2 0.1 0.1 2\r\nstop\r\n", 1, 3))
      << error_;
  EXPECT_FLOAT_EQ(spatial_.X(2), 2.0f / 3.0f * 6.0f);
  EXPECT_FLOAT_EQ(spatial_.Y(2), 3.0f / 1000.0f);
  EXPECT_FLOAT_EQ(spatial_.X(1), 2.0f);
}

// Node lines are found by their whole number wherever they stand (the first occurrence wins),
// numbered from the first node, with exponents and signs read.
TEST_F(LoadGVPlainTest, NodeLinesAreFoundByTheirWholeNumber) {
  struct Case {
    std::string text;
    std::int32_t firstNode, nodeCount;
    float x0, y0, x1;  // x1 of a node past the count reads 0
  };
  const Case cases[] = {
      {"graph 1 4 4\nnode 0 1 2 a\nnode 1 3 4 b\n", 0, 2, 1, 2, 3},
      {"graph 1 9 9\nnode 11 5 5\nnode 21 6 6\nnode 1 7 8\n", 1, 1, 7, 8, 0},
      {"graph 1 9 9\nedge a b label node 1 4 5\nnode 1 7 8\n", 1, 1, 4, 5, 0},
      {"graph 1 1e2 50\nnode 1 -2.5 1.25e1\n", 1, 1, -2.5f, 12.5f, 0},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(Load(c.text, c.firstNode, c.nodeCount)) << error_;
    EXPECT_FLOAT_EQ(spatial_.X(0), c.x0) << c.text;
    EXPECT_FLOAT_EQ(spatial_.Y(0), c.y0) << c.text;
    EXPECT_FLOAT_EQ(spatial_.X(1), c.x1) << c.text;
  }
  EXPECT_FLOAT_EQ(spatial_.ScaleX(), 100.0f);
}

struct MalformedCase {
  std::string name;
  std::string text;
};

class LoadGVPlainMalformedTest : public LoadGVPlainTest,
                                 public ::testing::WithParamInterface<MalformedCase> {};

TEST_P(LoadGVPlainMalformedTest, FailsWithAReason) {
  EXPECT_FALSE(Load(GetParam().text, 1, 2));
  EXPECT_NE(error_.find(path_), std::string::npos) << error_;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LoadGVPlainMalformedTest,
    ::testing::Values(MalformedCase{"Empty", ""}, MalformedCase{"NoGraphLine", "node 1 1 1\n"},
                      MalformedCase{"ShortHeader", "graph 1 2\nnode 1 1 1\n"},
                      MalformedCase{"TextWidth", "graph 1 wide 2\nnode 1 1 1\n"},
                      MalformedCase{"DoubleSpace", "graph 1  2 3\n"},
                      MalformedCase{"NodeWithoutY", "graph 1 2 3\nnode 1 1\n"},
                      MalformedCase{"NodeWithText", "graph 1 2 3\nnode 2 1 y\n"},
                      MalformedCase{"CommaDecimal", "graph 1 2 3\nnode 1 1,5 2\n"},
                      // Regression: "nan" and "inf" read as numbers and drew every node on one
                      // line.
                      MalformedCase{"NanX", "graph 1 2 3\nnode 1 nan 2\n"},
                      MalformedCase{"InfY", "graph 1 2 3\nnode 2 1 -inf\n"},
                      MalformedCase{"NanWidth", "graph 1 nan 3\nnode 1 1 1\n"},
                      MalformedCase{"InfiniteHeight", "graph 1 2 infinity\nnode 1 1 1\n"},
                      MalformedCase{"NegativeWidth", "graph 1 -2 3\nnode 1 1 1\n"}),
    [](const auto& info) { return info.param.name; });

TEST(SpatialExtremesTest, StartAtPlusAndMinusOneHundred) {
  TempDir dir;
  Spatial spatial;
  std::string error;
  const auto extremes = [&] {
    return std::vector<float>{spatial.MinX(), spatial.MaxX(), spatial.MinY(), spatial.MaxY()};
  };
  EXPECT_EQ(extremes(), (std::vector<float>{100, -100, 100, -100}));
  ASSERT_TRUE(spatial.LoadGVPlain(
      dir.WriteFile("a", "graph 1 900 900\nnode 1 150 -150\nnode 2 300 -120\n"), 1, 2, error));
  // Every x is above 100 and every y below -100: the starting values stay.
  EXPECT_EQ(extremes(), (std::vector<float>{100, 300, -150, -100}));
  ASSERT_TRUE(spatial.LoadGVPlain(dir.WriteFile("b", "graph 1 9 9\nnode 1 1 2\nnode 2 3 -4\n"), 1,
                                  2, error));
  EXPECT_EQ(extremes(), (std::vector<float>{1, 3, -4, 2}));
}

TEST(SpatialTextTest, Copy2ClipHasOneLinePerNodeAndGraphFromFileEndsLinesWithCrLf) {
  TempDir dir;
  Spatial spatial;
  std::string error;
  EXPECT_EQ(spatial.Copy2Clip(), "");
  ASSERT_TRUE(
      spatial.LoadGVPlain(dir.WriteFile("a", "graph 1 4 2\nnode 1 1.5 0.25\n"), 1, 2, error));
  EXPECT_EQ(spatial.Copy2Clip(), "1.5\t0.25\r\n2\t0.002\r\n");
  // GraphFromFile ends every line with CR LF.
  EXPECT_EQ(Spatial::GraphFromFile(dir.WriteFile("g", "a\nb\r\nc\rd")), "a\r\nb\r\nc\r\nd\r\n");
  EXPECT_EQ(Spatial::GraphFromFile(dir.WriteFile("b", "x\n\ny\n")), "x\r\n\r\ny\r\n");
  EXPECT_EQ(Spatial::GraphFromFile(dir.WriteFile("c", "")), "");
  EXPECT_EQ(Spatial::GraphFromFile((dir.Path() / "absent").string()), "");
}

TEST(SpatialProximityTest, EuclideanDistancesBothHalves) {
  TempDir dir;
  Spatial spatial;
  std::string error;
  EXPECT_TRUE(spatial.GetProximityMatrix().empty());
  ASSERT_TRUE(spatial.LoadGVPlain(
      dir.WriteFile("a", "graph 1 9 9\nnode 1 0 0\nnode 2 3 4\nnode 3 3 0\n"), 1, 3, error));
  const auto d = spatial.GetProximityMatrix();
  ASSERT_EQ(d.size(), 9u);
  EXPECT_EQ(d, (std::vector<float>{0, 5, 3, 5, 0, 4, 3, 4, 0}));
}

}  // namespace
}  // namespace sylvora
