#include "cli/index_command.h"

#include <filesystem>
#include <iomanip>

#include "cli/command_line.h"
#include "cli/import_flags.h"
#include "cli/stream_notifier.h"
#include "common/data_files.h"
#include "common/file_io.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"

namespace sylvora::cli {
namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli index FILE [--radian] [--unit s|n|h|d|ww] [--min-doc-len N]\n"
    "                              [--max-docs N] [--min-df N] [--max-df N] [--min-chars N]\n"
    "                              [--no-porter] [--no-abbrev] [--allow-numbers]\n"
    "                              [--secondary-min-df N] [--stop-list PATH]\n"
    "                              [--max-per-letter N]\n"
    "                              [--map ROLE=COLUMN] [--skip-bad]\n";

constexpr std::size_t kTopTerms = 20;

// The indexes in the order of the window's term-list tabs.
constexpr IndexKind kPrintOrder[] = {IndexKind::kWords, IndexKind::kHashtags, IndexKind::kLinks,
                                     IndexKind::kMentions, IndexKind::kUsers};

const char* Heading(IndexKind kind) {
  switch (kind) {
    case IndexKind::kWords:
      return "Words";
    case IndexKind::kHashtags:
      return "Tags";
    case IndexKind::kLinks:
      return "Links";
    case IndexKind::kMentions:
      return "Mentions";
    case IndexKind::kUsers:
      return "Users";
  }
  return "";
}

void PrintIndex(std::ostream& out, IndexKind kind, const TermDocumentMatrix& index) {
  out << Heading(kind) << " (" << index.TermCount() << " terms)\n";
  out << "  " << std::setw(7) << "DF"
      << "  " << std::setw(7) << "GF"
      << "  term\n";
  for (const std::int32_t t : TermsByDocumentFrequency(index, kTopTerms)) {
    out << "  " << std::setw(7) << index.DocFreq(t) << "  " << std::setw(7) << index.GlobalFreq(t)
        << "  " << index.Term(t) << '\n';
  }
}

}  // namespace

void PrintStages(std::ostream& out, const std::vector<StageTiming>& stages,
                 const std::vector<std::string>& notes) {
  out << "Stage times:\n";
  double total = 0;
  const auto line = [&](const std::string& stage, double seconds) {
    out << "  " << std::left << std::setw(22) << stage << std::right << std::fixed
        << std::setprecision(3) << seconds << " s\n";
  };
  for (const auto& stage : stages) {
    line(stage.stage, stage.seconds);
    total += stage.seconds;
  }
  for (const auto& note : notes) out << "  note: " << note << '\n';
  line("total", total);
  out.unsetf(std::ios::fixed);
}

bool ReadCorpusOptions(CommandLine& line, CorpusOptions& options, std::ostream& err) {
  options.load.path = line.Positional()[0];
  options.load.radian = line.Has("radian");
  options.load.unitCode = line.Value("unit", "h");
  const auto minDocLen = line.Number("min-doc-len", 64, 0, kWholeMax);
  const auto maxDocs = line.Number("max-docs", 0, 0, kWholeMax);
  const auto minChars = line.Number("min-chars", 3, 0, 255);
  const auto secondary = line.Number("secondary-min-df", 2, 0, kWholeMax);
  const auto minDF = line.Number("min-df", -1, 0, kWholeMax);
  const auto maxDF = line.Number("max-df", -1, 0, kWholeMax);
  const auto perLetter = line.Number("max-per-letter", 0, 0, kWholeMax);
  if (!minDocLen || !maxDocs || !minChars || !secondary || !minDF || !maxDF || !perLetter) {
    err << line.Error() << '\n';
    return false;
  }
  options.load.minDocLen = static_cast<int>(*minDocLen);
  options.load.maxDocCount = static_cast<int>(*maxDocs);
  options.index.minChars = static_cast<int>(*minChars);
  options.index.secondaryMinDocFrequency = static_cast<std::int32_t>(*secondary);
  if (line.Has("min-df")) options.index.minDocFrequency = static_cast<std::int32_t>(*minDF);
  if (line.Has("max-df")) options.index.maxDocFrequency = static_cast<double>(*maxDF);
  options.index.termsPerLetter = static_cast<std::int32_t>(*perLetter);
  options.index.porter = !line.Has("no-porter");
  options.index.abbreviations = !line.Has("no-abbrev");
  options.index.allowNumbers = line.Has("allow-numbers");
  options.index.stopListPath = line.Value("stop-list", DefaultStopListPath());
  return ReadImportFlags(line, options.load, err);
}

