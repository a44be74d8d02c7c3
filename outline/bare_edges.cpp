#include "outline/bare_edges.h"

#include <algorithm>

#include "hiddenline/driver.h"
#include "hiddenline/occlusion.h"

namespace zbr {
namespace {

bool IsGeneral(const ZBR_HL_TRI& t) {
  return t.tri_state == kGeneral;
}

bool HaveSamePlace(const ZBR_PT3& p, const ZBR_PT3& q) {
  return p.x() == q.x() && p.y() == q.y();
}

DirectedEdge SideOf(const ZBR_HL_TRI& t, int edge) {
  const ZBR_PT& p = t.pt[edge].xy();
  const ZBR_PT& q = t.pt[(edge + 1) % 3].xy();
  return t.clockwise ? DirectedEdge{q, p} : DirectedEdge{p, q};
}

// The sides of one shell that have found their opposite.
class Cancellation {
 public:
  explicit Cancellation(const ZBR_HL_SHELL& shell) : shell_(shell), cancelled_(shell.count) {}

  bool IsCancelled(unsigned triangle, int edge) const { return (cancelled_[triangle] >> static_cast<unsigned>(edge) & 1U) != 0; }

  // Cancels an edge with one of its neighbour's if that runs exactly opposite. Only the points decide, so that wrong
  // neighbours do no harm.
  void Try(unsigned triangle, int edge) {
    const ZBR_HL_TRI& t = shell_.tris[triangle];
    if (t.adj[edge] == -1) return;
    const int position = PositionOf(shell_, t.adj[edge]);
    if (position < 0 || !IsGeneral(shell_.tris[position])) return;
    const auto neighbour = static_cast<unsigned>(position);
    for (int k = 0; k < 3; ++k) {
      if (IsCancelled(neighbour, k) || !AreOpposite(t, edge, shell_.tris[neighbour], k)) continue;
      cancelled_[triangle] |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(edge));
      cancelled_[neighbour] |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(k));
      return;
    }
  }

 private:
  static bool AreOpposite(const ZBR_HL_TRI& t, int i, const ZBR_HL_TRI& u, int k) {
    const bool sameWay = t.clockwise == u.clockwise;
    const ZBR_PT3& from = u.pt[k];
    const ZBR_PT3& to = u.pt[(k + 1) % 3];
    return HaveSamePlace(t.pt[i], sameWay ? to : from) && HaveSamePlace(t.pt[(i + 1) % 3], sameWay ? from : to);
  }

  const ZBR_HL_SHELL& shell_;
  std::vector<std::uint8_t> cancelled_;  // a bit for each edge of a triangle
};

}  // namespace

BareEdges CollectBareEdges(ZBR_HL_SHELL* shells, unsigned count) {
  BareEdges bare;
  for (unsigned s = 0; s < count; ++s) {
    const ZBR_HL_SHELL& shell = shells[s];
    Cancellation cancellation(shell);
    for (unsigned i = 0; i < shell.count; ++i) {
      ZBR_HL_TRI& t = shell.tris[i];
      std::fill(t.profile, t.profile + 3, IsGeneral(t) ? 0 : -1);
      if (!IsGeneral(t)) continue;
      for (int k = 0; k < 3; ++k) {
        if (!cancellation.IsCancelled(i, k)) cancellation.Try(i, k);
        if (cancellation.IsCancelled(i, k)) continue;
        bare.edges.push_back(SideOf(t, k));
        bare.sides.push_back({s, i, static_cast<std::uint32_t>(k)});
      }
    }
  }
  return bare;
}

}  // namespace zbr
