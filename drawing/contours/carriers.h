// The curves that arcs lie on, and the vertices that all arcs of one curve share.
#pragma once

#include <zbr-drawing/drawing.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// A part of a carrier, from the parameter t0 to t1, which may be below it. Its ends are those of its neighbours on the path, to the
// bit.
struct Stretch {
  std::uint32_t carrier = 0;
  double t0 = 0.0, t1 = 0.0;
  ZBR_PT from, to;
  bool isWhole = false;  // once around: has no ends

  // The parameter, a full turn added or taken away, if it lies on the stretch; else a number beyond its ends.
  double Unwrapped(double t, bool isPeriodic) const;
};

struct CurveVertex {
  double t = 0.0;
  ZBR_PT at;
  bool isBetween = false;  // placed for the deviation alone, not where something begins, ends or meets
};

// Circles that are equal but for rounding are one carrier, so that arcs along each other get the same vertices, however long each
// is; of ellipses those with equal axes too, and splines that are stretches of another one are that one. Parameters are angles from
// the carrier's u, for circles from the x axis; those of splines are the spline's own.
class Carriers {
 public:
  // Points closer together than `snap` are one place.
  Carriers(double deviation, double snap) : deviation_(deviation), snap_(snap) {}

  // Takes up curves, all at once; stretches come back in the same order.
  std::vector<Stretch> Add(const std::vector<const Curve*>& curves);

  std::size_t size() const { return curves_.size(); }
  const Curve& curve(std::uint32_t carrier) const { return curves_[carrier]; }
  const std::vector<Curve>& curves() const { return curves_; }
  bool IsCircle(std::uint32_t carrier) const { return isCircle_[carrier]; }
  double Radius(std::uint32_t carrier) const { return curves_[carrier].u.x(); }  // of a circle
  bool IsPeriodic(std::uint32_t carrier) const;
  double ParameterOf(std::uint32_t carrier, const ZBR_PT& p) const;  // of a circle

  // Makes the place a vertex of every stretch that passes it.
  void AddVertex(std::uint32_t carrier, double t, const ZBR_PT& at, bool isBetween = false);

  // The vertices between the ends of a stretch, in its direction, with parameters that go on from t0 to t1.
  std::vector<CurveVertex> VerticesOf(const Stretch& stretch);

 private:
  std::uint32_t AddCarrier(const Curve& curve, bool isCircle);
  Stretch StretchOn(std::uint32_t carrier, const Curve& curve) const;
  void Settle(std::uint32_t carrier);
  std::vector<CurveVertex> Thinned(const std::vector<CurveVertex>& list, double distance) const;
  double Canonical(std::uint32_t carrier, double t) const;

  double deviation_, snap_;
  std::vector<Curve> curves_;
  std::vector<bool> isCircle_;
  std::vector<std::vector<CurveVertex>> vertices_;  // by carrier, ascending where settled
  std::vector<bool> isSettled_;
};

// Parameters between the ends of a curve at which chords keep within the deviation: for closed curves the same ones whatever part
// of it is asked for.
std::vector<double> ChordParameters(const Curve& curve, double deviation);

}  // namespace zbr::drawing
