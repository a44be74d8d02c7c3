// What the mesh benchmarks need of a library: building a mesh with its edges from points and triangles.
#pragma once

#include <zbr-drawing/mesh.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "peer.h"

namespace bench {

// Goes through Load (outside the clock), then any number of Run (timed: from the points and triangles to a mesh whose triangles
// know their neighbours) and Drop (outside the clock: frees the mesh).
class MeshPeer {
 public:
  virtual ~MeshPeer() = default;
  // The mesh must stay in place. It is a closed manifold, which not all libraries could do without.
  void Load(const zbr::drawing::Mesh& mesh) { input_ = &mesh; }
  virtual void Run() = 0;
  virtual std::size_t CountEdges() const = 0;
  virtual void Drop() = 0;

 protected:
  const zbr::drawing::Mesh& input() const { return *input_; }

 private:
  const zbr::drawing::Mesh* input_ = nullptr;
};

// Ours first, then the peers that were found when this was built.
const std::vector<Entry<MeshPeer>>& MeshPeers();

// A torus of about so many triangles, its triangles and vertices row after row, or both in random order.
zbr::drawing::Mesh MeshInput(std::size_t triangles, bool mixed);

std::unique_ptr<MeshPeer> MakeZbrMesh();
std::unique_ptr<MeshPeer> MakeCgalMesh();
std::unique_ptr<MeshPeer> MakeOpenMeshMesh();

}  // namespace bench
