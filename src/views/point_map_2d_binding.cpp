// PointMap2D on a Qt Widgets surface: the part of the map that needs QWidget.

#include <QPainter>
#include <QTimer>
#include <QWidget>

#include "views/point_map_2d.h"
#include "views/widget_surface.h"

namespace sylvora {
namespace {

// The animation tick: the integer part of 1000 / 60 ms.
constexpr int kTickMs = 1000 / 60;

}  // namespace

bool PointMap2D::InitializePM2DCtl(QWidget* targetForm, QWidget* targetPictureBox) {
  if (targetForm == nullptr || surface_) return false;
  QWidget* box = targetPictureBox;
  if (box == nullptr) {
    box = new QWidget(targetForm);
    box->setObjectName(QStringLiteral("PM2DMap"));
    box->setGeometry(targetForm->rect());
  }
  box->setFont(labelFont_);
  WidgetSurface::Handlers handlers;
  handlers.paint = [this](QPainter& painter) { Paint(painter); };
  handlers.resized = [this] { SurfaceResized(); };
  handlers.press = [this](Qt::MouseButton button, QPointF at) { MousePress(button, at); };
  handlers.release = [this](Qt::MouseButton button, QPointF at) { MouseRelease(button, at); };
  handlers.doubleClick = [this](Qt::MouseButton button, QPointF at) {
    MouseDoubleClick(button, at);
  };
  handlers.move = [this](Qt::MouseButtons buttons, QPointF at) { MouseMove(buttons, at); };
  handlers.keyPress = [this](int key, Qt::KeyboardModifiers) { return KeyPress(key); };
  handlers.keyRelease = [this](int key) { KeyRelease(key); };
  surface_ = std::make_unique<WidgetSurface>(targetForm, box, std::move(handlers));

  ticker_ = new QTimer(targetForm);
  ticker_->setObjectName(box->objectName() + QStringLiteral("_ticker"));
  ticker_->setInterval(kTickMs);
  connect(ticker_, &QTimer::timeout, this, &PointMap2D::Tick);
  ticker_->start();

  pulsingNode_ = -1;
  SurfaceResized();
  return true;
}

}  // namespace sylvora
