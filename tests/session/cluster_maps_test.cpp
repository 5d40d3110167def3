// The three maps of the cluster explorer: the shared steps (similarities to a laid-out spanning
// tree, the DOT text byte for byte), each source, and the failures, with shell scripts standing
// in for Graphviz where it must misbehave and the real sfdp elsewhere. (A missing, slow, failing
// or cancelled Graphviz: the layout runner's and the cluster explorer's tests.)

#include "session/cluster_maps.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include "layout/shell_and_wait.h"
#include "networks/proximity_matrix.h"
#include "networks/sparse_spanning_tree.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session_fixtures.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"
#include "temporal/text_stream.h"

namespace sylvora {
namespace {

using testing::ReadFile;
using testing::RecordingNotifier;
using testing::TempDir;

constexpr const char* kRealGraphviz = "/usr/bin";
bool HaveSfdp() { return std::filesystem::exists(std::string(kRealGraphviz) + "/sfdp"); }

// A stand-in for sfdp in its own folder: `body` runs with $out naming the output file.
class FakeGraphviz {
 public:
  explicit FakeGraphviz(std::string_view body) {
    const std::string path = dir_.WriteFile(
        "sfdp", "#!/bin/sh\nout=\"${3#-o}\"\ncp \"$1\" \"$1.seen\"\n" + std::string(body) + "\n");
    ::chmod(path.c_str(), 0755);
  }
  std::string Folder() const { return dir_.Path().string(); }

 private:
  TempDir dir_;
};

// Plain output placing nodes 1..n on a diagonal.
std::string DiagonalPlain(int n) {
  std::string text = "printf 'graph 1 " + std::to_string(n) + " " + std::to_string(n) + "\\n";
  for (int k = 1; k <= n; ++k) {
    text += "node " + std::to_string(k) + " " + std::to_string(k) + " " + std::to_string(k) +
            " 0.1 0.1 x\\n";
  }
  return text + "stop\\n' > \"$out\"";
}

class MapTest : public ::testing::Test {
 protected:
  MapOptions Options(const std::string& graphviz) const {
    MapOptions options;
    options.graphvizFolder = graphviz;
    options.layoutFolder = work_.Path().string();
    return options;
  }
  std::string SeenDot() const { return ReadFile(work_.Path() / "gvin.txt.seen"); }

