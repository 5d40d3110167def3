// Proximity network benchmarks.
//
//  * Transform2FastPF (r = 0, 1, 2) and Transform2Geodesic on 1,000 nodes: n^3 / 2 steps each,
//    target under 2 s.
//  * Transform2MST(-1) on 2,000 and 5,000 nodes, on two kinds of similarity matrix turned
//    into distances: "cooccurrence" (as word maps give: 95 % of the pairs share no document,
//    similarity 0, so most candidate edges tie at distance 1; the rest quantised to 0.001)
//    and "uniform" (every pair uniform in [0, 1], quantised to 0.001). The listing and Shell
//    sort of the n(n-1)/2 candidate edges dominate.
//  * The map path Sim2Dis -> Transform2MST(-1) -> Matrix2Dot(1, 1, "", 0, 1) at the same sizes.
//
// Peak resident memory is that of the whole process so far: run one benchmark per process
// (--benchmark_filter) to read one figure.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "networks/proximity_matrix.h"
#include "support/peak_memory.h"

namespace sylvora {
namespace {

double PeakMegabytes() {
  return static_cast<double>(bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}

enum class Kind { kCooccurrence, kUniform };

// A symmetric similarity matrix, diagonal -1.
std::vector<float> Similarities(std::int32_t n, Kind kind, std::uint32_t seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> uniform(0.0f, 1.0f);
  std::vector<float> values(static_cast<std::size_t>(n) * static_cast<std::size_t>(n),
                            ProximityMatrix::kNoLink);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      float v = std::round(uniform(random) * 1000.0f) / 1000.0f;
      if (kind == Kind::kCooccurrence) v = uniform(random) < 0.95f ? 0.0f : v * 0.5f;
      values[static_cast<std::size_t>(i) * n + j] = v;
      values[static_cast<std::size_t>(j) * n + i] = v;
    }
  }
  return values;
}

ProximityMatrix Distances(std::int32_t n, Kind kind) {
  ProximityMatrix m;
  m.AssignMatrix(Similarities(n, kind, 2013), n, ProximityMatrix::kTermSimilarities);
  m.Sim2Dis();
  return m;
}

void BM_Transform2FastPF(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const auto r = static_cast<std::uint8_t>(state.range(1));
  const ProximityMatrix source = Distances(n, Kind::kUniform);
  std::int64_t links = 0;
  for (auto _ : state) {
    ProximityMatrix m = source;
    NetworkResult pf = m.Transform2FastPF(r);
    links = static_cast<std::int64_t>(pf->GetEdgeList(0.0f, 1.0f).size());
    benchmark::DoNotOptimize(pf);
  }
  state.counters["nodes"] = n;
  state.counters["r"] = r;
  state.counters["links_kept"] = static_cast<double>(links);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_Transform2FastPF)
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Args({1000, 2})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void BM_Transform2Geodesic(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const ProximityMatrix source = Distances(n, Kind::kUniform);
  for (auto _ : state) {
    NetworkResult g = source.Transform2Geodesic();
    benchmark::DoNotOptimize(g);
  }
  state.counters["nodes"] = n;
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_Transform2Geodesic)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_Transform2MST(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const auto kind = static_cast<Kind>(state.range(1));
  const ProximityMatrix source = Distances(n, kind);
  for (auto _ : state) {
    NetworkResult tree = source.Transform2MST(-1);
    benchmark::DoNotOptimize(tree);
  }
  state.SetLabel(kind == Kind::kCooccurrence ? "cooccurrence" : "uniform");
  state.counters["nodes"] = n;
  state.counters["candidate_edges"] = static_cast<double>(n) * (n - 1) / 2;
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_Transform2MST)
    ->Args({2000, static_cast<int>(Kind::kCooccurrence)})
    ->Args({2000, static_cast<int>(Kind::kUniform)})
    ->Args({5000, static_cast<int>(Kind::kCooccurrence)})
    ->Args({5000, static_cast<int>(Kind::kUniform)})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void BM_MapPath(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  std::vector<float> similarities = Similarities(n, Kind::kCooccurrence, 2013);
  std::size_t dotBytes = 0;
  for (auto _ : state) {
    ProximityMatrix m;
    m.AssignMatrix(similarities, n, ProximityMatrix::kTermSimilarities);
    m.Sim2Dis();
    NetworkResult tree = m.Transform2MST(-1);
    const std::string dot = tree->Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f);
    dotBytes = dot.size();
    benchmark::DoNotOptimize(dot);
  }
  state.counters["nodes"] = n;
  state.counters["dot_bytes"] = static_cast<double>(dotBytes);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_MapPath)->Arg(2000)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace sylvora

BENCHMARK_MAIN();
