// Triangle meshes as records: a body of shells, a shell of vertices, triangles and edges.
//
// Records name each other by their places in the shell's arrays; -1 is "none". To fill a shell: SetVertexCnt and SetVertex for all
// vertices, SetTriangleCnt, ReserveEdge (optional, avoids regrowth), then SetTriangleWithEdge for all triangles, which makes the
// edges.
//
// Pointers and lifetime. Getters return addresses within the shell's arrays; they dangle after a call that may grow or shrink that
// array: SetVertexCnt, SetTriangleCnt, ReserveEdge and SetTriangleWithEdge (edges), SetShellCnt and EraseIfEmptyShell (all of the
// moved shells' records stay in place, the shells do not). Triangles and edges hold a pointer to their shell, through which their
// own getters go. Copying or moving a shell, as SetShellCnt and EraseIfEmptyShell do with the shells of a body, leaves these
// pointers at the old one: call ResetParentShell on the new one before using them.
//
// No index is checked unless a function says so. Nothing throws but the containers (std::bad_alloc, std::length_error). Const
// functions may be called from any number of threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zbr/export.h>
#include <zbr/spatial.h>

class ZBR_ZBREPS;
class ZBR_ZBREPT;

class ZBR_ZBREPV {
 public:
  void SetIndex(int index) { index_ = index; }
  int GetIndex() const { return index_; }
  void SetPt(double x, double y, double z) { pt_.Set(x, y, z); }
  const ZBR_PT3& GetPt() const { return pt_; }

 private:
  int index_ = -1;
  ZBR_PT3 pt_;
};

// An edge, shared by the triangles on its two sides.
class ZBR_ZBREPE {
 public:
  void SetIndex(int index) { index_ = index; }
  int GetIndex() const { return index_; }
  void SetShell(ZBR_ZBREPS* shell) { shell_ = shell; }
  void SetV(int a, int b) {
    vertex0_ = a;
    vertex1_ = b;
  }
  int GetV0() const { return vertex0_; }
  int GetV1() const { return vertex1_; }
  // Notes that triangle t uses the edge. 0: as the first; 1: as the second; 2: not noted, as there are two already.
  ZBR_API int SetAdjTriangle(int t);
  // A flag for the caller, who may mean "to be drawn".
  void SetShow(bool show) { show_ = show; }
  bool GetShow() const { return show_; }
  ZBR_ZBREPV* GetVertex0() const;
  ZBR_ZBREPV* GetVertex1() const;
  // Null when there is no such triangle.
  ZBR_ZBREPT* GetTriangle0() const;
  ZBR_ZBREPT* GetTriangle1() const;

 private:
  friend class ZBR_ZBREPS;

  int index_ = -1;
  bool show_ = false;
  int vertex0_ = -1;  // the smaller index, when made by SetTriangleWithEdge
  int vertex1_ = -1;
  int tri0_ = -1;
  int tri1_ = -1;
  ZBR_ZBREPS* shell_ = nullptr;
};

// A triangle. Edge k joins vertex k to vertex (k + 1) % 3.
class ZBR_ZBREPT {
 public:
  void SetIndex(int index) { index_ = index; }
  int GetIndex() const { return index_; }
  void SetShell(ZBR_ZBREPS* shell) { shell_ = shell; }
  void SetV(int a, int b, int c) {
    vtx_[0] = a;
    vtx_[1] = b;
    vtx_[2] = c;
  }
  void SetE(int a, int b, int c) {
    edge_[0] = a;
    edge_[1] = b;
    edge_[2] = c;
  }
  ZBR_ZBREPV* GetVertex0() const;
  ZBR_ZBREPV* GetVertex1() const;
  ZBR_ZBREPV* GetVertex2() const;
  ZBR_ZBREPE* GetEdge0() const;
  ZBR_ZBREPE* GetEdge1() const;
  ZBR_ZBREPE* GetEdge2() const;
  // The other triangle of the two that the edge notes; null when there is none, or when neither is this one (which is so for the
  // third and further triangles at one edge).
  ZBR_ZBREPT* GetAdjTriangle(ZBR_ZBREPE* edge) const;
  ZBR_ZBREPT* GetAdjTriangle0() const;
  ZBR_ZBREPT* GetAdjTriangle1() const;
  ZBR_ZBREPT* GetAdjTriangle2() const;
  // Unit normal by the right-hand rule over the vertices; (0, 0, 0) for a triangle without area.
  ZBR_API ZBR_PT3 GetFaceNormal();

