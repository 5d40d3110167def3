#include "session/cluster_maps.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

#include "layout/shell_and_wait.h"
#include "networks/proximity_matrix.h"
#include "networks/sparse_spanning_tree.h"
#include "temporal/text_stream.h"

namespace sylvora {
namespace {

// The field of a tweet's own ID in the tweet layouts that have one.
constexpr std::string_view kTweetIdFieldName = "Tweet ID";

constexpr std::string_view kProgramTitle = "Sylvora";

// The constants of EstimatedTweetMapSeconds, from the release build's benchmark on a busy
// 2-core machine (2,000 tweets: 1.4 s through the full route; 20,000: 0.5 s of similarities
// and 11 s of sfdp through the neighbour lists).
constexpr double kDenseTweetSeconds = 2e-10;
constexpr double kSparseTweetSquareSeconds = 1.3e-9;
constexpr double kLayoutTweetSeconds = 4.5e-4;

// Passes progress on and remembers whether the receiver asked to stop.
class CancelWatch {
 public:
  explicit CancelWatch(const ProgressCallback& progress)
      : forward_([this, &progress](std::string_view stage, std::int64_t done, std::int64_t total) {
          if (progress && !progress(stage, done, total)) cancelled_ = true;
          return !cancelled_;
        }) {}

  const ProgressCallback& Callback() const { return forward_; }
  bool Cancelled() const { return cancelled_; }

