// Finds junctions, repeated triangles and separate parts through the edges of mesh records.
//
// An edge notes two triangles. Whether any has more shows in the count of notes; only then are the triangles looked through for
// those that their edges do not know.
#include "drawing/model/records.h"

#include <zbr-drawing/model.h>

#include <algorithm>
#include <atomic>
#include <mutex>

#include "drawing/model/disjoint_sets.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

bool IsNoted(const ZBR_ZBREPE& edge, const ZBR_ZBREPT& triangle) {
  return edge.GetTriangle0() == &triangle || edge.GetTriangle1() == &triangle;
}

// RunInRanges, but for the hundred thousand small shells of some models.
template <class Work>
void InRanges(std::size_t count, unsigned threads, const Work& work) {
  if (count <= kRange) return work(0, count);
  RunInRanges(count, threads, [&](std::size_t, std::size_t begin, std::size_t end) { work(begin, end); });
}

std::size_t CountNotes(const ZBR_ZBREPS& shell, unsigned threads) {
  std::atomic<std::size_t> count{0};
  InRanges(static_cast<std::size_t>(shell.GetEdgeCnt()), threads, [&](std::size_t begin, std::size_t end) {
    std::size_t own = 0;
    for (std::size_t e = begin; e < end; ++e) own += shell.GetEdge(static_cast<int>(e))->GetTriangle1() != nullptr ? 2 : 1;
    count += own;
  });
  return count;
}

// Calls f(first triangle, second triangle) for edges of exactly two triangles.
template <class F>
void ForEachPair(const ZBR_ZBREPS& shell, const std::vector<EdgeUse>& junctions, std::size_t begin, std::size_t end, F f) {
  const auto first = static_cast<int>(begin), last = static_cast<int>(end);
  auto junction = std::lower_bound(junctions.begin(), junctions.end(), EdgeUse{first, 0});
  for (int e = first; e < last; ++e) {
    while (junction != junctions.end() && junction->edge < e) ++junction;
    if (junction != junctions.end() && junction->edge == e) continue;
    const ZBR_ZBREPT* const second = shell.GetEdge(e)->GetTriangle1();
    if (second == nullptr) continue;
    f(static_cast<std::uint32_t>(shell.GetEdge(e)->GetTriangle0()->GetIndex()), static_cast<std::uint32_t>(second->GetIndex()));
  }
}

// Of triangles at one edge, which share two points, it tells the third.
std::uint32_t Third(const Corners& t) {
  return t[0] ^ t[1] ^ t[2];
}

void FindRepeatedAtJunctions(std::span<const Corners> triangles, const std::vector<EdgeUse>& junctions,
                             std::vector<std::uint32_t>& repeated) {
  std::vector<std::array<std::uint32_t, 3>> uses;  // edge, third point, triangle
  uses.reserve(junctions.size());
  for (const EdgeUse& j : junctions) uses.push_back({static_cast<std::uint32_t>(j.edge), Third(triangles[j.use / 3]), j.use / 3});
  std::sort(uses.begin(), uses.end());
  for (std::size_t k = 1; k < uses.size(); ++k) {
    if (uses[k][0] == uses[k - 1][0] && uses[k][1] == uses[k - 1][1]) repeated.push_back(uses[k][2]);
  }
}

}  // namespace

// Room for the triangles of a large shell takes as long to clear as its points do to be numbered. Room for as many edges as
// a closed surface without handles has is made ready on all threads.
void ShellFiller::Fill(std::span<const Corners> triangles, ZBR_ZBREPS& shell, unsigned threads) {
  const bool isLarge = triangles.size() >= kRange;
  RunParallel(2, isLarge ? threads : 1, [&](std::size_t which) {
    if (which == 0) return FillPoints(triangles, shell);
    shell.SetTriangleCnt(static_cast<int>(triangles.size()));
  });
  shell.ReserveEdge();
  const std::size_t edges = triangles.size() + static_cast<std::size_t>(shell.GetVertexCnt()) - 2;
  if (isLarge) TouchPages(shell.GetEdge(0), edges * sizeof(ZBR_ZBREPE), threads);
  int triangle = 0;
  for (const Corners& t : triangles) shell.SetTriangleWithEdge(triangle++, place_[t[0]], place_[t[1]], place_[t[2]]);
  for (const std::uint32_t p : used_) place_[p] = -1;
}

