// "(Re)Build Views": the option checks, the model build on the job runner, and the views that
// show the built models (the term time line, the message list's columns).
#include <atomic>

#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>

#include "app/interval_term_model.h"
#include "app/job_runner.h"
#include "app/platform.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "common/leading_number.h"
#include "views/session_views.h"
#include "views/table_lens.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

const QString kBuildJob = u"Building models"_s;

// Passes messages on and counts them, so that a failure already told to the user is not told
// twice.
class CountingNotifier final : public Notifier {
 public:
  explicit CountingNotifier(Notifier& inner) : inner_(inner) {}
  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override {
    ++shown_;
    inner_.ShowMessage(text, title, icon);
  }
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override {
    ++shown_;
    return inner_.Ask(text, title, buttons, icon);
  }
  int Shown() const { return shown_.load(); }

 private:
  Notifier& inner_;
  std::atomic<int> shown_{0};
};

}  // namespace

bool TimeLineExplorerPage::ReadNovelty(std::uint8_t& window) {
  bool ok = false;
  const QString text = novWinSz_->text().trimmed();
  const int value = text.toInt(&ok);
  if (!ok || value < 0 || value > 255) {
    ShowError(
        u"Novelty comparison period must be a whole number of intervals from 0 to 255, "
        "not \"%1\"."_s.arg(novWinSz_->text()));
    novWinSz_->setFocus();
    return false;
  }
  window = static_cast<std::uint8_t>(value);
  return true;
}

bool TimeLineExplorerPage::BuildModels_Click() {
  Session& session = services_.session;
  if (services_.jobs.Busy()) return false;
  if (session.Documents().DocumentCount() == 0 || !session.Indexed()) {
    services_.platform.ShowMessage(
        u"Load a corpus and create its indexes before building the views."_s, kProgramTitle,
        MessageIcon::kInformation);
    return false;
  }
  std::uint8_t window = 0;
  if (!ReadNovelty(window)) return false;
  noveltyWindow_ = window;

  ModelOptions options;
  options.intervalLength = intervalLen_->text().toStdString();
  // The unit chosen now is the unit of the intervals.
  options.unitCode = intervalUnit_.toStdString();
  options.events = events_;
  // The term time line shows one pixel column at most per interval.
  options.maxVisibleColumns =
      std::max(1, tifmFrame_->contentsRect().width() - tifmViewVScroller_->sizeHint().width());
  options.applicationTitle = kProgramTitle.toStdString();

  // The job owns the session's models: keep the current ones aside, to give them back when
  // the build stops.
  previousModels_ = std::make_unique<std::array<TextStream, 5>>();
  for (const IndexKind kind : kIndexKinds) {
    (*previousModels_)[static_cast<std::size_t>(kind)] = std::move(session.Model(kind));
    session.Model(kind) = TextStream();
  }
  previousBuilt_ = session.ModelsBuilt();
  previousLength_ = session.IntervalLength();
  previousUnit_ = session.IntervalUnit();
  session.SetModelsBuilt(false);

  auto report = std::make_shared<ModelReport>();
  auto series = std::make_shared<IntervalSeries>();
  auto notifier = std::make_shared<CountingNotifier>(services_.notifier);
  const std::int32_t burst = burstMeasure_;
  const bool started = services_.jobs.Start(
      kBuildJob,
      [&session, options, report, series, notifier, window,
       burst](const ProgressCallback& progress) {
        *report = BuildModels(session, options, *notifier, progress);
        // The chart's figures (homogeneity above all) are computed here, off the window's
        // thread; a cancel in this step cancels the build.
        if (report->built && !ComputeIntervalSeries(session, window, burst, *series, progress)) {
          session.ClearModels();
          report->built = false;
          report->cancelled = true;
          report->error = "Model building cancelled";
        }
      },
      [this, report, series, notifier](bool cancelled) {
        lastReport_ = *report;
        if (report->built && !cancelled) series_ = std::move(*series);
        if (!report->built && !report->cancelled && !cancelled && notifier->Shown() == 0 &&
            !report->error.empty()) {
          ShowError(QString::fromStdString(report->error));
        }
        FinishBuild(cancelled);
      });
  if (!started) FinishBuild(true);
  return started;
}

