#include "classes/classes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <numeric>

namespace {

using Rings = std::vector<Ring>;
using Ops = std::vector<ZBR_BOOLEAN_OPE>;

constexpr double kPi = 3.14159265358979323846;
const Ops kAllOps(kOps.begin(), kOps.end());

double Between(Random& random, double from, double to) {
  return from + (to - from) * Unit(random);
}

// 10^-from ... 10^-to, each power equally often.
double Small(Random& random, double from, double to) {
  return std::pow(10.0, -Between(random, from, to));
}

ZBR_PT Spot(Random& random) {
  return {Between(random, -50.0, 50.0), Between(random, -50.0, 50.0)};
}

template <typename Items>
const auto& AnyOf(const Items& items, Random& random) {
  return items[static_cast<std::size_t>(Below(random, static_cast<int>(items.size())))];
}

// On an edge, but for rounding; now and then a vertex.
ZBR_PT OnBoundary(const Ring& ring, Random& random) {
  const auto i = static_cast<std::size_t>(Below(random, static_cast<int>(ring.size())));
  const ZBR_PT& p = ring[i];
  return Below(random, 5) == 0 ? p : p + (ring[(i + 1) % ring.size()] - p) * Unit(random);
}

Ring Circle(const ZBR_PT& centre, double radius, int n, double phase) {
  Ring ring;
  for (int k = 0; k < n; ++k) {
    const double angle = phase + 2.0 * kPi * k / n;
    ring.push_back(centre + ZBR_PT(radius * std::cos(angle), radius * std::sin(angle)));
  }
  return ring;
}

Ring Blob(Random& random) {
  const ZBR_PT centre = Spot(random) * 0.4;
  Ring ring = Circle(centre, Between(random, 20.0, 50.0), 3 + Below(random, 12), Unit(random));
  for (ZBR_PT& p : ring) p = centre + (p - centre) * Between(random, 0.3, 1.0);
  return ring;
}

ZBR_PT MeanOf(const Ring& ring) {
  return std::accumulate(ring.begin(), ring.end(), ZBR_PT()) / static_cast<double>(ring.size());
}

Rings BlobWithHole(Random& random) {
  const Ring outer = Blob(random);
  if (Below(random, 3) != 0) return {outer};
  const ZBR_PT mean = MeanOf(outer);
  return {outer, Moved({outer}, 0.3, mean * 0.7)[0]};
}

// A ring through the points, in the order of their directions from their mean.
Ring Around(Ring points) {
  const ZBR_PT mean = MeanOf(points);
  const auto angle = [&](const ZBR_PT& p) { return std::atan2(p.y() - mean.y(), p.x() - mean.x()); };
  std::sort(points.begin(), points.end(), [&](const ZBR_PT& p, const ZBR_PT& q) { return angle(p) < angle(q); });
  return points;
}

Ring Rectangle(double x, double y, double width, double height) {
  return {{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}};
}

Rings Turned(Rings rings, double angle, const ZBR_PT& centre = {}) {
  for (Ring& ring : rings) {
    for (ZBR_PT& p : ring) {
      const ZBR_PT d = p - centre;
      p = centre + ZBR_PT(d.x() * std::cos(angle) - d.y() * std::sin(angle), d.x() * std::sin(angle) + d.y() * std::cos(angle));
    }
  }
  return rings;
}

Rings Shaken(Rings rings, double noise, Random& random) {
  for (Ring& ring : rings) {
    for (ZBR_PT& p : ring) p += ZBR_PT(Between(random, -noise, noise), Between(random, -noise, noise));
  }
  return rings;
}

Pair MakePair(Rings a, Rings b) {
  return {{std::move(a), {}}, {std::move(b), {}}};
}

// ---- pairs that meet in coincidences

Pair Gridded(Random& random) {
  static const std::array<const char*, 4> families = {"cells", "blocks", "nests", "tiles"};
  OperandPair pair = FamilyNamed(AnyOf(families, random)).draw(random);
  const double scale = Below(random, 2) == 0 ? 8.0 : 4.0;  // keeps exact what is exact
  return MakePair(Moved(std::move(pair.a), scale, {}), Moved(std::move(pair.b), scale, {}));
}

Pair TurnedGrid(Random& random) {
  const Pair pair = Gridded(random);
  const double angle = Between(random, 0.0, 2.0 * kPi);
  return MakePair(Turned(pair.a.rings, angle), Turned(pair.b.rings, angle));
}

// The second ring runs through points on the first one's edges, off by `off`.
Pair Junction(Random& random, double off = 0.0, const ZBR_PT& shift = {}) {
  const Rings a = Moved({Blob(random)}, 1.0, shift);
  Ring points;
  for (int n = 3 + Below(random, 6); n > 0; --n) {
    points.push_back(Below(random, 3) == 0 ? Spot(random) + shift : OnBoundary(a[0], random));
  }
  Rings b = Shaken({Around(std::move(points))}, off, random);
  return Below(random, 2) == 0 ? MakePair(a, std::move(b)) : MakePair(std::move(b), a);
}

Pair Coincident(Random& random) {
  const int kind = Below(random, 3);
  return kind == 0 ? Gridded(random) : kind == 1 ? TurnedGrid(random) : Junction(random);
}

Pair Noisy(double noise, Random& random) {
  const Pair pair = Coincident(random);
  return MakePair(Shaken(pair.a.rings, noise, random), Shaken(pair.b.rings, noise, random));
}

Pair TurnedCopy(Random& random) {
  const Rings shapes[] = {Gridded(random).a.rings, BlobWithHole(random), {Circle({}, 50.0, 3 + Below(random, 40), 0.0)}};
  const Rings& a = shapes[Below(random, 3)];
  const ZBR_PT centre = a.empty() || Below(random, 2) == 0 ? ZBR_PT() : AnyOf(a[0], random);
  return MakePair(a, Turned(a, Small(random, 3.0, 9.0), centre));
}

// Triangles of A meet in a point through which edges of B pass.
Pair ThroughOneSpot(Random& random) {
  OperandPair fans = FamilyNamed("fans").draw(random);
  const double angle = Below(random, 3) == 0 ? 0.0 : Between(random, 0.0, 2.0 * kPi);
  Rings a = Turned(Moved(std::move(fans.a), 10.0, {}), angle);
  if (Below(random, 2) == 0 || a.empty()) return MakePair(a, Turned(Moved(std::move(fans.b), 10.0, {}), angle));
  const ZBR_PT apex = a[0][0];
  const ZBR_PT along = Circle({}, 30.0, 1, Between(random, 0.0, 2.0 * kPi))[0];
  return MakePair(a, {{apex - along * Unit(random), apex + along, Spot(random)}});
}

// Rings of A touch each other in a vertex or on an edge: in a convex ring, and beyond its edges.
Pair Touching(Random& random) {
  const Ring outer = Circle({}, 40.0, 3 + Below(random, 6), Unit(random));
  Rings a = {outer};
  const ZBR_PT at = OnBoundary(outer, random);
  a.push_back({at, ZBR_PT() + at * 0.2 + ZBR_PT(-at.y(), at.x()) * 0.1, at * -0.1});
  if (Below(random, 2) == 0) a.push_back({at, at * 1.5 + ZBR_PT(-at.y(), at.x()) * 0.1, at * 1.4});
  if (Below(random, 2) == 0) return MakePair(a, Turned(a, Between(random, 0.0, 2.0 * kPi), Below(random, 2) == 0 ? at : ZBR_PT()));
  return MakePair(a, {Around({at, OnBoundary(a[1], random), OnBoundary(a.back(), random), Spot(random)})});
}

// Triangles 10^-from ... 10^-to high, some of them along an edge of the ring.
Rings Slivers(const Ring& ring, Random& random, double from, double to) {
  Rings slivers;
  for (int n = 1 + Below(random, 3); n > 0; --n) {
    const bool along = Below(random, 2) == 0;
    const ZBR_PT p = along ? ring[0] : Spot(random);
    const ZBR_PT q = along ? ring[1] : Spot(random);
    const ZBR_PT across = ZBR_PT(p.y() - q.y(), q.x() - p.x()) * (Small(random, from, to) / (1.0 + p.Distance(q)));
    slivers.push_back({p, q, p + (q - p) * Unit(random) + across});
  }
  return slivers;
}

Pair WithSlivers(double from, double to, Random& random) {
  const Ring ring = Blob(random);
  return MakePair(Slivers(ring, random, from, to), {ring});
}

// A notch or a needle without width, or hardly any; it may cross the ring.
Ring WithSpike(Ring ring, Random& random) {
  const auto i = static_cast<std::size_t>(Below(random, static_cast<int>(ring.size())));
  const ZBR_PT foot = ring[i] + (ring[(i + 1) % ring.size()] - ring[i]) * Between(random, 0.2, 0.8);
  const ZBR_PT back = Below(random, 3) == 0 ? foot : foot + (ring[(i + 1) % ring.size()] - ring[i]) * Small(random, 2.0, 14.0);
  ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(i) + 1, {foot, Spot(random), back});
  return ring;
}

