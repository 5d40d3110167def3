#include "cli/load_command.h"

#include <cstdio>
#include <iomanip>

#include "cli/command_line.h"
#include "cli/import_flags.h"
#include "cli/stream_notifier.h"
#include "session/corpus_load.h"
#include "session/corpus_summary.h"

namespace sylvora::cli {
namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli load FILE [--radian] [--unit s|n|h|d|ww] [--min-doc-len N] "
    "[--max-docs N]\n"
    "                             [--map ROLE=COLUMN] [--skip-bad]\n"
    "FILE is a tab-separated export (formats 7, 8; 9 with --radian), a JSON export of X / Twitter\n"
    "(API v2 or v1.1), Mastodon or Bluesky, or a CSV with a header row; gzip-compressed or not.\n";

std::string RolesOf(const Session& session, FieldIndex field) {
  const DocumentSet& documents = session.Documents();
  // Only the Twitter1.1 layout has a retweet column; elsewhere that role is unset.
  const bool hasRetweets = session.Corpus().format == CorpusFormat::kTwitter11;
  const std::pair<const char*, FieldIndex> roles[] = {
      {"content", documents.ContentField()},    {"author", documents.AuthorField()},
      {"date-time", documents.DateTimeField()}, {"elapsed time", documents.ElapsedTimeField()},
      {"links", documents.URLField()},          {"hashtags", documents.KeyWordField()},
      {"mentions", documents.RefListField()},   {"retweets", documents.CitedField()},
  };
  std::string text;
  for (const auto& [name, roleField] : roles) {
    if (roleField != field || (!hasRetweets && std::string_view(name) == "retweets")) continue;
    text += text.empty() ? "" : ", ";
    text += name;
  }
  return text;
}

void PrintTerms(std::ostream& out, const char* heading, const std::vector<TermCount>& terms,
                const char* sigil) {
  out << heading << ":";
  if (terms.empty()) out << " none";
  out << '\n';
  for (const auto& term : terms) {
    out << "  " << std::setw(6) << term.count << "  " << sigil << term.term << '\n';
  }
}

void PrintSummary(std::ostream& out, const Session& session, const LoadReport& report,
                  const std::vector<std::string>& notes) {
  const DocumentSet& documents = session.Documents();
  const CorpusSummary summary = SummariseCorpus(documents);
  out << "Corpus:    " << documents.FilePath() << '\n';
  out << "Shape:     " << session.Corpus().shape << '\n';
  out << "Format:    " << static_cast<int>(session.Corpus().format) << " ("
      << CorpusFormatName(session.Corpus().format) << ")\n";
  out << "Documents: " << summary.documents << '\n';
  if (report.repairedLines > 0)
    out << "Encoding:  " << RepairedLinesNote(report.repairedLines) << '\n';
  out << "From:      " << summary.firstDateTime << '\n';
  out << "To:        " << summary.lastDateTime << '\n';
  out << "Fields:\n";
  for (int f = 0; f < documents.FieldCount(); ++f) {
    const auto field = static_cast<FieldIndex>(f);
    const std::string roles = RolesOf(session, field);
    out << "  " << std::setw(3) << f << "  " << documents.FieldName(field);
    if (documents.FieldExpressed(field)) out << " [indexed]";
    if (!roles.empty()) out << "  (" << roles << ")";
    out << '\n';
  }
  const auto share = [&](DocIndex count) {
    char text[64];
    std::snprintf(text, sizeof text, "%d (%.1f%%)", count,
                  summary.documents > 0 ? 100.0 * count / summary.documents : 0.0);
    return std::string(text);
  };
  out << "With links:    " << share(summary.withLinks) << '\n';
  out << "With hashtags: " << share(summary.withHashtags) << '\n';
  out << "With mentions: " << share(summary.withMentions) << '\n';
  PrintTerms(out, "Top hashtags", summary.topHashtags, "#");
  PrintTerms(out, "Top mentions", summary.topMentions, "@");
  out << "Index defaults: Min DF " << report.minDocFrequency << ", Max DF "
      << report.maxDocFrequency << '\n';
  out << "Stage times:\n";
  double total = 0;
  for (const auto& stage : report.stages) {
    out << "  " << std::left << std::setw(16) << stage.stage << std::right << std::fixed
        << std::setprecision(3) << stage.seconds << " s\n";
    total += stage.seconds;
  }
  for (const auto& note : notes) out << "  note: " << note << '\n';
  out << "  " << std::left << std::setw(16) << "total" << std::right << total << " s\n";
  out.unsetf(std::ios::fixed);
}

}  // namespace

int RunLoadCommand(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& err) {
  std::set<std::string> valueOptions = {"unit", "min-doc-len", "max-docs"};
  std::set<std::string> switches = {"radian", "yes", "help"};
  AddImportFlags(valueOptions, switches);
  CommandLine line(valueOptions, switches);
  if (line.Parse(arguments) && line.Has("help")) {
    out << kUsage << kImportFlagsUsage;
    return 0;
  }
  line = CommandLine(valueOptions, switches);
  if (!line.Parse(arguments) || line.Positional().size() != 1) {
    err << (line.Error().empty() ? "load takes one corpus file" : line.Error()) << '\n' << kUsage;
    return 2;
  }
  LoadOptions options;
  options.path = line.Positional()[0];
  options.radian = line.Has("radian");
  options.unitCode = line.Value("unit", "h");
  const auto minDocLen = line.Number("min-doc-len", 64, 0, kWholeMax);
  const auto maxDocs = line.Number("max-docs", 0, 0, kWholeMax);
  if (!minDocLen || !maxDocs) {
    err << line.Error() << '\n' << kUsage;
    return 2;
  }
  options.minDocLen = static_cast<int>(*minDocLen);
  options.maxDocCount = static_cast<int>(*maxDocs);
  if (!ReadImportFlags(line, options, err)) {
    err << kUsage;
    return 2;
  }

  Session session;
  StreamNotifier notifier(err, line.Has("yes"));
  const LoadReport report = LoadCorpus(session, options, notifier);
  if (!report.loaded) {
    err << "Error: " << report.error << '\n';
    return 1;
  }
  for (const auto& warning : report.warnings) err << "Warning: " << warning << '\n';
  PrintSummary(out, session, report, notifier.Notes());
  return 0;
}

}  // namespace sylvora::cli
