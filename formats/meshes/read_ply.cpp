// PLY, as text and binary: a header that describes records of any kind; of these, points and faces are looked at.
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/meshes/readers.h"
#include "formats/meshes/text_lines.h"

namespace zbr::formats {
namespace {

enum class Kind : std::uint8_t { kSigned, kUnsigned, kReal };

struct Type {
  Kind kind = Kind::kReal;
  std::size_t bytes = 0;
};

struct Property {
  std::string name;
  Type type;
  Type count;  // of a list, the type of its length; without bytes, this is no list
};

struct Element {
  std::string name;
  long long count = 0;
  std::vector<Property> properties;
};

Type TypeNamed(std::string_view name, const TextLines& lines) {
  static const std::map<std::string_view, Type> kTypes = {
      {"char", {Kind::kSigned, 1}},    {"uchar", {Kind::kUnsigned, 1}},  {"int8", {Kind::kSigned, 1}},
      {"uint8", {Kind::kUnsigned, 1}}, {"short", {Kind::kSigned, 2}},    {"ushort", {Kind::kUnsigned, 2}},
      {"int16", {Kind::kSigned, 2}},   {"uint16", {Kind::kUnsigned, 2}}, {"int", {Kind::kSigned, 4}},
      {"uint", {Kind::kUnsigned, 4}},  {"int32", {Kind::kSigned, 4}},    {"uint32", {Kind::kUnsigned, 4}},
      {"float", {Kind::kReal, 4}},     {"float32", {Kind::kReal, 4}},    {"double", {Kind::kReal, 8}},
      {"float64", {Kind::kReal, 8}}};
  const auto found = kTypes.find(name);
  if (found == kTypes.end()) lines.Fail(Quoted(name) + " is no type of numbers");
  return found->second;
}

// Where the values behind the header come from, one after the other.
class Values {
 public:
  virtual ~Values() = default;
  virtual double Next(const Type& type) = 0;
  [[noreturn]] virtual void Fail(const std::string& cause) const = 0;
};

class TextValues : public Values {
 public:
  explicit TextValues(TextLines& lines) : lines_(lines) {}
  double Next(const Type&) override { return lines_.NumberOfAnyLine(); }
  void Fail(const std::string& cause) const override { lines_.Fail(cause); }

 private:
  TextLines& lines_;
};

class BinaryValues : public Values {
 public:
  BinaryValues(std::string_view bytes, bool bigEndian, const std::string& file)
      : bytes_(bytes), bigEndian_(bigEndian), file_(file) {}

  double Next(const Type& type) override {
    if (bytes_.size() - at_ < type.bytes) Fail("the file ends too early");
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < type.bytes; ++i) {
      const std::size_t place = bigEndian_ ? i : type.bytes - 1 - i;
      bits = bits << 8U | static_cast<unsigned char>(bytes_[at_ + place]);
    }
    at_ += type.bytes;
    const double value = Value(type, bits);
    if (!std::isfinite(value)) Fail("a number is not finite");
    return value;
  }
  void Fail(const std::string& cause) const override { throw Failure(file_, cause); }

 private:
  static double Value(const Type& type, std::uint64_t bits) {
    if (type.kind == Kind::kReal) {
      return type.bytes == 8 ? std::bit_cast<double>(bits) : std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    }
    const auto range = static_cast<double>(std::uint64_t{1} << 8U * type.bytes);
    const auto value = static_cast<double>(bits);
    return type.kind == Kind::kSigned && value >= range / 2 ? value - range : value;
  }

  std::string_view bytes_;
  std::size_t at_ = 0;
  bool bigEndian_;
  const std::string& file_;
};

class PlyReader {
 public:
  PlyReader(const std::string& text, const std::string& file) : text_(text), file_(file), lines_(text, file) {}

  Mesh Read() {
    const std::unique_ptr<Values> values = ReadHeader();
    for (const Element& element : elements_) {
      if (element.properties.empty()) continue;
      for (long long i = 0; i < element.count; ++i) ReadRecord(element, *values);
    }
    return std::move(mesh_);
  }

 private:
  std::unique_ptr<Values> ReadHeader() {
    if (lines_.WordOfAnyLine() != "ply") lines_.Fail("'ply' expected");
    std::string format;
    for (std::string_view keyword; keyword != "end_header";) {
      if (!lines_.NextLine()) lines_.Fail("the file ends within the header");
      keyword = lines_.Word();
      if (keyword == "format") format = lines_.Word();
      if (keyword == "element") ReadElement();
      if (keyword == "property") ReadProperty();
    }
    if (format == "ascii") return std::make_unique<TextValues>(lines_);
    const bool bigEndian = format == "binary_big_endian";
    if (!bigEndian && format != "binary_little_endian") lines_.Fail("unknown format " + Quoted(format));
    const std::size_t end = std::min(text_.find('\n', text_.find("\nend_header") + 1), text_.size() - 1);
    return std::make_unique<BinaryValues>(std::string_view(text_).substr(end + 1), bigEndian, file_);
  }

  void ReadElement() {
    const std::string_view name = lines_.Word();
    elements_.push_back({std::string(name), lines_.Integer(), {}});
    if (elements_.back().count < 0) lines_.Fail("a negative count");
  }

  void ReadProperty() {
    if (elements_.empty()) lines_.Fail("a property of no element");
    Property property;
    std::string_view word = lines_.Word();
    if (word == "list") {
      property.count = TypeNamed(lines_.Word(), lines_);
      word = lines_.Word();
    }
    property.type = TypeNamed(word, lines_);
    property.name = lines_.Word();
    elements_.back().properties.push_back(property);
  }

  void ReadRecord(const Element& element, Values& values) {
    const bool isPoint = element.name == "vertex", isFace = element.name == "face";
    double x = 0.0, y = 0.0, z = 0.0;
    for (const Property& property : element.properties) {
      const bool isCorners = isFace && (property.name == "vertex_indices" || property.name == "vertex_index");
      if (property.count.bytes > 0) {
        ReadList(property, values, isCorners);
        continue;
      }
      const double value = values.Next(property.type);
      if (property.name == "x") x = value;
      if (property.name == "y") y = value;
      if (property.name == "z") z = value;
    }
    if (isPoint) mesh_.points.emplace_back(x, y, z);
  }

  void ReadList(const Property& property, Values& values, bool isCorners) {
    constexpr double kMost = 1e15;
    const auto size = static_cast<std::size_t>(std::clamp(values.Next(property.count), 0.0, kMost));
    corners_.clear();
    for (std::size_t i = 0; i < size; ++i) {
      const double place = values.Next(property.type);
      if (!isCorners) continue;
      if (!(place >= 0 && place < static_cast<double>(mesh_.points.size())) || place != std::floor(place))
        values.Fail("point " + NumberText(place) + " of a face is not among the " + std::to_string(mesh_.points.size()) +
                    " before it");
      corners_.push_back(static_cast<std::uint32_t>(place));
    }
    if (corners_.size() >= 3) AddPolygon(mesh_, corners_);
  }

  const std::string& text_;
  const std::string& file_;
  TextLines lines_;
  std::vector<Element> elements_;
  Mesh mesh_;
  std::vector<std::uint32_t> corners_;
};

}  // namespace

Mesh ReadPly(const std::string& text, const std::string& file) {
  return PlyReader(text, file).Read();
}

}  // namespace zbr::formats
