// The driver of hidden-line removal: shells and objects, hidden segments, outlines, picking.
//
// For a drawing of shells that are ready (hidden_line_shell.h):
//   ZBR_HiddenLine::RemoveAll(shells, count);                     // or HiddenLineObj, which finds outlines and polylines as well
//   zbrOptimizeHiddenLine(shells, lines, count);                  // visible polylines (outline.h)
//   ZBR_HiddenLine::GetHiddenLineObj(shells, hidden, 3, count);   // hidden segments, for dashes
//   ZBR_HiddenLine::PickShells(x, y, shells, count, z, hit);      // what is seen at a place
//
// Of lines that two triangles have in common one is drawn: within a shell the triangle with the smaller idx draws it, of two shells
// the one with the smaller index. Indices ascend with the position in the array in all calls that take an array of shells, so the
// drawing does not depend on which shell was processed first, or by which thread. Who processes shells singly calls Prepare before.
//
// Threads: the library makes none. Different shells may be processed at once by the caller's threads, each shell by one; shells
// that only hide others are read. RemoveAll does the same with an executor of the caller's, for example
//   options.executor = [](std::size_t n, const std::function<void(std::size_t)>& work) {
//     std::atomic<std::size_t> next{0};
//     const auto run = [&] { for (std::size_t i = next++; i < n; i = next++) work(i); };
//     std::thread other(run);
//     run();
//     other.join();
//   };
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include <zbr/boolean.h>
#include <zbr/export.h>
#include <zbr/hidden_line_shell.h>
#include <zbr/loop.h>
#include <zbr/planar.h>
#include <zbr/spatial.h>

// Names one edge of one triangle of an array of shells (or, with edge -1, the triangle).
struct ZBR_HL_SOURCE {
  int shell = -1;     // place in the array of shells
  int triangle = -1;  // place in the shell's array
  int edge = -1;
};

// A piece of a projected edge: of edge `edge` of the triangle, from parameter t0 to t1, where 0 is the triangle's vertex of that
// number and 1 the next one. t0 > t1 when the piece runs against the edge.
struct ZBR_HL_PIECE {
  ZBR_HL_SOURCE source;
  double t0 = 0.0;
  double t1 = 1.0;
};

// Where an outline comes from. Its edges are counted through all loops, each outer loop before its holes, an edge by the point that
// it starts at.
struct ZBR_HL_OUTLINE_SOURCES {
  // What edge i runs along is pieces[offsets[i]] up to pieces[offsets[i + 1]], by where they begin along it: they cover it, one
  // after the other or, where edges lie over each other, side by side. A parameter is exactly 0 or 1 where an edge begins or ends.
  std::vector<ZBR_HL_PIECE> pieces;
  std::vector<std::size_t> offsets;
  // By edge: a triangle's vertex that its first point is, with `edge` the vertex's number; no triangle where edges cross.
  std::vector<ZBR_HL_SOURCE> corners;
};

// How RemoveAll goes about it. All fields may stay as they are.
struct ZBR_HL_REMOVAL {
  // Calls work(0) to work(count - 1), each once, in any order and on any threads, and returns when all have ended. Without one
  // everything happens on the caller's thread. `work` does not throw.
  std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)> executor;
  // Told now and then which share is done, 0 to 1, by one thread at a time; false ends the removal early.
  std::function<bool(double done)> progress;
  // Given to all shells when more than 0; see ZBR_HL_SHELL.
  double contact_tolerance = 0.0;
};

// The driver: runs the triangle rules over shells. Has no state but the counter.
class ZBR_HiddenLine {
 public:
  // The next shell's index.
  ZBR_API static std::atomic<int> max_shell_index;

