// TableLens on a Qt Widgets surface: the part of the lens that needs QWidget.

#include <QFontMetricsF>
#include <QPainter>
#include <QScrollBar>
#include <QWidget>

#include <cmath>

#include "views/picture_device.h"
#include "views/table_lens.h"
#include "views/widget_surface.h"

namespace sylvora {

bool TableLens::InitializeTLCtl(QWidget* targetForm, QWidget* targetPictureBox,
                                QScrollBar* targetHScroll, QScrollBar* targetVScroll) {
  if (targetForm == nullptr || surface_) return false;
  QWidget* box = targetPictureBox;
  if (box == nullptr) {
    box = new QWidget(targetForm);
    box->setObjectName(QStringLiteral("TargetPictureBox"));
    box->setGeometry(targetForm->rect());
  }
  WidgetSurface::Handlers handlers;
  handlers.paint = [this](QPainter& painter) { Paint(painter); };
  handlers.resized = [this] { SurfaceResized(); };
  handlers.press = [this](Qt::MouseButton button, QPointF at) { MousePress(button, at); };
  handlers.move = [this](Qt::MouseButtons, QPointF at) { MouseMove(at); };
  handlers.keyPress = [this](int key, Qt::KeyboardModifiers) { return KeyPress(key); };
  auto surface = std::make_unique<WidgetSurface>(targetForm, box, std::move(handlers),
                                                 targetHScroll, targetVScroll);
  if (targetHScroll != nullptr) {
    connect(targetHScroll, &QScrollBar::valueChanged, this, &TableLens::HorizontalScroll);
  }
  if (targetVScroll != nullptr) {
    connect(targetVScroll, &QScrollBar::valueChanged, this, &TableLens::VerticalScroll);
  }
  surface_ = std::move(surface);

  // Capacity: text lines of "abc" that fit the height, less the header; one column per pixel.
  const QFontMetricsF metrics(cellFont_, &MeasuringDevice());
  const QSize size = surface_->Size();
  maxVisibleRows_ =
      static_cast<std::int32_t>(std::nearbyint(size.height() / metrics.height() - 1.0));
  maxVisibleColumns_ = size.width();
  normedCellValues_ = true;
  return true;
}

}  // namespace sylvora
