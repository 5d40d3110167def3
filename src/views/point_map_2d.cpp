#include "views/point_map_2d.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>

#include "common/file_io.h"
#include "common/leading_number.h"
#include "layout/spatial.h"
#include "views/picture_device.h"

namespace sylvora {
namespace {

// The classic 16-colour text-mode palette; entries 16..255 start black.
constexpr std::array<std::array<int, 3>, 16> kStandardColours = {{
    {0, 0, 0},
    {0, 0, 128},
    {0, 128, 0},
    {0, 128, 128},
    {128, 0, 0},
    {128, 0, 128},
    {128, 128, 0},
    {192, 192, 192},
    {128, 128, 128},
    {0, 0, 255},
    {0, 255, 0},
    {0, 255, 255},
    {255, 0, 0},
    {255, 0, 255},
    {255, 255, 0},
    {255, 255, 255},
}};

const QColor kLinkColour(100, 100, 100);
const QColor kBlack(0, 0, 0);
const QColor kWhite(255, 255, 255);
const QColor kLassoColour(255, 0, 0);
constexpr float kPulseShrink = 0.95f;
constexpr float kZoomOutGrowth = 1.05f;
// Extent searches start from these, so coordinates beyond them do not widen the range.
constexpr float kExtentSearchStart = 999.0f;
// Base size of a map without links, as a share of the data width.
constexpr float kBaseSizeWithoutLinks = 1.0f / 40.0f;

float NodeSizeFor(float weight, float base) {
  if (!(weight > 0.0f)) return 0.0f;
  return static_cast<float>(std::pow(static_cast<double>(weight), 0.75)) * base;
}

int ColourComponent(double value) {
  return static_cast<int>(std::clamp(std::nearbyint(value), 0.0, 255.0));
}

// Lines and outlines are 2 pixels wide. Qt strokes wide pens through a general path stroker,
// which costs more than the whole rest of a redraw; two 1-pixel passes (Qt's fast
// Bresenham and midpoint paths) give the same 2-pixel stroke.
void DrawWideLine(QPainter& painter, QPointF from, QPointF to) {
  const bool flat = std::abs(to.x() - from.x()) >= std::abs(to.y() - from.y());
  const QPointF shift = flat ? QPointF(0.0, 1.0) : QPointF(1.0, 0.0);
  painter.drawLine(from, to);
  painter.drawLine(from + shift, to + shift);
}

void DrawWideRectOutline(QPainter& painter, const QRectF& box, const QColor& colour) {
  const QRectF outer = box.adjusted(-1.0, -1.0, 1.0, 1.0);
  painter.fillRect(QRectF(outer.left(), outer.top(), outer.width(), 2.0), colour);
  painter.fillRect(QRectF(outer.left(), outer.bottom() - 2.0, outer.width(), 2.0), colour);
  painter.fillRect(QRectF(outer.left(), outer.top(), 2.0, outer.height()), colour);
  painter.fillRect(QRectF(outer.right() - 2.0, outer.top(), 2.0, outer.height()), colour);
}

}  // namespace

PointMap2D::PointMap2D(QObject* parent)
    : QObject(parent), labelFont_(QStringLiteral("Courier"), 10, QFont::Bold) {
  labelFont_.setStyleHint(QFont::TypeWriter);
  palette_.fill(kBlack);
  for (std::size_t k = 0; k < kStandardColours.size(); ++k) {
    palette_[k] = QColor(kStandardColours[k][0], kStandardColours[k][1], kStandardColours[k][2]);
  }
}

PointMap2D::~PointMap2D() = default;

QWidget* PointMap2D::PM2DCtlObject() const { return surface_ ? surface_->Widget() : nullptr; }

QSize PointMap2D::PictureSize() const { return surface_ ? surface_->Size() : offscreenSize_; }

void PointMap2D::SetPictureSize(QSize size) {
  offscreenSize_ = size;
  if (!surface_) SurfaceResized();
}

void PointMap2D::Refresh() {
  if (surface_) surface_->Refresh();
}

// ---------------------------------------------------------------------------------------------
// Options: stored; the picture shows them at the next draw.

void PointMap2D::SetLabelColor(const QColor& color) {
  labelColor_ = color;
  pictureStale_ = true;
}

void PointMap2D::SetShowEdges(bool show) {
  showEdges_ = show;
  pictureStale_ = true;
}

void PointMap2D::SetShowNodeLabels(bool show) {
  showNodeLabels_ = show;
  pictureStale_ = true;
}

void PointMap2D::SetNodeLabelThreshold(std::int16_t threshold) {
  nodeLabelThreshold_ = threshold;
  pictureStale_ = true;
}

void PointMap2D::SetTemporalMask(bool mask) {
  temporalMask_ = mask;
  pictureStale_ = true;
}

void PointMap2D::SetNodeShape(std::uint8_t shape) {
  nodeShape_ = shape;
  pictureStale_ = true;
}

QString PointMap2D::NodeLabel(std::int32_t node) const {
  return ValidNode(node) ? label_[static_cast<std::size_t>(node)] : QString();
}

void PointMap2D::SetNodeLabel(std::int32_t node, const QString& label) {
  if (!ValidNode(node)) return;
  label_[static_cast<std::size_t>(node)] = label;
  pictureStale_ = true;
}

void PointMap2D::SetLabelsAsIndex() {
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    label_[static_cast<std::size_t>(i)] = QString::number(i + 1);
  }
  pictureStale_ = true;
}

