#include "views/time_line_chart.h"

#include <QDate>
#include <QDateTime>
#include <QFontMetricsF>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <QRectF>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "common/date_time.h"
#include "sparse/number_format.h"
#include "views/picture_device.h"
#include "views/table_lens.h"

namespace sylvora {
namespace {

const QColor kVolumeColour(150, 150, 150);
const QColor kLinkColour(100, 100, 100);
const QColor kNoveltyColour(255, 0, 0);
const QColor kNoveltyPointColour(0, 0, 0);
const QColor kPositiveColour(0, 255, 0);
const QColor kNegativeColour(0, 0, 255);
const QColor kHomogeneityColour(200, 200, 0);
const QColor kEventColour(0, 0, 128);
const QColor kHoverColour(50, 50, 50);
const QColor kSelectedColour(160, 0, 160);
const QColor kClickedColour(0, 0, 0);
const QColor kWhite(255, 255, 255);

// Novelty points are circles of a tenth of a column; below half a pixel they would not show.
constexpr double kNoveltyPointRadius = 0.1;
constexpr double kSmallestVisibleRadius = 0.5;
// Sentiment strengths run to 5: the lines plot strength / 5.
constexpr double kSentimentScale = 5.0;
// Marks cover 0.9 of the column.
constexpr double kMarkWidth = 0.9;

QString Formatted(float value, std::string_view pattern) {
  return QString::fromStdString(FormatNumber(value, pattern));
}

// Seconds from 1970-01-01 (negative before) of an interval's start date-time; kNoStart when
// the text is no date.
constexpr std::int64_t kNoStart = std::numeric_limits<std::int64_t>::min();

std::int64_t StartSeconds(const QString& text) {
  const auto start = DateTime::Parse(text.toStdString());
  return start ? start->SecondsSinceEpoch() : kNoStart;
}

// The steps between dates, finest first, and how each is labelled.
enum class DateUnit { kHour, kDay, kMonth, kYear };
struct DateStep {
  DateUnit unit;
  int count;
};
constexpr DateStep kDateSteps[] = {
    {DateUnit::kHour, 1},  {DateUnit::kHour, 2},  {DateUnit::kHour, 3},  {DateUnit::kHour, 6},
    {DateUnit::kHour, 12}, {DateUnit::kDay, 1},   {DateUnit::kDay, 2},   {DateUnit::kDay, 7},
    {DateUnit::kDay, 14},  {DateUnit::kMonth, 1}, {DateUnit::kMonth, 2}, {DateUnit::kMonth, 3},
    {DateUnit::kMonth, 6}, {DateUnit::kYear, 1},  {DateUnit::kYear, 2},  {DateUnit::kYear, 5},
    {DateUnit::kYear, 10}, {DateUnit::kYear, 20}, {DateUnit::kYear, 50}, {DateUnit::kYear, 100}};

double ApproximateSeconds(const DateStep& step) {
  switch (step.unit) {
    case DateUnit::kHour:
      return 3600.0 * step.count;
    case DateUnit::kDay:
      return 86400.0 * step.count;
    case DateUnit::kMonth:
      return 2629746.0 * step.count;
    default:
      return 31556952.0 * step.count;
  }
}

QDateTime UtcFromSeconds(std::int64_t seconds) {
  return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QString DateLabel(const QDateTime& at, DateUnit unit) {
  switch (unit) {
    case DateUnit::kHour:
      return at.toString(QStringLiteral("MM-dd HH:mm"));
    case DateUnit::kDay:
      return at.toString(QStringLiteral("yyyy-MM-dd"));
    case DateUnit::kMonth:
      return at.toString(QStringLiteral("yyyy-MM"));
    default:
      return at.toString(QStringLiteral("yyyy"));
  }
}

// The first date of the step at or after `from`.
QDateTime FirstDate(std::int64_t from, const DateStep& step) {
  const QDateTime at = UtcFromSeconds(from);
  const QDate date = at.date();
  QDateTime first;
  switch (step.unit) {
    case DateUnit::kHour: {
      const int hour = (at.time().hour() / step.count) * step.count;
      first = QDateTime(date, QTime(hour, 0), Qt::UTC);
      break;
    }
    case DateUnit::kDay: {
      const qint64 day = (date.toJulianDay() / step.count) * step.count;
      first = QDateTime(QDate::fromJulianDay(day), QTime(0, 0), Qt::UTC);
      break;
    }
    case DateUnit::kMonth: {
      const int month = ((date.month() - 1) / step.count) * step.count + 1;
      first = QDateTime(QDate(date.year(), month, 1), QTime(0, 0), Qt::UTC);
      break;
    }
    default: {
      const int year = (date.year() / step.count) * step.count;
      first = QDateTime(QDate(year, 1, 1), QTime(0, 0), Qt::UTC);
      break;
    }
  }
  return first;
}

QDateTime NextDate(const QDateTime& at, const DateStep& step) {
  switch (step.unit) {
    case DateUnit::kHour:
      return at.addSecs(3600LL * step.count);
    case DateUnit::kDay:
      return at.addDays(step.count);
    case DateUnit::kMonth:
      return at.addMonths(step.count);
    default:
      return at.addYears(step.count);
  }
}

}  // namespace

QString ChartDetailsText(const TimeLineChartInterval& figures, std::int32_t interval) {
  return QString::number(figures.documents) + QStringLiteral(" docs ") + QStringLiteral("@ INT #") +
         QString::number(interval) + QStringLiteral(" (") + figures.start + QStringLiteral("), ") +
         QStringLiteral("NOV=") + Formatted(figures.novelty * 100.0f, "###") + QStringLiteral("%") +
         QStringLiteral(", HOM=") + Formatted(figures.detailsHomogeneity * 100.0f, "###") +
         QStringLiteral("%") + QStringLiteral(", LR=") + Formatted(figures.linkRatio, "0.00") +
         QStringLiteral(", SENT+ ") + Formatted(figures.positiveMean, "0.00") +
         QStringLiteral("(") + QString::number(figures.positiveMode) + QStringLiteral(") ") +
         QStringLiteral(", SENT- ") + Formatted(figures.negativeMean, "0.00") +
         QStringLiteral("(") + QString::number(figures.negativeMode) + QStringLiteral(")");
}

TimeLineChart::TimeLineChart(QObject* parent) : QObject(parent) {}

TimeLineChart::~TimeLineChart() = default;

void TimeLineChart::SetPictureSize(QSize size) {
  offscreenSize_ = size;
  if (!surface_) Redraw();
}

QSize TimeLineChart::PictureSize() const { return surface_ ? surface_->Size() : offscreenSize_; }

QWidget* TimeLineChart::ChartSurface() const { return surface_ ? surface_->Widget() : nullptr; }

void TimeLineChart::SetData(TimeLineChartData data) {
  data_ = std::move(data);
  startSeconds_.clear();
  startSeconds_.reserve(data_.intervals.size());
  for (const TimeLineChartInterval& figures : data_.intervals) {
    startSeconds_.push_back(StartSeconds(figures.start));
  }
  hoverInterval_ = 0;
  selectedInterval_ = 0;
  overlay_ = OverlayMode::kNone;
  if (surface_) surface_->SetToolTip(QString());
  Redraw();
}

void TimeLineChart::SetNovelty(const std::vector<float>& novelty, std::uint8_t window) {
  const std::size_t count = std::min(novelty.size(), data_.intervals.size());
  for (std::size_t k = 0; k < count; ++k) data_.intervals[k].novelty = novelty[k];
  data_.noveltyWindow = window;
  Redraw();
}

void TimeLineChart::SetSentimentAverage(std::int16_t average) {
  if (average < kMean || average > kMedian) return;
  sentimentAverage_ = average;
  Redraw();
}

// ---------------------------------------------------------------------------------------------
// Geometry

void TimeLineChart::SetColumnGeometry(const ColumnGeometry& geometry) {
  customColumns_ = geometry.width > 0.0;
  columns_ = geometry;
  Redraw();
}

void TimeLineChart::ResetColumnGeometry() {
  customColumns_ = false;
  Redraw();
}

TimeLineChart::ColumnGeometry TimeLineChart::Columns() const {
  if (customColumns_) return columns_;
  // The term time line's layout without a row header: IntervalCount + 1 columns.
  const double width = std::max(1, PictureSize().width()) / (IntervalCount() + 1.0);
  return {width, width, 1};
}

TimeLineChart::ColumnGeometry TimeLineChart::ColumnGeometryOfLens(const TableLens& lens,
                                                                  double shift) {
  const QRectF first = lens.CellRect(0, 1);
  return {first.left() - shift, first.width(), lens.LeftColumn()};
}

QPointF TimeLineChart::ToPixels(double x, double y) const {
  const ColumnGeometry columns = Columns();
  return {columns.left + (x - columns.firstInterval) * columns.width,
          (1.0 - y) * PictureSize().height()};
}

double TimeLineChart::UnitsX(double px) const {
  const ColumnGeometry columns = Columns();
  return columns.firstInterval + (px - columns.left) / columns.width;
}

double TimeLineChart::UnitsY(double py) const {
  return 1.0 - py / std::max(1, PictureSize().height());
}

std::int32_t TimeLineChart::IntervalAt(QPointF pixel) const {
  if (UnitsY(pixel.y()) <= 0.0) return 0;
  const double x = std::floor(UnitsX(pixel.x()));
  if (!(x >= 1.0 && x <= IntervalCount())) return 0;
  return static_cast<std::int32_t>(x);
}

// ---------------------------------------------------------------------------------------------
// Drawing

float TimeLineChart::SentimentValue(const TimeLineChartInterval& figures, bool positive) const {
  switch (sentimentAverage_) {
    case kMode:
      return static_cast<float>(positive ? figures.positiveMode : figures.negativeMode);
    case kMedian:
      return static_cast<float>(positive ? figures.positiveMedian : figures.negativeMedian);
    default:
      return positive ? figures.positiveMean : figures.negativeMean;
  }
}

void TimeLineChart::Redraw() {
  const QSize size = PictureSize();
  if (picture_.size() != size) {
    picture_ = NewPicture(size);
  } else if (!picture_.isNull()) {
    picture_.fill(kWhite);
  }
  if (picture_.isNull()) return;
  if (surface_) surface_->SetHostCursor(Qt::WaitCursor);
  {
    QPainter painter(&picture_);
    DrawLayers(painter);
  }
  if (surface_) {
    surface_->UnsetHostCursor();
    surface_->Refresh();
  }
}

void TimeLineChart::DrawLayers(QPainter& painter) const {
  const std::int32_t count = IntervalCount();
  if (count == 0) return;
  // A layout that starts further on (a zoomed or scrolled term time line) leaves the earlier
  // intervals out, as the term time line does.
  if (Columns().firstInterval > 1) {
    const QSize size = PictureSize();
    const double left = std::max(0.0, ToPixels(Columns().firstInterval, 0.0).x());
    painter.setClipRect(QRectF(left, 0.0, size.width() - left, size.height()));
  }
  // More intervals than pixel columns: drawn one after the other they would overdraw each
  // other into a solid wall, so each pixel column shows the range of the intervals under it.
  if (Columns().width < 1.0) {
    DrawRanges(painter);
    return;
  }
  const auto figures = [this](std::int32_t i) -> const TimeLineChartInterval& {
    return data_.intervals[static_cast<std::size_t>(i - 1)];
  };

  // Volume and, over it, the documents with links.
  const double scale = data_.maxIntervalDocCount > 0 ? 1.0 / data_.maxIntervalDocCount : 0.0;
  for (std::int32_t i = 1; i <= count; ++i) {
    const double volume = figures(i).documents * scale;
    if (volume <= 0.0) continue;
    painter.fillRect(QRectF(ToPixels(i, volume), ToPixels(i + 1.0, 0.0)), kVolumeColour);
    const double links = static_cast<double>(figures(i).linkRatio) * volume;
    if (links > 0.0) {
      painter.fillRect(QRectF(ToPixels(i, links), ToPixels(i + 1.0, 0.0)), kLinkColour);
    }
  }

  painter.setBrush(Qt::NoBrush);
  QPolygonF line;
  line.reserve(count + 1);

  // Novelty, from the first interval with a full window.
  const std::int32_t firstNovel = data_.noveltyWindow + 1;
  if (firstNovel <= count) {
    line.append(ToPixels(firstNovel, figures(firstNovel).novelty));
    for (std::int32_t i = firstNovel; i <= count; ++i) {
      line.append(ToPixels(i + 0.5, figures(i).novelty));
    }
    painter.setPen(QPen(kNoveltyColour, 1));
    painter.drawPolyline(line);
    const double radius = kNoveltyPointRadius * Columns().width;
    if (radius >= kSmallestVisibleRadius) {
      painter.setPen(QPen(kNoveltyPointColour, 1));
      for (qsizetype k = 1; k < line.size(); ++k) painter.drawEllipse(line[k], radius, radius);
    }
  }

  // Sentiment of each side, from (-1, 0).
  for (const bool positive : {true, false}) {
    line.clear();
    line.append(ToPixels(-1.0, 0.0));
    for (std::int32_t i = 1; i <= count; ++i) {
      line.append(ToPixels(i + 0.5, SentimentValue(figures(i), positive) / kSentimentScale));
    }
    painter.setPen(QPen(positive ? kPositiveColour : kNegativeColour, 1));
    painter.drawPolyline(line);
  }

  // Homogeneity, from (1, hom(1)).
  if (count >= 2) {
    line.clear();
    line.append(ToPixels(1.0, figures(1).homogeneity));
    for (std::int32_t i = 2; i <= count; ++i) {
      line.append(ToPixels(i + 0.5, figures(i).homogeneity));
    }
    painter.setPen(QPen(kHomogeneityColour, 1));
    painter.drawPolyline(line);
  }

  // Event marks along the top.
  for (std::int32_t i = 1; i <= count; ++i) {
    if (figures(i).events.isEmpty()) continue;
    painter.fillRect(QRectF(ToPixels(i + 0.3, 1.0), ToPixels(i + 0.6, 0.9)), kEventColour);
  }
}

namespace {

// The smallest and largest of the values seen.
struct Range {
  double low = 0.0;
  double high = -1.0;
  bool Empty() const { return high < low; }
  void Add(double value) {
    if (Empty()) {
      low = high = value;
    } else {
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }
};

}  // namespace

void TimeLineChart::DrawRanges(QPainter& painter) const {
  const std::int32_t count = IntervalCount();
  const QSize size = PictureSize();
  const int height = size.height();
  const auto row = [height](double value) {
    return std::clamp(static_cast<int>(std::floor((1.0 - value) * height)), 0, height - 1);
  };
  // A stroke one pixel wide from `low` to `high` (chart units) in pixel column `x`.
  const auto stroke = [&](int x, const Range& range, const QColor& colour) {
    if (range.Empty()) return;
    const int top = row(range.high);
    painter.fillRect(QRect(x, top, 1, row(range.low) - top + 1), colour);
  };
  const auto figures = [this](std::int32_t i) -> const TimeLineChartInterval& {
    return data_.intervals[static_cast<std::size_t>(i - 1)];
  };
  const double scale = data_.maxIntervalDocCount > 0 ? 1.0 / data_.maxIntervalDocCount : 0.0;
  const std::int32_t firstNovel = data_.noveltyWindow + 1;
  for (int x = 0; x < size.width(); ++x) {
    // The intervals whose columns overlap pixel column x.
    const auto first = static_cast<std::int32_t>(std::max(1.0, std::floor(UnitsX(x))));
    const auto last = static_cast<std::int32_t>(
        std::min(static_cast<double>(count), std::ceil(UnitsX(x + 1.0)) - 1.0));
    if (first > last) continue;
    double volume = 0.0;
    double links = 0.0;
    Range novelty, positive, negative, homogeneity;
    bool events = false;
    for (std::int32_t i = first; i <= last; ++i) {
      const TimeLineChartInterval& f = figures(i);
      const double v = f.documents * scale;
      volume = std::max(volume, v);
      links = std::max(links, static_cast<double>(f.linkRatio) * v);
      if (i >= firstNovel) novelty.Add(f.novelty);
      positive.Add(SentimentValue(f, true) / kSentimentScale);
      negative.Add(SentimentValue(f, false) / kSentimentScale);
      if (count >= 2) homogeneity.Add(f.homogeneity);
      events = events || !f.events.isEmpty();
    }
    // The bars of all the intervals under the column reach the tallest of them.
    if (volume > 0.0) stroke(x, {0.0, volume}, kVolumeColour);
    if (links > 0.0) stroke(x, {0.0, links}, kLinkColour);
    stroke(x, novelty, kNoveltyColour);
    stroke(x, positive, kPositiveColour);
    stroke(x, negative, kNegativeColour);
    stroke(x, homogeneity, kHomogeneityColour);
    if (events) painter.fillRect(QRect(x, 0, 1, row(0.9)), kEventColour);
  }
}

// ---------------------------------------------------------------------------------------------
// Dates

std::vector<TimeLineChart::DateTick> TimeLineChart::DateTicks(
    double width, const std::function<double(const QString&)>& textWidth) const {
  const std::int32_t count = IntervalCount();
  std::vector<DateTick> ticks;
  if (count < 2 || width <= 0.0) return ticks;
  for (const std::int64_t start : startSeconds_) {
    if (start == kNoStart) return ticks;
  }
  // Interval i runs from its start to the next one's; the last is as long as the one before.
  const auto startOf = [&](std::int32_t i) -> double {
    if (i <= count) return static_cast<double>(startSeconds_[static_cast<std::size_t>(i - 1)]);
    const double last = static_cast<double>(startSeconds_.back());
    return last + (i - count) * (last - startSeconds_[startSeconds_.size() - 2]);
  };
  const auto secondsAt = [&](double units) {
    const double clamped = std::clamp(units, 1.0, count + 1.0);
    const auto i = std::min(count, static_cast<std::int32_t>(std::floor(clamped)));
    return startOf(i) + (clamped - i) * (startOf(i + 1) - startOf(i));
  };
  const auto unitsAt = [&](double seconds) {
    const auto after = std::upper_bound(startSeconds_.begin(), startSeconds_.end(),
                                        static_cast<std::int64_t>(std::floor(seconds)));
    const auto i = static_cast<std::int32_t>(
        std::max<std::ptrdiff_t>(1, std::distance(startSeconds_.begin(), after)));
    const double length = startOf(i + 1) - startOf(i);
    return i + (length > 0.0 ? (seconds - startOf(i)) / length : 0.0);
  };
  // The pixels that show intervals: from the first one shown (or the left edge) to the right.
  const double left = std::max(0.0, ToPixels(Columns().firstInterval, 0.0).x());
  const double right = std::min(width, ToPixels(count + 1.0, 0.0).x());
  if (right <= left) return ticks;
  const double from = secondsAt(UnitsX(left));
  const double to = secondsAt(UnitsX(right));
  if (!(to > from)) return ticks;
  const double pixelsPerSecond = (right - left) / (to - from);

  constexpr double kLabelGap = 16.0;
  const DateStep* chosen = &kDateSteps[std::size(kDateSteps) - 1];
  for (const DateStep& step : kDateSteps) {
    const QString widest = DateLabel(UtcFromSeconds(static_cast<std::int64_t>(from)), step.unit);
    // Months and years differ in length: the label of the start is as wide as any.
    if (ApproximateSeconds(step) * pixelsPerSecond >= textWidth(widest) + kLabelGap) {
      chosen = &step;
      break;
    }
  }
  for (QDateTime at = FirstDate(static_cast<std::int64_t>(std::floor(from)), *chosen);
       at.isValid() && at.toSecsSinceEpoch() <= to; at = NextDate(at, *chosen)) {
    const double seconds = static_cast<double>(at.toSecsSinceEpoch());
    if (seconds < from) continue;
    ticks.push_back({ToPixels(unitsAt(seconds), 0.0).x(), DateLabel(at, chosen->unit)});
  }
  return ticks;
}

void TimeLineChart::PaintDateAxis(QPainter& painter, QSize size) const {
  painter.fillRect(QRect(QPoint(0, 0), size), kWhite);
  const QFontMetricsF metrics(painter.font());
  const auto ticks = DateTicks(
      size.width(), [&metrics](const QString& text) { return metrics.horizontalAdvance(text); });
  painter.setPen(QPen(QColor(0, 0, 0), 1));
  constexpr int kTickLength = 4;
  for (const DateTick& tick : ticks) {
    const int x = static_cast<int>(std::floor(tick.x));
    painter.drawLine(x, 0, x, kTickLength);
    // The label starts at its date; one that would run off the right edge is left out rather
    // than cut or laid over its neighbour.
    const double textLeft = x + 2.0;
    if (textLeft + metrics.horizontalAdvance(tick.label) > size.width()) continue;
    painter.drawText(QPointF(textLeft, kTickLength + metrics.ascent()), tick.label);
  }
}

// ---------------------------------------------------------------------------------------------
// Overlay

void TimeLineChart::PaintOverlay(QPainter& painter) const {
  if (overlay_ == OverlayMode::kNone) return;
  const double bottom = std::max(0, PictureSize().height() - 1);
  const auto outline = [&](std::int32_t interval, const QColor& colour) {
    if (!ValidInterval(interval)) return;
    const double left = ToPixels(interval, 0.0).x();
    const double right = ToPixels(interval + kMarkWidth, 0.0).x();
    painter.setPen(QPen(colour, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(QPointF(left, 0.0), QPointF(right, bottom)));
  };
  if (overlay_ == OverlayMode::kClicked) {
    outline(selectedInterval_, kClickedColour);
    return;
  }
  outline(hoverInterval_, kHoverColour);
  outline(selectedInterval_, kSelectedColour);
}

void TimeLineChart::Paint(QPainter& painter) const {
  if (picture_.isNull()) return;
  painter.drawImage(0, 0, picture_);
  PaintOverlay(painter);
}

QImage TimeLineChart::Snapshot() const {
  QImage image = picture_.copy();
  if (!image.isNull()) {
    QPainter painter(&image);
    PaintOverlay(painter);
  }
  return image;
}

QImage TimeLineChart::ClipboardPicture() {
  Redraw();
  QImage copy = picture_.copy();
  Redraw();
  return copy;
}

bool TimeLineChart::SavePng(const QString& path, QString& error) const {
  const QImage image = Snapshot();
  if (image.isNull()) {
    error = QStringLiteral("Nothing to draw");
    return false;
  }
  if (!image.save(path, "PNG")) {
    error = QStringLiteral("Cannot write the picture file \"") + path + QStringLiteral("\"");
    return false;
  }
  return true;
}

void TimeLineChart::Refresh() {
  if (surface_) surface_->Refresh();
}

void TimeLineChart::SurfaceResized() { Redraw(); }

// ---------------------------------------------------------------------------------------------
// Hover, selection, input

QString TimeLineChart::ChartDetails(std::int32_t interval) const {
  if (!ValidInterval(interval)) return {};
  return ChartDetailsText(data_.intervals[static_cast<std::size_t>(interval - 1)], interval);
}

QString TimeLineChart::ToolTipText(std::int32_t interval) const {
  if (!ValidInterval(interval)) return {};
  // The model keeps each event after a "|": one event a line here.
  QString text = data_.intervals[static_cast<std::size_t>(interval - 1)].events;
  if (text.startsWith(u'|')) text.remove(0, 1);
  return text.replace(u'|', u'\n');
}

void TimeLineChart::SetHoverInterval(std::int32_t interval) {
  if (!ValidInterval(interval) || interval == hoverInterval_) return;
  hoverInterval_ = interval;
  overlay_ = OverlayMode::kHover;
  if (surface_) surface_->SetToolTip(ToolTipText(interval));
  Refresh();
  emit HoverChanged(interval, ChartDetails(interval));
}

void TimeLineChart::SelectInterval(std::int32_t interval) {
  if (!ValidInterval(interval)) return;
  hoverInterval_ = interval;
  selectedInterval_ = interval;
  overlay_ = OverlayMode::kClicked;
  Refresh();
}

void TimeLineChart::MouseMove(QPointF position) { SetHoverInterval(IntervalAt(position)); }

void TimeLineChart::MousePress(Qt::MouseButton button, QPointF position) {
  if (button != Qt::LeftButton) return;
  const std::int32_t interval = IntervalAt(position);
  if (interval == 0) return;
  SetHoverInterval(interval);
  SelectInterval(interval);
  emit IntervalClicked(interval);
}

void TimeLineChart::MouseDoubleClick(Qt::MouseButton button, QPointF position) {
  (void)position;
  if (button != Qt::LeftButton) return;
  emit ChartDoubleClicked();
}

}  // namespace sylvora
