// Derived fields (dates, elapsed time, links, hashtags, mentions), sorting and subsets.

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <optional>
#include <string>

#include "common/code_points.h"
#include "common/date_time.h"
#include "common/leading_number.h"
#include "common/parallel.h"
#include "corpus/document_set.h"
#include "corpus/row_ranges.h"

namespace sylvora {
namespace {

constexpr int kMaxFields = 256;

// Three-letter English month name to its two-digit number; "" for anything else.
std::string_view MonthNumber(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kMonths = {
      {{"Jan", "01"},
       {"Feb", "02"},
       {"Mar", "03"},
       {"Apr", "04"},
       {"May", "05"},
       {"Jun", "06"},
       {"Jul", "07"},
       {"Aug", "08"},
       {"Sep", "09"},
       {"Oct", "10"},
       {"Nov", "11"},
       {"Dec", "12"}}};
  for (const auto& [month, number] : kMonths) {
    if (month == name) return number;
  }
  return {};
}

// Characters of a date cell as MidCharacters counts them; in the usual all-ASCII cell a
// character is a byte, which spares counting from the start for each piece.
class DateCell {
 public:
  explicit DateCell(std::string_view cell)
      : cell_(cell), ascii_(std::all_of(cell.begin(), cell.end(), [](char c) {
          return static_cast<unsigned char>(c) < 0x80;
        })) {}

  std::string_view Mid(std::size_t start, std::size_t count) const {
    if (!ascii_) return MidCharacters(cell_, start, count);
    return start - 1 >= cell_.size() ? std::string_view() : cell_.substr(start - 1, count);
  }