void ShellFiller::FillPoints(std::span<const Corners> triangles, ZBR_ZBREPS& shell) {
  used_.clear();
  for (const Corners& t : triangles) {
    for (const std::uint32_t p : t) {
      if (place_[p] >= 0) continue;
      place_[p] = static_cast<int>(used_.size());
      used_.push_back(p);
    }
  }
  shell.SetVertexCnt(static_cast<int>(used_.size()));
  int vertex = 0;
  for (const std::uint32_t p : used_) shell.SetVertex(vertex++, points_[p].x(), points_[p].y(), points_[p].z());
}

std::vector<EdgeUse> FindJunctions(const ZBR_ZBREPS& shell, unsigned threads) {
  std::vector<EdgeUse> uses;
  const auto count = static_cast<std::size_t>(shell.GetTriangleCnt());
  if (CountNotes(shell, threads) == 3 * count) return uses;
  std::vector<bool> isJunction(static_cast<std::size_t>(shell.GetEdgeCnt()));
  const auto forEachUse = [&](auto f) {
    for (std::size_t use = 0; use < 3 * count; ++use) {
      const ZBR_ZBREPT& t = *shell.GetTriangle(static_cast<int>(use / 3));
      f(EdgeOf(t, use % 3), t, static_cast<std::uint32_t>(use));
    }
  };
  forEachUse([&](const ZBR_ZBREPE& edge, const ZBR_ZBREPT& t, std::uint32_t) {
    if (!IsNoted(edge, t)) isJunction[static_cast<std::size_t>(edge.GetIndex())] = true;
  });
  forEachUse([&](const ZBR_ZBREPE& edge, const ZBR_ZBREPT&, std::uint32_t use) {
    if (isJunction[static_cast<std::size_t>(edge.GetIndex())]) uses.push_back({edge.GetIndex(), use});
  });
  std::sort(uses.begin(), uses.end());
  return uses;
}

std::vector<std::uint32_t> FindRepeated(const ZBR_ZBREPS& shell, std::span<const Corners> triangles,
                                        const std::vector<EdgeUse>& junctions, unsigned threads) {
  std::vector<std::uint32_t> repeated;
  std::mutex mutex;
  InRanges(static_cast<std::size_t>(shell.GetEdgeCnt()), threads, [&](std::size_t begin, std::size_t end) {
    ForEachPair(shell, junctions, begin, end, [&](std::uint32_t a, std::uint32_t b) {
      if (Third(triangles[a]) != Third(triangles[b])) return;
      const std::lock_guard lock(mutex);  // such are few
      repeated.push_back(b);
    });
  });
  FindRepeatedAtJunctions(triangles, junctions, repeated);
  std::sort(repeated.begin(), repeated.end());
  repeated.erase(std::unique(repeated.begin(), repeated.end()), repeated.end());
  return repeated;
}

std::vector<std::uint32_t> NumberParts(const ZBR_ZBREPS& shell, const std::vector<EdgeUse>& junctions, unsigned threads,
                                       std::uint32_t& count) {
  SharedSets sets(static_cast<std::size_t>(shell.GetTriangleCnt()));
  InRanges(static_cast<std::size_t>(shell.GetEdgeCnt()), threads, [&](std::size_t begin, std::size_t end) {
    ForEachPair(shell, junctions, begin, end, [&](std::uint32_t a, std::uint32_t b) { sets.Unite(a, b); });
  });
  std::vector<std::uint32_t> numbers;
  numbers.reserve(static_cast<std::size_t>(shell.GetTriangleCnt()));
  count = 0;
  for (std::uint32_t t = 0; t < static_cast<std::uint32_t>(shell.GetTriangleCnt()); ++t) {
    const std::uint32_t first = sets.Find(t);
    numbers.push_back(first == t ? count++ : numbers[first]);
  }
  return numbers;
}

}  // namespace zbr::drawing
