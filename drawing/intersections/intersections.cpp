// From all that triangles have in common to the lines that a drawing wants.
//
// Difficulty: bodies are made to touch. Where faces lie on each other, exactly or but for rounding, the lines found are no more
// than the choice that was made between touching and not; around them they repeat the edges that end the contact, which are drawn
// as creases. Where curved faces lie on each other, a bolt in its hole, facets of one pass through those of the other as their
// divisions into facets have it. So a line is left out
// - where one of its triangles lies in the plane of the other,
// - where it runs along an edge of either triangle that is drawn in every view,
// - where it runs along edges of both at which the surfaces hardly bend,
// and a curve as a whole when most of it is slack: runs where the surfaces meet at no more than the angle by which either turns
// from facet to facet. What is slack in a curve otherwise is kept, so that bodies that really pass through each other have closed
// curves. A drawing wants what is steep in a slack curve, too: where a bolt sticks out of its hole its facets pass through the
// plate, between those that they share with the hole, and hide the rim there.
#include "drawing/intersections/seams.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

#include "drawing/intersections/crossings.h"
#include "drawing/model/connectivity.h"
#include "drawing/model/disjoint_sets.h"
#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

// Sine of the largest angle at which surfaces may count as in contact, however coarse their facets are.
constexpr double kMostSlack = 0.25;

// Sine of the angle at which a line is steep: 45 degrees, more than facets turn by in bodies that are meant to be round.
constexpr double kSteep = 0.7071;

// Length in tolerances up to which a line has no direction.
constexpr double kCrumb = 8.0;

double LengthOf(const IntersectionLine& line) {
  return line.ends[0].place.Distance(line.ends[1].place);
}

class Judge {
 public:
  Judge(const Model& model, const Connectivity& mesh, double contact)
      : model_(model), mesh_(mesh), tolerance_(std::max(PlaneTolerance(model), contact)) {}

  bool IsContact(const IntersectionLine& line) const {
    const auto [t, u] = line.triangles;
    if (LiesIn(t, u) || LiesIn(u, t)) return true;
    if (IsCrumb(line)) return false;  // it may close a curve
    if (RunsAlong(line, t, true) || RunsAlong(line, u, true)) return true;
    return IsSlack(line) && RunsAlong(line, t, false) && RunsAlong(line, u, false);
  }

  bool IsSteep(const IntersectionLine& line) const { return Sine(line) > kSteep; }

  bool IsSlack(const IntersectionLine& line) const {
    const auto [t, u] = line.triangles;
    const double sine = Sine(line);
    constexpr double kMore = 1.01;  // regular facets are turned by equal angles
    return sine <= kMostSlack && sine <= kMore * std::max(Bend(t), Bend(u));
  }

  double Crumb() const { return kCrumb * tolerance_; }
  bool IsCrumb(const IntersectionLine& line) const { return LengthOf(line) <= Crumb(); }

 private:
  double Sine(const IntersectionLine& line) const {
    return model_.normals[line.triangles[0]].OuterProduct(model_.normals[line.triangles[1]]).Length();
  }

  bool LiesIn(std::uint32_t t, std::uint32_t plane) const {
    const ZBR_PT3& normal = model_.normals[plane];
    const ZBR_PT3& origin = mesh_.points[mesh_.corners[plane][0]];
    return std::all_of(mesh_.corners[t].begin(), mesh_.corners[t].end(),
                       [&](std::uint32_t p) { return std::abs(normal.InnerProduct(mesh_.points[p] - origin)) <= tolerance_; });
  }

  // Along one of the edges that show, or along any.
  bool RunsAlong(const IntersectionLine& line, std::uint32_t t, bool showing) const {
    for (std::size_t i = 0; i < 3; ++i) {
      if (showing && !mesh_.shows[mesh_.edges[t][i]]) continue;
      const ZBR_PT3 &a = mesh_.points[mesh_.corners[t][i]], &b = mesh_.points[mesh_.corners[t][(i + 1) % 3]];
      const ZBR_PT3 along = (b - a) * (1.0 / b.Distance(a));
      const auto isNear = [&](const IntersectionEnd& end) {
        return along.OuterProduct(end.place - a).Length() <= 2.0 * tolerance_;
      };
      if (isNear(line.ends[0]) && isNear(line.ends[1])) return true;
    }
    return false;
  }

  // Sine of the largest angle to a neighbour across an edge that does not show.
  double Bend(std::uint32_t t) const {
    double sine = 0.0;
    for (const std::uint32_t edge : mesh_.edges[t]) {
      const std::uint32_t u = mesh_.Across(edge, t);
      if (u == Connectivity::kNone || mesh_.shows[edge]) continue;
      sine = std::max(sine, model_.normals[t].OuterProduct(model_.normals[u]).Length());
    }
    return sine;
  }

