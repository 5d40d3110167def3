#include "views/table_lens.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPen>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "sparse/number_format.h"
#include "views/picture_device.h"

namespace sylvora {
namespace {

constexpr std::int32_t kFirstVisibleRowsCap = 20;
constexpr std::int32_t kFirstVisibleColumnsCap = 10;
// Scroll bars count in 16 bits: above this many rows (columns) one step moves ten.
constexpr std::int32_t kScrollUnitLimit = 32768;
const QColor kZeroTextColour(150, 150, 150);
const QColor kCursorColour(0, 128, 128);
const QColor kWhite(255, 255, 255);
const QColor kBlack(0, 0, 0);

// Round half to even into 16 bits, saturating instead of overflowing.
std::int32_t RoundTo16Bits(double value) {
  if (!(value == value)) return 0;
  const double rounded = std::nearbyint(value);
  return static_cast<std::int32_t>(std::clamp(rounded, -32768.0, 32767.0));
}

int GreyLevel(double fraction) {
  return static_cast<int>(std::clamp(std::nearbyint(255.0 * fraction), 0.0, 255.0));
}

std::string DecimalsPattern(int decimals) {
  return decimals > 0 ? "0." + std::string(static_cast<std::size_t>(decimals), '0') : "0";
}

QString FormatValue(float value, const std::string& pattern) {
  return QString::fromStdString(FormatNumber(value, pattern));
}

}  // namespace

TableLens::TableLens(Notifier& notifier, QObject* parent)
    : QObject(parent),
      notifier_(&notifier),
      cellFont_(QStringLiteral("Courier New"), 8),
      headerFont_(QStringLiteral("Arial Narrow"), 8, QFont::Bold) {
  cellFont_.setStyleHint(QFont::TypeWriter);
  headerFont_.setStyleHint(QFont::SansSerif);
  // Where Arial Narrow is missing, a condensed face of Debian's fonts draws the same width.
  headerFont_.setFamilies({QStringLiteral("Arial Narrow"), QStringLiteral("DejaVu Sans Condensed"),
                           QStringLiteral("Liberation Sans Narrow"),
                           QStringLiteral("DejaVu Sans")});
}

TableLens::~TableLens() = default;

void TableLens::SetPictureSize(QSize size) {
  offscreenSize_ = size;
  if (surface_) return;
  const QFontMetricsF metrics(cellFont_, &MeasuringDevice());
  maxVisibleRows_ = RoundTo16Bits(size.height() / metrics.height() - 1.0);
  maxVisibleColumns_ = size.width();
  if (table_ != nullptr) {
    Layout();
    Redraw();
  }
}

QSize TableLens::PictureSize() const { return surface_ ? surface_->Size() : offscreenSize_; }

QWidget* TableLens::TLContainer() const { return surface_ ? surface_->Widget() : nullptr; }

void TableLens::SetNumDataTable(const SparseMatrixSingle& dataTable) {
  table_ = &dataTable;
  const std::int32_t rows = dataTable.RowCount();
  const std::int32_t cols = dataTable.ColCount();
  // Names stay unset until given ("R7", "C12" are made when asked): the columns of a word
  // index are its documents, a million of them, and only a few ever get a name.
  rowNames_.assign(static_cast<std::size_t>(rows) + 1, QString());
  rowNamed_.assign(static_cast<std::size_t>(rows) + 1, false);
  columnCount_ = cols;
  columnNames_.clear();
  topRow_ = 1;
  leftColumn_ = 1;
  visibleRows_ = rows < kFirstVisibleRowsCap ? rows : kFirstVisibleRowsCap;
  visibleColumns_ = cols <= kFirstVisibleColumnsCap - 1 ? cols : kFirstVisibleColumnsCap;
  rowMarks_.assign(static_cast<std::size_t>(rows) + 1, false);
  markedRowCount_ = 0;
  cursorRow_ = 1;
  cursorColumn_ = 1;
  hoverRow_ = 0;
  hoverColumn_ = 0;
  horizontalUnit_ = cols < kScrollUnitLimit + 1 ? 1 : 10;
  verticalUnit_ = rows < kScrollUnitLimit + 1 ? 1 : 10;
  if (surface_) {
    surface_->ConfigureScrollBar(Qt::Horizontal, cols / horizontalUnit_, 1, visibleColumns_);
    surface_->ConfigureScrollBar(Qt::Vertical, rows / verticalUnit_, 1, visibleRows_);
    surface_->SetScrollBarValue(Qt::Horizontal, 0);
    surface_->SetScrollBarValue(Qt::Vertical, 0);
  }
  Layout();
  Redraw();
}

QString TableLens::RowName(std::int32_t row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= rowNames_.size()) return {};
  const auto at = static_cast<std::size_t>(row);
  if (row >= 1 && !rowNamed_[at]) return u'R' + QString::number(row);
  return rowNames_[at];
}