 private:
  std::string_view cell_;
  bool ascii_;
};

// "Wed Aug 27 13:08:45 +0000 2008": the year is the last two digits of YYYY (characters 29-30).
std::string ConvertTwitter11Date(std::string_view text) {
  const DateCell cell(text);
  std::string out;
  out.reserve(17);
  out.append(cell.Mid(9, 2)).append("/");
  out.append(MonthNumber(cell.Mid(5, 3))).append("/");
  out.append(cell.Mid(29, 2)).append(" ");
  out.append(cell.Mid(12, 2)).append(":");
  out.append(cell.Mid(15, 2)).append(":");
  out.append(cell.Mid(18, 2));
  return out;
}

// "20110105T10:00:00Z" or "20110105T100000Z".
std::string ConvertTwitterDate(std::string_view text) {
  const bool colons = text.find(':') != std::string_view::npos;
  const DateCell cell(text);
  std::string out;
  out.reserve(17);
  out.append(cell.Mid(7, 2)).append("/");
  out.append(cell.Mid(5, 2)).append("/");
  out.append(cell.Mid(3, 2)).append(" ");
  out.append(cell.Mid(10, 2)).append(":");
  out.append(cell.Mid(colons ? 13 : 12, 2)).append(":");
  out.append(cell.Mid(colons ? 16 : 14, 2));
  return out;
}

// Where the first link of `text` at or after `from` starts: "http://" or "https://".
std::size_t FindLink(std::string_view text, std::size_t from = 0) {
  for (std::size_t at = text.find("http", from); at != std::string_view::npos;
       at = text.find("http", at + 1)) {
    const std::string_view rest = text.substr(at + 4);
    if (rest.starts_with("://") || rest.starts_with("s://")) return at;
  }
  return std::string_view::npos;
}

// The extent of a tag or link starting at `start`: up to the next space, or the end.
std::size_t TokenEnd(std::string_view text, std::size_t start) {
  const std::size_t space = text.find(' ', start);
  return space == std::string_view::npos ? text.size() : space;
}

}  // namespace

std::string_view ElapsedFieldName(std::string_view interval) {
  if (interval == "s") return "Elapsed_Seconds";
  if (interval == "n") return "Elapsed_Minutes";
  if (interval == "h") return "Elapsed_Hours";
  if (interval == "d") return "Elapsed_Days";
  if (interval == "ww") return "Elapsed_Weeks";
  return "";
}

void DocumentSet::ConvertTwitterDateTimeField(std::string_view formatName, FieldIndex fldNum) {
  std::string (*convert)(std::string_view);
  if (formatName == "Twitter1.1") {
    convert = ConvertTwitter11Date;
  } else if (formatName == "Twitter") {
    convert = ConvertTwitterDate;
  } else {
    return;
  }
  if (fldNum >= columns_.size()) return;
  // The file's date-time is read before its text is cut to two-digit years.
  auto& column = columns_[fldNum];
  dateTimes_.assign(column.size(), kNoDateTime);
  dateTimesField_ = fldNum;
  unreadableDateTexts_.clear();
  const auto bounds = RowRangeBounds(static_cast<DocIndex>(column.size()));
  std::vector<std::vector<std::pair<DocIndex, std::string>>> unreadable(bounds.size() - 1);
  RunRowRanges(bounds, store_,
               [&](std::size_t part, DocIndex begin, DocIndex end, CellStore& arena) {
                 for (DocIndex d = begin; d < end; ++d) {
                   auto& cell = column[d];
                   if (const auto date = DateTime::Parse(cell)) {
                     dateTimes_[d] = date->SecondsSinceEpoch();
                   } else {
                     unreadable[part].emplace_back(d, std::string(cell));
                   }
                   arena.Overwrite(cell, convert(cell));
                 }
               });
  for (auto& texts : unreadable) {
    for (auto& text : texts) unreadableDateTexts_.push_back(std::move(text));
  }
}

std::optional<DateTime> DocumentSet::DocumentDateTime(DocIndex doc) const {
  if (doc < 0 || doc >= docCount_) return std::nullopt;
  const auto row = static_cast<std::size_t>(doc);
  if (dateTimesField_ == dateTimeField_ && row < dateTimes_.size()) {
    if (dateTimes_[row] == kNoDateTime) return std::nullopt;
    return DateTime(DateTime::Seconds(std::chrono::seconds(dateTimes_[row])));
  }
  if (dateTimeField_ >= columns_.size()) return std::nullopt;
  return DateTime::Parse(ReplaceAll(columns_[dateTimeField_][row], "\"", ""));
}

bool DocumentSet::DeriveElapsedTimeField(FieldIndex dateField, std::string_view interval,
                                         std::string_view fromDate, bool /*zeroStart*/,
                                         const ProgressCallback& progress) {
  // The earliest document always gets 0, whatever zeroStart says.
  lastError_.clear();
  const auto unit = ParseTimeUnit(interval);
  if (!unit) return Fail("Unknown time unit \"" + std::string(interval) + "\"");
  const auto origin = DateTime::Parse(fromDate);
  if (!origin) return Fail("\"" + std::string(fromDate) + "\" is not a date");
  if (FieldCount() >= kMaxFields) return Fail("The set already has 256 fields");
  if (dateField >= columns_.size()) {
    return Fail("Field " + std::to_string(dateField) + " does not exist");
  }
  // The kept full date-times serve when this is the converted column.
  const bool kept = dateField == dateTimesField_ && dateTimes_.size() == columns_[dateField].size();
  const auto fileText = [&](DocIndex d) {
    for (const auto& [row, text] : unreadableDateTexts_) {
      if (row == d) return text;
    }
    return ReplaceAll(columns_[dateField][d], "\"", "");
  };
  // Large scratch arrays come from (and go back to) the system whole, not from the heap that
  // the stages after this one fill.
  std::vector<std::int64_t, LargeAllocator<std::int64_t>> values(
      static_cast<std::size_t>(docCount_));
  // What each row range found; a range stops at its first value out of range.
  struct Part {
    std::vector<UndatedRow> undated;
    std::optional<std::int64_t> smallest;
    DocIndex tooFar = -1;
  };
  const auto bounds = RowRangeBounds(docCount_);
  std::vector<Part> parts(bounds.size() - 1);
  SharedProgress shared(progress, "Deriving elapsed time", docCount_);
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    Part& found = parts[part];
    SharedProgress::Counter counter(shared, part);
    for (auto d = static_cast<DocIndex>(begin); d < static_cast<DocIndex>(end); ++d) {
      std::optional<DateTime> date;
      if (kept) {
        if (dateTimes_[d] != kNoDateTime) {
          date = DateTime(DateTime::Seconds(std::chrono::seconds(dateTimes_[d])));
        }
      } else {
        date = DateTime::Parse(ReplaceAll(columns_[dateField][d], "\"", ""));
      }
      if (!date) {
        const auto row = static_cast<std::size_t>(d);
        found.undated.push_back({d, fileText(d), row < rowLines_.size() ? rowLines_[row] : 0});
        continue;
      }
      const std::int64_t value = DateDiff(*unit, *origin, *date);
      if (value < std::numeric_limits<std::int32_t>::min() ||
          value > std::numeric_limits<std::int32_t>::max()) {
        found.tooFar = d;
        return;
      }
      values[d] = value;
      found.smallest = found.smallest ? std::min(*found.smallest, value) : value;
      if (!counter.Step()) return;
    }
  });
  if (!shared.CatchUp()) return Fail("Elapsed time cancelled");
  std::vector<UndatedRow> undated;
  std::optional<std::int64_t> smallest;
  for (auto& found : parts) {
    if (found.tooFar >= 0) {
      const DocIndex d = found.tooFar;
      return Fail("Row " + std::to_string(d + 1) + ": \"" + fileText(d) +
                  "\" is too far from the start date to count in units of \"" +
                  std::string(interval) + "\"");
    }
    for (auto& row : found.undated) undated.push_back(std::move(row));
    if (found.smallest) smallest = smallest ? std::min(*smallest, *found.smallest) : found.smallest;
  }
  if (!smallest) {
    const std::string example = undated.empty() ? "" : " (row 1: \"" + undated[0].text + "\")";
    return Fail("No row has a date in field \"" + fieldNames_[dateField] + "\"" + example);
  }
  undatedRows_ = std::move(undated);
  const FieldIndex field = AppendField(ElapsedFieldName(interval));
  auto& column = columns_[field];
  RunRowRanges(bounds, store_, [&](std::size_t, DocIndex begin, DocIndex end, CellStore& arena) {
    // The next undated row at or after `begin`.
    auto next = std::lower_bound(undatedRows_.begin(), undatedRows_.end(), begin,
                                 [](const UndatedRow& row, DocIndex d) { return row.row < d; });
    for (DocIndex d = begin; d < end; ++d) {
      if (next != undatedRows_.end() && next->row == d) {
        ++next;
        continue;  // no date, no elapsed time
      }
      column[d].Assign(arena.Store(std::to_string(values[d] - *smallest)), arena);
    }
  });
  dateTimeField_ = dateField;
  return true;
}

