#include "hiddenline/scenes.h"

#include <zbr-drawing/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <utility>

namespace {

std::vector<std::size_t> Shuffled(std::size_t n, Random& random) {
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), 0U);
  for (std::size_t i = n; i > 1; --i) std::swap(order[i - 1], order[static_cast<std::size_t>(Below(random, static_cast<int>(i)))]);
  return order;
}

ZBR_PT3 RandomPoint(Random& random, double size) {
  const double x = Unit(random);
  const double y = Unit(random);
  return ZBR_PT3(x, y, Unit(random)) * size;
}
ZBR_PT3 LatticePoint(Random& random, int size, double step) {
  const int x = Below(random, size);
  const int y = Below(random, size);
  return ZBR_PT3(x, y, Below(random, size)) * step;
}

// A flat or bumpy sheet of cells x cells squares with the given heights over its (cells + 1)^2 points, row by row.
Mesh Sheet(int cells, const std::vector<double>& heights) {
  Mesh mesh;
  const auto side = static_cast<std::uint32_t>(cells + 1);
  for (std::uint32_t k = 0; k < side * side; ++k) {
    mesh.points.emplace_back(2.0 * (k % side) / cells, 2.0 * (k / side) / cells, heights[k]);
  }
  for (std::uint32_t y = 0; y + 1 < side; ++y) {
    for (std::uint32_t x = 0; x + 1 < side; ++x) {
      const std::uint32_t k = y * side + x;
      mesh.triangles.push_back({k, k + 1, k + side + 1});
      mesh.triangles.push_back({k, k + side + 1, k + side});
    }
  }
  return mesh;
}

Mesh Reversed(Mesh mesh) {
  for (auto& t : mesh.triangles) std::swap(t[1], t[2]);
  return mesh;
}

Mesh TurnedAtRandom(Mesh mesh, Random& random) {
  example::Turn(mesh, RandomPoint(random, 2.0) - ZBR_PT3(1, 1, 1), Unit(random));
  return Moved(std::move(mesh), RandomPoint(random, 2.0));
}

std::vector<Mesh> Boxes(Random& random) {
  std::vector<Mesh> bodies;
  for (int n = 1 + Below(random, 6); n > 0; --n) {
    const ZBR_PT3 low = LatticePoint(random, 5, 0.5);
    bodies.push_back(example::Box(low, low + LatticePoint(random, 4, 0.5) + ZBR_PT3(0.5, 0.5, 0.5)));
    if (Below(random, 6) == 0) bodies.back() = Reversed(std::move(bodies.back()));
  }
  if (Below(random, 2) == 0) return bodies;
  Mesh one;  // shared points and edges make junctions
  for (const Mesh& body : bodies) example::Append(one, body);
  return {one};
}

std::vector<Mesh> Poses(Random& random) {
  std::vector<Mesh> bodies;
  for (int n = 1 + Below(random, 4); n > 0; --n) {
    Mesh mesh;
    switch (Below(random, 4)) {
      case 0:
        mesh = example::LSolid(1.0);
        break;
      case 1:
        mesh = example::USolid(0.5 + Unit(random));
        break;
      case 2:
        mesh = example::Cylinder(3 + Below(random, 20), 0.5, 2.0);
        break;
      default:
        mesh = example::Box({0, 0, 0}, RandomPoint(random, 2.0) + ZBR_PT3(0.25, 0.25, 0.25));
    }
    bodies.push_back(TurnedAtRandom(std::move(mesh), random));
  }
  return bodies;
}

std::vector<Mesh> Prisms(Random& random) {
  std::vector<Mesh> bodies;
  for (int n = 1 + Below(random, 4); n > 0; --n) {
    Mesh mesh = example::Cylinder(3 + Below(random, 22), 0.5 * (1 + Below(random, 3)), 0.5 * (1 + Below(random, 4)));
    bodies.push_back(Moved(std::move(mesh), LatticePoint(random, 4, 0.5)));
  }
  return bodies;
}

template <bool isLattice>
std::vector<Mesh> Plates(Random& random) {
  return {example::BoxesOnPlate(1 + Below(random, 7), isLattice, random())};
}

