// Idea: a sum of doubles is kept as terms that do not overlap, the largest last; each term added goes through all of them and
// leaves in each place what rounding would have lost. The sign is that of the last term that is not zero.
#include "core/exact_side.h"

#include <cmath>

namespace zbr {
namespace {

struct Two {
  double high, low;  // the exact sum of both
};

Two Sum(double a, double b) {
  const double sum = a + b;
  const double b1 = sum - a;
  return {sum, (a - (sum - b1)) + (b - b1)};
}

// The upper half of the digits, and the rest.
Two Halves(double a) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  const double c = kSplit * a;
  const double high = c - (c - a);
  return {high, a - high};
}

Two Product(double a, double b) {
  const double product = a * b;
  const Two x = Halves(a), y = Halves(b);
  return {product, x.low * y.low - (((product - x.high * y.high) - x.low * y.high) - x.high * y.low)};
}

bool IsExactDifference(double a, double b) {
  return Sum(a, -b).low == 0.0;
}

class ExactSum {
 public:
  void AddProduct(double a, double b) {
    const Two product = Product(a, b);
    Add(product.low);
    Add(product.high);
  }
  int Sign() const {
    for (int i = count_; i-- > 0;) {
      if (terms_[i] != 0.0) return terms_[i] > 0.0 ? 1 : -1;
    }
    return 0;
  }

 private:
  void Add(double term) {
    for (int i = 0; i < count_; ++i) {
      const Two sum = Sum(term, terms_[i]);
      terms_[i] = sum.low;
      term = sum.high;
    }
    terms_[count_++] = term;
  }

  static constexpr int kMost = 12;  // two for each of six products
  double terms_[kMost] = {};
  int count_ = 0;
};

int SignOf(double d) {
  return d > 0.0 ? 1 : d < 0.0 ? -1 : 0;
}

}  // namespace

// Most areas near zero are those of points that were made to lie so: two of the same, or on a lattice, where differences of
// coordinates have no rounding. Then there are only two products to be compared. Rounding keeps their order, unless it makes them
// equal; then what it cut off decides.
int ExactSideOf(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& c) {
  // More than the errors of the differences, their products and the sum, relative to the products.
  constexpr double kError = 0x1p-51;
  constexpr double kSmall = 0x1p-800;  // what is cut off from products that are larger is a double still
  const double bx = b.x() - a.x(), by = b.y() - a.y(), cx = c.x() - a.x(), cy = c.y() - a.y();
  const double plus = bx * cy;
  const double minus = by * cx;
  const double value = plus - minus;
  const double error = kError * (std::fabs(plus) + std::fabs(minus));
  if (value > error) return 1;
  if (value < -error) return -1;
  if ((bx == 0.0 || cy == 0.0) && (by == 0.0 || cx == 0.0)) return 0;
  if (error > kSmall && IsExactDifference(b.x(), a.x()) && IsExactDifference(b.y(), a.y()) && IsExactDifference(c.x(), a.x()) &&
      IsExactDifference(c.y(), a.y())) {
    if (plus != minus) return SignOf(value);
    const double rest = Product(bx, cy).low - Product(by, cx).low;
    if (std::isfinite(rest)) return SignOf(rest);
  }
  ExactSum area;
  area.AddProduct(a.x(), b.y());
  area.AddProduct(-a.y(), b.x());
  area.AddProduct(b.x(), c.y());
  area.AddProduct(-b.y(), c.x());
  area.AddProduct(c.x(), a.y());
  area.AddProduct(-c.y(), a.x());
  return area.Sign();
}

}  // namespace zbr
