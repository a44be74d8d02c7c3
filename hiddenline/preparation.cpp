// Preparing shells.
//
// One pass over the triangles, as records are bulky, in pieces that have nothing to do with each other: extents, numbers, planes,
// states. Then the occluders, which the driver and picking search (occluders.h).
#include "hiddenline/preparation.h"

#include <algorithm>
#include <memory>

#include "core/assert.h"
#include "core/tolerance_state.h"
#include "hiddenline/check.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"

namespace zbr {
namespace {

// Triangles in one piece of work.
constexpr std::size_t kPiece = 4096;

// Around triangles.
struct Bounds {
  Extents usable;  // those that can be computed with
  Extents hiding;  // those that are not invalid

  void Add(const ZBR_HL_TRI& t) {
    const Extents e = ExtentsOf(t);
    if (IsUsable(e)) usable.Add(e);
    if (!t.IsTriInvalid()) hiding.Add(e);
  }
  void Add(const Bounds& o) {
    usable.Add(o.usable);
    hiding.Add(o.hiding);
  }
};

// Numbers and classifies the triangles of a shell, one by one.
class Checker {
 public:
  explicit Checker(ZBR_HL_SHELL& shell) : shell_(shell), number_(shell.tris[0].idx == -1) { shell.id_map.resize(shell.count); }

  void Check(std::size_t position) {
    ZBR_HL_TRI& t = shell_.tris[position];
    if (number_) t.idx = static_cast<int>(position);
    t.shell_idx = shell_.index;
    t.shell = &shell_;
    shell_.id_map[position] = {t.idx, static_cast<int>(position)};
    t.normal.Set(t.pt[0], t.pt[1], t.pt[2]);
    t.clockwise = !(t.normal.normal().z() > 0.0);
    Classify(t);
  }
  void Finish() {
    auto& map = shell_.id_map;
    if (!std::is_sorted(map.begin(), map.end())) std::sort(map.begin(), map.end());
    ZBR_CHECK(IdMapFault(shell_));
  }

 private:
  ZBR_HL_SHELL& shell_;
  bool number_;
};

// Returns what the triangles lie within.
Bounds CheckAll(ZBR_HL_SHELL& shell, const Sharing& sharing, std::vector<char>* draws) {
  if (draws != nullptr) draws->resize(shell.count);
  Checker checker(shell);
  const auto check = [&](std::size_t begin, std::size_t end, Bounds& bounds) {
    for (std::size_t i = begin; i < end; ++i) {
      if (!shell.maxmin_valid) shell.tris[i].GetMaxMin();
      checker.Check(i);
      bounds.Add(shell.tris[i]);
      if (draws != nullptr) (*draws)[i] = Draws(shell.tris[i]) ? 1 : 0;
    }
  };
  Bounds all;
  if (shell.count <= kPiece) {
    check(0, shell.count, all);
  } else {
    std::vector<Bounds> bounds(Sharing::PieceCount(shell.count, kPiece));
    sharing.InPieces(shell.count, kPiece,
                     [&](std::size_t piece, std::size_t begin, std::size_t end) { check(begin, end, bounds[piece]); });
    for (const Bounds& of : bounds) all.Add(of);
  }
  checker.Finish();
  return all;
}

// A little larger than the shell's box, so that what lies on its border lies strictly inside.
Box EnlargedBox(const ZBR_HL_SHELL& s) {
  const double eps = t_tolerance.eps;
  return {s.min_x - eps, s.min_y - eps, s.max_x + eps, s.max_y + eps};
}

}  // namespace

void SetExtents(ZBR_HL_SHELL& shell, const Extents& e) {
  shell.max_x = e.empty() ? 0.0 : e.box.xmax;
  shell.min_x = e.empty() ? 0.0 : e.box.xmin;
  shell.max_y = e.empty() ? 0.0 : e.box.ymax;
  shell.min_y = e.empty() ? 0.0 : e.box.ymin;
  shell.max_z = e.empty() ? 0.0 : e.maxZ;
  shell.min_z = e.empty() ? 0.0 : e.minZ;
  shell.maxmin_valid = true;
}

void PrepareShell(ZBR_HL_SHELL& shell, const Sharing& sharing, std::vector<char>* draws) {
  const Bounds bounds = CheckAll(shell, sharing, draws);
  if (!shell.maxmin_valid) SetExtents(shell, bounds.usable);
  if (shell.quad_built) return;
  if (!shell.order.empty()) {  // of a former tree, which would lead astray
    shell.order.clear();
    shell.root = ZBR_HL_QUAD();
    for (unsigned i = 0; i < shell.count; ++i) shell.tris[i].quad = nullptr;
  }
  shell.occluders = std::make_shared<const ZBR_HL_SHELL::Occluders>(shell, bounds.hiding, EnlargedBox(shell), sharing);
}

void MakeOccluders(ZBR_HL_SHELL& shell, const Box& pickable) {
  Bounds bounds;
  for (unsigned i = 0; i < shell.count; ++i) bounds.Add(shell.tris[i]);
  shell.occluders = std::make_shared<const ZBR_HL_SHELL::Occluders>(shell, bounds.hiding, pickable, Sharing());
}

}  // namespace zbr

void ZBR_HL_SHELL::CheckTriangle() {
  if (count == 0) return;
  zbr::Checker checker(*this);
  for (unsigned i = 0; i < count; ++i) {
    checker.Check(i);
    zbr::GiveIntervals(tris[i]);
  }
  checker.Finish();
}
