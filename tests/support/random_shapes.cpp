#include "support/random_shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr double kPi = 3.14159265358979323846;

// A rectangle of cells, filled or not; everything around it is empty.
class Cells {
 public:
  Cells(int width, int height, double fill, Random& random)
      : width_(width), height_(height), filled_(static_cast<std::size_t>(width * height)) {
    for (std::size_t i = 0; i < filled_.size(); ++i) filled_[i] = Unit(random) < fill;
  }

  bool At(int x, int y) const { return x >= 0 && y >= 0 && x < width_ && y < height_ && filled_[Index(x, y)]; }

  // Fills cells until no two filled ones meet in a corner alone.
  void FillSaddles() {
    for (bool again = true; again;) {
      again = false;
      for (int y = 0; y + 1 < height_; ++y) {
        for (int x = 0; x + 1 < width_; ++x) {
          const bool rising = At(x, y) && At(x + 1, y + 1) && !At(x + 1, y) && !At(x, y + 1);
          const bool falling = At(x + 1, y) && At(x, y + 1) && !At(x, y) && !At(x + 1, y + 1);
          if (!rising && !falling) continue;
          filled_[Index(rising ? x + 1 : x, y)] = again = true;
        }
      }
    }
  }

  // Boundary rings of unit steps, material on the left, each ring passing a point once.
  std::vector<Ring> Boundary() const;

 private:
  std::size_t Index(int x, int y) const { return static_cast<std::size_t>(y * width_ + x); }

  int width_;
  int height_;
  std::vector<bool> filled_;
};

// Cuts a closed walk into rings that pass each point once, by closing a ring whenever the walk returns to a point.
void AppendSimpleRings(const std::vector<std::pair<int, int>>& walk, std::vector<Ring>& rings) {
  std::vector<std::pair<int, int>> open;
  for (const auto& p : walk) {
    const auto seen = std::find(open.begin(), open.end(), p);
    if (seen != open.end()) {
      Ring ring;
      for (auto it = seen; it != open.end(); ++it) ring.emplace_back(it->first, it->second);
      rings.push_back(std::move(ring));
      open.erase(seen, open.end());
    }
    open.push_back(p);
  }
}

std::vector<Ring> Cells::Boundary() const {
  constexpr int kDx[] = {1, 0, -1, 0};
  constexpr int kDy[] = {0, 1, 0, -1};
  // The step in direction d from corner (x, y) is on the boundary when the cell on its left is filled and that on its right is not.
  const auto onBoundary = [&](int x, int y, int d) {
    constexpr int kLeftX[] = {0, -1, -1, 0};
    constexpr int kLeftY[] = {0, 0, -1, -1};
    const int r = (d + 3) % 4;
    return At(x + kLeftX[d], y + kLeftY[d]) && !At(x + kLeftX[r], y + kLeftY[r]);
  };
  std::vector<bool> used(static_cast<std::size_t>((width_ + 1) * (height_ + 1) * 4));
  const auto mark = [&](int x, int y, int d) { return used[static_cast<std::size_t>((y * (width_ + 1) + x) * 4 + d)]; };
  std::vector<Ring> rings;
  for (int y0 = 0; y0 <= height_; ++y0) {
    for (int x0 = 0; x0 <= width_; ++x0) {
      for (int d0 = 0; d0 < 4; ++d0) {
        if (!onBoundary(x0, y0, d0) || mark(x0, y0, d0)) continue;
        std::vector<std::pair<int, int>> walk = {{x0, y0}};
        for (int x = x0, y = y0, d = d0; !mark(x, y, d);) {
          mark(x, y, d) = true;
          x += kDx[d];
          y += kDy[d];
          walk.emplace_back(x, y);
          const int turns[] = {(d + 1) % 4, d, (d + 3) % 4};  // left first: keep to the same cell at a saddle
          d = *std::find_if(std::begin(turns), std::end(turns), [&](int t) { return onBoundary(x, y, t); });
        }
        AppendSimpleRings(walk, rings);
      }
    }
  }
  return rings;
}

void DropStraightPoints(Ring& ring) {
  Ring kept;
  for (std::size_t i = 0, n = ring.size(); i < n; ++i) {
    const ZBR_PT in = ring[i] - ring[(i + n - 1) % n];
    if (in.OuterProduct(ring[(i + 1) % n] - ring[i]) != 0.0) kept.push_back(ring[i]);
  }
  ring = std::move(kept);
}

