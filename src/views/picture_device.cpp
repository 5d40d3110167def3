#include "views/picture_device.h"

#include <QColor>

namespace sylvora {
namespace {

constexpr int kDotsPerMeter = 3780;  // 96 dpi

}  // namespace

QImage NewPicture(QSize size) {
  if (size.width() <= 0 || size.height() <= 0) return {};
  QImage image(size, QImage::Format_RGB32);
  image.setDotsPerMeterX(kDotsPerMeter);
  image.setDotsPerMeterY(kDotsPerMeter);
  image.fill(QColor(255, 255, 255));
  return image;
}

const QImage& MeasuringDevice() {
  static const QImage device = NewPicture(QSize(1, 1));
  return device;
}

}  // namespace sylvora