 private:
  int index_ = -1;
  int vtx_[3] = {-1, -1, -1};
  int edge_[3] = {-1, -1, -1};
  ZBR_ZBREPS* shell_ = nullptr;
};

// Numbers edges, pairs of vertices a <= b, in the order in which they are first met. The edges of a vertex to larger ones form a
// chain, which in a mesh is short and close in memory; what a chain has no room for goes to a hash table, so that finding an edge
// takes constant time in a fan of any size too.
class ZBR_ZBREP_EDGE_MAP {
 public:
  // Gives the vertices below n their chains. (Edges of others go to the table.)
  ZBR_API void SetVertexCnt(std::size_t n);
  // Room for n edges.
  ZBR_API void Reserve(std::size_t n);
  // The number of the edge, or -1.
  ZBR_API int Find(int a, int b) const;
  // The number of the edge, which is the number of edges so far when it is new.
  ZBR_API int FindOrAdd(int a, int b);

 private:
  struct Link {
    int b;
    int next;
  };
  struct Slot {
    std::uint64_t key = 0;
    int edge = -1;  // -1: free
  };
  int FindInChain(int a, int b, int& length) const;
  int FindInTable(std::uint64_t key) const;
  void AddToTable(std::uint64_t key, int edge);
  std::size_t Place(std::uint64_t key) const;

  std::vector<int> first_;   // of a vertex: the last edge added to its chain, or -1
  std::vector<Link> links_;  // of an edge: its larger vertex and the next in its chain, or -1
  std::vector<Slot> table_;  // a power of two of them, or none
  std::size_t used_ = 0;     // of the table
};

// A shell: the arrays of one surface.
class ZBR_ZBREPS {
 public:
  void SetIndex(int index) { index_ = index; }
  int GetIndex() const { return index_; }

  ZBR_API void SetVertexCnt(int n);
  int GetVertexCnt() const { return static_cast<int>(vertices_.size()); }
  ZBR_API void SetVertex(int i, double x, double y, double z);
  ZBR_ZBREPV* GetVertex(int i) { return vertices_.data() + i; }
  const ZBR_ZBREPV* GetVertex(int i) const { return vertices_.data() + i; }

  ZBR_API void SetTriangleCnt(int n);
  int GetTriangleCnt() const { return static_cast<int>(triangles_.size()); }
  ZBR_ZBREPT* GetTriangle(int i) { return triangles_.data() + i; }
  const ZBR_ZBREPT* GetTriangle(int i) const { return triangles_.data() + i; }
  // True when there are no triangles.
  bool IsEmpty() const { return triangles_.empty(); }

  int GetEdgeCnt() const { return static_cast<int>(edges_.size()); }
  ZBR_ZBREPE* GetEdge(int i) { return edges_.data() + i; }
  const ZBR_ZBREPE* GetEdge(int i) const { return edges_.data() + i; }
  // The edge joining two vertices, or null. Swaps a and b when a > b. Expected constant time.
  ZBR_API ZBR_ZBREPE* GetEdge(int& a, int& b);
  ZBR_API ZBR_ZBREPE* GetEdge(int&& a, int&& b);
  // The same for reading, whichever comes first.
  ZBR_API const ZBR_ZBREPE* GetEdge(int a, int b) const;

