#pragma once
// The minimum spanning tree of a similarity network held sparse: the same tree the dense
// route (ProximityMatrix::AssignMatrix, Sim2Dis, Transform2MST(-1)) gives for the same
// similarities, without the n x n matrix, so that maps of tens of thousands of nodes cost
// memory in the pairs that are linked rather than in every pair.
//
// Input: a square, symmetric SparseMatrixSingle of similarities between n nodes (node i is
// column i + 1; cell (r, c) is the pair r - 1, c - 1 and must equal cell (c, r)). As in the
// dense route an absent cell is a similarity of 0; the distance of a pair is the float
// 1 - similarity, and a pair is a candidate link when that distance lies in 0..1 (similarities
// above 1, which rounding can give to identical nodes, never link).
//
// Order. Links are taken shortest first; equal distances below 1 in ascending (i, j) order,
// and the pairs at distance 1 (most of them absent cells) in ascending (i, j) order after
// every shorter one. The dense route breaks ties by its Shell sort instead, so the two trees
// can differ only where equal distances compete; the lengths are the same.
//
// Cost: memory O(n) beyond the matrix (no list of the pairs); time O(nnz log n) to grow the
// forest of the links below 1 from each node's column; the pairs at distance 1 are scanned
// row by row only until the tree is complete (one row in practice).

#include <cstdint>
#include <string>
#include <vector>

#include "common/progress.h"
#include "sparse/edge_record.h"
#include "sparse/sparse_matrix_single.h"

namespace sylvora {

struct SparseTree {
  // False when there is no tree: fewer than two nodes, no candidate link, or a cancel.
  bool built = false;
  // Why there is no tree, or which nodes a disconnected network left out; empty otherwise.
  std::string message;
  // The tree's links {distance, i, j}, i < j, in ascending (i, j) order: the order the dense
  // tree matrix lists its edges in.
  std::vector<EdgeRecord> links;
};

SparseTree SparseSpanningTree(const SparseMatrixSingle& similarities,
                              const ProgressCallback& progress = {});

}  // namespace sylvora
