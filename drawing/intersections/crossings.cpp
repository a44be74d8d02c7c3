// Finds the triangles that pass through each other, and the ends of what they have in common.
//
// Idea: two triangles have a stretch in common when an edge of one passes through the other, twice. Whether it does is a matter of
// a few signs of volumes: its ends lie on different sides of the other's plane, and it passes all three sides of the other on the
// same hand. The stretch ends there; so does that of the triangle next to it along the edge, and curves follow from names alone.
// Difficulty: bodies in contact have corners in each other's planes and edges on each other's edges, and a sign may be 0. Each
// sign that is 0 must be decided, and all of them as if by one and the same movement of the points, or curves break.
// Way taken: of two shells, the second counts as moved as a whole by a distance smaller than any number, along x, less along y,
// less still along z (a simulated perturbation, Edelsbrunner and Muecke 1990). Faces that lie on each other stay parallel and do
// not cross: no line runs through a contact. The second body has come a little closer, and its border in the first one's surface is
// the seam; or it has moved away, and there is none. Parallel edges in one plane stay in one plane, but then the end points of each
// lie on one side of the other's triangle, and that sign is not asked for. Within one shell, where there is no second body, each
// point counts as moved by a distance of its own, smaller than anything of the points before it. Only four points on one line have
// no sign then; edges that lie on each other within a shell give no stretch.
#include "drawing/intersections/crossings.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <utility>

#include "drawing/intersections/convex.h"
#include "drawing/intersections/exact_sign.h"
#include "drawing/intersections/plain_fans.h"
#include "drawing/intersections/sheet_cover.h"
#include "drawing/intersections/slender_tree.h"
#include "drawing/intersections/star_shaped.h"
#include "drawing/intersections/triangle_trees.h"
#include "drawing/model/patches.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

using Corners = std::array<std::uint32_t, 3>;
using Lines = std::vector<IntersectionLine>;

// What counts as moved when a sign is 0.
enum class Moves { kEachPoint, kFirst, kSecond };

Moves Other(Moves moves) {
  return moves == Moves::kFirst ? Moves::kSecond : moves == Moves::kSecond ? Moves::kFirst : moves;
}

class Signs {
 public:
  explicit Signs(const std::vector<GridPoint>& points) : points_(points) {}

  // The side of the triangle, which is the first, on which a point, which is the second, lies.
  int Side(const Corners& t, std::uint32_t p, Moves moves) const {
    if (const int sign = SignOf(Volume6(At(t[0]), At(t[1]), At(t[2]), At(p)))) return sign;
    if (moves == Moves::kEachPoint) return PointByPoint({t[0], t[1], t[2], p});
    const int sign = CrossSign(At(t[0]), At(t[1]), At(t[0]), At(t[2]));
    return moves == Moves::kSecond ? sign : -sign;
  }

  // The same of several points.
  template <std::size_t n>
  std::array<int, n> Sides(const Corners& t, const std::array<std::uint32_t, n>& points, Moves moves) const {
    const PlaneThrough plane(At(t[0]), At(t[1]), At(t[2]));
    std::array<int, n> sides;
    int moved = 0;
    for (std::size_t i = 0; i < n; ++i) {
      sides[i] = plane.SideIfClear(At(points[i]));
      if (sides[i] != 0) continue;
      // Faces that lie on each other ask this most often.
      if (moves != Moves::kEachPoint && plane.IsSurelyOn(At(points[i]))) {
        if (moved == 0) moved = SideOfMoved(t, plane, moves);
        sides[i] = moved;
      } else {
        sides[i] = Side(t, points[i], moves);
      }
    }
    return sides;
  }

  // On which hand the edge from p to q passes the one from u to v.
  int Hand(std::uint32_t p, std::uint32_t q, std::uint32_t u, std::uint32_t v, Moves moves) const {
    if (const int sign = SignOf(Volume6(At(p), At(q), At(u), At(v)))) return sign;
    if (moves == Moves::kEachPoint) return PointByPoint({p, q, u, v});
    const int sign = CrossSign(At(u), At(v), At(p), At(q));
    return moves == Moves::kSecond ? sign : -sign;
  }

  double Height(const Corners& t, std::uint32_t p) const { return Volume6(At(t[0]), At(t[1]), At(t[2]), At(p)); }

 private:
  const GridPoint& At(std::uint32_t p) const { return points_[p]; }

