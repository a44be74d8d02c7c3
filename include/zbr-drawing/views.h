// Drawings of a model: visible and hidden lines of one or several views, with one call.
//
//   Mesh mesh;                                       // points and triangles
//   const Model model = MakeModel(mesh, 30.0);       // edges show where the surface bends by more than 30 degrees
//   for (const Line& line : DrawView(model, "front").lines) Plot(line.chain.points, line.hidden);
//
// Lengths are in the unit of the model. The result is the same to the bit whatever the number of threads. A model may be drawn from
// several threads at once; it is only read.
#pragma once

#include <zbr-drawing/view_lines.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zbr::drawing {

struct NamedDirection {
  std::string name;
  View view;
  std::optional<SectionPlane> section = std::nullopt;  // seen along its normal, in parallel; its letter is the first of the name
};

// What the work on a view is at; kDone comes last.
enum class DrawStage { kScene, kRemoval, kLines, kOutlines, kDone };

// In which views hidden lines are wanted: pictures of several sides at once are easier to read without.
enum class HiddenLines { kNone, kInPrincipalViews, kInAllViews };

struct DrawingOptions {
  HiddenLines hidden = HiddenLines::kInPrincipalViews;
  bool curves = true;              // runs along circles of the model, in Chain::curves
  bool intersections = true;       // lines where surfaces pass through each other, found once for all views
  bool tangents = true;            // smooth edges at which a fillet ends; of these never the hidden parts
  bool smoothSilhouettes = false;  // of the surface that the facets stand for, not of the facets; not in sections and perspectives
  bool centreLines = false;        // of circles, in ViewLines::centres; not in perspectives
  bool outlines = false;           // what nearer objects leave visible of each object, in ViewLines::outlines
  unsigned threads = 1;            // views are worked on at once, and the triangles of each with the threads left over

  // Bodies at most this far apart stand face to face, and their common edges are drawn; negative: four times what the coordinates
  // are rounded to, found from the model.
  double contact = -1.0;

  // How wide a line will be, in the unit of the model: silhouettes that are shorter and end in nothing are left out. 0: as on a
  // sheet that the view fills, 0.003 of its size.
  double lineWidth = 0.0;

  // Told when a stage of a view begins, by its place in the list; from any of the threads, views in any order. What it throws ends
  // the work and comes out of DrawViews.
  std::function<void(std::size_t view, DrawStage stage)> progress;

  // Told now and then which share of a view's hidden lines has been removed, from any of the threads, of one view by one at a time.
  // When it answers false, DrawViews fails. It does not throw.
  std::function<bool(std::size_t view, double share)> removal;
};

// The views in their order. A model without triangles gives views without lines. Fails for sections that are not seen along their
// normal, or in perspective.
std::vector<ViewLines> DrawViews(const Model& model, const std::vector<NamedDirection>& views, const DrawingOptions& options = {});

// The same for a model that is not drawn or asked for edges afterwards: 150 MB of a million triangles are given back before the
// removal takes room, mostly where there is one view. `body`, `normals` and `notes` may be empty then; all else stays.
std::vector<ViewLines> DrawLastViews(Model& model, const std::vector<NamedDirection>& views, const DrawingOptions& options = {});

// One of the standard views of a model with z up, by its name (view.h). Fails for any other name.
ViewLines DrawView(const Model& model, const std::string& name, const DrawingOptions& options = {});

}  // namespace zbr::drawing
