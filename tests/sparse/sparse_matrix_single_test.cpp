#include "sparse/sparse_matrix_single.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/temp_dir.h"

namespace sylvora {
namespace {

using Cell = std::pair<std::int32_t, std::int32_t>;  // (row, column)
using Cells = std::map<Cell, float>;

// Every stored cell of the matrix.
Cells StoredCells(const SparseMatrixSingle& m) {
  Cells cells;
  for (std::int32_t c = 1; c <= m.ColCount(); ++c) {
    const SparseVectorSingle& column = *m.Vector(c);
    for (std::int32_t k = 1; k <= column.NZElementCount(); ++k) {
      cells[{static_cast<std::int32_t>(column.ElementByListIndex(k)), c}] =
          column.ValueByListIndex(k);
    }
  }
  return cells;
}

SparseMatrixSingle FromCells(std::int32_t rows, std::int32_t cols, const Cells& cells) {
  SparseMatrixSingle m;
  m.Reset(rows, cols);
  for (const auto& [cell, value] : cells) m.SetValue(cell.first, cell.second, value);
  return m;
}

// A rows x cols matrix whose cells are present with the given density; values are positive
// unless `withNegatives`, in which case some columns are loaded through SetVector with negative
// and the odd stored zero.
SparseMatrixSingle RandomMatrix(std::mt19937& random, std::int32_t rows, std::int32_t cols,
                                double density, bool withNegatives) {
  std::bernoulli_distribution present(density);
  std::uniform_real_distribution<float> value(0.05f, 3.0f);
  std::uniform_int_distribution<int> small(1, 4);
  SparseMatrixSingle m;
  m.Reset(rows, cols);
  for (std::int32_t c = 1; c <= cols; ++c) {
    std::vector<float> dense(static_cast<std::size_t>(rows) + 1, 0.0f);
    for (std::int32_t r = 1; r <= rows; ++r) {
      if (!present(random)) continue;
      // Small whole numbers make ties and exact sums; fractions make rounding matter.
      float x = random() % 2 == 0 ? static_cast<float>(small(random)) : value(random);
      if (withNegatives && random() % 5 == 0) x = -x;
      dense[static_cast<std::size_t>(r)] = x;
    }
    m.Vector(c)->SetVector(dense, rows);
    if (withNegatives && m.Vector(c)->NZElementCount() > 1 && random() % 4 == 0) {
      m.Vector(c)->SetValueByListIndex(1, 0.0f);
    }
  }
  return m;
}

// The similarity matrix spelled out: for each column i a dense copy over RowCount rows and
// its magnitude, and the vector similarity of every column j with it.
Cells SimilarityByDenseCopies(const SparseMatrixSingle& m, std::int32_t metric) {
  Cells cells;
  const std::int32_t n = m.ColCount();
  for (std::int32_t i = 1; i <= n; ++i) {
    const std::vector<float> dense = m.Vector(i)->GetVectorArr(m.RowCount());
    const float magnitude = m.Vector(i)->Magnitude();
    const std::int32_t firstJ = metric == 1 ? i : i + 1;
    for (std::int32_t j = firstJ; j <= n; ++j) {
      const float s = m.Vector(j)->GetSimilarity(dense, metric, magnitude);
      if (s > 0.0f) cells[{i, j}] = s;
    }
    if (metric == 2) cells[{i, i}] = 1.0f;
  }
  return cells;
}

TEST(SparseMatrixSingleCells, ColumnsOutOfRangeReadZeroAndIgnoreWrites) {
  SparseMatrixSingle m;
  m.Reset(3, 2);
  m.SetValue(1, 1, 2.0f);
  for (const std::int32_t col : {0, -1, 3, 99}) {
    SCOPED_TRACE(col);
    m.SetValue(1, col, 4.0f);
    EXPECT_EQ(m.Value(1, col), 0.0f);
    EXPECT_TRUE(m.IsEmpty(1, col));
    EXPECT_EQ(m.Magnitude(col), 0.0f);
    EXPECT_EQ(m.Vector(col), nullptr);
    EXPECT_EQ(m.GetSimilarity(1, col, 2), 0.0f);
  }
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 2.0f}}));
}