  // Of a point in the plane of a triangle of another shell.
  int SideOfMoved(const Corners& t, const PlaneThrough& plane, Moves moves) const {
    int sign = plane.CrossSignIfClear();
    if (sign == 0) sign = CrossSign(At(t[0]), At(t[1]), At(t[0]), At(t[2]));
    return moves == Moves::kSecond ? sign : -sign;
  }

  // The first point whose movement changes the volume decides. A volume changes its sign when two points change places.
  int PointByPoint(std::array<std::uint32_t, 4> p) const {
    int parity = 1;
    for (std::size_t i = 0; i < 3; ++i) {
      const auto first = std::min_element(p.begin() + static_cast<std::ptrdiff_t>(i), p.end());
      if (*first == p[i]) continue;
      std::swap(*first, p[i]);
      parity = -parity;
    }
    for (std::size_t moved = 0; moved < 4; ++moved) {
      std::array<std::uint32_t, 4> q = p;
      std::swap(q[moved], q[3]);
      const int sign = CrossSign(At(q[0]), At(q[1]), At(q[0]), At(q[2]));
      if (sign != 0) return parity * (moved == 3 ? sign : -sign);
    }
    return 0;
  }

  const std::vector<GridPoint>& points_;
};

// How many pairs of triangles, most of which share a corner, are to be looked at: whether it is worth knowing beforehand the
// corners at which nothing can be found, and the patches in which nothing is wanted.
enum class SharedCorners { kFew, kMany };

class Finder {
 public:
  Finder(const Model& model, const Connectivity& mesh, unsigned threads, const SettleLines& settle,
         std::vector<std::uint32_t> patches)
      : model_(model),
        mesh_(mesh),
        threads_(threads),
        settle_(settle),
        grid_(OnGrid(mesh.points, model.low, model.high)),
        signs_(grid_),
        trees_(grid_, mesh.corners, model.shellBegin, mesh.pointBegin, threads),
        arePatchesKnown_(!patches.empty()),
        patches_(std::move(patches)) {
    if (!arePatchesKnown_) patches_.resize(mesh.corners.size(), Connectivity::kNone);
  }

  Lines Run() {
    for (std::size_t s = 0; s < model_.ShellCount();) {
      if (IsLarge(s)) {
        Within(s++, threads_, found_);
        continue;
      }
      const std::size_t first = s;
      while (s < model_.ShellCount() && !IsLarge(s)) ++s;
      InPieces(s - first, threads_, found_, [&](std::size_t i, Lines& found) { Within(first + i, 1, found); });
    }
    BetweenShells();
    return std::move(found_);
  }

 private:
  // Triangles of a shell that is worth sharing out.
  static constexpr std::size_t kLarge = 4096;
  // Triangles from which on parts of a shell are worth looking for.
  static constexpr std::size_t kWorthParting = 1024;

  bool IsLarge(std::size_t s) const { return TrianglesOf(s).size() >= kLarge; }

  // Runs work(i, where its lines go) for all i below count, some hundred of them as one piece of work, so that the lines come in
  // order.
  template <class Work>
  static void InPieces(std::size_t count, unsigned threads, Lines& found, Work work) {
    constexpr std::size_t kPieces = 64;
    const std::size_t size = count / kPieces + 1, pieces = (count + size - 1) / size;
    std::vector<Lines> parts(pieces);
    RunParallel(pieces, threads, [&](std::size_t piece) {
      Lines& foundHere = threads > 1 ? parts[piece] : found;
      for (std::size_t i = piece * size; i < std::min((piece + 1) * size, count); ++i) work(i, foundHere);
    });
    for (const Lines& part : parts) found.insert(found.end(), part.begin(), part.end());
  }

  // Of one shell.
  void Within(std::size_t s, unsigned threads, Lines& found) {
    if (IsSurelyApart(s)) return;
    const std::size_t from = found.size();
    const bool isFound = FindByParts(s, threads, found);
    if (isFound && found.size() == from) return;
    if (!arePatchesKnown_) FindPatchesOf(s, model_, mesh_, patches_);
    trees_.Make(s, threads);
    ChooseTree(s, threads, [&](const TreeView& tree, std::span<const std::uint32_t> order) {
      if (isFound) {
        DropWithinPatches(found, from);
        SortAsFoundBy(order, found, from);
      } else {
        found.resize(from);
        FindByTree(tree, order, threads, found);
      }
    });
    settle_(found, from);
  }

