// The files that models come in: all formats tell the same.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "boxes.h"
#include "tool.h"

namespace {

using Json = nlohmann::json;

// A box of 2 x 1 x 3 with quadrilateral faces.
const char* const kPoints[] = {"0 0 0", "2 0 0", "2 1 0", "0 1 0", "0 0 3", "2 0 3", "2 1 3", "0 1 3"};
const int kFaces[][4] = {{3, 2, 1, 0}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};

std::string FacesText(const std::string& before, int first) {
  std::string text;
  for (const auto& face : kFaces) {
    text += before;
    for (const int corner : face) text.append(" ").append(std::to_string(corner + first));
    text += "\n";
  }
  return text;
}

std::string PointsText(const std::string& before, const std::string& after = "") {
  std::string text;
  for (const char* point : kPoints) text += before + point + after + "\n";
  return text;
}

std::string PlyHeader(const std::string& format, const std::string& corners = "vertex_indices") {
  return "ply\nformat " + format +
         " 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\n"
         "element face 6\nproperty list uchar int " +
         corners + "\nend_header\n";
}

// The test's machine stores the low byte first.
template <class T>
void AppendBytes(std::string& text, T value, bool reversed = false) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  text += reversed ? std::string(std::rbegin(bytes), std::rend(bytes)) : std::string(std::begin(bytes), std::end(bytes));
}

template <class T>
void AppendPoint(std::string& text, const char* point, bool reversed = false) {
  for (const int at : {0, 2, 4}) AppendBytes(text, static_cast<T>(point[at] - '0'), reversed);
}

std::string BinaryPly(bool bigEndian) {
  std::string text = PlyHeader(bigEndian ? "binary_big_endian" : "binary_little_endian");
  for (const char* point : kPoints) {
    AppendPoint<float>(text, point, bigEndian);
    text += '\xff';
  }
  for (const auto& face : kFaces) {
    text += '\4';
    for (const int corner : face) AppendBytes(text, corner, bigEndian);
  }
  return text;
}

std::string Stl(bool isBinary) {
  std::string text = isBinary ? "solid, as some exporters start binary files" : "solid box\n";
  if (isBinary) {
    text.resize(80, ' ');
    AppendBytes(text, 12);
  }
  for (const auto& face : kFaces) {
    for (const int second : {1, 2}) {
      text += isBinary ? std::string(12, '\0') : "facet normal 0 0 0\nouter loop\n";
      for (const int corner : {face[0], face[second], face[second + 1]}) {
        if (isBinary) AppendPoint<float>(text, kPoints[corner]);
        if (!isBinary) text += std::string("VERTEX ") + kPoints[corner] + "\n";
      }
      text += isBinary ? std::string(2, '\0') : "endloop\nendfacet\n";
    }
  }
  return isBinary ? text : text + "endsolid\n";
}

// The ways in which glTF tells of points and triangles.
struct GltfKind {
  int pointType = 5126, indexType = 5125, mode = 4;  // float, 32 bits, triangles
  int gap = 0;                                       // bytes between points
  bool isSparse = false;                             // point 6 is elsewhere at first
  const char* nodes = R"([{"mesh":0}])";
};

std::string GltfBytes(const GltfKind& kind) {
  std::string bytes;
  for (const char* given : kPoints) {
    const char* const point = kind.isSparse && given == kPoints[6] ? "7 7 7" : given;
    kind.pointType == 5126 ? AppendPoint<float>(bytes, point) : AppendPoint<std::int8_t>(bytes, point);
    bytes.append(static_cast<std::size_t>(kind.gap), 'x');
  }
  const auto addIndices = [&](const std::vector<int>& indices) {
    for (const int index : indices) {
      if (kind.indexType == 5121) AppendBytes(bytes, static_cast<std::uint8_t>(index));
      if (kind.indexType == 5123) AppendBytes(bytes, static_cast<std::uint16_t>(index));
      if (kind.indexType == 5125) AppendBytes(bytes, index);
    }
  };
  for (const auto& f : kFaces) {
    if (kind.mode == 4) addIndices({f[0], f[1], f[2], f[0], f[2], f[3]});
    if (kind.mode == 5) addIndices({f[0], f[1], f[3], f[2]});
    if (kind.mode == 6) addIndices({f[0], f[1], f[2], f[3]});
  }
  addIndices({6});
  AppendPoint<float>(bytes, kPoints[6]);
  return bytes;
}

