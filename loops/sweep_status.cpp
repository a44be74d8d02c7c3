#include "loops/sweep_status.h"

#include <algorithm>

namespace zbr {

std::uint32_t* SweepStatus::Find(std::uint32_t piece) {
  Chunk& chunk = chunks_[chunkOf_[piece]];
  return std::find(chunk.items, chunk.items + chunk.count, piece);
}

const std::uint32_t* SweepStatus::Find(std::uint32_t piece) const {
  const Chunk& chunk = chunks_[chunkOf_[piece]];
  return std::find(chunk.items, chunk.items + chunk.count, piece);
}

std::uint32_t SweepStatus::Below(std::uint32_t piece) const {
  const Chunk& chunk = chunks_[chunkOf_[piece]];
  const std::uint32_t* const place = Find(piece);
  if (place != chunk.items) return place[-1];
  return chunk.below == kNone ? kNone : chunks_[chunk.below].items[chunks_[chunk.below].count - 1];
}

std::uint32_t SweepStatus::Above(std::uint32_t piece) const {
  if (piece == kNone) return lowest_ == kNone ? kNone : chunks_[lowest_].items[0];
  const Chunk& chunk = chunks_[chunkOf_[piece]];
  const std::uint32_t* const next = Find(piece) + 1;
  if (next != chunk.items + chunk.count) return *next;
  return chunk.above == kNone ? kNone : chunks_[chunk.above].items[0];
}

// Makes two chunks neighbours; kNone stands for the end of the list.
void SweepStatus::Join(std::uint32_t lower, std::uint32_t upper) {
  if (lower != kNone) chunks_[lower].above = upper;
  if (upper != kNone) chunks_[upper].below = lower;
  if (lower == kNone) lowest_ = upper;
}

std::size_t SweepStatus::PlaceOf(std::uint32_t chunk) const {
  return static_cast<std::size_t>(std::find(order_.begin(), order_.end(), chunk) - order_.begin());
}

std::uint32_t SweepStatus::NewChunk(std::size_t place) {
  auto chunk = static_cast<std::uint32_t>(chunks_.size());
  if (free_.empty()) {
    chunks_.emplace_back();
  } else {
    chunk = free_.back();
    free_.pop_back();
    chunks_[chunk].count = 0;
  }
  const std::uint32_t lower = place > 0 ? order_[place - 1] : kNone;
  const std::uint32_t upper = place < order_.size() ? order_[place] : kNone;
  order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(place), chunk);
  Join(lower, chunk);
  Join(chunk, upper);
  return chunk;
}

// Moves the upper half to a chunk of its own.
void SweepStatus::Split(std::uint32_t chunk) {
  constexpr std::uint32_t kKept = kCapacity / 2;
  const std::uint32_t upper = NewChunk(PlaceOf(chunk) + 1);
  Chunk& from = chunks_[chunk];
  Chunk& to = chunks_[upper];
  to.count = from.count - kKept;
  std::copy(from.items + kKept, from.items + from.count, to.items);
  from.count = kKept;
  for (std::uint32_t i = 0; i < to.count; ++i) chunkOf_[to.items[i]] = upper;
}

void SweepStatus::InsertAbove(std::uint32_t lower, std::uint32_t piece) {
  if (order_.empty()) NewChunk(0);
  std::uint32_t chunk = lower == kNone ? order_[0] : chunkOf_[lower];
  if (chunks_[chunk].count == kCapacity) {
    Split(chunk);
    if (lower != kNone) chunk = chunkOf_[lower];
  }
  Chunk& at = chunks_[chunk];
  std::uint32_t* const place = lower == kNone ? at.items : Find(lower) + 1;
  std::copy_backward(place, at.items + at.count, at.items + at.count + 1);
  *place = piece;
  ++at.count;
  chunkOf_[piece] = chunk;
}

void SweepStatus::Replace(std::uint32_t old, std::uint32_t piece) {
  *Find(old) = piece;
  chunkOf_[piece] = chunkOf_[old];
}

void SweepStatus::Erase(std::uint32_t piece) {
  const std::uint32_t chunk = chunkOf_[piece];
  Chunk& at = chunks_[chunk];
  std::uint32_t* const place = Find(piece);
  std::copy(place + 1, at.items + at.count, place);
  if (--at.count > 0) return;
  order_.erase(order_.begin() + static_cast<std::ptrdiff_t>(PlaceOf(chunk)));
  Join(at.below, at.above);
  free_.push_back(chunk);
}

}  // namespace zbr
