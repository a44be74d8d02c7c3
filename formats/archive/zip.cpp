// The directory stands at the end of a ZIP archive; files above 4 GB, and writers that do not know the sizes beforehand, use a
// second form of it with wider numbers (ZIP64). What lies between the parts is passed over.
#include "formats/archive/zip.h"

#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "formats/archive/inflate.h"
#include "formats/text/bytes.h"

namespace zbr::formats {
namespace {

using drawing::Failure;
using drawing::Quoted;

constexpr std::uint64_t kMostUnpacked = std::uint64_t{1} << 30U;
constexpr std::uint64_t kEndSize = 22, kLongestComment = 0xffff, kEntrySize = 46, kHeadSize = 30, kWideLocatorSize = 20;
constexpr std::uint64_t kWide = 0xffffffff, kWideCount = 0xffff;  // the number stands elsewhere
constexpr unsigned kStored = 0, kDeflated = 8, kWideExtra = 1;
constexpr std::string_view kEnd("PK\5\6", 4), kEntry("PK\1\2", 4), kHead("PK\3\4", 4), kWideLocator("PK\6\7", 4),
    kWideEnd("PK\6\6", 4);

std::uint32_t CheckSum(std::string_view bytes) {
  constexpr std::uint32_t kPolynomial = 0xedb88320, kOnes = 0xffffffff;
  static const std::array<std::uint32_t, 256> kTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      table[i] = i;
      for (int bit = 0; bit < 8; ++bit) table[i] = (table[i] & 1U) != 0 ? table[i] >> 1U ^ kPolynomial : table[i] >> 1U;
    }
    return table;
  }();
  std::uint32_t sum = kOnes;
  for (const char c : bytes) sum = sum >> 8U ^ kTable[(sum ^ static_cast<unsigned char>(c)) & 0xffU];
  return sum ^ kOnes;
}

}  // namespace

ZipArchive::ZipArchive(std::string_view bytes, const std::string& file) : bytes_(bytes), file_(file), room_(kMostUnpacked) {
  if (!bytes.starts_with(kHead) && !bytes.starts_with(kEnd)) Fail("is no ZIP archive, which 3MF files are");
  const std::size_t end = FindEnd();
  std::uint64_t count = NumberAt(end + 10, 2), place = NumberAt(end + 16, 4);
  if ((place == kWide || count == kWideCount) && end >= kWideLocatorSize &&
      BytesAt(end - kWideLocatorSize, kWideLocator.size()) == kWideLocator) {
    const std::uint64_t wide = NumberAt(end - kWideLocatorSize + 8, 8);
    if (BytesAt(wide, kWideEnd.size()) != kWideEnd) Fail("the archive's directory is broken");
    count = NumberAt(wide + 32, 8);
    place = NumberAt(wide + 48, 8);
  }
  ReadDirectory(place, count);
}

// A comment of any contents may follow, such as holds the mark of an end: the end that counts is where a comment ends with the
// file. Where none does, the last one.
std::size_t ZipArchive::FindEnd() const {
  const std::size_t first = bytes_.size() > kEndSize + kLongestComment ? bytes_.size() - kEndSize - kLongestComment : 0;
  const std::size_t last = bytes_.rfind(kEnd);
  if (last == std::string_view::npos || last < first) Fail("the archive ends too early");
  for (std::size_t end = last; end != std::string_view::npos && end >= first;
       end = end > 0 ? bytes_.rfind(kEnd, end - 1) : end - 1) {
    if (bytes_.size() - end >= kEndSize && end + kEndSize + NumberAt(end + 20, 2) == bytes_.size()) return end;
  }
  return last;
}

void ZipArchive::Fail(const std::string& cause) const {
  throw Failure(file_, cause);
}

std::string ZipArchive::KeyOf(std::string_view name) {
  std::string key(PlainName(name));
  for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return key;
}

std::string_view ZipArchive::BytesAt(std::uint64_t place, std::uint64_t count) const {
  if (place > bytes_.size() || count > bytes_.size() - place) Fail("the archive's directory points beyond its end");
  return bytes_.substr(static_cast<std::size_t>(place), static_cast<std::size_t>(count));
}

std::uint64_t ZipArchive::NumberAt(std::uint64_t place, unsigned bytes) const {
  return LittleEndian(BytesAt(place, bytes));
}

// Of parts with one name the first counts.
void ZipArchive::ReadDirectory(std::uint64_t place, std::uint64_t count) {
  for (std::uint64_t i = 0; i < count; ++i) {
    if (BytesAt(place, kEntrySize).substr(0, kEntry.size()) != kEntry) Fail("the archive's directory is broken");
    Part part;
    part.isEncrypted = (NumberAt(place + 8, 2) & 1U) != 0;
    part.method = static_cast<unsigned>(NumberAt(place + 10, 2));
    part.checkSum = static_cast<std::uint32_t>(NumberAt(place + 16, 4));
    part.packedSize = NumberAt(place + 20, 4);
    part.size = NumberAt(place + 24, 4);
    part.place = NumberAt(place + 42, 4);
    const std::uint64_t name = NumberAt(place + 28, 2), extra = NumberAt(place + 30, 2), comment = NumberAt(place + 32, 2);
    WidenSizes(BytesAt(place + kEntrySize + name, extra), part);
    parts_.try_emplace(KeyOf(BytesAt(place + kEntrySize, name)), part);
    place += kEntrySize + name + extra + comment;
  }
}

// Those numbers that do not fit stand in a further field, in this order.
void ZipArchive::WidenSizes(std::string_view extra, Part& part) const {
  while (extra.size() >= 4) {
    const std::uint64_t kind = LittleEndian(extra.substr(0, 2)), size = LittleEndian(extra.substr(2, 2));
    std::string_view numbers = extra.substr(4, static_cast<std::size_t>(size));
    extra.remove_prefix(std::min<std::size_t>(extra.size(), 4 + static_cast<std::size_t>(size)));
    if (kind != kWideExtra) continue;
    for (std::uint64_t* number : {&part.size, &part.packedSize, &part.place}) {
      if (*number != kWide) continue;
      if (numbers.size() < 8) Fail("the archive's directory is broken");
      *number = LittleEndian(numbers.substr(0, 8));
      numbers.remove_prefix(8);
    }
  }
}

std::string ZipArchive::Read(std::string_view path) {
  const std::string_view name = PlainName(path);
  const auto found = parts_.find(KeyOf(name));
  if (found == parts_.end()) Fail("there is no part " + Quoted(name));
  const Part& part = found->second;
  if (part.isEncrypted) Fail(Quoted(name) + " is encrypted");
  if (part.method != kStored && part.method != kDeflated) Fail(Quoted(name) + " is packed by a method other than deflate");
  if (part.size > room_) Fail("unpacks to more than a gigabyte");
  room_ -= part.size;
  if (BytesAt(part.place, kHeadSize).substr(0, kHead.size()) != kHead) Fail("the archive's directory is broken");
  const std::uint64_t start = part.place + kHeadSize + NumberAt(part.place + 26, 2) + NumberAt(part.place + 28, 2);
  const std::string_view packed = BytesAt(start, part.packedSize);
  std::string contents;
  try {
    contents = part.method == kStored ? std::string(packed) : Inflate(packed, static_cast<std::size_t>(part.size));
  } catch (const Failure& failure) {
    Fail(Quoted(name) + ": " + failure.Cause());
  }
  if (contents.size() != part.size || CheckSum(contents) != part.checkSum)
    Fail(Quoted(name) + " is damaged: its check sum differs");
  return contents;
}

}  // namespace zbr::formats