Pair Spikes(Random& random) {
  const Ring a = WithSpike(Blob(random), random);
  return MakePair(
      {a}, {Below(random, 2) == 0 ? Blob(random) : WithSpike(Around({AnyOf(a, random), Spot(random), Spot(random)}), random)});
}

Pair TangentCircles(Random& random) {
  const double r = Between(random, 5.0, 30.0);
  const double s = Between(random, 5.0, 30.0);
  const int n = 8 + Below(random, 40);
  const double phase = Below(random, 2) == 0 ? 0.0 : Unit(random);
  const double angle = Below(random, 2) == 0 ? phase + 2.0 * kPi * Below(random, n) / n : Between(random, 0.0, 2.0 * kPi);
  const double between = Below(random, 2) == 0 ? r + s : std::abs(r - s);
  const ZBR_PT centre(between * std::cos(angle), between * std::sin(angle));
  return MakePair({Circle({}, r, n, phase)}, {Circle(centre, s, Below(random, 2) == 0 ? n : 2 * n, phase)});
}

// At 1e7 points are rounded by 1e-9.
Pair FarAway(Random& random) {
  const double far = Below(random, 2) == 0 ? 1e6 : 1e7;
  const ZBR_PT shift(far * Between(random, 0.5, 1.0), far * Between(random, -1.0, 1.0));
  if (Below(random, 2) == 0) return Junction(random, 0.0, shift);
  const Pair pair = TurnedGrid(random);
  return MakePair(Moved(pair.a.rings, 1.0, shift), Moved(pair.b.rings, 1.0, shift));
}

