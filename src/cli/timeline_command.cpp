#include "cli/timeline_command.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "cli/command_line.h"
#include "cli/index_command.h"
#include "cli/stream_notifier.h"
#include "common/file_io.h"
#include "session/interval_length_proposal.h"
#include "session/interval_models.h"
#include "views/view_pictures.h"

namespace sylvora::cli {
namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli timeline FILE [--length L] [--unit s|n|h|d|ww] [--novelty-window W]\n"
    "                                 [--burst ratio|temporal|z] [--json] [--events FILE]\n"
    "                                 [--png FILE] [--chart-png FILE] [--memory-budget MB]\n"
    "                                 [--yes] and the load and\n"
    "                                 index flags of 'index'\n"
    "  --length L           interval length in units (default 24); \"auto\" proposes one that\n"
    "                       gives at most about 1,000 intervals (weeks, 4 weeks, years...)\n"
    "  --novelty-window W   intervals compared for novelty, 0..255 (default 1)\n"
    "  --burst M            burst measure of the burst words (default ratio)\n"
    "  --events FILE        tab-separated lines: date-time, description\n"
    "  --png FILE           also draw the term time line (Line style) into a PNG picture\n"
    "  --chart-png FILE     also draw the main time line (mean sentiment) into a PNG picture\n"
    "  --memory-budget MB   megabytes the models may take; larger ones are refused with an\n"
    "                       interval length that fits (default 2048)\n"
    "  --yes                answer OK to the model-building questions\n";

// Reads an event file: each line's first tab-separated field is the date-time and the second
// the description.
bool ReadEvents(const std::string& path, std::vector<TimelineEvent>& events, std::string& error) {
  std::string text;
  if (!ReadWholeFile(path, text, error)) return false;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    const std::size_t tab = line.find('\t');
    TimelineEvent event;
    event.dateTime = line.substr(0, tab);
    if (tab != std::string::npos) {
      const std::size_t end = line.find('\t', tab + 1);
      event.description = line.substr(tab + 1, end == std::string::npos ? end : end - tab - 1);
    }
    events.push_back(std::move(event));
  }
  return true;
}

std::string JsonString(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        quoted += "\\\"";
        break;
      case '\\':
        quoted += "\\\\";
        break;
      case '\n':
        quoted += "\\n";
        break;
      case '\r':
        quoted += "\\r";
        break;
      case '\t':
        quoted += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
          quoted += escaped;
        } else {
          quoted += c;
        }
    }
  }
  return quoted + '"';
}

// A score as a JSON value: a number, or a string for the values JSON has no number for.
std::string JsonScore(float value) {
  const std::string text = ScoreText(value);
  return std::isfinite(value) ? text : JsonString(text);
}

struct JsonHeader {
  std::string corpus;
  std::int32_t length = 0;
  std::string unit;
  std::int32_t noveltyWindow = 0;
  std::string burst;
  std::int32_t trunK = 0;
};

