// The pieces that a sweep line meets, from the lowest to the highest; edges, or what edges were cut into.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr {

// An ordered list in chunks: a look-up halves the list of chunks and then one chunk; to insert or remove a piece beside one that is
// known moves some of one chunk, and now and then a place in the list of chunks, which is thirty times shorter than the status.
// Pieces know their chunk, so that what begins where others end takes their places without any search.
class SweepStatus {
 public:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  explicit SweepStatus(std::size_t pieces) : chunkOf_(pieces) {}

  // The highest piece for which isBelow(piece) holds, or kNone. It holds for none above one for which it does not.
  template <class IsBelow>
  std::uint32_t HighestBelow(IsBelow isBelow) const;
  // The neighbours of a piece, or kNone.
  std::uint32_t Below(std::uint32_t piece) const;
  std::uint32_t Above(std::uint32_t piece) const;              // kNone: the lowest of all
  void InsertAbove(std::uint32_t lower, std::uint32_t piece);  // kNone: lowest of all
  void Replace(std::uint32_t old, std::uint32_t piece);
  void Erase(std::uint32_t piece);

 private:
  static constexpr std::uint32_t kCapacity = 29;

  struct Chunk {
    std::uint32_t count = 0;
    std::uint32_t below = kNone;  // the chunks next to it
    std::uint32_t above = kNone;
    std::uint32_t items[kCapacity];
  };

  std::uint32_t* Find(std::uint32_t piece);
  const std::uint32_t* Find(std::uint32_t piece) const;
  std::uint32_t NewChunk(std::size_t place);
  void Join(std::uint32_t lower, std::uint32_t upper);
  void Split(std::uint32_t chunk);
  std::size_t PlaceOf(std::uint32_t chunk) const;

  std::vector<std::uint32_t> chunkOf_;  // by piece
  std::vector<Chunk> chunks_;
  std::vector<std::uint32_t> order_;  // chunks from the lowest to the highest
  std::vector<std::uint32_t> free_;
  std::uint32_t lowest_ = kNone;  // chunk
};

template <class IsBelow>
std::uint32_t SweepStatus::HighestBelow(IsBelow isBelow) const {
  const auto above =
      std::partition_point(order_.begin(), order_.end(), [&](std::uint32_t chunk) { return isBelow(chunks_[chunk].items[0]); });
  if (above == order_.begin()) return kNone;
  const Chunk& chunk = chunks_[*(above - 1)];
  return std::partition_point(chunk.items, chunk.items + chunk.count, isBelow)[-1];
}

}  // namespace zbr
