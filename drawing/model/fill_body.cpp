// Sorts triangles into shells and fills their records.
//
// What hangs together is known only when there are edges, and so everything goes into one shell first. Mostly that is the only one;
// else the shells are filled anew from the sorted triangles. Bodies that have no points in common need no edges to be told apart:
// each is filled once, and on all threads; when one of them proves to be more than a shell, the whole is begun again.
#include "drawing/model/fill_body.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <span>
#include <utility>

#include "drawing/model/disjoint_sets.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

void Remove(const std::vector<std::uint32_t>& places, Gathered& gathered) {
  auto gone = places.begin();
  std::size_t kept = 0;
  for (std::size_t t = 0; t < gathered.triangles.size(); ++t) {
    if (gone != places.end() && *gone == t) {
      ++gone;
      continue;
    }
    gathered.triangles[kept] = gathered.triangles[t];
    if (!gathered.shell.empty()) gathered.shell[kept] = gathered.shell[t];
    gathered.source[kept++] = gathered.source[t];
  }
  gathered.triangles.resize(kept);
  gathered.source.resize(kept);
  if (!gathered.shell.empty()) gathered.shell.resize(kept);
}

// Makes one shell of everything and returns its junctions. Two layers of the same triangles, as double-sided surfaces are often
// stored, would make a junction of every edge: of repeated triangles one stays.
std::vector<EdgeUse> FillWhole(Gathered& gathered, unsigned threads, Model& model) {
  ShellFiller filler(gathered.points);
  const auto fill = [&] {
    model.body = ZBR_ZBREPB();
    model.body.SetShellCnt(1);
    filler.Fill(gathered.triangles, *model.body.GetShell(0), threads);
    return FindJunctions(model.Shell(0), threads);
  };
  std::vector<EdgeUse> junctions = fill();
  const std::vector<std::uint32_t> repeated = FindRepeated(model.Shell(0), gathered.triangles, junctions, threads);
  if (repeated.empty()) return junctions;
  model.repeated = repeated.size();
  Remove(repeated, gathered);
  return fill();
}

// Numbers what hangs together by points, in order of the first triangles.
std::vector<std::uint32_t> NumberBodies(const Gathered& gathered, unsigned threads, std::uint32_t& count) {
  SharedSets sets(gathered.points.size());
  RunInRanges(gathered.triangles.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      sets.Unite(gathered.triangles[t][0], gathered.triangles[t][1]);
      sets.Unite(gathered.triangles[t][0], gathered.triangles[t][2]);
    }
  });
  constexpr auto kNone = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> ofPoint(gathered.points.size(), kNone), numbers;  // of the first point of each
  numbers.reserve(gathered.triangles.size());
  for (const Corners& t : gathered.triangles) {
    std::uint32_t& number = ofPoint[sets.Find(t[0])];
    if (number == kNone) number = count++;
    numbers.push_back(number);
  }
  return numbers;
}

template <class T>
void Reorder(std::vector<T>& values, const std::vector<std::uint32_t>& target) {
  std::vector<T> sorted(values.size());
  for (std::size_t t = 0; t < values.size(); ++t) sorted[target[t]] = values[t];
  values = std::move(sorted);
}

// Sorts the triangles by the numbers of their shells, in place of which it leaves where they went.
void SortByShell(std::vector<std::uint32_t>& shell, Gathered& gathered, Model& model) {
  for (const std::uint32_t s : shell) ++model.shellBegin[s + 1];
  for (std::size_t s = 1; s < model.shellBegin.size(); ++s) model.shellBegin[s] += model.shellBegin[s - 1];
  const bool isSorted = std::is_sorted(shell.begin(), shell.end());
  std::vector<std::uint32_t> next = model.shellBegin;
  for (std::uint32_t& s : shell) s = next[s]++;
  if (isSorted) return;
  Reorder(gathered.triangles, shell);
  Reorder(gathered.source, shell);
}

// Each thread has a filler, whose table is as long as all points. Ends early, with false, where a shell is not as it shall be.
template <class IsGood>
bool FillShells(const Gathered& gathered, std::size_t count, unsigned threads, Model& model, IsGood isGood) {
  model.body = ZBR_ZBREPB();
  model.body.SetShellCnt(static_cast<int>(count));
  const std::size_t fillers = std::clamp<std::size_t>(RangeCount(gathered.triangles.size()), 1, std::max(threads, 1U));
  std::atomic<bool> areGood{true};
  RunParallel(fillers, threads, [&](std::size_t k) {
    const auto firstOf = [&](std::size_t share) {
      const std::size_t triangle = gathered.triangles.size() / fillers * share;
      const auto end = model.shellBegin.end() - 1;
      return share == fillers
                 ? count
                 : static_cast<std::size_t>(std::lower_bound(model.shellBegin.begin(), end, triangle) - model.shellBegin.begin());
    };
    ShellFiller filler(gathered.points);
    for (std::size_t s = firstOf(k); s < firstOf(k + 1) && areGood; ++s) {
      const std::size_t begin = model.shellBegin[s], end = model.shellBegin[s + 1];
      const auto own = std::span(gathered.triangles).subspan(begin, end - begin);
      ZBR_ZBREPS& shell = *model.body.GetShell(static_cast<int>(s));
      filler.Fill(own, shell);
      if (!isGood(shell, own)) areGood = false;
    }
  });
  return areGood;
}

