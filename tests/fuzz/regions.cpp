#include "fuzz/regions.h"

#include <map>
#include <utility>

Skew::Skew(Bytes& bytes) {
  static constexpr int kMaps[][4] = {{1, 0, 0, 1}, {1, 1, 0, 1}, {2, 1, 1, 1}, {0, -1, 1, 0}, {3, 1, 2, 1}, {1, 0, -2, 1}};
  m = kMaps[std::max(0, bytes.Below(7) - 1)];
}

Cells::Cells(Bytes& bytes, bool saddles) {
  const std::uint64_t bits = bytes.Word((kSide * kSide + 7) / 8);
  for (int i = 0; i < kSide * kSide; ++i) filled_[i] = (bits >> i & 1U) != 0;
  for (int i = 0; !saddles && i < (kSide - 1) * kSide;) {
    bool* const c = filled_ + i++;
    if (i % kSide == 0 || c[0] != c[kSide + 1] || c[1] != c[kSide] || c[0] == c[1]) continue;
    c[0] = c[1] = c[kSide] = c[kSide + 1] = true;
    i = 0;
  }
}

std::vector<ZBR_SEG> Cells::Steps() const {
  std::vector<ZBR_SEG> steps;
  for (int i = 0; i < kSide * kSide; ++i) {
    const int x = i % kSide;
    const int y = i / kSide;
    if (!At(x, y)) continue;
    const Ring c = Square(x, y, 1);
    const bool isFree[] = {!At(x, y - 1), !At(x + 1, y), !At(x, y + 1), !At(x - 1, y)};
    for (std::size_t k = 0; k < 4; ++k) {
      if (isFree[k]) steps.emplace_back(c[k], c[(k + 1) % 4]);
    }
  }
  return steps;
}

std::vector<Ring> Cells::Rings(const Skew& skew, const ZBR_PT& shift, Bytes& bytes) const {
  const bool cornersAlone = bytes.Flag();
  std::map<std::pair<double, double>, ZBR_PT> next;
  for (const ZBR_SEG& step : Steps()) next[{step.s().x(), step.s().y()}] = step.e();
  std::vector<Ring> rings;
  while (!next.empty()) {
    Ring walk;
    for (auto step = next.begin(); step != next.end(); step = next.find({walk.back().x(), walk.back().y()})) {
      walk.push_back(step->second);
      next.erase(step);
    }
    Ring& ring = rings.emplace_back();
    for (std::size_t i = 0, n = walk.size(); i < n; ++i) {
      const ZBR_PT in = walk[i] - walk[(i + n - 1) % n];
      if (!cornersAlone || in.OuterProduct(walk[(i + 1) % n] - walk[i]) != 0.0) ring.push_back(skew(walk[i]) + shift);
    }
  }
  return rings;
}

std::vector<Ring> AnyRings(Bytes& bytes, bool wild) {
  std::vector<Ring> rings(static_cast<std::size_t>(bytes.Below(4)));
  for (Ring& ring : rings) {
    for (int n = bytes.Below(10); n > 0; --n) ring.push_back(bytes.Point(wild));
  }
  return rings;
}

bool IsSimple(const LoopList& region) {
  std::vector<ZBR_SEG> edges;
  const std::vector<Ring> rings = RingsOf(region);
  for (const Ring& ring : rings) {
    const std::size_t first = edges.size();
    for (std::size_t i = 0; i < ring.size(); ++i) {
      edges.emplace_back(ring[i], ring[(i + 1) % ring.size()]);
      if (std::count_if(ring.begin(), ring.end(), [&](const ZBR_PT& p) { return p.Distance2(ring[i]) == 0.0; }) > 1) return false;
    }
    for (const Ring& other : rings) {
      const ZBR_LOOP_LOCATOR locator(*MakeLoop(other));
      bool places[ZBR_PI_OUT + 1] = {};
      for (std::size_t i = first; i < edges.size(); ++i) places[locator.IsInside((edges[i].s() + edges[i].e()) * 0.5)] = true;
      if (places[ZBR_PI_IN] && places[ZBR_PI_OUT]) return false;
    }
  }
  const auto parts = [](const ZBR_SEG& a, const ZBR_SEG& b) {  // the ends of a lie on different sides of b
    return a.s().CheckPos(b.s(), b.e()) * a.e().CheckPos(b.s(), b.e()) == -1;
  };
  return std::none_of(edges.begin(), edges.end(), [&](const ZBR_SEG& a) {
    return std::any_of(edges.begin(), edges.end(), [&](const ZBR_SEG& b) { return parts(a, b) && parts(b, a); });
  });
}
