// How an entry about planar things is tried: the Boolean, nesting, location, relations, clipping, chaining, closing loops.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>

#include "boolean/check.h"
#include "entries/entry.h"
#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

template <class Value>
Value Named(const std::map<std::string, Value>& values, const std::string& name) {
  const auto it = values.find(name);
  if (it == values.end()) throw std::invalid_argument("no such word: " + name);
  return it->second;
}

// Outer loops in order, each with its holes in brackets, by their signed areas.
std::string Tree(const LoopList& loops) {
  std::string out;
  for (const auto& loop : loops) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%g", out.empty() ? "" : " ", loop->area());
    out += text;
    if (!loop->children().empty()) out += '(' + Tree(loop->children()) + ')';
  }
  return out;
}

void Append(std::vector<ZBR_SEG>& pieces, const Ring& line, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) pieces.emplace_back(line[i], line[(i + 1) % line.size()]);
}

}  // namespace

// A, B: regions; areas: of A - B, B - A, A or B, A and B, A xor B, with numbers of loops if wanted.
void RunBoolean(const Entry& entry) {
  ExpectBoolean(entry.Or("A", ""), entry.Or("B", ""), entry.At("areas"));
}

// A, B: a ring each; records: see crossings.txt; open: whether B is a line.
void RunCrossings(const Entry& entry) {
  std::vector<ZBR_CROSS> crosses;
  zbrGetPolygonCross(ParseLoop(entry.At("A")), ParseLoop(entry.At("B")), 0, 0, 0, 0, crosses, entry.Or("open", "no") == "no");
  std::string records;
  for (const ZBR_CROSS& c : crosses) {
    char text[80];
    std::snprintf(text, sizeof text, "%s%g:%g%c", records.empty() ? "" : " ", c.a.pos, c.b.pos,
                  c.dir == ZBR_CROSS_TO_LEFT ? 'L' : 'R');
    records += text;
  }
  EXPECT_EQ(records, entry.At("records"));
}

// cross, left, open: see orders.txt.
void RunOrders(const Entry& entry) {
  LoopList loops;
  for (const double x : {0.0, 100.0}) {
    loops.push_back(MakeLoop(Square(x, 0, 90)));
    loops.back()->children() = MakeLoops({{{x + 1, 1}, {x + 1, 2}, {x + 2, 2}}, {{x + 4, 1}, {x + 4, 2}, {x + 5, 2}}});
  }
  NetArea(loops);  // sets up
  std::vector<ZBR_CROSS> crosses;
  for (const std::string& text : entry.All("cross")) {
    const std::vector<double> v = Numbers(text);
    ZBR_CROSS& c = crosses.emplace_back();
    c.a.loop = ZBR_CROSS_LOOP(static_cast<int>(v.at(0)), static_cast<int>(v.at(1)));
    c.b.loop = ZBR_CROSS_LOOP(static_cast<int>(v.at(3)), static_cast<int>(v.at(4)));
    c.a.pos = v.at(2);
    c.b.pos = v.at(5);
    c.dir = v.at(6) == 1.0 ? ZBR_CROSS_TO_LEFT : ZBR_CROSS_TO_RIGHT;
    c.valid = true;
    c.index = static_cast<int>(crosses.size()) - 1;
  }
  std::vector<int> sorted[2] = {{1, 2, 3}, {4, 5}};  // to be replaced
  zbrOptimizeCross(loops, loops, crosses, sorted, entry.Or("open", "no") == "no");
  EXPECT_EQ(static_cast<int>(crosses.size()), std::stoi(entry.At("left")));
  EXPECT_TRUE(Holds(zbr::SortedFault(crosses, sorted, 1e-5)));
}

// rings; tree: see above.
void RunNest(const Entry& entry) {
  LoopList loops = ParseLoops(entry.Or("rings", ""));
  zbrMakeLoopTree(loops);
  EXPECT_EQ(Tree(loops), entry.Or("tree", ""));
  for (const auto& loop : loops) {
    EXPECT_EQ(loop->level(), 0);
    for (const auto& child : loop->children()) EXPECT_EQ(child->level(), 1);
  }
}

// ring, at: a point; place.
void RunLocate(const Entry& entry) {
  const auto loop = ParseLoop(entry.At("ring"));
  const ZBR_PT p = PlanarPoint(entry.At("at"));
  const ZBR_POLY_INSIDE place = Named<ZBR_POLY_INSIDE>(
      {{"in", ZBR_PI_IN}, {"out", ZBR_PI_OUT}, {"edge", ZBR_PI_ON_EDGE}, {"vertex", ZBR_PI_ON_VERTEX}}, entry.At("place"));
  std::vector<ZBR_POS_PT_PT> pos;
  for (int turn = 0; turn < 2; ++turn, loop->reverse()) {
    EXPECT_EQ(zbrIsInside(p, *loop, pos), place);
    EXPECT_EQ(ZBR_LOOP_LOCATOR(*loop).IsInside(p), place);
  }
}

