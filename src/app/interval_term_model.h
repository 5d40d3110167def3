#pragma once
// One interval term statistics list (IntWords, IntTags, IntLinks, IntMentions, IntUsers): the
// terms of one index that occur in the selected interval (TIFM(t, i) > 0), in term order,
// with the columns of their kind:
//   words:    Term, Z-Score, Ratio, Temporal ("000.00"), Docs, First ("000"), Sent+, Sent- ("0.00")
//   hashtags: Term, Z-Score, Ratio, Temporal ("00.00"), Docs, First ("000")
//   links, mentions, users: Term, Docs, First ("000")
// Docs is TIFM(t, i) x the interval's document count; First is FirstTermInterval.
// The cell texts are made once per fill (an interval holds a few thousand terms at most);
// a header click sorts by the column's text, switching direction on the same column.

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>
#include <QStringList>

#include "session/session.h"

namespace sylvora::app {

class IntervalTermModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit IntervalTermModel(IndexKind kind, QObject* parent = nullptr);

  IndexKind Kind() const { return kind_; }
  // Fills the list for interval `interval` of `model` (the model of this list's index);
  // the words list also reads the sentiment fields. Scores that need the model's caches are
  // computed here (the model must not be in use elsewhere).
  void Fill(TextStream& model, std::int32_t interval, FieldIndex positiveField,
            FieldIndex negativeField);
  void Clear();

  std::int32_t Interval() const { return interval_; }
  // The term number and text of list row `row` (0-based, current order).
  std::int32_t TermAt(int row) const;
  QString TermTextAt(int row) const;
  QString CellText(int row, int column) const;
  // The list row showing term `term`; -1 when none.
  int RowOfTerm(std::int32_t term) const;

  void HeaderClicked(int column);

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

  // The column headings of a list of `kind`.
  static QStringList Headings(IndexKind kind);

 private:
  struct Row {
    std::int32_t term = 0;
    QStringList cells;
  };

  IndexKind kind_;
  QStringList headings_;
  std::vector<Row> rows_;
  std::int32_t interval_ = 0;
  int sortColumn_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

// A number in one of the lists' patterns ("000.00", "00.00", "000", "0.00"), "." for the
// decimal point whatever the locale.
QString ListNumber(float value, const char* pattern);

}  // namespace sylvora::app
