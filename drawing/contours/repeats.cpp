// Leaves out lines and arcs that are drawn twice. Joined end to end, one and its repetition would make a path to and fro, and what
// is left of their contour would not close.

#include <zbr-drawing/contours.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace zbr::drawing {
namespace {

using Key = std::array<double, 13>;

bool IsSingle(const Path& path) {
  return !path.closed && path.points.size() == 2;
}

// The same for the same line, drawn in either direction. Arcs and splines run one way, and three places on the way tell them from
// others between the same ends.
Key KeyOf(const Path& path) {
  ZBR_PT from = path.points.front(), to = path.points.back();
  if (!path.curves.empty()) {
    const Curve& arc = path.curves.front();
    Key key = {from.x(), from.y(), to.x(), to.y(), arc.centre.x(), arc.centre.y(), arc.t1 - arc.t0};
    std::size_t k = 7;
    for (const double part : {0.25, 0.5, 0.75}) {
      const ZBR_PT p = arc.At(arc.t0 + part * (arc.t1 - arc.t0));
      key[k++] = p.x();
      key[k++] = p.y();
    }
    return key;
  }
  if (std::pair(to.x(), to.y()) < std::pair(from.x(), from.y())) std::swap(from, to);
  return {from.x(), from.y(), to.x(), to.y()};
}

bool IsFinite(const Key& key) {
  return std::all_of(key.begin(), key.end(), [](double number) { return std::isfinite(number); });
}

}  // namespace

std::size_t DropRepeats(std::vector<Path>& paths) {
  std::vector<std::pair<Key, std::size_t>> singles;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (IsSingle(paths[i]) && IsFinite(KeyOf(paths[i]))) singles.emplace_back(KeyOf(paths[i]), i);
  }
  std::sort(singles.begin(), singles.end());
  std::vector<bool> isRepeat(paths.size(), false);
  for (std::size_t k = 1; k < singles.size(); ++k) isRepeat[singles[k].second] = singles[k].first == singles[k - 1].first;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!isRepeat[i] && kept++ != i) paths[kept - 1] = std::move(paths[i]);
  }
  const std::size_t dropped = paths.size() - kept;
  paths.resize(kept);
  return dropped;
}

}  // namespace zbr::drawing
