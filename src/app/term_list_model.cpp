#include "app/term_list_model.h"

#include <algorithm>
#include <numeric>

#include "indexing/term_document_matrix.h"

namespace sylvora::app {
namespace {

QString Padded(std::int32_t value, int width) {
  return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0'));
}

}  // namespace

TermListModel::TermListModel(QObject* parent) : QAbstractTableModel(parent) {}

void TermListModel::SetIndex(const TermDocumentMatrix* index) {
  beginResetModel();
  index_ = index;
  spans_.clear();
  rows_.resize(index_ == nullptr ? 0 : static_cast<std::size_t>(index_->TermCount()));
  std::iota(rows_.begin(), rows_.end(), 1);
  sortColumn_ = 0;
  sortOrder_ = Qt::AscendingOrder;
  sorted_ = false;
  endResetModel();
}

void TermListModel::SetIntervalSpans(std::vector<IntervalSpan> spans) {
  spans_ = std::move(spans);
  if (!rows_.empty()) {
    emit dataChanged(index(0, kFirstInterval), index(rowCount() - 1, kIntervalSpan));
  }
}

std::int32_t TermListModel::TermAt(int row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return 0;
  return rows_[static_cast<std::size_t>(row)];
}

QString TermListModel::CellText(int row, int column) const {
  const std::int32_t term = TermAt(row);
  if (term == 0 || index_ == nullptr) return {};
  const auto span = [&]() -> const IntervalSpan* {
    const auto at = static_cast<std::size_t>(term - 1);
    return at < spans_.size() ? &spans_[at] : nullptr;
  };
  switch (column) {
    case kTerm:
      return QString::fromStdString(index_->Term(term));
    case kDocFreq:
      return Padded(index_->DocFreq(term), 5);
    case kGlobalFreq:
      return Padded(index_->GlobalFreq(term), 5);
    case kFirstInterval:
      return span() ? Padded(span()->first, 3) : QString();
    case kLastInterval:
      return span() ? Padded(span()->last, 3) : QString();
    case kIntervalSpan:
      return span() ? Padded(span()->count, 3) : QString();
    default:
      return {};
  }
}

int TermListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TermListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant TermListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    return CellText(index.row(), index.column());
  }
  if (role == Qt::TextAlignmentRole && index.column() != kTerm) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

QVariant TermListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  static const QString kHeadings[kColumnCount] = {QStringLiteral("Term"), QStringLiteral("DF"),
                                                  QStringLiteral("GF"),   QStringLiteral("First"),
                                                  QStringLiteral("Last"), QStringLiteral("Span")};
  return section >= 0 && section < kColumnCount ? kHeadings[section] : QVariant();
}

void TermListModel::HeaderClicked(int column) {
  if (column < 0 || column >= kColumnCount) return;
  Qt::SortOrder order = sortOrder_;
  if (column == sortColumn_) {
    order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
  }
  sort(column, order);
}

void TermListModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= kColumnCount) return;
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<std::int32_t> oldRows = rows_;

  // Keys once per term, then a sort of row numbers; equal keys keep term order.
  std::vector<QString> keys(rows_.size() + 1);
  std::vector<std::int32_t> terms(rows_.size());
  std::iota(terms.begin(), terms.end(), 1);
  std::vector<int> rowOfTerm(rows_.size() + 1);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    rowOfTerm[static_cast<std::size_t>(rows_[row])] = static_cast<int>(row);
  }
  for (const std::int32_t term : terms) {
    keys[static_cast<std::size_t>(term)] =
        CellText(rowOfTerm[static_cast<std::size_t>(term)], column);
  }
  const bool descending = order == Qt::DescendingOrder;
  std::stable_sort(terms.begin(), terms.end(), [&](std::int32_t a, std::int32_t b) {
    const int compared = keys[static_cast<std::size_t>(a)].compare(
        keys[static_cast<std::size_t>(b)], Qt::CaseInsensitive);
    return descending ? compared > 0 : compared < 0;
  });
  rows_ = std::move(terms);
  sortColumn_ = column;
  sortOrder_ = order;
  sorted_ = true;

  std::vector<int> newRowOfTerm(rows_.size() + 1);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    newRowOfTerm[static_cast<std::size_t>(rows_[row])] = static_cast<int>(row);
  }
  QModelIndexList after;
  after.reserve(before.size());
  for (const QModelIndex& old : before) {
    const std::int32_t term = oldRows[static_cast<std::size_t>(old.row())];
    after.push_back(index(newRowOfTerm[static_cast<std::size_t>(term)], old.column()));
  }
  changePersistentIndexList(before, after);
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace sylvora::app
