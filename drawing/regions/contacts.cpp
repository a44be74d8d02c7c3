// Search for crossing and overlapping edges within one set of rings.
//
// Idea: the edges of all rings in ring order are the leaves of a hierarchy of boxes, four to one; neighbours on a ring are
// neighbours in space, so the boxes stay small without any sorting. Walking the hierarchy against itself yields all pairs of edges
// with common boxes.
// Difficulty: what happens at a vertex is seen by up to four pairs of edges. Each contact has one owner: a vertex belongs to the
// edge that starts there, and whether the boundaries cross at it is decided by the two edges that meet there.

#include <zbr-drawing/contacts.h>

#include <zbr-drawing/frame.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace zbr::drawing {
namespace {

struct Box {
  double xmin, xmax, ymin, ymax;
  bool Meets(const Box& o) const { return xmin <= o.xmax && o.xmin <= xmax && ymin <= o.ymax && o.ymin <= ymax; }
  void Add(const Box& o) {
    xmin = std::min(xmin, o.xmin);
    xmax = std::max(xmax, o.xmax);
    ymin = std::min(ymin, o.ymin);
    ymax = std::max(ymax, o.ymax);
  }
};

// An edge, named by its start vertex, within the ring it belongs to.
struct Vertex {
  ZBR_PT pt;
  std::size_t ring;
  std::size_t prev, next;
};

class ContactSearch {
 public:
  ContactSearch(const LoopList& rings, std::size_t limit) : limit_(limit) {
    for (std::size_t r = 0; r < rings.size(); ++r) AddRing(rings[r]->pt(), r);
    BuildLevels();
  }

  Contacts Run() {
    if (!levels_.empty()) Walk(levels_.size() - 1, 0, 0);
    Contacts contacts;
    contacts.complete = !TooMany();
    contacts.list.reserve(found_.size());
    for (const auto& [key, contact] : found_) contacts.list.push_back(contact);
    return contacts;
  }

 private:
  static constexpr std::size_t kFanOut = 4;
  static constexpr std::size_t kPlacesPerEntry = 100;

  bool TooMany() const { return found_.size() >= limit_ || places_ >= kPlacesPerEntry * limit_; }

  // Repeated points are left out: an edge without length has no sides.
  void AddRing(const std::vector<ZBR_PT>& points, std::size_t ring) {
    const std::size_t first = vertices_.size();
    for (const ZBR_PT& p : points) {
      if (vertices_.size() == first || p != vertices_.back().pt) vertices_.push_back({p, ring, 0, 0});
    }
    while (vertices_.size() > first + 1 && vertices_.back().pt == vertices_[first].pt) vertices_.pop_back();
    const std::size_t n = vertices_.size() - first;
    if (n < 3) vertices_.resize(first);
    if (n < 3) return;
    for (std::size_t i = 0; i < n; ++i) {
      vertices_[first + i].prev = first + (i + n - 1) % n;
      vertices_[first + i].next = first + (i + 1) % n;
    }
  }

  void BuildLevels() {
    if (vertices_.empty()) return;
    std::vector<Box> boxes;
    boxes.reserve(vertices_.size());
    for (const Vertex& v : vertices_) {
      const ZBR_PT& p = v.pt;
      const ZBR_PT& q = vertices_[v.next].pt;
      const auto [x0, x1] = std::minmax({p.x(), q.x()});
      const auto [y0, y1] = std::minmax({p.y(), q.y()});
      boxes.push_back({x0 - kTolerance, x1 + kTolerance, y0 - kTolerance, y1 + kTolerance});
    }
    levels_.push_back(std::move(boxes));
    while (levels_.back().size() > 1) {
      const std::vector<Box>& below = levels_.back();
      std::vector<Box> level((below.size() + kFanOut - 1) / kFanOut, {kFar, -kFar, kFar, -kFar});
      for (std::size_t i = 0; i < below.size(); ++i) level[i / kFanOut].Add(below[i]);
      levels_.push_back(std::move(level));
    }
  }

  // All pairs of edges below two nodes of one level; i <= j.
  void Walk(std::size_t level, std::size_t i, std::size_t j) {
    if (TooMany() || !levels_[level][i].Meets(levels_[level][j])) return;
    if (level == 0) {
      if (i != j) Examine(vertices_[i], vertices_[j]);
      return;
    }
    const std::size_t count = levels_[level - 1].size();
    for (std::size_t a = i * kFanOut; a < std::min((i + 1) * kFanOut, count); ++a) {
      for (std::size_t b = std::max(a, j * kFanOut); b < std::min((j + 1) * kFanOut, count); ++b) Walk(level - 1, a, b);
    }
  }