TEST(SparseMatrixSingleSize, ColumnsDeclareTheRowCount) {
  SparseMatrixSingle m;
  m.Reset(7, 2);
  m.SetValue(2, 1, 1.0f);
  EXPECT_EQ(m.Vector(1)->DimensionCount(), 7);
  EXPECT_EQ(m.Vector(1)->GetVectorArr(0).size(), 8u);
  m.SetRowCount(9);
  EXPECT_EQ(m.RowCount(), 9);
  EXPECT_EQ(m.Vector(2)->DimensionCount(), 9);
  EXPECT_EQ(m.Value(2, 1), 1.0f);
}

TEST(SparseMatrixSingleGetSimilarity, SameColumnAndEmptyColumns) {
  SparseMatrixSingle m = FromCells(3, 3, {{{1, 1}, 1}, {{2, 1}, 2}});
  EXPECT_EQ(m.GetSimilarity(1, 1, 1), m.Magnitude(1) * m.Magnitude(1));
  EXPECT_EQ(m.GetSimilarity(1, 1, 2), 1.0f);
  EXPECT_EQ(m.GetSimilarity(1, 1, 3), 0.0f);
  EXPECT_EQ(m.GetSimilarity(2, 2, 2), 1.0f);   // even an empty column
  EXPECT_EQ(m.GetSimilarity(1, 2, 2), -1.0f);  // second column has magnitude 0
  EXPECT_EQ(m.GetSimilarity(2, 1, 2), 0.0f);   // first column empty: dot 0
  // The cosine vector of an empty or missing column is empty.
  for (const std::int32_t column : {2, 0, 4}) {
    EXPECT_EQ(m.GetSimilarityVector(column, m, 2).NZElementCount(), 0) << column;
  }
  // Rows past RowCount take no part.
  SparseMatrixSingle past = FromCells(2, 2, {{{1, 1}, 1}, {{1, 2}, 1}});
  past.SetValue(5, 1, 4.0f);
  past.SetValue(5, 2, 4.0f);
  EXPECT_EQ(past.GetSimilarity(1, 2, 1), 1.0f);
}

TEST(SparseMatrixSingleGetSimilarityMatrix, OtherMeasuresGiveAnEmptySquareMatrix) {
  const SparseMatrixSingle m = FromCells(2, 3, {{{1, 1}, 1}, {{1, 2}, 1}});
  for (const std::int32_t metric : {0, 3, -1}) {
    const SparseMatrixSingle s = m.GetSimilarityMatrix(metric);
    EXPECT_EQ(s.RowCount(), 3);
    EXPECT_EQ(s.ColCount(), 3);
    EXPECT_TRUE(StoredCells(s).empty());
  }
  EXPECT_EQ(SparseMatrixSingle().GetSimilarityMatrix(2).ColCount(), 0);
}

// Bit-for-bit agreement with the column-by-column computation on random shapes.
class SparseMatrixSingleSimilarityReference
    : public ::testing::TestWithParam<std::tuple<std::int32_t, bool>> {};

TEST_P(SparseMatrixSingleSimilarityReference, EqualsTheDenseCopyComputationExactly) {
  const auto [metric, withNegatives] = GetParam();
  std::mt19937 random(1000 + static_cast<unsigned>(metric) * 10 + (withNegatives ? 1 : 0));
  for (int round = 0; round < 60; ++round) {
    const std::int32_t rows = 1 + static_cast<std::int32_t>(random() % 50);
    const std::int32_t cols = 1 + static_cast<std::int32_t>(random() % 35);
    const double density = 0.02 + 0.6 * (random() % 100) / 100.0;
    SCOPED_TRACE(::testing::Message()
                 << "round " << round << ": " << rows << " x " << cols << " density " << density);
    const SparseMatrixSingle m = RandomMatrix(random, rows, cols, density, withNegatives);
    EXPECT_EQ(StoredCells(m.GetSimilarityMatrix(metric)), SimilarityByDenseCopies(m, metric));
  }
}

INSTANTIATE_TEST_SUITE_P(Measures, SparseMatrixSingleSimilarityReference,
                         ::testing::Combine(::testing::Values(1, 2), ::testing::Bool()));

TEST(SparseMatrixSingleGetSimilarityMatrix, ReportsEveryColumnAndStopsWhenAsked) {
  std::mt19937 random(5);
  const SparseMatrixSingle m = RandomMatrix(random, 10, 6, 0.5, false);
  std::vector<std::int64_t> done;
  const ProgressCallback counting = [&](std::string_view, std::int64_t d, std::int64_t total) {
    EXPECT_EQ(total, 6);
    done.push_back(d);
    return true;
  };
  EXPECT_FALSE(StoredCells(m.GetSimilarityMatrix(2, counting)).empty());
  EXPECT_EQ(done, (std::vector<std::int64_t>{1, 2, 3, 4, 5, 6}));

  const ProgressCallback cancelling = [](std::string_view, std::int64_t d, std::int64_t) {
    return d < 2;
  };
  const SparseMatrixSingle stopped = m.GetSimilarityMatrix(2, cancelling);
  EXPECT_EQ(stopped.ColCount(), 6);
  EXPECT_TRUE(StoredCells(stopped).empty());
}

