// Open CASCADE's polygonal removal of hidden lines, given its input as it likes it best: one face per smooth patch, so that it has
// few faces to handle, and the lines to be drawn as edges of these faces.
//
// Patches end at all edges that are drawn, silhouettes of the view among them, and where walls seen almost edge-on change sides, so
// that each is seen from one side only. As its surface a patch gets a plane across the view, whose normal tells no more than that
// side; otherwise the algorithm would draw silhouettes of its own inside triangles. An edge of three and more triangles is handed
// over once for each of them, because the algorithm leaves out edges that so many faces share.

#include <BRep_Builder.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_Line.hxx>
#include <Geom_Plane.hxx>
#include <HLRAlgo_EdgeStatus.hxx>
#include <HLRAlgo_Projector.hxx>
#include <HLRBRep_PolyAlgo.hxx>
#include <Poly_PolygonOnTriangulation.hxx>
#include <Poly_Triangulation.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Ax2.hxx>

#include <array>
#include <cmath>

#include "hidden_remover.h"

namespace bench {
namespace {

// Length below which a face or edge is a point; the scene is 100 across.
constexpr double kShapeTolerance = 1e-7;

// Builds the faces of one scene.
class ShapeBuilder {
 public:
  ShapeBuilder(const zbr::drawing::Model& model, const zbr::drawing::Scene& scene)
      : model_(model), scene_(scene), taken_(model.TriangleCount()), edges_(model.TriangleCount()) {}

  TopoDS_Compound Build();
  const TopTools_MapOfShape& junctions() const { return junctions_; }

 private:
  bool IsDrawn(std::size_t t, std::size_t i) const { return scene_.classes[t][i] != zbr::drawing::EdgeClass::kSmooth; }
  bool IsAway(std::size_t t) const;
  // The triangle across edge i; -1 at borders and junctions.
  std::ptrdiff_t Across(std::size_t t, std::size_t i) const;
  // The number of vertex i in the shell.
  std::size_t Vertex(std::size_t t, std::size_t i) const;
  void CollectPatch(std::size_t first);
  Handle(Poly_Triangulation) Triangulate();
  TopoDS_Face MakeFace(const Handle(Poly_Triangulation) & triangulation) const;
  void AddEdges(const Handle(Poly_Triangulation) & triangulation, TopoDS_Face& face);
  TopoDS_Edge& EdgeAt(std::size_t t, std::size_t i);

  const zbr::drawing::Model& model_;
  const zbr::drawing::Scene& scene_;
  std::vector<bool> taken_;         // of each triangle: it is in a patch
  std::vector<std::size_t> patch_;  // the triangles of the patch being built
  std::size_t shell_ = 0;           // of the patch
  std::vector<int> node_;           // of each point of the shell that is in the patch:
                                    // its number there, from 1
  std::vector<std::array<TopoDS_Edge, 3>> edges_;
  TopTools_MapOfShape junctions_;
  BRep_Builder builder_;

