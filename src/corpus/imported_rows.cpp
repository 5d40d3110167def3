#include "corpus/imported_rows.h"

#include <cstring>

namespace sylvora {

ImportedRows::ImportedRows(std::size_t expectedRows) : columns_(kLayoutFieldCount) {
  for (auto& column : columns_) column.reserve(expectedRows);
}

char* ImportedRows::AdoptInput(ByteBuffer&& bytes) {
  char* data = bytes.Data();
  store_.Adopt(std::move(bytes));  // the bytes do not move
  return data;
}

void ImportedRows::AddRows(const Row* rows, std::size_t count, char* region,
                           std::size_t regionSize) {
  std::size_t needed = 0;
  for (std::size_t r = 0; r < count; ++r) {
    for (const auto& cell : rows[r]) needed += cell.size();
  }
  if (needed > regionSize) {
    for (std::size_t r = 0; r < count; ++r) AddRow(rows[r]);
    return;
  }
  for (std::size_t r = 0; r < count; ++r) {
    for (std::size_t f = 0; f < columns_.size(); ++f) {
      const std::string& cell = rows[r][f];
      if (cell.empty()) {
        columns_[f].emplace_back();
        continue;
      }
      std::memcpy(region, cell.data(), cell.size());
      columns_[f].emplace_back(std::string_view(region, cell.size()), store_);
      region += cell.size();
    }
  }
}

void ImportedRows::AddRow(const Row& row) {
  for (std::size_t f = 0; f < columns_.size(); ++f)
    columns_[f].emplace_back(store_.Store(row[f]), store_);
}

void ImportedRows::AddViews(const std::array<std::string_view, kLayoutFieldCount>& cells) {
  for (std::size_t f = 0; f < columns_.size(); ++f) columns_[f].emplace_back(cells[f], store_);
}

}  // namespace sylvora
