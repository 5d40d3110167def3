#include "sparse/sparse_matrix_single.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <fstream>
#include <utility>

#include "sparse/number_format.h"

namespace sylvora {

namespace {

// Inverted lists of columns first..last: for every row r in 1..RowCount, those columns holding
// it (ascending) with their values. start[r] .. start[r + 1] - 1 are row r's entries.
struct RowLists {
  std::vector<std::size_t> start;
  std::vector<std::int32_t> columns;
  std::vector<float> values;
};

RowLists InvertedRows(const SparseMatrixSingle& matrix, std::int32_t first, std::int32_t last) {
  const std::int32_t rowCount = matrix.RowCount();
  RowLists lists;
  lists.start.assign(static_cast<std::size_t>(rowCount) + 2, 0);
  for (std::int32_t c = first; c <= last; ++c) {
    for (const std::int32_t r : matrix.Vector(c)->ElementIndexes()) {
      if (r > rowCount) break;
      ++lists.start[static_cast<std::size_t>(r) + 1];
    }
  }
  for (std::size_t r = 1; r < lists.start.size(); ++r) lists.start[r] += lists.start[r - 1];
  lists.columns.resize(lists.start.back());
  lists.values.resize(lists.start.back());
  std::vector<std::size_t> next(lists.start.begin(), lists.start.end() - 1);
  for (std::int32_t c = first; c <= last; ++c) {
    const SparseVectorSingle& column = *matrix.Vector(c);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount; ++k) {
      const std::size_t at = next[static_cast<std::size_t>(rows[k])]++;
      lists.columns[at] = c;
      lists.values[at] = values[k];
    }
  }
  return lists;
}

// What a cell write keeps: 0 and negative values empty the cell (NaN is kept, as it is not
// "0 or below").
bool Storable(float value) { return !(value <= 0.0f); }

// The cosine from an inner product, as the vector similarity computes it.
float CosineFromDot(float dot, float magnitude, float vec2Magnitude) {
  if (vec2Magnitude <= 0.0f) return -1.0f;
  if (dot > 0.0f) return dot / (magnitude * vec2Magnitude);
  return dot;
}

// Float sum of a[r] * b[r] over the rows both hold, up to `lastRow`, in ascending row order.
float SharedRowDot(const SparseVectorSingle& a, const SparseVectorSingle& b, std::int32_t lastRow) {
  const auto rowsA = a.ElementIndexes();
  const auto valuesA = a.ElementValues();
  const auto rowsB = b.ElementIndexes();
  const auto valuesB = b.ElementValues();
  float dot = 0.0f;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < rowsA.size() && j < rowsB.size()) {
    if (rowsA[i] < rowsB[j]) {
      ++i;
    } else if (rowsB[j] < rowsA[i]) {
      ++j;
    } else {
      if (rowsA[i] > lastRow) break;
      dot += valuesB[j] * valuesA[i];
      ++i;
      ++j;
    }
  }
  return dot;
}

}  // namespace

void SparseMatrixSingle::SetRowCount(std::int32_t rows) {
  rowCount_ = std::max<std::int32_t>(rows, 0);
  for (SparseVectorSingle& column : columns_) column.SetDimensionCount(rowCount_);
}

float SparseMatrixSingle::Value(std::int32_t row, std::int32_t col) const {
  return ValidColumn(col) ? Column(col).Value(row) : 0.0f;
}

void SparseMatrixSingle::SetValue(std::int32_t row, std::int32_t col, float value) {
  if (ValidColumn(col)) Column(col).SetValue(row, value);
}

bool SparseMatrixSingle::IsEmpty(std::int32_t row, std::int32_t col) const {
  return ValidColumn(col) ? Column(col).IsEmpty(row) : true;
}

float SparseMatrixSingle::Magnitude(std::int32_t col) const {
  return ValidColumn(col) ? Column(col).Magnitude() : 0.0f;
}

SparseVectorSingle* SparseMatrixSingle::Vector(std::int32_t col) {
  return ValidColumn(col) ? &Column(col) : nullptr;
}

