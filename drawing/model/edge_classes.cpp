// Normals, creases, and which side of a shell is the outer one.
//
// Triangulations of polygons leave triangles without area: three points on one line, which fill the gap between a long edge and two
// short ones. Their direction is rounding noise. They take the normal of the neighbour at their longest edge; the short edges then
// get the class that the gap's two sides give them. Where there is no such neighbour far and wide, as on a slender rod of very many
// facets, they are facets like any others and keep their own.
#include "drawing/model/edge_classes.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <vector>

#include "drawing/model/round_rims.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"
#include "drawing/touched.h"

namespace zbr::drawing {
namespace {

// Height below which a triangle has no direction of its own, as a part of the model's diagonal: what is left of a height of zero by
// the rounding of coordinates stored with single precision.
constexpr double kFlatHeight = 1e-7;

// The same for coordinates that are not rounded: the rounding of the products.
constexpr double kNoHeight = 1e-12;

// How far rounded coordinates may move the corners of a triangle in all, in steps of the rounding.
constexpr double kSteps = 4.0;

// Degrees that rounding may add to an angle: prisms with twelve sides bend by exactly the usual limit.
constexpr double kAngleSlack = 0.01;

// The number of flat triangles that may lie side by side before the search for a normal is given up.
constexpr int kLongestDetour = 64;

std::size_t LongestEdge(const ZBR_ZBREPT& t) {
  std::size_t longest = 0;
  double length = -1.0;
  for (std::size_t i = 0; i < 3; ++i) {
    const double d = VertexOf(t, i).GetPt().Distance(VertexOf(t, (i + 1) % 3).GetPt());
    if (!(d > length)) continue;
    longest = i;
    length = d;
  }
  return longest;
}

// In units of the diagonal, so that products neither overflow nor vanish. Zero for a triangle that is not higher than `flat`.
ZBR_PT3 OwnNormal(const ZBR_ZBREPT& t, double perDiagonal, double flat) {
  const ZBR_PT3& a = t.GetVertex0()->GetPt();
  const ZBR_PT3 ab = (t.GetVertex1()->GetPt() - a) * perDiagonal;
  const ZBR_PT3 ac = (t.GetVertex2()->GetPt() - a) * perDiagonal;
  const ZBR_PT3 n = ab.OuterProduct(ac);
  const double doubleArea = n.Length();
  const double longest = std::sqrt(std::max({ab.Length2(), ac.Length2(), (ac - ab).Length2()}));
  return doubleArea > flat * longest ? n * (1.0 / doubleArea) : ZBR_PT3();
}

bool IsZero(const ZBR_PT3& n) {
  return n.x() == 0 && n.y() == 0 && n.z() == 0;
}

std::size_t PlaceOf(const ZBR_ZBREPT& t) {
  return static_cast<std::size_t>(t.GetIndex());
}

// `own` are the normals of the shell.
ZBR_PT3 BorrowedNormal(const Model& model, std::size_t shell, const ZBR_PT3* own, const ZBR_ZBREPT* t) {
  double sign = 1.0;
  for (int step = 0; step < kLongestDetour; ++step) {
    ZBR_ZBREPE& edge = EdgeOf(*t, LongestEdge(*t));
    t = model.Across(shell, *t, edge);
    if (t == nullptr) break;
    if (model.Note(shell, edge).isSameWay) sign = -sign;
    if (!IsZero(own[PlaceOf(*t)])) return own[PlaceOf(*t)] * sign;
  }
  return ZBR_PT3();
}

// Of a part of the edges.
bool AreClosedAndOriented(const Model& model, std::size_t s, std::size_t begin, std::size_t end) {
  for (std::size_t e = begin; e < end; ++e) {
    const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(static_cast<int>(e));
    const EdgeNote note = model.Note(s, edge);
    if (note.isJunction || note.isSameWay || edge.GetTriangle1() == nullptr) return false;
  }
  return true;
}

// Six times the volume inside, in diagonals; negative when the triangles face inwards.
double Volume(const ZBR_ZBREPS& shell, double perDiagonal) {
  const ZBR_PT3 origin = shell.GetTriangle(0)->GetVertex0()->GetPt();
  double sum = 0.0;
  for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
    ZBR_PT3 corners[3];
    for (std::size_t i = 0; i < 3; ++i) corners[i] = (VertexOf(*shell.GetTriangle(k), i).GetPt() - origin) * perDiagonal;
    sum += corners[0].InnerProduct(corners[1].OuterProduct(corners[2]));
  }
  return sum;
}

double PerDiagonal(const Model& model) {
  const double diagonal = model.Diagonal();
  return diagonal > 0 ? 1.0 / diagonal : 1.0;
}

struct FlatTriangle {
  std::size_t shell, triangle;
  ZBR_PT3 normal;  // borrowed

