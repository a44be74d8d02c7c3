#include "support/shapes.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <stdexcept>

namespace {

Ring ParseRing(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::istringstream in(text);
  Ring ring;
  for (double x = 0.0, y = 0.0; in >> x >> y;) ring.emplace_back(x, y);
  if (!in.eof()) throw std::invalid_argument("not a ring: " + text);
  return ring;
}

void AppendNumber(std::string& out, double value) {
  std::array<char, 32> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  out.append(buffer.data(), result.ptr);
}

}  // namespace

std::shared_ptr<ZBR_LOOP> MakeLoop(Ring points) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt() = std::move(points);
  return loop;
}

LoopList MakeLoops(const std::vector<Ring>& rings) {
  LoopList loops;
  for (const Ring& ring : rings) loops.push_back(MakeLoop(ring));
  return loops;
}

LoopList ParseLoops(const std::string& text) {
  LoopList loops;
  std::istringstream in(text);
  for (std::string ringText; std::getline(in, ringText, ';');) {
    Ring ring = ParseRing(ringText);
    if (!ring.empty()) loops.push_back(MakeLoop(std::move(ring)));
  }
  return loops;
}

std::shared_ptr<ZBR_LOOP> ParseLoop(const std::string& text) {
  return ParseLoops(text).at(0);
}

LoopList Nest(const std::vector<Ring>& rings) {
  const ZBR_TmpEps tolerance(kBooleanEps);
  LoopList loops = MakeLoops(rings);
  zbrMakeLoopTree(loops);
  return loops;
}

LoopList ParseRegion(const std::string& text) {
  return Nest(RingsOf(ParseLoops(text)));
}

std::vector<Ring> RingsOf(const LoopList& loops) {
  std::vector<Ring> rings;
  for (const auto& loop : loops) {
    rings.push_back(loop->pt());
    for (Ring& ring : RingsOf(loop->children())) rings.push_back(std::move(ring));
  }
  return rings;
}

std::vector<Ring> RingsOf(const ZBR_REGION& region) {
  const std::vector<std::int32_t>& ends = region.ring_offsets();
  std::vector<Ring> rings;
  for (std::size_t r = 0; r < region.ring_count(); ++r) {
    rings.emplace_back(region.points().begin() + ends[r], region.points().begin() + ends[r + 1]);
  }
  return rings;
}

ZBR_REGION RegionOf(const std::vector<Ring>& rings) {
  ZBR_REGION region;
  for (const Ring& ring : rings) region.AddRing(ring);
  return region;
}

std::string ToText(const LoopList& loops) {
  std::string out;
  for (const Ring& ring : RingsOf(loops)) {
    if (!out.empty()) out += "; ";
    for (std::size_t i = 0; i < ring.size(); ++i) {
      if (i > 0) out += ", ";
      AppendNumber(out, ring[i].x());
      out += ' ';
      AppendNumber(out, ring[i].y());
    }
  }
  return out;
}

double NetArea(const LoopList& loops) {
  double area = 0.0;
  for (const auto& loop : loops) {
    loop->Setup();
    const Ring& ring = loop->pt();
    double twice = 0.0;
    for (std::size_t i = 2; i < ring.size(); ++i) twice += (ring[i - 1] - ring[0]).OuterProduct(ring[i] - ring[0]);
    area += twice / 2.0 + NetArea(loop->children());
  }
  return area;
}

double DistanceFromSource(const std::vector<Ring>& rings, const ZBR_EDGE_SOURCE& source, const ZBR_PT& p, const ZBR_PT& q) {
  const Ring& ring = rings.at(static_cast<std::size_t>(source.ring));
  const auto edge = static_cast<std::size_t>(source.edge);
  const ZBR_PT from = ring.at(edge), along = ring[(edge + 1) % ring.size()] - from;
  return (from + along * source.t0).Distance(p) + (from + along * source.t1).Distance(q);
}

Ring Square(double x, double y, double side) {
  return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}};
}

std::vector<Ring> Disguise(std::vector<Ring> rings, std::mt19937_64& random) {
  for (Ring& ring : rings) {
    if (ring.empty()) continue;
    std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(random() % ring.size()), ring.end());
    if (random() % 2 == 0) std::reverse(ring.begin(), ring.end());
  }
  for (std::size_t i = rings.size(); i > 1; --i) std::swap(rings[i - 1], rings[random() % i]);
  return rings;
}

std::vector<Ring> Moved(std::vector<Ring> rings, double scale, const ZBR_PT& shift) {
  for (Ring& ring : rings) {
    for (ZBR_PT& p : ring) p = p * scale + shift;
  }
  return rings;
}