const SparseVectorSingle* SparseMatrixSingle::Vector(std::int32_t col) const {
  return ValidColumn(col) ? &Column(col) : nullptr;
}

float SparseMatrixSingle::GetSimilarity(std::int32_t col1, std::int32_t col2,
                                        std::int32_t metric) const {
  if (!ValidColumn(col1) || !ValidColumn(col2)) return 0.0f;
  const SparseVectorSingle& first = Column(col1);
  if (col1 == col2) {
    if (metric == 1) {
      const float magnitude = first.Magnitude();
      return magnitude * magnitude;
    }
    return metric == 2 ? 1.0f : 0.0f;
  }
  const SparseVectorSingle& second = Column(col2);
  const float dot = SharedRowDot(first, second, rowCount_);
  if (metric != 2) return dot;
  return CosineFromDot(dot, first.Magnitude(), second.Magnitude());
}

SparseVectorSingle SparseMatrixSingle::GetSimilarityVector(std::int32_t col1,
                                                           const SparseMatrixSingle& matrix2,
                                                           std::int32_t /*metric*/) const {
  SparseVectorSingle result;
  if (!ValidColumn(col1)) return result;
  const SparseVectorSingle& column = Column(col1);
  const float magnitude = column.Magnitude();
  if (magnitude <= 0.0f) return result;  // every cosine is -1: nothing is stored

  std::vector<float> dense(static_cast<std::size_t>(rowCount_) + 1, 0.0f);
  const auto rows = column.ElementIndexes();
  const auto values = column.ElementValues();
  for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
    dense[static_cast<std::size_t>(rows[k])] = values[k];
  }
  const std::int32_t shared = std::min(ColCount(), matrix2.ColCount());
  for (std::int32_t i = 1; i <= shared; ++i) {
    const float similarity = matrix2.Column(i).GetSimilarity(dense, 2, magnitude);
    if (Storable(similarity)) result.Append(i, similarity);
  }
  return result;
}

std::string SparseMatrixSingle::Matrix2Clip(std::string_view formatString) const {
  const std::string zero = FormatNumber(0.0f, formatString);
  std::string text;
  std::vector<std::size_t> next(columns_.size(), 0);
  for (std::int32_t r = 1; r <= rowCount_; ++r) {
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const auto rows = columns_[c].ElementIndexes();
      if (next[c] < rows.size() && rows[next[c]] == r) {
        text += FormatNumber(columns_[c].ElementValues()[next[c]], formatString);
        ++next[c];
      } else {
        text += zero;
      }
      text.push_back('\t');
    }
    text += "\r\n";
  }
  return text;
}

SparseMatrixSingle SparseMatrixSingle::GetSimilarityMatrix(std::int32_t metric,
                                                           const ProgressCallback& progress) const {
  const std::int32_t n = ColCount();
  SparseMatrixSingle result;
  result.Reset(n, n);
  if (metric != 1 && metric != 2) return result;

  const RowLists inverted = InvertedRows(*this, 1, n);
  const std::vector<std::size_t>& rowStart = inverted.start;
  const std::vector<std::int32_t>& rowColumns = inverted.columns;
  const std::vector<float>& rowValues = inverted.values;
  // next[r] walks row r: it points at the entry of the column being processed.
  std::vector<std::size_t> next(rowStart.begin(), rowStart.end() - 1);

  std::vector<float> magnitudes;
  if (metric == 2) {
    magnitudes.resize(static_cast<std::size_t>(n) + 1);
    for (std::int32_t c = 1; c <= n; ++c)
      magnitudes[static_cast<std::size_t>(c)] = Column(c).Magnitude();
  }

  // Row i of the result: accumulate column i against every later column (and itself for the
  // inner product) over the rows they share. Each sum receives its terms in ascending row
  // order, so it equals the sum over a dense copy of column i term for term.
  std::vector<float> sums(static_cast<std::size_t>(n) + 1, 0.0f);
  std::vector<char> touched(static_cast<std::size_t>(n) + 1, 0);
  std::vector<std::int32_t> partners;
  ProgressReporter reporter(progress, "Similarity matrix", n, 1);
  for (std::int32_t i = 1; i <= n; ++i) {
    const auto rows = Column(i).ElementIndexes();
    const auto values = Column(i).ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
      const auto r = static_cast<std::size_t>(rows[k]);
      const std::size_t self = next[r]++;
      assert(rowColumns[self] == i);
      const float a = values[k];
      for (std::size_t m = metric == 1 ? self : self + 1; m < rowStart[r + 1]; ++m) {
        const auto j = static_cast<std::size_t>(rowColumns[m]);
        if (!touched[j]) {
          touched[j] = 1;
          partners.push_back(static_cast<std::int32_t>(j));
        }
        sums[j] += rowValues[m] * a;
      }
    }

    for (const std::int32_t j : partners) {
      const auto at = static_cast<std::size_t>(j);
      const float dot = sums[at];
      const float similarity =
          metric == 1 ? dot
                      : CosineFromDot(dot, magnitudes[at], magnitudes[static_cast<std::size_t>(i)]);
      if (Storable(similarity)) result.Column(j).Append(i, similarity);
      sums[at] = 0.0f;
      touched[at] = 0;
    }
    partners.clear();
    if (metric == 2) result.Column(i).Append(i, 1.0f);

    if (!reporter.Step()) {
      result.Reset(n, n);
      return result;
    }
  }
  for (SparseVectorSingle& column : result.columns_) column.ShrinkToFit();
  return result;
}