  const Model& model_;
  const Connectivity& mesh_;
  const double tolerance_;
};

using Lines = std::span<const IntersectionLine>;

// The curve of each line, by the names of ends.
std::vector<std::uint32_t> FindCurves(Lines lines) {
  std::vector<std::pair<std::uint64_t, std::uint32_t>> ends;
  ends.reserve(2 * lines.size());
  for (std::uint32_t i = 0; i < lines.size(); ++i) {
    for (const IntersectionEnd& end : lines[i].ends) ends.emplace_back(end.Name(), i);
  }
  std::sort(ends.begin(), ends.end());
  DisjointSets sets(lines.size());
  for (std::size_t k = 1; k < ends.size(); ++k) {
    if (ends[k].first == ends[k - 1].first) sets.Unite(ends[k].second, ends[k - 1].second);
  }
  std::vector<std::uint32_t> curves;
  curves.reserve(lines.size());
  for (std::uint32_t i = 0; i < lines.size(); ++i) curves.push_back(sets.Find(i));
  return curves;
}

// Of each line, whether it is part of a curve of which more than half is slack, or a crumb that is part of no curve.
std::vector<bool> FindSlackCurves(Lines lines, const std::vector<bool>& isSlack, double crumb) {
  const std::vector<std::uint32_t> curves = FindCurves(lines);
  std::vector<double> surplus(lines.size(), -crumb);  // of curves: firm length less slack length
  for (std::size_t i = 0; i < lines.size(); ++i) {
    surplus[curves[i]] += isSlack[i] ? -LengthOf(lines[i]) : LengthOf(lines[i]);
  }
  std::vector<bool> isOut;
  isOut.reserve(lines.size());
  for (const std::uint32_t curve : curves) isOut.push_back(!(surplus[curve] >= 0));
  return isOut;
}

// What becomes of slack curves.
enum class SlackCurves { kOut, kSteepPartsStay };

// Puts back what is steep in curves that are out, but for crumbs.
void KeepSteep(Lines lines, const Judge& judge, std::vector<bool>& isOut) {
  std::vector<IntersectionLine> steep;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (isOut[i] && judge.IsSteep(lines[i])) steep.push_back(lines[i]);
  }
  const std::vector<bool> isCrumb = FindSlackCurves(steep, std::vector<bool>(steep.size(), false), judge.Crumb());
  std::size_t k = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (isOut[i] && judge.IsSteep(lines[i])) isOut[i] = isCrumb[k++];
  }
}

// Leaves out what is no line of a drawing, from the place on.
void Settle(std::vector<IntersectionLine>& lines, std::size_t from, const Judge& judge, SlackCurves slackCurves) {
  const auto first = lines.begin() + static_cast<std::ptrdiff_t>(from);
  lines.erase(std::remove_if(first, lines.end(), [&](const IntersectionLine& line) { return judge.IsContact(line); }), lines.end());
  const Lines rest = Lines(lines).subspan(from);
  std::vector<bool> isSlack;
  isSlack.reserve(rest.size());
  bool areAllFirm = true;
  for (const IntersectionLine& line : rest) {
    isSlack.push_back(judge.IsSlack(line));
    areAllFirm &= !isSlack.back() && !judge.IsCrumb(line);
  }
  if (areAllFirm) return;
  std::vector<bool> isOut = FindSlackCurves(rest, isSlack, judge.Crumb());
  if (slackCurves == SlackCurves::kSteepPartsStay) KeepSteep(rest, judge, isOut);
  std::size_t kept = from;
  for (std::size_t i = from; i < lines.size(); ++i) {
    if (!isOut[i - from]) lines[kept++] = lines[i];
  }
  lines.resize(kept);
}

std::vector<IntersectionLine> Find(const Model& model, double contact, unsigned threads, SlackCurves slackCurves) {
  PatchedConnectivity made = TakeConnectivity(model, threads);
  const Judge judge(model, made.mesh, contact);
  const auto settle = [&](std::vector<IntersectionLine>& lines, std::size_t from) { Settle(lines, from, judge, slackCurves); };
  return FindCrossings(model, made.mesh, threads, settle, std::move(made.patches));
}

}  // namespace

std::vector<IntersectionLine> FindIntersections(const Model& model, double contact, unsigned threads) {
  return Find(model, contact, threads, SlackCurves::kOut);
}

std::vector<IntersectionLine> FindSeams(const Model& model, double contact, unsigned threads) {
  return Find(model, contact, threads, SlackCurves::kSteepPartsStay);
}

}  // namespace zbr::drawing
