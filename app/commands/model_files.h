// The objects that a drawing or an outline is made of: files of triangles, each where it was read or moved.
#pragma once

#include <zbr-drawing/objects.h>

#include <cstddef>
#include <string>
#include <vector>

#include "app/libraries.h"

namespace tool {

// One file as an object.
struct PlacedFile {
  std::string file;
  ZBR_PT3 shift;   // added to all its points
  std::string id;  // the name without folder and extension, numbered where that would repeat: for layers and files
};

// The models as they are, then the further objects, "FILE" or "FILE,DX,DY,DZ". Fails for what is neither, and without any.
std::vector<PlacedFile> ListObjects(const std::vector<std::string>& models, const std::vector<std::string>& objects);

// Whether writing this file would overwrite one of them.
bool AreRead(const std::vector<PlacedFile>& files, const std::string& output);

// Fails when the file cannot be read. `format` is that of a file whose name does not tell.
Mesh ReadModel(const std::string& file, const std::string& format, unsigned threads = 1);

// Fails when a file cannot be read or a shift carries points out of range. `format` is that of files whose names do not tell.
Objects ReadObjects(const std::vector<PlacedFile>& files, const std::string& format, unsigned threads);

// Where files hold several bodies, makes each an object of its own, named after its file with a number behind it. Returns where the
// bodies of each file begin, and the end.
std::vector<std::size_t> MakeBodiesObjects(Objects& objects);

// The names of all files, separated by commas, without folders and extensions.
std::string TitleOf(const std::vector<PlacedFile>& files);

}  // namespace tool
