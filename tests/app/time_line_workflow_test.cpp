// The time line explorer on the sample corpus: bad options, a cancelled build keeping the previous
// models, an interval selected everywhere, the interval lists' figures, the message list of each
// term kind, the menus' check marks, the event time line, the clipboard texts and the CSV files.
// (Where a clicked term is selected and marked: the all-term list's and the related terms' tests.)
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>
#include <cmath>

#include "app/cluster_explorer_page.h"
#include "app/interval_term_model.h"
#include "app/job_runner.h"
#include "app/term_list_model.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "app/tweet_view_summary.h"
#include "session/interval_models.h"
#include "session/interval_series.h"
#include "support/qt_test_main.h"
#include "views/table_lens.h"
#include "views/time_line_chart.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::IntervalTermModel;
using app::TimeLineExplorerPage;

namespace {

const QString kTwitter11 = DataFile(QStringLiteral("sample_twitter11.txt"));

QString Q(const char* text) { return QString::fromUtf8(text); }
QString Q(const std::string& text) { return QString::fromStdString(text); }

// A window with the sample loaded and indexed.
struct Indexed {
  // With `build`, the views are built too with the default options.
  explicit Indexed(bool build = false) {
    ok = f.Load(kTwitter11) && f.Index() && f.Window().CurrentSession().Indexed() &&
         (!build || Build());
    f.platform.boxes.clear();
  }
  TimeLineExplorerPage& Page() { return f.Window().TimeLine(); }
  Session& S() { return f.Window().CurrentSession(); }
  // Sets the options and builds; true when a job ran.
  bool Build(const QString& length = QStringLiteral("24"),
             const QString& window = QStringLiteral("1")) {
    f.Find<QLineEdit>(QStringLiteral("IntervalLen"))->setText(length);
    f.Find<QLineEdit>(QStringLiteral("NovWinSz"))->setText(window);
    if (!Page().BuildModels_Click()) return false;
    return f.WaitIdle();
  }
  WindowFixture f;
  bool ok = false;
};

QStringList FirstLines(const QString& path, int count) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QString text = QString::fromUtf8(file.readAll());
  return text.split(QStringLiteral("\r\n")).mid(0, count);
}

}  // namespace

class TimeLineWorkflowTest : public QObject {
  Q_OBJECT

 private:
  static void IntervalListsShowTheirTermsFigures(Indexed& w, int interval) {
    TextStream& words = w.S().WordModel();
    const IntervalTermModel& list = w.Page().IntervalTerms(IndexKind::kWords);
    const auto ratio = words.IntervalBurstScores(interval, TextStream::kRatioBurst);
    const int n = words.IntervalDocCount(interval);
    for (int row = 0; row < list.rowCount(); ++row) {
      const std::int32_t t = list.TermAt(row);
      QCOMPARE(list.CellText(row, 0), Q(w.S().WordIndex().Term(t)));
      QCOMPARE(list.CellText(row, 2).toDouble(),
               std::round(ratio[static_cast<std::size_t>(t)] * 100.0) / 100.0);
      QCOMPARE(list.CellText(row, 4).toInt(),
               static_cast<int>(std::lround(words.IntervalFrequency(t, interval) * n)));
      QCOMPARE(list.CellText(row, 5).toInt(), words.FirstTermInterval(t));
    }
  }

