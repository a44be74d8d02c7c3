#include "support/shapes.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace {

bool EndsRing(char c) {
  return c == ';' || c == '\n';
}

// Splits the text at ';' and at empty lines. A comment is dropped up to its line end, which then does not count as an empty line.
std::vector<std::string> RingTexts(std::string_view text) {
  std::vector<std::string> rings(1);
  bool lineIsEmpty = false;
  bool inComment = false;
  for (const char c : text) {
    if (c == '#') inComment = true;
    if (c == '\n') {
      if (lineIsEmpty && !inComment) rings.emplace_back();
      lineIsEmpty = !inComment;
      inComment = false;
    } else if (c != ' ' && !inComment) {
      lineIsEmpty = false;
    }
    if (inComment) continue;
    if (c == ';') rings.emplace_back();
    rings.back() += EndsRing(c) || c == ',' ? ' ' : c;
  }
  return rings;
}

Ring ParseRing(const std::string& text) {
  std::vector<double> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (;;) {
    while (at != end && *at == ' ') ++at;
    if (at == end) break;
    double value = 0.0;
    const auto [next, error] = std::from_chars(at, end, value);
    if (error != std::errc()) throw std::invalid_argument("not a ring: " + text);
    numbers.push_back(value);
    at = next;
  }
  if (numbers.size() % 2 != 0) throw std::invalid_argument("odd count of numbers: " + text);
  Ring ring;
  for (std::size_t i = 0; i < numbers.size(); i += 2) ring.emplace_back(numbers[i], numbers[i + 1]);
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

LoopList ParseLoops(std::string_view text) {
  LoopList loops;
  for (const std::string& ringText : RingTexts(text)) {
    Ring ring = ParseRing(ringText);
    if (!ring.empty()) loops.push_back(MakeLoop(std::move(ring)));
  }
  return loops;
}

std::shared_ptr<ZBR_LOOP> ParseLoop(std::string_view text) {
  return ParseLoops(text).at(0);
}

LoopList Nest(const std::vector<Ring>& rings) {
  const ZBR_TmpEps tolerance(kBooleanEps);
  LoopList loops = MakeLoops(rings);
  zbrMakeLoopTree(loops);
  return loops;
}

LoopList ParseRegion(std::string_view text) {
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
  for (const auto& loop : loops) {
    loop->Setup();
    for (const auto& child : loop->children()) child->Setup();
  }
  return ZBR_LOOP::get_area(loops);
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
