#pragma once
// RelatedTerms: the "Related Words" window. ShowRelatedTerms(owner, term) lists the terms whose
// columns are most alike the term's column: with "Same Tweet" (FeatureType index 1) in the word
// index's term-by-document matrix, with "Same Interval" (index 0, chosen at start) in the words
// model's term-by-interval matrix. The score is the cosine (SparseMatrixSingle::
// GetSimilarityVector); every term with a score above 0 gets a row, in term order, the term
// itself included. The heading reads "Terms that co-occur with '<term>'"; the first row is
// selected.
//
// Controls (objectName): the label "Heading", the list "TermList", the option buttons
// "FeatureType" (property "index"). Choosing the other option repeats the query for the same
// term; double-clicking a row repeats it for that row's term; clicking a row raises
// termSelected (the window selects it in the main word list); a header click sorts
// (RelatedTermsModel).
//
// Borrowing. The window reads the owner session's word index and words model; the owner
// must keep them unchanged while the window may query (SourcesChanged after each rebuild, and
// SetSessionReadable to keep it off a session that a job holds). The transposed source matrix
// (terms as columns) is kept between queries of the same source: a query costs one pass over
// the matrix's stored cells.

#include <functional>
#include <memory>

#include <QString>
#include <QWidget>

#include "sparse/sparse_matrix_single.h"

class QLabel;
class QRadioButton;
class QTableView;

namespace sylvora {
class Session;
}

namespace sylvora::app {

class RelatedTermsModel;

class RelatedTerms final : public QWidget {
  Q_OBJECT

 public:
  enum Source { kSameInterval = 0, kSameTweet = 1 };

  explicit RelatedTerms(QWidget* parent = nullptr);
  ~RelatedTerms() override;

  // Fills the window for `term` of the owner's word index. False, and nothing changes, when the
  // term is not in the index (or the session is busy).
  bool ShowRelatedTerms(const Session& owner, const QString& term);
  // The indexes or models were rebuilt: forget the kept matrices.
  void SourcesChanged();
  // A test of whether the session may be read now (the window's own repeats ask it).
  void SetSessionReadable(std::function<bool()> readable) { readable_ = std::move(readable); }

  void FeatureType_Click(int index);
  void TermList_DblClick(int row);
  void TermList_Click(int row);
  void TermList_ColumnClick(int column);

  Source CurrentSource() const { return source_; }
  const QString& CurrentTerm() const { return term_; }
  RelatedTermsModel& Model() { return *model_; }
  QTableView* List() const { return list_; }
  QString HeadingText() const;

 signals:
  // A row was clicked: its term (for the main window's word list).
  void termSelected(const QString& term);

 private:
  const SparseMatrixSingle* TermColumns(const Session& owner, Source source);

  QLabel* heading_ = nullptr;
  QTableView* list_ = nullptr;
  RelatedTermsModel* model_ = nullptr;
  std::array<QRadioButton*, 2> featureType_{};
  Source source_ = kSameInterval;
  const Session* owner_ = nullptr;
  QString term_;
  std::function<bool()> readable_;
  // The transposed sources, by Source; empty until first needed.
  std::array<std::unique_ptr<SparseMatrixSingle>, 2> columns_;
};

}  // namespace sylvora::app
