#include "cli/map_command.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iomanip>

#include "cli/command_line.h"
#include "cli/index_command.h"
#include "cli/stream_notifier.h"
#include "common/stopwatch.h"
#include "layout/layout_folder.h"
#include "session/cluster_maps.h"
#include "session/interval_models.h"
#include "session/map_export.h"
#include "views/view_pictures.h"

namespace sylvora::cli {
namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli map FILE [--kind words|intervals|tweets] [--level tweet|interval]\n"
    "                            [--interval K] [--length L] [--unit s|n|h|d|ww]\n"
    "                            [--out PREFIX] [--graphviz DIR] [--layout-folder DIR]\n"
    "                            [--neighbours N] [--png FILE] [--label-threshold T]\n"
    "                            [--layout-timeout SECONDS] [--memory-budget MB] [--yes]\n"
    "                            and the corpus and index flags of 'sylvora-cli index'\n"
    "  --kind       words (default): every term of the word index; intervals: every interval;\n"
    "               tweets: the tweets of one interval\n"
    "  --level      words map co-occurrence in the same tweet (default) or the same interval\n"
    "  --interval   the interval of the tweet map (default: the one with the most tweets)\n"
    "  --length     interval length in --unit units (default 24)\n"
    "  --out        prefix of the written files (default: FILE's name + '_' + kind + '_map')\n"
    "  --graphviz   folder of the sfdp program (default: the one on PATH)\n"
    "  --neighbours how many of the heaviest nodes to print with their neighbours (default 20)\n"
    "  --png        also draw the map into a PNG picture, as the cluster explorer shows it\n"
    "  --label-threshold  word maps: label words in at least T per thousand documents\n"
    "               (0 to 1000, default 120)\n"
    "  --layout-timeout  seconds sfdp may take before the map is given up (default 20;\n"
    "               0 waits as long as it takes)\n"
    "  --memory-budget  megabytes the models and the map may take; larger ones are refused\n"
    "               with an interval length that fits (default 2048)\n";

constexpr long long kDefaultLayoutSeconds = kLayoutTimeLimitMs / 1000;
// A day: more than any layout of the maps' sizes needs, and within 32-bit milliseconds.
constexpr long long kMaxLayoutSeconds = 86400;

struct MapCommandOptions {
  CorpusOptions corpus;
  MapKind kind = MapKind::kWords;
  WordMapLevel level = WordMapLevel::kTweet;
  std::int32_t interval = 0;  // 0: the busiest
  std::string length = "24";
  std::string prefix;
  MapOptions map;
  std::int32_t neighbours = 20;
  std::int16_t labelThreshold = kWordMapLabelThreshold;
};

bool ReadMapOptions(CommandLine& line, MapCommandOptions& options, std::ostream& err) {
  if (!ReadCorpusOptions(line, options.corpus, err)) return false;
  const std::string kind = line.Value("kind", "words");
  if (kind == "words") {
    options.kind = MapKind::kWords;
  } else if (kind == "intervals") {
    options.kind = MapKind::kIntervals;
  } else if (kind == "tweets") {
    options.kind = MapKind::kTweets;
  } else {
    err << "--kind takes words, intervals or tweets\n";
    return false;
  }
  const std::string level = line.Value("level", "tweet");
  if (level != "tweet" && level != "interval") {
    err << "--level takes tweet or interval\n";
    return false;
  }
  options.level = level == "tweet" ? WordMapLevel::kTweet : WordMapLevel::kInterval;
  const auto interval = line.Number("interval", 0, 1, kWholeMax);
  const auto neighbours = line.Number("neighbours", 20, 0, kWholeMax);
  const auto length = line.Number("length", 24, 1, kWholeMax);
  const auto threshold = line.Number("label-threshold", kWordMapLabelThreshold, 0, 1000);
  const auto timeout = line.Number("layout-timeout", kDefaultLayoutSeconds, 0, kMaxLayoutSeconds);
  const auto budget = line.Number("memory-budget", kDefaultMemoryBudgetBytes >> 20, 1, 1LL << 30);
  if (!interval || !neighbours || !length || !threshold || !timeout || !budget) {
    err << line.Error() << '\n';
    return false;
  }
  options.interval = static_cast<std::int32_t>(*interval);
  options.neighbours = static_cast<std::int32_t>(*neighbours);
  options.length = std::to_string(*length);
  options.labelThreshold = static_cast<std::int16_t>(*threshold);
  options.map.timeLimitMs = static_cast<std::int32_t>(*timeout * 1000);
  options.map.memoryBudgetBytes = static_cast<std::int64_t>(*budget) << 20;
  const std::string stem = std::filesystem::path(options.corpus.load.path).stem().string();
  options.prefix = line.Value("out", stem + "_" + MapKindName(options.kind) + "_map");
  options.map.graphvizFolder = line.Value("graphviz", DefaultGraphvizFolder());
  options.map.layoutFolder = line.Value("layout-folder", "");
  return true;
}

// Whether the layout program can run, checked before any work. Without --graphviz the folder
// is a guess (sfdp's folder on PATH, else one beside the program), so its name would mislead.
bool LayoutProgramFound(const CommandLine& line, const MapCommandOptions& options,
                        std::ostream& err) {
  const std::string program = options.map.graphvizFolder + "/" + options.map.algorithm;
  if (::access(program.c_str(), X_OK) == 0) return true;
  if (line.Has("graphviz")) {
    err << "Error: '" << options.map.graphvizFolder << "' holds no runnable "
        << options.map.algorithm << "; pass the folder of Graphviz's programs with --graphviz\n";
  } else {
    err << "Error: " << options.map.algorithm
        << " is not on PATH: install Graphviz (Debian: apt install graphviz) or pass the folder "
           "that holds it with --graphviz DIR\n";
  }
  return false;
}

bool NeedsModels(const MapCommandOptions& options) {
  return options.kind != MapKind::kWords || options.level == WordMapLevel::kInterval;
}

std::int32_t BusiestInterval(const TextStream& model) {
  std::int32_t best = 1;
  for (std::int32_t k = 1; k <= model.IntervalCount(); ++k) {
    if (model.IntervalDocCount(k) > model.IntervalDocCount(best)) best = k;
  }
  return best;
}

// The heaviest nodes (ties in node order) with their tree neighbours, nearest first.
void PrintNeighbours(std::ostream& out, const ClusterMap& map, std::int32_t count) {
  const std::int32_t n = map.NodeCount();
  std::vector<std::vector<std::pair<float, std::int32_t>>> adjacent(static_cast<std::size_t>(n));
  for (const EdgeRecord& edge : map.layout.Edges()) {
    if (edge.FromNode < 0 || edge.FromNode >= n || edge.ToNode < 0 || edge.ToNode >= n) continue;
    adjacent[static_cast<std::size_t>(edge.FromNode)].push_back({edge.Weight, edge.ToNode});
    adjacent[static_cast<std::size_t>(edge.ToNode)].push_back({edge.Weight, edge.FromNode});
  }
  std::vector<std::int32_t> order(static_cast<std::size_t>(n));
  for (std::int32_t i = 0; i < n; ++i) order[static_cast<std::size_t>(i)] = i;
  const auto weight = [&](std::int32_t i) {
    const auto node = static_cast<std::size_t>(i);
    return node < map.weights.size() ? map.weights[node] : 0.0f;
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::int32_t a, std::int32_t b) { return weight(a) > weight(b); });
  order.resize(std::min<std::size_t>(order.size(), static_cast<std::size_t>(count)));
  if (order.empty()) return;
  out << "Tree neighbours of the " << order.size() << " heaviest nodes (nearest first):\n";
  for (const std::int32_t i : order) {
    auto& links = adjacent[static_cast<std::size_t>(i)];
    std::stable_sort(links.begin(), links.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    out << "  " << map.labels[static_cast<std::size_t>(i)] << " (" << weight(i) << "):";
    for (const auto& [length, other] : links) {
      out << ' ' << map.labels[static_cast<std::size_t>(other)] << " " << std::fixed
          << std::setprecision(2) << length;
      out.unsetf(std::ios::fixed);
      out << std::setprecision(6);
    }
    out << '\n';
  }
}

}  // namespace

int RunMapCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  std::set<std::string> valueOptions = CorpusValueOptions();
  valueOptions.insert({"kind", "level", "interval", "length", "out", "graphviz", "layout-folder",
                       "neighbours", "png", "label-threshold", "layout-timeout", "memory-budget"});
  CommandLine line(valueOptions, CorpusSwitches());
  const bool parsed = line.Parse(arguments);
  if (parsed && line.Has("help")) {
    out << kUsage;
    return 0;
  }
  if (!parsed || line.Positional().size() != 1) {
    err << (line.Error().empty() ? "map takes one corpus file" : line.Error()) << '\n' << kUsage;
    return 2;
  }
  MapCommandOptions options;
  if (!ReadMapOptions(line, options, err)) {
    err << kUsage;
    return 2;
  }
  if (options.corpus.index.stopListPath.empty()) {
    err << "Error: no stop list found; name one with --stop-list PATH\n";
    return 1;
  }
  if (!LayoutProgramFound(line, options, err)) return 1;

  Session session;
  StreamNotifier notifier(err, line.Has("yes"));
  std::vector<StageTiming> stages;
  const LoadReport load = LoadCorpus(session, options.corpus.load, notifier);
  if (!load.loaded) {
    err << "Error: " << load.error << '\n';
    return 1;
  }
  for (const auto& warning : load.warnings) err << "Warning: " << warning << '\n';
  for (const auto& stage : load.stages) stages.push_back({"load: " + stage.stage, stage.seconds});
  const IndexReport index = BuildIndexes(session, options.corpus.index);
  if (!index.indexed) {
    err << "Error: " << index.error << '\n';
    return 1;
  }
  stages.insert(stages.end(), index.stages.begin(), index.stages.end());
  if (NeedsModels(options)) {
    ModelOptions models;
    models.intervalLength = options.length;
    models.unitCode = options.corpus.load.unitCode;
    models.memoryBudgetBytes = options.map.memoryBudgetBytes;
    const ModelReport report = BuildModels(session, models, notifier);
    if (!report.built) {
      err << "Error: "
          << (report.error.empty() ? "the interval models were not built" : report.error) << '\n';
      return 1;
    }
    for (const auto& stage : report.stages) {
      stages.push_back({"models: " + stage.stage, stage.seconds});
    }
  }

  ClusterMap map;
  MapReport report;
  const TermDocumentMatrix& words = session.WordIndex();
  const TextStream& model = session.WordModel();
  switch (options.kind) {
    case MapKind::kWords:
      report = BuildWordMap(words, &model, options.level, options.map, map, notifier);
      break;
    case MapKind::kIntervals:
      report = BuildIntervalMap(model, options.map, map, notifier);
      break;
    case MapKind::kTweets:
      if (options.interval == 0) options.interval = BusiestInterval(model);
      report = BuildTweetMap(words, model, options.interval, options.map, map, notifier);
      break;
  }
  for (const auto& stage : report.stages) stages.push_back({"map: " + stage.stage, stage.seconds});
  if (!report.built) {
    err << "Error: " << report.error << '\n';
    return 1;
  }
  if (!report.warning.empty()) err << "Warning: " << report.warning << '\n';
  std::string error;
  if (!WriteMapFiles(map, options.prefix, error)) {
    err << "Error: " << error << '\n';
    return 1;
  }

  if (line.Has("png")) {
    Stopwatch watch;
    if (!WriteMapPng(map, options.labelThreshold, line.Value("png", ""), PictureSize{}, error)) {
      err << "Error: " << error << '\n';
      return 1;
    }
    stages.push_back({"picture", watch.Lap()});
  }

  out << "Corpus:    " << session.Documents().FilePath() << '\n';
  out << "Shape:     " << session.Corpus().shape << '\n';
  out << "Documents: " << session.Documents().DocumentCount() << '\n';
  out << "Word index: " << words.TermCount() << " terms\n";
  if (NeedsModels(options)) {
    out << "Intervals: " << model.IntervalCount() << " of " << session.IntervalLength() << ' '
        << session.IntervalUnit() << '\n';
  }
  out << "Map:       " << MapKindName(options.kind);
  if (options.kind == MapKind::kWords) {
    out << " (co-occurrence in the same "
        << (options.level == WordMapLevel::kTweet ? "tweet" : "interval") << ")";
  }
  if (options.kind == MapKind::kTweets) {
    out << " of interval " << options.interval << " (corpus rows " << map.firstDocument << ".."
        << map.firstDocument + map.NodeCount() - 1 << ")";
  }
  out << ", " << report.nodeCount << " nodes, " << report.edgeCount << " links, drawing "
      << map.layout.ScaleX() << " x " << map.layout.ScaleY() << '\n';
  out << "Files:     " << options.prefix << "_nodes.csv, " << options.prefix << "_edges.csv, "
      << options.prefix << ".graphml\n\n";
  PrintNeighbours(out, map, options.neighbours);
  out << '\n';
  PrintStages(out, stages, notifier.Notes());
  return 0;
}

}  // namespace sylvora::cli
