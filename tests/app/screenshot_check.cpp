// Checks a screenshot of the main window: a window-sized picture whose term-list area (the
// right part of the "Load and Index" page) is filled with rows of text, as it is once the word
// index is built; before indexing that area holds only the header and the frame.
#include <cstdio>

#include <QGuiApplication>
#include <QImage>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: sylvora_app_screenshot_check PICTURE\n");
    return 2;
  }
  const QImage image(QString::fromLocal8Bit(argv[1]));
  if (image.isNull()) {
    std::fprintf(stderr, "cannot read %s\n", argv[1]);
    return 1;
  }
  if (image.width() < 1000 || image.height() < 600) {
    std::fprintf(stderr, "picture of %dx%d is smaller than the window\n", image.width(), image.height());
    return 1;
  }
  // Rows of the term-list area that hold text: a few dark pixels on a light background.
  const int left = image.width() * 56 / 100, right = image.width() * 68 / 100;
  const int top = image.height() / 8, bottom = image.height() * 9 / 10;
  int textRows = 0;
  for (int y = top; y < bottom; ++y) {
    int dark = 0;
    for (int x = left; x < right; ++x) {
      if (qGray(image.pixel(x, y)) < 110) ++dark;
    }
    if (dark >= 3) ++textRows;
  }
  std::printf("picture %dx%d, %d text rows in the word list\n", image.width(), image.height(), textRows);
  return textRows >= 150 ? 0 : 1;
}