void WriteJson(std::ostream& out, const JsonHeader& header, const std::vector<TimelineRow>& rows) {
  out << "{\n  \"corpus\": " << JsonString(header.corpus)
      << ",\n  \"interval_length\": " << header.length
      << ",\n  \"unit\": " << JsonString(header.unit) << ",\n  \"interval_count\": " << rows.size()
      << ",\n  \"novelty_window\": " << header.noveltyWindow
      << ",\n  \"burst_measure\": " << JsonString(header.burst)
      << ",\n  \"trunk\": " << header.trunK << ",\n  \"intervals\": [";
  for (std::size_t r = 0; r < rows.size(); ++r) {
    const TimelineRow& row = rows[r];
    out << (r == 0 ? "\n" : ",\n") << "    {\"interval\": " << row.interval
        << ", \"start\": " << JsonString(row.start) << ", \"documents\": " << row.documents
        << ", \"documents_with_links\": " << row.documentsWithLinks
        << ", \"novelty\": " << JsonScore(row.novelty)
        << ", \"homogeneity\": " << JsonScore(row.homogeneity)
        << ", \"link_ratio\": " << JsonScore(row.linkRatio)
        << ", \"positive\": {\"mean\": " << JsonScore(row.positiveMean)
        << ", \"mode\": " << row.positiveMode << ", \"median\": " << row.positiveMedian << "}"
        << ", \"negative\": {\"mean\": " << JsonScore(row.negativeMean)
        << ", \"mode\": " << row.negativeMode << ", \"median\": " << row.negativeMedian << "}"
        << ", \"bursts\": [";
    for (std::size_t k = 0; k < row.bursts.size(); ++k) {
      out << (k == 0 ? "" : ", ") << "{\"term\": " << JsonString(row.bursts[k].term)
          << ", \"score\": " << JsonScore(row.bursts[k].score) << "}";
    }
    out << "], \"events\": " << JsonString(row.events) << "}";
  }
  out << (rows.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

}  // namespace

std::vector<TimelineRow> TimelineRows(Session& session, std::uint8_t noveltyWindow,
                                      std::int32_t burstMeasure) {
  IntervalSeries series;
  ComputeIntervalSeries(session, noveltyWindow, burstMeasure, series);
  return std::move(series.rows);
}

int RunTimelineCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err) {
  std::set<std::string> valueOptions = CorpusValueOptions();
  valueOptions.insert(
      {"length", "novelty-window", "burst", "events", "png", "chart-png", "memory-budget"});
  std::set<std::string> switches = CorpusSwitches();
  switches.insert("json");
  CommandLine line(valueOptions, switches);
  const bool parsed = line.Parse(arguments);
  if (parsed && line.Has("help")) {
    out << kUsage;
    return 0;
  }
  if (!parsed || line.Positional().size() != 1) {
    err << (line.Error().empty() ? "timeline takes one corpus file" : line.Error()) << '\n'
        << kUsage;
    return 2;
  }
  CorpusOptions options;
  if (!ReadCorpusOptions(line, options, err)) {
    err << kUsage;
    return 2;
  }
  const auto window = line.Number("novelty-window", 1, 0, 255);
  // "auto" proposes a length that gives at most about a thousand intervals.
  const bool autoLength = line.Value("length", "") == "auto";
  const auto length =
      autoLength ? std::optional<long long>(24) : line.Number("length", 24, 1, kWholeMax);
  const auto budget = line.Number("memory-budget", kDefaultMemoryBudgetBytes >> 20, 1, 1LL << 30);
  if (!window || !length || !budget) {
    err << line.Error() << '\n' << kUsage;
    return 2;
  }
  const std::string burst = line.Value("burst", "ratio");
  std::int32_t measure = TextStream::kRatioBurst;
  if (burst == "temporal") {
    measure = TextStream::kTemporalRatioBurst;
  } else if (burst == "z") {
    measure = TextStream::kZScoreBurst;
  } else if (burst != "ratio") {
    err << "--burst takes ratio, temporal or z\n" << kUsage;
    return 2;
  }
  ModelOptions models;
  models.intervalLength = std::to_string(*length);
  models.unitCode = options.load.unitCode;
  models.memoryBudgetBytes = static_cast<std::int64_t>(*budget) << 20;
  if (line.Has("events")) {
    std::string error;
    if (!ReadEvents(line.Value("events", ""), models.events, error)) {
      err << "Error: " << error << '\n';
      return 1;
    }
  }
  if (options.index.stopListPath.empty()) {
    err << "Error: no stop list found; name one with --stop-list PATH\n";
    return 1;
  }

  Session session;
  StreamNotifier notifier(err, line.Has("yes"));
  const LoadReport load = LoadCorpus(session, options.load, notifier);
  if (!load.loaded) {
    err << "Error: " << load.error << '\n';
    return 1;
  }
  for (const auto& warning : load.warnings) err << "Warning: " << warning << '\n';
  // The table goes to stdout; what was found in the file goes beside the stage times.
  err << "Shape: " << session.Corpus().shape << '\n';
  const IndexReport indexed = BuildIndexes(session, options.index);
  if (!indexed.indexed) {
    err << "Error: " << indexed.error << '\n';
    return 1;
  }
  if (autoLength) {
    const IntervalLengthProposal proposal = ProposeIntervalLength(session.Documents());
    models.intervalLength = std::to_string(proposal.length);
    models.unitCode = proposal.unitCode;
    err << (proposal.proposed ? proposal.Describe()
                              : "Interval length: 24 hours, " +
                                    std::to_string(proposal.defaultIntervals) + " intervals")
        << '\n';
  }
  const ModelReport built = BuildModels(session, models, notifier);
  if (!built.built) {
    err << "Error: " << built.error << '\n';
    return 1;
  }
  for (const auto& warning : built.warnings) err << "Warning: " << warning << '\n';

  Stopwatch watch;
  const std::vector<TimelineRow> rows =
      TimelineRows(session, static_cast<std::uint8_t>(*window), measure);
  const double scoring = watch.Lap();
  if (line.Has("json")) {
    WriteJson(out,
              {session.Documents().FilePath(), built.intervalLength, built.unitCode,
               static_cast<std::int32_t>(*window), burst, built.trunK},
              rows);
  } else {
    WriteIntervalSeriesCsv(out, rows);
  }

  double drawing = 0.0;
  if (line.Has("png")) {
    std::string error;
    if (!WriteTermTimelinePng(session.WordModel(), session.WordIndex(), built.unitCode,
                              line.Value("png", ""), PictureSize{}, error)) {
      err << "Error: " << error << '\n';
      return 1;
    }
    drawing = watch.Lap();
  }
  if (line.Has("chart-png")) {
    IntervalSeries series;
    series.noveltyWindow = static_cast<std::uint8_t>(*window);
    series.maxIntervalDocCount = session.WordModel().MaxIntervalDocCount();
    series.rows = rows;
    std::string error;
    if (!WriteTimeLineChartPng(series, 0, line.Value("chart-png", ""), PictureSize{1600, 400},
                               error)) {
      err << "Error: " << error << '\n';
      return 1;
    }
    drawing += watch.Lap();
  }

  std::vector<StageTiming> stages;
  for (const StageTiming& stage : load.stages)
    stages.push_back({"load: " + stage.stage, stage.seconds});
  stages.insert(stages.end(), indexed.stages.begin(), indexed.stages.end());
  for (const StageTiming& stage : built.stages)
    stages.push_back({"model: " + stage.stage, stage.seconds});
  stages.push_back({"scores", scoring});
  if (line.Has("png") || line.Has("chart-png")) stages.push_back({"picture", drawing});
  PrintStages(err, stages, notifier.Notes());
  return 0;
}

}  // namespace sylvora::cli
