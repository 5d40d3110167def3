#pragma once
// ProximityMatrix: a dense, square, symmetric matrix of single-precision proximities between
// n nodes (terms, documents or intervals), with a type code saying whether the values are
// similarities (larger is closer) or dissimilarities (smaller is closer). It is the input and
// the output of the network transforms (nearest neighbours, minimum spanning tree, Pathfinder
// networks, geodesic distances) and the source of the DOT text handed to Graphviz.
//
// Numbering. Nodes are 0-based: cell (i, j), i and j in 0..NodeCount()-1, row first.
//
// Cells. A freshly sized matrix holds kNoLink (-1) in every cell, the diagonal included.
// kUnreachable (9999999) is the infinite distance of the path transforms; it appears in the
// results of Transform2Geodesic (pairs with no path) and never in a matrix filled by
// LoadMatrix, AssignMatrix or the angle computations. Every public operation leaves the
// matrix symmetric.
//
// Type codes (CurrentMatrixType): 0 empty (every transform refuses), 1 document
// similarities, 2 term similarities, 3 document dissimilarities, 4 term dissimilarities.
// Sim2Dis toggles between 1 <-> 3 and 2 <-> 4.
//
// Link counts. The path transforms (Transform2FastPF, FastPFQ, FastPFQ2, Transform2Geodesic)
// record in their results the number of links of the best path found between two nodes;
// LinkCount reads them and gives 0 for any other matrix.
//
// Results and failures. Transforms return a new matrix owned by the caller (NetworkResult);
// where there is none (an empty or wrong-kind source, an MST start node without links,
// cancellation) the result says why instead. Value and LinkCount throw RangeError for a node
// outside 0..n-1. Nothing else throws apart from std::bad_alloc. Lines of the diagnostic
// trace (see DebugTrace) go to the matrix's trace, which results inherit.
//
// In-place conversions. Sim2Dis converts the object itself; so do Transform2FastPF (to
// dissimilarities, before it works) and Matrix2Dot (DOT lengths are always dissimilarities).
//
// Cost and memory. n x n floats (4n^2 bytes); link counts (another 4n^2 bytes) exist only in
// the results of the path transforms. The path transforms are n^3 steps (FastPFQ2 twice);
// Transform2MST is one listing and Shell sort of the n(n-1)/2 candidate edges and a
// near-linear union-find pass over them; the angle computations cost the co-occurrences of
// the index plus n^2 to fill. Long operations take a ProgressCallback, called after each
// outer step; when it answers false they stop and return no matrix.
//
// Threads: const operations may run concurrently; anything else needs the object to itself.
// Copies are deep; moving is cheap.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/progress.h"
#include "networks/debug_trace.h"
#include "sparse/edge_record.h"

namespace sylvora {

class TermDocumentMatrix;
class NetworkResult;

class ProximityMatrix {
 public:
  // Type codes.
  static constexpr std::int32_t kEmpty = 0;
  static constexpr std::int32_t kDocumentSimilarities = 1;
  static constexpr std::int32_t kTermSimilarities = 2;
  static constexpr std::int32_t kDocumentDissimilarities = 3;
  static constexpr std::int32_t kTermDissimilarities = 4;

  // Special cell values.
  static constexpr float kNoLink = -1.0f;
  static constexpr float kUnreachable = 9999999.0f;

  // An empty matrix: type 0, no nodes.
  ProximityMatrix() = default;

  std::int32_t CurrentMatrixType() const { return type_; }
  std::int32_t NodeCount() const { return n_; }
  // True for types 1 and 2 (larger is closer).
  bool HoldsSimilarities() const { return type_ == 1 || type_ == 2; }

  // Cell (i, j). Throws RangeError outside 0..n-1.
  float Value(std::int32_t i, std::int32_t j) const;
  // Links on the best path between i and j when this matrix came from a path transform, else
  // 0 (the trace then says so). Throws RangeError outside 0..n-1.
  std::int32_t LinkCount(std::int32_t i, std::int32_t j) const;
  // The n x n cells, row by row.
  std::span<const float> Values() const { return values_; }

