#pragma once
// Import of today's exports into a DocumentSet: JSON from the platforms' APIs (X / Twitter API
// v2 and v1.1, Mastodon, Bluesky; as JSON lines, a top-level array, or an object holding the
// array) and named-column CSV (RFC 4180, with a header row), either of them gzip-compressed or
// not. Every post becomes one document in the sixteen fields of the "Twitter1.1" layout
// (format 8): date-time (rewritten as "Www Mmm DD HH:MM:SS +0000 YYYY", UTC), user name, text
// (one line, HTML turned into plain text), tweet id, real name, follower, following and list
// counts, geo coordinates, the user's post count, the repost count, the platform's own
// expanded link, and the sentiment columns when the file has them. The load workflow then goes
// on as for a tab-separated format-8 file.
//
// The shape is found from the content, not the file name: gzip by its magic number, JSON by its
// first character and the keys of its first object, CSV by a first line with commas and no tab.
// Anything else (a tab-separated export) is left to DocumentSet::LoadDocuments.
//
// Failures leave the document set empty and give one message naming the file, the line and the
// value at fault (invalid JSON, an unknown JSON shape listing the keys found and the shapes
// known, a post without a date or a text, a date in another layout, unbalanced CSV quotes, a
// CSV without the needed columns naming the role and the header found, a truncated gzip
// stream). With `skipBad`, bad records (not a broken file) are skipped and counted instead.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/numbering.h"
#include "common/progress.h"
#include "corpus/document_set.h"

namespace sylvora {

enum class ImportShape { kTwitterV2Json, kTwitterV11Json, kMastodonJson, kBlueskyJson, kNamedCsv };

// "X / Twitter API v2 JSON", "Twitter API v1.1 JSON", "Mastodon JSON", "Bluesky JSON",
// "named-column CSV".
std::string_view ImportShapeName(ImportShape shape);

// How JSON posts are laid out in the file.
enum class JsonContainer {
  kNone,    // CSV
  kLines,   // one object a line (a post, or a page of posts)
  kArray,   // a top-level array of posts
  kObject,  // one object holding the posts in an array ("data", "statuses", "posts", "feed")
};

// The roles a CSV column can play, with the layout field each fills.
enum class CsvRole {
  kDateTime,
  kUser,
  kText,
  kLink,
  kPositive,
  kNegative,
  kId,
  kRealName,
  kReposts,
};
inline constexpr int kCsvRoleCount = 9;

// "date", "user", "text", "link", "positive", "negative", "id", "name", "retweets": the names
// `--map role=column` uses.
std::string_view CsvRoleName(CsvRole role);
std::optional<CsvRole> CsvRoleFromName(std::string_view name);
// The header names a role matches without a mapping, in order of preference (compared without
// regard to case, spaces and "_" / "-" / "." ignored).
const std::vector<std::string_view>& CsvRoleAliases(CsvRole role);

struct ImportDetection {
  ImportShape shape = ImportShape::kTwitterV2Json;
  JsonContainer container = JsonContainer::kNone;
  bool gzipped = false;
  bool linesArePages = false;       // JSON lines whose objects each hold a page of posts
  std::string containerKey;         // the key of the posts' array, for pages
  std::vector<std::string> keys;    // the keys of the first post (JSON)
  std::vector<std::string> header;  // the header row (CSV)

  // "X / Twitter API v2 JSON lines", "Mastodon JSON array, gzip-compressed", ...
  std::string Describe() const;
};

struct ImportOptions {
  // Role name -> column name overrides for CSV ("date" -> "posted_at"); JSON ignores them.
  std::vector<std::pair<std::string, std::string>> columnMap;
  bool skipBad = false;   // skip bad records (counted) instead of failing
  DocIndex maxCount = 0;  // stop after this many documents; 0: all
};

struct ImportReport {
  ImportDetection detection;
  DocIndex documents = 0;
  std::int64_t skipped = 0;                 // records skipped with skipBad
  std::vector<std::string> skippedSamples;  // the reasons of the first few
  std::vector<std::string> warnings;        // e.g. users named by their numeric id
  // CSV: the column (0-based, -1 none) playing each role, in CsvRole order.
  std::vector<int> csvColumns;
  std::string error;  // why nothing was imported
};

// What detection found.
enum class DetectionOutcome {
  kImport,        // a JSON or CSV export: `detection` says which
  kTabSeparated,  // not one of ours: a tab-separated export for LoadDocuments
  kError,         // looks like ours but cannot be read (message in `error`)
};

// Looks at the content of `bytes` (already unpacked; see corpus_input.h). `capacity` counts
// the padding that must follow the content.
DetectionOutcome DetectImportShape(const std::string& name, const char* bytes, std::size_t size,
                                   std::size_t capacity, bool gzipped, ImportDetection& detection,
                                   std::string& error);

// A cheap first look at the start of a file: true when it may be an import (gzip-compressed,
// opening with "{" or "[", or a first line with a comma and no tab); false for a tab-separated
// export or a file that cannot be read (the loader then reports it).
bool MayBeImportFile(const std::string& path);

// Reads, detects and imports `path` into the empty `documents`. kTabSeparated is returned (and
// nothing done) for a file that is no import, so the caller can load it as tab-separated; kError
// with report.error when it failed (the set is left empty).
DetectionOutcome ImportCorpusFile(const std::string& path, const ImportOptions& options,
                                  DocumentSet& documents, ImportReport& report,
                                  const ProgressCallback& progress = {});

// The same over bytes in memory (tests); `name` appears in messages.
DetectionOutcome ImportCorpusBytes(const std::string& name, std::string_view bytes,
                                   const ImportOptions& options, DocumentSet& documents,
                                   ImportReport& report, const ProgressCallback& progress = {});

// A first look for a mapping dialog: the shape, and up to `rows` documents read with
// `options` (for CSV also the header and the first raw records, and the column of each role).
struct ImportPreview {
  DetectionOutcome outcome = DetectionOutcome::kError;
  bool shapeKnown = false;  // the shape was recognised (the rows may still fail)
  ImportDetection detection;
  std::vector<std::vector<std::string>> rawRows;  // CSV records as split, before mapping
  std::vector<int> csvColumns;                    // per CsvRole, -1 when no column plays it
  // The first documents as they would load: date-time, user, text, link (layout fields 0, 1,
  // 2, 12), one vector per document.
  std::vector<std::vector<std::string>> documents;
  std::string error;  // why the file would not load as it is mapped
};
ImportPreview PreviewCorpusFile(const std::string& path, const ImportOptions& options,
                                int rows = 20);

}  // namespace sylvora
