#pragma once
// The Qt Widgets side of a view: a QWidget of the host window that shows the view's picture
// and overlay and hands mouse, key and resize events to the view. The view (PointMap2D or
// TableLens) owns this object; the widget itself belongs to its parent window, and the
// binding stops forwarding when the widget goes first.

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

#include "views/view_surface.h"

class QPainter;
class QScrollBar;

namespace sylvora {

class WidgetSurface final : public QObject, public ViewSurface {
  Q_OBJECT

 public:
  // What the view does with the surface's events. Any may be empty.
  struct Handlers {
    std::function<void(QPainter&)> paint;
    std::function<void()> resized;
    std::function<void(Qt::MouseButton, QPointF)> press;
    std::function<void(Qt::MouseButton, QPointF)> release;
    std::function<void(Qt::MouseButtons, QPointF)> move;
    std::function<void(Qt::MouseButton, QPointF)> doubleClick;
    // Returns true when the key was handled.
    std::function<bool(int key, Qt::KeyboardModifiers)> keyPress;
    std::function<void(int key)> keyRelease;
  };

  // Takes over `widget` (mouse tracking, focus, painting) in `host`. The scroll bars may be null.
  WidgetSurface(QWidget* host, QWidget* widget, Handlers handlers, QScrollBar* horizontal = nullptr,
                QScrollBar* vertical = nullptr);
  ~WidgetSurface() override;

  QWidget* Widget() const override { return widget_; }
  QSize Size() const override;
  void Move(int x, int y) override;
  void Resize(int width, int height) override;
  void Refresh() override;
  void SetToolTip(const QString& text) override;
  void SetHostCursor(Qt::CursorShape shape) override;
  void UnsetHostCursor() override;
  void ConfigureScrollBar(Qt::Orientation orientation, int maximum, int singleStep,
                          int pageStep) override;
  void SetScrollBarValue(Qt::Orientation orientation, int value) override;

  QScrollBar* ScrollBar(Qt::Orientation orientation) const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPointer<QWidget> host_;
  QPointer<QWidget> widget_;
  QPointer<QScrollBar> horizontal_;
  QPointer<QScrollBar> vertical_;
  Handlers handlers_;
};

}  // namespace sylvora