  const ZBR_ZBREPT* In(const Model& model) const { return model.Shell(shell).GetTriangle(static_cast<int>(triangle)); }
};

}  // namespace

void SetNormals(Model& model, unsigned threads) {
  const double perDiagonal = PerDiagonal(model), least = std::max(kNoHeight, kSteps * model.rounding * perDiagonal);
  ResizeTouched(model.normals, model.TriangleCount(), threads);
  std::vector<std::vector<FlatTriangle>> inRange(RangeCount(model.TriangleCount()));
  ForEachPart(model.shellBegin, threads, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) {
      ZBR_PT3& normal = model.normals[model.shellBegin[s] + k];
      normal = OwnNormal(*model.Shell(s).GetTriangle(static_cast<int>(k)), perDiagonal, kFlatHeight);
      if (IsZero(normal)) inRange[range].push_back({s, k, {}});
    }
  });
  // None is given away that was borrowed.
  for (auto& flat : inRange) {
    model.flat += flat.size();
    for (FlatTriangle& t : flat)
      t.normal = BorrowedNormal(model, t.shell, model.normals.data() + model.shellBegin[t.shell], t.In(model));
  }
  for (const auto& flat : inRange) {
    for (const FlatTriangle& t : flat)
      model.normals[model.shellBegin[t.shell] + t.triangle] =
          IsZero(t.normal) ? OwnNormal(*t.In(model), perDiagonal, least) : t.normal;
  }
}

double CosineOfBend(double degrees) {
  return Cos(std::clamp(degrees, 0.0, 180.0) * kPi / 180.0);
}

double CosineOfBend(const Model& model, std::size_t shell, const ZBR_ZBREPE& edge) {
  const ZBR_PT3* const normals = model.normals.data() + model.shellBegin[shell];
  const ZBR_PT3 &a = normals[PlaceOf(*edge.GetTriangle0())], &b = normals[PlaceOf(*edge.GetTriangle1())];
  if (IsZero(a) || IsZero(b)) return 1.0;
  const double cosine = a.InnerProduct(b);
  return model.Note(shell, edge).isSameWay ? -cosine : cosine;
}

void ShowEdges(Model& model, double creaseDegrees, unsigned threads) {
  const double limit = CosineOfBend(creaseDegrees + kAngleSlack), rimLimit = CosineOfBend(creaseDegrees * kLeastOfRim);
  std::vector<std::vector<std::uint32_t>> nearlyInRange(RangeCount(model.edgeBegin.back()));
  ForEachPart(model.edgeBegin, threads, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
    ZBR_ZBREPS& shell = *model.body.GetShell(static_cast<int>(s));
    for (std::size_t e = begin; e < end; ++e) {
      ZBR_ZBREPE& edge = *shell.GetEdge(static_cast<int>(e));
      const bool isEnd = edge.GetTriangle1() == nullptr || model.Note(s, edge).isJunction;
      const double cosine = isEnd ? -1.0 : CosineOfBend(model, s, edge);
      edge.SetShow(isEnd || cosine < limit);
      if (!edge.GetShow() && cosine < rimLimit) nearlyInRange[range].push_back(model.edgeBegin[s] + static_cast<std::uint32_t>(e));
    }
  });
  std::vector<std::uint32_t> nearly;
  for (const auto& edges : nearlyInRange) nearly.insert(nearly.end(), edges.begin(), edges.end());
  CompleteRims(model, creaseDegrees, nearly);
}

void FindFacing(Model& model, unsigned threads) {
  const double perDiagonal = PerDiagonal(model);
  std::vector<std::atomic<bool>> isOpen(model.shellBegin.size() - 1);
  ForEachPart(model.edgeBegin, threads, [&](std::size_t, std::size_t s, std::size_t begin, std::size_t end) {
    if (!AreClosedAndOriented(model, s, begin, end)) isOpen[s] = true;
  });
  model.facing.resize(isOpen.size());
  ForEachShell(model.shellBegin, threads, [&](std::size_t s) {
    const double volume = isOpen[s] ? 0.0 : Volume(model.Shell(s), perDiagonal);
    model.facing[s] = volume > 0 ? Facing::kOutward : volume < 0 ? Facing::kInward : Facing::kUnknown;
  });
}

}  // namespace zbr::drawing
