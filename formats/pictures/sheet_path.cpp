#include "formats/pictures/sheet_path.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/trigonometry.h>

#include <cmath>

#include "formats/pictures/svg_text.h"

namespace zbr::formats {
namespace {

constexpr double kMerged = 0.02;  // mm: points closer together than this make no difference on paper

// Arcs are told by radii and ends that have to fit each other, so these are given closer than points: to a ten-thousandth.
std::string FineText(double value) {
  constexpr double kSteps = 1e4;
  return NumberText(std::round(value * kSteps) / kSteps + 0.0);
}

class PathText {
 public:
  explicit PathText(const SheetPage& page) : page_(page) {}

  // Ends of arcs are where the pen is already.
  void LineTo(const ZBR_PT& p, bool keep, bool fine) {
    const double far = p.Distance(last_);
    if (!text_.empty() && far < (isArc_ ? kFine : keep ? 0.0 : kMerged)) return;
    text_ += text_.empty() ? 'M' : 'L';
    AddPoint(p, fine ? FineText : Px);
    isArc_ = false;
  }

  // An elliptic arc that starts where the pen is. Pieces are far from a whole turn, where rounded ends could meet, and from half a
  // turn, where they could not tell the side.
  void ArcTo(const Curve& arc) {
    constexpr double kPiece = 2.0 * kPi / 3.0 + 1e-6;
    const double turn = arc.t1 - arc.t0;
    if (arc.u.Length() * std::fabs(turn) < kMerged) return;
    const auto pieces = std::max(std::ceil(std::fabs(turn) / kPiece), 1.0);
    std::string radii(1, 'A');
    for (const double value : {arc.u.Length(), arc.v.Length(), -Atan2(arc.u.y(), arc.u.x()) * 180.0 / kPi}) {
      radii += FineText(value);
      radii += ' ';
    }
    radii += turn > 0 ? "0 0 " : "0 1 ";
    for (double k = 1; k <= pieces; ++k) {
      text_ += radii;
      AddPoint(arc.At(arc.t0 + turn * (k / pieces)), FineText);
    }
    isArc_ = true;
  }

  std::string Take(bool closed) {
    if (closed) text_ += 'Z';
    return std::move(text_);
  }

 private:
  static constexpr double kFine = 1e-3;  // mm

  void AddPoint(const ZBR_PT& p, std::string (*number)(double)) {
    text_ += number(p.x());
    text_ += ' ';
    text_ += number(page_.Down(p.y()));
    last_ = p;
  }

  const SheetPage& page_;
  std::string text_;
  ZBR_PT last_;
  bool isArc_ = false;  // what was drawn last
};

}  // namespace

std::string SheetPage::PathData(const Path& path) const {
  PathText text(*this);
  auto curve = path.curves.begin();
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    const bool isArc = curve != path.curves.end() && curve->at == i;
    text.LineTo(path.points[i], isArc || i + 1 == path.points.size(), isArc);
    if (isArc) text.ArcTo(*curve++);
  }
  return text.Take(path.closed);
}

std::string SheetPage::PathData(const std::vector<ZBR_PT>& points, bool closed) const {
  Path path;
  path.points = points;
  path.closed = closed;
  return PathData(path);
}

}  // namespace zbr::formats
