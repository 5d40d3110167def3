#include "corpus/document_set.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "common/file_io.h"

namespace sylvora {

std::string DocumentSet::FieldName(FieldIndex index) const {
  return index < fieldNames_.size() ? fieldNames_[index] : std::string();
}

void DocumentSet::SetFieldName(FieldIndex index, std::string_view name) {
  if (index < fieldNames_.size()) fieldNames_[index] = std::string(name);
}

std::string DocumentSet::Text(DocIndex doc, FieldIndex field) const {
  if (doc < 0 || doc >= docCount_) return std::string(kIndexErrorText);
  if (field < columns_.size()) return std::string(columns_[field][doc]);
  std::string whole;
  for (const auto& column : columns_) whole.append(column[doc]);
  return whole;
}

std::string_view DocumentSet::Cell(DocIndex doc, FieldIndex field) const {
  if (doc < 0 || doc >= docCount_ || field >= columns_.size()) return {};
  return columns_[field][doc];
}

void DocumentSet::SetText(DocIndex doc, FieldIndex field, std::string_view text) {
  if (doc < 0 || doc >= docCount_ || field >= columns_.size()) return;
  store_.Overwrite(columns_[field][doc], text);
}

bool DocumentSet::FieldExpressed(FieldIndex index) const {
  return index < fieldExpressed_.size() && fieldExpressed_[index];
}

void DocumentSet::SetFieldExpressed(FieldIndex index, bool expressed) {
  if (index < fieldExpressed_.size()) fieldExpressed_[index] = expressed;
}

std::string DocumentSet::FieldExpressionPattern() const {
  std::string pattern;
  for (int i = 0; i < FieldCount(); ++i) pattern.push_back(FieldExpressed(i) ? '1' : '0');
  return pattern;
}

void DocumentSet::SetFieldExpressionPattern(std::string_view pattern) {
  for (int i = 0; i < FieldCount(); ++i) {
    SetFieldExpressed(static_cast<FieldIndex>(i),
                      i < static_cast<int>(pattern.size()) && pattern[i] == '1');
  }
}

std::string DocumentSet::FieldStartMarker(FieldIndex index) const {
  return index < startMarkers_.size() ? startMarkers_[index] : std::string();
}

std::string DocumentSet::FieldEndMarker(FieldIndex index) const {
  return index < endMarkers_.size() ? endMarkers_[index] : std::string();
}

void DocumentSet::Clear() {
  docCount_ = 0;
  wordCountTotal_ = 0;
  charCountTotal_ = 0;
  recordDelimiter_.clear();
  fieldNames_.clear();
  startMarkers_.clear();
  endMarkers_.clear();
  columns_.clear();
  store_.Clear();
  dateTimes_.clear();
  unreadableDateTexts_.clear();
  undatedRows_.clear();
  rowLines_.clear();
}

bool DocumentSet::RemoveDocument(DocIndex index) {
  if (index < 0 || index >= docCount_) {
    return Fail("Cannot remove document " + std::to_string(index) + ": the set holds " +
                std::to_string(docCount_) + " documents");
  }
  RemoveDocuments({index});
  return true;
}

void DocumentSet::RemoveDocuments(const std::vector<DocIndex>& rows) {
  if (rows.empty()) return;
  // One pass per column: rows kept move up over the removed ones.
  const auto compact = [&](auto& values) {
    std::size_t kept = 0;
    std::size_t next = 0;
    for (std::size_t d = 0; d < values.size(); ++d) {
      if (next < rows.size() && static_cast<std::size_t>(rows[next]) == d) {
        ++next;
        continue;
      }
      values[kept++] = values[d];
    }
    values.resize(kept);
  };
  for (auto& column : columns_) compact(column);
  if (dateTimes_.size() == static_cast<std::size_t>(docCount_)) compact(dateTimes_);
  unreadableDateTexts_.clear();
  rowLines_.clear();
  docCount_ -= static_cast<DocIndex>(rows.size());
}

void DocumentSet::SetDocuments(const std::vector<std::vector<std::string>>& documents, int dType,
                               DocIndex rows) {
  InitFieldDefs(dType, "1", "");
  const DocIndex count = std::max<DocIndex>(rows, 0);
  ResetTable(FieldCount(), count);
  for (DocIndex d = 0; d < count && d < static_cast<DocIndex>(documents.size()); ++d) {
    const auto& row = documents[d];
    for (std::size_t f = 0; f < row.size() && f < columns_.size(); ++f) {
      columns_[f][d].Assign(store_.Store(row[f]), store_);
    }
  }
  // The table came from no file: the program's own folder stands in.
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  sourcePath_ = error ? std::string(".") : program.parent_path().string();
}

void DocumentSet::ResetTable(int fieldCount, DocIndex rows) {
  store_.Clear();
  columns_.assign(fieldCount, Column(rows));
  docCount_ = rows;
}

FieldIndex DocumentSet::AppendField(std::string_view name) {
  fieldNames_.emplace_back(name);
  fieldExpressed_.resize(fieldNames_.size() - 1);
  fieldExpressed_.push_back(true);
  startMarkers_.resize(fieldNames_.size());
  endMarkers_.resize(fieldNames_.size());
  columns_.emplace_back(docCount_);
  return static_cast<FieldIndex>(fieldNames_.size() - 1);
}

void DocumentSet::AppendFieldFromStrings(std::string_view name,
                                         const std::vector<std::string>& cells) {
  const FieldIndex field = AppendField(name);
  auto& column = columns_[field];
  for (DocIndex d = 0; d < docCount_; ++d) column[d].Assign(store_.Store(cells[d]), store_);
}

bool DocumentSet::Fail(std::string message) const {
  lastError_ = std::move(message);
  return false;
}

}  // namespace sylvora
