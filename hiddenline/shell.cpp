// The shell: its trees and its own state.
//
// The order by height and the quadtree, which are part of the interface but not needed for a drawing, are made only for those who
// process a shell by itself or ask, from extents kept apart from the bulky records.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/radix_sort.h"
#include "core/small_sort.h"
#include "hiddenline/driver.h"
#include "hiddenline/float_key.h"
#include "hiddenline/occluders.h"
#include "hiddenline/preparation.h"
#include "hiddenline/quadtree/quad.h"

ZBR_HL_SHELL::ZBR_HL_SHELL() : ZBR_HL_SHELL(nullptr, 0) {}

ZBR_HL_SHELL::ZBR_HL_SHELL(ZBR_HL_TRI* triangles, unsigned number) : tris(triangles), count(number) {
  Init();
}

ZBR_HL_SHELL::ZBR_HL_SHELL(const ZBR_HL_SHELL& o) {
  *this = o;
}

ZBR_HL_SHELL::ZBR_HL_SHELL(ZBR_HL_SHELL&& o) noexcept = default;

ZBR_HL_SHELL& ZBR_HL_SHELL::operator=(const ZBR_HL_SHELL& o) {
  if (this == &o) return *this;
  index = o.index;
  max_x = o.max_x;
  min_x = o.min_x;
  max_y = o.max_y;
  min_y = o.min_y;
  max_z = o.max_z;
  min_z = o.min_z;
  tris = o.tris;
  count = o.count;
  outline = o.outline;
  outline_all = o.outline_all;
  prepared = o.prepared;
  done = o.done;
  maxmin_valid = o.maxmin_valid;
  quad_built = o.quad_built;
  order = o.order;
  root = o.root;
  id_map = o.id_map;
  occluders = o.occluders;
  contact_tolerance = o.contact_tolerance;
  pairs_tried = o.pairs_tried;
  return *this;
}

ZBR_HL_SHELL& ZBR_HL_SHELL::operator=(ZBR_HL_SHELL&& o) noexcept = default;
ZBR_HL_SHELL::~ZBR_HL_SHELL() = default;

void ZBR_HL_SHELL::Init() {
  prepared = false;
  done = false;
  maxmin_valid = false;
  quad_built = false;
  pairs_tried = 0;
  tri_result.reserve(3);
  xy_result.reserve(3);
  for (auto& list : edge_result) list.reserve(3);
  work.reserve(10);
}

void ZBR_HL_SHELL::GetMaxMin() {
  zbr::Extents usable;
  for (unsigned i = 0; i < count; ++i) {
    tris[i].GetMaxMin();
    const zbr::Extents e = zbr::ExtentsOf(tris[i]);
    if (zbr::IsUsable(e)) usable.Add(e);
  }
  zbr::SetExtents(*this, usable);
}

void ZBR_HL_SHELL::QuadRemoveInvalid(ZBR_HL_QUAD& node) {
  std::erase_if(node.tris, [this](int position) { return tris[position].IsTriInvalid(); });
  for (ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr) QuadRemoveInvalid(*child);
  }
}

namespace {

// Positions by decreasing max_z, equal heights in array order; what is no number comes last.
std::vector<int> OrderByHeight(std::span<const zbr::Extents> extents) {
  struct Item {
    std::uint32_t key;  // of the height as a float; heights that differ by less are told apart afterwards
    int position;
  };
  std::vector<Item> items(extents.size());
  std::vector<Item> scratch;
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i] = {~zbr::FloatKey(zbr::ToFloat(extents[i].maxZ)), static_cast<int>(i)};
  }
  const auto key = [](const Item& item) { return item.key; };
  zbr::RadixSort(items, scratch, key);
  const auto isHigher = [&extents](const Item& a, const Item& b) {
    return extents[static_cast<std::size_t>(a.position)].maxZ > extents[static_cast<std::size_t>(b.position)].maxZ;
  };
  zbr::ForEachRun(items, key, [&](std::span<Item> near) {
    if (!std::is_sorted(near.begin(), near.end(), isHigher)) std::stable_sort(near.begin(), near.end(), isHigher);
  });
  std::vector<int> order(items.size());
  std::transform(items.begin(), items.end(), order.begin(), [](const Item& item) { return item.position; });
  return order;
}

// The same of a handful of triangles, where the extents have been left.
std::vector<int> OrderOfFewByHeight(std::span<const ZBR_HL_TRI> tris) {
  std::vector<int> order(tris.size());
  std::iota(order.begin(), order.end(), 0);
  const auto height = [&tris](int position) { return tris[static_cast<std::size_t>(position)].max_z; };
  zbr::SmallSort(order.begin(), order.end(),
                 [&height](int a, int b) { return height(a) > height(b) || (std::isnan(height(b)) && !std::isnan(height(a))); });
  return order;
}

