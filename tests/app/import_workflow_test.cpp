// "Load Twitter File" with JSON and named-column CSV files: the samples load like the
// tab-separated one, the column-mapping dialog, bad JSON lines and the offer to skip them.

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include "app/column_mapping_dialog.h"
#include "support/qt_test_main.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;

namespace {

const QString kTsvSample = DataFile(QStringLiteral("sample_twitter11.txt"));
const QString kJsonSample = DataFile(QStringLiteral("sample_twitter_v2.jsonl"));
const QString kCsvSample = DataFile(QStringLiteral("sample_twitter.csv"));
const QString kDoneText = QStringLiteral(
    "Converting Dates to native format...\r\nExtracting hashtags and mentions to new "
    "fields...\r\nAll done :)");

QByteArray ReadBytes(const QString& path) {
  QFile file(path);
  file.open(QIODevice::ReadOnly);
  return file.readAll();
}

QString Write(const QString& folder, const QString& name, const QByteArray& bytes) {
  const QString path = folder + u'/' + name;
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(bytes);
  return path;
}

// The first `count` lines of a file.
QByteArray FirstLines(const QString& path, int count) {
  const QList<QByteArray> lines = ReadBytes(path).split('\n');
  QByteArray out;
  for (int i = 0; i < count && i < lines.size(); ++i) out += lines[i] + '\n';
  return out;
}

QStringList Titles(const RecordingPlatform& platform) {
  QStringList titles;
  for (const RecordedBox& box : platform.boxes) titles.push_back(box.title);
  return titles;
}

// A CSV whose columns the built-in names do not find: "when,who,words".
const QByteArray kOddCsv =
    "when,who,words\r\n"
    "2013-09-02 00:13:19,ann,\"The harbour road is closed, say the police\"\r\n"
    "2013-09-02 01:00:00,bob,\"Storm \"\"Marisol\"\" is coming\nstay safe #storm\"\r\n"
    "2013-09-03 12:30:00,cy,Sandbags at the town hall until six\r\n";

}  // namespace

class ImportWorkflowTest : public QObject {
  Q_OBJECT

