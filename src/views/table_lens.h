#pragma once
// TableLens: a numeric table (a SparseMatrixSingle) drawn as a grid of cells with a header row
// of column names and a header column of row names. The user scrolls it, moves a cell cursor
// with the mouse and the arrow keys, marks rows by clicking their headers, shows only the
// marked rows, and chooses how a value is drawn: as a number (Text), a grey tile, a line
// through the row, or a horizontal or vertical bar.
//
// Numbering. Table rows and columns are 1-based, as in the matrix; visible slots are 1-based
// too (slot 0 is the column header). Events carry data rows and columns.
//
// Coordinates. The grid is laid out in cell units: x runs from the header width (0, or
// negative when seven characters need more than one column) to VisibleColumns() + 1, y from 0
// to VisibleRows() + 1; data cell (slot s, visible column c) covers x c..c+1, y s..s+1.
//
// Drawing. Every change that alters the grid redraws it at once into a persistent picture
// (a QImage the size of the surface); the cell cursor lives on an overlay, so moving it or
// hovering never repaints the grid. Snapshot() is what the user sees; without a bound surface
// the lens still renders offscreen at the size given to SetPictureSize.
//
// Ownership. The lens does not own the table: it must outlive the lens or be replaced by
// another SetNumDataTable first. The surface it creates is a child of the target window.
// Redrawing without a table reports "Render error" through the notifier.
//
// Cost. A redraw touches the visible cells only (a binary search per cell and one magnitude
// per visible column); cursor moves and hovers cost one overlay repaint.

#include <QColor>
#include <QFont>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "common/notifier.h"
#include "sparse/sparse_matrix_single.h"
#include "views/view_surface.h"

class QPainter;
class QScrollBar;
class QWidget;

namespace sylvora {

class TableLens : public QObject {
  Q_OBJECT

 public:
  enum Style : std::uint8_t {
    kText = 0,
    kTile = 1,
    kLine = 2,
    kHorizontalBar = 3,
    kVerticalBar = 4,
  };

  // `notifier` receives the "Render error" message; it must outlive the lens.
  explicit TableLens(Notifier& notifier = DefaultNotifier(), QObject* parent = nullptr);
  ~TableLens() override;

  // Binds the lens to `targetForm`: `targetPictureBox` becomes the drawing surface, or, when
  // it is null, a new surface named "TargetPictureBox" fills the target window. The scroll
  // bars (each may be null) are driven by the lens. The surface's size at this moment fixes
  // MaxVisibleRows and MaxVisibleColumns. False when `targetForm` is null or the lens is
  // already bound. (Defined in the widget binding.)
  bool InitializeTLCtl(QWidget* targetForm, QWidget* targetPictureBox = nullptr,
                       QScrollBar* targetHScroll = nullptr, QScrollBar* targetVScroll = nullptr);

  // Size of the offscreen picture when no surface is bound (a bound surface sets its own).
  void SetPictureSize(QSize size);

  // Shows `dataTable` from its first row and column: names "R1".., "C1".., no marks, cursor at
  // (1, 1), at most 20 visible rows and 10 visible columns; then lays out and redraws.
  void SetNumDataTable(const SparseMatrixSingle& dataTable);

  // Names; index 0 is the header corner. Out-of-range reads give "" and writes are ignored.
  // Setting the name of the data row (column) shown in the last visible slot redraws.
  QString RowName(std::int32_t row) const;
  void SetRowName(std::int32_t row, const QString& name);
  QString ColumnName(std::int32_t col) const;
  void SetColumnName(std::int32_t col, const QString& name);

  // The table's value; 0 without a table or outside it.
  float CellValue(std::int32_t row, std::int32_t col) const;