double SparseMatrixSingle::PairCosineSum(std::int32_t first, std::int32_t last) const {
  assert(first >= 1 && last <= ColCount());
  if (last <= first) return 0.0;
  const auto width = static_cast<std::size_t>(last - first) + 1;
  // A block with fewer pairs than rows is cheaper pair by pair than through inverted lists.
  if (static_cast<std::int64_t>(width) * static_cast<std::int64_t>(width - 1) / 2 <= rowCount_) {
    double total = 0.0;
    for (std::int32_t c1 = first; c1 < last; ++c1) {
      for (std::int32_t c2 = c1 + 1; c2 <= last; ++c2) total += GetSimilarity(c1, c2, 2);
    }
    return total;
  }
  const auto at = [first](std::int32_t col) { return static_cast<std::size_t>(col - first); };

  const RowLists inverted = InvertedRows(*this, first, last);
  const std::vector<std::size_t>& rowStart = inverted.start;
  const std::vector<std::int32_t>& rowColumns = inverted.columns;
  const std::vector<float>& rowValues = inverted.values;
  // next[r] walks row r: it points at the entry of the column being processed.
  std::vector<std::size_t> next(rowStart.begin(), rowStart.end() - 1);
  std::vector<float> magnitudes(width);
  std::vector<std::int32_t> emptyColumns;  // cosine -1 with every column before them
  for (std::int32_t c = first; c <= last; ++c) {
    magnitudes[at(c)] = Column(c).Magnitude();
    if (magnitudes[at(c)] <= 0.0f) emptyColumns.push_back(c);
  }

  // Column c1 against every later column at once: each dot product receives its terms in
  // ascending row order, as the pairwise merge adds them. A later column that shares no row
  // has cosine 0 and leaves the sum as it is, so only partners and empty columns are added,
  // in column order.
  std::vector<float> sums(width, 0.0f);
  std::vector<std::uint64_t> touched((width + 63) / 64, 0);  // a bit per block column
  std::vector<std::int32_t> partners;
  auto empty = emptyColumns.begin();
  double total = 0.0;
  for (std::int32_t c1 = first; c1 < last; ++c1) {
    const auto rows = Column(c1).ElementIndexes();
    const auto values = Column(c1).ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
      const auto r = static_cast<std::size_t>(rows[k]);
      const std::size_t self = next[r]++;
      for (std::size_t m = self + 1; m < rowStart[r + 1]; ++m) {
        const std::int32_t c2 = rowColumns[m];
        std::uint64_t& word = touched[at(c2) / 64];
        const std::uint64_t bit = std::uint64_t{1} << (at(c2) % 64);
        if (!(word & bit)) {
          word |= bit;
          partners.push_back(c2);
        }
        sums[at(c2)] += rowValues[m] * values[k];
      }
    }
    // Partners in column order: read off the bits when they are many, else sort them.
    const std::size_t firstWord = (at(c1) + 1) / 64;
    if (partners.size() * 4 >= touched.size() - firstWord) {
      partners.clear();
      for (std::size_t w = firstWord; w < touched.size(); ++w) {
        for (std::uint64_t bits = touched[w]; bits != 0; bits &= bits - 1) {
          partners.push_back(first + static_cast<std::int32_t>(w * 64) + std::countr_zero(bits));
        }
        touched[w] = 0;
      }
    } else {
      std::sort(partners.begin(), partners.end());
      for (const std::int32_t c2 : partners) touched[at(c2) / 64] = 0;
    }
    while (empty != emptyColumns.end() && *empty <= c1) ++empty;
    auto nextEmpty = empty;
    const float magnitude = magnitudes[at(c1)];
    for (const std::int32_t c2 : partners) {
      for (; nextEmpty != emptyColumns.end() && *nextEmpty < c2; ++nextEmpty) total += -1.0f;
      const float dot = sums[at(c2)];
      sums[at(c2)] = 0.0f;
      if (nextEmpty != emptyColumns.end() && *nextEmpty == c2) continue;  // added below
      total += CosineFromDot(dot, magnitude, magnitudes[at(c2)]);
    }
    for (; nextEmpty != emptyColumns.end(); ++nextEmpty) total += -1.0f;
    partners.clear();
  }
  return total;
}

