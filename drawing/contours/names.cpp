#include <zbr-drawing/names.h>

#include <cstring>
#include <limits>
#include <new>

namespace zbr::drawing {

std::string_view Names::Keep(std::string_view name) {
  if (name.empty()) return {};
  if (const auto found = known_.find(name); found != known_.end()) return *found;
  if (name.size() > std::numeric_limits<unsigned>::max()) throw std::bad_alloc();
  void* const copy = texts_.GetBuffer(static_cast<unsigned>(name.size()));
  std::memcpy(copy, name.data(), name.size());
  return *known_.emplace(static_cast<const char*>(copy), name.size()).first;
}

}  // namespace zbr::drawing