 private:
  bool cancelled_ = false;
  ProgressCallback forward_;
};

// A square sparse matrix as a dense n x n array, row by row; cells outside 1..n are left out.
std::vector<float> DenseArray(const SparseMatrixSingle& square) {
  const std::int32_t n = square.ColCount();
  std::vector<float> dense(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.0f);
  for (std::int32_t c = 1; c <= n; ++c) {
    const SparseVectorSingle* column = square.Vector(c);
    const auto rows = column->ElementIndexes();
    const auto values = column->ElementValues();
    for (std::size_t k = 0; k < rows.size(); ++k) {
      if (rows[k] < 1 || rows[k] > n) continue;
      dense[static_cast<std::size_t>(rows[k] - 1) * static_cast<std::size_t>(n) +
            static_cast<std::size_t>(c - 1)] = values[k];
    }
  }
  return dense;
}

// The cosine similarity matrix of the columns, mirrored so that it is symmetric.
SparseMatrixSingle SymmetricSimilarity(const SparseMatrixSingle& matrix,
                                       const ProgressCallback& progress) {
  SparseMatrixSingle similarity = matrix.GetSimilarityMatrix(2, progress);
  similarity.MakeSymmetric(true);
  return similarity;
}

std::string LayoutFailure(std::int32_t code, const MapOptions& options,
                          const std::string& failure) {
  switch (code) {
    case kShellNotStarted:
      return "Graphviz could not be started: '" + options.graphvizFolder + "' holds no runnable " +
             options.algorithm +
             " program; install Graphviz (the graphviz package) or name the folder that "
             "holds it";
    case kShellTimedOut:
      return "Graphviz took longer than " + std::to_string(options.timeLimitMs / 1000) +
             " s and was stopped";
    case kShellAbandoned:
      return "The layout was cancelled";
    default:
      return failure.empty() ? "Graphviz's output could not be read" : failure;
  }
}

void Finish(MapReport& report, Stopwatch& watch, std::string stage) {
  report.stages.push_back({std::move(stage), watch.Lap()});
}

// The field holding the tweets' own IDs; nullopt when the corpus has none.
std::optional<FieldIndex> TweetIdField(const DocumentSet* corpus) {
  if (corpus == nullptr) return std::nullopt;
  for (int f = 0; f < corpus->FieldCount(); ++f) {
    const auto field = static_cast<FieldIndex>(f);
    if (corpus->FieldName(field) == kTweetIdFieldName) return field;
  }
  return std::nullopt;
}

// A tweet map's node label, by which an export leads back to the tweet: its corpus row
// (from 0, as the map's summary names the rows) and, where the corpus has one, its tweet ID.
std::string TweetLabel(const DocumentSet* corpus, std::optional<FieldIndex> idField, DocIndex row) {
  std::string label = "row " + std::to_string(row);
  if (corpus == nullptr || !idField) return label;
  const std::string_view id = corpus->Cell(row, *idField);
  if (!id.empty()) label.append(" id ").append(id);
  return label;
}

bool Cancelled(MapReport& report, const CancelWatch& watch) {
  if (!watch.Cancelled()) return false;
  report.cancelled = true;
  report.error = "Cancelled";
  return true;
}

// Memory of a map through the dense route: the array, the network, the candidate edges (at
// most half the cells, 12 bytes each) and the tree matrix.
std::int64_t DenseMapBytes(std::int64_t n) { return n * n * (4 + 4 + 6 + 4); }

// Memory of a map through the sparse spanning tree: per node, the forest's heap and links,
// the union-find and the DOT text.
std::int64_t SparseMapBytes(const SparseMatrixSingle& similarities) {
  return std::int64_t{similarities.ColCount()} * 100;
}

// Whether a map of n nodes goes through the dense n x n matrix: small enough to keep the
// tree the dense route has always drawn, and within the memory budget.
bool UseDenseRoute(std::int32_t n, const MapOptions& options) {
  return n <= options.denseNodeLimit && DenseMapBytes(n) <= options.memoryBudgetBytes;
}

// The bounded second-order similarity of a large interval's tweets (columns of `tweets`), as
// a symmetric n x n matrix. Identical tweets (retweets,
// repeated messages) are computed once: each keeps its first copy's neighbours, and the copies
// join it at similarity 1. Without that, a group of more copies than the neighbour count
// would keep only its own members and fall apart from the rest of the map. Each distinct
// tweet counts in the second order as often as it occurs, as in the full similarity.
SparseMatrixSingle NearestSecondOrder(SparseMatrixSingle tweets, std::int32_t neighbours,
                                      const ProgressCallback& progress) {
  const std::int32_t n = tweets.ColCount();
  // Distinct columns: `firstOf[c]` is the first column equal to c (0-based), `distinct` the
  // first columns in order, `copies` how often each occurs.
  std::vector<std::int32_t> firstOf(static_cast<std::size_t>(n));
  std::vector<std::int32_t> distinct;
  std::vector<float> copies;
  std::unordered_map<std::uint64_t, std::vector<std::int32_t>> byHash;
  const auto same = [&](std::int32_t a, std::int32_t b) {
    const SparseVectorSingle& x = *tweets.Vector(a + 1);
    const SparseVectorSingle& y = *tweets.Vector(b + 1);
    return std::ranges::equal(x.ElementIndexes(), y.ElementIndexes()) &&
           std::ranges::equal(x.ElementValues(), y.ElementValues());
  };
  for (std::int32_t c = 0; c < n; ++c) {
    const SparseVectorSingle& column = *tweets.Vector(c + 1);
    std::uint64_t hash = 1469598103934665603ULL;
    for (const std::int32_t r : column.ElementIndexes())
      hash = (hash ^ std::uint32_t(r)) * 1099511628211ULL;
    for (const float v : column.ElementValues())
      hash = (hash ^ std::bit_cast<std::uint32_t>(v)) * 1099511628211ULL;
    std::vector<std::int32_t>& bucket = byHash[hash];
    const auto found = std::ranges::find_if(
        bucket, [&](std::int32_t d) { return same(distinct[static_cast<std::size_t>(d)], c); });
    if (found != bucket.end()) {
      firstOf[static_cast<std::size_t>(c)] = distinct[static_cast<std::size_t>(*found)];
      copies[static_cast<std::size_t>(*found)] += 1.0f;
      continue;
    }
    bucket.push_back(static_cast<std::int32_t>(distinct.size()));
    firstOf[static_cast<std::size_t>(c)] = c;
    distinct.push_back(c);
    copies.push_back(1.0f);
  }
  byHash.clear();

  const auto u = static_cast<std::int32_t>(distinct.size());
  SparseMatrixSingle unique;
  unique.Reset(tweets.RowCount(), u);
  for (std::int32_t d = 0; d < u; ++d) {
    const SparseVectorSingle& column = *tweets.Vector(distinct[static_cast<std::size_t>(d)] + 1);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size(); ++k) unique.SetValue(rows[k], d + 1, values[k]);
  }
  tweets = SparseMatrixSingle();

  SparseMatrixSingle firstOrder = unique.NearestSimilarityMatrix(neighbours, progress);
  unique = SparseMatrixSingle();
  // Row d stands for all its copies: weighting it by the square root of their count makes
  // each copy add its own product to the second-order sums.
  for (std::int32_t d = 1; d <= u; ++d) {
    SparseVectorSingle& column = *firstOrder.Vector(d);
    const auto rows = column.ElementIndexes();
    for (std::int32_t k = 1; k <= column.NZElementCount(); ++k) {
      const float weight =
          std::sqrt(copies[static_cast<std::size_t>(rows[static_cast<std::size_t>(k - 1)] - 1)]);
      column.SetValueByListIndex(k, column.ValueByListIndex(k) * weight);
    }
  }
  const SparseMatrixSingle secondOrder = firstOrder.NearestSimilarityMatrix(neighbours, progress);
  firstOrder = SparseMatrixSingle();

