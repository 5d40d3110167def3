// sylvora-views-demo: the two views on a corpus, to try their interaction before the main
// window exists. Loads and indexes the corpus, builds the interval models and the word map,
// and opens a window with the word map above the term time line.
//
//   sylvora-views-demo [FILE] [--length L (6)] [--unit h] [--screenshot PNG]
//
// FILE defaults to the bundled sample corpus. --screenshot draws the window offscreen into a
// PNG and quits (for looking at the demo without a display).

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QScrollBar>
#include <QSlider>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>

#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "common/data_files.h"
#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session/session.h"
#include "views/point_map_2d.h"
#include "views/session_views.h"
#include "views/table_lens.h"

namespace sylvora {
namespace {

// Messages of the core as message boxes (or on stderr before the window exists).
class BoxNotifier final : public Notifier {
 public:
  void ShowMessage(std::string_view text, std::string_view title, MessageIcon) override {
    std::cerr << title << ": " << text << '\n';
  }
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon) override {
    std::cerr << title << ": " << text << " (going on)\n";
    return buttons == QuestionButtons::kYesNo ? Answer::kYes : Answer::kOk;
  }
};

struct DemoOptions {
  std::string corpus;
  // Six-hour intervals give the term time line narrow columns, where its Line style holds.
  std::string length = "6";
  std::string unit = "h";
  std::string screenshot;
};

constexpr const char* kUsage =
    "usage: sylvora-views-demo [FILE] [--length L] [--unit s|n|h|d|ww] [--screenshot PNG]\n"
    "       sylvora-views-demo --help | --version\n"
    "Loads, indexes and models FILE (the bundled sample by default, six-hour intervals) and\n"
    "shows its word map above its term time line; --screenshot draws the window into PNG.\n";

bool ParseArguments(const QStringList& arguments, DemoOptions& options) {
  options.corpus = FindDataFile("sample_twitter11.txt");
  for (qsizetype i = 1; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    const bool hasValue = i + 1 < arguments.size();
    if (argument == QStringLiteral("--length") && hasValue) {
      options.length = arguments[++i].toStdString();
    } else if (argument == QStringLiteral("--unit") && hasValue) {
      options.unit = arguments[++i].toStdString();
    } else if (argument == QStringLiteral("--screenshot") && hasValue) {
      options.screenshot = arguments[++i].toStdString();
    } else if (argument.startsWith(QStringLiteral("--"))) {
      std::cerr << kUsage;
      return false;
    } else {
      options.corpus = argument.toStdString();
    }
  }
  return true;
}

// The corpus through load, index, models and the word map.
bool BuildSession(const DemoOptions& options, Session& session, ClusterMap& wordMap,
                  Notifier& notifier) {
  LoadOptions load;
  load.path = options.corpus;
  load.unitCode = options.unit;
  const LoadReport loaded = LoadCorpus(session, load, notifier);
  if (!loaded.loaded) {
    std::cerr << "Cannot load " << options.corpus << ": " << loaded.error << '\n';
    return false;
  }
  IndexOptions index;
  index.stopListPath = FindDataFile("common_words.txt");
  const IndexReport indexed = BuildIndexes(session, index);
  if (!indexed.indexed) {
    std::cerr << "Cannot index: " << indexed.error << '\n';
    return false;
  }
  ModelOptions models;
  models.intervalLength = options.length;
  const ModelReport modelled = BuildModels(session, models, notifier);
  if (!modelled.built) {
    std::cerr << "Cannot build the interval models: " << modelled.error << '\n';
    return false;
  }
  const MapReport mapped = BuildWordMap(session.WordIndex(), nullptr, WordMapLevel::kTweet,
                                        MapOptions{}, wordMap, notifier);
  if (!mapped.built) std::cerr << "No word map: " << mapped.error << '\n';
  return true;
}

class DemoWindow : public QMainWindow {
 public:
  DemoWindow(const Session& session, const ClusterMap& wordMap, const std::string& unit) {
    setWindowTitle(QStringLiteral("Sylvora views demo"));
    resize(1280, 960);
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* splitter = new QSplitter(Qt::Vertical, central);
    layout->addWidget(splitter);
    setCentralWidget(central);

    // The word map, with the label slider of the cluster explorer.
    auto* mapPane = new QWidget(splitter);
    auto* mapLayout = new QVBoxLayout(mapPane);
    auto* mapControls = new QHBoxLayout();
    auto* slider = new QSlider(Qt::Horizontal, mapPane);
    slider->setObjectName(QStringLiteral("TermLabelThresh"));
    slider->setRange(0, 250);
    slider->setSingleStep(1);
    slider->setPageStep(10);
    slider->setValue(kWordMapLabelThreshold);
    mapControls->addWidget(new QLabel(QStringLiteral("More Labels"), mapPane));
    mapControls->addWidget(slider);
    mapControls->addWidget(new QLabel(QStringLiteral("Fewer Labels"), mapPane));
    mapControls->addStretch();
    mapControls->addWidget(new QLabel(
        QStringLiteral("drag: zoom in   right button: zoom out   double click: all   1-9: pan"),
        mapPane));
    mapLayout->addLayout(mapControls);
    auto* mapContainer = new QWidget(mapPane);
    mapContainer->setObjectName(QStringLiteral("TermSimVisContainer"));
    mapContainer->setMinimumHeight(300);
    mapLayout->addWidget(mapContainer, 1);
    splitter->addWidget(mapPane);

    // The term time line, with its scroll bars and the menu choices as controls.
    auto* lensPane = new QWidget(splitter);
    auto* lensLayout = new QVBoxLayout(lensPane);
    auto* lensControls = new QHBoxLayout();
    auto* style = new QComboBox(lensPane);
    style->addItems({QStringLiteral("Text"), QStringLiteral("Tile"), QStringLiteral("Line"),
                     QStringLiteral("Horizontal Bar"), QStringLiteral("Vertical Bar")});
    auto* filter = new QCheckBox(QStringLiteral("Show Selected Terms Only"), lensPane);
    lensControls->addWidget(new QLabel(QStringLiteral("Cell Style"), lensPane));
    lensControls->addWidget(style);
    lensControls->addWidget(filter);
    lensControls->addStretch();
    lensControls->addWidget(new QLabel(
        QStringLiteral("click a row name to mark it; arrow keys move the cursor"), lensPane));
    lensLayout->addLayout(lensControls);
    auto* grid = new QHBoxLayout();
    auto* lensContainer = new QWidget(lensPane);
    lensContainer->setObjectName(QStringLiteral("TIFMViewContainer"));
    auto* vertical = new QScrollBar(Qt::Vertical, lensPane);
    vertical->setObjectName(QStringLiteral("TIFMViewVScroller"));
    grid->addWidget(lensContainer, 1);
    grid->addWidget(vertical);
    lensLayout->addLayout(grid, 1);
    auto* horizontal = new QScrollBar(Qt::Horizontal, lensPane);
    horizontal->setObjectName(QStringLiteral("TIFMViewHScroller"));
    lensLayout->addWidget(horizontal);
    splitter->addWidget(lensPane);
    splitter->setSizes({560, 400});
    statusBar()->showMessage(QStringLiteral("Ready"));

    // Lay the window out first: the views take their surfaces' sizes at binding.
    lensContainer->setFixedHeight(360);
    layout->activate();
    resize(size());
    QCoreApplication::processEvents();

    map_.InitializePM2DCtl(this, mapContainer);
    map_.SetLabelColor(QColor(190, 0, 0));
    if (wordMap.NodeCount() > 0) {
      ShowWordMap(map_, wordMap);
    } else {
      map_.LoadCoordinatesTest();
      statusBar()->showMessage(
          QStringLiteral("No word map could be laid out: a test grid instead"));
    }
    map_.SetSelectedNode(-1);
    map_.SetHoverNode(-1);

    lens_.InitializeTLCtl(this, lensContainer, horizontal, vertical);
    ShowTermTimeline(lens_, session.WordModel(), session.WordIndex(), unit);
    style->setCurrentIndex(lens_.CellStyle());

    // Wiring, as the time line and cluster explorers do.
    connect(slider, &QSlider::valueChanged, this, [this, slider](int value) {
      slider->setToolTip(QStringLiteral("Doc Freq >= %1%").arg(value / 10.0));
      map_.SetNodeLabelThreshold(static_cast<std::int16_t>(value));
      map_.RenderView(true, false);
    });
    connect(&map_, &PointMap2D::OnNewNodeOver, this, [this](int node) {
      map_.PM2DCtlObject()->setToolTip(map_.NodeLabel(node));
      if (node >= 0) {
        statusBar()->showMessage(QStringLiteral("%1: %2 documents per thousand")
                                     .arg(map_.NodeLabel(node))
                                     .arg(map_.Weight(node), 0, 'f', 1));
      }
    });
    connect(&map_, &PointMap2D::OnNodeClick, this, [this](int node) {
      map_.PulseNode(node, 2.0f);
      // Term node + 1 in the time line: mark it and move the cursor to its row.
      const std::int32_t term = node + 1;
      if (!lens_.RowMarked(term)) lens_.SetRowMarked(term, true);
      lens_.MoveCursor(term, 0);
      statusBar()->showMessage(
          QStringLiteral("Marked \"%1\" in the term time line").arg(map_.NodeLabel(node)));
    });
    connect(&map_, &PointMap2D::ViewChanged, this, [this] {
      const PointMap2D::ViewRect& view = map_.View();
      statusBar()->showMessage(QStringLiteral("Map view x %1 .. %2, y %3 .. %4")
                                   .arg(view.left, 0, 'f', 2)
                                   .arg(view.right, 0, 'f', 2)
                                   .arg(view.top, 0, 'f', 2)
                                   .arg(view.bottom, 0, 'f', 2));
    });
    connect(style, &QComboBox::activated, this,
            [this](int index) { lens_.SetCellStyle(static_cast<std::uint8_t>(index)); });
    connect(&lens_, &TableLens::CellStyleChanged, style, &QComboBox::setCurrentIndex);
    connect(filter, &QCheckBox::toggled, this, [this](bool on) { lens_.SetFilterRows(on); });
    connect(&lens_, &TableLens::CellMouseOver, this, [this](int column, int row) {
      statusBar()->showMessage(QStringLiteral("%1 in %2: %3")
                                   .arg(lens_.RowName(row), lens_.ColumnName(column))
                                   .arg(lens_.CellValue(row, column)));
    });
    connect(&lens_, &TableLens::CellMouseClick, this, [this](int row, int column, Qt::MouseButton) {
      // The word of the clicked row, pulsed in the map when it is a node there.
      const std::int32_t node = row - 1;
      if (node >= 0 && node < map_.NodeCount()) {
        map_.SetSelectedNode(node);
        map_.PulseNode(node, 2.0f);
      }
      statusBar()->showMessage(
          QStringLiteral("%1, interval %2").arg(lens_.RowName(row)).arg(column));
    });
  }

 private:
  PointMap2D map_;
  TableLens lens_;
};

}  // namespace
}  // namespace sylvora

int main(int argc, char** argv) {
  // Answered before the application object exists, which needs a display.
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--help" || argument == "-h") {
      std::cout << sylvora::kUsage;
      return 0;
    }
    if (argument == "--version") {
      std::cout << "sylvora-views-demo " << SYLVORA_VERSION << '\n';
      return 0;
    }
  }
  QApplication application(argc, argv);
  sylvora::DemoOptions options;
  if (!ParseArguments(QCoreApplication::arguments(), options)) return 2;

  sylvora::BoxNotifier notifier;
  sylvora::Session session;
  sylvora::ClusterMap wordMap;
  std::cerr << "Loading, indexing and laying out " << options.corpus << " ...\n";
  if (!sylvora::BuildSession(options, session, wordMap, notifier)) return 1;

  sylvora::DemoWindow window(session, wordMap, options.unit);
  window.show();
  if (!options.screenshot.empty()) {
    QCoreApplication::processEvents();
    const bool saved = window.grab().save(QString::fromStdString(options.screenshot));
    if (!saved) std::cerr << "Cannot write " << options.screenshot << '\n';
    return saved ? 0 : 1;
  }
  return application.exec();
}
