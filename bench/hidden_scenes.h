// The scenes of the hidden-line and outline benchmarks, by name.
#pragma once

#include <zbr-drawing/mesh.h>
#include <zbr-drawing/view.h>

#include <string>
#include <vector>

namespace bench {

// A scene is called KIND:SIZE, as "gear:100000", or is the name of a file.
struct HiddenScene {
  std::string family;  // as the user selects it
  std::string name;
  bool quick = false;  // part of a quick run too
};

// All scenes in the order of the table; meshes of the folder that were found included. The families are called PREFIX-boxes and so
// on.
std::vector<HiddenScene> HiddenScenes(const std::string& prefix, const std::string& meshFolder);

struct SceneInput {
  zbr::drawing::Mesh mesh;
  zbr::drawing::View view;
};

// Makes the mesh of a scene or reads its file. Throws std::runtime_error on a name that means nothing.
SceneInput MakeSceneInput(const std::string& name);

}  // namespace bench
