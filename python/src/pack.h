// Records as bytes and back: one description of a record serves both ways.
//
//   template <class Archive> void Describe(Archive& a, Extent& e) { All(a, e.xmin, e.xmax, e.ymin, e.ymax); }
//   Packer packer;
//   Describe(packer, extent);  // packer.bytes
//
// For pickles, which the same version reads: numbers are as the machine has them.
#pragma once

#include "python/src/refs.h"

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace zbr::python {

// Changes nothing of what it packs, which other threads may be reading.
struct Packer {
  static constexpr bool kReads = false;
  std::string bytes;

  void Raw(const void* data, std::size_t size) { bytes.append(static_cast<const char*>(data), size); }
};

struct Unpacker {
  static constexpr bool kReads = true;
  std::string_view rest;

  void Raw(void* data, std::size_t size) {
    if (size > rest.size()) throw BadArgument("pickle", "it is cut off");
    if (size > 0) std::memcpy(data, rest.data(), size);
    rest.remove_prefix(size);
  }
};

// What is its bytes, without gaps that hold none.
template <class T>
inline constexpr bool kIsRaw = std::is_same_v<T, ZBR_PT> || std::is_same_v<T, ZBR_PT3> ||
                               (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);

template <class Archive, class T>
requires kIsRaw<T>
void Describe(Archive& a, T& item) {
  static_assert(std::is_trivially_copyable_v<T>);
  a.Raw(&item, sizeof item);
}

template <class Archive>
void Describe(Archive& a, bool& item) {
  std::uint8_t byte = item ? 1 : 0;
  Describe(a, byte);
  if constexpr (Archive::kReads) item = byte != 0;
}

// Numbers of other types, as large as they come.
template <class Archive, class T>
void DescribeAsNumber(Archive& a, T& item) {
  auto number = static_cast<std::uint64_t>(item);
  Describe(a, number);
  if constexpr (Archive::kReads) {
    item = static_cast<T>(number);
    if (static_cast<std::uint64_t>(item) != number) throw BadArgument("pickle", "a number is out of range");
  }
}

// Texts and lists of numbers, in one piece.
template <class Archive, class List>
void DescribeRaw(Archive& a, List& list) {
  using Item = typename List::value_type;
  std::uint64_t size = list.size();
  Describe(a, size);
  if constexpr (Archive::kReads) {
    if (size > a.rest.size() / sizeof(Item)) throw BadArgument("pickle", "it is cut off");
    list.resize(static_cast<std::size_t>(size));
  }
  a.Raw(list.data(), list.size() * sizeof(Item));
}

template <class Archive>
void Describe(Archive& a, std::string& text) {
  DescribeRaw(a, text);
}

// Lists grow item by item: they end where the bytes do, whatever length is claimed.
template <class Archive, class T>
void Describe(Archive& a, std::vector<T>& items) {
  if constexpr (kIsRaw<T>) {
    DescribeRaw(a, items);
  } else {
    std::uint64_t size = items.size();
    Describe(a, size);
    for (std::uint64_t i = 0; i < size; ++i) {
      if constexpr (Archive::kReads) items.emplace_back();
      Describe(a, items[static_cast<std::size_t>(i)]);
    }
  }
}

template <class Archive, class T>
void Describe(Archive& a, std::optional<T>& item) {
  bool isThere = item.has_value();
  Describe(a, isThere);
  if (isThere && !item) item.emplace();
  if (isThere) Describe(a, *item);
}

template <class Archive, class... Items>
void All(Archive& a, Items&... items) {
  (Describe(a, items), ...);
}

}  // namespace zbr::python
