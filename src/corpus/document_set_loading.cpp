// Reading a corpus file: records, header row, fields by markers or by columns.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "common/code_points.h"
#include "common/date_time.h"
#include "common/file_io.h"
#include "common/leading_number.h"
#include "common/parallel.h"
#include "common/text_decoding.h"
#include "corpus/document_set.h"
#include "corpus/imported_rows.h"
#include "corpus/row_ranges.h"

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
  const char* data = record.data();
  const std::size_t size = record.size();
  std::size_t start = 0;
  std::size_t i = 0;
  const auto cut = [&](std::size_t tab) {
    columns.emplace_back(data + start, tab - start);
    start = tab + 1;
  };
  if constexpr (std::endian::native == std::endian::little) {
    // Most columns are short: eight bytes at a time beats a library search per column. A tab
    // byte becomes a zero byte, and zero bytes get their bit 7 set (exactly: no carry crosses
    // a byte); the lowest set bit is the first tab in memory.
    constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7FULL;
    constexpr std::uint64_t kTabs = 0x0909090909090909ULL;
    for (; i + 8 <= size; i += 8) {
      std::uint64_t word;
      std::memcpy(&word, data + i, sizeof word);
      const std::uint64_t x = word ^ kTabs;
      for (std::uint64_t tabs = ~(((x & kLow7) + kLow7) | x | kLow7); tabs != 0; tabs &= tabs - 1) {
        cut(i + static_cast<std::size_t>(std::countr_zero(tabs) / 8));
      }
    }
  }
  for (; i < size; ++i) {
    if (data[i] == '\t') cut(i);
  }
  columns.emplace_back(data + start, size - start);
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

// A file's text is handled by ranges on the cores; a range of less than this is not worth a
// thread.
constexpr std::size_t kMinBytesPerRange = std::size_t{64} << 10;

std::vector<std::size_t> TextRanges(std::string_view text) {
  return LineRangeBounds(text, WorkerCount(), kMinBytesPerRange);
}

// What one look at every byte of a file tells: NUL bytes, whether it is valid UTF-8 and
// whether it holds carriage returns. Ranges cut at line feeds keep each UTF-8 sequence whole,
// so the text is valid exactly when every range is.
struct TextScan {
  bool nul = false;
  bool valid = true;
  bool carriageReturns = false;
};

TextScan ScanText(std::string_view text) {
  const std::vector<std::size_t> bounds = TextRanges(text);
  std::vector<TextScan> parts(bounds.size() - 1);
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    const std::string_view range = text.substr(begin, end - begin);
    if (range.empty()) return;  // memchr must not see the null pointer of an empty text
    parts[part].nul = std::memchr(range.data(), '\0', range.size()) != nullptr;
    parts[part].carriageReturns = std::memchr(range.data(), '\r', range.size()) != nullptr;
    parts[part].valid = parts[part].nul || IsValidUtf8(range);
  });
  TextScan scan;
  for (const auto& part : parts) {
    scan.nul = scan.nul || part.nul;
    scan.valid = scan.valid && part.valid;
    scan.carriageReturns = scan.carriageReturns || part.carriageReturns;
  }
  return scan;
}

// Squeezes the carriage returns out of [begin, end) and returns the new end. Each range closes
// up on its own; the ranges then move down behind each other.
char* RemoveCarriageReturns(char* begin, char* end) {
  const std::vector<std::size_t> bounds =
      TextRanges(std::string_view(begin, static_cast<std::size_t>(end - begin)));
  std::vector<char*> ends(bounds.size() - 1);
  RunRanges(bounds, [&](std::size_t part, std::size_t from, std::size_t to) {
    ends[part] = std::remove(begin + from, begin + to, '\r');
  });
  char* out = begin;
  for (std::size_t part = 0; part < ends.size(); ++part) {
    char* const from = begin + bounds[part];
    const auto length = static_cast<std::size_t>(ends[part] - from);
    if (out != from && length > 0) std::memmove(out, from, length);
    out += length;
  }
  return out;
}

// The records of one range of a column file, with what their length (in characters at two
// bytes each) makes of them.
struct RecordRange {
  static constexpr std::uint8_t kCounted = 1;  // longer than the minimum document length
  static constexpr std::uint8_t kParsed = 2;   // counted and longer than kMinParsedBytes
  std::vector<std::string_view> records;
  std::vector<std::uint8_t> kinds;
  std::size_t first = 0;  // the file's record number of records[0]
  std::int64_t counted = 0;
  std::int64_t parsed = 0;

