// What a mesh holds and what keeps it from bounding bodies.
//
//   const Survey survey = MakeSurvey(MakeModel(mesh, 180.0));
//   if (!survey.IsClean()) Warn(survey.borders, survey.junctions, survey.turned);
//
// Counts only; nothing is repaired. Linear.
#pragma once

#include <zbr-drawing/model.h>

#include <cstddef>
#include <vector>

namespace zbr::drawing {

struct ShellSurvey {
  std::size_t triangles = 0;
  std::size_t borders = 0;  // edges of one triangle
  std::size_t turned = 0;   // edges along which both triangles run the same way
  std::size_t pinches = 0;  // points at which the surface touches itself, counted once for each further touch
  bool isClosed = false;    // neither borders nor junctions
  bool isInward = false;    // closed, oriented alike, and seen from inside
  long euler = 0;           // points - edges + triangles
  long genus = -1;          // number of handles; -1: not closed or not oriented alike
};

struct Survey {
  std::vector<ShellSurvey> shells;
  std::size_t borders = 0;
  std::size_t turned = 0;
  std::size_t pinches = 0;
  std::size_t junctions = 0;  // edges of three and more triangles
  std::size_t inward = 0;     // shells
  std::size_t flat = 0;       // triangles without area
  std::size_t repeated = 0;

  bool IsClean() const { return borders + turned + pinches + junctions + inward + flat + repeated == 0; }
};

Survey MakeSurvey(const Model& model);

// Whether many edges that bend by 30 degrees, or by the angle of creases if that is less, end where no other line goes on, as on
// scanned surfaces, which are rough: a larger angle suits such a model. The same as Model::isRough.
bool HasRoughCreases(const Model& model);

}  // namespace zbr::drawing
