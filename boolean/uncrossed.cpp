// Decides about polygons without crossings by inclusion.
//
// Such a polygon lies wholly in the other region's material, in one of its holes, outside, or coincides with one of its rings. What
// lies inside what is asked only of pairs that a box test on the first vertex leaves open; one join of box hierarchies finds
// them for all polygons at once.
#include "boolean/uncrossed.h"

#include <algorithm>
#include <span>

#include "core/box_tree.h"
#include "core/tolerance_state.h"
#include "loops/include.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

constexpr unsigned Bit(ZBR_LOOP_REL rel) {
  return 1U << static_cast<unsigned>(rel);
}

constexpr unsigned kBitSame = Bit(ZBR_LR_SAME);
constexpr unsigned kBitSameAsHole = Bit(ZBR_LR_SAME_AS_HOLE);
constexpr unsigned kBitInside = Bit(ZBR_LR_INSIDE);
constexpr unsigned kBitVoid = Bit(ZBR_LR_IN_HOLE) | Bit(ZBR_LR_OUTSIDE);

// The relations with which a polygon is kept. Boundary that coincides is kept once: from A in a union or intersection; in a
// difference where the minuend's ring meets the opposite kind of ring, so that material remains on one side of it.
struct KeepRule {
  unsigned outer;
  unsigned hole;
};
constexpr KeepRule kMinuend{kBitVoid | kBitSameAsHole, kBitVoid | kBitSame};
constexpr KeepRule kSubtrahend{kBitInside, kBitInside};
constexpr KeepRule kEither{kBitInside | kBitVoid, kBitInside | kBitVoid};

constexpr KeepRule kKeepTable[5][2] = {
    /* A - B */ {kMinuend, kSubtrahend},
    /* B - A */ {kSubtrahend, kMinuend},
    /* or    */ {{kBitVoid | kBitSame, kBitVoid | kBitSameAsHole}, {kBitVoid, kBitVoid}},
    /* and   */ {{kBitInside | kBitSame, kBitInside | kBitSameAsHole}, {kBitInside, kBitInside}},
    /* xor   */ {kEither, kEither},
};

enum class Lies { kApart, kSame, kInside };

// Finds relations to one family.
class Relater {
 public:
  explicit Relater(const std::vector<Polygon>& other) : other_(other), eps_(t_tolerance.eps) {
    probes_.reserve(other.size());
    for (const Polygon& p : other) probes_.emplace_back(**p.loop);
  }

  // `candidates` are the polygons of the family, by number ascending, that may contain p.
  ZBR_LOOP_REL Relate(const ZBR_LOOP& p, std::span<const std::uint32_t> candidates) {
    LoopProbe probe(p);
    bool inHole = false;
    for (std::size_t i = 0; i < candidates.size();) {
      const std::uint32_t outer = candidates[i++];
      if (other_[outer].key.poly() != 0) continue;  // a hole of a loop that does not contain p
      const Lies lies = LieOf(probe, probes_[outer]);
      if (lies == Lies::kSame) return ZBR_LR_SAME;
      if (lies == Lies::kApart) continue;
      const Lies inHoles = LieInHoles(probe, other_[outer].key.loop(), candidates, i);
      if (inHoles == Lies::kSame) return ZBR_LR_SAME_AS_HOLE;
      if (inHoles == Lies::kApart) return ZBR_LR_INSIDE;
      inHole = true;
    }
    return inHole ? ZBR_LR_IN_HOLE : ZBR_LR_OUTSIDE;
  }

 private:
  // p in or as one of the holes of `loop`, which follow from candidates[i] on.
  Lies LieInHoles(LoopProbe& p, int loop, std::span<const std::uint32_t> candidates, std::size_t& i) {
    for (; i < candidates.size() && other_[candidates[i]].key.loop() == loop; ++i) {
      const Lies lies = LieOf(p, probes_[candidates[i]]);
      if (lies != Lies::kApart) return lies;
    }
    return Lies::kApart;
  }

