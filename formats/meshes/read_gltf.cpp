// glTF 2: a tree of nodes, each with a place and perhaps a mesh, whose primitives are lists of triangles, strips and fans.
//
// Places are composed in double precision. What nodes look like, moves or bends does not matter here: neither are materials read,
// nor skins, targets of morphing or animations.
#include <zbr-formats/meshes.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/meshes/gltf_accessor.h"
#include "formats/meshes/gltf_file.h"
#include "formats/meshes/place.h"
#include "formats/meshes/readers.h"

namespace zbr::formats {
namespace {

// The quaternion x, y, z, w as axes. Files give it with few digits, so it is brought to unit length; 0 is no rotation.
Place Rotation(const std::vector<double>& q) {
  const double length2 = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
  if (!std::isnormal(length2)) return {};
  const double f = 2 / length2, x = q[0], y = q[1], z = q[2], w = q[3];
  Place place;
  place.x.Set(1 - f * (y * y + z * z), f * (x * y + z * w), f * (x * z - y * w));
  place.y.Set(f * (x * y - z * w), 1 - f * (x * x + z * z), f * (y * z + x * w));
  place.z.Set(f * (x * z + y * w), f * (y * z - x * w), 1 - f * (x * x + y * y));
  return place;
}

// A matrix, column by column, or else scale, rotation and translation.
Place PlaceOf(const GltfItem& node) {
  if (node.Has("matrix")) {
    const std::vector<double> m = node.Numbers("matrix", std::vector<double>(16));
    return {{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}, {m[12], m[13], m[14]}};
  }
  const std::vector<double> origin = node.Numbers("translation", {0, 0, 0}), scale = node.Numbers("scale", {1, 1, 1});
  Place place = Rotation(node.Numbers("rotation", {0, 0, 0, 1}));
  place.x *= scale[0];
  place.y *= scale[1];
  place.z *= scale[2];
  place.origin.Set(origin[0], origin[1], origin[2]);
  return place;
}

class MeshBuilder {
 public:
  MeshBuilder(GltfFile& gltf, const std::string& file) : gltf_(gltf), root_(gltf.Root()), file_(file) {}

  // Nodes in the order of the file, without recursion: files nest them as deeply as they like.
  Mesh Build() {
    RefuseExtensions();
    std::vector<bool> isDone(root_.CountOf("nodes"));
    std::vector<Open> open;
    Push(open, Roots(), Place());
    while (!open.empty()) {
      const Open next = open.back();
      open.pop_back();
      const GltfItem node = root_.Element("nodes", next.node);
      if (isDone[next.node]) node.Fail("belongs to itself, or to two others");
      isDone[next.node] = true;
      const Place place = next.outer * PlaceOf(node);
      if (node.Has("mesh")) AddMesh(root_.Element("meshes", node.Whole("mesh")), place);
      Push(open, node.Wholes("children"), place);
    }
    return std::move(mesh_);
  }

 private:
  struct Open {
    std::size_t node;
    Place outer;
  };
  enum Mode : std::size_t { kTriangles = 4, kStrip = 5, kFan = 6 };

  // Extensions that a file requires may move or multiply what is there, unless they are known to be about looks and numbers only.
  void RefuseExtensions() const {
    constexpr std::string_view kHarmless[] = {"KHR_mesh_quantization", "KHR_materials_", "KHR_texture_", "EXT_texture_",
                                              "KHR_lights_"};
    for (const std::string& extension : root_.Texts("extensionsRequired")) {
      const auto begins = [&](std::string_view start) { return extension.starts_with(start); };
      if (std::none_of(std::begin(kHarmless), std::end(kHarmless), begins))
        root_.Fail("requires " + extension + ", which is not supported");
    }
  }

  // The nodes of the scene to be shown; all that belong to no other where the file has no scenes.
  std::vector<std::size_t> Roots() const {
    if (root_.CountOf("scenes") > 0) return root_.Element("scenes", root_.Whole("scene", 0)).Wholes("nodes");
    std::vector<bool> isChild(root_.CountOf("nodes"));
    for (std::size_t i = 0; i < isChild.size(); ++i) {
      for (const std::size_t child : root_.Element("nodes", i).Wholes("children")) {
        if (child < isChild.size()) isChild[child] = true;
      }
    }
    std::vector<std::size_t> roots;
    for (std::size_t i = 0; i < isChild.size(); ++i) {
      if (!isChild[i]) roots.push_back(i);
    }
    return roots;
  }

