// What a drawing should show at a place, found by looking: without the library's code, edge by edge, sample by sample.
#pragma once

#include <vector>

#include <zbr/hidden_line.h>

// A place on a drawable edge.
struct InkSample {
  ZBR_PT3 at;
  ZBR_PT3 along;        // the edge's direction, of length 1 in projection
  double length = 0.0;  // of the stretch of projected edge that the sample stands for
};

// The drawable edges, visible stretches and faces of processed shells.
class Ink {
 public:
  explicit Ink(const std::vector<ZBR_HL_SHELL>& shells);

  // About `total` samples, spread over the edges by projected length. Edges seen end-on have none.
  std::vector<InkSample> Samples(int total) const;
  // Whether a visible stretch passes over p; `beside`, here and below, allows for walls that are almost edge-on, of whose edges one
  // draws for both.
  bool IsDrawn(const ZBR_PT& p, bool beside = false) const;
  // Whether the drawing is wrong at the sample and a little before and after it along the edge.
  bool IsWrong(const InkSample& sample) const;

 private:
  struct Edge {
    ZBR_PT3 p, q;
    ZBR_PT3 along;
  };
  struct Face {
    ZBR_PT3 pt[3];  // counter-clockwise in projection
    ZBR_PT3 normal;
    double low[2], high[2];
  };
  void AddFace(const ZBR_HL_TRI& t);
  // Whether a drawable edge passes over the sample that nothing hides there. An edge is hidden where, on both sides of it and a
  // little apart, a face lies above it that it is not part of.
  bool ShouldBeDrawn(const InkSample& sample, bool beside = false) const;
  bool IsBehindFace(const ZBR_PT3& at, const ZBR_PT& beside) const;
  bool IsHidden(const ZBR_PT3& at, const ZBR_PT3& along) const;

  std::vector<Edge> edges_;
  std::vector<Edge> visible_;
  std::vector<Face> faces_;
  double size_ = 0.0;
};
