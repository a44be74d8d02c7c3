// Deflate: blocks of bytes as they are, or of codes of different lengths, each for a byte or for a copy of what came out before.
//
// Idea: the codes of a block are given by their lengths alone, as shorter ones come first and those of a length in order. A table
// with an entry for every string of a few bits tells which code the string begins with; the rare longer codes are found by
// counting. A table for all would take longer to make than small blocks to read, and a file may hold a hundred thousand of them.
// Invariants: no bit is taken beyond the end, no copy begins before the first byte, and no more comes out than was announced. A set
// of codes may leave strings of bits without meaning, which are refused where they come, but may not give one two meanings.
#include "formats/archive/inflate.h"

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace zbr::formats {
namespace {

using drawing::Failure;

constexpr unsigned kByte = 8;
constexpr unsigned kLongestCode = 15;
constexpr unsigned kEndOfBlock = 256;
constexpr std::size_t kLiterals = 288, kDistances = 32, kLengthCodes = 19;

[[noreturn]] void FailBroken() {
  throw Failure("the packed contents are broken");
}

// The lowest bit of each byte first.
class Bits {
 public:
  explicit Bits(std::string_view bytes) : bytes_(bytes) {}

  // The next bits without taking them, zeros beyond the end.
  unsigned Peek(unsigned count) {
    while (held_ < count) {
      const std::uint64_t byte = at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_]) : 0;
      ++at_;
      bits_ |= byte << held_;
      held_ += kByte;
    }
    return static_cast<unsigned>(bits_ & ((std::uint64_t{1} << count) - 1));
  }

  void Drop(unsigned count) {
    bits_ >>= count;
    held_ -= count;
    if (at_ > bytes_.size() && held_ < kByte * (at_ - bytes_.size())) throw Failure("the packed contents end too early");
  }

  unsigned Take(unsigned count) {
    const unsigned value = Peek(count);
    Drop(count);
    return value;
  }

  // So many bytes from the next whole one on.
  std::string_view TakeBytes(std::size_t count) {
    Drop(held_ % kByte);
    at_ -= held_ / kByte;
    bits_ = held_ = 0;
    if (at_ > bytes_.size() || count > bytes_.size() - at_) throw Failure("the packed contents end too early");
    at_ += count;
    return bytes_.substr(at_ - count, count);
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  std::uint64_t bits_ = 0;
  unsigned held_ = 0;
};

class Codes {
 public:
  // The length of each symbol's code, 0 where it has none.
  explicit Codes(std::span<const std::uint8_t> lengths) {
    for (const std::uint8_t length : lengths) ++count_[length];
    count_[0] = 0;
    std::array<unsigned, kLongestCode + 1> code{}, place{};
    for (unsigned length = 1; length < code.size(); ++length) {
      code[length] = (code[length - 1] + count_[length - 1]) << 1U;
      place[length] = place[length - 1] + count_[length - 1];
      if (code[length] + count_[length] > 1U << length) FailBroken();
    }
    symbols_.resize(lengths.size());
    quick_.resize(std::size_t{1} << kQuick);
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
      const std::uint8_t length = lengths[symbol];
      if (length == 0) continue;
      symbols_[place[length]++] = static_cast<std::uint16_t>(symbol);
      if (length <= kQuick) Add(static_cast<std::uint16_t>(symbol), length, code[length]++);
    }
  }

  unsigned Take(Bits& bits) const {
    const Entry entry = quick_[bits.Peek(kQuick)];
    if (entry.length == 0) return TakeLong(bits);
    bits.Drop(entry.length);
    return entry.symbol;
  }

 private:
  static constexpr unsigned kQuick = 9;
  struct Entry {
    std::uint16_t symbol = 0;
    std::uint8_t length = 0;
  };

  // Codes come with their highest bit first, all else with the lowest.
  void Add(std::uint16_t symbol, std::uint8_t length, unsigned code) {
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < length; ++bit) reversed |= (code >> bit & 1U) << (length - 1 - bit);
    for (std::size_t i = reversed; i < quick_.size(); i += std::size_t{1} << length) quick_[i] = {symbol, length};
  }

  // Bit by bit: the codes of a length are those from the first one on.
  unsigned TakeLong(Bits& bits) const {
    const unsigned ahead = bits.Peek(kLongestCode);
    unsigned code = 0, first = 0, place = 0;
    for (unsigned length = 1; length <= kLongestCode; ++length) {
      code = code << 1U | (ahead >> (length - 1) & 1U);
      first <<= 1U;
      if (code - first < count_[length]) {  // code is never below first
        bits.Drop(length);
        return symbols_[place + code - first];
      }
      first += count_[length];
      place += count_[length];
    }
    FailBroken();
  }

  std::array<unsigned, kLongestCode + 1> count_{};  // of symbols by the length of their codes
  std::vector<std::uint16_t> symbols_;              // by length, then in order
  std::vector<Entry> quick_;
};

// What a symbol stands for: a base and the number of bits to be added.
struct Range {
  std::uint16_t base;
  std::uint8_t bits;
};
constexpr std::array<Range, 29> kLengths = {{{3, 0},   {4, 0},   {5, 0},   {6, 0},   {7, 0},  {8, 0},  {9, 0},  {10, 0},
                                             {11, 1},  {13, 1},  {15, 1},  {17, 1},  {19, 2}, {23, 2}, {27, 2}, {31, 2},
                                             {35, 3},  {43, 3},  {51, 3},  {59, 3},  {67, 4}, {83, 4}, {99, 4}, {115, 4},
                                             {131, 5}, {163, 5}, {195, 5}, {227, 5}, {258, 0}}};