  void Examine(const Vertex& e, const Vertex& f) {
    const ZBR_PT& p0 = e.pt;
    const ZBR_PT& p1 = vertices_[e.next].pt;
    const ZBR_PT& q0 = f.pt;
    const ZBR_PT& q1 = vertices_[f.next].pt;
    if (&vertices_[e.next] == &f) return CheckFold(p0, q0, q1, e.ring);
    if (&vertices_[f.next] == &e) return CheckFold(q0, p0, p1, e.ring);
    const int sideQ0 = q0.CheckPos(p0, p1);
    const int sideQ1 = q1.CheckPos(p0, p1);
    if (sideQ0 * sideQ1 > 0) return;
    const int sideP0 = p0.CheckPos(q0, q1);
    const int sideP1 = p1.CheckPos(q0, q1);
    if (sideP0 * sideP1 > 0) return;
    if (sideQ0 * sideQ1 < 0 && sideP0 * sideP1 < 0) return Note(ContactKind::kCrossing, e, f, Meeting(p0, p1, q0, q1));
    if (sideQ0 == 0 && sideQ1 == 0) return CheckOverlap(e, f);
    if (sideQ0 == 0) CheckVertexOnEdge(f, e);
    if (sideP0 == 0 && q0 != p0) CheckVertexOnEdge(e, f);
  }

  // Two neighbouring edges a->b->c of one ring.
  void CheckFold(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& c, std::size_t ring) {
    if (c.CheckPos(a, b) == 0 && (a - b).InnerProduct(c - b) > 0) Note(ContactKind::kFold, ring, ring, b);
  }

  // Edges on one line: shared is more than a point if the one's ends reach into the other's stretch.
  void CheckOverlap(const Vertex& e, const Vertex& f) {
    const ZBR_PT& p0 = e.pt;
    const ZBR_PT along = vertices_[e.next].pt - p0;
    const double length = along.Length();
    const auto position = [&](const ZBR_PT& p) { return (p - p0).InnerProduct(along) / length; };
    const auto [f0, f1] = std::minmax({position(f.pt), position(vertices_[f.next].pt)});
    const double from = std::max(0.0, f0);
    const double to = std::min(length, f1);
    if (to - from > kTolerance) return Note(ContactKind::kOverlap, e, f, p0 + along * ((from + to) / 2 / length));
    if (f.pt == p0) CheckVertexOnEdge(f, e);
  }

  // Vertex v, the start of its edge, lies on the line of `edge`: do the boundaries cross there?
  void CheckVertexOnEdge(const Vertex& v, const Vertex& edge) {
    const ZBR_PT& before = vertices_[v.prev].pt;
    const ZBR_PT& after = vertices_[v.next].pt;
    const ZBR_PT& a = edge.pt;
    const ZBR_PT& b = vertices_[edge.next].pt;
    if (v.pt == b) return;  // belongs to the edge that starts there
    if (v.pt != a) {
      const double along = (v.pt - a).InnerProduct(b - a);
      const bool between = along > 0 && along < (b - a).Length2();
      if (between && before.CheckPos(a, b) * after.CheckPos(a, b) == -1) Note(ContactKind::kCrossing, v, edge, v.pt);
      return;
    }
    int ignored1 = 0;
    int ignored2 = 0;
    const ZBR_PT& corner = vertices_[edge.prev].pt;
    const int sideBefore = before.CheckPos(corner, a, b, ignored1, ignored2);
    const int sideAfter = after.CheckPos(corner, a, b, ignored1, ignored2);
    if (sideBefore * sideAfter == -1) Note(ContactKind::kCrossing, v, edge, v.pt);
  }

  static ZBR_PT Meeting(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& q0, const ZBR_PT& q1) {
    const ZBR_PT p = p1 - p0;
    const ZBR_PT q = q1 - q0;
    return p0 + p * ((q0 - p0).OuterProduct(q) / p.OuterProduct(q));
  }

  void Note(ContactKind kind, const Vertex& e, const Vertex& f, const ZBR_PT& at) { Note(kind, e.ring, f.ring, at); }

  void Note(ContactKind kind, std::size_t a, std::size_t b, const ZBR_PT& at) {
    const auto [low, high] = std::minmax({a, b});
    ++places_;
    Contact& contact = found_[{low, high, kind}];
    if (contact.count++ == 0) {
      contact.kind = kind;
      contact.ringA = low;
      contact.ringB = high;
      contact.at = at;
    }
  }

  static constexpr double kFar = 1e300;

  std::size_t limit_;
  std::size_t places_ = 0;
  std::vector<Vertex> vertices_;
  std::vector<std::vector<Box>> levels_;  // level 0: edges
  std::map<std::tuple<std::size_t, std::size_t, ContactKind>, Contact> found_;
};

}  // namespace

Contacts FindContacts(const LoopList& rings, std::size_t limit) {
  return ContactSearch(rings, limit).Run();
}

}  // namespace zbr::drawing
