// What a plane lays open: from contours to faces.
//
// A shell's contours bound what is inside it. Where a face of the body lies in the plane there are two answers, just below the
// plane and just above it; the first is where the body ends, and what belongs to both is cut. So a plane that touches cuts nothing,
// and a step whose face lies in the plane shows as a face. Shells that face inwards within another of their body are its hollows
// and taken from it; others are bodies turned inside out, or all of the body is. Cuts of open shells are joined across the shells
// of a body, as sheets that meet three at an edge are shells by themselves, and face as most of their triangles say.
#include "drawing/sections/drawn_section.h"

#include <zbr/tolerance.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "drawing/points.h"
#include "drawing/sections/contours.h"
#include "drawing/sections/cut_cells.h"
#include "drawing/sections/face_lines.h"
#include "drawing/sections/join_contours.h"
#include "drawing/sections/simple_ring.h"

namespace zbr::drawing {
namespace {

// As a part of the diagonal: gaps that are closed are a tenth of a line's width on a sheet filled by the model.
constexpr double kGap = 1e-4;

// What is cut of one shell, for both ways to count vertices in the plane, InPlane::kAbove first.
struct ShellCut {
  std::uint32_t shell = 0;
  bool isTouched = false;  // vertices lie in the plane: both ways are to be looked at
  bool isOriented = true;
  Facing facing = Facing::kUnknown;  // of a shell that has none that of its cut, as most of its triangles are turned
  std::array<ZBR_REGION, 2> inside;
};

// Material is to the left of what runs along its cuts.
Facing FacingOf(const std::vector<SeenContour>& contours) {
  double inside = 0.0, whole = 0.0;
  for (const SeenContour& contour : contours) {
    const std::vector<ZBR_PT>& points = contour.points;
    double area = 0.0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) area += (points[i] - points[0]).OuterProduct(points[i + 1] - points[0]);
    const auto gaps = std::count(contour.triangles.begin(), contour.triangles.end(), kNoTriangle);
    inside += area * contour.along / std::max(static_cast<double>(contour.triangles.size()) - static_cast<double>(gaps), 1.0);
    whole += std::abs(area);
  }
  if (2.0 * std::abs(inside) <= whole) return Facing::kUnknown;
  return inside > 0 ? Facing::kOutward : Facing::kInward;
}

ZBR_REGION RegionOf(const std::vector<SeenContour>& contours, bool oriented) {
  ZBR_REGION rings, region;
  if (contours.size() == 1 && SetSimpleRegion(contours.front().points, region)) return region;
  for (const SeenContour& contour : contours) rings.AddRing(contour.points, true);
  ZBR_REGION_OPTIONS options;
  options.fill_a = oriented ? ZBR_FILL_NON_ZERO : ZBR_FILL_EVEN_ODD;
  zbrMakeValidRegion(rings.view(), region, options);
  return region;
}

// Of an open mesh that ends in a vertex in the plane.
bool IsDot(const SeenContour& contour) {
  return std::all_of(contour.points.begin(), contour.points.end(), [&](const ZBR_PT& p) { return p == contour.points.front(); });
}

struct Sized {
  explicit Sized(ShellCut& c) : Sized(std::as_const(c)) { cut = &c; }
  explicit Sized(const ShellCut& c) : area(c.inside[0].area()) { c.inside[0].GetBounds(xmin, ymin, xmax, ymax); }
  bool Contains(const Sized& o) const {  // to rounding
    const double slack = kGap * (xmax - xmin + ymax - ymin);
    return xmin - slack <= o.xmin && ymin - slack <= o.ymin && o.xmax <= xmax + slack && o.ymax <= ymax + slack;
  }
  bool Meets(const Sized& o) const { return xmin <= o.xmax && o.xmin <= xmax && ymin <= o.ymax && o.ymin <= ymax; }

  ShellCut* cut = nullptr;
  double area, xmin = 0, ymin = 0, xmax = 0, ymax = 0;
};

// Of a shell in space.
struct ShellBox {
  ZBR_PT3 low, high;