void PointMap2D::ResetNodeLabels(const QString& defString) {
  std::fill(label_.begin(), label_.end(), defString);
  pictureStale_ = true;
}

float PointMap2D::NodeX(std::int32_t node) const {
  return ValidNode(node) ? x_[static_cast<std::size_t>(node)] : 0.0f;
}

float PointMap2D::NodeY(std::int32_t node) const {
  return ValidNode(node) ? y_[static_cast<std::size_t>(node)] : 0.0f;
}

float PointMap2D::NodeSize(std::int32_t node) const {
  return ValidNode(node) ? size_[static_cast<std::size_t>(node)] : 0.0f;
}

bool PointMap2D::NodeVisible(std::int32_t node) const {
  if (!ValidNode(node)) return false;
  const float x = x_[static_cast<std::size_t>(node)];
  const float y = y_[static_cast<std::size_t>(node)];
  return view_.left < x && x < view_.right && view_.top < y && y < view_.bottom;
}

void PointMap2D::SetClickedEdgeColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  clickedEdgeColor_ = QColor(red, green, blue);
}

void PointMap2D::SetPointEdgeColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  pointEdgeColor_ = QColor(red, green, blue);
}

void PointMap2D::ResetNodeClusters() {
  std::fill(cluster_.begin(), cluster_.end(), std::int16_t{0});
  pictureStale_ = true;
}

void PointMap2D::SetClusterColor(std::uint8_t cluster, std::uint8_t red, std::uint8_t green,
                                 std::uint8_t blue) {
  palette_[cluster] = QColor(red, green, blue);
  pictureStale_ = true;
}

QColor PointMap2D::GetClusterColor(std::uint8_t cluster) const { return palette_[cluster]; }

bool PointMap2D::SetClusterColorRange(std::uint8_t cluster1, std::uint8_t cluster2,
                                      std::uint8_t red1, std::uint8_t green1, std::uint8_t blue1,
                                      std::uint8_t red2, std::uint8_t green2, std::uint8_t blue2) {
  const int span = static_cast<int>(cluster2) - static_cast<int>(cluster1);
  if (span < 2) return false;
  for (int k = cluster1; k <= cluster2; ++k) {
    const double t = static_cast<double>(k - cluster1) / span;
    palette_[static_cast<std::size_t>(k)] = QColor(ColourComponent(red1 + t * (red2 - red1)),
                                                   ColourComponent(green1 + t * (green2 - green1)),
                                                   ColourComponent(blue1 + t * (blue2 - blue1)));
  }
  pictureStale_ = true;
  return true;
}

std::int16_t PointMap2D::NodeCluster(std::int32_t node) const {
  return ValidNode(node) ? cluster_[static_cast<std::size_t>(node)] : std::int16_t{0};
}

void PointMap2D::SetNodeCluster(std::int32_t node, std::int16_t cluster) {
  if (!ValidNode(node)) return;
  cluster_[static_cast<std::size_t>(node)] = cluster;
  pictureStale_ = true;
}

// ---------------------------------------------------------------------------------------------
// Weights and sizes

float PointMap2D::Weight(std::int32_t node) const {
  return ValidNode(node) ? weight_[static_cast<std::size_t>(node)] : 0.0f;
}

void PointMap2D::SetWeight(std::int32_t node, float weight) {
  if (!ValidNode(node)) return;
  weight_[static_cast<std::size_t>(node)] = weight;
  size_[static_cast<std::size_t>(node)] = weight * baseNodeSize_;
  pictureStale_ = true;
}

void PointMap2D::ResizeNodes() {
  double total = 0.0;
  for (std::size_t i = 0; i < size_.size(); ++i) {
    size_[i] = NodeSizeFor(weight_[i], baseNodeSize_);
    total += size_[i];
  }
  meanNodeSize_ = nodeCount_ > 0 ? static_cast<float>(total / nodeCount_) : 0.0f;
  if (readableDrawing_) {
    CapNodeSizes();
    FitHomeToDrawing();
  }
  RenderView(true, false);
}

void PointMap2D::SetReadableDrawing(bool readable) {
  readableDrawing_ = readable;
  Refit();
}

