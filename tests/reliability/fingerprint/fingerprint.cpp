// Digests the bits of results on a fixed set of inputs.
// usage: zbr-fingerprint [EXPECTED]   prints a line per part; with a file of such lines, names those that differ and fails
//
// The inputs come from additions, multiplications and divisions of seeded integers, so that a difference between two machines is
// one in the library.
#include <zbr-drawing/scene.h>
#include <zbr/zbr.h>

#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "models/models.h"
#include "reliability/digest.h"
#include "support/random_shapes.h"

namespace {

// Draws a pair of a family of shapes on integers. Of four pairs, one stays, one has its second operand slanted, which brings
// crossings in general position, one both, and one mixes the rings of both operands, so that neither is a region.
OperandPair Draw(const char* family, Random& random) {
  OperandPair pair = FamilyNamed(family).draw(random);
  const int kind = Below(random, 4);
  // No sum beside a difference of products: of these g++ 12 makes fused operations even when told not to.
  const auto slant = [](std::vector<Ring>& rings) {
    for (Ring& ring : rings) {
      for (ZBR_PT& p : ring) p.Set(1.1 * p.x() + 0.3 * p.y() + 0.7, 0.6 * p.x() + 1.2 * p.y() + 0.1);
    }
  };
  if (kind >= 1) slant(pair.b);
  if (kind == 2) slant(pair.a);
  if (kind == 3) pair.a.insert(pair.a.end(), pair.b.begin(), pair.b.end());
  return pair;
}

void Booleans(Digest& digest, const char* family) {
  Random random(1);
  for (int k = 0; k < 40; ++k) {
    const OperandPair pair = Draw(family, random);
    std::array<ZBR_BOOLEAN_OPE, 5> ops = kOps;
    LoopList r[5];
    std::vector<ZBR_CROSS> crosses;
    zbrBooleanLoops(Nest(pair.a), Nest(pair.b), ops.data(), r, 5, crosses);
    digest.Add(crosses, r[0], r[1], r[2], r[3], r[4]);
  }
}

void Places(Digest& digest) {
  Random random(2);
  for (int k = 0; k < 20; ++k) {
    const LoopList region = Nest(Draw("cells", random).a);
    const ZBR_LOOP_LOCATOR locator(region);
    std::vector<ZBR_POS_PT_PT> scratch;
    for (int i = 0; i < 400; ++i) {
      const ZBR_PT p(0.25 * (i % 20), 0.375 * (i / 20));
      digest.Add(static_cast<int>(locator.IsInside(p)));
      for (const auto& loop : region) digest.Add(static_cast<int>(zbrIsInside(p, *loop, scratch)));
    }
  }
}

// The boundary of B, clipped by A, chained and closed again.
void Segments(Digest& digest) {
  Random random(3);
  for (int k = 0; k < 40; ++k) {
    const OperandPair pair = Draw(k % 2 == 0 ? "cells" : "nests", random);
    AddSegmentWork(digest, Nest(pair.a), pair.b, 0.1 * k, 0.3);
  }
}

// Two views of a model, each as one object; then the two hide each other.
void Drawing(Digest& digest, const zbr::drawing::Mesh& mesh) {
  const zbr::drawing::Model model = zbr::drawing::MakeModel(mesh, 30.0);
  for (const char* name : {"top", "front", "iso", "dimetric"}) {
    const ZBR_TmpEps tolerance(zbr::drawing::kSceneTolerance);
    zbr::drawing::Scene first = zbr::drawing::MakeScene(model, *zbr::drawing::NamedView(name));
    zbr::drawing::Scene second = zbr::drawing::MakeScene(model, *zbr::drawing::NamedView("iso"));
    ZBR_HL_SHELL* const a = first.shells.data();
    ZBR_HL_SHELL* const b = second.shells.data();
    const unsigned count = first.ShellCount();
    std::vector<std::vector<ZBR_PT>> lines;
    std::vector<ZBR_SEG> hidden;
    ZBR_HiddenLine::HiddenLineObj(a, &lines, count);
    ZBR_HiddenLine::HiddenLineObj(b, nullptr, count);
    ZBR_HiddenLine::GetHiddenLineObj(a, hidden, 3, count);
    digest.Add(model.body.GetHint(), first.shells, lines, hidden, a->outline_all);
    for (int k = 0; k < 100; ++k) {
      double z = -1e300;
      ZBR_HiddenLine::PickShells(k - 50, k * 0.7 - 35, a, count, z);
      digest.Add(z);
    }
    ZBR_HiddenLine::HiddenLineObjByObj(a, b, count, count, true);
    digest.Add(first.shells, second.shells, a->outline, b->outline);
  }
}

struct Part {
  const char* name;
  void (*run)(Digest&);
};

const Part kParts[] = {
    {"booleans-cells", [](Digest& d) { Booleans(d, "cells"); }},
    {"booleans-blocks", [](Digest& d) { Booleans(d, "blocks"); }},
    {"booleans-nests", [](Digest& d) { Booleans(d, "nests"); }},
    {"places", Places},
    {"segments", Segments},
    {"drawing-housing", [](Digest& d) { Drawing(d, example::Housing()); }},
    {"drawing-house", [](Digest& d) { Drawing(d, example::House()); }},
    {"drawing-boxes", [](Digest& d) { Drawing(d, example::BoxesOnPlate(6, true)); }},
    {"drawing-torus", [](Digest& d) { Drawing(d, example::Torus(2000)); }},
    {"drawing-gears", [](Digest& d) { Drawing(d, example::Gears(2, 600)); }},
};

// Whether the file holds the line; unreadable files hold none.
bool Holds(const char* file, const std::string& wanted) {
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (line == wanted) return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  int wrong = 0;
  for (const Part& part : kParts) {
    Digest digest;
    part.run(digest);
    char line[80];
    std::snprintf(line, sizeof line, "%s %016" PRIx64, part.name, digest.value());
    const bool same = argc < 2 || Holds(argv[1], line);
    std::printf("%s%s\n", line, same ? "" : " differs");
    wrong += same ? 0 : 1;
  }
  return wrong == 0 ? 0 : 1;
}
