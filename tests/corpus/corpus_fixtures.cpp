#include "corpus/corpus_fixtures.h"

namespace sylvora::testing {

DocumentSet MakeSet(const std::vector<std::vector<std::string>>& rows, int dType) {
  DocumentSet set;
  set.SetDocuments(rows, dType, static_cast<DocIndex>(rows.size()));
  return set;
}

std::vector<std::string> Column(const DocumentSet& set, FieldIndex field) {
  std::vector<std::string> cells;
  for (DocIndex d = 0; d < set.DocumentCount(); ++d) cells.push_back(set.Text(d, field));
  return cells;
}

std::string Tsv(const std::vector<std::string>& cells) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += '\t';
    line += cells[i];
  }
  return line;
}

}  // namespace sylvora::testing
