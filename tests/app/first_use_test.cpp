// What a new user meets first, through the window: the load's feedback and its boxes, the
// empty map surfaces, the cell style menu, the term time line's headers, the first label
// threshold of the word map, "Related Words" before the views, the message list's captions,
// and the load column at 1366 x 768.
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QTableView>
#include <QTest>

#include "app/cluster_explorer_page.h"
#include "app/related_terms.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "cluster_test_support.h"
#include "support/qt_test_main.h"
#include "views/session_views.h"
#include "views/table_lens.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;

namespace {

const QString kSample = DataFile(QStringLiteral("sample_twitter11.txt"));

QString ProgressText(WindowFixture& f) {
  return f.Find<QLabel>(QStringLiteral("LoadProgress"))->text();
}

// Share of the picture's pixels that are pure white.
double WhiteShare(const QImage& image) {
  qint64 white = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) white += image.pixel(x, y) == qRgb(255, 255, 255);
  }
  return image.isNull() ? 0.0 : static_cast<double>(white) / (image.width() * image.height());
}

}  // namespace

class FirstUseTest : public QObject {
  Q_OBJECT

 private slots:
  void linkNoteOnlyForFilesWithShortLinks() {
    WindowFixture f;
    QVERIFY(f.Load(kSample));
    QVERIFY(ProgressText(f).contains(QStringLiteral("Expanding Short URLs")));
    const QString plain = f.Folder() + QStringLiteral("/plain.txt");
    {
      QFile file(plain);
      QVERIFY(file.open(QIODevice::WriteOnly));
      QFile sample(kSample);
      QVERIFY(sample.open(QIODevice::ReadOnly));
      QByteArray bytes = sample.read(1 << 20);
      bytes.replace("http://", "").replace("https://", "");
      file.write(bytes.left(bytes.lastIndexOf('\n') + 1));
    }
    QVERIFY(f.Load(plain));
    QVERIFY(!ProgressText(f).contains(QStringLiteral("Expanding Short URLs")));
    QCOMPARE(f.platform.boxes.size(), 0);
  }

  void emptyMapsPaintTheirBackgroundAndAHint() {
    WindowFixture f;
    f.Window().resize(1280, 800);
    f.Window().show();
    auto* surface = f.Find<QWidget>(QStringLiteral("TermSimVisContainer"));
    QVERIFY(surface != nullptr);
    const QImage picture = surface->grab().toImage();
    // The hint is a few grey letters on white: no pixels of other widgets.
    QVERIFY2(WhiteShare(picture) > 0.9, qPrintable(QString::number(WhiteShare(picture))));
    QVERIFY(WhiteShare(picture) < 1.0);
  }

  void cellStyleMenuFollowsTheViewAndTheUsersPickStaysAndTheCaptions() {
    WindowFixture f;
    QVERIFY(f.Load(kSample) && f.Index());
    app::TimeLineExplorerPage& page = f.Window().TimeLine();
    QVERIFY(page.BuildModels_Click() && f.WaitIdle());
    const auto checkedStyle = [&f]() {
      for (QAction* action : f.Window().findChildren<QAction*>(QStringLiteral("mTIVCell"))) {
        if (action->isChecked()) return action->property("index").toInt();
      }
      return -1;
    };
    TableLens* lens = page.TIFMView();
    QCOMPARE(checkedStyle(), static_cast<int>(lens->CellStyle()));

    // Message captions: day intervals run from midnight to midnight; the first and last listed
    // are named; the tweet map's tweets say where they come from.
    page.SelectInterval(9);
    auto* summary = f.Find<QLabel>(QStringLiteral("TweetViewSummary"));
    const auto* model = static_cast<const app::TweetListModel*>(
        f.Find<QTableView>(QStringLiteral("TweetView"))->model());
    const QString caption = summary->text();
    QVERIFY2(caption.contains(QStringLiteral(" 00:00:00 TO: ")), qPrintable(caption));
    const QString firstTime = model->data(model->index(0, 0)).toString().right(8);
    QVERIFY2(caption.contains(QStringLiteral("(FIRST ")) && caption.contains(firstTime),
             qPrintable(caption + QStringLiteral(" / ") + firstTime));
    page.ShowTweets({0, 1, 2});
    QVERIFY(summary->text().startsWith(QStringLiteral("SHOWING THE 3 TWEETS OF THE TWEET MAP")));

    page.SetCellStyle(TableLens::kVerticalBar);
    QVERIFY(page.BuildModels_Click() && f.WaitIdle());
    lens = page.TIFMView();
    QCOMPARE(static_cast<int>(lens->CellStyle()), static_cast<int>(TableLens::kVerticalBar));
    QCOMPARE(checkedStyle(), static_cast<int>(TableLens::kVerticalBar));

    // Headers: five-letter words whole, dates in a form that fits the column.
    for (std::int32_t row = 1; row <= 40; ++row) {
      if (lens->RowName(row).size() <= 5) QCOMPARE(lens->RowHeaderText(row), lens->RowName(row));
    }
  }

