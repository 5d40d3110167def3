#pragma once
// TermDocumentMatrix: the index of one kind of term (words, hashtags, links, mentions or
// users) over the documents of a DocumentSet. It takes a private copy of the documents' text,
// cleans it into tokens, builds a vocabulary, counts every term in every document into a
// sparse matrix (rows = terms, columns = documents), keeps the terms whose document frequency
// lies within bounds, and can weight the counts by tf-idf. The session keeps five, one per
// kind of term; the time line, the table lens and the proximity networks read terms,
// frequencies and weights from them.
//
// Building an index, in this order:
//   AssignText -> Preprocess -> BuildVocab -> BuildTDM [-> WeightMatrixValues]
// or AssignText -> LoadTDM to read a matrix from a ".tdm" file. An object is meant to be
// built once; the session makes a new one for every indexing run.
//
// Numbering. Terms are 1-based (1..TermCount()) and so are documents inside an index
// (1..DocCount()): corpus row d is document d + 1, which is column d + 1 of Matrix().
// Terms are numbered by first-letter bucket (bucket 0 for anything that does not start with
// a..z, then a, b, ... z; see FirstLetterBucket) and inside a bucket by first appearance in
// the corpus; after pruning the kept terms close up in the same order. They are not
// alphabetical.
//
// Failures. Read accessors never fail: outside their range Term gives "", DocFreq, GlobalFreq,
// TermFreq and TermWeight give 0, TermIndex gives -1. Three operations raise (all typed errors
// of indexing_errors.h, deriving from sylvora::Error), each leaving the object unchanged:
// Preprocess (StopListError: the stop list is missing, unreadable or too long; no text is
// processed), LoadTDM (TdmVersionError, error number 5000: no such file version, or the index
// already has terms; TdmFileError: a file that is truncated or holds text where numbers
// belong). SaveTDM reports failure through its result and LastError().
//
// Progress. The long operations take an optional ProgressCallback, called every few thousand
// documents; when it answers false the operation stops, returns false and leaves the object as
// it was before the call.
//
// Cost, for D documents, N tokens and T terms: AssignText, Preprocess, BuildVocab and BuildTDM
// are each one pass over the text or its tokens, O(N) with hashing; BuildTDM adds a sort of
// each document's few tokens. Each pass runs over contiguous ranges of documents on the
// machine's cores and joins them in document order (common/parallel.h), so the numbering is
// that of one pass. Preprocess turns the text into token numbers per range (each distinct
// token stored and stemmed once per range), and BuildVocab merges the ranges' distinct tokens
// instead of reading every token again. TermIndex is a linear scan over the T terms (for
// interactive look-ups). TermWeight with Normalise scans one column. SaveTDM writes T x D
// cells.
//
// Ownership and threads: the object owns its text, vocabulary and matrix; it only reads the
// DocumentSet during AssignText (from several threads, which only read it). Const operations
// may run concurrently; anything else needs the object to itself. Copying is disabled (an
// index can be large); moving is cheap.

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "common/numbering.h"
#include "common/progress.h"
#include "corpus/document_set.h"
#include "indexing/document_texts.h"
#include "indexing/document_tokens.h"
#include "indexing/indexing_errors.h"
#include "indexing/stop_list.h"
#include "sparse/sparse_matrix_single.h"

namespace sylvora {

class TermDocumentMatrix {
 public:
  // The one term of a vocabulary built from text without any token; it sits in the "f" bucket.
  static constexpr std::string_view kPlaceholderTerm = "foo";
  // The schemes that a link index puts back in front of its terms: kSecureLinkPrefix for a
  // link that was written with it (at least once), kLinkPrefix for every other.
  static constexpr std::string_view kLinkPrefix = "http://";
  static constexpr std::string_view kSecureLinkPrefix = "https://";
  // The weighting schemes of TermWeight and SaveTDM.
  static constexpr std::int32_t kRawFrequency = 0;
  static constexpr std::int32_t kInverseDocumentFrequency = 1;
  static constexpr std::int32_t kMeanFrequency = 2;