// a, b: rings; relation: of a to b.
void RunRelation(const Entry& entry) {
  const std::map<std::string, ZBR_POLY_REL> relations = {
      {"same", ZBR_PR_SAME}, {"inside", ZBR_PR_A_IN_B}, {"around", ZBR_PR_B_IN_A}, {"apart", ZBR_PR_APART}};
  const auto a = ParseLoop(entry.At("a"));
  const auto b = ParseLoop(entry.At("b"));
  const ZBR_POLY_REL relation = Named(relations, entry.At("relation"));
  const bool isInside = relation == ZBR_PR_A_IN_B || relation == ZBR_PR_SAME;
  for (int turn = 0; turn < 2; ++turn, a->reverse()) {
    EXPECT_EQ(zbrCheckInclude(*a, *b), relation);
    EXPECT_EQ(zbrIsInside(*a, *b), entry.Or("within", isInside ? "yes" : "no") == "yes");
  }
}

// region, segment; inside: parameters where it enters and leaves.
void RunClip(const Entry& entry) {
  const LoopList region = ParseRegion(entry.Or("region", "0 0, 4 0, 4 4, 0 4; 1 1, 1 3, 3 3, 3 1"));
  const std::vector<ZBR_PT3> ends = Points(entry.At("segment"));
  const std::vector<double> expected = Numbers(entry.Or("inside", ""));
  for (int turn = 0; turn < 2; ++turn) {
    const ZBR_SEG3 segment(ends[turn == 0 ? 0 : 1], ends[turn == 0 ? 1 : 0]);
    std::vector<ZBR_SEG3> inside, outside;
    const int count = zbrClipSeg(segment, region, inside, &outside);
    EXPECT_EQ(count, static_cast<int>(inside.size()));
    ASSERT_EQ(inside.size(), expected.size() / 2);
    if (region.size() == 1) {  // a loop alone, in any sense of rotation, is the same region; what is outside need not be asked for
      std::vector<ZBR_SEG3> alone;
      region[0]->reverse();
      EXPECT_EQ(zbrClipSeg(segment, region[0], alone, nullptr), count);
      region[0]->reverse();
      for (std::size_t k = 0; k < alone.size(); ++k) EXPECT_TRUE(alone[k].s() == inside[k].s() && alone[k].e() == inside[k].e());
    }
    double length = segment.s().Distance(segment.e());
    for (std::size_t k = 0; k < expected.size(); ++k) {
      const ZBR_PT3& end = k % 2 == 0 ? inside[k / 2].s() : inside[k / 2].e();
      const double t = turn == 0 ? expected[k] : 1.0 - expected[expected.size() - 1 - k];
      EXPECT_LE(end.Distance(segment.s() + (segment.e() - segment.s()) * t), 1e-6) << t;
    }
    for (const auto& side : {inside, outside}) {
      for (const ZBR_SEG3& piece : side) length -= piece.s().Distance(piece.e());
    }
    if (std::isfinite(length)) {
      EXPECT_NEAR(length, 0.0, 1e-6) << "the pieces make up the segment";
    }
  }
}

// segments: rings of two points; lines: open ones, then closed ones; open: how many.
void RunChain(const Entry& entry) {
  const ZBR_TmpEps guard(0.001);
  std::vector<ZBR_HL_OPT_PT> ends;
  for (const Ring& segment : RingsOf(ParseLoops(entry.Or("segments", "")))) {
    for (const ZBR_PT& p : segment) ends.emplace_back().pt = p;
  }
  std::vector<std::vector<ZBR_PT>> lines = {{{9, 9}}};  // to be replaced
  EXPECT_EQ(zbrOptimizeSegs(ends, lines), std::stoi(entry.At("open")));
  EXPECT_EQ(Text(lines), ToText(ParseLoops(entry.Or("lines", ""))));
}

// rings: as directed; others: open lines of pieces that belong to no loop; loops: "area:outer+holes by points". In any order.
void RunLoops(const Entry& entry) {
  std::vector<ZBR_SEG> pieces;
  for (const Ring& ring : RingsOf(ParseLoops(entry.Or("rings", "")))) Append(pieces, ring, ring.size());
  for (const Ring& line : RingsOf(ParseLoops(entry.Or("others", "")))) Append(pieces, line, line.size() - 1);
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    Random random(seed);
    std::vector<ZBR_HL_OPT_PT> ends;
    for (std::size_t n = pieces.size(); n > 0; --n) {
      std::swap(pieces[n - 1], pieces[random() % n]);
      ends.emplace_back().pt = pieces[n - 1].s();
      ends.emplace_back().pt = pieces[n - 1].e();
    }
    if (seed % 3 == 0) ends.emplace_back().pt.Set(std::nan(""), 0.0);
    if (seed % 6 == 0) ends.emplace_back().pt.Set(0.0, 0.0);
    LoopList loops = ParseLoops("7 7, 9 7, 9 9");  // to be replaced
    const int count = zbrMakeOutLineLoops(ends, loops);
    std::size_t points = 0;
    for (const Ring& ring : RingsOf(loops)) points += ring.size();
    char text[64];
    std::snprintf(text, sizeof text, "%g:%d+%zu by %zu", NetArea(loops), count, RingsOf(loops).size() - loops.size(), points);
    EXPECT_EQ(entry.At("loops"), text) << "seed " << seed << ' ' << ToText(loops);
    EXPECT_TRUE(IsNested(loops, 0.0)) << "seed " << seed;
  }
}
