// Reads triangle meshes of the formats that CAD and modelling programs exchange.
#pragma once

#include <zbr-drawing/mesh.h>
#include <zbr-formats/types.h>

#include <functional>
#include <string>
#include <vector>

namespace zbr::formats {

// Whether the extension is that of a mesh.
bool IsMeshFile(const std::string& file);

// Extensions without their dots.
const std::vector<std::string>& MeshFormats();

// The contents of a file that a glTF document names, such as "part.bin" or "data/part.bin"; throws where there is none.
using FileSource = std::function<std::string(const std::string& name)>;

// Reads a mesh from memory: `bytes` is what the file would hold, `format` its extension without the dot, `name` stands for it in
// messages. Polygons are split into triangles, several objects put together as the file places them. Fails when the contents are
// malformed, have no triangles or points that are not finite, and where glTF names other files but there is no source of them. The
// same, messages included, with any number of threads, which share out the lines of OBJ and STL files.
Mesh ParseMesh(const std::string& format, std::string bytes, const std::string& name, const FileSource& beside = {},
               unsigned threads = 1);

// The same for a file, "-" being standard input. Its extension tells the format; of others, `format` does. What a glTF file names
// is read from its folder and those below.
Mesh ReadMesh(const std::string& file, const std::string& format = "", unsigned threads = 1);

}  // namespace zbr::formats
