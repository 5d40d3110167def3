#include "sparse/sparse_matrix_single.h"

#include <gtest/gtest.h>

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

TEST(SparseMatrixSingleCells, WritingZeroOrNegativeEmptiesTheCell) {
  for (const float written : {0.0f, -1.0f}) {
    SCOPED_TRACE(written);
    SparseMatrixSingle m;
    m.Reset(4, 3);
    m.SetValue(3, 2, 5.0f);
    EXPECT_FALSE(m.IsEmpty(3, 2));
    m.SetValue(3, 2, written);
    EXPECT_TRUE(m.IsEmpty(3, 2));
    EXPECT_EQ(m.Value(3, 2), 0.0f);
  }
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

TEST(SparseMatrixSingleCells, VectorIsTheColumnItself) {
  SparseMatrixSingle m;
  m.Reset(5, 2);
  m.Vector(2)->SetValue(4, 7.0f);
  EXPECT_EQ(m.Value(4, 2), 7.0f);
  m.SetValue(1, 2, 3.0f);
  EXPECT_EQ(m.Vector(2)->NZElementCount(), 2);
  EXPECT_EQ(m.Magnitude(2), std::sqrt(58.0f));
}

TEST(SparseMatrixSingleSize, ResetEmptiesAndSizes) {
  SparseMatrixSingle m;
  EXPECT_EQ(m.RowCount(), 0);
  EXPECT_EQ(m.ColCount(), 0);
  m.Reset(3, 4);
  m.SetValue(2, 2, 1.0f);
  m.Reset(6, 2);
  EXPECT_EQ(m.RowCount(), 6);
  EXPECT_EQ(m.ColCount(), 2);
  EXPECT_TRUE(StoredCells(m).empty());
  m.Reset(-1, -5);
  EXPECT_EQ(m.RowCount(), 0);
  EXPECT_EQ(m.ColCount(), 0);
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

TEST(SparseMatrixSingleGetSimilarity, ComparesTwoColumns) {
  const SparseMatrixSingle m =
      FromCells(4, 3, {{{1, 1}, 1}, {{2, 1}, 2}, {{2, 2}, 3}, {{4, 2}, 1}, {{3, 3}, 5}});
  EXPECT_EQ(m.GetSimilarity(1, 2, 1), 6.0f);
  EXPECT_FLOAT_EQ(m.GetSimilarity(1, 2, 2), 6.0f / (std::sqrt(5.0f) * std::sqrt(10.0f)));
  EXPECT_EQ(m.GetSimilarity(2, 1, 5), 6.0f);  // any other measure is the inner product
  EXPECT_EQ(m.GetSimilarity(1, 3, 2), 0.0f);  // orthogonal
}

TEST(SparseMatrixSingleGetSimilarity, SameColumnAndEmptyColumns) {
  SparseMatrixSingle m = FromCells(3, 3, {{{1, 1}, 1}, {{2, 1}, 2}});
  EXPECT_EQ(m.GetSimilarity(1, 1, 1), m.Magnitude(1) * m.Magnitude(1));
  EXPECT_EQ(m.GetSimilarity(1, 1, 2), 1.0f);
  EXPECT_EQ(m.GetSimilarity(1, 1, 3), 0.0f);
  EXPECT_EQ(m.GetSimilarity(2, 2, 2), 1.0f);   // even an empty column
  EXPECT_EQ(m.GetSimilarity(1, 2, 2), -1.0f);  // second column has magnitude 0
  EXPECT_EQ(m.GetSimilarity(2, 1, 2), 0.0f);   // first column empty: dot 0
}

TEST(SparseMatrixSingleGetSimilarity, RowsPastRowCountTakeNoPart) {
  SparseMatrixSingle m = FromCells(2, 2, {{{1, 1}, 1}, {{1, 2}, 1}});
  m.SetValue(5, 1, 4.0f);
  m.SetValue(5, 2, 4.0f);
  EXPECT_EQ(m.GetSimilarity(1, 2, 1), 1.0f);
}

TEST(SparseMatrixSingleGetSimilarityVector, CosineWithEveryColumn) {
  const SparseMatrixSingle m =
      FromCells(3, 4, {{{1, 1}, 1}, {{2, 1}, 1}, {{1, 2}, 2}, {{3, 3}, 4}, {{2, 4}, 1}});
  for (const std::int32_t metric : {1, 2, 9}) {  // the measure is always the cosine
    SCOPED_TRACE(metric);
    SparseVectorSingle v = m.GetSimilarityVector(1, m, metric);
    EXPECT_FLOAT_EQ(v.Value(1), 1.0f);
    EXPECT_FLOAT_EQ(v.Value(2), 1.0f / std::sqrt(2.0f));
    EXPECT_TRUE(v.IsEmpty(3));  // orthogonal: no element
    EXPECT_FLOAT_EQ(v.Value(4), 1.0f / std::sqrt(2.0f));
    EXPECT_EQ(v.NZElementCount(), 3);
  }
}

TEST(SparseMatrixSingleGetSimilarityVector, EmptyForAnEmptyOrMissingColumn) {
  const SparseMatrixSingle m = FromCells(3, 2, {{{1, 1}, 1}});
  EXPECT_EQ(m.GetSimilarityVector(2, m, 2).NZElementCount(), 0);
  EXPECT_EQ(m.GetSimilarityVector(0, m, 2).NZElementCount(), 0);
  EXPECT_EQ(m.GetSimilarityVector(3, m, 2).NZElementCount(), 0);
}

TEST(SparseMatrixSingleGetSimilarityVector, ComparesWithTheColumnsOfAnotherMatrix) {
  const SparseMatrixSingle a = FromCells(2, 3, {{{1, 1}, 1}});
  const SparseMatrixSingle b = FromCells(2, 2, {{{1, 1}, 3}, {{1, 2}, 1}, {{2, 2}, 1}});
  SparseVectorSingle v = a.GetSimilarityVector(1, b, 2);
  EXPECT_EQ(v.Value(1), 1.0f);
  EXPECT_FLOAT_EQ(v.Value(2), 1.0f / std::sqrt(2.0f));
  EXPECT_EQ(v.NZElementCount(), 2);  // b has no third column
}

TEST(SparseMatrixSingleGetSimilarityMatrix, CosineFillsTheUpperTriangleAndTheDiagonal) {
  const SparseMatrixSingle m =
      FromCells(3, 3, {{{1, 1}, 1}, {{2, 1}, 1}, {{1, 2}, 1}, {{2, 3}, 2}, {{3, 3}, 2}});
  const SparseMatrixSingle s = m.GetSimilarityMatrix(2);
  EXPECT_EQ(s.RowCount(), 3);
  EXPECT_EQ(s.ColCount(), 3);
  const float half = 1.0f / (std::sqrt(2.0f) * 1.0f);
  const float third = 2.0f / (std::sqrt(8.0f) * std::sqrt(2.0f));
  EXPECT_EQ(StoredCells(s), (Cells{{{1, 1}, 1.0f},
                                   {{2, 2}, 1.0f},
                                   {{3, 3}, 1.0f},
                                   {{1, 2}, half},
                                   {{1, 3}, third}}));  // columns 2 and 3 share no row
  EXPECT_TRUE(s.IsEmpty(2, 1));
  EXPECT_TRUE(s.IsEmpty(3, 1));
  EXPECT_TRUE(s.IsEmpty(3, 2));
}

TEST(SparseMatrixSingleGetSimilarityMatrix, InnerProductKeepsSquaredMagnitudesOnTheDiagonal) {
  const SparseMatrixSingle m =
      FromCells(2, 3, {{{1, 1}, 1}, {{2, 1}, 2}, {{2, 2}, 3}, {{1, 3}, 4}});
  EXPECT_EQ(
      StoredCells(m.GetSimilarityMatrix(1)),
      (Cells{{{1, 1}, 5.0f}, {{2, 2}, 9.0f}, {{3, 3}, 16.0f}, {{1, 2}, 6.0f}, {{1, 3}, 4.0f}}));
}

TEST(SparseMatrixSingleGetSimilarityMatrix, EmptyColumnsHaveUnitCosineDiagonalOnly) {
  const SparseMatrixSingle m = FromCells(2, 3, {{{1, 2}, 1}});
  EXPECT_EQ(StoredCells(m.GetSimilarityMatrix(2)),
            (Cells{{{1, 1}, 1.0f}, {{2, 2}, 1.0f}, {{3, 3}, 1.0f}}));
  EXPECT_EQ(StoredCells(m.GetSimilarityMatrix(1)), (Cells{{{2, 2}, 1.0f}}));
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

TEST(SparseMatrixSingleGetSimilarityMatrix, NegativeInnerProductsAreNotStored) {
  SparseMatrixSingle m;
  m.Reset(2, 2);
  const std::vector<float> first = {0, 1, 1};
  const std::vector<float> second = {0, -3, 1};
  m.Vector(1)->SetVector(first, 2);
  m.Vector(2)->SetVector(second, 2);
  EXPECT_TRUE(m.GetSimilarityMatrix(1).IsEmpty(1, 2));
  EXPECT_TRUE(m.GetSimilarityMatrix(2).IsEmpty(1, 2));
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

TEST(SparseMatrixSingleGetSimilarityMatrix, AgreesWithDoublePrecisionMathematics) {
  std::mt19937 random(4242);
  for (int round = 0; round < 30; ++round) {
    const std::int32_t rows = 5 + static_cast<std::int32_t>(random() % 80);
    const std::int32_t cols = 2 + static_cast<std::int32_t>(random() % 30);
    const SparseMatrixSingle m = RandomMatrix(random, rows, cols, 0.15, false);
    const std::vector<std::vector<float>> dense = m.GetDenseMatrix();
    const SparseMatrixSingle inner = m.GetSimilarityMatrix(1);
    const SparseMatrixSingle cosine = m.GetSimilarityMatrix(2);
    for (std::int32_t i = 1; i <= cols; ++i) {
      for (std::int32_t j = i; j <= cols; ++j) {
        double dot = 0;
        double normI = 0;
        double normJ = 0;
        for (std::int32_t r = 0; r < rows; ++r) {
          const double a = dense[static_cast<std::size_t>(r)][static_cast<std::size_t>(i) - 1];
          const double b = dense[static_cast<std::size_t>(r)][static_cast<std::size_t>(j) - 1];
          dot += a * b;
          normI += a * a;
          normJ += b * b;
        }
        EXPECT_NEAR(inner.Value(i, j), dot, 1e-5 * (1 + dot)) << i << "," << j;
        const double expected = i == j ? 1.0 : (dot > 0 ? dot / std::sqrt(normI * normJ) : 0.0);
        EXPECT_NEAR(cosine.Value(i, j), expected, 1e-5) << i << "," << j;
        if (i != j) {
          EXPECT_TRUE(inner.IsEmpty(j, i));
          EXPECT_TRUE(cosine.IsEmpty(j, i));
        }
      }
    }
  }
}

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

TEST(SparseMatrixSingleMakeSymmetric, MirrorsTheUpperTriangleWhateverTheFlag) {
  for (const bool top2Bottom : {false, true}) {
    SCOPED_TRACE(top2Bottom);
    SparseMatrixSingle s = FromCells(3, 3, {{{1, 1}, 1}, {{1, 2}, 0.5f}, {{2, 3}, 0.25f}});
    s.MakeSymmetric(top2Bottom);
    EXPECT_EQ(
        StoredCells(s),
        (Cells{{{1, 1}, 1}, {{1, 2}, 0.5f}, {{2, 1}, 0.5f}, {{2, 3}, 0.25f}, {{3, 2}, 0.25f}}));
  }
}

TEST(SparseMatrixSingleMakeSymmetric, AnAbsentUpperCellEmptiesTheLowerOne) {
  SparseMatrixSingle s = FromCells(3, 3, {{{2, 1}, 9}, {{3, 1}, 8}, {{1, 3}, 0.5f}, {{3, 3}, 2}});
  s.MakeSymmetric(false);
  EXPECT_EQ(StoredCells(s), (Cells{{{1, 3}, 0.5f}, {{3, 1}, 0.5f}, {{3, 3}, 2}}));
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
    s.MakeSymmetric(true);
    for (std::int32_t i = 1; i <= n; ++i) {
      for (std::int32_t j = 1; j <= n; ++j) {
        const auto upper = before.find({std::min(i, j), std::max(i, j)});
        EXPECT_EQ(s.Value(i, j), upper == before.end() ? 0.0f : upper->second);
      }
    }
  }
}

TEST(SparseMatrixSingleTranspose, SwapsRowsAndColumns) {
  SparseMatrixSingle m = FromCells(2, 3, {{{1, 1}, 1}, {{2, 1}, 2}, {{1, 3}, 3}, {{2, 2}, 4}});
  m.Transpose();
  EXPECT_EQ(m.RowCount(), 3);
  EXPECT_EQ(m.ColCount(), 2);
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 1}, {{1, 2}, 2}, {{3, 1}, 3}, {{2, 2}, 4}}));
  EXPECT_EQ(m.Vector(1)->DimensionCount(), 3);
}