  TempDir work_;
  RecordingNotifier notifier_;
};

TEST(ColumnSimilarityArrayTest, DenseSymmetricCosinesWithOnesOnTheDiagonal) {
  SparseMatrixSingle m;
  m.Reset(3, 4);
  m.SetValue(1, 1, 1.0f);  // column 1 = (1, 0, 0)
  m.SetValue(1, 2, 1.0f);  // column 2 = (1, 1, 0)
  m.SetValue(2, 2, 1.0f);
  m.SetValue(3, 3, 2.0f);  // column 3 = (0, 0, 2); column 4 empty
  const std::vector<float> s = ColumnSimilarityArray(m);
  const float c = 1.0f / std::sqrt(2.0f);
  ASSERT_EQ(s.size(), 16u);
  const std::vector<float> expected = {1, c, 0, 0,  //
                                       c, 1, 0, 0,  //
                                       0, 0, 1, 0,  //
                                       0, 0, 0, 1};
  for (std::size_t i = 0; i < 16; ++i) EXPECT_FLOAT_EQ(s[i], expected[i]) << "cell " << i;
}

// Similarities 0.75 (nodes 0-1), 0.5 (1-2) and 0.25 (0-2): distances 0.25, 0.5, 0.75, so the
// tree keeps 0-1 and 1-2.
std::vector<float> ThreeNodes() { return {1, 0.75f, 0.25f, 0.75f, 1, 0.5f, 0.25f, 0.5f, 1}; }

constexpr const char* kDotHeader =
    "graph G {\r\n\tnode [shape=plaintext,height=.0,width=.0];\r\n\tedge [weight=1.0];\r\n";

TEST_F(MapTest, SharedStepsWriteTheTreeAsDotAndReadTheLayout) {
  const FakeGraphviz graphviz(DiagonalPlain(3));
  ClusterMap map;
  MapReport report;
  ASSERT_TRUE(
      LayOutSimilarities(ThreeNodes(), 3, 1, Options(graphviz.Folder()), map, report, notifier_))
      << report.error;
  const std::string dot =
      std::string(kDotHeader) + "\t1 -- 2 [len=0.25000];\r\n\t2 -- 3 [len=0.50000];\r\n}";
  EXPECT_EQ(map.dot, dot);
  EXPECT_EQ(SeenDot(), dot + "\r\n");
  EXPECT_EQ(report.shellCode, kShellEnded);
  EXPECT_EQ(report.nodeCount, 3);
  EXPECT_EQ(report.edgeCount, 2);
  EXPECT_EQ(map.layout.Edge(1), (EdgeRecord{0.5f, 1, 2}));
  EXPECT_FLOAT_EQ(map.layout.X(2), 3.0f);
  ASSERT_EQ(report.stages.size(), 3u);
  EXPECT_TRUE(notifier_.Messages().empty());
}

// Similarities a rounding step above 1 (two nodes that always occur together have the
// single-precision cosine 1.0000001) are linked at length 0. With every pair at 0.5 the tree is
// a star or a chain depending on how the ties are taken: the sorted candidates stay (0,1),
// (0,2), (1,2) and the tree takes the first two.
TEST_F(MapTest, NearOneSimilaritiesAreLinkedAndTiesKeepTheFirstEdges) {
  const float above = std::nextafter(1.0f, 2.0f);
  const FakeGraphviz graphviz(DiagonalPlain(3));
  const std::pair<std::vector<float>, std::string> cases[] = {
      {{1, above, 0.5f, above, 1, 0.25f, 0.5f, 0.25f, 1},
       "\t1 -- 2 [len=0.00000];\r\n\t1 -- 3 [len=0.50000];\r\n}"},
      {{1, 0.5f, 0.5f, 0.5f, 1, 0.5f, 0.5f, 0.5f, 1},
       "\t1 -- 2 [len=0.50000];\r\n\t1 -- 3 [len=0.50000];\r\n}"},
  };
  for (const auto& [similarities, edges] : cases) {
    ClusterMap map;
    MapReport report;
    ASSERT_TRUE(
        LayOutSimilarities(similarities, 3, 1, Options(graphviz.Folder()), map, report, notifier_))
        << report.error;
    EXPECT_EQ(map.dot, kDotHeader + edges);
  }
}

// ---- The three sources over a small corpus ----

// Three topics that share no word.
const std::vector<std::vector<std::string>> kTopics = {
    {"storm", "wind", "rain", "coast", "warning"},
    {"power", "outage", "generator", "grid"},
    {"music", "festival", "band", "stage"}};

// Tweet i: the words of topic i / 2 mod 3 but one, two tweets an hour over twelve hours.
std::string TopicText(std::size_t i) {
  const std::vector<std::string>& words = kTopics[(i / 2) % 3];
  std::string text;
  for (std::size_t w = 0; w < words.size(); ++w) {
    if (w != i % words.size()) text += words[w] + " ";
  }
  return text;
}

class SmallCorpusTest : public MapTest {
 protected:
  void SetUp() override {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < 24; ++i) {
      rows.push_back({"", "user" + std::to_string(i % 5), TopicText(i), std::to_string(i / 2),
                      std::to_string(9000 + i)});
    }
    DocumentSet& documents = session_.Documents();
    documents.SetDocuments(rows, 7, static_cast<DocIndex>(rows.size()));
    documents.SetFieldName(4, "Tweet ID");
    documents.SetAuthorField(1);
    documents.SetContentField(2);
    documents.SetElapsedTimeField(3);
    documents.SetFieldExpressionPattern("001");
    IndexOptions options;
    options.stopListPath = testing::StopListPath();
    options.minDocFrequency = 2;
    options.maxDocFrequency = 24;
    options.porter = false;
    const IndexReport report = BuildIndexes(session_, options);
    ASSERT_TRUE(report.indexed) << report.error;
    // Intervals of three hours: four of them, six tweets each.
    model_.SetDocumentSet(session_.Documents());
    model_.SetTermDocumentMatrix(session_.WordIndex());
    ASSERT_TRUE(model_.BuildTermIntervalFrequencyModel(3, 3, notifier_));
    ASSERT_EQ(model_.IntervalCount(), 4);
    model_.BuildIntervalSimilarityModel(9999);
  }

  // The topic of a term.
  static std::size_t Topic(const std::string& term) {
    for (std::size_t t = 0; t < kTopics.size(); ++t) {
      if (std::count(kTopics[t].begin(), kTopics[t].end(), term) > 0) return t;
    }
    return kTopics.size();
  }

