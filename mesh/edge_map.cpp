// The hash table from pairs of vertices to edges: linear probing, at most two thirds full.
#include <bit>
#include <utility>

#include <zbr/mesh.h>

namespace {

constexpr std::size_t kLeastSlots = 8;

// Slots for n edges at most two thirds full.
std::size_t SlotsFor(std::size_t n) {
  const std::size_t wanted = n + n / 2 + 1;
  return std::bit_ceil(wanted < kLeastSlots ? kLeastSlots : wanted);
}

}  // namespace

void ZBR_ZBREP_EDGE_MAP::Reserve(std::size_t n) {
  if (SlotsFor(n) > slots_.size()) Rehash(SlotsFor(n));
}

// Where the key is, or the free slot where it would go. Vertices that follow each other in a mesh give keys that follow each other;
// multiplying spreads them (Knuth's multiplicative hashing, the high bits of the product).
std::size_t ZBR_ZBREP_EDGE_MAP::Place(std::uint64_t key) const {
  const std::size_t mask = slots_.size() - 1;
  const auto bits = static_cast<unsigned>(std::countr_zero(slots_.size()));
  std::size_t place = static_cast<std::size_t>((key ^ key >> 32U) * 0x9e3779b97f4a7c15ULL >> (64U - bits));
  while (slots_[place].value >= 0 && slots_[place].key != key) place = (place + 1) & mask;
  return place;
}

int ZBR_ZBREP_EDGE_MAP::Find(std::uint64_t key) const {
  return slots_.empty() ? -1 : slots_[Place(key)].value;
}

int ZBR_ZBREP_EDGE_MAP::FindOrAdd(std::uint64_t key, int value) {
  if (slots_.size() < SlotsFor(used_ + 1)) Rehash(SlotsFor(used_ + 1));
  Slot& slot = slots_[Place(key)];
  if (slot.value < 0) {
    slot = {key, value};
    ++used_;
  }
  return slot.value;
}

void ZBR_ZBREP_EDGE_MAP::Rehash(std::size_t slotCount) {
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slotCount));
  for (const Slot& slot : old) {
    if (slot.value >= 0) slots_[Place(slot.key)] = slot;
  }
}
