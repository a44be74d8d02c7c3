// How an entry about triangles is tried: hidden lines, outlines, picking. Each in several disguises, and hidden lines beside what
// looking at samples tells, so that an entry can't be right by mistake.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "entries/entry.h"
#include "hiddenline/ink.h"
#include "hiddenline/scenes.h"
#include "support/expect.h"

namespace {

using Shells = std::vector<ZBR_HL_SHELL>;
using Ends = std::vector<double>;

// Triangles, ';' between them.
std::vector<Corners> Triangles(const std::string& text) {
  std::vector<Corners> triangles;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(';', at), text.size());
    const std::vector<ZBR_PT3> p = Points(text.substr(at, end - at));
    triangles.push_back({p.at(0), p.at(1), p.at(2)});
    at = end + 1;
  }
  return triangles;
}

// Triangles that share two vertices become neighbours.
void MakeNeighbours(std::vector<ZBR_HL_TRI>& body) {
  for (std::size_t k = 0; k < body.size(); ++k) {
    for (std::size_t o = 0; o < body.size(); ++o) {
      for (int i = 0; i < 3 && o != k; ++i) {
        for (int j = 0; j < 3; ++j) {
          const ZBR_HL_TRI& t = body[o];
          if (ZBR_HL_TRI::EqualSegSeg(body[k].pt[i], body[k].pt[(i + 1) % 3], t.pt[j], t.pt[(j + 1) % 3], 1e-9) < 0) continue;
          body[k].adj[i] = static_cast<int>(o);
          body[k].adj_edge[i] = j;
        }
      }
    }
  }
}

// body: a shell of triangles that know their neighbours; soup: of triangles that do not; hidden: "B.T.E", an edge not to be drawn.
Drawing DrawingOf(const Entry& entry) {
  Drawing drawing;
  for (const auto& [key, text] : entry.keys) {
    if (key != "body" && key != "soup") continue;
    drawing.bodies.push_back(std::move(DrawTriangles(Triangles(text)).bodies[0]));
    if (key == "body") MakeNeighbours(drawing.bodies.back());
  }
  for (const std::string& text : entry.All("undrawn")) {
    const std::vector<double> n = Numbers(text);
    drawing.bodies.at(static_cast<std::size_t>(n.at(0))).at(static_cast<std::size_t>(n.at(1))).dispj[static_cast<int>(n.at(2))] =
        false;
  }
  return drawing;
}

void Remove(Shells& shells) {
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
}

Ends EndsOf(const std::vector<ZBR_HL_INTERVAL>& list) {
  Ends ends;
  for (const ZBR_HL_INTERVAL& v : list) ends.insert(ends.end(), {v.s.t, v.e.t});
  return ends;
}

void ExpectEnds(const Ends& got, const Ends& expected) {
  ASSERT_EQ(got.size(), expected.size()) << testing::PrintToString(got) << " not " << testing::PrintToString(expected);
  for (std::size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], expected[k], 1e-9) << testing::PrintToString(got);
}

// What is drawn is what looking at samples finds, unless an entry says that samples can't tell.
void ExpectAsSeen(const Entry& entry, const Shells& shells) {
  if (entry.Or("samples", "") == "no") return;
  const Ink ink(shells);
  double wrong = 0.0;
  double length = 0.0;
  for (const InkSample& s : ink.Samples(1000)) {
    length += s.length;
    if (ink.IsWrong(s)) wrong += s.length;
  }
  EXPECT_LE(wrong, 1e-3 * length) << "drawn but hidden, or hidden but not drawn";
}

}  // namespace

