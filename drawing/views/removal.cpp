// Hidden-line removal of a whole scene, shared out among threads.
#include <zbr-drawing/removal.h>

#include <zbr/tolerance.h>

#include "drawing/parallel.h"

namespace zbr::drawing {

bool RemoveHidden(Scene& scene, unsigned threads, const std::function<bool(double share)>& progress) {
  ZBR_HL_REMOVAL options;
  options.contact_tolerance = scene.contact;
  options.executor = ExecutorOf(threads);
  options.progress = progress;
  const ZBR_TmpEps hold(kSceneTolerance);
  return ZBR_HiddenLine::RemoveAll(scene.shells.data(), scene.ShellCount(), options);
}

}  // namespace zbr::drawing
