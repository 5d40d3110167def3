#include "app/cluster_map_panel.h"

#include <string>

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/platform.h"
#include "session/map_export.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

ClusterMapPanel::ClusterMapPanel(Platform& platform, const QString& mapName, const QString& title,
                                 QWidget* parent)
    : QGroupBox(title, parent), platform_(platform), mapName_(mapName) {
  setObjectName(mapName + u"_Frame"_s);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->setSpacing(3);

  controls_ = new QHBoxLayout;
  controls_->setSpacing(4);
  back_ = new QToolButton;
  back_->setObjectName(mapName + u"Back"_s);
  back_->setArrowType(Qt::LeftArrow);
  back_->setToolTip(u"Back to the previous view (Alt+Left)"_s);
  forward_ = new QToolButton;
  forward_->setObjectName(mapName + u"Forward"_s);
  forward_->setArrowType(Qt::RightArrow);
  forward_->setToolTip(u"Forward to the next view (Alt+Right)"_s);
  connect(back_, &QToolButton::clicked, this, [this] { Back(); });
  connect(forward_, &QToolButton::clicked, this, [this] { Forward(); });
  controls_->addWidget(back_);
  controls_->addWidget(forward_);

  menu_ = new QMenu(this);
  menu_->setObjectName(mapName + u"Menu"_s);
  menu_->addAction(u"Back"_s, this, [this] { Back(); });
  menu_->addAction(u"Forward"_s, this, [this] { Forward(); });
  menu_->addSeparator();
  menu_->addAction(u"Save Picture (PNG)..."_s, this, [this] { SavePicture_Click(); });
  menu_->addAction(u"Save Map Files (GraphML, CSV)..."_s, this, [this] { SaveMapFiles_Click(); });
  menu_->addSeparator();
  // Every label over the threshold, overlapping or not, and nodes sized by weight alone.
  QAction* allLabels = menu_->addAction(u"Show all labels"_s);
  allLabels->setObjectName(mapName + u"ShowAllLabels"_s);
  allLabels->setCheckable(true);
  connect(allLabels, &QAction::toggled, this, [this](bool all) { map_->SetReadableDrawing(!all); });
  auto* save = new QToolButton;
  save->setObjectName(mapName + u"Save"_s);
  save->setText(u"Save"_s);
  save->setToolTip(u"Save the map as a picture or as GraphML and CSV node and edge tables"_s);
  save->setMenu(menu_);
  save->setPopupMode(QToolButton::InstantPopup);
  controls_->addWidget(save);
  controls_->addStretch(1);
  layout->addLayout(controls_);

  surface_ = new QWidget;
  surface_->setObjectName(mapName + u"Container"_s);
  surface_->setMinimumSize(160, 120);
  // The right button zooms out on the surface; the menu belongs to the frame around it.
  surface_->setContextMenuPolicy(Qt::PreventContextMenu);
  layout->addWidget(surface_, 1);
  status_ = new QLabel;
  status_->setObjectName(mapName + u"Status"_s);
  status_->setWordWrap(true);
  status_->setVisible(false);
  layout->addWidget(status_);
  setContextMenuPolicy(Qt::CustomContextMenu);
  connect(this, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { menu_->popup(mapToGlobal(at)); });

  map_ = new PointMap2D(this);
  map_->setObjectName(mapName);
  map_->InitializePM2DCtl(this, surface_);
  // Labels and marks that read on the white surface.
  map_->SetLabelColor(QColor(190, 0, 0));
  map_->SetPointEdgeColor(255, 140, 0);
  map_->SetClickedEdgeColor(160, 0, 160);

  viewRest_ = new QTimer(this);
  viewRest_->setSingleShot(true);
  viewRest_->setInterval(kViewRestMs);
  connect(viewRest_, &QTimer::timeout, this, &ClusterMapPanel::RecordView);
  connect(map_, &PointMap2D::ViewChanged, viewRest_, qOverload<>(&QTimer::start));
  UpdateButtons();
}

ClusterMapPanel::~ClusterMapPanel() = default;

void ClusterMapPanel::SetData(std::unique_ptr<ClusterMap> data) { data_ = std::move(data); }

void ClusterMapPanel::ViewsReset() {
  viewRest_->stop();
  if (map_->IsSet()) {
    history_.Reset(map_->View());
  } else {
    history_.Clear();
  }
  UpdateButtons();
}

void ClusterMapPanel::SetStatus(const QString& text) {
  status_->setText(text);
  status_->setVisible(!text.isEmpty());
}

QString ClusterMapPanel::Status() const { return status_->text(); }

void ClusterMapPanel::SetViewRestMs(int milliseconds) { viewRest_->setInterval(milliseconds); }

void ClusterMapPanel::RecordView() {
  viewRest_->stop();
  if (!map_->IsSet()) return;
  history_.Record(map_->View());
  UpdateButtons();
}

bool ClusterMapPanel::Back() {
  // A view still resting is the latest one: keep it before leaving it.
  if (viewRest_->isActive()) RecordView();
  const auto view = history_.Back();
  UpdateButtons();
  if (!view) return false;
  map_->SetView(*view);
  emit viewRestored();
  return true;
}

bool ClusterMapPanel::Forward() {
  if (viewRest_->isActive()) RecordView();
  const auto view = history_.Forward();
  UpdateButtons();
  if (!view) return false;
  map_->SetView(*view);
  emit viewRestored();
  return true;
}

void ClusterMapPanel::UpdateButtons() {
  back_->setEnabled(history_.CanGoBack());
  forward_->setEnabled(history_.CanGoForward());
}

bool ClusterMapPanel::SavePicture(const QString& path, QString& error) const {
  if (!map_->IsSet()) {
    error = u"The map is empty: there is nothing to save"_s;
    return false;
  }
  if (!map_->Snapshot().save(path, "PNG")) {
    error = u"Cannot write the picture file \""_s + path + u'"';
    return false;
  }
  return true;
}

bool ClusterMapPanel::SaveMapFiles(const QString& prefix, QString& error) const {
  if (data_ == nullptr || data_->NodeCount() < 1) {
    error = u"The map is empty: there is nothing to save"_s;
    return false;
  }
  std::string why;
  if (!WriteMapFiles(*data_, prefix.toStdString(), why)) {
    error = QString::fromStdString(why);
    return false;
  }
  return true;
}

QString ClusterMapPanel::SuggestedName(const QString& suffix) const {
  const QString kind = data_ ? QString::fromLatin1(MapKindName(data_->kind)) : mapName_;
  return kind + u"-map"_s + suffix;
}

void ClusterMapPanel::SavePicture_Click() {
  const QString path = platform_.GetSaveFileName(u"Save Picture"_s, SuggestedName(u".png"_s),
                                                 u"PNG picture (*.png)"_s);
  if (path.isEmpty()) return;
  QString error;
  if (!SavePicture(path, error))
    platform_.ShowMessage(error, kProgramTitle, MessageIcon::kExclamation);
}

void ClusterMapPanel::SaveMapFiles_Click() {
  QString path = platform_.GetSaveFileName(u"Save Map Files"_s, SuggestedName(u".graphml"_s),
                                           u"GraphML with CSV node and edge tables (*.graphml)"_s);
  if (path.isEmpty()) return;
  // The prefix is the name without its extension: "map.graphml" gives map_nodes.csv too.
  if (path.endsWith(u".graphml"_s, Qt::CaseInsensitive)) path.chop(8);
  QString error;
  if (!SaveMapFiles(path, error))
    platform_.ShowMessage(error, kProgramTitle, MessageIcon::kExclamation);
}

}  // namespace sylvora::app