  TermDocumentMatrix() = default;
  TermDocumentMatrix(TermDocumentMatrix&&) noexcept = default;
  TermDocumentMatrix& operator=(TermDocumentMatrix&&) noexcept = default;
  TermDocumentMatrix(const TermDocumentMatrix&) = delete;
  TermDocumentMatrix& operator=(const TermDocumentMatrix&) = delete;

  // ---- Text (term_document_matrix_text.cpp) ----

  // Takes the text of the first `numDocs` documents: per document, the cells of every
  // expressed field joined by single spaces, without leading or trailing spaces. `numDocs` is
  // lowered to documents.DocumentCount() (and raised to 0), and the caller sees the new value.
  // With `urlIndex` the index becomes a link index (IsURLIndex, never cleared) and every
  // "http://", then every "https://", is removed from the text (the links that had
  // "https://" are remembered, so that BuildTDM gives them their scheme back). Text is assigned
  // once per object: a second call only clamps `numDocs` and may set IsURLIndex. BasePath becomes
  // the corpus path up to its first "." (folders included), or gets "/temp" appended when the path
  // has no "."; Version becomes 0. False when cancelled (nothing assigned).
  bool AssignText(const DocumentSet& documents, DocIndex& numDocs, bool urlIndex,
                  const ProgressCallback& progress = {});
  // The same with the fields given instead of the expressed ones, so that several indexes can
  // take their text from one set at the same time without switching its flags. With
  // `borrowCells`, a document whose text is one cell as it stands is not copied: the index
  // keeps a view of the cell, and `documents` must then stay alive and unchanged until
  // Preprocess has run (the indexing workflow runs it right away).
  bool AssignText(const DocumentSet& documents, const std::vector<FieldIndex>& fields,
                  DocIndex& numDocs, bool urlIndex, bool borrowCells,
                  const ProgressCallback& progress = {});

  // Turns every document's text into its index tokens separated by single spaces.
  //  * tokeniseOnly: the text is only split at single spaces (case and punctuation stay);
  //  * otherwise: TokeniseDocument, FoldCase(keepAbbrevs), FilterTokenLength(minLen, 15) and
  //    RemoveStopWords (token_list.h). The stop list is read from `stopFilePath` the first time
  //    it is needed, keeping lines of at least `minLen` characters, and kept for the life of
  //    the object (later paths and lengths are not read).
  // Then tokens of fewer than 2 characters are dropped and, with `porter`, the Latin-script
  // others are stemmed (Porter::Stem), which also makes TermIndex stem a Latin-script
  // argument (IsStemmed).
  // Without text it does nothing but set IsStemmed. Throws StopListError, with no text
  // processed, when the stop list cannot be used. False when cancelled.
  bool Preprocess(bool tokeniseOnly, bool keepAbbrevs, std::uint8_t minLen,
                  const std::string& stopFilePath, bool porter,
                  const ProgressCallback& progress = {});

  // The current text of document `index` (1-based); "" outside 1..DocCount() and once
  // BuildTDM has released the text.
  std::string Text(DocIndex index) const;
  bool TextAssigned() const { return docCount_ >= 1; }
  DocIndex DocCount() const { return docCount_; }
  bool IsURLIndex() const { return isURLIndex_; }
  bool IsStemmed() const { return isStemmed_; }
  // The stop words read by Preprocess (empty until then).
  const StopList& StopWords() const { return stopWords_; }
  std::int32_t StopWordCount() const { return static_cast<std::int32_t>(stopWords_.Count()); }

  // ---- Vocabulary and counts (term_document_matrix_vocabulary.cpp, _counts.cpp) ----

