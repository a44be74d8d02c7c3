// Reads GeoJSON while it is parsed, without building the document: a file of a million points needs little more than the points.
//
// Of each object only the members that lead to geometries are looked at; everything else is skipped as a whole. A feature's
// property "name" becomes the layer of its rings.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/types.h>

#include <nlohmann/json.hpp>

#include <array>
#include <iterator>
#include <string_view>

#include "formats/drawings/geojson_coordinates.h"
#include "formats/text/json_cause.h"

namespace zbr::formats {
namespace {

// How far the parser has read; it looks one character ahead after a number.
struct Progress {
  std::size_t newlines = 0;
  bool atLineStart = false;
  std::size_t Line() const { return newlines + (atLineStart ? 0 : 1); }
};

// Hands the text to the parser and counts lines on the way.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, Progress* progress) : at_(at), progress_(progress) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    progress_->atLineStart = *at_ == '\n';
    if (progress_->atLineStart) ++progress_->newlines;
    ++at_;
    return *this;
  }
  CountingIterator operator++(int) {
    const CountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountingIterator& o) const { return at_ == o.at_; }
  bool operator!=(const CountingIterator& o) const { return at_ != o.at_; }

 private:
  const char* at_;
  Progress* progress_;
};

// An object whose members matter and that is not closed yet.
struct OpenObject {
  bool isProperties = false;
  bool inList = false;  // inside the array of its "features" or "geometries"
  bool hasCoordinates = false;
  std::string key, type, name;
  std::size_t line = 0;
  std::size_t firstPath = 0;
  GeoJsonCoordinates coordinates;
};

class GeoJsonHandler : public nlohmann::json_sax<nlohmann::json> {
 public:
  GeoJsonHandler(const std::string& file, Content content, const Progress& progress)
      : isForLines_(content == Content::kLines), progress_(progress) {
    drawing.file = file;
  }

  Drawing drawing;

  bool null() override { return Scalar(); }
  bool boolean(bool) override { return Scalar(); }
  bool number_integer(number_integer_t value) override { return Number(static_cast<double>(value)); }
  bool number_unsigned(number_unsigned_t value) override { return Number(static_cast<double>(value)); }
  bool number_float(number_float_t value, const string_t&) override { return Number(value); }
  bool binary(binary_t&) override { return Scalar(); }

  bool string(string_t& value) override {
    if (skipped_ > 0) return true;
    Scalar();
    OpenObject& top = objects_.back();
    if (top.isProperties && top.key == "name") objects_[objects_.size() - 2].name = value;
    if (!top.isProperties && top.key == "type") top.type = value;
    return true;
  }

  bool key(string_t& value) override {
    if (skipped_ == 0) objects_.back().key = value;
    return true;
  }

  bool start_object(std::size_t) override {
    if (skipped_ > 0) return Skip(1);
    if (InCoordinates()) Fail("coordinates must be numbers");
    if (objects_.empty()) return Open(false);
    const OpenObject& top = objects_.back();
    if (top.isProperties) return Skip(1);
    if (top.inList || top.key == "geometry") return Open(false);
    return top.key == "properties" ? Open(true) : Skip(1);
  }

  bool end_object() override {
    if (skipped_ > 0) return Skip(-1);
    const OpenObject object = std::move(objects_.back());
    objects_.pop_back();
    if (!object.isProperties) Take(object);
    return true;
  }

  bool start_array(std::size_t) override {
    if (skipped_ > 0) return Skip(1);
    if (objects_.empty()) Fail("a GeoJSON object expected");
    OpenObject& top = objects_.back();
    if (top.inList) Fail("an object expected");
    if (InCoordinates()) {
      Check(top.coordinates.OpenArray(progress_.Line()));
    } else if (!top.isProperties && top.key == "coordinates") {
      top.coordinates = GeoJsonCoordinates(isForLines_);
      top.hasCoordinates = true;
      Check(top.coordinates.OpenArray(progress_.Line()));
    } else if (!top.isProperties && (top.key == "features" || top.key == "geometries")) {
      top.inList = true;
    } else {
      return Skip(1);
    }
    return true;
  }

  bool end_array() override {
    if (skipped_ > 0) return Skip(-1);
    OpenObject& top = objects_.back();
    if (InCoordinates()) {
      Check(top.coordinates.CloseArray());
    } else {
      top.inList = false;
    }
    return true;
  }

  bool parse_error(std::size_t, const std::string& token, const nlohmann::detail::exception& error) override {
    if (error.id == 406) Fail("number " + Quoted(token) + " is out of range");
    Fail(JsonCause(error.what()));
  }

 private:
  [[noreturn]] void Fail(const std::string& cause) const { FailAt(drawing.file, progress_.Line(), cause); }

