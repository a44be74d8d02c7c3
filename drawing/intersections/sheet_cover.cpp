#include "drawing/intersections/sheet_cover.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "drawing/intersections/border_winding.h"
#include "drawing/model/disjoint_sets.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Cosine of the angle to which normals of a part differ from its first one. Two parts of 30 degrees that meet are both seen from
// one of the directions.
constexpr double kAlike = 0.86;
// Triangles up to which a part is not cut: looking at pairs of so few takes no longer than at their borders.
constexpr std::uint32_t kFew = 32;
// How often a triangle is looked at, and how many parts there are: beyond that, looking at pairs of triangles is faster.
constexpr std::size_t kMostLooks = 4;
constexpr std::size_t kMostParts(std::size_t triangles) {
  return triangles / 64;
}

GridPoint MiddleOf(const std::vector<GridPoint>& points, const std::array<std::uint32_t, 3>& c) {
  const GridPoint &p = points[c[0]], &q = points[c[1]], &r = points[c[2]];
  constexpr double kThird = 1.0 / 3.0;
  return {(p.x + q.x + r.x) * kThird, (p.y + q.y + r.y) * kThird, (p.z + q.z + r.z) * kThird};
}

// The turn in which a surface that faces there is seen best, of some.
unsigned BestTurn(Turns turns, const GridPoint& facing) {
  const std::array<double, kPictures.size()> along = {facing.x,
                                                      facing.y,
                                                      facing.z,
                                                      (facing.y + facing.z) * 0.7,
                                                      (facing.y - facing.z) * 0.7,
                                                      (facing.x + facing.z) * 0.7,
                                                      (facing.z - facing.x) * 0.7,
                                                      (facing.x + facing.y) * 0.7,
                                                      (facing.x - facing.y) * 0.7};
  unsigned best = 0;
  double most = -HUGE_VAL;
  for (unsigned turn = 0; turn < 2 * kPictures.size(); ++turn) {
    const double value = turn % 2 == 0 ? along[turn / 2] : -along[turn / 2];
    if ((turns >> turn & 1U) == 0 || !(value > most)) continue;
    most = value;
    best = turn;
  }
  return best;
}

}  // namespace

SheetCover::SheetCover(const std::vector<GridPoint>& points, const Connectivity& mesh, const std::vector<ZBR_PT3>& normals,
                       std::span<const std::array<std::uint32_t, 3>> corners, std::uint32_t first, unsigned threads)
    : points_(points),
      mesh_(mesh),
      normals_(normals),
      corners_(corners),
      first_(first),
      turns_(corners.size()),
      place_(corners.size()),
      order_(corners.size()) {
  FindTurns(threads);
  Grow();
  if (parts_.size() > kMostParts(corners.size())) return;
  std::vector<std::uint32_t> open(parts_.size());
  std::iota(open.begin(), open.end(), 0U);
  std::size_t looked = 0;
  while (!open.empty()) {
    for (const std::uint32_t k : open) looked += parts_[k].end - parts_[k].begin;
    if (looked > kMostLooks * corners.size() || parts_.size() > kMostParts(corners.size())) return;
    RunParallel(open.size(), threads, [&](std::size_t k) { LookAt(parts_[open[k]]); });
    std::erase_if(open, [&](std::uint32_t k) { return parts_[k].isSheet || parts_[k].end - parts_[k].begin <= kFew; });
    CutAll(open, threads);
  }
  FindDoubtful(threads);
  isMade_ = true;
}

// In the triangles' own order, in which their points are near each other.
void SheetCover::FindTurns(unsigned threads) {
  RunInRanges(corners_.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      const auto& c = corners_[t];
      turns_[t] = TurnsOf(PlaneThrough(points_[c[0]], points_[c[1]], points_[c[2]]));
      place_[t] = Connectivity::kNone;
    }
  });
}

// Each part takes in what its triangles meet across edges, as long as that faces about where its first triangle does. A triangle
// that does not will not later, so that the part has its border at once.
void SheetCover::Grow() {
  std::uint32_t end = 0;
  for (std::uint32_t seed = first_; seed < first_ + corners_.size(); ++seed) {
    if (place_[seed - first_] != Connectivity::kNone) continue;
    parts_.emplace_back();
    Part& part = parts_.back();
    part.begin = end;
    const auto take = [&](std::uint32_t t) {
      place_[t - first_] = end;
      order_[end++] = t;
    };
    take(seed);
    for (std::uint32_t k = part.begin; k < end; ++k) {
      const std::uint32_t t = order_[k];
      for (std::size_t i = 0; i < 3; ++i) {
        const std::uint32_t across = mesh_.Across(mesh_.edges[t][i], t);
        if (across != Connectivity::kNone) {
          const std::uint32_t place = place_[across - first_];
          if (place == Connectivity::kNone && normals_[across].InnerProduct(normals_[seed]) > kAlike) {
            take(across);
            continue;
          }
          if (place != Connectivity::kNone && place >= part.begin) continue;
        }
        part.border.push_back({corners_[t - first_][i], corners_[t - first_][(i + 1) % 3], across});
      }
    }
    part.end = end;
    if (parts_.size() > kMostParts(corners_.size())) return;
  }
}