TEST(SparseMatrixSingleTranspose, TwiceGivesTheSameMatrixAndDropsNonPositiveCells) {
  std::mt19937 random(8);
  SparseMatrixSingle m = RandomMatrix(random, 17, 9, 0.4, true);
  Cells positive;
  for (const auto& [cell, value] : StoredCells(m)) {
    if (value > 0.0f) positive[cell] = value;
  }
  m.Transpose();
  m.Transpose();
  EXPECT_EQ(m.RowCount(), 17);
  EXPECT_EQ(m.ColCount(), 9);
  EXPECT_EQ(StoredCells(m), positive);
}

TEST(SparseMatrixSingleSetMatrixSelective, CopiesABlockOfColumnsAndSquareRows) {
  Cells cells;
  for (std::int32_t r = 1; r <= 4; ++r) {
    for (std::int32_t c = 1; c <= 4; ++c) cells[{r, c}] = static_cast<float>(10 * r + c);
  }
  const SparseMatrixSingle src = FromCells(4, 4, cells);
  SparseMatrixSingle block;
  block.SetMatrixSelective(src, 2, 3, true);
  EXPECT_EQ(block.ColCount(), 2);
  EXPECT_EQ(block.RowCount(), 4);
  EXPECT_EQ(StoredCells(block), (Cells{{{2, 1}, 22}, {{3, 1}, 32}, {{2, 2}, 23}, {{3, 2}, 33}}));

  block.SetMatrixSelective(src, 2, 3, false);
  EXPECT_EQ(StoredCells(block), (Cells{{{1, 1}, 12},
                                       {{2, 1}, 22},
                                       {{3, 1}, 32},
                                       {{4, 1}, 42},
                                       {{1, 2}, 13},
                                       {{2, 2}, 23},
                                       {{3, 2}, 33},
                                       {{4, 2}, 43}}));
}

