// A set of small numbers, asked for the neighbours of a number.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr {

// One bit for each number, and one for each 64 of them, so that wide gaps are passed quickly.
class RankSet {
 public:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  // The empty set of numbers less than `count`.
  void Reset(std::size_t count) {
    words_.assign(count / kBits + 1, 0);
    filled_.assign(words_.size() / kBits + 1, 0);
  }

  void Set(std::uint32_t i) {
    words_[i / kBits] |= Bit(i);
    filled_[i / kBits / kBits] |= Bit(i / kBits);
  }
  void Clear(std::uint32_t i) {
    words_[i / kBits] &= ~Bit(i);
    if (words_[i / kBits] == 0) filled_[i / kBits / kBits] &= ~Bit(i / kBits);
  }

  // The least member from i on, or kNone.
  std::uint32_t From(std::uint32_t i) const {
    if (i / kBits >= words_.size()) return kNone;
    const std::uint64_t here = words_[i / kBits] & (~std::uint64_t{0} << i % kBits);
    if (here != 0) return i / kBits * kBits + LowestOf(here);
    const std::uint32_t next = i / kBits + 1;
    std::uint32_t block = next / kBits;
    if (block >= filled_.size()) return kNone;
    std::uint64_t filled = filled_[block] & (~std::uint64_t{0} << next % kBits);
    while (filled == 0) {
      if (++block == filled_.size()) return kNone;
      filled = filled_[block];
    }
    const std::uint32_t word = block * kBits + LowestOf(filled);
    return word * kBits + LowestOf(words_[word]);
  }

  // The greatest member less than i, or kNone.
  std::uint32_t Before(std::uint32_t i) const {
    const std::uint64_t here = words_[i / kBits] & (Bit(i) - 1);
    if (here != 0) return i / kBits * kBits + HighestOf(here);
    std::uint32_t block = i / kBits / kBits;
    std::uint64_t filled = filled_[block] & (Bit(i / kBits) - 1);
    while (filled == 0) {
      if (block-- == 0) return kNone;
      filled = filled_[block];
    }
    const std::uint32_t word = block * kBits + HighestOf(filled);
    return word * kBits + HighestOf(words_[word]);
  }

 private:
  static constexpr std::uint32_t kBits = 64;

  static std::uint64_t Bit(std::uint32_t i) { return std::uint64_t{1} << i % kBits; }
  static std::uint32_t LowestOf(std::uint64_t word) { return static_cast<std::uint32_t>(std::countr_zero(word)); }
  static std::uint32_t HighestOf(std::uint64_t word) { return kBits - 1 - static_cast<std::uint32_t>(std::countl_zero(word)); }

  std::vector<std::uint64_t> words_;
  std::vector<std::uint64_t> filled_;  // which words are not 0
};

}  // namespace zbr