  bool Contains(const ShellBox& o) const {
    return low.x() <= o.low.x() && low.y() <= o.low.y() && low.z() <= o.low.z() && o.high.x() <= high.x() &&
           o.high.y() <= high.y() && o.high.z() <= high.z();
  }
};

bool IsMostlyIn(const ShellCut& inner, const ShellCut& outer) {
  return 2 * zbrCombineRegions(outer.inside[0], inner.inside[0], ZBR_BOOL_AND).area() > inner.inside[0].area();
}

// The cuts of a body, one InPlane after the other.
class BodyCutter {
 public:
  BodyCutter(const Model& model, const View& view, const SectionPlane& plane, FaceLines& lines)
      : model_(model), view_(view), plane_(plane), lines_(lines) {}

  std::vector<ShellCut> Run(std::size_t body) {
    cuts_.clear();
    heights_.clear();
    lines_.StartObject();
    for (std::uint32_t s = model_.bodyBegin[body]; s < model_.bodyBegin[body + 1]; ++s) Look(s);
    const bool anyTouched = std::any_of(cuts_.begin(), cuts_.end(), [](const ShellCut& cut) { return cut.isTouched; });
    Cut(InPlane::kAbove);
    if (anyTouched) Cut(InPlane::kBelow);
    for (ShellCut& cut : cuts_) {
      if (!anyTouched) cut.inside[1] = cut.inside[0];
      cut.isTouched = anyTouched;
    }
    TakeHollows();
    return std::move(cuts_);
  }

 private:
  // Notes the shell if the plane meets it.
  void Look(std::uint32_t s) {
    std::vector<double> heights = HeightsOf(model_, s, plane_);
    const auto [low, high] = std::minmax_element(heights.begin(), heights.end());
    if (heights.empty() || *low >= 0 || *high < 0) return;
    const bool touched = std::find(heights.begin(), heights.end(), 0.0) != heights.end();
    cuts_.push_back({s, touched, model_.facing[s] != Facing::kUnknown, model_.facing[s], {}});
    heights_.push_back(std::move(heights));
  }

  void Cut(InPlane inPlane) {
    std::vector<std::vector<SeenContour>> closed(cuts_.size());
    std::vector<SeenContour> open;
    for (std::size_t k = 0; k < cuts_.size(); ++k) {
      for (const Contour& contour : CutShell(model_.Shell(cuts_[k].shell), heights_[k], inPlane)) {
        SeenContour seen = Seen(contour, cuts_[k].shell);
        if (!seen.closed && IsDot(seen)) continue;
        (seen.closed ? closed[k] : open).push_back(std::move(seen));
      }
    }
    CloseCuts(std::move(open), inPlane, closed);
    for (std::size_t k = 0; inPlane == InPlane::kAbove && k < cuts_.size(); ++k) {
      if (cuts_[k].facing == Facing::kUnknown) cuts_[k].facing = FacingOf(closed[k]);
    }
    for (std::size_t k = 0; k < cuts_.size(); ++k) {
      cuts_[k].inside[static_cast<std::size_t>(inPlane)] = RegionOf(closed[k], cuts_[k].isOriented);
      for (const SeenContour& contour : closed[k]) lines_.Note(contour);
    }
  }

  // Adds the rings that open contours make together to those of their shells. Lines are noted once.
  void CloseCuts(std::vector<SeenContour> open, InPlane inPlane, std::vector<std::vector<SeenContour>>& closed) {
    const bool isFirst = inPlane == InPlane::kAbove;
    const auto addRing = [&](SeenContour&& ring) {
      const auto cut = std::lower_bound(cuts_.begin(), cuts_.end(), ring.shell,
                                        [](const ShellCut& c, std::uint32_t shell) { return c.shell < shell; });
      closed[static_cast<std::size_t>(cut - cuts_.begin())].push_back(std::move(ring));
      cut->isOriented = false;
    };
    CutCells cells = TakeCells(open);
    for (const SeenContour& contour : cells.used) lines_.Note(contour);
    for (SeenContour& ring : cells.rings) addRing(std::move(ring));
    for (std::size_t k = 0; isFirst && k < cells.walls.size(); ++k) lines_.AddWall(cells.walls[k]);
    std::vector<SeenContour> joined = JoinContours(std::move(open), kGap * model_.Diagonal());
    for (SeenContour& contour : joined) {
      if (isFirst && contour.bridged) lines_.CountBridge();
      if (contour.closed) {
        addRing(std::move(contour));
      } else if (isFirst) {
        lines_.AddOpen(contour);
      }
    }
  }

