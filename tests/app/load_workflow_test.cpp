// "Load Twitter File": captions, progress texts, the viewer and its field list, the DF boxes,
// failures and cancelling.
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "app/job_runner.h"
#include "support/qt_test_main.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;

namespace {

const QString kTwitter11 = DataFile(QStringLiteral("sample_twitter11.txt"));

}  // namespace

class LoadWorkflowTest : public QObject {
  Q_OBJECT

 private slots:
  void LoadingTheSampleSetsEveryText() {
    WindowFixture f;
    QSignalSpy captions(&f.Page(), &app::LoadIndexPage::captionChanged);
    Box(f, "MaxDocCount")->setText(QStringLiteral("100"));  // reset to 0 before loading
    QVERIFY(f.Load(kTwitter11));
    const DocumentSet& documents = f.Window().CurrentSession().Documents();

    const QString base = app::BaseCaption();
    const QString first = QString::fromUtf8(documents.Cell(0, 0));
    const QString last = QString::fromUtf8(documents.Cell(4999, 0));
    QCOMPARE(first, QStringLiteral("02/09/13 00:13:19"));  // the earliest tweet of the sample
    QCOMPARE(Strings(captions),
             (QStringList{base + QStringLiteral(" [5000 tweets loaded]"),
                          base + QStringLiteral(" [5000 tweets loaded ") + first +
                              QStringLiteral(" to ") + last + QStringLiteral("]"),
                          base + QStringLiteral(" [sample_twitter11.txt, 5000 tweets loaded]")}));
    // The notes of the load (no link service for its short links) come before the stage lines.
    QVERIFY(f.Page().LoadProgressText().endsWith(QStringLiteral(
        "\r\nConverting Dates to native format...\r\nExtracting hashtags and mentions "
        "to new fields...\r\nAll done :)")));

    QCOMPARE(Box(f, "MaxDocCount")->text(), QStringLiteral("5000"));
    const auto df = f.Window().findChildren<QLineEdit*>(QStringLiteral("DF"));
    QCOMPARE(df[0]->text(), QStringLiteral("7"));
    QCOMPARE(df[1]->text(), QStringLiteral("2500"));
    QCOMPARE(f.Find<QLabel>(QStringLiteral("DocCountLbl"))->text(), QStringLiteral("/5000"));
    QVERIFY(f.Find<QPushButton>(QStringLiteral("DoIndex"))->isEnabled());
    // Only the text field is shown to begin with.
    auto* fields = f.Find<QListWidget>(QStringLiteral("FieldList"));
    QCOMPARE(fields->count(), documents.FieldCount());
    for (int row = 0; row < fields->count(); ++row) {
      QCOMPARE(fields->item(row)->checkState() == Qt::Checked, row == documents.ContentField());
    }
  }

  void ViewerShowsTheExpressedFieldsOfTheChosenDocument() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    const DocumentSet& documents = f.Window().CurrentSession().Documents();
    auto* index = Box(f, "DocViewIndex");
    auto* scroll = f.Find<QScrollBar>(QStringLiteral("DocViewScroll"));
    const auto expected = [&](DocIndex doc) {
      QString text;
      for (int field = 0; field < documents.FieldCount(); ++field) {
        if (!documents.FieldExpressed(static_cast<FieldIndex>(field))) continue;
        text += QString::fromStdString(documents.FieldName(static_cast<FieldIndex>(field))) +
                QStringLiteral(": ") +
                QString::fromUtf8(documents.Cell(doc, static_cast<FieldIndex>(field))) +
                QStringLiteral("\r\n");
      }
      return text;
    };
    QCOMPARE(index->text(), QStringLiteral("1"));
    QCOMPARE(f.Page().DocViewText(), expected(0));

    index->setText(QStringLiteral("37"));
    QCOMPARE(scroll->value(), 37);
    QCOMPARE(f.Page().DocViewText(), expected(36));

    // Out of range or no number: the box goes back to the scroll bar's position.
    for (const QString& bad :
         {QStringLiteral("0"), QStringLiteral("5001"), QStringLiteral("abc")}) {
      index->setText(bad);
      QCOMPARE(index->text(), QStringLiteral("37"));
      QCOMPARE(f.Page().DocViewText(), expected(36));
    }
    index->setText(QStringLiteral("5000"));
    QCOMPARE(f.Page().DocViewText(), expected(4999));

