// The PNG pictures of the views, as the command-line tool writes them.

#include "views/view_pictures.h"

#include <QImage>
#include <QString>
#include <QTest>

#include "indexing/term_document_matrix.h"
#include "session/interval_series.h"
#include "support/qt_test_main.h"
#include "support/temp_dir.h"
#include "temporal/text_stream.h"
#include "view_test_support.h"

namespace sylvora {

class ViewPicturesTest : public QObject {
  Q_OBJECT

 private slots:
  void wordMapPictureShowsHeavyLabelsOnly() {
    testing::TempDir dir;
    ClusterMap map;
    map.kind = MapKind::kWords;
    map.layout = std::move(*testing::MakeSpatial({{0, 0}, {10, 0}, {5, 8}}, {{0, 1}, {1, 2}}));
    map.labels = {"storm", "power", "coffee"};
    map.weights = {200.0f, 10.0f, 130.0f};
    // Red label pixels: the threshold 120 keeps "storm" and "coffee", 0 all three, 201 none.
    const auto redPixels = [&](std::int16_t threshold) {
      const std::string path = (dir.Path() / "words.png").string();
      std::string error;
      if (!WriteMapPng(map, threshold, path, PictureSize{800, 600}, error)) return -1;
      const QImage picture(QString::fromStdString(path));
      if (picture.size() != QSize(800, 600)) return -1;
      return testing::CountNearColour(picture, QRectF(0, 0, 800, 600), QColor(190, 0, 0), 40);
    };
    const int all = redPixels(0);
    const int heavy = redPixels(120);
    QVERIFY2(all > heavy && heavy > 10, qPrintable(QStringLiteral("%1 %2").arg(all).arg(heavy)));
    QCOMPARE(redPixels(201), 0);
  }

  void emptyInputsAreRefused() {
    testing::TempDir dir;
    std::string error;
    ClusterMap map;
    QVERIFY(!WriteMapPng(map, 0, (dir.Path() / "m.png").string(), PictureSize{}, error));
    QCOMPARE(QString::fromStdString(error), QStringLiteral("The map has no nodes"));
    TextStream model;
    TermDocumentMatrix index;
    QVERIFY(!WriteTermTimelinePng(model, index, "h", (dir.Path() / "t.png").string(), PictureSize{},
                                  error));
    QCOMPARE(QString::fromStdString(error), QStringLiteral("The words model has no intervals"));
  }

  void timeLineChartPicture() {
    testing::TempDir dir;
    IntervalSeries series;
    series.maxIntervalDocCount = 10;
    series.noveltyWindow = 1;
    for (std::int32_t i = 1; i <= 3; ++i) {
      IntervalSeriesRow row;
      row.interval = i;
      row.documents = 10;
      row.linkRatio = i == 2 ? 0.5f : 0.0f;
      series.rows.push_back(row);
    }
    const std::string path = (dir.Path() / "chart.png").string();
    std::string error;
    QVERIFY2(WriteTimeLineChartPng(series, 0, path, PictureSize{1600, 400}, error), error.c_str());
    const QImage picture(QString::fromStdString(path));
    // Three intervals and the column before them: 30-pixel columns, at least 320 wide.
    QCOMPARE(picture.size(), QSize(320, 400));
    // Interval 2 at x 2..3 of 4 columns (80 pixels each): links in its lower half (the chart's
    // tests pin the colours), nothing before the first interval.
    QVERIFY(testing::PixelAt(picture, {200, 100}) != testing::PixelAt(picture, {200, 300}));
    QCOMPARE(testing::PixelAt(picture, {40, 300}), QColor(255, 255, 255));
    QVERIFY(!WriteTimeLineChartPng(IntervalSeries{}, 0, path, PictureSize{}, error));
    QCOMPARE(QString::fromStdString(error), QStringLiteral("The series has no intervals"));
  }
};

}  // namespace sylvora

SYLVORA_QT_TEST_MAIN(sylvora::ViewPicturesTest)
#include "view_pictures_test.moc"
