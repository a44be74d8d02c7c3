// Which circles a view draws is told by the edges of its lines; those with one axis are taken together.
#include <zbr-drawing/centres.h>

#include <zbr-drawing/trigonometry.h>
#include <zbr-drawing/view_lines.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zbr::drawing {
namespace {

// Sine of the tilt up to which a circle counts as seen face-on, or an axis from the side.
constexpr double kTilt = 1e-5;
// As parts of the diagonal: what is closer together is one line on paper; how far apart dashed lines have to be to be read as two.
constexpr double kSamePlace = 1e-4;
constexpr double kApart = 3e-3;
// Ratio of an ellipse's half axes below which the longer one would lie on the ellipse.
constexpr double kFlat = 0.02;

// How much of a turn there is of each circle.
std::vector<double> TurnsOf(const Model& model, const Circles& circles) {
  std::vector<double> turns(circles.all.size());
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
      const std::uint32_t k = circles.ofEdge[model.edgeBegin[s] + static_cast<std::size_t>(e)];
      if (k == kNoCircle) continue;
      const double chord = shell.GetEdge(e)->GetVertex0()->GetPt().Distance(shell.GetEdge(e)->GetVertex1()->GetPt());
      turns[k] += 2 * Asin(std::min(chord / (2 * circles.all[k].radius), 1.0));
    }
  }
  return turns;
}

enum class Drawn : std::uint8_t { kNot, kHidden, kVisible };

bool IsFromTheSide(const Circle& circle, const View& view) {
  return std::abs(circle.axis.InnerProduct(view.toViewer)) < kTilt;
}

bool IsFaceOn(const Circle& circle, const View& view) {
  return circle.axis.OuterProduct(view.toViewer).Length() < kTilt;
}

// Whether a section leaves the axis of what is seen from the side, and with it half of that at least.
bool IsAxisLeft(const Circle& circle, const ViewLines& view, double same) {
  if (!view.section || !IsFromTheSide(circle, view.view)) return true;
  const double height = view.section->plane.HeightOf(circle.centre);
  return height <= same && height >= -view.section->plane.depth - same;
}

// Vertices by shell, where there are any, of the triangles that lines of some kind run over.
class Touched {
 public:
  explicit Touched(const Model& model) : model_(model), vertices_(model.ShellCount()) {}

  void Add(std::size_t s, const ZBR_ZBREPT& triangle) {
    vertices_[s].resize(static_cast<std::size_t>(model_.Shell(s).GetVertexCnt()));
    for (std::size_t i = 0; i < 3; ++i) vertices_[s][static_cast<std::size_t>(VertexOf(triangle, i).GetIndex())] = true;
  }

  // Calls use(circle, whether both its ends are among the vertices) for edges of circles that have one there.
  template <class Use>
  void ForEachEdge(const Circles& circles, const Use& use) const {
    for (std::size_t s = 0; s < model_.ShellCount(); ++s) {
      if (vertices_[s].empty()) continue;
      const ZBR_ZBREPS& shell = model_.Shell(s);
      for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
        const std::uint32_t k = circles.ofEdge[model_.edgeBegin[s] + static_cast<std::size_t>(e)];
        if (k == kNoCircle) continue;
        const bool first = vertices_[s][static_cast<std::size_t>(shell.GetEdge(e)->GetVertex0()->GetIndex())],
                   second = vertices_[s][static_cast<std::size_t>(shell.GetEdge(e)->GetVertex1()->GetIndex())];
        if (first || second) use(k, first && second);
      }
    }
  }

 private:
  const Model& model_;
  std::vector<std::vector<bool>> vertices_;
};

// The places of triangles in the model, by those in the mesh.
std::vector<std::uint32_t> PlacesInModel(const Model& model) {
  std::uint32_t most = 0;
  for (const std::uint32_t t : model.source) most = std::max(most, t);
  std::vector<std::uint32_t> places(std::size_t{most} + 1);
  for (std::uint32_t t = 0; t < model.TriangleCount(); ++t) places[model.source[t]] = t;
  return places;
}

