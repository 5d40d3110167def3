#pragma once
// The views draw into QImages at a fixed 96 dots per inch, so that text is measured and drawn
// at the same size on screen, offscreen and in PNG files.

#include <QImage>
#include <QSize>

namespace sylvora {

// A white image of `size` (empty for an empty size) at 96 dpi.
QImage NewPicture(QSize size);

// A 1 x 1 image at 96 dpi for measuring text before any picture exists.
const QImage& MeasuringDevice();

}  // namespace sylvora