SparseMatrixSingle SparseMatrixSingle::NearestSimilarityMatrix(
    std::int32_t k, const ProgressCallback& progress) const {
  const std::int32_t n = ColCount();
  SparseMatrixSingle result;
  result.Reset(n, n);

  const RowLists inverted = InvertedRows(*this, 1, n);
  const std::vector<std::size_t>& rowStart = inverted.start;
  const std::vector<std::int32_t>& rowColumns = inverted.columns;
  const std::vector<float>& rowValues = inverted.values;
  std::vector<float> magnitudes(static_cast<std::size_t>(n) + 1, 0.0f);
  for (std::int32_t c = 1; c <= n; ++c)
    magnitudes[static_cast<std::size_t>(c)] = Column(c).Magnitude();

  struct Cell {
    std::int32_t col;
    std::int32_t row;
    float value;
  };
  std::vector<Cell> kept;
  std::vector<float> sums(static_cast<std::size_t>(n) + 1, 0.0f);
  std::vector<char> touched(static_cast<std::size_t>(n) + 1, 0);
  std::vector<std::int32_t> partners;
  std::vector<std::pair<float, std::int32_t>> candidates;
  const auto moreSimilar = [](const std::pair<float, std::int32_t>& a,
                              const std::pair<float, std::int32_t>& b) {
    return a.first != b.first ? a.first > b.first : a.second < b.second;
  };
  ProgressReporter reporter(progress, "Nearest similarities", n, 1);
  for (std::int32_t i = 1; i <= n; ++i) {
    // Every pair's terms arrive in ascending row order, as in GetSimilarityMatrix.
    const auto rows = Column(i).ElementIndexes();
    const auto values = Column(i).ElementValues();
    for (std::size_t m = 0; m < rows.size() && rows[m] <= rowCount_; ++m) {
      const auto r = static_cast<std::size_t>(rows[m]);
      const float a = values[m];
      for (std::size_t e = rowStart[r]; e < rowStart[r + 1]; ++e) {
        const auto j = static_cast<std::size_t>(rowColumns[e]);
        if (j == static_cast<std::size_t>(i)) continue;
        if (!touched[j]) {
          touched[j] = 1;
          partners.push_back(static_cast<std::int32_t>(j));
        }
        sums[j] += rowValues[e] * a;
      }
    }
    for (const std::int32_t j : partners) {
      const auto at = static_cast<std::size_t>(j);
      const float similarity =
          CosineFromDot(sums[at], magnitudes[at], magnitudes[static_cast<std::size_t>(i)]);
      if (Storable(similarity)) candidates.emplace_back(similarity, j);
      sums[at] = 0.0f;
      touched[at] = 0;
    }
    partners.clear();
    if (static_cast<std::int64_t>(candidates.size()) > k) {
      const auto end = candidates.begin() + std::max<std::int32_t>(k, 0);
      std::nth_element(candidates.begin(), end, candidates.end(), moreSimilar);
      candidates.erase(end, candidates.end());
    }
    for (const auto& [similarity, j] : candidates) {
      kept.push_back({i, j, similarity});
      kept.push_back({j, i, similarity});
    }
    candidates.clear();
    kept.push_back({i, i, 1.0f});
    if (!reporter.Step()) {
      result.Reset(n, n);
      return result;
    }
  }
  std::sort(kept.begin(), kept.end(), [](const Cell& a, const Cell& b) {
    return a.col != b.col ? a.col < b.col : a.row < b.row;
  });
  // A pair kept from both sides appears twice with the same value: keep the first.
  kept.erase(
      std::unique(kept.begin(), kept.end(),
                  [](const Cell& a, const Cell& b) { return a.col == b.col && a.row == b.row; }),
      kept.end());
  for (std::size_t e = 0; e < kept.size();) {
    std::size_t end = e;
    while (end < kept.size() && kept[end].col == kept[e].col) ++end;
    SparseVectorSingle& column = result.Column(kept[e].col);
    column.Reserve(end - e);
    for (; e < end; ++e) column.Append(kept[e].row, kept[e].value);
  }
  return result;
}

