// Hidden-line removal on triangle shells seen along the z axis, and picking.
//
// The viewer looks along -z from far above: everything is projected to the XY plane, and of two points over the same place the one
// with the larger z is nearer. A caller
//   1. fills an array of ZBR_HL_TRI per shell: vertices in view coordinates, `adj` (the neighbour across each edge, by position or
//      by `idx`), `dispj` (the edges to draw) and optionally `idx`;
//   2. wraps each array in a ZBR_HL_SHELL and calls ZBR_HiddenLine::HiddenLineObj (or HiddenLineSelf on a shell, and
//      HiddenLine_ShellByShell on pairs);
//   3. reads the visible intervals of each edge, or collects them as polylines (outline.h), or the hidden ones as segments
//      (GetHiddenLineObj), and the object's outline (GetOutLine).
//
// An edge shared by two triangles is drawn once, by the one that is prior, so both flag it. Vertices of neighbours are equal
// exactly (pairs are compared within 1e-7; coordinates up to about 1e6 suit that), or `adj_edge` is filled.
//
// Bad input: triangles that are degenerate, not finite or beyond 1e75 become invalid and hide nothing; of a triangle without width
// one edge may be drawn, of the others none. Nothing here throws but std::bad_alloc.
//
// Threads: different shells may be processed at once by the caller's threads, each shell by one; shells that only hide others are
// read. The library makes no threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <zbr/boolean.h>
#include <zbr/export.h>
#include <zbr/loop.h>
#include <zbr/planar.h>
#include <zbr/spatial.h>

struct ZBR_HL_QUAD;
struct ZBR_HL_SHELL;
struct ZBR_HL_TRI_SAVE;

// A stretch of an edge between two parameters (0 at the edge's start, 1 at its end), with the points there. The lists of an edge
// are sorted and disjoint; the single interval from exactly 0.0 to exactly 1.0 is the whole edge.
struct ZBR_HL_INTERVAL {
  struct PT_LIN {
    ZBR_PT3 pt;
    double t = 0.0;
  };
  PT_LIN s;
  PT_LIN e;

  ZBR_HL_INTERVAL() = default;
  ZBR_HL_INTERVAL(const ZBR_PT3& ps, const ZBR_PT3& pe, double ts, double te) { Set(ps, pe, ts, te); }
  ZBR_HL_INTERVAL(const PT_LIN& start, const PT_LIN& end) : s(start), e(end) {}
  void Set(const ZBR_PT3& ps, const ZBR_PT3& pe, double ts, double te) {
    s.pt = ps;
    s.t = ts;
    e.pt = pe;
    e.t = te;
  }
  void Set(const PT_LIN& start, const PT_LIN& end) {
    s = start;
    e = end;
  }
};

// Replaces a by the intersection of a and b, both sorted and disjoint (not checked). Overlaps of at most eps are dropped, intervals
// touching within eps joined. `work` is scratch and may be a itself. Returns the size of a; when a was the whole edge, its former
// size, 1. Linear.
ZBR_API int zbrIntervalIntersection(std::vector<ZBR_HL_INTERVAL>& a, const std::vector<ZBR_HL_INTERVAL>& b,
                                    std::vector<ZBR_HL_INTERVAL>& work);

// Drops the intervals of a that are at most eps long and joins those that touch within eps; a joined interval ends where its second
// part does. Returns the size. Linear.
ZBR_API int zbrIntervalOptimize(std::vector<ZBR_HL_INTERVAL>& a);

// The range a0..a1 without the range b0..b1, either of which may be given backwards; r0..r1 runs as a0..a1 does.
//   0  nothing longer than eps is left (r0 and r1 untouched)
//   1  r0..r1 is left
//   2  b lies strictly inside: a0..r0 and r1..a1 are left
ZBR_API int zbrDifferenceOfRealSeg(double a0, double a1, double b0, double b1, double& r0, double& r1);

// Three bit masks over the vertices of a triangle (bit k: vertex k) or the ends of an edge (bit 0: first, bit 1: second).
// Against a plane: above, on, below. Against a line in projection: right, on, left.
struct ZBR_HL_POS_BIT {
  unsigned char bits[3] = {0, 0, 0};
};