TEST(SparseMatrixSingleMakeSymmetric, NonSquareMatrixIsLeftAlone) {
  SparseMatrixSingle m = FromCells(2, 3, {{{1, 2}, 1}, {{2, 3}, 2}});
  const Cells before = StoredCells(m);
  m.MakeSymmetric(true);
  EXPECT_EQ(StoredCells(m), before);
}

TEST(SparseMatrixSingleMakeSymmetric, GivesASymmetricMatrixOnRandomInput) {
  std::mt19937 random(31);
  for (int round = 0; round < 20; ++round) {
    const std::int32_t n = 1 + static_cast<std::int32_t>(random() % 25);
    SparseMatrixSingle s = RandomMatrix(random, n, n, 0.3, false);
    const Cells before = StoredCells(s);
    s.MakeSymmetric(round % 2 == 0);  // the flag makes no difference
    for (std::int32_t i = 1; i <= n; ++i) {
      for (std::int32_t j = 1; j <= n; ++j) {
        const auto upper = before.find({std::min(i, j), std::max(i, j)});
        EXPECT_EQ(s.Value(i, j), upper == before.end() ? 0.0f : upper->second);
      }
    }
  }
}

// Pair similarities, cosine vectors against another matrix, dense copies, transposes and
// block copies against the cells on random shapes. The copies write through SetValue, so
// non-positive cells (loaded through SetVector) drop out.
TEST(SparseMatrixSingleDense, AgreesWithTheCellsOnRandomShapes) {
  std::mt19937 random(77);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const auto rows = 1 + static_cast<std::int32_t>(random() % 20);
    const auto cols = 1 + static_cast<std::int32_t>(random() % 12);
    const SparseMatrixSingle m = RandomMatrix(random, rows, cols, 0.3, round % 2 == 0);
    const Cells cells = StoredCells(m);
    Cells positive;
    std::vector<std::vector<float>> dense(static_cast<std::size_t>(rows),
                                          std::vector<float>(static_cast<std::size_t>(cols), 0));
    std::vector<std::vector<double>> column(
        static_cast<std::size_t>(cols) + 1,
        std::vector<double>(static_cast<std::size_t>(rows) + 1));
    for (const auto& [cell, value] : cells) {
      const auto [r, c] = cell;
      dense[static_cast<std::size_t>(r) - 1][static_cast<std::size_t>(c) - 1] = value;
      column[static_cast<std::size_t>(c)][static_cast<std::size_t>(r)] = value;
      if (value > 0.0f) positive[cell] = value;
    }
    EXPECT_EQ(m.GetDenseMatrix(), dense);

    const auto dot = [&](std::int32_t a, std::int32_t b) {
      double sum = 0;
      for (std::int32_t r = 1; r <= rows; ++r) {
        sum += column[static_cast<std::size_t>(a)][static_cast<std::size_t>(r)] *
               column[static_cast<std::size_t>(b)][static_cast<std::size_t>(r)];
      }
      return sum;
    };
    const auto a = 1 + static_cast<std::int32_t>(random() % cols);
    const auto b = 1 + static_cast<std::int32_t>(random() % cols);
    const double ab = dot(a, b), aa = dot(a, a), bb = dot(b, b);
    if (a != b) {
      EXPECT_NEAR(m.GetSimilarity(a, b, 1), ab, 1e-4);
      const double cosine = bb <= 0 ? -1 : ab > 0 ? ab / std::sqrt(aa * bb) : ab;
      EXPECT_NEAR(m.GetSimilarity(a, b, 2), cosine, 1e-4);
    }
    const SparseVectorSingle cosines = m.GetSimilarityVector(a, m);
    for (std::int32_t i = 1; i <= cols; ++i) {
      const double ai = dot(a, i), ii = dot(i, i);
      const double expected = aa > 0 && ii > 0 && ai > 0 ? ai / std::sqrt(aa * ii) : 0.0;
      EXPECT_NEAR(cosines.Value(i), expected, 1e-5) << i;
    }

    SparseMatrixSingle transposed = m;
    transposed.Transpose();
    EXPECT_EQ(transposed.RowCount(), cols);
    EXPECT_EQ(transposed.ColCount(), rows);
    Cells swapped;
    for (const auto& [cell, value] : positive) swapped[{cell.second, cell.first}] = value;
    EXPECT_EQ(StoredCells(transposed), swapped);

    SparseMatrixSingle copy = FromCells(3, 3, {{{3, 3}, 9}});
    copy.SetMatrix(m);
    EXPECT_EQ(copy.RowCount(), rows);
    EXPECT_EQ(StoredCells(copy), positive);

    // A first column below 1 is raised to 1; a last one below the first means the source's last
    // column, and one past it is lowered to it. `square` keeps only rows first..last.
    const auto first = static_cast<std::int32_t>(random() % (cols + 2)) - 1;
    const auto last = static_cast<std::int32_t>(random() % (cols + 3)) - 1;
    const bool square = random() % 2 == 0;
    const std::int32_t from = std::max(first, 1);
    const std::int32_t to = last < from ? cols : std::min(last, cols);
    Cells block;
    for (const auto& [cell, value] : positive) {
      const auto [r, c] = cell;
      if (c < from || c > to || (square && (r < from || r > to))) continue;
      block[{r, c - from + 1}] = value;
    }
    SparseMatrixSingle selected;
    selected.SetMatrixSelective(m, first, last, square);
    EXPECT_EQ(selected.RowCount(), rows);
    EXPECT_EQ(selected.ColCount(), std::max(to - from + 1, 0));
    EXPECT_EQ(StoredCells(selected), block) << first << ".." << last << " square " << square;
  }
}

