// The time line explorer on a large generated corpus (SYLVORA_BENCH_TWEETS, default 1,000,000,
// over 18 days) with one-hour intervals:
//  - BM_SessionBuildModels: the model build as "sylvora-cli timeline" runs it (BuildModels on
//    the session, every question answered OK, then the per-interval series with the chart's
//    homogeneity);
//  - BM_WindowBuildModels: the same from the window's "(Re)Build Views" button, on the job
//    runner, with the term time line and the message list set up afterwards;
//  - BM_WindowSelectBusiestInterval: a click on the interval with the most messages (about
//    20,000 at the default size): the message list, its caption, the lens cursor and the five
//    interval term lists; "list_ms" is the message list alone (an interval display through the
//    all-term list of its busiest word would cost a scan; this is the interval display), and
//    "rows100_ms" / "rows100k_ms" a list of 100 and of 100,000 messages.
// Loading and indexing happen outside the timed part. Run one benchmark per process
// (--benchmark_filter) for its own peak memory.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>
#include <QTableView>

#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/main_window.h"
#include "app/platform.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "generator/corpus_generator.h"
#include "offscreen_benchmark_main.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session/interval_series.h"
#include "support/peak_memory.h"

namespace {

std::size_t TweetCount() {
  return sylvora::bench::TweetCountFromEnvironment("SYLVORA_BENCH_TWEETS", 1'000'000);
}

std::string CorpusFile() {
  using sylvora::bench::CorpusFormat;
  return sylvora::bench::CachedCorpusFile(CorpusFormat::kTwitter11, TweetCount());
}

std::string StopList() { return std::string(SYLVORA_SOURCE_DIR) + "/data/common_words.txt"; }

// Says OK to every question and keeps quiet otherwise, as a user who builds anyway.
class AgreeingNotifier final : public sylvora::Notifier {
 public:
  void ShowMessage(std::string_view, std::string_view, sylvora::MessageIcon) override {}
  sylvora::Answer Ask(std::string_view, std::string_view, sylvora::QuestionButtons buttons,
                      sylvora::MessageIcon) override {
    return buttons == sylvora::QuestionButtons::kYesNo ? sylvora::Answer::kYes
                                                       : sylvora::Answer::kOk;
  }
};

class AgreeingPlatform final : public sylvora::app::Platform {
 public:
  void ShowMessage(const QString&, const QString&, sylvora::MessageIcon) override {}
  sylvora::Answer Ask(const QString&, const QString&, sylvora::QuestionButtons buttons,
                      sylvora::MessageIcon) override {
    return buttons == sylvora::QuestionButtons::kYesNo ? sylvora::Answer::kYes
                                                       : sylvora::Answer::kOk;
  }
  void OpenLink(const QString&) override {}
  void SetClipboardText(const QString&) override {}
  void SetClipboardImage(const QImage&) override {}
  QString GetOpenFileName(const QString&, const QString&) override { return {}; }
};

void Report(benchmark::State& state, const sylvora::Session& session) {
  state.counters["tweets"] = session.Documents().DocumentCount();
  state.counters["intervals"] = session.WordModel().IntervalCount();
  state.counters["words"] = session.WordIndex().TermCount();
  state.counters["peak_MB"] = static_cast<double>(sylvora::bench::PeakResidentBytes()) / 1e6;
}

// A window with the corpus loaded and indexed through its own buttons.
std::unique_ptr<sylvora::app::Main> IndexedWindow(AgreeingPlatform& platform) {
  sylvora::app::StartupEnvironment environment;
  environment.configFolder = QString::fromStdString(
      (std::filesystem::temp_directory_path() / "sylvora-bench-config").string());
  environment.programFolder = QString::fromStdString(std::string(SYLVORA_SOURCE_DIR) + "/data");
  auto window = std::make_unique<sylvora::app::Main>(platform, environment);
  window->resize(1600, 1000);
  window->show();
  window->Start();
  sylvora::app::LoadIndexPage& page = window->LoadIndex();
  page.SetRadian(false);
  page.SetCorpusPath(QString::fromStdString(CorpusFile()));
  page.LoadCorpus_Click();
  window->Jobs().WaitForIdle();
  page.DoIndex_Click();
  window->Jobs().WaitForIdle();
  return window;
}

bool WindowBuild(sylvora::app::Main& window) {
  sylvora::app::TimeLineExplorerPage& page = window.TimeLine();
  page.findChild<QLineEdit*>(QStringLiteral("IntervalLen"))->setText(QStringLiteral("1"));
  if (!page.BuildModels_Click()) return false;
  window.Jobs().WaitForIdle();
  return page.ModelsBuilt();
}

void BM_SessionBuildModels(benchmark::State& state) {
  sylvora::Session session;
  sylvora::LoadOptions load;
  load.path = CorpusFile();
  if (!sylvora::LoadCorpus(session, load, sylvora::DefaultNotifier()).loaded) {
    state.SkipWithError("not loaded");
    return;
  }
  sylvora::IndexOptions index;
  index.stopListPath = StopList();
  if (!sylvora::BuildIndexes(session, index).indexed) {
    state.SkipWithError("not indexed");
    return;
  }
  AgreeingNotifier notifier;
  for (auto _ : state) {
    sylvora::ModelOptions options;
    options.intervalLength = "1";
    const sylvora::ModelReport report = sylvora::BuildModels(session, options, notifier);
    if (!report.built) state.SkipWithError(report.error.c_str());
    sylvora::IntervalSeries series;
    if (!sylvora::ComputeIntervalSeries(session, 1, sylvora::TextStream::kRatioBurst, series)) {
      state.SkipWithError("no series");
    }
  }
  Report(state, session);
}
BENCHMARK(BM_SessionBuildModels)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

void BM_WindowBuildModels(benchmark::State& state) {
  AgreeingPlatform platform;
  auto window = IndexedWindow(platform);
  if (!window->CurrentSession().Indexed()) {
    state.SkipWithError("not indexed");
    return;
  }
  for (auto _ : state) {
    if (!WindowBuild(*window)) state.SkipWithError("not built");
  }
  Report(state, window->CurrentSession());
}
BENCHMARK(BM_WindowBuildModels)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

void BM_WindowSelectBusiestInterval(benchmark::State& state) {
  AgreeingPlatform platform;
  auto window = IndexedWindow(platform);
  if (!window->CurrentSession().Indexed() || !WindowBuild(*window)) {
    state.SkipWithError("not built");
    return;
  }
  const sylvora::TextStream& words = window->CurrentSession().WordModel();
  int busiest = 1;
  for (int i = 1; i <= words.IntervalCount(); ++i) {
    if (words.IntervalDocCount(i) > words.IntervalDocCount(busiest)) busiest = i;
  }
  sylvora::app::TimeLineExplorerPage& page = window->TimeLine();
  double listMs = 0;
  double rows100Ms = 0;
  double rows100kMs = 0;
  int other = busiest > 1 ? busiest - 1 : busiest + 1;
  for (auto _ : state) {
    page.SelectInterval(busiest);
    state.PauseTiming();
    // The message list alone: rows of the interval and a repaint of the visible ones.
    page.SelectInterval(other);
    QElapsedTimer timer;
    timer.start();
    std::vector<sylvora::DocIndex> rows;
    for (sylvora::DocIndex d = words.FirstDocumentIndex(busiest);
         d <= words.LastDocumentIndex(busiest); ++d) {
      rows.push_back(d);
    }
    page.TweetList().SetRows(std::move(rows));
    page.TweetView()->repaint();
    listMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    // 100 and 100,000 messages: the list keeps row numbers only, so both cost about the same.
    for (const int count : {100, 100000}) {
      QVector<int> shown(count);
      for (int i = 0; i < count; ++i) shown[i] = i;
      timer.restart();
      page.ShowTweets(shown);
      page.TweetView()->repaint();
      (count == 100 ? rows100Ms : rows100kMs) = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }
    state.ResumeTiming();
  }
  state.counters["rows100_ms"] = rows100Ms;
  state.counters["rows100k_ms"] = rows100kMs;
  state.counters["interval_docs"] = words.IntervalDocCount(busiest);
  state.counters["list_ms"] = listMs;
  Report(state, window->CurrentSession());
}
BENCHMARK(BM_WindowSelectBusiestInterval)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

}  // namespace

SYLVORA_OFFSCREEN_BENCHMARK_MAIN()
