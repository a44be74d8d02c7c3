// What a document says of looks, printing and slices is passed over: elements count only where the core of the format has them.
#include "formats/meshes/three_mf_part.h"

#include <zbr-drawing/failure.h>
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "formats/text/blanks.h"
#include "formats/text/xml.h"

namespace zbr::formats {
namespace {

using drawing::FailAt;
using drawing::Quoted;

std::vector<std::string_view> WordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  for (text = Trimmed(text); !text.empty(); text = Trimmed(text)) {
    words.push_back(text.substr(0, text.find_first_of(kXmlBlanks)));
    text.remove_prefix(words.back().size());
  }
  return words;
}

class PartReader : public XmlListener {
 public:
  explicit PartReader(const std::string& file) : file_(file) {}

  void Begin(const XmlElement& element) override {
    element_ = &element;
    path_ += '/';
    path_ += element.name;
    if (path_ == "/model") return ReadModel();
    if (path_ == "/model/resources/object") return BeginObject();
    if (path_ == "/model/resources/object/mesh/vertices/vertex") return AddPoint();
    if (path_ == "/model/resources/object/mesh/triangles/triangle") return AddTriangle();
    if (path_ == "/model/resources/object/components/component") return part.objects.back().components.push_back(ItemOf());
    if (path_ == "/model/build/item") part.items.push_back(ItemOf());
  }

  // Only now the object can be made part of others.
  void End() override {
    if (path_ == "/model/resources/object") part.objectById.emplace(id_, part.objects.size() - 1);
    path_.resize(path_.rfind('/'));
  }

  void RequireModel() const {
    if (!hasModel_) FailAt(file_, 1, "a 3MF model expected");
  }

  ThreeMfPart part;

 private:
  [[noreturn]] void Fail(const std::string& cause) const { FailAt(file_, element_->line, cause); }

  const std::string& Needed(std::string_view name) const {
    const std::string& value = element_->Attribute(name);
    if (value.empty()) Fail(element_->name + " without " + std::string(name));
    return value;
  }

  double Number(std::string_view text) const {
    const std::optional<double> value = drawing::ParseNumber(Trimmed(text));
    if (!value) Fail(Quoted(text) + " is not a finite number");
    return *value;
  }

  long long Id(std::string_view name) const {
    const std::string& text = Needed(name);
    const std::optional<long long> value = drawing::ParseInteger(Trimmed(text));
    if (!value) Fail(Quoted(text) + " is no object's number");
    return *value;
  }

  void ReadModel() {
    constexpr std::pair<std::string_view, double> kUnits[] = {
        {"", 1}, {"millimeter", 1}, {"micron", 0.001}, {"centimeter", 10}, {"inch", 25.4}, {"foot", 304.8}, {"meter", 1000}};
    hasModel_ = true;
    const std::string& unit = element_->Attribute("unit");
    const auto* const found = std::find_if(std::begin(kUnits), std::end(kUnits), [&](const auto& u) { return u.first == unit; });
    if (found == std::end(kUnits)) Fail("the unit " + Quoted(unit) + " is unknown");
    part.millimetres = found->second;
    RefuseExtensions();
  }

  // Extensions that a file requires may put other shapes in the place of meshes, unless they are known not to.
  void RefuseExtensions() const {
    constexpr std::string_view kHarmless[] = {"/material/", "/production/", "/slice/", "/trianglesets/"};
    for (const std::string_view prefix : WordsOf(element_->Attribute("requiredextensions"))) {
      const std::string& space = element_->Attribute("xmlns:" + std::string(prefix));
      const auto isOf = [&](std::string_view name) { return space.find(name) != std::string::npos; };
      if (std::none_of(std::begin(kHarmless), std::end(kHarmless), isOf))
        Fail("requires the extension " + Quoted(space.empty() ? prefix : space) + ", which is not supported");
    }
  }

  // Millions of them pack into a few bytes, and each takes a hundred.
  void Count() {
    constexpr std::size_t kMost = 1'000'000;
    if (++count_ > kMost) Fail("too many objects");
  }

  void BeginObject() {
    Count();
    id_ = Id("id");
    if (part.objectById.contains(id_)) Fail("a second object " + std::to_string(id_));
    const std::string& type = element_->Attribute("type");
    part.objects.emplace_back().isShape = type != "support" && type != "solidsupport" && type != "other";
  }

  void AddPoint() {
    ThreeMfObject& object = part.objects.back();
    if (object.points.size() == drawing::kMostMeshPoints) Fail("too many points");
    object.points.emplace_back(Number(Needed("x")), Number(Needed("y")), Number(Needed("z")));
  }

  void AddTriangle() {
    ThreeMfObject& object = part.objects.back();
    const auto corner = [&](std::string_view name) {
      const std::string& text = Needed(name);
      const std::optional<long long> place = drawing::ParseInteger(Trimmed(text));
      if (!place || *place < 0 || *place >= static_cast<long long>(object.points.size()))
        Fail("point " + Quoted(text) + " of a triangle is not among the " + std::to_string(object.points.size()));
      return static_cast<std::uint32_t>(*place);
    };
    if (object.triangles.size() == drawing::kMostMeshPoints) Fail("too many triangles");
    object.triangles.push_back({corner("v1"), corner("v2"), corner("v3")});
  }

  ThreeMfItem ItemOf() {
    Count();
    ThreeMfItem item;
    item.id = Id("objectid");
    item.line = element_->line;
    for (const auto& [name, value] : element_->attributes) {
      if (name == "path" || name.ends_with(":path")) item.part = value;
    }
    if (item.part.empty() && !part.objectById.contains(item.id))
      Fail("there is no object " + std::to_string(item.id) + " before this");
    const std::vector<std::string_view> words = WordsOf(element_->Attribute("transform"));
    if (words.empty()) return item;
    constexpr std::size_t kNumbers = 12;
    if (words.size() != kNumbers) Fail("a transform of " + std::to_string(words.size()) + " numbers, not 12");
    ZBR_PT3* row = nullptr;
    for (std::size_t i = 0; i < kNumbers; i += 3) {
      row = i == 0 ? &item.place.x : (i == 3 ? &item.place.y : (i == 6 ? &item.place.z : &item.place.origin));
      row->Set(Number(words[i]), Number(words[i + 1]), Number(words[i + 2]));
    }
    return item;
  }

  const std::string& file_;
  const XmlElement* element_ = nullptr;
  std::string path_;  // the names of all open elements
  long long id_ = 0;  // of the object at hand
  bool hasModel_ = false;
  std::size_t count_ = 0;  // of objects, components and items
};

}  // namespace

ThreeMfPart ReadThreeMfPart(std::string_view text, const std::string& file) {
  PartReader reader(file);
  ReadXml(text, file, reader);
  reader.RequireModel();
  return std::move(reader.part);
}

}  // namespace zbr::formats