// The circles that lines of the view have edges of. Rims seen from the side lie on other lines, which are drawn in their place;
// then the silhouettes of the cylinder tell of them, which run from rim to rim: along edges, or across the triangles between.
// Of cylinders that a section cuts, along or across, the outlines of the cut do.
std::vector<Drawn> DrawnCircles(const Model& model, const Circles& circles, const ViewLines& view, bool isSeenOnly) {
  const std::vector<std::uint32_t> place = PlacesInModel(model);
  std::vector<Drawn> drawn(circles.all.size());
  const auto mark = [&](std::uint32_t k, bool hidden) { drawn[k] = std::max(drawn[k], hidden ? Drawn::kHidden : Drawn::kVisible); };
  Touched seen(model), unseen(model), cut(model);  // by silhouettes, and by the plane of a section
  for (const Line& line : view.lines) {
    if (line.hidden && isSeenOnly) break;  // visible lines come first
    for (const EdgeRef& ref : line.chain.edges) {
      const bool isAcross = ref.edge == EdgeRef::kAcross;
      if (isAcross && line.edgeClass != EdgeClass::kSilhouette && line.edgeClass != EdgeClass::kCut) continue;
      const std::uint32_t t = place[ref.triangle], s = model.ShellOf(t);
      const ZBR_ZBREPT& triangle = *model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s]));
      if (isAcross || (line.edgeClass == EdgeClass::kSilhouette && !EdgeOf(triangle, ref.edge).GetShow())) {
        (line.edgeClass == EdgeClass::kCut ? cut : line.hidden ? unseen : seen).Add(s, triangle);
      } else {
        const auto edge = static_cast<std::uint32_t>(EdgeOf(triangle, ref.edge).GetIndex());
        const std::uint32_t k = circles.ofEdge[model.edgeBegin[s] + edge];
        if (k != kNoCircle) mark(k, line.hidden);
      }
    }
  }
  for (const bool hidden : {false, true}) {
    (hidden ? unseen : seen).ForEachEdge(circles, [&](std::uint32_t k, bool) {
      if (IsFromTheSide(circles.all[k], view.view)) mark(k, hidden);
    });
  }
  cut.ForEachEdge(circles, [&](std::uint32_t k, bool both) {
    const Circle& circle = circles.all[k];
    const double height = view.section->plane.HeightOf(circle.centre);
    const bool isAlong = IsFromTheSide(circle, view.view) && std::abs(height) < circle.radius;
    if (isAlong || (both && IsFaceOn(circle, view.view))) mark(k, false);
  });
  return drawn;
}

class Finder {
 public:
  Finder(const Model& model, const ViewLines& view) : model_(model), view_(view.view), same_(kSamePlace * model.Diagonal()) {}

  void Add(const Circle& circle, Drawn drawn) {
    const ZBR_PT centre = view_.In(circle.centre - model_.Centre()).xy();
    if (IsFaceOn(circle, view_)) {
      AddMark(centre, circle.radius);
    } else if (IsFromTheSide(circle, view_)) {
      ZBR_PT along = view_.In(circle.axis).xy();
      along = along * (1.0 / along.Length());
      if (along.x() < -0.5 || (along.x() < 0.5 && along.y() < 0)) along = along * -1.0;  // one of both ways, whatever rounding says
      AddToAxis(centre, along, circle.radius);
    } else {
      AddSlanted({&circle, drawn}, centre);
    }
  }

  Centres Take() {
    for (const Axis& axis : axes_) {
      centres_.axes.push_back({axis.at + axis.along * axis.from, axis.at + axis.along * axis.to, axis.radius});
      if (axis.crossed.circle != nullptr) AddArm(*axis.crossed.circle, axis.along);
    }
    centres_.axes.insert(centres_.axes.end(), arms_.begin(), arms_.end());
    return std::move(centres_);
  }

 private:
  struct DrawnCircle {
    const Circle* circle = nullptr;
    Drawn drawn = Drawn::kNot;
  };

  struct Axis {
    ZBR_PT at, along;
    double from, to, radius;
    DrawnCircle crossed = {};  // the one that has the cross, where the axis is neither seen from the side nor as a point
  };

  void AddMark(const ZBR_PT& centre, double radius) {
    for (CentreMark& mark : centres_.marks) {
      if (mark.centre.Distance(centre) > same_) continue;
      mark.radius = std::max(mark.radius, radius);
      return;
    }
    centres_.marks.push_back({centre, radius});
  }

