// Shells: arrays of triangles made ready for removal, with their search structures.
//
// A shell wraps an array that the caller keeps:
//   std::vector<ZBR_HL_SHELL> shells;
//   shells.emplace_back(tris.data(), static_cast<unsigned>(tris.size()));
//   ZBR_HiddenLine::HiddenLineObj(shells.data(), &lines, static_cast<unsigned>(shells.size()));  // hidden_line_driver.h
// To draw it again (other flags, another view): change the triangles, Init() the shell, process it.
//
// A sheet folded flat onto itself and faces in one plane hide nothing of each other: their lines all stay. The quadtree and its
// nodes are for callers who take the removal apart; the driver and picking have a tree of their own.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <zbr/export.h>
#include <zbr/hidden_line_interval.h>
#include <zbr/hidden_line_triangle.h>
#include <zbr/loop.h>
#include <zbr/spatial.h>

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
// The index decides which of two shells draws a line that both have: the one with the smaller. It comes from a counter, when
// HiddenLineSelf processes the shell or, better, from ZBR_HiddenLine::Prepare by position.
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
  bool quad_built = false;                             // order and root are built, and occluders
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
  // Distance within which an edge of this shell counts as lying on a plane of another. 1e-7 (and what is less) is right for exact
  // coordinates; where bodies stand face to face in coordinates that are rounded, the edges in the common plane vanish by halves
  // unless it is above the noise: for float32 values about four of their steps, 1e-5 at coordinates of 100, 1e-4 at 1000. Nothing
  // else is compared with it, and what lies farther in front or behind does not change. May be set at any time before removal.
  double contact_tolerance = 1e-7;
  std::uint64_t pairs_tried = 0;  // edges of this shell against triangles, as far as the driver had to look closely

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
  // Builds order and root of a prepared or processed shell where they are missing, as after ZBR_HiddenLine::Prepare and RemoveAll.
  // Not for two threads at once on one shell.
  ZBR_API void BuildQuad();
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
  const std::vector<std::shared_ptr<ZBR_LOOP>>& GetOutLine() const { return outline; }
  const std::vector<std::shared_ptr<ZBR_LOOP>>& GetOutLineAll() const { return outline_all; }

  // Appends a record for each triangle with a visible edge; restoring first clears the shell's intervals, then moves the records'
  // back, so that each record restores once. Records must come from this shell or one like it (positions are not checked).
  ZBR_API void SaveInfo(std::vector<ZBR_HL_TRI_SAVE>& out, ZBR_HL_TRI_SAVE scratch);
  ZBR_API void RestoreInfo(std::vector<ZBR_HL_TRI_SAVE>& in);
};