void PointMap2D::Refit() {
  if (nodeCount_ < 1) return;
  const bool atHome = view_ == homeView_;
  const ViewRect shown = view_;
  FitView();
  ResizeNodes();
  // A zoomed view stays where the user put it; only the home view moves.
  if (!atHome) {
    view_ = shown;
    RenderView(true, false);
  }
}

void PointMap2D::CapNodeSizes() {
  const float homeWidth = homeView_.right - homeView_.left;
  const float homeHeight = homeView_.bottom - homeView_.top;
  const QSize size = PictureSize();
  // The largest radius, in layout units, that stays within a tenth of the shorter side.
  float cap = 0.1f * std::min(homeWidth, homeHeight);
  if (size.width() > 0 && size.height() > 0) {
    const float shorter = static_cast<float>(std::min(size.width(), size.height()));
    cap = 0.1f * shorter *
          std::min(homeWidth / static_cast<float>(size.width()),
                   homeHeight / static_cast<float>(size.height()));
  }
  if (!(cap > 0.0f)) return;
  // Radii above half the cap bend smoothly towards it: the order stays, small nodes keep their
  // size, and "+" and "-" still change what they can.
  const float knee = 0.5f * cap;
  double total = 0.0;
  for (float& s : size_) {
    if (s > knee) s = knee + (cap - knee) * std::tanh((s - knee) / (cap - knee));
    total += s;
  }
  meanNodeSize_ = nodeCount_ > 0 ? static_cast<float>(total / nodeCount_) : 0.0f;
}

void PointMap2D::FitHomeToDrawing() {
  const QSize size = PictureSize();
  if (nodeCount_ < 1 || size.width() <= 0 || size.height() <= 0) return;
  const bool atHome = view_ == homeView_;
  const QFontMetricsF metrics(labelFont_, &MeasuringDevice());
  constexpr double kMarginPixels = 8.0;
  // Label widths in pixels (0 for a node without a drawn label), measured once for the rounds.
  std::vector<double> labelWidth(static_cast<std::size_t>(nodeCount_), 0.0);
  for (std::size_t i = 0; i < labelWidth.size(); ++i) {
    if (showNodeLabels_ && !label_[i].isEmpty() &&
        weight_[i] >= static_cast<float>(nodeLabelThreshold_)) {
      labelWidth[i] = metrics.horizontalAdvance(label_[i]);
    }
  }
  ViewRect fit = homeView_;
  // The scale depends on the view and the labels' extent on the scale: three rounds settle it.
  for (int round = 0; round < 3; ++round) {
    const double perPixelX = (fit.right - fit.left) / size.width();
    const double perPixelY = (fit.bottom - fit.top) / size.height();
    double left = std::numeric_limits<double>::max();
    double right = std::numeric_limits<double>::lowest();
    double top = left;
    double bottom = right;
    for (std::int32_t node = 0; node < nodeCount_; ++node) {
      const auto i = static_cast<std::size_t>(node);
      left = std::min<double>(left, x_[i] - size_[i]);
      right = std::max<double>(right, x_[i] + size_[i]);
      top = std::min<double>(top, y_[i] - size_[i]);
      bottom = std::max<double>(bottom, y_[i] + size_[i]);
      if (labelWidth[i] > 0.0) {
        right = std::max(right, x_[i] + labelWidth[i] * perPixelX);
        bottom = std::max(bottom, y_[i] + metrics.height() * perPixelY);
      }
    }
    const double marginX = kMarginPixels * perPixelX;
    const double marginY = kMarginPixels * perPixelY;
    fit = {static_cast<float>(left - marginX), static_cast<float>(right + marginX),
           static_cast<float>(top - marginY), static_cast<float>(bottom + marginY)};
    if (!(fit.right > fit.left) || !(fit.bottom > fit.top)) return;
  }
  homeView_ = fit;
  if (atHome) view_ = fit;
}

std::vector<std::int32_t> PointMap2D::LabelledNodes() const {
  if (!showNodeLabels_) return {};
  const QFontMetricsF metrics(labelFont_, &MeasuringDevice());
  if (readableDrawing_) return ReadableLabels(metrics);
  std::vector<std::int32_t> nodes;
  for (std::int32_t node = 0; node < nodeCount_; ++node) {
    const auto i = static_cast<std::size_t>(node);
    if (!label_[i].isEmpty() && weight_[i] >= static_cast<float>(nodeLabelThreshold_)) {
      nodes.push_back(node);
    }
  }
  return nodes;
}

QRectF PointMap2D::LabelBox(std::int32_t node) const {
  if (!ValidNode(node)) return {};
  const auto i = static_cast<std::size_t>(node);
  const QFontMetricsF metrics(labelFont_, &MeasuringDevice());
  const QPointF at = ToPixels(x_[i], y_[i]);
  return QRectF(at.x(), at.y(), metrics.horizontalAdvance(label_[i]), metrics.height());
}

