// Several meshes as the objects of one model.
#pragma once

#include <zbr-drawing/mesh.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zbr::drawing {

// What an object's lines and outlines can be traced back to.
struct ObjectSource {
  std::string name;               // of the file it came from, or whatever people know it by
  std::string id;                 // for layers and files, different for each object
  ZBR_PT3 shift;                  // was added to its points
  std::size_t firstTriangle = 0;  // triangles of all objects are numbered through; AddObject says this
};

struct Objects {
  Mesh mesh;  // all of them; which axis points up is what the first one says
  std::vector<ObjectSource> sources;
};

// Moves the mesh by the source's shift and adds it as one object. Fails when the shift carries points out of range, or when there
// are more than kMostMeshPoints, or when it has numbers of shells and the other objects do not, or the other way round.
void AddObject(Objects& objects, Mesh mesh, ObjectSource source);

}  // namespace zbr::drawing
