// Bridges to the holes make one ring of the loops; ears are cut off the ring; edges are flipped until no circle around a triangle
// holds the neighbour's point.
//
// A bridge is run along twice, and so its ends stand twice in the ring. Points are compared by their numbers for that reason.
#include <zbr-drawing/triangulate.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

namespace zbr::drawing {
namespace {

using Ring = std::vector<std::uint32_t>;
using Triangle = std::array<std::uint32_t, 3>;

// Twice the area below which three points count as standing in line, as a part of the box's area.
constexpr double kFlatArea = 1e-12;

class Triangulator {
 public:
  Triangulator(const std::vector<ZBR_PT>& points, const std::vector<Ring>& loops) : points_(points), holes_(loops) {
    ring_ = holes_.front();
    holes_.erase(holes_.begin());
    double size = 0.0;
    for (const std::uint32_t p : ring_) {
      const ZBR_PT d = points[p] - points[ring_.front()];
      size = std::max({size, std::abs(d.x()), std::abs(d.y())});
    }
    flatArea_ = kFlatArea * size * size;
  }

  std::vector<Triangle> Run() {
    while (!holes_.empty()) {
      if (!Bridge()) return {};
    }
    if (!CutEars()) return {};
    Flip();
    return Triangles();
  }

 private:
  double Area(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    return (points_[b] - points_[a]).OuterProduct(points_[c] - points_[a]);
  }
  bool IsLeft(std::uint32_t a, std::uint32_t b, std::uint32_t c) const { return Area(a, b, c) > flatArea_; }

  // Whether p lies strictly inside the corner at place i of the ring.
  bool InCorner(std::size_t i, std::uint32_t p) const {
    const std::uint32_t prev = ring_[(i + ring_.size() - 1) % ring_.size()], at = ring_[i], next = ring_[(i + 1) % ring_.size()];
    const bool ahead = IsLeft(at, next, p), behind = IsLeft(prev, at, p);
    return IsLeft(prev, at, next) ? ahead && behind : ahead || behind;
  }

  bool Meets(std::uint32_t a, std::uint32_t b, const Ring& loop) const {
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const std::uint32_t c = loop[i], d = loop[(i + 1) % loop.size()];
      if (c == a || c == b || d == a || d == b) continue;
      if (IsLeft(a, b, c) != IsLeft(a, b, d) && IsLeft(c, d, a) != IsLeft(c, d, b)) return true;
    }
    return false;
  }

  bool Sees(std::uint32_t a, std::uint32_t b) const {
    return !Meets(a, b, ring_) && std::none_of(holes_.begin(), holes_.end(), [&](const Ring& hole) { return Meets(a, b, hole); });
  }

  struct Pair {
    double distance2;
    std::size_t hole, inHole, inRing;
    bool operator<(const Pair& o) const { return distance2 < o.distance2; }
  };

  // Joins the hole that is nearest to the ring by the shortest bridge that crosses nothing.
  bool Bridge() {
    std::vector<Pair> pairs;
    for (std::size_t h = 0; h < holes_.size(); ++h) {
      for (std::size_t k = 0; k < holes_[h].size(); ++k) {
        for (std::size_t i = 0; i < ring_.size(); ++i)
          pairs.push_back({(points_[holes_[h][k]] - points_[ring_[i]]).Length2(), h, k, i});
      }
    }
    std::stable_sort(pairs.begin(), pairs.end());  // of equally long ones the first: corners of regular shapes are equally far
    // NOLINTNEXTLINE(readability-use-anyofallof): a deed, not a question
    for (const Pair& pair : pairs) {
      const std::uint32_t from = ring_[pair.inRing], to = holes_[pair.hole][pair.inHole];
      if (!InCorner(pair.inRing, to) || !Sees(from, to)) continue;
      Join(pair);
      return true;
    }
    return false;
  }

  void Join(const Pair& pair) {
    Ring hole = std::move(holes_[pair.hole]);
    holes_.erase(holes_.begin() + static_cast<std::ptrdiff_t>(pair.hole));
    std::rotate(hole.begin(), hole.begin() + static_cast<std::ptrdiff_t>(pair.inHole), hole.end());
    hole.push_back(hole.front());
    hole.push_back(ring_[pair.inRing]);
    ring_.insert(ring_.begin() + static_cast<std::ptrdiff_t>(pair.inRing) + 1, hole.begin(), hole.end());
  }

