// Checks of the network readers: the dense matrix file, and Graphviz's plain output. A loaded
// matrix also goes the whole way of a map (distances, spanning tree, DOT text) and the DOT text
// must read back as the same edges.

#include <algorithm>
#include <cmath>
#include <string>

#include "checks/target_list.h"
#include "common/notifier.h"
#include "layout/spatial.h"
#include "networks/proximity_matrix.h"

namespace sylvora::fuzz {
namespace {

constexpr std::int32_t kLargestNetwork = 48;  // keeps the quadratic transforms quick

std::string CheckSymmetric(const ProximityMatrix& matrix, std::string_view what) {
  for (std::int32_t i = 0; i < matrix.NodeCount(); ++i) {
    for (std::int32_t j = 0; j < i; ++j) {
      if (matrix.Value(i, j) != matrix.Value(j, i)) return std::string(what) + " not symmetric";
    }
  }
  return {};
}

std::string CheckMatrixFile(std::string_view input) {
  const std::string path = WriteScratchFile("matrix.txt", input);
  ProximityMatrix matrix;
  if (!matrix.LoadMatrix(path, 0, ProximityMatrix::kTermSimilarities)) {
    if (matrix.LastLoadError().empty()) return "a refused matrix file gave no reason";
    if (matrix.NodeCount() != 0) return "a refused matrix file changed the matrix";
    return {};
  }
  if (matrix.NodeCount() < 1) return "a loaded matrix without nodes";
  if (auto failure = CheckSymmetric(matrix, "loaded matrix"); !failure.empty()) return failure;
  if (matrix.NodeCount() > kLargestNetwork) return {};

  matrix.Sim2Dis();
  const NetworkResult tree = matrix.Transform2MST(-1);
  if (!tree) return {};  // no candidate links: an error result, as it should be
  std::int32_t links = 0;
  for (std::int32_t i = 0; i < tree->NodeCount(); ++i) {
    for (std::int32_t j = 0; j < i; ++j) links += tree->Value(i, j) != ProximityMatrix::kNoLink;
  }
  if (links > matrix.NodeCount() - 1) return "a spanning tree with a cycle";
  if (auto failure = CheckSymmetric(*tree, "spanning tree"); !failure.empty()) return failure;
  if (const NetworkResult paths = matrix.Transform2Geodesic(); paths) {
    for (std::int32_t i = 0; i < paths->NodeCount(); ++i) {
      if (paths->Value(i, i) != 0.0f) return "a geodesic distance from a node to itself";
    }
  }

  ProximityMatrix dotSource = *tree;
  const std::string dot = dotSource.Matrix2Dot(1, 1, "", 0, 1);
  std::int32_t edgeLines = 0;
  for (std::size_t at = dot.find(" -- "); at != std::string::npos; at = dot.find(" -- ", at + 1)) {
    ++edgeLines;
  }
  SilentNotifier notifier;
  Spatial spatial(notifier);
  if (!spatial.SetGraphFromDot(dot, 1)) return "the DOT text written does not read back";
  if (spatial.EdgeCount() != edgeLines) return "DOT edges and edges read back differ";
  return {};
}

// The first byte gives the node count (0..31); the rest is the plain output.
std::string CheckGraphvizPlain(std::string_view input) {
  const std::int32_t nodes = input.empty() ? 0 : static_cast<unsigned char>(input[0]) % 32;
  if (!input.empty()) input.remove_prefix(1);
  const std::string path = WriteScratchFile("gvout.txt", input);
  SilentNotifier notifier;
  Spatial spatial(notifier);
  std::string error;
  if (!spatial.LoadGVPlain(path, 0, nodes, error)) {
    if (error.empty()) return "refused plain output gave no reason";
    return {};
  }
  if (spatial.NodeCount() != nodes) return "node count differs from the one asked for";
  for (std::int32_t i = 0; i < nodes; ++i) {
    if (std::isnan(spatial.X(i)) || std::isnan(spatial.Y(i))) return "a node placed at NaN";
  }
  // The same bytes as DOT text: any prefix of edges may be kept, never a crash.
  spatial.SetGraphFromDot(input, 1);
  return {};
}

}  // namespace

std::vector<FuzzTarget> NetworkTargets() {
  return {{"matrix_file", CheckMatrixFile}, {"graphviz_plain", CheckGraphvizPlain}};
}

}  // namespace sylvora::fuzz
