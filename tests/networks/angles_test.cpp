// ComputeDocAngles and ComputeTermAngles: a hand-checked index, every flag combination, and
// agreement with a pass over every (term, document) weight on random indexes.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"
#include "networks/proximity_matrix.h"

namespace sylvora {
namespace {

constexpr float N = ProximityMatrix::kNoLink;

// Terms alpha 1, beta 2, gamma 3, zulu 4 (numbered by first letter); documents 1..5. Nodes
// use the index's numbers, so node 0 has no weights, and term 4 and document 5 are left out.
TermDocumentMatrix SmallIndex() {
  return testing::SpaceIndex({"alpha beta", "alpha beta beta", "gamma", "alpha gamma", "beta zulu"},
                             999, true);
}

TEST(ComputeTermAngles, HandCheckedCosinesAndNoLinkForTermsThatNeverMeet) {
  const TermDocumentMatrix index = SmallIndex();
  ASSERT_EQ(testing::Terms(index), (std::vector<std::string>{"alpha", "beta", "gamma", "zulu"}));
  ProximityMatrix m;
  m.ComputeTermAngles(index, 0, false, true, false);
  EXPECT_EQ(m.NodeCount(), 4);
  EXPECT_EQ(m.CurrentMatrixType(), 2);
  // alpha: documents 1, 2, 4; beta: 1 once, 2 twice (5 is left out); gamma: 3, 4.
  const auto alphaBeta = static_cast<float>(3.0f / (std::sqrt(3.0) * std::sqrt(5.0)));
  const auto alphaGamma = static_cast<float>(1.0f / (std::sqrt(3.0) * std::sqrt(2.0)));
  EXPECT_EQ(m.Value(1, 2), alphaBeta);
  EXPECT_EQ(m.Value(2, 1), alphaBeta);
  EXPECT_EQ(m.Value(1, 3), alphaGamma);
  EXPECT_EQ(m.Value(2, 3), N);  // beta and gamma never meet
  for (std::int32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(m.Value(i, i), N);
    EXPECT_EQ(m.Value(0, i), N);
  }

  m.ComputeTermAngles(index, 0, false, true, true);
  EXPECT_EQ(m.CurrentMatrixType(), 4);
  EXPECT_EQ(m.Value(1, 2), 1.0f - alphaBeta);
  EXPECT_EQ(m.Value(2, 3), N);

  // Raw dot products, with or without the dissimilarity type.
  for (const bool dissimilarity : {false, true}) {
    m.ComputeTermAngles(index, 0, false, false, dissimilarity);
    EXPECT_EQ(m.CurrentMatrixType(), dissimilarity ? 4 : 2);
    EXPECT_EQ(m.Value(1, 2), 3.0f);
    EXPECT_EQ(m.Value(1, 3), 1.0f);
    EXPECT_EQ(m.Value(2, 3), N);
  }
}

TEST(ComputeDocAngles, HandCheckedCosinesAndZeroForDocumentsWithoutSharedTerms) {
  const TermDocumentMatrix index = SmallIndex();
  ProximityMatrix m;
  m.ComputeDocAngles(index, 0, false, true, false);
  EXPECT_EQ(m.NodeCount(), 5);
  EXPECT_EQ(m.CurrentMatrixType(), 1);
  EXPECT_EQ(m.Value(1, 2), static_cast<float>(3.0f / (std::sqrt(5.0) * std::sqrt(2.0))));
  EXPECT_EQ(m.Value(1, 3), 0.0f);  // nothing shared
  EXPECT_EQ(m.Value(1, 4), 0.5f);
  EXPECT_EQ(m.Value(3, 4), static_cast<float>(1.0f / (std::sqrt(2.0) * 1.0)));
  EXPECT_EQ(m.Value(0, 3), 0.0f);  // node 0 has no weights
  EXPECT_EQ(m.Value(4, 4), N);

  m.ComputeDocAngles(index, 0, false, true, true);
  EXPECT_EQ(m.CurrentMatrixType(), 3);
  EXPECT_EQ(m.Value(1, 3), 1.0f);
  EXPECT_EQ(m.Value(0, 4), 1.0f);
  EXPECT_EQ(m.Value(1, 4), 0.5f);

  m.ComputeDocAngles(index, 0, false, false, true);
  EXPECT_EQ(m.CurrentMatrixType(), 3);
  EXPECT_EQ(m.Value(1, 2), 3.0f);
  EXPECT_EQ(m.Value(1, 3), 0.0f);
}

TEST(ComputeAngles, EmptyIndexGivesAnEmptyMatrixOfTheType) {
  const TermDocumentMatrix index;
  ProximityMatrix m;
  m.ComputeTermAngles(index, 0, false, true, true);
  EXPECT_EQ(m.NodeCount(), 0);
  EXPECT_EQ(m.CurrentMatrixType(), 4);
  m.ComputeDocAngles(index, 0, false, true, false);
  EXPECT_EQ(m.NodeCount(), 0);
  EXPECT_EQ(m.CurrentMatrixType(), 1);
}

// Every pair from every weight, as the sums are stated.
std::vector<float> DirectAngles(const TermDocumentMatrix& index, bool terms, std::int32_t scheme,
                                bool normalise, bool cosine, bool dissimilarity) {
  const std::int32_t n = terms ? index.TermCount() : index.DocCount();
  const std::int32_t other = terms ? index.DocCount() : index.TermCount();
  const auto w = [&](std::int32_t node, std::int32_t k) {
    return static_cast<float>(terms ? index.TermWeight(node, k, scheme, normalise)
                                    : index.TermWeight(k, node, scheme, normalise));
  };
  std::vector<double> magnitude(static_cast<std::size_t>(n), 0.0);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t k = 0; k < other; ++k) {
      magnitude[static_cast<std::size_t>(i)] += static_cast<double>(w(i, k)) * w(i, k);
    }
  }
  std::vector<float> cells(static_cast<std::size_t>(n) * n, N);
  for (std::int32_t i = 0; i < n - 1; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      float dot = 0.0f;
      for (std::int32_t k = 0; k < other; ++k) dot += w(j, k) * w(i, k);
      if (terms && dot <= 0.0f) continue;
      float cell = dot;
      if (cosine) {
        const double denominator = std::sqrt(magnitude[static_cast<std::size_t>(i)]) *
                                   std::sqrt(magnitude[static_cast<std::size_t>(j)]);
        cell = denominator > 0.0 ? static_cast<float>(dot / denominator) : 0.0f;
        if (dissimilarity) cell = 1.0f - cell;
      }
      cells[static_cast<std::size_t>(i * n + j)] = cell;
      cells[static_cast<std::size_t>(j * n + i)] = cell;
    }
  }
  return cells;
}