void TableLens::SetRowName(std::int32_t row, const QString& name) {
  if (row < 0 || static_cast<std::size_t>(row) >= rowNames_.size()) return;
  rowNames_[static_cast<std::size_t>(row)] = name;
  rowNamed_[static_cast<std::size_t>(row)] = true;
  if (row == topRow_ + visibleRows_ - 1) Redraw();
}

QString TableLens::ColumnName(std::int32_t col) const {
  if (col < 0 || col > columnCount_) return {};
  if (const auto named = columnNames_.find(col); named != columnNames_.end()) return named->second;
  return col >= 1 ? u'C' + QString::number(col) : QString();
}

void TableLens::SetColumnName(std::int32_t col, const QString& name) {
  if (col < 0 || col > columnCount_) return;
  columnNames_[col] = name;
  if (col == leftColumn_ + visibleColumns_ - 1) Redraw();
}

float TableLens::CellValue(std::int32_t row, std::int32_t col) const {
  return table_ != nullptr ? table_->Value(row, col) : 0.0f;
}

void TableLens::SetVisibleRows(std::int32_t count) {
  if (count < 1) return;
  visibleRows_ = count;
  const std::int32_t rows = table_ != nullptr ? table_->RowCount() : 0;
  if (topRow_ + count >= rows) topRow_ = std::max(1, rows - count + 1);
  if (surface_) surface_->SetScrollBarValue(Qt::Vertical, (topRow_ - 1) / verticalUnit_);
  Layout();
  Redraw();
}

void TableLens::SetVisibleColumns(std::int32_t count) {
  if (count < 1) return;
  visibleColumns_ = count;
  const std::int32_t cols = table_ != nullptr ? table_->ColCount() : 0;
  if (leftColumn_ + count >= cols) leftColumn_ = std::max(1, cols - count + 1);
  if (surface_) surface_->SetScrollBarValue(Qt::Horizontal, (leftColumn_ - 1) / horizontalUnit_);
  Layout();
  Redraw();
}

void TableLens::ShowColumns(std::int32_t left, std::int32_t count) {
  const std::int32_t cols = table_ != nullptr ? table_->ColCount() : 0;
  if (cols < 1) return;
  visibleColumns_ = std::clamp(count, 1, cols);
  leftColumn_ = std::clamp(left, 1, cols - visibleColumns_ + 1);
  Layout();
  if (surface_) surface_->SetScrollBarValue(Qt::Horizontal, (leftColumn_ - 1) / horizontalUnit_);
  Redraw();
}

void TableLens::SetCellStyle(std::uint8_t style) {
  cellStyle_ = style;
  Layout();
  Redraw();
}

void TableLens::SetNormedCellValues(bool normed) {
  normedCellValues_ = normed;
  Redraw();
}

void TableLens::SetFilterRows(bool filter) {
  filterRows_ = filter;
  Redraw();
}

bool TableLens::RowMarked(std::int32_t row) const {
  if (row < 1 || static_cast<std::size_t>(row) >= rowMarks_.size()) return false;
  return rowMarks_[static_cast<std::size_t>(row)];
}

void TableLens::SetRowMarked(std::int32_t row, bool marked) {
  if (row < 1 || static_cast<std::size_t>(row) >= rowMarks_.size()) return;
  rowMarks_[static_cast<std::size_t>(row)] = marked;
  markedRowCount_ += marked ? 1 : -1;
}

void TableLens::MoveCursor(std::int32_t row, std::int32_t column) {
  if (row > 0) cursorRow_ = row;
  if (column > 0) cursorColumn_ = column;
  Redraw();
}

std::int32_t TableLens::SlotRow(std::int32_t slot) const {
  if (slot < 1 || static_cast<std::size_t>(slot) >= rowMap_.size()) return 0;
  return rowMap_[static_cast<std::size_t>(slot)];
}