std::int64_t SparseMatrixSingle::SharedRowPairEstimate(std::int64_t limit) const {
  const auto rowCount = static_cast<std::size_t>(rowCount_);
  std::vector<std::int32_t> holders(rowCount + 1, 0);
  for (const SparseVectorSingle& column : columns_) {
    for (const std::int32_t r : column.ElementIndexes()) {
      if (r > rowCount_) break;
      if (r >= 1) ++holders[static_cast<std::size_t>(r)];
    }
  }
  std::int64_t bound = 0;
  for (const std::int32_t k : holders) bound += std::int64_t{k} * (k - 1) / 2;
  if (bound <= limit) return bound;

  // Exact: each column's later partners, marked once, through the rows' column lists.
  std::vector<std::size_t> rowStart(rowCount + 2, 0);
  for (std::size_t r = 1; r <= rowCount; ++r) rowStart[r + 1] = rowStart[r] + holders[r];
  std::vector<std::int32_t> rowColumns(rowStart.back());
  std::vector<std::size_t> next(rowStart.begin(), rowStart.end() - 1);
  const std::int32_t n = ColCount();
  for (std::int32_t c = 1; c <= n; ++c) {
    for (const std::int32_t r : Column(c).ElementIndexes()) {
      if (r > rowCount_) break;
      if (r >= 1) rowColumns[next[static_cast<std::size_t>(r)]++] = c;
    }
  }
  std::vector<std::int32_t> markedBy(static_cast<std::size_t>(n) + 1, 0);
  std::int64_t pairs = 0;
  for (std::int32_t i = 1; i <= n; ++i) {
    for (const std::int32_t r : Column(i).ElementIndexes()) {
      if (r > rowCount_) break;
      if (r < 1) continue;
      const auto row = static_cast<std::size_t>(r);
      const auto end = rowColumns.begin() + static_cast<std::ptrdiff_t>(rowStart[row + 1]);
      auto at =
          std::upper_bound(rowColumns.begin() + static_cast<std::ptrdiff_t>(rowStart[row]), end, i);
      for (; at != end; ++at) {
        auto& mark = markedBy[static_cast<std::size_t>(*at)];
        if (mark == i) continue;
        mark = i;
        ++pairs;
      }
    }
  }
  return pairs;
}

