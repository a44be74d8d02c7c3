// A bearing housing: a barrel with a flange on a foot plate, held by a pedestal and ribs. Millimetres.
//
// It is built in layers from back to front, each a section across the bore.
#include <cmath>

#include "bench/portable_numbers.h"
#include "models/models.h"
#include "models/solid.h"

namespace example {
namespace {

constexpr double kCentre = 70.0;  // height of the bore
constexpr double kBarrel = 40.0;  // radius
constexpr int kFine = 96, kCoarse = 32;

// A corner of the barrel's section. What meets the barrel meets it in such corners, so that no narrow strips are left.
ZBR_PT OnBarrel(int corner) {
  const auto [sin, cos] = bench::SinCosOfTurns(static_cast<double>(corner) / kFine);
  return ZBR_PT(kBarrel * cos, kCentre + kBarrel * sin);
}

// Symmetric about the middle: from the base line at y0, `half` to either side, to a corner of the barrel and its mirror image.
Region Support(double half, double y0, int corner) {
  const ZBR_PT right = OnBarrel(corner), left = OnBarrel(kFine / 2 - corner);
  return Polygon({{-half, y0}, {half, y0}, right, left});
}

// A relief under the middle lets the plate stand on its ends.
Region Plate() {
  return Polygon({{-90, 0}, {-50, 0}, {-50, 4}, {50, 4}, {50, 0}, {90, 0}, {90, 16}, {-90, 16}});
}

// The bore with the keyway at its top.
Region Bore() {
  return Union(Circle(0, kCentre, 24, kFine), Rectangle(-4, kCentre, 4, kCentre + 27.5));
}

Region BoltHoles() {
  Region holes;
  for (int i = 0; i < 6; ++i) {
    const auto [sin, cos] = bench::SinCosOfTurns(i / 6.0);
    const Region hole = Circle(46 * cos, kCentre + 46 * sin, 3.25, kCoarse);
    holes.push_back(hole.front());
  }
  return holes;
}

void DrillFoot(Solid& solid, double x, double y) {
  constexpr double kDepth = 5.0;  // of the counterbore
  solid.Drill(Axis::kZ, Circle(x, y, 11, 2 * kCoarse), 16 - kDepth, 16);
  solid.Drill(Axis::kZ, Circle(x, y, 6.5, kCoarse), 0, 16 - kDepth);
}

}  // namespace

Mesh Housing() {
  const Region plate = Plate();
  const Region barrel = Circle(0, kCentre, kBarrel, kFine);
  const Region flange = Circle(0, kCentre, 52, kFine);
  const Region seat = Circle(0, kCentre, 30, kFine);                                         // of the seals, wider than the bore
  const double web = OnBarrel(3 * kFine / 4 + 2).x(), nozzle = OnBarrel(kFine / 4 - 4).x();  // half their widths
  const Region foot = Union(Union(barrel, plate), Rectangle(-web, 10, web, 40));
  const Region pedestal = Union(foot, Support(40, 10, -9));
  const Region boss = Union(pedestal, Rectangle(-nozzle, 100, nozzle, 114));
  const Region ribs = Union(boss, Support(80, 16, 0));
  const Region end = Minus(foot, Bore()), middle = Minus(pedestal, Bore()), top = Minus(boss, Bore());
  Solid solid;
  solid.Stack(
      Axis::kY, {-52, -45, -20, -12, -5, 5, 12, 20, 45, 54},
      {Minus(barrel, seat), end, middle, top, Minus(ribs, Bore()), top, middle, end, Minus(Minus(flange, seat), BoltHoles())});
  for (const double x : {-70.0, 70.0}) {
    for (const double y : {-32.0, 32.0}) DrillFoot(solid, x, y);
  }
  solid.Drill(Axis::kZ, Circle(0, 0, 4, kCoarse), 103, 114);  // for the grease nipple
  return solid.Take();
}

}  // namespace example
