// Sparse algebra benchmarks.
//
//  * Term similarity: an index-like matrix of 100,000 documents over 5,000 terms (columns =
//    documents, about 10 term occurrences per document drawn from a Zipf law, s = 1), turned
//    into terms-by-documents with Transpose, then GetSimilarityMatrix(2) between the 5,000
//    terms. The product must stay one sparse pass: well under 10 s.
//  * Vector element look-up and insertion at several sizes.
//  * Resident memory of an index-sized matrix: 1,000,000 document columns of 4 to 12 terms
//    (8 on average) over 50,000 terms, each column copied from a scratch column as the index
//    fills its matrix. The figure is what the columns add to the process, per column too.
//
// Sizes and the peak resident memory of the process go into state.counters.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "sparse/sparse_matrix_single.h"
#include "sparse/sparse_vector_single.h"
#include "support/peak_memory.h"

namespace sylvora {
namespace {

constexpr std::int32_t kTerms = 5000;
constexpr std::int32_t kDocuments = 100000;
constexpr int kTokensPerDocument = 10;

double PeakMegabytes() {
  return static_cast<double>(bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}

std::int64_t StoredCount(const SparseMatrixSingle& m) {
  std::int64_t count = 0;
  for (std::int32_t c = 1; c <= m.ColCount(); ++c) count += m.Vector(c)->NZElementCount();
  return count;
}

// Documents as columns over the terms, as an index builds them: term frequencies per document.
SparseMatrixSingle IndexLikeMatrix() {
  std::mt19937 random(2011);
  std::vector<double> weights(kTerms);
  for (std::int32_t t = 0; t < kTerms; ++t) weights[static_cast<std::size_t>(t)] = 1.0 / (t + 1);
  std::discrete_distribution<std::int32_t> zipf(weights.begin(), weights.end());

  SparseMatrixSingle m;
  m.Reset(kTerms, kDocuments);
  std::vector<std::int32_t> tokens(kTokensPerDocument);
  for (std::int32_t d = 1; d <= kDocuments; ++d) {
    for (std::int32_t& t : tokens) t = zipf(random) + 1;
    std::sort(tokens.begin(), tokens.end());
    for (std::size_t k = 0; k < tokens.size(); ++k) {
      m.SetValue(tokens[k], d, m.Value(tokens[k], d) + 1.0f);
    }
  }
  return m;
}

const SparseMatrixSingle& TermsByDocuments() {
  static const SparseMatrixSingle matrix = [] {
    SparseMatrixSingle m = IndexLikeMatrix();
    m.Transpose();
    return m;
  }();
  return matrix;
}

void BM_TermSimilarityMatrixCosine(benchmark::State& state) {
  const SparseMatrixSingle& terms = TermsByDocuments();
  std::int64_t stored = 0;
  for (auto _ : state) {
    SparseMatrixSingle similarity = terms.GetSimilarityMatrix(2);
    stored = StoredCount(similarity);
    benchmark::DoNotOptimize(similarity);
  }
  state.counters["terms"] = terms.ColCount();
  state.counters["documents"] = terms.RowCount();
  state.counters["input_nnz"] = static_cast<double>(StoredCount(terms));
  state.counters["result_nnz"] = static_cast<double>(stored);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_TermSimilarityMatrixCosine)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_TransposeIndex(benchmark::State& state) {
  const SparseMatrixSingle source = IndexLikeMatrix();
  for (auto _ : state) {
    SparseMatrixSingle m = source;
    m.Transpose();
    benchmark::DoNotOptimize(m);
  }
  state.counters["nnz"] = static_cast<double>(StoredCount(source));
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_TransposeIndex)->Unit(benchmark::kMillisecond)->Iterations(3);

// Random element numbers 1..4n, n of them (some repeat).
std::vector<std::int32_t> RandomElements(std::int64_t n) {
  std::mt19937 random(7);
  std::uniform_int_distribution<std::int32_t> element(1, static_cast<std::int32_t>(4 * n));
  std::vector<std::int32_t> out(static_cast<std::size_t>(n));
  for (std::int32_t& e : out) e = element(random);
  return out;
}

void BM_VectorInsertRandomOrder(benchmark::State& state) {
  const std::vector<std::int32_t> elements = RandomElements(state.range(0));
  for (auto _ : state) {
    SparseVectorSingle v;
    for (const std::int32_t e : elements) v.SetValue(e, 1.0f);
    benchmark::DoNotOptimize(v);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_VectorInsertRandomOrder)->Arg(100)->Arg(1000)->Arg(10000);

void BM_VectorAppendAscending(benchmark::State& state) {
  for (auto _ : state) {
    SparseVectorSingle v;
    for (std::int32_t e = 1; e <= state.range(0); ++e) v.SetValue(2 * e, 1.0f);
    benchmark::DoNotOptimize(v);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_VectorAppendAscending)->Arg(1000)->Arg(100000);

void BM_VectorLookup(benchmark::State& state) {
  const std::vector<std::int32_t> elements = RandomElements(state.range(0));
  std::vector<float> dense(static_cast<std::size_t>(4 * state.range(0)) + 1, 0.0f);
  for (const std::int32_t e : elements) dense[static_cast<std::size_t>(e)] = 1.0f;
  SparseVectorSingle v;
  v.SetVector(dense, static_cast<std::int32_t>(dense.size()) - 1);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(v.Value(elements[next] + 1));
    if (++next == elements.size()) next = 0;
  }
  state.counters["nnz"] = v.NZElementCount();
}
BENCHMARK(BM_VectorLookup)->Arg(100)->Arg(10000)->Arg(1000000);

void BM_MillionColumnMatrixResident(benchmark::State& state) {
  constexpr std::int32_t kRows = 50000;
  constexpr std::int32_t kColumns = 1000000;
  std::mt19937 random(1000);
  std::uniform_int_distribution<std::int32_t> length(4, 12);
  std::uniform_int_distribution<std::int32_t> term(1, kRows);
  double residentMegabytes = 0.0;
  std::int64_t stored = 0;
  for (auto _ : state) {
    const std::int64_t before = bench::StatusBytes("VmRSS");
    SparseMatrixSingle m;
    m.Reset(kRows, kColumns);
    SparseVectorSingle column;
    std::vector<std::int32_t> terms;
    for (std::int32_t d = 1; d <= kColumns; ++d) {
      terms.resize(static_cast<std::size_t>(length(random)));
      for (std::int32_t& t : terms) t = term(random);
      std::sort(terms.begin(), terms.end());
      while (column.NZElementCount() > 0) column.DeleteElement(column.ElementIndexes().back());
      for (const std::int32_t t : terms) column.SetValue(t, column.Value(t) + 1.0f);
      *m.Vector(d) = column;
    }
    column = SparseVectorSingle();
    terms = {};
    const std::int64_t after = bench::StatusBytes("VmRSS");
    residentMegabytes = static_cast<double>(after - before) / (1024.0 * 1024.0);
    stored = StoredCount(m);
    benchmark::DoNotOptimize(m);
  }
  state.counters["columns"] = kColumns;
  state.counters["nnz"] = static_cast<double>(stored);
  state.counters["resident_MB"] = residentMegabytes;
  state.counters["bytes_per_column"] = residentMegabytes * 1024.0 * 1024.0 / kColumns;
}
BENCHMARK(BM_MillionColumnMatrixResident)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace sylvora

BENCHMARK_MAIN();
