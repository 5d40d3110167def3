#include "session/corpus_load.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <optional>

#include "common/code_points.h"
#include "common/date_time.h"
#include "common/file_io.h"
#include "common/text_decoding.h"

namespace sylvora {
namespace {

// The export layouts put their columns here.
constexpr FieldIndex kTwitterContent = 2, kTwitterAuthor = 1;
constexpr FieldIndex kTwitterSentPos = 3, kTwitterSentNeg = 4;
constexpr FieldIndex kTwitter11Url = 12, kTwitter11Retweeted = 11;
constexpr FieldIndex kTwitter11SentPos = 13, kTwitter11SentNeg = 14;
constexpr FieldIndex kRadianContent = 3, kRadianAuthor = 2, kRadianDate = 6;
constexpr FieldIndex kRadianElapsed = 18, kRadianUrl = 19;
constexpr FieldIndex kRadianSentPos = 20, kRadianSentNeg = 21;
constexpr int kRadianMinColumns = 22;

std::string TabSeparatedShape(CorpusFormat format) {
  return "tab-separated " + std::string(CorpusFormatName(format)) + " export (format " +
         std::to_string(static_cast<int>(format)) + ")";
}

ImportOptions ImportOptionsOf(const LoadOptions& options) {
  ImportOptions importOptions;
  importOptions.columnMap = options.columnMap;
  importOptions.skipBad = options.skipBad;
  importOptions.maxCount = options.maxDocCount > 0 ? options.maxDocCount : 0;
  return importOptions;
}

// How much of a tab-separated file decides its layout: the first lines within a prefix.
constexpr std::size_t kLayoutSampleBytes = 1 << 20;
constexpr int kLayoutSampleLines = 10;

constexpr std::string_view kElapsedOrigin = "01 Jan 2011 00:00:01";

void SetRoles(DocumentSet& documents, CorpusInfo& info) {
  switch (info.format) {
    case CorpusFormat::kTwitter:
      documents.SetContentField(kTwitterContent);
      documents.SetAuthorField(kTwitterAuthor);
      documents.SetURLField(0);  // links go into a new column
      info.sentimentPositiveField = kTwitterSentPos;
      info.sentimentNegativeField = kTwitterSentNeg;
      break;
    case CorpusFormat::kTwitter11:
      documents.SetContentField(kTwitterContent);
      documents.SetAuthorField(kTwitterAuthor);
      documents.SetURLField(kTwitter11Url);
      documents.SetCitedField(kTwitter11Retweeted);
      info.sentimentPositiveField = kTwitter11SentPos;
      info.sentimentNegativeField = kTwitter11SentNeg;
      break;
    case CorpusFormat::kRadian6:
      documents.SetContentField(kRadianContent);
      documents.SetAuthorField(kRadianAuthor);
      documents.SetDateTimeField(kRadianDate);
      documents.SetElapsedTimeField(kRadianElapsed);
      documents.SetURLField(kRadianUrl);
      documents.SetKeyWordField(0);
      documents.SetRefListField(0);
      info.sentimentPositiveField = kRadianSentPos;
      info.sentimentNegativeField = kRadianSentNeg;
      break;
  }
}

// "File not found" would send a user looking for a file that is there: a folder says so.
std::string MissingFileReason(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    return "'" + path + "' is a folder; give the corpus file inside it";
  }
  return "File not found: " + path;
}

// "2 rows without a readable date are left out ...: line 1 ("Date"), line 7 ("24/13/...")";
// rows of an import, which has no lines to give, are named by their number.
std::string UndatedRowsWarning(const std::vector<DocumentSet::UndatedRow>& rows) {
  constexpr std::size_t kNamed = 5;
  std::string text = std::to_string(rows.size()) + (rows.size() == 1 ? " row" : " rows") +
                     " without a readable date " + (rows.size() == 1 ? "is" : "are") +
                     " left out of the corpus, the time line and the maps:";
  for (std::size_t i = 0; i < rows.size() && i < kNamed; ++i) {
    const bool line = rows[i].line > 0;
    text += std::string(i == 0 ? " " : ", ") + (line ? "line " : "row ") +
            std::to_string(line ? rows[i].line : rows[i].row + 1) + " (\"" + rows[i].text + "\")";
  }
  if (rows.size() > kNamed) text += ", ...";
  return text;
}

// Rows without a date have no place on the time line: they leave the set before the sort.
void LeaveOutUndatedRows(DocumentSet& documents) {
  std::vector<DocIndex> rows;
  rows.reserve(documents.UndatedRows().size());
  for (const auto& undated : documents.UndatedRows()) rows.push_back(undated.row);
  documents.RemoveDocuments(rows);
}

FieldIndex LastField(const DocumentSet& documents) {
  return static_cast<FieldIndex>(documents.FieldCount() - 1);
}

}  // namespace

std::string RepairedLinesNote(std::int64_t lines) {
  return std::to_string(lines) + (lines == 1 ? " line had" : " lines had") +
         " bytes that are not UTF-8; those bytes were read as Windows-1252";
}

