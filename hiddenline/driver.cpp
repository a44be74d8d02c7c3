// The driver: which triangles are tried against which edge.
//
// A triangle first meets its neighbours, as wholes, because sharing an edge decides for both triangles. After that its edges have
// nothing to do with each other: each still visible edge searches the occluders' trees for triangles that meet its box and
// reach its height, highest first, and is done as soon as nothing is left. A pair that is clearly without effect is
// told from the occluder's vertices and plane alone (QuickLook); the others go through the full rule.
//
// The visible intervals of an edge are the intersection of what each occluder leaves, so neither the order of the pairs nor leaving
// out pairs without effect changes them. Occluders are only read: shells can be processed at once that hide each other.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/assert.h"
#include "core/constants.h"
#include "core/prefetch.h"
#include "core/tolerance_state.h"
#include "hiddenline/apex_cut.h"
#include "hiddenline/check.h"
#include "hiddenline/driver.h"
#include "hiddenline/extents.h"
#include "hiddenline/next_door.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"
#include "hiddenline/quick_look.h"
#include "hiddenline/shell_search.h"

std::atomic<int> ZBR_HiddenLine::max_shell_index{0};

namespace zbr {
namespace {

// The neighbours that a triangle has met, by position.
struct Neighbours {
  int positions[3];
  int count = 0;

  bool Has(int position) const { return std::find(positions, positions + count, position) != positions + count; }
};

// A bare triangle gets its intervals here, but those that it would lose at once.
Neighbours MeetNeighbours(ZBR_HL_TRI& t, const ZBR_HL_SHELL& shell, bool isBare, const Scratch& lists) {
  const NextDoor next(t, shell);
  if (isBare) {
    GiveIntervals(t, next.LeavesTo());
  } else {
    for (int i = 0; i < 3; ++i) {
      if ((next.LeavesTo() >> static_cast<unsigned>(i) & 1U) != 0) t.SetEdgeUnavailable(i);
    }
  }
  Neighbours met;
  for (int i = 0; i < 3 && t.any_edge_visible; ++i) {
    const int position = next.position(i);
    if (position < 0 || met.Has(position)) continue;
    met.positions[met.count++] = position;
    if (!next.IsDone(i)) HideByTriangle(t, shell.tris[position], lists);
  }
  return met;
}

// What a pass over a shell carries along.
struct Pass {
  const Scratch& lists;
  std::uint64_t pairs = 0;  // that went through the full rule
};

// One edge of a triangle against the occluders of one shell after the other.
//
// Searches within the box of the whole edge, with room for the tolerance, even when part of it is hidden already: what an
// occluder does to the hidden part can still move a cut by less than the tolerance.
//
// What is highest hides the most, as a rule, and comes first. An edge that is not hidden by the first few that cut it may lie deep
// in a stack, as of plates, where each next one hides a little more, and the nearest one all but a little: from then on what is
// least high comes first. Of a comb of 1600 thin plates, seen obliquely, a tenth of the cuts are left.
class EdgeSearch {
 public:
  // Cuts before the order changes.
  static constexpr unsigned kPatience = 16;

  EdgeSearch(ZBR_HL_TRI& t, int edge, Pass& pass) : EdgeSearch(t, edge, t.pt[edge], t.pt[edge == 2 ? 0 : edge + 1], pass) {}

  bool CanReach(const ZBR_HL_SHELL& b) const { return lowest_ <= b.max_z && Overlap(box_, {b.min_x, b.min_y, b.max_x, b.max_y}); }