// A primitive for each face.
Json Gltf(const GltfKind& kind) {
  const bool isFloat = kind.pointType == 5126;
  const int stride = (isFloat ? 12 : 3) + kind.gap, corners = kind.mode == 4 ? 6 : 4;
  const int indexSize = kind.indexType == 5121 ? 1 : (kind.indexType == 5123 ? 2 : 4);
  const Json all = {{"buffer", 0}, {"byteLength", GltfBytes(kind).size()}};
  Json gltf = {
      {"asset", {{"version", "2.0"}}}, {"nodes", Json::parse(kind.nodes)}, {"bufferViews", {all, all}}, {"buffers", {all}}};
  gltf["scenes"][0]["nodes"] = {0};
  gltf["bufferViews"][1]["byteStride"] = stride;
  gltf["accessors"][0] = {
      {"bufferView", 1}, {"count", 8}, {"type", "VEC3"}, {"componentType", kind.pointType}, {"normalized", !isFloat}};
  Json index = {{"bufferView", 0}, {"count", corners}, {"type", "SCALAR"}, {"componentType", kind.indexType}};
  for (int face = 0; face < 6; ++face) {
    index["byteOffset"] = 8 * stride + face * corners * indexSize;
    gltf["accessors"].push_back(index);
    gltf["meshes"][0]["primitives"].push_back({{"attributes", {{"POSITION", 0}}}, {"indices", face + 1}, {"mode", kind.mode}});
  }
  if (kind.isSparse) {
    index["byteOffset"] = 8 * stride + 6 * corners * indexSize;
    const Json value = {{"bufferView", 0}, {"byteOffset", 8 * stride + (6 * corners + 1) * indexSize}};
    gltf["accessors"][0]["sparse"] = {{"count", 1}, {"indices", index}, {"values", value}};
  }
  return gltf;
}

std::string Glb(const GltfKind& kind) {
  const std::string json = Gltf(kind).dump(), bytes = GltfBytes(kind);
  std::string text = "glTF";
  for (const std::size_t number : {std::size_t{2}, 28 + json.size() + bytes.size(), json.size()})
    AppendBytes(text, static_cast<std::uint32_t>(number));
  text += "JSON" + json;
  AppendBytes(text, static_cast<std::uint32_t>(bytes.size()));
  return text + std::string("BIN\0", 4) + bytes;
}