std::optional<CorpusFormat> ChooseCorpusFormat(const std::string& path, bool radian,
                                               std::string& error) {
  if (radian) return CorpusFormat::kRadian6;
  std::string head;
  if (!ReadFilePrefix(path, kLayoutSampleBytes, head, error)) return std::nullopt;
  DecodeText(head);
  // One line alone misleads: a header or a short first line in a sixteen-column export, or a
  // first message longer than any fixed prefix. The wider layout wins when at least half of
  // the first non-empty lines have 8 or more columns.
  std::string_view rest = head;
  int lines = 0;
  int wide = 0;
  while (!rest.empty() && lines < kLayoutSampleLines) {
    const std::size_t end = rest.find('\n');
    // A line cut off by the sample's end counts only when it is the only one.
    if (end == std::string_view::npos && lines > 0 && head.size() == kLayoutSampleBytes) break;
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (TrimSpaces(line).empty()) continue;
    ++lines;
    if (std::count(line.begin(), line.end(), '\t') + 1 >= 8) ++wide;
  }
  return lines > 0 && 2 * wide >= lines ? CorpusFormat::kTwitter11 : CorpusFormat::kTwitter;
}

std::optional<CorpusShape> DetectCorpusShape(const std::string& path, bool radian,
                                             std::string& error) {
  if (!FileExists(path)) {
    error = MissingFileReason(path);
    return std::nullopt;
  }
  if (!radian && MayBeImportFile(path)) {
    const ImportPreview preview = PreviewCorpusFile(path, ImportOptions(), 1);
    if (preview.shapeKnown) {
      return CorpusShape{CorpusFormat::kTwitter11, true, preview.detection.Describe()};
    }
    if (preview.outcome == DetectionOutcome::kError) {
      error = preview.error;
      return std::nullopt;
    }
  }
  const auto format = ChooseCorpusFormat(path, radian, error);
  if (!format) return std::nullopt;
  return CorpusShape{*format, false, TabSeparatedShape(*format)};
}

ImportPreview PreviewCorpus(const LoadOptions& options, int rows) {
  if (options.radian || !MayBeImportFile(options.path)) {
    ImportPreview preview;
    preview.outcome = DetectionOutcome::kTabSeparated;
    return preview;
  }
  return PreviewCorpusFile(options.path, ImportOptionsOf(options), rows);
}

