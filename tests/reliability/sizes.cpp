// Sizes that nobody expects: from nothing to ten million edges, rings nested a hundred thousand deep, a million equal segments.
// usage: zbr-sizes [FACTOR] [CASE...]   FACTOR multiplies the sizes (1); cases by name, all when none is given
//
// Each case runs with 0, 1, 2, 3 and 10 of what it counts, then with its full size; each run is a process of its own, whose stack
// is too small for a recursion as deep as the input. Prints time and peak memory of the full size and fails if a result is wrong.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "hiddenline/scenes.h"
#include "reliability/process.h"

namespace {

// The corners of a regular polygon, more or less, by a rational formula; with teeth about as long as its sides.
Ring Star(int n, double radius) {
  Ring ring;
  const double tooth = 1.0 - 10.0 / (n + 10);
  for (int i = 0; i < n; ++i) {
    const bool upper = 2 * i < n;
    const double s = 4.0 * i / n - (upper ? 1.0 : 3.0);
    const double r = (upper ? radius : -radius) * (i % 2 == 0 ? 1.0 : tooth) / (1.0 + s * s);
    ring.emplace_back(-2.0 * s * r, (1.0 - s * s) * r);
  }
  return ring;
}

bool Near(double a, double b) {
  return std::abs(a - b) <= 1e-6 * (std::abs(a) + std::abs(b));
}

// Two stars of n / 2 edges: union and intersection must have the area of both.
bool Boolean(int n) {
  const LoopList A = Nest({Star(n / 2, 1000.0)});
  const LoopList B = Nest({Moved({Star(n / 2, 1000.0)}, 1.0, {300.0, 100.0})});
  ZBR_BOOLEAN_OPE ops[] = {ZBR_BOOL_OR, ZBR_BOOL_AND};
  LoopList results[2];
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(A, B, ops, results, 2, crosses);
  return Near(NetArea(A) + NetArea(B), NetArea(results[0]) + NetArea(results[1]));
}

// Far apart enough for the tolerance, and near enough to the origin for its own being far above the rounding errors.
constexpr double kStep = 0.125;
std::vector<Ring> Squares(int n) {
  std::vector<Ring> rings;
  for (int k = 0; k < n; ++k) rings.push_back(Square((k - n) * kStep, (k - n) * kStep, 2.0 * (n - k) * kStep));
  return rings;
}

// n squares around one another: nested, copied, located in, cutting a line, and united with a bar from their middle to beyond.
bool NestedRings(int n) {
  const LoopList region = Nest(Squares(n));
  LoopList copy;
  ZBR_LOOP::DeepCopyLoops(copy, region);
  ZBR_LOOP::Offset(copy, {0.0, 1.0});
  std::vector<ZBR_SEG3> inside;
  const ZBR_PT3 far(n + 1.0, 0.5 * kStep, 0.0);
  const int pieces = zbrClipSeg({-far, far}, region, inside, nullptr);
  const bool isIn = ZBR_LOOP_LOCATOR(region).IsInside({0.05, 0.05}) == ZBR_PI_IN;
  const LoopList bar = Nest({{{0.0, -0.05}, {n + 1.0, -0.05}, {n + 1.0, 0.05}, {0.0, 0.05}}});
  LoopList both;
  LoopList either;
  zbrBooleanLoops(region, bar, ZBR_BOOL_AND, both);
  zbrBooleanLoops(region, bar, ZBR_BOOL_OR, either);
  return NetArea(copy) == NetArea(region) && pieces == n && isIn == (n % 2 == 1) &&
         Near(NetArea(region) + NetArea(bar), NetArea(both) + NetArea(either));
}

// A tree of loops as deep as there are loops, which the library itself never makes.
bool DeepTree(int n) {
  LoopList tree;
  for (int k = 0; k < n; ++k) {
    const auto loop = MakeLoop(Square(0, 0, 1));
    loop->Setup();
    loop->children().swap(tree);
    tree.push_back(loop);
  }
  LoopList copy;
  ZBR_LOOP::DeepCopyLoops(copy, tree);
  ZBR_LOOP::Offset(copy, {1.0, 1.0});
  return ZBR_LOOP::get_area(tree) == n && ZBR_LOOP::get_area(copy) == n;
}

// Segments from x = k * step, of length 1.
std::vector<ZBR_HL_OPT_PT> Ends(int n, double step) {
  std::vector<ZBR_HL_OPT_PT> ends(2 * static_cast<std::size_t>(n));
  for (int i = 0; i < 2 * n; ++i) ends[static_cast<std::size_t>(i)].pt.Set(i / 2 * step + i % 2, 0.0);
  return ends;
}

// n times the same segment, and n in a row.
bool Segments(int n) {
  std::vector<ZBR_HL_OPT_PT> same = Ends(n, 0.0);
  std::vector<ZBR_HL_OPT_PT> row = Ends(n, 1.0);
  std::vector<ZBR_SEG> segs(static_cast<std::size_t>(n), ZBR_SEG({0, 0}, {1, 0}));
  std::vector<std::vector<ZBR_PT>> lines;
  LoopList loops;
  const std::size_t some = n > 0 ? 1 : 0;
  bool good = zbrOptimizeSegs(same, lines) == static_cast<int>(some) && lines.size() == some;
  good &= zbrMakeOutLineLoops(same, loops) == 0;
  good &= zbrOptimizeSegs(row, lines) == static_cast<int>(some) && lines.size() == some;
  zbrRemoveDupSeg(segs);
  return good && segs.size() == some;
}

// n times the same triangle: no tree can tell them apart, and one of them draws the lines.
bool SameTriangles(int n) {
  std::vector<ZBR_HL_TRI> tris(static_cast<std::size_t>(n));
  for (ZBR_HL_TRI& t : tris) {
    t.pt[1].Set(1, 0, 0);
    t.pt[2].Set(0, 1, 0);
    std::fill(std::begin(t.dispj), std::end(t.dispj), true);
  }
  ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(n));
  std::vector<std::vector<ZBR_PT>> lines;
  ZBR_HiddenLine::HiddenLineObj(&shell, &lines, 1);
  double z = -1.0;
  const bool hit = ZBR_HiddenLine::PickShell(0.25, 0.25, shell, z);
  const std::size_t some = n > 0 ? 1 : 0;
  return lines.size() == some && RingsOf(shell.outline_all).size() == some && hit == (n > 0);
}

