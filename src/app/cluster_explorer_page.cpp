// The cluster explorer page: its widgets and the handlers of its own controls. The map builds
// are in cluster_explorer_builds.cpp, the links between the maps in cluster_explorer_links.cpp.
#include "app/cluster_explorer_page.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QShortcut>
#include <QSlider>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/cluster_links.h"
#include "app/cluster_map_panel.h"
#include "app/job_runner.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

// The node-size buttons: "-" shrinks by a tenth, "+" grows by a tenth.
constexpr float kNodeSizeFactors[2] = {0.9f, 1.1f};

}  // namespace

ClusterExplorerPage::ClusterExplorerPage(PageServices services, QWidget* parent)
    : QWidget(parent), services_(services), timeLimitMs_(kLayoutTimeLimitMs) {
  setObjectName(u"ClusterExplorerPage"_s);
  BuildWidgets();
  ConnectMaps();
  connect(&services_.jobs, &JobRunner::finished, this, [this] { StartPending(); });
}

ClusterExplorerPage::~ClusterExplorerPage() = default;

void ClusterExplorerPage::BuildWidgets() {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->setObjectName(u"ClusterSplitter"_s);
  auto* right = new QSplitter(Qt::Vertical);

  auto* words = new ClusterMapPanel(services_.platform, u"TermSimVis"_s, u"Word Map"_s);
  auto* intervals = new ClusterMapPanel(services_.platform, u"ISVis"_s, u"Interval Map"_s);
  auto* tweets = new ClusterMapPanel(services_.platform, u"TweetSimVis"_s, u"Tweet Map"_s);
  panels_ = {words, intervals, tweets};
  for (ClusterMapPanel* panel : panels_) {
    panel->Map().SetEmptyText(u"Build the views on the Time Line Explorer tab"_s);
  }
  words->Controls()->insertWidget(words->Controls()->count() - 1, BuildWordControls());

  splitter->addWidget(words);
  right->addWidget(intervals);
  right->addWidget(tweets);
  splitter->addWidget(right);
  // Maps scale each axis to their surface: the interval and tweet maps need width too.
  splitter->setStretchFactor(0, 1);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({560, 440});

  // The shared message list goes under the maps, across the whole width: its text column is
  // wide, and the maps keep three fifths of the height.
  auto* outer = new QSplitter(Qt::Vertical);
  outer->setObjectName(u"ClusterOuterSplit"_s);
  outer->setChildrenCollapsible(false);
  messageListSlot_ = new QWidget;
  messageListSlot_->setObjectName(u"TweetViewSlot"_s);
  messageListSlot_->setMinimumHeight(120);
  auto* slotLayout = new QVBoxLayout(messageListSlot_);
  slotLayout->setContentsMargins(0, 0, 0, 0);
  outer->addWidget(splitter);
  outer->addWidget(messageListSlot_);
  outer->setStretchFactor(0, 3);
  outer->setStretchFactor(1, 2);
  outer->setSizes({480, 320});
  layout->addWidget(outer);

  const auto shortcut = [this](QKeyCombination keys, bool back) {
    auto* action = new QShortcut(QKeySequence(keys), this);
    // Active while the page is the visible tab (shortcuts of hidden widgets do not fire).
    action->setContext(Qt::WindowShortcut);
    connect(action, &QShortcut::activated, this, [this, back] {
      ClusterMapPanel& panel = Panel(activeMap_);
      if (back) {
        panel.Back();
      } else {
        panel.Forward();
      }
    });
  };
  shortcut(Qt::ALT | Qt::Key_Left, true);
  shortcut(Qt::ALT | Qt::Key_Right, false);
}

