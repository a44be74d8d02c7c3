// Joins lines and arcs that meet end to end into contours.
//
// Idea: all ends of open paths lie in a hash of square cells as wide as the tolerance, so that the ends near a point are in the
// cell of that point and the eight around it. A chain starts with the first free path and grows at its tail by the nearest free
// end until that is its own head (it closes) or there is none; then it is turned round once, so that it grows at the other side
// as well.
// Holds throughout: both ends of a free path are in the hash; ends of paths that were taken drop out when a search meets them.

#include <zbr-drawing/contours.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <unordered_map>

namespace zbr::drawing {
namespace {

struct Cell {
  double x, y;
  bool operator==(const Cell& o) const { return x == o.x && y == o.y; }
};

struct CellHash {
  std::size_t operator()(const Cell& c) const { return std::hash<double>()(c.x) * 0x9E3779B97F4A7C15U + std::hash<double>()(c.y); }
};

// An end of a path: which path, and whether it is the last point.
struct End {
  std::size_t path = 0;
  bool last = false;
};

void Reverse(Path& path) {
  const std::size_t edges = path.points.size() - 1;
  std::reverse(path.points.begin(), path.points.end());
  std::reverse(path.curves.begin(), path.curves.end());
  for (Curve& curve : path.curves) {
    curve.at = edges - 1 - curve.at;
    std::swap(curve.t0, curve.t1);
  }
}

bool EndsInCurve(const Path& path) {
  return !path.curves.empty() && path.curves.back().at + 2 == path.points.size();
}

// Appends `next`, whose first point becomes the chain's last. Of the two coordinates of the joint a straight edge's is kept: it
// was read, an arc's was computed.
void Append(Path& chain, const Path& next) {
  const std::size_t joint = chain.points.size() - 1;
  if (EndsInCurve(chain)) chain.points.back() = next.points.front();
  chain.points.insert(chain.points.end(), next.points.begin() + 1, next.points.end());
  for (Curve curve : next.curves) {
    curve.at += joint;
    chain.curves.push_back(curve);
  }
}

class Joiner {
 public:
  Joiner(std::vector<Path>& paths, double tolerance) : paths_(paths), tolerance_(tolerance), free_(paths.size(), false) {
    for (std::size_t i = paths.size(); i-- > 0;) {
      if (paths[i].closed || paths[i].points.size() < 2) continue;
      free_[i] = true;
      ends_[CellOf(paths[i].points.back())].push_back({i, true});
      ends_[CellOf(paths[i].points.front())].push_back({i, false});
    }
  }

  std::vector<Path> Join() {
    std::vector<Path> joined;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (free_[i]) {
        joined.push_back(Grow(Take({i, false})));
      } else if (paths_[i].closed || paths_[i].points.size() == 1) {  // a single point stays, to be reported as open
        joined.push_back(std::move(paths_[i]));
      }
    }
    return joined;
  }

 private:
  Cell CellOf(const ZBR_PT& p) const {
    if (tolerance_ <= 0) return {p.x(), p.y()};
    return {std::floor(p.x() / tolerance_), std::floor(p.y() / tolerance_)};
  }

  ZBR_PT PointOf(const End& end) const { return end.last ? paths_[end.path].points.back() : paths_[end.path].points.front(); }

  // Takes a path out of the pool, turned so that it starts at the given end.
  Path Take(const End& end) {
    free_[end.path] = false;
    Path path = std::move(paths_[end.path]);
    paths_[end.path] = Path();
    if (end.last) Reverse(path);
    return path;
  }

  // Looks for an end of this cell that is nearer to p than `best`, or as near and earlier in the file. Later paths come first in
  // a cell: of many ends at one spot the first is found, and later dropped, at the back without looking at the others.
  void ConsiderCell(const Cell& cell, const ZBR_PT& p, double& best, std::optional<End>& nearest) {
    const auto found = ends_.find(cell);
    if (found == ends_.end()) return;
    std::vector<End>& ends = found->second;
    while (!ends.empty() && !free_[ends.back().path]) ends.pop_back();
    for (std::size_t i = ends.size(); i-- > 0;) {
      const End& end = ends[i];
      if (!free_[end.path]) continue;
      const double distance = p.Distance(PointOf(end));
      if (distance < best || (distance == best && (!nearest || end.path < nearest->path))) {
        best = distance;
        nearest = end;
      }
      if (distance == 0) return;
    }
  }

  // The nearest free end within the tolerance of p.
  std::optional<End> Nearest(const ZBR_PT& p) {
    double best = tolerance_;
    std::optional<End> nearest;
    const Cell home = CellOf(p);
    ConsiderCell(home, p, best, nearest);
    if (tolerance_ <= 0 || (nearest && best == 0)) return nearest;
    for (const double dx : {-1.0, 0.0, 1.0}) {
      for (const double dy : {-1.0, 0.0, 1.0}) {
        if (dx != 0 || dy != 0) ConsiderCell({home.x + dx, home.y + dy}, p, best, nearest);
      }
    }
    return nearest;
  }

  // Whether the chain's ends meet and no other end is nearer to its tail.
  bool Closes(const Path& chain, const std::optional<End>& rival) const {
    if (chain.points.size() < 3 && chain.curves.empty()) return false;
    const ZBR_PT& tail = chain.points.back();
    const double gap = tail.Distance(chain.points.front());
    return gap <= tolerance_ && (!rival || gap <= tail.Distance(PointOf(*rival)));
  }

  Path Grow(Path chain) {
    for (int side = 0; side < 2; ++side) {
      for (;;) {
        const std::optional<End> next = Nearest(chain.points.back());
        if (Closes(chain, next)) return Close(std::move(chain));
        if (!next) break;
        Append(chain, Take(*next));
      }
      Reverse(chain);
    }
    return chain;
  }

  static Path Close(Path chain) {
    if (!EndsInCurve(chain)) chain.points.front() = chain.points.back();
    chain.points.pop_back();
    chain.closed = true;
    return chain;
  }

  std::vector<Path>& paths_;
  double tolerance_;
  std::vector<bool> free_;
  std::unordered_map<Cell, std::vector<End>, CellHash> ends_;
};

}  // namespace

std::vector<Path> JoinPaths(std::vector<Path> paths, double tolerance) {
  return Joiner(paths, tolerance).Join();
}

}  // namespace zbr::drawing
