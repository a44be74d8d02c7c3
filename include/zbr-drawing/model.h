// A mesh prepared for drawing: what depends on the mesh alone and serves all its views.
//
//   const Model model = MakeModel(mesh, 30.0);              // creases from 30 degrees on
//   const auto views = DrawViews(model, {{"iso", *NamedView("iso")}}, {});  // views.h
//   const Survey survey = MakeSurvey(model);                // survey.h: is it closed, does it face outwards?
//
// Repeated points are made one, triangles are sorted into shells and put into the library's mesh records, whose edges make them
// neighbours, and each edge gets the class that it has from every side. The cost is linear. A model is only read by what is done
// with it, so several threads may share one.
#pragma once

#include <zbr-drawing/mesh.h>
#include <zbr/mesh.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zbr::drawing {

// Why a line is drawn, or that it is not. The first reason that applies to an edge counts, in the order junction, border, crease,
// silhouette, tangent.
enum class EdgeClass : std::uint8_t {
  kSmooth,        // not drawn
  kBorder,        // edge of one triangle
  kCrease,        // the surface bends here by more than the given angle
  kJunction,      // edge of three and more triangles
  kSilhouette,    // smooth, but seen from here the surface turns away; in scenes only
  kTangent,       // smooth, but a flat or otherwise bent face ends here, as at the borders of a fillet
  kIntersection,  // no edge: two surfaces pass through each other here; in scenes only
  // No lines of the model, but of drawings:
  kCut,           // outline of what the plane of a section lays open
  kHatching,      // on it
  kCuttingPlane,  // where another view's section is
  kCentre,        // centre lines of circles, and axes
};

// How the triangles of a shell are oriented.
enum class Facing : std::uint8_t {
  kOutward,  // closed, with the vertices counter-clockwise seen from outside
  kInward,   // closed, the other way round
  kUnknown,  // with a border, or not oriented alike: no side is the outer one
};

// What the records do not tell of an edge.
struct EdgeNote {
  EdgeNote() : isJunction(false), isSameWay(false), isTangent(false) {}

  // NOLINTBEGIN(modernize-use-default-member-init): C++17 has none for bit fields
  bool isJunction : 1;  // three and more triangles of the mesh meet here, be they in this shell or others
  bool isSameWay : 1;   // both triangles run along it the same way: then one of them shows its other side
  bool isTangent : 1;   // smooth, but the way the surface bends changes here
  // NOLINTEND(modernize-use-default-member-init)
};

struct KeptConnectivity;

// Triangles are numbered through all shells: triangle t of shell s has the number shellBegin[s] + t. Edges are likewise.
struct Model {
  // A shell is what hangs together by edges other than junctions, or what the mesh says is one. Shells are in the order of their
  // first triangles in the mesh; so are the triangles of a shell, whose vertices are in the order in which triangles need them. An
  // edge shows if it is drawn in every view.
  ZBR_ZBREPB body;
  std::vector<std::uint32_t> shellBegin{0};  // of triangles; one more than shells
  std::vector<std::uint32_t> edgeBegin{0};
  std::vector<std::uint32_t> objectBegin{0};  // of shells; one more than objects
  std::vector<std::uint32_t> bodyBegin{0};    // of shells; one more than bodies. Points of different bodies are never joined
  std::vector<Facing> facing;                 // of shells

  std::vector<ZBR_PT3> normals;       // of length 1, or 0; of a triangle without area, that of the neighbour at its longest edge
  std::vector<std::uint32_t> source;  // place of a triangle in the mesh
  std::vector<EdgeNote> notes;        // of edges

  ZBR_PT3 low, high;      // box of the triangles
  double rounding = 0.0;  // of the mesh's coordinates
  // Many creases of at most 30 degrees end nowhere, as on scans: only creases that are followed for some way are shown, and
  // silhouettes run across them.
  bool isRough = false;

  // Triangles of the mesh that were left out: with two vertices at the same place; repeating another one.
  std::size_t collapsed = 0;
  std::size_t repeated = 0;
  std::size_t flat = 0;        // triangles without area that were kept
  std::size_t pointCount = 0;  // of distinct places
  std::size_t junctions = 0;
  std::size_t junctionCopies = 0;  // uses of junctions but for one of each

  // What was made of all triangles when tangent edges were looked for, until a drawing takes it. It goes with `body` as MakeModel
  // left it: whoever changes that before the first drawing clears it.
  std::shared_ptr<KeptConnectivity> connectivity;

  // The records know their shell by its address: a model can be moved, but not copied.
  Model() = default;
  Model(const Model&) = delete;
  Model(Model&&) = default;
  Model& operator=(const Model&) = delete;
  Model& operator=(Model&&) = default;

  std::size_t ShellCount() const { return facing.size(); }
  std::size_t ObjectCount() const { return objectBegin.size() - 1; }
  std::size_t BodyCount() const { return bodyBegin.size() - 1; }
  std::size_t TriangleCount() const { return source.size(); }
  const ZBR_ZBREPS& Shell(std::size_t s) const { return *body.GetShell(static_cast<int>(s)); }
  ZBR_PT3 Centre() const { return (low + high) * 0.5; }
  double Diagonal() const { return low.Distance(high); }

  EdgeNote Note(std::size_t shell, const ZBR_ZBREPE& edge) const {
    return notes[edgeBegin[shell] + static_cast<std::size_t>(edge.GetIndex())];
  }
  // The triangle across an edge; null at borders and junctions.
  const ZBR_ZBREPT* Across(std::size_t shell, const ZBR_ZBREPT& triangle, ZBR_ZBREPE& edge) const {
    return Note(shell, edge).isJunction ? nullptr : triangle.GetAdjTriangle(&edge);
  }
  std::uint32_t ShellOf(std::uint32_t triangle) const;
  // As seen from every side.
  EdgeClass Class(std::size_t shell, const ZBR_ZBREPE& edge) const;
};

// Vertex i of a triangle, and the edge from there to vertex (i + 1) % 3.
inline const ZBR_ZBREPV& VertexOf(const ZBR_ZBREPT& t, std::size_t i) {
  return i == 0 ? *t.GetVertex0() : i == 1 ? *t.GetVertex1() : *t.GetVertex2();
}
inline ZBR_ZBREPE& EdgeOf(const ZBR_ZBREPT& t, std::size_t i) {
  return i == 0 ? *t.GetEdge0() : i == 1 ? *t.GetEdge1() : *t.GetEdge2();
}

// An edge is a crease when the angle between the normals exceeds creaseDegrees by more than rounding explains. Points closer than
// weld times the diagonal become one, where 0 joins equal ones only. The same model with any number of threads.
Model MakeModel(const Mesh& mesh, double creaseDegrees, double weld = 0.0, unsigned threads = 1);

}  // namespace zbr::drawing
