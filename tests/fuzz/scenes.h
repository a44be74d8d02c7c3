// Small scenes of triangles out of a fuzzer's bytes.
#pragma once

#include "fuzz/bytes.h"
#include "hiddenline/scenes.h"

enum class Points { kLattice, kPlain, kWild };

// Up to three bodies of up to eight triangles between a few points; edges that two triangles share make them neighbours, or not.
// The same bytes give the same scene.
Drawing DecodeScene(Bytes& bytes, Points points);

template <class Visit>
void ForEachTriangle(const std::vector<ZBR_HL_SHELL>& shells, Visit visit) {
  for (const ZBR_HL_SHELL& shell : shells) {
    for (unsigned k = 0; k < shell.count; ++k) visit(shell.tris[k]);
  }
}