  // Surfaces and curves that it wants to see; polygons tell where things are.
  Handle(Geom_Surface) towards_ = new Geom_Plane(gp_Pnt(0.0, 0.0, 0.0), gp_Dir(0.0, 0.0, 1.0));
  Handle(Geom_Surface) away_ = new Geom_Plane(gp_Pnt(0.0, 0.0, 0.0), gp_Dir(0.0, 0.0, -1.0));
  Handle(Geom_Curve) line_ = new Geom_Line(gp_Pnt(0.0, 0.0, 0.0), gp_Dir(1.0, 0.0, 0.0));
  Handle(Geom2d_Curve) planeLine_ = new Geom2d_Line(gp_Pnt2d(0.0, 0.0), gp_Dir2d(1.0, 0.0));
};

TopoDS_Compound ShapeBuilder::Build() {
  TopoDS_Compound compound;
  builder_.MakeCompound(compound);
  for (std::size_t s = 0; s < model_.ShellCount(); ++s) {
    TopoDS_Shell shell;
    builder_.MakeShell(shell);
    shell_ = s;
    node_.resize(static_cast<std::size_t>(model_.Shell(s).GetVertexCnt()));
    for (std::size_t t = model_.shellBegin[s]; t < model_.shellBegin[s + 1]; ++t) {
      if (taken_[t]) continue;
      CollectPatch(t);
      const Handle(Poly_Triangulation) triangulation = Triangulate();
      TopoDS_Face face = MakeFace(triangulation);
      AddEdges(triangulation, face);
      builder_.Add(shell, face);
    }
    // Of a closed shell it leaves the far side out of the search.
    shell.Closed(model_.facing[s] == zbr::drawing::Facing::kOutward);
    builder_.Add(compound, shell);
  }
  return compound;
}

bool ShapeBuilder::IsAway(std::size_t t) const {
  const ZBR_PT3* pt = scene_.triangles[t].pt;
  return (pt[1] - pt[0]).OuterProductXY(pt[2] - pt[0]) < 0.0;
}

std::ptrdiff_t ShapeBuilder::Across(std::size_t t, std::size_t i) const {
  const int next = scene_.triangles[t].adj[i];
  return next < 0 ? -1 : next + static_cast<std::ptrdiff_t>(model_.shellBegin[shell_]);
}

std::size_t ShapeBuilder::Vertex(std::size_t t, std::size_t i) const {
  const ZBR_ZBREPT& triangle = *model_.Shell(shell_).GetTriangle(static_cast<int>(t - model_.shellBegin[shell_]));
  return static_cast<std::size_t>(zbr::drawing::VertexOf(triangle, i % 3).GetIndex());
}

void ShapeBuilder::CollectPatch(std::size_t first) {
  patch_.assign(1, first);
  taken_[first] = true;
  for (std::size_t k = 0; k < patch_.size(); ++k) {
    const std::size_t t = patch_[k];
    for (std::size_t i = 0; i < 3; ++i) {
      if (IsDrawn(t, i) || Across(t, i) < 0) continue;
      const auto next = static_cast<std::size_t>(Across(t, i));
      if (taken_[next] || IsAway(next) != IsAway(first)) continue;
      taken_[next] = true;
      patch_.push_back(next);
    }
  }
}

Handle(Poly_Triangulation) ShapeBuilder::Triangulate() {
  for (const std::size_t t : patch_) {
    for (std::size_t i = 0; i < 3; ++i) node_[Vertex(t, i)] = 0;
  }
  std::vector<gp_Pnt> points;
  for (const std::size_t t : patch_) {
    for (std::size_t i = 0; i < 3; ++i) {
      int& node = node_[Vertex(t, i)];
      if (node != 0) continue;
      const ZBR_PT3& p = scene_.triangles[t].pt[i];
      points.emplace_back(p.x(), p.y(), p.z());
      node = static_cast<int>(points.size());
    }
  }
  const int count = static_cast<int>(points.size());
  Handle(Poly_Triangulation) result = new Poly_Triangulation(count, static_cast<int>(patch_.size()), true);
  for (int k = 1; k <= count; ++k) {
    const gp_Pnt& p = points[static_cast<std::size_t>(k) - 1];
    result->SetNode(k, p);
    result->SetUVNode(k, gp_Pnt2d(p.X(), p.Y()));
  }
  int k = 0;
  for (const std::size_t t : patch_) {
    result->SetTriangle(++k, Poly_Triangle(node_[Vertex(t, 0)], node_[Vertex(t, 1)], node_[Vertex(t, 2)]));
  }
  return result;
}

TopoDS_Face ShapeBuilder::MakeFace(const Handle(Poly_Triangulation) & triangulation) const {
  TopoDS_Face face;
  builder_.MakeFace(face, IsAway(patch_.front()) ? away_ : towards_, kShapeTolerance);
  builder_.UpdateFace(face, triangulation);
  return face;
}

// The edge object that the triangles on both sides share.
TopoDS_Edge& ShapeBuilder::EdgeAt(std::size_t t, std::size_t i) {
  if (Across(t, i) >= 0) {
    const auto other = static_cast<std::size_t>(Across(t, i));
    if (other < t) return edges_[other][static_cast<std::size_t>(scene_.triangles[t].adj_edge[i])];
  }
  return edges_[t][i];
}

void ShapeBuilder::AddEdges(const Handle(Poly_Triangulation) & triangulation, TopoDS_Face& face) {
  TopoDS_Wire wire;
  builder_.MakeWire(wire);
  for (const std::size_t t : patch_) {
    for (std::size_t i = 0; i < 3; ++i) {
      if (!IsDrawn(t, i)) continue;
      TopoDS_Edge& edge = EdgeAt(t, i);
      if (edge.IsNull()) builder_.MakeEdge(edge, line_, kShapeTolerance);
      builder_.UpdateEdge(edge, planeLine_, face, kShapeTolerance);
      TColStd_Array1OfInteger nodes(1, 2);
      nodes(1) = node_[Vertex(t, i)];
      nodes(2) = node_[Vertex(t, i + 1)];
      TColStd_Array1OfReal parameters(1, 2);
      parameters(1) = 0.0;
      parameters(2) = 1.0;
      builder_.UpdateEdge(edge, new Poly_PolygonOnTriangulation(nodes, parameters), triangulation);
      builder_.Add(wire, edge);
      if (scene_.classes[t][i] == zbr::drawing::EdgeClass::kJunction) junctions_.Add(edge);
    }
  }
  builder_.Add(face, wire);
}

class OpenCascadeRemover final : public HiddenRemover {
 public:
  void Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) override;
  void Run() override;
  DrawnLines Describe() const override { return lines_; }

