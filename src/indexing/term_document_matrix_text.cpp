// Assigning the documents' text to an index and preprocessing it into tokens. Both run over
// contiguous ranges of documents on the machine's cores; the ranges are joined in document
// order, so the result is that of one pass.

#include <algorithm>
#include <vector>

#include "common/code_points.h"
#include "common/parallel.h"
#include "indexing/character_classes.h"
#include "indexing/porter.h"
#include "indexing/term_document_matrix.h"
#include "indexing/token_list.h"

namespace sylvora {
namespace {

// Fewer documents than this per range are not worth a thread.
constexpr std::size_t kDocumentsPerRange = 4096;

using SecureLinks = std::unordered_set<std::string>;

// A link index keeps links without their scheme; BuildTDM puts the scheme back, so the links
// that were written with "https://" are noted in `secure` (up to the next space).
std::string_view StripLinkSchemes(std::string_view text, std::string& scratch,
                                  SecureLinks& secure) {
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

std::vector<FieldIndex> ExpressedFields(const DocumentSet& documents) {
  std::vector<FieldIndex> fields;
  for (int f = 0; f < documents.FieldCount(); ++f) {
    if (documents.FieldExpressed(static_cast<FieldIndex>(f))) {
      fields.push_back(static_cast<FieldIndex>(f));
    }
  }
  return fields;
}

// Turns the text of one range of documents into tokens: cleaned as Preprocess says, then
// those of fewer than 2 characters dropped and, with `porter`, the Latin-script words
// stemmed. Every step depends on the token alone, so a token met before in the range is
// neither cleaned nor stemmed again: its number (or its refusal) comes from `known_`, keyed by
// the token as the text has it.
class RangeTokeniser {
 public:
  RangeTokeniser(bool tokeniseOnly, bool keepAbbrevs, std::uint8_t minLen,
                 const StopList& stopWords, bool porter, TokenRange& range)
      : tokeniseOnly_(tokeniseOnly),
        keepAbbrevs_(keepAbbrevs),
        minLen_(minLen),
        stopWords_(stopWords),
        porter_(porter),
        range_(range) {}

  void AddDocument(std::string_view text) {
    const auto add = [&](std::string_view token, std::size_t characters) {
      const auto known = known_.find(token);
      const std::int32_t number = known != known_.end() ? known->second : Learn(token, characters);
      if (number >= 0) range_.Add(number);
    };
    if (!tokeniseOnly_) {
      VisitTokens(text, add);
    } else if (porter_) {
      SplitOnSpaces(text, pieces_);
      for (std::size_t i = 0; i < pieces_.Count(); ++i)
        add(pieces_.Token(i), pieces_.Characters(i));
    } else {
      // Whole terms as written (links, names): nothing to clean or stem, so no cache either.
      SplitOnSpaces(text, pieces_);
      for (std::size_t i = 0; i < pieces_.Count(); ++i) {
        if (pieces_.Characters(i) >= 2) range_.Add(range_.Intern(pieces_.Token(i)));
      }
    }
    range_.EndDocument();
  }

 private:
  static constexpr std::int32_t kRefused = -1;

  // Cleans and stems a token met for the first time; its number in the range, or kRefused.
  std::int32_t Learn(std::string_view token, std::size_t characters) {
    single_.Clear();
    single_.Add(token, characters);
    if (!tokeniseOnly_) {
      FoldCase(single_, keepAbbrevs_);
      FilterTokenLength(single_, minLen_);
      RemoveStopWords(single_, stopWords_);
    }
    std::int32_t number = kRefused;
    if (single_.Characters(0) >= 2) {
      const std::string_view cleaned = single_.Token(0);
      if (!porter_ || !IsLatinScriptWord(cleaned)) {
        number = range_.Intern(cleaned);
      } else if (const std::string stem = Porter::Stem(cleaned); !stem.empty()) {
        number = range_.Intern(stem);
      }
    }
    known_.emplace(std::string(token), number);
    return number;
  }

  bool tokeniseOnly_;
  bool keepAbbrevs_;
  std::uint8_t minLen_;
  const StopList& stopWords_;
  bool porter_;
  TokenRange& range_;
  TokenList pieces_, single_;
  StringMap<std::int32_t> known_;  // token as written -> its number, or kRefused
};

}  // namespace

bool TermDocumentMatrix::AssignText(const DocumentSet& documents, DocIndex& numDocs, bool urlIndex,
                                    const ProgressCallback& progress) {
  return AssignText(documents, ExpressedFields(documents), numDocs, urlIndex, false, progress);
}

bool TermDocumentMatrix::AssignText(const DocumentSet& documents,
                                    const std::vector<FieldIndex>& fields, DocIndex& numDocs,
                                    bool urlIndex, bool borrowCells,
                                    const ProgressCallback& progress) {
  if (urlIndex) isURLIndex_ = true;
  numDocs = std::clamp<DocIndex>(numDocs, 0, documents.DocumentCount());
  if (TextAssigned()) return true;

  const auto bounds =
      SplitRange(static_cast<std::size_t>(numDocs), WorkerCount(), kDocumentsPerRange);
  std::vector<DocumentTexts::Part> parts(bounds.size() - 1);
  std::vector<SecureLinks> secure(parts.size());
  SharedProgress shared(progress, "Assigning text", numDocs);
  // Borrowed single cells need no per-document record: such a range reads the cells.
  const bool readCells = borrowCells && fields.size() == 1 && !isURLIndex_;
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    SharedProgress::Counter counter(shared, part);
    if (readCells) {
      parts[part] = DocumentTexts::Part::OfCells(documents, fields[0], begin, end - begin);
      for (std::size_t d = begin; d < end; ++d) {
        if (!counter.Step()) return;
      }
      return;
    }
    const auto cell = [&](std::size_t d, FieldIndex f) {
      return documents.Cell(static_cast<DocIndex>(d), f);
    };
    // A document whose text is one cell as it stands is borrowed when allowed.
    const bool oneCell = fields.size() == 1;
    std::size_t ownBytes = 0;
    if (!borrowCells || !oneCell) {
      for (std::size_t d = begin; d < end; ++d) {
        for (const FieldIndex f : fields) ownBytes += cell(d, f).size() + 1;
      }
    }
    DocumentTexts::Part& texts = parts[part];
    texts.Reserve(end - begin, ownBytes);
    std::string joined, stripped;
    for (std::size_t d = begin; d < end; ++d) {
      std::string_view text;
      if (oneCell) {
        text = TrimSpaces(cell(d, fields[0]));
      } else {
        joined.clear();
        for (const FieldIndex f : fields) {
          joined += ' ';
          joined += cell(d, f);
        }
        text = TrimSpaces(joined);
      }
      bool inCell = oneCell;
      if (isURLIndex_) {
        const std::string_view withoutSchemes = StripLinkSchemes(text, stripped, secure[part]);
        inCell = inCell && withoutSchemes.data() == text.data();
        text = withoutSchemes;
      }
      if (borrowCells && inCell) {
        texts.Borrow(text);
      } else {
        texts.Append(text);
      }
      if (!counter.Step()) return;
    }
  });
  if (shared.Cancelled() || !shared.Report()) {
    // A cancel leaves the index as it was, the link index flag apart.
    return false;
  }