// One triangle of a shell: geometry and flags from the caller, states from its shell, and the visible intervals of its edges. Edge
// i runs from pt[i] to pt[(i + 1) % 3].
//
// Beware: COPY CONSTRUCTION COPIES NOTHING; the new triangle has the defaults. A true copy is a default-constructed triangle
// assigned to. (Growing and sorting a std::vector<ZBR_HL_TRI> moves, which keeps everything; copying such a vector loses
// everything.)
struct ZBR_HL_TRI {
  int idx = -1;                 // identifier within its shell; unique; set to the position when the first triangle's is -1
  int shell_idx = -1;           // the shell's index
  ZBR_HL_QUAD* quad = nullptr;  // node of the shell's tree in which the triangle is filed
  bool any_edge_visible = false;
  double max_x = 0.0, min_x = 0.0, max_y = 0.0, min_y = 0.0, max_z = 0.0, min_z = 0.0;  // by GetMaxMin
  ZBR_PT3 pt[3];
  int adj[3] = {-1, -1, -1};                // idx of the triangle across edge i; -1: none
  int adj_edge[3] = {-1, -1, -1};           // which of that triangle's edges it is; -1: found by comparing vertices
  bool dispj[3] = {false, false, false};    // edge i is to be drawn
  int profile[3] = {-1, -1, -1};            // edge i lies on the outline: 0 not, 1 in part, 2 wholly; -1: not examined
  std::vector<ZBR_HL_INTERVAL> intvl_v[3];  // visible intervals of edge i

  // Of a triangle that is seen edge-on ("vertical"):
  int vert_axis = 0;                              // 1: wider in x than in y (or equally), 2: not
  bool vert_upper = false;                        // the apex lies above the long edge
  unsigned char vert_order[3] = {255, 255, 255};  // vertices in decreasing order of the wider coordinate
  signed char vert_edge = -1;                     // the long edge
  double vert_ratio = -1.0;                       // place of the middle vertex from the lowest to the highest one, 0 to 1

  ZBR_HL_SHELL* shell = nullptr;
  ZBR_Plane normal;               // along (pt[1] - pt[0]) x (pt[2] - pt[0])
  int tri_state = 0;              // 1 general, 2 vertical (seen edge-on), 3 invalid
  int edge_state[3] = {0, 0, 0};  // 1 general, 2 vertical (seen end-on), 3 invalid
  ZBR_HL_POS_BIT pos;             // scratch of CheckPos_TriToTri and of the rule for neighbours
  bool clockwise = false;         // the vertices run clockwise in projection, or the triangle is seen edge-on
  bool skip = false;              // left out of all passes

  ZBR_HL_TRI() = default;
  ZBR_HL_TRI(const ZBR_HL_TRI&) : ZBR_HL_TRI() {}
  ZBR_HL_TRI(ZBR_HL_TRI&&) noexcept = default;
  ZBR_HL_TRI& operator=(const ZBR_HL_TRI&) = default;
  ZBR_HL_TRI& operator=(ZBR_HL_TRI&&) noexcept = default;
  ~ZBR_HL_TRI() = default;

  bool IsTriAvailable() const { return tri_state != 3; }
  bool IsTriVertical() const { return tri_state == 2; }
  bool IsTriInvalid() const { return tri_state == 3; }
  bool IsTriSkip() const { return tri_state == 3 || skip; }
  bool IsEdgeAvailable(int i) const { return !intvl_v[i].empty(); }
  bool IsEdgeAvailableAtLeastOne(int i, int j) const { return IsEdgeAvailable(i) || IsEdgeAvailable(j); }
  bool IsEdgeAvailableAtLeastOne() const { return any_edge_visible; }
  // Number of visible intervals of the three edges.
  ZBR_API unsigned GetDispSegNum() const;

  // Empties the list of edge i; any_edge_visible falls when the others are empty too.
  ZBR_API void SetEdgeUnavailable(int i);
  ZBR_API void ClearEdgeAll();