std::vector<std::int32_t> PointMap2D::ReadableLabels(const QFontMetricsF& metrics) const {
  const QSize size = PictureSize();
  std::vector<std::int32_t> order;
  for (std::int32_t node = 0; node < nodeCount_; ++node) {
    const auto i = static_cast<std::size_t>(node);
    if (label_[i].isEmpty() || weight_[i] < static_cast<float>(nodeLabelThreshold_)) continue;
    if (!NodeVisible(node)) continue;
    order.push_back(node);
  }
  std::stable_sort(order.begin(), order.end(), [this](std::int32_t a, std::int32_t b) {
    return weight_[static_cast<std::size_t>(a)] > weight_[static_cast<std::size_t>(b)];
  });
  // Drawn boxes by grid cell, so that each label meets only its neighbours.
  const double cell = std::max(8.0, metrics.height() * 4.0);
  std::unordered_map<std::int64_t, std::vector<QRectF>> grid;
  const auto key = [](std::int64_t column, std::int64_t row) { return (column << 32) ^ row; };
  std::vector<std::int32_t> drawn;
  for (const std::int32_t node : order) {
    const auto i = static_cast<std::size_t>(node);
    const QPointF at = ToPixels(x_[i], y_[i]);
    // A little air between labels, so that two do not read as one word.
    const QRectF box =
        QRectF(at.x(), at.y(), metrics.horizontalAdvance(label_[i]), metrics.height())
            .adjusted(-2.0, 0.0, 2.0, 0.0);
    if (box.left() > size.width() || box.top() > size.height() || box.right() < 0.0 ||
        box.bottom() < 0.0) {
      continue;
    }
    const auto firstColumn = static_cast<std::int64_t>(std::floor(box.left() / cell));
    const auto lastColumn = static_cast<std::int64_t>(std::floor(box.right() / cell));
    const auto firstRow = static_cast<std::int64_t>(std::floor(box.top() / cell));
    const auto lastRow = static_cast<std::int64_t>(std::floor(box.bottom() / cell));
    bool free = true;
    for (auto column = firstColumn; column <= lastColumn && free; ++column) {
      for (auto row = firstRow; row <= lastRow && free; ++row) {
        const auto found = grid.find(key(column, row));
        if (found == grid.end()) continue;
        for (const QRectF& other : found->second) {
          if (other.intersects(box)) {
            free = false;
            break;
          }
        }
      }
    }
    if (!free) continue;
    for (auto column = firstColumn; column <= lastColumn; ++column) {
      for (auto row = firstRow; row <= lastRow; ++row) grid[key(column, row)].push_back(box);
    }
    drawn.push_back(node);
  }
  return drawn;
}

void PointMap2D::SetBaseNodeSize(float size) {
  baseNodeSize_ = size;
  ResizeNodes();
}

void PointMap2D::SetNodeWeights(const std::vector<float>& iWeights) {
  const std::size_t count = std::min(iWeights.size(), weight_.size());
  std::copy_n(iWeights.begin(), count, weight_.begin());
  ResizeNodes();
}

void PointMap2D::SetNodeWeightAsDegree() {
  std::fill(weight_.begin(), weight_.end(), 0.0f);
  for (const EdgeRecord& edge : edges_) {
    if (ValidNode(edge.FromNode)) weight_[static_cast<std::size_t>(edge.FromNode)] += 1.0f;
    if (ValidNode(edge.ToNode) && edge.ToNode != edge.FromNode) {
      weight_[static_cast<std::size_t>(edge.ToNode)] += 1.0f;
    }
  }
  ResizeNodes();
}

void PointMap2D::ResetNodeWeights() {
  std::fill(weight_.begin(), weight_.end(), 1.0f);
  ResizeNodes();
}

// ---------------------------------------------------------------------------------------------
// Positions and the view

void PointMap2D::ResetNodes(std::int32_t count) {
  nodeCount_ = std::max(0, count);
  const auto n = static_cast<std::size_t>(nodeCount_);
  x_.assign(n, 0.0f);
  y_.assign(n, 0.0f);
  weight_.assign(n, 1.0f);
  size_.assign(n, baseNodeSize_);
  cluster_.assign(n, 0);
  label_.assign(n, QString());
  edges_.clear();
  pictureStale_ = true;
}

void PointMap2D::FitView() {
  float minX = kExtentSearchStart;
  float maxX = -kExtentSearchStart;
  float minY = kExtentSearchStart;
  float maxY = -kExtentSearchStart;
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    minX = std::min(minX, x_[static_cast<std::size_t>(i)]);
    maxX = std::max(maxX, x_[static_cast<std::size_t>(i)]);
    minY = std::min(minY, y_[static_cast<std::size_t>(i)]);
    maxY = std::max(maxY, y_[static_cast<std::size_t>(i)]);
  }
  dataWidth_ = std::abs(maxX - minX);
  dataHeight_ = std::abs(maxY - minY);
  if (dataWidth_ == 0.0f) dataWidth_ = 0.1f;
  if (dataHeight_ == 0.0f) dataHeight_ = 0.1f;
  view_.left = minX - 0.1f * dataWidth_;
  view_.right = maxX + 0.1f * dataWidth_;
  view_.top = minY - 0.1f * dataHeight_;
  view_.bottom = maxY + 0.1f * dataHeight_;
  homeView_ = view_;
}