// Points along a line, beside it by about what their coordinates are rounded by.
Ring Thread(const ZBR_PT& from, const ZBR_PT& along, Random& random) {
  const double width = Small(random, 8.0, 15.0);
  Ring ring;
  for (int n = 3 + Below(random, 8); n > 0; --n) {
    const double aside = Below(random, 6) == 0 ? Unit(random) : Between(random, -width, width);
    ring.push_back(from + along * Unit(random) + ZBR_PT(-along.y(), along.x()) * aside);
  }
  return ring;
}

Pair Threads(Random& random) {
  const double far = Small(random, -6.7, -5.0);
  const ZBR_PT from(far * Between(random, -1.0, 1.0), far * Between(random, -1.0, 1.0));
  const ZBR_PT along(Between(random, 10.0, 100.0), Below(random, 2) == 0 ? 0.0 : Between(random, -100.0, 100.0));
  Rings a = {Thread(from, along, random)};
  if (Below(random, 2) == 0) a.push_back(Thread(from, along, random));
  return MakePair(std::move(a), {Thread(from, along, random)});
}

Ring Tangle(Random& random) {
  Ring ring;
  for (int n = 5 + Below(random, 6); n > 0; --n) ring.push_back(Spot(random));
  return ring;
}

// Rings that no region has, but that drawings hold.
Pair Dirty(JudgeFill fill, Random& random) {
  const std::array<Rings, 7> drawings = {
      Rings{{{-25, -25}, {25, 25}, {25, -25}, {-25, 25}}},                              // bow tie
      Rings{Square(-30, -30, 40), Square(-10, -10, 40)},                                // overlapping squares
      Rings{Square(-30, -30, 60), Square(10, 10, 40)},                                  // hole crossing its outer ring
      Rings{{{-30, -30}, {30, -30}, {30, 0}, {-30, 0}, {-30, 30}, {0, 30}, {0, -30}}},  // L that overlaps itself
      Rings{{{-30, -30}, {30, -30}, {30, 30}, {0, 30}, {0, 0}, {0, 30}, {-30, 30}}},    // spike to the inside
      Rings{Square(-30, -30, 60), Square(-30, -30, 60)},                                // doubled ring
      Rings{Tangle(random)},
  };
  const auto draw = [&] {
    Rings rings = AnyOf(drawings, random);
    if (Below(random, 2) == 0) rings = Turned(std::move(rings), Between(random, 0.0, 2.0 * kPi));
    return Disguise(Moved(std::move(rings), 1.0, Below(random, 2) == 0 ? ZBR_PT() : Spot(random) * 0.5), random);
  };
  Pair pair = MakePair(draw(), Below(random, 2) == 0 ? Rings{Square(-12, -12, 37)} : draw());
  pair.a.fill = pair.b.fill = fill;
  return pair;
}