  // Builds the vocabulary from the tokens of the text (split at single spaces; empty tokens
  // are skipped). Each first-letter bucket holds at most `maxCharSlotSz` + 1 terms, taken in
  // order of first appearance (kNoSlotLimit: no limit; below 0: none); a new token that finds
  // its bucket full is dropped and never becomes a term, and DroppedTermCount() says how many
  // distinct tokens were. A text without tokens gives the one term "foo". Only
  // `gramLen` 0 reads the text; any other value yields just "foo". Calling it again starts the
  // vocabulary over and discards counts and weights. False when cancelled.
  bool BuildVocab(std::uint8_t gramLen, std::int32_t maxCharSlotSz,
                  const ProgressCallback& progress = {});
  static constexpr std::int32_t kNoSlotLimit = std::numeric_limits<std::int32_t>::max() - 1;
  // The distinct tokens the last BuildVocab dropped because their bucket was full.
  std::int64_t DroppedTermCount() const { return droppedTermCount_; }

  // Counts every term in every document (DocFreq, GlobalFreq, the matrix columns), then keeps
  // the terms with minDF <= DocFreq <= maxDF (absolute numbers of documents, inclusive); the
  // kept terms close up in order. When no term qualifies nothing is pruned: the whole
  // vocabulary, its counts and the text stay. Otherwise a link index gets its scheme put
  // back in front of every term ("https://" for links seen with it, else "http://") and the
  // text is released. False, with LastError(), when no
  // vocabulary was built from the current text; false when cancelled.
  bool BuildTDM(std::int32_t minDF, std::int32_t maxDF, const ProgressCallback& progress = {});

  std::int32_t TermCount() const { return static_cast<std::int32_t>(terms_.size()); }
  // Term `mIndex`; "" outside 1..TermCount(). The reference stays valid until the vocabulary
  // changes.
  const std::string& Term(std::int32_t mIndex) const;
  // The number of the first term equal to `termStr` (to Porter::Stem(termStr) when the index
  // is stemmed); -1 when none. O(TermCount).
  std::int32_t TermIndex(std::string_view termStr) const;
  // The first term number of first-letter bucket `bucket` (0..26) as BuildVocab numbered
  // them; entry 27 is TermCount + 1 at that time. Not renumbered by pruning. 0 outside 0..27.
  std::int32_t LetterStart(int bucket) const;
  // Number of documents containing term `mIndex`; 0 outside the range.
  std::int32_t DocFreq(std::int32_t mIndex) const;
  // Number of occurrences of term `mIndex` in all documents; 0 outside the range.
  std::int32_t GlobalFreq(std::int32_t mIndex) const;
  // The matrix cell (term, document) rounded to the nearest whole number, halves to even; 0 on
  // any error (a cell out of range or beyond the 16-bit range).
  std::int16_t TermFreq(std::int32_t mIndex, std::int32_t nIndex) const;
  // Rows = terms (RowCount() == TermCount()), columns = documents (ColCount() == DocCount()
  // after BuildTDM). Cells hold counts, or weights once WeightsApplied().
  const SparseMatrixSingle& Matrix() const { return matrix_; }

  // ---- Weights (term_document_matrix.cpp) ----

  // The cell (term, document) weighted by `scheme`:
  //   tf = the cell; with `normalise`, tf / the largest cell of the document (the running
  //   maximum over terms 1..TermCount, each new maximum rounded half to even; a document
  //   without terms gives 0);
  //   then, unless WeightsApplied(), tf times the scheme's factor: 0 -> 1; 1 -> ln(DocCount /
  //   DocFreq); 2 -> GlobalFreq / DocFreq; any other -> 0. A term with DocFreq 0 (as a loaded
  //   file without frequencies leaves it) has factor 0 under schemes 1 and 2.
  // 0 for a term or document out of range.
  double TermWeight(std::int32_t mIndex, std::int32_t nIndex, std::int32_t scheme,
                    bool normalise) const;

  // Scheme 1 rewrites every stored cell v of term t as v * ln(DocCount / DocFreq(t)) (so a
  // term found in every document keeps a stored weight of 0); other schemes change no cell.
  // Either way WeightsApplied() becomes true. False when cancelled (no cell changed).
  bool WeightMatrixValues(std::int32_t scheme, const ProgressCallback& progress = {});
  bool WeightsApplied() const { return weightsApplied_; }

