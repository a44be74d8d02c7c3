// Idea: of a union's border every piece lies outside of all regions but its own. So for every piece of every ring, cut at its
// crossings, count the other regions that cover it. The count changes by one at each crossing, up where the ring enters the other
// region and down where it leaves it; and at a crossing the counts of the two rings tell each other, so that it is looked up for
// one vertex of each set of rings that cross. The union's border follows the pieces with a count of 0: to a crossing along the ring
// that enters there, on along the one that leaves.
// Difficulty: only certain crossings may be used. Where a vertex comes near another ring, crossings lie close together, or the
// counts contradict each other, there is no answer.
// Invariants: crossing 2c of a ring is where it leaves the other, 2c + 1 where the other enters it; counts are never negative.
#include "boolean/union_walk.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>

#include "core/cost.h"
#include "core/planar_inline.h"
#include "loops/edge_index.h"
#include "loops/locator.h"

namespace zbr {
namespace {

// A proper crossing of two rings: [0] leaves the other's region there, [1] enters it.
struct RingCrossing {
  ZBR_PT at;
  std::uint32_t ring[2];
  std::uint32_t edge[2];
  double t[2];
};

class UnionWalk {
 public:
  UnionWalk(const UnitedRings& regions, double tolerance, bool withSources)
      : rings_(regions.rings.Rings()), regionOf_(rings_.size()), withSources_(withSources) {
    firstEdge_.reserve(rings_.size());
    std::uint32_t edges = 0;
    std::uint32_t region = 0;
    for (std::uint32_t r = 0; r < rings_.size(); ++r) {
      while (region < regions.ends.size() && regions.ends[region] <= r) ++region;
      regionOf_[r] = region;
      firstEdge_.push_back(edges);
      edges += static_cast<std::uint32_t>(rings_[r].size());
    }
    const Box box = BoxOfRings(rings_);
    const double size = std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
    near_ = std::max(kNearTolerances * tolerance, kNearRounding * size);
  }

  std::optional<FlatRegion> Run() {
    if (!FindCrossings() || !SortPasses() || !CountCovers()) return std::nullopt;
    for (std::uint32_t c = 0; c < crossings_.size(); ++c) {
      if (covers_[2 * c + 1] == 0 && !walked_[c] && !Trace(c)) return std::nullopt;
    }
    for (std::uint32_t r = 0; r < rings_.size(); ++r) {
      if (passBegin_[r] == passBegin_[r + 1] && atStart_[r] == 0) KeepRing(r);
    }
    return std::move(result_);
  }

 private:
  // Distances up to which things are too close: in tolerances, and in parts of the largest coordinate, where that is above what
  // rounding moves a crossing of edges that meet at an angle of kLeastSine.
  static constexpr double kNearTolerances = 8.0;
  static constexpr double kLeastSine = 1e-4;
  static constexpr double kNearRounding = 16.0 * std::numeric_limits<double>::epsilon() / kLeastSine;

  struct Edge {
    ZBR_PT from;
    ZBR_PT to;
    std::uint32_t ring;
    std::uint32_t number;  // in the ring
  };

  bool FindCrossings();
  bool MeetLeaves(std::uint32_t a, std::uint32_t b);
  std::uint32_t Read(std::uint32_t leaf, const Box& box, Edge* edges) const;
  bool Meet(const Edge& a, const Edge& b);
  bool SortPasses();
  bool CountCovers();
  bool CountFrom(std::uint32_t ring, std::int32_t covers);
  std::optional<std::int32_t> CoversOfStart(std::uint32_t ring);
  int WindingAround(const ZBR_PT& p, std::uint32_t ring);
  bool Trace(std::uint32_t start);
  void KeepRing(std::uint32_t ring);
  void AddEdge(const ZBR_PT& from, std::uint32_t ring, std::uint32_t edge, double t0, double t1);
  bool EndRing(std::size_t first);

  const RingCrossing& CrossingOf(std::uint32_t pass) const { return crossings_[pass / 2]; }
  std::uint32_t RingOf(std::uint32_t pass) const { return CrossingOf(pass).ring[pass % 2]; }

