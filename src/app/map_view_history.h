#pragma once
// MapViewHistory: the zooms and pans of one map, for Back and Forward. It holds the views in
// the order they were reached and a position in that list, as a web browser does: recording a
// new view after going back drops the views ahead of the position. The first entry is the
// whole map (its home view) once Reset is called. Equal consecutive views are kept once, and
// the oldest views go first beyond kMaxViews.

#include <cstddef>
#include <optional>
#include <vector>

#include "views/point_map_2d.h"

namespace sylvora::app {

class MapViewHistory {
 public:
  using View = PointMap2D::ViewRect;
  static constexpr std::size_t kMaxViews = 100;

  // A new map: the history is its home view alone.
  void Reset(const View& home);
  // Forgets everything (no map).
  void Clear();
  // The map now shows `view`.
  void Record(const View& view);

  bool CanGoBack() const { return position_ > 0; }
  bool CanGoForward() const { return position_ + 1 < views_.size(); }
  // The view to show, when there is one; the position moves to it.
  std::optional<View> Back();
  std::optional<View> Forward();

  std::size_t Size() const { return views_.size(); }
  std::size_t Position() const { return position_; }
  // The view at the position (a zero view when empty).
  View Current() const { return views_.empty() ? View{} : views_[position_]; }

 private:
  std::vector<View> views_;
  std::size_t position_ = 0;
};

bool SameView(const PointMap2D::ViewRect& a, const PointMap2D::ViewRect& b);

}  // namespace sylvora::app
