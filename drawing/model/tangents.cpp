// Finds where the curvature of a surface jumps, from its facets.
//
// Idea: points of facets lie on the surface, so that across an edge the surface bends by half of what it bends over the facet
// before it plus half of what it bends over the one behind:
//
//     bend at edge = (curvature x width of the one facet + curvature x width of the other) / 2
//
// In the middle of a fillet all facets have the same curvature. At its border towards a flat face half of the sum is missing.
//
//         |   flat face      | 1/2 | 1 | 1 | 1 | 1/2      bends at the edges of a fillet, in parts of what a facet bends
//
// The curvature of a facet is known from the edge at its far side, across the facet; where there is none that says anything, from
// the edge in question and the curvature on the other side. An edge is tangent where the two differ by a large part.
// Difficulty: tessellators divide a face as they like. What they agree on is that a strip of a cylinder or cone, and a flat face,
// are plane but for rounding. So facets are plane patches of two and more triangles, and at least one side of a tangent edge is
// one: where fillets meet at a corner, it is the long facet of the fillet that does not bend along the corner's edge. Scanned
// surfaces hardly have any such patches. A patch with many corners is a flat face as a whole. And where strips are wide and narrow
// by turns, one facet tells nothing: there the jump must be seen over the way that the rounder side takes to turn by some degrees
// too.
#include "drawing/model/tangents.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "drawing/model/connectivity.h"
#include "drawing/model/patches.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/model/tangent_lines.h"
#include "drawing/parallel.h"
#include "drawing/unfilled.h"

namespace zbr::drawing {
namespace {

constexpr std::size_t kMostSides = 24;   // of a facet, points on its sides counted; what has more is a flat face
constexpr double kSmallestBend = 0.004;  // radians, half of what a facet bends; less may be noise of many slender facets
constexpr double kJump = 0.7;            // of the larger curvature: what it has to differ from the other one by
constexpr double kMisfit = 0.3;          // of a bend: what it may be off from what both facets say; more is noise
constexpr double kFarLonger = 3.0;       // a facet this many times as wide as the other does not belong to the same bend
// How far the rounder side is followed: until it has turned by so much, or by so little and is flat for far longer from there on;
// radians. What turns less ends nowhere that can be seen.
constexpr double kRunTurn = 0.3;
constexpr double kLeastTurn = 0.1;
constexpr std::size_t kMostTriangles = 200;  // of a run
constexpr double kShortLine = 0.03;          // of the diagonal: lines that end loosely are longer
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
constexpr double kWide = std::numeric_limits<double>::infinity();

// A side of a triangle, 3 x triangle + place.
using Side = std::uint32_t;
constexpr Side kNoSide = Connectivity::kNone;

// A side of a facet's outline.
struct OutlineSide {
  Side side;
  ZBR_PT3 from, to;
};

struct Facet {
  double width, curvature;
};

// A way over the surface, and how much that turns along it.
struct Way {
  double length = 0.0, turn = 0.0;
};

// About the angle between facets: twice the tangent of its half.
double BendBetween(const ZBR_PT3& a, const ZBR_PT3& b) {
  return 2.0 * a.OuterProduct(b).Length() / (1.0 + std::max(a.InnerProduct(b), -0.5));
}

// Whether the surface bends at any edge that does not show. Boxes and plates have none, however many there are of them.
bool HasBends(const Model& model, unsigned threads) {
  std::atomic<bool> has{false};
  ForEachPart(model.edgeBegin, threads, [&](std::size_t, std::size_t s, std::size_t begin, std::size_t end) {
    const ZBR_PT3* const normals = model.normals.data() + model.shellBegin[s];
    for (std::size_t e = begin; e < end && !has; ++e) {
      const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(static_cast<int>(e));
      if (edge.GetShow() || edge.GetTriangle1() == nullptr) continue;
      const double bend = BendBetween(normals[edge.GetTriangle0()->GetIndex()], normals[edge.GetTriangle1()->GetIndex()]);
      if (!(bend < kSmallestBend)) has = true;
    }
  });
  return has;
}

class Finder {
 public:
  Finder(const Model& model, const PatchedConnectivity& made, unsigned threads)
      : model_(model), threads_(threads), mesh_(made.mesh), patches_(made.patches), size_(patches_.size()) {
    for (const std::uint32_t patch : patches_) ++size_[patch];
    MeasurePatches();
    MeasureBends();
  }

  std::vector<std::uint32_t> Run() const {
    std::vector<std::vector<std::uint32_t>> inRange(RangeCount(mesh_.sides.size()));
    RunInRanges(mesh_.sides.size(), threads_, [&](std::size_t range, std::size_t begin, std::size_t end) {
      for (std::size_t e = begin; e < end; ++e) {
        const auto edge = static_cast<std::uint32_t>(e);
        if (JumpsAt(edge) && HoldsForRuns(edge)) inRange[range].push_back(edge);
      }
    });
    std::vector<std::uint32_t> found;
    for (const auto& edges : inRange) found.insert(found.end(), edges.begin(), edges.end());
    return found;
  }

