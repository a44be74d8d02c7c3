// Idea: lines go on or end at others: an edge with a loose end is chance, and so are short lines with one, and what a line has
// beyond the last one that it meets, if it is short. Difficulty: facets of rounded coordinates are off here and there, and lines
// have gaps. Where a line ends loosely it goes on along edges that are less certain, as long as they lead straight on, up to where
// something is drawn; if they do not get there over a way as long as the line itself, it ends where it did.
#include "drawing/model/tangent_lines.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

#include "drawing/model/disjoint_sets.h"

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNone = Connectivity::kNone;
constexpr double kStraightOn = 0.9;  // cosine of the turn beyond which lines do not go on

class Lines {
 public:
  explicit Lines(const Connectivity& mesh) : mesh_(mesh), uses_(mesh.points.size()) {
    for (std::uint32_t e = 0; e < mesh.sides.size(); ++e) {
      if (mesh.shows[e]) Use(e);
    }
  }

  std::vector<std::uint32_t> Connected(std::vector<std::uint32_t> found, double least, const MayGoOn& mayGoOn) {
    for (const std::uint32_t e : found) Use(e);
    if (std::none_of(found.begin(), found.end(), [&](std::uint32_t e) { return LooseEnds(e) > 0; })) return found;
    FillGaps(found, mayGoOn);
    std::vector<std::uint32_t> dropped;
    std::copy_if(found.begin(), found.end(), std::back_inserter(dropped), [&](std::uint32_t e) { return LooseEnds(e) > 0; });
    std::erase_if(found, [&](std::uint32_t e) { return LooseEnds(e) > 0; });
    Drop(dropped);
    DropShort(found, least);
    DropStubs(found, least);
    return found;
  }

 private:
  std::array<std::uint32_t, 2> Ends(std::uint32_t edge) const {
    const std::uint32_t t = mesh_.sides[edge][0];
    std::size_t i = 0;
    while (mesh_.edges[t][i] != edge) ++i;
    return {mesh_.corners[t][i], mesh_.corners[t][(i + 1) % 3]};
  }
  double Length(std::uint32_t edge) const { return mesh_.points[Ends(edge)[0]].Distance(mesh_.points[Ends(edge)[1]]); }
  std::uint32_t OtherEnd(std::uint32_t edge, std::uint32_t p) const { return Ends(edge)[0] == p ? Ends(edge)[1] : Ends(edge)[0]; }

  void Use(std::uint32_t edge) {
    for (const std::uint32_t p : Ends(edge)) ++uses_[p];
  }
  void Drop(const std::vector<std::uint32_t>& edges) {
    for (const std::uint32_t e : edges) {
      for (const std::uint32_t p : Ends(e)) --uses_[p];
    }
  }
  int LooseEnds(std::uint32_t edge) const {
    const auto ends = Ends(edge);
    return static_cast<int>(std::count_if(ends.begin(), ends.end(), [&](std::uint32_t p) { return uses_[p] < 2; }));
  }

  // What hangs together, and how long it is, by the first point of each set.
  struct Sets {
    DisjointSets sets;
    std::vector<double> length;
  };
  Sets SetsOf(const std::vector<std::uint32_t>& found) const {
    Sets all{DisjointSets(mesh_.points.size()), std::vector<double>(mesh_.points.size())};
    for (const std::uint32_t e : found) all.sets.Unite(Ends(e)[0], Ends(e)[1]);
    for (const std::uint32_t e : found) all.length[all.sets.Find(Ends(e)[0])] += Length(e);
    return all;
  }

  // The edge that goes on straightest from another at a point, of those around it that may; kNone if none does.
  template <class May>
  std::uint32_t Next(std::uint32_t edge, std::uint32_t p, const May& may) const {
    const ZBR_PT3 &at = mesh_.points[p], way = at - mesh_.points[OtherEnd(edge, p)];
    std::uint32_t best = kNone;
    double most = kStraightOn;
    for (std::uint32_t t : mesh_.sides[edge]) {
      for (std::uint32_t e = edge; t != kNone;) {
        e = Beside(t, e, p);
        if (e == edge) return best;  // all the way around
        const ZBR_PT3 ahead = mesh_.points[OtherEnd(e, p)] - at;
        const double cosine = ahead.InnerProduct(way) / (ahead.Length() * way.Length());
        if (cosine > most && may(e)) {
          most = cosine;
          best = e;
        }
        t = mesh_.Across(e, t);
      }
    }
    return best;
  }

