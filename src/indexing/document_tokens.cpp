#include "indexing/document_tokens.h"

namespace sylvora {

std::string TokenRange::Text(std::size_t doc) const {
  std::string text;
  for (const std::int32_t number : Tokens(doc)) {
    if (!text.empty()) text += ' ';
    text += Distinct(number);
  }
  return text;
}

std::pair<const TokenRange*, std::size_t> DocumentTokens::Locate(std::size_t doc) const {
  for (const TokenRange& range : ranges_) {
    if (doc < range.DocumentCount()) return {&range, doc};
    doc -= range.DocumentCount();
  }
  return {nullptr, 0};
}

}  // namespace sylvora
