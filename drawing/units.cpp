// The table of units.
#include <zbr-drawing/units.h>

#include <array>
#include <cstddef>

namespace zbr::drawing {
namespace {

struct Unit {
  const char* name;
  double numerator;  // metres = numerator / denominator, so that whole ratios such as mm to m stay exact
  double denominator;
};

constexpr std::array<Unit, 21> kUnits = {{{"", 0, 1},
                                          {"in", 254, 10000},
                                          {"ft", 3048, 10000},
                                          {"mi", 1609344, 1000},
                                          {"mm", 1, 1000},
                                          {"cm", 1, 100},
                                          {"m", 1, 1},
                                          {"km", 1000, 1},
                                          {"microinch", 254, 1e10},
                                          {"mil", 254, 1e7},
                                          {"yd", 9144, 10000},
                                          {"angstrom", 1, 1e10},
                                          {"nm", 1, 1e9},
                                          {"um", 1, 1e6},
                                          {"dm", 1, 10},
                                          {"dam", 10, 1},
                                          {"hm", 100, 1},
                                          {"Gm", 1e9, 1},
                                          {"au", 149597870700.0, 1},
                                          {"ly", 9460730472580800.0, 1},
                                          {"pc", 3.0856775814913673e16, 1}}};

const Unit& UnitOf(int code) {
  const bool known = code > 0 && static_cast<std::size_t>(code) < kUnits.size();
  return kUnits[known ? static_cast<std::size_t>(code) : 0];
}

}  // namespace

std::string UnitName(int code) {
  return UnitOf(code).name;
}

double UnitFactor(int from, int to) {
  const Unit& a = UnitOf(from);
  const Unit& b = UnitOf(to);
  return b.numerator == 0 ? 0.0 : (a.numerator * b.denominator) / (a.denominator * b.numerator);
}

}  // namespace zbr::drawing
