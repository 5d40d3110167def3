#include "session/corpus_summary.h"

#include <algorithm>
#include <unordered_map>

#include "common/code_points.h"

namespace sylvora {
namespace {

DocIndex CountNonBlank(const DocumentSet& documents, FieldIndex field) {
  if (field >= documents.FieldCount()) return 0;
  DocIndex count = 0;
  for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
    count += !TrimSpaces(documents.Cell(d, field)).empty();
  }
  return count;
}

}  // namespace

std::vector<TermCount> TopTerms(const DocumentSet& documents, FieldIndex field, std::size_t limit) {
  std::vector<TermCount> terms;
  if (field >= documents.FieldCount()) return terms;
  std::unordered_map<std::string_view, std::size_t> slot;
  for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
    const std::string_view cell = documents.Cell(d, field);
    std::size_t pos = 0;
    while (pos < cell.size()) {
      const std::size_t end = std::min(cell.find(' ', pos), cell.size());
      const std::string_view term = cell.substr(pos, end - pos);
      pos = end + 1;
      if (term.empty()) continue;
      const auto [it, added] = slot.try_emplace(term, terms.size());
      if (added) terms.push_back({std::string(term), 0});
      ++terms[it->second].count;
    }
  }
  std::stable_sort(terms.begin(), terms.end(),
                   [](const TermCount& a, const TermCount& b) { return a.count > b.count; });
  if (terms.size() > limit) terms.resize(limit);
  return terms;
}

CorpusSummary SummariseCorpus(const DocumentSet& documents, std::size_t topCount) {
  CorpusSummary summary;
  summary.documents = documents.DocumentCount();
  if (summary.documents > 0 && documents.DateTimeField() < documents.FieldCount()) {
    // The full date-time with its four-digit year, ISO-like; the cell where it is no date.
    const auto shown = [&](DocIndex d) {
      const auto date = documents.DocumentDateTime(d);
      return date ? date->Format() : documents.Text(d, documents.DateTimeField());
    };
    summary.firstDateTime = shown(0);
    summary.lastDateTime = shown(summary.documents - 1);
  }
  summary.withLinks = CountNonBlank(documents, documents.URLField());
  summary.withHashtags = CountNonBlank(documents, documents.KeyWordField());
  summary.withMentions = CountNonBlank(documents, documents.RefListField());
  summary.topHashtags = TopTerms(documents, documents.KeyWordField(), topCount);
  summary.topMentions = TopTerms(documents, documents.RefListField(), topCount);
  return summary;
}

}  // namespace sylvora
