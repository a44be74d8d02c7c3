// Numbers that come out the same, to the bit, on every machine: pseudo-random values, sines and cosines, a binary grid.
//
// Only additions, multiplications, divisions and floor are used, which IEEE 754 defines exactly; the functions of <cmath> and the
// distributions of <random> may differ between libraries.
#pragma once

#include <cmath>
#include <cstdint>

namespace bench {

// Scrambles 64 bits so that neighbouring inputs give unrelated outputs (the finaliser of splitmix64).
inline std::uint64_t Mix(std::uint64_t bits) {
  bits = (bits ^ (bits >> 30U)) * 0xbf58476d1ce4e5b9U;
  bits = (bits ^ (bits >> 27U)) * 0x94d049bb133111ebU;
  return bits ^ (bits >> 31U);
}

// The value in [-1, 1) that belongs to `index` in the sequence `seed`: random access, so that parts of a shape can be shared.
inline double SignedUnit(std::uint64_t seed, std::uint64_t index) {
  const std::uint64_t bits = Mix(Mix(seed) + (index + 1U) * 0x9e3779b97f4a7c15U);
  return static_cast<double>(bits >> 11U) * 0x1p-52 - 1.0;
}

// A sequence of values drawn one after the other.
class Random {
 public:
  explicit Random(std::uint64_t seed) : seed_(seed) {}
  double Between(double low, double high) { return low + (high - low) * 0.5 * (SignedUnit(seed_, next_++) + 1.0); }
  std::size_t Below(std::size_t count) { return static_cast<std::size_t>(Between(0.0, static_cast<double>(count))); }

 private:
  std::uint64_t seed_;
  std::uint64_t next_ = 0;
};

inline constexpr double kPi = 3.14159265358979323846;

struct SinCos {
  double sin;
  double cos;
};

// Sine and cosine of an angle given in full turns, by the Taylor series on an eighth of a turn to either side of an axis.
inline SinCos SinCosOfTurns(double turns) {
  const double axis = std::floor(4.0 * turns + 0.5);
  const double x = (turns - 0.25 * axis) * (2.0 * kPi);
  SinCos sum = {0.0, 0.0};
  double term = 1.0;
  for (int k = 0; k < 20; k += 2) {
    const double sign = k % 4 == 0 ? 1.0 : -1.0;
    sum.cos += sign * term;
    term = term * x / (k + 1);
    sum.sin += sign * term;
    term = term * x / (k + 2);
  }
  switch (static_cast<int>(axis - 4.0 * std::floor(0.25 * axis))) {
    case 0:
      return sum;
    case 1:
      return {sum.cos, -sum.sin};
    case 2:
      return {-sum.sin, -sum.cos};
    default:
      return {-sum.cos, sum.sin};
  }
}

inline SinCos SinCosOfRadians(double angle) {
  return SinCosOfTurns(angle / (2.0 * kPi));
}

// Spacing of the coordinates of every workload. Up to 1023 in size they are then exact as 31-bit integers too, which is what a
// peer that works in integers handles fastest: nobody has to round its input.
inline constexpr double kGridStep = 0x1p-20;

inline double OnGrid(double value) {
  return std::floor(value / kGridStep + 0.5) * kGridStep;
}

}  // namespace bench