bool DocumentSet::DeriveLinksField(FieldIndex sourceField, std::string_view fieldName,
                                   FieldIndex existingURLField, const ProgressCallback& progress) {
  if (sourceField >= columns_.size()) {
    return Fail("Field " + std::to_string(sourceField) + " does not exist");
  }
  FieldIndex target = existingURLField;
  if (existingURLField == 0) {
    if (FieldCount() >= kMaxFields) return Fail("The set already has 256 fields");
    target = AppendField(fieldName);
  } else if (existingURLField >= columns_.size()) {
    return Fail("The link field " + std::to_string(existingURLField) + " does not exist");
  }
  SharedProgress shared(progress, "Extracting links", docCount_);
  auto& sources = columns_[sourceField];
  auto& targets = columns_[target];
  RunRowRanges(RowRangeBounds(docCount_), store_,
               [&](std::size_t part, DocIndex begin, DocIndex end, CellStore& arena) {
                 SharedProgress::Counter counter(shared, part);
                 for (DocIndex d = begin; d < end; ++d) {
                   counter.Step();  // links are moved also after a cancel, as a whole
                   std::string_view source = sources[d];
                   if (FindLink(source) == std::string_view::npos) continue;
                   std::string text(source);
                   std::string destination(targets[d]);
                   while (true) {
                     const std::size_t start = FindLink(text);
                     if (start == std::string::npos) break;
                     const std::size_t stop = TokenEnd(text, start);
                     const std::string link = text.substr(start, stop - start);
                     if (destination.empty() && CodePointCount(link) > 9) destination = " " + link;
                     const bool last = stop == text.size();
                     text = ReplaceAll(text, link, "");
                     if (last) break;
                   }
                   arena.Overwrite(sources[d], text);
                   if (destination != targets[d]) arena.Overwrite(targets[d], destination);
                 }
               });
  shared.CatchUp();  // the work goes on to the end either way
  return true;
}