  std::vector<RingSpan> rings_;
  std::vector<std::uint32_t> regionOf_;   // by ring
  std::vector<std::uint32_t> firstEdge_;  // by ring, counted through all rings
  bool withSources_;
  double near_ = 0.0;
  EdgeIndex index_;
  std::vector<RingCrossing> crossings_;
  // A crossing is passed twice: 2c stands for the ring that leaves there, 2c + 1 for the one that enters.
  std::vector<std::uint32_t> passes_;     // along each ring
  std::vector<std::uint32_t> passBegin_;  // by ring
  std::vector<std::uint32_t> place_;      // of a pass in passes_
  std::vector<std::int32_t> covers_;      // by pass: how many other regions cover its ring before it
  std::vector<std::int32_t> atStart_;     // by ring: at its first vertex; -1 not known yet
  BoxTree boxes_;                         // around rings, in spatial order
  std::vector<std::uint32_t> ordered_;    // rings in that order
  std::vector<std::unique_ptr<RingLocator>> locators_;
  std::size_t lookedAt_ = 0;
  std::vector<bool> walked_;  // by crossing
  FlatRegion result_;
};

bool UnionWalk::FindCrossings() {
  std::vector<IndexedRing> rings;
  rings.reserve(rings_.size());
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    const auto n = static_cast<std::uint32_t>(rings_[r].size());
    rings.push_back({BoxOfRing(rings_[r]), rings_[r].data(), n, 0, n, r, false});
  }
  index_.Build(std::move(rings), near_, 0.0);
  return BoxJoin::Run(index_.tree(), index_.tree(), [this](std::uint32_t a, std::span<const std::uint32_t> near) {
    for (auto b = std::upper_bound(near.begin(), near.end(), a); b != near.end(); ++b) {
      if (!MeetLeaves(a, *b)) return false;
    }
    return true;
  });
}

// The edges of a leaf that come near the box.
std::uint32_t UnionWalk::Read(std::uint32_t leaf, const Box& box, Edge* edges) const {
  const EdgeIndex::Leaf& at = index_.leaf(leaf);
  const std::uint32_t ring = index_.rings()[at.ring].id;
  std::uint32_t number = at.first;
  std::uint32_t count = 0;
  index_.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) {
    if ((SidesBeyond(p, box) & SidesBeyond(q, box)) == 0) edges[count++] = {p, q, ring, number};
    ++number;
  });
  return count;
}

bool UnionWalk::MeetLeaves(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t ringA = index_.rings()[index_.leaf(a).ring].id;
  const std::uint32_t ringB = index_.rings()[index_.leaf(b).ring].id;
  if (regionOf_[ringA] == regionOf_[ringB]) return true;
  const Box* boxes = index_.tree().Level(0);
  Edge edgesA[EdgeIndex::kLeafEdges];
  Edge edgesB[EdgeIndex::kLeafEdges];
  const std::uint32_t countA = Read(a, boxes[b], edgesA);
  const std::uint32_t countB = countA == 0 ? 0 : Read(b, boxes[a], edgesB);
  for (std::uint32_t i = 0; i < countA && countB > 0; ++i) {
    const Box around = BoxOfSegment(edgesA[i].from, edgesA[i].to).Widened(near_);
    for (std::uint32_t j = 0; j < countB; ++j) {
      if ((SidesBeyond(edgesB[j].from, around) & SidesBeyond(edgesB[j].to, around)) != 0) continue;
      if (!Meet(edgesA[i], edgesB[j])) return false;
    }
  }
  return true;
}

// False when it is not certain whether and how the edges cross.
bool UnionWalk::Meet(const Edge& a, const Edge& b) {
  ZBR_COUNT(pairs, 1);
  const ZBR_PT d = a.to - a.from;
  const ZBR_PT e = b.to - b.from;
  const ZBR_PT w = b.from - a.from;
  const double lengthA = d.Length();
  const double lengthB = e.Length();
  const double turn = Cross(d, e);
  // How far the ends of either edge lie on the left of the other, times its length.
  const double b0 = Cross(d, w);
  const double b1 = b0 + turn;
  const double leastB = near_ * lengthA;
  if ((b0 > leastB && b1 > leastB) || (b0 < -leastB && b1 < -leastB)) return true;
  const double a0 = Cross(w, e);
  const double a1 = a0 - turn;
  const double leastA = near_ * lengthB;
  if ((a0 > leastA && a1 > leastA) || (a0 < -leastA && a1 < -leastA)) return true;
  const double clearB = std::min(std::fabs(b0), std::fabs(b1));
  const double clearA = std::min(std::fabs(a0), std::fabs(a1));
  if (!(clearB > leastB && clearA > leastA && std::fabs(turn) > kLeastSine * lengthA * lengthB)) return false;
  const double tA = a0 / turn;
  const double tB = -b0 / turn;
  if (!(tA > 0.0 && tA < 1.0 && tB > 0.0 && tB < 1.0)) return false;
  const ZBR_PT at = a.from + d * tA;
  if (turn > 0.0) {  // b goes to the left of a, where a's region is
    crossings_.push_back({at, {a.ring, b.ring}, {a.number, b.number}, {tA, tB}});
  } else {
    crossings_.push_back({at, {b.ring, a.ring}, {b.number, a.number}, {tB, tA}});
  }
  return true;
}

