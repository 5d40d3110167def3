// "Create Tweet Indexes": status texts, tab captions, the term lists with their
// sorting rule and link opening, bad options and cancelling. (A missing stop list: the
// session's and the preprocessing's tests.)
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <tuple>

#include "app/job_runner.h"
#include "app/term_list_model.h"
#include "support/qt_test_main.h"
#include "views/table_lens.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::TermListModel;

namespace {

const QString kTwitter11 = DataFile(QStringLiteral("sample_twitter11.txt"));

}  // namespace

class IndexingWorkflowTest : public QObject {
  Q_OBJECT

 private slots:
  void IndexingTheSampleReportsEveryStage() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    QSignalSpy statuses(&f.Page(), &app::LoadIndexPage::indexingStatusChanged);
    QSignalSpy built(&f.Page(), &app::LoadIndexPage::indexesBuilt);
    QVERIFY(f.Index());
    QCOMPARE(built.size(), 1);
    QCOMPARE(Strings(statuses),
             (QStringList{
                 QStringLiteral("Building word index..."), QStringLiteral("Building link index..."),
                 QStringLiteral("Building hashtag index..."),
                 QStringLiteral("Building mention index..."),
                 QStringLiteral("Building user index..."), QStringLiteral("All done :-)")}));

    const Session& session = f.Window().CurrentSession();
    const auto* tabs = f.Find<QTabWidget>(QStringLiteral("TermLists"));
    const QString expected[] = {
        QStringLiteral("Words (%1)").arg(session.WordIndex().TermCount()),
        QStringLiteral("Tags (%1)").arg(session.HashtagIndex().TermCount()),
        QStringLiteral("Links (%1)").arg(session.LinkIndex().TermCount()),
        QStringLiteral("Mentions (%1)").arg(session.MentionIndex().TermCount()),
        QStringLiteral("Users (%1)").arg(session.UserIndex().TermCount())};
    for (int tab = 0; tab < 5; ++tab) QCOMPARE(tabs->tabText(tab), expected[tab]);

