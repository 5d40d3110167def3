#include "view_test_support.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "support/temp_dir.h"

namespace sylvora::testing {

QColor PixelAt(const QImage& image, QPointF at) {
  const int x = static_cast<int>(std::floor(at.x()));
  const int y = static_cast<int>(std::floor(at.y()));
  if (!image.valid(x, y)) return QColor(0, 0, 0);
  return QColor(image.pixel(x, y));
}

namespace {

// Calls `visit` with the colour of every pixel of `rect` inside the image.
template <typename Visit>
void EachPixel(const QImage& image, const QRect& rect, Visit visit) {
  const QRect area = rect.intersected(image.rect());
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) visit(QColor(image.pixel(x, y)));
  }
}

}  // namespace

bool ColourNear(const QImage& image, QPointF at, const QColor& colour, int radius) {
  const QPoint centre(static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y())));
  const QRect square(centre - QPoint(radius, radius), centre + QPoint(radius, radius));
  return CountColour(image, square, colour) > 0;
}

int CountColour(const QImage& image, const QRectF& rect, const QColor& colour) {
  return CountNearColour(image, rect, colour, 0);
}

int DarkestLevel(const QImage& image, const QRectF& rect) {
  int darkest = 255;
  EachPixel(image, rect.toAlignedRect(), [&](const QColor& c) {
    darkest = std::min({darkest, c.red(), c.green(), c.blue()});
  });
  return darkest;
}

std::unique_ptr<Spatial> MakeSpatial(const std::vector<QPointF>& positions,
                                     const std::vector<std::pair<int, int>>& edges) {
  const TempDir dir;
  std::string plain = "graph 1 1 1\n";
  for (std::size_t i = 0; i < positions.size(); ++i) {
    plain += "node " + std::to_string(i + 1) + ' ' + std::to_string(positions[i].x()) + ' ' +
             std::to_string(positions[i].y()) + " 0.1 0.1 n solid circle black lightgrey\n";
  }
  plain += "stop\n";
  std::string dot = "graph G {\nnode [];\nedge [];\n";
  for (const auto& [from, to] : edges) {
    dot += std::to_string(from + 1) + " -- " + std::to_string(to + 1) + " [len=1];\n";
  }
  dot += "}";
  auto spatial = std::make_unique<Spatial>();
  std::string error;
  spatial->LoadGVPlain(dir.WriteFile("gvout.txt", plain), 1,
                       static_cast<std::int32_t>(positions.size()), error);
  spatial->SetGraphFromDot(dot, 1);
  return spatial;
}

int CountNearColour(const QImage& image, const QRectF& rect, const QColor& colour, int tolerance) {
  int count = 0;
  EachPixel(image, rect.toAlignedRect(), [&](const QColor& c) {
    count += std::abs(c.red() - colour.red()) <= tolerance &&
             std::abs(c.green() - colour.green()) <= tolerance &&
             std::abs(c.blue() - colour.blue()) <= tolerance;
  });
  return count;
}

}  // namespace sylvora::testing
