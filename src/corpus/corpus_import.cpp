#include "corpus/corpus_import.h"

#include <algorithm>
#include <cstring>

#include "common/file_io.h"
#include "corpus/corpus_input.h"
#include "corpus/csv_import.h"
#include "corpus/imported_rows.h"
#include "corpus/json_import.h"

namespace sylvora {
namespace {

constexpr std::size_t kPreviewBytes = 1 << 20;

const char* SkipBlanks(const char* p, const char* end) {
  if (end - p >= 3 && std::memcmp(p, "\xEF\xBB\xBF", 3) == 0) p += 3;
  while (p < end && (*p == ' ' || *p == '\n' || *p == '\r' || *p == '\t')) ++p;
  return p;
}

std::size_t CountLines(const char* bytes, std::size_t size) {
  std::size_t lines = 1;
  const char* end = bytes + size;
  for (const char* at = bytes; at < end; ++lines) {
    const void* feed = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
    if (feed == nullptr) break;
    at = static_cast<const char*>(feed) + 1;
  }
  return lines;
}

DetectionOutcome ImportInput(const std::string& name, CorpusInput&& input,
                             const ImportOptions& options, DocumentSet& documents,
                             ImportReport& report, const ProgressCallback& progress) {
  report = ImportReport{};
  const auto failed = [&report](std::string message) {
    report.error = std::move(message);
    return DetectionOutcome::kError;
  };
  const std::size_t size = input.bytes.Size();
  const DetectionOutcome outcome =
      DetectImportShape(name, input.bytes.Data(), size, input.bytes.Capacity(), input.gzipped,
                        report.detection, report.error);
  if (outcome != DetectionOutcome::kImport) return outcome;
  if (documents.DocumentCount() > 0) {
    return failed("The document set already holds " + std::to_string(documents.DocumentCount()) +
                  " documents; clear it before loading another file");
  }
  std::size_t expected = CountLines(input.bytes.Data(), size);
  if (options.maxCount > 0)
    expected = std::min(expected, static_cast<std::size_t>(options.maxCount));
  ImportedRows rows(expected);
  const bool imported =
      report.detection.shape == ImportShape::kNamedCsv
          ? ImportCsvRecords(name, std::move(input.bytes), options, rows, report, progress)
          : ImportJsonPosts(name, std::move(input.bytes), report.detection, options, rows, report,
                            progress);
  if (!imported) return DetectionOutcome::kError;
  if (rows.RowCount() == 0) {
    return failed(
        "'" + name + "' holds no post that could be read" +
        (report.skipped > 0 ? " (" + std::to_string(report.skipped) + " skipped)" : std::string()));
  }
  if (!documents.InstallTable(std::move(rows), name)) return failed(documents.LastError());
  report.documents = documents.DocumentCount();
  return DetectionOutcome::kImport;
}

}  // namespace

std::string_view ImportShapeName(ImportShape shape) {
  switch (shape) {
    case ImportShape::kTwitterV2Json:
      return "X / Twitter API v2 JSON";
    case ImportShape::kTwitterV11Json:
      return "Twitter API v1.1 JSON";
    case ImportShape::kMastodonJson:
      return "Mastodon JSON";
    case ImportShape::kBlueskyJson:
      return "Bluesky JSON";
    case ImportShape::kNamedCsv:
      return "named-column CSV";
  }
  return "";
}

std::string_view CsvRoleName(CsvRole role) {
  switch (role) {
    case CsvRole::kDateTime:
      return "date";
    case CsvRole::kUser:
      return "user";
    case CsvRole::kText:
      return "text";
    case CsvRole::kLink:
      return "link";
    case CsvRole::kPositive:
      return "positive";
    case CsvRole::kNegative:
      return "negative";
    case CsvRole::kId:
      return "id";
    case CsvRole::kRealName:
      return "name";
    case CsvRole::kReposts:
      return "retweets";
  }
  return "";
}

std::optional<CsvRole> CsvRoleFromName(std::string_view name) {
  for (int r = 0; r < kCsvRoleCount; ++r) {
    if (CsvRoleName(static_cast<CsvRole>(r)) == name) return static_cast<CsvRole>(r);
  }
  if (name == "date-time" || name == "datetime") return CsvRole::kDateTime;
  return std::nullopt;
}

const std::vector<std::string_view>& CsvRoleAliases(CsvRole role) {
  static const std::vector<std::vector<std::string_view>> aliases = {
      {"timestamp", "created_at", "date", "datetime", "date_time", "time", "created", "published",
       "posted_at"},
      {"author", "user", "screen_name", "username", "user_name", "handle", "account", "from_user"},
      {"body", "text", "content", "tweet", "message", "full_text", "post"},
      {"url", "link", "expanded_url", "links", "urls"},
      {"sentiment_positive", "positive", "sent_pos", "sent+", "pos"},
      {"sentiment_negative", "negative", "sent_neg", "sent-", "neg"},
      {"id", "tweet_id", "status_id", "post_id"},
      {"name", "real_name", "display_name", "author_name"},
      {"retweets", "retweet_count", "reposts", "repost_count", "shares"},
  };
  return aliases[static_cast<std::size_t>(role)];
}

std::string ImportDetection::Describe() const {
  std::string text(ImportShapeName(shape));
  switch (container) {
    case JsonContainer::kNone:
      break;
    case JsonContainer::kLines:
      text +=
          linesArePages ? " lines, each a page of posts under \"" + containerKey + "\"" : " lines";
      break;
    case JsonContainer::kArray:
      text += " array";
      break;
    case JsonContainer::kObject:
      text += containerKey.empty() ? " object (one post)"
                                   : " object holding the posts under \"" + containerKey + "\"";
      break;
  }
  if (gzipped) text += ", gzip-compressed";
  return text;
}

DetectionOutcome DetectImportShape(const std::string& name, const char* bytes, std::size_t size,
                                   std::size_t capacity, bool gzipped, ImportDetection& detection,
                                   std::string& error) {
  detection = ImportDetection{};
  detection.gzipped = gzipped;
  const char* start = SkipBlanks(bytes, bytes + size);
  if (start < bytes + size && (*start == '{' || *start == '[')) {
    return DetectJsonShape(name, bytes, size, capacity, detection, error);
  }
  if (DetectCsvHeader(start, static_cast<std::size_t>(bytes + size - start), detection)) {
    return DetectionOutcome::kImport;
  }
  if (gzipped) {
    error = "'" + name +
            "' is gzip-compressed but holds neither JSON nor a CSV with a header "
            "row; unpack a compressed tab-separated export before loading it";
    return DetectionOutcome::kError;
  }
  return DetectionOutcome::kTabSeparated;
}

bool MayBeImportFile(const std::string& path) {
  std::string head;
  std::string error;
  // A first line of a named-column CSV fits in far less than this.
  if (!ReadFilePrefix(path, 64 * 1024, head, error)) return false;
  if (LooksGzipped(head.data(), head.size())) return true;
  const char* start = SkipBlanks(head.data(), head.data() + head.size());
  if (start < head.data() + head.size() && (*start == '{' || *start == '[')) return true;
  ImportDetection detection;
  return DetectCsvHeader(start, static_cast<std::size_t>(head.data() + head.size() - start),
                         detection);
}

DetectionOutcome ImportCorpusFile(const std::string& path, const ImportOptions& options,
                                  DocumentSet& documents, ImportReport& report,
                                  const ProgressCallback& progress) {
  report = ImportReport{};
  CorpusInput input;
  if (!ReadCorpusInput(path, input, report.error)) return DetectionOutcome::kError;
  return ImportInput(path, std::move(input), options, documents, report, progress);
}

DetectionOutcome ImportCorpusBytes(const std::string& name, std::string_view bytes,
                                   const ImportOptions& options, DocumentSet& documents,
                                   ImportReport& report, const ProgressCallback& progress) {
  report = ImportReport{};
  CorpusInput input;
  if (!UnpackCorpusInput(name, bytes.data(), bytes.size(), input, report.error)) {
    return DetectionOutcome::kError;
  }
  return ImportInput(name, std::move(input), options, documents, report, progress);
}

ImportPreview PreviewCorpusFile(const std::string& path, const ImportOptions& options, int rows) {
  ImportPreview preview;
  CorpusInput input;
  if (!ReadCorpusInput(path, input, preview.error, kPreviewBytes)) return preview;
  ImportDetection detection;
  preview.outcome =
      DetectImportShape(path, input.bytes.Data(), input.bytes.Size(), input.bytes.Capacity(),
                        input.gzipped, detection, preview.error);
  preview.detection = detection;
  if (preview.outcome != DetectionOutcome::kImport) return preview;
  preview.shapeKnown = true;
  // A cut-off start of the file ends at its last whole line; a single JSON document needs all.
  const bool cut = input.bytes.Size() >= kPreviewBytes;
  if (cut && detection.container != JsonContainer::kLines &&
      detection.container != JsonContainer::kNone) {
    if (!ReadCorpusInput(path, input, preview.error)) {
      preview.outcome = DetectionOutcome::kError;
      return preview;
    }
  } else if (cut) {
    const std::string_view text(input.bytes.Data(), input.bytes.Size());
    const std::size_t last = text.rfind('\n');
    if (last != std::string_view::npos) input.bytes.SetSize(last + 1);
  }
  if (detection.shape == ImportShape::kNamedCsv) {
    std::string copy(input.bytes.Data(), input.bytes.Size());
    CsvReader reader(copy.data(), copy.size());
    std::vector<std::string_view> cells;
    reader.Next(cells);  // the header, kept in the detection
    while (static_cast<int>(preview.rawRows.size()) < rows && reader.Next(cells)) {
      preview.rawRows.emplace_back(cells.begin(), cells.end());
    }
    std::string error;
    MapCsvColumns(path, detection.header, options.columnMap, preview.csvColumns, error);
  }
  ImportOptions limited = options;
  limited.maxCount = rows;
  DocumentSet documents;
  ImportReport report;
  preview.outcome =
      ImportInput(path, std::move(input), limited, documents, report, ProgressCallback());
  preview.error = report.error;
  preview.detection = report.detection;
  if (!report.csvColumns.empty()) preview.csvColumns = report.csvColumns;
  for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
    preview.documents.push_back(
        {documents.Text(d, 0), documents.Text(d, 1), documents.Text(d, 2), documents.Text(d, 12)});
  }
  return preview;
}

}  // namespace sylvora
