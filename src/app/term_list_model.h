#pragma once
// One term-statistics list (AllWords, AllTags, AllLinks, AllMentions, AllUsers) as a table
// model over an index of the session: one row per term, six columns of text: the term, its
// document frequency and its global frequency ("00000"), and the first and last time-line
// interval in which it occurs with the number of intervals between them ("000"). The interval
// columns stay empty until the time-line model supplies them (SetIntervalSpans).
//
// Nothing is copied per cell: texts are made when the view asks for them, so a list of
// 100,000 terms costs one array of row numbers. Sorting is by the cells' text (which the zero
// padding makes numeric), case-insensitive, equal texts in term order.
//
// The model reads the index it is given until SetIndex(nullptr); the owner detaches it before
// a job replaces the index.

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>

namespace sylvora {
class TermDocumentMatrix;
}

namespace sylvora::app {

class TermListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kTerm, kDocFreq, kGlobalFreq, kFirstInterval, kLastInterval, kIntervalSpan };
  static constexpr int kColumnCount = 6;

  struct IntervalSpan {
    std::int32_t first = 0;
    std::int32_t last = 0;
    std::int32_t count = 0;
  };

  explicit TermListModel(QObject* parent = nullptr);

  // Shows the terms of `index` in term order (unsorted); null empties the list.
  void SetIndex(const TermDocumentMatrix* index);
  const TermDocumentMatrix* Index() const { return index_; }
  // The interval columns, one entry per term (term t at t - 1); empty clears them.
  void SetIntervalSpans(std::vector<IntervalSpan> spans);

  // The text of a cell (rows 0-based in the current order).
  QString CellText(int row, int column) const;
  // The term number shown in `row`.
  std::int32_t TermAt(int row) const;

  // The header-click rule: a click on another column sorts by it in the current direction;
  // a click on the column the list is sorted by reverses the direction. The list starts
  // unsorted, keyed on the first column, ascending.
  void HeaderClicked(int column);
  int SortColumn() const { return sortColumn_; }
  Qt::SortOrder SortOrder() const { return sortOrder_; }
  bool Sorted() const { return sorted_; }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  const TermDocumentMatrix* index_ = nullptr;
  std::vector<std::int32_t> rows_;  // term number of each row
  std::vector<IntervalSpan> spans_;
  int sortColumn_ = 0;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  bool sorted_ = false;
};

}  // namespace sylvora::app