  // Before the views "Related Words" uses the tweets; then each unit builds its intervals.
  void relatedWordsBeforeTheViewsAndTheIntervalUnit() {
    WindowFixture f;
    QVERIFY(f.Load(kSample) && f.Index());
    app::RelatedTerms& related = f.Window().RelatedWords();
    QVERIFY(related.ShowRelatedTerms(f.Window().CurrentSession(), QStringLiteral("power")));
    QVERIFY(related.HeadingText().contains(QStringLiteral("same tweets")));
    QVERIFY(related.findChild<QTableView*>(QStringLiteral("TermList"))->model()->rowCount() > 0);
    app::TimeLineExplorerPage& page = f.Window().TimeLine();
    // The sample spans 2 to 19 September 2013: 18 days, 3 weeks (weeks start on Sunday).
    const std::pair<const char*, std::int32_t> cases[] = {{"Days", 18}, {"Weeks", 3}, {"Hours", 0}};
    for (const auto& [unit, intervals] : cases) {
      f.Find<QComboBox>(QStringLiteral("ETI_Combo"))->setCurrentText(QString::fromUtf8(unit));
      f.Find<QLineEdit>(QStringLiteral("IntervalLen"))->setText(QStringLiteral("1"));
      f.platform.answers = {Answer::kOk, Answer::kOk};
      QVERIFY(page.BuildModels_Click() && f.WaitIdle());
      const std::int32_t built = f.Window().CurrentSession().WordModel().IntervalCount();
      if (intervals > 0) QCOMPARE(built, intervals);
      if (intervals == 0) QVERIFY2(built > 400, qPrintable(QString::number(built)));
    }
  }

  void mapsAreReadableAndWhole() {
    // The sample's maps, laid out by the real sfdp, in a window of the usual size.
    WindowFixture f;
    f.Window().resize(1280, 800);
    f.Window().show();
    QVERIFY(PrepareSampleModels(f, RealGraphvizFolder()) && VisitClusterExplorer(f));
    for (const MapKind kind : {MapKind::kWords, MapKind::kIntervals}) {
      PointMap2D& map = f.Window().ClusterExplorer().Map(kind);
      const QSize size = map.Snapshot().size();
      const auto labelled = map.LabelledNodes();
      QVERIFY(!labelled.empty());
      // Heaviest first, and no two labels on each other.
      for (std::size_t a = 0; a < labelled.size(); ++a) {
        if (a > 0) QVERIFY(map.Weight(labelled[a - 1]) >= map.Weight(labelled[a]));
        for (std::size_t b = a + 1; b < labelled.size(); ++b) {
          QVERIFY(!map.LabelBox(labelled[a]).intersects(map.LabelBox(labelled[b])));
        }
      }
      // Every node within the picture, none wider than a tenth of its shorter side.
      const double cap = 0.1 * std::min(size.width(), size.height()) + 1.0;
      for (std::int32_t node = 0; node < map.NodeCount(); ++node) {
        const float s = map.NodeSize(node);
        const QRectF circle(map.ToPixels(map.NodeX(node) - s, map.NodeY(node) - s),
                            map.ToPixels(map.NodeX(node) + s, map.NodeY(node) + s));
        QVERIFY(QRectF(QPointF(0, 0), size).contains(circle));
        QVERIFY(circle.width() / 2 <= cap);
      }
      // "Show all labels" draws every label over the threshold again.
      map.SetReadableDrawing(false);
      QVERIFY(map.LabelledNodes().size() >= labelled.size());
      map.SetReadableDrawing(true);
    }
  }

