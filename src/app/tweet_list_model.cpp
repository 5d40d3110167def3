#include "app/tweet_list_model.h"

#include <algorithm>

#include "corpus/document_set.h"
#include "session/session.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

TweetListModel::TweetListModel(QObject* parent) : QAbstractTableModel(parent) {}

void TweetListModel::SetDocuments(const DocumentSet* documents, const CorpusInfo* corpus) {
  beginResetModel();
  documents_ = documents;
  fields_.clear();
  headings_.clear();
  rows_.clear();
  sortColumn_ = -1;
  sortOrder_ = Qt::AscendingOrder;
  if (documents_ != nullptr) {
    const auto add = [this](FieldIndex field) {
      if (field >= documents_->FieldCount()) return;
      if (std::find(fields_.begin(), fields_.end(), field) != fields_.end()) return;
      fields_.push_back(field);
    };
    // The link is the fourth sub-item (column 4) as "Follow URL" expects it.
    add(documents_->DateTimeField());
    add(documents_->AuthorField());
    add(documents_->ContentField());
    add(documents_->KeyWordField());
    add(documents_->URLField());
    add(documents_->RefListField());
    if (corpus != nullptr && corpus->format != CorpusFormat::kRadian6) {
      add(corpus->sentimentPositiveField);
      add(corpus->sentimentNegativeField);
    }
    for (const FieldIndex field : fields_) {
      headings_.push_back(QString::fromStdString(documents_->FieldName(field)));
    }
  }
  headings_.push_back(u"CorpIdx"_s);
  endResetModel();
}

void TweetListModel::SetRows(std::vector<DocIndex> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  sortColumn_ = -1;
  sortOrder_ = Qt::AscendingOrder;
  endResetModel();
}

DocIndex TweetListModel::DocumentAt(int row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return -1;
  return rows_[static_cast<std::size_t>(row)];
}

int TweetListModel::ColumnOf(FieldIndex field) const {
  const auto at = std::find(fields_.begin(), fields_.end(), field);
  return at == fields_.end() ? -1 : static_cast<int>(at - fields_.begin());
}

QString TweetListModel::CellText(int row, int column) const {
  const DocIndex doc = DocumentAt(row);
  if (doc < 0 || documents_ == nullptr || column < 0 || column > CorpIdxColumn()) return {};
  if (column == CorpIdxColumn()) return QString::number(doc);
  const std::string_view cell = documents_->Cell(doc, fields_[static_cast<std::size_t>(column)]);
  return QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size()));
}

int TweetListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TweetListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant TweetListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    return CellText(index.row(), index.column());
  }
  return {};
}

QVariant TweetListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return section >= 0 && section < headings_.size() ? headings_[section] : QVariant();
}

void TweetListModel::HeaderClicked(int column) {
  if (column < 0 || column >= columnCount()) return;
  Qt::SortOrder order = Qt::AscendingOrder;
  if (column == sortColumn_ && sortOrder_ == Qt::AscendingOrder) order = Qt::DescendingOrder;
  sort(column, order);
}

void TweetListModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= columnCount()) return;
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const bool descending = order == Qt::DescendingOrder;
  if (column == CorpIdxColumn()) {
    std::stable_sort(rows_.begin(), rows_.end(),
                     [descending](DocIndex a, DocIndex b) { return descending ? a > b : a < b; });
  } else {
    // One key per row, then a sort of positions: the texts are read once.
    std::vector<QString> keys(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) keys[i] = CellText(static_cast<int>(i), column);
    std::vector<std::size_t> order(rows_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      const int compared = keys[a].compare(keys[b], Qt::CaseInsensitive);
      return descending ? compared > 0 : compared < 0;
    });
    std::vector<DocIndex> sorted(rows_.size());
    for (std::size_t i = 0; i < order.size(); ++i) sorted[i] = rows_[order[i]];
    rows_ = std::move(sorted);
  }
  sortColumn_ = column;
  sortOrder_ = order;
  // The view's selection is dropped rather than followed: the rows are new.
  changePersistentIndexList(persistentIndexList(), QModelIndexList(persistentIndexList().size()));
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace sylvora::app