  // Whether a look at the shell as a whole shows that it does not meet itself.
  bool IsSurelyApart(std::size_t s) const {
    if (model_.facing[s] == Facing::kUnknown) return false;
    const std::uint32_t firstPoint = mesh_.pointBegin[s], points = mesh_.pointBegin[s + 1] - firstPoint;
    return IsStarShaped(grid_, firstPoint, points, TrianglesOf(s)) || IsConvex(model_, mesh_, s);
  }

  std::span<const Corners> TrianglesOf(std::size_t s) const {
    return {&mesh_.corners[model_.shellBegin[s]], model_.shellBegin[s + 1] - model_.shellBegin[s]};
  }

  // Looks at what parts of the shell leave in doubt. False when that is too much; then some lines may be missing.
  bool FindByParts(std::size_t s, unsigned threads, Lines& all) const {
    if (TrianglesOf(s).size() < kWorthParting || !IsOrientedAlike(s)) return false;
    const SheetCover cover(grid_, mesh_, model_.normals, TrianglesOf(s), model_.shellBegin[s], threads);
    if (!cover.IsMade()) return false;
    std::atomic<bool> isAll{true};
    InPieces(cover.Doubtful().size(), threads, all, [&](std::size_t k, Lines& found) {
      const auto visit = [&](std::uint32_t t, std::uint32_t u) {
        MeetWithin(LeafOf(t), LeafOf(u), t, u, SharedCorners::kFew, found);
      };
      if (isAll && !cover.LookInto(cover.Doubtful()[k], visit)) isAll = false;
    });
    return isAll;
  }

  void FindByTree(const TreeView& tree, std::span<const std::uint32_t> order, unsigned threads, Lines& all) const {
    const std::vector<Leaf> leaves = LeavesOf(order, threads);
    const std::vector<NodePair> pairs = tree.PairsOfNodes();
    InPieces(pairs.size(), threads, all, [&](std::size_t k, Lines& found) {
      auto visit = [&](std::uint32_t i, std::uint32_t j) {
        MeetWithin(leaves[i], leaves[j], order[i], order[j], SharedCorners::kMany, found);
      };
      tree.Join(pairs[k], visit);
    });
  }

  // As if a tree with this order of leaves had found them: its nodes are gone through in pairs, from the root down. Leaves in four
  // are siblings, so the order is that of the places' digits to the base of 4, the two taken by turns.
  static void SortAsFoundBy(std::span<const std::uint32_t> order, Lines& found, std::size_t from) {
    static_assert(TreeView::kFanOut == 4);
    const std::uint32_t first = *std::min_element(order.begin(), order.end());
    std::vector<std::uint32_t> place(order.size());
    for (std::uint32_t k = 0; k < order.size(); ++k) place[order[k] - first] = k;
    const auto key = [&](const IntersectionLine& line) {
      const auto [i, j] = std::minmax(place[line.triangles[0] - first], place[line.triangles[1] - first]);
      std::uint64_t digits = 0;
      for (unsigned at = 32; at > 0; at -= 2) digits = digits << 4U | (i >> (at - 2) & 3U) << 2U | (j >> (at - 2) & 3U);
      return digits;
    };
    std::vector<std::pair<std::uint64_t, IntersectionLine>> keyed;
    for (std::size_t k = from; k < found.size(); ++k) keyed.emplace_back(key(found[k]), found[k]);
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::transform(keyed.begin(), keyed.end(), found.begin() + static_cast<std::ptrdiff_t>(from),
                   [](const auto& line) { return line.second; });
  }

  bool IsOrientedAlike(std::size_t s) const {
    if (model_.facing[s] != Facing::kUnknown) return true;
    for (std::uint32_t e = model_.edgeBegin[s]; e < model_.edgeBegin[s + 1]; ++e) {
      if (model_.notes[e].isSameWay && mesh_.sides[e][1] != Connectivity::kNone) return false;  // of borders it says nothing
    }
    return true;
  }

  void DropWithinPatches(Lines& found, std::size_t from) const {
    const auto isWithin = [&](const IntersectionLine& line) { return patches_[line.triangles[0]] == patches_[line.triangles[1]]; };
    found.erase(std::remove_if(found.begin() + static_cast<std::ptrdiff_t>(from), found.end(), isWithin), found.end());
  }