void TimeLineExplorerPage::FinishBuild(bool cancelled) {
  Session& session = services_.session;
  const bool built = session.ModelsBuilt() && !cancelled && lastReport_.built;
  if (!built && previousModels_) {
    for (const IndexKind kind : kIndexKinds) {
      session.Model(kind) = std::move((*previousModels_)[static_cast<std::size_t>(kind)]);
    }
    session.SetModelsBuilt(previousBuilt_);
    session.SetIntervalSettings(previousLength_, previousUnit_);
  }
  previousModels_.reset();
  if (built) {
    selectedInterval_ = 0;
    hoveredInterval_ = 0;
    getTL_->setEnabled(events_.empty());
    if (!lastReport_.warnings.empty()) {
      QStringList lines;
      for (const std::string& warning : lastReport_.warnings) {
        lines.push_back(QString::fromStdString(warning));
      }
      services_.platform.ShowMessage(lines.join(u'\n'), kProgramTitle, MessageIcon::kInformation);
    }
  }
  setEnabled(true);
  AttachViews();
  emit modelsBuilt(built);
}

void TimeLineExplorerPage::OnJobStarted(const QString&) {
  // Whatever the job, it may replace what the views read: they let go until it ends.
  DetachViews();
  setEnabled(false);
}

void TimeLineExplorerPage::OnJobFinished(const QString& name, bool) {
  if (name == kBuildJob) return;  // FinishBuild has run
  setEnabled(true);
  AttachViews();
}

void TimeLineExplorerPage::DetachViews() {
  DropTermTimeLine();
  tweetModel_->SetDocuments(nullptr, nullptr);
  ClearIntervalLists();
  SetSummary(QString());
  chartDetails_->clear();
}

void TimeLineExplorerPage::AttachViews() {
  const Session& session = services_.session;
  if (session.Documents().DocumentCount() > 0) {
    tweetModel_->SetDocuments(&session.Documents(), &session.Corpus());
    tweetView_->horizontalHeader()->setSortIndicatorShown(false);
    for (int c = 0; c < tweetModel_->columnCount(); ++c) {
      tweetView_->setColumnWidth(
          c, c == tweetModel_->ColumnOf(session.Documents().ContentField()) ? 420 : 124);
    }
    // CorpIdx is one unit wide: there to trace a row back, not to be read.
    tweetView_->setColumnWidth(tweetModel_->CorpIdxColumn(), 1);
  }
  modelsBuilt_ = session.ModelsBuilt();
  if (!modelsBuilt_) {
    selectedInterval_ = 0;
    hoveredInterval_ = 0;
    ShowChart();
    return;
  }
  ShowTermTimeLine();
  ShowChart();
  if (selectedInterval_ >= 1 && selectedInterval_ <= session.WordModel().IntervalCount()) {
    SelectInterval(selectedInterval_);
  }
}

void TimeLineExplorerPage::DropTermTimeLine() {
  tifmView_.reset();
  delete tifmViewContainer_;
  tifmViewContainer_ = nullptr;
}

void TimeLineExplorerPage::ShowTermTimeLine() {
  DropTermTimeLine();
  const Session& session = services_.session;
  // A fresh drawing surface, laid out before the lens measures its capacity.
  tifmViewContainer_ = new QWidget;
  tifmViewContainer_->setObjectName(u"TIFMViewContainer"_s);
  tifmViewContainer_->setMinimumHeight(180);
  static_cast<QGridLayout*>(tifmFrame_->layout())->addWidget(tifmViewContainer_, 2, 0);
  tifmFrame_->layout()->activate();
  if (!tifmFrame_->isVisible()) {
    tifmViewContainer_->resize(std::max(tifmFrame_->width() - 40, 600),
                               std::max(tifmViewContainer_->height(), 220));
  }
  tifmView_ = std::make_unique<TableLens>(services_.notifier);
  tifmView_->setObjectName(u"TIFMView"_s);
  tifmView_->InitializeTLCtl(tifmFrame_, tifmViewContainer_, tifmViewHScroller_,
                             tifmViewVScroller_);
  connect(tifmView_.get(), &TableLens::CellStyleChanged, this, [this](int style) {
    ShowCellStyle(style);
    ScheduleChartAlignment();
  });
  ShowTermTimeline(*tifmView_, session.WordModel(), session.WordIndex(), session.IntervalUnit());
  if (userCellStyle_) {
    tifmView_->SetKeepCellStyle(true);
    tifmView_->SetCellStyle(static_cast<std::uint8_t>(*userCellStyle_));
  }
  ShowCellStyle(tifmView_->CellStyle());
  filterRows_->setChecked(false);
  connect(tifmView_.get(), &TableLens::CellMouseClick, this,
          &TimeLineExplorerPage::TIFMView_CellMouseClick);
  connect(tifmView_.get(), &TableLens::CellMouseOver, this,
          &TimeLineExplorerPage::TIFMView_CellMouseOver);
  // A new size lays the lens out again: the chart follows its columns.
  tifmViewContainer_->installEventFilter(this);
}

}  // namespace sylvora::app