bool DocumentSet::DeriveTagField(FieldIndex sourceField, std::string_view fieldName, char sigil,
                                 std::string_view marker, std::string_view finalMarker,
                                 bool unescape, const ProgressCallback& progress) {
  if (sourceField >= columns_.size()) {
    return Fail("Field " + std::to_string(sourceField) + " does not exist");
  }
  if (FieldCount() >= kMaxFields) return Fail("The set already has 256 fields");
  const FieldIndex target = AppendField(fieldName);
  const std::string sigilText(1, sigil);
  SharedProgress shared(progress, "Extracting tags", docCount_);
  auto& sources = columns_[sourceField];
  auto& targets = columns_[target];
  RunRowRanges(RowRangeBounds(docCount_), store_,
               [&](std::size_t part, DocIndex begin, DocIndex end, CellStore& arena) {
                 SharedProgress::Counter counter(shared, part);
                 std::string tags;
                 for (DocIndex d = begin; d < end; ++d) {
                   counter.Step();  // tags are moved also after a cancel, as a whole
                   const std::string_view source = sources[d];
                   const bool escaped = unescape && source.find("#039") != std::string_view::npos;
                   if (!escaped && source.find(sigil) == std::string_view::npos) continue;
                   std::string text =
                       escaped ? ReplaceAll(source, "#039", "'") : std::string(source);
                   tags.clear();
                   while (true) {
                     const std::size_t start = text.find(sigil);
                     if (start == std::string::npos) break;
                     const std::size_t stop = TokenEnd(text, start);
                     const std::string tag = text.substr(start, stop - start);
                     tags.append(" ").append(ReplaceAll(tag, sigilText, ""));
                     const bool last = stop == text.size();
                     text = ReplaceAll(text, tag, marker);
                     if (last) break;
                   }
                   text = ReplaceAll(text, marker, finalMarker);
                   arena.Overwrite(sources[d], text);
                   targets[d].Assign(arena.Store(tags), arena);
                 }
               });
  shared.CatchUp();  // the work goes on to the end either way
  return true;
}

bool DocumentSet::DeriveTwitterHashField(FieldIndex sourceField, std::string_view fieldName,
                                         const ProgressCallback& progress) {
  return DeriveTagField(sourceField, fieldName, '#', "[H]", "[#]", true, progress);
}

bool DocumentSet::DeriveTwitterMentionField(FieldIndex sourceField, std::string_view fieldName,
                                            const ProgressCallback& progress) {
  return DeriveTagField(sourceField, fieldName, '@', "[M]", "[@]", false, progress);
}