bool SparseMatrixSingle::SaveDenseMatrix(const std::string& file, bool dissim) const {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  const std::string absent = dissim ? "1" : "0";
  std::string line;
  std::vector<std::size_t> next(columns_.size(), 0);
  for (std::int32_t r = 1; r <= rowCount_; ++r) {
    line.clear();
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const auto rows = columns_[c].ElementIndexes();
      if (next[c] < rows.size() && rows[next[c]] == r) {
        const float v = columns_[c].ElementValues()[next[c]];
        line += GeneralNumber(dissim ? 1.0f - v : v);
        ++next[c];
      } else {
        line += absent;
      }
      line.push_back('\t');
    }
    line += "\r\n";
    out.write(line.data(), static_cast<std::streamsize>(line.size()));
    if (!out) return false;
  }
  out.close();
  return !out.fail();
}

std::vector<std::vector<float>> SparseMatrixSingle::GetDenseMatrix() const {
  std::vector<std::vector<float>> dense(static_cast<std::size_t>(rowCount_),
                                        std::vector<float>(columns_.size(), 0.0f));
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    const auto rows = columns_[c].ElementIndexes();
    const auto values = columns_[c].ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
      dense[static_cast<std::size_t>(rows[k]) - 1][c] = values[k];
    }
  }
  return dense;
}

void SparseMatrixSingle::MakeSymmetric(bool /*top2Bottom*/) {
  const std::int32_t n = ColCount();
  if (rowCount_ != n) return;

  // Every column c keeps its upper part (rows <= c) and its rows past n, which belong to no
  // pair; its lower part is rebuilt from row c of the upper triangle, in ascending order.
  std::vector<std::vector<std::int32_t>> tailRows(static_cast<std::size_t>(n));
  std::vector<std::vector<float>> tailValues(static_cast<std::size_t>(n));
  for (std::int32_t c = 1; c <= n; ++c) {
    SparseVectorSingle& column = Column(c);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    const auto upperEnd = std::upper_bound(rows.begin(), rows.end(), c) - rows.begin();
    const auto tailBegin = std::upper_bound(rows.begin(), rows.end(), n) - rows.begin();
    const auto at = static_cast<std::size_t>(c) - 1;
    tailRows[at].assign(rows.begin() + tailBegin, rows.end());
    tailValues[at].assign(values.begin() + tailBegin, values.end());
    column.KeepFirst(static_cast<std::size_t>(upperEnd));
  }
  // Each column's final size, reserved once: growing by doubling would hold up to twice the
  // mirrored matrix at its peak, which for an interval similarity model of thousands of
  // intervals is hundreds of megabytes.
  std::vector<std::size_t> lowerCounts(static_cast<std::size_t>(n) + 1, 0);
  for (std::int32_t j = 1; j <= n; ++j) {
    const auto rows = Column(j).ElementIndexes();
    const auto values = Column(j).ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] < j; ++k) {
      if (rows[k] >= 1 && Storable(values[k])) ++lowerCounts[static_cast<std::size_t>(rows[k])];
    }
  }
  for (std::int32_t c = 1; c <= n; ++c) {
    SparseVectorSingle& column = Column(c);
    const auto at = static_cast<std::size_t>(c);
    const std::size_t size = column.Count() + lowerCounts[at] + tailRows[at - 1].size();
    if (column.Capacity() < size || column.Capacity() > size + size / 4) column.Reallocate(size);
  }
  for (std::int32_t j = 1; j <= n; ++j) {
    // Column j holds only rows <= j here: later columns append to earlier ones only.
    const SparseVectorSingle& column = Column(j);
    for (std::size_t k = 0; k < column.Count(); ++k) {
      const std::int32_t i = column.ElementIndexes()[k];
      if (i >= j) break;
      const float v = column.ElementValues()[k];
      if (Storable(v)) Column(i).Append(j, v);
    }
  }
  for (std::int32_t c = 1; c <= n; ++c) {
    const auto at = static_cast<std::size_t>(c) - 1;
    Column(c).Append(tailRows[at], tailValues[at]);
  }
}

void SparseMatrixSingle::Reset(std::int32_t rows, std::int32_t cols) {
  rowCount_ = std::max<std::int32_t>(rows, 0);
  columns_.clear();
  columns_.resize(static_cast<std::size_t>(std::max<std::int32_t>(cols, 0)));
  for (SparseVectorSingle& column : columns_) column.SetDimensionCount(rowCount_);
}