// Writing and normalising a single cell are checked on the vector; a column is a vector.
TEST(SparseMatrixSingleDense, SaveDenseMatrixWritesEveryCellWithTrailingTabs) {
  const testing::TempDir dir;
  const SparseMatrixSingle m = FromCells(2, 3, {{{1, 1}, 0.5f}, {{2, 2}, 0.25f}, {{2, 3}, 12.5f}});
  const auto path = (dir.Path() / "m.txt").string();
  ASSERT_TRUE(m.SaveDenseMatrix(path, false));
  EXPECT_EQ(testing::ReadFile(path), "0.5\t0\t0\t\r\n0\t0.25\t12.5\t\r\n");
  ASSERT_TRUE(m.SaveDenseMatrix(path, true));
  EXPECT_EQ(testing::ReadFile(path), "0.5\t1\t1\t\r\n1\t0.75\t-11.5\t\r\n");
  EXPECT_FALSE(m.SaveDenseMatrix((dir.Path() / "no-such-folder" / "m.txt").string(), false));
  EXPECT_FALSE(m.SaveDenseMatrix(dir.Path().string(), false));
}

TEST(SparseMatrixSingleDense, Matrix2ClipFormatsEveryCell) {
  const SparseMatrixSingle m = FromCells(2, 2, {{{1, 1}, 0.5f}, {{2, 2}, 1.0f / 3.0f}});
  EXPECT_EQ(m.Matrix2Clip("0.00"), "0.50\t0.00\t\r\n0.00\t0.33\t\r\n");
  EXPECT_EQ(m.Matrix2Clip("0.000"), "0.500\t0.000\t\r\n0.000\t0.333\t\r\n");
  EXPECT_EQ(SparseMatrixSingle().Matrix2Clip("0.00"), "");
}

// Columns 1 and 2 share rows 1 and 2, column 3 shares row 2 with both: three pairs, which
// the cheap bound counts once per shared row (four).
TEST(SharedRowPairEstimate, CheapBoundWithinTheLimitAndTheExactCountPastIt) {
  SparseMatrixSingle m;
  m.Reset(3, 3);
  for (const auto& [row, col] : {std::pair{1, 1}, {2, 1}, {1, 2}, {2, 2}, {2, 3}, {3, 3}})
    m.SetValue(row, col, 0.5f);
  EXPECT_EQ(m.SharedRowPairEstimate(4), 4);
  EXPECT_EQ(m.SharedRowPairEstimate(3), 3);
}