namespace {

const char* OnOff(bool on) { return on ? "on" : "off"; }

}  // namespace

std::string DefaultStopListPath() {
  namespace fs = std::filesystem;
  const std::string program = ProgramFolder();
  std::vector<fs::path> candidates;
  if (!program.empty()) candidates.push_back(fs::path(program) / "common_words.txt");
  if (const std::string shipped = FindDataFile("common_words.txt", program); !shipped.empty()) {
    candidates.push_back(shipped);
  }
  std::error_code error;
  candidates.push_back(fs::current_path(error) / "data" / "common_words.txt");
  for (const fs::path& candidate : candidates) {
    if (FileExists(candidate.string())) return candidate.lexically_normal().string();
  }
  return {};
}

std::set<std::string> CorpusValueOptions() {
  std::set<std::string> options = {"unit",          "min-doc-len", "max-docs",         "min-df",
                                   "max-df",        "min-chars",   "secondary-min-df", "stop-list",
                                   "max-per-letter"};
  std::set<std::string> switches;
  AddImportFlags(options, switches);
  return options;
}

std::set<std::string> CorpusSwitches() {
  std::set<std::string> switches = {"radian",    "yes",       "help",
                                    "no-porter", "no-abbrev", "allow-numbers"};
  std::set<std::string> options;
  AddImportFlags(options, switches);
  return switches;
}

int RunIndexCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err) {
  CommandLine line(CorpusValueOptions(), CorpusSwitches());
  const bool parsed = line.Parse(arguments);
  if (parsed && line.Has("help")) {
    out << kUsage << kImportFlagsUsage;
    return 0;
  }
  if (!parsed || line.Positional().size() != 1) {
    err << (line.Error().empty() ? "index takes one corpus file" : line.Error()) << '\n' << kUsage;
    return 2;
  }
  CorpusOptions options;
  if (!ReadCorpusOptions(line, options, err)) {
    err << kUsage;
    return 2;
  }
  if (options.index.stopListPath.empty()) {
    err << "Error: no stop list found (looked for common_words.txt beside the program, in the "
           "install's share/sylvora and in ./data); name one with --stop-list PATH\n";
    return 1;
  }
  if (options.index.allowNumbers) {
    err << "Note: --allow-numbers changes nothing: digits always separate tokens\n";
  }

  Session session;
  StreamNotifier notifier(err, line.Has("yes"));
  const LoadReport load = LoadCorpus(session, options.load, notifier);
  if (!load.loaded) {
    err << "Error: " << load.error << '\n';
    return 1;
  }
  for (const auto& warning : load.warnings) err << "Warning: " << warning << '\n';

  const IndexReport report = BuildIndexes(session, options.index);
  if (!report.indexed) {
    err << "Error: " << report.error << '\n';
    return 1;
  }

  out << "Corpus:    " << session.Documents().FilePath() << '\n';
  out << "Shape:     " << session.Corpus().shape << '\n';
  out << "Documents: " << session.Documents().DocumentCount() << '\n';
  out << "Stop list: " << options.index.stopListPath << '\n';
  out << "Word index: " << report.wordDocuments << " documents, Min DF " << report.minDocFrequency
      << ", Max DF " << report.maxDocFrequency << ", Min Chars " << options.index.minChars
      << ", Porter stemming " << OnOff(options.index.porter) << ", abbreviations "
      << OnOff(options.index.abbreviations) << '\n';
  out << "Other indexes: Min DF " << options.index.secondaryMinDocFrequency << '\n';
  if (options.index.termsPerLetter > 0) {
    out << "Terms per first letter: " << options.index.termsPerLetter << "; dropped:";
    for (const IndexKind kind : kPrintOrder) {
      out << ' ' << IndexKindName(kind) << ' '
          << report.droppedTerms[static_cast<std::size_t>(kind)];
    }
    out << '\n';
  }
  for (const IndexKind kind : kPrintOrder) {
    out << '\n';
    PrintIndex(out, kind, session.Index(kind));
  }
  out << '\n';
  std::vector<StageTiming> stages;
  for (const StageTiming& stage : load.stages)
    stages.push_back({"load: " + stage.stage, stage.seconds});
  stages.insert(stages.end(), report.stages.begin(), report.stages.end());
  PrintStages(out, stages, notifier.Notes());
  return 0;
}

}  // namespace sylvora::cli
