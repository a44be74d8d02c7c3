// A house with a porch, a dormer and a chimney. Metres.
//
// Most bodies touch. Chimney and dormer pass through the roof, as they are built: no body has an edge where they do. Lengths are
// multiples of powers of two, and so points on the slopes lie on them exactly, even in single precision.
#include "models/models.h"
#include "models/solid.h"

namespace example {
namespace {

constexpr double kWidth = 10.0, kDepth = 8.0, kWall = 0.3125;
constexpr double kFloor = 0.3125, kSill = 1.125, kHead = 2.1875, kEaves = 3.0;
constexpr double kPitch = 0.75;
constexpr double kRoof = kEaves + 0.25;  // height of the front slope above y = 0; the back slope mirrors it

// Front windows and back windows reach from one x to another, side windows from one y to another.
struct Span {
  double from, to;
};
constexpr Span kDoor = {4.375, 5.625};
constexpr Span kFrontWindows[] = {{1.25, 2.625}, {7.375, 8.75}};
constexpr Span kBackWindows[] = {{1.25, 2.625}, {4.3125, 5.6875}, {7.375, 8.75}};
constexpr Span kSideWindows[] = {{1.5, 2.75}, {5.25, 6.5}};

void AddPrism(Mesh& mesh, Axis axis, const Region& region, const Height& from, const Height& to) {
  Solid solid;
  solid.Extrude(axis, region, from, to);
  Append(mesh, solid.Take());
}

void AddWalls(Mesh& mesh) {
  const double inX = kWidth - kWall, inY = kDepth - kWall;
  const Region ring = Minus(Rectangle(0, 0, kWidth, kDepth), Rectangle(kWall, kWall, inX, inY));
  const Region atDoor = Minus(ring, Rectangle(kDoor.from, -1, kDoor.to, 1));
  Region atWindows = atDoor;
  for (const Span& s : kFrontWindows) atWindows = Minus(atWindows, Rectangle(s.from, -1, s.to, 1));
  for (const Span& s : kBackWindows) atWindows = Minus(atWindows, Rectangle(s.from, inY - 1, s.to, kDepth + 1));
  for (const Span& s : kSideWindows) {
    atWindows = Minus(atWindows, Rectangle(-1, s.from, 1, s.to));
    atWindows = Minus(atWindows, Rectangle(inX - 1, s.from, kWidth + 1, s.to));
  }
  Solid solid;
  solid.Stack(Axis::kZ, {0, kFloor, kSill, kHead, kEaves},
              {Rectangle(-0.125, -0.125, kWidth + 0.125, kDepth + 0.125), atDoor, atWindows, ring});
  Append(mesh, solid.Take());
}

// A frame with a cross of bars.
Region Frame(const Span& s) {
  constexpr double kBar = 0.0625;
  const double middle = (s.from + s.to) / 2, across = kHead - 0.375;
  Region frame = Rectangle(s.from, kSill, s.to, kHead);
  for (const Span& u : {Span{s.from + kBar, middle - kBar / 2}, Span{middle + kBar / 2, s.to - kBar}}) {
    frame = Minus(frame, Rectangle(u.from, kSill + kBar, u.to, across - kBar / 2));
    frame = Minus(frame, Rectangle(u.from, across + kBar / 2, u.to, kHead - kBar));
  }
  return frame;
}

// In the middle of the walls' thickness.
void AddWindows(Mesh& mesh) {
  constexpr double kNear = 0.09375, kFar = 0.21875;
  for (const Span& s : kFrontWindows) AddPrism(mesh, Axis::kY, Frame(s), -kFar, -kNear);
  for (const Span& s : kBackWindows) AddPrism(mesh, Axis::kY, Frame(s), kNear - kDepth, kFar - kDepth);
  for (const Span& s : kSideWindows) {
    AddPrism(mesh, Axis::kX, Frame(s), kNear, kFar);
    AddPrism(mesh, Axis::kX, Frame(s), kWidth - kFar, kWidth - kNear);
  }
}

void AddDoor(Mesh& mesh) {
  constexpr double kFace = -0.125;
  Solid solid;
  solid.Extrude(Axis::kY, Rectangle(kDoor.from, kFloor, kDoor.to, kHead), -0.25, kFace);
  for (const Span& v : {Span{0.5, 1.125}, Span{1.3125, 2.0}}) {
    for (const Span& u : {Span{4.5, 4.9375}, Span{5.0625, 5.5}})
      solid.Drill(Axis::kY, Rectangle(u.from, v.from, u.to, v.to), kFace - 0.03125, kFace);
  }
  Append(mesh, solid.Take());
}

// The two slopes are one body over the whole length; the gables under them have a window each.
void AddRoof(Mesh& mesh) {
  const double ridge = kDepth / 2, out = 0.625, drop = out * kPitch, rise = ridge * kPitch;
  AddPrism(mesh, Axis::kX,
           Polygon({{-out, kEaves - drop},
                    {ridge, kEaves + rise},
                    {kDepth + out, kEaves - drop},
                    {kDepth + out, kRoof - drop},
                    {ridge, kRoof + rise},
                    {-out, kRoof - drop}}),
           -0.5, kWidth + 0.5);
  const Region gable =
      Minus(Polygon({{0, kEaves}, {kDepth, kEaves}, {ridge, kEaves + rise}}), Rectangle(ridge - 0.5, 3.5, ridge + 0.5, 4.5));
  AddPrism(mesh, Axis::kX, gable, 0.0625, kWall);
  AddPrism(mesh, Axis::kX, gable, kWidth - kWall, kWidth - 0.0625);
}

void AddChimney(Mesh& mesh) {
  const Region flue = Rectangle(7.25, 5.25, 7.75, 5.75), mouth = Rectangle(7.3125, 5.3125, 7.6875, 5.6875);
  AddPrism(mesh, Axis::kZ, Minus(Rectangle(7, 5, 8, 6), flue), kEaves + 0.5, 7.25);
  AddPrism(mesh, Axis::kZ, Minus(Rectangle(6.875, 4.875, 8.125, 6.125), mouth), 7.25, 7.4375);
}

// It reaches into the loft.
void AddDormer(Mesh& mesh) {
  constexpr double kX = 5.0, kFront = 1.0, kSide = 0.75, kOut = 1.0, kThick = 0.1875, kApex = 5.5, kBack = 3.5;
  const double foot = kRoof + kPitch * kFront, top = kApex - kPitch * kSide, low = kApex - kPitch * kOut;
  Solid body;
  body.Extrude(Axis::kY, Polygon({{kX - kSide, foot}, {kX + kSide, foot}, {kX + kSide, top}, {kX, kApex}, {kX - kSide, top}}),
               -kBack, -kFront);
  body.Drill(Axis::kY, Rectangle(kX - 0.4375, 4.25, kX + 0.4375, 4.875), -kFront - 0.125, -kFront);
  Append(mesh, body.Take());
  AddPrism(mesh, Axis::kY,
           Polygon({{kX - kOut, low},
                    {kX, kApex},
                    {kX + kOut, low},
                    {kX + kOut, low + kThick},
                    {kX, kApex + kThick},
                    {kX - kOut, low + kThick}}),
           -kBack, -kFront + 0.25);
}

void AddPorch(Mesh& mesh) {
  constexpr double kEdge = -1.75, kTop = 2.25;
  AddPrism(mesh, Axis::kZ, Rectangle(3.5, kEdge, 6.5, -0.125), 0, kFloor);
  AddPrism(mesh, Axis::kX,
           Polygon({{kEdge, 0},
                    {kEdge, kFloor - 0.09375},
                    {kEdge - 0.3125, kFloor - 0.09375},
                    {kEdge - 0.3125, 0.109375},
                    {kEdge - 0.625, 0.109375},
                    {kEdge - 0.625, 0}}),
           4, 6);
  for (const double x : {3.8125, 6.1875}) {
    constexpr double kY = kEdge + 0.3125, kBase = 0.1875;
    const Region square = Rectangle(x - kBase, kY - kBase, x + kBase, kY + kBase);
    Solid column;
    column.Stack(Axis::kZ, {kFloor, kFloor + 0.125, kTop - 0.125, kTop}, {square, Circle(x, kY, 0.125, 32), square});
    Append(mesh, column.Take());
  }
  AddPrism(mesh, Axis::kZ, Rectangle(3.375, kEdge - 0.125, 6.625, 0), kTop, kTop + 0.1875);
}

}  // namespace

Mesh House() {
  Mesh mesh;
  AddWalls(mesh);
  AddWindows(mesh);
  AddDoor(mesh);
  AddRoof(mesh);
  AddChimney(mesh);
  AddDormer(mesh);
  AddPorch(mesh);
  return mesh;
}

}  // namespace example
