#pragma once
// PointMap2D: a node-link map. It takes node positions and links from a laid-out Spatial and
// draws each node as a square or circle sized by its weight and coloured from a 256-entry
// cluster palette, the links as grey lines and optional labels. The user hovers and clicks
// nodes, drags a square to zoom in, holds the right button to zoom out, double-clicks to see
// the whole map again and pans with the digit keys; a pulse briefly enlarges one node.
//
// Numbering. Nodes are 0-based (0..n-1), as in the Spatial. A SelectedNode or HoverNode
// outside 0..n-1 (callers use -1) means none.
//
// Coordinates. Positions, sizes and the view rectangle are in layout units. The surface shows
// the view rectangle: its left edge is View().left, its top edge View().top (the smallest y on
// screen is at the top). A view whose left exceeds its right is mirrored.
//
// Drawing. RenderView draws links, nodes and labels into a persistent picture (a QImage the
// size of the surface). The selected and hovered nodes and the selection square live on an
// overlay drawn over that picture, so a hover or a drag never repaints the map. Option
// writers (ShowEdges, NodeShape, colours, clusters, Weight ...) do not draw: the owner calls
// RenderView; SelectedNode, HoverNode, ZoomTo, BaseNodeSize and the bulk weight operations
// draw by themselves. Snapshot() is what the user sees; without a bound surface the map
// renders offscreen at the size given to SetPictureSize (or BottomRight).
//
// Ownership. The map copies what it needs from the Spatial (positions and the edge list): the
// Spatial may be dropped after SetCoordinates. The surface and the 16 ms timer it creates are
// children of the host window.
//
// Cost. A redraw visits every link and node once (visibility tests skip what lies outside);
// hover finds the node under the pointer in one pass over the nodes.

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "sparse/edge_record.h"
#include "views/view_surface.h"

class QPainter;
class QTimer;
class QWidget;

namespace sylvora {

class Spatial;

class PointMap2D : public QObject {
  Q_OBJECT

 public:
  // The rectangle of layout coordinates shown on the surface.
  struct ViewRect {
    float left = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
    float bottom = 0.0f;
    friend bool operator==(const ViewRect&, const ViewRect&) = default;
  };

  explicit PointMap2D(QObject* parent = nullptr);
  ~PointMap2D() override;

  // Binds the map to `targetForm`: `targetPictureBox` becomes the drawing surface, or, when it
  // is null, a new surface named "PM2DMap" fills the host window. Adds the timer
  // "<surface name>_ticker" (16 ms) to the host window. False when `targetForm` is null or
  // the map is already bound. (Defined in the widget binding.)
  bool InitializePM2DCtl(QWidget* targetForm, QWidget* targetPictureBox = nullptr);
  // The drawing surface (null when unbound), and its timer.
  QWidget* PM2DCtlObject() const;
  QTimer* Ticker() const { return ticker_; }

  // Size of the offscreen picture when no surface is bound.
  void SetPictureSize(QSize size);

  QColor LabelColor() const { return labelColor_; }
  void SetLabelColor(const QColor& color);
  bool IsSet() const { return nodeCount_ >= 1; }
  std::int32_t NodeCount() const { return nodeCount_; }

  bool ShowEdges() const { return showEdges_; }
  void SetShowEdges(bool show);
  // A one-line hint drawn in grey in the middle of a map that has no nodes.
  const QString& EmptyText() const { return emptyText_; }
  void SetEmptyText(const QString& text);

  // Readable drawing, the default: labels are drawn heaviest first and a label that would
  // overlap one already drawn is left out (hovering still shows it); no node's radius passes a
  // tenth of the picture's shorter side at the home view (sizes keep their order); the home view
  // holds every node and label with a margin. Off, every label over the threshold is drawn,
  // nodes are sized by weight alone and the home view frames the node centres.
  bool ReadableDrawing() const { return readableDrawing_; }
  void SetReadableDrawing(bool readable);
  // The nodes whose labels the picture shows, in drawing order, and the pixel box of a label.
  std::vector<std::int32_t> LabelledNodes() const;
  QRectF LabelBox(std::int32_t node) const;

  bool ShowNodeLabels() const { return showNodeLabels_; }
  void SetShowNodeLabels(bool show);
  std::int16_t NodeLabelThreshold() const { return nodeLabelThreshold_; }
  void SetNodeLabelThreshold(std::int16_t threshold);
  bool TemporalMask() const { return temporalMask_; }
  void SetTemporalMask(bool mask);
  // 0 square outline, 1 solid square, 2 circle outline, 3 filled circle; others draw no nodes.
  std::uint8_t NodeShape() const { return nodeShape_; }
  void SetNodeShape(std::uint8_t shape);

  // Labels; a write past the last node is ignored, a read gives "".
  QString NodeLabel(std::int32_t node) const;
  void SetNodeLabel(std::int32_t node, const QString& label);
  // Labels become "1", "2", ... (node + 1).
  void SetLabelsAsIndex();
  void ResetNodeLabels(const QString& defString);

