// `zbr pick`, and the files that models come in.

#include <cstring>

#include "tool.h"

namespace {

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

std::string PointsText(const std::string& before) {
  std::string text;
  for (const char* point : kPoints) text += before + point + "\n";
  return text;
}

std::string PlyHeader(const std::string& format) {
  return "ply\nformat " + format +
         " 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\n"
         "element face 6\nproperty list uchar int vertex_indices\nend_header\n";
}

template <class T>
void AppendBytes(std::string& text, T value, bool reversed) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  text += reversed ? std::string(std::rbegin(bytes), std::rend(bytes)) : std::string(std::begin(bytes), std::end(bytes));
}

// The test's machine stores the low byte first.
std::string BinaryPly(bool bigEndian) {
  std::string text = PlyHeader(bigEndian ? "binary_big_endian" : "binary_little_endian");
  for (const char* point : kPoints) {
    for (const int at : {0, 2, 4}) AppendBytes(text, static_cast<float>(point[at] - '0'), bigEndian);
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
    AppendBytes(text, 12, false);
  }
  for (const auto& face : kFaces) {
    for (const int second : {1, 2}) {
      text += isBinary ? std::string(12, '\0') : "facet normal 0 0 0\nouter loop\n";
      for (const int corner : {face[0], face[second], face[second + 1]}) {
        if (!isBinary) text += std::string("vertex ") + kPoints[corner] + "\n";
        for (const int at : {0, 2, 4}) {
          if (isBinary) AppendBytes(text, static_cast<float>(kPoints[corner][at] - '0'), false);
        }
      }
      text += isBinary ? std::string(2, '\0') : "endloop\nendfacet\n";
    }
  }
  return isBinary ? text : text + "endsolid\n";
}

// A node that mirrors the box, which is given by its upper face alone.
const char* const kGltf =
    R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0,"scale":[2,3,-1]}],)"
    R"("meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],)"
    R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,1,0],"max":[1,1,1]}],)"
    R"("bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36,)"
    R"("uri":"data:application/octet-stream;base64,AAAAAAAAgD8AAAAAAACAPwAAgD8AAAAAAAAAAAAAgD8AAIA/"}]})";

TEST_F(Tool, PickTellsTriangleAndHeight) {
  Write("box.obj", "# box\n" + PointsText("v ") + FacesText("f", 1));
  EXPECT_EQ(Run("pick box.obj --view top 1 0.3 2.5 0.5 1e300 0").out,
            "1 0.3 shell 0 triangle 2 height 3\n2.5 0.5 nothing\n1e+300 0 nothing\n");
  EXPECT_EQ(Run("pick box.obj --view right", "0.5 1\n0.25 2.75\n").out,
            "0.5 1 shell 0 triangle 6 height 2\n0.25 2.75 shell 0 triangle 7 height 2\n");
  EXPECT_EQ(Run("pick box.obj --look 0,0,1 --up 0,1,0 -- -0.5 0.3").out, "-0.5 0.3 shell 0 triangle 1 height 0\n");
  EXPECT_EQ(Run("pick box.obj --view front --axes y 1 0.5").out, Run("pick box.obj --view top 1 0.5").out);
  // The nearer of two bodies, of which the second one in the file is in the first shell's way.
  Write("two.obj", PointsText("v ") + FacesText("f", 1) + "v 0 0 5\nv 2 0 5\nv 0 1 5\nf -3 -2 -1\n");
  EXPECT_EQ(Run("pick two.obj --view top 0.5 0.3 1.5 0.9").out,
            "0.5 0.3 shell 1 triangle 12 height 5\n1.5 0.9 shell 0 triangle 3 height 3\n");
}

TEST_F(Tool, ModelsOfAllFormats) {
  Write("box.obj", "v 9 9 9\n" + PointsText("v ") + FacesText("f", 2));
  Write("corners.obj", PointsText("v ") + "vt 0 0\nvn 0 0 1\ng top\nf 5/1/1 6//1 \\\n7/1 8\nl 1 2\n");
  Write("box.off", "OFF # counts:\n8 6 0\n" + PointsText("") + FacesText("4", 0));
  Write(
      "text.ply", PlyHeader("ascii") + [&] {
        std::string text;
        for (const char* point : kPoints) text += std::string(point) + " 255\n";
        return text;
      }() + FacesText("4", 0));
  Write("little.ply", BinaryPly(false));
  Write("big.ply", BinaryPly(true));
  Write("text.stl", Stl(false));
  Write("binary.stl", Stl(true));
  Write("mirrored.gltf", kGltf);
  for (const char* file : {"box.obj", "corners.obj", "box.off", "text.ply", "little.ply", "big.ply", "text.stl", "binary.stl"}) {
    const Outcome outcome = Run(std::string("pick --view top ") + file + " 1.5 0.5");
    EXPECT_NE(outcome.out.find(" height 3\n"), std::string::npos) << file << ": " << outcome.out << outcome.err;
  }
  // y is up; seen from above, the depth runs upwards.
  EXPECT_EQ(Run("pick mirrored.gltf --view top 1 0.25").out, "1 0.25 shell 0 triangle 0 height 3\n");
  EXPECT_EQ(Run("pick mirrored.gltf --view top --axes z 1 0.25").out, "1 0.25 nothing\n");
}

