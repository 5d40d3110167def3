#pragma once
// The three maps of the cluster explorer, each a similarity matrix turned into a laid-out
// minimum spanning tree:
//
//   similarity array (n x n) -> ProximityMatrix (AssignMatrix, type 2 for terms, 1 otherwise)
//   -> Sim2Dis -> Transform2MST(-1) -> Matrix2Dot(1, 1, "", 0, 1) -> Spatial with "sfdp"
//
//  * word map: every term of the word index; the cosine of the terms' columns in the
//    term-by-document matrix (tweet level) or in the interval model's TIFM (interval level).
//    Labels are the terms, weights DocFreq / DocCount x 1000 (documents per thousand).
//  * interval map: every interval; the interval model's NM. Labels "1".."n", weights
//    IntervalDocCount / MaxIntervalDocCount x 5.
//  * tweet map of interval K: its tweets; second-order similarity: the cosine of the tweets'
//    term columns, made symmetric, then the cosine of that matrix's columns, made symmetric
//    (two tweets are close when they are alike to the same tweets). Labels "1".."n", weights 1.
//    Node i is corpus row FirstDocumentIndex(K) + i. An interval of more tweets than
//    MapOptions::denseNodeLimit keeps, at each order, only each tweet's tweetNeighbours most
//    similar tweets (NearestSimilarityMatrix) and is drawn through the sparse spanning tree.
//
// A build fills `map` only when the layout succeeds; otherwise the map keeps what it held and
// the report says why (an empty source, a network without links, Graphviz missing or too
// slow, a cancel). Layout failures also reach the notifier: Spatial's "Graph layout failed"
// box, and for the interval map the message kIntervalMapFailure. The interval and word models
// are borrowed and must be built over the same corpus as the word index.
//
// Cost: the similarity is one sparse product; the array, the network and the MST are n^2 in
// memory (4 bytes a cell, about 100 MB for 5,000 terms) and time; the layout is Graphviz's.
// Interval maps past MapOptions::denseNodeLimit read NM as it is stored instead: memory and
// time in its stored pairs, so linear in the interval count when intervals share few terms.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/notifier.h"
#include "common/progress.h"
#include "common/stopwatch.h"
#include "indexing/term_document_matrix.h"
#include "layout/spatial.h"
#include "session/cluster_map.h"
#include "session/memory_budget.h"
#include "sparse/sparse_matrix_single.h"

namespace sylvora {

class TextStream;

// Shown when the interval map cannot be laid out.
inline constexpr std::string_view kIntervalMapFailure =
    "Graph layout failed (probable timeout). Rebuild models and check path to GraphVis";

enum class WordMapLevel { kTweet, kInterval };

struct MapOptions {
  // The folder that holds the Graphviz programs.
  std::string graphvizFolder = "/usr/bin";
  // Layout program: "sfdp" (the maps' choice), "neato" or "fdp".
  std::string algorithm = "sfdp";
  // Where gvin.txt and gvout.txt go; "" for the per-process default.
  std::string layoutFolder;
  std::int32_t timeLimitMs = kLayoutTimeLimitMs;
  // A map whose estimated memory passes this is refused before it starts.
  std::int64_t memoryBudgetBytes = kDefaultMemoryBudgetBytes;
  // Interval and tweet maps of up to this many nodes go through the dense n x n matrix; larger
  // ones through the sparse spanning tree, which needs memory only for the linked pairs.
  std::int32_t denseNodeLimit = 2000;
  // Tweet maps past denseNodeLimit: how many nearest tweets each tweet keeps at each order of
  // the similarity.
  std::int32_t tweetNeighbours = 30;
};

struct MapReport {
  bool built = false;
  bool cancelled = false;
  // Why the map was not built, in words a user can act on.
  std::string error;
  // Something incomplete about a built map (a spanning tree that missed some nodes).
  std::string warning;
  // The layout run's ShellAndWait code (-1 when the build stopped before it).
  std::int32_t shellCode = -1;
  std::int32_t nodeCount = 0;
  std::int32_t edgeCount = 0;
  // "similarity", "network", "dot", "layout", each with its seconds.
  std::vector<StageTiming> stages;
};

// The cosine similarities between the columns of `matrix` as a dense, symmetric n x n array,
// row by row (n = ColCount()), 1 on the diagonal, 0 for columns without a shared row. Empty
// when cancelled.
std::vector<float> ColumnSimilarityArray(const SparseMatrixSingle& matrix,
                                         const ProgressCallback& progress = {});

// The shared steps: lays out the spanning tree of `similarities` (n x n, row by row) into
// map.layout and map.dot. `type` is the ProximityMatrix type (2 terms, 1 documents or
// intervals). `report` gets the stages, the counts and any failure; true when laid out.
bool LayOutSimilarities(std::vector<float> similarities, std::int32_t n, std::int32_t type,
                        const MapOptions& options, ClusterMap& map, MapReport& report,
                        Notifier& notifier, const ProgressCallback& progress = {});

// As LayOutSimilarities for a square, symmetric sparse similarity matrix (n = its ColCount(),
// absent cells 0), through SparseSpanningTree: no memory in the square of n.
bool LayOutSparseSimilarities(const SparseMatrixSingle& similarities, const MapOptions& options,
                              ClusterMap& map, MapReport& report, Notifier& notifier,
                              const ProgressCallback& progress = {});

// The word map. `wordStream` is needed at the interval level only (nullptr otherwise).
MapReport BuildWordMap(const TermDocumentMatrix& wordIndex, const TextStream* wordStream,
                       WordMapLevel level, const MapOptions& options, ClusterMap& map,
                       Notifier& notifier = DefaultNotifier(),
                       const ProgressCallback& progress = {});

// The interval map of the word model (its NM must be built).
MapReport BuildIntervalMap(const TextStream& wordStream, const MapOptions& options, ClusterMap& map,
                           Notifier& notifier = DefaultNotifier(),
                           const ProgressCallback& progress = {});

// A rough build time, in seconds, of the tweet map of an interval of `tweets` tweets (the
// similarity, the tree and the layout), measured on generated corpora on a 2-core machine:
// the similarities are cubic in the tweets up to options.denseNodeLimit, then quadratic (the
// first-order products); the layout is linear.
double EstimatedTweetMapSeconds(std::int32_t tweets, const MapOptions& options = {});

// The tweet map of interval `interval` (1-based) of the word model.
MapReport BuildTweetMap(const TermDocumentMatrix& wordIndex, const TextStream& wordStream,
                        std::int32_t interval, const MapOptions& options, ClusterMap& map,
                        Notifier& notifier = DefaultNotifier(),
                        const ProgressCallback& progress = {});

}  // namespace sylvora
