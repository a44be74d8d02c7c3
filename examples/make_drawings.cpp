// Makes the two example drawings: a bracket milled from plate, and the gasket of a pump that is to be mounted on it.
//
//   zbr-make-drawings FOLDER     writes bracket.dxf and gasket.dxf
//
// The files are DXF of the oldest kind still in use, which every CAD program reads. They hold what real ones hold: outlines with
// arcs as bulges, circles, and slots drawn with loose lines and arcs. Numbers have fixed decimals, so the bytes are the same on
// every machine.

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "write_file.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct Point {
  double x = 0.0, y = 0.0;
};

Point operator+(const Point& a, const Point& b) {
  return {a.x + b.x, a.y + b.y};
}
Point operator-(const Point& a, const Point& b) {
  return {a.x - b.x, a.y - b.y};
}
Point operator*(const Point& a, double f) {
  return {a.x * f, a.y * f};
}
double Length(const Point& a) {
  return std::sqrt(a.x * a.x + a.y * a.y);
}
Point Polar(const Point& centre, double radius, double degrees) {
  return centre + Point{std::cos(degrees * kPi / 180), std::sin(degrees * kPi / 180)} * radius;
}

// A corner of an outline, rounded with the given radius.
struct Corner {
  Point at;
  double radius = 0.0;
};

// A vertex of a polyline; the bulge is the tangent of a quarter of the angle of the arc to the next vertex.
struct Vertex {
  Point at;
  double bulge = 0.0;
};

// A DXF file in the making, in millimetres.
class Drawing {
 public:
  Drawing() {
    Group(0, "SECTION");
    Group(2, "HEADER");
    Group(9, "$ACADVER");
    Group(1, "AC1009");
    Group(9, "$INSUNITS");
    Group(70, "4");
    Group(0, "ENDSEC");
    Group(0, "SECTION");
    Group(2, "ENTITIES");
  }

  void Circle(const std::string& layer, const Point& centre, double radius) {
    Start("CIRCLE", layer);
    At(10, centre);
    Number(40, radius);
  }

  void Line(const std::string& layer, const Point& from, const Point& to) {
    Start("LINE", layer);
    At(10, from);
    At(11, to);
  }

  void Arc(const std::string& layer, const Point& centre, double radius, double fromDegrees, double toDegrees) {
    Start("ARC", layer);
    At(10, centre);
    Number(40, radius);
    Number(50, fromDegrees);
    Number(51, toDegrees);
  }

  void Polyline(const std::string& layer, const std::vector<Vertex>& vertices) {
    Start("POLYLINE", layer);
    Group(66, "1");
    At(10, {});
    Group(70, "1");
    for (const Vertex& vertex : vertices) {
      Start("VERTEX", layer);
      At(10, vertex.at);
      if (vertex.bulge != 0) Number(42, vertex.bulge);
    }
    Start("SEQEND", layer);
  }

  std::string Finish() {
    Group(0, "ENDSEC");
    Group(0, "EOF");
    return text_;
  }

 private:
  void Start(const std::string& entity, const std::string& layer) {
    Group(0, entity);
    Group(8, layer);
  }

  void Group(int code, const std::string& value) { text_ += std::to_string(code) + "\n" + value + "\n"; }

  void Number(int code, double value) {
    const double rounded = std::round(value * 1e6) / 1e6 + 0.0;  // adding zero turns -0 into 0
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.6f", rounded);
    std::string digits = buffer;
    digits.erase(digits.find_last_not_of('0') + 1);
    Group(code, digits.back() == '.' ? digits + "0" : digits);
  }

  void At(int code, const Point& p) {
    Number(code, p.x);
    Number(code + 10, p.y);
  }

  std::string text_;
};

// Rounds the corners of a closed outline. At a corner that turns by the angle w, the arc starts radius * tan(w / 2) before it and
// its bulge is tan(w / 4).
std::vector<Vertex> Rounded(const std::vector<Corner>& corners) {
  std::vector<Vertex> vertices;
  const std::size_t n = corners.size();
  for (std::size_t i = 0; i < n; ++i) {
    const Point at = corners[i].at;
    const Point back = corners[(i + n - 1) % n].at - at;
    const Point ahead = corners[(i + 1) % n].at - at;
    if (corners[i].radius == 0) {
      vertices.push_back({at});
      continue;
    }
    const double turn = std::atan2(ahead.x * back.y - ahead.y * back.x, -(back.x * ahead.x + back.y * ahead.y));
    const double cut = corners[i].radius * std::tan(std::abs(turn) / 2);
    vertices.push_back({at + back * (cut / Length(back)), std::tan(turn / 4)});
    vertices.push_back({at + ahead * (cut / Length(ahead))});
  }
  return vertices;
}