  template <class Use>
  void ChooseTree(std::size_t s, unsigned threads, Use use) const {
    if (const SlenderTree slender(grid_, TrianglesOf(s), model_.shellBegin[s], trees_.Leaves(s), threads); slender.IsBetter()) {
      use(slender.View(), slender.Order());
    } else {
      use(trees_.Shell(s), trees_.Order(s));
    }
  }

  void BetweenShells() {
    std::vector<std::array<std::uint32_t, 2>> pairs;
    trees_.ForEachPairOfShells([&](std::uint32_t a, std::uint32_t b) { pairs.push_back({a, b}); });
    MakeTreesOf(pairs);
    InPieces(pairs.size(), threads_, found_, [&](std::size_t k, Lines& found) {
      const auto [a, b] = pairs[k];
      const std::size_t from = found.size();
      const auto orderA = trees_.Order(a), orderB = trees_.Order(b);
      auto visit = [&](std::uint32_t i, std::uint32_t j) { Meet(orderA[i], orderB[j], Moves::kSecond, found); };
      trees_.Shell(a).Join(trees_.Shell(b), visit);
      settle_(found, from);
    });
  }

  void MakeTreesOf(const std::vector<std::array<std::uint32_t, 2>>& pairs) {
    std::vector<bool> isNeeded(model_.ShellCount());
    for (const auto& [a, b] : pairs) isNeeded[a] = isNeeded[b] = true;
    ForEachShell(model_.shellBegin, threads_, [&](std::size_t s) {
      if (isNeeded[s] && !IsLarge(s)) trees_.Make(s, 1);
    });
    for (std::size_t s = 0; s < model_.ShellCount(); ++s) {
      if (isNeeded[s] && IsLarge(s)) trees_.Make(s, threads_);
    }
  }

  // What is asked of most pairs, in the order of a tree's leaves. Where patches are not known, each triangle is one.
  struct Leaf {
    Corners corners;
    std::uint32_t patch;
  };

  Leaf LeafOf(std::uint32_t t) const { return {mesh_.corners[t], arePatchesKnown_ ? patches_[t] : t}; }

