// The generated inputs of the segment benchmarks.

#include "segment_inputs.h"

#include <algorithm>
#include <cmath>

#include "portable_numbers.h"

namespace bench {
namespace {

// Coordinates of the lines: coarse enough to be exact as 31-bit integers over the largest region.
constexpr double kLineStep = 0x1p-14;

double OnLineGrid(double value) {
  return std::floor(value / kLineStep + 0.5) * kLineStep;
}

struct Box {
  ZBR_PT low, high;

  ZBR_PT Middle() const { return (low + high) * 0.5; }
  double Side() const { return std::max(high.x() - low.x(), high.y() - low.y()); }
};

Box BoxOf(const Region& region) {
  Box box = {region.front().outer.front(), region.front().outer.front()};
  for (const ZBR_PT& p : region.front().outer) {
    box.low.Set(std::min(box.low.x(), p.x()), std::min(box.low.y(), p.y()));
    box.high.Set(std::max(box.high.x(), p.x()), std::max(box.high.y(), p.y()));
  }
  return box;
}

// Heights are a linear function of the place: what is cut off can be checked in z too.
ZBR_PT3 Lift(const ZBR_PT& p) {
  const double x = OnLineGrid(p.x());
  const double y = OnLineGrid(p.y());
  return {x, y, 0.5 * x - 0.25 * y};
}

ZBR_PT PointIn(const Box& box, Random& random) {
  const double x = random.Between(box.low.x(), box.high.x());
  return {x, random.Between(box.low.y(), box.high.y())};
}

ZBR_PT Step(double length, double turns) {
  const SinCos direction = SinCosOfTurns(turns);
  return {length * direction.cos, length * direction.sin};
}

void AddShort(std::size_t n, const Box& box, double length, std::vector<ZBR_SEG3>& segments) {
  Random random(11);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT from = PointIn(box, random);
    segments.emplace_back(Lift(from), Lift(from + Step(length, random.Between(0.0, 1.0))));
  }
}

// Chords of a circle around the box.
void AddLong(std::size_t n, const Box& box, std::vector<ZBR_SEG3>& segments) {
  Random random(12);
  const double radius = 0.8 * box.Side();
  for (std::size_t i = 0; i < n; ++i) {
    const double from = random.Between(0.0, 1.0);
    const double to = from + random.Between(0.3, 0.7);
    segments.emplace_back(Lift(box.Middle() + Step(radius, from)), Lift(box.Middle() + Step(radius, to)));
  }
}

void AddHatch(std::size_t n, const Box& box, std::vector<ZBR_SEG3>& segments) {
  constexpr double kTurns = 0.11;
  const double radius = 0.75 * box.Side();
  const ZBR_PT along = Step(radius, kTurns);
  for (std::size_t i = 0; i < n; ++i) {
    const double place = 2.0 * (static_cast<double>(i) + 0.5) / static_cast<double>(n) - 1.0;
    const ZBR_PT middle = box.Middle() + Step(radius * place, kTurns + 0.25);
    segments.emplace_back(Lift(middle - along), Lift(middle + along));
  }
}

// A walk whose direction changes slowly; it turns towards the middle where it would leave the box.
void AddChain(std::size_t n, const Box& box, double length, std::vector<ZBR_SEG3>& segments) {
  Random random(13);
  ZBR_PT at = box.Middle();
  double turns = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    turns += random.Between(-0.05, 0.05);
    ZBR_PT next = at + Step(length, turns);
    if (next.x() < box.low.x() || next.x() > box.high.x() || next.y() < box.low.y() || next.y() > box.high.y()) {
      turns = random.Between(0.0, 1.0);
      next = at + (box.Middle() - at) * std::min(1.0, length / at.Distance(box.Middle()));
    }
    segments.emplace_back(Lift(at), Lift(next));
    at = next;
  }
}

}  // namespace

std::vector<ZBR_SEG> RandomSegments(std::size_t n, std::uint64_t seed) {
  Random random(seed);
  const Box box = {{-1000.0, -1000.0}, {1000.0, 1000.0}};
  std::vector<ZBR_SEG> segments;
  segments.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT from = PointIn(box, random);
    segments.emplace_back(from, PointIn(box, random));
  }
  return segments;
}

std::vector<ZBR_SEG> GridSegments(std::size_t n, std::uint64_t seed) {
  Random random(seed);
  const auto side = std::max<std::size_t>(2, static_cast<std::size_t>(std::sqrt(static_cast<double>(n) / 8.0)));
  std::vector<ZBR_SEG> segments;
  segments.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT from(static_cast<double>(random.Below(side)), static_cast<double>(random.Below(side)));
    const ZBR_PT to = from + (random.Below(2) == 0 ? ZBR_PT(1.0, 0.0) : ZBR_PT(0.0, 1.0));
    segments.emplace_back(random.Below(2) == 0 ? ZBR_SEG(from, to) : ZBR_SEG(to, from));
  }
  return segments;
}

std::vector<ZBR_SEG3> Lifted(const std::vector<ZBR_SEG>& segments) {
  std::vector<ZBR_SEG3> lifted;
  lifted.reserve(segments.size());
  for (const ZBR_SEG& s : segments) lifted.emplace_back(Lift(s.s()), Lift(s.e()));
  return lifted;
}

ClipInput MakeClipInput(std::string_view region, std::size_t edges, std::string_view lines, std::size_t n) {
  ClipInput input;
  input.region = region == "coast" ? MakeCoast(edges).a : MakeComb(edges).a;
  const Box box = BoxOf(input.region);
  const double length = region == "coast" ? 0.01 * box.Side() : 5.0;  // a comb's teeth stand every 1.9
  input.chained = lines == "chain";
  input.segments.reserve(n);
  if (lines == "short") AddShort(n, box, length, input.segments);
  if (lines == "long") AddLong(n, box, input.segments);
  if (lines == "hatch") AddHatch(n, box, input.segments);
  if (lines == "chain") AddChain(n, box, length, input.segments);
  return input;
}

}  // namespace bench
