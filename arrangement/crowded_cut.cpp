// Crossing the parts of lines that run together.
//
// Where lines lie within reach of each other by the hundred, every one of them is led through the same vertices: n lines become
// n * n parts, and the pairs of lines that are near each other n * n * n pairs of parts. But most parts are the same ones, between
// the same two vertices. So those that differ are put to a search of their own, and what is found on one holds for all like it.
#include <algorithm>

#include "arrangement/edge_cutter.h"
#include "core/radix_sort.h"

namespace zbr {

bool EdgeCutter::AreCrowded() const {
  constexpr std::size_t kCrowded = 8;  // parts to a line, on the average
  return lines_.size() > kCrowded * OriginCount();
}

// Replaces the lines by those that differ, in their order. Returns, for each line there was, its like among these.
std::vector<std::uint32_t> EdgeCutter::DropRepeatedParts() {
  struct Item {
    std::uint64_t ends;
    std::uint32_t line;
  };
  std::vector<Item> items;
  items.reserve(lines_.size());
  for (std::uint32_t i = 0; i < lines_.size(); ++i) items.push_back({std::uint64_t{lines_[i].from} << 32U | lines_[i].to, i});
  std::vector<Item> scratch;
  const auto ends = [](const Item& item) { return item.ends; };
  RadixSort(items, scratch, ends);
  std::vector<std::uint32_t> like(lines_.size());
  ForEachRun(items, ends, [&](std::span<const Item> repeats) {
    for (const Item& item : repeats) like[item.line] = repeats[0].line;  // the first
  });
  std::uint32_t count = 0;
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    const bool isFirst = like[i] == i;
    like[i] = isFirst ? count : like[like[i]];
    if (isFirst) lines_[count++] = lines_[i];
  }
  lines_.resize(count);
  return like;
}

// Notes the hits of all parts at their crossings.
void EdgeCutter::CrossCrowdedParts() {
  std::vector<CutLine> all = lines_;
  const std::vector<std::uint32_t> like = DropRepeatedParts();
  const BoxTree tree = TreeOverLines(0.0, 1);
  BoxJoin::Run(tree, tree, [this](std::uint32_t i, std::span<const std::uint32_t> near) {
    for (auto j = std::upper_bound(near.begin(), near.end(), i); j != near.end(); ++j) CrossPair(i, *j);
    return true;
  });
  lines_.swap(all);
  std::sort(hits_.begin(), hits_.end(), [](const Hit& a, const Hit& b) { return a.line < b.line; });
  std::vector<Hit> hits;
  hits.swap(hits_);
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    auto hit = std::lower_bound(hits.begin(), hits.end(), like[i], [](const Hit& h, std::uint32_t line) { return h.line < line; });
    for (; hit != hits.end() && hit->line == like[i]; ++hit) hits_.push_back({i, hit->vertex});
  }
}

}  // namespace zbr
