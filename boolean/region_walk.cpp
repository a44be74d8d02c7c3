// Idea: as in booleans.md, the result is followed from crossing to crossing, along A and B in turn. In general position crossings
// lie in the open and apart from each other, and along every ring B goes to the left of A and to the right by turns. So the next
// crossing of a path is simply the next one along the ring, nothing has to be cleaned up, and paths use each crossing once.
// Invariant: what is not certain is not walked. Crossings that come near each other, and rings along which directions do not
// alternate, which can't be, end the walk; so does a ring of the result that encloses next to nothing.
// Rings are taken as they are given, in either orientation: which way round one has the region on its left is noted with it.
#include "boolean/region_walk.h"

#include <algorithm>

#include "core/constants.h"
#include "core/scratch.h"
#include "core/small_sort.h"

namespace zbr {

RegionWalk::Way RegionWalk::WayOf(ZBR_BOOLEAN_OPE op) {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return {0, {true, false}};
    case ZBR_BOOL_B_MINUS_A:
      return {0, {false, true}};
    case ZBR_BOOL_AND:
      return {1, {true, true}};
    default:
      return {0, {true, true}};
  }
}

bool RegionWalk::Prepare(const RegionInput& input) {
  const bool areKnown = Search(input);
  search_.Clear();
  depths_.Clear();
  rings_.ClearIndex();
  if (!areKnown) return false;
  for (const int side : {0, 1}) {
    SortByEdge(side);
    SortOnEdges(side);
    if (side == 0) PutInOrderAlongA();
    FindRings(side);
    if (!AreApart(side)) return false;
  }
  FreeLarge(edgeBegin_);
  NoteDirections();
  return TakeTurns(0) && TakeTurns(1);
}

// What needs the hierarchy over the edges, which takes as much memory as all of the rest.
bool RegionWalk::Search(const RegionInput& input) {
  scale_ = WalkScale(input.bounds());
  return scale_.isUsable && rings_.Load(input, scale_) && search_.Run(rings_, scale_.eps, crossings_) &&
         depths_.Run(rings_, search_);
}

void RegionWalk::Along::Clear() {
  FreeLarge(at);
  FreeLarge(place);
  FreeLarge(ring);
  FreeLarge(begin);
}

void RegionWalk::Clear() {
  rings_.Clear();
  FreeLarge(crossings_);
  FreeLarge(edgeBegin_);
  along_[0].Clear();
  along_[1].Clear();
  FreeLarge(goesLeft_);
  FreeLarge(done_);
}

// Crossings by the edges that they lie on: places of side 1, and what will be those of side 0.
void RegionWalk::SortByEdge(int side) {
  constexpr std::size_t kWorthCounting = 16;  // edges for each crossing up to which they are counted
  const std::size_t n = crossings_.size();
  std::vector<std::uint32_t>& order = along_[side].at;
  order.resize(n);
  const auto edgeOf = [&](std::uint32_t c) { return crossings_[c].edge[side]; };
  if (rings_.edges(side) > kWorthCounting * n) {
    for (std::uint32_t c = 0; c < n; ++c) order[c] = c;
    std::sort(order.begin(), order.end(),
              [&](std::uint32_t x, std::uint32_t y) { return edgeOf(x) != edgeOf(y) ? edgeOf(x) < edgeOf(y) : x < y; });
    return;
  }
  edgeBegin_.assign(rings_.edges(side) + std::size_t{1}, 0);
  for (const OpenCrossing& c : crossings_) ++edgeBegin_[c.edge[side] + std::size_t{1}];
  for (std::size_t e = 1; e < edgeBegin_.size(); ++e) edgeBegin_[e] += edgeBegin_[e - 1];
  for (std::uint32_t c = 0; c < n; ++c) order[edgeBegin_[edgeOf(c)]++] = c;
}

void RegionWalk::SortOnEdges(int side) {
  std::vector<std::uint32_t>& order = along_[side].at;
  const auto edgeAt = [&](std::size_t k) { return crossings_[order[k]].edge[side]; };
  std::uint32_t ring = rings_.first(side);
  for (std::size_t first = 0; first < order.size();) {
    std::size_t last = first + 1;
    while (last < order.size() && edgeAt(last) == edgeAt(first)) ++last;
    if (last - first > 1) {
      while (edgeAt(first) - rings_.all()[ring].firstEdge >= rings_.all()[ring].size()) ++ring;
      const RingSpan points = rings_.all()[ring].points;
      const std::size_t v = edgeAt(first) - rings_.all()[ring].firstEdge;
      SortOnEdge(points[v + 1 == points.size() ? 0 : v + 1] - points[v], std::span(order).subspan(first, last - first));
    }
    first = last;
  }
}

