// The triangle of hidden-line removal: what a caller fills in, and where the result stands.
//
// Fill pt (view coordinates), adj (the neighbour across each edge) and dispj (the edges to draw), for each triangle of a shell:
//   std::vector<ZBR_HL_TRI> tris(n);
//   tris[k].pt[i] = corner;  tris[k].adj[i] = neighbour;  tris[k].dispj[i] = isCreaseOrSilhouette;
// then wrap the array in a shell (hidden_line_shell.h) and remove (hidden_line_driver.h). Afterwards intvl_v[i] holds the visible
// parts of edge i. Everything below the fields is the rules for a pair of triangles, exported for study and tests.
//
// Lengths are in the caller's unit. Pairs are compared within 1e-7, edges and walls are classified within the thread's eps (1e-5):
// models of a size of about 100 suit both, and views are best scaled to that (by a power of two, which is exact).
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include <zbr/export.h>
#include <zbr/hidden_line_interval.h>
#include <zbr/spatial.h>

struct ZBR_HL_QUAD;
struct ZBR_HL_SHELL;
struct ZBR_HL_TRI_SAVE;

// Three bit masks over the vertices of a triangle (bit k: vertex k) or the ends of an edge (bit 0: first, bit 1: second).
// Against a plane: above, on, below. Against a line in projection: right, on, left.
struct ZBR_HL_POS_BIT {
  unsigned char bits[3] = {0, 0, 0};
};

// One triangle of a shell: geometry and flags from the caller, states from its shell, and the visible intervals of its edges. Edge
// i runs from pt[i] to pt[(i + 1) % 3].
//
// Beware: COPY CONSTRUCTION COPIES NOTHING; the new triangle has the defaults. Compilers warn where it happens without being
// written out (auto t = tris[0]). A true copy is Clone(), or assignment. (Growing and sorting a std::vector<ZBR_HL_TRI> moves,
// which keeps everything; copying such a vector loses everything, and no compiler tells.)
//
// `dispj` decides what a drawing shows. Creases and borders: flag the edge in both triangles. Silhouettes: the edges between what
// faces the viewer and the rest, where a triangle faces the viewer when after CheckTriangle (or Prepare) its tri_state is 1 and
// clockwise is false. Do not ask for the sign of the normal instead: facets whose projected edge is at most the tolerance (1e-5)
// count as vertical and draw nothing but their upper outline, so a silhouette flagged between one of them and its lower neighbour
// is not drawn, and a slender cylinder loses both its long lines. Of a smooth vertical wall flag the upper edge, between the facet
// that faces the viewer and the wall. Flags must be set before the shell is prepared for removal: flag, Init, process.
//
// `skip`, set by the caller, leaves the triangle out as one that hides; its own edges are hidden and drawn all the same.
struct ZBR_HL_TRI {
  int idx = -1;                 // identifier within its shell; unique; set to the position when the first triangle's is -1
  int shell_idx = -1;           // the shell's index
  ZBR_HL_QUAD* quad = nullptr;  // node of the shell's tree in which the triangle is filed
  double max_x = 0.0, min_x = 0.0, max_y = 0.0, min_y = 0.0, max_z = 0.0, min_z = 0.0;  // by GetMaxMin
  ZBR_PT3 pt[3];
  int adj[3] = {-1, -1, -1};              // idx of the triangle across edge i; -1: none
  int adj_edge[3] = {-1, -1, -1};         // which of that triangle's edges it is; -1: found by comparing vertices
  bool dispj[3] = {false, false, false};  // edge i is to be drawn
  bool any_edge_visible = false;
  int profile[3] = {-1, -1, -1};            // edge i lies on the outline: 0 not, 1 in part, 2 wholly; -1: not examined
  std::vector<ZBR_HL_INTERVAL> intvl_v[3];  // visible intervals of edge i

  // Of a triangle that is seen edge-on ("vertical"):
  int vert_axis = 0;                              // 1: wider in x than in y (or equally), 2: not
  bool vert_upper = false;                        // the apex lies above the long edge
  unsigned char vert_order[3] = {255, 255, 255};  // vertices in decreasing order of the wider coordinate
  double vert_ratio = -1.0;                       // place of the middle vertex from the lowest to the highest one, 0 to 1

  ZBR_HL_SHELL* shell = nullptr;
  ZBR_Plane normal;               // along (pt[1] - pt[0]) x (pt[2] - pt[0])
  int tri_state = 0;              // 1 general, 2 vertical (seen edge-on), 3 invalid
  int edge_state[3] = {0, 0, 0};  // 1 general, 2 vertical (seen end-on), 3 invalid
  ZBR_HL_POS_BIT pos;             // scratch of CheckPos_TriToTri and of the rule for neighbours
  signed char vert_edge = -1;     // vertical triangles: the long edge
  bool clockwise = false;         // the vertices run clockwise in projection, or the triangle is seen edge-on
  bool skip = false;              // hides nothing

  ZBR_HL_TRI() = default;
  explicit ZBR_HL_TRI(const ZBR_HL_TRI& /*unused*/) : ZBR_HL_TRI() {}
  // What `ZBR_HL_TRI t = u`, `auto t = u` and an argument by value call: as the above, which is meant only where it is written out.
  template <class T, std::enable_if_t<std::is_base_of<ZBR_HL_TRI, T>::value, int> = 0>
  [[deprecated("copies nothing: use Clone(), assignment or a reference")]] ZBR_HL_TRI(const T& /*unused*/) : ZBR_HL_TRI() {}
  ZBR_HL_TRI(ZBR_HL_TRI&&) noexcept = default;
  ZBR_HL_TRI& operator=(const ZBR_HL_TRI&) = default;
  ZBR_HL_TRI& operator=(ZBR_HL_TRI&&) noexcept = default;
  ~ZBR_HL_TRI() = default;
  // A copy of everything; `shell` and `quad` point where the original's do.
  ZBR_HL_TRI Clone() const {
    ZBR_HL_TRI t;
    t = *this;
    return t;
  }

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

  // Removes from this triangle's visible intervals what o hides, comparing within 1e-7 (and planes within the contact tolerance of
  // this triangle's shell). Both must have been checked by their shells. A triangle hides nothing of itself. The scratch lists of
  // this triangle's shell are used.
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
