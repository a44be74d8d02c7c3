// A planar drawing as people draw it, before and after its curves are replaced by straight edges: paths of vertices, arcs in place
// of some of the edges, layers, a unit.
//
//   Drawing drawing;
//   Path& square = drawing.paths.emplace_back();
//   square.points = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
//   square.closed = true;
//   const Contours contours = MakeContours(drawing, WithDefaults({-1, -1}, ExtentOf(drawing)));  // contours.h
//
// Readers of files make drawings, too (zbr-formats/drawings.h). What a record says of a file, its name and lines, serves messages
// alone and may be empty. Copies share the names of layers, which may be read from several threads, but not added to.
#pragma once

#include <zbr-drawing/names.h>
#include <zbr/planar.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::drawing {

// A circular or elliptic arc: centre + u cos t + v sin t, t from t0 to t1.
struct Curve {
  std::size_t at = 0;  // takes the place of the edge from this vertex of its path to the next
  ZBR_PT centre, u, v;
  double t0 = 0.0, t1 = 0.0;

  ZBR_PT At(double t) const;
};

// A contour as read: vertices, and curves in place of some of the edges.
struct Path {
  std::vector<ZBR_PT> points;
  std::vector<Curve> curves;    // ascending in `at`
  std::vector<double> heights;  // of the points, where a drawing is read for its lines and tells any
  bool closed = false;
  std::size_t line = 0;    // of the file, where the contour starts
  int polygon = -1;        // number of the polygon that the ring belongs to, in formats that say so
  std::string_view layer;  // kept by the drawing's names
};

struct Drawing {
  std::string file;
  std::shared_ptr<Names> names = std::make_shared<Names>();  // of layers; shared by copies of the drawing
  std::vector<Path> paths;
  int units = 0;                       // code of the unit of length (units.h), 0 when the file names none
  bool joinsEnds = false;              // whether open contours may be meant to be joined end to end
  std::map<std::string, int> ignored;  // what was left out, with counts
};

// A closed contour of straight edges, the last point not repeating the first.
struct Ring {
  std::vector<ZBR_PT> points;
  std::size_t line = 0;
  int polygon = -1;
};

// A contour that does not close.
struct OpenEnds {
  ZBR_PT from, to;
  std::size_t line = 0;
};

struct Contours {
  std::string file;
  std::vector<Ring> rings;
  std::vector<OpenEnds> open;
};

// Box of all points, empty (min > max) at first.
struct Extent {
  double xmin, xmax, ymin, ymax;

  Extent();
  void Add(const ZBR_PT& p);
  void Add(const Extent& e);
  bool empty() const { return xmin > xmax; }
  double Size() const;       // the larger side, 0 when empty; halves are subtracted, so that it stays finite
  double Magnitude() const;  // the largest absolute coordinate
};

Extent ExtentOf(const Drawing& drawing);
Extent ExtentOf(const std::vector<Ring>& rings);

}  // namespace zbr::drawing
