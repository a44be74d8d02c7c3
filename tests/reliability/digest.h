// A number that tells results apart: of all their bits.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/zbr.h>

#include "core/bits.h"
#include "support/shapes.h"

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

// Clips the rings as segments and as one polyline by the region, chains and closes them. Their heights: of starts and of ends.
inline void AddSegmentWork(Digest& digest, const LoopList& region, const std::vector<Ring>& rings, double low, double high) {
  std::vector<ZBR_SEG3> segs;
  std::vector<ZBR_PT3> line;
  std::vector<ZBR_HL_OPT_PT> ends;
  ForEachEdge(rings, [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
    line.emplace_back(p.x(), p.y(), low);
    segs.emplace_back(line.back(), ZBR_PT3(q.x(), q.y(), high));
    ends.emplace_back().pt = p;
    ends.emplace_back().pt = q;
  });
  std::vector<ZBR_SEG3> inside, outside;
  std::vector<std::vector<ZBR_PT3>> insideLines, outsideLines;
  std::vector<std::vector<ZBR_PT>> chains;
  LoopList loops;
  zbrClipSegs(segs, region, inside, &outside);
  zbrClipPolyline(line, region, insideLines, &outsideLines);
  zbrRemoveDupSeg(segs);
  zbrOptimizeSegs(ends, chains);
  zbrMakeOutLineLoops(ends, loops);
  digest.Add(inside, outside, insideLines, outsideLines, segs, chains, loops);
}
