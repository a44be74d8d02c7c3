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

// Marks the circles that have an edge at one of the vertices.
void MarkAt(const Model& model, const Circles& circles, const std::vector<std::vector<bool>>& vertices, std::vector<bool>& drawn) {
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    if (vertices[s].empty()) continue;
    const ZBR_ZBREPS& shell = model.Shell(s);
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
      const std::uint32_t k = circles.ofEdge[model.edgeBegin[s] + static_cast<std::size_t>(e)];
      if (k == kNoCircle) continue;
      for (const ZBR_ZBREPV* const v : {shell.GetEdge(e)->GetVertex0(), shell.GetEdge(e)->GetVertex1()}) {
        if (vertices[s][static_cast<std::size_t>(v->GetIndex())]) drawn[k] = true;
      }
    }
  }
}

// The circles that lines of the view have edges of. Rims seen from the side lie on other lines, which are drawn in their place;
// then the silhouettes of the cylinder tell of them, which run from rim to rim: along edges, or across the triangles between.
std::vector<bool> DrawnCircles(const Model& model, const Circles& circles, const ViewLines& view) {
  std::uint32_t most = 0;
  for (const std::uint32_t t : model.source) most = std::max(most, t);
  std::vector<std::uint32_t> place(std::size_t{most} + 1);  // in the model, by the place in the mesh
  for (std::uint32_t t = 0; t < model.TriangleCount(); ++t) place[model.source[t]] = t;
  std::vector<bool> drawn(circles.all.size());
  std::vector<std::vector<bool>> touched(model.ShellCount());  // vertices by shell, where there are any
  for (const Line& line : view.lines) {
    for (const EdgeRef& ref : line.chain.edges) {
      const bool isAcross = ref.edge == EdgeRef::kAcross;
      if (isAcross && line.edgeClass != EdgeClass::kSilhouette) continue;
      const std::uint32_t t = place[ref.triangle], s = model.ShellOf(t);
      const ZBR_ZBREPT& triangle = *model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s]));
      if (isAcross || (line.edgeClass == EdgeClass::kSilhouette && !EdgeOf(triangle, ref.edge).GetShow())) {
        touched[s].resize(static_cast<std::size_t>(model.Shell(s).GetVertexCnt()));
        for (std::size_t i = 0; i < 3; ++i) touched[s][static_cast<std::size_t>(VertexOf(triangle, i).GetIndex())] = true;
      } else {
        const auto edge = static_cast<std::uint32_t>(EdgeOf(triangle, ref.edge).GetIndex());
        const std::uint32_t k = circles.ofEdge[model.edgeBegin[s] + edge];
        if (k != kNoCircle) drawn[k] = true;
      }
    }
  }
  MarkAt(model, circles, touched, drawn);
  return drawn;
}

class Finder {
 public:
  Finder(const Model& model, const ViewLines& view) : model_(model), view_(view.view), same_(kSamePlace * model.Diagonal()) {}

  void Add(const Circle& circle) {
    const double slant = circle.axis.InnerProduct(view_.toViewer);
    const ZBR_PT centre = view_.In(circle.centre - model_.Centre()).xy();
    if (circle.axis.OuterProduct(view_.toViewer).Length() < kTilt) {
      AddMark(centre, circle.radius);
    } else if (std::abs(slant) < kTilt) {
      ZBR_PT along = view_.In(circle.axis).xy();
      along = along * (1.0 / along.Length());
      if (along.x() < -0.5 || (along.x() < 0.5 && along.y() < 0)) along = along * -1.0;  // one of both ways, whatever rounding says
      AddToAxis(centre, along, circle.radius);
    } else {
      AddSlanted(circle, centre, std::abs(slant));
    }
  }

  Centres Take() {
    for (const Axis& axis : axes_)
      centres_.axes.push_back({axis.at + axis.along * axis.from, axis.at + axis.along * axis.to, axis.radius});
    centres_.axes.insert(centres_.axes.end(), arms_.begin(), arms_.end());
    return std::move(centres_);
  }

 private:
  struct Axis {
    ZBR_PT at, along;
    double from, to, radius;
    const Circle* slanted = nullptr;  // one that it is the axis of, where that is neither seen from the side nor as a point
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
      if (axis.slanted != nullptr) continue;
      if (std::abs(axis.along.OuterProduct(along)) > kTilt || std::abs(axis.along.OuterProduct(centre - axis.at)) > same_) continue;
      const double at = axis.along.InnerProduct(centre - axis.at);
      axis.from = std::min(axis.from, at);
      axis.to = std::max(axis.to, at);
      axis.radius = std::max(axis.radius, radius);
      return;
    }
    axes_.push_back({centre, along, 0.0, 0.0, radius});
  }

  // The axis of the body runs along the shorter axis of the ellipse, and beyond it; the longer one makes it a cross.
  void AddSlanted(const Circle& circle, const ZBR_PT& centre, double ratio) {
    const ZBR_PT seen = view_.In(circle.axis).xy(), along = seen * (1.0 / seen.Length());
    AddToSlanted(circle, centre, along, ratio * circle.radius);
    if (ratio < kFlat) return;
    const ZBR_PT arm = ZBR_PT(-along.y(), along.x()) * circle.radius;
    for (CentreAxis& other : arms_) {
      if (((other.from + other.to) * 0.5).Distance(centre) > kApart * model_.Diagonal()) continue;
      if (std::abs((other.to - other.from).OuterProduct(arm)) > kTilt * other.radius * circle.radius) continue;
      if (other.radius < circle.radius) other = {centre - arm, centre + arm, circle.radius};
      return;
    }
    arms_.push_back({centre - arm, centre + arm, circle.radius});
  }

  // Holes in line in space have one axis; others that look as if they were are at different depths.
  void AddToSlanted(const Circle& circle, const ZBR_PT& centre, const ZBR_PT& along, double reach) {
    for (Axis& axis : axes_) {
      if (axis.slanted == nullptr || axis.slanted->axis.OuterProduct(circle.axis).Length() > kTilt) continue;
      if (axis.slanted->axis.OuterProduct(circle.centre - axis.slanted->centre).Length() > same_) continue;
      const double at = axis.along.InnerProduct(centre - axis.at);
      axis.from = std::min(axis.from, at - reach);
      axis.to = std::max(axis.to, at + reach);
      axis.radius = std::max(axis.radius, circle.radius);
      return;
    }
    axes_.push_back({centre, along, -reach, reach, circle.radius, &circle});
  }

  const Model& model_;
  const View& view_;
  double same_;
  Centres centres_;
  std::vector<Axis> axes_;
  std::vector<CentreAxis> arms_;  // of crosses, across the axes
};

}  // namespace

Centres FindCentres(const Model& model, const Circles& circles, const ViewLines& view) {
  const std::vector<double> turns = TurnsOf(model, circles);
  const std::vector<bool> drawn = DrawnCircles(model, circles, view);
  Finder finder(model, view);
  constexpr double kHalf = kPi * 0.999;
  for (std::size_t k = 0; k < circles.all.size(); ++k) {
    if (drawn[k] && turns[k] > kHalf) finder.Add(circles.all[k]);
  }
  return finder.Take();
}

}  // namespace zbr::drawing
