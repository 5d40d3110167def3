#include "networks/proximity_matrix.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "common/errors.h"
#include "common/file_io.h"

namespace sylvora {

namespace {

// The leading number of a matrix file field: optional spaces and sign, digits with at most
// one ".", and an exponent when one follows ("1E-05"). 0 when the field starts otherwise.
float FieldNumber(std::string_view field) {
  std::size_t i = 0;
  while (i < field.size() && field[i] == ' ') ++i;
  bool negative = false;
  if (i < field.size() && (field[i] == '+' || field[i] == '-')) {
    negative = field[i] == '-';
    ++i;
  }
  const std::size_t start = i;
  bool seenPoint = false;
  bool seenDigit = false;
  for (; i < field.size(); ++i) {
    const char c = field[i];
    if (c >= '0' && c <= '9') {
      seenDigit = true;
    } else if (c == '.' && !seenPoint) {
      seenPoint = true;
    } else {
      break;
    }
  }
  if (!seenDigit) return 0.0f;
  std::size_t end = i;
  if (i < field.size() && (field[i] == 'e' || field[i] == 'E')) {
    std::size_t e = i + 1;
    if (e < field.size() && (field[e] == '+' || field[e] == '-')) ++e;
    if (e < field.size() && field[e] >= '0' && field[e] <= '9') {
      while (e < field.size() && field[e] >= '0' && field[e] <= '9') ++e;
      end = e;
    }
  }
  std::string number(field.substr(start, end - start));
  const std::size_t exponent = number.find_first_of("eE");
  // from_chars takes no "+" before an exponent.
  if (exponent != std::string::npos && number[exponent + 1] == '+') number.erase(exponent + 1, 1);
  double value = 0.0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    // Too small reads as 0, too large as infinity.
    value = exponent != std::string::npos && number[exponent + 1] == '-' ? 0.0 : HUGE_VAL;
  }
  return static_cast<float>(negative ? -value : value);
}

// Splits `text` at tabs.
std::vector<std::string_view> SplitTabs(std::string_view text) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  while (true) {
    const std::size_t tab = text.find('\t', start);
    if (tab == std::string_view::npos) {
      fields.push_back(text.substr(start));
      return fields;
    }
    fields.push_back(text.substr(start, tab - start));
    start = tab + 1;
  }
}

// The lines of a text, without their LF or CR LF; a last line end does not open another line.
std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    const std::size_t next = end == std::string_view::npos ? text.size() : end + 1;
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    start = next;
  }
  return lines;
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

}  // namespace

void ProximityMatrix::CheckNode(std::int32_t i) const {
  if (i < 0 || i >= n_) {
    throw RangeError("Node " + std::to_string(i) + " is outside 0.." + std::to_string(n_ - 1) +
                     " of a proximity matrix of " + std::to_string(n_) + " nodes");
  }
}

float ProximityMatrix::Value(std::int32_t i, std::int32_t j) const {
  CheckNode(i);
  CheckNode(j);
  return values_[At(i, j)];
}

std::int32_t ProximityMatrix::LinkCount(std::int32_t i, std::int32_t j) const {
  CheckNode(i);
  CheckNode(j);
  // Counts exist when the first off-diagonal cell holds one.
  if (linkCounts_.empty() || n_ < 2 || linkCounts_[At(0, 1)] == 0) {
    trace_.Line("Need to Transform2Geodesic first to count links");
    return 0;
  }
  return linkCounts_[At(i, j)];
}

void ProximityMatrix::InitMatrix(std::int32_t n, std::int32_t type) {
  const auto cells = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
  values_.assign(cells, kNoLink);
  linkCounts_.clear();
  linkCounts_.shrink_to_fit();
  n_ = n;
  type_ = type;
}

bool ProximityMatrix::AssignMatrix(std::vector<float> values, std::int32_t n, std::int32_t type) {
  if (n < 0 || values.size() != static_cast<std::size_t>(n) * static_cast<std::size_t>(n)) {
    return false;
  }
  values_ = std::move(values);
  linkCounts_.clear();
  linkCounts_.shrink_to_fit();
  n_ = n;
  type_ = type;
  return true;
}

bool ProximityMatrix::AssignMatrix(std::span<const float> values, std::int32_t n,
                                   std::int32_t type) {
  if (n < 0 || values.size() != static_cast<std::size_t>(n) * static_cast<std::size_t>(n)) {
    return false;
  }
  return AssignMatrix(std::vector<float>(values.begin(), values.end()), n, type);
}

void ProximityMatrix::InitLinkCounts() {
  linkCounts_.assign(values_.size(), 1);
  for (std::int32_t i = 0; i < n_; ++i) linkCounts_[At(i, i)] = 0;
}