 private:
  TopoDS_Compound shape_;
  TopTools_MapOfShape junctions_;
  Handle(HLRBRep_PolyAlgo) algorithm_;
  DrawnLines lines_;
};

void OpenCascadeRemover::Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) {
  algorithm_.Nullify();
  shape_.Nullify();
  const zbr::drawing::Scene scene = zbr::drawing::MakeScene(model, view);
  ShapeBuilder builder(model, scene);
  shape_ = builder.Build();
  junctions_ = builder.junctions();
}

// The hiding itself is done while the lines are asked for, one after the other.
void OpenCascadeRemover::Run() {
  lines_ = DrawnLines();
  algorithm_ = new HLRBRep_PolyAlgo();
  algorithm_->Projector(HLRAlgo_Projector(gp_Ax2(gp_Pnt(0.0, 0.0, 0.0), gp_Dir(0.0, 0.0, 1.0), gp_Dir(1.0, 0.0, 0.0))));
  algorithm_->Load(shape_);
  algorithm_->Update();
  for (algorithm_->InitHide(); algorithm_->MoreHide(); algorithm_->NextHide()) {
    HLRAlgo_EdgeStatus status;
    TopoDS_Shape source;
    Standard_Boolean ignored[4] = {};
    const HLRAlgo_BiPoint::PointsT& ends = algorithm_->Hide(status, source, ignored[0], ignored[1], ignored[2], ignored[3]);
    double visible = 0.0;
    for (int k = 1; k <= status.NbVisiblePart(); ++k) {
      Standard_Real start = 0.0;
      Standard_Real end = 0.0;
      Standard_ShortReal startTolerance = 0.0F;
      Standard_ShortReal endTolerance = 0.0F;
      status.VisiblePart(k, start, startTolerance, end, endTolerance);
      visible += end - start;
      ++lines_.pieces;
    }
    visible *= (ends.PntP22D() - ends.PntP12D()).Modulus();
    lines_.visible += visible;
    if (!junctions_.IsEmpty() && junctions_.Contains(source)) lines_.visibleJunctions += visible;
  }
}

}  // namespace

std::unique_ptr<HiddenRemover> MakeOpenCascadeRemover() {
  return std::make_unique<OpenCascadeRemover>();
}

}  // namespace bench