  // Whether a line may go on from an edge along another to its next one: where the jump shows from facet to facet alone, or where
  // rounding left no facets to tell, and the surface bends as it did.
  bool MayGoOn(std::uint32_t edge, std::uint32_t next) const {
    if (!IsSmooth(next)) return false;
    const double bend = Bend(edge);
    if (!(std::abs(Bend(next) - bend) <= kMisfit * std::abs(bend))) return false;
    return JumpsAt(next) || (!IsFacet(mesh_.sides[next][0]) && !IsFacet(mesh_.sides[next][1]));
  }

 private:
  bool IsFacet(std::uint32_t t) const { return size_[patches_[t]] > 1; }

  Side SideAt(std::uint32_t edge, std::uint32_t t) const {
    std::uint32_t i = 0;
    while (mesh_.edges[t][i] != edge) ++i;
    return 3 * t + i;
  }
  const ZBR_PT3& From(Side s) const { return mesh_.points[mesh_.corners[s / 3][s % 3]]; }
  const ZBR_PT3& To(Side s) const { return mesh_.points[mesh_.corners[s / 3][(s % 3 + 1) % 3]]; }
  const ZBR_PT3& Apex(Side s) const { return mesh_.points[mesh_.corners[s / 3][(s % 3 + 2) % 3]]; }
  std::uint32_t EdgeAt(Side s) const { return mesh_.edges[s / 3][s % 3]; }

  // The outlines of all facets, and from each of their sides the far one.
  void MeasurePatches() {
    const std::vector<std::uint32_t> order = SortedByPatch();
    widths_ = Unfilled<double>(order.empty() ? 0 : 3 * patches_.size());
    far_ = Unfilled<Side>(widths_.size());
    const auto goesOn = [&](std::size_t k) { return k > 0 && k < order.size() && patches_[order[k]] == patches_[order[k - 1]]; };
    RunInRanges(order.size(), threads_, [&](std::size_t, std::size_t k, std::size_t end) {
      std::vector<Side> outline;
      while (k < end && goesOn(k)) ++k;  // it is measured where it begins
      while (k < end) {
        outline.clear();
        const std::uint32_t patch = patches_[order[k]];
        do AddToOutline(order[k], outline);
        while (goesOn(++k));
        for (const Side s : outline) {
          widths_[s] = kWide;
          far_[s] = kNoSide;
        }
        if (outline.size() <= kMostSides) MeasureFacet(outline, model_.normals[patch]);
      }
    });
  }

  void AddToOutline(std::uint32_t t, std::vector<Side>& outline) const {
    for (std::uint32_t i = 0; i < 3; ++i) {
      const std::uint32_t u = mesh_.Across(mesh_.edges[t][i], t);
      if (u == Connectivity::kNone || patches_[u] != patches_[t]) outline.push_back(3 * t + i);
    }
  }

  // The triangles of facets.
  std::vector<std::uint32_t> SortedByPatch() const {
    std::vector<std::uint32_t> place(size_.size());
    std::uint32_t count = 0;
    for (std::size_t patch = 0; patch < size_.size(); ++patch) {
      place[patch] = count;
      if (size_[patch] > 1) count += size_[patch];
    }
    std::vector<std::uint32_t> order(count);
    for (std::uint32_t t = 0; t < patches_.size(); ++t) {
      if (IsFacet(t)) order[place[patches_[t]]++] = t;
    }
    return order;
  }

  void MeasureFacet(std::span<const Side> outline, const ZBR_PT3& normal) {
    std::array<OutlineSide, kMostSides> sides;
    for (std::size_t k = 0; k < outline.size(); ++k) sides[k] = {outline[k], From(outline[k]), To(outline[k])};
    for (std::size_t k = 0; k < outline.size(); ++k) {
      const OutlineSide& s = sides[k];
      const ZBR_PT3 along = s.to - s.from;
      const ZBR_PT3 middle = (s.from + s.to) * 0.5, inwards = normal.OuterProduct(along) * (1.0 / along.Length());
      for (std::size_t j = 0; j < outline.size(); ++j) {
        const OutlineSide& f = sides[j];
        const double a = along.InnerProduct(f.from - middle), b = along.InnerProduct(f.to - middle);
        if (j == k || (a > 0) == (b > 0)) continue;
        const double width = inwards.InnerProduct(f.from + (f.to - f.from) * (a / (a - b)) - middle);
        if (!(width > 0 && width < widths_[s.side])) continue;
        widths_[s.side] = width;
        far_[s.side] = f.side;
      }
    }
  }