TEST(SparseMatrixSingleSetMatrixSelective, AdjustsTheColumnRange) {
  const SparseMatrixSingle src = FromCells(3, 3, {{{1, 1}, 1}, {{2, 2}, 2}, {{3, 3}, 3}});
  SparseMatrixSingle m;
  m.SetMatrixSelective(src, 0, 1, false);  // first raised to 1
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 1}}));
  m.SetMatrixSelective(src, 2, 0, false);  // last below first: up to the last column
  EXPECT_EQ(m.ColCount(), 2);
  EXPECT_EQ(StoredCells(m), (Cells{{{2, 1}, 2}, {{3, 2}, 3}}));
  m.SetMatrixSelective(src, 3, 50, false);  // last lowered to the source's column count
  EXPECT_EQ(StoredCells(m), (Cells{{{3, 1}, 3}}));
  m.SetMatrixSelective(m, 1, 1, true);  // from itself; row 1 only
  EXPECT_TRUE(StoredCells(m).empty());
}

TEST(SparseMatrixSingleSetMatrix, MakesAnIndependentCopy) {
  SparseMatrixSingle src = FromCells(3, 2, {{{1, 1}, 1}, {{3, 2}, 2}});
  SparseMatrixSingle m = FromCells(9, 9, {{{9, 9}, 9}});
  m.SetMatrix(src);
  EXPECT_EQ(m.RowCount(), 3);
  EXPECT_EQ(m.ColCount(), 2);
  src.SetValue(2, 2, 5.0f);
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 1}, {{3, 2}, 2}}));
  m.SetMatrix(m);
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 1}, {{3, 2}, 2}}));
}

