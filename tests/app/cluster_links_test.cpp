// The rules behind the cluster explorer's links, on hand-made numbers: the two best terms of an
// interval, the visible-word gradient entries, the slider's tooltip text, and the view history.
#include <cmath>
#include <limits>
#include <tuple>

#include <QPoint>
#include <QTest>

#include "app/cluster_links.h"
#include "app/map_view_history.h"
#include "support/qt_test_main.h"

using namespace sylvora;
using app::BestTwoTerms;
using app::MapViewHistory;

class ClusterLinksTest : public QObject {
  Q_OBJECT

 private slots:
  // Entry t of the scores is term t's (entry 0 unused): ascending and descending scores, equal
  // scores (the later wins), zeros (counted from the start), negatives (never win), no terms.
  void OnlyANewBestMovesPlaces() {
    const std::tuple<std::vector<float>, int, int> cases[] = {
        {{0, 0.5f, 2, 1}, 2, 1}, {{0, 1, 2, 3}, 3, 2}, {{0, 3, 2, 1}, 1, 0}, {{0, 2, 2}, 2, 1},
        {{0, 0, 0, 0}, 3, 2},    {{0, -1, -2}, 0, 0},  {{0}, 0, 0}};
    for (const auto& [weighted, best, second] : cases) {
      const BestTwoTerms result = app::PickBestTwoTerms(weighted);
      QCOMPARE(QPoint(result.best, result.second), QPoint(best, second));
    }
  }

  void ScoresAreWeightedByTheLogOfTheFrequency() {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> z = {0, 2.0f, inf, nan, 1.5f};
    const std::vector<float> f = {0, 0.5f, 0.0f, 0.0f, static_cast<float>(std::exp(1.0) - 1.0)};
    const std::vector<float> weighted = app::WeightedBurstScores(z, f);
    QCOMPARE(weighted.size(), std::size_t{5});
    QCOMPARE(weighted[1], static_cast<float>(2.0 * std::log(1.5)));
    // Absent terms weigh 0 whatever their z-score (not NaN).
    QVERIFY(weighted[2] == 0.0f && weighted[3] == 0.0f);
    QVERIFY(std::abs(weighted[4] - 1.5f) < 1e-6f);
  }

  // "count of visible" words on the 0..9 scale, halves rounded to even.
  void TheGradientRoundsHalvesToEven() {
    const std::tuple<int, int, int> cases[] = {{7, 7, 9}, {0, 7, 0}, {1, 2, 4},  {5, 6, 8},
                                               {1, 6, 2}, {2, 3, 6}, {1, 18, 0}, {3, 18, 2}};
    for (const auto& [count, visible, entry] : cases) {
      QCOMPARE(app::GradientEntry(count, visible), std::int16_t(entry));
    }
  }

  void TheSliderTipIsAPercentage() {
    QCOMPARE(app::LabelThresholdTip(250) + u'|' + app::LabelThresholdTip(0) + u'|' +
                 app::LabelThresholdTip(3) + u'|' + app::LabelThresholdTip(125),
             QStringLiteral("Doc Freq >= 25%|Doc Freq >= 0%|Doc Freq >= 0.3%|Doc Freq >= 12.5%"));
  }

  void TheHistoryGoesBackAndForward() {
    MapViewHistory history;
    QVERIFY(!history.CanGoBack());
    QVERIFY(!history.Back());
    const MapViewHistory::View home{0, 10, 0, 10};
    const MapViewHistory::View a{1, 2, 1, 2};
    const MapViewHistory::View b{3, 4, 3, 4};
    const MapViewHistory::View c{5, 6, 5, 6};
    history.Reset(home);
    history.Record(a);
    history.Record(a);  // the same view once
    history.Record(b);
    QCOMPARE(history.Size(), std::size_t{3});
    QVERIFY(app::SameView(*history.Back(), a));
    QVERIFY(app::SameView(*history.Back(), home));
    QVERIFY(!history.Back());
    QVERIFY(app::SameView(*history.Forward(), a));
    // A new view after going back drops the ones ahead.
    history.Record(c);
    QCOMPARE(history.Size(), std::size_t{3});
    QVERIFY(!history.CanGoForward());
    QVERIFY(app::SameView(history.Current(), c));
    QVERIFY(app::SameView(*history.Back(), a));
  }

  void TheHistoryKeepsTheLatestViews() {
    MapViewHistory history;
    history.Reset({0, 1, 0, 1});
    for (int i = 1; i <= 150; ++i) {
      history.Record({static_cast<float>(i), static_cast<float>(i + 1), 0, 1});
    }
    QCOMPARE(history.Size(), MapViewHistory::kMaxViews);
    QCOMPARE(history.Current().left, 150.0f);
    int steps = 0;
    while (history.Back()) ++steps;
    QCOMPARE(steps, static_cast<int>(MapViewHistory::kMaxViews) - 1);
    QCOMPARE(history.Current().left, 51.0f);
  }
};

SYLVORA_QT_TEST_MAIN(ClusterLinksTest)
#include "cluster_links_test.moc"