  static void ClipboardAndLinkTexts(Indexed& w) {
    QTableView* users = w.f.Page().TermListView(IndexKind::kUsers);
    const app::TermListModel& list = w.f.Page().TermList(IndexKind::kUsers);
    users->selectionModel()->select(list.index(2, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    users->selectionModel()->select(list.index(0, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    w.Page().Action(QStringLiteral("mCopySelectedUsers"))->trigger();
    QCOMPARE(w.f.platform.clipboardText, list.CellText(0, 0) + QStringLiteral("\r\n") +
                                             list.CellText(2, 0) + QStringLiteral("\r\n"));

    // "Follow URL" opens the link of the selected message.
    const TermDocumentMatrix& links = w.S().LinkIndex();
    emit w.f.Page().termClicked(IndexKind::kLinks, Q(links.Term(1)));
    w.Page().TweetView()->selectRow(0);
    w.Page().Action(QStringLiteral("mFollURL"))->trigger();
    QCOMPARE(w.f.platform.links.size(), 1);
    const DocumentSet& documents = w.S().Documents();
    const DocIndex doc = w.Page().TweetList().DocumentAt(0);
    QCOMPARE(w.f.platform.links[0], QString::fromUtf8(documents.Cell(doc, documents.URLField()))
                                        .section(u' ', 0, 0, QString::SectionSkipEmpty));
  }

  static void ChartAverageAndNoveltyWindow(Indexed& w) {
    TimeLineChart& chart = w.Page().Chart();
    w.Page().SetSentimentAverage(TimeLineExplorerPage::kMode);
    QCOMPARE(chart.SentimentAverageChoice(), std::int16_t(1));
    // Redraw takes a new novelty window from NovWinSz.
    w.f.Find<QLineEdit>(QStringLiteral("NovWinSz"))->setText(QStringLiteral("3"));
    w.Page().Action(QStringLiteral("mTVRedraw"))->trigger();
    QCOMPARE(int(chart.Data().noveltyWindow), 3);
    QCOMPARE(chart.Data().intervals[2].novelty, 0.0f);
    QCOMPARE(chart.Data().intervals[3].novelty, w.S().WordModel().IntervalNoveltyScore(4, 3));
  }

 private slots:
  // A fresh window: the unit combo's codes; before indexing a build, a click or a search only
  // tell the user; the chart is empty and its saves are refused.
  void BeforeIndexingTheUnitComboWorksAndEverythingElseOnlyTells() {
    WindowFixture f;
    TimeLineExplorerPage& page = f.Window().TimeLine();
    auto* combo = f.Find<QComboBox>(QStringLiteral("ETI_Combo"));
    const char* cases[][2] = {{"Seconds", "s"}, {"Minutes", "n"}, {"Days", "d"}, {"Weeks", "ww"}};
    for (const auto& [text, code] : cases) {
      combo->setCurrentText(Q(text));
      QCOMPARE(page.IntervalUnit(), Q(code));
    }
    f.platform.boxes.clear();
    QVERIFY(!page.BuildModels_Click());
    page.SelectInterval(3);
    QCOMPARE(page.SelectedInterval(), 0);
    page.FindTerm_Click(0);
    QVERIFY(f.platform.boxes.last().text.startsWith(QStringLiteral("Cannot find any variant of ")));
    QCOMPARE(page.Chart().IntervalCount(), 0);
    QVERIFY(!page.SaveChartPng(f.Folder() + QStringLiteral("/c.png")));
    QVERIFY(!page.SaveSeries(f.Folder() + QStringLiteral("/s.csv")));
    QCOMPARE(f.platform.boxes.size(), 5);
    page.Chart().MousePress(Qt::LeftButton, QPointF(10, 10));
    page.Chart_DblClick();
    QCOMPARE(page.SelectedInterval(), 0);
  }

  void BadOptionsGiveAMessageAndBuildNothing() {
    Indexed w;
    QVERIFY(w.ok);
    const char* cases[][3] = {
        {"0", "1", kIntervalLengthInvalidMessage}, {"abc", "1", kIntervalLengthInvalidMessage},
        {"", "1", kIntervalLengthInvalidMessage},  {"24", "256", "Novelty comparison period"},
        {"24", "-1", "Novelty comparison period"}, {"24", "1.5", "Novelty comparison period"}};
    for (const auto& [length, window, text] : cases) {
      w.f.platform.boxes.clear();
      w.Build(Q(length), Q(window));
      QCOMPARE(w.f.platform.boxes.size(), 1);
      QVERIFY2(w.f.platform.boxes[0].text.startsWith(Q(text)), length);
      QVERIFY(!w.Page().ModelsBuilt());
    }
  }

  void BuildShowsTheTermTimeLineAndFillsTheAllTermLists() {
    Indexed w;
    QVERIFY(w.ok);
    QSignalSpy built(&w.Page(), &TimeLineExplorerPage::modelsBuilt);
    QVERIFY(w.Build());
    QCOMPARE(built.size(), 1);
    const TextStream& words = w.S().WordModel();
    TableLens* lens = w.Page().TIFMView();
    QCOMPARE(lens->VisibleColumns(), words.IntervalCount());
    QCOMPARE(lens->RowName(1), Q(w.S().WordIndex().Term(1)));
    QCOMPARE(lens->ColumnName(2), Q(words.IntervalDateTimeBounds(2, "h")[0]));
    QVERIFY(w.f.Find<QPushButton>(QStringLiteral("GetTL"))->isEnabled());
    QCOMPARE(w.f.Page().TermList(IndexKind::kHashtags).CellText(0, 3).size(), 3);
  }

  void CancelledRebuildKeepsThePreviousModelsAndViews() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    const int intervals = w.S().WordModel().IntervalCount();
    w.Page().SelectInterval(5);
    const QString caption = w.Page().TweetViewSummaryText();
    w.f.Find<QLineEdit>(QStringLiteral("IntervalLen"))->setText(QStringLiteral("6"));
    QVERIFY(w.Page().BuildModels_Click());
    QVERIFY(w.Page().TIFMView() == nullptr);
    w.f.Window().Jobs().Cancel();
    QVERIFY(w.f.WaitIdle());
    QVERIFY(w.Page().ModelsBuilt() && w.Page().isEnabled());
    QCOMPARE(w.S().WordModel().IntervalCount(), intervals);
    QVERIFY(w.Page().TIFMView() != nullptr);
    QCOMPARE(w.Page().TweetViewSummaryText(), caption);
  }

  void AClickSelectsTheIntervalEverywhere() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    QSignalSpy selected(&w.Page(), &TimeLineExplorerPage::intervalSelected);
    const TextStream& words = w.S().WordModel();
    const int interval = 4;
    w.Page().SelectInterval(interval);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(w.Page().TIFMView()->CursorColumn(), interval);
    // The message list: every document of the interval, in corpus order.
    const int n = words.IntervalDocCount(interval);
    QCOMPARE(w.Page().TweetList().rowCount(), n);
    QCOMPARE(w.Page().TweetList().DocumentAt(0), words.FirstDocumentIndex(interval));
    QCOMPARE(w.Page().TweetList().DocumentAt(n - 1), words.LastDocumentIndex(interval));
    // The interval lists hold the terms of the interval (their rows: the next test), the first
    // row selected.
    for (const IndexKind kind : app::kIntervalListOrder) {
      if (w.Page().IntervalTerms(kind).rowCount() == 0) continue;
      const QModelIndexList rows =
          w.Page().IntervalTermView(kind)->selectionModel()->selectedRows();
      QVERIFY2(rows.size() == 1 && rows[0].row() == 0, IndexKindName(kind).data());
    }
    QVERIFY(w.Page().IntervalTerms(IndexKind::kWords).rowCount() > 10);

    // A left click in the term time line selects its column and lists the term there.
    TableLens* lens = w.Page().TIFMView();
    std::int32_t term = w.Page().IntervalTerms(IndexKind::kWords).TermAt(0);
    emit lens->CellMouseClick(term, 6, Qt::LeftButton);
    QCOMPARE(lens->CursorColumn(), 6);
    QVERIFY(w.Page().TweetViewSummaryText().contains(
        QStringLiteral(" OCCURRENCES OF %1 FROM: ").arg(Q(w.S().WordIndex().Term(term)))));
    // Hovering a cell hovers its interval.
    QSignalSpy hovered(&w.Page(), &TimeLineExplorerPage::intervalHovered);
    emit lens->CellMouseOver(8, 1);
    emit lens->CellMouseOver(8, 2);
    QCOMPARE(hovered.size(), 1);
    QCOMPARE(w.Page().HoveredInterval(), 8);

    // Each column of the word list shows its own figure of the row's term.
    w.Page().SelectInterval(5);
    IntervalListsShowTheirTermsFigures(w, 5);
  }

  void MessageCaptionsForEachTermKind() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    const int interval = 6;
    w.Page().SelectInterval(interval);
    for (const IndexKind kind : app::kIntervalListOrder) {
      const IntervalTermModel& list = w.Page().IntervalTerms(kind);
      QSignalSpy located(&w.Page(), &TimeLineExplorerPage::termLocated);
      w.Page().IntervalTerm_Click(kind, 0);
      const QString term = list.TermTextAt(0);
      const int k = w.Page().TweetList().rowCount();
      QCOMPARE(k,
               list.CellText(0, kind == IndexKind::kWords || kind == IndexKind::kHashtags ? 4 : 1)
                   .toInt());
      QVERIFY(w.Page().TweetViewSummaryText().contains(term));
      QCOMPARE(located.size(), 1);
    }
  }

  void AllTermListClicksListTheWholeTimeLine() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    const TextStream& words = w.S().WordModel();
    const TermDocumentMatrix& links = w.S().LinkIndex();
    emit w.f.Page().termClicked(IndexKind::kLinks, Q(links.Term(1)));
    const int k = w.Page().TweetList().rowCount();
    QCOMPARE(k, links.DocFreq(1));
    QVERIFY(w.Page().TweetViewSummaryText().contains(
        QStringLiteral(" FROM: %1 TO: %2 (FIRST ")
            .arg(app::IntervalCalendarBounds(words, 1, "h")[0],
                 app::IntervalCalendarBounds(words, words.IntervalCount(), "h")[1])));
    emit w.f.Page().termClicked(IndexKind::kWords, Q(w.S().WordIndex().Term(3)));
    QCOMPARE(w.Page().TweetList().rowCount(), w.S().WordIndex().DocFreq(3));
    QVERIFY(w.Page().TIFMView()->RowMarked(3));

    w.Page().AllTermList_Click(IndexKind::kWords, QStringLiteral("zzqqxx"));
    QCOMPARE(w.f.platform.Texts(), QStringList{QStringLiteral("Couldn't locate term in index")});
    ClipboardAndLinkTexts(w);
  }