  SparseMatrixSingle similarities;
  similarities.Reset(n, n);
  for (std::int32_t b = 1; b <= u; ++b) {
    const SparseVectorSingle& column = *secondOrder.Vector(b);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    const std::int32_t to = distinct[static_cast<std::size_t>(b - 1)];
    for (std::size_t k = 0; k < rows.size() && rows[k] < b; ++k) {
      const std::int32_t from = distinct[static_cast<std::size_t>(rows[k] - 1)];
      similarities.SetValue(from + 1, to + 1, values[k]);
      similarities.SetValue(to + 1, from + 1, values[k]);
    }
  }
  for (std::int32_t c = 0; c < n; ++c) {
    const std::int32_t first = firstOf[static_cast<std::size_t>(c)];
    if (first == c) continue;
    similarities.SetValue(first + 1, c + 1, 1.0f);
    similarities.SetValue(c + 1, first + 1, 1.0f);
  }
  return similarities;
}

// The last step of every map: Graphviz lays out map.dot.
bool LayOutDot(std::int32_t n, const MapOptions& options, ClusterMap& map, MapReport& report,
               Notifier& notifier, const CancelWatch& cancel, Stopwatch& watch) {
  Spatial spatial(notifier);
  if (!options.layoutFolder.empty()) spatial.SetLayoutFolder(options.layoutFolder);
  spatial.SetTimeLimit(options.timeLimitMs);
  const bool laidOut = spatial.GraphVisLayout_CLI(options.graphvizFolder, options.algorithm,
                                                  map.dot, n, 1, cancel.Callback());
  report.shellCode = spatial.LastShellCode();
  Finish(report, watch, "layout");
  if (!laidOut) {
    report.cancelled = cancel.Cancelled();
    report.error = LayoutFailure(report.shellCode, options, spatial.LastFailure());
    return false;
  }
  report.nodeCount = spatial.NodeCount();
  report.edgeCount = spatial.EdgeCount();
  map.layout = std::move(spatial);
  return true;
}

}  // namespace

std::vector<float> ColumnSimilarityArray(const SparseMatrixSingle& matrix,
                                         const ProgressCallback& progress) {
  const CancelWatch cancel(progress);
  // The similarity matrix holds the upper triangle; mirroring it while filling the array
  // saves making the sparse matrix symmetric first.
  const SparseMatrixSingle upper = matrix.GetSimilarityMatrix(2, cancel.Callback());
  if (cancel.Cancelled()) return {};
  const std::int32_t n = upper.ColCount();
  const auto width = static_cast<std::size_t>(n);
  std::vector<float> dense(width * width, 0.0f);
  for (std::int32_t c = 1; c <= n; ++c) {
    const SparseVectorSingle* column = upper.Vector(c);
    const auto rows = column->ElementIndexes();
    const auto values = column->ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= c; ++k) {
      if (rows[k] < 1) continue;
      const auto r = static_cast<std::size_t>(rows[k] - 1);
      const auto cc = static_cast<std::size_t>(c - 1);
      dense[r * width + cc] = values[k];
      dense[cc * width + r] = values[k];
    }
  }
  return dense;
}

bool LayOutSimilarities(std::vector<float> similarities, std::int32_t n, std::int32_t type,
                        const MapOptions& options, ClusterMap& map, MapReport& report,
                        Notifier& notifier, const ProgressCallback& progress) {
  const CancelWatch cancel(progress);
  Stopwatch watch;
  // A cosine of items that always occur together comes out a rounding step above 1 in single
  // precision; the tree only links values from 0 to 1, so such a pair would never be joined.
  for (float& value : similarities) value = std::min(value, 1.0f);
  ProximityMatrix proximity;
  if (n < 2 || !proximity.AssignMatrix(std::move(similarities), n, type)) {
    report.error = "A map needs at least two nodes (this one has " + std::to_string(n) + ")";
    return false;
  }
  proximity.Sim2Dis();
  NetworkResult tree = proximity.Transform2MST(-1, cancel.Callback());
  proximity = ProximityMatrix();
  if (Cancelled(report, cancel)) return false;
  if (!tree) {
    report.error = "No spanning tree: " + tree.Message();
    return false;
  }
  report.warning = tree.Message();
  Finish(report, watch, "network");

  map.dot = tree->Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f, cancel.Callback());
  tree = NetworkResult::Failure({});
  if (Cancelled(report, cancel)) return false;
  Finish(report, watch, "dot");
  return LayOutDot(n, options, map, report, notifier, cancel, watch);
}