bool PointMap2D::SetCoordinates(const Spatial& iSpatial) {
  ResetNodes(iSpatial.NodeCount());
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    x_[static_cast<std::size_t>(i)] = iSpatial.X(i);
    y_[static_cast<std::size_t>(i)] = iSpatial.Y(i);
  }
  edges_ = iSpatial.Edges();
  FitView();

  // A third of the mean horizontal extent of the links.
  if (!edges_.empty()) {
    float sum = 0.0f;
    for (const EdgeRecord& edge : edges_)
      sum += std::abs(NodeX(edge.FromNode) - NodeX(edge.ToNode));
    baseNodeSize_ = sum / static_cast<float>(edges_.size()) / 3.0f;
  } else {
    baseNodeSize_ = dataWidth_ * kBaseSizeWithoutLinks;
  }
  pulsingNode_ = -1;
  zoomingOut_ = false;
  ResetNodeWeights();  // sizes the nodes and draws
  return IsSet();
}

bool PointMap2D::LoadPajekCoordinates(const std::string& iFilePath, std::int32_t numNodes) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(iFilePath, text, error)) return false;
  ResetNodes(numNodes);

  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  // Characters `first`..`first + count - 1` (1-based) of a line, as a number.
  const auto field = [](const std::string& line, std::size_t first, std::size_t count) {
    if (line.size() < first) return 0.0;
    return LeadingNumber(std::string_view(line).substr(first - 1, count));
  };
  // Line 1 is skipped and line 2 read; then lines until the last one read starts with the
  // node count.
  std::size_t next = 2;
  std::string last = lines.size() >= 2 ? lines[1] : std::string();
  while (next < lines.size() && LeadingNumber(last) != numNodes) {
    last = lines[next++];
    const auto node = static_cast<std::int64_t>(field(last, 8, 6)) - 1;
    if (node < 0 || node >= nodeCount_) continue;
    x_[static_cast<std::size_t>(node)] = static_cast<float>(field(last, 48, 6));
    y_[static_cast<std::size_t>(node)] = static_cast<float>(field(last, 58, 6));
  }
  FitView();
  baseNodeSize_ = dataWidth_ * kBaseSizeWithoutLinks;
  pulsingNode_ = -1;
  ResetNodeWeights();
  return true;
}

void PointMap2D::LoadCoordinatesTest() {
  constexpr std::int32_t kSide = 10;
  ResetNodes(kSide * kSide);
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    x_[static_cast<std::size_t>(i)] = static_cast<float>(i % kSide);
    y_[static_cast<std::size_t>(i)] = static_cast<float>(i / kSide);
    cluster_[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i % 16);
  }
  FitView();
  baseNodeSize_ = 0.25f;
  pulsingNode_ = -1;
  ResetNodeWeights();
}

void PointMap2D::TopLeft(int x, int y) {
  offscreenTopLeft_ = QPoint(x, y);
  if (surface_) surface_->Move(x, y);
}

void PointMap2D::BottomRight(int x, int y) {
  const int width = std::max(0, x - offscreenTopLeft_.x());
  const int height = std::max(0, y - offscreenTopLeft_.y());
  if (surface_) {
    surface_->Resize(width, height);
  } else {
    SetPictureSize(QSize(width, height));
  }
}

void PointMap2D::SetView(const ViewRect& view) {
  if (nodeCount_ < 1) return;
  view_ = view;
  RenderView(true, false);
}

void PointMap2D::ZoomTo(std::int32_t node, float zoomPercent) {
  if (!ValidNode(node) || !(zoomPercent > 0.0f)) return;
  const float halfWidth = dataWidth_ / (zoomPercent * 0.02f);
  const float halfHeight = dataHeight_ / (zoomPercent * 0.02f);
  const float x = x_[static_cast<std::size_t>(node)];
  const float y = y_[static_cast<std::size_t>(node)];
  view_ = {x - halfWidth, x + halfWidth, y - halfHeight, y + halfHeight};
  RenderView(true, false);
}

QPointF PointMap2D::ToPixels(float x, float y) const {
  const QSize size = PictureSize();
  const double width = view_.right - view_.left;
  const double height = view_.bottom - view_.top;
  if (width == 0.0 || height == 0.0) return {};
  return {(x - view_.left) / width * size.width(), (y - view_.top) / height * size.height()};
}

QPointF PointMap2D::ToLayout(QPointF pixels) const {
  const QSize size = PictureSize();
  if (size.width() <= 0 || size.height() <= 0) return {view_.left, view_.top};
  return {view_.left + pixels.x() / size.width() * (view_.right - view_.left),
          view_.top + pixels.y() / size.height() * (view_.bottom - view_.top)};
}