QWidget* ClusterExplorerPage::BuildWordControls() {
  // Two lines, so that the word map's frame leaves the interval and tweet maps their share of
  // the width: the level and node size, then the label threshold.
  auto* box = new QWidget;
  auto* lines = new QVBoxLayout(box);
  lines->setContentsMargins(8, 0, 0, 0);
  lines->setSpacing(2);
  auto* row = new QHBoxLayout;
  row->setSpacing(4);
  lines->addLayout(row);

  row->addWidget(new QLabel(u"Co-occurence level:"_s));
  const QString captions[2] = {u"Tweet "_s, u"Interval "_s};
  for (int index = 0; index < 2; ++index) {
    auto* option = new QRadioButton(captions[index]);
    option->setObjectName(u"FeatureType"_s);
    option->setProperty("index", index);
    option->setChecked(index == 0);
    connect(option, &QRadioButton::clicked, this, [this, index] { FeatureType_Click(index); });
    featureType_[static_cast<std::size_t>(index)] = option;
    row->addWidget(option);
  }

  row->addSpacing(12);
  row->addWidget(new QLabel(u"Node Size"_s));
  const QString signs[2] = {u"-"_s, u"+"_s};
  for (int index = 0; index < 2; ++index) {
    auto* button = new QToolButton;
    button->setObjectName(u"AdjTermNodeSz"_s);
    button->setProperty("index", index);
    button->setText(signs[index]);
    connect(button, &QToolButton::clicked, this, [this, index] { AdjTermNodeSz_Click(index); });
    adjTermNodeSz_[static_cast<std::size_t>(index)] = button;
    row->addWidget(button);
  }

  row->addStretch(1);
  row = new QHBoxLayout;
  row->setSpacing(4);
  lines->addLayout(row);
  row->addWidget(new QLabel(u"Fewer Labels"_s));
  termLabelThresh_ = new QSlider(Qt::Horizontal);
  termLabelThresh_->setObjectName(u"TermLabelThresh"_s);
  termLabelThresh_->setRange(0, kLabelSliderMax);
  termLabelThresh_->setSingleStep(1);
  termLabelThresh_->setPageStep(10);
  // A higher threshold shows fewer labels: the "Fewer Labels" end is the high end.
  termLabelThresh_->setInvertedAppearance(true);
  termLabelThresh_->setValue(kLabelSliderStart);
  termLabelThresh_->setToolTip(LabelThresholdTip(kLabelSliderStart));
  termLabelThresh_->setMinimumWidth(120);
  connect(termLabelThresh_, &QSlider::valueChanged, this,
          [this](int value) { TermLabelThresh_Change(value); });
  row->addWidget(termLabelThresh_);
  row->addWidget(new QLabel(u"More Labels"_s));

  // The same threshold typed as a percentage of the documents (one decimal: a slider step).
  labelPercent_ = new QDoubleSpinBox;
  labelPercent_->setObjectName(u"TermLabelThreshPercent"_s);
  labelPercent_->setRange(0.0, 100.0);
  labelPercent_->setDecimals(1);
  labelPercent_->setSingleStep(0.5);
  labelPercent_->setPrefix(u">= "_s);
  labelPercent_->setSuffix(u" %"_s);
  labelPercent_->setKeyboardTracking(false);
  labelPercent_->setValue(kLabelSliderStart / 10.0);
  labelPercent_->setToolTip(u"Label the words in at least this share of the tweets"_s);
  connect(labelPercent_, &QDoubleSpinBox::valueChanged, this, [this](double percent) {
    const int value = static_cast<int>(std::lround(percent * 10.0));
    if (value <= kLabelSliderMax) {
      termLabelThresh_->setValue(value);
      TermLabelThresh_Change(value);
      return;
    }
    // Beyond the slider's range: the slider rests at its end, the typed value holds.
    const QSignalBlocker block(termLabelThresh_);
    termLabelThresh_->setValue(kLabelSliderMax);
    TermLabelThresh_Change(value);
  });
  row->addWidget(labelPercent_);
  return box;
}

PointMap2D& ClusterExplorerPage::Map(MapKind kind) { return Panel(kind).Map(); }

void ClusterExplorerPage::HostMessageList(QWidget* frame) {
  if (frame == nullptr || frame->parentWidget() == messageListSlot_) return;
  messageListSlot_->layout()->addWidget(frame);
  frame->show();
}

void ClusterExplorerPage::FeatureType_Click(int index) {
  if (index < 0 || index > 1) return;
  featureType_[static_cast<std::size_t>(index)]->setChecked(true);
  Request request;
  request.level = index == 1 ? WordMapLevel::kInterval : WordMapLevel::kTweet;
  request.caption = u"Computing word cluster visualization..."_s;
  RequestBuild(MapKind::kWords, request);
}

void ClusterExplorerPage::AdjTermNodeSz_Click(int index) {
  if (index < 0 || index > 1) return;
  PointMap2D& map = Map(MapKind::kWords);
  map.SetBaseNodeSize(map.BaseNodeSize() * kNodeSizeFactors[index]);
}

void ClusterExplorerPage::TermLabelThresh_Change(int value) {
  termLabelThresh_->setToolTip(LabelThresholdTip(value));
  {
    const QSignalBlocker block(labelPercent_);
    labelPercent_->setValue(value / 10.0);
  }
  PointMap2D& map = Map(MapKind::kWords);
  map.SetNodeLabelThreshold(static_cast<std::int16_t>(std::clamp(value, 0, 32767)));
  map.RenderView(true, false);
}

void ClusterExplorerPage::ModelsRebuilt() {
  Map(MapKind::kTweets).SetEmptyText(u"Click an interval to map its tweets"_s);
  wordMapStale_ = true;
  intervalMapStale_ = true;
  if (isVisible()) PageShown();
}

void ClusterExplorerPage::PageShown() {
  if (intervalMapStale_) {
    intervalMapStale_ = false;
    Request request;
    request.caption = u"Computing interval cluster visualization..."_s;
    request.lazy = true;
    RequestBuild(MapKind::kIntervals, request);
  }
  if (wordMapStale_) {
    wordMapStale_ = false;
    Request request;
    request.level = WordMapLevel::kTweet;
    request.caption = u"Computing word cluster visualization..."_s;
    request.lazy = true;
    RequestBuild(MapKind::kWords, request);
  }
}

void ClusterExplorerPage::RestoreCaption() {
  if (!captionShown_) return;
  captionShown_ = false;
  emit captionChanged(usualCaption_);
}

void ClusterExplorerPage::SetSurfaceToolTip(MapKind kind, const QString& text) {
  if (QWidget* surface = Panel(kind).Surface()) surface->setToolTip(text);
}

}  // namespace sylvora::app