QString TableLens::RowHeaderText(std::int32_t row) const {
  const QString name = RowName(row);
  const double room = 1.0 - headerWidth_ - 2.0 * marginX_;
  if (TextWidthUnits(name, headerFont_) <= room) return name;
  // Shortened as far as the header font needs, never to fewer than one character.
  for (qsizetype keep = std::min<qsizetype>(6, name.size() - 1); keep > 1; --keep) {
    const QString shown = name.left(keep) + QStringLiteral("..");
    if (TextWidthUnits(shown, headerFont_) <= room) return shown;
  }
  return name.left(1) + QStringLiteral("..");
}

QStringList TableLens::ColumnLabelForms(const QString& name, bool acrossYears) {
  // "YYYY-MM-DD HH:MM:SS" and its shorter readable forms, longest first: within a year the
  // year goes first, across years the day and the month.
  static const QRegularExpression kDateTime(
      QStringLiteral(R"(^(\d{4})-(\d{2})-(\d{2})[ T](\d{2}):(\d{2})(:\d{2})?$)"));
  const QRegularExpressionMatch match = kDateTime.match(name);
  if (!match.hasMatch()) return {name};
  const QString year = match.captured(1), month = match.captured(2), day = match.captured(3);
  const QString time = match.captured(4) + u':' + match.captured(5);
  if (acrossYears) return {name, year + u'-' + month + u'-' + day, year + u'-' + month, year};
  return {name,
          year + u'-' + month + u'-' + day + u' ' + time,
          month + u'-' + day + u' ' + time,
          year + u'-' + month + u'-' + day,
          month + u'-' + day,
          day};
}

bool TableLens::VisibleColumnsAcrossYears() const {
  if (table_ == nullptr || visibleColumns_ < 1) return false;
  const std::int32_t last = std::min(table_->ColCount(), leftColumn_ + visibleColumns_ - 1);
  return ColumnName(leftColumn_).left(4) != ColumnName(last).left(4);
}

QString TableLens::ColumnLabel(std::int32_t column, double roomColumns) const {
  const QStringList forms = ColumnLabelForms(ColumnName(column), VisibleColumnsAcrossYears());
  for (const QString& form : forms) {
    if (TextWidthUnits(form, headerFont_) <= roomColumns) return form;
  }
  return forms.back();
}