// The piece of each triangle: what hangs together, if that is less than the part and not just crumbs, or else what is on one side
// of the middle of its box, along its longer sides.
std::vector<std::uint32_t> SheetCover::PiecesOf(const Part& part) const {
  std::vector<std::uint32_t> pieces = ComponentsOf(part);
  std::uint32_t components = 0;
  for (std::uint32_t k = 0; k < pieces.size(); ++k) components += pieces[k] == k ? 1 : 0;
  if (components > 1 && std::size_t{components} * kFew <= pieces.size()) return pieces;
  const FloatBox box = part.Tree().Root();
  const std::array<double, 3> size = {static_cast<double>(box.high[0]) - box.low[0], static_cast<double>(box.high[1]) - box.low[1],
                                      static_cast<double>(box.high[2]) - box.low[2]};
  const double longest = *std::max_element(size.begin(), size.end());
  const auto middle = [&](std::size_t i) {
    return size[i] > 0.5 * longest ? 0.5 * (static_cast<double>(box.low[i]) + box.high[i]) : HUGE_VAL;
  };
  const GridPoint cut = {middle(0), middle(1), middle(2)};
  for (std::uint32_t k = 0; k < pieces.size(); ++k) {
    const GridPoint m = MiddleOf(points_, corners_[order_[part.begin + k] - first_]);
    pieces[k] = (m.x > cut.x ? 1U : 0U) + (m.y > cut.y ? 2U : 0U) + (m.z > cut.z ? 4U : 0U);
  }
  return pieces;
}

// Of each triangle the first one that it hangs together with, counted from the part's begin.
std::vector<std::uint32_t> SheetCover::ComponentsOf(const Part& part) const {
  const std::uint32_t count = part.end - part.begin;
  DisjointSets sets(count);
  for (std::uint32_t k = 0; k < count; ++k) {
    const std::uint32_t t = order_[part.begin + k];
    for (const std::uint32_t edge : mesh_.edges[t]) {
      const std::uint32_t across = mesh_.Across(edge, t);
      if (across < t && Contains(part, across)) sets.Unite(k, place_[across - first_] - part.begin);
    }
  }
  std::vector<std::uint32_t> components(count);
  for (std::uint32_t k = 0; k < count; ++k) components[k] = sets.Find(k);
  return components;
}

// Puts the triangles of a part in the order of their pieces; the ends of these.
std::vector<std::uint32_t> SheetCover::Sort(const Part& part, const std::vector<std::uint32_t>& pieces) {
  std::vector<std::uint32_t> ends(pieces.size() + 1), before(&order_[part.begin], &order_[part.begin] + pieces.size());
  for (const std::uint32_t piece : pieces) ++ends[piece + 1];
  ends[0] = part.begin;
  for (std::size_t i = 1; i < ends.size(); ++i) ends[i] += ends[i - 1];
  for (std::size_t k = 0; k < before.size(); ++k) {
    const std::uint32_t place = ends[pieces[k]]++;
    order_[place] = before[k];
    place_[before[k] - first_] = place;
  }
  ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
  if (ends.front() == part.begin) ends.erase(ends.begin());
  return ends;
}

// What is cut gives way to its pieces.
void SheetCover::CutAll(std::vector<std::uint32_t>& open, unsigned threads) {
  std::vector<std::vector<std::uint32_t>> cuts(open.size());
  RunParallel(open.size(), threads, [&](std::size_t k) { cuts[k] = PiecesOf(parts_[open[k]]); });
  RunParallel(open.size(), threads, [&](std::size_t k) { cuts[k] = Sort(parts_[open[k]], cuts[k]); });
  std::vector<std::uint32_t> pieces;
  for (std::size_t k = 0; k < open.size(); ++k) {
    if (cuts[k].size() < 2) continue;
    std::uint32_t begin = parts_[open[k]].begin, number = open[k];
    for (const std::uint32_t end : cuts[k]) {
      parts_[number] = Part();
      parts_[number].begin = begin;
      parts_[number].end = begin = end;
      pieces.push_back(number);
      if (end == cuts[k].back()) break;
      number = static_cast<std::uint32_t>(parts_.size());
      parts_.emplace_back();
    }
  }
  RunParallel(pieces.size(), threads, [&](std::size_t k) { FindBorder(parts_[pieces[k]]); });
  open = std::move(pieces);
}