  // `met` are left out. False when nothing is left of the edge.
  bool Run(const ZBR_HL_SHELL& shell, const Neighbours& met) {
    const auto& occluders = *shell.occluders;
    for (bool again = true; again && isLeft_;) {  // twice at most
      most_ = IsPatient() ? kPatience : std::numeric_limits<unsigned>::max();
      occluders.tree.Search(
          occluders.tree.MakeQuery(box_, lowest_), InOrder(),
          [&](int position) { return met.Has(position) || Try(shell.tris[position], occluders.usualSize); },
          [&](int position) {
            PrefetchObject(shell.tris[position].normal);
            PrefetchObject(shell.tris[position].pt);
          });
      again = cuts_ > most_;
    }
    return isLeft_;
  }
  // Against all of the shells, or all that are found, but the triangle's own.
  void RunList(const ShellList& shells, const ZBR_HL_SHELL& own) {
    std::size_t done = 0;
    while (done < shells.size() && IsPatient()) {
      if (!RunOther(*shells[done++], own)) return;
    }
    for (std::size_t i = shells.size(); i > done; --i) {
      if (!RunOther(*shells[i - 1], own)) return;
    }
  }
  void RunSearch(const ShellSearch& search, const ZBR_HL_SHELL& own) {
    const auto visit = [&](const ZBR_HL_SHELL& b) { return RunOther(b, own); };
    search.Search(box_, lowest_, InOrder(), [&](const ZBR_HL_SHELL& b) { return IsPatient() && visit(b); });
    if (isLeft_ && !IsPatient()) search.Search(box_, lowest_, InOrder(), visit);
  }

 private:
  using Order = OccluderTree::Order;

  EdgeSearch(ZBR_HL_TRI& t, int edge, const ZBR_PT3& p, const ZBR_PT3& q, Pass& pass)
      : t_(t),
        edge_(edge),
        p_(p),
        q_(q),
        pass_(pass),
        look_(p, q, pass.lists.contact),
        box_(BoxOfSegment(p.xy(), q.xy()).Widened(kBoxMargin)),
        lowest_(std::min(p.z(), q.z()) - kBoxMargin) {}

  bool IsPatient() const { return cuts_ <= kPatience; }
  Order InOrder() const { return IsPatient() ? Order::kHighestFirst : Order::kLowestFirst; }

  bool RunOther(const ZBR_HL_SHELL& b, const ZBR_HL_SHELL& own) {
    return &b == &own || b.occluders == nullptr || !CanReach(b) || Run(b, {});
  }

  // False when the search is to end.
  bool Try(const ZBR_HL_TRI& o, bool ofUsualSize) {
    if (&o == &t_) return true;
    unsigned front = 0;
    unsigned on = 0;
    if (!look_.CanHide(o, ofUsualSize, front, on) || o.IsTriSkip()) return true;
    if (look_.IsHiddenAlready(o, t_.intvl_v[edge_])) return true;
    ++pass_.pairs;
    ++cuts_;
    isLeft_ = Cut(o, front, on);
    return isLeft_ && cuts_ <= most_;
  }

  // False when nothing is left of the edge.
  bool Cut(const ZBR_HL_TRI& o, unsigned front, unsigned on) {
    const Scratch& lists = pass_.lists;
    if (look_.apex() >= 0) {
      ApexCut cut(p_, q_, front, o, look_.apex());
      if (cut.IsKnown()) return NarrowEdge(t_, edge_, cut.Left(), lists.work);
    }
    VisibleParts(t_, edge_, front, on, o, lists.result, lists);
    return NarrowEdge(t_, edge_, lists.result, lists.work);
  }