void ProximityMatrix::PrepareForPaths() {
  for (std::int32_t i = 0; i < n_; ++i) {
    float* row = values_.data() + At(i, 0);
    for (std::int32_t j = 0; j < n_; ++j) {
      if (std::fabs(row[j]) == 1.0f) row[j] = kUnreachable;
    }
    row[i] = 0.0f;
  }
}

ProximityMatrix ProximityMatrix::PathCopy(bool toDissimilarities) const {
  ProximityMatrix d;
  d.values_ = values_;
  d.n_ = n_;
  d.type_ = type_;
  d.trace_ = trace_;
  if (toDissimilarities) d.Sim2Dis();
  d.InitLinkCounts();
  d.PrepareForPaths();
  return d;
}

bool ProximityMatrix::LoadMatrix(const std::string& filePath, std::int16_t iFormat,
                                 std::int32_t iType) {
  lastLoadError_.clear();
  if (iFormat != 0) {
    lastLoadError_ = "Unknown matrix file layout " + std::to_string(iFormat);
    return false;
  }
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(filePath, bytes, error)) {
    lastLoadError_ = error;
    return false;
  }
  std::string_view text = bytes;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::vector<std::string_view> lines = SplitLines(text);
  const std::vector<std::string_view> first =
      SplitTabs(lines.empty() ? std::string_view{} : lines[0]);
  std::size_t count = first.size();
  if (first.back().empty()) --count;  // a trailing tab opens no node
  if (count < 1) {
    lastLoadError_ = "'" + filePath + "': the first line holds no values";
    return false;
  }
  const auto n = static_cast<std::int32_t>(count);
  if (lines.size() < count) {
    lastLoadError_ = "'" + filePath + "': " + std::to_string(count) + " nodes need " +
                     std::to_string(count) + " lines, the file has " + std::to_string(lines.size());
    return false;
  }
  for (std::size_t extra = count; extra < lines.size(); ++extra) {
    if (!IsBlank(lines[extra])) {
      lastLoadError_ = "'" + filePath + "', line " + std::to_string(extra + 1) +
                       ": more lines than the " + std::to_string(count) + " rows of the matrix";
      return false;
    }
  }

  ProximityMatrix loaded;
  loaded.InitMatrix(n, iType);
  for (std::int32_t j = 0; j < n; ++j) {
    const float v = FieldNumber(first[static_cast<std::size_t>(j)]);
    loaded.values_[loaded.At(0, j)] = v;
    loaded.values_[loaded.At(j, 0)] = v;
  }
  for (std::int32_t i = 1; i < n; ++i) {
    const std::vector<std::string_view> fields = SplitTabs(lines[static_cast<std::size_t>(i)]);
    if (fields.size() < count) {
      lastLoadError_ = "'" + filePath + "', line " + std::to_string(i + 1) + ": " +
                       std::to_string(fields.size()) + " fields where the matrix has " +
                       std::to_string(count) + " columns";
      return false;
    }
    for (std::int32_t j = 1; j < n; ++j) {
      const float v = FieldNumber(fields[static_cast<std::size_t>(j)]);
      loaded.values_[loaded.At(i, j)] = v;
      loaded.values_[loaded.At(j, i)] = v;
    }
  }
  values_ = std::move(loaded.values_);
  linkCounts_.clear();
  linkCounts_.shrink_to_fit();
  n_ = n;
  type_ = iType;
  return true;
}

void ProximityMatrix::Sim2Dis() {
  if (type_ == kEmpty) {
    trace_.Line("Sim2DisFailed - matrix is empty");
    return;
  }
  type_ = type_ < 3 ? type_ + 2 : type_ - 2;
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    for (std::int32_t j = i + 1; j < n_; ++j) {
      float v = values_[At(i, j)];
      if (v > kNoLink) v = 1.0f - v;
      values_[At(i, j)] = v;
      values_[At(j, i)] = v;
    }
  }
}

std::vector<EdgeRecord> ProximityMatrix::GetEdgeList(float lowest, float highest) const {
  // Counted first so that the list is allocated once at its final size.
  std::size_t count = 0;
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    const float* row = values_.data() + At(i, 0);
    for (std::int32_t j = i + 1; j < n_; ++j) {
      count += static_cast<std::size_t>(lowest <= row[j] && row[j] <= highest);
    }
  }
  std::vector<EdgeRecord> edges;
  edges.reserve(count);
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    const float* row = values_.data() + At(i, 0);
    for (std::int32_t j = i + 1; j < n_; ++j) {
      if (lowest <= row[j] && row[j] <= highest) edges.push_back({row[j], i, j});
    }
  }
  return edges;
}

}  // namespace sylvora
