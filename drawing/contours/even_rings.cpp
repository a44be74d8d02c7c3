// Idea: where every node has an even number of ends, lines can be walked as rings, and what lies within an odd number of them is
// the same whichever rings are chosen. Chosen are those that rings which touch in points were before they were cut there: at each
// node neighbours in the order of directions belong together, so that no ring crosses another one, and a walk that comes back to a
// node has closed a ring there.
//
// Difficulty: curves that touch leave a node in one direction. So directions are those to places a little way along the curves, at
// one distance from the node, where what bends more is further aside.
//
// The order of the paths does not matter: ends are sorted by direction, walks begin at the node that comes first.
#include "drawing/contours/even_rings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

namespace zbr::drawing {
namespace {

constexpr double kPartOfReach = 0.125;  // of the shortest first edge at a node: how far from it directions are taken

// The first edge of a path seen from one of its ends.
class FirstEdge {
 public:
  FirstEdge(const Path& path, bool fromBack) {
    const std::size_t n = path.points.size();
    from_ = path.points[fromBack ? n - 1 : 0];
    to_ = path.points[fromBack ? n - 2 : 1];
    for (const Curve& curve : path.curves) {
      if (curve.at != (fromBack ? n - 2 : 0)) continue;
      curve_ = &curve;
      start_ = fromBack ? curve.t1 : curve.t0;
      middle_ = (curve.t0 + curve.t1) / 2;
      from_ = curve.At(start_);
      to_ = curve.At(middle_);
    }
  }

  double Reach() const { return from_.Distance(to_); }

  // From the end to where the edge is this far from it, as a number that grows with the angle.
  double DirectionAt(double distance) const {
    ZBR_PT to = to_;
    if (curve_ != nullptr) {
      constexpr int kHalvings = 60;
      double near = start_, far = middle_;
      for (int i = 0; i < kHalvings; ++i) {
        const double t = (near + far) / 2;
        (curve_->At(t).Distance(from_) < distance ? near : far) = t;
      }
      to = curve_->At(far);
    }
    const ZBR_PT d = to - from_;
    const double length = std::abs(d.x()) + std::abs(d.y());
    if (!(length > 0)) return 0.0;
    return d.x() < 0 ? (d.y() < 0 ? -2.0 : 2.0) - d.y() / length : d.y() / length;
  }

 private:
  ZBR_PT from_, to_;
  const Curve* curve_ = nullptr;
  double start_ = 0.0, middle_ = 0.0;
};

void SortByDirection(const std::vector<Path>& paths, std::vector<std::size_t>& ends) {
  std::vector<std::pair<double, std::size_t>> directions;
  double reach = std::numeric_limits<double>::infinity();
  for (const std::size_t end : ends) {
    const double own = FirstEdge(paths[end / 2], end % 2 != 0).Reach();
    if (own > 0) reach = std::min(reach, own);
  }
  for (const std::size_t end : ends)
    directions.emplace_back(FirstEdge(paths[end / 2], end % 2 != 0).DirectionAt(reach * kPartOfReach), end);
  std::sort(directions.begin(), directions.end());
  std::transform(directions.begin(), directions.end(), ends.begin(), [](const auto& d) { return d.second; });
}

class Walk {
 public:
  Walk(const EndNodes& nodes, const std::vector<std::vector<std::size_t>>& ends) : nodes_(nodes) {
    for (const std::vector<std::size_t>& atNode : ends) {
      for (std::size_t i = 0; i + 1 < atNode.size(); i += 2) {
        partnerOf_[atNode[i]] = atNode[i + 1];
        partnerOf_[atNode[i + 1]] = atNode[i];
      }
    }
  }

  std::vector<EndCycle> Run(const std::vector<std::vector<std::size_t>>& ends) {
    for (const std::vector<std::size_t>& atNode : ends) {
      for (const std::size_t end : atNode) {
        if (partnerOf_.contains(end)) WalkFrom(end);
      }
    }
    return std::move(rings_);
  }

 private:
  // Takes the ends of the path off.
  void WalkFrom(std::size_t end) {
    for (;;) {
      placeOf_[nodes_.nodeOf[end]] = way_.size();
      way_.push_back(end);
      const std::size_t arrived = end ^ 1U, next = partnerOf_.at(arrived);
      partnerOf_.erase(end);
      partnerOf_.erase(arrived);
      const auto before = placeOf_.find(nodes_.nodeOf[arrived]);
      if (before != placeOf_.end()) Close(before->second);
      if (!partnerOf_.contains(next)) return;
      end = next;
    }
  }

  // What was walked since this place is a ring.
  void Close(std::size_t place) {
    EndCycle& ring = rings_.emplace_back(way_.begin() + static_cast<std::ptrdiff_t>(place), way_.end());
    for (const std::size_t end : ring) placeOf_.erase(nodes_.nodeOf[end]);
    way_.resize(place);
    std::rotate(ring.begin(),
                std::min_element(ring.begin(), ring.end(),
                                 [&](std::size_t a, std::size_t b) { return nodes_.nodeOf[a] < nodes_.nodeOf[b]; }),
                ring.end());
  }

  const EndNodes& nodes_;
  std::unordered_map<std::size_t, std::size_t> partnerOf_;  // of ends not walked yet
  std::vector<std::size_t> way_;                            // ends by which the walk left nodes
  std::unordered_map<std::uint32_t, std::size_t> placeOf_;  // of the nodes on the way
  std::vector<EndCycle> rings_;
};

}  // namespace

std::vector<EndCycle> EvenRings(const std::vector<Path>& paths, const EndNodes& nodes,
                                const std::vector<std::vector<std::size_t>>& ends) {
  std::vector<std::vector<std::size_t>> sorted = ends;
  for (std::vector<std::size_t>& atNode : sorted) {
    if (atNode.size() > 2) SortByDirection(paths, atNode);
  }
  return Walk(nodes, sorted).Run(sorted);
}

}  // namespace zbr::drawing
