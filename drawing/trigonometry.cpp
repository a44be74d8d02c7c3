// Sines by the power series around the nearest quarter turn, arc tangents by the one around the nearest eighth. What decides the
// last digit is not the series, whose terms fall off fast, but that the small argument of the series is known beyond a double's
// precision: it is a sum of two doubles, of which the second enters by the derivative alone. Only operations whose rounding IEEE
// 754 prescribes are used.
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace zbr::drawing {
namespace {

// A number as a sum, low at most half a unit in the last place of high.
struct Sum {
  double high, low;
};

// Of a + b, where |a| >= |b|.
Sum Exactly(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

// a b as a sum, without error. Both are small enough to be split.
Sum Product(double a, double b) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1 takes the upper half of the digits
  const auto upper = [](double v) {
    const double moved = v * kSplit;
    return moved - (moved - v);
  };
  const double ah = upper(a), al = a - ah, bh = upper(b), bl = b - bh;
  const double product = a * b;
  return {product, ((ah * bh - product) + ah * bl + al * bh) + al * bl};
}

// pi/2 in pieces of 33 bits, so that small multiples of the first ones are exact.
constexpr double kQuarter[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2ep-69, 0x1.b839a252049c1p-104};
constexpr double kPiLow = 0x1.1a62633145c07p-53;

struct Reduced {
  std::int64_t quarters;  // 0 to 3
  Sum rest;               // within an eighth of a turn
};

Reduced Reduce(double angle) {
  constexpr double kFew = 1048576.0;
  if (std::abs(angle) > kFew) angle = std::fmod(angle, 2 * kPi);
  const double count = std::floor(angle / (kPi / 2) + 0.5);
  const double rest = angle - count * kQuarter[0];
  const double second = count * kQuarter[1];
  const double high = rest - second;
  const double low = ((rest - high) - second) - count * kQuarter[2];
  const auto quarters = static_cast<std::int64_t>(count) & 3;
  return {quarters, Exactly(high, low - count * kQuarter[3])};
}

double SinNear0(const Sum& t) {
  const double z = t.high * t.high;
  double series = 0.0;
  for (int n = 19; n >= 5; n -= 2) series = (series + 1.0) * (-z / (n * (n - 1)));
  const double cubic = -z / 6.0 * (1.0 + series);
  return t.high + (t.high * cubic + t.low * (1.0 - z / 2.0));
}

double CosNear0(const Sum& t) {
  const double z = t.high * t.high, half = z / 2.0;
  double series = 0.0;
  for (int n = 20; n >= 6; n -= 2) series = (series + 1.0) * (-z / (n * (n - 1)));
  const double fourth = z * z / 24.0 * (1.0 + series);
  const double first = 1.0 - half;
  return first + (((1.0 - first) - half) + (fourth - t.high * t.low));
}

// atan(k / 8), to more than a double's digits.
constexpr Sum kEighths[] = {{0.0, 0.0},
                            {0x1.fd5ba9aac2f6ep-4, -0x1.cd37686760c17p-59},
                            {0x1.f5b75f92c80ddp-3, 0x1.8ab6e3cf7afbdp-57},
                            {0x1.6f61941e4def1p-2, -0x1.c63aae6f6e918p-56},
                            {0x1.dac670561bb4fp-2, 0x1.a2b7f222f65e2p-56},
                            {0x1.1e00babdefeb4p-1, -0x1.928df287a668fp-58},
                            {0x1.4978fa3269ee1p-1, 0x1.2419a87f2a458p-56},
                            {0x1.700a7c5784634p-1, -0x1.8c34d25aadef6p-56},
                            {0x1.921fb54442d18p-1, 0x1.1a62633145c07p-55}};

// Of q.high + q.low between 0 and 1.
Sum AtanOfPart(const Sum& q) {
  const int k = static_cast<int>(q.high * 8.0 + 0.5);
  const double c = k / 8.0;
  const Sum product = Product(c, q.high);
  const Sum above = Exactly(1.0, product.high);
  const double t = ((q.high - c) + q.low) / above.high;
  const Sum back = Product(t, above.high);  // what rounding made of the quotient
  const double left = ((((q.high - c) - back.high) - back.low) + q.low - t * (above.low + product.low + c * q.low)) / above.high;
  const double z = t * t;
  double series = 0.0;
  for (int n = 19; n >= 3; n -= 2) series = z * ((n % 4 == 3 ? -1.0 : 1.0) / n + series);
  const Sum sum = Exactly(kEighths[k].high, t);
  if (k == 0) return Exactly(t, left + t * series);
  return Exactly(sum.high, sum.low + (kEighths[k].low + left + t * series));
}

// The quotient of smaller and larger, both positive, and what rounding left of it.
Sum Quotient(double smaller, double larger) {
  const double q = smaller / larger;
  constexpr double kTiny = 0x1p-900, kHuge = 0x1p900;  // where halves of digits are too small or too large for a double
  if (larger > kHuge || smaller < kTiny || q < kTiny) return {q, 0.0};
  const Sum back = Product(q, larger);
  return {q, ((smaller - back.high) - back.low) / larger};
}

// Powers of two that bring the larger of two sizes near 1.
double ScaleFor(double largest) {
  int exponent = 0;
  std::frexp(largest, &exponent);
  return std::ldexp(1.0, std::clamp(-exponent, -1022, 1022));
}

}  // namespace

double Sin(double angle) {
  if (!std::isfinite(angle)) return std::numeric_limits<double>::quiet_NaN();
  if (angle == 0.0) return angle;
  const Reduced reduced = Reduce(angle);
  const double value = reduced.quarters % 2 == 0 ? SinNear0(reduced.rest) : CosNear0(reduced.rest);
  return reduced.quarters < 2 ? value : -value;
}

double Cos(double angle) {
  if (!std::isfinite(angle)) return std::numeric_limits<double>::quiet_NaN();
  const Reduced reduced = Reduce(angle);
  const double value = reduced.quarters % 2 == 0 ? CosNear0(reduced.rest) : SinNear0(reduced.rest);
  return reduced.quarters == 0 || reduced.quarters == 3 ? value : -value;
}

double Tan(double angle) {
  return Sin(angle) / Cos(angle);
}

double Atan(double tangent) {
  return Atan2(tangent, 1.0);
}

double Atan2(double y, double x) {
  if (std::isnan(x) || std::isnan(y)) return std::numeric_limits<double>::quiet_NaN();
  double ay = std::abs(y), ax = std::abs(x);
  if (std::isinf(ay) || std::isinf(ax)) {
    ay = std::isinf(ay) ? 1.0 : 0.0;
    ax = std::isinf(ax) ? 1.0 : 0.0;
  }
  const bool isSteep = ay > ax;
  const bool isLeft = std::signbit(x);
  if (!isLeft && !isSteep && ay / ax < 0x1p-1000) return std::copysign(ay / ax, y);  // the angle is the ratio itself
  const Sum part = ax == 0 && ay == 0 ? Sum{0.0, 0.0} : AtanOfPart(isSteep ? Quotient(ax, ay) : Quotient(ay, ax));
  const double sign = isSteep != isLeft ? -1.0 : 1.0;  // from which side the angle counts
  const double base = isSteep ? kPi / 2 : (isLeft ? kPi : 0.0), baseLow = isSteep ? kPiLow / 2 : (isLeft ? kPiLow : 0.0);
  const Sum sum = base == 0.0 ? Sum{part.high, 0.0} : Exactly(base, sign * part.high);
  return std::copysign(sum.high + (sum.low + (baseLow + sign * part.low)), y);
}

double Asin(double sine) {
  return Atan2(sine, std::sqrt((1.0 - sine) * (1.0 + sine)));
}

double Acos(double cosine) {
  return Atan2(std::sqrt((1.0 - cosine) * (1.0 + cosine)), cosine);
}

double Hypot(double x, double y) {
  return Hypot(x, y, 0.0);
}

double Hypot(double x, double y, double z) {
  const double largest = std::max({std::abs(x), std::abs(y), std::abs(z)});
  if (std::isinf(x) || std::isinf(y) || std::isinf(z)) return std::numeric_limits<double>::infinity();
  if (!(largest > 0)) return largest + x + y + z;  // zero, or not a number
  const double scale = ScaleFor(largest);
  const double a = x * scale, b = y * scale, c = z * scale;
  return std::sqrt(a * a + b * b + c * c) / scale;
}

}  // namespace zbr::drawing
