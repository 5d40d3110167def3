// PointMap2D on the offscreen platform: fitting, node and link pixels, labels, the overlay
// marks, and the mouse, key and timer interaction driven through QTest.

#include "views/point_map_2d.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <cmath>
#include <memory>

#include "layout/spatial.h"
#include "support/qt_test_main.h"
#include "view_test_support.h"

namespace sylvora {
namespace {

using testing::ColourNear;
using testing::CountColour;
using testing::CountNearColour;
using testing::MakeSpatial;
using testing::PixelAt;

const QColor kRed(255, 0, 0);
const QColor kYellow(255, 255, 0);
const QColor kLinkGrey(100, 100, 100);

// A window with a map filling it.
struct MapWindow {
  explicit MapWindow(QSize size = QSize(600, 600)) {
    form = std::make_unique<QWidget>();
    form->resize(size);
    map = std::make_unique<PointMap2D>();
    // These cases pin the plain drawing: every label, weighted sizes, the node-centre view.
    map->SetReadableDrawing(false);
    map->InitializePM2DCtl(form.get());
    form->show();
  }
  QWidget* Surface() const { return map->PM2DCtlObject(); }
  QPoint At(std::int32_t node) const {
    return map->ToPixels(map->NodeX(node), map->NodeY(node)).toPoint();
  }
  QPoint AtLayout(float x, float y) const { return map->ToPixels(x, y).toPoint(); }
  // A mouse move with buttons held, as the window system sends it.
  void MoveWithButtons(QPoint at, Qt::MouseButtons buttons) const {
    QMouseEvent event(QEvent::MouseMove, QPointF(at), Surface()->mapToGlobal(QPointF(at)),
                      Qt::NoButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(Surface(), &event);
  }
  void MoveTo(QPoint at) const { MoveWithButtons(at, Qt::NoButton); }
  // A left-button drag between two layout points, starting from empty space.
  void Drag(QPointF from, QPointF to) const {
    const QPoint start = map->ToPixels(from.x(), from.y()).toPoint();
    const QPoint end = map->ToPixels(to.x(), to.y()).toPoint();
    MoveTo(start);
    QTest::mousePress(Surface(), Qt::LeftButton, {}, start);
    MoveWithButtons(end, Qt::LeftButton);
    QTest::mouseRelease(Surface(), Qt::LeftButton, {}, end);
  }

  std::unique_ptr<QWidget> form;
  std::unique_ptr<PointMap2D> map;
};

// Four nodes on the corners of a 10 x 10 square and one in the middle, linked as a star.
std::unique_ptr<Spatial> StarSpatial() {
  return MakeSpatial({{0, 0}, {10, 0}, {0, 10}, {10, 10}, {5, 5}},
                     {{4, 0}, {4, 1}, {4, 2}, {4, 3}});
}

// A MapWindow showing the star.
struct StarWindow : MapWindow {
  StarWindow() { map->SetCoordinates(*spatial); }
  std::unique_ptr<Spatial> spatial = StarSpatial();
};

}  // namespace

class PointMap2DTest : public QObject {
  Q_OBJECT

 private slots:
  // The view fits the data with a twelfth to spare; the base node size is the mean horizontal
  // extent of the links over three, or the data width over 40 without links.
  void setCoordinatesFitsTheView() {
    MapWindow window;
    const auto spatial = StarSpatial();
    QVERIFY(window.map->SetCoordinates(*spatial));
    QCOMPARE(window.map->View().left, -1.0f);
    QCOMPARE(window.map->View().bottom, 11.0f);
    QCOMPARE(window.map->NodeSize(2), 5.0f / 3.0f);
    // Nodes on one vertical line: a tenth wide, and a vertical link gives base size 0.
    const auto vertical = MakeSpatial({{3, 1}, {3, 4}}, {{0, 1}});
    QVERIFY(window.map->SetCoordinates(*vertical));
    QCOMPARE(window.map->DataWidth(), 0.1f);
    QCOMPARE(window.map->BaseNodeSize(), 0.0f);
    const auto unlinked = MakeSpatial({{0, 0}, {8, 2}, {4, 6}}, {});
    QVERIFY(window.map->SetCoordinates(*unlinked));
    QCOMPARE(window.map->BaseNodeSize(), 8.0f / 40.0f);
  }

