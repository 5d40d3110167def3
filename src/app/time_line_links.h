#pragma once
// What ties the time line explorer to the "Load and Index" page, made by the window so that
// neither page reaches into the other:
//  - a row click in an all-term list shows the term's occurrences in the message list;
//  - a term clicked in an interval list is selected (and scrolled to) in its all-term list;
//  - a completed build fills the temporal columns of the five all-term lists;
//  - the interval unit chosen in ETI_Combo is the unit the next load derives elapsed time in;
//  - the all-users list allows several selected rows, pops up the "Users" menu on the right
//    button, and "Copy Selected Users" puts their texts on the clipboard, each followed by
//    CR LF;
//  - with LinkClusterExplorer, the cluster explorer's maps and the time line follow each other.

#include <QObject>

namespace sylvora {
class Session;
}

namespace sylvora::app {

class ClusterExplorerPage;
class LoadIndexPage;
class Platform;
class TimeLineExplorerPage;

class TimeLineLinks final : public QObject {
  Q_OBJECT

 public:
  // All four outlive this object (the window owns them all).
  TimeLineLinks(LoadIndexPage& loadIndex, TimeLineExplorerPage& timeLine, Session& session,
                Platform& platform, QObject* parent = nullptr);

  // Links the cluster explorer too: a build marks its maps stale; interval hovers and
  // selections follow each other both ways; its word, tweet and visible-tweets events show in
  // the message list.
  void LinkClusterExplorer(ClusterExplorerPage& clusters);

  // The texts that "Copy Selected Users" puts on the clipboard.
  QString SelectedUsersText() const;

 private:
  void FillTermListSpans();
  void SelectInAllTermList(int kind, const QString& term);

  LoadIndexPage& loadIndex_;
  TimeLineExplorerPage& timeLine_;
  Session& session_;
  Platform& platform_;
};

}  // namespace sylvora::app