  // Makes room for as many edges as a closed surface without handles has, vertices + triangles - 2, and some more for handles and
  // borders.
  ZBR_API void ReserveEdge();
  // Sets triangle i to the vertices a, b, c and finds or adds its edges, in the order ab, bc, ca. An edge notes its first two
  // triangles; a third one knows the edge, but the edge does not know it. To be called once for each triangle.
  ZBR_API void SetTriangleWithEdge(int i, int a, int b, int c);
  // Points the triangles and edges of this shell at it.
  ZBR_API void ResetParentShell();

 private:
  int FindOrAddEdge(int a, int b, int triangle);

  int index_ = -1;
  std::vector<ZBR_ZBREPT> triangles_;
  std::vector<ZBR_ZBREPE> edges_;
  std::vector<ZBR_ZBREPV> vertices_;
  ZBR_ZBREP_EDGE_MAP edgeMap_;
};

// A body: shells.
class ZBR_ZBREPB {
 public:
  ZBR_API void SetShellCnt(int n);
  int GetShellCnt() const { return static_cast<int>(shells_.size()); }
  ZBR_ZBREPS* GetShell(int i) { return shells_.data() + i; }
  const ZBR_ZBREPS* GetShell(int i) const { return shells_.data() + i; }
  // Removes shell i when it has no triangles; the shells behind it move up. False when it has some, or i is the number of shells.
  ZBR_API bool EraseIfEmptyShell(int i);
  // A number that differs between most bodies: the numbers of shells and vertices and all coordinates, summed in a fixed order.
  ZBR_API double GetHint() const;
  // Whether both have the same numbers of shells and vertices, and vertices at the same places in the arrays are at most the
  // thread's eps apart. Triangles and edges are not compared.
  ZBR_API bool IsEqual(const ZBR_ZBREPB& o) const;

 private:
  std::vector<ZBR_ZBREPS> shells_;
};

// The getters that go through the shell, inline: passes over a mesh do little else.

inline ZBR_ZBREPV* ZBR_ZBREPE::GetVertex0() const {
  return shell_->GetVertex(vertex0_);
}

inline ZBR_ZBREPV* ZBR_ZBREPE::GetVertex1() const {
  return shell_->GetVertex(vertex1_);
}

inline ZBR_ZBREPT* ZBR_ZBREPE::GetTriangle0() const {
  return tri0_ == -1 ? nullptr : shell_->GetTriangle(tri0_);
}

inline ZBR_ZBREPT* ZBR_ZBREPE::GetTriangle1() const {
  return tri1_ == -1 ? nullptr : shell_->GetTriangle(tri1_);
}

inline ZBR_ZBREPV* ZBR_ZBREPT::GetVertex0() const {
  return shell_->GetVertex(vtx_[0]);
}

inline ZBR_ZBREPV* ZBR_ZBREPT::GetVertex1() const {
  return shell_->GetVertex(vtx_[1]);
}

inline ZBR_ZBREPV* ZBR_ZBREPT::GetVertex2() const {
  return shell_->GetVertex(vtx_[2]);
}

inline ZBR_ZBREPE* ZBR_ZBREPT::GetEdge0() const {
  return shell_->GetEdge(edge_[0]);
}

inline ZBR_ZBREPE* ZBR_ZBREPT::GetEdge1() const {
  return shell_->GetEdge(edge_[1]);
}

inline ZBR_ZBREPE* ZBR_ZBREPT::GetEdge2() const {
  return shell_->GetEdge(edge_[2]);
}

inline ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle(ZBR_ZBREPE* edge) const {
  ZBR_ZBREPT* const first = edge->GetTriangle0();
  ZBR_ZBREPT* const second = edge->GetTriangle1();
  if (first == this) return second;
  return second == this ? first : nullptr;
}

inline ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle0() const {
  return GetAdjTriangle(GetEdge0());
}

inline ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle1() const {
  return GetAdjTriangle(GetEdge1());
}

inline ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle2() const {
  return GetAdjTriangle(GetEdge2());
}