  // True when this idx or this shell_idx is the smaller one: each key on its own, so both of two triangles can be prior.
  ZBR_API bool IsPriorTo(const ZBR_HL_TRI& o) const;
  // Whether this triangle leaves a shared edge to o, whose edge i it is: that edge is general and neither idx nor shell_idx of this
  // triangle is the smaller.
  ZBR_API bool ToHide(const ZBR_HL_TRI& o, int i) const;

  // Sets the extents from the vertices.
  ZBR_API void GetMaxMin();
  // p above (1), on (0) or below (-1) the line a-b in z, within eps, at p's place along the wider of x and y.
  ZBR_API static int CheckPosZ(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b);
  // Sets pos: this triangle's vertices against o's plane.
  ZBR_API void CheckPos_TriToTri(const ZBR_HL_TRI& o);
  // Vertices of this triangle, or the points p and q, against the line a->b in projection. False when a equals b; the first form
  // then clears r, the second leaves it.
  ZBR_API bool CheckPos_TriToLineXY(const ZBR_PT3& a, const ZBR_PT3& b, ZBR_HL_POS_BIT& r) const;
  ZBR_API static bool CheckPos_EdgeToLineXY(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b,
                                            ZBR_HL_POS_BIT& r);

  // Equality of points by coordinate, each differing by less than tol: in x and y, in x, in y.
  ZBR_API static bool EqualPtPt(const ZBR_PT3& p, const ZBR_PT3& q, double tol);
  ZBR_API static bool EqualPtPtX(const ZBR_PT3& p, const ZBR_PT3& q, double tol);
  ZBR_API static bool EqualPtPtY(const ZBR_PT3& p, const ZBR_PT3& q, double tol);
  // Equality of segments in the same sense: 0 the same way round, 1 reversed, -1 different.
  ZBR_API static int EqualSegSeg(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol);
  ZBR_API static int EqualSegSegX(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol);
  ZBR_API static int EqualSegSegY(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol);

  // The number in o of the edge that is this triangle's edge i: adj_edge[i], or found by comparing vertices; -1 when none is.
  ZBR_API int GetAdjEdge(int i, const ZBR_HL_TRI& o) const;

  // Classifies the triangle and its edges and gives each drawable edge its interval. Needs the extents and the plane.
  ZBR_API void CheckTriangle();
  // Sets the vert_ fields; e is the edge seen end-on, or -1. Returns vert_edge.
  ZBR_API int SetVerticalInfo(int e);
  // Moves the triangle, its plane and its intervals by d.
  ZBR_API void Offset(const ZBR_PT3& d);

  // Removes from this triangle's visible intervals what o hides, comparing within 1e-7. Both must have been checked by their
  // shells. A triangle hides nothing of itself. The scratch lists of this triangle's shell are used.
  ZBR_API void HiddenLine_TriByTri(const ZBR_HL_TRI& o);
  // The steps of that, with the tolerance in force; exported for study and tests.
  //
  // The rule for neighbours sharing edge i of this triangle; true when nothing more is to be done for the pair. Sets pos, and
  // pos_set with it, when the rest needs it.
  ZBR_API bool HiddenLine_TriByTriAdjacent(const ZBR_HL_TRI& o, int i, bool& pos_set);
  // out: the parts of edge i that o does not hide, sorted. Needs pos.
  ZBR_API void HiddenLine_EdgeByTri(int i, const ZBR_HL_TRI& o, std::vector<ZBR_HL_INTERVAL>& out);
  // Appends the parts of the stretch s-e, which lies behind o's plane or in it (coplanar), whose projection is outside o's.
  // from_start: s is the start of the edge.
  ZBR_API void HiddenLine_EdgeByTriInnerXY(const ZBR_HL_INTERVAL::PT_LIN& s, const ZBR_HL_INTERVAL::PT_LIN& e, const ZBR_HL_TRI& o,
                                           bool from_start, bool coplanar, std::vector<ZBR_HL_INTERVAL>& out);
  // r: the part of p-q right of the projected line a->b, with parameters along p-q. False when there is none.
  ZBR_API bool HiddenLine_EdgeByLineXY(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b, ZBR_HL_INTERVAL& r);
  // out: the visible parts of p-q against the vertical triangle o, or against o's edge k, on the same projected line. Returns the
  // size of out.
  ZBR_API int HiddenLine_EdgeByTriCoplaner(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o,
                                           std::vector<ZBR_HL_INTERVAL>& out);
  ZBR_API int HiddenLine_EdgeByEdgeCoplaner(const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o,
                                            std::vector<ZBR_HL_INTERVAL>& out);
  // Appends the parts of p-q that a-b, on the same projected line, does not cover. Returns their number.
  ZBR_API static int HiddenLine_DifferenceOfSeg(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b,
                                                std::vector<ZBR_HL_INTERVAL>& out);
  // Releases spare capacity of the interval lists.
  ZBR_API void ShrinkInterval();

