// Maps of the plane that keep lines straight: moves, turns, mirrors, scales and what they make together.
#pragma once

#include <zbr-drawing/drawing.h>

namespace zbr::drawing {

// (x, y) goes to (xx x + xy y + dx, yx x + yy y + dy).
struct Affine {
  double xx = 1.0, xy = 0.0, dx = 0.0;
  double yx = 0.0, yy = 1.0, dy = 0.0;

  static Affine Scale(double x, double y) { return {x, 0.0, 0.0, 0.0, y, 0.0}; }
  static Affine Move(const ZBR_PT& by) { return {1.0, 0.0, by.x(), 0.0, 1.0, by.y()}; }
  static Affine Turn(double degrees);  // counter-clockwise about the origin; exact for right angles

  ZBR_PT OfPoint(const ZBR_PT& p) const { return {xx * p.x() + xy * p.y() + dx, yx * p.x() + yy * p.y() + dy}; }
  ZBR_PT OfVector(const ZBR_PT& p) const { return {xx * p.x() + xy * p.y(), yx * p.x() + yy * p.y()}; }
  Affine After(const Affine& first) const;  // first that one, then this
};

// Cosine and sine, exact for multiples of a right angle, so that arcs end where lines drawn at right angles start.
ZBR_PT Direction(double degrees);

// Points and curves of a path where the map takes them; heights stay.
void Map(Path& path, const Affine& map);
void Map(Curve& curve, const Affine& map);

}  // namespace zbr::drawing
