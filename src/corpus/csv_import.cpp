#include "corpus/csv_import.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "common/text_decoding.h"
#include "corpus/import_dates.h"

namespace sylvora {
namespace {

constexpr std::size_t kSkippedSamples = 5;

// The bytes that end a run of plain characters: in an unquoted cell the separator, the line
// ends and the tab (written as a space); in a quoted cell the quote, the line ends and the tab.
constexpr std::array<bool, 256> StopTable(char first) {
  std::array<bool, 256> table{};
  for (const char c : {first, '\n', '\r', '\t'}) table[static_cast<unsigned char>(c)] = true;
  return table;
}
constexpr std::array<bool, 256> kPlainStops = StopTable(',');
constexpr std::array<bool, 256> kQuotedStops = StopTable('"');
constexpr std::int64_t kProgressEvery = 8192;

// Header names compared without case, spaces, "_" and ".".
std::string Normalise(std::string_view name) {
  std::string out;
  for (const char c : name) {
    if (c == ' ' || c == '_' || c == '.') continue;
    out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
  }
  return out;
}

constexpr std::array<std::pair<CsvRole, LayoutField>, kCsvRoleCount> kRoleFields = {{
    {CsvRole::kDateTime, LayoutField::kDateTime},
    {CsvRole::kUser, LayoutField::kUserName},
    {CsvRole::kText, LayoutField::kTweet},
    {CsvRole::kLink, LayoutField::kLinkUrl},
    {CsvRole::kPositive, LayoutField::kSentPositive},
    {CsvRole::kNegative, LayoutField::kSentNegative},
    {CsvRole::kId, LayoutField::kTweetId},
    {CsvRole::kRealName, LayoutField::kRealName},
    {CsvRole::kReposts, LayoutField::kRetweeted},
}};

bool WholeNumber(std::string_view text, long long& value) {
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && ec == std::errc() && end == text.data() + text.size();
}

std::string JoinHeader(const std::vector<std::string>& header) {
  std::string text;
  for (const auto& name : header) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "(empty)" : text;
}

std::string RoleDescription(CsvRole role) {
  switch (role) {
    case CsvRole::kDateTime:
      return "date-time";
    case CsvRole::kText:
      return "text";
    default:
      return std::string(CsvRoleName(role));
  }
}

}  // namespace

CsvReader::CsvReader(char* data, std::size_t size) : data_(data), size_(size) {
  if (size_ >= 3 && std::memcmp(data_, "\xEF\xBB\xBF", 3) == 0) pos_ = 3;
}

bool CsvReader::Next(std::vector<std::string_view>& cells) {
  cells.clear();
  error_.clear();
  canContinue_ = false;
  if (pos_ >= size_) return false;
  recordLine_ = line_;
  char* const data = data_;
  while (true) {
    std::size_t p = pos_;
    if (p < size_ && data[p] == '"') {
      // Quoted: unquoted in place, written from the opening quote on.
      const std::int64_t openLine = line_;
      const std::size_t start = p;
      std::size_t w = p;
      ++p;
      bool closed = false;
      while (p < size_) {
        // Move the run of plain characters down to the write position in one go.
        std::size_t run = p;
        while (run < size_ && !kQuotedStops[static_cast<unsigned char>(data[run])]) ++run;
        std::memmove(data + w, data + p, run - p);
        w += run - p;
        p = run;
        if (p >= size_) break;
        const char c = data[p];
        if (c == '"') {
          if (p + 1 < size_ && data[p + 1] == '"') {
            data[w++] = '"';
            p += 2;
            continue;
          }
          ++p;
          closed = true;
          break;
        }
        if (c == '\n' && recordStart_ && p + 1 < size_) {
          const std::size_t next = p + 1;
          const void* end = std::memchr(data + next, '\n', size_ - next);
          const std::size_t stop =
              end == nullptr ? size_
                             : static_cast<std::size_t>(static_cast<const char*>(end) - data);
          std::string_view line(data + next, stop - next);
          if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
          if (recordStart_(line)) {
            error_ = "unbalanced quotes: the quoted field opened on line " +
                     std::to_string(openLine) + " runs into line " + std::to_string(line_ + 1) +
                     ", which reads as a record of its own";
            canContinue_ = true;
            pos_ = next;
            ++line_;
            return false;
          }
        }
        if (c == '\n' || c == '\r' || c == '\t') {
          if (c == '\n') ++line_;
          // A CR LF pair is one line break, hence one space.
          if (c != '\r' || p + 1 >= size_ || data[p + 1] != '\n') data[w++] = ' ';
          ++p;
          continue;
        }
      }
      if (!closed) {
        error_ = "unbalanced quotes: the quoted field opened on line " + std::to_string(openLine) +
                 " is never closed";
        return false;
      }
      // Characters between the closing quote and the separator are kept (lenient).
      while (p < size_ && data[p] != ',' && data[p] != '\n' && data[p] != '\r') {
        data[w++] = data[p] == '\t' ? ' ' : data[p];
        ++p;
      }
      cells.emplace_back(data + start, w - start);
    } else {
      const std::size_t start = p;
      while (p < size_) {
        while (p < size_ && !kPlainStops[static_cast<unsigned char>(data[p])]) ++p;
        if (p >= size_ || data[p] != '\t') break;
        data[p++] = ' ';
      }
      cells.emplace_back(data + start, p - start);
    }
    // At a separator, a line end or the end of the input.
    if (p < size_ && data[p] == ',') {
      pos_ = p + 1;
      continue;
    }
    if (p < size_ && data[p] == '\r') ++p;
    if (p < size_ && data[p] == '\n') {
      ++p;
      ++line_;
    }
    pos_ = p;
    return true;
  }
}

bool DetectCsvHeader(const char* bytes, std::size_t size, ImportDetection& detection) {
  const char* newline = static_cast<const char*>(std::memchr(bytes, '\n', size));
  const std::size_t length = newline != nullptr ? static_cast<std::size_t>(newline - bytes) : size;
  const std::string_view first(bytes, length);
  if (first.find('\t') != std::string_view::npos || first.find(',') == std::string_view::npos) {
    return false;
  }
  // The header may itself hold quoted names; read it from a copy.
  std::string copy(bytes, std::min(size, length + 1));
  CsvReader reader(copy.data(), copy.size());
  std::vector<std::string_view> cells;
  if (!reader.Next(cells) || cells.size() < 2) return false;
  detection.header.assign(cells.begin(), cells.end());
  for (auto& name : detection.header) {
    while (!name.empty() && name.back() == ' ') name.pop_back();
    while (!name.empty() && name.front() == ' ') name.erase(0, 1);
  }
  detection.shape = ImportShape::kNamedCsv;
  detection.container = JsonContainer::kNone;
  return true;
}

bool MapCsvColumns(const std::string& name, const std::vector<std::string>& header,
                   const std::vector<std::pair<std::string, std::string>>& columnMap,
                   std::vector<int>& columns, std::string& error) {
  columns.assign(kCsvRoleCount, -1);
  std::vector<bool> used(header.size(), false);
  for (const auto& [roleName, columnName] : columnMap) {
    const auto role = CsvRoleFromName(roleName);
    if (!role) {
      std::string roles;
      for (int r = 0; r < kCsvRoleCount; ++r) {
        roles +=
            std::string(r == 0 ? "" : ", ") + std::string(CsvRoleName(static_cast<CsvRole>(r)));
      }
      error = "Unknown role \"" + roleName + "\" in the column map (roles: " + roles + ")";
      return false;
    }
    int found = -1;
    for (std::size_t c = 0; c < header.size() && found < 0; ++c) {
      if (header[c] == columnName) found = static_cast<int>(c);
    }
    for (std::size_t c = 0; c < header.size() && found < 0; ++c) {
      if (Normalise(header[c]) == Normalise(columnName)) found = static_cast<int>(c);
    }
    if (found < 0) {
      error = "The column map names \"" + columnName + "\" for the " + RoleDescription(*role) +
              " role, but '" + name + "' has no such column; its header is: " + JoinHeader(header);
      return false;
    }
    columns[static_cast<std::size_t>(*role)] = found;
    used[static_cast<std::size_t>(found)] = true;
  }
  for (int r = 0; r < kCsvRoleCount; ++r) {
    if (columns[static_cast<std::size_t>(r)] >= 0) continue;
    for (const std::string_view alias : CsvRoleAliases(static_cast<CsvRole>(r))) {
      const std::string wanted = Normalise(alias);
      for (std::size_t c = 0; c < header.size(); ++c) {
        if (!used[c] && Normalise(header[c]) == wanted) {
          columns[static_cast<std::size_t>(r)] = static_cast<int>(c);
          used[c] = true;
          break;
        }
      }
      if (columns[static_cast<std::size_t>(r)] >= 0) break;
    }
  }
  for (const CsvRole role : {CsvRole::kDateTime, CsvRole::kText}) {
    if (columns[static_cast<std::size_t>(role)] >= 0) continue;
    std::string aliases;
    for (const std::string_view alias : CsvRoleAliases(role)) {
      aliases += std::string(aliases.empty() ? "" : ", ") + std::string(alias);
    }
    error = "'" + name + "' has no column for the " + RoleDescription(role) + " role (looked for " +
            aliases + "); its header is: " + JoinHeader(header) + ". Map a column to the role \"" +
            std::string(CsvRoleName(role)) + "\"";
    return false;
  }
  return true;
}

bool ImportCsvRecords(const std::string& name, ByteBuffer&& input, const ImportOptions& options,
                      ImportedRows& rows, ImportReport& report, const ProgressCallback& progress) {
  const auto fail = [&report](std::string message) {
    report.error = std::move(message);
    return false;
  };
  // Bytes that are not UTF-8 come from an older tool: in the lines that hold them, they are
  // read as Windows-1252, and the warning says how many lines that was.
  std::size_t size = input.Size();
  if (!IsValidUtf8(std::string_view(input.Data(), size))) {
    std::string decoded(input.Data(), size);
    std::size_t repaired = 0;
    DecodeText(decoded, &repaired);
    if (repaired > 0) {
      report.warnings.push_back(std::to_string(repaired) +
                                (repaired == 1 ? " line had" : " lines had") +
                                " bytes that are not UTF-8; those bytes were read as Windows-1252");
    }
    ByteBuffer copy(decoded.size() + 1);
    std::memcpy(copy.Data(), decoded.data(), decoded.size());
    copy.SetSize(decoded.size());
    input = std::move(copy);
    size = input.Size();
  }
  char* data = rows.AdoptInput(std::move(input));
  CsvReader reader(data, size);
  std::vector<std::string_view> cells;
  if (!reader.Next(cells)) {
    return fail("'" + name + "' line 1: " +
                (reader.Error().empty() ? std::string("no header row") : reader.Error()));
  }
  const std::vector<std::string> header(cells.begin(), cells.end());
  std::vector<std::string> trimmed = header;
  for (auto& column : trimmed) {
    while (!column.empty() && column.back() == ' ') column.pop_back();
    while (!column.empty() && column.front() == ' ') column.erase(0, 1);
  }
  std::vector<int>& columns = report.csvColumns;
  std::string error;
  if (!MapCsvColumns(name, trimmed, options.columnMap, columns, error)) return fail(error);

  const auto bad = [&](const std::string& message) {
    if (!options.skipBad) return fail(message);
    ++report.skipped;
    if (report.skippedSamples.size() < kSkippedSamples) report.skippedSamples.push_back(message);
    return true;
  };
  // A line that splits at its commas into a full record with a date where the date column
  // is starts a record: a quoted cell does not run across it.
  const int dateColumn = columns[static_cast<std::size_t>(CsvRole::kDateTime)];
  reader.SetRecordStartTest([&header, dateColumn](std::string_view line) {
    std::size_t cells = 1;
    std::string_view date;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= line.size(); ++i) {
      if (i < line.size() && line[i] != ',') continue;
      if (static_cast<int>(cells) - 1 == dateColumn) date = line.substr(start, i - start);
      if (i < line.size()) ++cells;
      start = i + 1;
    }
    while (!date.empty() && (date.front() == ' ' || date.front() == '"')) date.remove_prefix(1);
    while (!date.empty() && (date.back() == ' ' || date.back() == '"')) date.remove_suffix(1);
    return cells >= header.size() && !date.empty() && ParseAnyInstant(date).has_value();
  });
  std::array<std::string_view, kLayoutFieldCount> row{};
  std::string date;
  std::int64_t records = 0;
  while (options.maxCount <= 0 || rows.RowCount() < options.maxCount) {
    if (!reader.Next(cells)) {
      if (reader.CanContinue()) {
        if (!bad("'" + name + "' line " + std::to_string(reader.Line()) + ": " + reader.Error())) {
          return false;
        }
        continue;
      }
      if (!reader.Error().empty()) return fail("'" + name + "': " + reader.Error());
      break;
    }
    if (++records % kProgressEvery == 0 && progress &&
        !progress("Reading " + name, static_cast<std::int64_t>(reader.Position()),
                  static_cast<std::int64_t>(size))) {
      return fail("Loading cancelled");
    }
    if (cells.size() == 1 && cells[0].empty()) continue;  // a blank line
    // Only a bad record needs its place in words.
    const auto where = [&] { return "'" + name + "' line " + std::to_string(reader.Line()); };
    if (cells.size() != header.size()) {
      if (!bad(where() + ": " + std::to_string(cells.size()) + " columns where the header has " +
               std::to_string(header.size()))) {
        return false;
      }
      continue;
    }
    row.fill({});
    std::array<int, kCsvRoleCount> placed{};
    std::size_t placedCount = 0;
    for (const auto& [role, field] : kRoleFields) {
      const int column = columns[static_cast<std::size_t>(role)];
      if (column < 0) continue;
      const std::string_view cell = cells[static_cast<std::size_t>(column)];
      // A column mapped to two roles: the second cell gets bytes of its own.
      const bool again = std::find(placed.begin(), placed.begin() + placedCount, column) !=
                         placed.begin() + placedCount;
      row[static_cast<std::size_t>(field)] = again ? rows.Store(cell) : cell;
      placed[placedCount++] = column;
    }
    const std::string_view dateText = row[static_cast<std::size_t>(LayoutField::kDateTime)];
    const std::string_view text = row[static_cast<std::size_t>(LayoutField::kTweet)];
    const auto instant = ParseAnyInstant(dateText);
    if (dateText.empty() || text.empty() || !instant) {
      const std::string dateColumn = header[static_cast<std::size_t>(columns[0])];
      const std::string textColumn =
          header[static_cast<std::size_t>(columns[static_cast<std::size_t>(CsvRole::kText)])];
      const std::string reason =
          dateText.empty() ? "no date (column \"" + dateColumn + "\" is empty)"
          : text.empty()   ? "no text (column \"" + textColumn + "\" is empty)"
                           : "the date \"" + std::string(dateText) +
                               "\" is in no layout known (ISO 8601, \"Www Mmm DD HH:MM:SS "
                               "+ZZZZ YYYY\", seconds since 1970, DD/MM/YYYY HH:MM:SS)";
      if (!bad(where() + ": " + reason)) return false;
      continue;
    }
    date.clear();
    AppendTwitterDateTime(*instant, date);
    row[static_cast<std::size_t>(LayoutField::kDateTime)] = rows.Store(date);
    long long positive = 0, negative = 0;
    if (WholeNumber(row[static_cast<std::size_t>(LayoutField::kSentPositive)], positive) &&
        WholeNumber(row[static_cast<std::size_t>(LayoutField::kSentNegative)], negative)) {
      char net[24];
      const auto [end, ec] = std::to_chars(net, net + sizeof net, positive + negative);
      row[static_cast<std::size_t>(LayoutField::kNetSent)] =
          rows.Store(std::string_view(net, static_cast<std::size_t>(end - net)));
    }
    rows.AddViews(row);
  }
  return true;
}

}  // namespace sylvora
