#include "layout/spatial.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <unordered_map>

#include "common/file_io.h"
#include "layout/layout_folder.h"
#include "layout/shell_and_wait.h"
#include "sparse/number_format.h"

namespace sylvora {
namespace {

constexpr std::string_view kFailureTitle = "Graph layout failed";
// The error text of a node reading stopped through the progress callback: not a failure to
// report.
constexpr std::string_view kCancelled = "Cancelled";

// Splits on single spaces: two spaces in a row give an empty field between them.
std::vector<std::string_view> SplitSpaces(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t space = line.find(' ', start);
    if (space == std::string_view::npos) {
      fields.push_back(line.substr(start));
      return fields;
    }
    fields.push_back(line.substr(start, space - start));
    start = space + 1;
  }
}

std::string_view WithoutTrailingCr(std::string_view text) {
  while (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  return text;
}

// The whole field as a number ("." as the decimal point); false when any of it is not.
template <typename Number>
bool ParseField(std::string_view field, Number& value) {
  field = WithoutTrailingCr(field);
  if (field.empty()) return false;
  const char* begin = field.data();
  const char* end = begin + field.size();
  if (*begin == '+') ++begin;
  const auto [stop, code] = std::from_chars(begin, end, value);
  return code == std::errc() && stop == end;
}

// The line that starts at `from`, up to the next line end.
std::string_view LineAt(std::string_view text, std::size_t from) {
  const std::size_t end = text.find_first_of("\r\n", from);
  return text.substr(from, end == std::string_view::npos ? std::string_view::npos : end - from);
}

// Where "node " + k + " " first occurs in the text, for every k written in decimal digits:
// the one index that replaces a search of the whole text per node. Keys are the digit texts.
class NodeLineIndex {
 public:
  explicit NodeLineIndex(std::string_view text) {
    constexpr std::string_view kNode = "node ";
    for (std::size_t at = text.find(kNode); at != std::string_view::npos;
         at = text.find(kNode, at + 1)) {
      std::size_t digitsEnd = at + kNode.size();
      while (digitsEnd < text.size() && text[digitsEnd] >= '0' && text[digitsEnd] <= '9') {
        ++digitsEnd;
      }
      if (digitsEnd == at + kNode.size() || digitsEnd >= text.size() || text[digitsEnd] != ' ') {
        continue;
      }
      const std::string_view digits = text.substr(at + kNode.size(), digitsEnd - at - kNode.size());
      // Node numbers are small; longer digit runs cannot be one of ours.
      if (digits.size() > 10) continue;
      first_.emplace(std::string(digits), at);
    }
  }

  // Position of the first "node k ", or npos.
  std::size_t Find(std::int64_t k) const {
    const auto found = first_.find(std::to_string(k));
    return found == first_.end() ? std::string_view::npos : found->second;
  }

 private:
  std::unordered_map<std::string, std::size_t> first_;
};

}  // namespace

std::string LayoutCommandLine(std::string_view gvPath, std::string_view algorithm,
                              std::string_view folder) {
  std::string_view program = "/sfdp";
  if (algorithm == "neato") program = "/neato";
  if (algorithm == "fdp") program = "/fdp";
  std::string command;
  command.append("\"").append(gvPath).append(program).append("\" ");
  command.append("\"").append(folder).append("/gvin.txt\"");
  command.append(" -Tplain -o\"").append(folder).append("/gvout.txt\"");
  return command;
}

Spatial::Spatial(Notifier& notifier) : notifier_(&notifier), folder_(DefaultLayoutFolder()) {}

std::int32_t Spatial::NodeDegree(std::int32_t i) const {
  if (i < 0) return 0;
  if (static_cast<std::size_t>(i) < degrees_.size()) return degrees_[static_cast<std::size_t>(i)];
  const auto far = farDegrees_.find(i);
  return far != farDegrees_.end() ? far->second : 0;
}

EdgeRecord Spatial::Edge(std::int32_t index) const {
  if (index < 0 || index >= EdgeCount()) return {};
  return edges_[static_cast<std::size_t>(index)];
}

float Spatial::X(std::int32_t i) const {
  if (i < 0 || i >= nodeCount_) return 0.0f;
  return x_[static_cast<std::size_t>(i)];
}

float Spatial::Y(std::int32_t i) const {
  if (i < 0 || i >= nodeCount_) return 0.0f;
  return y_[static_cast<std::size_t>(i)];
}

float Spatial::MinX() const {
  float result = 100.0f;
  for (const float v : x_) result = std::min(result, v);
  return result;
}

float Spatial::MaxX() const {
  float result = -100.0f;
  for (const float v : x_) result = std::max(result, v);
  return result;
}

float Spatial::MinY() const {
  float result = 100.0f;
  for (const float v : y_) result = std::min(result, v);
  return result;
}

float Spatial::MaxY() const {
  float result = -100.0f;
  for (const float v : y_) result = std::max(result, v);
  return result;
}

void Spatial::ResetNodes(std::int32_t nodeCount) {
  nodeCount_ = std::max<std::int32_t>(nodeCount, 0);
  scaleX_ = 0.0f;
  scaleY_ = 0.0f;
  x_.assign(static_cast<std::size_t>(nodeCount_), 0.0f);
  y_.assign(static_cast<std::size_t>(nodeCount_), 0.0f);
}

bool Spatial::SetGraphFromDot(std::string_view dotStr, std::int32_t firstNode) {
  edges_.clear();
  degrees_.clear();
  std::string compact;
  compact.reserve(dotStr.size());
  for (const char c : dotStr) {
    if (c != ' ' && c != '\t') compact.push_back(c);
  }
  std::vector<std::string_view> lines;
  std::string_view rest = compact;
  for (;;) {
    const std::size_t feed = rest.find('\n');
    lines.push_back(rest.substr(0, feed));
    if (feed == std::string_view::npos) break;
    rest.remove_prefix(feed + 1);
  }
  farDegrees_.clear();
  if (lines.size() < 4) return true;
  edges_.reserve(lines.size() - 4);
  degrees_.assign(std::max<std::size_t>(static_cast<std::size_t>(nodeCount_), lines.size()), 0);
  for (std::size_t i = 3; i + 1 < lines.size(); ++i) {
    std::string line(WithoutTrailingCr(lines[i]));
    // "a--b[len=w];" -> "a b w"
    if (const auto dash = line.find("--"); dash != std::string::npos) line.replace(dash, 2, " ");
    if (const auto len = line.find("[len="); len != std::string::npos) line.replace(len, 5, " ");
    for (auto close = line.find("];"); close != std::string::npos; close = line.find("];")) {
      line.erase(close, 2);
    }
    const auto fields = SplitSpaces(line);
    EdgeRecord edge;
    std::int32_t from = 0;
    std::int32_t to = 0;
    if (fields.size() < 3 || !ParseField(fields[0], from) || !ParseField(fields[1], to) ||
        !ParseField(fields[2], edge.Weight)) {
      return false;
    }
    edge.FromNode = from - firstNode;
    edge.ToNode = to - firstNode;
    edges_.push_back(edge);
    for (const std::int32_t node : {edge.FromNode, edge.ToNode}) {
      if (node < 0) continue;
      if (static_cast<std::size_t>(node) < degrees_.size()) {
        ++degrees_[static_cast<std::size_t>(node)];
      } else {
        ++farDegrees_[node];
      }
    }
  }
  return true;
}

std::string Spatial::GraphFromFile(const std::string& iPath) {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(iPath, bytes, error)) return {};
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 16 + 2);
  std::size_t start = 0;
  while (start < bytes.size()) {
    const std::size_t end = bytes.find_first_of("\r\n", start);
    if (end == std::string::npos) {
      text.append(bytes, start, std::string::npos).append("\r\n");
      break;
    }
    text.append(bytes, start, end - start).append("\r\n");
    start = end + 1;
    if (bytes[end] == '\r' && start < bytes.size() && bytes[start] == '\n') ++start;
  }
  return text;
}