void BuildQuadOf(ZBR_HL_SHELL& shell) {
  constexpr unsigned kFew = 16;  // not more than stay in one node
  static_assert(kFew <= zbr::kQuadLeafSize);
  const bool areFew = shell.count <= kFew;
  std::vector<zbr::Extents> extents(areFew ? 0 : shell.count);
  for (std::size_t i = 0; i < extents.size(); ++i) extents[i] = zbr::ExtentsOf(shell.tris[i]);
  shell.order = areFew ? OrderOfFewByHeight({shell.tris, shell.count}) : OrderByHeight(extents);
  const zbr::Box box = shell.occluders->pickable;
  shell.root = ZBR_HL_QUAD();
  shell.root.tris = shell.order;
  shell.root.max_x = box.xmax;
  shell.root.min_x = box.xmin;
  shell.root.max_y = box.ymax;
  shell.root.min_y = box.ymin;
  if (areFew) {
    for (unsigned i = 0; i < shell.count; ++i) shell.tris[i].quad = &shell.root;
  } else {
    zbr::BuildQuad(shell.root, extents, shell.tris);
  }
  const bool anyInvalid = std::any_of(shell.tris, shell.tris + shell.count, [](const ZBR_HL_TRI& t) { return t.IsTriInvalid(); });
  if (anyInvalid) shell.QuadRemoveInvalid(shell.root);
  shell.quad_built = true;
}

}  // namespace

namespace zbr {

void PrepareWhole(ZBR_HL_SHELL& shell) {
  PrepareShell(shell, Sharing());
  for (unsigned i = 0; i < shell.count; ++i) GiveIntervals(shell.tris[i]);
}

void HideInItself(ZBR_HL_SHELL& shell) {
  if (shell.done) return;
  if (shell.count != 0) {
    Occluding itself;
    itself.own = true;
    itself.isBare = !shell.prepared;
    if (!shell.prepared) PrepareShell(shell, Sharing());
    if (!shell.quad_built && shell.occluders != nullptr) BuildQuadOf(shell);
    HideShell(shell, itself);
  }
  shell.prepared = false;
  shell.done = true;
}

}  // namespace zbr

void ZBR_HL_SHELL::BuildQuad() {
  if (!quad_built && occluders != nullptr && count != 0 && (prepared || done)) BuildQuadOf(*this);
}

void ZBR_HL_SHELL::HiddenLineSelf() {
  if (!done && !prepared && count != 0) index = ZBR_HiddenLine::max_shell_index.fetch_add(1);
  zbr::HideInItself(*this);
}

int& ZBR_HL_SHELL::GetTriOrder(int idx) {
  const auto place =
      std::lower_bound(id_map.begin(), id_map.end(), idx, [](const auto& entry, int key) { return entry.first < key; });
  return place->second;
}

ZBR_HL_TRI& ZBR_HL_SHELL::GetTri(int idx) {
  return tris[GetTriOrder(idx)];
}

unsigned ZBR_HL_SHELL::GetDispSegNum() const {
  return std::accumulate(tris, tris + count, 0U, [](unsigned sum, const ZBR_HL_TRI& t) { return sum + t.GetDispSegNum(); });
}

unsigned ZBR_HL_SHELL::GetAvailableTriNum() const {
  return static_cast<unsigned>(std::count_if(tris, tris + count, [](const ZBR_HL_TRI& t) { return t.any_edge_visible; }));
}

void ZBR_HL_SHELL::Offset(const ZBR_PT3& d) {
  max_x += d.x();
  min_x += d.x();
  max_y += d.y();
  min_y += d.y();
  max_z += d.z();
  min_z += d.z();
  for (unsigned i = 0; i < count; ++i) tris[i].Offset(d);
  zbr::OffsetQuad(root, d.x(), d.y());
  if (occluders != nullptr) {
    const zbr::Box& old = occluders->pickable;
    const zbr::Box moved{old.xmin + d.x(), old.ymin + d.y(), old.xmax + d.x(), old.ymax + d.y()};
    zbr::MakeOccluders(*this, moved);
  }
  const ZBR_PT planar(d.x(), d.y());
  ZBR_LOOP::Offset(outline, planar);
  ZBR_LOOP::Offset(outline_all, planar);
}

void ZBR_HL_SHELL::SaveInfo(std::vector<ZBR_HL_TRI_SAVE>& out, ZBR_HL_TRI_SAVE scratch) {
  for (unsigned i = 0; i < count; ++i) {
    if (!tris[i].any_edge_visible) continue;
    tris[i].SaveInfo(scratch, static_cast<int>(i));
    out.push_back(scratch);
  }
}

void ZBR_HL_SHELL::RestoreInfo(std::vector<ZBR_HL_TRI_SAVE>& in) {
  for (unsigned i = 0; i < count; ++i) tris[i].ClearEdgeAll();
  for (ZBR_HL_TRI_SAVE& record : in) tris[record.position].RestoreInfo(record);
}
