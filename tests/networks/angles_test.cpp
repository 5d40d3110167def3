// ComputeDocAngles and ComputeTermAngles: every flag combination against a pass over every
// (term, document) weight on random indexes.

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
