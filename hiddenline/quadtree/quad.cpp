// The quadtree of a shell: ownership, building, search.
//
// A triangle goes down while its box lies strictly in one quadrant, so the triangles whose boxes can meet a given box are those
// filed on one path from the root and in one subtree. Lists are partitioned stably, which keeps every list in decreasing height.
#include "hiddenline/quadtree/quad.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/constants.h"

namespace {

// Gives `to` what `from` holds, children included; `from` is left without children.
void TakeOver(ZBR_HL_QUAD& to, ZBR_HL_QUAD& from) {
  to.depth = from.depth;
  to.quadrant = from.quadrant;
  to.tris = std::move(from.tris);
  to.max_x = from.max_x;
  to.min_x = from.min_x;
  to.max_y = from.max_y;
  to.min_y = from.min_y;
  for (int q = 0; q < 4; ++q) {
    to.child[q] = std::exchange(from.child[q], nullptr);
    if (to.child[q] != nullptr) to.child[q]->parent = &to;
  }
}

}  // namespace

// Delegates, so that the destructor frees the children made so far when memory runs out.
ZBR_HL_QUAD::ZBR_HL_QUAD(const ZBR_HL_QUAD& o) : ZBR_HL_QUAD() {
  depth = o.depth;
  quadrant = o.quadrant;
  tris = o.tris;
  max_x = o.max_x;
  min_x = o.min_x;
  max_y = o.max_y;
  min_y = o.min_y;
  for (int q = 0; q < 4; ++q) {
    if (o.child[q] == nullptr) continue;
    child[q] = new ZBR_HL_QUAD(*o.child[q]);
    child[q]->parent = this;
  }
}

ZBR_HL_QUAD::ZBR_HL_QUAD(ZBR_HL_QUAD&& o) noexcept {
  TakeOver(*this, o);
}

ZBR_HL_QUAD& ZBR_HL_QUAD::operator=(const ZBR_HL_QUAD& o) {
  if (this != &o) *this = ZBR_HL_QUAD(o);
  return *this;
}

ZBR_HL_QUAD& ZBR_HL_QUAD::operator=(ZBR_HL_QUAD&& o) noexcept {
  if (this == &o) return *this;
  ZBR_HL_QUAD moved(std::move(o));  // o may be one of the children that go
  for (ZBR_HL_QUAD*& c : child) delete std::exchange(c, nullptr);
  TakeOver(*this, moved);
  return *this;
}

ZBR_HL_QUAD::~ZBR_HL_QUAD() {
  for (const ZBR_HL_QUAD* c : child) delete c;
}

namespace zbr {
namespace {

constexpr unsigned kStays = 4;

// The quadrant strictly inside which the box lies, or kStays.
unsigned QuadrantOf(const Box& box, double xmid, double ymid) {
  const bool left = box.xmax < xmid;
  const bool right = box.xmin > xmid;
  const bool below = box.ymax < ymid;
  const bool above = box.ymin > ymid;
  if (left == right || below == above) return kStays;
  return (right ? 1U : 0U) + (above ? 2U : 0U);
}

ZBR_HL_QUAD* MakeChild(ZBR_HL_QUAD& node, unsigned quadrant, double xmid, double ymid) {
  auto* child = new ZBR_HL_QUAD;
  node.child[quadrant] = child;
  child->parent = &node;
  child->depth = node.depth + 1;
  child->quadrant = quadrant;
  const bool right = (quadrant & 1U) != 0;
  const bool above = (quadrant & 2U) != 0;
  child->min_x = right ? xmid : node.min_x;
  child->max_x = right ? node.max_x : xmid;
  child->min_y = above ? ymid : node.min_y;
  child->max_y = above ? node.max_y : ymid;
  return child;
}

// Deals node.tris out to its children. `quadrants` is scratch.
void Split(ZBR_HL_QUAD& node, std::span<const Extents> extents, std::vector<std::uint8_t>& quadrants) {
  const double xmid = (node.max_x + node.min_x) / 2.0;
  const double ymid = (node.max_y + node.min_y) / 2.0;
  // Boxes of a few units in the last place do not get smaller, and points in them would sink for ever.
  const bool shrinks = (node.min_x < xmid && xmid < node.max_x) || (node.min_y < ymid && ymid < node.max_y);
  if (!shrinks) return;
  std::array<std::size_t, 5> count{};
  quadrants.resize(node.tris.size());
  for (std::size_t i = 0; i < node.tris.size(); ++i) {
    const unsigned q = QuadrantOf(extents[static_cast<std::size_t>(node.tris[i])].box, xmid, ymid);
    quadrants[i] = static_cast<std::uint8_t>(q);
    ++count[q];
  }
  if (count[kStays] == node.tris.size()) return;
  std::vector<int> stay;
  stay.reserve(count[kStays]);
  std::array<std::vector<int>*, 5> lists{};
  lists[kStays] = &stay;
  for (unsigned q = 0; q < 4; ++q) {
    if (count[q] == 0) continue;
    lists[q] = &MakeChild(node, q, xmid, ymid)->tris;
    lists[q]->reserve(count[q]);
  }
  for (std::size_t i = 0; i < node.tris.size(); ++i) lists[quadrants[i]]->push_back(node.tris[i]);
  node.tris = std::move(stay);
}

}  // namespace

void BuildQuad(ZBR_HL_QUAD& root, std::span<const Extents> extents, ZBR_HL_TRI* tris) {
  std::vector<std::uint8_t> quadrants;
  std::vector<ZBR_HL_QUAD*> filedIn(extents.size());  // noted here first: the records are far apart
  std::vector<ZBR_HL_QUAD*> open{&root};
  while (!open.empty()) {
    ZBR_HL_QUAD& node = *open.back();
    open.pop_back();
    if (node.tris.size() > kQuadLeafSize) Split(node, extents, quadrants);
    for (const int position : node.tris) filedIn[static_cast<std::size_t>(position)] = &node;
    for (ZBR_HL_QUAD* child : node.child) {
      if (child != nullptr) open.push_back(child);
    }
  }
  for (std::size_t i = 0; i < filedIn.size(); ++i) tris[i].quad = filedIn[i];
}

const ZBR_HL_QUAD* FindQuad(const ZBR_HL_QUAD& start, const Box& box) {
  const auto holds = [&box](const ZBR_HL_QUAD& node) {
    return node.max_x > box.xmax && box.xmin > node.min_x && node.max_y > box.ymax && box.ymin > node.min_y;
  };
  if (!holds(start)) return nullptr;
  const ZBR_HL_QUAD* node = &start;
  for (const ZBR_HL_QUAD* next = node; next != nullptr;) {
    node = next;
    next = nullptr;
    for (const ZBR_HL_QUAD* child : node->child) {  // the quadrants do not overlap: at most one holds the box
      if (child != nullptr && holds(*child)) next = child;
    }
  }
  return node;
}

void OffsetQuad(ZBR_HL_QUAD& node, double dx, double dy) {
  node.max_x += dx;
  node.min_x += dx;
  node.max_y += dy;
  node.min_y += dy;
  for (ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr) OffsetQuad(*child, dx, dy);
  }
}

}  // namespace zbr