TEST(SparseMatrixSingleSetMatrix, CopiesThroughCellWritesSoNonPositiveValuesDrop) {
  SparseMatrixSingle src;
  src.Reset(3, 1);
  const std::vector<float> dense = {0, 2, -1, 3};
  src.Vector(1)->SetVector(dense, 3);
  SparseMatrixSingle m;
  m.SetMatrix(src);
  EXPECT_EQ(StoredCells(m), (Cells{{{1, 1}, 2}, {{3, 1}, 3}}));
}

TEST(SparseMatrixSingleDense, GetDenseMatrixIsZeroBasedRowMajor) {
  const SparseMatrixSingle m = FromCells(2, 3, {{{1, 3}, 5}, {{2, 1}, 7}});
  EXPECT_EQ(m.GetDenseMatrix(), (std::vector<std::vector<float>>{{0, 0, 5}, {7, 0, 0}}));
}

TEST(SparseMatrixSingleDense, SaveDenseMatrixWritesEveryCellWithTrailingTabs) {
  const testing::TempDir dir;
  const SparseMatrixSingle m = FromCells(2, 3, {{{1, 1}, 0.5f}, {{2, 2}, 0.25f}, {{2, 3}, 12.5f}});
  const auto path = (dir.Path() / "m.txt").string();
  ASSERT_TRUE(m.SaveDenseMatrix(path, false));
  EXPECT_EQ(testing::ReadFile(path), "0.5\t0\t0\t\r\n0\t0.25\t12.5\t\r\n");
  ASSERT_TRUE(m.SaveDenseMatrix(path, true));
  EXPECT_EQ(testing::ReadFile(path), "0.5\t1\t1\t\r\n1\t0.75\t-11.5\t\r\n");
}

