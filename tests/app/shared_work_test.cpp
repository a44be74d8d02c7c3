// Files read and models made by several threads are those of one thread, and broken files say the same. One thread goes through a
// text line by line and never sees a range, so it is the slow version that the ranges are held against.
#include <zbr-drawing/failure.h>
#include <zbr-drawing/scene.h>
#include <zbr-formats/meshes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "models/models.h"

namespace zbr::formats {
namespace {

constexpr unsigned kThreads = 3;

std::string PointText(std::mt19937& random, const char* between) {
  std::string text;
  for (int axis = 0; axis < 3; ++axis) text += between + std::to_string(static_cast<double>(random() % 100000) / 1000 - 50);
  return text;
}

// Points and faces by turns over some ranges: faces of three corners and more, counted from either end; lines that go on, comments,
// other keywords and all ends of lines.
std::string LongObj(unsigned seed, std::size_t lines) {
  std::mt19937 random(seed);
  std::string text = "# a comment that does not go on \\\n";
  std::size_t points = 0;
  for (std::size_t line = 0; line < lines; ++line) {
    const auto kind = random() % 20;
    const std::string end = random() % 5 == 0 ? " \r\n" : "\n";
    if (kind < 8 || points < 8) {
      text += (random() % 9 == 0 ? " \tv" : "v") + PointText(random, random() % 4 == 0 ? "\t" : " ") + end;
      ++points;
    } else if (kind < 18) {
      text += "f";
      const std::size_t first = 1 + random() % (points - 7), size = 3 + (random() % 6 == 0 ? random() % 3 : 0);
      const bool isBackwards = random() % 3 == 0;
      for (std::size_t k = 0; k < size; ++k) {
        if (random() % 40 == 0) text += " \\\r\n";
        text += " " + (isBackwards ? "-" + std::to_string(points + 1 - first - k) : std::to_string(first + k));
        if (random() % 4 == 0) text += "/7/" + std::to_string(random() % 9);
      }
      text += end;
    } else {
      text += (kind == 18 ? "vn 0 0 1 # \\" : "usemtl v\\ 1") + end;
    }
  }
  return text;
}

std::string LongStl(unsigned seed, std::size_t triangles) {
  std::mt19937 random(seed);
  std::string text = "solid part\n";
  for (std::size_t t = 0; t < triangles; ++t) {
    text += random() % 2 == 0 ? "  facet normal 0 0 1\n outer loop\n" : "FACET normal 0 0 1\n outer loop\n";
    for (int corner = 0; corner < 3; ++corner) text += "  vertex" + PointText(random, " ") + "\n";
    text += "endloop\nendfacet\n\n";
  }
  return text + "endsolid part\n";
}

// What is read, or what is said against it.
struct Outcome {
  Mesh mesh;
  std::string failure;
};

Outcome Read(const std::string& format, const std::string& text, unsigned threads) {
  Outcome outcome;
  try {
    outcome.mesh = ParseMesh(format, text, "part." + format, {}, threads);
  } catch (const Failure& failure) {
    outcome.failure = failure.what();
  }
  return outcome;
}

template <class T>
bool AreSameBytes(const std::vector<T>& a, const std::vector<T>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

Outcome ExpectSame(const std::string& format, const std::string& text) {
  Outcome one = Read(format, text, 1);
  const Outcome several = Read(format, text, kThreads);
  EXPECT_EQ(one.failure, several.failure);
  EXPECT_TRUE(AreSameBytes(one.mesh.points, several.mesh.points));
  EXPECT_TRUE(AreSameBytes(one.mesh.triangles, several.mesh.triangles));
  return one;
}

TEST(SharedWork, LongTextsAreReadAsByOneThread) {
  for (unsigned seed = 0; seed < 4; ++seed) {
    EXPECT_GT(ExpectSame("obj", LongObj(seed, 60000)).mesh.triangles.size(), 20000U) << seed;
    EXPECT_EQ(ExpectSame("stl", LongStl(seed, 6000)).mesh.triangles.size(), 6000U) << seed;
  }
  // Nothing here would make a range fail: lines that go on are faces without that, too, and points are counted backwards where a
  // range has many before.
  std::string lines, faces;
  for (int k = 0; k < 25000; ++k) lines += "v " + std::to_string(k) + " " + std::to_string(k % 7) + " 0\n";
  for (int k = 0; k < 25000; ++k) faces += "f 1 2 " + std::to_string(3 + k % 9) + " \\\r\n 20\n";
  EXPECT_EQ(ExpectSame("obj", lines + faces).mesh.triangles.size(), 50000U);
  EXPECT_EQ(ExpectSame("obj", lines + "f -1 -2 -8\n").mesh.triangles.size(), 1U);
  // What goes on with the line behind, wherever ranges end.
  std::string goesOn = "# ";
  for (int k = 0; k < 1 << 14; ++k) goesOn += std::string(30, ' ') + "\\\n";
  EXPECT_EQ(ExpectSame("obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nusemtl" + goesOn.substr(1) + "v 1 2 3\n").mesh.points.size(),
            3U);
}

// Triangles beside each other; those named have a coordinate that is no number.
std::string BinaryStl(std::uint32_t triangles, const std::vector<std::uint32_t>& broken) {
  std::string text(84 + std::size_t{50} * triangles, '\0');
  std::memcpy(text.data() + 80, &triangles, 4);
  for (std::uint32_t t = 0; t < triangles; ++t) {
    float corners[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    for (const int x : {0, 3, 6}) corners[x] += static_cast<float>(2 * t);
    if (std::find(broken.begin(), broken.end(), t) != broken.end()) corners[4] = std::numeric_limits<float>::quiet_NaN();
    std::memcpy(text.data() + 84 + std::size_t{50} * t + 12, corners, sizeof corners);
  }
  return text;
}

TEST(SharedWork, BinaryStlIsReadInOrderAndItsFirstFaultTold) {
  constexpr std::uint32_t kTriangles = 50000;
  for (const unsigned threads : {1U, kThreads}) {
    const Outcome whole = Read("stl", BinaryStl(kTriangles, {}), threads);
    ASSERT_EQ(whole.mesh.points.size(), 3 * kTriangles) << whole.failure;
    for (std::uint32_t t = 0; t < kTriangles; ++t) ASSERT_EQ(whole.mesh.points[3 * t + 1], ZBR_PT3(2.0 * t + 1, 0, 0));
    EXPECT_NE(Read("stl", BinaryStl(kTriangles, {49999, 33000, 20000}), threads).failure.find("triangle 20001 "),
              std::string::npos);
    EXPECT_NE(Read("stl", BinaryStl(kTriangles, {49999}), threads).failure.find("triangle 50000 "), std::string::npos);
  }
}

TEST(SharedWork, TrianglesOfScenesKeepTheirListsUntilTheyEnd) {
  SceneTriangles triangles;
  triangles.resize(40000, kThreads);
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    ASSERT_EQ(triangles[t].idx, -1);
    triangles[t].idx = static_cast<int>(t);
    triangles[t].intvl_v[t % 3].resize(1 + t % 2);
  }
  triangles.resize(40001);  // moves all
  triangles.back().idx = 40000;
  triangles.resize(20000, kThreads);
  triangles.resize(60000, kThreads);
  const SceneTriangles moved = std::move(triangles);
  ASSERT_EQ(moved.size(), 60000U);
  for (std::size_t t = 0; t < moved.size(); ++t) {
    ASSERT_EQ(moved[t].idx, t < 20000 ? static_cast<int>(t) : -1);
    for (std::size_t i = 0; i < 3; ++i) ASSERT_EQ(moved[t].intvl_v[i].size(), t < 20000 && i == t % 3 ? 1 + t % 2 : 0);
  }
}

// In the place of any line: what is no number, points that come later or never, faces too small, triangles of other than three
// points, what goes on with the line behind, and points that no line begins with.
TEST(SharedWork, BrokenTextsSayTheSame) {
  const auto breakAt = [](std::string text, std::size_t at, const std::string& line) {
    at = text.find('\n', at) + 1;
    return text.replace(at, text.find('\n', at) - at, line);
  };
  std::mt19937 random(11);
  const std::string obj = LongObj(5, 25000), stl = LongStl(5, 3000);
  std::size_t failed = 0;
  for (const char* line : {"v 1 2", "v 1 x 2", "f 1 2", "f 1 2 9999999", "f 1 2 -9999999", "f 1 2 0", "f 1 2 99999999999999999999",
                           "f 9223372036854775807 1 -9223372036854775808", "f 1 2 \\", "v 1 \\", "\\\nv 1 2 3"}) {
    for (int k = 0; k < 4; ++k)
      failed += ExpectSame("obj", breakAt(obj, random() % (obj.size() - 100), line)).failure.empty() ? 0 : 1;
  }
  for (const char* line : {"vertex 1 2", "vertex 0 0 0", "facet", "endloop", "endfacets", "vertex 1 2 \\"}) {
    for (int k = 0; k < 4; ++k)
      failed += ExpectSame("stl", breakAt(stl, random() % (stl.size() - 100), line)).failure.empty() ? 0 : 1;
  }
  EXPECT_GT(failed, 20U);
}

void ExpectSame(const Model& a, const Model& b) {
  ASSERT_EQ(a.shellBegin, b.shellBegin);
  ASSERT_EQ(a.edgeBegin, b.edgeBegin);
  EXPECT_EQ(a.source, b.source);
  EXPECT_EQ(a.facing, b.facing);
  EXPECT_TRUE(AreSameBytes(a.normals, b.normals));
  EXPECT_EQ((std::array{a.collapsed, a.repeated, a.flat, a.pointCount, a.junctions, a.junctionCopies}),
            (std::array{b.collapsed, b.repeated, b.flat, b.pointCount, b.junctions, b.junctionCopies}));
  EXPECT_EQ(a.low, b.low);
  EXPECT_EQ(a.high, b.high);
  EXPECT_EQ(a.isRough, b.isRough);
  const drawing::View view = drawing::LookAlong(ZBR_PT3(1, 2, -3), ZBR_PT3(0, 0, 1));
  const drawing::Scene one = MakeScene(a, view, {}, true, 1), several = MakeScene(b, view, {}, true, kThreads);
  EXPECT_EQ(one.classes, several.classes);
  EXPECT_EQ(one.drawable, several.drawable);
  const auto isSame = [](const ZBR_HL_TRI& s, const ZBR_HL_TRI& t) {
    return std::memcmp(s.pt, t.pt, sizeof s.pt) == 0 && std::memcmp(s.adj, t.adj, sizeof s.adj) == 0 &&
           std::memcmp(s.adj_edge, t.adj_edge, sizeof s.adj_edge) == 0;
  };
  EXPECT_TRUE(std::equal(one.triangles.begin(), one.triangles.end(), several.triangles.begin(), several.triangles.end(), isSame));
}

void ExpectSources(const Model& model, const Mesh& mesh) {
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
      const auto& source = mesh.triangles[model.source[model.shellBegin[s] + static_cast<std::size_t>(k)]];
      ASSERT_EQ(shell.GetTriangle(k)->GetVertex0()->GetPt(), mesh.points[source[0]]);
      ASSERT_EQ(shell.GetTriangle(k)->GetVertex1()->GetPt(), mesh.points[source[1]]);
    }
  }
}

// Every corner with a point of its own, as in STL files.
Mesh Loose(const Mesh& mesh) {
  Mesh loose;
  for (const auto& t : mesh.triangles) {
    for (const std::uint32_t corner : t) loose.points.push_back(mesh.points[corner]);
    const auto count = static_cast<std::uint32_t>(loose.points.size());
    loose.triangles.push_back({count - 3, count - 2, count - 1});
  }
  return loose;
}

// One surface, many bodies, and many bodies one of which is more than a shell: boxes that
// meet at an edge or at a corner, a box that is there twice, and triangles in any order.
TEST(SharedWork, ModelsAreThoseOfOneThread) {
  const Mesh boxes = example::BoxesOnPlate(40);
  Mesh joined = boxes, twice = boxes, touching = boxes;
  example::Append(joined, example::Box(ZBR_PT3(-9, -9, 5), ZBR_PT3(-8, -8, 6)));
  example::Append(joined, example::Box(ZBR_PT3(-8, -8, 5), ZBR_PT3(-7, -7, 6)));
  for (const double at : {-9.0, -8.0})
    example::Append(touching, example::Box(ZBR_PT3(at, at, at), ZBR_PT3(at + 1, at + 1, at + 1)));
  for (int k = 0; k < 2; ++k) example::Append(twice, example::Box(ZBR_PT3(-9, -9, 5), ZBR_PT3(-8, -8, 6)));
  Mesh mixed = joined;
  std::shuffle(mixed.triangles.begin(), mixed.triangles.end(), std::mt19937(7));
  for (const Mesh& mesh : {example::Torus(50000), boxes, joined, twice, touching, mixed}) {
    const Model one = MakeModel(mesh, 30.0), several = MakeModel(mesh, 30.0, 0.0, kThreads);
    ExpectSources(one, mesh);
    ExpectSame(one, several);
    ExpectSame(one, MakeModel(Loose(mesh), 30.0, 0.0, kThreads));
  }
  const Model clean = MakeModel(boxes, 30.0), dirty = MakeModel(joined, 30.0, 0.0, kThreads);
  EXPECT_EQ(dirty.ShellCount(), clean.ShellCount() + 2);
  EXPECT_EQ(dirty.junctions, 1U);
  for (std::size_t s = 0; s < clean.ShellCount(); ++s) ASSERT_EQ(clean.shellBegin[s], dirty.shellBegin[s]);
  EXPECT_EQ(MakeModel(touching, 30.0, 0.0, kThreads).ShellCount(), clean.ShellCount() + 2);
  EXPECT_EQ(MakeModel(twice, 30.0, 0.0, kThreads).repeated, 12U);
}

}  // namespace
}  // namespace zbr::formats
