// Chaining of segments into polylines and of pieces into loops: lattice segments keep their length and are joined wherever two ends
// meet, and the steps around cells close into loops of the cells' area.
#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "fuzz/rings.h"
#include "support/expect.h"

namespace {

using Ends = std::vector<ZBR_HL_OPT_PT>;
using Lines = std::vector<std::vector<ZBR_PT>>;

void Append(Ends& ends, const ZBR_PT& s, const ZBR_PT& e) {
  ends.emplace_back().pt = s;
  ends.emplace_back().pt = e;
}

void Chain(Bytes& bytes) {
  const int kind = bytes.Below(3);  // lattice, plain, wild
  Ends ends;
  std::set<std::set<std::pair<double, double>>> seen;
  std::map<std::pair<double, double>, int> degrees;
  double length = 0.0;  // repeats do not count
  for (int n = bytes.Below(40); n > 0; --n) {
    const auto point = [&] { return kind == 0 ? bytes.Lattice(5, 1).xy() : bytes.Point(kind == 2); };
    const ZBR_PT s = point();
    const ZBR_PT e = point();
    Append(ends, s, e);
    if (kind != 0 || !seen.insert(std::set<std::pair<double, double>>{{s.x(), s.y()}, {e.x(), e.y()}}).second) continue;
    length += s.Distance(e);
    if (s.Distance(e) == 0.0) continue;
    for (const ZBR_PT& p : {s, e}) ++degrees[{p.x(), p.y()}];
  }
  const ZBR_TmpEps guard(0.001);
  Lines lines;
  const int open = zbrOptimizeSegs(ends, lines);
  for (const auto& line : lines) {
    for (std::size_t i = 1; i < line.size(); ++i) length -= line[i - 1].Distance(line[i]);
  }
  if (kind != 0) return;
  Require(std::abs(length) < 1e-9, "the length is kept");
  const auto odd = std::count_if(degrees.begin(), degrees.end(), [](const auto& place) { return place.second % 2 == 1; });
  Require(open == odd / 2, "lines end where an end has no partner");
}

LoopList Close(Ends pieces) {
  LoopList loops;
  Require(zbrMakeOutLineLoops(pieces, loops) == static_cast<int>(loops.size()), "the number of outer loops");
  return loops;
}

// Some steps twice, some in two parts, points and a piece that runs both ways among them.
void CloseCells(Bytes& bytes) {
  const OperandPair cells = Drawn(bytes, "cells");
  std::vector<ZBR_SEG> pieces = {{{50, 1}, {55, bytes.Plain()}}};
  pieces.emplace_back(pieces[0].e(), pieces[0].s());
  ForEachEdge(cells.a, [&](int, std::size_t, const ZBR_PT& s, const ZBR_PT& e) {
    const ZBR_PT middle = (s + e) * 0.5;
    const int manner = bytes.Below(6);
    if (manner == 1) pieces.emplace_back(s, e);
    if (manner == 2) pieces.emplace_back(middle, middle);
    if (manner == 3) pieces.emplace_back(middle, e);
    pieces.emplace_back(s, manner == 3 ? middle : e);
  });
  for (std::size_t k = 1; k < pieces.size(); ++k) std::swap(pieces[k], pieces[bytes.Word(2) % (k + 1)]);
  Ends ends;
  for (const ZBR_SEG& piece : pieces) Append(ends, piece.s(), piece.e());
  const LoopList loops = Close(ends);
  const auto describe = [&] { return ToText(loops); };
  const double area = (*cells.areas)[0] + (*cells.areas)[3];  // A - B and what is common
  Require(std::abs(NetArea(loops) - area) < 1e-9, "the loops hold the cells", describe);
  Require(bool(IsNested(loops, 0.0)) && IsRegion(RingsOf(loops)), "the loops are simple and nested", describe);
}

void CloseAny(Bytes& bytes) {
  Ends ends;
  const bool wild = bytes.Flag();
  for (int n = bytes.Below(60); n > 0; --n) ends.emplace_back().pt = bytes.Point(wild);  // perhaps half a piece
  Close(ends);
}

}  // namespace

void Fuzz(Bytes& bytes) {
  constexpr void (*kKinds[])(Bytes&) = {Chain, CloseCells, CloseAny};
  kKinds[bytes.Below(3)](bytes);
}
