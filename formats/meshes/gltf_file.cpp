#include "formats/meshes/gltf_file.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>

#include "formats/text/bytes.h"
#include "formats/text/json_cause.h"

namespace zbr::formats {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr std::string_view kMagic = "glTF";

// The parts of the binary form: JSON first, then the buffer if there is one.
struct Parts {
  std::string_view json, binary;
};

Parts Split(std::string_view text, const std::string& file) {
  constexpr std::size_t kHeader = 12, kPartHeader = 8;
  constexpr std::uint64_t kVersion = 2, kJson = 0x4e4f534a, kBinary = 0x004e4942;
  const std::uint64_t total = text.size() < kHeader ? kHeader : LittleEndian(text.substr(8, 4));
  if (total > text.size()) throw Failure(file, "the file ends too early");
  if (LittleEndian(text.substr(4, 4)) != kVersion) throw Failure(file, "glTF of another version than 2");
  Parts parts;
  for (text = text.substr(0, total).substr(std::min<std::size_t>(total, kHeader)); text.size() >= kPartHeader;) {
    const std::uint64_t length = LittleEndian(text.substr(0, 4)), kind = LittleEndian(text.substr(4, 4));
    text.remove_prefix(kPartHeader);
    if (length > text.size()) throw Failure(file, "a part is said to be longer than the file");
    if (kind == kJson && parts.json.empty()) parts.json = text.substr(0, length);
    if (kind == kBinary && parts.binary.empty()) parts.binary = text.substr(0, length);
    text.remove_prefix(length);
  }
  return parts;
}

// Lines are counted where the JSON is the whole file.
Json Parsed(std::string_view text, const std::string& file, bool isWholeFile) {
  try {
    Json json = Json::parse(text.begin(), text.end());
    if (!json.is_object()) throw Failure(file, "a glTF object expected");
    return json;
  } catch (const Json::parse_error& error) {
    if (!isWholeFile) throw Failure(file, JsonCause(error.what()));
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    FailAt(file, 1 + static_cast<std::size_t>(std::count(text.begin(), end, '\n')), JsonCause(error.what()));
  } catch (const Json::exception& error) {  // a number beyond all range
    throw Failure(file, JsonCause(error.what()));
  }
}

// Nothing for what is no such text.
std::optional<std::string> FromBase64(std::string_view text) {
  static const auto kValues = [] {
    std::array<int, 256> values{};
    values.fill(-1);
    int value = 0;
    for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"))
      values[static_cast<unsigned char>(c)] = value++;
    return values;
  }();
  while (text.ends_with('=')) text.remove_suffix(1);
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 2);
  unsigned bits = 0, count = 0;
  for (const char c : text) {
    const int value = kValues[static_cast<unsigned char>(c)];
    if (value < 0) return std::nullopt;
    bits = bits << 6U | static_cast<unsigned>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xffU);
  }
  return bytes;
}

// "%20" as a blank, and so on.
std::string Unescaped(std::string_view uri) {
  const auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : (c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1);
  };
  std::string text;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    const bool isEscape = uri[i] == '%' && i + 2 < uri.size() && digit(uri[i + 1]) >= 0 && digit(uri[i + 2]) >= 0;
    text += isEscape ? static_cast<char>(16 * digit(uri[i + 1]) + digit(uri[i + 2])) : uri[i];
    if (isEscape) i += 2;
  }
  return text;
}

// Whether a path leads within the folder it starts from.
bool StaysWithin(const fs::path& path) {
  return std::none_of(path.begin(), path.end(), [](const fs::path& part) { return part == ".."; });
}

// A file beside the document, or in a folder beside it: what lies elsewhere was not meant to be given away.
std::string ReadBeside(const std::string& uri, const GltfItem& buffer, const FileSource& beside) {
  const std::string name = Unescaped(uri);
  if (name.empty() || name.front() == '/' || name.find_first_of(":\\") != std::string::npos ||
      name.find('\0') != std::string::npos || !StaysWithin(name))
    buffer.Fail("uri " + Quoted(uri) + " is no name of a file beside this one");
  if (!beside) buffer.Fail("there is no file " + Quoted(name));
  try {
    return beside(name);
  } catch (const Failure& failure) {
    buffer.Fail(failure.what());
  }
}

std::string Fetched(const std::string& uri, const GltfItem& buffer, const FileSource& beside) {
  constexpr std::string_view kData = "data:", kMark = ";base64,";
  if (!uri.starts_with(kData)) return ReadBeside(uri, buffer, beside);
  const std::size_t mark = uri.substr(0, 200).find(kMark);
  auto bytes = mark == std::string::npos ? std::nullopt : FromBase64(std::string_view(uri).substr(mark + kMark.size()));
  if (!bytes) buffer.Fail("uri is not data in base 64");
  return std::move(*bytes);
}

}  // namespace

GltfFile::GltfFile(const std::string& text, const std::string& file, const FileSource& beside) : file_(file), beside_(beside) {
  Parts parts{text, {}};
  if (text.starts_with(kMagic)) parts = Split(text, file);
  binary_ = parts.binary;
  document_ = Parsed(parts.json, file, parts.json.size() == text.size());
  if (!Root().Child("asset").Text("version").starts_with("2.")) throw Failure(file, "glTF of another version than 2");
}

std::string_view GltfFile::Buffer(std::size_t place) {
  const GltfItem buffer = Root().Element("buffers", place);
  const std::size_t length = buffer.Whole("byteLength");
  std::string_view bytes = binary_;
  if (place > 0 || buffer.Has("uri")) {
    const auto [at, isNew] = buffers_.try_emplace(place);
    if (isNew) at->second = Fetched(buffer.Text("uri"), buffer, beside_);
    bytes = at->second;
  }
  if (length > bytes.size()) buffer.Fail("byteLength is beyond the end of the data");
  return bytes.substr(0, length);
}

std::string_view GltfFile::BytesOf(const GltfItem& user) {
  const GltfItem view = Root().Element("bufferViews", user.Whole("bufferView"));
  const std::string_view buffer = Buffer(view.Whole("buffer"));
  const std::size_t first = view.Whole("byteOffset", 0), length = view.Whole("byteLength");
  if (first > buffer.size() || length > buffer.size() - first) view.Fail("it reaches beyond the end of the buffer");
  const std::size_t skipped = user.Whole("byteOffset", 0);
  if (skipped > length) user.Fail("byteOffset is beyond the end of the buffer view");
  return buffer.substr(first + skipped, length - skipped);
}

}  // namespace zbr::formats
