// The small parts of the time line explorer: CSV quoting, the event time line file, the
// message list captions and the list number formats.
#include <QStandardItemModel>
#include <QTest>

#include "app/csv_table.h"
#include "app/event_time_line.h"
#include "app/interval_term_model.h"
#include "app/tweet_view_summary.h"
#include "support/qt_test_main.h"

using namespace sylvora;
using namespace sylvora::app;

class TimeLinePartsTest : public QObject {
  Q_OBJECT

 private slots:
  void CsvFieldsAreQuotedAsRfc4180SaysAndModelsGetAHeaderRow() {
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("plain"), QStringLiteral("plain")},
        {QString(), QString()},
        {QStringLiteral("a,b"), QStringLiteral("\"a,b\"")},
        {QStringLiteral("say \"hi\""), QStringLiteral("\"say \"\"hi\"\"\"")},
        {QStringLiteral("two\nlines"), QStringLiteral("\"two\nlines\"")},
        {QStringLiteral("cr\rhere"), QStringLiteral("\"cr\rhere\"")},
        {QStringLiteral("caf\u00e9 #tag @me"), QStringLiteral("caf\u00e9 #tag @me")},
    };
    for (const auto& [field, expected] : cases) QCOMPARE(CsvField(field), expected);
    QCOMPARE(CsvRecord({QStringLiteral("a"), QStringLiteral("b,c"), QString()}),
             QStringLiteral("a,\"b,c\","));
    // A model's text: a header row and CR LF lines.
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("Term"), QStringLiteral("Docs, all")});
    model.setItem(0, 0, new QStandardItem(QStringLiteral("storm")));
    model.setItem(0, 1, new QStandardItem(QStringLiteral("012")));
    model.setItem(1, 0, new QStandardItem(QStringLiteral("\"x\"")));
    QCOMPARE(CsvText(model),
             QStringLiteral("Term,\"Docs, all\"\r\nstorm,012\r\n\"\"\"x\"\"\",\r\n"));
  }

  void EventLinesAreReadOrSkippedAndUselessFilesAreErrors() {
    const EventTimeLine read = ParseEventTimeLine(
        "2013-09-10 12:00\tLandfall\r\n"
        "\r\n"
        "no tab\n"
        "not a date\tSomething\n"
        "10/09/2013 18:00:00\tRoad closed\tA12\n"
        "\tEmpty date\n");
    QCOMPARE(read.events.size(), std::size_t(2));
    QCOMPARE(read.events[0].dateTime, std::string("2013-09-10 12:00"));
    QCOMPARE(read.events[0].description, std::string("Landfall"));
    QCOMPARE(read.events[1].description, std::string("Road closed"));
    QCOMPARE(read.listEntries[1], std::string("10/09/2013 18:00:00-Road closed-A12"));
    QCOMPARE(read.skipped, 3);
    QVERIFY(read.error.empty());
    // Empty or useless files are errors.
    QVERIFY(!ParseEventTimeLine("").error.empty());
    QVERIFY(!ParseEventTimeLine("\r\n\r\n").error.empty());
    const EventTimeLine bad = ParseEventTimeLine("a\nb\tc\n");
    QVERIFY(!bad.error.empty());
    QCOMPARE(bad.skipped, 2);
    QVERIFY(!ReadEventTimeLine("/no/such/file.txt").error.empty());
  }

  void CaptionsOfEachKind() {
    const QString s = QStringLiteral("2013-09-02 00:00:00");
    const QString e = QStringLiteral("2013-09-03 00:00:00");
    QCOMPARE(
        IntervalSummary(12, s, e),
        QStringLiteral("SHOWING THE 12 TWEETS FROM: 2013-09-02 00:00:00 TO: 2013-09-03 00:00:00"));
    const std::tuple<IndexKind, QString, QString> cases[] = {
        {IndexKind::kWords, QStringLiteral("storm"),
         QStringLiteral("SHOWING THE 3 OCCURRENCES OF storm FROM: ")},
        {IndexKind::kHashtags, QStringLiteral("marisol"),
         QStringLiteral("SHOWING THE 3 OCCURRENCES OF #marisol FROM: ")},
        {IndexKind::kMentions, QStringLiteral("wrenna"),
         QStringLiteral("SHOWING THE 3 MENTIONS OF @wrenna FROM: ")},
        {IndexKind::kUsers, QStringLiteral("sandy_6"),
         QStringLiteral("SHOWING THE 3 TWEETS BY @sandy_6 FROM: ")},
        {IndexKind::kLinks, QStringLiteral("http://x.org/a"),
         QStringLiteral("SHOWING THE 3 OCCURRENCES OF [http://x.org/a] FROM: ")},
    };
    for (const auto& [kind, term, start] : cases) {
      QCOMPARE(TermSummary(kind, 3, term, s, e), start + s + QStringLiteral(" TO: ") + e);
    }
    const QString longLink = QStringLiteral("http://") + QString(100, u'a');
    QCOMPARE(TermSummary(IndexKind::kLinks, 1, longLink, s, e),
             QStringLiteral("SHOWING THE 1 OCCURRENCES OF [") + longLink.left(80) +
                 QStringLiteral("] FROM: ") + s + QStringLiteral(" TO: ") + e);
  }

  void ListNumbers() {
    const std::tuple<float, const char*, QString> cases[] = {
        {1.5f, "000.00", QStringLiteral("001.50")}, {123.456f, "000.00", QStringLiteral("123.46")},
        {0.0f, "00.00", QStringLiteral("00.00")},   {7.0f, "000", QStringLiteral("007")},
        {2.5f, "000", QStringLiteral("003")},       {0.285f, "0.00", QStringLiteral("0.29")},
        {1234.0f, "000", QStringLiteral("1234")},
    };
    for (const auto& [value, pattern, expected] : cases) {
      QCOMPARE(ListNumber(value, pattern), expected);
    }
  }
};

SYLVORA_QT_TEST_MAIN(TimeLinePartsTest)
#include "time_line_parts_test.moc"
