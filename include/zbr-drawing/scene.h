// A model as seen in one view, in the form in which the library removes hidden lines: for programs that work with the library's own
// records. Others take DrawViews (views.h).
//
//   Scene scene = MakeScene(model, *NamedView("front"));
//   const ZBR_TmpEps tolerance(kSceneTolerance);
//   ZBR_HiddenLine::HiddenLine_Shells(scene.shells.data(), scene.ShellCount());
//   const ZBR_PT p = scene.ToDrawing(scene.triangles[0].intvl_v[0].front().s.pt.xy());
//
// One thread at a time for a scene; different scenes of one model have nothing to do with each other.
#pragma once

#include <zbr-drawing/intersections.h>
#include <zbr-drawing/model.h>
#include <zbr-drawing/scene_triangles.h>
#include <zbr-drawing/view.h>
#include <zbr/hidden_line.h>

#include <array>
#include <cstddef>
#include <vector>

namespace zbr::drawing {

// Diagonal of the model's box in a scene. The removal compares with fixed lengths, which suit coordinates of this size.
inline constexpr double kSceneDiagonal = 100.0;

// Tolerance with which a scene is to be processed: set it (ZBR_TmpEps) around the removal. Triangles whose normals are that little
// off the drawing plane are walls seen edge-on.
inline constexpr double kSceneTolerance = 1e-5;

// An edge of the mesh: edge i of a triangle runs from its vertex i to its vertex (i + 1) % 3. Where a line runs across a triangle,
// as intersection lines do, `edge` is kAcross.
struct EdgeRef {
  static constexpr std::uint8_t kAcross = 3;

  std::uint32_t triangle = 0;  // place in the mesh as read
  std::uint8_t edge = 0;

  bool operator==(const EdgeRef& o) const { return triangle == o.triangle && edge == o.edge; }
};

// Where a triangle of a scene that was cut is from: the triangle of the model that it is a part of, and the edges of that one that
// its edges are parts of, kAcross for others. What covers a cut is part of none.
struct ScenePart {
  static constexpr std::uint32_t kNone = 0xffffffffU;

  std::uint32_t triangle = kNone;
  std::array<std::uint8_t, 3> edges{EdgeRef::kAcross, EdgeRef::kAcross, EdgeRef::kAcross};
};

// Triangles and classes are parallel to those of the model, shells to its shells. Behind them come the intersection lines, if there
// are any, as a shell of triangles without width, of which edge 0 is the line and nothing hides anything. The shells refer to the
// triangles: a scene can be moved, but not copied.
struct Scene {
  SceneTriangles triangles;
  std::vector<ZBR_HL_SHELL> shells;
  std::vector<std::array<EdgeClass, 3>> classes;       // silhouettes included; all but smooth edges are drawn
  std::vector<std::array<std::uint32_t, 2>> crossing;  // of intersection lines: the triangles of the model that meet there
  std::vector<ScenePart> parts;  // of triangles, where the scene is cut; empty: triangles are those of the model
  std::vector<ZBR_HL_OUTLINE_SOURCES>
      outlines;              // by object, where FindOutlines has been: corners alone, `shell` from its first one
  std::size_t drawable = 0;  // edges and lines to be drawn, each counted once

  View view;
  double scale = 1.0;  // scene units per model unit
  // Bodies that are this close stand face to face, in scene units; 0: as close as exact coordinates are. From the model's rounding.
  double contact = 0.0;
  ZBR_PT3 middle;  // of the model's box
  ZBR_PT3 offset;  // of the scene's origin, in the view's axes: the middle of the model's box; 0 in perspective

  Scene() = default;
  Scene(const Scene&) = delete;
  Scene(Scene&&) = default;
  Scene& operator=(const Scene&) = delete;
  Scene& operator=(Scene&&) = default;

  std::size_t TriangleCount() const { return triangles.size() - crossing.size(); }  // without intersection lines
  unsigned ShellCount() const { return static_cast<unsigned>(shells.size()); }

  // In perspective the third coordinate is such that planes stay planes: it grows with the inverse of the distance from the eye.
  ZBR_PT3 FromModel(const ZBR_PT3& p) const { return view.perspective ? FromEye(p) : view.In(p - middle) * scale; }
  ZBR_PT3 FromEye(const ZBR_PT3& p) const;

  // From the scene to the drawing in model units, whose origin is that of the model, and back.
  ZBR_PT3 ToDrawing(const ZBR_PT3& p) const { return p * (1.0 / scale) + offset; }
  ZBR_PT3 FromDrawing(const ZBR_PT3& p) const { return (p - offset) * scale; }
  ZBR_PT ToDrawing(const ZBR_PT& p) const { return ZBR_PT(p.x() / scale + offset.x(), p.y() / scale + offset.y()); }
};

// The second form fills a scene of any earlier contents, whose storage it keeps. Linear; the same scene with any number of threads.
Scene MakeScene(const Model& model, const View& view, const std::vector<IntersectionLine>& lines = {}, bool tangents = false,
                unsigned threads = 1);
void MakeScene(const Model& model, const View& view, Scene& scene, const std::vector<IntersectionLine>& lines = {},
               bool tangents = false, unsigned threads = 1);

}  // namespace zbr::drawing