  // Whether the triangle lies over p and higher than z there; z is then raised to its height. Vertical and invalid ones never do.
  ZBR_API bool Pick(const ZBR_PT3& p, double& z) const;

  // Copies the visibility to r, and takes it back from r, whose lists are then empty.
  ZBR_API void SaveInfo(ZBR_HL_TRI_SAVE& r, int position);
  ZBR_API void RestoreInfo(ZBR_HL_TRI_SAVE& r);

  // Writes a description to the debugger output (Windows, in code page 932) or to standard error (elsewhere, in UTF-8). s and e are
  // printed when not negative.
  ZBR_API void OutputInfo(std::string title, int s, int e) const;
};

// The saved visibility of one triangle.
struct ZBR_HL_TRI_SAVE {
  int position = -1;  // place in the shell's array
  bool any_edge_visible = false;
  std::vector<ZBR_HL_INTERVAL> intvl[3];
};

// A node of a shell's quadtree over the XY plane. A triangle is filed in the deepest node whose box holds its own without touching
// a midline of any node above. Nodes own their children; a copy is a copy of the subtree, without a parent.
struct ZBR_HL_QUAD {
  ZBR_HL_QUAD* parent = nullptr;
  ZBR_HL_QUAD* child[4] = {nullptr, nullptr, nullptr, nullptr};  // bit 0: upper half in x, bit 1: upper half in y
  unsigned depth = 0;
  unsigned quadrant = 0;  // place in the parent
  std::vector<int> tris;  // positions of the triangles filed here, by decreasing max_z
  double max_x = 0.0, min_x = 0.0, max_y = 0.0, min_y = 0.0;

  ZBR_HL_QUAD() = default;
  ZBR_API ZBR_HL_QUAD(const ZBR_HL_QUAD& o);
  ZBR_API ZBR_HL_QUAD(ZBR_HL_QUAD&& o) noexcept;
  ZBR_API ZBR_HL_QUAD& operator=(const ZBR_HL_QUAD& o);
  ZBR_API ZBR_HL_QUAD& operator=(ZBR_HL_QUAD&& o) noexcept;
  ZBR_API ~ZBR_HL_QUAD();
};

// The triangles of one surface. Refers to the caller's array, which must stay in place and outlive it.
//
// Copies and moved shells refer to the same triangles, whose `shell` and `quad` keep pointing at the original until the new shell
// is processed (Init, then HiddenLineSelf). So build the vector of shells first, then process. Copies share the outlines' loops.
struct ZBR_HL_SHELL {
  int index = 0;  // drawn from ZBR_HiddenLine::max_shell_index when prepared or processed
  double max_x = 0.0, min_x = 0.0, max_y = 0.0, min_y = 0.0, max_z = 0.0, min_z = 0.0;  // by GetMaxMin
  ZBR_HL_TRI* tris = nullptr;
  unsigned count = 0;
  std::vector<std::shared_ptr<ZBR_LOOP>> outline;      // of the object whose first shell this is, as far as it is not covered
  std::vector<std::shared_ptr<ZBR_LOOP>> outline_all;  // of the same object, whole
  bool prepared = false;                               // ZBR_HiddenLine::Prepare has run, and HiddenLineSelf has not since
  bool done = false;                                   // HiddenLineSelf has run
  bool maxmin_valid = false;                           // the extents are set
  bool quad_built = false;                             // order, root and occluders are built
  std::vector<int> order;                              // positions by decreasing max_z
  ZBR_HL_QUAD root;
  std::vector<std::pair<int, int>> id_map;  // (idx, position), sorted by idx
  // Scratch; the contents never matter between calls and are not copied.
  std::vector<ZBR_HL_INTERVAL> tri_result;
  std::vector<ZBR_HL_INTERVAL> xy_result;
  std::vector<ZBR_HL_INTERVAL> edge_result[3];
  std::vector<ZBR_HL_INTERVAL> work;

