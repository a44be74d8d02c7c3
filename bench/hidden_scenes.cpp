// The hidden-line scenes: bodies made by the generators of the examples, and the files of a folder.

#include "hidden_scenes.h"

#include <charconv>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "models/models.h"
#ifdef BENCH_WITH_MESH_READER
#include <zbr-formats/meshes.h>
#endif

namespace bench {
namespace {

// `size` is a number of triangles, or of boxes or gears along one side.
struct Kind {
  std::string_view name;
  std::size_t largest;  // beyond it, indices of triangles overflow
  const char* view;
  zbr::drawing::Mesh (*make)(std::size_t size);
};

constexpr Kind kKinds[] = {
    {"boxes", 10'000, "iso", [](std::size_t n) { return example::BoxesOnPlate(static_cast<int>(n)); }},
    {"boxes-top", 10'000, "top", [](std::size_t n) { return example::BoxesOnPlate(static_cast<int>(n)); }},
    {"lattice", 10'000, "iso", [](std::size_t n) { return example::BoxesOnPlate(static_cast<int>(n), true); }},
    {"torus", 100'000'000, "iso", [](std::size_t n) { return example::Torus(n); }},
    {"gear", 100'000'000, "iso", [](std::size_t n) { return example::Gear(n); }},
    {"gear-axis", 100'000'000, "top", [](std::size_t n) { return example::Gear(n); }},  // many edges project to one place
    {"gears", 35, "iso", [](std::size_t k) { return example::Gears(static_cast<int>(k)); }},
};

const Kind* FindKind(std::string_view name) {
  for (const Kind& kind : kKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

// Whether the text after the colon is a size that the kind has; zero and what is no number are not.
bool ReadSize(std::string_view text, std::size_t largest, std::size_t& size) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  return error == std::errc() && end == text.data() + text.size() && size > 0 && size <= largest;
}

SceneInput ReadFile(const std::string& file) {
#ifdef BENCH_WITH_MESH_READER
  SceneInput input;
  input.mesh = zbr::formats::ReadMesh(file);
  input.view = zbr::drawing::NamedView("iso", input.mesh.yUp).value();
  return input;
#else
  throw std::runtime_error("built without a mesh reader: " + file);
#endif
}

void AddFiles(const std::string& prefix, const std::string& folder, std::vector<HiddenScene>& scenes) {
#ifdef BENCH_WITH_MESH_READER
  for (const char* name : {"fandisk.obj", "stanford-bunny.obj", "beetle.obj"}) {
    const std::filesystem::path file = std::filesystem::path(folder) / name;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(file, ignored)) scenes.push_back({prefix + "-models", file.string(), true});
  }
#else
  static_cast<void>(prefix);
  static_cast<void>(folder);
  static_cast<void>(scenes);
#endif
}

}  // namespace

std::vector<HiddenScene> HiddenScenes(const std::string& prefix, const std::string& meshFolder) {
  std::vector<HiddenScene> scenes = {
      {"boxes", "boxes:10", true},     {"boxes", "boxes:32", true},    {"boxes", "boxes:100"},          {"boxes", "boxes:300"},
      {"boxes", "boxes-top:32", true}, {"boxes", "boxes-top:100"},     {"boxes", "lattice:32", true},   {"boxes", "lattice:100"},
      {"torus", "torus:1000", true},   {"torus", "torus:10000", true}, {"torus", "torus:100000", true}, {"torus", "torus:1000000"},
      {"gear", "gear:1000", true},     {"gear", "gear:10000", true},   {"gear", "gear:100000", true},   {"gear", "gear:1000000"},
      {"gears", "gears:2", true},      {"gears", "gears:6"},
  };
  for (HiddenScene& scene : scenes) scene.family = prefix + "-" + scene.family;
  AddFiles(prefix, meshFolder, scenes);
  return scenes;
}

SceneInput MakeSceneInput(const std::string& name) {
  const std::size_t colon = name.find(':');
  const Kind* kind = colon == std::string::npos ? nullptr : FindKind(std::string_view(name).substr(0, colon));
  if (kind == nullptr) return ReadFile(name);
  std::size_t size = 0;
  if (!ReadSize(std::string_view(name).substr(colon + 1), kind->largest, size)) {
    throw std::runtime_error("not a size that this scene has: " + name);
  }
  return {kind->make(size), zbr::drawing::NamedView(kind->view).value()};
}

}  // namespace bench
