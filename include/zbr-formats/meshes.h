// Reads triangle meshes of the formats that CAD and modelling programs exchange.
#pragma once

#include <zbr-drawing/mesh.h>
#include <zbr-formats/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zbr::formats {

// Whether the extension is that of a mesh.
bool IsMeshFile(const std::string& file);

// Extensions without their dots.
const std::vector<std::string>& MeshFormats();

// Reads STL, OBJ, PLY, OFF and glTF files, told apart by their extensions; of others, as "-" for standard input, `format` tells.
// Polygons are split into triangles, several objects put together as the file places them. Fails when the file cannot be read, has
// no triangles or has points that are not finite.
Mesh ReadMesh(const std::string& file, const std::string& format = "");

}  // namespace zbr::formats
