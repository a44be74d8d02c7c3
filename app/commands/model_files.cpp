// Reads objects and puts them into one mesh.
#include "app/commands/model_files.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>

#include "app/commands/format_hint.h"
#include "app/io/output_files.h"
#include "app/libraries.h"

namespace tool {
namespace {

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

Mesh ReadModel(const std::string& file, const std::string& format, unsigned threads) {
  if (format.empty() && FormatOf(file, Format::kUnknown) != Format::kUnknown)
    throw Failure(file, "is a drawing, no model; 'zbr info' examines it, 'zbr bool', 'zbr clip' and 'zbr nest' take it");
  return OrHint("--model-format", [&] { return ReadMesh(file, format, threads); });
}

Objects ReadObjects(const std::vector<PlacedFile>& files, const std::string& format, unsigned threads) {
  Objects objects;
  for (const PlacedFile& placed : files) {
    AddObject(objects, ReadModel(placed.file, format, threads), {BaseName(placed.file), placed.id, placed.shift});
  }
  return objects;
}

std::vector<std::size_t> MakeBodiesObjects(Objects& objects) {
  std::set<std::string> ids;
  for (const ObjectSource& source : objects.sources) ids.insert(source.id);
  const std::vector<MeshObject> starts = BodyStarts(objects.mesh);
  std::vector<ObjectSource> sources;
  std::vector<std::size_t> begins;
  for (std::size_t k = 0; k < objects.sources.size(); ++k) {
    const bool isLast = k + 1 == objects.sources.size();
    const std::size_t begin = sources.size();
    begins.push_back(begin);
    while (sources.size() < starts.size() &&
           (isLast || starts[sources.size()].firstPoint < objects.mesh.objects[k + 1].firstPoint)) {
      sources.push_back(objects.sources[k]);
      sources.back().firstTriangle = starts[sources.size() - 1].firstTriangle;
    }
    if (sources.size() - begin < 2) continue;
    for (std::size_t i = begin; i < sources.size(); ++i)
      sources[i].id = FreeName(objects.sources[k].id + "-" + std::to_string(i - begin + 1), ids);
  }
  begins.push_back(sources.size());
  objects.sources = std::move(sources);
  objects.mesh.objects = starts;
  objects.mesh.bodies.clear();
  return begins;
}

std::string TitleOf(const std::vector<PlacedFile>& files) {
  std::string title;
  for (const PlacedFile& placed : files) title += (title.empty() ? "" : ", ") + StemOf(placed.file);
  return title;
}

}  // namespace tool