TEST(ComputeAngles, AgreeWithEveryWeightPairOnRandomIndexes) {
  std::mt19937 random(314);
  const std::vector<std::string> words = {"ant",  "bee",  "cat",   "dog",  "eel",  "fox",  "gnu",
                                          "hen",  "ibis", "jay",   "kiwi", "lark", "mole", "newt",
                                          "orca", "puma", "quail", "rat",  "seal", "toad"};
  for (int round = 0; round < 6; ++round) {
    std::vector<std::string> texts;
    const int documents = 10 + static_cast<int>(random() % 30);
    for (int d = 0; d < documents; ++d) {
      std::string text;
      const int tokens = static_cast<int>(random() % 7);
      for (int t = 0; t < tokens; ++t) {
        // Skewed: the first words are common.
        const auto word = std::min(random() % words.size(), random() % words.size());
        text += words[word] + " ";
      }
      texts.push_back(text);
    }
    const TermDocumentMatrix index = testing::SpaceIndex(texts, 999, true);
    for (const std::int32_t scheme : {0, 1, 2}) {
      for (const bool normalise : {false, true}) {
        for (const bool cosine : {false, true}) {
          const bool dissimilarity = (round + scheme) % 2 == 0;
          ProximityMatrix m;
          m.ComputeTermAngles(index, scheme, normalise, cosine, dissimilarity);
          ASSERT_EQ(std::vector<float>(m.Values().begin(), m.Values().end()),
                    DirectAngles(index, true, scheme, normalise, cosine, dissimilarity))
              << "terms, round " << round << " scheme " << scheme;
          m.ComputeDocAngles(index, scheme, normalise, cosine, dissimilarity);
          ASSERT_EQ(std::vector<float>(m.Values().begin(), m.Values().end()),
                    DirectAngles(index, false, scheme, normalise, cosine, dissimilarity))
              << "documents, round " << round << " scheme " << scheme;
        }
      }
    }
  }
}

}  // namespace
}  // namespace sylvora