std::string Spatial::Copy2Clip() const {
  std::string text;
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    text.append(GeneralNumber(X(i))).append("\t").append(GeneralNumber(Y(i))).append("\r\n");
  }
  return text;
}

bool Spatial::LoadGVPlain(const std::string& iPath, std::int32_t firstNode, std::int32_t nodeCount,
                          std::string& error, const ProgressCallback& progress) {
  ResetNodes(nodeCount);
  std::string text;
  if (!ReadWholeFile(iPath, text, error)) return false;
  const std::string_view all = text;
  const auto header = SplitSpaces(LineAt(all, 0));
  if (header.size() < 4 || header[0] != "graph" || !ParseField(header[2], scaleX_) ||
      !ParseField(header[3], scaleY_) || !std::isfinite(scaleX_) || !std::isfinite(scaleY_) ||
      scaleX_ < 0.0f || scaleY_ < 0.0f) {
    error = "'" + iPath + "' does not start with a 'graph scale width height' line";
    return false;
  }
  const NodeLineIndex index(all);
  ProgressReporter reporter(progress, "Reading the layout", nodeCount_, 1024);
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    const std::int64_t k = static_cast<std::int64_t>(firstNode) + i;
    const std::size_t at = index.Find(k);
    auto& x = x_[static_cast<std::size_t>(i)];
    auto& y = y_[static_cast<std::size_t>(i)];
    if (at == std::string_view::npos) {
      // Not placed by Graphviz: spread along the bottom edge in node order.
      x = static_cast<float>(i) / static_cast<float>(nodeCount_) * scaleX_;
      y = scaleY_ / 1000.0f;
    } else {
      const auto fields = SplitSpaces(LineAt(all, at));
      // "nan" and "inf" read as numbers, but would put every node on one line.
      if (fields.size() < 4 || !ParseField(fields[2], x) || !ParseField(fields[3], y) ||
          !std::isfinite(x) || !std::isfinite(y)) {
        error = "'" + iPath + "': malformed line '" + std::string(LineAt(all, at)) + "'";
        return false;
      }
    }
    if (!reporter.Step()) {
      error = kCancelled;
      return false;
    }
  }
  return true;
}

