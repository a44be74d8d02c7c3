// What is read and written: the records of zbr-drawing, which are names of this namespace, too.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-drawing/failure.h>  // what every reader throws

#include <vector>

namespace zbr::formats {

using namespace drawing;

// Neither the name of a file nor the caller tells the format. The cause lists the endings of names that would; how else the format
// can be given is the caller's to say.
class UnknownFormat : public Failure {
 public:
  using Failure::Failure;
};

// Of DXF files that are written: R12 for machines and old programs, which has neither ellipses nor splines; else that of AutoCAD
// 2000, which all programs of this century read.
enum class DxfVersion { kR12, kR2000 };

// How regions become DXF.
struct DxfStyle {
  DxfVersion version = DxfVersion::kR2000;
  bool entities = false;                  // a LINE, ARC, CIRCLE, ELLIPSE or SPLINE for each piece, in place of polylines
  bool keepsPens = false;                 // on the layers of the sources, with their colours and line types, where layers have pens
  std::vector<DrawingLayer> layers = {};  // that sources describe, those in use are written
  std::vector<LineType> lineTypes = {};

  DxfStyle() = default;
  DxfStyle(DxfVersion v) : version(v) {}  // NOLINT(google-explicit-constructor): a version alone is a style
};

}  // namespace zbr::formats
