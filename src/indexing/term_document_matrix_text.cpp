// Assigning the documents' text to an index and preprocessing it into tokens.

#include <algorithm>
#include <vector>

#include "common/code_points.h"
#include "indexing/character_classes.h"
#include "indexing/porter.h"
#include "indexing/term_document_matrix.h"
#include "indexing/token_list.h"

namespace sylvora {
namespace {

// A link index keeps links without their scheme; BuildTDM puts the scheme back, so the links
// that were written with "https://" are noted in `secure` (up to the next space).
std::string_view StripLinkSchemes(std::string_view text, std::string& scratch,
                                  std::unordered_set<std::string>& secure) {
  if (text.find("http") == std::string_view::npos) return text;
  const std::string withoutPlain = ReplaceAll(text, "http://", "");
  constexpr std::string_view kSecure = "https://";
  for (std::size_t at = withoutPlain.find(kSecure); at != std::string::npos;
       at = withoutPlain.find(kSecure, at + 1)) {
    const std::size_t start = at + kSecure.size();
    const std::size_t space = withoutPlain.find(' ', start);
    std::string link =
        withoutPlain.substr(start, space == std::string::npos ? space : space - start);
    secure.insert(ReplaceAll(link, kSecure, ""));
  }
  scratch = ReplaceAll(withoutPlain, kSecure, "");
  return scratch;
}

std::string BasePathOf(const std::string& corpusPath, const std::string& current) {
  const std::size_t dot = corpusPath.find('.');
  if (dot != std::string::npos) return corpusPath.substr(0, dot);
  return current + "/temp";
}

// The text of a document from its tokens: those of at least 2 characters, stemmed with
// `porter` when they are Latin-script words (the stemmer knows English endings only), each
// after a single space, then without the first space.
void JoinTokens(const TokenList& tokens, bool porter, std::string& out) {
  out.clear();
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (tokens.Characters(i) < 2) continue;
    out += ' ';
    if (porter && IsLatinScriptWord(tokens.Token(i))) {
      out += Porter::Stem(tokens.Token(i));
    } else {
      out += tokens.Token(i);
    }
  }
  if (!out.empty()) out.erase(0, 1);
}

}  // namespace

bool TermDocumentMatrix::AssignText(const DocumentSet& documents, DocIndex& numDocs, bool urlIndex,
                                    const ProgressCallback& progress) {
  if (urlIndex) isURLIndex_ = true;
  numDocs = std::clamp<DocIndex>(numDocs, 0, documents.DocumentCount());
  if (TextAssigned()) return true;

  std::vector<FieldIndex> fields;
  for (int f = 0; f < documents.FieldCount(); ++f) {
    if (documents.FieldExpressed(static_cast<FieldIndex>(f))) {
      fields.push_back(static_cast<FieldIndex>(f));
    }
  }
  std::size_t bytes = 0;
  for (DocIndex d = 0; d < numDocs; ++d) {
    for (const FieldIndex f : fields) bytes += documents.Cell(d, f).size() + 1;
  }

  DocumentTexts texts;
  texts.Reserve(static_cast<std::size_t>(numDocs), bytes);
  ProgressReporter reporter(progress, "Assigning text", numDocs);
  std::string joined, stripped;
  for (DocIndex d = 0; d < numDocs; ++d) {
    joined.clear();
    for (const FieldIndex f : fields) {
      joined += ' ';
      joined += documents.Cell(d, f);
    }
    std::string_view text = TrimSpaces(joined);
    if (isURLIndex_) text = StripLinkSchemes(text, stripped, secureLinks_);
    texts.Append(text);
    if (!reporter.Step()) return false;
  }
  reporter.Report();

  text_ = std::move(texts);
  docCount_ = numDocs;
  tokenTerms_.clear();
  tokenStart_.clear();
  basePath_ = BasePathOf(documents.FilePath(), basePath_);
  version_ = 0;
  return true;
}

bool TermDocumentMatrix::Preprocess(bool tokeniseOnly, bool keepAbbrevs, std::uint8_t minLen,
                                    const std::string& stopFilePath, bool porter,
                                    const ProgressCallback& progress) {
  const std::size_t count = text_.Count();
  if (count == 0) {
    if (porter) isStemmed_ = true;
    return true;
  }
  if (!tokeniseOnly && !stopWords_.Loaded()) stopWords_.Load(stopFilePath, minLen);

  DocumentTexts cleaned;
  cleaned.Reserve(count, text_.Bytes());
  ProgressReporter reporter(progress, "Pre-processing text", static_cast<std::int64_t>(count));
  TokenList tokens;
  std::string document;
  for (std::size_t d = 0; d < count; ++d) {
    if (tokeniseOnly) {
      SplitOnSpaces(text_.At(d), tokens);
    } else {
      TokeniseDocument(text_.At(d), tokens);
      FoldCase(tokens, keepAbbrevs);
      FilterTokenLength(tokens, minLen);
      RemoveStopWords(tokens, stopWords_);
    }
    JoinTokens(tokens, porter, document);
    cleaned.Append(document);
    if (!reporter.Step()) return false;
  }
  reporter.Report();

  text_ = std::move(cleaned);
  if (porter) isStemmed_ = true;
  tokenTerms_.clear();
  tokenStart_.clear();
  return true;
}

std::string TermDocumentMatrix::Text(DocIndex index) const {
  if (index < 1 || static_cast<std::size_t>(index) > TextCount()) return {};
  return std::string(text_.At(static_cast<std::size_t>(index) - 1));
}

std::size_t TermDocumentMatrix::TextCount() const {
  return std::min(static_cast<std::size_t>(std::max<DocIndex>(docCount_, 0)), text_.Count());
}

void TermDocumentMatrix::ReleaseText() {
  text_.Clear();
  std::unordered_set<std::string>().swap(secureLinks_);
  std::vector<std::int32_t>().swap(tokenTerms_);
  std::vector<std::size_t>().swap(tokenStart_);
}

}  // namespace sylvora