  // One object of `count` shells: removes its hidden lines, finds its outline (OutLineObj) and, when out is not null, writes the
  // visible lines as polylines (zbrOptimizeHiddenLine).
  ZBR_API static void HiddenLineObj(ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>* out, unsigned count);
  // As HiddenLine_Shells, for many or large shells: in pieces that an executor may run on several threads, and without building
  // quadtrees, which makes preparing a third cheaper (ZBR_HL_SHELL::BuildQuad makes them afterwards). The visible intervals are the
  // same to the bit, whatever the number of threads. False when `progress` ended it: intervals are then partly removed, and the
  // shells that were not done before start afresh when they are processed again. n log n; linear in the occluders met.
  ZBR_API static bool RemoveAll(ZBR_HL_SHELL* shells, unsigned count, const ZBR_HL_REMOVAL& options = ZBR_HL_REMOVAL());
  // Hides the lines of object a behind object b and, if both, those of b behind a; then takes from the farther object's outline
  // what the nearer one covers (b's only if both). Outlines are those that HiddenLineObj or OutLineObj found for each object
  // before.
  ZBR_API static void HiddenLineObjByObj(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb, bool both);
  // Its first step: processes shells of either object that are not, then hides lines of a behind b.
  ZBR_API static void HiddenLineObjByObjMain(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb);
  // Every shell by itself and by every other.
  ZBR_API static void HiddenLine_Shells(ZBR_HL_SHELL* shells, unsigned count);
  // Numbers the shells by their positions in the array and makes them ready to hide: extents, states, search structure
  // (not the quadtree). Of two shells that have a line in common the one with the smaller index draws it, so numbers drawn
  // by whichever thread comes first would let chance decide. Whoever processes shells one by one (HiddenLineSelf and
  // HiddenLine_ShellByShell, in threads or not) calls this first, on all of them. Shells that are prepared or done keep
  // their state; where their indices do not ascend, the same indices are dealt out again. HiddenLine_Shells and
  // HiddenLineObj begin with it.
  ZBR_API static void Prepare(ZBR_HL_SHELL* shells, unsigned count);
  // Sets the extents of the shells that lack them.
  ZBR_API static void GetMaxMin(ZBR_HL_SHELL* shells, unsigned count);

  // Removes from a's triangles what b hides. b must have been processed (or be in it: a and b may be the same shell); an
  // unprocessed one hides nothing. Edges are handled one after the other, nearest occluders first, through b's index: about log(n)
  // steps and a few pairs per edge. The result is the same to the bit as that of trying all pairs.
  ZBR_API static void HiddenLine_ShellByShell(ZBR_HL_SHELL& a, const ZBR_HL_SHELL& b);

  // The same for one triangle, by a walk over s's quadtree if that is built, and the parts of that walk. y_major: t is taller than
  // wide. The ByQuad forms return whether t has no visible edge left.
  ZBR_API static void HiddenLine_TriByShell(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s);
  ZBR_API static bool HiddenLine_TriByQuad(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major);
  ZBR_API static bool HiddenLine_TriByQuadInSame(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major);
  ZBR_API static bool HiddenLine_TriByChildQuad(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major);
  // Each triangle filed in a node of a's own tree (and below) by a; with their neighbours taken first if neighbours_first.
  ZBR_API static void HiddenLine_ShellByQuad(ZBR_HL_SHELL& a, const ZBR_HL_QUAD& node, bool neighbours_first);
  ZBR_API static void HiddenLine_ShellByChildQuad(ZBR_HL_SHELL& a, const ZBR_HL_QUAD& node, bool neighbours_first);

  // Which object is nearer over places where both lie: 1 the first, 2 the second, 0 undecided. The places are sampled inside the
  // loops of `overlap`, or at the crossings.
  ZBR_API static int CheckCloser(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb,
                                 const std::vector<std::shared_ptr<ZBR_LOOP>>& overlap);
  ZBR_API static int CheckCloser(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb,
                                 const std::vector<ZBR_CROSS>& crosses);