std::vector<Mesh> Round(Random& random) {
  if (Below(random, 2) == 0) return {example::Gear(200U + static_cast<std::size_t>(Below(random, 600)))};
  const Mesh ring = example::Torus(60U + static_cast<std::size_t>(Below(random, 400)));
  if (Below(random, 2) == 0) return {ring};
  Mesh second = ring;
  example::Turn(second, {1, 0, 0}, 0.25);
  return {ring, Moved(std::move(second), {1, 0, 0})};
}

std::vector<Mesh> Sheets(Random& random) {
  std::vector<Mesh> bodies;
  for (int n = 1 + Below(random, 4); n > 0; --n) {
    const int cells = 1 + Below(random, 6);
    std::vector<double> heights(static_cast<std::size_t>((cells + 1) * (cells + 1)));
    const int kind = Below(random, 3);
    for (double& h : heights) h = kind == 0 ? 0.0 : kind == 1 ? 0.25 * Below(random, 4) : Unit(random);
    Mesh mesh = Sheet(cells, heights);
    if (Below(random, 2) == 0) mesh = Reversed(std::move(mesh));
    mesh = Below(random, 3) == 0 ? TurnedAtRandom(std::move(mesh), random) : Moved(std::move(mesh), LatticePoint(random, 4, 0.25));
    bodies.push_back(std::move(mesh));
  }
  return bodies;
}

std::vector<Mesh> Stacks(Random& random) {
  std::vector<Mesh> bodies;
  const bool shrink = Below(random, 2) == 0;
  const int kind = Below(random, 3);
  const int n = 34 + Below(random, 8);
  for (int k = 0; k < n; ++k) {
    const double side = shrink ? 2.0 - 1.5 * k / n : 2.0;
    const double thickness = kind == 0 ? 0.0625 : 0.03125;  // those of kind 0 touch
    bodies.push_back(k % 4 == 0 ? example::Box({-side / 2.0, 0, 0}, {side / 2.0, side, thickness})
                                : Moved(Sheet(1, {0.0, 0.0, 0.0, 0.0}), {-1, 0, 0}));
    bodies.back() = Moved(std::move(bodies.back()), {kind == 2 ? 0.03125 * Below(random, 3) : 0.0, 0, 0.0625 * k});
  }
  if (Below(random, 2) == 0) return bodies;
  Mesh one;
  for (const Mesh& body : bodies) example::Append(one, body);
  return {one};
}

std::vector<Mesh> Soups(Random& random) {
  std::vector<Mesh> bodies;
  const bool lattice = Below(random, 2) == 0;
  for (int n = 1 + Below(random, 3); n > 0; --n) {
    Mesh mesh;
    for (std::uint32_t k = 0; k < 60; k += 3) {
      const ZBR_PT3 at = RandomPoint(random, 2.0);
      for (int i = 0; i < 3; ++i) mesh.points.push_back(lattice ? LatticePoint(random, 4, 1.0) : at + RandomPoint(random, 1.5));
      mesh.triangles.push_back({k, k + 1, k + 2});
    }
    bodies.push_back(std::move(mesh));
  }
  return bodies;
}

// Makes some triangles needles, some of them seen end-on: one of their edges shorter than the tolerance, or upright.
void AddNeedles(Drawing& drawing, Random& random) {
  for (auto& body : drawing.bodies) {
    for (ZBR_HL_TRI& t : body) {
      const int i = Below(random, 3);
      const ZBR_PT3& p = t.pt[i];
      const int kind = Below(random, 16);
      if (kind == 0) t.pt[(i + 1) % 3] = p + ZBR_PT3(1e-6, 0, 0);
      if (kind == 1) t.pt[(i + 1) % 3].Set(p.x(), p.y(), p.z() + Unit(random) - 0.5);
      if (kind == 2) t.pt[(i + 2) % 3] = p + (t.pt[(i + 1) % 3] - p) * Unit(random) + ZBR_PT3(0, 0, Unit(random) - 0.5);
    }
  }
}

// Some edges are not to be drawn, of shared ones perhaps one copy.
void DrawLess(Drawing& drawing, Random& random) {
  for (auto& body : drawing.bodies) {
    for (ZBR_HL_TRI& t : body) {
      const int i = Below(random, 12);
      if (i < 3) t.dispj[i] = !t.dispj[i];
    }
  }
}

