// Names that many objects share, each kept once.
#pragma once

#include <zbr/allocator.h>

#include <string_view>
#include <unordered_set>

namespace zbr::drawing {

// A drawing of a million contours names a handful of layers. Their texts lie one behind the other in blocks that are released with
// this object; what it hands out is valid until then.
class Names {
 public:
  Names() = default;
  Names(const Names&) = delete;
  Names& operator=(const Names&) = delete;

  // The kept copy of a name.
  std::string_view Keep(std::string_view name);

 private:
  static constexpr unsigned kBlockSize = 4096;

  ZBR_CSimpleAlloc texts_{kBlockSize};
  std::unordered_set<std::string_view> known_;  // views of texts_
};

}  // namespace zbr::drawing