    // The word list holds every term.
    const TermListModel& list = f.Page().TermList(IndexKind::kWords);
    QCOMPARE(list.rowCount(), session.WordIndex().TermCount());
    QCOMPARE(list.CellText(5, 0), QString::fromStdString(session.WordIndex().Term(6)));
  }

  void WordIndexViewerShowsTheWordIndexAsVerticalBars() {
    WindowFixture f;
    f.Window().show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.Window()));
    QVERIFY(f.Load(kTwitter11));
    QVERIFY(f.Page().WordIndexViewer() == nullptr);
    QVERIFY(f.Index());
    TableLens* lens = f.Page().WordIndexViewer();
    QVERIFY(lens != nullptr);
    const TermDocumentMatrix& words = f.Window().CurrentSession().WordIndex();
    QCOMPARE(int(lens->CellStyle()), 4);
    QCOMPARE(lens->RowName(words.TermCount()),
             QString::fromStdString(words.Term(words.TermCount())));
    auto* slider = f.Find<QSlider>(QStringLiteral("TDMViewCols"));
    slider->setValue(40);
    QCOMPARE(lens->VisibleColumns(), 40);
    // While a job runs the viewer is gone; a cancel brings it back over the kept index.
    QVERIFY(f.Page().DoIndex_Click());
    QVERIFY(f.Page().WordIndexViewer() == nullptr);
    f.Window().Jobs().Cancel();
    QVERIFY(f.WaitIdle());
    QVERIFY(f.Page().WordIndexViewer() != nullptr);
  }

  void BoxesReachTheIndexAndTermsPerFirstLetterIsOffUntilTicked() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    auto* cap = f.Find<QCheckBox>(QStringLiteral("CapTerms"));
    auto* perLetter = f.Find<QSpinBox>(QStringLiteral("TermsPerLetter"));
    QVERIFY(!cap->isChecked() && !perLetter->isEnabled());
    f.Window().findChildren<QLineEdit*>(QStringLiteral("DF"))[0]->setText(QStringLiteral("50"));
    QVERIFY(f.Index());
    // The word index uses the boxes.
    const TermDocumentMatrix& words = f.Window().CurrentSession().WordIndex();
    for (std::int32_t t = 1; t <= words.TermCount(); ++t) QVERIFY(words.DocFreq(t) >= 50);
    QVERIFY(words.IsStemmed());
    const std::int32_t users = f.Window().CurrentSession().UserIndex().TermCount();
    const auto log = [&] {
      return f.Find<QPlainTextEdit>(QStringLiteral("TDMLog"))->toPlainText();
    };
    QVERIFY(!log().contains(QStringLiteral("dropped")));

    cap->setChecked(true);
    QVERIFY(perLetter->isEnabled());
    perLetter->setValue(2);
    QVERIFY(f.Index());
    QVERIFY(f.Window().CurrentSession().UserIndex().TermCount() < users);
    QVERIFY(log().contains(QStringLiteral("dropped")));  // the line itself: the session's tests
  }

  void DoubleClickOnALinkOpensIt() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    QVERIFY(f.Index());
    f.Window().show();
    auto* tabs = f.Find<QTabWidget>(QStringLiteral("TermLists"));
    tabs->setCurrentIndex(2);
    QTableView* view = f.Page().TermListView(IndexKind::kLinks);
    QVERIFY(QTest::qWaitForWindowExposed(&f.Window()));
    emit view->doubleClicked(view->model()->index(1, 0));
    const QString link = f.Page().TermList(IndexKind::kLinks).CellText(1, 0);
    QCOMPARE(f.platform.links, QStringList{link});
    // A double-click on a word opens no link.
    tabs->setCurrentIndex(0);
    QTableView* words = f.Page().TermListView(IndexKind::kWords);
    emit words->doubleClicked(words->model()->index(0, 0));
    QCOMPARE(f.platform.links.size(), 1);
  }

  // Each box that holds no number stops the indexing with a message that names it.
  void BoxesThatHoldNoNumberSaySo() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    const std::tuple<const char*, int, const char*> boxes[] = {
        {"DF", 0, "Min DF"},
        {"DF", 1, "Max DF (%)"},
        {"MinChars", 0, "Min Chars"},
        {"MaxDocCount", 0, "Max # Docs"},
        {"SecDF", 0, "Min DF (Tags, Links, Users, Mentions)"}};
    for (const auto& [name, arrayIndex, label] : boxes) {
      QLineEdit* box = f.Window().findChildren<QLineEdit*>(QLatin1String(name))[arrayIndex];
      const QString kept = box->text();
      box->setText(QStringLiteral("lots"));
      f.platform.boxes.clear();
      QVERIFY(!f.Page().DoIndex_Click());
      QVERIFY(!f.Window().Jobs().Busy());
      QCOMPARE(f.platform.Texts(), QStringList{QLatin1String(label) +
                                               QStringLiteral(" must be a number, not \"lots\".")});
      box->setText(kept);
    }
    QVERIFY(!f.Window().CurrentSession().Indexed());
  }

  void CancelledIndexingKeepsThePreviousIndexes() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    QVERIFY(f.Index());
    const auto* tabs = f.Find<QTabWidget>(QStringLiteral("TermLists"));
    const QString caption = tabs->tabText(0);
    const int terms = f.Window().CurrentSession().WordIndex().TermCount();
    f.Window().findChildren<QLineEdit*>(QStringLiteral("DF"))[0]->setText(QStringLiteral("400"));
    QVERIFY(f.Page().DoIndex_Click());
    QCOMPARE(f.Page().TermList(IndexKind::kWords).rowCount(), 0);  // detached while it runs
    f.Window().Jobs().Cancel();
    QVERIFY(f.WaitIdle());
    QCOMPARE(f.Find<QLabel>(QStringLiteral("IndexingStatus"))->text(),
             QStringLiteral("Indexing cancelled: the previous indexes are kept."));
    QCOMPARE(f.Window().CurrentSession().WordIndex().TermCount(), terms);
    QCOMPARE(f.Page().TermList(IndexKind::kWords).rowCount(), terms);
    QCOMPARE(tabs->tabText(0), caption);
    // A new load empties the lists.
    QVERIFY(f.Load(kTwitter11));
    QCOMPARE(f.Page().TermList(IndexKind::kWords).rowCount(), 0);
    QCOMPARE(f.Find<QTabWidget>(QStringLiteral("TermLists"))->tabText(0), QStringLiteral("Words"));
    QVERIFY(!f.Window().CurrentSession().Indexed());
  }
};

SYLVORA_QT_TEST_MAIN(IndexingWorkflowTest)
#include "indexing_workflow_test.moc"
