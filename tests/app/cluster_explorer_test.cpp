// The cluster explorer on the sample corpus with the real sfdp: the three maps after a model
// build, their sizes, weights and labels; the hover and click links; the label slider; the
// recolouring by visible words; Back and Forward; saving a map.

#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include "app/cluster_explorer_page.h"
#include "app/cluster_links.h"
#include "app/cluster_map_panel.h"
#include "app/interval_term_model.h"
#include "app/job_runner.h"
#include "app/time_line_explorer_page.h"
#include "app/tweet_list_model.h"
#include "cluster_test_support.h"
#include "support/qt_test_main.h"
#include "views/session_views.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::ClusterExplorerPage;
using app::ClusterMapPanel;

namespace {

// A view around one node so small that no other node is strictly inside it.
PointMap2D::ViewRect AroundNode(const PointMap2D& map, int node) {
  const float x = map.NodeX(node);
  const float y = map.NodeY(node);
  const float d = map.DataWidth() * 1e-6f + 1e-6f;
  return {x - d, x + d, y - d, y + d};
}

}  // namespace

class ClusterExplorerTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<WindowFixture> f_;
  ClusterExplorerPage* page_ = nullptr;

  const Session& S() { return f_->Window().CurrentSession(); }
  PointMap2D& Words() { return page_->Map(MapKind::kWords); }
  PointMap2D& Intervals() { return page_->Map(MapKind::kIntervals); }
  PointMap2D& Tweets() { return page_->Map(MapKind::kTweets); }

  // An interval with at least `minimum` tweets (the first such).
  int IntervalWithTweets(int minimum) {
    for (int k = 1; k <= S().WordModel().IntervalCount(); ++k) {
      if (S().WordModel().IntervalDocCount(k) >= minimum) return k;
    }
    return 0;
  }

  void BuildTweetMap(int interval) {
    QSignalSpy finished(page_, &ClusterExplorerPage::mapFinished);
    page_->ISVis_OnNodeClick(interval - 1);
    QVERIFY(WaitClusterIdle(*f_));
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished[0][0].toInt(), static_cast<int>(MapKind::kTweets));
    QVERIFY(finished[0][1].toBool());
  }

 private slots:
  void initTestCase() {
    if (RealGraphvizFolder().isEmpty()) QSKIP("Graphviz (sfdp) is not installed");
    f_ = std::make_unique<WindowFixture>();
    page_ = &f_->Window().ClusterExplorer();
    QVERIFY(PrepareSampleModels(*f_, RealGraphvizFolder()));
    QVERIFY(page_->WordMapStale() && !Words().IsSet());
    QSignalSpy captions(page_, &ClusterExplorerPage::captionChanged);
    const QString usual = f_->Window().windowTitle();
    QVERIFY(VisitClusterExplorer(*f_));
    QVERIFY(!page_->WordMapStale() && !page_->IntervalMapStale());
    QVERIFY2(f_->platform.boxes.isEmpty(), qPrintable(f_->platform.Texts().join(u'|')));
    // The progress captions in build order, then the usual caption again.
    QCOMPARE(Strings(captions),
             (QStringList{QStringLiteral("Computing interval cluster visualization..."),
                          QStringLiteral("Computing word cluster visualization..."), usual}));
  }

  void cleanupTestCase() { f_.reset(); }

  // The maps' labels and weights are the session's (its tests pin them); the views show them.
  void TheMapsShowTheSessionsNodes() {
    const TextStream& model = S().WordModel();
    QCOMPARE(Intervals().NodeCount(), model.IntervalCount());
    QCOMPARE(Intervals().NodeLabel(1), QStringLiteral("2"));
    QCOMPARE(Intervals().Weight(1), page_->Panel(MapKind::kIntervals).Data()->weights[1]);
    const TermDocumentMatrix& index = S().WordIndex();
    QCOMPARE(Words().NodeCount(), index.TermCount());
    QCOMPARE(page_->Level(), WordMapLevel::kTweet);
    QCOMPARE(Words().NodeLabel(2), QString::fromStdString(index.Term(3)));
    QCOMPARE(Words().Weight(2), page_->Panel(MapKind::kWords).Data()->weights[2]);
    // A first look labels about 30 of the heaviest words.
    std::vector<float> weights;
    for (int node = 0; node < Words().NodeCount(); ++node) weights.push_back(Words().Weight(node));
    QCOMPARE(Words().NodeLabelThreshold(), FirstLookLabelThreshold(weights));
  }

  void HoveringAWordShowsItsLabelAndAClickListsIt() {
    page_->TermSimVis_OnNewNodeOver(0);
    QCOMPARE(page_->Panel(MapKind::kWords).Surface()->toolTip(),
             QString::fromStdString(S().WordIndex().Term(1)));
    page_->TermSimVis_OnNewNodeOver(-1);
    QCOMPARE(page_->Panel(MapKind::kWords).Surface()->toolTip(), QString());
    // A click lists the word over all intervals.
    QSignalSpy chosen(page_, &ClusterExplorerPage::wordChosen);
    page_->TermSimVis_OnNodeClick(4);
    QCOMPARE(chosen.value(0), (QVariantList{5, 1, S().WordModel().IntervalCount()}));
  }

  void TheMessageListMovesIntoTheCurrentTab() {
    app::TimeLineExplorerPage& timeLine = f_->Window().TimeLine();
    QTabWidget& tabs = f_->Window().Tabs();
    f_->Window().show();
    QVERIFY(QTest::qWaitForWindowExposed(&f_->Window()));
    QTableView* list = timeLine.TweetView();
    QWidget* frame = timeLine.TweetViewFrame();
    QCOMPARE(tabs.currentWidget(), static_cast<QWidget*>(page_));
    // The same view object, now under the maps and shown with room for rows.
    QVERIFY(page_->isAncestorOf(list));
    QVERIFY(page_->MessageListSlot()->isAncestorOf(frame));
    QVERIFY(!timeLine.isAncestorOf(list));
    QVERIFY2(list->height() >= 100, qPrintable(QString::number(list->height())));

    // A word clicked in the map fills the list the user sees, with its caption.
    const int term = 5;
    page_->TermSimVis_OnNodeClick(term - 1);
    const QString word = QString::fromStdString(S().WordIndex().Term(term));
    QCOMPARE(list->model()->rowCount(), S().WordIndex().DocFreq(term));
    QVERIFY2(timeLine.TweetViewSummaryText().contains(QStringLiteral(" OCCURRENCES OF ") + word),
             qPrintable(timeLine.TweetViewSummaryText()));
    QVERIFY(page_->findChild<QLabel*>(QStringLiteral("TweetViewSummary"))->isVisible());

    // The time line tab takes it back beside its interval lists; the cluster tab again after.
    tabs.setCurrentWidget(&timeLine);
    QVERIFY(!page_->isAncestorOf(list));
    QVERIFY(timeLine.findChild<QWidget*>(QStringLiteral("TLE_ListsSplit"))->isAncestorOf(frame));
    QVERIFY(list->isVisible());
    // The "Load and Index" tab has its own viewer: the list stays where it was.
    tabs.setCurrentIndex(0);
    QVERIFY(timeLine.isAncestorOf(list));
    QVERIFY(VisitClusterExplorer(*f_));
    QVERIFY(page_->isAncestorOf(list) && list->isVisible());
  }

  void AWordMarkedOnTheTimeLineIsSelectedInTheWordMap() {
    app::TimeLineExplorerPage& timeLine = f_->Window().TimeLine();
    Words().SetSelectedNode(-1);
    const int term = 7;
    const QString word = QString::fromStdString(S().WordIndex().Term(term));
    // A row click in the words list of "Load and Index" marks the word.
    timeLine.AllTermList_Click(IndexKind::kWords, word);
    QCOMPARE(Words().SelectedNode(), term - 1);
    // So does a word of an interval list.
    const int k = IntervalWithTweets(30);
    timeLine.SelectInterval(k);
    QVERIFY(timeLine.IntervalTerms(IndexKind::kWords).rowCount() > 1);
    const QString other = timeLine.IntervalTerms(IndexKind::kWords).TermTextAt(1);
    timeLine.IntervalTerm_Click(IndexKind::kWords, 1);
    QCOMPARE(Words().SelectedNode(), S().WordIndex().TermIndex(other.toStdString()) - 1);
    // An unknown word or one the map does not hold changes nothing.
    const int before = Words().SelectedNode();
    page_->SelectWord(QStringLiteral("no-such-word-here"));
    QCOMPARE(Words().SelectedNode(), before);
    // The selection is drawn: the picture differs from one without it.
    const QImage selected = Words().Snapshot();
    Words().SetSelectedNode(-1);
    QVERIFY(Words().Snapshot() != selected);
    QVERIFY(f_->platform.boxes.isEmpty());
  }

  void HoveringAnIntervalShowsItsTwoBestTerms() {
    QSignalSpy hovered(page_, &ClusterExplorerPage::intervalHovered);
    const int k = IntervalWithTweets(50);
    QVERIFY(k > 0);
    page_->ISVis_OnNewNodeOver(k - 1);
    const QString tip = page_->Panel(MapKind::kIntervals).Surface()->toolTip();
    QVERIFY2(tip.startsWith(QString::number(k) + QStringLiteral(": ")), qPrintable(tip));
    QCOMPARE(hovered.value(0).value(0).toInt(), k);
    // The best term is a word of the index.
    const QString best = tip.section(QStringLiteral(": "), 1).section(QStringLiteral(", "), 0, 0);
    QVERIFY(S().WordIndex().TermIndex(best.toStdString()) > 0);
    page_->ISVis_OnNewNodeOver(-1);
    QCOMPARE(page_->Panel(MapKind::kIntervals).Surface()->toolTip(), QString());
    QCOMPARE(hovered.size(), 1);
    // The time line selects and hovers intervals in the map.
    page_->SelectInterval(3);
    QCOMPARE(Intervals().SelectedNode(), 2);
    page_->HoverInterval(4);
    QCOMPARE(Intervals().HoverNode(), 3);
  }

  void ClickingAnIntervalSelectsItAndMapsItsTweets() {
    const int k = IntervalWithTweets(30);
    QVERIFY(k > 0);
    QSignalSpy selected(page_, &ClusterExplorerPage::intervalSelected);
    BuildTweetMap(k);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(Intervals().SelectedNode(), k - 1);
    QCOMPARE(Tweets().NodeCount(), S().WordModel().IntervalDocCount(k));
    const ClusterMap* data = page_->Panel(MapKind::kTweets).Data();
    QCOMPARE(data->firstDocument, S().WordModel().FirstDocumentIndex(k));

    // Hover: the tweet's text; click: its corpus row.
    const DocumentSet& documents = S().Documents();
    page_->TweetSimVis_OnNewNodeOver(2);
    QCOMPARE(
        page_->Panel(MapKind::kTweets).Surface()->toolTip(),
        QString::fromStdString(documents.Text(data->firstDocument + 2, documents.ContentField())));
    QSignalSpy chosen(page_, &ClusterExplorerPage::tweetChosen);
    page_->TweetSimVis_OnNodeClick(2);
    QCOMPARE(chosen.value(0).value(0).toInt(), data->firstDocument + 2);

    // A view change lists the visible tweets in node order.
    QSignalSpy shown(page_, &ClusterExplorerPage::tweetsShown);
    Tweets().SetView(AroundNode(Tweets(), 3));
    page_->TweetSimVis_ViewChanged();
    QCOMPARE(shown[0][0].value<QVector<int>>(), QVector<int>{data->firstDocument + 3});
    Tweets().SetView(Tweets().HomeView());
    page_->TweetSimVis_ViewChanged();
    QCOMPARE(shown[1][0].value<QVector<int>>().size(), Tweets().NodeCount());
  }

  void TheLabelSliderShowsItsThresholdAsAPercentage() {
    QSlider* slider = page_->LabelSlider();
    slider->setValue(5);
    // Typed as a percentage: within the slider's range it moves the slider, beyond it holds.
    auto* typed = page_->findChild<QDoubleSpinBox*>(QStringLiteral("TermLabelThreshPercent"));
    QCOMPARE(typed->value(), 0.5);
    typed->setValue(3.5);
    QCOMPARE(Words().NodeLabelThreshold(), std::int16_t{35});
    typed->setValue(40.0);
    QCOMPARE(slider->value(), 250);
    QCOMPARE(Words().NodeLabelThreshold(), std::int16_t{400});
    slider->setValue(120);
    QCOMPARE(Words().NodeLabelThreshold(), std::int16_t{120});
    QCOMPARE(typed->value(), 12.0);
  }

  void OneVisibleWordTurnsTheItemsHoldingItToEntryNine() {
    const int k = IntervalWithTweets(30);
    if (page_->Panel(MapKind::kTweets).Data() == nullptr) BuildTweetMap(k);
    const ClusterMap* tweets = page_->Panel(MapKind::kTweets).Data();
    const TermDocumentMatrix& index = S().WordIndex();
    const TextStream& model = S().WordModel();
    // The most frequent word occurs in some intervals' tweets and not in others.
    int term = 1;
    for (int t = 1; t <= index.TermCount(); ++t) {
      if (index.DocFreq(t) > index.DocFreq(term)) term = t;
    }
    Words().SetView(AroundNode(Words(), term - 1));
    page_->TermSimVis_ViewChanged();
    int nines = 0;
    for (int i = 1; i <= model.IntervalCount(); ++i) {
      const int expected = model.IntervalFrequency(term, i) != 0.0f ? 9 : 0;
      QCOMPARE(Intervals().NodeCluster(i - 1), std::int16_t(expected));
      nines += expected == 9;
    }
    QVERIFY(nines > 0);
    int tweetNines = 0;
    for (int node = 0; node < Tweets().NodeCount(); ++node) {
      const int expected = index.TermFreq(term, tweets->firstDocument + node + 1) != 0 ? 9 : 0;
      QCOMPARE(Tweets().NodeCluster(node), std::int16_t(expected));
      tweetNines += expected == 9;
    }
    QVERIFY(tweetNines > 0);

    Words().SetView(Words().HomeView());
  }

  void BackAndForwardReturnToEarlierViews() {
    ClusterMapPanel& panel = page_->Panel(MapKind::kWords);
    panel.ViewsReset();
    const PointMap2D::ViewRect home = Words().View();
    // A lasso zoom, as the user drags it (the history's rules: cluster_links_test).
    Words().ZoomTo(0, 200.0f);
    const PointMap2D::ViewRect first = Words().View();
    panel.RecordView();
    // Alt+Left on the page goes back, Alt+Right forward.
    f_->Window().show();
    f_->Window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f_->Window()));
    QTest::keyClick(page_, Qt::Key_Left, Qt::AltModifier);
    QVERIFY(app::SameView(Words().View(), home));
    QTest::keyClick(page_, Qt::Key_Right, Qt::AltModifier);
    QVERIFY(app::SameView(Words().View(), first));
    // The buttons follow.
    QVERIFY(panel.findChild<QToolButton*>(QStringLiteral("TermSimVisBack"))->isEnabled());
    QVERIFY(!panel.findChild<QToolButton*>(QStringLiteral("TermSimVisForward"))->isEnabled());
    // A view change is recorded once it has rested, not at once.
    panel.SetViewRestMs(0);
    const std::size_t before = panel.History().Size();
    Words().ZoomTo(3, 500.0f);
    emit Words().ViewChanged();
    QCOMPARE(panel.History().Size(), before);
    QTRY_COMPARE(panel.History().Size(), before + 1);
    Words().SetView(Words().HomeView());
  }

  void EachMapIsSavedAsPictureGraphMlAndTables() {
    TempDir dir;
    const QString folder = QString::fromStdString(dir.Path().string());
    ClusterMapPanel& panel = page_->Panel(MapKind::kIntervals);
    f_->platform.savedFiles = {folder + QStringLiteral("/intervals.png"),
                               folder + QStringLiteral("/intervals.graphml")};
    panel.SavePicture_Click();
    panel.SaveMapFiles_Click();
    QVERIFY(f_->platform.boxes.isEmpty());
    QImage picture(folder + QStringLiteral("/intervals.png"));
    QVERIFY(!picture.isNull());
    QVERIFY(QFile::exists(folder + QStringLiteral("/intervals_nodes.csv")));
    QVERIFY(QFile::exists(folder + QStringLiteral("/intervals.graphml")));
    // A folder that cannot be written is reported.
    f_->platform.savedFiles = {QStringLiteral("/nonexistent-folder/x.png")};
    panel.SavePicture_Click();
    QCOMPARE(f_->platform.boxes.size(), 1);
    QVERIFY(f_->platform.boxes[0].text.contains(QStringLiteral("/nonexistent-folder/x.png")));
    f_->platform.boxes.clear();
  }

  void TheIntervalLevelKeepsTheNodeSet() {
    QSignalSpy finished(page_, &ClusterExplorerPage::mapFinished);
    page_->FeatureType_Click(1);
    QVERIFY(WaitClusterIdle(*f_));
    QVERIFY(finished.value(0).value(1).toBool());
    QCOMPARE(page_->Level(), WordMapLevel::kInterval);
    QCOMPARE(Words().NodeCount(), S().WordIndex().TermCount());
  }

  void CancellingABuildKeepsTheMapAsItWas() {
    const QPointF before(Words().NodeX(0), Words().NodeY(0));
    const ClusterMap* data = page_->Panel(MapKind::kWords).Data();
    QSignalSpy finished(page_, &ClusterExplorerPage::mapFinished);
    page_->FeatureType_Click(0);
    QVERIFY(f_->Window().Jobs().Busy());
    f_->Window().Jobs().Cancel();
    QVERIFY(WaitClusterIdle(*f_));
    QCOMPARE(finished.size(), 1);
    QCOMPARE(page_->Panel(MapKind::kWords).Data(), data);
    QCOMPARE(QPointF(Words().NodeX(0), Words().NodeY(0)), before);
    QVERIFY(page_->Panel(MapKind::kWords).Status().startsWith(QStringLiteral("Cancelled")));
    QVERIFY(f_->platform.boxes.isEmpty());
  }
};

SYLVORA_QT_TEST_MAIN(ClusterExplorerTest)
#include "cluster_explorer_test.moc"