  DocumentTexts texts;
  for (auto& part : parts) texts.Join(std::move(part));
  text_ = std::move(texts);
  for (auto& links : secure) secureLinks_.merge(links);
  tokens_.Clear();
  ClearVocabularyTokens();
  docCount_ = numDocs;
  basePath_ = BasePathOf(documents.FilePath(), basePath_);
  version_ = 0;
  return true;
}

bool TermDocumentMatrix::Preprocess(bool tokeniseOnly, bool keepAbbrevs, std::uint8_t minLen,
                                    const std::string& stopFilePath, bool porter,
                                    const ProgressCallback& progress) {
  const std::size_t count = TextCount();
  if (count == 0) {
    if (porter) isStemmed_ = true;
    return true;
  }
  if (!tokeniseOnly && !stopWords_.Loaded()) stopWords_.Load(stopFilePath, minLen);

  const auto bounds = SplitRange(count, WorkerCount(), kDocumentsPerRange);
  std::vector<TokenRange> ranges(bounds.size() - 1);
  SharedProgress shared(progress, "Pre-processing text", static_cast<std::int64_t>(count));
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    SharedProgress::Counter counter(shared, part);
    RangeTokeniser tokeniser(tokeniseOnly, keepAbbrevs, minLen, stopWords_, porter, ranges[part]);
    const bool assigned = text_.Count() > 0;
    if (assigned) {
      // A token takes at least one byte and the break after it.
      std::size_t mostTokens = 0;
      for (std::size_t d = begin; d < end; ++d) mostTokens += text_.At(d).size() / 2 + 1;
      ranges[part].Reserve(end - begin, mostTokens);
    }
    for (std::size_t d = begin; d < end; ++d) {
      if (assigned) {
        tokeniser.AddDocument(text_.At(d));
      } else {  // preprocessed before: the tokens are joined again
        tokeniser.AddDocument(CurrentText(d));
      }
      if (!counter.Step()) return;
    }
  });
  if (shared.Cancelled() || !shared.Report()) return false;

  DocumentTokens tokens;
  for (auto& range : ranges) tokens.Join(std::move(range));
  tokens_ = std::move(tokens);
  text_.Clear();
  if (porter) isStemmed_ = true;
  ClearVocabularyTokens();
  return true;
}

std::string TermDocumentMatrix::CurrentText(std::size_t doc) const {
  if (text_.Count() > 0) return std::string(text_.At(doc));
  const auto [range, place] = tokens_.Locate(doc);
  return range == nullptr ? std::string() : range->Text(place);
}

std::string TermDocumentMatrix::Text(DocIndex index) const {
  if (index < 1 || static_cast<std::size_t>(index) > TextCount()) return {};
  return CurrentText(static_cast<std::size_t>(index) - 1);
}

std::size_t TermDocumentMatrix::TextCount() const {
  const std::size_t held = text_.Count() > 0 ? text_.Count() : tokens_.DocumentCount();
  return std::min(static_cast<std::size_t>(std::max<DocIndex>(docCount_, 0)), held);
}

void TermDocumentMatrix::ClearVocabularyTokens() {
  std::vector<std::vector<std::int32_t>>().swap(termOf_);
  vocabularyReady_ = false;
}

void TermDocumentMatrix::ReleaseText() {
  text_.Clear();
  tokens_.Clear();
  SecureLinks().swap(secureLinks_);
  ClearVocabularyTokens();
}

}  // namespace sylvora
