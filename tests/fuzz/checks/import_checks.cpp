// Checks of the JSON and named-column CSV importers over arbitrary bytes: a failure says why and
// keeps nothing; a success holds as many documents as it reports, no more than the input has
// objects or records, each in the sixteen fields of the "Twitter1.1" layout with a date-time in
// its one layout, a text, and cells of one line of valid UTF-8.

#include <algorithm>
#include <cctype>
#include <string>

#include "checks/target_list.h"
#include "common/text_decoding.h"
#include "corpus/corpus_import.h"
#include "corpus/document_set.h"
#include "corpus/imported_rows.h"

namespace sylvora::fuzz {
namespace {

// "Www Mmm DD HH:MM:SS +0000 YYYY".
bool IsTweetDate(std::string_view date) {
  if (date.size() != 30) return false;
  const auto letters = [&](std::size_t at) {
    return std::isalpha(static_cast<unsigned char>(date[at])) != 0;
  };
  const auto digits = [&](std::size_t at, std::size_t count) {
    for (std::size_t i = at; i < at + count; ++i) {
      if (std::isdigit(static_cast<unsigned char>(date[i])) == 0) return false;
    }
    return true;
  };
  return letters(0) && letters(1) && letters(2) && date[3] == ' ' && letters(4) && letters(5) &&
         letters(6) && date[7] == ' ' && digits(8, 2) && date[10] == ' ' && digits(11, 2) &&
         date[13] == ':' && digits(14, 2) && date[16] == ':' && digits(17, 2) &&
         date.substr(19, 7) == " +0000 " && digits(26, 4);
}

std::string CheckImported(const DocumentSet& set, const ImportReport& report,
                          std::int64_t mostDocuments) {
  const DocIndex count = set.DocumentCount();
  if (count != report.documents) return "the set holds another count than the report";
  if (count == 0) return "an import that succeeded holds no document";
  if (count > mostDocuments) return "more documents than the input has posts or records";
  if (set.FieldCount() != kLayoutFieldCount) return "the set is not in the 16-field layout";
  for (DocIndex d = 0; d < count; ++d) {
    if (!IsTweetDate(set.Text(d, 0))) return "a date-time not in the tweet layout";
    if (set.Text(d, 2).empty()) return "a document without a text";
    for (int f = 0; f < kLayoutFieldCount; ++f) {
      const std::string cell = set.Text(d, static_cast<FieldIndex>(f));
      if (!IsValidUtf8(cell)) return "cell is not valid UTF-8";
      if (cell.find_first_of("\t\r\n") != std::string::npos)
        return "a cell holds a tab or a line break";
    }
  }
  if (set.Text(count, 0) != DocumentSet::kIndexErrorText) {
    return "a row past the end did not give the index error text";
  }
  return {};
}

// The first byte chooses the options: bit 0 skips bad records, bit 1 caps the count at 3,
// bits 2-3 pick a column map for CSV. The rest is the file.
std::string CheckImport(std::string_view input, std::string_view name) {
  const unsigned flags = input.empty() ? 0u : static_cast<unsigned char>(input[0]);
  if (!input.empty()) input.remove_prefix(1);
  ImportOptions options;
  options.skipBad = (flags & 1u) != 0;
  if ((flags & 2u) != 0) options.maxCount = 3;
  switch ((flags >> 2) & 3u) {
    case 1:
      options.columnMap = {{"text", "b"}, {"date", "a"}};
      break;
    case 2:
      options.columnMap = {{"user", "c"}, {"link", "d"}, {"positive", "e"}};
      break;
    case 3:
      options.columnMap = {{"nosuchrole", "a"}};
      break;
    default:
      break;
  }
  DocumentSet set;
  ImportReport report;
  const DetectionOutcome outcome =
      ImportCorpusBytes(std::string(name), input, options, set, report);
  if (outcome != DetectionOutcome::kImport) {
    if (set.DocumentCount() != 0) return "a file that was not imported left documents";
    if (outcome == DetectionOutcome::kError && report.error.empty()) {
      return "a failed import gave no reason";
    }
    return {};
  }
  if (!report.error.empty()) return "a successful import left an error";
  if (!options.skipBad && report.skipped != 0) return "records skipped without skipBad";
  if (options.maxCount > 0 && set.DocumentCount() > options.maxCount) {
    return "more documents than the cap";
  }
  // Gzip input unpacks to more than it looks: only plain input bounds the count.
  std::int64_t most = INT64_MAX;
  if (!report.detection.gzipped) {
    most = report.detection.shape == ImportShape::kNamedCsv
               ? std::count(input.begin(), input.end(), '\n') +
                     std::count(input.begin(), input.end(), '\r') + 1
               : std::count(input.begin(), input.end(), '{');
  }
  return CheckImported(set, report, most);
}

}  // namespace

std::vector<FuzzTarget> ImportTargets() {
  return {{"json_import", [](std::string_view input) { return CheckImport(input, "fuzz.jsonl"); }},
          {"csv_import", [](std::string_view input) { return CheckImport(input, "fuzz.csv"); }}};
}

}  // namespace sylvora::fuzz