  // The kind of a record of this range, counted in.
  std::uint8_t Measure(std::string_view record, int minDocLen) {
    const std::int64_t bytes = BytesAtTwoPerCharacter(record);
    if (bytes <= minDocLen) return 0;
    ++counted;
    if (bytes <= kMinParsedBytes) return kCounted;
    ++parsed;
    return kCounted | kParsed;
  }
};

// Cuts the text at line feeds (as SplitRecords does) by ranges on the cores and measures
// each record once.
std::vector<RecordRange> SplitRecordRanges(std::string_view text, int minDocLen) {
  const std::vector<std::size_t> bounds = TextRanges(text);
  std::vector<RecordRange> ranges(bounds.size() - 1);
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    RecordRange& range = ranges[part];
    range.records.reserve((end - begin) / 128 + 1);
    range.kinds.reserve((end - begin) / 128 + 1);
    const auto add = [&](const char* from, const char* to) {
      const std::string_view record(from, static_cast<std::size_t>(to - from));
      range.records.push_back(record);
      range.kinds.push_back(range.Measure(record, minDocLen));
    };
    const char* p = text.data() + begin;
    const char* const stop = text.data() + end;
    // An empty text may have no storage at all: memchr must not see its null pointer.
    while (p != stop) {
      const void* hit = std::memchr(p, '\n', static_cast<std::size_t>(stop - p));
      if (hit == nullptr) break;
      add(p, static_cast<const char*>(hit));
      p = static_cast<const char*>(hit) + 1;
    }
    // Only the last range ends without a line feed: what follows the last one is a record.
    if (part + 2 == bounds.size()) add(p, stop);
  });
  for (std::size_t part = 1; part < ranges.size(); ++part) {
    ranges[part].first = ranges[part - 1].first + ranges[part - 1].records.size();
  }
  return ranges;
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
  const TextScan scan = utf16 ? TextScan() : ScanText(raw);
  if (scan.nul) {
    Fail("'" + filePath + "' is not a text file: it holds NUL bytes");
    return {};
  }
  if (utf16 || !scan.valid) {
    std::string decoded(raw);
    std::size_t repaired = 0;
    DecodeText(decoded, &repaired);
    repairedLines_ = static_cast<std::int64_t>(repaired);
    std::erase(decoded, '\r');
    return store_.Adopt(decoded);
  }
  // Valid UTF-8 is used where it lies: the BOM is skipped, carriage returns squeezed out.
  char* begin = bytes.Data() + (raw.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  char* end = bytes.Data() + bytes.Size();
  if (scan.carriageReturns) end = RemoveCarriageReturns(begin, end);
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
  const bool columnMode = parseMode_ == ParseMode::kColumns;
  // Column files, always cut at line feeds, are split and parsed by ranges on the cores; the
  // tagged formats, with their own record delimiters, take one pass.
  std::vector<RecordRange> ranges;
  if (columnMode) {
    ranges = SplitRecordRanges(body, minDocLen);
  } else {
    RecordRange& all = ranges.emplace_back();
    all.records = SplitRecords(body, recordDelimiter_);
    all.kinds.reserve(all.records.size());
    for (const auto record : all.records) all.kinds.push_back(all.Measure(record, minDocLen));
  }
  const std::string_view firstRecord = ranges[0].records[0];

  if (dType == kTwitterFormat && firstRecord.find("\tTweet") != std::string_view::npos) {
    hasHeaderRow_ = true;
  }
  // A sixteen-column export may open with its column names too: a first line that names the
  // tweet column and holds no date in the first is skipped, keeping the format's names.
  bool keepFieldNames = false;
  if (dType == kTwitter11Format && firstRecord.find("\tTweet") != std::string_view::npos &&
      !DateTime::Parse(firstRecord.substr(0, firstRecord.find('\t')))) {
    hasHeaderRow_ = true;
    keepFieldNames = true;
  }

  // Records of up to minDocLen bytes (at two per character) do not count as documents.
  std::int64_t counted = 0;
  for (const auto& range : ranges) counted += range.counted;
  DocIndex count = static_cast<DocIndex>(std::min<std::int64_t>(counted, INT32_MAX));
  if (count < 2) {
    docCount_ = 0;
    return Fail("'" + filePath + "' holds " + std::to_string(count) + " record" +
                (count == 1 ? "" : "s") + " longer than " + std::to_string(minDocLen / 2) +
                " characters; at least 2 are needed (is the file in the chosen format?)");
  }

  if (hasHeaderRow_ && columnMode) --count;
  if (maxCount > 0 && maxCount < count) count = maxCount;

  std::vector<std::string_view> columns;
  if (columnMode) {
    SplitColumns(firstRecord, columns);
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
    // The header row is no document: when it would be parsed, the record after it takes its
    // place, whatever its length.
    if (hasHeaderRow_ && (ranges[0].kinds[0] & RecordRange::kParsed) != 0) {
      ranges[0].kinds[0] &= static_cast<std::uint8_t>(~RecordRange::kParsed);
      --ranges[0].parsed;
      RecordRange& second = ranges[0].records.size() > 1 ? ranges[0] : ranges[1];
      const std::size_t at = 1 - second.first;
      if ((second.kinds[at] & RecordRange::kParsed) == 0) {
        second.kinds[at] |= RecordRange::kParsed;
        ++second.parsed;
      }
    }
  }
  docCount_ = count;
  const std::size_t fieldCount = static_cast<std::size_t>(FieldCount());

  if (columnMode) {
    // The table is sized first, one column per thread, so that each range writes its own rows.
    columns_.assign(FieldCount(), Column());
    RunRanges(SplitRange(columns_.size(), WorkerCount()),
              [&](std::size_t, std::size_t begin, std::size_t end) {
                for (std::size_t f = begin; f < end; ++f) {
                  columns_[f].resize(static_cast<std::size_t>(count));
                }
              });
    rowLines_.assign(static_cast<std::size_t>(count), 0);
    // Range p's documents follow those of the ranges before it.
    std::vector<std::int64_t> firstRows(ranges.size(), 0);
    for (std::size_t part = 1; part < ranges.size(); ++part) {
      firstRows[part] = firstRows[part - 1] + ranges[part - 1].parsed;
    }
    // One range of records per part, each storing joined tweets in an arena of its own.
    std::vector<std::size_t> parts(ranges.size() + 1);
    for (std::size_t part = 0; part < parts.size(); ++part) parts[part] = part;
    SharedProgress shared(progress, "Parsing documents", count, 8192);
    RunRowRanges(parts, store_, [&](std::size_t part, DocIndex, DocIndex, CellStore& arena) {
      const RecordRange& range = ranges[part];
      SharedProgress::Counter counter(shared, part);
      std::vector<std::string_view> cells;
      std::int64_t row = firstRows[part];
      for (std::size_t r = 0; r < range.records.size() && row < docCount_; ++r) {
        if ((range.kinds[r] & RecordRange::kParsed) == 0) continue;
        if (!counter.Step()) return;
        SplitColumns(range.records[r], cells);
        if (dType == kTwitterFormat) {
          DropMarkedColumns(cells);
          const std::size_t joins = ColumnsToJoin(cells, fieldCount);
          if (joins > 0) {
            std::string text(cells[2]);
            for (std::size_t k = 0; k < joins; ++k) text.append(cells[3 + k]);
            const std::string_view joined = arena.Store(text);
            cells.erase(cells.begin() + 3, cells.begin() + 3 + static_cast<std::ptrdiff_t>(joins));
            cells[2] = joined;
          }
        }
        const auto d = static_cast<std::size_t>(row);
        for (std::size_t f = 0; f < fieldCount && f < cells.size(); ++f) {
          columns_[f][d].Assign(cells[f], store_);
        }
        rowLines_[d] = static_cast<std::int64_t>(range.first + r) + 1;
        ++row;
      }
    });
    if (!shared.CatchUp()) {
      Clear();
      return Fail("Loading cancelled");
    }
  } else {
    // Columns grow row by row: reserving instead of sizing spares a pass over the memory.
    columns_.assign(FieldCount(), Column());
    for (auto& column : columns_) column.reserve(static_cast<std::size_t>(count));
    ProgressReporter reporter(progress, "Parsing documents", count, 8192);
    const std::vector<std::string_view>& records = ranges[0].records;
    DocIndex d = -1;
    for (std::size_t r = 0; r < records.size() && d < docCount_ - 1; ++r) {
      // Counted in characters at two bytes each, like the record count above: a record of
      // 9 to 16 characters with multi-byte UTF-8 would otherwise be counted and not parsed.
      if ((ranges[0].kinds[r] & RecordRange::kParsed) == 0) continue;
      const std::string_view record = records[r];
      ++d;
      if (!reporter.Step()) {
        Clear();
        return Fail("Loading cancelled");
      }
      if (fieldCount == 1) {
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
    for (const auto& range : ranges) {
      for (std::size_t r = 0; r < range.records.size(); ++r) {
        if ((range.kinds[r] & RecordRange::kCounted) == 0 || range.records[r].empty()) continue;
        writer.Write(range.records[r]);
        writer.WriteLine(delimiter);
      }
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
