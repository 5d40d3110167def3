// Text forms of a proximity matrix: DOT for Graphviz, comma-separated and tab-separated
// tables, and the upper triangle as a flat vector.

#include <charconv>
#include <cmath>
#include <string>

#include "networks/proximity_matrix.h"
#include "sparse/number_format.h"
#include "sparse/sorting_helpers.h"

namespace sylvora {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

void AppendInteger(std::string& text, std::int64_t value) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  text.append(buffer, result.ptr);
}

// The shortest decimal text that reads back as the same float.
void AppendShortest(std::string& text, float value) {
  char buffer[48];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  text.append(buffer, result.ptr);
}

}  // namespace

std::string ProximityMatrix::Matrix2Dot(float lenPwr, std::uint8_t firstNode,
                                        std::string_view nodeLabels, float minEdgeLen,
                                        float maxEdgeLen, const ProgressCallback& progress) {
  // DOT lengths are distances.
  if (HoldsSimilarities()) Sim2Dis();
  // Labels are taken and not written: Graphviz sees node numbers only.
  static_cast<void>(nodeLabels);
  return DotFromEdges(GetEdgeList(minEdgeLen, maxEdgeLen), lenPwr, firstNode, progress);
}

std::string DotFromEdges(std::vector<EdgeRecord> edges, float lenPwr, std::uint8_t firstNode,
                         const ProgressCallback& progress) {
  SortEdges(edges, false);
  const std::int32_t first = firstNode > 1 ? 1 : firstNode;

  std::string text;
  text.reserve(80 + edges.size() * 32);
  text += "graph G {";
  text += kLineEnd;
  text += "\tnode [shape=plaintext,height=.0,width=.0];";
  text += kLineEnd;
  text += "\tedge [weight=1.0];";
  text += kLineEnd;
  ProgressReporter reporter(progress, "Writing DOT", static_cast<std::int64_t>(edges.size()));
  for (const EdgeRecord& edge : edges) {
    const auto length = static_cast<float>(std::pow(static_cast<double>(edge.Weight), lenPwr));
    text += '\t';
    AppendInteger(text, static_cast<std::int64_t>(edge.FromNode) + first);
    text += " -- ";
    AppendInteger(text, static_cast<std::int64_t>(edge.ToNode) + first);
    text += " [len=";
    text += FormatNumber(length, "0.00000");
    text += "];";
    text += kLineEnd;
    if (!reporter.Step()) return {};
  }
  text += '}';
  return text;
}

std::string ProximityMatrix::Matrix2IVCSparse() const {
  constexpr char kEnd = '\r';
  std::string text;
  text.reserve(64 + 3 * static_cast<std::size_t>(n_) + values_.size() * 10);
  text += ',';
  AppendInteger(text, n_);
  text += ',';
  AppendInteger(text, n_);
  text += kEnd;
  text += "RowLabels";
  text.append(static_cast<std::size_t>(n_), ',');
  text += kEnd;
  text += "ColumnLabels";
  text.append(static_cast<std::size_t>(n_), ',');
  text += kEnd;
  text += "Data,";
  text += kEnd;
  for (std::int32_t i = 0; i < n_; ++i) {
    for (std::int32_t j = 0; j < n_; ++j) {
      if (j > 0) text += ',';
      AppendShortest(text, values_[At(i, j)]);
    }
    text += kEnd;
  }
  return text;
}

std::string ProximityMatrix::Copy2Clip() const {
  std::string text;
  text.reserve(values_.size() * 9);
  for (std::int32_t i = 0; i < n_; ++i) {
    if (i > 0) text += kLineEnd;
    for (std::int32_t j = 0; j < n_; ++j) {
      if (j > 0) text += '\t';
      text += FormatNumber(values_[At(i, j)], "0.00000");
    }
  }
  return text;
}

std::vector<float> ProximityMatrix::Matrix2Vector() const {
  std::vector<float> vector;
  if (n_ < 2) return vector;
  vector.reserve(static_cast<std::size_t>(n_) * static_cast<std::size_t>(n_ - 1) / 2);
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    for (std::int32_t j = i + 1; j < n_; ++j) vector.push_back(values_[At(i, j)]);
  }
  return vector;
}

}  // namespace sylvora