  // The diagnostic trace of this matrix (off by default). Results inherit it.
  const DebugTrace& Trace() const { return trace_; }
  void SetTrace(DebugTrace trace) { trace_ = std::move(trace); }

  // ---- Filling (proximity_matrix.cpp) ----

  // Replaces the content with n x n `values` (row by row) of type `type`; link counts are
  // dropped. False, with the object unchanged, when n < 0 or values.size() != n * n. The
  // caller fills a symmetric matrix; this is how similarity arrays become networks.
  bool AssignMatrix(std::vector<float> values, std::int32_t n, std::int32_t type);
  bool AssignMatrix(std::span<const float> values, std::int32_t n, std::int32_t type);

  // Reads a square matrix from a tab-separated text file. Layout 0 is the only one known:
  // the first line is row 0 and sets n (its field count, one less when it ends with a tab);
  // cells (0, j) and (j, 0) come from field j of that line. Line i (i = 1..n-1) sets cells
  // (i, j) and (j, i) from its field j for j = 1..n-1; its field 0 is ignored. So for
  // i, j >= 1 a pair takes the value of line max(i, j), and the diagonal comes from the file.
  // Each field is read as its leading number ("." as decimal point, an optional exponent
  // such as "1E-05"; 0 when the field holds no number). Lines end in LF or CR LF.
  // False, with the object unchanged, for another layout code, a missing or unreadable file,
  // a first line without fields, fewer than n lines, a line with fewer than n fields, or
  // anything but blank lines after line n; LastLoadError() then says which.
  bool LoadMatrix(const std::string& filePath, std::int16_t iFormat, std::int32_t iType);
  const std::string& LastLoadError() const { return lastLoadError_; }

  // Toggles in place between similarities and dissimilarities: the type moves by 2 (1 <-> 3,
  // 2 <-> 4) and every off-diagonal cell v > -1 becomes 1 - v; cells of -1 and below and the
  // diagonal stay. Does nothing on an empty matrix (type 0).
  void Sim2Dis();

  // Document-by-document (ComputeDocAngles) or term-by-term (ComputeTermAngles) matrix of the
  // weights TermWeight(t, d, iWeight, normPreWeight) of `iTDM`, each rounded to a float.
  // Nodes and the summed index use the same numbers as the index: node i of the document
  // matrix is document i, and its sums run over terms 0..TermCount-1 (node i of the term
  // matrix is term i, summed over documents 0..DocCount-1). Since the index numbers terms
  // and documents from 1, node 0 has no weights, and the last term and document are
  // left out of every sum.
  //   magnitude^2(x) = the double sum of the squared weights; dot(i, j) = the float sum, in
  //   ascending order, of the products of the two nodes' weights.
  //   cosine: dot / (sqrt(mag^2(j)) * sqrt(mag^2(i))), 0 when that is 0; with
  //   `dissimilarity`, 1 - cosine. Without `cosine` the cell is the raw dot product and
  //   `dissimilarity` only sets the type (3 or 4 instead of 1 or 2).
  // Documents: every pair gets a value. Terms: a pair with dot <= 0 keeps -1 (no link).
  // The diagonal stays -1. Cost: the index's co-occurring pairs plus n^2.
  void ComputeDocAngles(const TermDocumentMatrix& iTDM, std::int32_t iWeight, bool normPreWeight,
                        bool cosine, bool dissimilarity);
  void ComputeTermAngles(const TermDocumentMatrix& iTDM, std::int32_t iWeight, bool normPreWeight,
                         bool cosine, bool dissimilarity);

  // Edges {cell (i, j), i, j} of the upper triangle with lowest <= value <= highest, in the
  // order i = 0..n-2, j = i+1..n-1.
  std::vector<EdgeRecord> GetEdgeList(float lowest, float highest) const;