// Crossings of one edge, mostly in order already, forwards or backwards.
void RegionWalk::SortOnEdge(const ZBR_PT& d, std::span<std::uint32_t> order) {
  constexpr std::size_t kFew = 12;
  const bool isFlat = std::fabs(d.x()) >= std::fabs(d.y());
  const bool isUpwards = (isFlat ? d.x() : d.y()) > 0.0;
  const auto less = [&](std::uint32_t x, std::uint32_t y) {
    const double px = isFlat ? crossings_[x].pt.x() : crossings_[x].pt.y();
    const double py = isFlat ? crossings_[y].pt.x() : crossings_[y].pt.y();
    return isUpwards ? px < py : py < px;
  };
  if (std::is_sorted(order.begin(), order.end(), less)) return;
  std::reverse(order.begin(), order.end());
  if (std::is_sorted(order.begin(), order.end(), less)) return;
  if (order.size() <= kFew) return SmallSort(order.begin(), order.end(), less);
  std::sort(order.begin(), order.end(), less);  // equal ones, which come near each other, end the walk
}

// From here on crossings are named by their places along A. Follows the cycles of the order, so that there is no second list of
// them.
void RegionWalk::PutInOrderAlongA() {
  std::vector<std::uint32_t>& order = along_[0].at;
  for (std::uint32_t start = 0; start < order.size(); ++start) {
    if (order[start] == start) continue;
    const OpenCrossing first = crossings_[start];
    std::uint32_t k = start;
    for (std::uint32_t next = order[k]; next != start; next = order[k]) {
      crossings_[k] = crossings_[next];
      order[k] = k;
      k = next;
    }
    crossings_[k] = first;
    order[k] = k;
  }
  order.clear();
}

void RegionWalk::FindRings(int side) {
  Along& along = along_[side];
  const auto n = static_cast<std::uint32_t>(crossings_.size());
  along.ring.resize(n);
  along.begin.assign(1, 0);
  std::uint32_t k = 0;
  for (const WalkedRing& ring : rings_.all().subspan(rings_.first(side), rings_.count(side))) {
    const auto number = static_cast<std::uint32_t>(along.begin.size()) - 1;
    while (k < n && crossings_[along.At(k)].edge[side] - ring.firstEdge < ring.size()) along.ring[k++] = number;
    along.begin.push_back(k);
  }
  along.place.clear();
  if (along.at.empty()) return;
  along.place.resize(n);
  for (std::uint32_t place = 0; place < n; ++place) along.place[along.at[place]] = place;
}

// Calls visit(before, k) for every place and the one before it on its ring; whether it always holds.
template <class Visit>
bool RegionWalk::HoldsForNeighbours(int side, Visit visit) const {
  const Along& along = along_[side];
  for (std::size_t ring = 0; ring + 1 < along.begin.size(); ++ring) {
    for (std::uint32_t k = along.begin[ring]; k < along.begin[ring + 1]; ++k) {
      const std::uint32_t before = (k == along.begin[ring] ? along.begin[ring + 1] : k) - 1;
      if (!visit(along.At(before), along.At(k))) return false;
    }
  }
  return true;
}

bool RegionWalk::AreApart(int side) const {
  const double least = kSurelyOff * scale_.eps;
  return HoldsForNeighbours(
      side, [&](std::uint32_t x, std::uint32_t y) { return crossings_[x].pt.Distance2(crossings_[y].pt) > least * least; });
}

// Which of the crossings go to the left where both rings have their regions on the left.
void RegionWalk::NoteDirections() {
  goesLeft_.resize(crossings_.size());
  const std::span<const WalkedRing> rings = rings_.all();
  for (std::uint32_t c = 0; c < crossings_.size(); ++c) {
    const bool a = rings[along_[0].ring[c]].isReversed;
    const bool b = rings[rings_.first(1) + along_[1].ring[along_[1].place[c]]].isReversed;
    goesLeft_[c] = crossings_[c].toLeft != (a != b) ? 1 : 0;
  }
}

bool RegionWalk::TakeTurns(int side) const {
  return HoldsForNeighbours(side, [&](std::uint32_t x, std::uint32_t y) { return goesLeft_[x] != goesLeft_[y]; });
}