  // Holes in line have one axis.
  void AddToAxis(const ZBR_PT& centre, const ZBR_PT& along, double radius) {
    for (Axis& axis : axes_) {
      if (axis.crossed.circle != nullptr) continue;
      if (std::abs(axis.along.OuterProduct(along)) > kTilt || std::abs(axis.along.OuterProduct(centre - axis.at)) > same_) continue;
      const double at = axis.along.InnerProduct(centre - axis.at);
      axis.from = std::min(axis.from, at);
      axis.to = std::max(axis.to, at);
      axis.radius = std::max(axis.radius, radius);
      return;
    }
    axes_.push_back({centre, along, 0.0, 0.0, radius});
  }

  // The axis of the body runs along the shorter axes of the ellipses, and beyond them. Holes in line in space have one axis;
  // others that look as if they were are at different depths.
  void AddSlanted(const DrawnCircle& drawn, const ZBR_PT& centre) {
    const Circle& circle = *drawn.circle;
    const double reach = std::abs(circle.axis.InnerProduct(view_.toViewer)) * circle.radius;
    for (Axis& axis : axes_) {
      if (axis.crossed.circle == nullptr || axis.crossed.circle->axis.OuterProduct(circle.axis).Length() > kTilt) continue;
      if (axis.crossed.circle->axis.OuterProduct(circle.centre - axis.crossed.circle->centre).Length() > same_) continue;
      const double at = axis.along.InnerProduct(centre - axis.at);
      axis.from = std::min(axis.from, at - reach);
      axis.to = std::max(axis.to, at + reach);
      axis.radius = std::max(axis.radius, circle.radius);
      if (IsBefore(drawn, axis.crossed)) axis.crossed = drawn;
      return;
    }
    const ZBR_PT seen = view_.In(circle.axis).xy();
    axes_.push_back({centre, seen * (1.0 / seen.Length()), -reach, reach, circle.radius, drawn});
  }

  // One cross tells of the axis: that of the visible circle nearest to the viewer, of those in one plane the largest. Others behind
  // it would be parallel lines across what is in front.
  bool IsBefore(const DrawnCircle& a, const DrawnCircle& b) const {
    if (a.drawn != b.drawn) return a.drawn > b.drawn;
    const double nearer = std::abs(a.circle->axis.InnerProduct(a.circle->centre - b.circle->centre));
    if (nearer > same_) return view_.toViewer.InnerProduct(a.circle->centre - b.circle->centre) > 0;
    return a.circle->radius > b.circle->radius;
  }

  // The longer axis of the ellipse makes a cross of the shorter one.
  void AddArm(const Circle& circle, const ZBR_PT& along) {
    if (std::abs(circle.axis.InnerProduct(view_.toViewer)) < kFlat) return;
    const ZBR_PT centre = view_.In(circle.centre - model_.Centre()).xy();
    const ZBR_PT arm = ZBR_PT(-along.y(), along.x()) * circle.radius;
    for (CentreAxis& other : arms_) {
      if (((other.from + other.to) * 0.5).Distance(centre) > kApart * model_.Diagonal()) continue;
      if (std::abs((other.to - other.from).OuterProduct(arm)) > kTilt * other.radius * circle.radius) continue;
      if (other.radius < circle.radius) other = {centre - arm, centre + arm, circle.radius};
      return;
    }
    arms_.push_back({centre - arm, centre + arm, circle.radius});
  }

  const Model& model_;
  const View& view_;
  double same_;
  Centres centres_;
  std::vector<Axis> axes_;
  std::vector<CentreAxis> arms_;  // of crosses, across the axes
};

}  // namespace

Centres FindCentres(const Model& model, const Circles& circles, const ViewLines& view, bool seen) {
  const std::vector<double> turns = TurnsOf(model, circles);
  const std::vector<Drawn> drawn = DrawnCircles(model, circles, view, seen);
  Finder finder(model, view);
  constexpr double kHalf = kPi * 0.999;
  for (std::size_t k = 0; k < circles.all.size(); ++k) {
    if (drawn[k] == Drawn::kNot || !(turns[k] > kHalf)) continue;
    if (IsAxisLeft(circles.all[k], view, kSamePlace * model.Diagonal())) finder.Add(circles.all[k], drawn[k]);
  }
  return finder.Take();
}

}  // namespace zbr::drawing