  void Check(const char* wrong) const {
    if (wrong != nullptr) Fail(wrong);
  }

  bool InCoordinates() const { return !objects_.empty() && objects_.back().coordinates.IsOpen(); }

  bool Skip(int change) {
    skipped_ += change;
    return true;
  }

  bool Scalar() const {
    if (skipped_ > 0) return true;
    if (objects_.empty()) Fail("a GeoJSON object expected");
    if (InCoordinates()) Fail("coordinates must be numbers");
    if (objects_.back().inList) Fail("an object expected");
    return true;
  }

  bool Number(double value) {
    if (skipped_ > 0 || !InCoordinates()) return Scalar();
    Check(objects_.back().coordinates.AddNumber(value));
    return true;
  }

  bool Open(bool isProperties) {
    constexpr std::size_t kDeepest = 64;
    if (objects_.size() == kDeepest) Fail("objects are nested too deeply");
    OpenObject& object = objects_.emplace_back();
    object.isProperties = isProperties;
    object.line = progress_.Line();
    object.firstPath = drawing.paths.size();
    return true;
  }

  void Take(const OpenObject& object) {
    static constexpr std::array<std::string_view, 3> kContainers = {"Feature", "FeatureCollection", "GeometryCollection"};
    static constexpr std::array<std::string_view, 4> kOthers = {"Point", "MultiPoint", "LineString", "MultiLineString"};
    const std::string& type = object.type;
    if (type == "Polygon" || type == "MultiPolygon") {
      TakePolygons(object, type == "Polygon" ? 3 : 4);
    } else if (isForLines_ && (type == "LineString" || type == "MultiLineString")) {
      TakeLines(object, type == "LineString" ? 2 : 3);
    } else if (std::find(kOthers.begin(), kOthers.end(), type) != kOthers.end()) {
      drawing.LeaveOut(type, object.line, type.ends_with("LineString"));
    } else if (std::find(kContainers.begin(), kContainers.end(), type) == kContainers.end()) {
      FailAt(drawing.file, object.line, type.empty() ? "an object without a type" : "unknown type " + Quoted(type));
    }
    if (type != "Feature") return;
    for (std::size_t i = object.firstPath; i < drawing.paths.size(); ++i) drawing.paths[i].layer = drawing.names->Keep(object.name);
  }

  void CheckNesting(const OpenObject& object, int height) const {
    if (!object.hasCoordinates) FailAt(drawing.file, object.line, object.type + " without coordinates");
    const int found = object.coordinates.height();
    if (found != 0 && found != height) FailAt(drawing.file, object.line, "coordinates do not have the nesting of a " + object.type);
  }

  // Ring `ring` as a path; `point` is its first point, and becomes that of the next.
  void TakeRing(const GeoJsonCoordinates& all, std::size_t ring, std::size_t& point, int polygon) {
    const GeoJsonCoordinates::RingRange& range = all.rings()[ring];
    const auto begin = static_cast<std::ptrdiff_t>(point), end = static_cast<std::ptrdiff_t>(range.end);
    Path& path = drawing.paths.emplace_back();
    path.points.assign(all.points().begin() + begin, all.points().begin() + end);
    if (!all.heights().empty()) path.heights.assign(all.heights().begin() + begin, all.heights().begin() + end);
    path.line = range.line;
    path.polygon = polygon;
    point = range.end;
  }

  void TakePolygons(const OpenObject& object, int height) {
    CheckNesting(object, height);
    std::size_t ring = 0, point = 0;
    for (const std::size_t end : object.coordinates.polygonEnds()) {
      for (; ring < end; ++ring) TakeRing(object.coordinates, ring, point, polygons_);
      ++polygons_;
    }
  }

  // The nesting of lines is that of rings.
  void TakeLines(const OpenObject& object, int height) {
    CheckNesting(object, height);
    constexpr int kNoPolygon = -1;
    std::size_t point = 0;
    for (std::size_t ring = 0; ring < object.coordinates.rings().size(); ++ring)
      TakeRing(object.coordinates, ring, point, kNoPolygon);
  }

  bool isForLines_;
  const Progress& progress_;
  std::vector<OpenObject> objects_;
  int skipped_ = 0;  // depth inside a value that does not matter
  int polygons_ = 0;
};

}  // namespace

Drawing ReadGeoJson(const std::string& text, const std::string& file, Content content) {
  Progress progress;
  GeoJsonHandler handler(file, content, progress);
  nlohmann::json::sax_parse(CountingIterator(text.data(), &progress), CountingIterator(text.data() + text.size(), &progress),
                            &handler);
  return std::move(handler.drawing);
}

}  // namespace zbr::formats