// Whether triangles filled into a shell are one, and all of them stay.
bool IsOneShell(const ZBR_ZBREPS& shell, std::span<const Corners> triangles) {
  const std::vector<EdgeUse> junctions = FindJunctions(shell, 1);
  std::uint32_t parts = 0;
  if (!junctions.empty() || !FindRepeated(shell, triangles, junctions, 1).empty()) return false;
  NumberParts(shell, junctions, 1, parts);
  return parts == 1;
}

// Fills bodies that have no points in common, which mostly are the shells. Leaves the triangles as they are, with false, where
// there is one body only or where they are not.
bool FillBodies(Gathered& gathered, unsigned threads, Model& model) {
  std::uint32_t count = 0;
  std::vector<std::uint32_t> target = NumberBodies(gathered, threads, count);
  if (count < 2) return false;
  model.shellBegin.assign(count + 1, 0);
  SortByShell(target, gathered, model);
  if (FillShells(gathered, count, threads, model, IsOneShell)) return true;
  std::vector<std::uint32_t> back(target.size());
  for (std::uint32_t t = 0; t < target.size(); ++t) back[target[t]] = t;
  Reorder(gathered.triangles, back);
  Reorder(gathered.source, back);
  return false;
}

void NumberEdges(Model& model) {
  for (int s = 0; s < model.body.GetShellCnt(); ++s) {
    model.body.GetShell(s)->SetIndex(s);
    model.edgeBegin.push_back(model.edgeBegin.back() + static_cast<std::uint32_t>(model.body.GetShell(s)->GetEdgeCnt()));
  }
  model.notes.resize(model.edgeBegin.back());
}

// Places of all triangles in the sorted order are in `target`.
void NoteJunctions(const std::vector<EdgeUse>& junctions, const std::vector<std::uint32_t>& target, Model& model) {
  for (std::size_t k = 0; k < junctions.size(); ++k) {
    ++(k > 0 && junctions[k].edge == junctions[k - 1].edge ? model.junctionCopies : model.junctions);
    const std::uint32_t t = target[junctions[k].use / 3];
    const std::size_t s = model.ShellOf(t);
    const ZBR_ZBREPE& edge = EdgeOf(*model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s])), junctions[k].use % 3);
    model.notes[model.edgeBegin[s] + static_cast<std::size_t>(edge.GetIndex())].isJunction = true;
  }
}

// Every triangle that runs along an edge from the smaller vertex to the larger turns the edge's note over; so does the first.
void NoteDirections(Model& model, unsigned threads) {
  ForEachShell(model.shellBegin, threads, [&](std::size_t s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    EdgeNote* const notes = model.notes.data() + model.edgeBegin[s];
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) notes[e].isSameWay = true;
    for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
      const ZBR_ZBREPT& t = *shell.GetTriangle(k);
      const int v[3] = {t.GetVertex0()->GetIndex(), t.GetVertex1()->GetIndex(), t.GetVertex2()->GetIndex()};
      const int e[3] = {t.GetEdge0()->GetIndex(), t.GetEdge1()->GetIndex(), t.GetEdge2()->GetIndex()};
      for (std::size_t i = 0; i < 3; ++i) {
        if (v[i] < v[(i + 1) % 3]) notes[e[i]].isSameWay = !notes[e[i]].isSameWay;
      }
    }
  });
}

void FillByEdges(Gathered& gathered, unsigned threads, Model& model) {
  const std::vector<EdgeUse> junctions = FillWhole(gathered, threads, model);
  model.pointCount = static_cast<std::size_t>(model.Shell(0).GetVertexCnt());
  std::uint32_t count = 0;
  std::vector<std::uint32_t> shell = std::move(gathered.shell);
  if (shell.empty()) {
    shell = NumberParts(model.Shell(0), junctions, threads, count);
  } else {
    count = *std::max_element(shell.begin(), shell.end()) + 1;
  }
  model.shellBegin.assign(count + 1, 0);
  SortByShell(shell, gathered, model);
  if (count != 1) FillShells(gathered, count, threads, model, [](const ZBR_ZBREPS&, std::span<const Corners>) { return true; });
  NumberEdges(model);
  NoteJunctions(junctions, shell, model);
}

}  // namespace

void FillBody(Gathered&& gathered, unsigned threads, Model& model) {
  if (gathered.shell.empty() && FillBodies(gathered, threads, model)) {
    for (int s = 0; s < model.body.GetShellCnt(); ++s)
      model.pointCount += static_cast<std::size_t>(model.body.GetShell(s)->GetVertexCnt());
    NumberEdges(model);
  } else {
    FillByEdges(gathered, threads, model);
  }
  NoteDirections(model, threads);
  model.source = std::move(gathered.source);
}

}  // namespace zbr::drawing
