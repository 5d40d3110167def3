#pragma once
// Pixel helpers for the view tests: what colour is at a point, what colours a region holds.

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "layout/spatial.h"

namespace sylvora::testing {

// RGB of the pixel at `at` (rounded to the pixel grid); black outside the image.
QColor PixelAt(const QImage& image, QPointF at);

// True when some pixel within `radius` pixels of `at` has exactly colour `colour`.
bool ColourNear(const QImage& image, QPointF at, const QColor& colour, int radius = 1);

// Number of pixels of exactly `colour` inside `rect` (clipped to the image).
int CountColour(const QImage& image, const QRectF& rect, const QColor& colour);

// The darkest grey level (min of r, g, b) inside `rect`.
int DarkestLevel(const QImage& image, const QRectF& rect);

// A Spatial holding `positions` (node i at positions[i]) and the links `edges` (0-based node
// pairs, length 1), read through the plain-output and DOT readers as a layout run would.
std::unique_ptr<Spatial> MakeSpatial(const std::vector<QPointF>& positions,
                                     const std::vector<std::pair<int, int>>& edges);

// Pixels inside `rect` whose colour is within `tolerance` of `colour` in every channel
// (antialiased text keeps only its glyph cores exactly in colour).
int CountNearColour(const QImage& image, const QRectF& rect, const QColor& colour, int tolerance);

}  // namespace sylvora::testing
