// Every command is a letter, small where its points are relative to the current one, with as many numbers as often as they come.
// Arcs of ellipses are given by their ends: with both half axes for units they are arcs of a circle of radius 1, whose centre lies
// beside the middle of the chord.
#include "formats/drawings/svg_path.h"

#include <zbr-drawing/affine.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>
#include <utility>

#include "formats/drawings/svg_values.h"

namespace zbr::formats {
namespace {

using drawing::AreIdentical;
using drawing::Curve;
using drawing::Path;
using drawing::Spline;

// Half a chord by the radius, below which an arc is its chord: it leaves it by less than its coordinates can tell.
constexpr double kFlattestArc = 1e-8;

class PathReader {
 public:
  explicit PathReader(std::string_view text) : numbers_(text) {}

  std::optional<std::vector<Path>> Read() {
    bool isFirst = true;
    while (!numbers_.IsAtEnd()) {
      const std::optional<char> letter = numbers_.NextLetter();
      if (letter) command_ = *letter;
      const bool isMove = command_ == 'M' || command_ == 'm';
      if ((isFirst && !isMove) || (!letter && Kind() == 'Z') || !ReadCommand()) return std::nullopt;
      if (letter && isMove) command_ = command_ == 'M' ? 'L' : 'l';
      isFirst = false;
    }
    return maker_.Take();
  }

 private:
  char Kind() const { return static_cast<char>(std::toupper(static_cast<unsigned char>(command_))); }
  bool IsRelative() const { return command_ != Kind(); }

  bool ReadCommand() {
    const char kind = Kind();
    const char before = std::exchange(before_, kind);
    if (kind == 'Z') {
      maker_.Close();
      return true;
    }
    if (kind == 'A') return ReadArc();
    if (kind == 'H' || kind == 'V') return ReadAlongAxis(kind == 'H');
    const std::size_t count =
        kind == 'C' ? 3 : (kind == 'S' || kind == 'Q' ? 2 : (kind == 'M' || kind == 'L' || kind == 'T' ? 1 : 0));
    std::vector<ZBR_PT> points;
    for (std::size_t i = 0; i < count; ++i) {
      const std::optional<ZBR_PT> p = NextPoint();
      if (!p) return false;
      points.push_back(*p);
    }
    if (count == 0) return false;
    if (kind == 'M') maker_.MoveTo(points[0]);
    if (kind == 'L') maker_.LineTo(points[0]);
    if (kind == 'M' || kind == 'L') return true;
    const bool goesOn = kind == 'S' ? before == 'C' || before == 'S' : before == 'Q' || before == 'T';
    if (kind == 'S' || kind == 'T') points.insert(points.begin(), goesOn ? maker_.current() * 2.0 - control_ : maker_.current());
    control_ = points[points.size() - 2];
    maker_.BezierTo(points);
    return true;
  }

  bool ReadAlongAxis(bool isHorizontal) {
    const std::optional<double> to = numbers_.Next();
    if (!to) return false;
    const ZBR_PT from = maker_.current();
    const ZBR_PT base = IsRelative() ? from : ZBR_PT();
    maker_.LineTo(isHorizontal ? ZBR_PT(base.x() + *to, from.y()) : ZBR_PT(from.x(), base.y() + *to));
    return true;
  }

  bool ReadArc() {
    const std::optional<double> rx = numbers_.Next(), ry = numbers_.Next(), degrees = numbers_.Next();
    const std::optional<bool> isLarge = numbers_.NextFlag(), isPositive = numbers_.NextFlag();
    const std::optional<ZBR_PT> p = NextPoint();
    if (!rx || !ry || !degrees || !isLarge || !isPositive || !p) return false;
    maker_.ArcTo(*rx, *ry, *degrees, *isLarge, *isPositive, *p);
    return true;
  }

  std::optional<ZBR_PT> NextPoint() {
    const std::optional<double> x = numbers_.Next(), y = numbers_.Next();
    if (!x || !y) return std::nullopt;
    return (IsRelative() ? maker_.current() : ZBR_PT()) + ZBR_PT(*x, *y);
  }