  void columnLabelFormsShortenDatesReadably() {
    QCOMPARE(TableLens::ColumnLabelForms(QStringLiteral("2013-09-05 00:13:19")),
             (QStringList{QStringLiteral("2013-09-05 00:13:19"), QStringLiteral("2013-09-05 00:13"),
                          QStringLiteral("09-05 00:13"), QStringLiteral("2013-09-05"),
                          QStringLiteral("09-05"), QStringLiteral("05")}));
    QCOMPARE(TableLens::ColumnLabelForms(QStringLiteral("2013-09-05 00:13:19"), true),
             (QStringList{QStringLiteral("2013-09-05 00:13:19"), QStringLiteral("2013-09-05"),
                          QStringLiteral("2013-09"), QStringLiteral("2013")}));
    QCOMPARE(TableLens::ColumnLabelForms(QStringLiteral("C12")),
             QStringList{QStringLiteral("C12")});
  }

  void firstLookLabelsAHandfulOfWords() {
    struct Case {
      std::vector<float> weights;
      std::size_t wanted;
      std::int16_t threshold;
    };
    const Case cases[] = {
        {{}, 30, 0},
        {{500.0f, 300.0f, 2.0f, 1.5f, 1.0f}, 2, 3},   // the two heaviest
        {{500.0f, 300.0f, 2.0f, 1.5f, 1.0f}, 30, 0},  // fewer words than wanted: all
        {{7.0f, 7.0f, 7.0f, 0.5f}, 1, 7},             // ties at the top are never left blank
        {{120.0f, 60.0f, 59.5f, 3.0f}, 3, 4},         // 120, 60 and 59.5
    };
    for (const Case& c : cases) QCOMPARE(FirstLookLabelThreshold(c.weights, c.wanted), c.threshold);
  }

  void loadColumnScrollsAtSmallScreenHeight() {
    WindowFixture f;
    f.Window().resize(1366, 768);
    f.Window().show();
    f.Find<QPushButton>(QStringLiteral("ShowExpPan"))->click();
    QTest::qWait(20);
    QCOMPARE(f.Window().height(), 768);
    auto* save = f.Find<QPushButton>(QStringLiteral("SavePaths"));
    auto* scroll = f.Find<QScrollArea>(QStringLiteral("LoadColumnScroll"));
    QVERIFY(save != nullptr && scroll != nullptr);
    scroll->ensureWidgetVisible(save);
    QVERIFY(!save->visibleRegion().isEmpty());
    for (auto* box : f.Find<QWidget>(QStringLiteral("ExpertPanel"))->findChildren<QGroupBox*>()) {
      QVERIFY2(box->height() >= box->minimumSizeHint().height(), qPrintable(box->title()));
    }
    if (const QByteArray folder = qgetenv("SYLVORA_VIEW_SNAPSHOTS"); !folder.isEmpty()) {
      f.Window().grab().save(QString::fromUtf8(folder) + QStringLiteral("/load-1366x768.png"));
    }
  }
};

SYLVORA_QT_TEST_MAIN(FirstUseTest)
#include "first_use_test.moc"