  // ---- File (term_document_matrix_file.cpp) ----

  std::uint8_t Version() const { return version_; }
  void SetVersion(std::uint8_t version) { version_ = version; }
  const std::string& BasePath() const { return basePath_; }
  // BasePath() + "_" + Version() in decimal + ".tdm".
  std::string FilePath() const;

  // Writes FilePath(): a header line "TermCount<TAB>DocCount<TAB>Weight=<scheme><TAB>
  // Normalise=True|False", then, unless `dense`, one line per term: the term and
  // TermWeight(t, d, scheme, normalise) for d = 1..DocCount, tab-separated, in the general
  // number form with "." as decimal point (a zero weight as "0"). Lines end in CR LF. With
  // `newVersion` Version first becomes the lowest of 0..255 whose file does not exist. False,
  // with LastError() and Version unchanged, when all 256 versions exist or the file cannot be
  // written.
  bool SaveTDM(std::int32_t scheme, bool normalise, bool dense, bool newVersion);

  // Reads FilePath() into an index that has no terms: TermCount from the header, DocCount
  // lowered to the header's document count when that is smaller, then per term line the term,
  // its document frequency when `dfField`, and the weights of documents 1..DocCount (extra
  // fields are ignored; weights of 0 or below leave the cell empty). An empty file gives an
  // index of no terms. Neither GlobalFreq nor LetterStart nor the weighting of the header is
  // restored. Throws TdmVersionError (5000) when the index has terms or the file does not
  // exist, and TdmFileError when the file cannot be read, a line or field is missing, or a
  // number field holds anything but a number; in every case the object is unchanged.
  void LoadTDM(bool dfField);

  // The reason of the last failure of BuildTDM or SaveTDM.
  const std::string& LastError() const { return lastError_; }

 private:
  // Documents whose text is present: DocCount, but no more than the text holds.
  std::size_t TextCount() const;
  // The text of document `doc` (0-based): as assigned, or its tokens joined again.
  std::string CurrentText(std::size_t doc) const;
  void ClearVocabularyTokens();
  void ReleaseText();
  // The assigned text split at single spaces, empty pieces left out.
  DocumentTokens SplitAssignedText() const;
  double GlobalFactor(std::int32_t term, std::int32_t scheme) const;
  // TermWeight of a cell value, given the largest frequency of its document (read only with
  // `normalise`).
  double WeightedCell(float cell, std::int32_t term, std::int32_t scheme, bool normalise,
                      std::int32_t documentMaximum) const;
  std::int32_t DocumentMaximum(std::int32_t nIndex) const;

  // Text: as assigned (text_) until Preprocess turns it into tokens (tokens_).
  DocumentTexts text_;  // document d (1-based) at d - 1
  DocumentTokens tokens_;
  DocIndex docCount_ = 0;
  bool isURLIndex_ = false;
  // Link index: the links (without scheme) that were written with "https://".
  std::unordered_set<std::string> secureLinks_;
  bool isStemmed_ = false;
  std::string basePath_;
  std::uint8_t version_ = 0;
  StopList stopWords_;

  // Vocabulary and statistics; term t (1-based) at index t - 1.
  std::vector<std::string> terms_;
  std::int64_t droppedTermCount_ = 0;
  std::array<std::int32_t, 28> letterStart_{};
  std::vector<std::int32_t> docFreq_;
  std::vector<std::int32_t> globalFreq_;
  SparseMatrixSingle matrix_;
  bool weightsApplied_ = false;

  // Per range of tokens_, the term number of each of its distinct tokens as BuildVocab
  // numbered them (0: dropped), so that BuildTDM need not look the tokens up again. Empty when
  // no vocabulary was built from the current tokens.
  std::vector<std::vector<std::int32_t>> termOf_;
  bool vocabularyReady_ = false;

  std::string lastError_;
};

}  // namespace sylvora