void DocumentSet::SortByInt(FieldIndex sortKey, bool descending, Notifier& notifier) {
  if (sortKey >= columns_.size() || docCount_ < 2) return;
  std::vector<std::int64_t, LargeAllocator<std::int64_t>> keys(static_cast<std::size_t>(docCount_));
  RunRanges(RowRangeBounds(docCount_), [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t d = begin; d < end; ++d) keys[d] = LeadingWholeNumber(columns_[sortKey][d]);
  });
  std::int64_t rises = 0;
  std::int64_t falls = 0;
  for (std::size_t i = 1; i < keys.size(); ++i) {
    rises += keys[i] > keys[i - 1];
    falls += keys[i] < keys[i - 1];
  }
  const bool reverse = descending ? (rises >= 1 && falls < 2) : (falls >= 1 && rises == 0);
  if (reverse) {
    RunRanges(SplitRange(columns_.size(), WorkerCount()),
              [&](std::size_t, std::size_t begin, std::size_t end) {
                for (std::size_t f = begin; f < end; ++f) {
                  std::reverse(columns_[f].begin(), columns_[f].end());
                }
              });
    std::reverse(dateTimes_.begin(), dateTimes_.end());
    unreadableDateTexts_.clear();
    rowLines_.clear();
    return;
  }
  // Every other case shows the notice, also a run that is already in order.
  notifier.ShowMessage("Documents need to be sorted. This might take a moment...",
                       descending ? "Descending sort" : "Ascending sort",
                       MessageIcon::kInformation);
  std::vector<DocIndex> order(static_cast<std::size_t>(docCount_));
  std::iota(order.begin(), order.end(), 0);
  if (descending) {
    std::stable_sort(order.begin(), order.end(),
                     [&](DocIndex a, DocIndex b) { return keys[a] > keys[b]; });
  } else {
    std::stable_sort(order.begin(), order.end(),
                     [&](DocIndex a, DocIndex b) { return keys[a] < keys[b]; });
  }
  ApplyRowOrder(order);
}

void DocumentSet::ApplyRowOrder(const std::vector<DocIndex>& order) {
  Column scratch(order.size());
  for (auto& column : columns_) {
    for (std::size_t i = 0; i < order.size(); ++i) scratch[i] = column[order[i]];
    column.swap(scratch);
  }
  if (dateTimes_.size() == order.size()) {
    std::vector<std::int64_t> dates(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) dates[i] = dateTimes_[order[i]];
    dateTimes_.swap(dates);
  }
  unreadableDateTexts_.clear();
  rowLines_.clear();
}

DocumentSet DocumentSet::SelectSubSetByString(FieldIndex field, std::string_view matchStr) const {
  DocumentSet subset;
  subset.fieldNames_ = fieldNames_;
  subset.fieldExpressed_ = fieldExpressed_;
  subset.startMarkers_ = startMarkers_;
  subset.endMarkers_ = endMarkers_;
  subset.recordDelimiter_ = recordDelimiter_;
  subset.parseMode_ = parseMode_;
  subset.hasHeaderRow_ = hasHeaderRow_;
  subset.sourcePath_ = sourcePath_;
  subset.contentField_ = contentField_, subset.authorField_ = authorField_;
  subset.dateTimeField_ = dateTimeField_, subset.elapsedTimeField_ = elapsedTimeField_;
  subset.urlField_ = urlField_, subset.titleField_ = titleField_;
  subset.citedField_ = citedField_, subset.refListField_ = refListField_;
  subset.keyWordField_ = keyWordField_;
  subset.columns_.resize(columns_.size());
  for (DocIndex d = 0; d < docCount_; ++d) {
    const std::string text =
        field < columns_.size() ? std::string(columns_[field][d]) : Text(d, field);
    if (text.find(matchStr) == std::string::npos) continue;
    for (std::size_t f = 0; f < columns_.size(); ++f) {
      subset.columns_[f].emplace_back(subset.store_.Store(columns_[f][d]), subset.store_);
    }
    ++subset.docCount_;
  }
  return subset;
}

}  // namespace sylvora
