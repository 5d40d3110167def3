// TimeLineChart on a Qt Widgets surface: the part of the chart that needs QWidget.

#include <QPainter>
#include <QWidget>

#include "views/time_line_chart.h"
#include "views/widget_surface.h"

namespace sylvora {

bool TimeLineChart::InitializeChart(QWidget* host, QWidget* chartBox) {
  if (host == nullptr || surface_) return false;
  QWidget* box = chartBox;
  if (box == nullptr) {
    box = new QWidget(host);
    box->setObjectName(QStringLiteral("Chart"));
    box->setGeometry(host->rect());
  }
  WidgetSurface::Handlers handlers;
  handlers.paint = [this](QPainter& painter) { Paint(painter); };
  handlers.resized = [this] { SurfaceResized(); };
  handlers.press = [this](Qt::MouseButton button, QPointF at) { MousePress(button, at); };
  handlers.doubleClick = [this](Qt::MouseButton button, QPointF at) {
    MouseDoubleClick(button, at);
  };
  handlers.move = [this](Qt::MouseButtons, QPointF at) { MouseMove(at); };
  surface_ = std::make_unique<WidgetSurface>(host, box, std::move(handlers));
  Redraw();
  return true;
}

}  // namespace sylvora
