#include "drawing/sections/cut_chains.h"

#include <algorithm>
#include <tuple>

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNone = 0xffffffffU;

// The end that each end goes on with, if any.
std::vector<std::uint32_t> Partners(const Cuts& cuts) {
  const auto& names = cuts.names;
  std::vector<std::uint32_t> ends(names.size());
  for (std::uint32_t e = 0; e < ends.size(); ++e) ends[e] = e;
  std::sort(ends.begin(), ends.end(),
            [&](std::uint32_t a, std::uint32_t b) { return std::tie(names[a], a) < std::tie(names[b], b); });
  std::vector<std::uint32_t> partner(ends.size(), kNone);
  const auto match = [&](std::uint32_t a, std::uint32_t b) {
    partner[a] = b;
    partner[b] = a;
  };
  std::vector<std::uint32_t> coming, going;
  for (std::size_t begin = 0, end = 0; begin < ends.size(); begin = end) {
    coming.clear();
    going.clear();
    for (; end < ends.size() && names[ends[end]] == names[ends[begin]]; ++end)
      (ends[end] % 2 == 1 ? coming : going).push_back(ends[end]);
    const std::size_t both = std::min(coming.size(), going.size());
    for (std::size_t i = 0; i < both; ++i) match(coming[i], going[i]);
    const std::vector<std::uint32_t>& rest = coming.size() > both ? coming : going;
    for (std::size_t i = both; i + 1 < rest.size(); i += 2) match(rest[i], rest[i + 1]);
  }
  return partner;
}

}  // namespace

std::vector<CutChain> ChainCuts(const Cuts& cuts) {
  const std::vector<std::uint32_t> partner = Partners(cuts);
  std::vector<bool> done(cuts.triangles.size());
  std::vector<CutChain> chains;
  const auto follow = [&](std::uint32_t start) {
    CutChain& chain = chains.emplace_back();
    for (std::uint32_t end = start; end != kNone; end = partner[end ^ 1U]) {
      if (done[end / 2]) {
        chain.closed = true;
        return;
      }
      done[end / 2] = true;
      chain.ends.push_back(end);
      chain.last = end ^ 1U;
    }
  };
  for (const std::uint32_t side : {0U, 1U}) {  // from ends that lead away where there are such
    for (std::uint32_t end = side; end < partner.size(); end += 2) {
      if (partner[end] == kNone && !done[end / 2]) follow(end);
    }
  }
  for (std::uint32_t end = 0; end < partner.size(); end += 2) {
    if (!done[end / 2]) follow(end);
  }
  return chains;
}

}  // namespace zbr::drawing
