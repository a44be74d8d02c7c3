#include "outline/bare_edges.h"

#include <algorithm>

#include "core/planar_inline.h"
#include "hiddenline/driver.h"
#include "hiddenline/extents.h"

namespace zbr {
namespace {

// In larger sides of the object: triangles narrower than this are walls, whose width is rounding.
constexpr double kNoise = 1e-12;

double LargerSide(const ZBR_HL_SHELL* shells, unsigned count) {
  Box box;
  for (unsigned s = 0; s < count; ++s) {
    if (shells[s].count != 0) box.Add(Box{shells[s].min_x, shells[s].min_y, shells[s].max_x, shells[s].max_y});
  }
  return std::max({box.xmax - box.xmin, box.ymax - box.ymin, 0.0});
}

// The way a triangle's projection runs round: 1 counter-clockwise, -1 clockwise, 0 without width or not to be computed with. The
// sign alone decides: what the hidden lines take for a wall, because it is narrow for their tolerance, may be all of a slender rod.
int TurnOf(const ZBR_HL_TRI& t, double noise) {
  for (const ZBR_PT3& p : t.pt) {
    if (!IsUsable(p.x()) || !IsUsable(p.y()) || !IsUsable(p.z())) return 0;
  }
  const ZBR_PT u = t.pt[1].xy() - t.pt[0].xy();
  const ZBR_PT v = t.pt[2].xy() - t.pt[0].xy();
  const double area = Cross(u, v);
  const double longest2 = std::max({u.Length2(), v.Length2(), (v - u).Length2()});
  if (!(area * area > noise * noise * longest2)) return 0;
  return area > 0.0 ? 1 : -1;
}

bool HaveSamePlace(const ZBR_PT3& p, const ZBR_PT3& q) {
  return p.x() == q.x() && p.y() == q.y();
}

DirectedEdge SideOf(const ZBR_HL_TRI& t, int turn, int edge) {
  const ZBR_PT& p = t.pt[edge].xy();
  const ZBR_PT& q = t.pt[(edge + 1) % 3].xy();
  return turn < 0 ? DirectedEdge{q, p} : DirectedEdge{p, q};
}

// The sides of one shell that have found their opposite.
class Cancellation {
 public:
  Cancellation(const ZBR_HL_SHELL& shell, double noise) : shell_(shell), cancelled_(shell.count), turns_(shell.count) {
    for (unsigned i = 0; i < shell.count; ++i) turns_[i] = static_cast<std::int8_t>(TurnOf(shell.tris[i], noise));
  }

  int Turn(unsigned triangle) const { return turns_[triangle]; }

  bool IsCancelled(unsigned triangle, int edge) const { return (cancelled_[triangle] >> static_cast<unsigned>(edge) & 1U) != 0; }

  // Cancels the edges of the whole shell. None is bare before all have been tried: where only the later one of two triangles names
  // the other, it still cancels an edge of the earlier one.
  void Run() {
    for (unsigned i = 0; i < shell_.count; ++i) {
      if (Turn(i) == 0) continue;
      for (int k = 0; k < 3; ++k) {
        if (!IsCancelled(i, k)) Try(i, k);
      }
    }
  }

 private:
  // Cancels an edge with one of its neighbour's if that runs exactly opposite. Only the points decide, so that wrong
  // neighbours do no harm.
  void Try(unsigned triangle, int edge) {
    const ZBR_HL_TRI& t = shell_.tris[triangle];
    if (t.adj[edge] == -1) return;
    const int position = PositionOf(shell_, t.adj[edge]);
    const auto neighbour = static_cast<unsigned>(position);
    if (position < 0 || Turn(neighbour) == 0) return;
    for (int k = 0; k < 3; ++k) {
      if (IsCancelled(neighbour, k) || !AreOpposite(t, edge, shell_.tris[neighbour], k, Turn(triangle) == Turn(neighbour)))
        continue;
      cancelled_[triangle] |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(edge));
      cancelled_[neighbour] |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(k));
      return;
    }
  }

  static bool AreOpposite(const ZBR_HL_TRI& t, int i, const ZBR_HL_TRI& u, int k, bool sameWay) {
    const ZBR_PT3& from = u.pt[k];
    const ZBR_PT3& to = u.pt[(k + 1) % 3];
    return HaveSamePlace(t.pt[i], sameWay ? to : from) && HaveSamePlace(t.pt[(i + 1) % 3], sameWay ? from : to);
  }

  const ZBR_HL_SHELL& shell_;
  std::vector<std::uint8_t> cancelled_;  // a bit for each edge of a triangle
  std::vector<std::int8_t> turns_;
};

}  // namespace

BareEdges CollectBareEdges(ZBR_HL_SHELL* shells, unsigned count) {
  BareEdges bare;
  const double noise = kNoise * LargerSide(shells, count);
  for (unsigned s = 0; s < count; ++s) {
    const ZBR_HL_SHELL& shell = shells[s];
    Cancellation cancellation(shell, noise);
    cancellation.Run();
    for (unsigned i = 0; i < shell.count; ++i) {
      ZBR_HL_TRI& t = shell.tris[i];
      const int turn = cancellation.Turn(i);
      std::fill(t.profile, t.profile + 3, turn != 0 ? 0 : -1);
      if (turn == 0) continue;
      for (int k = 0; k < 3; ++k) {
        if (cancellation.IsCancelled(i, k)) continue;
        bare.edges.push_back(SideOf(t, turn, k));
        bare.sides.push_back({s, i, static_cast<std::uint32_t>(k)});
      }
    }
  }
  return bare;
}

}  // namespace zbr