  // ---- Network scaling (proximity_matrix_scaling.cpp) ----

  // The union of every node's K best neighbours (SelectTopK over the node's row, skipping the
  // node itself; largest first for similarities, smallest first otherwise; K above n - 2
  // counts as n - 2). A link exists when either end picked the other; in a dissimilarity
  // matrix a -1 cell is the smallest value and uses up a pick without adding a link.
  // No matrix when the type is 0.
  NetworkResult Transform2KNN(std::int32_t k) const;

  // The spanning tree grown from one start edge over the candidate links, those with
  // 0 <= value <= 1, ordered by SortEdges (largest first for similarities, smallest first
  // otherwise); each step takes the first edge in that order with exactly one end in the
  // tree. `startNode` -1 starts from the first edge; otherwise from the first edge touching
  // `startNode`. The tree is the same as the one that step-by-step rescanning gives (equal
  // weights are taken in the sorted order), computed with one union-find pass.
  // On a disconnected graph the result holds the tree grown from the start (fewer than
  // n - 1 links) and Message() names the count of nodes left out.
  // No matrix for an empty source, one without candidate links, a start node outside
  // 0..n-1 or without candidate links, or cancellation.
  NetworkResult Transform2MST(std::int32_t startNode, const ProgressCallback& progress = {}) const;

  // Pathfinder network PFNET(r, q = n - 1), r = 0 meaning infinity. First converts this
  // object to dissimilarities when it holds similarities. Working copy D: cells of absolute
  // value exactly 1 become unreachable, the diagonal 0. For k = 0..n-1, i = 0..n-2 (a = D(i, k)
  // read once), j = i+1..n-1: p = max(a, D(k, j)) for r = 0, else
  // (float(a^r) + D(k, j)^r)^(1/r) in double, rounded to float; when D(i, j) > p the pair
  // takes p and the link count of the path. Links whose final D differs from the source
  // become -1. The result keeps surviving dissimilarities, 0 on the diagonal, and the link
  // counts. No matrix for an empty matrix or cancellation.
  NetworkResult Transform2FastPF(std::uint8_t r, const ProgressCallback& progress = {});

  // As Transform2FastPF, but a shorter path replaces a link only when it has at most q links;
  // only on dissimilarities (no matrix, and no conversion, otherwise).
  NetworkResult FastPFQ(std::uint8_t r, std::int32_t q,
                        const ProgressCallback& progress = {}) const;
  // FastPFQ run with k ascending and again with k descending; a link survives only when
  // neither run replaced it.
  NetworkResult FastPFQ2(std::uint8_t r, std::int32_t q,
                         const ProgressCallback& progress = {}) const;

  // All shortest path lengths (sums of dissimilarities; a similarity source is converted in
  // the copy, not in this object). Cells of absolute value exactly 1 are no link; pairs
  // without a path hold kUnreachable; the diagonal 0. LinkCount gives the steps of each
  // shortest path. The progress stage reads "Geodesic - K=<k>". No matrix when the type is 0.
  NetworkResult Transform2Geodesic(const ProgressCallback& progress = {}) const;

  // ---- Export (proximity_matrix_export.cpp) ----

  // DOT text for Graphviz. Converts this object to dissimilarities first when it holds
  // similarities. Lines (CR LF, none after the last):
  //   "graph G {" / TAB "node [shape=plaintext,height=.0,width=.0];" / TAB "edge [weight=1.0];"
  //   one per edge with minEdgeLen <= value <= maxEdgeLen, ascending by weight (SortEdges):
  //     TAB from " -- " to " [len=" length "];"  with nodes numbered from firstNode (above 1
  //     counts as 1) and length = value^lenPwr (double, rounded to float) written "0.00000"
  //   "}"
  // `nodeLabels` is accepted and not written (nodes appear as numbers). Nodes without an edge
  // do not appear. An empty matrix gives the header and "}"; cancellation an empty text.
  std::string Matrix2Dot(float lenPwr, std::uint8_t firstNode, std::string_view nodeLabels,
                         float minEdgeLen, float maxEdgeLen, const ProgressCallback& progress = {});