// Rounded to some digits behind the point, as files have them.
Pair Printed(Random& random) {
  Pair pair = Coincident(random);
  const double unit = std::pow(10.0, 3 + Below(random, 10));
  for (Region* region : {&pair.a, &pair.b}) {
    for (Ring& ring : region->rings) {
      for (ZBR_PT& p : ring) p.Set(std::round(p.x() * unit) / unit, std::round(p.y() * unit) / unit);
    }
  }
  return pair;
}

// Few places, with many vertices about each: boundaries run to and fro between them, side by side.
Pair Clustered(Random& random) {
  Ring places;
  for (int n = 3 + Below(random, 4); n > 0; --n) places.push_back(Spot(random));
  const double spread = Small(random, 6.0, 12.0);
  const auto ring = [&] {
    Ring points;
    for (int n = 3 + Below(random, 8); n > 0; --n) points.push_back(AnyOf(places, random));
    return Shaken({points}, spread, random)[0];
  };
  return MakePair({ring(), ring()}, {ring()});
}

// In other units, from a billionth to a billion of the usual size.
Pair Resized(Random& random) {
  const Pair pair = Coincident(random);
  const double scale = std::pow(10.0, Between(random, -9.0, 9.0));
  return MakePair(Moved(pair.a.rings, scale, {}), Moved(pair.b.rings, scale, {}));
}

// A coast, and the same turned a little, or with some vertices moved and some on edges.
Pair Large(Random& random) {
  Ring coast = Circle({}, 50.0, 500 + Below(random, 2500), 0.0);
  for (ZBR_PT& p : coast) p = p * Between(random, 0.9, 1.0);
  if (Below(random, 2) == 0) return MakePair({coast}, Turned({coast}, Small(random, 2.0, 9.0)));
  const Rings shaken = Shaken({coast}, Small(random, 2.0, 12.0), random);
  const int rare = 2 + Below(random, 100);
  Ring other;
  for (std::size_t i = 0; i < coast.size(); ++i) {
    other.push_back(Below(random, rare) == 0 ? shaken[0][i] : coast[i]);
    if (Below(random, rare) == 0) other.push_back(coast[i] + (coast[(i + 1) % coast.size()] - coast[i]) * Unit(random));
  }
  return MakePair({coast}, {other});
}

// ---- results as operands

Rings ToolShape(Random& random, double angle) {
  if (Below(random, 3) == 0) return {Circle(Spot(random), Between(random, 3.0, 15.0), 6 + Below(random, 30), 0.0)};
  if (Below(random, 3) == 0) angle = Between(random, 0.0, 2.0 * kPi);
  const double x = Below(random, 20) * 5.0 - 50.0;
  const double y = Below(random, 20) * 5.0 - 50.0;
  const double width = 5.0 + 5.0 * Below(random, 8);
  return Turned({Rectangle(x, y, width, 5.0 + 5.0 * Below(random, 8))}, angle);
}

void FedBack(Random& random, const Visit& visit) {
  const Pair pair = Coincident(random);
  const auto both = visit(pair, {ZBR_BOOL_OR});
  const bool gridded = Below(random, 2) == 0;
  if (both) visit({*both, {gridded ? pair.a.rings : Coincident(random).b.rings, {}}}, kAllOps);
}

void Chain(bool withXor, Random& random, const Visit& visit) {
  const double angle = Below(random, 2) == 0 ? 0.0 : Between(random, 0.0, 2.0 * kPi);
  std::optional<Region> region = Region{ToolShape(random, angle), {}};
  for (int steps = 10 + Below(random, 41); steps > 0 && region; --steps) {
    const int kind = Below(random, withXor ? 4 : 3);
    const ZBR_BOOLEAN_OPE op = kind == 3 ? ZBR_BOOL_XOR : kind == 2 ? ZBR_BOOL_A_MINUS_B : ZBR_BOOL_OR;
    region = visit({*region, {ToolShape(random, angle), {}}}, {op});
  }
}