  void emptyMapDrawsNothing() {
    MapWindow window;
    Spatial empty;
    QVERIFY(!window.map->SetCoordinates(empty) && !window.map->IsSet());
    // Drawing, marks, zooms, pulses, clicks, keys and ticks without nodes do nothing.
    window.map->RenderView(true, true);
    window.map->SetHoverNode(3);
    window.map->ZoomTo(0, 100);
    window.map->PulseNode(0, 2);
    QVERIFY(!window.map->NodeIsPulsing());
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, QPoint(10, 10));
    QTest::keyClick(window.Surface(), Qt::Key_6);
    window.map->Tick();
    QCOMPARE(window.map->NodeX(7), 0.0f);
  }

  // Square outline, solid square, circle outline, filled circle, no nodes: the centre and the
  // left edge of a node (links and labels are drawn whatever the shape, tested below).
  void shapes() {
    StarWindow window;
    window.map->SetNodeCluster(3, 12);
    window.map->SetSelectedNode(-1);
    window.map->SetHoverNode(-1);
    const bool centreFilled[] = {false, true, false, true, false};
    for (int shape = 0; shape < 5; ++shape) {
      window.map->SetNodeShape(static_cast<std::uint8_t>(shape));
      window.map->RenderView(true, false);
      const QImage& picture = window.map->Picture();
      const QPointF centre = window.At(3);
      const double radius = window.map->NodeSize(3) * 600.0 / 12.0;
      QVERIFY2((PixelAt(picture, centre + QPointF(-radius / 3, -radius / 3)) == kRed) ==
                   centreFilled[shape],
               qPrintable(QString::number(shape)));
      QVERIFY2(ColourNear(picture, centre - QPointF(radius, 0), kRed, 2) == (shape != 4),
               qPrintable(QString::number(shape)));
    }
  }

  // The selection outline is drawn on the overlay only; the temporal mask greys the ordinary
  // nodes and not the selected one.
  void overlayOutlinesAndTheTemporalMask() {
    StarWindow window;
    window.map->SetNodeShape(3);
    for (int i = 0; i < 5; ++i) window.map->SetNodeCluster(i, 12);
    window.map->SetSelectedNode(-1);
    window.map->SetHoverNode(-1);
    window.map->RenderView(true, false);
    const QImage picture = window.map->Picture();
    const double radius = window.map->NodeSize(0) * 600.0 / 12.0;
    const QPointF rim0 = QPointF(window.At(0)) + QPointF(radius, 0);
    window.map->SetSelectedNode(0);
    QCOMPARE(window.map->Picture(), picture);
    QVERIFY(ColourNear(window.Surface()->grab().toImage(), rim0, kYellow, 1));

    window.map->SetNodeShape(1);
    window.map->SetTemporalMask(true);
    window.map->SetSelectedNode(2);
    window.map->RenderView(true, false);
    QVERIFY(PixelAt(window.map->Snapshot(), window.At(0)) != kRed);
    QCOMPARE(PixelAt(window.map->Snapshot(), window.At(2)), kYellow);
  }

  void labelsOnlyAtOrAboveTheThreshold() {
    StarWindow window;
    window.map->SetNodeShape(2);
    window.map->SetShowNodeLabels(true);
    window.map->SetLabelColor(QColor(200, 0, 200));
    window.map->ResetNodeLabels(QStringLiteral("WWWW"));
    window.map->SetWeight(0, 5.0f);
    window.map->SetWeight(1, 3.0f);
    window.map->SetWeight(2, 2.9f);
    window.map->SetNodeLabelThreshold(3);
    window.map->SetSelectedNode(-1);
    window.map->SetHoverNode(-1);
    window.map->RenderView(true, false);
    const QImage& picture = window.map->Picture();
    const auto labelPixels = [&](int node) {
      const QPointF at = window.map->ToPixels(window.map->NodeX(node), window.map->NodeY(node));
      return CountNearColour(picture, QRectF(at, QSizeF(40, 14)), QColor(200, 0, 200), 40);
    };
    QVERIFY(labelPixels(0) > 5);
    QVERIFY(labelPixels(1) > 5);  // equal to the threshold
    QCOMPARE(labelPixels(2), 0);
  }

