// Reading a corpus file: records, header row, fields by markers or by columns.

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "common/code_points.h"
#include "common/date_time.h"
#include "common/file_io.h"
#include "common/leading_number.h"
#include "common/text_decoding.h"
#include "corpus/document_set.h"
#include "corpus/imported_rows.h"

namespace sylvora {
namespace {

constexpr int kMaxFields = 256;
// Records of up to this many bytes (8 characters at two bytes each) are never parsed.
constexpr std::int64_t kMinParsedBytes = 16;
constexpr int kTwitterFormat = 7;
constexpr int kDefinitionFormat = 1;
constexpr int kTwitter11Format = 8;

std::string_view SkipLines(std::string_view text, std::size_t lines) {
  for (std::size_t i = 0; i < lines && !text.empty(); ++i) {
    const std::size_t end = text.find('\n');
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
  return text;
}

std::int64_t BytesAtTwoPerCharacter(std::string_view text) {
  return 2 * static_cast<std::int64_t>(CodePointCount(text));
}

std::vector<std::string_view> SplitRecords(std::string_view text, std::string_view delimiter) {
  std::vector<std::string_view> records;
  if (delimiter.empty()) {
    records.push_back(text);
    return records;
  }
  if (delimiter.size() == 1) {
    records.reserve(text.size() / 128 + 1);
    const char d = delimiter[0];
    const char* p = text.data();
    const char* end = p + text.size();
    // An empty text may have no storage at all: memchr must not see its null pointer.
    while (p != end) {
      const void* hit = std::memchr(p, d, static_cast<std::size_t>(end - p));
      if (hit == nullptr) break;
      const char* h = static_cast<const char*>(hit);
      records.emplace_back(p, static_cast<std::size_t>(h - p));
      p = h + 1;
    }
    records.emplace_back(p, static_cast<std::size_t>(end - p));
    return records;
  }
  std::size_t pos = 0;
  while (true) {
    const std::size_t hit = text.find(delimiter, pos);
    if (hit == std::string_view::npos) break;
    records.push_back(text.substr(pos, hit - pos));
    pos = hit + delimiter.size();
  }
  records.push_back(text.substr(pos));
  return records;
}

void SplitColumns(std::string_view record, std::vector<std::string_view>& columns) {
  columns.clear();
  std::size_t pos = 0;
  while (true) {
    const std::size_t tab = record.find('\t', pos);
    if (tab == std::string_view::npos) break;
    columns.push_back(record.substr(pos, tab - pos));
    pos = tab + 1;
  }
  columns.push_back(record.substr(pos));
}

std::string_view TrimLeadingSpaces(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

// Format 7's first repair: each examined column loses its leading spaces; a column that is
// then empty, or starts with a character below "-" (code 45), is removed, and the column that
// moves into its place is passed over unexamined. One pass instead of repeated erasing.
void DropMarkedColumns(std::vector<std::string_view>& columns) {
  std::size_t kept = 0;
  std::size_t j = 0;
  while (j < columns.size()) {
    const std::string_view column = TrimLeadingSpaces(columns[j]);
    if (column.empty() || static_cast<unsigned char>(column[0]) < 45) {
      if (j + 1 < columns.size()) columns[kept++] = columns[j + 1];  // not examined
      j += 2;
    } else {
      columns[kept++] = column;
      j += 1;
    }
  }
  columns.resize(kept);
}

// Format 7's second repair: while there are more columns than fields and column 3 holds no
// non-zero leading number, column 3 is joined onto column 2. Returns how many were joined.
std::size_t ColumnsToJoin(const std::vector<std::string_view>& columns, std::size_t fieldCount) {
  std::size_t joins = 0;
  while (columns.size() - joins > fieldCount && 3 + joins < columns.size() &&
         LeadingNumber(columns[3 + joins]) == 0.0) {
    ++joins;
  }
  return joins;
}

// A marker field's text: spaces trimmed, line feeds removed, then each pair of spaces made
// one in a single left-to-right pass.
std::string CleanMarkerText(std::string_view raw) {
  std::string text(TrimSpaces(raw));
  std::erase(text, '\n');
  return ReplaceAll(text, "  ", " ");
}

std::int64_t CountWithoutSpaces(std::string_view text) {
  std::int64_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c != ' ' && (c & 0xC0) != 0x80) ++count;
  }
  return count;
}

// "<folder>/<name before its first '.'>_N<count>.txt"
std::string ValidDocsFileName(const std::string& path, DocIndex count) {
  const std::size_t slash = path.find_last_of('/');
  const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
  const std::size_t dot = path.find('.', nameStart);
  const std::string stem = dot == std::string::npos ? path : path.substr(0, dot);
  return stem + "_N" + std::to_string(count) + ".txt";
}

}  // namespace

std::string_view DocumentSet::DecodeAndStore(const std::string& filePath, ByteBuffer&& bytes) {
  repairedLines_ = 0;
  std::string_view raw(bytes.Data(), bytes.Size());
  const bool utf16 = raw.starts_with("\xFF\xFE") || raw.starts_with("\xFE\xFF");
  if (!utf16 && std::memchr(raw.data(), '\0', raw.size()) != nullptr) {
    Fail("'" + filePath + "' is not a text file: it holds NUL bytes");
    return {};
  }
  if (utf16 || !IsValidUtf8(raw)) {
    std::string decoded(raw);
    std::size_t repaired = 0;
    DecodeText(decoded, &repaired);
    repairedLines_ = static_cast<std::int64_t>(repaired);
    std::erase(decoded, '\r');
    return store_.Adopt(decoded);
  }
  // Valid UTF-8 is used where it lies: the BOM is skipped, carriage returns squeezed out.
  char* begin = bytes.Data() + (raw.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  char* end = std::remove(begin, bytes.Data() + bytes.Size(), '\r');
  const std::string_view stored = store_.Adopt(std::move(bytes));
  return stored.substr(static_cast<std::size_t>(begin - stored.data()),
                       static_cast<std::size_t>(end - begin));
}

bool DocumentSet::LoadDocuments(std::string& filePath, int dType, std::string_view delimiter,
                                int minDocLen, int maxCount, bool saveValidDocs,
                                const ProgressCallback& progress) {
  lastError_.clear();
  if (docCount_ > 0) {
    return Fail("The document set already holds " + std::to_string(docCount_) +
                " documents; clear it before loading another file");
  }
  if (!InitFieldDefs(dType, delimiter, filePath)) return false;
  columns_.clear();
  store_.Clear();
  rowLines_.clear();

  std::string error;
  ByteBuffer bytes;
  if (!ReadWholeFile(filePath, bytes, error)) return Fail(error);
  if (progress && !progress("Reading " + filePath, 0, 0)) return Fail("Loading cancelled");
  const std::string_view text = DecodeAndStore(filePath, std::move(bytes));
  if (text.data() == nullptr && !lastError_.empty()) return false;

  std::string_view body = text;
  if (dType == kDefinitionFormat) {
    // Format 1 reads its field definitions from the head of the file it loads: a count line
    // and one "start,end,name" line per field. Those lines are no records.
    if (FieldCount() == 0) {
      return Fail("'" + filePath +
                  "' defines no fields: a format-1 file opens with the number of fields and "
                  "one \"start marker\",\"end marker\",\"name\" line per field");
    }
    body = SkipLines(body, static_cast<std::size_t>(FieldCount()) + 1);
  }
  std::vector<std::string_view> records = SplitRecords(body, recordDelimiter_);

  if (dType == kTwitterFormat && records[0].find("\tTweet") != std::string_view::npos) {
    hasHeaderRow_ = true;
  }
  // A sixteen-column export may open with its column names too: a first line that names the
  // tweet column and holds no date in the first is skipped, keeping the format's names.
  bool keepFieldNames = false;
  if (dType == kTwitter11Format && records[0].find("\tTweet") != std::string_view::npos &&
      !DateTime::Parse(records[0].substr(0, records[0].find('\t')))) {
    hasHeaderRow_ = true;
    keepFieldNames = true;
  }

  DocIndex count = 0;
  for (auto& record : records) {
    if (BytesAtTwoPerCharacter(record) <= minDocLen) {
      record = {};
    } else if (count < INT32_MAX) {
      ++count;
    }
  }
  if (count < 2) {
    docCount_ = 0;
    return Fail("'" + filePath + "' holds " + std::to_string(count) + " record" +
                (count == 1 ? "" : "s") + " longer than " + std::to_string(minDocLen / 2) +
                " characters; at least 2 are needed (is the file in the chosen format?)");
  }

  const bool columnMode = parseMode_ == ParseMode::kColumns;
  if (hasHeaderRow_ && columnMode) --count;
  if (maxCount > 0 && maxCount < count) count = maxCount;

  std::vector<std::string_view> columns;
  if (columnMode) {
    SplitColumns(records[0], columns);
    if (static_cast<int>(columns.size()) != FieldCount() && hasHeaderRow_ && !keepFieldNames) {
      std::size_t copied = 0;
      while (copied < columns.size() && !columns[copied].empty()) ++copied;
      if (copied > kMaxFields) {
        return Fail("The header row of '" + filePath + "' names " + std::to_string(copied) +
                    " columns; at most 256 fields are supported");
      }
      fieldNames_.assign(columns.begin(), columns.begin() + static_cast<std::ptrdiff_t>(copied));
      fieldExpressed_.assign(copied, false);
    }
  }

  // Columns grow row by row: reserving instead of sizing spares a pass over the memory.
  columns_.assign(FieldCount(), Column());
  for (auto& column : columns_) column.reserve(static_cast<std::size_t>(count));
  docCount_ = count;
  const auto fillRow = [&](std::size_t given, auto cellOf) {
    for (std::size_t f = 0; f < columns_.size(); ++f) {
      columns_[f].emplace_back(f < given ? cellOf(f) : std::string_view(), store_);
    }
  };

  ProgressReporter reporter(progress, "Parsing documents", count, 8192);
  const std::size_t fieldCount = static_cast<std::size_t>(FieldCount());
  DocIndex d = -1;
  for (std::size_t r = 0; r < records.size() && d < docCount_ - 1; ++r) {
    // Counted in characters at two bytes each, like the record count above: a record of
    // 9 to 16 characters with multi-byte UTF-8 would otherwise be counted and not parsed.
    if (BytesAtTwoPerCharacter(records[r]) <= kMinParsedBytes) continue;
    if (columnMode && hasHeaderRow_ && r == 0) {
      r = 1;  // the header is no document: record 1 takes its place
      if (r >= records.size()) break;
    }
    const std::string_view record = records[r];
    ++d;
    if (!reporter.Step()) {
      Clear();
      return Fail("Loading cancelled");
    }
    if (columnMode) {
      SplitColumns(record, columns);
      std::string_view joined;
      if (dType == kTwitterFormat) {
        DropMarkedColumns(columns);
        const std::size_t joins = ColumnsToJoin(columns, fieldCount);
        if (joins > 0) {
          std::string text(columns[2]);
          for (std::size_t k = 0; k < joins; ++k) text.append(columns[3 + k]);
          joined = store_.Store(text);
          columns.erase(columns.begin() + 3,
                        columns.begin() + 3 + static_cast<std::ptrdiff_t>(joins));
          columns[2] = joined;
        }
      }
      fillRow(columns.size(), [&](std::size_t f) { return columns[f]; });
      rowLines_.push_back(static_cast<std::int64_t>(r) + 1);
    } else if (fieldCount == 1) {
      columns_[0].emplace_back(store_.Store(TrimSpaces(record)), store_);
      charCountTotal_ += static_cast<std::int64_t>(CodePointCount(record));
      wordCountTotal_ +=
          static_cast<std::int64_t>(CodePointCount(record)) - CountWithoutSpaces(record) + 1;
    } else {
      for (std::size_t f = 0; f < fieldCount; ++f) {
        columns_[f].emplace_back();
        const std::size_t start = record.find(startMarkers_[f]);
        if (start == std::string_view::npos) continue;
        const std::size_t p = start + startMarkers_[f].size();
        const std::size_t end = record.find(endMarkers_[f], p);
        if (end == std::string_view::npos || end <= p) continue;
        const std::string_view raw = record.substr(p, end - p);
        const std::string cell = CleanMarkerText(raw);
        const auto n = static_cast<std::int64_t>(CodePointCount(raw));
        columns_[f].back().Assign(store_.Store(cell), store_);
        charCountTotal_ += n;
        wordCountTotal_ += n - CountWithoutSpaces(cell) + 1;
      }
    }
  }
  // Rows counted but never parsed (records of 8 characters or fewer) stay empty.
  for (auto& column : columns_) column.resize(static_cast<std::size_t>(docCount_));
  if (!columnMode || recordDelimiter_ != "\n") rowLines_.clear();
  rowLines_.resize(static_cast<std::size_t>(docCount_), 0);

  if (saveValidDocs) {
    const std::string savedName = ValidDocsFileName(filePath, docCount_);
    FileWriter writer;
    if (!writer.Open(savedName, error)) {
      Clear();
      return Fail(error);
    }
    for (const auto& record : records) {
      if (record.empty()) continue;
      writer.Write(record);
      writer.WriteLine(delimiter);
    }
    if (!writer.Close(error)) {
      Clear();
      return Fail(error);
    }
    filePath = savedName;
  }
  sourcePath_ = filePath;
  return true;
}

bool DocumentSet::InstallTable(ImportedRows&& rows, const std::string& sourcePath) {
  lastError_.clear();
  if (docCount_ > 0) {
    return Fail("The document set already holds " + std::to_string(docCount_) +
                " documents; clear it before loading another file");
  }
  if (rows.RowCount() == 0) return Fail("'" + sourcePath + "' holds no documents");
  InitFieldDefs(kImportFormat, "\n", sourcePath);
  store_ = std::move(rows.Store());
  columns_.assign(FieldCount(), Column());
  for (std::size_t f = 0; f < columns_.size(); ++f) columns_[f] = std::move(rows.Columns()[f]);
  docCount_ = static_cast<DocIndex>(columns_[0].size());
  sourcePath_ = sourcePath;
  return true;
}

}  // namespace sylvora
