#include "drawing/intersections/exact_sign.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace zbr::drawing {
namespace {

// Of grid coordinates. Of a double's 53 digits one is kept for differences, one for a middle that is off, and one to spare.
constexpr int kDigits = 50;

struct Two {
  double high, low;  // the exact sum of both
};

Two Sum(double a, double b) {
  const double sum = a + b;
  const double b1 = sum - a;
  return {sum, (a - (sum - b1)) + (b - b1)};
}

Two Halves(double a) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  const double c = kSplit * a;
  const double high = c - (c - a);
  return {high, a - high};
}

Two Product(double a, double b) {
  const double product = a * b;
  const Two p = Halves(a), q = Halves(b);
  return {product, ((p.high * q.high - product) + p.high * q.low + p.low * q.high) + p.low * q.low};
}

// A sum kept as numbers that do not overlap, by increasing size: the last one tells its sign.
class ExactSum {
 public:
  void Add(double x) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      const Two s = Sum(x, parts_[i]);
      x = s.high;
      if (s.low != 0) parts_[kept++] = s.low;
    }
    if (x != 0) parts_[kept++] = x;
    count_ = kept;
  }
  void AddProduct(double a, double b, double c) {
    const Two ab = Product(a, b);
    for (const double part : {ab.low, ab.high}) {
      const Two p = Product(part, c);
      Add(p.low);
      Add(p.high);
    }
  }
  double Value() const {
    double sum = 0.0;
    for (std::size_t i = 0; i < count_; ++i) sum += parts_[i];
    return sum;
  }

 private:
  std::array<double, 24> parts_{};  // six products of three factors have four parts each
  std::size_t count_ = 0;
};

GridPoint Minus(const GridPoint& a, const GridPoint& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double ExactVolume6(const GridPoint& u, const GridPoint& v, const GridPoint& w) {
  ExactSum sum;
  sum.AddProduct(v.y, w.z, u.x);
  sum.AddProduct(v.z, w.y, -u.x);
  sum.AddProduct(v.z, w.x, u.y);
  sum.AddProduct(v.x, w.z, -u.y);
  sum.AddProduct(v.x, w.y, u.z);
  sum.AddProduct(v.y, w.x, -u.z);
  return sum.Value();
}

bool IsZero(const GridPoint& u) {
  return (u.x == 0) & (u.y == 0) & (u.z == 0);
}
bool IsEqual(const GridPoint& u, const GridPoint& v) {
  return (u.x == v.x) & (u.y == v.y) & (u.z == v.z);
}

// The sign of ab - cd.
int DifferenceSign(double a, double b, double c, double d) {
  const Two p = Product(a, b), q = Product(c, d);
  return p.high != q.high ? SignOf(p.high - q.high) : SignOf(p.low - q.low);
}

}  // namespace

std::vector<GridPoint> OnGrid(const std::vector<ZBR_PT3>& points, const ZBR_PT3& low, const ZBR_PT3& high) {
  const double size = std::max({high.x() - low.x(), high.y() - low.y(), high.z() - low.z()});
  const int exponent = size > 0 ? std::ilogb(size) + 1 : 0;
  // A multiple of the size rounded up: subtracting it keeps what lies on a coarser grid on it.
  const auto middle = [exponent](double a, double b) {
    return std::ldexp(std::nearbyint(std::ldexp(a / 2 + b / 2, -exponent)), exponent);
  };
  const ZBR_PT3 m(middle(low.x(), high.x()), middle(low.y(), high.y()), middle(low.z(), high.z()));
  // In two steps, as the power of two as a whole may be no number.
  const int shift = kDigits - exponent;
  const double first = std::ldexp(1.0, shift / 2), second = std::ldexp(1.0, shift - shift / 2);
  const auto place = [&](double x) { return std::nearbyint(x * first * second); };
  std::vector<GridPoint> grid;
  grid.reserve(points.size());
  for (const ZBR_PT3& p : points) grid.push_back({place(p.x() - m.x()), place(p.y() - m.y()), place(p.z() - m.z())});
  return grid;
}

double Volume6(const GridPoint& a, const GridPoint& b, const GridPoint& c, const GridPoint& d) {
  const GridPoint u = Minus(b, a), v = Minus(c, a), w = Minus(d, a);
  if (IsZero(w) || IsEqual(w, u) || IsEqual(w, v)) return 0.0;  // bodies share corners more often than anything else
  const double yz = v.y * w.z, zy = v.z * w.y, zx = v.z * w.x, xz = v.x * w.z, xy = v.x * w.y, yx = v.y * w.x;
  const double value = u.x * (yz - zy) + u.y * (zx - xz) + u.z * (xy - yx);
  const double size = std::abs(u.x) * (std::abs(yz) + std::abs(zy)) + std::abs(u.y) * (std::abs(zx) + std::abs(xz)) +
                      std::abs(u.z) * (std::abs(xy) + std::abs(yx));
  return std::abs(value) > kDeterminantError * size || size == 0 ? value : ExactVolume6(u, v, w);
}

int CrossSign(const GridPoint& a, const GridPoint& b, const GridPoint& c, const GridPoint& d) {
  const GridPoint u = Minus(b, a), v = Minus(d, c);
  if (const int x = DifferenceSign(u.y, v.z, u.z, v.y)) return x;
  if (const int y = DifferenceSign(u.z, v.x, u.x, v.z)) return y;
  return DifferenceSign(u.x, v.y, u.y, v.x);
}

}  // namespace zbr::drawing