void UnionTree(Random& random, const Visit& visit) {
  std::vector<Region> parts(120);
  for (Region& part : parts) {
    const double x = Below(random, 60);
    const double y = Below(random, 60);
    const double width = 1.0 + Below(random, 12);
    part.rings = {Rectangle(x, y, width, 1.0 + Below(random, 12))};
  }
  for (; parts.size() > 1; parts.resize((parts.size() + 1) / 2)) {
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
      const auto both = visit({parts[i], parts[i + 1]}, {ZBR_BOOL_OR});
      if (!both) return;
      parts[i / 2] = *both;
    }
    if (parts.size() % 2 != 0) parts[parts.size() / 2] = parts.back();
  }
}

// ---- files

std::vector<Pair> ReadCases(const std::string& file) {
  std::ifstream in(file);
  std::vector<Pair> pairs;
  for (std::string key, text; in >> key && std::getline(in >> std::ws, text);) {
    if (key == "A") pairs.push_back(MakePair(RingsOf(ParseLoops(text)), {}));
    if (key == "B") pairs.back().b.rings = RingsOf(ParseLoops(text));
  }
  return pairs;
}

// As they are, or in other units, moved or turned.
Pair DrawCase(const std::vector<Pair>& cases, Random& random) {
  Pair pair = AnyOf(cases, random);
  const int kind = Below(random, 4);
  const double scale = kind == 1 ? std::ldexp(1.0, Below(random, 12)) : 1.0;
  const double angle = kind == 3 ? Between(random, 0.0, 2.0 * kPi) : 0.0;
  for (Region* region : {&pair.a, &pair.b}) {
    region->rings = Turned(Moved(region->rings, scale, kind == 2 ? ZBR_PT(1e6, 1e6) : ZBR_PT()), angle);
  }
  return pair;
}

}  // namespace

std::vector<InputClass> InputClasses(const std::string& cases) {
  std::vector<InputClass> classes;
  const auto add = [&](const std::string& name, auto drawPair, double noise = 0.0) {
    classes.push_back({name, noise, 1, false, [=](Random& random, const Visit& visit) { visit(drawPair(random), kAllOps); }});
  };
  add("general", [](Random& random) {
    Rings a = BlobWithHole(random);
    return MakePair(std::move(a), BlobWithHole(random));
  });
  add("grid", Gridded);
  add("turned-grid", TurnedGrid);
  add("junctions", [](Random& random) { return Junction(random); });
  for (const char* level : {"1e-13", "1e-12", "1e-11", "1e-10", "3e-10", "1e-9", "3e-9", "1e-8", "1e-7", "1e-6"}) {
    const double noise = std::strtod(level, nullptr);
    add(
        std::string("noise-") + level, [noise](Random& random) { return Noisy(noise, random); }, noise);
  }
  add("parallel", [](Random& random) { return Junction(random, Small(random, 4.0, 13.0)); });
  add("turned-copies", TurnedCopy);
  add("one-spot", ThroughOneSpot);
  add("touching", Touching);
  add("slivers", [](Random& random) { return WithSlivers(1.0, 12.0, random); });
  add("only-slivers", [](Random& random) { return WithSlivers(9.0, 14.0, random); });
  add("spikes", Spikes);
  add("tangent", TangentCircles);
  add("far", FarAway);
  add("threads", Threads);
  add("printed", Printed);
  add("clustered", Clustered);
  add("resized", Resized);
  add("large", Large);
  classes.back().cost = 50;
  const std::array<const char*, 4> fills = {"even-odd", "non-zero", "positive", "negative"};
  for (const JudgeFill fill : {kFillEvenOdd, kFillNonZero, kFillPositive, kFillNegative}) {
    add(std::string("dirty-") + fills[fill], [fill](Random& random) { return Dirty(fill, random); });
    classes.back().needsFills = fill != kFillEvenOdd;
  }
  classes.push_back({"fed-back", 0.0, 1, false, FedBack});
  classes.push_back({"chains", 0.0, 20, false, [](Random& random, const Visit& visit) { Chain(false, random, visit); }});
  classes.push_back({"chains-xor", 0.0, 20, false, [](Random& random, const Visit& visit) { Chain(true, random, visit); }});
  classes.push_back({"union-tree", 0.0, 60, false, UnionTree});
  if (std::vector<Pair> pairs = ReadCases(cases); !pairs.empty()) {
    add(
        "cases", [pairs = std::move(pairs)](Random& random) { return DrawCase(pairs, random); }, 1e-6);
  }
  return classes;
}
