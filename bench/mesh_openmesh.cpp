// The half-edge mesh of OpenMesh, with points in double precision as ours.

#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <stdexcept>

#include "mesh_peer.h"

namespace bench {
namespace {

struct Traits : OpenMesh::DefaultTraits {
  using Point = OpenMesh::Vec3d;
  using Normal = OpenMesh::Vec3d;
};
using Surface = OpenMesh::TriMesh_ArrayKernelT<Traits>;

OpenMesh::VertexHandle Handle(std::uint32_t vertex) {
  return OpenMesh::VertexHandle(static_cast<int>(vertex));
}

class OpenMeshMesh final : public MeshPeer {
 public:
  void Run() override {
    mesh_ = std::make_unique<Surface>();
    const std::size_t vertices = input().points.size();
    const std::size_t faces = input().triangles.size();
    mesh_->reserve(vertices, vertices + faces, faces);
    for (const ZBR_PT3& p : input().points) mesh_->add_vertex({p.x(), p.y(), p.z()});
    for (const auto& [a, b, c] : input().triangles) {
      if (!mesh_->add_face(Handle(a), Handle(b), Handle(c)).is_valid()) {
        throw std::runtime_error("OpenMesh takes a triangle for not manifold");
      }
    }
  }
  std::size_t CountEdges() const override { return mesh_->n_edges(); }
  void Drop() override { mesh_.reset(); }

 private:
  std::unique_ptr<Surface> mesh_;
};

}  // namespace

std::unique_ptr<MeshPeer> MakeOpenMeshMesh() {
  return std::make_unique<OpenMeshMesh>();
}

}  // namespace bench