void DisguiseBody(std::vector<ZBR_HL_TRI>& body, Random& random) {
  const std::size_t n = body.size();
  const std::vector<std::size_t> source = Shuffled(n, random);
  const std::vector<std::size_t> numbers = Shuffled(n, random);
  const bool numbered = Below(random, 3) != 0;
  const bool edgesKnown = Below(random, 2) == 0;
  std::vector<int> newIdx(n);
  std::vector<int> start(n);
  for (std::size_t k = 0; k < n; ++k) {
    newIdx[source[k]] = numbered ? 5 + 3 * static_cast<int>(numbers[k]) : static_cast<int>(k);
    start[k] = Below(random, 3);
  }
  std::vector<ZBR_HL_TRI> out(n);
  for (std::size_t k = 0; k < n; ++k) {
    const ZBR_HL_TRI& from = body[source[k]];
    ZBR_HL_TRI& to = out[k];
    to.idx = numbered ? newIdx[source[k]] : -1;
    for (int i = 0; i < 3; ++i) {
      const int old = (i + start[source[k]]) % 3;
      to.pt[i] = from.pt[old];
      to.dispj[i] = from.dispj[old];
      if (from.adj[old] < 0) continue;
      const auto neighbour = static_cast<std::size_t>(from.adj[old]);
      to.adj[i] = newIdx[neighbour];
      if (edgesKnown) to.adj_edge[i] = (from.adj_edge[old] - start[neighbour] + 3) % 3;
    }
  }
  body = std::move(out);
}

}  // namespace

std::vector<ZBR_HL_SHELL> Drawing::Shells() {
  std::vector<ZBR_HL_SHELL> shells;
  for (auto& body : bodies) shells.emplace_back(body.data(), static_cast<unsigned>(body.size()));
  return shells;
}

Drawing DrawTriangles(const std::vector<Corners>& triangles) {
  Drawing drawing;
  auto& body = drawing.bodies.emplace_back(triangles.size());
  for (std::size_t k = 0; k < body.size(); ++k) {
    std::copy(triangles[k].begin(), triangles[k].end(), std::begin(body[k].pt));
    std::fill(std::begin(body[k].dispj), std::end(body[k].dispj), true);
  }
  return drawing;
}

Drawing Draw(const std::vector<Mesh>& bodies, const View& view) {
  Drawing drawing;
  for (const Mesh& mesh : bodies) {
    const zbr::drawing::Model model = zbr::drawing::MakeModel(mesh, 30.0);
    zbr::drawing::Scene scene = zbr::drawing::MakeScene(model, view);
    for (std::size_t s = 0; s < model.ShellCount(); ++s) {
      auto& body = drawing.bodies.emplace_back(model.shellBegin[s + 1] - model.shellBegin[s]);
      for (std::size_t k = 0; k < body.size(); ++k) {
        body[k] = std::move(scene.triangles[model.shellBegin[s] + k]);
        for (ZBR_PT3& p : body[k].pt) p = scene.ToDrawing(p) * 16.0;
      }
    }
  }
  return drawing;
}

void Scale(Drawing& drawing, const ZBR_PT3& factors) {
  for (auto& body : drawing.bodies) {
    for (ZBR_HL_TRI& t : body) {
      for (ZBR_PT3& p : t.pt) p.Set(p.x() * factors.x(), p.y() * factors.y(), p.z() * factors.z());
    }
  }
}

void Disguise(Drawing& drawing, Random& random) {
  for (auto& body : drawing.bodies) DisguiseBody(body, random);
  for (std::size_t i = drawing.bodies.size(); i > 1; --i) {
    drawing.bodies[i - 1].swap(drawing.bodies[static_cast<std::size_t>(Below(random, static_cast<int>(i)))]);
  }
}

void ForgetNeighbours(Drawing& drawing) {
  for (auto& body : drawing.bodies) {
    for (ZBR_HL_TRI& t : body) {
      std::fill(std::begin(t.adj), std::end(t.adj), -1);
      std::fill(std::begin(t.adj_edge), std::end(t.adj_edge), -1);
    }
  }
}

Mesh Moved(Mesh mesh, const ZBR_PT3& by) {
  example::Move(mesh, by);
  return mesh;
}

