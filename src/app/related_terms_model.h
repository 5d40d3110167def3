#pragma once
// The rows of the "Related Words" list: one per related term, with the columns "Term", "Score"
// (the cosine with the chosen term, "0.000") and "DF" (the term's document frequency, "0000").
// Rows come in the order they are given (the similarity vector's element order) until a header
// click sorts them: a click on another column sorts by it ascending, a second click on the
// same column reverses the order. Scores and frequencies sort as numbers, terms as text
// (case-insensitive); equal keys keep element order.

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>

namespace sylvora {
class TermDocumentMatrix;
}

namespace sylvora::app {

class RelatedTermsModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kTerm, kScore, kDocFreq };
  static constexpr int kColumnCount = 3;

  struct Row {
    std::int32_t term = 0;  // 1-based term number of the index
    float score = 0.0f;
    std::int32_t docFreq = 0;
  };

  explicit RelatedTermsModel(QObject* parent = nullptr);

  // Replaces the rows (unsorted); `index` names the terms and must outlive the rows.
  void SetRows(const TermDocumentMatrix* index, std::vector<Row> rows);
  void Clear() { SetRows(nullptr, {}); }
  const Row& RowAt(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  QString CellText(int row, int column) const;

  void HeaderClicked(int column);
  int SortColumn() const { return sortColumn_; }
  Qt::SortOrder SortOrder() const { return sortOrder_; }
  bool Sorted() const { return sortColumn_ >= 0; }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  const TermDocumentMatrix* index_ = nullptr;
  std::vector<Row> rows_;
  std::vector<Row> elementOrder_;
  int sortColumn_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace sylvora::app