 private slots:
  // The samples hold the same tweets as the tab-separated one (which the session tests compare
  // field by field); here: the window names the shape and asks nothing. No short-link
  // offer: the platforms give their links expanded. (The CSV sample is oldest first, so the sort
  // by elapsed time gives its notice.)
  void ImportedSamplesLoadLikeTheTabSeparatedOne() {
    const std::pair<QString, QString> cases[] = {
        {kJsonSample, QStringLiteral("X / Twitter API v2 JSON lines")},
        {kCsvSample, QStringLiteral("named-column CSV")}};
    for (const auto& [path, shape] : cases) {
      WindowFixture f;
      QSignalSpy progress(&f.Page(), &app::LoadIndexPage::loadProgressChanged);
      QVERIFY(f.Load(path));
      QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 5000);
      QStringList texts = f.platform.Texts();
      texts.removeAll(QStringLiteral("Documents need to be sorted. This might take a moment..."));
      QVERIFY2(texts.isEmpty(), qPrintable(texts.join(u'|')));
      QCOMPARE(Strings(progress).first(), QStringLiteral("Loading ") + path + QStringLiteral(" (") +
                                              shape + QStringLiteral(")..."));
      QCOMPARE(f.Page().LoadProgressText(),
               QStringLiteral("Read ") + shape + QStringLiteral("\r\n") + kDoneText);
    }
  }

  void MappingDialogOpensWhenColumnsAreNotFoundAndItsChoiceLoads() {
    WindowFixture f;
    const QString path = Write(f.Folder(), QStringLiteral("odd.csv"), kOddCsv);
    bool checked = false;
    f.platform.dialogScripts.push_back([&](QDialog& shown) {
      auto& dialog = static_cast<app::ColumnMappingDialog&>(shown);
      const QStandardItemModel& model = dialog.PreviewModel();
      // The header and the first records as split.
      [&] {
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.headerData(2, Qt::Horizontal).toString(), QStringLiteral("words"));
        QCOMPARE(model.item(1, 2)->text(),
                 QStringLiteral("Storm \"Marisol\" is coming stay safe #storm"));
        // Only "who" is a built-in name (no: "when" and "words" are not).
        QCOMPARE(dialog.ColumnOf(CsvRole::kDateTime), -1);
        auto* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        QVERIFY(!ok->isEnabled());
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("MappingReason"))
                    ->text()
                    .contains(QStringLiteral("has no column for the")));
        dialog.SetColumnOf(CsvRole::kDateTime, 0);
        dialog.SetColumnOf(CsvRole::kUser, 1);
        QVERIFY(!ok->isEnabled());
        dialog.findChild<QComboBox*>(QStringLiteral("Role_text"))->setCurrentIndex(3);
        QVERIFY(ok->isEnabled());
        checked = true;
      }();
      return static_cast<int>(QDialog::Accepted);
    });
    QVERIFY(f.Load(path));
    QVERIFY(checked);
    QCOMPARE(f.platform.dialogNames, QStringList{QStringLiteral("ColumnMapping")});
    const DocumentSet& documents = f.Window().CurrentSession().Documents();
    QCOMPARE(documents.Text(0, 1), std::string("ann"));
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"date", "when"}, {"user", "who"}, {"text", "words"}};
    QVERIFY(f.Page().ColumnMapFor(path) == expected);
    // The next load of the file keeps the choice without asking.
    QVERIFY(f.Load(path));
    QCOMPARE(f.platform.dialogNames.size(), 1);
    QCOMPARE(documents.DocumentCount(), 3);
  }

  void MappingDialogCancelKeepsThePreviousCorpus() {
    WindowFixture f;
    QVERIFY(f.Load(kJsonSample));
    const QString caption = f.Window().windowTitle();
    const QString path = Write(f.Folder(), QStringLiteral("odd.csv"), kOddCsv);
    QSignalSpy loaded(&f.Page(), &app::LoadIndexPage::corpusLoaded);
    f.platform.dialogScripts.push_back(
        [](QDialog&) { return static_cast<int>(QDialog::Rejected); });
    QVERIFY(!f.Load(path));
    QCOMPARE(loaded.size(), 0);
    QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 5000);
    QCOMPARE(f.Window().windowTitle(), caption);
    QVERIFY(f.Page().ColumnMapFor(path).empty());
  }

  void MapColumnsButtonPresetsTheBuiltInNames() {
    WindowFixture f;
    f.Find<QLineEdit>(QStringLiteral("CorpusFilePath"))->setText(kCsvSample);
    f.Find<QCheckBox>(QStringLiteral("Radian"))->setChecked(false);
    std::vector<int> presets;
    int rows = 0;
    f.platform.dialogScripts.push_back([&](QDialog& shown) {
      auto& dialog = static_cast<app::ColumnMappingDialog&>(shown);
      for (const CsvRole role : app::ColumnMappingDialog::Roles()) {
        presets.push_back(dialog.ColumnOf(role));
      }
      rows = dialog.PreviewModel().rowCount();
      // Swap the user for the real name: the sample then loads with display names.
      dialog.SetColumnOf(CsvRole::kUser, 3);
      return static_cast<int>(QDialog::Accepted);
    });
    QVERIFY(f.Page().MapColumns_Click());
    // id,created_at,username,name,text,url,retweet_count,sentiment_positive,sentiment_negative
    QCOMPARE(presets, (std::vector<int>{1, 2, 4, 5, 7, 8}));
    QCOMPARE(rows, 20);
    QVERIFY(f.Load(kCsvSample));
    QCOMPARE(f.platform.dialogNames.size(), 1);  // columns found by name: no dialog on load
    QCOMPARE(QString::fromUtf8(f.Window().CurrentSession().Documents().Cell(0, 1)),
             QStringLiteral("Noémie Pryce"));

    // The button tells a file that is no CSV and opens nothing.
    f.Find<QLineEdit>(QStringLiteral("CorpusFilePath"))->setText(kJsonSample);
    f.platform.boxes.clear();
    QVERIFY(!f.Page().MapColumns_Click());
    QCOMPARE(f.platform.dialogNames.size(), 1);
    QVERIFY(f.platform.boxes[0].text.contains(QStringLiteral("X / Twitter API v2 JSON lines")));
  }

  void BadJsonLineOffersToSkip() {
    for (const bool skip : {false, true}) {
      WindowFixture f;
      QList<QByteArray> lines = FirstLines(kJsonSample, 40).split('\n');
      lines[6] = "{\"id\": \"1\", \"created_at\": ";  // line 7 breaks off
      const QString path = Write(f.Folder(), QStringLiteral("posts.jsonl"), lines.join('\n'));
      if (skip) f.platform.answers.push_back(Answer::kYes);
      QSignalSpy loaded(&f.Page(), &app::LoadIndexPage::corpusLoaded);
      QVERIFY(f.Load(path));
      QCOMPARE(loaded.size(), 1);
      QVERIFY(!f.platform.boxes.isEmpty());
      const RecordedBox question = f.platform.boxes[0];
      QVERIFY(question.question);
      QVERIFY2(question.text.contains(QStringLiteral("1 line of the file cannot be read. Skip the "
                                                     "bad lines and load the other 39 posts?")),
               qPrintable(question.text));
      const DocumentSet& documents = f.Window().CurrentSession().Documents();
      if (skip) {
        QCOMPARE(f.platform.boxes.size(), 1);
        QVERIFY(loaded[0][0].toBool());
        QCOMPARE(documents.DocumentCount(), 39);
        QVERIFY2(f.Page().LoadProgressText().startsWith(
                     QStringLiteral("Read X / Twitter API v2 JSON lines\r\nSkipped 1 bad record")),
                 qPrintable(f.Page().LoadProgressText()));
      } else {
        QCOMPARE(Titles(f.platform),
                 (QStringList{QStringLiteral("Bad Records"), QStringLiteral("Load Error")}));
        QVERIFY(f.platform.boxes[1].text.contains(QStringLiteral("line 7")));
        QVERIFY(!loaded[0][0].toBool());
        QCOMPARE(documents.DocumentCount(), 0);
        QVERIFY(f.Page().LoadProgressText().contains(QStringLiteral("line 7")));
      }
    }
  }
};

SYLVORA_QT_TEST_MAIN(ImportWorkflowTest)
#include "import_workflow_test.moc"