  // Each is asked for by three edges.
  void MeasureBends() {
    bends_ = Unfilled<double>(mesh_.sides.size());
    RunInRanges(mesh_.sides.size(), threads_, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t e = begin; e < end; ++e) {
        const auto edge = static_cast<std::uint32_t>(e);
        bends_[e] = IsSmooth(edge) && IsAtFacet(edge) ? BendAt(edge) : kUnknown;
      }
    });
  }

  // Whether it is on the outline of one.
  bool IsAtFacet(std::uint32_t edge) const {
    const std::uint32_t t = mesh_.sides[edge][0], u = mesh_.sides[edge][1];
    return patches_[t] != patches_[u] && (IsFacet(t) || IsFacet(u));
  }

  double Bend(std::uint32_t edge) const { return std::isnan(bends_[edge]) ? BendAt(edge) : bends_[edge]; }

  // Positive where the surface bends away from its normals.
  double BendAt(std::uint32_t edge) const {
    const std::uint32_t t = mesh_.sides[edge][0], u = mesh_.sides[edge][1];
    const ZBR_PT3 &a = model_.normals[t], &b = model_.normals[u];
    const double angle = BendBetween(a, b);
    return a.InnerProduct(Apex(SideAt(edge, u)) - From(SideAt(edge, t))) < 0 ? angle : -angle;
  }

  bool IsSmooth(std::uint32_t edge) const { return !mesh_.shows[edge] && mesh_.sides[edge][1] != Connectivity::kNone; }

  double Width(Side s) const {
    if (IsFacet(s / 3)) return widths_[s];
    const ZBR_PT3 along = To(s) - From(s);
    return along.OuterProduct(Apex(s) - From(s)).Length() / along.Length();
  }

  // What the facet tells of itself without the edge at this side.
  Facet Look(Side s) const {
    const double width = Width(s);
    if (!IsFacet(s / 3)) return {width, kUnknown};
    if (width == kWide) return {width, 0.0};
    const std::uint32_t far = EdgeAt(far_[s]);
    if (!IsSmooth(far)) return {width, kUnknown};
    const double behind = Width(SideAt(far, mesh_.Across(far, far_[s] / 3)));
    if (width > kFarLonger * behind) return {width, 0.0};
    return {width, 2.0 * Bend(far) / (behind > kFarLonger * width ? width : width + behind)};
  }

  // From facet to facet.
  bool JumpsAt(std::uint32_t edge) const {
    const double bend = bends_[edge];
    if (std::isnan(bend)) return false;
    if (std::abs(bend) < kSmallestBend) return false;
    const std::uint32_t t = mesh_.sides[edge][0], u = mesh_.sides[edge][1];
    Facet a = Look(SideAt(edge, t)), b = Look(SideAt(edge, u));
    if (a.width == kWide && b.width == kWide) return false;
    if (std::isnan(a.curvature) && std::isnan(b.curvature)) {
      if (a.width > kFarLonger * b.width) a.curvature = 0.0;
      if (b.width > kFarLonger * a.width) b.curvature = 0.0;
    }
    Complete(a, b, bend);
    Complete(b, a, bend);
    if (!(std::abs(2.0 * bend - Turn(a) - Turn(b)) <= kMisfit * std::abs(2.0 * bend))) return false;
    return Differ(a.curvature, b.curvature);
  }

  static bool Differ(double a, double b) { return std::abs(a - b) > kJump * std::max(std::abs(a), std::abs(b)); }

  // A way over the surface from the middle of a side, at a right angle to it, triangle by triangle.
  class Walk {
   public:
    Walk(const Finder& finder, Side s)
        : finder_(finder), s_(s), p_((finder.From(s) + finder.To(s)) * 0.5), way_(finder.Inwards(s)) {}

    // As far as the surface is round.
    Way Round() {
      Way run;
      for (std::size_t k = 0; k < kMostTriangles; ++k) {
        Step();
        if (std::abs(run.turn) >= kLeastTurn && walked_ > (1.0 + kFarLonger) * run.length) return run;
        if (hasEnded_) return run;
        run.turn += bend_;
        if (std::abs(bend_) > kSmallestBend * kMisfit) run.length = walked_;
        if (std::abs(run.turn) >= kRunTurn) return run;
      }
      return run;
    }

    // Up to a length. What has been walked before is not walked again.
    Way UpTo(double length) {
      Way run;
      for (std::size_t k = 0; k < kMostTriangles; ++k) {
        if (k == count_) Step();
        run.length = steps_[k].walked;
        if (run.length > length) return {length, run.turn};
        if (hasEnded_ && k + 1 == count_) return run;
        run.turn += steps_[k].bend;
      }
      return run;
    }