  void TweetViewSortingAndBothSearches() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    w.Page().SelectInterval(3);
    app::TweetListModel& tweets = w.Page().TweetList();
    const int last = tweets.columnCount() - 1;
    // Header clicks alternate: ascending, descending, ascending.
    for (const Qt::SortOrder order :
         {Qt::AscendingOrder, Qt::DescendingOrder, Qt::AscendingOrder}) {
      w.Page().TweetView_HeaderClick(1);
      QCOMPARE(tweets.SortOrder(), order);
      for (int row = 1; row < tweets.rowCount(); ++row) {
        const int compared =
            tweets.CellText(row - 1, 1).compare(tweets.CellText(row, 1), Qt::CaseInsensitive);
        QVERIFY(order == Qt::AscendingOrder ? compared <= 0 : compared >= 0);
      }
    }
    w.Page().TweetView_HeaderClick(last);
    QVERIFY(tweets.DocumentAt(0) < tweets.DocumentAt(1));

    // The tweet search goes forward from the row after the selection, any column but the first.
    const QString user = tweets.CellText(tweets.rowCount() - 1, 1);
    w.f.Find<QLineEdit>(QStringLiteral("FindTermStr"))->setText(user.toUpper());
    w.Page().FindTerm_Click(1);
    QModelIndexList rows = w.Page().TweetView()->selectionModel()->selectedRows();
    const int found = rows.value(0).row();
    QVERIFY(tweets.CellText(found, 1).contains(user, Qt::CaseInsensitive) ||
            tweets.CellText(found, 2).contains(user, Qt::CaseInsensitive));
    // From the last row nothing is found and the selection stays.
    w.Page().TweetView()->selectRow(tweets.rowCount() - 1);
    w.Page().FindTerm_Click(1);
    rows = w.Page().TweetView()->selectionModel()->selectedRows();
    QCOMPARE(rows[0].row(), tweets.rowCount() - 1);

