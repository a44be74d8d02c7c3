// Triangles are gone through in ranges. What ends is the memory of their lists: beyond that they have nothing to give back.
#include <zbr-drawing/scene_triangles.h>

#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

#include "drawing/parallel.h"
#include "drawing/touched.h"

namespace zbr::drawing {

static_assert(alignof(ZBR_HL_TRI) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

SceneTriangles::~SceneTriangles() {
  EndFrom(0);
  GiveBackPages(first_, capacity_ * sizeof(ZBR_HL_TRI), threads_);
  ::operator delete(first_);
}

void SceneTriangles::reserve(std::size_t count) {
  if (count <= capacity_) return;
  if (count > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(ZBR_HL_TRI)) throw std::length_error("SceneTriangles");
  auto* const moved = static_cast<ZBR_HL_TRI*>(::operator new(count * sizeof(ZBR_HL_TRI)));
  std::uninitialized_move_n(first_, size_, moved);
  std::destroy_n(first_, size_);
  ::operator delete(std::exchange(first_, moved));
  capacity_ = count;
}

void SceneTriangles::resize(std::size_t count, unsigned threads) {
  threads_ = threads;
  EndFrom(count);
  if (count <= size_) return;
  reserve(count);
  RunInRanges(count - size_, threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    ZBR_HL_TRI* const first = first_ + size_ + begin;
    TouchPages(first, (end - begin) * sizeof(ZBR_HL_TRI), 1);
    std::uninitialized_default_construct_n(first, end - begin);
  });
  size_ = count;
}

// May be begun again where threads cannot be had for lack of memory.
void SceneTriangles::EndFrom(std::size_t count) noexcept {
  if (count >= size_) return;
  const auto giveBack = [&](std::size_t begin, std::size_t end) {
    for (ZBR_HL_TRI* t = first_ + count + begin; t != first_ + count + end; ++t) {
      for (std::vector<ZBR_HL_INTERVAL>& list : t->intvl_v) std::vector<ZBR_HL_INTERVAL>().swap(list);
    }
  };
  try {
    RunInRanges(size_ - count, threads_, [&](std::size_t, std::size_t begin, std::size_t end) { giveBack(begin, end); });
  } catch (...) {
    giveBack(0, size_ - count);
  }
  size_ = count;
}

}  // namespace zbr::drawing
