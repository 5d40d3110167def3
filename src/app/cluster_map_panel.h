#pragma once
// ClusterMapPanel: one map of the cluster explorer in its frame: the PointMap2D (objectName
// the map's control name, "TermSimVis", "ISVis" or "TweetSimVis") on its drawing surface
// (<name>"Container"), a row of controls with Back and Forward (<name>"Back", <name>"Forward"),
// a status line for what a build could not do (<name>"Status"), and the frame's context menu
// (Back, Forward, "Save Picture...", "Save Map Files..."). The panel keeps the map's data (the
// laid-out ClusterMap the map shows) and its view history.
//
// View history: every zoom or pan is recorded once the view has rested for kViewRestMs (the
// right-button zoom-out changes the view on every tick); Back and Forward show the recorded
// views again and raise viewRestored, since the map itself raises no ViewChanged for them.
// The map's own right-button zoom-out needs the right button, so the context menu belongs to
// the frame around the surface, not to the surface.
//
// Files: "Save Picture" writes what the surface shows as PNG; "Save Map Files" writes
// <prefix>_nodes.csv, <prefix>_edges.csv and <prefix>.graphml as sylvora-cli map does.

#include <memory>

#include <QGroupBox>

#include "app/map_view_history.h"
#include "session/cluster_map.h"
#include "views/point_map_2d.h"

class QHBoxLayout;
class QLabel;
class QMenu;
class QTimer;
class QToolButton;

namespace sylvora::app {

class Platform;

class ClusterMapPanel final : public QGroupBox {
  Q_OBJECT

 public:
  static constexpr int kViewRestMs = 250;

  ClusterMapPanel(Platform& platform, const QString& mapName, const QString& title,
                  QWidget* parent = nullptr);
  ~ClusterMapPanel() override;

  PointMap2D& Map() { return *map_; }
  const PointMap2D& Map() const { return *map_; }
  QWidget* Surface() const { return surface_; }
  // The row above the map where the owner adds its controls (after Back and Forward).
  QHBoxLayout* Controls() const { return controls_; }

  // The data the map shows; null before the first successful build.
  const ClusterMap* Data() const { return data_.get(); }
  // Takes a newly built map; the owner draws it. The history starts again at the home view
  // once the owner calls ViewsReset.
  void SetData(std::unique_ptr<ClusterMap> data);
  void ViewsReset();

  void SetStatus(const QString& text);
  QString Status() const;

  MapViewHistory& History() { return history_; }
  // Records the view now (also what the rest timer does).
  void RecordView();
  // How long a view must rest before it is recorded (kViewRestMs unless set, as tests do).
  void SetViewRestMs(int milliseconds);
  // Shows the previous / next recorded view; false when there is none.
  bool Back();
  bool Forward();

  // The files of the context menu. False with `error` set when nothing or not all was written.
  bool SavePicture(const QString& path, QString& error) const;
  bool SaveMapFiles(const QString& prefix, QString& error) const;
  // The menu actions: ask for a file name, write, report a failure in a message box.
  void SavePicture_Click();
  void SaveMapFiles_Click();
  QMenu* ContextMenu() const { return menu_; }

 signals:
  // Back or Forward changed the view.
  void viewRestored();

 private:
  void UpdateButtons();
  QString SuggestedName(const QString& suffix) const;

  Platform& platform_;
  QString mapName_;
  PointMap2D* map_ = nullptr;
  QWidget* surface_ = nullptr;
  QHBoxLayout* controls_ = nullptr;
  QToolButton* back_ = nullptr;
  QToolButton* forward_ = nullptr;
  QLabel* status_ = nullptr;
  QMenu* menu_ = nullptr;
  QTimer* viewRest_ = nullptr;
  std::unique_ptr<ClusterMap> data_;
  MapViewHistory history_;
};

}  // namespace sylvora::app