  SeenContour Seen(const Contour& contour, std::uint32_t shell) const {
    SeenContour seen;
    seen.shell = shell;
    seen.closed = contour.closed;
    seen.along = contour.along;
    const ZBR_PT3 centre = model_.Centre();
    for (const ZBR_PT3& p : contour.points) seen.points.push_back(view_.In(p - centre).xy());
    for (const std::uint32_t t : contour.triangles) seen.triangles.push_back(model_.source[model_.shellBegin[shell] + t]);
    return seen;
  }

  // A hollow is mostly inside; what two bodies that pass through each other have in common is not most of either. What faces
  // nowhere has to be inside: sheets by the thousand may have most of their boxes in common.
  static ShellCut* BodyAround(const ShellCut& hollow, const std::vector<Sized>& bodies) {
    const Sized inner(hollow);
    for (const Sized& body : bodies) {
      if (body.area < inner.area || body.cut == &hollow || !body.Meets(inner)) continue;  // a body within may fill most of it
      if (hollow.facing == Facing::kUnknown && !body.Contains(inner)) continue;
      if (IsMostlyIn(hollow, *body.cut)) return body.cut;
    }
    return nullptr;
  }

  // A body that faces inwards with nothing around it is turned inside out, and so is all that lies within it.
  void TurnIfInsideOut() {
    std::vector<Sized> shells;  // the smallest first
    for (ShellCut& cut : cuts_) {
      if (!cut.inside[0].empty()) shells.emplace_back(cut);
    }
    const auto isInward = [](const Sized& sized) { return sized.cut->facing == Facing::kInward; };
    if (std::none_of(shells.begin(), shells.end(), isInward)) return;
    std::stable_sort(shells.begin(), shells.end(), [](const Sized& a, const Sized& b) { return a.area < b.area; });
    std::vector<ShellBox> boxes;
    for (const Sized& sized : shells) boxes.push_back(BoxOf(sized.cut->shell));
    const auto sticksOut = [&](std::size_t k, std::size_t outer) {  // cuts of open shells have more than one
      return shells[k].cut->isOriented && shells[outer].cut->isOriented && !boxes[outer].Contains(boxes[k]);
    };
    const auto isWithin = [&](std::size_t k, std::size_t outer) {
      return shells[outer].Meets(shells[k]) && !sticksOut(k, outer) && IsMostlyIn(*shells[k].cut, *shells[outer].cut);
    };
    std::vector<bool> isTurned(shells.size());
    for (std::size_t k = 0; k < shells.size(); ++k) {
      bool isOutermost = isInward(shells[k]);
      for (std::size_t outer = k + 1; isOutermost && outer < shells.size(); ++outer) isOutermost = !isWithin(k, outer);
      if (!isOutermost) continue;
      for (std::size_t i = 0; i < k; ++i) isTurned[i] = isTurned[i] || isWithin(i, k);
      isTurned[k] = true;
    }
    for (std::size_t k = 0; k < shells.size(); ++k) {
      if (isTurned[k] && shells[k].cut->facing != Facing::kUnknown)
        shells[k].cut->facing = isInward(shells[k]) ? Facing::kOutward : Facing::kInward;
    }
  }

  ShellBox BoxOf(std::uint32_t s) const {
    const ZBR_ZBREPS& shell = model_.Shell(s);
    ShellBox box{shell.GetVertex(0)->GetPt(), shell.GetVertex(0)->GetPt()};
    for (int v = 1; v < shell.GetVertexCnt(); ++v) Enclose(shell.GetVertex(v)->GetPt(), box.low, box.high);
    return box;
  }

