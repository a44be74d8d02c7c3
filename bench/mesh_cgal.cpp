// The half-edge mesh of CGAL.

#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>

#include <stdexcept>

#include "mesh_peer.h"

namespace bench {
namespace {

using Point = CGAL::Simple_cartesian<double>::Point_3;
using Surface = CGAL::Surface_mesh<Point>;

class CgalMesh final : public MeshPeer {
 public:
  void Run() override {
    mesh_ = std::make_unique<Surface>();
    const auto vertices = static_cast<Surface::size_type>(input().points.size());
    const auto faces = static_cast<Surface::size_type>(input().triangles.size());
    mesh_->reserve(vertices, vertices + faces, faces);
    for (const ZBR_PT3& p : input().points) mesh_->add_vertex(Point(p.x(), p.y(), p.z()));
    for (const auto& [a, b, c] : input().triangles) {
      const auto face = mesh_->add_face(Surface::Vertex_index(a), Surface::Vertex_index(b), Surface::Vertex_index(c));
      if (face == Surface::null_face()) throw std::runtime_error("CGAL takes a triangle for not manifold");
    }
  }
  std::size_t CountEdges() const override { return mesh_->number_of_edges(); }
  void Drop() override { mesh_.reset(); }

 private:
  std::unique_ptr<Surface> mesh_;
};

}  // namespace

std::unique_ptr<MeshPeer> MakeCgalMesh() {
  return std::make_unique<CgalMesh>();
}

}  // namespace bench