// False when two passes of a ring lie too close together.
bool UnionWalk::SortPasses() {
  passBegin_.assign(rings_.size() + 1, 0);
  for (const RingCrossing& c : crossings_) {
    ++passBegin_[c.ring[0] + 1];
    ++passBegin_[c.ring[1] + 1];
  }
  std::partial_sum(passBegin_.begin(), passBegin_.end(), passBegin_.begin());
  passes_.resize(2 * crossings_.size());
  place_.resize(passes_.size());
  std::vector<std::uint32_t> end(passBegin_.begin(), passBegin_.end() - 1);
  for (std::uint32_t p = 0; p < passes_.size(); ++p) passes_[end[RingOf(p)]++] = p;
  const auto comesFirst = [this](std::uint32_t p, std::uint32_t q) {
    const RingCrossing& a = CrossingOf(p);
    const RingCrossing& b = CrossingOf(q);
    return a.edge[p % 2] != b.edge[q % 2] ? a.edge[p % 2] < b.edge[q % 2] : a.t[p % 2] < b.t[q % 2];
  };
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    const auto first = passes_.begin() + passBegin_[r];
    const auto last = passes_.begin() + passBegin_[r + 1];
    std::sort(first, last, comesFirst);
    const auto areClose = [this](std::uint32_t p, std::uint32_t q) {
      return CrossingOf(p).at.Distance2(CrossingOf(q).at) <= near_ * near_;
    };
    if (first == last) continue;
    if (std::adjacent_find(first, last, areClose) != last || areClose(*first, last[-1])) return false;
    for (auto at = first; at != last; ++at) place_[*at] = static_cast<std::uint32_t>(at - passes_.begin());
  }
  return true;
}

bool UnionWalk::CountCovers() {
  covers_.resize(passes_.size());
  atStart_.assign(rings_.size(), -1);
  walked_.assign(crossings_.size(), false);
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    if (atStart_[r] >= 0) continue;
    const std::optional<std::int32_t> covers = CoversOfStart(r);
    if (!covers || *covers < 0 || !CountFrom(r, *covers)) return false;
  }
  for (std::uint32_t p = 0; p < covers_.size(); p += 2) {
    if (covers_[p + 1] < 0 || covers_[p] != covers_[p + 1] + 1) return false;
  }
  return true;
}

// Goes on from a ring, by what covers its first vertex, to all that it crosses, directly or by others.
bool UnionWalk::CountFrom(std::uint32_t ring, std::int32_t covers) {
  std::vector<std::uint32_t> waiting{ring};
  atStart_[ring] = covers;
  // Of the part of a ring before its first pass, by what covers it before the given one.
  const auto startOf = [this](std::uint32_t pass, std::int32_t before) {
    for (std::uint32_t i = passBegin_[RingOf(pass)]; i < place_[pass]; ++i) before += passes_[i] % 2 == 0 ? 1 : -1;
    return before;
  };
  while (!waiting.empty()) {
    const std::uint32_t r = waiting.back();
    waiting.pop_back();
    std::int32_t count = atStart_[r];
    for (std::uint32_t i = passBegin_[r]; i < passBegin_[r + 1]; ++i) {
      const std::uint32_t pass = passes_[i];
      const bool leaves = pass % 2 == 0;
      covers_[pass] = count;
      count += leaves ? -1 : 1;
      // The other ring is covered by what covers both, and comes from outside or inside the region of this one.
      const std::uint32_t other = pass ^ 1U;
      if (atStart_[RingOf(other)] >= 0) continue;
      const std::int32_t start = startOf(other, leaves ? covers_[pass] - 1 : covers_[pass] + 1);
      if (start < 0) return false;
      atStart_[RingOf(other)] = start;
      waiting.push_back(RingOf(other));
    }
    if (count != atStart_[r]) return false;
  }
  return true;
}