// A slot along x, of loose lines and arcs, in no order.
void Slot(Drawing& drawing, const std::string& layer, const Point& centre, double length, double width) {
  const double radius = width / 2;
  const double half = length / 2 - radius;
  const Point left = centre - Point{half, 0};
  const Point right = centre + Point{half, 0};
  drawing.Line(layer, left - Point{0, radius}, right - Point{0, radius});
  drawing.Line(layer, left + Point{0, radius}, right + Point{0, radius});
  drawing.Arc(layer, right, radius, 270, 90);
  drawing.Arc(layer, left, radius, 90, 270);
}

// A slot bent around a centre, with round ends; its middle line runs at `radius`.
std::vector<Vertex> Kidney(const Point& centre, double radius, double width, double fromDegrees, double toDegrees) {
  const double bulge = std::tan((toDegrees - fromDegrees) * kPi / 180 / 4);
  return {{Polar(centre, radius + width / 2, fromDegrees), bulge},
          {Polar(centre, radius + width / 2, toDegrees), 1.0},
          {Polar(centre, radius - width / 2, toDegrees), -bulge},
          {Polar(centre, radius - width / 2, fromDegrees), 1.0}};
}

std::string Bracket() {
  Drawing drawing;
  drawing.Polyline("OUTLINE", Rounded({{{0, 0}, 14},
                                       {{70, 0}, 6},
                                       {{78, 12}, 8},
                                       {{122, 12}, 8},
                                       {{130, 0}, 6},
                                       {{200, 0}, 14},
                                       {{200, 74}, 18},
                                       {{168, 120}, 18},
                                       {{32, 120}, 18},
                                       {{0, 74}, 18}}));
  const Point bore = {100, 66};
  drawing.Circle("BORE", bore, 24);
  for (int i = 0; i < 6; ++i) drawing.Circle("HOLES", Polar(bore, 35, 30 + 60 * i), 3.4);
  for (const double x : {18.0, 182.0}) drawing.Circle("HOLES", {x, 18}, 5.5);
  for (const double x : {46.0, 154.0}) drawing.Circle("HOLES", {x, 106}, 4.5);
  for (const double x : {36.0, 164.0}) {
    for (const double y : {44.0, 60.0, 76.0}) Slot(drawing, "SLOTS", {x, y}, 40, 8);
  }
  drawing.Polyline("POCKETS", Rounded({{{34, 12}, 4}, {{64, 12}, 4}, {{70, 26}, 4}, {{34, 26}, 4}}));
  drawing.Polyline("POCKETS", Rounded({{{166, 12}, 4}, {{166, 26}, 4}, {{130, 26}, 4}, {{136, 12}, 4}}));
  return drawing.Finish();
}

std::string Gasket() {
  constexpr int kEars = 8;
  constexpr double kStep = 360.0 / kEars;
  Drawing drawing;
  const Point centre = {112, 58};
  std::vector<Corner> outline;
  for (int i = 0; i < kEars; ++i) {
    const double angle = i * kStep;
    outline.push_back({Polar(centre, 84, angle), 10});
    outline.push_back({Polar(centre, 58, angle + kStep / 2), 20});
  }
  drawing.Polyline("OUTLINE", Rounded(outline));
  drawing.Circle("BORE", centre, 20);
  for (int i = 0; i < kEars; ++i) drawing.Circle("HOLES", Polar(centre, 67, i * kStep), 3.4);
  for (int i = 0; i < 4; ++i) drawing.Polyline("PASSAGES", Kidney(centre, 48, 9, i * 90 + 12, i * 90 + 78));
  for (int i = 0; i < 3; ++i) drawing.Polyline("PASSAGES", Kidney(centre, 31, 8, i * 120 + 20, i * 120 + 100));
  return drawing.Finish();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: zbr-make-drawings FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  return WriteFile(folder + "bracket.dxf", Bracket()) && WriteFile(folder + "gasket.dxf", Gasket()) ? 0 : 2;
}
