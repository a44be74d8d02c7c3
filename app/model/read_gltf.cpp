// glTF through assimp, of which only the reader of this format is switched on.
//
// None of its processing steps is asked for: they drop or turn triangles, or join points by rules of their own. Nodes are walked
// here, so that mirrored ones keep their outer side.
#include <assimp/scene.h>

#include <assimp/BaseImporter.h>
#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <exception>
#include <set>
#include <string>
#include <utility>

#include "io/failure.h"
#include "model/polygons.h"
#include "model/readers.h"

namespace tool {
namespace {

// Readers of other formats guess by content and may take over a file that they then misread.
void KeepReaders(Assimp::Importer& importer) {
  for (std::size_t i = importer.GetImporterCount(); i-- > 0;) {
    std::set<std::string> extensions;
    importer.GetImporter(i)->GetExtensionList(extensions);
    if (extensions.contains("gltf")) continue;
    Assimp::BaseImporter* const unwanted = importer.GetImporter(i);
    importer.UnregisterLoader(unwanted);
    delete unwanted;  // unregistering hands it over
  }
}

// As one line.
std::string Cause(const char* message) {
  std::string text = message;
  std::replace_if(
      text.begin(), text.end(), [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }, ' ');
  return text.empty() ? "cannot be read" : text;
}

struct Placed {
  const aiNode* node;
  aiMatrix4x4 place;
};

class MeshBuilder {
 public:
  MeshBuilder(const aiScene& scene, const std::string& file) : scene_(scene), file_(file) {}

  // Nodes in the order of the file, without recursion: files nest them as deeply as they like.
  Mesh Build() {
    std::vector<Placed> open;
    if (scene_.mRootNode != nullptr) open.push_back({scene_.mRootNode, scene_.mRootNode->mTransformation});
    while (!open.empty()) {
      const Placed placed = open.back();
      open.pop_back();
      for (unsigned i = 0; i < placed.node->mNumMeshes; ++i) Add(*scene_.mMeshes[placed.node->mMeshes[i]], placed.place);
      for (unsigned i = placed.node->mNumChildren; i-- > 0;) {
        const aiNode* const child = placed.node->mChildren[i];
        open.push_back({child, placed.place * child->mTransformation});
      }
    }
    return std::move(mesh_);
  }

 private:
  void Add(const aiMesh& part, const aiMatrix4x4& place) {
    const std::size_t first = mesh_.points.size();
    for (unsigned i = 0; i < part.mNumVertices; ++i) AddPoint(place.IsIdentity() ? part.mVertices[i] : place * part.mVertices[i]);
    const bool isMirrored = place.Determinant() < 0;
    for (unsigned i = 0; i < part.mNumFaces; ++i) {
      const aiFace& face = part.mFaces[i];
      if (face.mNumIndices < 3) continue;  // a point or a line
      corners_.clear();
      for (unsigned k = 0; k < face.mNumIndices; ++k) {
        if (face.mIndices[k] >= part.mNumVertices) throw Failure(file_ + ": a face refers to a point that is not there");
        corners_.push_back(static_cast<std::uint32_t>(first + face.mIndices[k]));
      }
      if (isMirrored) std::reverse(corners_.begin(), corners_.end());
      AddPolygon(mesh_, corners_);
    }
  }

  void AddPoint(const aiVector3D& p) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
      throw Failure(file_ + ": a coordinate of point " + std::to_string(mesh_.points.size() + 1) + " is not a finite number");
    mesh_.points.emplace_back(p.x, p.y, p.z);
  }

  const aiScene& scene_;
  const std::string& file_;
  Mesh mesh_;
  std::vector<std::uint32_t> corners_;
};

// The number at a place of the binary form, its lowest byte first.
std::size_t NumberAt(const std::string& text, std::size_t at) {
  std::size_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8U | static_cast<unsigned char>(text[at + i]);
  return number;
}

// The binary form tells the lengths of its parts. Assimp makes room for what they say before it looks whether it is there.
void CheckLengths(const std::string& text, const std::string& file) {
  constexpr std::size_t kHeader = 12, kChunkHeader = 8, kTotalAt = 8;
  if (text.rfind("glTF", 0) != 0) return;
  const std::size_t total = text.size() < kHeader ? text.size() + 1 : NumberAt(text, kTotalAt);
  if (total > text.size()) throw Failure(file + ": the file ends too early");
  for (std::size_t at = kHeader; total >= at && total - at >= kChunkHeader;) {
    const std::size_t length = NumberAt(text, at), rest = total - at - kChunkHeader;
    if (length > rest) throw Failure(file + ": a part is said to be longer than the file");
    at += kChunkHeader + length;
  }
}

}  // namespace

Mesh ReadGltf(const std::string& text, const std::string& file) {
  CheckLengths(text, file);
  Assimp::Importer importer;
  KeepReaders(importer);
  try {
    const aiScene* const scene = importer.ReadFile(file, 0);
    if (scene == nullptr) throw Failure(file + ": " + Cause(importer.GetErrorString()));
    return MeshBuilder(*scene, file).Build();
  } catch (const Failure&) {
    throw;
  } catch (const std::exception& error) {
    throw Failure(file + ": " + Cause(error.what()));
  }
}

}  // namespace tool