  struct Occluders;
  std::shared_ptr<const Occluders> occluders;  // the driver's search structure; opaque
  std::uint64_t pairs_tried = 0;               // edges of this shell against triangles, as far as the driver had to look closely

  ZBR_API ZBR_HL_SHELL();
  ZBR_API ZBR_HL_SHELL(ZBR_HL_TRI* triangles, unsigned number);
  ZBR_API ZBR_HL_SHELL(const ZBR_HL_SHELL& o);
  ZBR_API ZBR_HL_SHELL(ZBR_HL_SHELL&& o) noexcept;
  ZBR_API ZBR_HL_SHELL& operator=(const ZBR_HL_SHELL& o);
  ZBR_API ZBR_HL_SHELL& operator=(ZBR_HL_SHELL&& o) noexcept;
  ZBR_API ~ZBR_HL_SHELL();

  // Makes the shell ready to be processed (again): clears prepared, done, maxmin_valid and quad_built.
  ZBR_API void Init();
  // Extents of the triangles and of the shell, all 0 when it has none. Triangles that are not finite do not count for the shell's.
  ZBR_API void GetMaxMin();
  // Numbers the triangles, points them at this shell, sets their planes and states and gives drawable edges their intervals.
  ZBR_API void CheckTriangle();
  // Removes the invalid triangles from the lists of node and its subtree.
  ZBR_API void QuadRemoveInvalid(ZBR_HL_QUAD& node);
  // Prepares the shell (extents, index, states, order, tree) and removes what it hides of itself; once, until Init. n log n to
  // prepare. An index that ZBR_HiddenLine::Prepare gave stays; otherwise a new one is drawn.
  ZBR_API void HiddenLineSelf();

  // The triangle with the given idx, and its position; by binary search. idx must be present.
  ZBR_API ZBR_HL_TRI& GetTri(int idx);
  ZBR_API int& GetTriOrder(int idx);

  // Visible intervals of all triangles; triangles with at least one.
  ZBR_API unsigned GetDispSegNum() const;
  ZBR_API unsigned GetAvailableTriNum() const;

  // Moves the shell with its triangles, tree and outlines by d.
  ZBR_API void Offset(const ZBR_PT3& d);

  std::vector<std::shared_ptr<ZBR_LOOP>>& GetOutLine() { return outline; }
  std::vector<std::shared_ptr<ZBR_LOOP>>& GetOutLineAll() { return outline_all; }

  // Appends a record for each triangle with a visible edge; restoring first clears the shell's intervals, then moves the records'
  // back, so that each record restores once. Records must come from this shell or one like it (positions are not checked).
  ZBR_API void SaveInfo(std::vector<ZBR_HL_TRI_SAVE>& out, ZBR_HL_TRI_SAVE scratch);
  ZBR_API void RestoreInfo(std::vector<ZBR_HL_TRI_SAVE>& in);
};

// Names one edge of one triangle of an array of shells.
struct ZBR_HL_SOURCE {
  int shell = -1;     // place in the array of shells
  int triangle = -1;  // place in the shell's array
  int edge = -1;
};

// The driver: runs the triangle rules over shells. Has no state but the counter.
class ZBR_HiddenLine {
 public:
  // The next shell's index.
  ZBR_API static std::atomic<int> max_shell_index;

