// The main time line chart of the time line explorer: made once, fed with the per-interval
// series that each build computes on the job's thread (so painting computes nothing), kept
// aligned with the term time line's columns, with its hover text (ChartDetails), click,
// double-click copy, and its PNG and series CSV saves.
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "app/platform.h"
#include "app/time_line_explorer_page.h"
#include "views/table_lens.h"
#include "views/time_line_chart.h"
#include "views/time_line_chart_series.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

void TimeLineExplorerPage::BuildChart() {
  chartBox_ = new QWidget;
  chartBox_->setObjectName(u"Chart"_s);
  chartBox_->setMinimumHeight(150);
  chartBox_->setContextMenuPolicy(Qt::CustomContextMenu);
  chartHost_->layout()->addWidget(chartBox_);
  chart_ = std::make_unique<TimeLineChart>();
  chart_->setObjectName(u"TimeLineChart"_s);
  chart_->InitializeChart(chartHost_, chartBox_);
  connect(chart_.get(), &TimeLineChart::HoverChanged, this,
          [this](int interval, const QString& details) {
            chartDetails_->setText(details);
            hoveredInterval_ = interval;
            emit intervalHovered(interval);
          });
  connect(chart_.get(), &TimeLineChart::IntervalClicked, this,
          [this](int interval) { SelectInterval(interval); });
  connect(chart_.get(), &TimeLineChart::ChartDoubleClicked, this,
          &TimeLineExplorerPage::Chart_DblClick);
  // After the chart's own filter, so that the page sees the wheel and pan drags first.
  chartBox_->installEventFilter(this);
  // The dates under the chart, as wide as the chart.
  chartAxis_ = new QWidget;
  chartAxis_->setObjectName(u"ChartAxis"_s);
  chartAxis_->setFixedHeight(chartAxis_->fontMetrics().height() + 6);
  chartAxis_->setCursor(Qt::SizeHorCursor);
  chartHost_->layout()->addWidget(chartAxis_);
  chartAxis_->installEventFilter(this);
  connect(chartBox_, &QWidget::customContextMenuRequested, this,
          &TimeLineExplorerPage::ShowChartMenu);
  connect(tifmViewHScroller_, &QScrollBar::valueChanged, this,
          &TimeLineExplorerPage::ScheduleChartAlignment);
}

void TimeLineExplorerPage::ShowChart() {
  if (!modelsBuilt_) {
    series_ = IntervalSeries();
    chart_->SetData({});
    chartDetails_->clear();
    chartAxis_->update();
    return;
  }
  // Models built elsewhere (not by this page's build) have no series here: no chart for them.
  if (static_cast<std::int32_t>(series_.rows.size()) !=
      services_.session.WordModel().IntervalCount()) {
    series_ = IntervalSeries();
  }
  chart_->SetData(TimeLineChartDataFromSeries(series_));
  chart_->SetSentimentAverage(sentimentAverage_);
  AlignChart();
  chartAxis_->update();
}

void TimeLineExplorerPage::ScheduleChartAlignment() {
  // After the lens has handled the scroll or resize itself.
  if (alignmentPending_) return;
  alignmentPending_ = true;
  QTimer::singleShot(0, this, [this] {
    alignmentPending_ = false;
    AlignChart();
  });
}

void TimeLineExplorerPage::AlignChart() {
  if (!tifmView_ || tifmViewContainer_ == nullptr || chart_->IntervalCount() == 0) return;
  // Both surfaces sit in the frame's first grid column; any difference of their left edges is
  // taken into account.
  const int chartLeft = chartBox_->mapTo(tifmFrame_, QPoint(0, 0)).x();
  const int lensLeft = tifmViewContainer_->mapTo(tifmFrame_, QPoint(0, 0)).x();
  chart_->SetColumnGeometry(
      TimeLineChart::ColumnGeometryOfLens(*tifmView_, static_cast<double>(chartLeft - lensLeft)));
  chartAxis_->update();
}