  std::int32_t VisibleRows() const { return visibleRows_; }
  std::int32_t VisibleColumns() const { return visibleColumns_; }
  // Values below 1 are ignored. When the first row shown + count reaches RowCount, the first
  // row becomes RowCount - count + 1 (never below 1); then layout and redraw. Columns alike.
  void SetVisibleRows(std::int32_t count);
  void SetVisibleColumns(std::int32_t count);
  // Shows `count` columns from data column `left` (both brought into the table: count
  // 1..ColCount, left so that the last one shown is a table column); then layout and redraw.
  // The owner's zoom and pan.
  void ShowColumns(std::int32_t left, std::int32_t count);
  std::int32_t MaxVisibleRows() const { return maxVisibleRows_; }
  std::int32_t MaxVisibleColumns() const { return maxVisibleColumns_; }

  std::uint8_t CellStyle() const { return cellStyle_; }
  // Stores the style, lays out (the layout may switch Text to Tile when not even one decimal
  // fits a column, and any other style to Text when three do, raising CellStyleChanged) and
  // redraws. Codes above 4 draw headers without cells.
  void SetCellStyle(std::uint8_t style);
  // When set, the layout keeps the style it is given instead of switching between Text and the
  // drawn styles: a style the user picked stays. Off by default.
  bool KeepCellStyle() const { return keepCellStyle_; }
  void SetKeepCellStyle(bool keep) { keepCellStyle_ = keep; }

  bool NormedCellValues() const { return normedCellValues_; }
  void SetNormedCellValues(bool normed);
  bool FilterRows() const { return filterRows_; }
  void SetFilterRows(bool filter);

  // Row marks. Setting adds 1 to MarkedRowCount for true and subtracts 1 for false, whatever
  // the previous mark was (the owner keeps marks and count in step). Rows outside
  // 1..RowCount are ignored (read as unmarked).
  bool RowMarked(std::int32_t row) const;
  void SetRowMarked(std::int32_t row, bool marked);
  std::int32_t MarkedRowCount() const { return markedRowCount_; }

  QColor HeaderForeColour() const { return headerForeColour_; }
  void SetHeaderForeColour(const QColor& colour) { headerForeColour_ = colour; }
  QColor HeaderBackColour() const { return headerBackColour_; }
  void SetHeaderBackColour(const QColor& colour) { headerBackColour_ = colour; }
  // Accepted for compatibility and not stored.
  std::int32_t ForeColour() const { return 0; }
  void SetForeColour(const QColor&) {}
  std::int32_t BackColour() const { return 0; }
  void SetBackColour(const QColor&) {}

  // Values above 0 become the cursor's row or column; then redraw.
  void MoveCursor(std::int32_t row, std::int32_t column);

  // The drawing surface (null when unbound).
  QWidget* TLContainer() const;

  // --- State the user sees, for owners and tests ---
  std::int32_t TopRow() const { return topRow_; }
  std::int32_t LeftColumn() const { return leftColumn_; }
  std::int32_t CursorRow() const { return cursorRow_; }
  std::int32_t CursorColumn() const { return cursorColumn_; }
  std::int32_t HoverRow() const { return hoverRow_; }
  std::int32_t HoverColumn() const { return hoverColumn_; }
  // Left edge of the drawing area in column units (0 or negative).
  float HeaderWidth() const { return headerWidth_; }
  // Decimal places of the Text style.
  std::int16_t Decimals() const { return decimals_; }
  // Data row shown in slot 1..VisibleRows (0 for an empty slot or outside).
  std::int32_t SlotRow(std::int32_t slot) const;
  // The text printed in the row header for `row` (long names shortened to 6 characters + "..").
  QString RowHeaderText(std::int32_t row) const;
  // The forms a column name may take in the header, longest first: a date-time
  // "YYYY-MM-DD HH:MM:SS" also as "YYYY-MM-DD HH:MM", "MM-DD HH:MM", "YYYY-MM-DD", "MM-DD", "DD";
  // across years as "YYYY-MM-DD", "YYYY-MM", "YYYY".
  static QStringList ColumnLabelForms(const QString& name, bool acrossYears = false);
  // Pixel rectangle of cell (slot, visible column); column 0 is the row header, slot 0 the
  // column header.
  QRectF CellRect(std::int32_t slot, std::int32_t visibleColumn) const;
  // The persistent picture alone, and the picture with the cursor as the user sees it.
  const QImage& Picture() const { return picture_; }
  QImage Snapshot() const;