// How many other regions cover the first vertex. Nothing when it takes too long to tell.
std::optional<std::int32_t> UnionWalk::CoversOfStart(std::uint32_t ring) {
  constexpr std::size_t kMostLooks = 64;  // per ring
  if (boxes_.empty()) {
    std::vector<ZBR_PT> centres;
    std::vector<Box> boxes;
    for (const RingSpan& r : rings_) {
      boxes.push_back(BoxOfRing(r));
      centres.push_back(boxes.back().Center());
    }
    ordered_ = SpatialOrder(centres);
    const std::span<Box> leaves = boxes_.StartLeaves(ordered_.size());
    for (std::size_t i = 0; i < ordered_.size(); ++i) leaves[i] = boxes[ordered_[i]];
    boxes_.BuildInner();
    locators_.resize(rings_.size());
  }
  const ZBR_PT& p = rings_[ring].front();
  std::int32_t covers = 0;
  boxes_.Walk([&p](const Box& box, int, std::uint32_t) { return box.Contains(p); },
              [&](std::uint32_t leaf) {
                const std::uint32_t other = ordered_[leaf];
                if (regionOf_[other] != regionOf_[ring]) covers += WindingAround(p, other);
                return ++lookedAt_ <= kMostLooks * rings_.size();
              });
  return lookedAt_ <= kMostLooks * rings_.size() ? std::optional(covers) : std::nullopt;
}

// Of a ring that p is not near to.
int UnionWalk::WindingAround(const ZBR_PT& p, std::uint32_t ring) {
  constexpr std::size_t kLarge = 64;  // points
  const RingSpan points = rings_[ring];
  if (points.size() > kLarge) {
    if (locators_[ring] == nullptr) locators_[ring] = std::make_unique<RingLocator>(std::span(&rings_[ring], 1));
    const bool isInside = locators_[ring]->Locate(p, near_ / kNearTolerances) == ZBR_PI_IN;
    return !isInside ? 0 : TwiceArea(points) > 0.0 ? 1 : -1;
  }
  int winding = 0;
  ZBR_PT from = points.back();
  for (const ZBR_PT& to : points) {
    const bool isUp = from.y() <= p.y();
    if (isUp != (to.y() <= p.y())) {
      const bool isLeft = Cross(to - from, p - from) > 0.0;
      if (isUp == isLeft) winding += isUp ? 1 : -1;
    }
    from = to;
  }
  return winding;
}

void UnionWalk::AddEdge(const ZBR_PT& from, std::uint32_t ring, std::uint32_t edge, double t0, double t1) {
  result_.points.push_back(from);
  if (!withSources_) return;
  result_.sources.push_back({firstEdge_[ring] + edge, t0, t1});
  result_.sourceEnds.push_back(static_cast<std::uint32_t>(result_.sources.size()));
}

// False when the ring has next to no area.
bool UnionWalk::EndRing(std::size_t first) {
  const RingSpan ring = std::span(result_.points).subspan(first);
  result_.ringEnds.push_back(static_cast<std::uint32_t>(result_.points.size()));
  return std::fabs(TwiceArea(ring)) > near_ * Perimeter(ring);
}

bool UnionWalk::Trace(std::uint32_t start) {
  const std::size_t first = result_.points.size();
  std::uint32_t crossing = start;
  do {
    if (walked_[crossing]) return false;
    walked_[crossing] = true;
    const RingCrossing& c = crossings_[crossing];
    const std::uint32_t ring = c.ring[0];
    const std::uint32_t place = place_[std::size_t{2} * crossing];
    const bool isLast = place + 1 == passBegin_[ring + 1];
    const std::uint32_t next = passes_[isLast ? passBegin_[ring] : place + 1];
    if (next % 2 == 0 || covers_[next] != 0) return false;  // what nothing covers can only be entered
    const RingCrossing& to = crossings_[next / 2];
    const auto n = static_cast<std::uint32_t>(rings_[ring].size());
    std::uint32_t edge = c.edge[0];
    std::uint32_t vertices = to.edge[1] + (isLast ? n : 0) - edge;
    ZBR_PT from = c.at;
    double t0 = c.t[0];
    for (; vertices > 0; --vertices) {
      AddEdge(from, ring, edge, t0, 1.0);
      edge = edge + 1 < n ? edge + 1 : 0;
      from = rings_[ring][edge];
      t0 = 0.0;
    }
    AddEdge(from, ring, edge, t0, to.t[1]);
    crossing = next / 2;
  } while (crossing != start);
  return EndRing(first);
}

void UnionWalk::KeepRing(std::uint32_t ring) {
  const RingSpan points = rings_[ring];
  for (std::uint32_t i = 0; i < points.size(); ++i) AddEdge(points[i], ring, i, 0.0, 1.0);
  result_.ringEnds.push_back(static_cast<std::uint32_t>(result_.points.size()));
}

}  // namespace

std::optional<FlatRegion> WalkUnion(const UnitedRings& regions, double tolerance, bool withSources) {
  return UnionWalk(regions, tolerance, withSources).Run();
}

}  // namespace zbr
