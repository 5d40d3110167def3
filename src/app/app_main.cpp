#include "app/app_main.h"

#include <cstdio>

#include <QApplication>
#include <QFileInfo>
#include <QPixmap>
#include <QStringList>
#include <QTimer>

#include "app/console_platform.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "app/qt_platform.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kUsage = "usage: sylvora [CORPUS] [--screenshot FILE]\n";

struct Arguments {
  QString corpus;
  QString screenshot;
  bool help = false;
};

bool ParseArguments(const QStringList& list, Arguments& arguments, QString& error) {
  for (qsizetype i = 1; i < list.size(); ++i) {
    const QString& argument = list[i];
    if (argument == u"--help"_s || argument == u"-h"_s) {
      arguments.help = true;
    } else if (argument == u"--screenshot"_s) {
      if (i + 1 >= list.size()) {
        error = u"--screenshot needs a file name"_s;
        return false;
      }
      arguments.screenshot = list[++i];
    } else if (argument.startsWith(u"--"_s)) {
      error = u"unknown option "_s + argument;
      return false;
    } else if (arguments.corpus.isEmpty()) {
      arguments.corpus = argument;
    } else {
      error = u"more than one corpus: "_s + argument;
      return false;
    }
  }
  return true;
}

// Loads and indexes the corpus, saves the window's picture and quits with the exit code.
void TakeScreenshot(Main& window, const QString& file) {
  LoadIndexPage& page = window.LoadIndex();
  const auto fail = [](const QString& why) {
    std::fprintf(stderr, "sylvora: %s\n", qUtf8Printable(why));
    QCoreApplication::exit(1);
  };
  const auto save = [&window, file, fail] {
    // Let the window lay out and paint its final state first.
    QTimer::singleShot(200, &window, [&window, file, fail] {
      const QPixmap picture = window.grab();
      if (picture.isNull() || !picture.save(file, "PNG")) {
        fail(u"cannot save the screenshot to "_s + file);
        return;
      }
      std::printf("Screenshot saved to %s\n", qUtf8Printable(QFileInfo(file).absoluteFilePath()));
      std::fflush(stdout);
      QCoreApplication::exit(0);
    });
  };
  QObject::connect(&page, &LoadIndexPage::indexesBuilt, &window, [save, fail](bool built) {
    if (built) {
      save();
    } else {
      fail(u"the corpus could not be indexed"_s);
    }
  });
  QObject::connect(&window, &Main::startupFinished, &window, [&window, &page, fail] {
    if (window.CurrentSession().Documents().DocumentCount() == 0) {
      fail(u"no corpus is loaded (name an existing corpus file)"_s);
      return;
    }
    if (!page.DoIndex_Click()) fail(u"indexing could not start"_s);
  });
}

}  // namespace

int RunApplication(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(u"sylvora"_s);
  Arguments arguments;
  QString error;
  if (!ParseArguments(QApplication::arguments(), arguments, error)) {
    std::fprintf(stderr, "sylvora: %s\n%s", qUtf8Printable(error), kUsage);
    return 2;
  }
  if (arguments.help) {
    std::printf("%s", kUsage);
    return 0;
  }
  const bool screenshot = !arguments.screenshot.isEmpty();
  QtPlatform qtPlatform;
  ConsolePlatform consolePlatform;
  Platform& platform = screenshot ? static_cast<Platform&>(consolePlatform) : qtPlatform;

  Main window(platform, StartupEnvironment::FromProcess(arguments.corpus));
  qtPlatform.SetWindow(&window);
  if (screenshot) TakeScreenshot(window, arguments.screenshot);
  window.show();
  QTimer::singleShot(0, &window, [&window] { window.Start(); });
  return QApplication::exec();
}

}  // namespace sylvora::app
