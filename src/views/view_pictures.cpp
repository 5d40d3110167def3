#include "views/view_pictures.h"

#include <QGuiApplication>
#include <QImage>
#include <QString>

#include <algorithm>
#include <memory>

#include "temporal/text_stream.h"
#include "views/point_map_2d.h"
#include "views/session_views.h"
#include "views/table_lens.h"
#include "views/time_line_chart.h"

namespace sylvora {
namespace {

// Qt draws text only inside a QGuiApplication; a tool without one gets an offscreen one for
// the rest of the process.
void EnsureGuiApplication() {
  if (QCoreApplication::instance() != nullptr) return;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "sylvora";
  static char* argv[] = {name, nullptr};
  static auto* application = new QGuiApplication(argc, argv);
  (void)application;
}

bool Save(const QImage& image, const std::string& path, std::string& error) {
  if (image.isNull()) {
    error = "Nothing to draw";
    return false;
  }
  if (!image.save(QString::fromStdString(path), "PNG")) {
    error = "Cannot write the picture file \"" + path + "\"";
    return false;
  }
  return true;
}

}  // namespace

bool WriteMapPng(const ClusterMap& clusterMap, std::int16_t labelThreshold, const std::string& path,
                 PictureSize size, std::string& error) {
  if (clusterMap.NodeCount() < 1) {
    error = "The map has no nodes";
    return false;
  }
  EnsureGuiApplication();
  PointMap2D map;
  map.SetPictureSize(QSize(size.width, size.height));
  // Cluster 0 draws black: labels in dark red stand out from the circles.
  map.SetLabelColor(QColor(190, 0, 0));
  ShowClusterMap(map, clusterMap, labelThreshold);
  map.SetSelectedNode(-1);
  map.SetHoverNode(-1);
  return Save(map.Snapshot(), path, error);
}

bool WriteTermTimelinePng(const TextStream& wordModel, const TermDocumentMatrix& wordIndex,
                          const std::string& unitCode, const std::string& path, PictureSize size,
                          std::string& error) {
  if (wordModel.IntervalCount() < 1) {
    error = "The words model has no intervals";
    return false;
  }
  EnsureGuiApplication();
  // Columns wide enough for three decimals switch the lens to the Text style: keep them at
  // most kLineColumnPixels wide so that the picture shows the Line profiles.
  constexpr std::int32_t kLineColumnPixels = 30;
  const std::int64_t lineWidth =
      static_cast<std::int64_t>(kLineColumnPixels) * (wordModel.IntervalCount() + 2);
  const auto width = static_cast<int>(std::clamp<std::int64_t>(lineWidth, 320, size.width));
  TableLens lens;
  lens.SetPictureSize(QSize(width, size.height));
  ShowTermTimeline(lens, wordModel, wordIndex, unitCode);
  return Save(lens.Snapshot(), path, error);
}

bool WriteTimeLineChartPng(const IntervalSeries& series, std::int16_t sentimentAverage,
                           const std::string& path, PictureSize size, std::string& error) {
  if (series.rows.empty()) {
    error = "The series has no intervals";
    return false;
  }
  EnsureGuiApplication();
  constexpr std::int64_t kColumnPixels = 30;
  const std::int64_t columnsWidth =
      kColumnPixels * (static_cast<std::int64_t>(series.rows.size()) + 1);
  const auto width = static_cast<int>(std::clamp<std::int64_t>(columnsWidth, 320, size.width));
  TimeLineChart chart;
  chart.SetPictureSize(QSize(width, size.height));
  chart.SetSentimentAverage(sentimentAverage);
  chart.SetData(TimeLineChartDataFromSeries(series));
  QString message;
  if (!chart.SavePng(QString::fromStdString(path), message)) {
    error = message.toStdString();
    return false;
  }
  return true;
}

}  // namespace sylvora