  // --- Input, in pixels of the surface (the widget binding calls these; tests may too) ---
  void MousePress(Qt::MouseButton button, QPointF position);
  void MouseMove(QPointF position);
  // True when the key was one the lens handles (the arrow keys).
  bool KeyPress(int key);
  void HorizontalScroll(int value);
  void VerticalScroll(int value);
  // Paints picture and overlay (the binding calls it from the surface's paint event).
  void Paint(QPainter& painter) const;
  // The surface changed size: layout and picture follow it.
  void SurfaceResized();

 signals:
  void CellStyleChanged(int Style);
  void CellMouseOver(int Column, int Row);
  void CellMouseClick(int Row, int Column, Qt::MouseButton Button);
  void NewSelection();

 private:
  void Layout();
  void Redraw();
  void DrawCells(QPainter& painter);
  void PaintCursor(QPainter& painter) const;
  void ShowCursor(std::int32_t slot);
  void UpdateScrollBars();
  QSize PictureSize() const;
  // Width of `text` in column units with the current scale.
  double TextWidthUnits(const QString& text, const QFont& font) const;
  // The longest form of column `column`'s name that fits `roomColumns` columns.
  QString ColumnLabel(std::int32_t column, double roomColumns) const;
  // How many columns one header label spans so that the shortest form fits.
  std::int32_t ColumnLabelStep() const;
  // Whether the first and last visible column names lie in different years.
  bool VisibleColumnsAcrossYears() const;
  // The space left between two column labels, in columns.
  double LabelGapColumns() const;
  double PixelsPerColumn() const;
  double PixelsPerRow() const;
  QPointF ToPixels(double x, double y) const;
  // Cell under a pixel position: the whole parts of x and y in cell units.
  double UnitsX(double px) const;
  double UnitsY(double py) const;

  Notifier* notifier_;
  std::unique_ptr<ViewSurface> surface_;
  QSize offscreenSize_{800, 400};
  const SparseMatrixSingle* table_ = nullptr;
  std::vector<QString> rowNames_;
  std::vector<bool> rowNamed_;                             // false: the default name "R" + row
  std::int32_t columnCount_ = -1;                          // the names' range is 0..columnCount_
  std::unordered_map<std::int32_t, QString> columnNames_;  // absent: "C" + column
  std::int32_t topRow_ = 1;
  std::int32_t leftColumn_ = 1;
  std::int32_t visibleRows_ = 0;
  std::int32_t visibleColumns_ = 0;
  float headerWidth_ = 0.0f;
  std::vector<std::int32_t> rowMap_;
  std::int32_t maxVisibleRows_ = 0;
  std::int32_t maxVisibleColumns_ = 0;
  std::uint8_t cellStyle_ = kText;
  bool keepCellStyle_ = false;
  QColor cellTextColour_{0, 0, 0};
  QColor headerForeColour_{0, 0, 0};
  QColor headerBackColour_{180, 225, 245};
  QColor markedHeaderColour_{255, 128, 64};
  double marginX_ = 0.05;
  double marginY_ = 0.1;
  std::int32_t cursorRow_ = 1;
  std::int32_t cursorColumn_ = 1;
  std::int32_t cursorSlot_ = 1;
  std::int32_t hoverRow_ = 0;
  std::int32_t hoverColumn_ = 0;
  std::int16_t decimals_ = 0;
  bool normedCellValues_ = true;
  std::vector<bool> rowMarks_;
  bool filterRows_ = false;
  std::int32_t markedRowCount_ = 0;
  std::int32_t horizontalUnit_ = 1;
  std::int32_t verticalUnit_ = 1;
  QFont cellFont_;
  QFont headerFont_;
  QImage picture_;
};

}  // namespace sylvora