  std::vector<Leaf> LeavesOf(std::span<const std::uint32_t> order, unsigned threads) const {
    std::vector<Leaf> leaves(order.size());
    RunInRanges(order.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k) {
        const std::uint32_t t = order[k];
        leaves[k] = {mesh_.corners[t], patches_[t]};
      }
    });
    return leaves;
  }

  // Two triangles of a shell, t and u. Neighbours across an edge have no more than that in common, unless they lie on each other.
  void MeetWithin(const Leaf& a, const Leaf& b, std::uint32_t t, std::uint32_t u, SharedCorners corners, Lines& found) const {
    if (a.patch == b.patch) return;
    unsigned shared = 0;
    for (const std::uint32_t p : a.corners) {
      for (const std::uint32_t q : b.corners) shared += p == q ? 1 : 0;
    }
    if (shared == 0) Meet(std::min(t, u), std::max(t, u), Moves::kEachPoint, found);
    if (shared != 1) return;
    std::size_t atT = 0, atU = 0;
    while (std::find(b.corners.begin(), b.corners.end(), a.corners[atT]) == b.corners.end()) ++atT;
    while (b.corners[atU] != a.corners[atT]) ++atU;
    if (corners == SharedCorners::kMany && IsPlain(a.corners[atT])) return;
    if (u < t) {
      std::swap(t, u);
      std::swap(atT, atU);
    }
    MeetAtCorner(t, atT, u, atU, found);
  }

  bool IsPlain(std::uint32_t point) const {
    std::call_once(isPlainKnown_, [&] { isPlain_ = FindPlainFans(model_, mesh_); });
    return isPlain_[point];
  }

  void Meet(std::uint32_t t, std::uint32_t u, Moves moves, Lines& found) const {
    std::array<int, 3> sideT, sideU;  // of corners of each, against the other
    if (!Sides(u, t, Other(moves), sideT) || !Sides(t, u, moves, sideU)) return;
    IntersectionLine line;
    std::size_t ends = 0;
    bool isSure = true;
    const auto pass = [&](std::uint32_t by, const std::array<int, 3>& side, std::uint32_t through, Moves m) {
      for (std::size_t i = 0; i < 3; ++i) {
        if (side[i] == side[(i + 1) % 3] || !Passes(by, i, through, m)) continue;
        if (ends < 2) isSure &= SetEnd(by, i, through, line.ends[ends]);
        ++ends;
      }
    };
    pass(t, sideT, u, moves);
    pass(u, sideU, t, Other(moves));
    if (ends == 2 && isSure) Add(line, t, u, found);
  }

  // The edge across from the corner, of one of them, passes through the other, or there is nothing but the corner.
  void MeetAtCorner(std::uint32_t t, std::size_t atT, std::uint32_t u, std::size_t atU, Lines& found) const {
    if (IsOnOneSide(t, (atT + 1) % 3, u) || IsOnOneSide(u, (atU + 1) % 3, t)) return;
    for (const bool swapped : {false, true}) {
      const std::uint32_t by = swapped ? u : t, through = swapped ? t : u;
      const std::size_t edge = ((swapped ? atU : atT) + 1) % 3;
      if (!Passes(by, edge, through, Moves::kEachPoint)) continue;
      IntersectionLine line;
      const std::uint32_t corner = mesh_.corners[t][atT];
      line.ends[0] = {IntersectionEnd::kAtCorner, corner, mesh_.points[corner]};
      if (SetEnd(by, edge, through, line.ends[1])) Add(line, t, u, found);
      return;
    }
  }

  // Whether both ends of an edge are on one side of the plane of a triangle of the same shell.
  bool IsOnOneSide(std::uint32_t of, std::size_t edge, std::uint32_t triangle) const {
    const Corners &c = mesh_.corners[of], &plane = mesh_.corners[triangle];
    const auto sides = signs_.Sides<2>(plane, {c[edge], c[(edge + 1) % 3]}, Moves::kEachPoint);
    return sides[0] == sides[1];
  }

  // False when all corners of `of` lie on one side of the triangle.
  bool Sides(std::uint32_t triangle, std::uint32_t of, Moves moves, std::array<int, 3>& side) const {
    side = signs_.Sides<3>(mesh_.corners[triangle], mesh_.corners[of], moves);
    return side[0] != side[1] || side[1] != side[2];
  }

  // Whether edge i of `by`, whose ends are on different sides, passes through the triangle rather than by it.
  bool Passes(std::uint32_t by, std::size_t i, std::uint32_t through, Moves moves) const {
    const std::uint32_t p = mesh_.corners[by][i], q = mesh_.corners[by][(i + 1) % 3];
    const Corners& c = mesh_.corners[through];
    const int hand = signs_.Hand(p, q, c[0], c[1], moves);
    return hand != 0 && signs_.Hand(p, q, c[1], c[2], moves) == hand && signs_.Hand(p, q, c[2], c[0], moves) == hand;
  }

  // The place is computed along the edge from its first point, whichever triangle it is looked at from. False when the edge lies in
  // the triangle's plane: it does not pass through anywhere.
  bool SetEnd(std::uint32_t by, std::size_t i, std::uint32_t through, IntersectionEnd& end) const {
    auto [p, q] = std::minmax(mesh_.corners[by][i], mesh_.corners[by][(i + 1) % 3]);
    const double hp = std::abs(signs_.Height(mesh_.corners[through], p)), hq = std::abs(signs_.Height(mesh_.corners[through], q));
    if (hp + hq == 0) return false;
    const ZBR_PT3 &a = mesh_.points[p], &b = mesh_.points[q];
    const ZBR_PT3 place = hp <= hq ? a + (b - a) * (hp / (hp + hq)) : b + (a - b) * (hq / (hp + hq));
    end = {through, mesh_.edges[by][i], place};
    return true;
  }

  static void Add(IntersectionLine& line, std::uint32_t t, std::uint32_t u, Lines& found) {
    line.triangles = {t, u};
    found.push_back(line);
  }

  const Model& model_;
  const Connectivity& mesh_;
  const unsigned threads_;
  const SettleLines& settle_;
  const std::vector<GridPoint> grid_;
  const Signs signs_;
  TriangleTrees trees_;
  const bool arePatchesKnown_;
  std::vector<std::uint32_t> patches_;  // of triangles; if not known before, of those of shells that are looked through alone
  mutable std::once_flag isPlainKnown_;
  mutable std::vector<bool> isPlain_;  // points
  Lines found_;
};

}  // namespace

std::vector<IntersectionLine> FindCrossings(const Model& model, const Connectivity& mesh, unsigned threads,
                                            const SettleLines& settle, std::vector<std::uint32_t> patches) {
  return Finder(model, mesh, threads, settle, std::move(patches)).Run();
}

}  // namespace zbr::drawing