bool RegionWalk::Combine(ZBR_BOOLEAN_OPE op, ZBR_REGION& result, bool isLast) {
  polygons_.Start(rings_.edges(0) + rings_.edges(1) + std::size_t{2} * crossings_.size());
  if (op != ZBR_BOOL_XOR) {
    if (!CombineOne(op)) return false;
  } else {
    if (!CombineOne(ZBR_BOOL_A_MINUS_B)) return false;
    polygons_.StartGroup();
    if (!CombineOne(ZBR_BOOL_B_MINUS_A)) return false;
  }
  if (isLast) Clear();
  polygons_.Write(result);
  return true;
}

bool RegionWalk::CombineOne(ZBR_BOOLEAN_OPE op) {
  return Trace(WayOf(op)) && AddUncrossed(op) && polygons_.Nest(scale_.eps);
}

bool RegionWalk::Trace(const Way& way) {
  done_.assign(crossings_.size(), 0);
  for (std::uint32_t start = 0; start < crossings_.size(); ++start) {
    if (goesLeft_[start] == 0 || done_[start] != 0) continue;
    std::uint32_t c = start;
    do {
      done_[c] = 1;
      c = Follow(c, way.firstSide, way.forward[way.firstSide]);
      c = Follow(c, 1 - way.firstSide, way.forward[1 - way.firstSide]);
    } while (c != start);
    if (!polygons_.EndRing(scale_)) return false;
  }
  return true;
}

// Appends the crossing and the vertices up to the next one along a side, which is returned.
std::uint32_t RegionWalk::Follow(std::uint32_t crossing, int side, bool forward) {
  const Along& along = along_[side];
  const std::uint32_t k = along.PlaceOf(crossing);
  const std::uint32_t number = along.ring[k];
  const WalkedRing& ring = rings_.all()[rings_.first(side) + number];
  const std::uint32_t first = along.begin[number];
  const std::uint32_t last = along.begin[number + 1] - 1;
  const bool goesUp = forward != ring.isReversed;
  const std::uint32_t next = goesUp ? (k == last ? first : k + 1) : (k == first ? last : k - 1);
  const std::uint32_t other = along.At(next);
  const std::uint32_t edge = crossings_[crossing].edge[side] - ring.firstEdge;
  const std::uint32_t otherEdge = crossings_[other].edge[side] - ring.firstEdge;
  polygons_.points().push_back(crossings_[crossing].pt);
  if (goesUp) {
    AppendStretch(ring.points, edge + 1, otherEdge + (next < k ? ring.size() : 0) - edge, true);
  } else {
    AppendStretch(ring.points, edge, edge + (next > k ? ring.size() : 0) - otherEdge, false);
  }
  return other;
}

// `count` vertices from `first` on, which may be one too many.
void RegionWalk::AppendStretch(RingSpan ring, std::uint32_t first, std::uint32_t count, bool goesUp) {
  std::vector<ZBR_PT>& points = polygons_.points();
  const auto n = static_cast<std::uint32_t>(ring.size());
  for (std::uint32_t v = first == n ? 0 : first; count > 0; v = goesUp ? 0 : n - 1) {
    const std::uint32_t run = std::min(count, goesUp ? n - v : v + 1);
    const auto from = ring.begin() + v;
    if (goesUp) {
      points.insert(points.end(), from, from + run);
    } else {
      points.insert(points.end(), std::make_reverse_iterator(from + 1), std::make_reverse_iterator(from + 1 - run));
    }
    count -= run;
  }
}

bool RegionWalk::AddUncrossed(ZBR_BOOLEAN_OPE op) {
  const std::span<const WalkedRing> rings = rings_.all();
  for (std::uint32_t r = 0; r < rings.size(); ++r) {
    const WalkedRing& ring = rings[r];
    if (ring.isCrossed) continue;
    const bool isSubtracted = op == (rings_.SideOf(r) == 0 ? ZBR_BOOL_B_MINUS_A : ZBR_BOOL_A_MINUS_B);
    if (ring.isInside != (op == ZBR_BOOL_AND || isSubtracted)) continue;
    AppendStretch(ring.points, ring.isReversed != isSubtracted ? ring.size() - 1 : 0, ring.size(), ring.isReversed == isSubtracted);
    if (!polygons_.EndRing(scale_)) return false;
  }
  return true;
}

}  // namespace zbr
