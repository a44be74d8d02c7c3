#include "formats/meshes/gltf_accessor.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

#include "formats/text/bytes.h"

namespace zbr::formats {
namespace {

// A kind of component.
struct Kind {
  std::size_t code, size;
  double greatest;  // what a normalized one stands for 1 with
};

constexpr std::size_t kInt8 = 5120, kInt16 = 5122, kFloat = 5126;
constexpr Kind kKinds[] = {{kInt8, 1, 127}, {5121, 1, 255}, {kInt16, 2, 32767}, {5123, 2, 65535}, {5125, 4, 1}, {kFloat, 4, 1}};

const Kind& KindOf(const GltfItem& item) {
  const std::size_t code = item.Whole("componentType");
  const auto* const found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& kind) { return kind.code == code; });
  if (found == std::end(kKinds)) item.Fail("componentType " + std::to_string(code) + " is unknown");
  return *found;
}

// Whether elements of a size, so far apart, end within the bytes. Sizes and distances are not 0.
bool Fits(std::size_t count, std::size_t size, std::size_t stride, std::string_view bytes) {
  return count == 0 || (size <= bytes.size() && count - 1 <= (bytes.size() - size) / stride);
}

double Number(std::string_view bytes, std::size_t code) {
  const std::uint64_t bits = LittleEndian(bytes);
  if (code == kFloat) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
  if (code == kInt8) return static_cast<std::int8_t>(bits);
  return code == kInt16 ? static_cast<std::int16_t>(bits) : static_cast<double>(bits);
}

}  // namespace

GltfAccessor::GltfAccessor(GltfFile& gltf, std::size_t place, const std::string& type) {
  const GltfItem item = gltf.Root().Element("accessors", place);
  if (item.Text("type") != type) item.Fail("type is not " + type);
  count_ = item.Whole("count");
  const Kind& kind = KindOf(item);
  code_ = kind.code;
  componentSize_ = kind.size;
  if (item.Flag("normalized") && kind.size < 4) greatest_ = kind.greatest;  // of floats and long numbers it says nothing
  elementSize_ = (type == "VEC3" ? 3 : 1) * componentSize_;
  bytes_ = gltf.BytesOf(item);
  const std::size_t stride = gltf.Root().Element("bufferViews", item.Whole("bufferView")).Whole("byteStride", 0);
  stride_ = stride == 0 ? elementSize_ : stride;
  if (!Fits(count_, elementSize_, stride_, bytes_)) item.Fail("count is beyond the end of the buffer view");
  if (item.Has("sparse")) Replace(gltf, item.Child("sparse"));
}

void GltfAccessor::Replace(GltfFile& gltf, const GltfItem& sparse) {
  const GltfItem indices = sparse.Child("indices"), values = sparse.Child("values");
  const Kind& kind = KindOf(indices);
  const std::size_t count = sparse.Whole("count"), indexSize = kind.size, size = elementSize_;
  const std::string_view indexBytes = gltf.BytesOf(indices), valueBytes = gltf.BytesOf(values);
  if (kind.code == kFloat || kind.code == kInt8 || kind.code == kInt16) indices.Fail("componentType is not one of whole numbers");
  if (!Fits(count, indexSize, indexSize, indexBytes)) indices.Fail("the buffer view is too short");
  if (!Fits(count, size, size, valueBytes)) values.Fail("the buffer view is too short");
  own_ = bytes_;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t element = LittleEndian(indexBytes.substr(i * indexSize, indexSize));
    if (element >= count_) indices.Fail("number " + std::to_string(element) + " is beyond the count of elements");
    const std::string_view value = valueBytes.substr(i * size, size);
    std::copy(value.begin(), value.end(), own_.begin() + static_cast<std::ptrdiff_t>(element * stride_));
  }
}

double GltfAccessor::At(std::size_t element, std::size_t component) const {
  const std::string_view bytes = own_.empty() ? bytes_ : own_;
  const double number = Number(bytes.substr(element * stride_ + component * componentSize_, componentSize_), code_);
  return greatest_ == 0 ? number : std::max(number / greatest_, -1.0);
}

}  // namespace zbr::formats