// Column 2 is as close to 1, 3 and 4 (a tie, to the lowest); 1 and 4 are identical. With one
// neighbour each: 1 keeps 4, 2 keeps 1, 3 keeps 2, 4 keeps 1; the union is symmetric and the
// values are those of the full product.
TEST(NearestSimilarityMatrix, KeepsEachColumnsNearestAndTheirMirror) {
  SparseMatrixSingle m;
  m.Reset(2, 4);
  for (const auto& [row, col] : {std::pair{1, 1}, {1, 2}, {2, 2}, {2, 3}, {1, 4}})
    m.SetValue(row, col, 1.0f);
  const SparseMatrixSingle full = m.GetSimilarityMatrix(2);
  const SparseMatrixSingle near = m.NearestSimilarityMatrix(1);
  std::vector<std::pair<int, int>> kept;
  for (std::int32_t c = 1; c <= 4; ++c) {
    for (const std::int32_t r : near.Vector(c)->ElementIndexes()) {
      kept.emplace_back(r, c);
      EXPECT_EQ(near.Value(r, c), full.Value(std::min(r, c), std::max(r, c))) << r << "," << c;
    }
  }
  const std::vector<std::pair<int, int>> expected = {{1, 1}, {2, 1}, {4, 1}, {1, 2}, {2, 2},
                                                     {3, 2}, {2, 3}, {3, 3}, {1, 4}, {4, 4}};
  EXPECT_EQ(kept, expected);
}

// The block's pairwise cosines, summed bit for bit as the double loop over GetSimilarity sums
// them: empty columns (-1 as the second of a pair), negative and stored-zero cells, and cells
// past RowCount, which take no part.
TEST(PairCosineSum, EqualsThePairwiseLoopBitForBit) {
  std::mt19937 random(77);
  for (int round = 0; round < 80; ++round) {
    const std::int32_t rows = 1 + static_cast<std::int32_t>(random() % 40);
    const std::int32_t cols = 1 + static_cast<std::int32_t>(random() % 60);
    const double density = 0.01 + 0.5 * (random() % 100) / 100.0;
    SparseMatrixSingle m = RandomMatrix(random, rows, cols, density, round % 2 == 1);
    // Cells over twenty orders of magnitude make cosines whose double sum rounds, so that
    // the order of the sum shows.
    std::uniform_real_distribution<float> exponent(-10.0f, 10.0f);
    for (std::int32_t c = 1; c <= cols; ++c) {
      SparseVectorSingle& column = *m.Vector(c);
      for (std::int32_t k = 1; k <= column.NZElementCount(); ++k) {
        column.SetValueByListIndex(k,
                                   column.ValueByListIndex(k) * std::pow(10.0f, exponent(random)));
      }
    }
    for (std::int32_t c = 1; c <= cols; c += 7) m.SetValue(rows + 1, c, 2.5f);
    const std::int32_t first = 1 + static_cast<std::int32_t>(random() % cols);
    const std::int32_t last = first + static_cast<std::int32_t>(random() % (cols - first + 1));
    SCOPED_TRACE(::testing::Message() << "round " << round << ": columns " << first << ".." << last
                                      << " of " << rows << " x " << cols);
    double expected = 0.0;
    for (std::int32_t c1 = first; c1 < last; ++c1) {
      for (std::int32_t c2 = c1 + 1; c2 <= last; ++c2) expected += m.GetSimilarity(c1, c2, 2);
    }
    EXPECT_EQ(std::bit_cast<std::uint64_t>(m.PairCosineSum(first, last)),
              std::bit_cast<std::uint64_t>(expected));
  }
}

// Few partners among many later columns, met out of column order (row 1 leads to column 900,
// row 2 to 700, row 3 to 2): they are still added in column order, the large cosine first.
TEST(PairCosineSum, FewPartnersFarApartAreAddedInColumnOrder) {
  const std::int32_t cols = 1000;
  SparseMatrixSingle m;
  m.Reset(cols + 3, cols);
  m.SetValue(1, 1, 5.1e-13f);
  m.SetValue(2, 1, 7.1e-13f);
  m.SetValue(3, 1, 1.0f);
  for (std::int32_t c = 3; c <= cols; ++c) {
    if (c != 700 && c != 900) m.SetValue(c + 3, c, 1.0f);  // a row of its own
  }
  m.SetValue(1, 900, 1.0f);
  m.SetValue(2, 700, 1.0f);
  m.SetValue(3, 2, 1.0f);
  double expected = 0.0;
  for (const std::int32_t c : {2, 700, 900}) expected += m.GetSimilarity(1, c, 2);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(m.PairCosineSum(1, cols)),
            std::bit_cast<std::uint64_t>(expected));
}

}  // namespace
}  // namespace sylvora