std::vector<float> Spatial::GetProximityMatrix() const {
  const auto n = static_cast<std::size_t>(nodeCount_);
  std::vector<float> distances(n * n, 0.0f);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const float dx = x_[i] - x_[j];
      const float dy = y_[i] - y_[j];
      const float d = std::sqrt(dx * dx + dy * dy);
      distances[i * n + j] = d;
      distances[j * n + i] = d;
    }
  }
  return distances;
}

bool Spatial::GraphVisLayout_CLI(std::string_view gvPath, std::string_view algorithm,
                                 std::string_view dotStr, std::int32_t nodeCount,
                                 std::int32_t firstNode, const ProgressCallback& progress) {
  ResetNodes(nodeCount);
  edges_.clear();
  degrees_.clear();
  farDegrees_.clear();
  lastShellCode_ = -1;
  lastFailure_.clear();
  const std::string command = LayoutCommandLine(gvPath, algorithm, folder_);
  const auto fail = [&] {
    notifier_->ShowMessage("Command:" + command, kFailureTitle, MessageIcon::kCritical);
  };

  const std::string input = folder_ + "/gvin.txt";
  const std::string output = folder_ + "/gvout.txt";
  std::string error;
  std::error_code ignored;
  std::filesystem::remove(output, ignored);
  FileWriter writer;
  if (folder_.empty() || !writer.Open(input, error)) {
    lastFailure_ = folder_.empty() ? "No layout folder could be created under $TMPDIR or /tmp"
                                   : "The layout folder cannot be written: " + error;
    fail();
    return false;
  }
  writer.Write(dotStr);
  writer.Write("\r\n");
  if (!writer.Close(error)) {
    lastFailure_ = "The layout folder cannot be written: " + error;
    fail();
    return false;
  }

  const std::string errors = folder_ + "/gverr.txt";
  ShellOutcome outcome;
  lastShellCode_ = ShellAndWait(command, timeLimitMs_, 6, 2, progress, errors, outcome);
  if (lastShellCode_ != kShellEnded) return false;

  if (!LoadGVPlain(output, firstNode, nodeCount, error, progress)) {
    if (error == kCancelled) return false;
    // What the program said explains a missing or broken output better than the output does.
    std::string printed;
    std::string ignoredError;
    ReadFilePrefix(errors, 2000, printed, ignoredError);
    const std::string program = SplitCommandLine(command).front();
    lastFailure_ = outcome.exitCode > 0
                       ? program + " exited with code " + std::to_string(outcome.exitCode)
                       : "Graphviz's output could not be read (" + error + ")";
    while (!printed.empty() && (printed.back() == '\n' || printed.back() == '\r')) {
      printed.pop_back();
    }
    if (!printed.empty()) lastFailure_ += ": " + printed;
    fail();
    return false;
  }
  if (!SetGraphFromDot(dotStr, firstNode)) fail();
  return true;
}

}  // namespace sylvora