  Session session_;
  TextStream model_;
};

TEST_F(SmallCorpusTest, WordMapJoinsWordsOfOneTopic) {
  if (!HaveSfdp()) GTEST_SKIP() << "Graphviz is not installed";
  const TermDocumentMatrix& words = session_.WordIndex();
  ClusterMap map;
  const MapReport report =
      BuildWordMap(words, nullptr, WordMapLevel::kTweet, Options(kRealGraphviz), map, notifier_);
  ASSERT_TRUE(report.built) << report.error;
  EXPECT_TRUE(report.warning.empty());
  const std::int32_t n = words.TermCount();
  EXPECT_EQ(n, 13);
  EXPECT_EQ(map.kind, MapKind::kWords);
  EXPECT_EQ(map.NodeCount(), n);
  EXPECT_EQ(map.layout.EdgeCount(), n - 1);
  for (std::int32_t i = 0; i < n; ++i) {
    EXPECT_EQ(map.labels[static_cast<std::size_t>(i)], words.Term(i + 1));
    EXPECT_FLOAT_EQ(map.weights[static_cast<std::size_t>(i)],
                    static_cast<float>(words.DocFreq(i + 1) / 24.0 * 1000.0));
  }
  // Three topics without a shared word: exactly two links cross between them, each at the
  // longest length (no co-occurrence).
  int crossing = 0;
  for (const EdgeRecord& edge : map.layout.Edges()) {
    const auto from = map.labels[static_cast<std::size_t>(edge.FromNode)];
    const auto to = map.labels[static_cast<std::size_t>(edge.ToNode)];
    if (Topic(from) != Topic(to)) {
      ++crossing;
      EXPECT_FLOAT_EQ(edge.Weight, 1.0f) << from << " -- " << to;
    } else {
      EXPECT_LT(edge.Weight, 1.0f) << from << " -- " << to;
    }
  }
  EXPECT_EQ(crossing, 2);
  EXPECT_TRUE(notifier_.Messages().empty());
}

// What a map cannot be made of is refused before Graphviz runs.
TEST_F(SmallCorpusTest, RefusesWhatItCannotMap) {
  const MapOptions options = Options(kRealGraphviz);
  ClusterMap map;
  const TermDocumentMatrix& words = session_.WordIndex();
  EXPECT_FALSE(
      BuildWordMap(words, nullptr, WordMapLevel::kInterval, options, map, notifier_).built);
  EXPECT_FALSE(
      BuildWordMap(TermDocumentMatrix(), nullptr, WordMapLevel::kTweet, options, map, notifier_)
          .built);
  EXPECT_FALSE(BuildIntervalMap(TextStream(), options, map, notifier_).built);
  for (const std::int32_t interval : {0, 5, -1}) {
    EXPECT_FALSE(BuildTweetMap(words, model_, interval, options, map, notifier_).built);
  }
  MapReport report;
  EXPECT_FALSE(LayOutSimilarities({1}, 1, 1, options, map, report, notifier_));
  EXPECT_NE(report.error.find("at least two nodes"), std::string::npos);
  for (const std::vector<float>& similarities : {std::vector<float>{}, {1, 0, 0}}) {
    report = MapReport();
    EXPECT_FALSE(LayOutSimilarities(similarities, similarities.empty() ? 0 : 2, 1, options, map,
                                    report, notifier_));
    EXPECT_FALSE(report.error.empty());
  }
}

TEST_F(SmallCorpusTest, IntervalMapWeighsIntervalsByTheirTweets) {
  const FakeGraphviz graphviz(DiagonalPlain(4));
  ClusterMap map;
  const MapReport report = BuildIntervalMap(model_, Options(graphviz.Folder()), map, notifier_);
  ASSERT_TRUE(report.built) << report.error;
  EXPECT_EQ(map.kind, MapKind::kIntervals);
  EXPECT_EQ(map.labels, (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(map.weights, (std::vector<float>{5, 5, 5, 5}));
  EXPECT_EQ(map.layout.EdgeCount(), 3);
  // The DOT lengths are 1 - NM cells.
  const EdgeRecord first = map.layout.Edge(0);
  EXPECT_NEAR(first.Weight, 1.0f - model_.NM().Value(first.FromNode + 1, first.ToNode + 1), 1e-5f);
}

TEST_F(SmallCorpusTest, TweetMapCoversTheIntervalsTweets) {
  if (!HaveSfdp()) GTEST_SKIP() << "Graphviz is not installed";
  ClusterMap map;
  const MapReport report =
      BuildTweetMap(session_.WordIndex(), model_, 2, Options(kRealGraphviz), map, notifier_);
  ASSERT_TRUE(report.built) << report.error;
  EXPECT_EQ(map.kind, MapKind::kTweets);
  EXPECT_EQ(map.interval, 2);
  EXPECT_EQ(map.firstDocument, 6);
  EXPECT_EQ(map.NodeCount(), 6);
  // Labelled with the corpus row and the tweet ID, to be traced back from an export.
  EXPECT_EQ(map.labels,
            (std::vector<std::string>{"row 6 id 9006", "row 7 id 9007", "row 8 id 9008",
                                      "row 9 id 9009", "row 10 id 9010", "row 11 id 9011"}));
  EXPECT_EQ(map.weights, std::vector<float>(6, 1.0f));
  EXPECT_EQ(map.layout.EdgeCount(), 5);
  // Tweets 6 and 7 (storm), 8 and 9 (power), 10 and 11 (music): each pair is linked.
  std::set<std::pair<int, int>> links;
  for (const EdgeRecord& edge : map.layout.Edges()) {
    links.insert({std::min(edge.FromNode, edge.ToNode), std::max(edge.FromNode, edge.ToNode)});
  }
  EXPECT_TRUE(links.count({0, 1}));
  EXPECT_TRUE(links.count({2, 3}));
  EXPECT_TRUE(links.count({4, 5}));
}

TEST_F(MapTest, TweetMapOfAnIntervalWithoutTweetsIsAnError) {
  // Hours 0, 0, 1, 1, 7, 7 in intervals of two hours: intervals 2 and 3 are empty.
  Session session;
  std::vector<testing::Tweet> tweets;
  for (const int hour : {0, 0, 1, 1, 7, 7}) tweets.push_back({hour, "storm wind rain"});
  testing::LoadAndIndex(session, work_, tweets);
  TextStream model;
  model.SetDocumentSet(session.Documents());
  model.SetTermDocumentMatrix(session.WordIndex());
  ASSERT_TRUE(
      model.BuildTermIntervalFrequencyModel(session.Documents().ElapsedTimeField(), 2, notifier_));
  ASSERT_EQ(model.IntervalDocCount(2), 0);
  ClusterMap map;
  const MapReport report =
      BuildTweetMap(session.WordIndex(), model, 2, Options(kRealGraphviz), map, notifier_);
  EXPECT_FALSE(report.built);
  EXPECT_EQ(report.error, "Interval 2 has no tweets");
  EXPECT_EQ(map.NodeCount(), 0);
}

// ---- The sparse route on the bundled sample ----

// The DOT text of the tree the dense route draws from a square similarity matrix.
std::string DenseTreeDot(const SparseMatrixSingle& similarities) {
  const std::int32_t n = similarities.ColCount();
  std::vector<float> cells;
  for (const std::vector<float>& row : similarities.GetDenseMatrix())
    cells.insert(cells.end(), row.begin(), row.end());
  ProximityMatrix matrix;
  EXPECT_TRUE(matrix.AssignMatrix(std::move(cells), n, ProximityMatrix::kDocumentSimilarities));
  matrix.Sim2Dis();
  NetworkResult tree = matrix.Transform2MST(-1);
  return tree ? tree->Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f) : "no tree: " + tree.Message();
}

std::string SparseTreeDot(const SparseMatrixSingle& similarities) {
  SparseTree tree = SparseSpanningTree(similarities);
  return tree.built ? DotFromEdges(std::move(tree.links), 1.0f, 1) : "no tree: " + tree.message;
}

class SampleMapTest : public MapTest {
 protected:
  void SetUp() override {
    LoadOptions load;
    load.path = (testing::SourceDir() / "data" / "sample_twitter11.txt").string();
    ASSERT_TRUE(LoadCorpus(session_, load, notifier_).loaded);
    IndexOptions index;
    index.stopListPath = (testing::SourceDir() / "data" / "common_words.txt").string();
    ASSERT_TRUE(BuildIndexes(session_, index).indexed);
  }
  void BuildModelsOf(const std::string& hours) {
    ModelOptions options;
    options.intervalLength = hours;
    ASSERT_TRUE(BuildModels(session_, options, notifier_).built);
  }

  Session session_;
};

// The link lengths of a DOT text, sorted: the same for every minimum spanning tree of a network.
std::vector<std::string> SortedLengths(const std::string& dot) {
  std::vector<std::string> lengths;
  for (std::size_t at = dot.find("[len="); at != std::string::npos; at = dot.find("[len=", at + 1))
    lengths.push_back(dot.substr(at + 5, dot.find(']', at) - at - 5));
  std::sort(lengths.begin(), lengths.end());
  return lengths;
}

// The interval map of many intervals goes through the sparse spanning tree. On the sample it
// draws the same tree as the dense route from two hours to a day; at an hour (430 intervals,
// many of them empty) equal lengths compete and the two routes may pick different links of
// the same lengths, which is why maps of up to MapOptions::denseNodeLimit keep the dense one.
TEST_F(SampleMapTest, IntervalMapsDrawTheSameTreeThroughTheSparseRoute) {
  for (const char* hours : {"24", "12", "8", "6", "4", "3", "2", "1"}) {
    SCOPED_TRACE(hours);
    BuildModelsOf(hours);
    const SparseMatrixSingle& nm = session_.WordModel().NM();
    ASSERT_GT(nm.ColCount(), 10);
    const std::string sparse = SparseTreeDot(nm);
    const std::string dense = DenseTreeDot(nm);
    EXPECT_EQ(SortedLengths(sparse), SortedLengths(dense));
    if (std::string(hours) != "1") {
      EXPECT_EQ(sparse, dense);
    }
  }
}

}  // namespace
}  // namespace sylvora