  // What faces nowhere is a hollow if it lies in material; the largest are looked at first.
  std::map<ShellCut*, std::vector<ShellCut*>> FindHollows() {
    std::vector<Sized> bodies, unknown;  // the smallest first
    for (ShellCut& cut : cuts_) {
      if (cut.facing != Facing::kInward && !cut.inside[0].empty())
        (cut.facing == Facing::kOutward ? bodies : unknown).emplace_back(cut);
    }
    const auto isSmaller = [](const Sized& a, const Sized& b) { return a.area < b.area; };
    std::stable_sort(bodies.begin(), bodies.end(), isSmaller);
    std::stable_sort(unknown.rbegin(), unknown.rend(), isSmaller);
    std::map<ShellCut*, std::vector<ShellCut*>> hollows;  // by what is around them
    for (const Sized& inner : unknown) {
      ShellCut* const around = BodyAround(*inner.cut, bodies);
      const bool isFree = around == nullptr || std::any_of(hollows[around].begin(), hollows[around].end(),
                                                           [&](ShellCut* hollow) { return IsMostlyIn(*inner.cut, *hollow); });
      if (isFree) {
        bodies.insert(std::upper_bound(bodies.begin(), bodies.end(), inner, isSmaller), inner);
      } else {
        hollows[around].push_back(inner.cut);
      }
    }
    for (ShellCut& cut : cuts_) {
      if (cut.facing != Facing::kInward) continue;
      if (ShellCut* const around = BodyAround(cut, bodies)) hollows[around].push_back(&cut);
    }
    return hollows;
  }

  void TakeHollows() {
    TurnIfInsideOut();
    for (const auto& [around, within] : FindHollows()) {
      if (within.empty()) continue;
      for (std::size_t k = 0; k < 2; ++k) {
        std::vector<ZBR_REGION> taken;
        for (ShellCut* const hollow : within) {
          taken.push_back(std::move(hollow->inside[k]));
          hollow->inside[k].Clear();
        }
        const ZBR_REGION all = taken.size() == 1 ? std::move(taken.front()) : zbrUniteRegions(taken);
        around->inside[k] = zbrCombineRegions(around->inside[k], all, ZBR_BOOL_A_MINUS_B);
      }
    }
  }

  const Model& model_;
  const View& view_;
  const SectionPlane& plane_;
  FaceLines& lines_;
  std::vector<ShellCut> cuts_;
  std::vector<std::vector<double>> heights_;  // parallel to the cuts
};

std::uint32_t ObjectOf(const Model& model, std::uint32_t shell) {
  return static_cast<std::uint32_t>(std::upper_bound(model.objectBegin.begin(), model.objectBegin.end(), shell) -
                                    model.objectBegin.begin() - 1);
}

// What is cut, with the edges of what ends in the plane that it has.
ZBR_REGION CutOf(const ShellCut& cut) {
  if (!cut.isTouched) return cut.inside[0];
  constexpr ZBR_BOOLEAN_OPE kBoth = ZBR_BOOL_AND;
  ZBR_REGION_OPTIONS options;
  options.sources = true;
  ZBR_REGION common;
  zbrCombineRegions(cut.inside[0].view(), cut.inside[1].view(), &kBoth, &common, 1, options);
  return common;
}

SectionCut Find(const Model& model, const View& view, const SectionPlane& plane, std::optional<double> contact) {
  const ZBR_TmpEps hold(SectionTolerance(model));
  SectionCut section;
  FaceLines lines(model.Diagonal());
  BodyCutter cutter(model, view, plane, lines);
  for (std::size_t body = 0; body < model.BodyCount(); ++body) {
    for (ShellCut& cut : cutter.Run(body)) {
      if (cut.inside[0].empty()) continue;
      SectionFace face{ObjectOf(model, cut.shell), cut.shell, CutOf(cut)};
      lines.AddFace(face, cut.inside[0]);
      section.faces.push_back(std::move(face));
      section.covers.push_back(std::move(cut.inside[0]));
    }
  }
  section.openLines = lines.OpenCount();
  section.bridged = lines.BridgeCount();
  section.lines = lines.Take(contact);
  return section;
}

}  // namespace

SectionCut FindSection(const Model& model, const View& view, const SectionPlane& plane) {
  return Find(model, view, plane, std::nullopt);
}

SectionCut FindDrawnSection(const Model& model, const View& view, const SectionPlane& plane, double contact) {
  return Find(model, view, plane, contact);
}

}  // namespace zbr::drawing