  // One object of `count` shells: removes its hidden lines, finds its outline (OutLineObj) and, when out is not null, writes the
  // visible lines as polylines (zbrOptimizeHiddenLine).
  ZBR_API static void HiddenLineObj(ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>* out, unsigned count);
  // Hides the lines of object a behind object b and, if both, those of b behind a; then takes from the farther object's outline
  // what the nearer one covers (b's only if both). Outlines are those that HiddenLineObj or OutLineObj found for each object
  // before.
  ZBR_API static void HiddenLineObjByObj(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb, bool both);
  // Its first step: processes shells of either object that are not, then hides lines of a behind b.
  ZBR_API static void HiddenLineObjByObjMain(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb);
  // Every shell by itself and by every other.
  ZBR_API static void HiddenLine_Shells(ZBR_HL_SHELL* shells, unsigned count);
  // Numbers the shells by their positions in the array and makes them ready to hide: extents, states, search structure. Of two
  // shells that have a line in common the one with the smaller index draws it, so numbers drawn by whichever thread comes first
  // would let chance decide. Whoever processes shells one by one (HiddenLineSelf and HiddenLine_ShellByShell, in threads or not)
  // calls this first, on all of them. Shells that are prepared or done keep their state; where their indices do not ascend, the
  // same indices are dealt out again. HiddenLine_Shells and HiddenLineObj begin with it.
  ZBR_API static void Prepare(ZBR_HL_SHELL* shells, unsigned count);
  // Sets the extents of the shells that lack them.
  ZBR_API static void GetMaxMin(ZBR_HL_SHELL* shells, unsigned count);

  // Removes from a's triangles what b hides. b must have been processed (or be in it: a and b may be the same shell); an
  // unprocessed one hides nothing. Edges are handled one after the other, nearest occluders first, through b's index: about log(n)
  // steps and a few pairs per edge. The result is the same to the bit as that of trying all pairs.
  ZBR_API static void HiddenLine_ShellByShell(ZBR_HL_SHELL& a, const ZBR_HL_SHELL& b);

  // The same for one triangle, by a walk over s's quadtree, and the parts of that walk. y_major: t is taller than wide. The ByQuad
  // forms return whether t has no visible edge left.
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

  // The outline of an object of `count` shells: the boundary of the union of the projections of all its triangles but the vertical
  // and the invalid ones, as outer loops (counter-clockwise, level 0) with holes (clockwise, level 1). It replaces
  // shells[0].outline_all; outline becomes a deep copy of it. Sets `profile` of all triangles. Shells that are not processed
  // are classified first (GetMaxMin, CheckTriangle, with the thread's tolerance).
  //
  // Loops are simple: they may touch each other at vertices, but neither cross nor pass a vertex twice. Vertices of triangles
  // appear unchanged. What is narrower than about 1e-9 of the object's larger side (gaps between triangles that should meet,
  // slivers) counts as closed. n log n in the triangles' edges that do not cancel with a neighbour's, and in the crossings
  // between those; more where long edges lie side by side in many directions at once, and where loops meet by the thousands
  // at one vertex. Not for two threads at once on one shell.
  ZBR_API static void OutLineObj(ZBR_HL_SHELL* shells, unsigned count);

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
  ZBR_API static void GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count);
  ZBR_API static void GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count,
                                       std::vector<ZBR_HL_SOURCE>& sources, double width = 0.0);

  // Picking: the highest point over (x, y), or over p's projection. z is raised to the height of the highest triangle found that
  // lies above z; returns whether there was one. Start with the lowest double, and hand the same z to several calls to get the
  // highest of all. PickShells with crossings picks at their positions. Shells must have been processed; logarithmic on ordinary
  // models.
  ZBR_API static bool PickShell(double x, double y, const ZBR_HL_SHELL& s, double& z);
  ZBR_API static bool PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z);
  ZBR_API static bool PickShells(const std::vector<ZBR_CROSS>& crosses, const ZBR_HL_SHELL* shells, unsigned count, double& z);
  // Its parts: the triangles filed in one node; those of the node and its subtree.
  ZBR_API static bool PickdQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z);
  ZBR_API static bool PickChildQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z);
};
