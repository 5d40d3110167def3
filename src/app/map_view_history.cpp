#include "app/map_view_history.h"

namespace sylvora::app {

bool SameView(const PointMap2D::ViewRect& a, const PointMap2D::ViewRect& b) {
  return a.left == b.left && a.right == b.right && a.top == b.top && a.bottom == b.bottom;
}

void MapViewHistory::Reset(const View& home) {
  views_.assign(1, home);
  position_ = 0;
}

void MapViewHistory::Clear() {
  views_.clear();
  position_ = 0;
}

void MapViewHistory::Record(const View& view) {
  if (!views_.empty() && SameView(views_[position_], view)) return;
  if (!views_.empty()) views_.resize(position_ + 1);
  views_.push_back(view);
  if (views_.size() > kMaxViews) views_.erase(views_.begin());
  position_ = views_.size() - 1;
}

std::optional<MapViewHistory::View> MapViewHistory::Back() {
  if (!CanGoBack()) return std::nullopt;
  --position_;
  return views_[position_];
}

std::optional<MapViewHistory::View> MapViewHistory::Forward() {
  if (!CanGoForward()) return std::nullopt;
  ++position_;
  return views_[position_];
}

}  // namespace sylvora::app
