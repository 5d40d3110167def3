#pragma once
// Pixel helpers for the view tests: what colour is at a point, what colours a region holds.

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>

namespace sylvora::testing {

// RGB of the pixel at `at` (rounded to the pixel grid); black outside the image.
QColor PixelAt(const QImage& image, QPointF at);

// True when some pixel within `radius` pixels of `at` has exactly colour `colour`.
bool ColourNear(const QImage& image, QPointF at, const QColor& colour, int radius = 1);

// Number of pixels of exactly `colour` inside `rect` (clipped to the image).
int CountColour(const QImage& image, const QRectF& rect, const QColor& colour);

// The darkest grey level (min of r, g, b) inside `rect`.
int DarkestLevel(const QImage& image, const QRectF& rect);

// Saves `image` as PNG under $SYLVORA_VIEW_SNAPSHOTS/<name>.png when that variable is set, so
// that a person can look at what the tests draw.
void MaybeSaveSnapshot(const QImage& image, const char* name);

}  // namespace sylvora::testing