  ZBR_HL_TRI& t_;
  int edge_;
  const ZBR_PT3& p_;
  const ZBR_PT3& q_;
  Pass& pass_;
  QuickLook look_;
  Box box_;
  double lowest_;
  unsigned cuts_ = 0;
  unsigned most_ = kPatience;  // of them before the search ends
  bool isLeft_ = true;
};

// Whole triangles are tried.
template <class MayTry>
void HideByAny(ZBR_HL_TRI& t, const ZBR_HL_SHELL& shell, const Scratch& lists, MayTry mayTry) {
  const OccluderTree& tree = shell.occluders->tree;
  tree.Search(tree.MakeQuery(BoxOf(t).Widened(kBoxMargin), t.min_z - kBoxMargin), [&](int position) {
    const ZBR_HL_TRI& o = shell.tris[position];
    if (!o.IsTriSkip() && mayTry(position)) HideByTriangle(t, o, lists);
    return t.any_edge_visible;
  });
}

// In its own shell, after its neighbours.
void HideInOwn(ZBR_HL_TRI& t, const ZBR_HL_SHELL& shell, bool isBare, Pass& pass) {
  if (shell.occluders == nullptr) {
    if (isBare) GiveIntervals(t);
    return;
  }
  const Neighbours met = MeetNeighbours(t, shell, isBare, pass.lists);
  if (shell.occluders->uniqueIds) {
    for (int i = 0; i < 3; ++i) {
      if (t.IsEdgeAvailable(i)) EdgeSearch(t, i, pass).Run(shell, met);
    }
  } else if (t.any_edge_visible) {  // where several triangles may share an idx, any of them can be a neighbour
    HideByAny(t, shell, pass.lists, [&met](int position) { return !met.Has(position); });
  }
}

void HideInOthers(ZBR_HL_TRI& t, const ZBR_HL_SHELL& own, const Occluding& by, Pass& pass) {
  for (int i = 0; i < 3; ++i) {
    if (!t.IsEdgeAvailable(i)) continue;
    EdgeSearch search(t, i, pass);
    by.search == nullptr ? search.RunList(by.others, own) : search.RunSearch(*by.search, own);
  }
}

}  // namespace

int PositionOf(const ZBR_HL_SHELL& shell, int idx) {
  const auto& map = shell.id_map;
  // Most callers number triangles by position.
  if (idx >= 0 && static_cast<std::size_t>(idx) < map.size() && map[static_cast<std::size_t>(idx)].first == idx) {
    return map[static_cast<std::size_t>(idx)].second;
  }
  const auto place = std::lower_bound(map.begin(), map.end(), idx, [](const auto& entry, int key) { return entry.first < key; });
  return place != map.end() && place->first == idx ? place->second : -1;
}

std::uint64_t HideTriangles(ZBR_HL_SHELL& a, TriangleRange range, const Occluding& by, const Scratch& lists) {
  Pass pass{lists};
  const bool areOthers = by.areOthers();
  if (!by.own && !areOthers) return 0;
  for (unsigned i = range.begin; i < range.end; ++i) {
    ZBR_HL_TRI& t = a.tris[range.At(i)];
    if (by.isBare ? !Draws(t) : !t.any_edge_visible) continue;
    if (by.own) HideInOwn(t, a, by.isBare, pass);
    if (areOthers) HideInOthers(t, a, by, pass);
    ZBR_CHECK(VisibleFault(t));
  }
  return pass.pairs;
}

Extents VisibleExtents(const ZBR_HL_SHELL& a) {
  Extents extents;
  for (unsigned k = 0; k < a.count; ++k) {
    const ZBR_HL_TRI& t = a.tris[k];
    for (int i = 0; i < 3 && t.any_edge_visible; ++i) {
      if (!t.IsEdgeAvailable(i)) continue;
      const ZBR_PT3& p = t.pt[i];
      const ZBR_PT3& q = t.pt[i == 2 ? 0 : i + 1];
      extents.Add({BoxOfSegment(p.xy(), q.xy()), std::min(p.z(), q.z()), std::max(p.z(), q.z())});
    }
  }
  return extents;
}

void FindOthersNear(const ZBR_HL_SHELL& a, const Extents& visible, const ShellSearch& search, Occluding& by) {
  // So many shells are asked one by one, edge by edge, faster than through a tree.
  constexpr std::size_t kFewShells = 32;
  by.own = false;
  by.search = nullptr;
  by.others.clear();
  if (visible.empty()) return;
  search.Search(visible.box, visible.minZ, OccluderTree::Order::kHighestFirst, [&](const ZBR_HL_SHELL& b) {
    if (&b != &a) by.others.push_back(&b);
    return by.others.size() <= kFewShells;
  });
  if (by.others.size() <= kFewShells) return;
  by.others.clear();
  by.search = &search;
}

void HideShell(ZBR_HL_SHELL& a, const Occluding& by) {
  const ToleranceScope scope(kOcclusionEps);
  const ShellLists lists(&a);
  a.pairs_tried += HideTriangles(a, {0, a.count}, by, *lists);
}

void HideWholeTriangle(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s) {
  if (s.occluders == nullptr) return;
  const ToleranceScope scope(kOcclusionEps);
  const ShellLists lists(t.shell);
  HideByAny(t, s, *lists, [](int) { return true; });
}

}  // namespace zbr

void ZBR_HiddenLine::HiddenLine_ShellByShell(ZBR_HL_SHELL& a, const ZBR_HL_SHELL& b) {
  if (b.count == 0) return;
  zbr::Occluding by;
  by.own = &a == &b;
  if (!by.own) by.others.push_back(&b);
  zbr::HideShell(a, by);
}