View RandomView(Random& random) {
  const int n = Below(random, 14);
  const std::vector<std::string>& names = zbr::drawing::ViewNames();
  if (n < 8 && static_cast<std::size_t>(n) < names.size()) return *zbr::drawing::NamedView(names[static_cast<std::size_t>(n)]);
  if (n == 12) return zbr::drawing::LookAlong({1, 1, 0}, {0, 0, 1});
  if (n == 13) return zbr::drawing::LookAlong({3, 4, 0}, {0.1, 0.2, 1});
  return zbr::drawing::LookAlong(RandomPoint(random, 2.0) - ZBR_PT3(1, 1, 1.001), RandomPoint(random, 2.0) - ZBR_PT3(1.002, 1, 1));
}

void Classify(ZBR_HL_SHELL& shell) {
  shell.HiddenLineSelf();  // makes the tree as well
  shell.CheckTriangle();
}

void WalkTrees(std::vector<ZBR_HL_SHELL>& shells) {
  for (ZBR_HL_SHELL& shell : shells) {
    Classify(shell);
    ZBR_HiddenLine::HiddenLine_ShellByChildQuad(shell, shell.root, true);
    for (unsigned k = 0; k < shell.count; ++k) {  // the tree has no invalid ones, of which one edge may be drawn
      if (shell.tris[k].IsTriInvalid()) ZBR_HiddenLine::HiddenLine_TriByShell(shell.tris[k], shell);
    }
  }
  for (ZBR_HL_SHELL& a : shells) {
    for (const ZBR_HL_SHELL& b : shells) {
      for (unsigned k = 0; &a != &b && k < a.count; ++k) {
        if (a.tris[k].any_edge_visible) ZBR_HiddenLine::HiddenLine_TriByShell(a.tris[k], b);
      }
    }
  }
}

std::vector<Ring> FacesOf(const std::vector<ZBR_HL_SHELL>& shells) {
  std::vector<Ring> faces;
  for (const ZBR_HL_SHELL& shell : shells) {
    for (unsigned k = 0; k < shell.count; ++k) {
      const ZBR_HL_TRI& t = shell.tris[k];
      const ZBR_PT p[] = {t.pt[0].xy(), t.pt[1].xy(), t.pt[2].xy()};
      const double turn = (p[1] - p[0]).OuterProduct(p[2] - p[0]);
      if (std::isfinite(turn)) faces.push_back(turn < 0.0 ? Ring{p[0], p[2], p[1]} : Ring{p[0], p[1], p[2]});
    }
  }
  return faces;
}

std::string StateText(const std::vector<ZBR_HL_SHELL>& shells) {
  std::string text;
  char buffer[160];
  for (const ZBR_HL_SHELL& shell : shells) {
    for (unsigned k = 0; k < 3 * shell.count; ++k) {
      const ZBR_HL_TRI& t = shell.tris[k / 3];
      for (const ZBR_HL_INTERVAL& v : t.intvl_v[k % 3]) {
        std::snprintf(buffer, sizeof buffer, "[%a (%a %a %a) %a (%a %a %a)] ", v.s.t, v.s.pt.x(), v.s.pt.y(), v.s.pt.z(), v.e.t,
                      v.e.pt.x(), v.e.pt.y(), v.e.pt.z());
        text += buffer;
      }
      text += t.any_edge_visible ? ";" : ".";
    }
  }
  return text;
}

const std::vector<SceneFamily>& SceneFamilies() {
  static const std::vector<SceneFamily> families = {
      {"boxes", Boxes}, {"poses", Poses},   {"prisms", Prisms}, {"plates", Plates<false>}, {"lattices", Plates<true>},
      {"round", Round}, {"sheets", Sheets}, {"stacks", Stacks}, {"soups", Soups},
  };
  return families;
}

Drawing DrawHard(const SceneFamily& family, std::uint64_t seed) {
  Random random(seed);
  const std::vector<Mesh> bodies = family.bodies(random);
  Drawing drawing = Draw(bodies, RandomView(random));
  Disguise(drawing, random);
  if (Below(random, 4) == 0) {
    ForgetNeighbours(drawing);
    AddNeedles(drawing, random);
  }
  if (Below(random, 3) == 0) DrawLess(drawing, random);
  if (Below(random, 6) == 0) Scale(drawing, ZBR_PT3(1e3, 1e3, 1e3));
  return drawing;
}
