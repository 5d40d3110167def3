// View drawing benchmarks, offscreen into QImages of 1200 x 900 pixels.
//
//  * Map redraw: a 5,000-node map laid out as a random tree (4,999 links) over clustered
//    positions, circles, links and labels, RenderView(true, false): the full picture. The aim
//    is well under 16 ms (one frame). Node weights follow Zipf's law as documents per thousand
//    (300 for the heaviest term). Variants: every label drawn, labels for the hundred heaviest
//    terms, and zoomed in to a quarter of the width.
//  * Map hover: the pointer moves between two nodes, so each step finds the node under the
//    pointer, changes HoverNode and paints the overlay over the picture as the surface's paint
//    event does.
//  * Lens redraw: a 5,000 x 500 term-by-interval table (about 12 % of cells filled) in each
//    cell style, as many rows as fit and all 500 columns (Text: 20 columns, since the Text
//    style needs room for its decimals).
//
// Sizes and the peak resident memory go into state.counters.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "layout/spatial.h"
#include "sparse/sparse_matrix_single.h"
#include "support/peak_memory.h"
#include "views/picture_device.h"
#include "views/point_map_2d.h"
#include "views/table_lens.h"

namespace sylvora {
namespace {

constexpr std::int32_t kMapNodes = 5000;
constexpr std::int32_t kLensRows = 5000;
constexpr std::int32_t kLensColumns = 500;
const QSize kPictureSize(1200, 900);

double PeakMegabytes() {
  return static_cast<double>(bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}

// A Spatial of kMapNodes nodes in 40 Gaussian clusters, linked as a random tree, read back
// through the plain-output and DOT readers.
std::unique_ptr<Spatial> MapSpatial() {
  std::mt19937 random(2013);
  std::uniform_real_distribution<float> centre(0.0f, 100.0f);
  std::normal_distribution<float> spread(0.0f, 3.0f);
  std::vector<std::pair<float, float>> centres(40);
  for (auto& c : centres) c = {centre(random), centre(random)};
  std::string plain = "graph 1 100 100\n";
  std::string dot = "graph G {\nnode [];\nedge [];\n";
  for (std::int32_t i = 0; i < kMapNodes; ++i) {
    const auto& c = centres[static_cast<std::size_t>(i) % centres.size()];
    plain += "node " + std::to_string(i + 1) + ' ' + std::to_string(c.first + spread(random)) +
             ' ' + std::to_string(c.second + spread(random)) + " 0.1 0.1 x solid circle\n";
    // A spanning tree links near neighbours: each node to an earlier one of its cluster,
    // and each cluster's first node to the first node of the previous cluster.
    if (i > 0) {
      std::uniform_int_distribution<std::int32_t> earlier(1, std::max(1, i / 40));
      const std::int32_t parent = i >= 40 ? i - 40 * earlier(random) : i - 1;
      dot += std::to_string(parent + 1) + " -- " + std::to_string(i + 1) + " [len=1];\n";
    }
  }
  plain += "stop\n";
  dot += "}";
  const std::string path = "/tmp/sylvora_views_bench_gvout.txt";
  {
    FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(plain.data(), 1, plain.size(), file);
    std::fclose(file);
  }
  auto spatial = std::make_unique<Spatial>();
  std::string error;
  spatial->LoadGVPlain(path, 1, kMapNodes, error);
  spatial->SetGraphFromDot(dot, 1);
  std::remove(path.c_str());
  return spatial;
}

// A word map as the cluster explorer sets it up: circles, links, labels, weights per thousand.
std::unique_ptr<PointMap2D> WordMap() {
  static const std::unique_ptr<Spatial> spatial = MapSpatial();
  auto map = std::make_unique<PointMap2D>();
  map->SetPictureSize(kPictureSize);
  map->SetCoordinates(*spatial);
  // Documents per thousand that hold each term fall off as Zipf's law: 300 for the first
  // term, 3 for the hundredth.
  std::mt19937 random(7);
  std::vector<std::int32_t> rank(kMapNodes);
  for (std::int32_t i = 0; i < kMapNodes; ++i) rank[static_cast<std::size_t>(i)] = i + 1;
  std::shuffle(rank.begin(), rank.end(), random);
  std::vector<float> weights(kMapNodes);
  for (std::int32_t i = 0; i < kMapNodes; ++i) {
    map->SetNodeLabel(i, QStringLiteral("term%1").arg(i));
    map->SetNodeCluster(i, static_cast<std::int16_t>(i % 16));
    weights[static_cast<std::size_t>(i)] =
        300.0f / static_cast<float>(rank[static_cast<std::size_t>(i)]);
  }
  map->SetNodeShape(2);
  map->SetShowEdges(true);
  map->SetShowNodeLabels(true);
  map->SetLabelColor(QColor(0, 0, 0));
  map->SetNodeWeights(weights);
  return map;
}

void BM_MapRedraw(benchmark::State& state) {
  const auto map = WordMap();
  map->SetNodeLabelThreshold(static_cast<std::int16_t>(state.range(0)));
  if (state.range(1) != 100) map->ZoomTo(0, static_cast<float>(state.range(1)));
  map->SetShowEdges(state.range(2) != 0);
  map->SetNodeShape(static_cast<std::uint8_t>(state.range(3)));
  std::int64_t labels = 0;
  for (std::int32_t i = 0; i < kMapNodes; ++i) labels += map->Weight(i) >= state.range(0);
  for (auto _ : state) {
    map->RenderView(true, false);
    benchmark::DoNotOptimize(map->Picture().constBits());
  }
  state.counters["nodes"] = kMapNodes;
  state.counters["links"] = kMapNodes - 1;
  state.counters["labels"] = static_cast<double>(labels);
  state.counters["peak_MB"] = PeakMegabytes();
}
// Arguments: label threshold (0: every label; 3: the hundred heaviest terms), zoom (100: the
// whole map; 400: a quarter of its width), links drawn, node shape (2 circle outlines as the
// word map; 1 solid squares; 5 no nodes).
BENCHMARK(BM_MapRedraw)
    ->ArgNames({"threshold", "zoom", "links", "shape"})
    ->Args({0, 100, 1, 2})
    ->Args({3, 100, 1, 2})
    ->Args({3, 400, 1, 2})
    ->Args({3, 100, 0, 2})
    ->Args({3, 100, 1, 1})
    ->Args({3, 100, 1, 5})
    ->Unit(benchmark::kMillisecond);

void BM_MapHover(benchmark::State& state) {
  const auto map = WordMap();
  map->SetNodeLabelThreshold(3);
  map->RenderView(true, false);
  QImage screen = NewPicture(kPictureSize);
  const QPointF first = map->ToPixels(map->NodeX(10), map->NodeY(10));
  const QPointF second = map->ToPixels(map->NodeX(20), map->NodeY(20));
  bool flip = false;
  std::int64_t changes = 0;
  for (auto _ : state) {
    const std::int32_t before = map->HoverNode();
    map->MouseMove(Qt::NoButton, flip ? first : second);
    flip = !flip;
    changes += map->HoverNode() != before;
    QPainter painter(&screen);
    map->Paint(painter);
  }
  state.counters["nodes"] = kMapNodes;
  state.counters["hover_changes"] = static_cast<double>(changes);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_MapHover)->Unit(benchmark::kMicrosecond);

const SparseMatrixSingle& LensTable() {
  static const SparseMatrixSingle table = [] {
    std::mt19937 random(11);
    std::bernoulli_distribution present(0.12);
    std::uniform_real_distribution<float> value(1.0f, 30.0f);
    SparseMatrixSingle m;
    m.Reset(kLensRows, kLensColumns);
    for (std::int32_t c = 1; c <= kLensColumns; ++c) {
      for (std::int32_t r = 1; r <= kLensRows; ++r) {
        if (present(random)) m.SetValue(r, c, value(random));
      }
    }
    return m;
  }();
  return table;
}

void BM_LensRedraw(benchmark::State& state) {
  const SparseMatrixSingle& table = LensTable();
  TableLens lens;
  lens.SetPictureSize(kPictureSize);
  lens.SetNumDataTable(table);
  const auto style = static_cast<std::uint8_t>(state.range(0));
  lens.SetVisibleRows(lens.MaxVisibleRows());
  lens.SetVisibleColumns(style == TableLens::kText ? 20 : kLensColumns);
  lens.SetCellStyle(style);
  lens.VerticalScroll(2000);
  if (lens.CellStyle() != style) state.SkipWithError("the lens switched style");
  bool normed = true;
  for (auto _ : state) {
    normed = !normed;
    lens.SetNormedCellValues(normed);  // redraws the grid
    benchmark::DoNotOptimize(lens.Picture().constBits());
  }
  state.counters["rows"] = kLensRows;
  state.counters["columns"] = kLensColumns;
  state.counters["cells_drawn"] = static_cast<double>(lens.VisibleRows()) * lens.VisibleColumns();
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_LensRedraw)->ArgName("style")->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace sylvora

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
