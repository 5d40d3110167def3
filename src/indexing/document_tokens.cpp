#include "indexing/document_tokens.h"

#include <algorithm>

namespace sylvora {

std::string TokenRange::Text(std::size_t doc) const {
  std::string text;
  ForEachToken(doc, [&](std::int32_t number) {
    if (!text.empty()) text += ' ';
    text += Distinct(number);
  });
  return text;
}

void TokenRange::Widen() {
  wide_.reserve(std::max(reserved_, narrow_.size() + 1));
  wide_.assign(narrow_.begin(), narrow_.end());
  std::vector<std::uint16_t>().swap(narrow_);
  isWide_ = true;
}

std::pair<const TokenRange*, std::size_t> DocumentTokens::Locate(std::size_t doc) const {
  for (const TokenRange& range : ranges_) {
    if (doc < range.DocumentCount()) return {&range, doc};
    doc -= range.DocumentCount();
  }
  return {nullptr, 0};
}

}  // namespace sylvora