  Lies LieOf(LoopProbe& p, LoopProbe& ring) {
    if (AreApart(p.box(), ring.box(), eps_)) return Lies::kApart;
    const int verdict = SampleInside(p, ring, eps_, scratch_);
    if (verdict != 0) return verdict > 0 ? Lies::kInside : Lies::kApart;
    return SampleInside(ring, p, eps_, scratch_) == 0 ? Lies::kSame : Lies::kApart;
  }

  const std::vector<Polygon>& other_;
  double eps_;
  std::vector<LoopProbe> probes_;
  IncludeScratch scratch_;
};

// Polygons put into a hierarchy along a space-filling curve.
struct OrderedPolygons {
  std::vector<std::uint32_t> number;  // of each leaf
  BoxTree tree;

  template <class BoxOfPolygon>
  OrderedPolygons(const std::vector<Polygon>& polygons, const std::vector<std::uint32_t>& chosen, BoxOfPolygon boxOf) {
    std::vector<ZBR_PT> places;
    for (const std::uint32_t i : chosen) places.push_back((**polygons[i].loop).pt().front());
    const std::span<Box> leaves = tree.StartLeaves(chosen.size());
    std::size_t leaf = 0;
    for (const std::uint32_t i : SpatialOrder(places)) {
      number.push_back(chosen[i]);
      leaves[leaf++] = boxOf(**polygons[chosen[i]].loop);
    }
    tree.BuildInner();
  }
};

// Those that are wanted and take part: set up, of finite coordinates. Rings without points lie nowhere.
template <class IsWanted>
std::vector<std::uint32_t> Choose(const std::vector<Polygon>& polygons, IsWanted isWanted) {
  std::vector<std::uint32_t> chosen;
  for (std::uint32_t i = 0; i < polygons.size(); ++i) {
    if (!isWanted(i)) continue;
    ZBR_LOOP& loop = **polygons[i].loop;
    loop.Setup();
    if (!loop.pt().empty() && IsFiniteRing(loop)) chosen.push_back(i);
  }
  return chosen;
}

}  // namespace

std::vector<UncrossedPolygon> RelateUncrossed(const std::vector<Polygon>& polygons, const std::vector<bool>& touched,
                                              const std::vector<Polygon>& other) {
  const std::vector<std::uint32_t> untouched = Choose(polygons, [&](std::uint32_t i) { return !touched[i]; });
  if (untouched.empty()) return {};
  const std::vector<std::uint32_t> containers = Choose(other, [](std::uint32_t) { return true; });
  std::vector<ZBR_LOOP_REL> relations(polygons.size(), ZBR_LR_OUTSIDE);
  if (!containers.empty()) {
    const double margin = 2.0 * t_tolerance.eps;
    const OrderedPolygons vertices(polygons, untouched, [](const ZBR_LOOP& loop) {
      Box box;
      box.Add(loop.pt().front());
      return box;
    });
    const OrderedPolygons boxes(other, containers, [margin](const ZBR_LOOP& loop) { return BoxOf(loop).Widened(margin); });
    Relater relater(other);
    std::vector<std::uint32_t> candidates;
    BoxJoin::Run(vertices.tree, boxes.tree, [&](std::uint32_t leaf, std::span<const std::uint32_t> found) {
      candidates.clear();
      for (const std::uint32_t f : found) candidates.push_back(boxes.number[f]);
      std::sort(candidates.begin(), candidates.end());
      const std::uint32_t i = vertices.number[leaf];
      relations[i] = relater.Relate(**polygons[i].loop, candidates);
      return true;
    });
  }
  std::vector<UncrossedPolygon> related;
  related.reserve(untouched.size());
  for (const std::uint32_t i : untouched) related.push_back({&polygons[i], relations[i]});
  return related;
}

bool IsKept(ZBR_BOOLEAN_OPE op, int side, bool isHole, ZBR_LOOP_REL relation) {
  if (op < ZBR_BOOL_A_MINUS_B || op > ZBR_BOOL_XOR) return false;
  const KeepRule& rule = kKeepTable[op][side];
  return ((isHole ? rule.hole : rule.outer) & Bit(relation)) != 0;
}

}  // namespace zbr