    // The term search marks the term's row in the term time line and filters the rows.
    auto* box = w.f.Find<QLineEdit>(QStringLiteral("FindTermStr"));
    box->setText(QStringLiteral("zzqqxx"));
    w.Page().FindTerm_Click(0);
    QCOMPARE(w.f.platform.boxes.last().text, QStringLiteral("Cannot find any variant of zzqqxx"));
    QVERIFY(!w.Page().Action(QStringLiteral("mFilterRows"))->isChecked());
    const std::string term = w.S().WordIndex().Term(7);
    box->setText(Q(term));
    QTest::keyClick(box, Qt::Key_Return);
    QVERIFY(w.Page().TIFMView()->RowMarked(7) && w.Page().TIFMView()->FilterRows());
    QVERIFY(w.Page().Action(QStringLiteral("mFilterRows"))->isChecked());
    // A click in the box empties it.
    QTest::mouseClick(box, Qt::LeftButton);
    QCOMPARE(box->text(), QString());
  }

  void MenusKeepTheirCheckMarks() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    TimeLineExplorerPage& page = w.Page();
    const auto checked = [&page](const QString& name) {
      QStringList marks;
      for (QAction* action : page.findChildren<QAction*>(name)) {
        if (action->isChecked()) marks.push_back(action->text());
      }
      return marks;
    };
    QSignalSpy redraws(&page, &TimeLineExplorerPage::chartRedrawRequested);
    for (QAction* action : page.findChildren<QAction*>(QStringLiteral("mSentiAvg"))) {
      if (action->text() == QStringLiteral("Median")) action->trigger();
    }
    QCOMPARE(checked(QStringLiteral("mSentiAvg")), QStringList{QStringLiteral("Median")});
    page.Action(QStringLiteral("mTVRedraw"))->trigger();
    QCOMPARE(redraws.size(), 2);

    const QString bursts[] = {QStringLiteral("mRatioBurst"), QStringLiteral("mTemporalBurst"),
                              QStringLiteral("mTIZBurst")};
    for (int chosen : {2, 1, 0, 2}) {
      page.Action(bursts[chosen])->trigger();
      QCOMPARE(page.BurstMeasure(), chosen);
      for (int i = 0; i < 3; ++i) QCOMPARE(page.Action(bursts[i])->isChecked(), i == chosen);
    }
    ChartAverageAndNoveltyWindow(w);
  }

  void EventFileIsPlacedInItsInterval() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    const QString path = w.f.Folder() + QStringLiteral("/events.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "2013-09-10 12:00:00\tLandfall\textra\r\nno tab on this line\r\n"
        "someday\tNot a date\r\n\r\n09/09/2013 08:00\tWarning issued\r\n");
    file.close();
    // A file that cannot be read is told and keeps the button (the reader's tests say why).
    w.f.platform.chosenFiles = {w.f.Folder() + QStringLiteral("/missing.txt"), path};
    w.Page().GetTL_Click();
    QCOMPARE(w.f.platform.boxes.size(), 1);
    QVERIFY(w.f.Find<QPushButton>(QStringLiteral("GetTL"))->isEnabled());
    w.Page().GetTL_Click();
    QCOMPARE(w.f.platform.boxes.size(), 2);
    QVERIFY(w.f.platform.boxes[1].text.startsWith(
        QStringLiteral("2 line(s) of the event file were skipped")));
    auto* list = w.f.Find<QComboBox>(QStringLiteral("EventList"));
    QCOMPARE(list->count(), 2);
    QVERIFY(!w.f.Find<QPushButton>(QStringLiteral("GetTL"))->isEnabled());
    // The next build places them (which interval each falls in: the session's tests).
    QVERIFY(w.Build());
    const TextStream& words = w.S().WordModel();
    QCOMPARE(Q(words.Events(*words.IntervalFromDateTime("2013-09-10 12:00:00", "h"))),
             QStringLiteral("|Landfall"));
  }

  void SavesAskForANameAndWriteTheLists() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    w.Page().SelectInterval(4);
    const QString terms = w.f.Folder() + QStringLiteral("/terms.csv");
    QStringList asked;
    w.Page().SetSaveFileChooser([&](const QString& caption, const QString& name) {
      asked.push_back(caption + u'|' + name);
      return terms;
    });
    QVERIFY(w.Page().SaveIntervalTermsAs(IndexKind::kWords));
    QCOMPARE(asked, QStringList{QStringLiteral("Save Interval Term List|interval-004-words.csv")});
    const IntervalTermModel& list = w.Page().IntervalTerms(IndexKind::kWords);
    QStringList lines = FirstLines(terms, 2);
    QStringList cells;
    for (int c = 0; c < list.columnCount(); ++c) cells.push_back(list.CellText(0, c));
    QCOMPARE(lines[1], cells.join(u','));

    const QString tweets = w.f.Folder() + QStringLiteral("/tweets.csv");
    QVERIFY(w.Page().SaveTweetList(tweets) && QFile::exists(tweets));

    // An unwritable file is a message.
    w.f.platform.boxes.clear();
    QVERIFY(!w.Page().SaveTweetList(w.f.Folder() + QStringLiteral("/no/such/folder/t.csv")));
    QVERIFY(w.f.platform.boxes.value(0).text.startsWith(QStringLiteral("Cannot write ")));

    // The chart's picture and series.
    const QString png = w.f.Folder() + QStringLiteral("/chart.png");
    const QString csv = w.f.Folder() + QStringLiteral("/series.csv");
    QStringList chosen = {png, csv};
    w.Page().SetSaveFileChooser([&](const QString&, const QString&) { return chosen.takeFirst(); });
    QVERIFY(w.Page().SaveChartPngAs() && w.Page().SaveSeriesAs());
    QVERIFY(!QImage(png).isNull());
    QFile series(csv);
    QVERIFY(series.open(QIODevice::ReadOnly));
    QCOMPARE(series.readAll().count('\n'), w.S().WordModel().IntervalCount() + 1);
  }

  void ChartIsFedByTheBuildAndLinkedToThePage() {
    Indexed w;
    QVERIFY(w.ok);
    w.f.Window().show();
    w.f.Window().Tabs().setCurrentWidget(&w.Page());
    QVERIFY(QTest::qWaitForWindowExposed(&w.f.Window()));
    QVERIFY(w.Build());
    TimeLineChart& chart = w.Page().Chart();
    const TextStream& words = w.S().WordModel();
    QCOMPARE(chart.IntervalCount(), words.IntervalCount());

    // Interval i of the chart sits above column i of the term time line.
    QTest::qWait(50);
    TableLens* lens = w.Page().TIFMView();
    const int chartLeft = chart.ChartSurface()->mapTo(&w.f.Window(), QPoint(0, 0)).x();
    const int lensLeft = lens->TLContainer()->mapTo(&w.f.Window(), QPoint(0, 0)).x();
    for (int column : {1, 5, lens->VisibleColumns()}) {
      const int interval = lens->LeftColumn() + column - 1;
      const double chartX = chartLeft + chart.ToPixels(interval, 0).x();
      const double lensX = lensLeft + lens->CellRect(1, column).left();
      QVERIFY2(std::abs(chartX - lensX) < 1.0,
               qPrintable(QStringLiteral("%1 %2").arg(chartX).arg(lensX)));
    }

    // Hovering a lens cell hovers the chart: ChartDetails shows the chart's text.
    emit lens->CellMouseOver(7, 1);
    QCOMPARE(chart.HoverInterval(), 7);
    QCOMPARE(w.f.Find<QLabel>(QStringLiteral("ChartDetails"))->text(), chart.ChartDetails(7));

    // A click on the chart selects the interval everywhere.
    const QPointF at = chart.ToPixels(9.5, 0.5);
    chart.MouseMove(at);
    QCOMPARE(chart.HoverInterval(), 9);
    chart.MousePress(Qt::LeftButton, at);
    QCOMPARE(chart.SelectedInterval(), 9);
    QCOMPARE(lens->CursorColumn(), 9);
    QCOMPARE(w.Page().TweetList().rowCount(), words.IntervalDocCount(9));
    // A click in the lens moves the chart's selection too.
    emit lens->CellMouseClick(1, 3, Qt::LeftButton);
    QCOMPARE(chart.SelectedInterval(), 3);

    // The double-click copy, after the question.
    w.f.platform.boxes.clear();
    chart.MouseDoubleClick(Qt::LeftButton, at);
    QVERIFY(w.f.platform.boxes.size() == 1 && w.f.platform.clipboardImage.isNull());
    w.f.platform.answers.push_back(Answer::kYes);
    chart.MouseDoubleClick(Qt::LeftButton, at);
    QCOMPARE(w.f.platform.clipboardImage.size(), chart.Picture().size());
  }

  // The wheel over the chart zooms both time lines around the pointer; a Shift drag over the
  // chart and a drag over the term time line's header or the chart's dates pan them; the chart
  // always shows the lens's first to last interval, and a click still selects the interval under
  // the pointer.
  void WheelAndDragsZoomAndPanBothTimeLines() {
    Indexed w;
    QVERIFY(w.ok);
    w.f.Window().show();
    w.f.Window().Tabs().setCurrentWidget(&w.Page());
    QVERIFY(QTest::qWaitForWindowExposed(&w.f.Window()));
    QVERIFY(w.Build(QStringLiteral("6")));
    QTest::qWait(50);
    TimeLineChart& chart = w.Page().Chart();
    TableLens* lens = w.Page().TIFMView();
    QWidget* surface = chart.ChartSurface();
    const int total = chart.IntervalCount();
    QVERIFY2(total >= 20, qPrintable(QString::number(total)));
    QCOMPARE(lens->VisibleColumns(), total);
    const int shift = surface->mapTo(&w.f.Window(), QPoint(0, 0)).x() -
                      lens->TLContainer()->mapTo(&w.f.Window(), QPoint(0, 0)).x();
    const double y = surface->height() / 2.0;
    // The chart's intervals above the lens's first and last columns are the lens's.
    const auto alignedWithTheLens = [&] {
      const int first = lens->LeftColumn();
      const int last = first + lens->VisibleColumns() - 1;
      return chart.IntervalAt({lens->CellRect(1, 1).center().x() - shift, y}) == first &&
             chart.IntervalAt(
                 {lens->CellRect(1, lens->VisibleColumns()).center().x() - shift, y}) == last;
    };

    const int pointed = total / 3;
    const QPointF at = chart.ToPixels(pointed + 0.5, 0.5);
    const auto wheel = [&](int notches) {
      QWheelEvent event(at, surface->mapToGlobal(at), QPoint(), QPoint(0, 120 * notches),
                        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
      QApplication::sendEvent(surface, &event);
    };
    wheel(3);
    QVERIFY(lens->VisibleColumns() < total);
    QVERIFY(alignedWithTheLens());
    QVERIFY(std::abs(chart.IntervalAt(at) - pointed) <= 1);
    // The click selects the interval under the pointer, whose lens column lies below it.
    QTest::mouseClick(surface, Qt::LeftButton, {}, at.toPoint());
    const int clicked = chart.IntervalAt(at);
    QCOMPARE(chart.SelectedInterval(), clicked);
    QCOMPARE(lens->CursorColumn(), clicked);
    const QRectF cell = lens->CellRect(1, clicked - lens->LeftColumn() + 1);
    QVERIFY(cell.left() <= at.x() + shift + 1 && at.x() + shift - 1 <= cell.right());
    // Left of the first interval shown (above the lens's row names) nothing is selected.
    const QPoint beforeFirst(static_cast<int>(lens->CellRect(1, 1).left()) - shift - 5,
                             static_cast<int>(y));
    QVERIFY(beforeFirst.x() > 0);
    QTest::mouseClick(surface, Qt::LeftButton, {}, beforeFirst);
    QCOMPARE(chart.SelectedInterval(), clicked);

    // Shift drag two columns to the right: two earlier intervals come in; nothing is selected.
    const double column = lens->CellRect(1, 1).width();
    int left = lens->LeftColumn();
    QVERIFY(left > 2);
    QTest::mousePress(surface, Qt::LeftButton, Qt::ShiftModifier, at.toPoint());
    QTest::mouseMove(surface, (at + QPointF(2 * column, 0)).toPoint());
    QTest::mouseRelease(surface, Qt::LeftButton, Qt::ShiftModifier,
                        (at + QPointF(2 * column, 0)).toPoint());
    QCOMPARE(lens->LeftColumn(), left - 2);
    QCOMPARE(chart.SelectedInterval(), clicked);
    QVERIFY(alignedWithTheLens());
    // A drag over the lens header to the left: later intervals come in.
    left = lens->LeftColumn();
    const QPointF header = lens->CellRect(0, 3).center();
    QTest::mousePress(lens->TLContainer(), Qt::LeftButton, {}, header.toPoint());
    QTest::mouseMove(lens->TLContainer(), (header - QPointF(column, 0)).toPoint());
    QTest::mouseRelease(lens->TLContainer(), Qt::LeftButton, {},
                        (header - QPointF(column, 0)).toPoint());
    QCOMPARE(lens->LeftColumn(), left + 1);
    QVERIFY(alignedWithTheLens());
    // A drag over the dates under the chart, without a modifier.
    auto* axis = w.f.Find<QWidget>(QStringLiteral("ChartAxis"));
    const QPoint onAxis(surface->width() / 2, axis->height() / 2);
    QTest::mousePress(axis, Qt::LeftButton, {}, onAxis);
    QTest::mouseMove(axis, onAxis + QPoint(static_cast<int>(std::lround(column)), 0));
    QTest::mouseRelease(axis, Qt::LeftButton, {},
                        onAxis + QPoint(static_cast<int>(std::lround(column)), 0));
    QCOMPARE(lens->LeftColumn(), left);

    // Zoomed all the way out: every interval again.
    wheel(-30);
    QCOMPARE(lens->VisibleColumns(), total);
    QCOMPARE(lens->LeftColumn(), 1);
    QVERIFY(alignedWithTheLens());
  }

  void ClusterExplorerFollowsTheTimeLine() {
    Indexed w(/*build=*/true);
    QVERIFY(w.ok);
    app::ClusterExplorerPage& clusters = w.f.Window().ClusterExplorer();
    w.Page().SelectInterval(4);
    QCOMPARE(clusters.SelectedInterval(), 4);
    // The word map's word over the whole time line, a tweet and the visible tweets.
    const std::int32_t term = 2;
    emit clusters.wordChosen(term, 1, w.S().WordModel().IntervalCount());
    QCOMPARE(w.Page().TweetList().rowCount(), w.S().WordIndex().DocFreq(term));
    const int row = w.Page().TweetList().DocumentAt(3);
    emit clusters.tweetChosen(row);
    QCOMPARE(w.Page().TweetView()->selectionModel()->selectedRows().value(0).row(), 3);
    emit clusters.tweetsShown(QVector<int>{5, 2, 9});
    QCOMPARE(w.Page().TweetList().rowCount(), 3);
    QCOMPARE(w.Page().TweetList().DocumentAt(0), 5);
    emit clusters.intervalSelected(6);
    QCOMPARE(w.Page().SelectedInterval(), 6);

    // Indexing again drops the views.
    QVERIFY(w.f.Index());
    QVERIFY(!w.Page().ModelsBuilt() && w.Page().TIFMView() == nullptr);
    QCOMPARE(w.Page().SelectedInterval(), 0);
    QCOMPARE(w.Page().TweetList().rowCount(), 0);
  }
};

SYLVORA_QT_TEST_MAIN(TimeLineWorkflowTest)
#include "time_line_workflow_test.moc"
