#pragma once
// DocumentSet: the corpus held in memory, a rectangular table of texts with one row per
// document and one column per field, plus the field names, a per-field "expressed" flag (the
// fields the word index covers) and nine role properties naming the column that plays each
// part (content, author, date-time...). Every other layer reads the corpus through this class.
//
// Numbering: document rows are 0-based; fields are 0..FieldCount()-1 (at most 256). Reading a
// field past the last one gives the whole document as one text.
//
// Storage: cells are 8-byte references into a CellStore (the decoded file plus an arena), so a
// corpus of a million tweets costs a few large buffers, not a heap string per cell. Cell()
// hands out a view of one; it stays valid until that cell is written again or the set is
// cleared.
//
// Failures: operations return false (or an empty result) and leave the set usable;
// LastError() then holds a one-line reason naming the file, row or value at fault. Nothing
// here throws except std::bad_alloc. Not thread-safe: one owner at a time.
//
// The operations are spread over several source files: document_set.cpp (access),
// document_set_formats.cpp (field layouts), document_set_loading.cpp (reading a corpus file),
// document_set_derived.cpp (derived fields, sorting, subsets), document_set_export.cpp.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/date_time.h"
#include "common/large_allocation.h"
#include "common/notifier.h"
#include "common/numbering.h"
#include "common/progress.h"
#include "corpus/cell_store.h"

namespace sylvora {

// The name of an elapsed-time column counted in `interval` ("Elapsed_Hours" for "h"); "" for an
// unknown unit code.
std::string_view ElapsedFieldName(std::string_view interval);

class ImportedRows;

class DocumentSet {
 public:
  // What Text() gives for a row outside 0..DocumentCount()-1.
  static constexpr std::string_view kIndexErrorText = "Error (Index exceeds upperbound)";

  // How records are cut into fields.
  enum class ParseMode { kMarkers = 0, kColumns = 1 };

  DocumentSet() = default;
  DocumentSet(DocumentSet&&) noexcept = default;
  DocumentSet& operator=(DocumentSet&&) noexcept = default;
  DocumentSet(const DocumentSet&) = delete;
  DocumentSet& operator=(const DocumentSet&) = delete;

  // --- Roles: plain stores of a field index; nothing checks that the field exists. ---
  FieldIndex ContentField() const { return contentField_; }
  void SetContentField(FieldIndex f) { contentField_ = f; }
  FieldIndex AuthorField() const { return authorField_; }
  void SetAuthorField(FieldIndex f) { authorField_ = f; }
  FieldIndex DateTimeField() const { return dateTimeField_; }
  void SetDateTimeField(FieldIndex f) { dateTimeField_ = f; }
  FieldIndex ElapsedTimeField() const { return elapsedTimeField_; }
  void SetElapsedTimeField(FieldIndex f) { elapsedTimeField_ = f; }
  FieldIndex URLField() const { return urlField_; }
  void SetURLField(FieldIndex f) { urlField_ = f; }
  FieldIndex TitleField() const { return titleField_; }
  void SetTitleField(FieldIndex f) { titleField_ = f; }
  FieldIndex CitedField() const { return citedField_; }
  void SetCitedField(FieldIndex f) { citedField_ = f; }
  FieldIndex RefListField() const { return refListField_; }
  void SetRefListField(FieldIndex f) { refListField_ = f; }
  FieldIndex KeyWordField() const { return keyWordField_; }
  void SetKeyWordField(FieldIndex f) { keyWordField_ = f; }

  // --- Counts and names ---
  const std::string& FilePath() const { return sourcePath_; }
  DocIndex DocumentCount() const { return docCount_; }
  // Words counted while loading tagged formats (0 for tab-separated ones).
  std::int64_t WordCount() const { return wordCountTotal_; }
  std::int64_t CharCount() const { return charCountTotal_; }
  // 0..256 (an int, since 256 fields do not fit the 8-bit field index).
  int FieldCount() const { return static_cast<int>(fieldNames_.size()); }
  // "" past the last field.
  std::string FieldName(FieldIndex index) const;
  // Ignored past the last field.
  void SetFieldName(FieldIndex index, std::string_view name);

  // --- Cells ---
  // The cell's text; kIndexErrorText for a row out of range; the whole document (all fields
  // joined with nothing between them) for a field past the last.
  std::string Text(DocIndex doc, FieldIndex field) const;
  // The cell as a view, for hot loops: doc and field must exist (an empty view otherwise).
  std::string_view Cell(DocIndex doc, FieldIndex field) const;
  // Stores the text when the row and field exist; anything else is ignored.
  void SetText(DocIndex doc, FieldIndex field, std::string_view text);