  // The other edge of a triangle at a corner.
  std::uint32_t Beside(std::uint32_t t, std::uint32_t edge, std::uint32_t p) const {
    for (std::size_t i = 0; i < 3; ++i) {
      const std::uint32_t e = mesh_.edges[t][i];
      if (e != edge && (mesh_.corners[t][i] == p || mesh_.corners[t][(i + 1) % 3] == p)) return e;
    }
    return edge;
  }

  // The edges on from a loose end to where something is drawn; none if they lead nowhere or are longer than `most`.
  std::vector<std::uint32_t> Gap(std::uint32_t edge, std::uint32_t p, double most, const MayGoOn& mayGoOn) const {
    std::vector<std::uint32_t> gap;
    double length = 0.0;
    do {
      const std::uint32_t next = Next(edge, p, [&](std::uint32_t e) { return mayGoOn(edge, e); });
      if (next == kNone) return {};
      length += Length(next);
      if (!(length <= most)) return {};
      gap.push_back(next);
      p = OtherEnd(next, p);
      edge = next;
    } while (uses_[p] == 0);
    return gap;
  }

  void FillGaps(std::vector<std::uint32_t>& found, const MayGoOn& mayGoOn) {
    Sets lines = SetsOf(found);
    const std::size_t count = found.size();
    for (std::size_t k = 0; k < count; ++k) {
      for (const std::uint32_t p : Ends(found[k])) {
        if (uses_[p] != 1) continue;
        const std::vector<std::uint32_t> gap = Gap(found[k], p, lines.length[lines.sets.Find(p)], mayGoOn);
        for (const std::uint32_t e : gap) Use(e);
        found.insert(found.end(), gap.begin(), gap.end());
      }
    }
  }

  // Lines with a loose end.
  void DropShort(std::vector<std::uint32_t>& found, double least) {
    Sets lines = SetsOf(found);
    std::vector<bool> isLoose(mesh_.points.size());
    for (const std::uint32_t e : found) {
      if (LooseEnds(e) > 0) isLoose[lines.sets.Find(Ends(e)[0])] = true;
    }
    std::erase_if(found, [&](std::uint32_t e) {
      const std::uint32_t line = lines.sets.Find(Ends(e)[0]);
      return isLoose[line] && lines.length[line] < least;
    });
  }

  // From loose ends back to where other lines meet.
  void DropStubs(std::vector<std::uint32_t>& found, double least) {
    std::vector<bool> isFound(mesh_.sides.size()), isDropped(mesh_.sides.size());
    for (const std::uint32_t e : found) isFound[e] = true;
    for (const std::uint32_t e : found) {
      if (LooseEnds(e) != 1) continue;
      std::vector<std::uint32_t> stub;
      double length = 0.0;
      std::uint32_t edge = e, p = uses_[Ends(e)[0]] < 2 ? Ends(e)[0] : Ends(e)[1];
      while (edge != kNone && length < least) {
        stub.push_back(edge);
        length += Length(edge);
        p = OtherEnd(edge, p);
        if (uses_[p] != 2) break;
        edge = Next(edge, p, [&](std::uint32_t next) { return isFound[next]; });
      }
      if (!(length < least && uses_[p] > 2)) continue;
      for (const std::uint32_t stubEdge : stub) isDropped[stubEdge] = true;
    }
    std::erase_if(found, [&](std::uint32_t e) { return isDropped[e]; });
  }

  const Connectivity& mesh_;
  std::vector<std::uint32_t> uses_;  // of points, by what is drawn
};

}  // namespace

std::vector<std::uint32_t> ConnectedLines(const Connectivity& mesh, std::vector<std::uint32_t> found, double least,
                                          const MayGoOn& mayGoOn) {
  if (found.empty()) return found;
  return Lines(mesh).Connected(std::move(found), least, mayGoOn);
}

}  // namespace zbr::drawing
