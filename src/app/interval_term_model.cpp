#include "app/interval_term_model.h"

#include <algorithm>
#include <array>

#include "sparse/number_format.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

QString ListNumber(float value, const char* pattern) {
  return QString::fromStdString(FormatNumber(value, pattern));
}

QStringList IntervalTermModel::Headings(IndexKind kind) {
  switch (kind) {
    case IndexKind::kWords:
      return {u"Term"_s, u"Z-Score"_s, u"Ratio"_s, u"Temporal"_s,
              u"Docs"_s, u"First"_s,   u"Sent+"_s, u"Sent-"_s};
    case IndexKind::kHashtags:
      return {u"Term"_s, u"Z-Score"_s, u"Ratio"_s, u"Temporal"_s, u"Docs"_s, u"First"_s};
    default:
      return {u"Term"_s, u"Docs"_s, u"First"_s};
  }
}

IntervalTermModel::IntervalTermModel(IndexKind kind, QObject* parent)
    : QAbstractTableModel(parent), kind_(kind), headings_(Headings(kind)) {}

void IntervalTermModel::Clear() {
  beginResetModel();
  rows_.clear();
  interval_ = 0;
  sortColumn_ = -1;
  endResetModel();
}

void IntervalTermModel::Fill(TextStream& model, std::int32_t interval, FieldIndex positiveField,
                             FieldIndex negativeField) {
  beginResetModel();
  rows_.clear();
  sortColumn_ = -1;
  sortOrder_ = Qt::AscendingOrder;
  interval_ = interval;
  const TermDocumentMatrix* index = model.TDM();
  if (index != nullptr && interval >= 1 && interval <= model.IntervalCount()) {
    const bool scored = kind_ == IndexKind::kWords || kind_ == IndexKind::kHashtags;
    const char* burstPattern = kind_ == IndexKind::kWords ? "000.00" : "00.00";
    std::vector<float> zScores;
    std::vector<float> ratios;
    std::vector<float> temporal;
    if (scored) {
      zScores = model.IntervalBurstScores(interval, TextStream::kZScoreBurst);
      ratios = model.IntervalBurstScores(interval, TextStream::kRatioBurst);
      temporal = model.IntervalBurstScores(interval, TextStream::kTemporalRatioBurst);
    }
    std::vector<std::array<float, 2>> sentiment;
    if (kind_ == IndexKind::kWords) {
      sentiment = model.TermSentimentScores(interval, positiveField, negativeField);
    }
    const float documents = static_cast<float>(model.IntervalDocCount(interval));
    const SparseVectorSingle* column = model.TIFM().Vector(interval);
    if (column != nullptr) {
      const auto& terms = column->ElementIndexes();
      const auto& values = column->ElementValues();
      rows_.reserve(terms.size());
      for (std::size_t k = 0; k < terms.size(); ++k) {
        if (!(values[k] > 0.0f)) continue;
        const std::int32_t t = terms[k];
        const auto at = static_cast<std::size_t>(t);
        Row row;
        row.term = t;
        row.cells.push_back(QString::fromStdString(index->Term(t)));
        if (scored) {
          row.cells.push_back(ListNumber(at < zScores.size() ? zScores[at] : 0.0f, burstPattern));
          row.cells.push_back(ListNumber(at < ratios.size() ? ratios[at] : 0.0f, burstPattern));
          row.cells.push_back(ListNumber(at < temporal.size() ? temporal[at] : 0.0f, burstPattern));
        }
        row.cells.push_back(ListNumber(values[k] * documents, "000"));
        row.cells.push_back(ListNumber(static_cast<float>(model.FirstTermInterval(t)), "000"));
        if (kind_ == IndexKind::kWords) {
          const std::array<float, 2> s =
              at < sentiment.size() ? sentiment[at] : std::array<float, 2>{0, 0};
          row.cells.push_back(ListNumber(s[0], "0.00"));
          row.cells.push_back(ListNumber(s[1], "0.00"));
        }
        rows_.push_back(std::move(row));
      }
    }
  }
  endResetModel();
}

std::int32_t IntervalTermModel::TermAt(int row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return 0;
  return rows_[static_cast<std::size_t>(row)].term;
}

QString IntervalTermModel::TermTextAt(int row) const { return CellText(row, 0); }

QString IntervalTermModel::CellText(int row, int column) const {
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return {};
  const QStringList& cells = rows_[static_cast<std::size_t>(row)].cells;
  return column >= 0 && column < cells.size() ? cells[column] : QString();
}

int IntervalTermModel::RowOfTerm(std::int32_t term) const {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (rows_[row].term == term) return static_cast<int>(row);
  }
  return -1;
}

int IntervalTermModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int IntervalTermModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant IntervalTermModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    return CellText(index.row(), index.column());
  }
  if (role == Qt::TextAlignmentRole && index.column() > 0) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

QVariant IntervalTermModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return section >= 0 && section < headings_.size() ? headings_[section] : QVariant();
}

void IntervalTermModel::HeaderClicked(int column) {
  if (column < 0 || column >= columnCount()) return;
  Qt::SortOrder order = Qt::AscendingOrder;
  if (column == sortColumn_ && sortOrder_ == Qt::AscendingOrder) order = Qt::DescendingOrder;
  sort(column, order);
}

void IntervalTermModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= columnCount()) return;
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const bool descending = order == Qt::DescendingOrder;
  std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& a, const Row& b) {
    const int compared = a.cells[column].compare(b.cells[column], Qt::CaseInsensitive);
    return descending ? compared > 0 : compared < 0;
  });
  sortColumn_ = column;
  sortOrder_ = order;
  changePersistentIndexList(persistentIndexList(), QModelIndexList(persistentIndexList().size()));
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace sylvora::app