namespace {

LoadReport LoadCorpusUnguarded(Session& session, const LoadOptions& options, Notifier& notifier,
                               const ProgressCallback& progress, const AfterLinksStep& afterLinks) {
  LoadReport report;
  DocumentSet& documents = session.Documents();
  CorpusInfo& info = session.Corpus();
  StageClock clock;
  const auto fail = [&](std::string reason) {
    documents.Clear();
    report.error = std::move(reason);
    report.stages = clock.Stages();
    return report;
  };
  const auto cancelled = [&](std::string_view stage) { return progress && !progress(stage, 0, 0); };

  if (!FileExists(options.path)) return fail(MissingFileReason(options.path));
  const auto unit = ParseTimeUnit(options.unitCode);
  if (!unit) return fail("Unknown time unit \"" + options.unitCode + "\" (use s, n, h, d or ww)");
  std::string error;
  const auto loadError = [&](std::string reason) {
    notifier.ShowMessage("There was an error loading " + options.path, "Load Error",
                         MessageIcon::kCritical);
    return fail(std::move(reason));
  };

  // JSON and CSV exports are found by their content and load in the "Twitter1.1" layout.
  ImportReport imported;
  DetectionOutcome outcome = DetectionOutcome::kTabSeparated;
  if (!options.radian && MayBeImportFile(options.path)) {
    documents.Clear();
    outcome =
        ImportCorpusFile(options.path, ImportOptionsOf(options), documents, imported, progress);
    if (outcome == DetectionOutcome::kError) return loadError(imported.error);
  }
  const bool isImport = outcome == DetectionOutcome::kImport;
  const auto format = isImport ? std::optional(CorpusFormat::kTwitter11)
                               : ChooseCorpusFormat(options.path, options.radian, error);
  if (!format) return fail(error);

  info = CorpusInfo{};
  info.format = *format;
  info.filePath = options.path;
  info.elapsedTimeUnit = options.unitCode;
  info.shape = isImport ? imported.detection.Describe() : TabSeparatedShape(*format);
  report.shape = info.shape;
  SetRoles(documents, info);
  if (isImport) {
    report.skipped = imported.skipped;
    if (imported.skipped > 0) {
      std::string text = "Skipped " + std::to_string(imported.skipped) + " bad record" +
                         (imported.skipped == 1 ? "" : "s");
      for (const auto& sample : imported.skippedSamples) text += "; " + sample;
      if (imported.skipped > static_cast<std::int64_t>(imported.skippedSamples.size())) {
        text += "; ...";
      }
      report.warnings.push_back(text);
    }
    for (const auto& warning : imported.warnings) report.warnings.push_back(warning);
  } else {
    if (!options.columnMap.empty()) {
      report.warnings.push_back("The column map applies to CSV files only; '" + options.path +
                                "' is a " + info.shape);
    }
    documents.Clear();
    std::string path = options.path;
    if (!documents.LoadDocuments(path, static_cast<int>(*format), "\n", options.minDocLen,
                                 options.maxDocCount, false, progress)) {
      return loadError(documents.LastError());
    }
  }
  if (*format == CorpusFormat::kRadian6 && documents.FieldCount() < kRadianMinColumns) {
    // Say what the file has, not what the Radian layout made of it.
    std::string head;
    std::string ignored;
    std::size_t columns = static_cast<std::size_t>(documents.FieldCount());
    if (ReadFilePrefix(options.path, 1 << 16, head, ignored)) {
      const std::string_view firstLine = std::string_view(head).substr(0, head.find('\n'));
      columns = static_cast<std::size_t>(std::count(firstLine.begin(), firstLine.end(), '\t')) + 1;
    }
    return loadError(
        "A Radian 6 export needs at least 22 columns (date-time in column 7, elapsed "
        "time, link and sentiment in columns 19 to 22); the first line of '" +
        options.path + "' has " + std::to_string(columns) +
        ". Untick \"Radian 6 data?\" for a Twitter export.");
  }
  clock.Finish("read and split");
  documents.SetFieldExpressionPattern("");

  if (cancelled("Extracting links")) return fail("Loading cancelled");
  documents.DeriveLinksField(documents.ContentField(), "Extracted Links", documents.URLField(),
                             progress);
  if (*format == CorpusFormat::kTwitter) documents.SetURLField(LastField(documents));
  clock.Finish("links");
  if (afterLinks) {
    if (!afterLinks(session, report)) return fail("Loading cancelled");
    clock.Finish("after links");
  }

  // The date stage replaces whatever the step after the links showed.
  report.progressText = "Converting Dates to native format...\r\n";
  if (cancelled("Converting dates")) return fail("Loading cancelled");
  if (*format == CorpusFormat::kTwitter && documents.Text(0, 0).ends_with("Z")) {
    documents.SetDateTimeField(0);
    documents.ConvertTwitterDateTimeField("Twitter", 0);
  } else if (*format == CorpusFormat::kTwitter11) {
    documents.SetDateTimeField(0);
    documents.ConvertTwitterDateTimeField("Twitter1.1", 0);
  }
  clock.Finish("dates");

  report.progressText += "Extracting hashtags and mentions to new fields...\r\n";
  if (*format != CorpusFormat::kRadian6) {
    if (cancelled("Deriving elapsed time")) return fail("Loading cancelled");
    if (documents.DeriveElapsedTimeField(0, options.unitCode, kElapsedOrigin, true, progress)) {
      clock.Finish("elapsed time");
      if (!documents.UndatedRows().empty()) {
        report.warnings.push_back(UndatedRowsWarning(documents.UndatedRows()));
        LeaveOutUndatedRows(documents);
      }
      const FieldIndex elapsed = LastField(documents);
      documents.SortByInt(elapsed, false, notifier);
      documents.SetElapsedTimeField(elapsed);
      info.elapsedTimeDerived = true;
      clock.Finish("sort");
    } else {
      report.warnings.push_back("Elapsed time not derived: " + documents.LastError());
      clock.Finish("elapsed time");
    }
  }

  if (cancelled("Extracting hashtags")) return fail("Loading cancelled");
  documents.DeriveTwitterHashField(documents.ContentField(), "HashTags", progress);
  documents.SetKeyWordField(LastField(documents));
  clock.Finish("hashtags");
  if (cancelled("Extracting mentions")) return fail("Loading cancelled");
  documents.DeriveTwitterMentionField(documents.ContentField(), "Mentions", progress);
  documents.SetRefListField(LastField(documents));
  clock.Finish("mentions");

  documents.SetFieldExpressed(documents.ContentField(), true);
  if (!isImport) report.repairedLines = documents.RepairedLineCount();
  if (report.repairedLines > 0)
    report.progressText += RepairedLinesNote(report.repairedLines) + "\r\n";
  report.progressText += "All done :)";
  const DocIndex count = documents.DocumentCount();
  report.minDocFrequency = count / 1000 + 2;
  report.maxDocFrequency = count * 0.5;
  report.loaded = true;
  report.stages = clock.Stages();
  return report;
}

}  // namespace

LoadReport LoadCorpus(Session& session, const LoadOptions& options, Notifier& notifier,
                      const ProgressCallback& progress, const AfterLinksStep& afterLinks) {
  try {
    return LoadCorpusUnguarded(session, options, notifier, progress, afterLinks);
  } catch (const std::bad_alloc&) {
    // A file that outgrows memory part way (its cells, the derived columns) ends as a failed
    // load with the set emptied, not as an abort.
    session.Documents().Clear();
    LoadReport report;
    report.error = "'" + options.path + "' does not fit in memory";
    return report;
  }
}

}  // namespace sylvora
