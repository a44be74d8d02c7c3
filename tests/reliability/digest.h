// A number that tells results apart: of all their bits.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/zbr.h>

#include "core/bits.h"

class Digest {
 public:
  // Lists by their length and items, records by what tells one result from another.
  template <class... T>
  void Add(const T&... values) {
    (Take(values), ...);
  }
  std::uint64_t value() const { return value_; }

 private:
  void Bits(std::uint64_t bits) {
    value_ = (value_ ^ bits) * 0xbf58476d1ce4e5b9U;
    value_ ^= value_ >> 29U;
  }
  void Take(int value) { Bits(static_cast<std::uint64_t>(value)); }
  // Machines differ in the sign of the NaN that an operation makes.
  void Take(double value) { Bits(std::isnan(value) ? std::uint64_t{1} : zbr::BitsOf(value)); }
  void Take(const ZBR_PT& p) { Add(p.x(), p.y()); }
  void Take(const ZBR_PT3& p) { Add(p.x(), p.y(), p.z()); }
  void Take(const ZBR_SEG& s) { Add(s.s(), s.e()); }
  void Take(const ZBR_SEG3& s) { Add(s.s(), s.e()); }
  void Take(const ZBR_CROSS_AB& side) { Add(side.loop.loop(), side.loop.poly(), side.pos, side.order, side.seq); }
  void Take(const ZBR_CROSS& c) { Add(c.pt, c.a, c.b); }
  void Take(const std::shared_ptr<ZBR_LOOP>& loop) { Add(loop->pt(), loop->area(), loop->level(), loop->children()); }
  void Take(const ZBR_HL_INTERVAL& v) { Add(v.s.t, v.e.t, v.s.pt, v.e.pt); }
  void Take(const ZBR_HL_SHELL& shell) {
    for (unsigned k = 0; k < 3 * shell.count; ++k) Add(shell.tris[k / 3].profile[k % 3], shell.tris[k / 3].intvl_v[k % 3]);
  }
  template <class T>
  void Take(const std::vector<T>& list) {
    Bits(list.size());
    for (const T& item : list) Take(item);
  }

  std::uint64_t value_ = 0x9e3779b97f4a7c15U;
};