  // Position; 0 outside 0..n-1.
  float NodeX(std::int32_t node) const;
  float NodeY(std::int32_t node) const;
  // Strictly inside the view: left < x < right and top < y < bottom.
  bool NodeVisible(std::int32_t node) const;

  std::int32_t SelectedNode() const { return selectedNode_; }
  void SetSelectedNode(std::int32_t node);
  std::int32_t HoverNode() const { return hoverNode_; }
  void SetHoverNode(std::int32_t node);

  // Enlarges `node` by `scaleFactor`; the 16 ms tick shrinks it by 5 % until it is back to its
  // size. The host window shows the question-mark pointer meanwhile. A node outside 0..n-1 is
  // ignored.
  void PulseNode(std::int32_t node, float scaleFactor);
  bool NodeIsPulsing() const { return pulsingNode_ >= 0; }
  std::int32_t PulsingNode() const { return pulsingNode_; }

  QColor ClickedEdgeColor() const { return clickedEdgeColor_; }
  void SetClickedEdgeColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
  QColor PointEdgeColor() const { return pointEdgeColor_; }
  void SetPointEdgeColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue);

  void ResetNodeClusters();
  void SetClusterColor(std::uint8_t cluster, std::uint8_t red, std::uint8_t green,
                       std::uint8_t blue);
  QColor GetClusterColor(std::uint8_t cluster) const;
  // Palette entries cluster1..cluster2 become a gradient from the first colour to the second;
  // false (nothing changes) unless cluster2 - cluster1 >= 2.
  bool SetClusterColorRange(std::uint8_t cluster1, std::uint8_t cluster2, std::uint8_t red1,
                            std::uint8_t green1, std::uint8_t blue1, std::uint8_t red2,
                            std::uint8_t green2, std::uint8_t blue2);
  // Cluster index; 0 outside 0..n-1, writes there ignored. Indices outside 0..255 draw in the
  // colours of the node drawn before.
  std::int16_t NodeCluster(std::int32_t node) const;
  void SetNodeCluster(std::int32_t node, std::int16_t cluster);

  // One node's weight. Writing sets its drawn size to weight x BaseNodeSize (no exponent) and
  // does not redraw; the bulk operations below size every node as weight^0.75 x BaseNodeSize.
  float Weight(std::int32_t node) const;
  void SetWeight(std::int32_t node, float weight);
  float BaseNodeSize() const { return baseNodeSize_; }
  void SetBaseNodeSize(float size);
  // Copies one weight per node (a shorter list leaves the remaining nodes as they are).
  void SetNodeWeights(const std::vector<float>& iWeights);
  // Weight = number of links of the node.
  void SetNodeWeightAsDegree();
  // Every weight 1.
  void ResetNodeWeights();

  // Surface geometry in the host window's pixels: TopLeft moves it, BottomRight sets its
  // width and height to x - left and y - top.
  void TopLeft(int x, int y);
  void BottomRight(int x, int y);

  // Shows the data's width and height divided by ZoomPercent / 50 around the node. A node
  // outside 0..n-1 or a percentage of 0 or below is ignored.
  void ZoomTo(std::int32_t node, float zoomPercent);
  // Shows `view` (one the map showed before, e.g. from its owner's Back and Forward) and draws.
  // Raises no ViewChanged: the owner that sets a view knows it changed. Ignored before the
  // first SetCoordinates.
  void SetView(const ViewRect& view);

  // Redraws the picture (erasing it first when `clear`) and shows the selection square when
  // `lassoo`. Nothing is drawn before the first SetCoordinates.
  void RenderView(bool clear, bool lassoo);

  // Takes positions and links from `iSpatial`, fits the view with 10 % margins, resets
  // weights, clusters and labels, sets the base size to a third of the mean horizontal extent
  // of the links (a fortieth of the data width when there are none) and draws. False when the
  // Spatial has no nodes.
  bool SetCoordinates(const Spatial& iSpatial);
  // Positions from a Pajek network file in fixed columns (node number in characters 8-13, x in
  // 48-53, y in 58-63): `numNodes` nodes without links, then fitted and drawn like
  // SetCoordinates. False when the file cannot be read.
  bool LoadPajekCoordinates(const std::string& iFilePath, std::int32_t numNodes);
  // A 10 x 10 grid of nodes without links, fitted and drawn: for trying the map out.
  void LoadCoordinatesTest();