bool LayOutSparseSimilarities(const SparseMatrixSingle& similarities, const MapOptions& options,
                              ClusterMap& map, MapReport& report, Notifier& notifier,
                              const ProgressCallback& progress) {
  const CancelWatch cancel(progress);
  Stopwatch watch;
  const std::int32_t n = similarities.ColCount();
  if (n < 2) {
    report.error = "A map needs at least two nodes (this one has " + std::to_string(n) + ")";
    return false;
  }
  SparseTree tree = SparseSpanningTree(similarities, cancel.Callback());
  if (Cancelled(report, cancel)) return false;
  if (!tree.built) {
    report.error = "No spanning tree: " + tree.message;
    return false;
  }
  report.warning = tree.message;
  Finish(report, watch, "network");

  map.dot = DotFromEdges(std::move(tree.links), 1.0f, 1, cancel.Callback());
  if (Cancelled(report, cancel)) return false;
  Finish(report, watch, "dot");
  return LayOutDot(n, options, map, report, notifier, cancel, watch);
}

MapReport BuildWordMap(const TermDocumentMatrix& wordIndex, const TextStream* wordStream,
                       WordMapLevel level, const MapOptions& options, ClusterMap& map,
                       Notifier& notifier, const ProgressCallback& progress) {
  MapReport report;
  Stopwatch watch;
  const CancelWatch cancel(progress);
  // Columns become the terms.
  SparseMatrixSingle source;
  if (level == WordMapLevel::kTweet) {
    source.SetMatrix(wordIndex.Matrix());
  } else {
    if (wordStream == nullptr || wordStream->IntervalCount() < 1) {
      report.error = "The interval model is not built";
      return report;
    }
    source.SetMatrix(wordStream->TIFM());
  }
  if (wordIndex.TermCount() < 1 || source.RowCount() < 1) {
    report.error = "The word index has no terms";
    return report;
  }
  source.Transpose();
  std::vector<float> similarities = ColumnSimilarityArray(source, cancel.Callback());
  const std::int32_t n = source.ColCount();
  source = SparseMatrixSingle();
  if (Cancelled(report, cancel)) return report;
  Finish(report, watch, "similarity");

  ClusterMap built;
  built.kind = MapKind::kWords;
  if (!LayOutSimilarities(std::move(similarities), n, ProximityMatrix::kTermSimilarities, options,
                          built, report, notifier, cancel.Callback())) {
    return report;
  }
  const auto count = static_cast<std::size_t>(n);
  built.labels.resize(count);
  built.weights.resize(count);
  const double documents = wordIndex.DocCount();
  for (std::int32_t i = 0; i < n; ++i) {
    const auto node = static_cast<std::size_t>(i);
    built.labels[node] = wordIndex.Term(i + 1);
    built.weights[node] =
        documents > 0 ? static_cast<float>(wordIndex.DocFreq(i + 1) / documents * 1000.0) : 0.0f;
  }
  map = std::move(built);
  report.built = true;
  return report;
}