// n frames around one another, of eight triangles each: an outline of 2 n rings.
bool Frames(int n) {
  std::vector<ZBR_HL_TRI> tris(8 * static_cast<std::size_t>(n));
  for (int k = 0; k < n; ++k) {
    for (int i = 0; i < 8; ++i) {
      const auto corner = [&](int c, int inner) {
        const double r = k + (inner != 0 ? 0.6 : 0.9);
        return ZBR_PT3(c % 4 == 0 || c % 4 == 3 ? -r : r, c % 4 < 2 ? -r : r, 0.0);
      };
      ZBR_HL_TRI& t = tris[static_cast<std::size_t>(8 * k + i)];
      const int c = i / 2;
      t.pt[0] = corner(c, i % 2);
      t.pt[1] = corner(c + 1, 0);
      t.pt[2] = i % 2 == 0 ? corner(c, 1) : corner(c + 1, 1);
    }
  }
  ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(tris.size()));
  ZBR_HiddenLine::HiddenLineObj(&shell, nullptr, 1);
  return RingsOf(shell.outline_all).size() == 2 * static_cast<std::size_t>(n);
}

struct Case {
  const char* name;
  bool (*run)(int n);
  int size;
};
const Case kCases[] = {
    {"boolean", Boolean, 10'000'000},  {"nested-rings", NestedRings, 100'000},     {"deep-tree", DeepTree, 1'000'000},
    {"segments", Segments, 1'000'000}, {"same-triangles", SameTriangles, 100'000}, {"frames", Frames, 50'000},
};

bool RunCase(const Case& c, int n, bool print) {
  const Used used = RunApart([&] { return c.run(n); });
  if (print || !used.isGood) {
    std::printf("%-15s %9d %8.2f s %7ld MiB%s\n", c.name, n, used.seconds, used.mebibytes, used.isGood ? "" : "  wrong");
  }
  std::fflush(stdout);
  return used.isGood;
}

}  // namespace

int main(int argc, char** argv) {
  LimitStack(argv);
  const double factor = argc > 1 ? std::atof(argv[1]) : 1.0;
  bool good = true;
  for (const Case& c : kCases) {
    if (argc > 2 && std::find(argv + 2, argv + argc, std::string(c.name)) == argv + argc) continue;
    for (const int n : {0, 1, 2, 3, 10}) good &= RunCase(c, n, false);
    good &= RunCase(c, static_cast<int>(c.size * factor), true);
  }
  return good ? 0 : 1;
}
