#include "fuzz/scenes.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

ZBR_PT3 DecodePoint(Bytes& bytes, Points points) {
  if (points == Points::kLattice) return bytes.Lattice(7, 5);
  const ZBR_PT xy = bytes.Point(points == Points::kWild);
  return ZBR_PT3(xy.x(), xy.y(), bytes.Plain());
}

// Triangle and edge, for each pair of vertices.
using Uses = std::map<std::pair<int, int>, std::vector<std::pair<int, int>>>;

void MakeNeighbours(std::vector<ZBR_HL_TRI>& body, const Uses& uses, bool edgesKnown) {
  for (const auto& [edge, users] : uses) {
    if (users.size() != 2 || users[0].first == users[1].first) continue;
    for (std::size_t k = 0; k < 2; ++k) {
      ZBR_HL_TRI& t = body[static_cast<std::size_t>(users[k].first)];
      t.adj[users[k].second] = users[1 - k].first;
      if (edgesKnown) t.adj_edge[users[k].second] = users[1 - k].second;
    }
  }
}

std::vector<ZBR_HL_TRI> DecodeBody(Bytes& bytes, Points points) {
  std::vector<ZBR_PT3> pool(static_cast<std::size_t>(3 + bytes.Below(7)));
  for (ZBR_PT3& p : pool) p = DecodePoint(bytes, points);
  std::vector<ZBR_HL_TRI> body(static_cast<std::size_t>(1 + bytes.Below(8)));
  Uses uses;
  const int manner = bytes.Below(4);
  for (std::size_t k = 0; k < body.size(); ++k) {
    int corner[3];
    for (int& c : corner) c = bytes.Below(static_cast<int>(pool.size()));
    const int undrawn = std::max(0, bytes.Below(16) - 8);
    for (int i = 0; i < 3; ++i) {
      body[k].pt[i] = pool[static_cast<std::size_t>(corner[i])];
      body[k].dispj[i] = (undrawn >> i & 1) == 0;
      uses[std::minmax(corner[i], corner[(i + 1) % 3])].emplace_back(static_cast<int>(k), i);
    }
  }
  if (manner > 0) MakeNeighbours(body, uses, manner == 1);
  return body;
}

}  // namespace

Drawing DecodeScene(Bytes& bytes, Points points) {
  Drawing drawing;
  for (int n = 1 + bytes.Below(3); n > 0; --n) drawing.bodies.push_back(DecodeBody(bytes, points));
  return drawing;
}
