// The "Related Words" window on the sample corpus: opened by a double-click in the word list,
// its heading and rows for both sources, the row clicks and the header sorting.
#include <map>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "app/related_terms.h"
#include "app/related_terms_model.h"
#include "app/term_list_model.h"
#include "cluster_test_support.h"
#include "sparse/number_format.h"
#include "support/qt_test_main.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::RelatedTerms;
using app::RelatedTermsModel;

namespace {

// The cosines of `term` with every term in `source` (terms as rows), computed the long way.
std::map<std::int32_t, float> Cosines(const SparseMatrixSingle& source, std::int32_t term) {
  SparseMatrixSingle columns;
  columns.SetMatrix(source);
  columns.Transpose();
  std::map<std::int32_t, float> result;
  const SparseVectorSingle v = columns.GetSimilarityVector(term, columns, 2);
  const auto terms = v.ElementIndexes();
  const auto values = v.ElementValues();
  for (std::size_t k = 0; k < terms.size(); ++k) {
    if (values[k] > 0.0f) result[terms[k]] = values[k];
  }
  return result;
}

}  // namespace

class RelatedTermsTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<WindowFixture> f_;
  RelatedTerms* window_ = nullptr;

  const Session& S() { return f_->Window().CurrentSession(); }
  // A term that co-occurs with others: the most frequent one.
  QString FrequentTerm() {
    const TermDocumentMatrix& index = S().WordIndex();
    int best = 1;
    for (int t = 1; t <= index.TermCount(); ++t) {
      if (index.DocFreq(t) > index.DocFreq(best)) best = t;
    }
    return QString::fromStdString(index.Term(best));
  }

  void CheckRows(const SparseMatrixSingle& source, const QString& term) {
    const TermDocumentMatrix& index = S().WordIndex();
    const std::int32_t t = index.TermIndex(term.toStdString());
    const std::map<std::int32_t, float> expected = Cosines(source, t);
    RelatedTermsModel& model = window_->Model();
    QCOMPARE(model.rowCount(), static_cast<int>(expected.size()));
    int row = 0;
    for (const auto& [term2, cosine] : expected) {
      QCOMPARE(model.CellText(row, RelatedTermsModel::kTerm),
               QString::fromStdString(index.Term(term2)));
      QCOMPARE(model.CellText(row, RelatedTermsModel::kScore),
               QString::fromStdString(FormatNumber(cosine, "0.000")));
      QCOMPARE(model.CellText(row, RelatedTermsModel::kDocFreq).toInt(), index.DocFreq(term2));
      ++row;
    }
    QCOMPARE(window_->List()->currentIndex().row(), 0);
  }

 private slots:
  void initTestCase() {
    f_ = std::make_unique<WindowFixture>();
    window_ = &f_->Window().RelatedWords();
    QVERIFY(PrepareSampleModels(*f_, f_->ProgramFolder() + QStringLiteral("/bin")));
  }
  void cleanupTestCase() { f_.reset(); }

  void ADoubleClickInTheWordListOpensTheWindow() {
    QTableView* words = f_->Page().TermListView(IndexKind::kWords);
    const app::TermListModel& model = f_->Page().TermList(IndexKind::kWords);
    int row = 0;
    const QString term = FrequentTerm();
    while (model.CellText(row, app::TermListModel::kTerm) != term) ++row;
    emit words->doubleClicked(model.index(row, 0));
    QVERIFY(window_->isVisible());
    QCOMPARE(window_->HeadingText(), QStringLiteral("Terms that co-occur with '") + term + u'\'');
    QCOMPARE(window_->CurrentSource(), RelatedTerms::kSameInterval);
    CheckRows(S().WordModel().TIFM(), term);
  }

  void SameTweetListsTheTweetCooccurrences() {
    const QString term = FrequentTerm();
    QVERIFY(window_->ShowRelatedTerms(S(), term));
    window_->FeatureType_Click(RelatedTerms::kSameTweet);
    CheckRows(S().WordIndex().Matrix(), term);
    window_->FeatureType_Click(RelatedTerms::kSameInterval);
  }

  void ARowDoubleClickAsksForThatRowsTerm() {
    QVERIFY(window_->ShowRelatedTerms(S(), FrequentTerm()));
    const QString other = window_->Model().CellText(1, RelatedTermsModel::kTerm);
    window_->TermList_DblClick(1);
    QCOMPARE(window_->HeadingText(), QStringLiteral("Terms that co-occur with '") + other + u'\'');
  }

  void ARowClickSelectsTheTermInTheWordList() {
    QVERIFY(window_->ShowRelatedTerms(S(), FrequentTerm()));
    QSignalSpy selected(window_, &RelatedTerms::termSelected);
    const QString term = window_->Model().CellText(2, RelatedTermsModel::kTerm);
    window_->TermList_Click(2);
    QCOMPARE(selected.value(0).value(0).toString(), term);
    QTableView* words = f_->Page().TermListView(IndexKind::kWords);
    const QModelIndexList rows = words->selectionModel()->selectedRows();
    QCOMPARE(f_->Page().TermList(IndexKind::kWords).CellText(rows.value(0).row(), 0), term);
  }

  void HeaderClicksSortAndReverse() {
    QVERIFY(window_->ShowRelatedTerms(S(), FrequentTerm()));
    RelatedTermsModel& model = window_->Model();
    QHeaderView* header = window_->List()->horizontalHeader();
    emit header->sectionClicked(RelatedTermsModel::kScore);
    emit header->sectionClicked(RelatedTermsModel::kScore);
    QCOMPARE(model.SortOrder(), Qt::DescendingOrder);
    for (int row = 1; row < model.rowCount(); ++row)
      QVERIFY(model.RowAt(row - 1).score >= model.RowAt(row).score);
    QCOMPARE(model.CellText(0, RelatedTermsModel::kScore), QStringLiteral("1.000"));  // itself
    emit header->sectionClicked(RelatedTermsModel::kDocFreq);
    QCOMPARE(model.SortColumn(), int(RelatedTermsModel::kDocFreq));
    for (int row = 1; row < model.rowCount(); ++row)
      QVERIFY(model.RowAt(row - 1).docFreq <= model.RowAt(row).docFreq);
  }

  void ATermNotInTheIndexChangesNothing() {
    QVERIFY(window_->ShowRelatedTerms(S(), FrequentTerm()));
    const QString heading = window_->HeadingText();
    const int rows = window_->Model().rowCount();
    QVERIFY(!window_->ShowRelatedTerms(S(), QStringLiteral("zzqxnotaword")));
    QCOMPARE(window_->HeadingText(), heading);
    QCOMPARE(window_->Model().rowCount(), rows);
  }
};

SYLVORA_QT_TEST_MAIN(RelatedTermsTest)
#include "related_terms_test.moc"
