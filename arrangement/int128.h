// Whole numbers of 128 bits, as far as exact geometry on a grid needs them.
#pragma once

#include <cstdint>

namespace zbr {

// Two's complement; sums and products wrap around, so that a small difference of large products comes out right.
class Int128 {
 public:
  Int128() = default;
  Int128(std::int64_t v) : high_(v < 0 ? ~std::uint64_t{0} : 0), low_(static_cast<std::uint64_t>(v)) {}  // NOLINT: a wider integer

  // The exact product.
  static Int128 Product(std::int64_t a, std::int64_t b) {
    Int128 p = UnsignedProduct(static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b));
    if (a < 0) p.high_ -= static_cast<std::uint64_t>(b);
    if (b < 0) p.high_ -= static_cast<std::uint64_t>(a);
    return p;
  }

  friend Int128 operator+(const Int128& a, const Int128& b) {
    Int128 sum;
    sum.low_ = a.low_ + b.low_;
    sum.high_ = a.high_ + b.high_ + static_cast<std::uint64_t>(sum.low_ < a.low_);
    return sum;
  }
  friend Int128 operator-(const Int128& a) {
    Int128 minus;
    minus.low_ = ~a.low_ + 1;
    minus.high_ = ~a.high_ + static_cast<std::uint64_t>(minus.low_ == 0);
    return minus;
  }
  friend Int128 operator-(const Int128& a, const Int128& b) { return a + -b; }
  // Modulo 2^128.
  friend Int128 operator*(const Int128& a, std::int64_t b) {
    Int128 p = UnsignedProduct(a.low_, static_cast<std::uint64_t>(b));
    p.high_ += a.high_ * static_cast<std::uint64_t>(b);
    if (b < 0) p.high_ -= a.low_;
    return p;
  }
  friend bool operator==(const Int128& a, const Int128& b) { return a.high_ == b.high_ && a.low_ == b.low_; }
  friend bool operator<(const Int128& a, const Int128& b) {
    const auto highA = static_cast<std::int64_t>(a.high_);
    const auto highB = static_cast<std::int64_t>(b.high_);
    return highA != highB ? highA < highB : a.low_ < b.low_;
  }

  int Sign() const { return static_cast<std::int64_t>(high_) < 0 ? -1 : (high_ | low_) != 0 ? 1 : 0; }
  Int128 Abs() const { return Sign() < 0 ? -*this : *this; }
  // To the nearest but for an error of the last digit.
  double ToDouble() const {
    constexpr double kTwo64 = 18446744073709551616.0;
    if (Sign() < 0) return -(-*this).ToDouble();
    return static_cast<double>(high_) * kTwo64 + static_cast<double>(low_);
  }

 private:
  static Int128 UnsignedProduct(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t kLow = 0xffffffff;
    const std::uint64_t ll = (a & kLow) * (b & kLow);
    const std::uint64_t lh = (a & kLow) * (b >> 32U);
    const std::uint64_t hl = (a >> 32U) * (b & kLow);
    const std::uint64_t middle = (ll >> 32U) + (lh & kLow) + (hl & kLow);
    Int128 p;
    p.low_ = (middle << 32U) | (ll & kLow);
    p.high_ = (a >> 32U) * (b >> 32U) + (lh >> 32U) + (hl >> 32U) + (middle >> 32U);
    return p;
  }

  std::uint64_t high_ = 0;
  std::uint64_t low_ = 0;
};

}  // namespace zbr
