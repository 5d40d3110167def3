#include "app/app_main.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string_view>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QSize>
#include <QSlider>
#include <QStringList>
#include <QTabWidget>
#include <QTimer>

#include "app/cluster_explorer_page.h"
#include "app/console_platform.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "app/qt_platform.h"
#include "app/time_line_explorer_page.h"
#include "session/interval_models.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kUsage =
    "usage: sylvora [CORPUS] [--screenshot FILE [--size WIDTHxHEIGHT]]\n"
    "       sylvora --help | --version\n"
    "Opens the main window; CORPUS (a tab-separated, JSON or CSV tweet export) is loaded at\n"
    "once. --screenshot FILE loads and indexes CORPUS, builds the views and the maps, saves\n"
    "pictures of the window to FILE, FILE-timeline.png and FILE-clusters.png, and exits;\n"
    "--size sets the window's size for them (default 1280x800).\n";

struct Arguments {
  QString corpus;
  QString screenshot;
  QSize size{1280, 800};
};

bool ParseArguments(const QStringList& list, Arguments& arguments, QString& error) {
  for (qsizetype i = 1; i < list.size(); ++i) {
    const QString& argument = list[i];
    if (argument == u"--screenshot"_s) {
      if (i + 1 >= list.size()) {
        error = u"--screenshot needs a file name"_s;
        return false;
      }
      arguments.screenshot = list[++i];
    } else if (argument == u"--size"_s) {
      const QStringList parts = i + 1 < list.size() ? list[++i].split(u'x') : QStringList();
      bool wide = false;
      bool high = false;
      const int width = parts.size() == 2 ? parts[0].toInt(&wide) : 0;
      const int height = parts.size() == 2 ? parts[1].toInt(&high) : 0;
      if (!wide || !high || width < 320 || height < 240 || width > 8192 || height > 8192) {
        error = u"--size takes WIDTHxHEIGHT in pixels, from 320x240 to 8192x8192"_s;
        return false;
      }
      arguments.size = QSize(width, height);
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

// "<folder>/<name>-clusters.<suffix>" beside the main picture.
QString ClustersPictureName(const QString& file) {
  const QFileInfo info(file);
  const QString suffix = info.suffix().isEmpty() ? u"png"_s : info.suffix();
  return info.dir().filePath(info.completeBaseName() + u"-clusters."_s + suffix);
}

// After the time line's picture: shows the cluster explorer with its word and interval maps
// and the tweet map of the busiest interval, saves its picture and quits with the exit code.
void ScreenshotClusters(Main& window, const QString& file,
                        const std::function<void(QString)>& fail) {
  Session& session = window.CurrentSession();
  ClusterExplorerPage& page = window.ClusterExplorer();
  const QString picture = ClustersPictureName(file);
  const auto save = [&window, picture, fail] {
    QTimer::singleShot(200, &window, [&window, picture, fail] {
      const QPixmap shot = window.grab();
      if (shot.isNull() || !shot.save(picture, "PNG")) {
        fail(u"cannot save the screenshot to "_s + picture);
        return;
      }
      std::printf("Screenshot saved to %s\n",
                  qUtf8Printable(QFileInfo(picture).absoluteFilePath()));
      std::fflush(stdout);
      QCoreApplication::exit(0);
    });
  };
  // The word and interval maps first, then the tweet map of the busiest interval.
  QObject::connect(&page, &ClusterExplorerPage::mapFinished, &window,
                   [&page, &session, save, fail](int kind, bool built) {
                     if (!built) {
                       fail(u"a cluster map could not be built"_s);
                       return;
                     }
                     if (kind == static_cast<int>(MapKind::kTweets)) {
                       save();
                       return;
                     }
                     if (page.Building()) return;
                     const TextStream& model = session.WordModel();
                     int busiest = 1;
                     for (int k = 1; k <= model.IntervalCount(); ++k) {
                       if (model.IntervalDocCount(k) > model.IntervalDocCount(busiest)) busiest = k;
                     }
                     page.ISVis_OnNodeClick(busiest - 1);
                   });
  // The maps of the models the time line explorer built, at the length it used.
  if (!session.ModelsBuilt()) {
    fail(u"the interval models could not be built"_s);
    return;
  }
  page.ModelsRebuilt();
  window.Tabs().setCurrentWidget(&page);
}

// The picture of the time line explorer beside `file`: "shot.png" -> "shot-timeline.png".
QString TimeLinePictureName(const QString& file) {
  const QFileInfo info(file);
  const QString base = info.suffix().compare(u"png"_s, Qt::CaseInsensitive) == 0
                           ? info.completeBaseName()
                           : info.fileName();
  return info.dir().filePath(base + u"-timeline.png"_s);
}

// The interval with the most documents (where the storm is), or 1.
int BusiestInterval(const Session& session) {
  const TextStream& words = session.WordModel();
  int busiest = 1;
  for (int i = 1; i <= words.IntervalCount(); ++i) {
    if (words.IntervalDocCount(i) > words.IntervalDocCount(busiest)) busiest = i;
  }
  return busiest;
}

// Loads and indexes the corpus and saves the window's picture; then builds the time line
// models with the page's defaults, selects the busiest interval and saves the time line
// explorer's picture; then the cluster explorer's; quits with the exit code.
void TakeScreenshot(Main& window, const QString& file) {
  LoadIndexPage& page = window.LoadIndex();
  TimeLineExplorerPage& timeLine = window.TimeLine();
  const auto fail = [](const QString& why) {
    std::fprintf(stderr, "sylvora: %s\n", qUtf8Printable(why));
    QCoreApplication::exit(1);
  };
  // Lets the window lay out and paint its final state, saves it and goes on with `next`.
  const auto save = [&window, fail](const QString& path, std::function<void()> next) {
    QTimer::singleShot(200, &window, [&window, path, fail, next] {
      const QPixmap picture = window.grab();
      if (picture.isNull() || !picture.save(path, "PNG")) {
        fail(u"cannot save the screenshot to "_s + path);
        return;
      }
      std::printf("Screenshot saved to %s\n", qUtf8Printable(QFileInfo(path).absoluteFilePath()));
      std::fflush(stdout);
      next();
    });
  };
  QObject::connect(&timeLine, &TimeLineExplorerPage::modelsBuilt, &window,
                   [&window, &timeLine, file, save, fail](bool built) {
                     if (!built) {
                       fail(u"the time line models could not be built"_s);
                       return;
                     }
                     timeLine.SelectInterval(BusiestInterval(window.CurrentSession()));
                     save(TimeLinePictureName(file),
                          [&window, file, fail] { ScreenshotClusters(window, file, fail); });
                   });
  QObject::connect(&page, &LoadIndexPage::indexesBuilt, &window,
                   [&window, &timeLine, file, save, fail](bool built) {
                     if (!built) {
                       fail(u"the corpus could not be indexed"_s);
                       return;
                     }
                     save(file, [&window, &timeLine, fail] {
                       window.Tabs().setCurrentWidget(&timeLine);
                       if (!timeLine.BuildModels_Click())
                         fail(u"the model build could not start"_s);
                     });
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
  // Answered before the application object exists: it needs a display, these two do not.
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--help" || argument == "-h") {
      std::printf("%s", kUsage);
      return 0;
    }
    if (argument == "--version") {
      std::printf("sylvora %s\n", SYLVORA_VERSION);
      return 0;
    }
  }
  QApplication application(argc, argv);
  QApplication::setApplicationName(u"sylvora"_s);
  // Lets the desktop match the window with the installed sylvora.desktop (and its icon).
  QGuiApplication::setDesktopFileName(u"sylvora"_s);
  Arguments arguments;
  QString error;
  if (!ParseArguments(QApplication::arguments(), arguments, error)) {
    std::fprintf(stderr, "sylvora: %s\n%s", qUtf8Printable(error), kUsage);
    return 2;
  }
  const bool screenshot = !arguments.screenshot.isEmpty();
  QtPlatform qtPlatform;
  ConsolePlatform consolePlatform;
  Platform& platform = screenshot ? static_cast<Platform&>(consolePlatform) : qtPlatform;

  Main window(platform, StartupEnvironment::FromProcess(arguments.corpus));
  qtPlatform.SetWindow(&window);
  if (screenshot) {
    window.resize(arguments.size);
    TakeScreenshot(window, arguments.screenshot);
  }
  window.show();
  QTimer::singleShot(0, &window, [&window] { window.Start(); });
  return QApplication::exec();
}

}  // namespace sylvora::app