    scroll->setValue(12);
    QCOMPARE(index->text(), QStringLiteral("12"));
    QCOMPARE(f.Page().DocViewText(), expected(11));
  }

  void FieldChecksChooseTheExpressedFields() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    f.Window().show();
    DocumentSet& documents = f.Window().CurrentSession().Documents();
    auto* fields = f.Find<QListWidget>(QStringLiteral("FieldList"));
    auto* frame = f.Find<QGroupBox>(QStringLiteral("TDM_Frame"));
    fields->item(1)->setCheckState(Qt::Checked);  // UserName
    QVERIFY(f.Page().DocViewText().startsWith(QStringLiteral("UserName: ") +
                                              QString::fromUtf8(documents.Cell(0, 1)) +
                                              QStringLiteral("\r\nTweet: ")));
    fields->item(1)->setCheckState(Qt::Unchecked);
    QVERIFY(!documents.FieldExpressed(1));
    fields->item(documents.ContentField())->setCheckState(Qt::Unchecked);
    QVERIFY(!frame->isVisible());  // no field for the word index
    fields->item(documents.ContentField())->setCheckState(Qt::Checked);
    QVERIFY(frame->isVisible());
  }

  // A missing file, a folder or a bad option: no job starts, and a box (and the progress text)
  // says why.
  void NoFileStartsNothingAndSaysWhy() {
    WindowFixture f;
    QDir().mkpath(f.Folder() + QStringLiteral("/a_folder"));
    Box(f, "MaxDocCount")->setText(QStringLiteral("9"));
    for (const char* name : {"/missing.txt", "/a_folder"}) {
      Box(f, "CorpusFilePath")->setText(f.Folder() + QLatin1String(name));
      QVERIFY(!f.Page().LoadCorpus_Click());
      QVERIFY(!f.Window().Jobs().Busy());
    }
    QCOMPARE(Box(f, "MaxDocCount")->text(), QStringLiteral("9"));
    QCOMPARE(f.platform.boxes.size(), 2);
    QVERIFY(f.platform.boxes[0].text.contains(QStringLiteral("does not exist")));
    QVERIFY(f.platform.boxes[1].text.contains(QStringLiteral("is a folder")));
    QCOMPARE(f.platform.boxes[1].title, QStringLiteral("Load Error"));
    QVERIFY(f.Page().LoadProgressText().contains(QStringLiteral("is a folder")));
    // So does a Min Chars box that holds no number.
    Box(f, "MinDocLen")->setText(QStringLiteral("sixty"));
    Box(f, "CorpusFilePath")->setText(kTwitter11);
    QVERIFY(!f.Page().LoadCorpus_Click());
    QCOMPARE(f.platform.boxes.value(2).text,
             QStringLiteral("Min Chars (Load Options) must be a number, not \"sixty\"."));
  }

  void UnloadableFileSaysLoadError() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11, /*radian=*/true));  // too few columns for a Radian 6 export
    QCOMPARE(f.platform.boxes.size(), 1);
    QCOMPARE(f.platform.boxes[0].text, QStringLiteral("There was an error loading ") + kTwitter11);
    QCOMPARE(f.platform.boxes[0].icon, MessageIcon::kCritical);
    // Regression: the reason counted the fields the Radian layout made ("has 9").
    QVERIFY2(f.Page().LoadProgressText().contains(QStringLiteral("has 16.")),
             qPrintable(f.Page().LoadProgressText()));
    QCOMPARE(f.Window().windowTitle(), app::BaseCaption());
    QVERIFY(!f.Find<QPushButton>(QStringLiteral("DoIndex"))->isEnabled());
  }

  void CancelledLoadLeavesAnEmptyUsableWindow() {
    WindowFixture f;
    QVERIFY(f.Load(kTwitter11));
    Box(f, "CorpusFilePath")->setText(kTwitter11);
    QVERIFY(f.Page().LoadCorpus_Click());
    f.Window().Jobs().Cancel();
    QVERIFY(f.WaitIdle());
    QCOMPARE(f.Page().LoadProgressText(),
             QStringLiteral("Loading cancelled: no corpus is loaded."));
    QVERIFY(!f.Find<QPushButton>(QStringLiteral("DoIndex"))->isEnabled());
    QCOMPARE(f.Window().windowTitle(), app::BaseCaption());
    QVERIFY(f.Load(kTwitter11));  // and the next load works
  }
};

SYLVORA_QT_TEST_MAIN(LoadWorkflowTest)
#include "load_workflow_test.moc"
