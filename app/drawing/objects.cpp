// Reads objects and puts them into one mesh.
#include "drawing/objects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <set>

#include "io/failure.h"
#include "io/files.h"
#include "io/numbers.h"
#include "model/mesh_reader.h"

namespace tool {
namespace {

std::string StemOf(const std::string& file) {
  return std::filesystem::path(BaseName(file)).stem().string();
}

// A name that ends like a model's is a name as a whole, whatever commas it has.
PlacedFile ParseObject(const std::string& text) {
  if (IsMeshFile(text) || text == "-") return {text, {}, ""};
  std::array<double, 3> shift{};
  std::string rest = text;
  for (std::size_t axis = 3; axis-- > 0;) {
    const std::size_t comma = rest.rfind(',');
    const auto value = comma == std::string::npos ? std::nullopt : ParseNumber(std::string_view(rest).substr(comma + 1));
    if (!value) throw Failure("--object: " + Quoted(text) + " is no model and its place, as in part.stl or part.stl,10,0,-2.5");
    shift[axis] = *value;
    rest.resize(comma);
  }
  return {rest, ZBR_PT3(shift[0], shift[1], shift[2]), ""};
}

void Move(Mesh& mesh, const PlacedFile& placed) {
  const ZBR_PT3& d = placed.shift;
  if (d.x() == 0 && d.y() == 0 && d.z() == 0) return;
  for (ZBR_PT3& p : mesh.points) {
    p += d;
    if (!IsMeshCoordinate(p)) throw Failure(placed.file + ": the place given carries it too far away");
  }
}

void Append(Mesh mesh, Mesh& all) {
  if (mesh.points.size() > kMostMeshPoints - all.points.size() || mesh.triangles.size() > kMostMeshPoints - all.triangles.size())
    throw Failure("the models have too many triangles together");
  const auto shift = static_cast<std::uint32_t>(all.points.size());
  all.objects.push_back({shift, static_cast<std::uint32_t>(all.triangles.size())});
  if (shift == 0) {
    std::vector<MeshObject> objects = std::move(all.objects);
    all = std::move(mesh);
    all.objects = std::move(objects);
    return;
  }
  all.points.insert(all.points.end(), mesh.points.begin(), mesh.points.end());
  for (std::array<std::uint32_t, 3> triangle : mesh.triangles) {
    for (std::uint32_t& corner : triangle) corner += shift;
    all.triangles.push_back(triangle);
  }
}

std::string FreeName(const std::string& name, std::set<std::string>& taken) {
  std::string free = name;
  for (int number = 2; !taken.insert(free).second; ++number) free = name + "-" + std::to_string(number);
  return free;
}

}  // namespace

std::vector<PlacedFile> ListObjects(const std::vector<std::string>& models, const std::vector<std::string>& objects) {
  std::vector<PlacedFile> files;
  for (const std::string& model : models) files.push_back({model, {}, ""});
  for (const std::string& object : objects) files.push_back(ParseObject(object));
  if (files.empty()) throw Failure("no model is named; see 'zbr help'");
  if (std::count_if(files.begin(), files.end(), [](const PlacedFile& placed) { return placed.file == "-"; }) > 1)
    throw Failure("-: standard input can be read only once");
  std::set<std::string> ids;
  for (PlacedFile& placed : files) placed.id = FreeName(StemOf(placed.file), ids);
  return files;
}

bool AreRead(const std::vector<PlacedFile>& files, const std::string& output) {
  return output != "-" &&
         std::any_of(files.begin(), files.end(), [&](const PlacedFile& placed) { return IsSameFile(placed.file, output); });
}

Objects ReadObjects(const std::vector<PlacedFile>& files, const std::string& format) {
  Objects objects;
  for (const PlacedFile& placed : files) {
    Mesh mesh = ReadMesh(placed.file, format);
    Move(mesh, placed);
    objects.files.push_back({BaseName(placed.file), placed.id, placed.shift, objects.mesh.triangles.size()});
    Append(std::move(mesh), objects.mesh);
  }
  return objects;
}

std::string TitleOf(const std::vector<PlacedFile>& files) {
  std::string title;
  for (const PlacedFile& placed : files) title += (title.empty() ? "" : ", ") + StemOf(placed.file);
  return title;
}

}  // namespace tool
