#pragma once
// The message list `TweetView` as a table model over the session's document set: the rows are
// corpus rows (0-based), the columns are fields of the corpus chosen by its format, and the
// last column "CorpIdx" holds each row's corpus row number, which is how a row of the list is
// traced back to its document.
//
// Nothing is copied per cell: the model keeps one array of row numbers and reads each cell
// from the document set when the view asks, so listing 100,000 messages costs what listing
// 100 does plus 400 KB of row numbers. Sorting sorts those numbers by the column's text
// (case-insensitive; CorpIdx numerically), equal texts in corpus order.
//
// The model reads the document set it is given until SetDocuments(nullptr); the owner detaches
// it before a job replaces the corpus.

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>
#include <QStringList>

#include "common/numbering.h"

namespace sylvora {
class DocumentSet;
struct CorpusInfo;
}  // namespace sylvora

namespace sylvora::app {

class TweetListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit TweetListModel(QObject* parent = nullptr);

  // Rebuilds the columns for `documents` (null empties the list): date-time, user, text, link,
  // hashtags and mentions (the fields of those roles that the corpus has), the two sentiment
  // columns for the Twitter formats, then "CorpIdx". Rows are emptied.
  void SetDocuments(const DocumentSet* documents, const CorpusInfo* corpus);
  const DocumentSet* Documents() const { return documents_; }

  // Shows these corpus rows in this order.
  void SetRows(std::vector<DocIndex> rows);
  const std::vector<DocIndex>& Rows() const { return rows_; }
  // The corpus row shown in list row `row` (0-based); -1 outside.
  DocIndex DocumentAt(int row) const;

  // The fields of the columns before CorpIdx.
  const std::vector<FieldIndex>& Fields() const { return fields_; }
  // The column showing `field`; -1 when none does.
  int ColumnOf(FieldIndex field) const;
  int CorpIdxColumn() const { return static_cast<int>(fields_.size()); }
  QString CellText(int row, int column) const;

  // A header click: sorts by the column, ascending at the first click on a column and then
  // switching between descending and ascending at every click.
  void HeaderClicked(int column);
  int SortColumn() const { return sortColumn_; }
  Qt::SortOrder SortOrder() const { return sortOrder_; }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  const DocumentSet* documents_ = nullptr;
  std::vector<FieldIndex> fields_;
  QStringList headings_;
  std::vector<DocIndex> rows_;
  int sortColumn_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace sylvora::app