std::int32_t TableLens::ColumnLabelStep() const {
  if (table_ == nullptr || visibleColumns_ < 1) return 1;
  // The shortest form of the first name must fit; steps grow 1, 2, 5, 10, 20, 50...
  const std::int32_t last = std::min(table_->ColCount(), leftColumn_ + visibleColumns_ - 1);
  double needed = 0.0;
  for (const std::int32_t column : {leftColumn_, last}) {
    const QString shortest =
        ColumnLabelForms(ColumnName(column), VisibleColumnsAcrossYears()).back();
    needed = std::max(needed, TextWidthUnits(shortest, headerFont_) + LabelGapColumns());
  }
  for (std::int32_t step = 1;; step *= 10) {
    for (const std::int32_t candidate : {step, 2 * step, 5 * step}) {
      if (candidate >= needed || candidate >= visibleColumns_) return candidate;
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Geometry

double TableLens::LabelGapColumns() const {
  // A fifth of a column, and never less than a few pixels: with columns narrower than a pixel
  // a fifth of one would let the labels touch.
  constexpr double kSmallestGapPixels = 8.0;
  return std::max(0.2, kSmallestGapPixels / PixelsPerColumn());
}

double TableLens::PixelsPerColumn() const {
  const double span = visibleColumns_ + 1.0 - headerWidth_;
  return std::max(1, PictureSize().width()) / span;
}

double TableLens::PixelsPerRow() const {
  return std::max(1, PictureSize().height()) / (visibleRows_ + 1.0);
}

QPointF TableLens::ToPixels(double x, double y) const {
  return {(x - headerWidth_) * PixelsPerColumn(), y * PixelsPerRow()};
}

double TableLens::UnitsX(double px) const { return headerWidth_ + px / PixelsPerColumn(); }

double TableLens::UnitsY(double py) const { return py / PixelsPerRow(); }

QRectF TableLens::CellRect(std::int32_t slot, std::int32_t visibleColumn) const {
  const double left = visibleColumn == 0 ? headerWidth_ : visibleColumn;
  return QRectF(ToPixels(left, slot), ToPixels(visibleColumn + 1.0, slot + 1.0));
}

double TableLens::TextWidthUnits(const QString& text, const QFont& font) const {
  const QFontMetricsF metrics(font, &MeasuringDevice());
  return metrics.horizontalAdvance(text) / PixelsPerColumn();
}

// ---------------------------------------------------------------------------------------------
// Layout and drawing

void TableLens::Layout() {
  // The row header is measured on the plain grid (x from 0), then widened to the left so that
  // seven characters fit.
  headerWidth_ = 0.0f;
  if (surface_) {
    const std::int32_t cols = table_ != nullptr ? table_->ColCount() : 0;
    const std::int32_t rows = table_ != nullptr ? table_->RowCount() : 0;
    surface_->ConfigureScrollBar(Qt::Horizontal, cols / horizontalUnit_, 1, visibleColumns_);
    surface_->ConfigureScrollBar(Qt::Vertical, rows / verticalUnit_, 1, visibleRows_);
  }
  // The row header holds nine letters of the font that draws it: five capitals and most words
  // show whole.
  const double spare = 1.0 - TextWidthUnits(QStringLiteral("abcdefghi"), headerFont_);
  headerWidth_ = spare >= 0.0 ? 0.0f : static_cast<float>(spare);

  decimals_ = 5;
  for (int k = 2; k <= 6; ++k) {
    if (TextWidthUnits(FormatValue(1.234567f, DecimalsPattern(k)), cellFont_) > 1.0) {
      decimals_ = static_cast<std::int16_t>(k - 2);
      break;
    }
  }

  if (keepCellStyle_) return;
  if (decimals_ < 1 && cellStyle_ == kText) {
    cellStyle_ = kTile;
    emit CellStyleChanged(cellStyle_);
  } else if (decimals_ >= 3 && cellStyle_ != kText) {
    cellStyle_ = kText;
    emit CellStyleChanged(cellStyle_);
  }
}

void TableLens::Redraw() {
  if (table_ == nullptr) {
    notifier_->ShowMessage("Cannot render view. A data table not yet been assigned", "Render error",
                           MessageIcon::kExclamation);
    return;
  }

  // Row map: which data row each slot shows.
  rowMap_.assign(static_cast<std::size_t>(std::max(0, visibleRows_)) + 1, 0);
  const std::int32_t rows = table_->RowCount();
  if (filterRows_) {
    std::int32_t next = 1;
    for (std::int32_t s = 1; s <= visibleRows_; ++s) {
      while (next <= rows && !RowMarked(next)) ++next;
      if (next > rows) break;
      rowMap_[static_cast<std::size_t>(s)] = next++;
    }
  } else {
    for (std::int32_t s = 1; s <= visibleRows_; ++s) {
      const std::int32_t row = topRow_ + s - 1;
      if (row >= 1 && row <= rows) rowMap_[static_cast<std::size_t>(s)] = row;
    }
  }

  const QSize size = PictureSize();
  if (picture_.size() != size) {
    picture_ = NewPicture(size);
  } else if (!picture_.isNull()) {
    picture_.fill(kWhite);
  }
  if (!picture_.isNull()) {
    QPainter painter(&picture_);
    const QFontMetricsF headerMetrics(headerFont_, &picture_);
    const double ascentHeader = headerMetrics.ascent();

    // Column header: one label every `step` columns, each the longest form of its name that
    // fits the room of `step` columns (a date-time loses its seconds, its time, its year).
    painter.setFont(headerFont_);
    const std::int32_t step = ColumnLabelStep();
    QString previous;
    for (std::int32_t c = 1; c <= visibleColumns_; c += step) {
      painter.fillRect(QRectF(ToPixels(c + marginX_, marginY_),
                              ToPixels(c + step - step * marginX_, 1.0 - marginY_)),
                       headerBackColour_);
      painter.setPen(headerForeColour_);
      const QPointF at = ToPixels(c + marginX_ + 0.1, 0.0);
      // A shortened date that repeats its neighbour ("2008 2008") says nothing new.
      const QString label = ColumnLabel(leftColumn_ + c - 1, step - LabelGapColumns());
      if (label != previous) painter.drawText(QPointF(at.x(), at.y() + ascentHeader), label);
      previous = label;
    }

    // Row header.
    for (std::int32_t s = 1; s <= visibleRows_; ++s) {
      const std::int32_t row = rowMap_[static_cast<std::size_t>(s)];
      if (row == 0) continue;
      const QColor back = RowMarked(row) ? markedHeaderColour_ : headerBackColour_;
      painter.fillRect(QRectF(ToPixels(headerWidth_ + marginX_, s + marginY_),
                              ToPixels(1.0 - marginX_, s + 1.0 - marginY_)),
                       back);
      painter.setPen(headerForeColour_);
      const QPointF at = ToPixels(headerWidth_ + marginX_, s + marginY_);
      painter.drawText(QPointF(at.x(), at.y() + ascentHeader), RowHeaderText(row));
    }

    DrawCells(painter);
  }
  ShowCursor(cursorRow_ - topRow_ + 1);
}

void TableLens::DrawCells(QPainter& painter) {
  std::vector<float> magnitudes(static_cast<std::size_t>(std::max(0, visibleColumns_)) + 1, 0.0f);
  for (std::int32_t c = 1; c <= visibleColumns_; ++c) {
    magnitudes[static_cast<std::size_t>(c)] = table_->Magnitude(leftColumn_ + c - 1);
  }
  painter.setFont(cellFont_);
  const QFontMetricsF metrics(cellFont_, &picture_);
  const double ascent = metrics.ascent();
  const std::string pattern = DecimalsPattern(decimals_);

  for (std::int32_t s = 1; s <= visibleRows_; ++s) {
    const std::int32_t row = rowMap_[static_cast<std::size_t>(s)];
    if (row == 0) continue;
    QPointF pen = ToPixels(1.0, s + 1.0);
    for (std::int32_t c = 1; c <= visibleColumns_; ++c) {
      const std::int32_t col = leftColumn_ + c - 1;
      const float magnitude = magnitudes[static_cast<std::size_t>(c)];
      float value = table_->Value(row, col);
      if (cellStyle_ == kText) {
        if (normedCellValues_ && magnitude > 0.0f) value /= magnitude;
        painter.setPen(value == 0.0f ? kZeroTextColour : cellTextColour_);
        const QPointF at = ToPixels(c + marginX_ + 0.1, s + marginY_);
        painter.drawText(QPointF(at.x(), at.y() + ascent), FormatValue(value, pattern));
        continue;
      }
      if (magnitude > 0.0f) value /= magnitude;
      const int grey = GreyLevel(value);
      switch (cellStyle_) {
        case kTile:
          painter.fillRect(QRectF(ToPixels(c, s), ToPixels(c + 1.0, s + 1.0)),
                           QColor(grey, grey, grey));
          break;
        case kLine: {
          const QPointF to = ToPixels(c + 0.5, s + 1.0 - value);
          painter.setPen(QPen(QColor(grey, grey, grey), 1));
          painter.drawLine(pen, to);
          pen = to;
          break;
        }
        case kHorizontalBar:
          painter.fillRect(QRectF(ToPixels(c, s), ToPixels(c + value, s + 1.0)).normalized(),
                           kBlack);
          break;
        case kVerticalBar:
          painter.fillRect(
              QRectF(ToPixels(c, s + 1.0 - value), ToPixels(c + 1.0, s + 1.0)).normalized(),
              kBlack);
          break;
        default:
          break;
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Cursor overlay

void TableLens::ShowCursor(std::int32_t slot) {
  cursorSlot_ = slot;
  if (surface_) surface_->Refresh();
}

void TableLens::PaintCursor(QPainter& painter) const {
  const std::int32_t column = cursorColumn_ - leftColumn_ + 1;
  painter.setPen(QPen(kCursorColour, 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(CellRect(cursorSlot_, column));
}

void TableLens::Paint(QPainter& painter) const {
  if (picture_.isNull()) return;
  painter.drawImage(0, 0, picture_);
  if (table_ != nullptr) PaintCursor(painter);
}

QImage TableLens::Snapshot() const {
  QImage image = picture_.copy();
  if (!image.isNull() && table_ != nullptr) {
    QPainter painter(&image);
    PaintCursor(painter);
  }
  return image;
}

void TableLens::SurfaceResized() {
  // The header width and the decimals are measured in column units: a new width changes them
  // (and may switch the style as the layout rule says).
  if (table_ == nullptr) return;
  Layout();
  Redraw();
}

// ---------------------------------------------------------------------------------------------
// Input

void TableLens::MousePress(Qt::MouseButton button, QPointF position) {
  if (button != Qt::LeftButton || table_ == nullptr) return;
  const double x = UnitsX(position.x());
  const double y = UnitsY(position.y());
  if (y < 1.0) return;
  const auto slot = static_cast<std::int32_t>(std::floor(y));
  const std::int32_t row = SlotRow(slot);
  // A press on an empty slot (below the last filtered row) has no row: nothing happens.
  if (row == 0) return;
  if (x >= 1.0) {
    const std::int32_t col = static_cast<std::int32_t>(std::floor(x)) + leftColumn_ - 1;
    if (col < 1 || col > table_->ColCount()) return;
    cursorColumn_ = col;
    cursorRow_ = row;
    ShowCursor(slot);
    emit CellMouseClick(cursorRow_, cursorColumn_, button);
    return;
  }
  SetRowMarked(row, !RowMarked(row));
  Redraw();
}

void TableLens::MouseMove(QPointF position) {
  if (table_ == nullptr) return;
  const double x = UnitsX(position.x());
  const double y = UnitsY(position.y());
  const std::int32_t col = static_cast<std::int32_t>(std::floor(x)) + leftColumn_ - 1;
  const std::int32_t row = SlotRow(static_cast<std::int32_t>(std::floor(y)));
  // Over a header, the tooltip holds the whole name that the header may shorten.
  if (x < 1.0 || y < 1.0) {
    if (surface_ == nullptr) return;
    if (y < 1.0 && x >= 1.0 && col >= 1 && col <= table_->ColCount()) {
      surface_->SetToolTip(ColumnName(col));
    } else if (x < 1.0 && y >= 1.0 && row != 0) {
      surface_->SetToolTip(RowName(row));
    }
    return;
  }
  if (row == 0 || col < 1 || col > table_->ColCount()) return;
  hoverColumn_ = col;
  hoverRow_ = row;
  if (surface_) {
    surface_->SetToolTip(QStringLiteral("%1(R%2) , %3(C%4): %5")
                             .arg(RowName(row))
                             .arg(row)
                             .arg(ColumnName(col))
                             .arg(col)
                             .arg(FormatValue(table_->Value(row, col), "0.000")));
  }
  emit CellMouseOver(hoverColumn_, hoverRow_);
}

bool TableLens::KeyPress(int key) {
  if (key != Qt::Key_Left && key != Qt::Key_Up && key != Qt::Key_Right && key != Qt::Key_Down) {
    return false;
  }
  if (table_ == nullptr) return true;
  switch (key) {
    case Qt::Key_Left:
      --cursorColumn_;
      break;
    case Qt::Key_Right:
      ++cursorColumn_;
      break;
    case Qt::Key_Up:
      --cursorRow_;
      break;
    default:
      ++cursorRow_;
      break;
  }
  cursorColumn_ = std::clamp(cursorColumn_, 1, std::max(1, table_->ColCount()));
  cursorRow_ = std::clamp(cursorRow_, 1, std::max(1, table_->RowCount()));

  bool scrolled = false;
  if (cursorColumn_ < leftColumn_) {
    leftColumn_ = cursorColumn_;
    scrolled = true;
  } else if (cursorColumn_ == leftColumn_ + visibleColumns_) {
    ++leftColumn_;
    scrolled = true;
  }
  if (cursorRow_ < topRow_) {
    topRow_ = cursorRow_;
    scrolled = true;
  } else if (cursorRow_ == topRow_ + visibleRows_) {
    ++topRow_;
    scrolled = true;
  }
  if (scrolled) {
    if (surface_) {
      surface_->SetScrollBarValue(Qt::Horizontal, (leftColumn_ - 1) / horizontalUnit_);
      surface_->SetScrollBarValue(Qt::Vertical, (topRow_ - 1) / verticalUnit_);
    }
    Redraw();
  }
  ShowCursor(cursorRow_ - topRow_ + 1);
  return true;
}

void TableLens::HorizontalScroll(int value) {
  if (table_ == nullptr) return;
  leftColumn_ = horizontalUnit_ * value + 1;
  if (leftColumn_ + visibleColumns_ - 1 > table_->ColCount()) {
    leftColumn_ = std::max(1, table_->ColCount() - visibleColumns_ + 1);
  }
  Redraw();
}

void TableLens::VerticalScroll(int value) {
  if (table_ == nullptr) return;
  topRow_ = verticalUnit_ * value + 1;
  if (topRow_ + visibleRows_ - 1 > table_->RowCount()) {
    topRow_ = std::max(1, table_->RowCount() - visibleRows_ + 1);
  }
  Redraw();
}

}  // namespace sylvora