constexpr std::array<Range, 30> kSpans = {
    {{1, 0},    {2, 0},    {3, 0},     {4, 0},     {5, 1},     {7, 1},     {9, 2},     {13, 2},     {17, 3},     {25, 3},
     {33, 4},   {49, 4},   {65, 5},    {97, 5},    {129, 6},   {193, 6},   {257, 7},   {385, 7},    {513, 8},    {769, 8},
     {1025, 9}, {1537, 9}, {2049, 10}, {3073, 10}, {4097, 11}, {6145, 11}, {8193, 12}, {12289, 12}, {16385, 13}, {24577, 13}}};

template <std::size_t n>
unsigned TakeOf(const std::array<Range, n>& ranges, unsigned symbol, Bits& bits) {
  if (symbol >= n) FailBroken();
  return ranges[symbol].base + bits.Take(ranges[symbol].bits);
}

struct BlockCodes {
  Codes literals, distances;
};

BlockCodes FixedCodes() {
  std::array<std::uint8_t, kLiterals> lengths{};
  for (std::size_t i = 0; i < kLiterals; ++i) lengths[i] = i < 144 ? 8 : (i < 256 ? 9 : (i < 280 ? 7 : 8));
  std::array<std::uint8_t, kDistances> distances{};
  distances.fill(5);
  return {Codes(lengths), Codes(distances)};
}

// The lengths of both sets of codes stand in a row, packed by codes of a third set.
BlockCodes TakeCodes(Bits& bits) {
  constexpr std::array<std::uint8_t, kLengthCodes> kOrder = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
  constexpr unsigned kRepeat = 16, kZeros = 17;
  const unsigned literals = bits.Take(5) + 257, distances = bits.Take(5) + 1, given = bits.Take(4) + 4;
  if (literals > kLiterals) FailBroken();
  std::array<std::uint8_t, kLengthCodes> third{};
  for (unsigned i = 0; i < given; ++i) third[kOrder[i]] = static_cast<std::uint8_t>(bits.Take(3));
  const Codes codes(third);
  std::vector<std::uint8_t> lengths;
  while (lengths.size() < literals + distances) {
    const unsigned symbol = codes.Take(bits);
    if (symbol < kRepeat) {
      lengths.push_back(static_cast<std::uint8_t>(symbol));
      continue;
    }
    if (symbol == kRepeat && lengths.empty()) FailBroken();
    const std::uint8_t length = symbol == kRepeat ? lengths.back() : 0;
    const unsigned count = symbol == kRepeat ? 3 + bits.Take(2) : (symbol == kZeros ? 3 + bits.Take(3) : 11 + bits.Take(7));
    lengths.insert(lengths.end(), count, length);
  }
  if (lengths.size() > literals + distances) FailBroken();
  const std::span<const std::uint8_t> all(lengths);
  return {Codes(all.first(literals)), Codes(all.subspan(literals))};
}

class Unpacking {
 public:
  Unpacking(std::string_view packed, std::size_t size) : bits_(packed), size_(size) {}

  std::string Run() {
    static const BlockCodes kFixed = FixedCodes();
    for (bool isLast = false; !isLast;) {
      isLast = bits_.Take(1) == 1;
      const unsigned kind = bits_.Take(2);
      if (kind == 0) {
        AddStored();
      } else if (kind == 1) {
        AddCoded(kFixed);
      } else if (kind == 2) {
        AddCoded(TakeCodes(bits_));
      } else {
        FailBroken();
      }
    }
    if (out_.size() < size_) FailBroken();
    return std::move(out_);
  }

 private:
  void AddStored() {
    constexpr unsigned kComplement = 0xffff;
    const std::string_view head = bits_.TakeBytes(4);
    const auto number = [&](std::size_t at) {
      return static_cast<unsigned char>(head[at]) | static_cast<unsigned>(static_cast<unsigned char>(head[at + 1])) << kByte;
    };
    if ((number(0) ^ number(2)) != kComplement) FailBroken();
    NeedRoom(number(0));
    out_ += bits_.TakeBytes(number(0));
  }

  void AddCoded(const BlockCodes& codes) {
    for (;;) {
      const unsigned symbol = codes.literals.Take(bits_);
      if (symbol == kEndOfBlock) return;
      if (symbol < kEndOfBlock) {
        NeedRoom(1);
        out_ += static_cast<char>(symbol);
      } else {
        const unsigned length = TakeOf(kLengths, symbol - kEndOfBlock - 1, bits_);
        Repeat(length, TakeOf(kSpans, codes.distances.Take(bits_), bits_));
      }
    }
  }

  // The bytes may overlap: a distance of 1 repeats the last one.
  void Repeat(unsigned length, std::size_t distance) {
    if (distance > out_.size()) FailBroken();
    NeedRoom(length);
    for (unsigned i = 0; i < length; ++i) out_ += out_[out_.size() - distance];
  }

  void NeedRoom(std::size_t count) const {
    if (count > size_ - out_.size()) FailBroken();
  }

  Bits bits_;
  std::size_t size_;
  std::string out_;
};

}  // namespace

std::string Inflate(std::string_view packed, std::size_t size) {
  return Unpacking(packed, size).Run();
}

}  // namespace zbr::formats
