#pragma once
// A matrix of single-precision values held as one SparseVectorSingle per column: the
// term-document matrix (rows = terms, columns = documents), the term-by-interval model, and
// the square similarity matrices of terms, intervals or documents.
//
// Numbering. Rows and columns are 1-based; cell (r, c) is element r of column c and an absent
// cell is worth 0. A column index outside 1..ColCount() reads as 0 (or an empty result) and
// writes to it are ignored. Reset, SetRowCount and the copying operations declare RowCount()
// as the dimension count of every column (SetVector on a column may declare another).
//
// Storage. Each column keeps its rows sorted (see SparseVectorSingle): a cell read is a binary
// search, appending a row below the last one is amortised O(1). Writing 0 or a negative value
// through SetValue empties the cell; the copying operations (SetMatrix, SetMatrixSelective,
// Transpose, MakeSymmetric) write through the same rule, so they drop non-positive cells that
// a column may hold from SetVector or SetValueByListIndex.
//
// Similarities. Measure 1 is the inner product, measure 2 the cosine; sums are float sums in
// ascending row order. GetSimilarityMatrix is one sparse product: its cost is the number of
// (row, column, column) triples that share a row, plus O(nnz + RowCount + ColCount), never
// ColCount^2 * RowCount.
//
// Text forms. SaveDenseMatrix and Matrix2Clip write every cell, one row per line, each value
// followed by a tab, lines ending in CR LF; "." is the decimal point.
//
// Nothing here throws apart from std::bad_alloc; file errors come back as false. Copies are
// deep; the type is cheap to move. Const operations may run concurrently on one matrix;
// anything else needs the matrix to itself (the column cursors are state).

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "sparse/sparse_vector_single.h"

namespace sylvora {

class SparseMatrixSingle {
 public:
  // An empty matrix: no rows, no columns.
  SparseMatrixSingle() = default;

  std::int32_t RowCount() const { return rowCount_; }
  // Sets the row count (0 for a negative value) and declares it on every column. Stored cells
  // are kept, also those below the new last row.
  void SetRowCount(std::int32_t rows);

  std::int32_t ColCount() const { return static_cast<std::int32_t>(columns_.size()); }

  // Cell (row, col); 0 when absent or when col is out of range. O(log nnz of the column).
  float Value(std::int32_t row, std::int32_t col) const;

  // Stores the cell; 0 or a negative value empties it. Ignored when col or row is below 1 or
  // col is past ColCount(). Rows past RowCount() are stored but take no part in dense copies
  // and similarities.
  void SetValue(std::int32_t row, std::int32_t col, float value);

  // True when the cell has no stored value (also for a column out of range).
  bool IsEmpty(std::int32_t row, std::int32_t col) const;

  // Magnitude of column col; 0 for a column out of range.
  float Magnitude(std::int32_t col) const;

  // The column itself (not a copy), or nullptr for a column out of range. Valid until the
  // matrix is reset, resized, reassigned or destroyed.
  SparseVectorSingle* Vector(std::int32_t col);
  const SparseVectorSingle* Vector(std::int32_t col) const;

  // Similarity of columns col1 and col2: for different columns, the vector similarity of
  // col1 with the dense copy of col2 over RowCount() rows and col2's magnitude (measure 2 is
  // the cosine and gives -1 when col2 has magnitude 0; any other measure is the inner
  // product). For the same column: measure 1 gives Magnitude(col)^2, measure 2 gives 1, any
  // other 0. A column out of range gives 0. O(nnz of both columns).
  float GetSimilarity(std::int32_t col1, std::int32_t col2, std::int32_t metric) const;

  // The cosine of column col1 of this matrix with every column i = 1..ColCount() of
  // `matrix2`, as element i of a new vector without a declared dimension count. `metric` is
  // accepted and ignored: the measure is always the cosine. Values of 0 or below are not
  // stored, so orthogonal columns have no element, and a col1 of magnitude 0 (or out of range)
  // gives an empty vector. Columns that `matrix2` lacks count as empty. Rows of `matrix2`
  // past this matrix's RowCount() count as 0. O(RowCount() + nnz of matrix2).
  SparseVectorSingle GetSimilarityVector(std::int32_t col1, const SparseMatrixSingle& matrix2,
                                         std::int32_t metric = 2) const;

  // The dense table text: for each row 1..RowCount(), every cell formatted with the number
  // pattern `formatString` (see FormatNumber; absent cells as 0), each followed by a tab, and
  // CR LF after each row. This is the text that goes on the clipboard.
  std::string Matrix2Clip(std::string_view formatString) const;