   private:
    // Through a triangle and over its edge.
    void Step() {
      double across = 0.0;
      const Side out = finder_.Leave(s_, p_, way_, walked_, across);
      hasEnded_ = out == kNoSide || !finder_.IsSmooth(finder_.EdgeAt(out));
      if (!hasEnded_) {
        const std::uint32_t edge = finder_.EdgeAt(out);
        s_ = finder_.SideAt(edge, finder_.mesh_.Across(edge, out / 3));
        const ZBR_PT3 along = (finder_.To(s_) - finder_.From(s_)) * (1.0 / (finder_.To(s_) - finder_.From(s_)).Length());
        bend_ = across * finder_.Bend(edge);
        way_ = along * way_.InnerProduct(along) + finder_.Inwards(s_) * across;
      }
      steps_[count_++] = {walked_, bend_};
    }

    struct Taken {
      double walked, bend;
    };

    const Finder& finder_;
    Side s_;
    ZBR_PT3 p_, way_;
    double walked_ = 0.0, bend_ = 0.0;
    bool hasEnded_ = false;
    std::size_t count_ = 0;
    std::array<Taken, kMostTriangles> steps_;
  };

  // At a right angle to the side, within its triangle.
  ZBR_PT3 Inwards(Side s) const {
    const ZBR_PT3 inwards = model_.normals[s / 3].OuterProduct(To(s) - From(s));
    const double length = inwards.Length();
    return length > 0 ? inwards * (1.0 / length) : ZBR_PT3();
  }

  // Where the way leaves the triangle that it entered at a side; moves p there. `across` is the part of it at a right angle there.
  Side Leave(Side s, ZBR_PT3& p, const ZBR_PT3& way, double& walked, double& across) const {
    Side out = kNoSide;
    double least = kWide;
    for (const Side side : {3 * (s / 3) + (s + 1) % 3, 3 * (s / 3) + (s + 2) % 3}) {
      const ZBR_PT3 inwards = Inwards(side);
      const double towards = -way.InnerProduct(inwards);
      if (!(towards > 0)) continue;
      const double length = std::max((p - From(side)).InnerProduct(inwards) / towards, 0.0);
      if (length >= least) continue;
      least = length;
      out = side;
      across = towards;
    }
    if (out == kNoSide) return out;
    p += way * least;
    walked += least;
    return out;
  }

  bool HoldsForRuns(std::uint32_t edge) const {
    const Side s = SideAt(edge, mesh_.sides[edge][0]), o = SideAt(edge, mesh_.sides[edge][1]);
    Walk fromS(*this, s), fromO(*this, o);
    const Way there = fromS.Round(), here = fromO.Round();
    const bool isFirst = here.turn == 0 || std::abs(there.turn) * here.length > std::abs(here.turn) * there.length;
    const Way& round = isFirst ? there : here;
    if (!(std::abs(round.turn) >= kLeastTurn)) return false;
    const Way flat = (isFirst ? fromO : fromS).UpTo(round.length);
    return Differ(round.turn * flat.length, flat.turn * round.length);
  }

  // The curvature of one facet from the other's and the bend between them.
  static void Complete(Facet& facet, const Facet& other, double bend) {
    if (!std::isnan(facet.curvature) || std::isnan(other.curvature)) return;
    facet.curvature = (2.0 * bend - Turn(other)) / facet.width;
  }

  // What the surface bends over a facet.
  static double Turn(const Facet& facet) { return facet.curvature == 0 ? 0.0 : facet.curvature * facet.width; }

  const Model& model_;
  const unsigned threads_;
  const Connectivity& mesh_;
  const std::vector<std::uint32_t>& patches_;
  std::vector<std::uint32_t> size_;  // of patches, in triangles
  // Of the sides of facets, but for those within: how wide the facet is from there, infinite for a flat face, and the side met
  // there.
  Unfilled<double> widths_;
  Unfilled<Side> far_;
  Unfilled<double> bends_;  // of edges at facets
};

}  // namespace

void NoteTangents(Model& model, unsigned threads) {
  if (!HasBends(model, threads)) return;
  PatchedConnectivity made{ConnectivityOf(model, threads), {}};
  made.patches = FindPatches(model, made.mesh, threads);
  const Finder finder(model, made, threads);
  const auto mayGoOn = [&](std::uint32_t edge, std::uint32_t next) { return finder.MayGoOn(edge, next); };
  for (const std::uint32_t edge : ConnectedLines(made.mesh, finder.Run(), kShortLine * model.Diagonal(), mayGoOn))
    model.notes[edge].isTangent = true;
  KeepConnectivity(std::move(made), model);
}

}  // namespace zbr::drawing
