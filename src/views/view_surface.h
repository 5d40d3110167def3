#pragma once
// What a view needs from the window-system surface it is bound to. The views draw into their
// own QImage and decide everything themselves; the surface only shows that picture, reports
// input, and carries the few window properties the views set (position, size, tooltip, the
// host window's pointer, the scroll bars). The widget binding (surface_binding.cpp) implements
// it with Qt Widgets; a view without a surface renders offscreen only.

#include <QSize>
#include <QString>
#include <Qt>

class QWidget;

namespace sylvora {

class ViewSurface {
 public:
  virtual ~ViewSurface() = default;

  // The drawing surface itself (for callers that print, copy or lay it out).
  virtual QWidget* Widget() const = 0;
  // Size of the drawing area in pixels.
  virtual QSize Size() const = 0;
  // Geometry in the host window's pixels.
  virtual void Move(int x, int y) = 0;
  virtual void Resize(int width, int height) = 0;
  // Schedules a repaint of picture and overlay.
  virtual void Refresh() = 0;
  virtual void SetToolTip(const QString& text) = 0;
  // The host window's mouse pointer; UnsetHostCursor restores its default.
  virtual void SetHostCursor(Qt::CursorShape shape) = 0;
  virtual void UnsetHostCursor() = 0;
  // Range, steps and position of a bound scroll bar, without raising its change handler.
  // Nothing happens when no bar of that orientation is bound.
  virtual void ConfigureScrollBar(Qt::Orientation orientation, int maximum, int singleStep,
                                  int pageStep) = 0;
  virtual void SetScrollBarValue(Qt::Orientation orientation, int value) = 0;
};

}  // namespace sylvora
