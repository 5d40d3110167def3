#pragma once
// A short description of a loaded corpus: its size, its time span, how many documents carry
// links, hashtags and mentions, and the most frequent hashtags and mentions. Read-only; one
// pass over the role columns.

#include <string>
#include <vector>

#include "corpus/document_set.h"

namespace sylvora {

struct TermCount {
  std::string term;
  int count = 0;
};

struct CorpusSummary {
  DocIndex documents = 0;
  // The first and the last document's full date-time as "YYYY-MM-DD HH:MM:SS" (the date-time
  // cell when it holds no date).
  std::string firstDateTime;
  std::string lastDateTime;
  DocIndex withLinks = 0;
  DocIndex withHashtags = 0;
  DocIndex withMentions = 0;
  std::vector<TermCount> topHashtags;
  std::vector<TermCount> topMentions;
};

// The `limit` most frequent space-separated terms of a field over all documents, most
// frequent first; equal counts in order of first appearance.
std::vector<TermCount> TopTerms(const DocumentSet& documents, FieldIndex field, std::size_t limit);

// Reads the link, hashtag and mention columns named by the roles URLField, KeyWordField and
// RefListField, and the date-time column named by DateTimeField.
CorpusSummary SummariseCorpus(const DocumentSet& documents, std::size_t topCount = 10);

}  // namespace sylvora