  SvgNumbers numbers_;
  SvgPathMaker maker_;
  char command_ = '\0', before_ = '\0';
  ZBR_PT control_;  // the last but one point of the curve before
};

}  // namespace

void SvgPathMaker::MoveTo(const ZBR_PT& p) {
  isOpen_ = false;
  start_ = current_ = p;
}

void SvgPathMaker::Start() {
  if (isOpen_) return;
  isOpen_ = true;
  paths_.emplace_back().points = {current_};
}

void SvgPathMaker::LineTo(const ZBR_PT& p) {
  Start();
  if (!AreIdentical(p, current_)) paths_.back().points.push_back(p);
  current_ = p;
}

void SvgPathMaker::AddCurve(Curve curve, const ZBR_PT& end) {
  Start();
  Path& path = paths_.back();
  curve.at = path.points.size() - 1;
  path.curves.push_back(std::move(curve));
  path.points.push_back(end);
  current_ = end;
}

void SvgPathMaker::BezierTo(const std::vector<ZBR_PT>& controls) {
  if (std::all_of(controls.begin(), controls.end(), [&](const ZBR_PT& p) { return AreIdentical(p, current_); })) return;
  Spline spline;
  spline.degree = static_cast<int>(controls.size());
  spline.control = {current_};
  spline.control.insert(spline.control.end(), controls.begin(), controls.end());
  spline.knots.assign(spline.control.size(), 0.0);
  spline.knots.resize(2 * spline.control.size(), 1.0);
  Curve curve;
  curve.t1 = 1.0;
  curve.spline = std::make_shared<const Spline>(std::move(spline));
  AddCurve(std::move(curve), controls.back());
}

void SvgPathMaker::ArcTo(double rx, double ry, double degrees, bool isLarge, bool isPositive, const ZBR_PT& p) {
  rx = std::abs(rx);
  ry = std::abs(ry);
  if (AreIdentical(p, current_) || rx == 0 || ry == 0) return LineTo(p);
  const ZBR_PT axis = drawing::Direction(degrees), half = (current_ - p) * 0.5;
  ZBR_PT h(half.InnerProduct(axis) / rx, axis.OuterProduct(half) / ry);  // from the middle to the start, on the circle of radius 1
  if (const double length = h.Length(); length > 1) {
    rx *= length;
    ry *= length;
    h = h * (1.0 / length);
  } else if (length < kFlattestArc) {
    return LineTo(p);
  }
  const double aside = std::sqrt(std::max(0.0, 1.0 / h.Length2() - 1.0)) * (isLarge != isPositive ? 1.0 : -1.0);
  const ZBR_PT centre(h.y() * aside, -h.x() * aside), from = h - centre, to = h * -1.0 - centre;
  Curve arc;
  arc.u = axis * rx;
  arc.v = ZBR_PT(-axis.y(), axis.x()) * ry;
  arc.centre = (current_ + p) * 0.5 + arc.u * centre.x() + arc.v * centre.y();
  arc.t0 = drawing::Atan2(from.y(), from.x());
  arc.t1 = drawing::Atan2(to.y(), to.x());
  if (isPositive && arc.t1 <= arc.t0) arc.t1 += drawing::kFullTurn;
  if (!isPositive && arc.t1 >= arc.t0) arc.t1 -= drawing::kFullTurn;
  AddCurve(std::move(arc), p);
}

void SvgPathMaker::Close() {
  if (isOpen_) {
    Path& path = paths_.back();
    path.closed = true;
    if (path.points.size() > 1 && AreIdentical(path.points.back(), path.points.front())) path.points.pop_back();
  }
  isOpen_ = false;
  current_ = start_;
}

std::vector<Path> SvgPathMaker::Take() {
  std::erase_if(paths_, [](const Path& path) { return path.points.size() < 2 && path.curves.empty(); });
  return std::move(paths_);
}

std::optional<std::vector<Path>> ParseSvgPath(std::string_view text) {
  return PathReader(text).Read();
}

}  // namespace zbr::formats
