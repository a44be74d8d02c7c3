// Our mesh, the list of those who take part, and their input.

#include <zbr/mesh.h>

#include <cstdint>
#include <numeric>
#include <utility>

#include "mesh_peer.h"
#include "models/models.h"
#include "portable_numbers.h"

namespace bench {
namespace {

class ZbrMesh final : public MeshPeer {
 public:
  void Run() override {
    const zbr::drawing::Mesh& in = input();
    shell_ = std::make_unique<ZBR_ZBREPS>();
    shell_->SetVertexCnt(static_cast<int>(in.points.size()));
    int next = 0;
    for (const ZBR_PT3& p : in.points) shell_->SetVertex(next++, p.x(), p.y(), p.z());
    shell_->SetTriangleCnt(static_cast<int>(in.triangles.size()));
    shell_->ReserveEdge();
    next = 0;
    for (const auto& [a, b, c] : in.triangles) {
      shell_->SetTriangleWithEdge(next++, static_cast<int>(a), static_cast<int>(b), static_cast<int>(c));
    }
  }
  std::size_t CountEdges() const override { return static_cast<std::size_t>(shell_->GetEdgeCnt()); }
  void Drop() override { shell_.reset(); }

 private:
  std::unique_ptr<ZBR_ZBREPS> shell_;
};

template <class T>
void Shuffle(std::vector<T>& items, Random& random) {
  for (std::size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[random.Below(i)]);
}

}  // namespace

std::unique_ptr<MeshPeer> MakeZbrMesh() {
  return std::make_unique<ZbrMesh>();
}

const std::vector<Entry<MeshPeer>>& MeshPeers() {
  static const std::vector<Entry<MeshPeer>> peers = {
      {"zbr", MakeZbrMesh},
#ifdef BENCH_WITH_CGAL
      {"cgal", MakeCgalMesh},
#endif
#ifdef BENCH_WITH_OPENMESH
      {"openmesh", MakeOpenMeshMesh},
#endif
  };
  return peers;
}

zbr::drawing::Mesh MeshInput(std::size_t triangles, bool mixed) {
  zbr::drawing::Mesh mesh = example::Torus(triangles);
  if (!mixed) return mesh;
  Random random(1);
  std::vector<std::uint32_t> places(mesh.points.size());
  std::iota(places.begin(), places.end(), 0U);
  Shuffle(places, random);
  const std::vector<ZBR_PT3> points = mesh.points;
  for (std::size_t i = 0; i < points.size(); ++i) mesh.points[places[i]] = points[i];
  for (auto& triangle : mesh.triangles) {
    for (std::uint32_t& corner : triangle) corner = places[corner];
  }
  Shuffle(mesh.triangles, random);
  return mesh;
}

}  // namespace bench
