// 3MF: a ZIP archive with a document of objects, and perhaps further ones that it refers to.
//
// Objects are meshes, or made up of objects in other places; what is to be built is a list of objects in their places. Read here
// and not by the reference library: the version of it that systems carry keeps coordinates in single precision, tells no line of
// what is malformed, and brings libraries that the packages for Python and the web cannot have. Difficulty: thirty objects, each of
// two copies of the one before, ask for a billion: what an object comes to is summed up before anything is copied. Objects refer to
// earlier ones of their document, and only the first document refers to others, so that no object can hold itself. Every document
// has a unit of its own, which its places and points are in.
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/archive/zip.h"
#include "formats/meshes/place.h"
#include "formats/meshes/readers.h"
#include "formats/meshes/three_mf_part.h"
#include "formats/text/foreign.h"
#include "formats/text/xml.h"

namespace zbr::formats {
namespace {

constexpr std::uint64_t kMostBuilt = 100'000'000;  // points, triangles and objects: some gigabytes, which copies ask for cheaply

// `name` stands for the part in messages.
std::string TextOf(ZipArchive& archive, const std::string& path, const std::string& name) {
  std::string text = archive.Read(path);
  DropByteOrderMark(text);
  RefuseForeign(text, name);
  return text;
}

// The first relation that names a model. Not a tree: a few packed bytes may hold millions of relations.
class ModelRelation : public XmlListener {
 public:
  void Begin(const XmlElement& element) override {
    if (!target && element.Attribute("Type").ends_with("/3dmodel")) target = element.Attribute("Target");
  }
  void End() override {}

  std::optional<std::string> target;
};

// The document that a package opens with; where nothing says so, the one that has the usual name.
std::string FirstPart(ZipArchive& archive, const std::string& file) {
  const std::string kRelations = "_rels/.rels";
  std::string first = "3D/3dmodel.model";
  if (archive.Has(kRelations)) {
    const std::string name = file + ": " + kRelations;
    ModelRelation relation;
    ReadXml(TextOf(archive, kRelations, name), name, relation);
    first = relation.target.value_or(first);
  }
  if (!archive.Has(first)) throw Failure(file, "is no 3MF: there is no part " + Quoted(ZipArchive::PlainName(first)));
  return first;
}

class Package {
 public:
  Package(const std::string& bytes, const std::string& file) : archive_(bytes, file), file_(file) {}

  Mesh Build() {
    Load(FirstPart(archive_, file_));
    const Loaded& first = parts_.front();
    if (first.part.items.empty()) throw Failure(first.name, "nothing is to be built: its build has no item");
    for (const ThreeMfObject& object : first.part.objects) LoadPartsOf(object.components);
    LoadPartsOf(first.part.items);
    for (std::size_t k = parts_.size(); k-- > 0;) Weigh(parts_[k]);
    std::uint64_t weight = 0;
    for (const ThreeMfItem& item : first.part.items) AddWeight(item, first, weight);
    for (const ThreeMfItem& item : first.part.items) Add(item);
    if (!hasShape_) throw Failure(first.name, "nothing is to be built but supports and other things that are no part");
    for (ZBR_PT3& p : mesh_.points) p *= first.part.millimetres;
    mesh_.rounding *= first.part.millimetres;
    return std::move(mesh_);
  }

 private:
  struct Loaded {
    std::string name;  // for messages
    ThreeMfPart part;
    std::vector<std::uint64_t> weights;  // of its objects: how many points, triangles and objects they come to
  };
  struct Target {
    const Loaded* part;
    std::size_t object;
  };

  void Load(std::string_view given) {
    const std::string path(ZipArchive::PlainName(given));
    if (!partByPath_.try_emplace(path, parts_.size()).second) return;
    const std::string name = file_ + ": " + path;
    parts_.push_back({name, ReadThreeMfPart(TextOf(archive_, path, name), name), {}});
  }

  void LoadPartsOf(const std::vector<ThreeMfItem>& items) {
    for (const ThreeMfItem& item : items) {
      if (!item.part.empty()) Load(item.part);
    }
  }

  Target Find(const ThreeMfItem& item, const Loaded& from) const {
    const bool isElsewhere = !item.part.empty();
    if (isElsewhere && &from != &parts_.front()) FailAt(from.name, item.line, "only the first document may refer to others");
    const Loaded& part = isElsewhere ? parts_[partByPath_.at(std::string(ZipArchive::PlainName(item.part)))] : from;
    const auto object = part.part.objectById.find(item.id);
    const bool isItself = isElsewhere && &part == &from;
    if (object != part.part.objectById.end() && !isItself) return {&part, object->second};
    FailAt(from.name, item.line,
           "there is no object " + std::to_string(item.id) + " in " + Quoted(ZipArchive::PlainName(item.part)));
  }

  void AddWeight(const ThreeMfItem& item, const Loaded& from, std::uint64_t& weight) const {
    const Target target = Find(item, from);
    weight += target.part->weights[target.object];
    if (weight > kMostBuilt) FailAt(from.name, item.line, "too many points and triangles");
  }

  void Weigh(Loaded& part) const {
    for (const ThreeMfObject& object : part.part.objects) {
      std::uint64_t weight = 1 + object.points.size() + object.triangles.size();
      for (const ThreeMfItem& component : object.components) AddWeight(component, part, weight);
      part.weights.push_back(weight);
    }
  }

  // An object in the unit of the first document.
  struct Placed {
    Target target;
    Place place;
  };

  Placed PlacedBy(const ThreeMfItem& item, const Loaded& from, const Place& outer) const {
    const Target target = Find(item, from);
    return {target, outer * item.place.Of(target.part->part.millimetres / from.part.millimetres)};
  }

  // Without recursion, as objects may be made up of others as deeply as they like.
  void Add(const ThreeMfItem& item) {
    std::vector<Placed> open = {PlacedBy(item, parts_.front(), Place())};
    while (!open.empty()) {
      const auto [target, place] = open.back();
      open.pop_back();
      const ThreeMfObject& object = target.part->part.objects[target.object];
      if (!object.isShape) continue;
      hasShape_ = true;
      AddMesh(object, place);
      for (std::size_t i = object.components.size(); i-- > 0;) open.push_back(PlacedBy(object.components[i], *target.part, place));
    }
  }

  // Every mesh is a body, whether it is built by itself or as a part of an object.
  void AddMesh(const ThreeMfObject& object, const Place& place) {
    const auto first = static_cast<std::uint32_t>(mesh_.points.size());
    if (!object.points.empty()) mesh_.bodies.push_back({first, static_cast<std::uint32_t>(mesh_.triangles.size())});
    mesh_.rounding = std::max({mesh_.rounding, 0.0, RoundingOf(object.points) * place.Stretch()});
    for (const ZBR_PT3& p : object.points) mesh_.points.push_back(place.Point(p));
    for (std::array<std::uint32_t, 3> t : object.triangles) {
      if (place.IsMirror()) std::swap(t[0], t[2]);  // so that the outer side stays outside
      mesh_.triangles.push_back({first + t[0], first + t[1], first + t[2]});
    }
  }

  ZipArchive archive_;
  const std::string& file_;
  std::deque<Loaded> parts_;  // the first one first; referred to while others are added
  std::map<std::string, std::size_t> partByPath_;
  Mesh mesh_;
  bool hasShape_ = false;
};

}  // namespace

Mesh Read3mf(const std::string& bytes, const std::string& file) {
  return Package(bytes, file).Build();
}

}  // namespace zbr::formats
