#include "app/related_terms_model.h"

#include <algorithm>

#include "indexing/term_document_matrix.h"
#include "sparse/number_format.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

RelatedTermsModel::RelatedTermsModel(QObject* parent) : QAbstractTableModel(parent) {}

void RelatedTermsModel::SetRows(const TermDocumentMatrix* index, std::vector<Row> rows) {
  beginResetModel();
  index_ = index;
  rows_ = std::move(rows);
  elementOrder_ = rows_;
  sortColumn_ = -1;
  sortOrder_ = Qt::AscendingOrder;
  endResetModel();
}

QString RelatedTermsModel::CellText(int row, int column) const {
  if (row < 0 || row >= rowCount()) return {};
  const Row& item = rows_[static_cast<std::size_t>(row)];
  switch (column) {
    case kTerm:
      return index_ != nullptr ? QString::fromStdString(index_->Term(item.term)) : QString();
    case kScore:
      return QString::fromStdString(FormatNumber(item.score, "0.000"));
    case kDocFreq:
      return QString::fromStdString(FormatNumber(static_cast<float>(item.docFreq), "0000"));
    default:
      return {};
  }
}

void RelatedTermsModel::HeaderClicked(int column) {
  if (column < 0 || column >= kColumnCount) return;
  Qt::SortOrder order = Qt::AscendingOrder;
  if (column == sortColumn_) {
    order = sortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
  }
  sort(column, order);
}

void RelatedTermsModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= kColumnCount) return;
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  rows_ = elementOrder_;
  std::vector<QString> texts;
  if (column == kTerm) {
    // Keys once per row; the rows are sorted by position in elementOrder_.
    texts.reserve(rows_.size());
    for (const Row& row : rows_) {
      texts.push_back(index_ != nullptr ? QString::fromStdString(index_->Term(row.term))
                                        : QString());
    }
  }
  std::vector<std::size_t> positions(rows_.size());
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = i;
  const auto less = [&](std::size_t a, std::size_t b) {
    switch (column) {
      case kTerm:
        return texts[a].compare(texts[b], Qt::CaseInsensitive) < 0;
      case kScore:
        return rows_[a].score < rows_[b].score;
      default:
        return rows_[a].docFreq < rows_[b].docFreq;
    }
  };
  if (order == Qt::AscendingOrder) {
    std::stable_sort(positions.begin(), positions.end(), less);
  } else {
    std::stable_sort(positions.begin(), positions.end(),
                     [&](std::size_t a, std::size_t b) { return less(b, a); });
  }
  std::vector<Row> sorted;
  sorted.reserve(rows_.size());
  for (const std::size_t position : positions) sorted.push_back(rows_[position]);
  rows_ = std::move(sorted);
  sortColumn_ = column;
  sortOrder_ = order;
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int RelatedTermsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RelatedTermsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant RelatedTermsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole) return CellText(index.row(), index.column());
  if (role == Qt::TextAlignmentRole && index.column() != kTerm) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

QVariant RelatedTermsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case kTerm:
      return u"Term"_s;
    case kScore:
      return u"Score"_s;
    case kDocFreq:
      return u"DF"_s;
    default:
      return {};
  }
}

}  // namespace sylvora::app