TEST_F(Tool, MalformedModels) {
  const std::string points = PointsText("v ");
  const std::string ply = PlyHeader("ascii");
  struct Case {
    const char* file;
    std::string text;
    const char* error;
  };
  const Case kCases[] = {
      {"m.obj", "v 0 0 0\nv 1 nan 0\n", ":2: 'nan' is not a finite number"},
      {"m.obj", "v 0 0 0\nv 1 0\n", ":2: a number is missing"},
      {"m.obj", "v 1e300 0 0\nv 0 1 0\nv 0 0 1\nf 1 2 3\n", ": a coordinate of point 1 is too large"},
      {"m.obj", points + "f 1 2 9\n", ":9: point 9 of a face is not among the 8 before it"},
      {"m.obj", points + "f -1 -2 -9\n", ":9: point -9 of a face is not among the 8 before it"},
      {"m.obj", points + "f 1 0 2\n", ":9: point 0 of a face is not among the 8 before it"},
      {"m.obj", points + "f 1 x/2 2\n", ":9: 'x' is not a whole number"},
      {"m.obj", points + "f 1 2\n", ":9: a face needs three points"},
      {"m.obj", points + "l 1 2\n", ": no triangles"},
      {"m.obj", points + "f 1 1 2\n", ": no triangles with an area"},
      {"m.obj", "", ": the file is empty"},
      {"m.off", "OFF\n3 1 0\n0 0 0\n", ":4: a number is missing"},
      {"m.off", "OFF\n1 1 0\n0 0 0\n3 0 0 1\n", ":4: point 1 of a face is not among the 1"},
      {"m.off", "4OFF\n", ":1: OFF expected, but found '4OFF'"},
      {"m.ply", "plx\n", ":1: 'ply' expected"},
      {"m.ply", "ply\nformat ascii 1.0\n", ":3: the file ends within the header"},
      {"m.ply", "ply\nelement vertex 1\nproperty real x\n", ":3: 'real' is no type of numbers"},
      {"m.ply", "ply\nformat text 1.0\nelement vertex 999999999999\nend_header\n", ":4: unknown format 'text'"},
      {"m.ply", ply + "0 0 0 0\n0 0 inf 0\n", ":12: 'inf' is not a finite number"},
      {"m.ply", BinaryPly(false).substr(0, 300), ": the file ends too early"},
      {"m.stl", "solid\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nendloop\n", ":6: a triangle of 2 points"},
      {"m.stl", "solid\nfacet\nouter loop\nvertex 0 0 0\n", ":5: the file ends within a triangle"},
      {"m.stl", "hello", ":1: unexpected 'hello'"},
      {"m.stl", Stl(true).substr(0, 600).replace(0, 5, "bytes"), ": the file ends before the last of its 12 triangles"},
      {"m.glb", std::string("glTF\2\0\0\0\x18\0\0\0\xf0\xff\xff\xffJSON{}  ", 24), ": a part is said to be longer than the file"},
      {"m.glb", std::string("glTF\2\0\0\0\x19\0\0\0\4\0\0\0JSON{}  ", 24), ": the file ends too early"},
      {"m.txt", points, ": not known as a model; names end in .stl, .obj, .ply, .off, .gltf or .glb"},
  };
  for (const Case& c : kCases) {
    Write(c.file, c.text);
    const Outcome outcome = Run(std::string("pick ") + c.file + " 0 0");
    EXPECT_EQ(outcome.err, std::string(c.file) + c.error + "\n");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.out, "");
  }
  Write("box.obj", points + FacesText("f", 1));
  EXPECT_EQ(Run("pick box.obj 1").err, "a point needs two numbers, but there are 1\n");
  EXPECT_EQ(Run("pick box.obj --look 1,2 0 0").err,
            "--look: '1,2' is no vector; three finite numbers are needed, as in 1,0,-0.5\n");
  EXPECT_EQ(Run("pick box.obj --look 0,0,1 0 0").err,
            "--look: the direction of view is the upward one; choose another with --up\n");
  EXPECT_EQ(Run("pick box.obj --up 0,0,1 0 0").err, "--up needs --look\n");
  EXPECT_EQ(Run("pick box.obj --view nowhere 0 0").err,
            "--view: 'nowhere' is none of front, back, left, right, top, bottom, iso, dimetric\n");
  EXPECT_EQ(Run("pick none.obj 0 0").err, "none.obj: cannot open: No such file or directory\n");
}

}  // namespace