void SparseMatrixSingle::TruncateLocal(std::int32_t count) {
  for (SparseVectorSingle& column : columns_) column.TruncateLocal(count);
}

void SparseMatrixSingle::Transpose() {
  const std::int32_t newRows = ColCount();
  const auto newCols = static_cast<std::size_t>(rowCount_);
  std::vector<std::size_t> counts(newCols + 1, 0);
  for (const SparseVectorSingle& column : columns_) {
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
      if (Storable(values[k])) ++counts[static_cast<std::size_t>(rows[k])];
    }
  }
  std::vector<SparseVectorSingle> transposed(newCols);
  for (std::size_t r = 0; r < newCols; ++r) {
    transposed[r].Reserve(counts[r + 1]);
    transposed[r].SetDimensionCount(newRows);
  }
  for (std::int32_t c = 1; c <= newRows; ++c) {
    const auto rows = Column(c).ElementIndexes();
    const auto values = Column(c).ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] <= rowCount_; ++k) {
      if (Storable(values[k]))
        transposed[static_cast<std::size_t>(rows[k]) - 1].Append(c, values[k]);
    }
  }
  columns_ = std::move(transposed);
  rowCount_ = newRows;
}

void SparseMatrixSingle::SetMatrixSelective(const SparseMatrixSingle& srcMatrix, std::int32_t first,
                                            std::int32_t last, bool square) {
  first = std::max<std::int32_t>(first, 1);
  if (last < first) last = srcMatrix.ColCount();
  last = std::min(last, srcMatrix.ColCount());
  const std::int32_t lowRow = square ? first : 1;
  const std::int32_t highRow = square ? last : srcMatrix.RowCount();
  const std::int32_t cols = std::max<std::int32_t>(last - first + 1, 0);

  std::vector<SparseVectorSingle> copied(static_cast<std::size_t>(cols));
  for (std::int32_t c = 1; c <= cols; ++c) {
    const SparseVectorSingle& source = srcMatrix.Column(first - 1 + c);
    SparseVectorSingle& target = copied[static_cast<std::size_t>(c) - 1];
    target.SetDimensionCount(srcMatrix.RowCount());
    const auto rows = source.ElementIndexes();
    const auto values = source.ElementValues();
    const auto begin =
        static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), lowRow) - rows.begin());
    std::size_t end = begin;
    std::size_t storable = 0;
    for (; end < rows.size() && rows[end] <= highRow; ++end)
      storable += Storable(values[end]) ? 1 : 0;
    target.Reserve(storable);
    for (std::size_t k = begin; k < end; ++k) {
      if (Storable(values[k])) target.Append(rows[k], values[k]);
    }
  }
  rowCount_ = srcMatrix.RowCount();
  columns_ = std::move(copied);
}

void SparseMatrixSingle::SetMatrix(const SparseMatrixSingle& srcMatrix) {
  std::vector<SparseVectorSingle> copied(srcMatrix.columns_.size());
  for (std::size_t c = 0; c < copied.size(); ++c) {
    const SparseVectorSingle& source = srcMatrix.columns_[c];
    SparseVectorSingle& target = copied[c];
    target.SetDimensionCount(srcMatrix.RowCount());
    const auto rows = source.ElementIndexes();
    const auto values = source.ElementValues();
    if (std::all_of(values.begin(), values.end(), Storable)) {
      target.Assign(rows, values);
      continue;
    }
    target.Reserve(static_cast<std::size_t>(std::count_if(values.begin(), values.end(), Storable)));
    for (std::size_t k = 0; k < rows.size(); ++k) {
      if (Storable(values[k])) target.Append(rows[k], values[k]);
    }
  }
  rowCount_ = srcMatrix.RowCount();
  columns_ = std::move(copied);
}

void SparseMatrixSingle::Normalise() {
  for (SparseVectorSingle& column : columns_) column.Normalise();
}

}  // namespace sylvora