  void visibilityAtTheViewEdge() {
    MapWindow window;
    // Node 3 at the centre; nodes 4 and 5 outside the zoomed view, linked across it; node 2
    // outside, linked to node 3.
    const auto spatial =
        MakeSpatial({{0, 0}, {10, 10}, {5, 9}, {5, 4.5}, {0, 5}, {10, 5}}, {{4, 5}, {3, 2}});
    window.map->SetCoordinates(*spatial);
    window.map->SetShowEdges(true);
    window.map->SetNodeShape(4);
    window.map->ZoomTo(3, 400);  // x 3.75 .. 6.25, y 3.25 .. 5.75
    QVERIFY(window.map->NodeVisible(3) && !window.map->NodeVisible(4));
    const QImage& picture = window.map->Picture();
    QVERIFY(!ColourNear(picture, window.map->ToPixels(4.5f, 5.0f), kLinkGrey, 3));
    QVERIFY(ColourNear(picture, window.map->ToPixels(5.0f, 5.5f), kLinkGrey, 2));
    // A node exactly on the left edge is outside.
    const auto edge = MakeSpatial({{0, 0}, {10, 0}, {5, 0}}, {{0, 1}});
    window.map->SetCoordinates(*edge);
    window.map->ZoomTo(2, 100);  // x 0 .. 10
    QVERIFY(!window.map->NodeVisible(0) && !window.map->NodeVisible(1));
    QVERIFY(window.map->NodeVisible(2));
  }

  void pressRedrawsAnOutOfDatePicture() {
    PointMap2D map;
    map.SetReadableDrawing(false);
    map.SetPictureSize(QSize(300, 300));
    const auto spatial = StarSpatial();
    map.SetCoordinates(*spatial);
    map.SetShowEdges(true);
    map.RenderView(true, false);
    const QImage withEdges = map.Picture();
    // Options written since the last draw: the press draws them.
    map.SetShowEdges(false);
    QCOMPARE(map.Picture(), withEdges);
    map.MousePress(Qt::LeftButton, QPointF(150, 150));
    const QImage withoutEdges = map.Picture();
    QVERIFY(withoutEdges != withEdges);
    // The right button too; and a press hides the selection square.
    map.SetWeight(4, 3.0f);
    map.MousePress(Qt::RightButton, QPointF(150, 150));
    map.MouseRelease(Qt::RightButton, QPointF(150, 150));
    QVERIFY(map.Picture() != withoutEdges);
    map.RenderView(false, true);
    QVERIFY(map.LassoVisible());
    map.MousePress(Qt::LeftButton, QPointF(150, 150));
    QVERIFY(!map.LassoVisible());
  }

  void hoverPrefersTheLighterNode() {
    MapWindow window;
    // Nodes 0 and 1 overlap; node 1 is lighter.
    const auto spatial = MakeSpatial({{5, 5}, {5.5, 5}, {0, 0}, {10, 10}}, {{0, 2}, {1, 3}});
    window.map->SetCoordinates(*spatial);
    window.map->SetNodeWeights({4.0f, 2.0f, 1.0f, 1.0f});
    window.map->SetBaseNodeSize(0.5f);  // sizes 1.41 and 0.84
    window.map->SetHoverNode(-1);
    QSignalSpy over(window.map.get(), &PointMap2D::OnNewNodeOver);
    window.MoveTo(window.AtLayout(5.2f, 5.0f));
    QCOMPARE(over.count(), 1);
    QCOMPARE(window.map->HoverNode(), 1);
    window.MoveTo(window.AtLayout(5.25f, 5.05f));  // same node: no event
    QCOMPARE(over.count(), 1);
    window.MoveTo(window.AtLayout(2.0f, 8.0f));
    window.MoveTo(window.AtLayout(2.5f, 8.0f));
    QCOMPARE(over.count(), 2);  // -1 once
    // Equal weights: the lower index stays.
    window.map->SetNodeWeights({2.0f, 2.0f, 1.0f, 1.0f});
    window.MoveTo(window.AtLayout(5.2f, 5.0f));
    QCOMPARE(window.map->HoverNode(), 0);
  }