void SheetCover::LookAt(Part& part) const {
  part.turns = kAllTurns;
  std::vector<FloatBox> leaves;
  leaves.reserve((part.end - part.begin + kChunk - 1) / kChunk);
  for (std::uint32_t k = part.begin; k < part.end; ++k) {
    const FloatBox box = BoxOf(order_[k]);
    (k - part.begin) % kChunk == 0 ? leaves.push_back(box) : leaves.back().Add(box);
    part.turns &= turns_[order_[k] - first_];
  }
  part.boxes.resize(TreeView::BoxCount(static_cast<std::uint32_t>(leaves.size())));
  part.chunks.resize(leaves.size());
  BuildTree(leaves, part.boxes.data(), part.chunks, 1);
  part.isSheet = part.turns != 0 && IsSheet(part);
}

void SheetCover::FindBorder(Part& part) const {
  for (std::uint32_t k = part.begin; k < part.end; ++k) {
    const std::uint32_t t = order_[k];
    for (std::size_t i = 0; i < 3; ++i) {
      const std::uint32_t across = mesh_.Across(mesh_.edges[t][i], t);
      if (Contains(part, across)) continue;
      part.border.push_back({corners_[t - first_][i], corners_[t - first_][(i + 1) % 3], across});
    }
  }
}

// Twice the area within, seen along the axes.
GridPoint SheetCover::FacingOf(const Part& part) const {
  GridPoint facing;
  const GridPoint o = points_[part.border[0].from];
  for (const Edge& edge : part.border) {
    const GridPoint &p = points_[edge.from], &q = points_[edge.to];
    const double px = p.x - o.x, py = p.y - o.y, pz = p.z - o.z, qx = q.x - o.x, qy = q.y - o.y, qz = q.z - o.z;
    facing.x += py * qz - pz * qy;
    facing.y += pz * qx - px * qz;
    facing.z += px * qy - py * qx;
  }
  return facing;
}

// The border but for what it has in common with another part.
void SheetCover::AddSeen(const Part& part, unsigned turn, const Part& without, std::vector<BorderEdge>& edges) const {
  for (const Edge& edge : part.border) {
    if (Contains(without, edge.across)) continue;
    edges.push_back({edge.from, edge.to, See(turn, points_[edge.from]), See(turn, points_[edge.to])});
  }
}

bool SheetCover::IsSheet(const Part& part) const {
  if (part.border.empty()) return false;
  std::vector<BorderEdge> edges;
  edges.reserve(part.border.size());
  AddSeen(part, BestTurn(part.turns, FacingOf(part)), part, edges);
  return WindsOnce(edges);
}

bool SheetCover::AreSheet(const Pair& pair) const {
  const Part &a = parts_[pair[0]], &b = parts_[pair[1]];
  if (!a.isSheet || !b.isSheet || (a.turns & b.turns) == 0) return false;
  const GridPoint f = FacingOf(a), g = FacingOf(b);
  const unsigned turn = BestTurn(a.turns & b.turns, {f.x + g.x, f.y + g.y, f.z + g.z});
  std::vector<BorderEdge> edges;
  edges.reserve(a.border.size() + b.border.size());
  AddSeen(a, turn, b, edges);
  AddSeen(b, turn, a, edges);
  return WindsOnce(edges);
}

void SheetCover::FindDoubtful(unsigned threads) {
  std::vector<FloatBox> leaves;
  leaves.reserve(parts_.size());
  for (const Part& part : parts_) leaves.push_back(part.Tree().Root());
  std::vector<FloatBox> boxes(TreeView::BoxCount(static_cast<std::uint32_t>(leaves.size())));
  std::vector<std::uint32_t> order(leaves.size());
  BuildTree(leaves, boxes.data(), order, threads);
  std::vector<Pair> pairs;
  for (std::uint32_t k = 0; k < parts_.size(); ++k) {
    if (!parts_[k].isSheet) pairs.push_back({k, k});
  }
  auto visit = [&](std::uint32_t i, std::uint32_t j) { pairs.push_back({order[i], order[j]}); };
  TreeView(boxes.data(), static_cast<std::uint32_t>(order.size())).JoinSelf(visit);
  std::vector<std::uint8_t> isDoubtful(pairs.size());
  const auto meet = [&](const Pair& pair) {
    const auto stop = [](std::uint32_t, std::uint32_t) { return false; };
    return !parts_[pair[0]].Tree().Join(parts_[pair[1]].Tree(), stop);
  };
  RunParallel(pairs.size(), threads, [&](std::size_t k) {
    isDoubtful[k] = pairs[k][0] == pairs[k][1] || (meet(pairs[k]) && !AreSheet(pairs[k])) ? 1 : 0;
  });
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    if (isDoubtful[k] != 0) doubtful_.push_back(pairs[k]);
  }
}

}  // namespace zbr::drawing
