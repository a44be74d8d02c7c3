// Removing the hidden lines of a scene with several threads.
#pragma once

#include <zbr-drawing/scene.h>

#include <functional>

namespace zbr::drawing {

// The same to the bit whatever the number of threads; at least one is taken.
void RemoveHidden(Scene& scene, unsigned threads);

// Runs work(0) to work(count - 1), each once, on up to `threads` threads, this one included. Each has the tolerance of scenes. What
// a piece of work throws is thrown here after the others are done; pieces not yet begun are left out then.
void RunParallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work);

}  // namespace zbr::drawing
