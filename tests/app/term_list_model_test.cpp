// The term-statistics list model: texts, the header-click rule and interval columns.
#include <QSignalSpy>
#include <QTest>
#include <tuple>

#include "app/term_list_model.h"
#include "corpus/document_set.h"
#include "indexing/term_document_matrix.h"

using namespace sylvora;
using app::TermListModel;

namespace {

// An index whose terms are the space-separated words of `texts`, one text per document,
// split only at spaces (case kept), every term kept.
TermDocumentMatrix MakeIndex(const std::vector<std::string>& texts) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& text : texts) rows.push_back({"", "", text, "", "", ""});
  DocumentSet documents;
  documents.SetDocuments(rows, 7, static_cast<DocIndex>(rows.size()));
  documents.SetFieldExpressionPattern("001");
  TermDocumentMatrix index;
  DocIndex count = documents.DocumentCount();
  index.AssignText(documents, count, false);
  index.Preprocess(true, false, 2, std::string(), false);
  index.BuildVocab(0, 32767);
  index.BuildTDM(1, count);
  return index;
}

QStringList Column(const TermListModel& model, int column) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) texts.push_back(model.CellText(row, column));
  return texts;
}

}  // namespace

class TermListModelTest : public QObject {
  Q_OBJECT

 private slots:
  void RowsAreTermsWithPaddedCounts() {
    const TermDocumentMatrix index = MakeIndex({"bb aa aa", "aa Cc", "bb"});
    TermListModel model;
    model.SetIndex(&index);
    QCOMPARE(model.columnCount(), 6);
    QCOMPARE(Column(model, 0),
             (QStringList{QStringLiteral("Cc"), QStringLiteral("aa"), QStringLiteral("bb")}));
    QCOMPARE(Column(model, 1), (QStringList{QStringLiteral("00001"), QStringLiteral("00002"),
                                            QStringLiteral("00002")}));
    QCOMPARE(Column(model, 2), (QStringList{QStringLiteral("00001"), QStringLiteral("00003"),
                                            QStringLiteral("00002")}));
    QCOMPARE(Column(model, 3), (QStringList{QString(), QString(), QString()}));
    model.SetIndex(nullptr);
    QCOMPARE(model.rowCount(), 0);
  }

  void IntervalColumnsArePaddedToThreeDigits() {
    const TermDocumentMatrix index = MakeIndex({"aa bb"});
    TermListModel model;
    model.SetIndex(&index);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.SetIntervalSpans({{1, 12, 12}, {7, 7, 1}});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(model.CellText(0, 3), QStringLiteral("001"));
    QCOMPARE(model.CellText(0, 4), QStringLiteral("012"));
    QCOMPARE(model.CellText(1, 5), QStringLiteral("001"));
  }

  // A first click ascends (descends on the key column), the same column again reverses, another
  // column keeps the direction.
  void HeaderClickRule() {
    const std::tuple<QList<int>, int, Qt::SortOrder> cases[] = {{{1}, 1, Qt::AscendingOrder},
                                                                {{1, 1}, 1, Qt::DescendingOrder},
                                                                {{1, 1, 1}, 1, Qt::AscendingOrder},
                                                                {{1, 1, 2}, 2, Qt::DescendingOrder},
                                                                {{0}, 0, Qt::DescendingOrder}};
    const TermDocumentMatrix index = MakeIndex({"bb aa aa", "aa Cc", "bb"});
    for (const auto& [clicks, column, order] : cases) {
      TermListModel model;
      model.SetIndex(&index);
      for (int click : clicks) model.HeaderClicked(click);
      QCOMPARE(model.SortColumn(), column);
      QCOMPARE(model.SortOrder(), order);
    }
  }

  void SortsByTextCaseInsensitiveTiesInTermOrder() {
    const TermDocumentMatrix index = MakeIndex({"bb aa aa", "aa Cc", "bb"});
    TermListModel model;
    model.SetIndex(&index);
    model.sort(0, Qt::AscendingOrder);
    QCOMPARE(Column(model, 0),
             (QStringList{QStringLiteral("aa"), QStringLiteral("bb"), QStringLiteral("Cc")}));
    model.sort(1, Qt::DescendingOrder);  // aa and bb both 00002: term order
    QCOMPARE(Column(model, 0),
             (QStringList{QStringLiteral("aa"), QStringLiteral("bb"), QStringLiteral("Cc")}));
    model.sort(2, Qt::AscendingOrder);
    QCOMPARE(Column(model, 0),
             (QStringList{QStringLiteral("Cc"), QStringLiteral("bb"), QStringLiteral("aa")}));
    QCOMPARE(model.TermAt(0), 1);
  }
};

QTEST_GUILESS_MAIN(TermListModelTest)
#include "term_list_model_test.moc"