template <bool fillSaddles>
OperandPair DrawCells(Random& random) {
  const int limit = Below(random, 50) == 0 ? 40 : 7;
  const int width = 2 + Below(random, limit);
  const int height = 2 + Below(random, limit);
  Cells a(width, height, 0.25 + 0.5 * Unit(random), random);
  Cells b(width, height, 0.25 + 0.5 * Unit(random), random);
  if (fillSaddles) {
    a.FillSaddles();
    b.FillSaddles();
  }
  OperandPair pair = {a.Boundary(), b.Boundary(), std::array<double, 5>{}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool inA = a.At(x, y);
      const bool inB = b.At(x, y);
      const bool in[5] = {inA && !inB, inB && !inA, inA || inB, inA && inB, inA != inB};
      for (std::size_t k = 0; k < 5; ++k) (*pair.areas)[k] += in[k] ? 1.0 : 0.0;
    }
  }
  for (std::vector<Ring>* rings : {&pair.a, &pair.b}) {
    if (Below(random, 3) == 0) continue;
    for (Ring& ring : *rings) DropStraightPoints(ring);
  }
  return pair;
}

Ring Star(const ZBR_PT& centre, double radius, int n, Random& random) {
  Ring ring;
  for (int i = 0; i < n; ++i) {
    const double angle = 2.0 * kPi * (i + 0.8 * Unit(random)) / n;
    const double r = radius * (0.6 + 0.4 * Unit(random));
    ring.push_back(centre + ZBR_PT(r * std::cos(angle), r * std::sin(angle)));
  }
  return ring;
}

std::vector<Ring> DrawStarFamily(Random& random) {
  const ZBR_PT centre(Unit(random), Unit(random));
  std::vector<Ring> rings = {Star(centre, 2.0, 5 + Below(random, Below(random, 20) == 0 ? 500 : 40), random)};
  for (int depth = Below(random, 4); depth > 0; --depth) {
    Ring inner;
    const double factor = 0.55 + 0.4 * Unit(random);
    for (const ZBR_PT& p : rings.back()) inner.push_back(centre + (p - centre) * factor);
    rings.push_back(std::move(inner));
  }
  return rings;
}

std::vector<Ring> DrawNestFamily(Random& random) {
  std::vector<Ring> rings;
  for (int x = 0; x < 28; x += 14) {
    const double shift = Below(random, 4) == 0 ? 0.5 * Below(random, 5) : 0.0;
    for (int half = 1; half <= 5; ++half) {
      if (Below(random, 2) == 0) rings.push_back(Square(x - half + shift, shift - half, 2.0 * half));
    }
  }
  return rings;
}

std::vector<Ring> DrawTileFamily(Random& random, double step, const ZBR_PT& shift) {
  std::vector<Ring> rings;
  const int side = Below(random, 50) == 0 ? 12 : 4;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      if (Below(random, 4) == 0) continue;
      const ZBR_PT at = ZBR_PT(x * step, y * step) + shift;
      rings.push_back(Square(at.x(), at.y(), 2.0));
      if (Below(random, 2) == 0) rings.push_back(Square(at.x() + 0.5, at.y() + 0.5, 1.0));
    }
  }
  return rings;
}

OperandPair DrawTiles(Random& random) {
  const double exact[] = {0.0, 0.5, 1.0, 1.5, 2.0, Unit(random)};
  const ZBR_PT shift{exact[Below(random, 6)], exact[Below(random, 6)]};
  const double step = Below(random, 2) == 0 ? 2.5 : 3.0;
  return {DrawTileFamily(random, step, {0.0, 0.0}), DrawTileFamily(random, step, shift), {}};
}

