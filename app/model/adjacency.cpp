// Matches the edges of triangles.
//
// Each edge is filed under the smaller of its two points; under one point, sorting by the other brings together what is the same
// edge. Points have about six edges on ordinary meshes, so that this is cheaper than sorting or hashing all edges.
#include "model/adjacency.h"

#include <algorithm>
#include <cstddef>

namespace tool {
namespace {

// Edge i of triangle t, as 3 t + i, with the larger of its points.
struct FiledEdge {
  std::uint32_t far;
  std::uint32_t edge;
  bool operator<(const FiledEdge& o) const { return far != o.far ? far < o.far : edge < o.edge; }
};

struct EdgeFile {
  std::vector<std::uint32_t> begin;  // by point, with one more
  std::vector<FiledEdge> edges;
};

EdgeFile FileEdges(const Model& model) {
  EdgeFile file;
  file.begin.assign(model.points.size() + 1, 0);
  for (const auto& t : model.triangles) {
    for (std::size_t i = 0; i < 3; ++i) ++file.begin[std::min(t[i], t[(i + 1) % 3]) + 1];
  }
  for (std::size_t p = 1; p < file.begin.size(); ++p) file.begin[p] += file.begin[p - 1];
  file.edges.resize(3 * model.triangles.size());
  std::vector<std::uint32_t> next(file.begin.begin(), file.begin.end() - 1);
  std::uint32_t edge = 0;
  for (const auto& t : model.triangles) {
    for (std::size_t i = 0; i < 3; ++i) {
      const auto [near, far] = std::minmax(t[i], t[(i + 1) % 3]);
      file.edges[next[near]++] = {far, edge++};
    }
  }
  return file;
}

class Connector {
 public:
  explicit Connector(Model& model) : model_(model) {
    const std::size_t n = model.triangles.size();
    model.adjacent.assign(n, {-1, -1, -1});
    model.adjacentEdge.assign(n, {-1, -1, -1});
    model.classes.assign(n, {EdgeClass::kBorder, EdgeClass::kBorder, EdgeClass::kBorder});
    model.junctionCopies = 0;
  }

  // What was filed for one and the same edge.
  void Connect(const FiledEdge* first, std::size_t count) {
    if (count == 1) return;
    FindRepeated(first, count);
    if (count == 2) {
      Link(first[0].edge, first[1].edge);
      Link(first[1].edge, first[0].edge);
      return;
    }
    for (std::size_t k = 0; k < count; ++k) model_.classes[first[k].edge / 3][first[k].edge % 3] = EdgeClass::kJunction;
    model_.junctionCopies += count - 1;
  }

  std::vector<std::uint32_t> TakeRepeated() {
    std::sort(repeated_.begin(), repeated_.end());
    repeated_.erase(std::unique(repeated_.begin(), repeated_.end()), repeated_.end());
    return std::move(repeated_);
  }

 private:
  void Link(std::uint32_t from, std::uint32_t to) {
    model_.adjacent[from / 3][from % 3] = static_cast<std::int32_t>(to / 3);
    model_.adjacentEdge[from / 3][from % 3] = static_cast<std::int8_t>(to % 3);
    model_.classes[from / 3][from % 3] = EdgeClass::kSmooth;
  }

  // Triangles at one edge are the same when their third points are.
  void FindRepeated(const FiledEdge* first, std::size_t count) {
    thirds_.clear();
    for (std::size_t k = 0; k < count; ++k) {
      const std::uint32_t triangle = first[k].edge / 3;
      thirds_.push_back({model_.triangles[triangle][(first[k].edge + 2) % 3], triangle});
    }
    std::sort(thirds_.begin(), thirds_.end());
    for (std::size_t k = 1; k < count; ++k) {
      if (thirds_[k].far == thirds_[k - 1].far) repeated_.push_back(thirds_[k].edge);
    }
  }

  Model& model_;
  std::vector<FiledEdge> thirds_;  // third point and triangle
  std::vector<std::uint32_t> repeated_;
};

}  // namespace

std::vector<std::uint32_t> ConnectTriangles(Model& model) {
  EdgeFile file = FileEdges(model);
  Connector connector(model);
  for (std::size_t p = 0; p + 1 < file.begin.size(); ++p) {
    FiledEdge* first = file.edges.data() + file.begin[p];
    FiledEdge* const end = file.edges.data() + file.begin[p + 1];
    std::sort(first, end);
    while (first != end) {
      FiledEdge* next = first + 1;
      while (next != end && next->far == first->far) ++next;
      connector.Connect(first, static_cast<std::size_t>(next - first));
      first = next;
    }
  }
  return connector.TakeRepeated();
}

std::vector<std::uint32_t> NumberShells(const Model& model, std::uint32_t& count) {
  constexpr std::uint32_t kNew = 0xffffffffU;
  std::vector<std::uint32_t> numbers(model.triangles.size(), kNew);
  std::vector<std::uint32_t> open;
  count = 0;
  for (std::uint32_t first = 0; first < numbers.size(); ++first) {
    if (numbers[first] != kNew) continue;
    numbers[first] = count;
    open.push_back(first);
    while (!open.empty()) {
      const std::uint32_t t = open.back();
      open.pop_back();
      for (const std::int32_t u : model.adjacent[t]) {
        if (u < 0 || numbers[static_cast<std::size_t>(u)] != kNew) continue;
        numbers[static_cast<std::size_t>(u)] = count;
        open.push_back(static_cast<std::uint32_t>(u));
      }
    }
    ++count;
  }
  return numbers;
}

}  // namespace tool