  // The outline of an object of `count` shells: the boundary of the union of the projections of all its triangles, as outer loops
  // (counter-clockwise, level 0) with holes (clockwise, level 1). It replaces shells[0].outline_all; outline becomes a deep copy of
  // it. Sets `profile` of all triangles. A triangle counts by the sign of its projected area alone, so that slender parts stay that
  // count as vertical or invalid for the hidden lines. Shells that are not processed are classified first (GetMaxMin,
  // CheckTriangle).
  //
  // Loops are simple: they may touch each other at vertices, but neither cross nor pass a vertex twice. Vertices of triangles
  // appear unchanged. What is narrower than about 1e-9 of the object's larger side (gaps between triangles that should meet,
  // slivers) counts as closed. n log n in the triangles' edges that do not cancel with a neighbour's, and in the crossings
  // between those; more where long edges lie side by side in many directions at once, and where loops meet by the thousands
  // at one vertex. Not for two threads at once on one shell.
  ZBR_API static void OutLineObj(ZBR_HL_SHELL* shells, unsigned count);
  // The same, and the triangles' edges that the outline runs along. `shell` is a place in the array given. A little slower.
  ZBR_API static void OutLineObj(ZBR_HL_SHELL* shells, unsigned count, ZBR_HL_OUTLINE_SOURCES& sources);

  // The same question for a single edge, by a walk over quadtrees: takes from `parts` (sorted stretches of edge `edge` of t) those
  // beside which, on the right of the edge as t runs counter-clockwise, a triangle of s lies. What all shells of an object leave
  // of the whole edge is outline. Within the thread's tolerance. s must have been processed. The ByQuad forms return whether
  // nothing is left.
  ZBR_API static void OutLine_TriByShell(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, std::vector<ZBR_HL_INTERVAL>& parts);
  ZBR_API static bool OutLine_TriByQuad(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node,
                                        std::vector<ZBR_HL_INTERVAL>& parts);
  ZBR_API static bool OutLine_TriByChildQuad(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node,
                                             std::vector<ZBR_HL_INTERVAL>& parts);

  // The hidden stretches of the drawable edges, in projection. Stretches of at most eps are left out, and repeats.
  //   mode 0, 1  as they are
  //   mode 2     without those equal to a visible stretch
  //   mode 3     as a person draws: the parts of hidden stretches over which a visible line runs are cut out
  // sources, in the second form, receives for each segment the edge it is part of; lines that run no farther apart than width (or
  // eps, if that is more) count as one in mode 3, which on meshes with noisy coordinates wants about the width of a drawn line.
  // Coordinates above 1e75, whose products overflow, run beside nothing. Mode 3, in which lines by the thousand over each other
  // take their time, uses the executor of `options`, and nothing else of them.
  ZBR_API static void GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count);
  ZBR_API static void GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count,
                                       std::vector<ZBR_HL_SOURCE>& sources, double width = 0.0,
                                       const ZBR_HL_REMOVAL& options = ZBR_HL_REMOVAL());

  // Picking: the highest point over (x, y), or over p's projection. z is raised to the height of the highest triangle found that
  // lies above z; returns whether there was one. Start with the lowest double, and hand the same z to several calls to get the
  // highest of all. PickShells with crossings picks at their positions; with `hit` it names the triangle too (edge -1; of several
  // at one height the first; no triangle when nothing was found). Shells must have been prepared; logarithmic on ordinary models.
  ZBR_API static bool PickShell(double x, double y, const ZBR_HL_SHELL& s, double& z);
  ZBR_API static bool PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z);
  ZBR_API static bool PickShells(const std::vector<ZBR_CROSS>& crosses, const ZBR_HL_SHELL* shells, unsigned count, double& z);
  ZBR_API static bool PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z, ZBR_HL_SOURCE& hit);
  // Its parts, by the quadtree: the triangles filed in one node; those of the node and its subtree.
  ZBR_API static bool PickdQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z);
  ZBR_API static bool PickChildQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z);
};
