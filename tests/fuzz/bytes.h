// A fuzzer: one function that takes any bytes and checks what must hold for the input that they stand for.
//
// Every string of bytes stands for something; behind its end there are zeros.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <zbr/spatial.h>

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  // 0 to n - 1, n at most 256.
  int Below(int n) { return (at_ == end_ ? 0 : *at_++) % n; }
  bool Flag() { return Below(2) == 1; }
  std::uint64_t Word(int bytes) {
    std::uint64_t word = 0;
    for (; bytes > 0; --bytes) word = word << 8U | static_cast<std::uint64_t>(Below(256));
    return word;
  }
  std::string Rest() const { return {at_, end_}; }

  // A number of ordinary size: small and round, any, or one met before, perhaps missed by a little.
  double Plain() {
    const int kind = Below(8);
    if (kind < 3) return Note(Below(9) - 4);
    if (kind < 5) return Note(Below(64) / 8.0);
    const int exponent = -Below(40);
    if (kind == 5) return Note(std::ldexp(static_cast<double>(Word(4)) - 0x1p31, exponent / 2 - 20));
    const double near = met_[static_cast<std::size_t>(Below(8))];
    return near + (kind == 6 ? 0.0 : std::ldexp(Below(9) - 4, exponent));
  }
  // Any double at all.
  double Wild() {
    const int kind = Below(4);
    if (kind == 0) return std::bit_cast<double>(Word(8));
    const int exponent = 8 * (Below(256) - 128);
    return kind == 1 ? std::ldexp(Below(9) - 4, exponent) : Plain();
  }
  ZBR_PT Point(bool wild) {
    const double x = wild ? Wild() : Plain();
    return {x, wild ? Wild() : Plain()};
  }
  ZBR_PT3 Lattice(int width, int height) {
    const int x = Below(width);
    const int y = Below(width);
    return ZBR_PT3(x, y, Below(height));
  }

 private:
  double Note(double value) { return met_[next_++ % met_.size()] = value; }

  const std::uint8_t* at_;
  const std::uint8_t* end_;
  std::array<double, 8> met_{};
  std::size_t next_ = 0;
};

// Each program has one.
void Fuzz(Bytes& bytes);

// Ends the program where a property does not hold; describe() tells of what.
template <class... Describe>
void Require(bool holds, const char* property, Describe... describe) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", property);
  (std::fprintf(stderr, "  %s\n", describe().c_str()), ...);
  std::abort();
}
