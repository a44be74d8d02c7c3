// A DXF file in the making: given its layers, then its entities one by one, then taken as text.
//
//   DxfSetup setup;
//   setup.units = 4;                                             // millimetres
//   setup.layers = {{"HIDDEN", 8, 25, "HIDDEN"}};                // colour 8, 0.25 mm wide, dashed
//   setup.lineTypes = {StandardLineType("HIDDEN", 0.5)};         // patterns half as long as usual
//   DxfDocument document(setup);
//   document.AddLine({0, 0}, {10, 0}, {"HIDDEN"});
//   document.AddPath(path, {"VISIBLE", 1});                      // red, on a layer that is made for it
//   const std::string text = document.Take();
//
// Everything an entity refers to is there in the end: layers and line types that the setup does not name are made. Handles, owners
// and the box of all entities follow from what was added; the same calls give the same bytes.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/dxf.h>
#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "formats/dxf/dxf_output.h"

namespace zbr::formats {

struct DxfSetup {
  DxfVersion version = DxfVersion::kR2000;
  int units = 0;  // code of the unit of length
  std::vector<DrawingLayer> layers;
  std::vector<LineType> lineTypes;
  std::string font = "txt";  // of text
  bool showWidths = false;   // on the screen, too, not on paper alone
  ZBR_PT paper;              // width and height of the sheet, from the origin; 0: the drawing is on none
  double deviation = 0.0;    // of chords in place of ellipses and splines, which R12 has not; 0: 1/10000 of the curve's size
};

// What an entity is drawn with.
struct DxfPen {
  std::string layer;
  int colour = kColourByLayer;
  std::string lineType = {};  // empty: that of the layer
};

// One of the line types that CAD programs know by their names (CONTINUOUS, DASHED, HIDDEN, CENTER, PHANTOM, DOT, DASHDOT, DIVIDE,
// BORDER), with the lengths that these have in millimetres on paper times `scale`; of another name, a line without gaps.
LineType StandardLineType(const std::string& name, double scale = 1.0);

class DxfDocument {
 public:
  explicit DxfDocument(DxfSetup setup);

  void AddLine(const ZBR_PT& from, const ZBR_PT& to, const DxfPen& pen);
  void AddCircle(const ZBR_PT& centre, double radius, const DxfPen& pen);
  // Counter-clockwise, angles in degrees.
  void AddArc(const ZBR_PT& centre, double radius, double startAngle, double endAngle, const DxfPen& pen);
  // Of a closed polyline the last point does not repeat the first. Bulges, if there are any, are one for each point: the tangent of
  // a quarter of the angle of the arc to the next one, positive counter-clockwise.
  void AddPolyline(const std::vector<ZBR_PT>& points, bool closed, const DxfPen& pen, double height = 0.0,
                   const std::vector<double>& bulges = {});
  // An arc of an ellipse, or a whole one; clockwise ones are turned round. Needs u and v that are not parallel (else a line is
  // drawn).
  void AddEllipse(const Curve& ellipse, const DxfPen& pen);
  // The stretch t0 to t1 of the curve's spline.
  void AddSpline(const Curve& curve, const DxfPen& pen);
  // A path as the fewest entities that are exact: a LINE, CIRCLE, ARC, ELLIPSE or SPLINE where it is one, a polyline where its
  // edges are straight or circular; else these in turn, each ending where the next one starts.
  void AddPath(const Path& path, const DxfPen& pen);
  // A line in space: a LINE, a polyline at a height, or a polyline in space.
  void AddSpaceLine(const std::vector<ZBR_PT3>& points, bool closed, const DxfPen& pen);
  // Text in UTF-8 that starts at a point of its base line.
  void AddText(const ZBR_PT& at, double height, const std::string& text, const DxfPen& pen);

  // The whole file; once.
  std::string Take();

 private:
  void Start(const char* kind, const char* subclass, const DxfPen& pen);
  void AddSpacePolyline(const std::vector<ZBR_PT3>& points, bool closed, const DxfPen& pen);
  void AddOldPolyline(const std::vector<ZBR_PT>& points, bool closed, const DxfPen& pen, double height,
                      const std::vector<double>& bulges);
  void AddCurve(const Curve& curve, const DxfPen& pen);
  void AddRun(const Path& path, std::size_t first, std::size_t last, const DxfPen& pen);
  void AddChords(const Curve& curve, const DxfPen& pen);
  void ExtendBy(const ZBR_PT& p, double z = 0.0);
  void ExtendBy(const Curve& curve);
  const DrawingLayer& LayerOf(const DxfPen& pen);
  const std::string& LineTypeOf(const std::string& name);
  bool IsDashed(const DxfPen& pen);

  DxfSetup setup_;
  DxfOutput entities_;
  DxfHandle next_;
  Extent extent_;
  double low_ = 0.0, high_ = 0.0;  // heights
  // By the names that callers use: as they are written.
  std::map<std::string, std::size_t, std::less<>> layerOf_;
  std::map<std::string, std::string, std::less<>> lineTypeOf_;
  std::set<std::string> layerNames_, lineTypeNames_;  // as written, in capital letters
};

}  // namespace zbr::formats