TEST_F(Tool, ModelsOfAllFormats) {
  Write("box.obj", "v 9 9 9\n" + PointsText("v ") + FacesText("f", 2));
  Write("corners.obj", PointsText("v ") + "vt 0 0\nvn 0 0 1\ng top\nf 5/1/1 6//1 \\\n7/1 8\nl 1 2\n");
  Write("box.off", "OFF # counts:\n8 6 0\n" + PointsText("") + FacesText("4", 0));
  Write("text.ply", PlyHeader("ascii", "vertex_index") + PointsText("", " 255") + FacesText("4", 0));
  Write("little.ply", BinaryPly(false));
  Write("big.ply", BinaryPly(true));
  Write("text.stl", Stl(false));
  Write("binary.stl", Stl(true));
  for (const std::string file : {"box.obj", "box.off", "text.ply", "text.stl"}) {
    std::string text = Read(file);
    std::replace(text.begin(), text.end(), '\n', '\r');
    Write("mac-" + file, text);
  }
  Json beside = Gltf({});
  beside["buffers"][0]["uri"] = "the%20bytes";
  Write("beside.gltf", beside.dump());
  Write("the bytes", GltfBytes({}));
  const GltfKind kinds[] = {{},
                            {5126, 5121, 5, 3},
                            {5126, 5123, 6, 4, true},
                            {5126, 5121, 4, 0, false,
                             R"([{"children":[1],"translation":[3,0,1]},{"mesh":0,"rotation":[0,0,0.707,0.707],"scale":[1,2,1]}])"},
                            {5126, 5125, 4, 0, false, R"([{"mesh":0,"matrix":[1,0,0,0,0,1,0,0,0,0,-1,0,0,0,3,1]}])"},  // mirrored
                            {5120, 5123, 5, 1, false, R"([{"mesh":0,"scale":[127,127,127]}])"},
                            {5126, 5121, 4, 0, false,  // three thirds of a turn
                             R"([{"children":[1],"rotation":[0.5,0.5,0.5,0.5]},{"children":[2],"rotation":[0.5,0.5,0.5,0.5]},
                                 {"mesh":0,"rotation":[0.5,0.5,0.5,0.5]}])"}};
  std::vector<std::string> files = Files();
  files.erase(std::find(files.begin(), files.end(), "the bytes"));
  for (const GltfKind& kind : kinds) {
    files.push_back(std::to_string(files.size()) + ".glb");
    Write(files.back(), Glb(kind));
  }
  for (const std::string& file : files) {
    const std::string height = file == "16.glb" ? "4" : "3";  // raised by its node
    EXPECT_NE(Output("pick --view top --axes z " + file + " 1.5 0.5").find(" height " + height + "\n"), std::string::npos) << file;
    if (file == "corners.obj") continue;
    EXPECT_EQ(Info(file, "triangles"), "12") << file;
    EXPECT_NE(Info(file, "clean"), "") << file;
  }
  const char* const touching = R"([{"children":[1,2]},{"mesh":0},{"mesh":0,"translation":[2,0,0]}])";
  Write("two.glb", Glb({5126, 5125, 4, 0, false, touching}));
  EXPECT_EQ(Info("two.glb", "shells") + Info("two.glb", "clean").substr(0, 6), "2closed") << "nodes that touch are bodies";
  EXPECT_EQ(Output("pick beside.gltf --view front 1.5 0.5"), Output("pick box.obj --view top 1.5 0.5")) << "y is up";
  const std::string stl = Read("binary.stl");
  EXPECT_EQ(Output("pick - --model-format stl 1.5 0.5", stl), Output("pick text.stl 1.5 0.5"));
  EXPECT_EQ(Output("info - --model-format stl | tail -n +2", stl), Output("info binary.stl | tail -n +2"));
  EXPECT_EQ(Output("outline - --view top --model-format stl -o - --format wkt", stl), "POLYGON ((0 1, 0 0, 2 0, 2 1, 0 1))\n");
  EXPECT_EQ(Output("draw --object -,1,0,0 --view top --model-format stl --title x -o - --format svg", stl),
            Output("draw --object text.stl,1,0,0 --view top --title x -o - --format svg"));
}

TEST_F(Tool, CoordinatesOfPlyMayBeWholeNumbersWithSign) {
  std::string text =
      "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty char x\nproperty short y\nproperty int z\n"
      "element face 1\nproperty list uchar ushort vertex_index\nend_header\n";
  for (const auto& [x, y] : {std::pair(-128, -32768), std::pair(127, -32768), std::pair(-128, -32000)}) {
    AppendBytes(text, static_cast<std::int8_t>(x));
    AppendBytes(text, static_cast<std::int16_t>(y));
    AppendBytes(text, std::int32_t{-70000});
  }
  text += '\3';
  for (const int corner : {0, 1, 2}) AppendBytes(text, static_cast<std::uint16_t>(corner));
  Write("m.ply", text);
  const std::string picked = Output("pick --view top --axes z m.ply -127 -32760");
  EXPECT_NE(picked.find(" height -70000\n"), std::string::npos) << picked;
}

TEST_F(Tool, BinaryModelsThatEndTooEarly) {
  const std::string glb = Glb({});
  const struct {
    const char* file;
    std::string text;
    const char* error;
  } kCases[] = {
      {"m.ply", BinaryPly(false).substr(0, 300), ": the file ends too early"},
      {"m.stl", Stl(true).substr(0, 600).replace(0, 5, "bytes"), ": the file ends before the last of its 12 triangles"},
      {"m.stl", Stl(true).substr(0, 600).replace(0, 5, "solid"), ": the file ends before the last of its 12 triangles"},
      {"m.glb", glb.substr(0, 600), ": the file ends too early"},
      {"m.glb", glb.substr(0, 12) + "\xf0\xff\xff\xff" + glb.substr(16), ": a part is said to be longer than the file"},
      {"m.glb", glb.substr(0, 4) + "\1" + glb.substr(5), ": glTF of another version than 2"},
      {"m.glb", glb.substr(0, 40) + "\1" + glb.substr(41), ": syntax error while parsing object key"},
  };
  for (const auto& c : kCases) {
    Write(c.file, c.text);
    const Outcome outcome = Run(std::string("info ") + c.file);
    EXPECT_EQ(outcome.err.rfind(c.file + std::string(c.error), 0), 0U) << outcome.err;
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.out, "");
  }
}

}  // namespace
