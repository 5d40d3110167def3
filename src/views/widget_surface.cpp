#include "views/widget_surface.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>

#include <utility>

namespace sylvora {

WidgetSurface::WidgetSurface(QWidget* host, QWidget* widget, Handlers handlers,
                             QScrollBar* horizontal, QScrollBar* vertical)
    : host_(host),
      widget_(widget),
      horizontal_(horizontal),
      vertical_(vertical),
      handlers_(std::move(handlers)) {
  widget->setMouseTracking(true);
  widget->setFocusPolicy(Qt::StrongFocus);
  widget->setEnabled(true);
  // The view paints every pixel from its picture: no background erase before each paint.
  widget->setAttribute(Qt::WA_OpaquePaintEvent);
  widget->installEventFilter(this);
  widget->setVisible(true);
}

WidgetSurface::~WidgetSurface() {
  if (widget_) widget_->removeEventFilter(this);
}

QSize WidgetSurface::Size() const { return widget_ ? widget_->size() : QSize(); }

void WidgetSurface::Move(int x, int y) {
  if (widget_) widget_->move(x, y);
}

void WidgetSurface::Resize(int width, int height) {
  if (widget_) widget_->resize(std::max(0, width), std::max(0, height));
}

void WidgetSurface::Refresh() {
  if (widget_) widget_->update();
}

void WidgetSurface::SetToolTip(const QString& text) {
  if (widget_) widget_->setToolTip(text);
}

void WidgetSurface::SetHostCursor(Qt::CursorShape shape) {
  if (host_) host_->setCursor(shape);
}

void WidgetSurface::UnsetHostCursor() {
  if (host_) host_->unsetCursor();
}

QScrollBar* WidgetSurface::ScrollBar(Qt::Orientation orientation) const {
  return orientation == Qt::Horizontal ? horizontal_.data() : vertical_.data();
}

void WidgetSurface::ConfigureScrollBar(Qt::Orientation orientation, int maximum, int singleStep,
                                       int pageStep) {
  QScrollBar* bar = ScrollBar(orientation);
  if (bar == nullptr) return;
  const QSignalBlocker blocker(bar);
  bar->setRange(0, std::max(0, maximum));
  bar->setSingleStep(singleStep);
  bar->setPageStep(std::max(1, pageStep));
}

void WidgetSurface::SetScrollBarValue(Qt::Orientation orientation, int value) {
  QScrollBar* bar = ScrollBar(orientation);
  if (bar == nullptr) return;
  const QSignalBlocker blocker(bar);
  bar->setValue(value);
}

bool WidgetSurface::eventFilter(QObject* watched, QEvent* event) {
  if (watched != widget_) return false;
  switch (event->type()) {
    case QEvent::Paint: {
      if (!handlers_.paint) return false;
      QPainter painter(widget_);
      // A view with nothing to show yet leaves white, not what was on the screen before.
      painter.fillRect(widget_->rect(), Qt::white);
      handlers_.paint(painter);
      return true;
    }
    case QEvent::Resize:
      if (handlers_.resized) handlers_.resized();
      return false;
    case QEvent::MouseButtonPress: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (handlers_.press) handlers_.press(mouse->button(), mouse->position());
      return static_cast<bool>(handlers_.press);
    }
    case QEvent::MouseButtonRelease: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (handlers_.release) handlers_.release(mouse->button(), mouse->position());
      return static_cast<bool>(handlers_.release);
    }
    case QEvent::MouseButtonDblClick: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (handlers_.doubleClick) handlers_.doubleClick(mouse->button(), mouse->position());
      return static_cast<bool>(handlers_.doubleClick);
    }
    case QEvent::MouseMove: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (handlers_.move) handlers_.move(mouse->buttons(), mouse->position());
      return static_cast<bool>(handlers_.move);
    }
    case QEvent::KeyPress: {
      auto* key = static_cast<QKeyEvent*>(event);
      return handlers_.keyPress && handlers_.keyPress(key->key(), key->modifiers());
    }
    case QEvent::KeyRelease: {
      auto* key = static_cast<QKeyEvent*>(event);
      if (handlers_.keyRelease) handlers_.keyRelease(key->key());
      return false;
    }
    default:
      return false;
  }
}

}  // namespace sylvora
