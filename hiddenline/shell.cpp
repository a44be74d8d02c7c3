// The shell: preparing its triangles, its tree and its search index, and its own state.
//
// Preparation is one pass per array: extents, numbers and planes, states, order by height, tree, index. The tree is part of the
// interface; the index is what the driver searches (occluders.h).
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include <zbr/hidden_line.h>

#include "core/radix_sort.h"
#include "core/tolerance_state.h"
#include "hiddenline/double_key.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"
#include "hiddenline/quad.h"

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
  done = o.done;
  maxmin_valid = o.maxmin_valid;
  quad_built = o.quad_built;
  order = o.order;
  root = o.root;
  id_map = o.id_map;
  occluders = o.occluders;
  return *this;
}

ZBR_HL_SHELL& ZBR_HL_SHELL::operator=(ZBR_HL_SHELL&& o) noexcept = default;
ZBR_HL_SHELL::~ZBR_HL_SHELL() = default;

void ZBR_HL_SHELL::Init() {
  done = false;
  maxmin_valid = false;
  quad_built = false;
  tri_result.reserve(3);
  xy_result.reserve(3);
  for (auto& list : edge_result) list.reserve(3);
  work.reserve(10);
}

void ZBR_HL_SHELL::GetMaxMin() {
  max_x = max_y = max_z = -std::numeric_limits<double>::infinity();
  min_x = min_y = min_z = std::numeric_limits<double>::infinity();
  for (unsigned i = 0; i < count; ++i) {
    ZBR_HL_TRI& t = tris[i];
    t.GetMaxMin();
    if (!zbr::HasFiniteExtents(t)) continue;  // will be invalid; must not spoil the box of the others
    max_x = std::max(max_x, t.max_x);
    min_x = std::min(min_x, t.min_x);
    max_y = std::max(max_y, t.max_y);
    min_y = std::min(min_y, t.min_y);
    max_z = std::max(max_z, t.max_z);
    min_z = std::min(min_z, t.min_z);
  }
  if (min_x > max_x) max_x = min_x = max_y = min_y = max_z = min_z = 0.0;
  maxmin_valid = true;
}

void ZBR_HL_SHELL::CheckTriangle() {
  if (count == 0) return;
  const bool number = tris[0].idx == -1;
  id_map.resize(count);
  for (unsigned i = 0; i < count; ++i) {
    ZBR_HL_TRI& t = tris[i];
    if (number) t.idx = static_cast<int>(i);
    t.shell_idx = index;
    t.shell = this;
    id_map[i] = {t.idx, static_cast<int>(i)};
    t.normal.Set(t.pt[0], t.pt[1], t.pt[2]);
    t.clockwise = !(t.normal.normal().z() > 0.0);
    t.CheckTriangle();
  }
  if (!std::is_sorted(id_map.begin(), id_map.end())) std::sort(id_map.begin(), id_map.end());
}

void ZBR_HL_SHELL::QuadRemoveInvalid(ZBR_HL_QUAD& node) {
  std::erase_if(node.tris, [this](int position) { return tris[position].IsTriInvalid(); });
  for (ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr) QuadRemoveInvalid(*child);
  }
}

namespace {

// Positions by decreasing max_z, equal heights in array order; what is no number comes last.
std::vector<int> OrderByHeight(const ZBR_HL_TRI* tris, unsigned count) {
  struct Item {
    std::uint64_t key;
    int position;
  };
  std::vector<Item> items(count);
  std::vector<Item> scratch;
  for (unsigned i = 0; i < count; ++i) items[i] = {~zbr::DoubleKey(tris[i].max_z), static_cast<int>(i)};
  zbr::RadixSort(items, scratch, [](const Item& item) { return item.key; });
  std::vector<int> order(count);
  std::transform(items.begin(), items.end(), order.begin(), [](const Item& item) { return item.position; });
  return order;
}

// The root's box is a little larger than the shell's, so that a box on the shell's border lies strictly inside.
void ResetRoot(ZBR_HL_SHELL& shell, double eps) {
  shell.root = ZBR_HL_QUAD();
  shell.root.tris = shell.order;
  shell.root.max_x = shell.max_x + eps;
  shell.root.min_x = shell.min_x - eps;
  shell.root.max_y = shell.max_y + eps;
  shell.root.min_y = shell.min_y - eps;
}

}  // namespace

void ZBR_HL_SHELL::HiddenLineSelf() {
  if (done) return;
  if (count == 0) {
    done = true;
    return;
  }
  if (!maxmin_valid) GetMaxMin();
  index = ZBR_HiddenLine::max_shell_index.fetch_add(1);
  CheckTriangle();
  if (!quad_built) {
    order = OrderByHeight(tris, count);
    ResetRoot(*this, zbr::t_tolerance.eps);
    zbr::BuildQuad(root, zbr::BoxesOf(*this), tris);
    QuadRemoveInvalid(root);
    occluders = std::make_shared<const Occluders>(*this);
    quad_built = true;
  }
  ZBR_HiddenLine::HiddenLine_ShellByShell(*this, *this);
  done = true;
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
  if (occluders != nullptr) occluders = std::make_shared<const Occluders>(*this);
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