  // --- State the user sees, for owners and tests ---
  const ViewRect& View() const { return view_; }
  const ViewRect& HomeView() const { return homeView_; }
  float DataWidth() const { return dataWidth_; }
  float DataHeight() const { return dataHeight_; }
  // Drawn size (half side or radius, layout units) of a node; 0 outside 0..n-1.
  float NodeSize(std::int32_t node) const;
  float MeanNodeSize() const { return meanNodeSize_; }
  bool ZoomingOut() const { return zoomingOut_; }
  float ZoomOutStep() const { return zoomOutStep_; }
  // Corners of the selection square: start x, start y, end x, end y.
  QRectF SelectionSquare() const;
  bool LassoVisible() const { return lassoVisible_; }
  // Conversions between layout units and surface pixels for the current view.
  QPointF ToPixels(float x, float y) const;
  QPointF ToLayout(QPointF pixels) const;
  const QImage& Picture() const { return picture_; }
  QImage Snapshot() const;

  // --- Input, in pixels of the surface (the widget binding calls these; tests may too) ---
  void MouseMove(Qt::MouseButtons buttons, QPointF position);
  void MousePress(Qt::MouseButton button, QPointF position);
  void MouseRelease(Qt::MouseButton button, QPointF position);
  void MouseDoubleClick(Qt::MouseButton button, QPointF position);
  // Every key press redraws and raises ViewChanged; the digits 1-9 pan first.
  bool KeyPress(int key);
  void KeyRelease(int key);
  // The 16 ms timer's tick: one step of the right-button zoom-out and of the pulse.
  void Tick();
  // Paints picture and overlay (the binding calls it from the surface's paint event).
  void Paint(QPainter& painter) const;
  // The surface changed size: the picture follows it.
  void SurfaceResized();

 signals:
  void OnNewNodeOver(int Node);
  void OnNodeClick(int Node);
  void SelectionStarted();
  void SelectionEnded();
  void ViewChanged();

 private:
  // True when RenderView(true, false) would draw exactly the picture there is.
  bool PictureCurrent() const;
  // The button-down redraw: the picture cleared and drawn again, the selection square hidden.
  void RedrawForPress();
  void ResetNodes(std::int32_t count);
  void FitView();
  void ResizeNodes();
  void Refresh();
  QSize PictureSize() const;
  bool ValidNode(std::int32_t node) const { return node >= 0 && node < nodeCount_; }
  void DrawNode(QPainter& painter, std::int32_t node, const QColor& line, const QColor& fill) const;
  void DrawLabel(QPainter& painter, std::int32_t node, double ascent) const;
  void PaintOverlay(QPainter& painter) const;
  // The node under the pointer (smallest weight among those whose square holds it), or -1.
  std::int32_t NodeUnder(QPointF layout) const;

  std::unique_ptr<ViewSurface> surface_;
  QTimer* ticker_ = nullptr;
  QSize offscreenSize_{800, 600};
  QPoint offscreenTopLeft_{0, 0};

  std::int32_t nodeCount_ = 0;
  std::vector<float> x_;
  std::vector<float> y_;
  std::vector<float> weight_;
  std::vector<float> size_;
  std::vector<std::int16_t> cluster_;
  std::vector<QString> label_;
  std::vector<EdgeRecord> edges_;

  float dataWidth_ = 0.0f;
  float dataHeight_ = 0.0f;
  ViewRect view_;
  ViewRect homeView_;
  std::array<QColor, 256> palette_;
  QColor clickedEdgeColor_{255, 255, 0};
  QColor pointEdgeColor_{255, 255, 255};
  QColor labelColor_{255, 255, 0};
  bool showEdges_ = false;
  bool showNodeLabels_ = false;
  bool readableDrawing_ = true;
  std::int16_t nodeLabelThreshold_ = 0;
  bool temporalMask_ = false;
  std::uint8_t nodeShape_ = 0;
  float baseNodeSize_ = 0.0f;
  float meanNodeSize_ = 0.0f;
  std::int32_t selectedNode_ = 0;
  std::int32_t hoverNode_ = 0;

  // Interaction.
  QPointF pointer_;
  float selectionStartX_ = 0.0f;
  float selectionStartY_ = 0.0f;
  float selectionEndX_ = 0.0f;
  float selectionEndY_ = 0.0f;
  bool lassoVisible_ = false;
  bool zoomingOut_ = false;
  float zoomOutStep_ = 0.0f;
  bool doubleClickGuard_ = false;
  std::int32_t pulsingNode_ = -1;
  float savedPulseSize_ = 0.0f;

  // The picture no longer shows the options (set by option writers, cleared by a draw).
  bool pictureStale_ = false;
  // The view the picture was last drawn for: a press redraws only when the picture is out of
  // date (stale options, another view or size), since redrawing an up-to-date picture gives
  // the same pixels.
  ViewRect renderedView_{};
  QFont labelFont_;
  // Readable drawing: the labels drawn, heaviest first, without overlaps.
  std::vector<std::int32_t> ReadableLabels(const QFontMetricsF& metrics) const;
  // Readable drawing: caps the node sizes and fits the home view to nodes and labels.
  void CapNodeSizes();
  void FitHomeToDrawing();
  // The home view and node sizes made again for the current picture size and drawing mode.
  void Refit();
  QString emptyText_;
  QImage picture_;
};

}  // namespace sylvora
