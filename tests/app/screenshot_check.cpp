// Checks a screenshot of the main window: a window-sized picture whose term-list area (the
// right part of the "Load and Index" page) is filled with rows of text, as it is once the word
// index is built; before indexing that area holds only the header and the frame.
// With "--timeline" it checks the time line explorer instead: the message list (lower right)
// filled with rows of text, as it is once an interval is selected.
#include <cstdio>

#include <QGuiApplication>
#include <QImage>

// The message list shows about a dozen rows of about 10 pixel rows of text each.
constexpr int kTimeLineTextRows = 60;

int main(int argc, char** argv) {
  const bool timeLine = argc == 3 && QByteArray(argv[2]) == "--timeline";
  if (argc != 2 && !timeLine) {
    std::fprintf(stderr, "usage: sylvora_app_screenshot_check PICTURE [--timeline]\n");
    return 2;
  }
  const QImage image(QString::fromLocal8Bit(argv[1]));
  if (image.isNull()) {
    std::fprintf(stderr, "cannot read %s\n", argv[1]);
    return 1;
  }
  if (image.width() < 1000 || image.height() < 600) {
    std::fprintf(stderr, "picture of %dx%d is smaller than the window\n", image.width(),
                 image.height());
    return 1;
  }
  // Rows of the term-list area (or the message list) that hold text: a few dark pixels on a
  // light background.
  const int left = image.width() * (timeLine ? 62 : 56) / 100;
  const int right = image.width() * (timeLine ? 90 : 68) / 100;
  const int top = timeLine ? image.height() * 70 / 100 : image.height() / 8;
  const int bottom = image.height() * 9 / 10;
  int textRows = 0;
  for (int y = top; y < bottom; ++y) {
    int dark = 0;
    for (int x = left; x < right; ++x) {
      if (qGray(image.pixel(x, y)) < 110) ++dark;
    }
    if (dark >= 3) ++textRows;
  }
  std::printf("picture %dx%d, %d text rows in the %s\n", image.width(), image.height(), textRows,
              timeLine ? "message list" : "word list");
  return textRows >= (timeLine ? kTimeLineTextRows : 150) ? 0 : 1;
}