QRectF PointMap2D::SelectionSquare() const {
  return QRectF(QPointF(selectionStartX_, selectionStartY_),
                QPointF(selectionEndX_, selectionEndY_));
}

// ---------------------------------------------------------------------------------------------
// Drawing

void PointMap2D::DrawNode(QPainter& painter, std::int32_t node, const QColor& line,
                          const QColor& fill) const {
  const auto i = static_cast<std::size_t>(node);
  const float s = size_[i];
  const QRectF box =
      QRectF(ToPixels(x_[i] - s, y_[i] - s), ToPixels(x_[i] + s, y_[i] + s)).normalized();
  switch (nodeShape_) {
    case 0:
      DrawWideRectOutline(painter, box, line);
      break;
    case 1:
      painter.fillRect(box.adjusted(-1.0, -1.0, 1.0, 1.0), line);
      break;
    case 2:
    case 3: {
      // Whole-pixel rectangles keep Qt on its midpoint ellipse path.
      const QRect outer(static_cast<int>(std::lround(box.left())) - 1,
                        static_cast<int>(std::lround(box.top())) - 1,
                        static_cast<int>(std::lround(box.width())) + 2,
                        static_cast<int>(std::lround(box.height())) + 2);
      painter.setPen(QPen(line, 1));
      painter.setBrush(nodeShape_ == 3 ? QBrush(fill) : QBrush(Qt::NoBrush));
      painter.drawEllipse(outer);
      if (outer.width() > 3 && outer.height() > 3) {
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(outer.adjusted(1, 1, -1, -1));
      }
      break;
    }
    default:
      break;
  }
}

void PointMap2D::DrawLabel(QPainter& painter, std::int32_t node, double ascent) const {
  const auto i = static_cast<std::size_t>(node);
  const QString& label = label_[i];
  if (label.isEmpty() || weight_[i] < static_cast<float>(nodeLabelThreshold_)) return;
  const QPointF at = ToPixels(x_[i], y_[i]);
  const QPointF baseline(at.x(), at.y() + ascent);
  if (readableDrawing_) {
    // A white halo keeps the letters readable over circles and links.
    const QPen pen = painter.pen();
    painter.setPen(kWhite);
    for (const QPointF offset : {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1)}) {
      painter.drawText(baseline + offset, label);
    }
    painter.setPen(pen);
  }
  painter.drawText(baseline, label);
}

void PointMap2D::RenderView(bool clear, bool lassoo) {
  lassoVisible_ = lassoo;
  if (dataWidth_ == 0.0f || dataHeight_ == 0.0f) return;
  const QSize size = PictureSize();
  if (picture_.size() != size) {
    picture_ = NewPicture(size);
  } else if (clear && !picture_.isNull()) {
    picture_.fill(kWhite);
  }
  pictureStale_ = false;
  renderedView_ = view_;
  if (picture_.isNull()) return;

  QPainter painter(&picture_);
  if (showEdges_) {
    painter.setPen(QPen(kLinkColour, 1));
    for (const EdgeRecord& edge : edges_) {
      if (!ValidNode(edge.FromNode) || !ValidNode(edge.ToNode)) continue;
      if (!NodeVisible(edge.FromNode) && !NodeVisible(edge.ToNode)) continue;
      DrawWideLine(painter, ToPixels(NodeX(edge.FromNode), NodeY(edge.FromNode)),
                   ToPixels(NodeX(edge.ToNode), NodeY(edge.ToNode)));
    }
  }

  // Selected and hovered nodes are drawn like the others here and marked on the overlay.
  // Masked maps draw ordinary nodes in the colour in force: link grey, or black.
  QColor line = showEdges_ ? kLinkColour : kBlack;
  QColor fill = line;
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    if (!NodeVisible(i)) continue;
    const std::int16_t cluster = cluster_[static_cast<std::size_t>(i)];
    if (!temporalMask_ && cluster >= 0 && cluster < 256) {
      line = palette_[static_cast<std::size_t>(cluster)];
      fill = line;
    }
    DrawNode(painter, i, line, fill);
  }

  if (showNodeLabels_) {
    painter.setFont(labelFont_);
    painter.setPen(labelColor_);
    const QFontMetricsF metrics(labelFont_, &picture_);
    const double ascent = metrics.ascent();
    const double height = metrics.height();
    const double charWidth = metrics.horizontalAdvance(QLatin1Char('M'));
    if (readableDrawing_) {
      for (const std::int32_t node : ReadableLabels(metrics)) DrawLabel(painter, node, ascent);
    }
    for (std::int32_t i = 0; i < nodeCount_ && !readableDrawing_; ++i) {
      // Labels hang right and down from their node; skip those that cannot reach the picture.
      const QPointF at = ToPixels(x_[static_cast<std::size_t>(i)], y_[static_cast<std::size_t>(i)]);
      if (at.x() > size.width() || at.y() > size.height() || at.y() + height < 0.0) continue;
      if (at.x() + charWidth * label_[static_cast<std::size_t>(i)].size() < 0.0) continue;
      DrawLabel(painter, i, ascent);
    }
  }
  Refresh();
}