namespace {

// One wheel notch (120 eighths of a degree) forward shows this share of the intervals.
constexpr double kZoomPerNotch = 0.8;
// Zoomed in, at least this many intervals stay in view.
constexpr std::int32_t kFewestVisibleIntervals = 5;

}  // namespace

void TimeLineExplorerPage::ZoomTimeLine(double factor, double anchorX) {
  if (!tifmView_ || chart_->IntervalCount() == 0 || !(factor > 0.0)) return;
  const std::int32_t total = chart_->IntervalCount();
  const std::int32_t left = tifmView_->LeftColumn();
  const std::int32_t count = tifmView_->VisibleColumns();
  const std::int32_t fewest = std::min(total, kFewestVisibleIntervals);
  const auto wanted = static_cast<std::int32_t>(
      std::clamp(std::lround(count * factor), static_cast<long>(fewest), static_cast<long>(total)));
  // Zooming by less than a column still moves by one, so that every notch does something.
  std::int32_t newCount = wanted;
  if (newCount == count && factor < 1.0) newCount = std::max(fewest, count - 1);
  if (newCount == count && factor > 1.0) newCount = std::min(total, count + 1);
  if (newCount == count) return;
  // The point under the pointer keeps its place: it lies as far into the range, in shares of
  // the range, before and after.
  const double anchor = std::clamp(chart_->UnitsX(anchorX), double(left), double(left + count));
  const auto newLeft = static_cast<std::int32_t>(
      std::lround(anchor - (anchor - left) * newCount / static_cast<double>(count)));
  tifmView_->ShowColumns(newLeft, newCount);
  AlignChart();
}

bool TimeLineExplorerPage::TimeLineNavigationEvent(QObject* watched, QEvent* event) {
  const bool onAxis = watched == chartAxis_;
  if (onAxis && event->type() == QEvent::Paint) {
    QPainter painter(chartAxis_);
    chart_->PaintDateAxis(painter, chartAxis_->size());
    return true;
  }
  const bool onChart = watched == chartBox_;
  const bool onLens = watched == tifmViewContainer_ && tifmViewContainer_ != nullptr;
  if ((!onChart && !onLens && !onAxis) || !tifmView_ || chart_->IntervalCount() == 0) {
    return false;
  }
  // Zoomed in, the chart leaves the intervals before the term time line's first column out:
  // the pointer over that strip hovers and selects nothing.
  const auto hidden = [this](const QEvent* mouseEvent) {
    const auto* mouse = static_cast<const QMouseEvent*>(mouseEvent);
    const std::int32_t interval = chart_->IntervalAt(mouse->position());
    return interval != 0 && interval < tifmView_->LeftColumn() &&
           !mouse->modifiers().testAnyFlags(Qt::ShiftModifier | Qt::ControlModifier) &&
           mouse->button() != Qt::MiddleButton;
  };
  switch (event->type()) {
    case QEvent::Wheel: {
      // The axis shares the chart's x.
      if (onLens) return false;
      const auto* wheel = static_cast<QWheelEvent*>(event);
      const int delta = wheel->angleDelta().y();
      if (delta == 0) return false;
      ZoomTimeLine(std::pow(kZoomPerNotch, delta / 120.0), wheel->position().x());
      return true;
    }
    case QEvent::MouseButtonPress: {
      const auto* mouse = static_cast<QMouseEvent*>(event);
      const bool modified =
          mouse->modifiers().testAnyFlags(Qt::ShiftModifier | Qt::ControlModifier);
      bool pan = false;
      if (onAxis) {
        pan = mouse->button() == Qt::LeftButton;
      } else if (onChart) {
        pan =
            mouse->button() == Qt::MiddleButton || (mouse->button() == Qt::LeftButton && modified);
      } else {
        // The header row of the term time line has no click of its own.
        pan = mouse->button() == Qt::LeftButton &&
              mouse->position().y() < tifmView_->CellRect(0, 1).bottom();
      }
      if (!pan) return onChart && hidden(event);
      panning_ = true;
      panStartX_ = mouse->position().x();
      panStartLeft_ = tifmView_->LeftColumn();
      return true;
    }
    case QEvent::MouseMove: {
      if (!panning_) return onChart && hidden(event);
      const auto* mouse = static_cast<QMouseEvent*>(event);
      // Measured from the start of the drag, so that rounding never adds up.
      const double width = tifmView_->CellRect(0, 1).width();
      if (width > 0.0) {
        const auto shift =
            static_cast<std::int32_t>(std::lround((mouse->position().x() - panStartX_) / width));
        tifmView_->ShowColumns(panStartLeft_ - shift, tifmView_->VisibleColumns());
        AlignChart();
      }
      return true;
    }
    case QEvent::MouseButtonRelease:
      if (!panning_) return false;
      panning_ = false;
      return true;
    default:
      return false;
  }
}