// edge: p, q; by: triangles; seen: parameters where the edge comes into sight and goes out of it. The edge is that of a triangle
// hanging down from it; vertices in any order, the edge either way, mirrored, far away, in a shell with the occluders or not.
void RunEdge(const Entry& entry) {
  const std::vector<ZBR_PT3> edge = Points(entry.At("edge"));
  const std::vector<Corners> occluders = Triangles(entry.At("by"));
  const Ends seen = Numbers(entry.Or("seen", ""));
  for (int disguise = 0; disguise < 48; ++disguise) {
    SCOPED_TRACE("disguise " + std::to_string(disguise));
    const bool backwards = disguise / 6 % 2 == 1;
    const double mirror = disguise / 12 % 2 == 1 ? -1.0 : 1.0;
    const auto place = [&](const ZBR_PT3& p) { return ZBR_PT3(mirror * p.x() + 64.0 * mirror, p.y() - 16.0, p.z()) * 2.0; };
    const ZBR_PT3 p = place(edge[backwards ? 1 : 0]);
    const ZBR_PT3 q = place(edge[backwards ? 0 : 1]);
    std::vector<Corners> lists[2] = {{{p, q, (p + q) * 0.5 + ZBR_PT3(0.01, 0.02, -50)}}, {}};
    for (const Corners& o : occluders) {
      const std::size_t first = static_cast<std::size_t>(disguise % 3);
      Corners t = {place(o[first]), place(o[(first + 1) % 3]), place(o[(first + 2) % 3])};
      if (disguise / 3 % 2 == 1) std::swap(t[1], t[2]);
      lists[disguise / 24].push_back(t);
    }
    Drawing drawing = DrawTriangles(lists[0]);
    if (!lists[1].empty()) drawing.bodies.push_back(std::move(DrawTriangles(lists[1]).bodies[0]));
    Shells shells = drawing.Shells();
    Remove(shells);
    Ends expected = seen;
    if (backwards) {
      std::reverse(expected.begin(), expected.end());
      for (double& t : expected) t = 1.0 - t;
    }
    ExpectEnds(EndsOf(drawing.bodies[0][0].intvl_v[0]), expected);
    if (disguise == 0) ExpectAsSeen(entry, shells);
  }
}

// line: "B.T.E from to ...", what is seen of an edge of a triangle of a body; rest: "whole" or "nothing", of all other edges.
void RunScene(const Entry& entry) {
  Drawing drawing = DrawingOf(entry);
  Shells shells = drawing.Shells();
  Remove(shells);
  std::vector<std::vector<double>> lines;
  for (const std::string& line : entry.All("line")) lines.push_back(Numbers(line));
  const std::string rest = entry.Or("rest", "");
  for (std::size_t b = 0; b < shells.size(); ++b) {
    for (std::size_t t = 0; t < drawing.bodies[b].size(); ++t) {
      for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE("edge " + std::to_string(b) + " " + std::to_string(t) + " " + std::to_string(i));
        const Ends id = {static_cast<double>(b), static_cast<double>(t), static_cast<double>(i)};
        const Ends got = EndsOf(drawing.bodies[b][t].intvl_v[i]);
        const auto line =
            std::find_if(lines.begin(), lines.end(), [&](const Ends& l) { return std::equal(id.begin(), id.end(), l.begin()); });
        if (line != lines.end())
          ExpectEnds(got, Ends(line->begin() + 3, line->end()));
        else if (!rest.empty())
          ExpectEnds(got, rest == "whole" ? Ends{0, 1} : Ends{});
      }
    }
  }
  ExpectAsSeen(entry, shells);
}

// body, soup; loops: "area:outer+holes". In other orders and sizes too.
void RunOutline(const Entry& entry) {
  const std::string expected = entry.At("loops");
  for (int disguise = 0; disguise < 8; ++disguise) {
    SCOPED_TRACE("disguise " + std::to_string(disguise));
    Random random(static_cast<std::uint64_t>(disguise));
    Drawing drawing = DrawingOf(entry);
    const double scale = disguise % 2 == 0 ? 1.0 : 1024.0;
    Scale(drawing, ZBR_PT3(disguise < 4 ? scale : -scale, scale, scale));
    if (disguise > 0) Disguise(drawing, random);
    Shells shells = drawing.Shells();
    ZBR_HiddenLine::OutLineObj(shells.data(), static_cast<unsigned>(shells.size()));
    const LoopList& loops = shells[0].outline_all;
    const std::size_t colon = expected.find(':');
    EXPECT_NEAR(NetArea(loops) / (scale * scale), std::stod(expected), 1e-6) << ToText(loops);
    EXPECT_EQ(std::to_string(loops.size()) + "+" + std::to_string(RingsOf(loops).size() - loops.size()), expected.substr(colon + 1))
        << ToText(loops);
    EXPECT_TRUE(IsNested(loops, 0.0));
  }
}

// body, soup; at: "x y" and the height there, or "x y nothing".
void RunPick(const Entry& entry) {
  Drawing drawing = DrawingOf(entry);
  Shells shells = drawing.Shells();
  Remove(shells);
  for (const std::string& at : entry.All("at")) {
    const bool isNothing = at.find("nothing") != std::string::npos;
    const std::vector<double> n = Numbers(at.substr(0, at.find("nothing")));
    constexpr double kLowest = std::numeric_limits<double>::lowest();
    double z = kLowest;
    EXPECT_EQ(ZBR_HiddenLine::PickShells(n[0], n[1], shells.data(), static_cast<unsigned>(shells.size()), z), !isNothing) << at;
    if (isNothing) {
      EXPECT_EQ(z, kLowest) << at;
    } else {
      EXPECT_NEAR(z, n.at(2), 1e-9) << at;
    }
  }
}