void PointMap2D::PaintOverlay(QPainter& painter) const {
  if (nodeCount_ > 0 && dataWidth_ != 0.0f) {
    const QFontMetricsF metrics(labelFont_, &MeasuringDevice());
    const auto mark = [&](std::int32_t node, const QColor& line) {
      if (!NodeVisible(node)) return;
      const std::int16_t cluster = cluster_[static_cast<std::size_t>(node)];
      const QColor fill = cluster >= 0 && cluster < 256
                              ? palette_[static_cast<std::size_t>(cluster)]
                              : (showEdges_ ? kLinkColour : kBlack);
      DrawNode(painter, node, line, fill);
      if (showNodeLabels_) {
        painter.setFont(labelFont_);
        painter.setPen(labelColor_);
        DrawLabel(painter, node, metrics.ascent());
      }
    };
    mark(selectedNode_, clickedEdgeColor_);
    if (hoverNode_ != selectedNode_) mark(hoverNode_, pointEdgeColor_);
  }
  if (lassoVisible_) {
    DrawWideRectOutline(painter,
                        QRectF(ToPixels(selectionStartX_, selectionStartY_),
                               ToPixels(selectionEndX_, selectionEndY_))
                            .normalized(),
                        kLassoColour);
  }
}

void PointMap2D::SetEmptyText(const QString& text) {
  emptyText_ = text;
  if (surface_) surface_->Refresh();
}

