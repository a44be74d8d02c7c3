#include "formats/pictures/sheet_path.h"

#include <zbr-drawing/numbers.h>

#include <cmath>

#include "formats/pictures/svg_text.h"

namespace zbr::formats {
namespace {

constexpr double kMerged = 0.02;  // mm: points closer together than this make no difference on paper
constexpr double kPi = 3.14159265358979323846;

// Arcs are told by radii and ends that have to fit each other, so these are given closer than points: to a ten-thousandth.
std::string FineText(double value) {
  constexpr double kSteps = 1e4;
  return NumberText(std::round(value * kSteps) / kSteps + 0.0);
}

class PathText {
 public:
  explicit PathText(const SheetPage& page) : page_(page) {}

  void LineTo(const ZBR_PT& p, bool keep) {
    if (!text_.empty() && !keep && p.Distance(last_) < kMerged) return;
    AddPoint(p, Px);
  }

  // An elliptic arc that starts where the pen is. Pieces are far from a whole turn, where rounded ends could meet, and from half a
  // turn, where they could not tell the side.
  void ArcTo(const Curve& arc) {
    constexpr double kPiece = 2.0 * kPi / 3.0 + 1e-6;
    const double turn = arc.t1 - arc.t0;
    const auto pieces = std::max(std::ceil(std::fabs(turn) / kPiece), 1.0);
    std::string radii(1, 'A');
    for (const double value : {arc.u.Length(), arc.v.Length(), -std::atan2(arc.u.y(), arc.u.x()) * 180.0 / kPi}) {
      radii += FineText(value);
      radii += ' ';
    }
    radii += turn > 0 ? "0 0 " : "0 1 ";
    for (double k = 1; k <= pieces; ++k) {
      last_ = arc.At(arc.t0 + turn * (k / pieces));
      text_ += radii;
      AddCoordinates(last_, FineText);
    }
  }

  void StartAt(const ZBR_PT& p) {
    if (!text_.empty() && p.Distance(last_) < kFine) return;
    AddPoint(p, FineText);
  }

  std::string Take(bool closed) {
    if (closed) text_ += 'Z';
    return std::move(text_);
  }

 private:
  static constexpr double kFine = 1e-3;  // mm

  void AddPoint(const ZBR_PT& p, std::string (*number)(double)) {
    text_ += text_.empty() ? 'M' : 'L';
    AddCoordinates(p, number);
    last_ = p;
  }
  void AddCoordinates(const ZBR_PT& p, std::string (*number)(double)) {
    text_ += number(p.x());
    text_ += ' ';
    text_ += number(page_.Down(p.y()));
  }

  const SheetPage& page_;
  std::string text_;
  ZBR_PT last_;
};

}  // namespace

std::string SheetPage::PathData(const std::vector<ZBR_PT>& points, bool closed) const {
  PathText path(*this);
  for (std::size_t i = 0; i < points.size(); ++i) path.LineTo(points[i], i + 1 == points.size());
  return path.Take(closed);
}

std::string SheetPage::PathData(const Sheet& sheet, const PlacedView& view, const Chain& chain) const {
  PathText path(*this);
  const std::size_t end = chain.points.size() - (chain.closed ? 1 : 0);
  std::size_t next = 0;
  const auto lineUpTo = [&](std::size_t place) {
    for (; next < place; ++next) path.LineTo(sheet.OnPaper(view, chain.points[next]), next + 1 == end);
  };
  for (const CircleRun& run : chain.curves) {
    lineUpTo(run.at);
    const Curve arc = sheet.OnPaper(view, run);
    path.StartAt(arc.At(arc.t0));
    if (arc.u.Length() * std::fabs(arc.t1 - arc.t0) < kMerged) {
      path.StartAt(arc.At(arc.t1));
    } else {
      path.ArcTo(arc);
    }
    next = run.last + 1;
  }
  lineUpTo(end);
  return path.Take(chain.closed);
}

}  // namespace zbr::formats
