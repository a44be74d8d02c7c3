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
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::drawing {

// A B-spline, rational where it has weights.
struct Spline {
  int degree = 3;
  std::vector<ZBR_PT> control;
  std::vector<double> weights;  // positive, one for each control point; empty: all alike
  std::vector<double> knots;    // ascending, as many as control points and degree + 1 together

  // Where the curve starts and ends. Only for splines that are valid.
  double Start() const { return knots[static_cast<std::size_t>(degree)]; }
  double End() const { return knots[control.size()]; }
  ZBR_PT At(double t) const;  // beyond both ends: at the end

  // Whether the counts fit together, all numbers are finite, weights positive, knots ascending and the ends not the same.
  bool IsValid() const;
};

// The stretch of a valid spline from parameter `from` to `to` as a spline of its own that starts and ends with its control points;
// turned round where `to` is below `from`. They may not be equal.
Spline Trimmed(const Spline& spline, double from, double to);

// An arc of a circle or an ellipse: centre + u cos t + v sin t, t from t0 to t1. Or a stretch of a spline, from its parameter t0
// to t1; then centre, u and v say nothing.
struct Curve {
  std::size_t at = 0;  // takes the place of the edge from this vertex of its path to the next
  ZBR_PT centre, u, v;
  double t0 = 0.0, t1 = 0.0;
  std::shared_ptr<const Spline> spline = nullptr;

  ZBR_PT At(double t) const;
  bool IsCircular() const;  // no spline, and u and v as long as each other and at right angles, but for rounding
};

// The same ellipse from its axes: u is the longer half axis, v is at a right angle to the left of it, t0 below t1 (so the direction
// of travel may be lost). Not for splines.
Curve OnAxes(const Curve& ellipse);

constexpr int kColourByBlock = 0, kColourByLayer = 256;

// Equality of coordinates, whatever the tolerance is that the points' own operator goes by.
inline bool AreIdentical(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() == q.x() && p.y() == q.y();
}

// A contour as read: vertices, and curves in place of some of the edges.
struct Path {
  std::vector<ZBR_PT> points;
  std::vector<Curve> curves;    // ascending in `at`
  std::vector<double> heights;  // of the points, where a drawing is read for its lines and tells any
  bool closed = false;
  std::size_t line = 0;                 // of the file, where the contour starts
  int polygon = -1;                     // number of the polygon that the ring belongs to, in formats that say so
  std::string_view layer;               // kept by the drawing's names
  std::string_view lineType;            // the same; empty: that of the layer
  int colour = kColourByLayer;          // of the colour index
  bool fills = false;                   // bounds a hatch, which mostly fills what other contours bound (DropFillings)
  bool hidden = false;                  // not shown: its layer is off or frozen, or it is marked so itself
  std::vector<std::int32_t> pens = {};  // of contours and what is made of them, by edge: places in a list of pens; mostly empty

  // Edges and curves; the last one of a closed path leads back to its first point.
  std::size_t EdgeCount() const { return points.size() - (closed || points.empty() ? 0 : 1); }
};

// What a path is drawn with.
struct Pen {
  std::string layer, lineType;  // as in Path
  int colour = kColourByLayer;

  bool operator==(const Pen& o) const { return layer == o.layer && lineType == o.lineType && colour == o.colour; }
};

// What drawings say of a layer.
struct DrawingLayer {
  std::string name;
  int colour = 7;       // of the colour index: white, or black on paper
  int lineWeight = -3;  // hundredths of a millimetre; -3: the default width of the program that shows it
  std::string lineType = "CONTINUOUS";
  bool off = false, frozen = false;
};

struct LineType {
  std::string name, description;
  std::vector<double> pattern;  // dashes positive, gaps negative, dots 0
};

// What a reader left out.
struct LeftOut {
  std::size_t count = 0;
  std::size_t line = 0;        // of the file, where the first one starts
  bool bearsContours = false;  // it would have been taken for contours
};

struct Drawing {
  std::string file;
  std::shared_ptr<Names> names = std::make_shared<Names>();  // of layers; shared by copies of the drawing
  std::vector<Path> paths;
  int units = 0;                           // code of the unit of length (units.h), 0 when the file names none
  bool joinsEnds = false;                  // whether open contours may be meant to be joined end to end
  std::vector<DrawingLayer> layers;        // that the file describes
  std::vector<LineType> lineTypes;         // the same
  std::map<std::string, LeftOut> leftOut;  // by what it is called

  void LeaveOut(const std::string& what, std::size_t line, bool bearsContours);
};

// What a straight edge stands for: a chord of a curve, from the parameter t0 to t1 of it, which may be below t0; or a line of the
// drawing, or a part of one that curves meet.
struct EdgeOrigin {
  std::int32_t curve = -1;  // place in a list of curves; -1: a line
  std::int32_t line = -1;   // of lines that were cut, the same number for all parts of one
  double t0 = 0.0, t1 = 0.0;
  std::int32_t pen = -1;  // place in a list of pens, where they are kept
};

// A closed contour of straight edges, the last point not repeating the first.
struct Ring {
  std::vector<ZBR_PT> points;
  std::vector<EdgeOrigin>
      origins;  // by edge, which starts at the point of the same number; empty where nothing has curves, nor pens
  std::size_t line = 0;
  int polygon = -1;
};

// A contour that does not close.
struct OpenEnds {
  ZBR_PT from, to;
  std::size_t line = 0;
  double size = 0.0;  // the larger side of its box
};

// Where more than two ends of open contours meet.
struct Fork {
  ZBR_PT at;
  std::size_t ends = 0;
  std::size_t line = 0;
};

struct Contours {
  std::string file;
  std::vector<Ring> rings;
  std::vector<OpenEnds> open;
  std::vector<Fork> forks;
  // Ends of open contours at most the join from another one's middle, so that cells may be bounded there. 0 where all faces are
  // asked for, and where the search would take long.
  std::size_t endsOnLines = 0;
  std::shared_ptr<const std::vector<Curve>> curves;  // that origins refer to; shared by drawings that belong together
  std::shared_ptr<const std::vector<Pen>> pens;      // the same
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