void PointMap2D::Paint(QPainter& painter) const {
  if (picture_.isNull() || nodeCount_ == 0) {
    painter.setPen(QColor(120, 120, 120));
    painter.drawText(painter.viewport(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
    return;
  }
  painter.drawImage(0, 0, picture_);
  PaintOverlay(painter);
}

QImage PointMap2D::Snapshot() const {
  QImage image = picture_.copy();
  if (!image.isNull()) {
    QPainter painter(&image);
    PaintOverlay(painter);
  }
  return image;
}

void PointMap2D::SurfaceResized() {
  if (dataWidth_ == 0.0f || dataHeight_ == 0.0f) return;
  // Readable sizes and margins are in pixels: a new size fits them again.
  if (readableDrawing_ && !lassoVisible_) {
    Refit();
    return;
  }
  RenderView(true, lassoVisible_);
}

void PointMap2D::SetSelectedNode(std::int32_t node) {
  selectedNode_ = node;
  if (pictureStale_) {
    RenderView(false, lassoVisible_);
  } else {
    Refresh();
  }
}

void PointMap2D::SetHoverNode(std::int32_t node) {
  hoverNode_ = node;
  if (pictureStale_) {
    RenderView(false, lassoVisible_);
  } else {
    Refresh();
  }
}

void PointMap2D::PulseNode(std::int32_t node, float scaleFactor) {
  if (!ValidNode(node)) return;
  pulsingNode_ = node;
  savedPulseSize_ = size_[static_cast<std::size_t>(node)];
  size_[static_cast<std::size_t>(node)] *= scaleFactor;
  pictureStale_ = true;
  if (surface_) surface_->SetHostCursor(Qt::WhatsThisCursor);
}

// ---------------------------------------------------------------------------------------------
// Interaction

std::int32_t PointMap2D::NodeUnder(QPointF layout) const {
  std::int32_t found = -1;
  for (std::int32_t i = 0; i < nodeCount_; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (std::abs(layout.x() - x_[k]) < size_[k] && std::abs(layout.y() - y_[k]) < size_[k]) {
      if (found < 0 || weight_[k] < weight_[static_cast<std::size_t>(found)]) found = i;
    }
  }
  return found;
}

void PointMap2D::MouseMove(Qt::MouseButtons buttons, QPointF position) {
  pointer_ = ToLayout(position);
  if (buttons == Qt::NoButton) {
    const std::int32_t node = NodeUnder(pointer_);
    if (node != hoverNode_) {
      SetHoverNode(node);
      emit OnNewNodeOver(node);
    }
    return;
  }
  if (!(buttons & Qt::LeftButton)) return;
  // The selection is kept square in layout units whatever the vertical movement.
  selectionEndX_ = static_cast<float>(pointer_.x());
  selectionEndY_ = selectionStartY_ + (selectionEndX_ - selectionStartX_);
  lassoVisible_ = true;
  Refresh();
}

void PointMap2D::MousePress(Qt::MouseButton button, QPointF position) {
  pointer_ = ToLayout(position);
  if (button == Qt::LeftButton) {
    selectionStartX_ = static_cast<float>(pointer_.x());
    selectionStartY_ = static_cast<float>(pointer_.y());
    selectionEndX_ = selectionStartX_;
    selectionEndY_ = selectionStartY_;
    emit SelectionStarted();
    RedrawForPress();
  } else if (button == Qt::RightButton) {
    zoomingOut_ = true;
    zoomOutStep_ = meanNodeSize_;
    RedrawForPress();
  }
}

bool PointMap2D::PictureCurrent() const {
  return !pictureStale_ && !picture_.isNull() && picture_.size() == PictureSize() &&
         dataWidth_ != 0.0f && dataHeight_ != 0.0f && renderedView_.left == view_.left &&
         renderedView_.right == view_.right && renderedView_.top == view_.top &&
         renderedView_.bottom == view_.bottom;
}

void PointMap2D::RedrawForPress() {
  // Every click starts with this redraw: on a map of thousands of nodes, drawing an unchanged
  // picture again costs more than the rest of the click.
  if (!PictureCurrent()) {
    RenderView(true, false);
    return;
  }
  lassoVisible_ = false;
  Refresh();
}

void PointMap2D::MouseRelease(Qt::MouseButton button, QPointF position) {
  pointer_ = ToLayout(position);
  if (button == Qt::RightButton) {
    zoomingOut_ = false;
    emit ViewChanged();
    return;
  }
  if (button != Qt::LeftButton) return;

  const auto releaseX = static_cast<float>(pointer_.x());
  const auto releaseY = static_cast<float>(pointer_.y());
  lassoVisible_ = false;
  if (doubleClickGuard_) {
    doubleClickGuard_ = false;
    Refresh();
  } else if (std::abs(releaseX - selectionStartX_) > meanNodeSize_ &&
             std::abs(releaseY - selectionStartY_) > meanNodeSize_) {
    selectionEndX_ = releaseX;
    selectionEndY_ = selectionStartY_ + (selectionEndX_ - selectionStartX_);
    view_ = {selectionStartX_, selectionEndX_, selectionStartY_, selectionEndY_};
    RenderView(true, false);
    emit SelectionEnded();
    emit ViewChanged();
  } else {
    Refresh();
  }

  // The click.
  if (ValidNode(hoverNode_)) emit OnNodeClick(hoverNode_);
  selectionStartX_ = selectionEndX_;
  selectionStartY_ = selectionEndY_;
  if (ValidNode(hoverNode_)) {
    selectedNode_ = hoverNode_;
    Refresh();
  }
}

void PointMap2D::MouseDoubleClick(Qt::MouseButton button, QPointF position) {
  pointer_ = ToLayout(position);
  if (button != Qt::LeftButton) return;
  view_ = homeView_;
  doubleClickGuard_ = true;
  RenderView(true, false);
  emit ViewChanged();
}

bool PointMap2D::KeyPress(int key) {
  if (key >= Qt::Key_1 && key <= Qt::Key_9) {
    // Keypad directions: 7 8 9 / 4 5 6 / 1 2 3.
    const int digit = key - Qt::Key_0;
    const int column = (digit - 1) % 3;  // 0 left, 1 none, 2 right
    const int row = (digit - 1) / 3;     // 0 bottom row (down), 1 middle, 2 top row (up)
    const float step = 3.0f * baseNodeSize_;
    const float dx = column == 0 ? -step : (column == 2 ? step : 0.0f);
    const float dy = row == 0 ? step : (row == 2 ? -step : 0.0f);
    view_.left += dx;
    view_.right += dx;
    view_.top += dy;
    view_.bottom += dy;
  }
  RenderView(true, false);
  emit ViewChanged();
  return true;
}

void PointMap2D::KeyRelease(int key) {
  if (key == Qt::Key_2 || key == Qt::Key_4 || key == Qt::Key_6 || key == Qt::Key_8) {
    emit ViewChanged();
  }
}

void PointMap2D::Tick() {
  if (zoomingOut_) {
    view_.left = std::max(view_.left - zoomOutStep_, homeView_.left);
    view_.right = std::min(view_.right + zoomOutStep_, homeView_.right);
    view_.top = std::max(view_.top - zoomOutStep_, homeView_.top);
    view_.bottom = std::min(view_.bottom + zoomOutStep_, homeView_.bottom);
    RenderView(true, false);
    if (zoomOutStep_ < dataWidth_ / 100.0f) zoomOutStep_ *= kZoomOutGrowth;
  }
  if (pulsingNode_ >= 0 && ValidNode(pulsingNode_)) {
    float& size = size_[static_cast<std::size_t>(pulsingNode_)];
    size *= kPulseShrink;
    if (size <= savedPulseSize_) {
      size = savedPulseSize_;
      pulsingNode_ = -1;
      if (surface_) surface_->UnsetHostCursor();
    }
    RenderView(true, false);
  } else if (pulsingNode_ >= 0) {
    pulsingNode_ = -1;
  }
}

}  // namespace sylvora
