#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "layout/layout_folder.h"
#include "layout/layout_scripts.h"
#include "layout/shell_and_wait.h"
#include "layout/spatial.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::ReadFile;
using testing::RecordingNotifier;
using testing::TempDir;
using testing::WriteScript;

// A spanning tree of nodes 1..3 (node 4 has no link), as the network export writes it.
const std::string kDot =
    "graph G {\r\n\tnode [shape=plaintext,height=.0,width=.0];\r\n\tedge [weight=1.0];\r\n"
    "\t1 -- 2 [len=0.25000];\r\n\t2 -- 3 [len=0.50000];\r\n}";

// Plain output for nodes 1..3 of kDot.
constexpr std::string_view kPlain =
    "graph 1 4 2\nnode 1 0.5 1.5 0.1 0.1 1 solid plaintext black lightgrey\n"
    "node 2 1.5 1 0.1 0.1 2 solid plaintext black lightgrey\n"
    "node 3 3.5 0.5 0.1 0.1 3 solid plaintext black lightgrey\n"
    "edge 1 2 4 0.5 1.5 1 1.3 1.2 1.1 1.5 1 solid black\nstop\n";

// The stand-in programs receive "F/gvin.txt" -Tplain -o"F/gvout.txt" as $1 $2 $3.
constexpr std::string_view kOutput = "out=\"${3#-o}\"\n";

class GraphVisLayoutTest : public ::testing::Test {
 protected:
  GraphVisLayoutTest() : spatial_(notifier_) { spatial_.SetLayoutFolder(work_.Path().string()); }

  void Program(std::string_view name, std::string_view body) {
    WriteScript(graphviz_, name, std::string(kOutput) + std::string(body));
  }

  bool Run(std::string_view algorithm = "sfdp", std::string_view dot = kDot) {
    return spatial_.GraphVisLayout_CLI(graphviz_.Path().string(), algorithm, dot, 4, 1);
  }

  std::string Command(std::string_view algorithm = "sfdp") const {
    return LayoutCommandLine(graphviz_.Path().string(), algorithm, work_.Path().string());
  }

  void ExpectFailureMessage() const {
    ASSERT_EQ(notifier_.Messages().size(), 1u);
    EXPECT_EQ(notifier_.Messages()[0].text, "Command:" + Command());
  }

  TempDir graphviz_;
  TempDir work_;
  RecordingNotifier notifier_;
  Spatial spatial_;
};

TEST_F(GraphVisLayoutTest, SuccessfulRunReadsPositionsAndEdges) {
  Program("sfdp", "cp \"$1\" \"$1.seen\"\nprintf '" + std::string(kPlain) + "' > \"$out\"");
  ASSERT_TRUE(Run());
  EXPECT_TRUE(notifier_.Messages().empty());
  EXPECT_EQ(spatial_.LastShellCode(), kShellEnded);
  EXPECT_EQ(ReadFile(work_.Path() / "gvin.txt.seen"), kDot + "\r\n");
  // The reading itself is checked in the spatial tests: here only that both files are read.
  EXPECT_EQ(spatial_.NodeCount(), 4);
  EXPECT_FLOAT_EQ(spatial_.Y(2), 0.5f);
  EXPECT_FLOAT_EQ(spatial_.X(3), 3.0f);  // node 4 has no link: bottom edge
  EXPECT_EQ(spatial_.Edge(1), (EdgeRecord{0.5f, 1, 2}));
}

TEST_F(GraphVisLayoutTest, AlgorithmChoosesTheProgram) {
  Program("sfdp", "echo 'graph 1 1 1' > \"$out\"");
  Program("neato", "echo 'graph 1 2 1' > \"$out\"");
  Program("fdp", "echo 'graph 1 3 1' > \"$out\"");
  ASSERT_TRUE(Run("neato"));
  EXPECT_EQ(spatial_.ScaleX(), 2.0f);
  ASSERT_TRUE(Run("fdp"));
  EXPECT_EQ(spatial_.ScaleX(), 3.0f);
  ASSERT_TRUE(Run("dot"));
  EXPECT_EQ(spatial_.ScaleX(), 1.0f);
}

TEST_F(GraphVisLayoutTest, MissingGraphvizFailsSilently) {
  EXPECT_FALSE(Run());
  EXPECT_EQ(spatial_.LastShellCode(), kShellNotStarted);
  EXPECT_TRUE(notifier_.Messages().empty());
  // The input was written all the same.
  EXPECT_EQ(ReadFile(work_.Path() / "gvin.txt"), kDot + "\r\n");
}

TEST_F(GraphVisLayoutTest, RunPastTheLimitFailsSilentlyAndDropsOldPositions) {
  Program("sfdp", "printf '" + std::string(kPlain) + "' > \"$out\"");
  ASSERT_TRUE(Run());
  Program("sfdp", "sleep 30\nprintf '" + std::string(kPlain) + "' > \"$out\"");
  spatial_.SetTimeLimit(1);  // gives up after the first slice
  EXPECT_FALSE(Run());
  EXPECT_EQ(spatial_.LastShellCode(), kShellTimedOut);
  EXPECT_TRUE(notifier_.Messages().empty());
  EXPECT_EQ(spatial_.NodeCount(), 4);
  EXPECT_EQ(spatial_.X(0), 0.0f);
  EXPECT_EQ(spatial_.EdgeCount(), 0);
  EXPECT_FALSE(std::filesystem::exists(work_.Path() / "gvout.txt"));
}