  // Comma-separated text, lines ending in CR: ",n,n" / "RowLabels" and n commas /
  // "ColumnLabels" and n commas / "Data," / each row's n cells in the shortest decimal text
  // that reads back as the same float ("-1", "0.25", "1e-05").
  std::string Matrix2IVCSparse() const;
  // The clipboard table: n rows joined by CR LF (none after the last), cells "0.00000"
  // separated by tabs.
  std::string Copy2Clip() const;
  // The upper triangle row by row: (0,1), (0,2), ..., (0,n-1), (1,2), ..., (n-2,n-1).
  std::vector<float> Matrix2Vector() const;

 private:
  std::size_t At(std::int32_t i, std::int32_t j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(n_) + static_cast<std::size_t>(j);
  }
  void CheckNode(std::int32_t i) const;

  // Sizes to n x n of kNoLink and sets the type; drops link counts.
  void InitMatrix(std::int32_t n, std::int32_t type);
  // Link count 1 for every pair i != j, 0 on the diagonal.
  void InitLinkCounts();
  // Cells off the diagonal of absolute value exactly 1 become kUnreachable; the diagonal 0.
  void PrepareForPaths();
  // A copy of this matrix's values, type and trace, turned into dissimilarities when
  // `toDissimilarities`, with link counts and path preparation: the starting point of every
  // path transform.
  ProximityMatrix PathCopy(bool toDissimilarities) const;
  // Relaxes `d` through the intermediate nodes in the given order; `q` < 0 means no limit on
  // the links of a replacing path. False when cancelled.
  static bool RelaxPathfinder(ProximityMatrix& d, std::uint8_t r, std::int32_t q, bool ascending,
                              const ProgressCallback& progress);

  std::int32_t n_ = 0;
  std::int32_t type_ = kEmpty;
  std::vector<float> values_;             // n x n, row by row
  std::vector<std::int32_t> linkCounts_;  // n x n when computed, else empty
  DebugTrace trace_;
  std::string lastLoadError_;
};

// The DOT text of Matrix2Dot for a list of links {distance, i, j} given in ascending (i, j)
// order (the order a matrix lists its edges in): sorted by SortEdges, then written as there.
// This is how a tree that never had a dense matrix is handed to Graphviz.
std::string DotFromEdges(std::vector<EdgeRecord> edges, float lenPwr, std::uint8_t firstNode,
                         const ProgressCallback& progress = {});

// The outcome of a transform: the new matrix, or no matrix and the reason. A result with a
// matrix may still carry a message (a spanning tree that could not reach every node).
class NetworkResult {
 public:
  explicit NetworkResult(ProximityMatrix matrix, std::string message = {})
      : matrix_(std::move(matrix)), message_(std::move(message)) {}
  static NetworkResult Failure(std::string reason) { return NetworkResult(std::move(reason)); }

  bool HasMatrix() const { return matrix_.has_value(); }
  explicit operator bool() const { return HasMatrix(); }
  // The matrix; only when HasMatrix().
  ProximityMatrix& operator*() { return *matrix_; }
  const ProximityMatrix& operator*() const { return *matrix_; }
  ProximityMatrix* operator->() { return &*matrix_; }
  const ProximityMatrix* operator->() const { return &*matrix_; }
  // Why there is no matrix, or what is incomplete about it; empty otherwise.
  const std::string& Message() const { return message_; }

 private:
  explicit NetworkResult(std::string reason) : message_(std::move(reason)) {}

  std::optional<ProximityMatrix> matrix_;
  std::string message_;
};

}  // namespace sylvora