MapReport BuildIntervalMap(const TextStream& wordStream, const MapOptions& options, ClusterMap& map,
                           Notifier& notifier, const ProgressCallback& progress) {
  MapReport report;
  Stopwatch watch;
  const std::int32_t n = wordStream.IntervalCount();
  if (n < 1 || wordStream.NM().ColCount() != n) {
    report.error = "The interval similarity model is not built";
    return report;
  }
  const bool dense = UseDenseRoute(n, options);
  const std::int64_t bytes = dense ? DenseMapBytes(n) : SparseMapBytes(wordStream.NM());
  if (bytes > options.memoryBudgetBytes) {
    report.error = "The interval map of " + std::to_string(n) + " intervals would need about " +
                   Megabytes(bytes) + ", more than the memory budget of " +
                   Megabytes(options.memoryBudgetBytes) +
                   "; rebuild the views with an interval length of at least " +
                   std::to_string(LengthThatFits(wordStream.IntervalLength(), bytes,
                                                 options.memoryBudgetBytes, 0.5));
    return report;
  }
  ClusterMap built;
  built.kind = MapKind::kIntervals;
  bool laidOut = false;
  if (dense) {
    std::vector<float> similarities = DenseArray(wordStream.NM());
    Finish(report, watch, "similarity");
    laidOut = LayOutSimilarities(std::move(similarities), n, ProximityMatrix::kDocumentSimilarities,
                                 options, built, report, notifier, progress);
  } else {
    Finish(report, watch, "similarity");
    laidOut = LayOutSparseSimilarities(wordStream.NM(), options, built, report, notifier, progress);
  }
  if (!laidOut) {
    if (!report.cancelled)
      notifier.ShowMessage(kIntervalMapFailure, kProgramTitle, MessageIcon::kNone);
    return report;
  }
  const double largest = wordStream.MaxIntervalDocCount();
  for (std::int32_t k = 1; k <= n; ++k) {
    built.labels.push_back(std::to_string(k));
    built.weights.push_back(
        largest > 0 ? static_cast<float>(wordStream.IntervalDocCount(k) / largest * 5.0) : 0.0f);
  }
  map = std::move(built);
  report.built = true;
  return report;
}

double EstimatedTweetMapSeconds(std::int32_t tweets, const MapOptions& options) {
  const double n = tweets;
  const double layout = kLayoutTweetSeconds * n;
  if (UseDenseRoute(tweets, options)) return kDenseTweetSeconds * n * n * n + layout;
  return kSparseTweetSquareSeconds * n * n + layout;
}

MapReport BuildTweetMap(const TermDocumentMatrix& wordIndex, const TextStream& wordStream,
                        std::int32_t interval, const MapOptions& options, ClusterMap& map,
                        Notifier& notifier, const ProgressCallback& progress) {
  MapReport report;
  Stopwatch watch;
  const CancelWatch cancel(progress);
  if (interval < 1 || interval > wordStream.IntervalCount()) {
    report.error = "There is no interval " + std::to_string(interval) + " (the model has " +
                   std::to_string(wordStream.IntervalCount()) + ")";
    return report;
  }
  if (wordStream.IntervalDocCount(interval) < 1) {
    report.error = "Interval " + std::to_string(interval) + " has no tweets";
    return report;
  }
  const DocIndex first = wordStream.FirstDocumentIndex(interval);
  const DocIndex last = wordStream.LastDocumentIndex(interval);
  // The interval's documents, every term row kept (corpus row d is column d + 1).
  SparseMatrixSingle tweets;
  tweets.SetMatrixSelective(wordIndex.Matrix(), first + 1, last + 1, false);
  const std::int32_t n = tweets.ColCount();
  ClusterMap built;
  built.kind = MapKind::kTweets;
  built.interval = interval;
  built.firstDocument = first;
  // Second order: tweets are alike when their similarities to all the interval's tweets are.
  if (UseDenseRoute(n, options)) {
    const SparseMatrixSingle firstOrder = SymmetricSimilarity(tweets, cancel.Callback());
    if (Cancelled(report, cancel)) return report;
    const SparseMatrixSingle secondOrder = SymmetricSimilarity(firstOrder, cancel.Callback());
    if (Cancelled(report, cancel)) return report;
    std::vector<float> similarities = DenseArray(secondOrder);
    Finish(report, watch, "similarity");
    if (!LayOutSimilarities(std::move(similarities), n, ProximityMatrix::kDocumentSimilarities,
                            options, built, report, notifier, cancel.Callback())) {
      return report;
    }
  } else {
    // A large interval: each tweet keeps its nearest tweets only, at both orders, so that the
    // products cost the tweets times their neighbours rather than the cube of the tweets.
    const SparseMatrixSingle secondOrder =
        NearestSecondOrder(std::move(tweets), options.tweetNeighbours, cancel.Callback());
    if (Cancelled(report, cancel)) return report;
    Finish(report, watch, "similarity");
    if (!LayOutSparseSimilarities(secondOrder, options, built, report, notifier,
                                  cancel.Callback())) {
      return report;
    }
  }
  const std::optional<FieldIndex> idField = TweetIdField(wordStream.Corpus());
  for (std::int32_t i = 0; i < n; ++i) {
    built.labels.push_back(TweetLabel(wordStream.Corpus(), idField, first + i));
  }
  built.weights.assign(static_cast<std::size_t>(n), 1.0f);
  map = std::move(built);
  report.built = true;
  return report;
}

}  // namespace sylvora