  static void Push(std::vector<Open>& open, const std::vector<std::size_t>& nodes, const Place& outer) {
    for (std::size_t i = nodes.size(); i-- > 0;) open.push_back({nodes[i], outer});
  }

  // The mesh of a node is a body: primitives cut it up by what it looks like.
  void AddMesh(const GltfItem& mesh, const Place& place) {
    mesh_.bodies.push_back({static_cast<std::uint32_t>(mesh_.points.size()), static_cast<std::uint32_t>(mesh_.triangles.size())});
    std::map<std::size_t, std::uint32_t> firstPoints;  // primitives may share their points
    for (std::size_t i = 0; i < mesh.CountOf("primitives"); ++i) {
      const GltfItem primitive = mesh.Element("primitives", i);
      const std::size_t mode = primitive.Whole("mode", kTriangles);
      if (mode > kFan) primitive.Fail("mode " + std::to_string(mode) + " is unknown");
      const GltfItem attributes = primitive.Child("attributes");
      if (mode < kTriangles || !attributes.Has("POSITION")) continue;  // points and lines, or nothing to be seen
      const GltfAccessor points(gltf_, attributes.Whole("POSITION"), "VEC3");
      const auto [first, isNew] = firstPoints.try_emplace(attributes.Whole("POSITION"), mesh_.points.size());
      if (isNew) AddPoints(points, place);
      AddTriangles(static_cast<Mode>(mode), CornersOf(primitive, first->second, points.Count()), place.IsMirror());
    }
  }

  void AddPoints(const GltfAccessor& points, const Place& place) {
    if (points.Count() > kMostMeshPoints - mesh_.points.size()) throw Failure(file_, "too many points");
    std::vector<ZBR_PT3> own;
    for (std::size_t i = 0; i < points.Count(); ++i) own.emplace_back(points.At(i, 0), points.At(i, 1), points.At(i, 2));
    mesh_.rounding = std::max(mesh_.rounding, RoundingOf(own) * place.Stretch());
    for (const ZBR_PT3& q : own) {
      const ZBR_PT3 p = place.Point(q);
      if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z()))
        throw Failure(file_, "a coordinate of point " + std::to_string(mesh_.points.size() + 1) + " is not a finite number");
      mesh_.points.push_back(p);
    }
  }

  // The points of a primitive in the order in which they are used: that of its indices if it has any.
  std::vector<std::uint32_t> CornersOf(const GltfItem& primitive, std::uint32_t firstPoint, std::size_t pointCount) {
    std::optional<GltfAccessor> indices;
    if (primitive.Has("indices")) indices.emplace(gltf_, primitive.Whole("indices"), "SCALAR");
    std::vector<std::uint32_t> corners(indices ? indices->Count() : pointCount);
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const double place = indices ? indices->At(i, 0) : static_cast<double>(i);
      if (!(place >= 0 && place < static_cast<double>(pointCount)) || place != std::floor(place))
        throw Failure(file_, "a face refers to a point that is not there");
      corners[i] = firstPoint + static_cast<std::uint32_t>(place);
    }
    return corners;
  }

  void AddTriangles(Mode mode, const std::vector<std::uint32_t>& corners, bool isMirrored) {
    if (corners.size() / (mode == kTriangles ? 3 : 1) > kMostMeshPoints - mesh_.triangles.size())
      throw Failure(file_, "too many triangles");
    const std::size_t step = mode == kTriangles ? 3 : 1;
    for (std::size_t i = 0; i + 2 < corners.size(); i += step) {
      std::array<std::uint32_t, 3> t = {corners[mode == kFan ? 0 : i], corners[i + 1], corners[i + 2]};
      if (mode == kStrip && i % 2 == 1) std::swap(t[0], t[1]);  // every other one runs backwards
      if (isMirrored) std::swap(t[0], t[2]);                    // so that the outer side stays outside
      mesh_.triangles.push_back(t);
    }
  }

  GltfFile& gltf_;
  GltfItem root_;
  const std::string& file_;
  Mesh mesh_;
};

}  // namespace

Mesh ReadGltf(const std::string& text, const std::string& file, const FileSource& beside) {
  GltfFile gltf(text, file, beside);
  return MeshBuilder(gltf, file).Build();
}

}  // namespace zbr::formats