TEST(SparseMatrixSingleDense, SaveDenseMatrixReportsAnUnwritableFile) {
  const testing::TempDir dir;
  SparseMatrixSingle m = FromCells(1, 1, {{{1, 1}, 1}});
  EXPECT_FALSE(m.SaveDenseMatrix((dir.Path() / "no-such-folder" / "m.txt").string(), false));
  EXPECT_FALSE(m.SaveDenseMatrix(dir.Path().string(), false));
  m.SetValue(1, 1, 2.0f);  // still usable
  EXPECT_EQ(m.Value(1, 1), 2.0f);
}

TEST(SparseMatrixSingleDense, Matrix2ClipFormatsEveryCell) {
  const SparseMatrixSingle m = FromCells(2, 2, {{{1, 1}, 0.5f}, {{2, 2}, 1.0f / 3.0f}});
  EXPECT_EQ(m.Matrix2Clip("0.00"), "0.50\t0.00\t\r\n0.00\t0.33\t\r\n");
  EXPECT_EQ(m.Matrix2Clip("0.000"), "0.500\t0.000\t\r\n0.000\t0.333\t\r\n");
  EXPECT_EQ(SparseMatrixSingle().Matrix2Clip("0.00"), "");
}

TEST(SparseMatrixSingleColumns, TruncateLocalAndNormaliseWorkPerColumn) {
  SparseMatrixSingle m = FromCells(
      4, 2, {{{1, 1}, 1}, {{2, 1}, 5}, {{3, 1}, 5}, {{4, 1}, 3}, {{1, 2}, 3}, {{4, 2}, 4}});
  m.TruncateLocal(2);
  EXPECT_EQ(StoredCells(m), (Cells{{{2, 1}, 5}, {{3, 1}, 5}, {{1, 2}, 3}, {{4, 2}, 4}}));
  m.Normalise();
  EXPECT_FLOAT_EQ(m.Value(2, 1), 1.0f / std::sqrt(2.0f));
  EXPECT_FLOAT_EQ(m.Value(1, 2), 0.6f);
  EXPECT_FLOAT_EQ(m.Value(4, 2), 0.8f);
}

}  // namespace
}  // namespace sylvora

namespace sylvora {
namespace {

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

}  // namespace
}  // namespace sylvora

namespace sylvora {
namespace {

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

}  // namespace
}  // namespace sylvora