  // A corner is an ear when its triangle has an area and holds no other point, not even on its border.
  bool IsEar(std::size_t i) const {
    const std::uint32_t a = ring_[(i + ring_.size() - 1) % ring_.size()], b = ring_[i], c = ring_[(i + 1) % ring_.size()];
    if (!IsLeft(a, b, c)) return false;
    return std::none_of(ring_.begin(), ring_.end(), [&](std::uint32_t p) {
      return p != a && p != b && p != c && !IsLeft(b, a, p) && !IsLeft(c, b, p) && !IsLeft(a, c, p);
    });
  }

  bool CutEars() {
    std::size_t i = 0, tried = 0;
    while (ring_.size() >= 3) {
      if (tried++ > ring_.size()) return false;
      i = (i + 1) % ring_.size();
      if (!IsEar(i)) continue;
      Add(ring_[(i + ring_.size() - 1) % ring_.size()], ring_[i], ring_[(i + 1) % ring_.size()]);
      ring_.erase(ring_.begin() + static_cast<std::ptrdiff_t>(i));
      tried = 0;
    }
    return true;
  }

  void Add(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    third_[{a, b}] = c;
    third_[{b, c}] = a;
    third_[{c, a}] = b;
    open_.insert(open_.end(), {{a, b}, {b, c}, {c, a}});
  }

  bool InCircle(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t p) const {
    const ZBR_PT u = points_[a] - points_[p], v = points_[b] - points_[p], w = points_[c] - points_[p];
    const double det = u.Length2() * v.OuterProduct(w) + v.Length2() * w.OuterProduct(u) + w.Length2() * u.OuterProduct(v);
    const double size2 = u.Length2() + v.Length2() + w.Length2();
    return det > 1e-12 * size2 * size2;
  }

  void Flip() {
    while (!open_.empty()) {
      const auto [a, b] = open_.back();
      open_.pop_back();
      const auto left = third_.find({a, b}), right = third_.find({b, a});
      if (left == third_.end() || right == third_.end()) continue;
      const std::uint32_t c = left->second, d = right->second;
      if (!IsLeft(d, c, a) || !IsLeft(c, d, b) || !InCircle(a, b, c, d)) continue;
      third_.erase(left);
      third_.erase(right);
      Add(a, d, c);
      Add(d, b, c);
    }
  }

  std::vector<Triangle> Triangles() const {
    std::vector<Triangle> triangles;
    for (const auto& [edge, c] : third_) {
      if (edge.first < edge.second && edge.first < c) triangles.push_back({edge.first, edge.second, c});
    }
    return triangles;
  }

  const std::vector<ZBR_PT>& points_;
  double flatArea_ = 0.0;
  Ring ring_;
  std::vector<Ring> holes_;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> third_;  // of the triangle left of an edge
  std::vector<std::pair<std::uint32_t, std::uint32_t>> open_;               // edges that may have to be flipped
};

}  // namespace

std::vector<Triangle> Triangulate(const std::vector<ZBR_PT>& points, const std::vector<Ring>& loops) {
  return Triangulator(points, loops).Run();
}

ZBR_PT3 NormalOf(const std::vector<ZBR_PT3>& corners) {
  ZBR_PT3 sum;
  for (std::size_t i = 1; i + 1 < corners.size(); ++i) sum += (corners[i] - corners[0]).OuterProduct(corners[i + 1] - corners[0]);
  return sum;
}

std::vector<ZBR_PT> Flattened(const std::vector<ZBR_PT3>& corners, const ZBR_PT3& normal) {
  const ZBR_DROP_TYPE drop = zbrDropType(normal);
  const double along = drop == ZBR_DROP_X ? normal.x() : drop == ZBR_DROP_Y ? normal.y() : normal.z();
  std::vector<ZBR_PT> flat(corners.size());
  for (std::size_t i = 0; i < corners.size(); ++i) {
    zbrDropPt(&flat[i], corners[i], drop);
    if (along < 0) flat[i].Set(-flat[i].x(), flat[i].y());
  }
  return flat;
}

}  // namespace zbr::drawing