  // --- Expressed flags ---
  bool FieldExpressed(FieldIndex index) const;  // false past the last field
  void SetFieldExpressed(FieldIndex index, bool expressed);
  // One character per field: "1" expressed, "0" not.
  std::string FieldExpressionPattern() const;
  // Field i is expressed exactly when character i+1 of the pattern is "1".
  void SetFieldExpressionPattern(std::string_view pattern);

  // --- Layout of the last InitFieldDefs (read-only, for loaders and tests) ---
  const std::string& RecordDelimiter() const { return recordDelimiter_; }
  ParseMode Mode() const { return parseMode_; }
  bool HasHeaderRow() const { return hasHeaderRow_; }
  // Lines of the last loaded file that were not valid UTF-8 and had their stray bytes read
  // as Windows-1252 (0 for a UTF-8 or UTF-16 file).
  std::int64_t RepairedLineCount() const { return repairedLines_; }
  std::string FieldStartMarker(FieldIndex index) const;
  std::string FieldEndMarker(FieldIndex index) const;

  // --- Life cycle ---
  // Empties the table, the field lists and the counts; keeps the roles, flags-related modes,
  // the header flag and the source path.
  void Clear();
  // Deletes row `index`; later rows move up. False (set unchanged) when out of range.
  bool RemoveDocument(DocIndex index);
  // Installs a table built elsewhere (rows of cells) with the field names of format `dType`.
  void SetDocuments(const std::vector<std::vector<std::string>>& documents, int dType,
                    DocIndex rows);

  // Sets the field layout of a format code 0..11 (code 1 reads `filePath`, a definition file;
  // code 0 uses `delimiter` as the record separator). Every field ends up expressed. Returns
  // false (with LastError) only when a definition file cannot be read.
  bool InitFieldDefs(int fromType, std::string_view delimiter, const std::string& filePath);

  // Reads a corpus file into an empty set. With `saveValidDocs` the kept records are written
  // to "<name>_N<count>.txt" beside the file and `filePath` takes that name. False, with
  // LastError, when the set already holds documents, the file cannot be read, is binary, holds
  // fewer than two usable records, or the progress callback cancels.
  bool LoadDocuments(std::string& filePath, int dType, std::string_view delimiter, int minDocLen,
                     int maxCount, bool saveValidDocs, const ProgressCallback& progress = {});

  // Installs the rows an importer built (JSON or named-column CSV, corpus_import.h) into an
  // empty set, in the field layout of format 8 ("Twitter1.1"), as LoadDocuments would leave a
  // tab-separated file of that format; `sourcePath` becomes FilePath(). False, with LastError,
  // when the set already holds documents or `rows` holds none.
  bool InstallTable(ImportedRows&& rows, const std::string& sourcePath);

  // --- Derived fields (each appends one field at the end, expressed) ---
  // Rewrites a date column as "DD/MM/YY HH:MM:SS"; formatName is "Twitter" or "Twitter1.1".
  // The two-digit year is only the cell's text: each document's full date-time, as the file
  // gave it, is kept (DocumentDateTime), so a corpus from 1950 or 2070 stays where it is.
  void ConvertTwitterDateTimeField(std::string_view formatName, FieldIndex fldNum);
  // Appends the elapsed time since the earliest document in `interval` units ("s", "n", "h",
  // "d", "ww"), from each document's full date-time. A row whose date cannot be read gets an
  // empty cell and is listed in UndatedRows(). False, with nothing appended, when no row has
  // a date, `fromDate` is no date, the unit is unknown, or a value leaves the signed 32-bit
  // range. Sets DateTimeField.
  bool DeriveElapsedTimeField(FieldIndex dateField, std::string_view interval,
                              std::string_view fromDate, bool zeroStart,
                              const ProgressCallback& progress = {});