// Triangles around one apex, and in them rings that share it: every ring of the family passes the apex.
std::vector<Ring> DrawFanFamily(Random& random) {
  const ZBR_PT apex = Below(random, 3) == 0 ? ZBR_PT{1.0 * Below(random, 3), 1.0 * Below(random, 3)} : ZBR_PT(0, 0);
  std::vector<ZBR_PT> arms;
  for (int tries = 4 + Below(random, 8); tries > 0; --tries) arms.push_back({Below(random, 9) - 4.0, Below(random, 9) - 4.0});
  const auto angle = [](const ZBR_PT& arm) { return std::atan2(arm.y(), arm.x()); };
  std::sort(arms.begin(), arms.end(), [&](const ZBR_PT& a, const ZBR_PT& b) { return angle(a) < angle(b); });
  std::vector<Ring> rings;
  for (std::size_t i = 1; i < arms.size(); ++i) {
    ZBR_PT u = arms[i - 1];
    ZBR_PT v = arms[i];
    if (!(u.OuterProduct(v) > 0.0)) continue;
    for (int depth = Below(random, 4); depth >= 0; --depth) {
      rings.push_back({apex, apex + u, apex + v});
      const ZBR_PT inner = (u * 2.0 + v) * 0.25;
      v = (u + v * 2.0) * 0.25;
      u = inner;
    }
    // The next triangle must not share this arm, nor any other of its direction.
    const ZBR_PT last = arms[i];
    while (i < arms.size() && last.OuterProduct(arms[i]) <= 0.0) ++i;
  }
  return rings;
}

std::vector<Ring> DrawScribbleFamily(Random& random) {
  std::vector<Ring> rings(static_cast<std::size_t>(1 + Below(random, 3)));
  for (Ring& ring : rings) {
    for (int n = 3 + Below(random, 6); n > 0; --n) {
      if (!ring.empty() && Below(random, 6) == 0) ring.push_back(ring.back());
      ring.push_back({1.0 * Below(random, 6), 1.0 * Below(random, 6)});
    }
  }
  return rings;
}

template <std::vector<Ring> (*draw)(Random&)>
OperandPair DrawTwice(Random& random) {
  std::vector<Ring> a = draw(random);
  return {std::move(a), draw(random), {}};
}

}  // namespace

const std::vector<Family>& Families() {
  static const std::vector<Family> families = {
      {"cells", DrawCells<false>, true},
      {"blocks", DrawCells<true>, true},
      {"stars", DrawTwice<DrawStarFamily>, true},
      {"nests", DrawTwice<DrawNestFamily>, true},
      {"tiles", DrawTiles, true},
      {"fans", DrawTwice<DrawFanFamily>, true},
      {"scribbles", DrawTwice<DrawScribbleFamily>, false},
  };
  return families;
}

std::vector<Family> RegionFamilies() {
  std::vector<Family> regions = Families();
  std::erase_if(regions, [](const Family& family) { return !family.regions; });
  return regions;
}

const Family& FamilyNamed(const std::string& name) {
  for (const Family& family : Families()) {
    if (family.name == name) return family;
  }
  throw std::invalid_argument("no family " + name);
}

void Roughen(std::vector<Ring>& rings, Random& random) {
  for (Ring& ring : rings) {
    Ring rough;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT& p = ring[i];
      for (int copies = Below(random, 8) == 0 ? 3 : 1; copies > 0; --copies) rough.push_back(p);
      if (Below(random, 4) == 0) rough.push_back((p + ring[(i + 1) % ring.size()]) / 2.0);
    }
    ring = std::move(rough);
  }
  rings = Disguise(std::move(rings), random);
}

OperandPair DrawHard(const Family& family, std::uint64_t seed) {
  Random random(seed);
  OperandPair pair = family.draw(random);
  const bool rough = Below(random, 2) == 0;
  for (std::vector<Ring>* rings : {&pair.a, &pair.b}) {
    if (rough) Roughen(*rings, random);
    if (!rough) *rings = Disguise(std::move(*rings), random);
  }
  const double scale = std::ldexp(1.0, Below(random, 9) - 4);
  const ZBR_PT shift = Below(random, 3) == 0 ? ZBR_PT(0x1p20, -0x1p19) : ZBR_PT(0.0, 0.0);
  pair.a = Moved(std::move(pair.a), scale, shift);
  pair.b = Moved(std::move(pair.b), scale, shift);
  if (pair.areas) {
    for (double& area : *pair.areas) area *= scale * scale;
  }
  return pair;
}

int Scaled(int count) {
  const char* text = std::getenv("ZBR_TEST_SCALE");
  const double scale = text == nullptr ? 1.0 : std::strtod(text, nullptr);
  return std::max(1, static_cast<int>(std::lround(count * (scale > 0.0 ? scale : 1.0))));
}