  void clickSelectsTheHoveredNode() {
    StarWindow window;
    window.map->SetSelectedNode(-1);
    QSignalSpy clicks(window.map.get(), &PointMap2D::OnNodeClick);
    window.MoveTo(window.At(1));
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, window.At(1));
    QCOMPARE(clicks.count(), 1);
    QCOMPARE(window.map->SelectedNode(), 1);
    // A click in empty space selects nothing new.
    window.MoveTo(window.AtLayout(2.5f, 7.5f));
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, window.AtLayout(2.5f, 7.5f));
    QCOMPARE(clicks.count(), 1);
  }

  void lassoBecomesASquareView() {
    StarWindow window;
    window.MoveTo(window.AtLayout(2.5f, 2.5f));  // empty space
    QSignalSpy ended(window.map.get(), &PointMap2D::SelectionEnded);
    QSignalSpy changed(window.map.get(), &PointMap2D::ViewChanged);
    const QPoint start = window.AtLayout(2.0f, 2.0f);
    QTest::mousePress(window.Surface(), Qt::LeftButton, {}, start);
    const QPointF startLayout = window.map->ToLayout(start);
    const QImage picture = window.map->Picture();
    const QPoint end = window.AtLayout(6.0f, 4.5f);  // wider than high
    window.MoveWithButtons(end, Qt::LeftButton);
    QCOMPARE(window.map->Picture(), picture);  // the square is on the overlay
    const QImage seen = window.map->Snapshot();
    QVERIFY(CountColour(seen, seen.rect(), kRed) > 100);
    QTest::mouseRelease(window.Surface(), Qt::LeftButton, {}, end);
    QCOMPARE(ended.count(), 1);
    QCOMPARE(changed.count(), 1);
    const PointMap2D::ViewRect& view = window.map->View();
    QCOMPARE(view.left, static_cast<float>(startLayout.x()));
    QCOMPARE(view.top, static_cast<float>(startLayout.y()));
    QVERIFY(std::abs((view.right - view.left) - (view.bottom - view.top)) < 1e-4f);
    QVERIFY(std::abs(view.right - 6.0f) < 0.05f);
    QCOMPARE(CountColour(window.map->Snapshot(), seen.rect(), kRed), 0);
  }

  // A drag less than a node high does not zoom; one from right to left mirrors the view; the
  // release after a double click does not zoom, whatever the distance.
  void dragsThatDoNotZoomOrMirrorAndTheDoubleClick() {
    StarWindow window;
    QSignalSpy ended(window.map.get(), &PointMap2D::SelectionEnded);
    window.Drag({2.0f, 2.0f}, {6.0f, 2.5f});
    QCOMPARE(ended.count(), 0);
    QCOMPARE(window.map->View().right, 11.0f);
    window.Drag({8.0f, 2.0f}, {3.0f, 8.0f});
    QVERIFY(window.map->View().left > window.map->View().right);
    QVERIFY(window.map->View().top > window.map->View().bottom);  // the square goes up

    // A double click returns home.
    window.map->ZoomTo(4, 400);
    window.MoveTo(window.AtLayout(4.0f, 4.0f));
    QSignalSpy changed(window.map.get(), &PointMap2D::ViewChanged);
    const QPoint at = window.AtLayout(4.0f, 4.0f);
    QTest::mouseDClick(window.Surface(), Qt::LeftButton, {}, at);
    QCOMPARE(window.map->View().right, 11.0f);
    QCOMPARE(changed.count(), 1);
    window.MoveWithButtons(window.AtLayout(9.0f, 9.0f), Qt::LeftButton);
    QTest::mouseRelease(window.Surface(), Qt::LeftButton, {}, window.AtLayout(9.0f, 9.0f));
    QCOMPARE(ended.count(), 1);  // the mirroring drag's
    QCOMPARE(window.map->View().right, 11.0f);
  }

  void rightButtonZoomsOutToHome() {
    StarWindow window;
    window.map->Ticker()->stop();  // ticks come from the test
    window.map->ZoomTo(4, 400);
    QSignalSpy changed(window.map.get(), &PointMap2D::ViewChanged);
    QTest::mousePress(window.Surface(), Qt::RightButton, {}, window.AtLayout(5, 5));
    QVERIFY(window.map->ZoomingOut());
    const float mean = window.map->MeanNodeSize();
    const float left0 = window.map->View().left;
    window.map->Tick();
    QCOMPARE(window.map->View().left, left0 - mean);
    // The step grows by 5 % a tick only while it is below 1 % of the data width (0.1 here);
    // the mean size is well above it. It stops at the home view.
    QCOMPARE(window.map->ZoomOutStep(), mean);
    for (int i = 0; i < 20; ++i) window.map->Tick();
    QCOMPARE(window.map->View().left, -1.0f);
    QCOMPARE(changed.count(), 0);
    QTest::mouseRelease(window.Surface(), Qt::RightButton, {}, window.AtLayout(5, 5));
    QVERIFY(!window.map->ZoomingOut());
    QCOMPARE(changed.count(), 1);
    window.map->ZoomTo(4, 400);
    window.map->Tick();  // not zooming out any more
    QCOMPARE(window.map->View().right - window.map->View().left, 2.5f);
  }

  // Each digit pans by three base node sizes its way; 2, 4, 6 and 8 pan again on release.
  void digitKeysPan() {
    const int cases[][3] = {{Qt::Key_1, -1, 1}, {Qt::Key_2, 0, 1},  {Qt::Key_5, 0, 0},
                            {Qt::Key_6, 1, 0},  {Qt::Key_9, 1, -1}, {Qt::Key_A, 0, 0}};
    for (const auto& [key, dx, dy] : cases) {
      StarWindow window;
      QSignalSpy changed(window.map.get(), &PointMap2D::ViewChanged);
      const PointMap2D::ViewRect before = window.map->View();
      const float step = 3.0f * window.map->BaseNodeSize();
      QTest::keyPress(window.Surface(), static_cast<Qt::Key>(key));
      const PointMap2D::ViewRect& after = window.map->View();
      QVERIFY2(after.left == before.left + dx * step && after.right == before.right + dx * step &&
                   after.top == before.top + dy * step && after.bottom == before.bottom + dy * step,
               qPrintable(QString::number(key)));
      QTest::keyRelease(window.Surface(), static_cast<Qt::Key>(key));
      QCOMPARE(changed.count(), key == Qt::Key_2 || key == Qt::Key_6 ? 2 : 1);
    }
  }

  void pulseEndsAfterItsTicks() {
    StarWindow window;
    window.map->Ticker()->stop();
    window.map->SetNodeShape(3);
    const float size = window.map->NodeSize(4);
    window.map->PulseNode(4, 2.0f);
    QVERIFY(window.map->NodeIsPulsing());
    QCOMPARE(window.form->cursor().shape(), Qt::WhatsThisCursor);
    for (int tick = 1; tick <= 13; ++tick) window.map->Tick();
    QVERIFY(window.map->NodeIsPulsing());
    window.map->Tick();
    QVERIFY(!window.map->NodeIsPulsing());
    QCOMPARE(window.map->NodeSize(4), size);
    QCOMPARE(window.form->cursor().shape(), Qt::ArrowCursor);
  }

  void pulseRunsOnTheTimer() {
    StarWindow window;
    window.map->PulseNode(4, 2.0f);
    QTRY_VERIFY_WITH_TIMEOUT(!window.map->NodeIsPulsing(), 60000);
  }
};

}  // namespace sylvora

SYLVORA_QT_TEST_MAIN(sylvora::PointMap2DTest)
#include "point_map_2d_test.moc"