void TimeLineExplorerPage::Chart_DblClick() {
  if (chart_->IntervalCount() == 0) return;
  if (services_.platform.Ask(u"Copy Temporal View to Clipboard?"_s, u"Copy"_s,
                             QuestionButtons::kYesNo, MessageIcon::kQuestion) != Answer::kYes) {
    return;
  }
  services_.platform.SetClipboardImage(chart_->ClipboardPicture());
  chart_->Redraw();
}

void TimeLineExplorerPage::Redraw() {
  // The novelty line follows the window in NovWinSz (a cheap recomputation from NM); the rest
  // of the figures come from the build.
  std::uint8_t window = 0;
  bool ok = false;
  const int value = novWinSz_->text().trimmed().toInt(&ok);
  if (ok && value >= 0 && value <= 255) window = static_cast<std::uint8_t>(value);
  if (ok && value >= 0 && value <= 255 && modelsBuilt_ && tifmView_ &&
      window != chart_->Data().noveltyWindow) {
    chart_->SetNovelty(IntervalNoveltySeries(services_.session.WordModel(), window), window);
  }
  chart_->Redraw();
  emit chartRedrawRequested();
}

void TimeLineExplorerPage::ShowChartMenu(const QPoint& at) {
  QMenu menu;
  QAction* png = menu.addAction(u"Save Chart as PNG..."_s);
  QAction* csv = menu.addAction(u"Save Interval Series as CSV..."_s);
  png->setEnabled(chart_->IntervalCount() > 0);
  csv->setEnabled(!series_.rows.empty());
  QAction* chosen = menu.exec(chartBox_->mapToGlobal(at));
  if (chosen == png) SaveChartPngAs();
  if (chosen == csv) SaveSeriesAs();
}

bool TimeLineExplorerPage::SaveChartPng(const QString& path) {
  QString error;
  if (chart_->IntervalCount() == 0) {
    ShowError(u"There is no time line to save yet: click \"(Re)Build Views\" first."_s);
    return false;
  }
  if (chart_->SavePng(path, error)) return true;
  ShowError(error);
  return false;
}

bool TimeLineExplorerPage::SaveSeries(const QString& path) {
  if (series_.rows.empty()) {
    ShowError(u"There is no time line to save yet: click \"(Re)Build Views\" first."_s);
    return false;
  }
  std::string error;
  if (WriteIntervalSeriesCsvFile(path.toStdString(), series_.rows, error)) return true;
  ShowError(QString::fromStdString(error));
  return false;
}

bool TimeLineExplorerPage::SaveChartPngAs() {
  const QString path = chooseSaveFile_(u"Save Time Line Chart"_s, u"timeline.png"_s);
  return !path.isEmpty() && SaveChartPng(path);
}

bool TimeLineExplorerPage::SaveSeriesAs() {
  const QString path = chooseSaveFile_(u"Save Interval Series"_s, u"timeline.csv"_s);
  return !path.isEmpty() && SaveSeries(path);
}

}  // namespace sylvora::app
