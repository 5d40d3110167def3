#include "session/map_export.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::TempDir;

// Three nodes: 0 and 1 linked, 2 alone on the bottom edge.
ClusterMap SmallMap(const TempDir& dir) {
  ClusterMap map;
  map.kind = MapKind::kWords;
  map.labels = {"storm", "say \"hi\", <b>&", "wind\nrain"};
  map.weights = {12.5f, 0.1f, 3.0f};
  std::string error;
  EXPECT_TRUE(map.layout.LoadGVPlain(
      dir.WriteFile("gvout.txt", "graph 1 6 3\nnode 1 1.5 2\nnode 2 -0.25 1e-3\n"), 1, 3, error))
      << error;
  EXPECT_TRUE(map.layout.SetGraphFromDot(
      "graph G {\r\n\tnode;\r\n\tedge;\r\n\t1 -- 2 [len=0.33333];\r\n}", 1));
  return map;
}

TEST(MapExportTest, TablesHaveOneRowPerNodeOrEdgeWithQuotedLabels) {
  TempDir dir;
  EXPECT_EQ(MapNodeTable(SmallMap(dir)),
            "index,label,x,y,weight,degree\r\n"
            "0,storm,1.5,2,12.5,1\r\n"
            "1,\"say \"\"hi\"\", <b>&\",-0.25,0.001,0.1,1\r\n"
            "2,\"wind\nrain\",4,0.003,3,0\r\n");
  EXPECT_EQ(MapEdgeTable(SmallMap(dir)),
            "from,to,from_label,to_label,length\r\n"
            "0,1,storm,\"say \"\"hi\"\", <b>&\",0.33333\r\n");
}

TEST(MapExportTest, GraphMlEscapesLabelsAndKeepsEveryNode) {
  TempDir dir;
  ClusterMap map = SmallMap(dir);
  map.labels[2] = "tab\tbell\a";
  const std::string xml = MapGraphMl(map);
  EXPECT_EQ(xml.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<graphml ", 0), 0u);
  EXPECT_NE(xml.find("<graph id=\"words\" edgedefault=\"undirected\">"), std::string::npos);
  EXPECT_NE(xml.find("<node id=\"n1\"><data key=\"label\">say &quot;hi&quot;, &lt;b&gt;&amp;"
                     "</data><data key=\"x\">-0.25</data><data key=\"y\">0.001</data>"
                     "<data key=\"weight\">0.1</data><data key=\"degree\">1</data></node>"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<data key=\"label\">tab\tbell</data>"), std::string::npos);
  EXPECT_NE(xml.find("<edge id=\"e0\" source=\"n0\" target=\"n1\"><data key=\"length\">0.33333"
                     "</data></edge>"),
            std::string::npos);
  EXPECT_EQ(xml.substr(xml.size() - 22), "  </graph>\n</graphml>\n");
}

TEST(MapExportTest, MissingLabelsAndWeightsAreEmptyAndZero) {
  TempDir dir;
  ClusterMap map = SmallMap(dir);
  map.labels.clear();
  map.weights.resize(1);
  EXPECT_EQ(MapNodeTable(map),
            "index,label,x,y,weight,degree\r\n0,,1.5,2,12.5,1\r\n1,,-0.25,0.001,0,1\r\n"
            "2,,4,0.003,0,0\r\n");
}

}  // namespace
}  // namespace sylvora