// A run that leaves no readable output shows the failure box naming the command; output of an
// earlier run is never read.
TEST_F(GraphVisLayoutTest, RunWithoutReadableOutputGivesTheFailureMessage) {
  for (const std::string& body :
       {std::string("exit 0"), std::string("echo 'Error: syntax error in line 1' >&2\nexit 1"),
        std::string("echo 'graph 1 4 2' > \"$out\"\necho 'node 2 1.5 oops' >> \"$out\"")}) {
    Program("sfdp", "printf '" + std::string(kPlain) + "' > \"$out\"");
    ASSERT_TRUE(Run());
    notifier_ = RecordingNotifier();
    Program("sfdp", body);
    EXPECT_FALSE(Run()) << body;
    EXPECT_EQ(spatial_.LastShellCode(), kShellEnded);
    ExpectFailureMessage();
  }
}

TEST_F(GraphVisLayoutTest, MalformedEdgeLineKeepsPositionsAndSucceeds) {
  Program("sfdp", "printf '" + std::string(kPlain) + "' > \"$out\"");
  const std::string dot =
      "graph G {\r\n\tnode;\r\n\tedge;\r\n\t1 -- 2 [len=0.25000];\r\n\t2 => 3;\r\n}";
  EXPECT_TRUE(Run("sfdp", dot));
  ExpectFailureMessage();
  EXPECT_FLOAT_EQ(spatial_.X(1), 1.5f);
  EXPECT_EQ(spatial_.EdgeCount(), 1);
}

TEST_F(GraphVisLayoutTest, UnwritableFolderGivesTheFailureMessage) {
  Program("sfdp", "printf '" + std::string(kPlain) + "' > \"$out\"");
  const std::string missing = (work_.Path() / "missing").string();
  spatial_.SetLayoutFolder(missing);
  EXPECT_FALSE(Run());
  ASSERT_EQ(notifier_.Messages().size(), 1u);
  EXPECT_EQ(notifier_.Messages()[0].text,
            "Command:" + LayoutCommandLine(graphviz_.Path().string(), "sfdp", missing));
  EXPECT_EQ(spatial_.LastShellCode(), -1);
}

TEST(DefaultLayoutFolderTest, IsAPrivateFolderOfThisProcess) {
  const std::string& folder = DefaultLayoutFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_EQ(&folder, &DefaultLayoutFolder());
  const auto permissions = std::filesystem::status(folder).permissions();
  EXPECT_EQ(permissions & std::filesystem::perms::all, std::filesystem::perms::owner_all);
  EXPECT_EQ(Spatial().LayoutFolder(), folder);
}

TEST(RealSfdpTest, LaysOutATreeAndASeparatePart) {
  if (!std::filesystem::exists("/usr/bin/sfdp")) GTEST_SKIP() << "Graphviz is not installed";
  RecordingNotifier notifier;
  Spatial spatial(notifier);
  // A star around node 1 plus a chain, a separate pair 6 - 7, and node 8 without a link.
  const std::string dot =
      "graph G {\r\n\tnode [shape=plaintext,height=.0,width=.0];\r\n\tedge [weight=1.0];\r\n"
      "\t1 -- 2 [len=0.10000];\r\n\t1 -- 3 [len=0.20000];\r\n\t1 -- 4 [len=0.30000];\r\n"
      "\t4 -- 5 [len=0.40000];\r\n\t6 -- 7 [len=0.50000];\r\n}";
  ASSERT_TRUE(spatial.GraphVisLayout_CLI("/usr/bin", "sfdp", dot, 8, 1));
  EXPECT_TRUE(notifier.Messages().empty());
  EXPECT_EQ(spatial.EdgeCount(), 5);
  EXPECT_EQ(spatial.NodeDegree(0), 3);
  // Linked nodes, of both parts, get distinct places inside the drawing, none on the bottom edge.
  for (int i = 0; i < 7; ++i) {
    EXPECT_GE(spatial.X(i), 0.0f);
    EXPECT_LE(spatial.X(i), spatial.ScaleX());
    EXPECT_NE(spatial.Y(i), spatial.ScaleY() / 1000.0f) << i;
    for (int j = i + 1; j < 7; ++j) {
      EXPECT_TRUE(spatial.X(i) != spatial.X(j) || spatial.Y(i) != spatial.Y(j)) << i << " " << j;
    }
  }
  EXPECT_FLOAT_EQ(spatial.X(7), 7.0f / 8.0f * spatial.ScaleX());
  EXPECT_FLOAT_EQ(spatial.Y(7), spatial.ScaleY() / 1000.0f);
  // Node 1 is nearer its closest neighbour (len 0.1) than the far end of the chain.
  const auto d = spatial.GetProximityMatrix();
  EXPECT_LT(d[0 * 8 + 1], d[0 * 8 + 4]);
}

}  // namespace
}  // namespace sylvora

namespace sylvora {
namespace {

TEST(DefaultGraphvizFolderTest, FindsSfdpOnThePath) {
  const char* saved = std::getenv("PATH");
  const std::string original = saved != nullptr ? saved : "";
  TempDir first;
  TempDir second;
  WriteScript(second, "sfdp", "exit 0");
  // A folder without sfdp and an sfdp that cannot run are passed over.
  first.WriteFile("sfdp", "not a program");
  ::setenv("PATH", (":" + first.Path().string() + ":" + second.Path().string()).c_str(), 1);
  EXPECT_EQ(DefaultGraphvizFolder(), second.Path().string());
  ::setenv("PATH", first.Path().string().c_str(), 1);
  const std::string fallback = DefaultGraphvizFolder();
  ::setenv("PATH", original.c_str(), 1);
  EXPECT_EQ(fallback.size() >= 4 ? fallback.substr(fallback.size() - 4) : fallback, "/bin");
  EXPECT_NE(fallback, first.Path().string());
}

}  // namespace
}  // namespace sylvora