  // The full date-time of a document: the one kept from the file when its date column was
  // converted, else the DateTimeField cell read as a date; nullopt when there is none.
  std::optional<DateTime> DocumentDateTime(DocIndex doc) const;
  // The rows (0-based, as they stood then) whose date the last DeriveElapsedTimeField could
  // not read, with the date text as the file gave it and, for a tab-separated file loaded
  // and not yet reordered, the row's line in the file (0 when not known).
  struct UndatedRow {
    DocIndex row;
    std::string text;
    std::int64_t line = 0;
  };
  const std::vector<UndatedRow>& UndatedRows() const { return undatedRows_; }
  // Deletes the given rows (0-based, ascending); later rows move up. O(rows x fields).
  void RemoveDocuments(const std::vector<DocIndex>& rows);
  // Moves "http://" and "https://" links out of the source text; the first long enough goes to a
  // new field (existingURLField == 0) or to that existing field. False when that field does not
  // exist.
  bool DeriveLinksField(FieldIndex sourceField, std::string_view fieldName,
                        FieldIndex existingURLField, const ProgressCallback& progress = {});
  bool DeriveTwitterHashField(FieldIndex sourceField, std::string_view fieldName,
                              const ProgressCallback& progress = {});
  bool DeriveTwitterMentionField(FieldIndex sourceField, std::string_view fieldName,
                                 const ProgressCallback& progress = {});

  // Orders the rows by the whole number in `sortKey`. A run in the opposite order is reversed
  // without a word; any other run gets the sort notice through the notifier and a stable sort
  // (equal keys keep their order). O(N log N).
  void SortByInt(FieldIndex sortKey, bool descending, Notifier& notifier = DefaultNotifier());

  // A new set with the same layout and roles holding the documents whose `field` text contains
  // `matchStr` (case-sensitive), in order.
  DocumentSet SelectSubSetByString(FieldIndex field, std::string_view matchStr) const;

  // --- Export (UTF-8, CR LF line ends) ---
  bool ExportTSV(const std::string& fileName, bool colHeaders) const;
  bool ExportRIS(const std::string& fileName) const;

  // The reason of the last failure.
  const std::string& LastError() const { return lastError_; }

 private:
  struct FieldLayout;
  void ApplyLayout(const FieldLayout& layout);
  bool ReadDefinitionFile(const std::string& path);
  // The file's text as UTF-8 without carriage returns, kept in the store; an empty view with
  // LastError() set for a binary file.
  std::string_view DecodeAndStore(const std::string& filePath, ByteBuffer&& bytes);
  FieldIndex AppendField(std::string_view name);
  void AppendFieldFromStrings(std::string_view name, const std::vector<std::string>& cells);
  void ResetTable(int fieldCount, DocIndex rows);
  void ApplyRowOrder(const std::vector<DocIndex>& order);
  bool DeriveTagField(FieldIndex sourceField, std::string_view fieldName, char sigil,
                      std::string_view marker, std::string_view finalMarker, bool unescape,
                      const ProgressCallback& progress);
  bool Fail(std::string message) const;

  // Column-major: columns_[field][row]. Adding a field appends a column; sorting permutes.
  using Column = CellColumn;
  std::vector<Column> columns_;
  CellStore store_;

  std::vector<std::string> fieldNames_;
  std::vector<bool> fieldExpressed_;
  std::vector<std::string> startMarkers_;
  std::vector<std::string> endMarkers_;

  DocIndex docCount_ = 0;
  std::int64_t wordCountTotal_ = 0;
  std::int64_t charCountTotal_ = 0;
  std::string sourcePath_;
  std::string recordDelimiter_;
  ParseMode parseMode_ = ParseMode::kMarkers;
  bool hasHeaderRow_ = false;
  std::int64_t repairedLines_ = 0;

  FieldIndex contentField_ = 0;
  FieldIndex authorField_ = 0;
  FieldIndex dateTimeField_ = 0;
  FieldIndex elapsedTimeField_ = 0;
  FieldIndex urlField_ = 0;
  FieldIndex titleField_ = 0;
  FieldIndex citedField_ = 0;
  FieldIndex refListField_ = 0;
  FieldIndex keyWordField_ = 0;

  // Full date-times kept by ConvertTwitterDateTimeField for column dateTimesField_, one per
  // row (seconds since the epoch, kNoDateTime where the file's text is no date), permuted
  // with the rows; and the file's text of those unreadable cells until the rows move.
  static constexpr std::int64_t kNoDateTime = INT64_MIN;
  std::vector<std::int64_t> dateTimes_;
  FieldIndex dateTimesField_ = 0;
  std::vector<std::pair<DocIndex, std::string>> unreadableDateTexts_;
  std::vector<UndatedRow> undatedRows_;
  // Per row, its 1-based line in a tab-separated file, for messages; dropped when rows move.
  std::vector<std::int64_t> rowLines_;

  mutable std::string lastError_;
};

}  // namespace sylvora
