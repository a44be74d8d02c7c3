// A PDF file of one page in the making.
//
//   PdfPage page(210, 297, "Housing", {{"VISIBLE", true}});
//   page.BeginLayer(0);
//   page.SetWidth(0.5);
//   page.Stroke(path);
//   page.EndLayer();
//   const std::string file = page.Take();
//
// Only lines, areas and short texts in one of the fonts that every viewer has: nothing is packed or embedded, and the same calls
// give the same bytes.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

#include <array>
#include <string>
#include <vector>

namespace zbr::formats {

struct PdfLayer {
  std::string name;
  bool isShown = true;
};

// Lengths in millimetres from the lower left corner, y up.
class PdfPage {
 public:
  PdfPage(double width, double height, const std::string& title, std::vector<PdfLayer> layers);

  // What is drawn in between is shown and hidden with a layer of the list.
  void BeginLayer(std::size_t layer);
  void EndLayer();

  void SetWidth(double width);
  void SetRoundEnds(bool round);
  void SetDashes(double dash, double gap);  // 0: none
  void SetDashes(const std::array<double, 4>& pattern);
  void SetShade(const std::array<int, 3>& rgb);  // of lines and areas

  // Arcs of circles and ellipses as Bézier curves, at most 1e-5 of the radius off. No splines.
  void Stroke(const Path& path);
  // The paths together, by the even-odd rule, with their borders.
  void Fill(const std::vector<Path>& paths);
  void StrokeCircle(const ZBR_PT& centre, double radius);
  // UTF-8; letters that western languages lack lose their marks, other characters beyond these become '?'.
  void Text(const ZBR_PT& at, double size, const std::string& text);

  std::string Take();

 private:
  void Add(double value);
  void Add(const ZBR_PT& p, const char* operation);
  void Outline(const Path& path);
  void ArcTo(const Curve& arc);

  double width_, height_;
  std::string title_, content_;
  std::vector<PdfLayer> layers_;
};

}  // namespace zbr::formats