  // The similarities between the columns as a new ColCount() x ColCount() matrix S, upper
  // triangle only (row <= column); similarities of 0 or below are not stored.
  //  * metric 1: S(i, j) = inner product of columns i and j for i <= j; the diagonal holds
  //    each column's float sum of squares (the last column's too);
  //  * metric 2: S(i, j) = cosine of columns i and j for i < j, and S(i, i) = 1 for every i
  //    (also for empty columns);
  //  * any other metric: an empty ColCount() x ColCount() matrix.
  // Each value is bit-for-bit the one the vector similarity of column j with the dense copy of
  // column i gives. `progress` is called once per column i; when it answers false the work
  // stops and the result is an empty ColCount() x ColCount() matrix.
  SparseMatrixSingle GetSimilarityMatrix(std::int32_t metric,
                                         const ProgressCallback& progress = {}) const;

  // The cosine similarities of the columns as GetSimilarityMatrix(2) computes them (each value
  // bit for bit the same), keeping for every column only its `k` most similar other columns
  // (ties to the lower column), made symmetric by union: cell (i, j) and (j, i) hold the
  // cosine when either column kept the other. The diagonal is 1 for every column. With k of
  // ColCount() - 1 or more this is the whole similarity matrix, mirrored. Memory O(nnz +
  // ColCount x k); time that of the product. `progress` is called once per column; a cancel
  // gives an empty ColCount() x ColCount() matrix.
  SparseMatrixSingle NearestSimilarityMatrix(std::int32_t k,
                                             const ProgressCallback& progress = {}) const;

  // The double sum of GetSimilarity(c1, c2, 2) over c1 = first..last - 1 and c2 = c1 + 1..last,
  // added in that order, so bit for bit the sum of that double loop; 0 when last <= first.
  // Both columns must be in range. Its cost is that of the similarity product of the block
  // (row, column, column triples sharing a row) plus, for each column, the empty columns after
  // it (each pair with an empty second column adds -1), never the (last - first)^2 pairs.
  double PairCosineSum(std::int32_t first, std::int32_t last) const;

  // An upper bound of the column pairs (i < j, rows 1..RowCount()) that share a row, which is
  // what GetSimilarityMatrix can store off the diagonal: the sum over rows of C(k, 2), k the
  // columns holding the row, when that is at most `limit` (O(nnz)); otherwise the exact count
  // (the cost of the product, memory O(ColCount)). For checking a product's size first.
  std::int64_t SharedRowPairEstimate(std::int64_t limit) const;

  // Writes the dense table to `file` (created or replaced): for each row 1..RowCount(), every
  // cell (1 - cell when `dissim`) in the general number form (see GeneralNumber) followed by a
  // tab, then CR LF. Absent cells are 0 (1 with `dissim`). False when the file cannot be
  // written.
  bool SaveDenseMatrix(const std::string& file, bool dissim) const;

  // Dense copy: dense[r - 1][c - 1] = cell (r, c), RowCount() rows of ColCount() values.
  std::vector<std::vector<float>> GetDenseMatrix() const;

  // For a square matrix, cell (j, i) takes the value of cell (i, j) for every i < j: the
  // upper triangle is mirrored onto the lower one (an absent upper cell empties the lower
  // one). `top2Bottom` is accepted and has no effect. A non-square matrix is left as it is.
  // O(nnz).
  void MakeSymmetric(bool top2Bottom = true);

  // Discards every cell and sets the size (negative counts become 0).
  void Reset(std::int32_t rows, std::int32_t cols);

  // TruncateLocal(count) of every column: each keeps its `count` largest values.
  void TruncateLocal(std::int32_t count);

  // Replaces the matrix by its transpose: ColCount() rows, RowCount() columns, cell (c, r) =
  // old cell (r, c). O(nnz + RowCount + ColCount).
  void Transpose();

  // Copies the block of source columns first..last into columns 1, 2, ...: cells keep their
  // source row numbers, so the result has the source's RowCount(). `first` below 1 becomes 1;
  // a `last` below `first` becomes the source's ColCount(), and a `last` past it is lowered
  // to it. With `square`, only rows first..last are copied; otherwise every row
  // 1..source RowCount(). The source may be this matrix.
  void SetMatrixSelective(const SparseMatrixSingle& srcMatrix, std::int32_t first,
                          std::int32_t last, bool square);

  // Makes this matrix a copy of `srcMatrix` (same size, same cells). The source may be this
  // matrix.
  void SetMatrix(const SparseMatrixSingle& srcMatrix);

  // Normalise() of every column: each gets unit length.
  void Normalise();

 private:
  bool ValidColumn(std::int32_t col) const { return col >= 1 && col <= ColCount(); }
  SparseVectorSingle& Column(std::int32_t col) {
    return columns_[static_cast<std::size_t>(col) - 1];
  }
  const SparseVectorSingle& Column(std::int32_t col) const {
    return columns_[static_cast<std::size_t>(col) - 1];
  }

  std::int32_t rowCount_ = 0;
  std::vector<SparseVectorSingle> columns_;  // column c at index c - 1
};

}  // namespace sylvora
