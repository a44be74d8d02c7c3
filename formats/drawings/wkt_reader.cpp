// Reads well-known text: any number of geometries, usually one a line. Polygons, those with arcs (CURVEPOLYGON, MULTISURFACE) too,
// multi-polygons and collections of them are taken; points are left out and counted, and so are lines unless they are asked for.
// Z values are kept for lines alone, M values dropped. An "SRID=...;" before a geometry is allowed.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/trigonometry.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <optional>
#include <string_view>

namespace zbr::formats {
namespace {

constexpr int kDeepestCollection = 64;

class WktReader {
 public:
  WktReader(std::string_view text, const std::string& file, Content content)
      : text_(text), isForLines_(content == Content::kLines) {
    drawing_.file = file;
    Advance();
  }

  Drawing Read() {
    while (!token_.empty()) {
      ReadGeometry(0);
      while (token_ == ";") Advance();
    }
    return std::move(drawing_);
  }

 private:
  // Moves to the next token: a word or number, or one of ( ) , ; =. It is empty at the end of the text.
  void Advance() {
    SkipBlanks();
    std::size_t length = text_.empty() ? 0 : 1;
    if (length > 0 && !IsPunctuation(text_.front())) {
      while (length < text_.size() && !IsPunctuation(text_[length]) && !IsBlank(text_[length])) ++length;
    }
    token_ = text_.substr(0, length);
    text_.remove_prefix(length);
  }

  void SkipBlanks() {
    std::size_t count = 0;
    for (; count < text_.size() && IsBlank(text_[count]); ++count) line_ += text_[count] == '\n' ? 1 : 0;
    text_.remove_prefix(count);
  }

  static bool IsBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
  static bool IsPunctuation(char c) { return c == '(' || c == ')' || c == ',' || c == ';' || c == '='; }

  [[noreturn]] void Fail(const std::string& expected) const {
    FailAt(drawing_.file, line_, expected + " expected, but found " + (token_.empty() ? "the end of the file" : Quoted(token_)));
  }

  void Expect(std::string_view token) {
    if (token_ != token) Fail(Quoted(token));
    Advance();
  }

  std::string Word() const {
    std::string word(token_);
    for (char& c : word) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return word;
  }

  void ReadGeometry(int depth) {
    if (depth > kDeepestCollection) FailAt(drawing_.file, line_, "collections are nested too deeply");
    if (Word() == "SRID") SkipReference();
    const std::string kind = ReadKind();
    if (Word() == "EMPTY") return Advance();
    if (kind == "POLYGON") return ReadPolygon();
    if (kind == "CURVEPOLYGON") return ReadCurvePolygon();
    if (kind == "MULTIPOLYGON") return ReadList([&] { ReadPolygon(); });
    if (kind == "MULTISURFACE") return ReadList([&] { token_ == "(" ? ReadPolygon() : ReadGeometry(depth + 1); });
    if (kind == "GEOMETRYCOLLECTION") return ReadList([&] { ReadGeometry(depth + 1); });
    const bool isLine = kind != "POINT" && kind != "MULTIPOINT";
    if (isForLines_ && (kind == "MULTILINESTRING" || kind == "MULTICURVE"))
      return ReadList([&] { ReadLine(token_ == "(" ? "LINESTRING" : ReadPartKind()); });
    if (isForLines_ && isLine) return ReadLine(kind);
    drawing_.LeaveOut(kind, line_, isLine);
    SkipParentheses();
  }

  // What a geometry is, and whether heights are to be kept. "POLYGONZ" and "POLYGON Z" mean the same.
  std::string ReadKind() {
    std::string kind = Word();
    hasHeights_ = false;
    while (kind.size() > 5 && (kind.back() == 'Z' || kind.back() == 'M')) {
      hasHeights_ = isForLines_ && kind.back() == 'Z';
      kind.pop_back();
    }
    static constexpr std::array<std::string_view, 12> kKinds = {
        "POLYGON",      "MULTIPOLYGON",    "GEOMETRYCOLLECTION", "POINT",      "MULTIPOINT",     "LINESTRING",
        "CURVEPOLYGON", "MULTILINESTRING", "MULTISURFACE",       "MULTICURVE", "CIRCULARSTRING", "COMPOUNDCURVE"};
    if (std::find(kKinds.begin(), kKinds.end(), kind) == kKinds.end()) Fail("a geometry");
    Advance();
    const std::string dimension = Word();
    if (dimension == "Z" || dimension == "M" || dimension == "ZM") Advance();
    if (isForLines_ && dimension.starts_with('Z')) hasHeights_ = true;
    return kind;
  }

  // Parts of what has heights have them, said again or not.
  std::string ReadPartKind() {
    const bool haveAll = hasHeights_;
    std::string kind = ReadKind();
    hasHeights_ = hasHeights_ || haveAll;
    return kind;
  }

  void SkipReference() {
    Advance();
    Expect("=");
    Advance();
    Expect(";");
  }

  template <class Item>
  void ReadList(Item item) {
    Expect("(");
    item();
    while (token_ == ",") {
      Advance();
      item();
    }
    Expect(")");
  }

  void ReadPolygon() {
    if (Word() == "EMPTY") return Advance();
    const int polygon = polygons_++;
    ReadList([&] {
      Path ring;
      ring.line = line_;
      ring.polygon = polygon;
      ReadList([&] { ReadPoint(ring); });
      drawing_.paths.push_back(std::move(ring));
    });
  }

  void ReadCurvePolygon() {
    const int polygon = polygons_++;
    ReadList([&] {
      Path ring;
      ring.line = line_;
      ring.polygon = polygon;
      ReadCurve(token_ == "(" ? "LINESTRING" : ReadPartKind(), ring);
      drawing_.paths.push_back(std::move(ring));
    });
  }

  void ReadLine(const std::string& kind) {
    if (Word() == "EMPTY") return Advance();
    Path line;
    line.line = line_;
    ReadCurve(kind, line);
    drawing_.paths.push_back(std::move(line));
  }

  // Appends a curve of this kind to the path, whose last point its first one repeats.
  void ReadCurve(const std::string& kind, Path& path) {
    if (kind == "COMPOUNDCURVE") return ReadList([&] { ReadPart(token_ == "(" ? "LINESTRING" : ReadPartKind(), path); });
    ReadPart(kind, path);
  }

  void ReadPart(const std::string& kind, Path& path) {
    if (kind != "LINESTRING" && kind != "CIRCULARSTRING") Fail("a line or arcs");
    Path part;
    ReadList([&] { ReadPoint(part); });
    if (kind == "CIRCULARSTRING" && part.points.size() % 2 == 0) Fail("an odd number of points");
    const bool goesOn = !path.points.empty() && !part.points.empty();
    if (goesOn && path.points.back().Distance(part.points.front()) > 0)
      FailAt(drawing_.file, line_, "the parts of a compound curve do not meet");
    const bool haveHeights = !path.heights.empty() || !part.heights.empty();  // those that have none lie at 0
    if (haveHeights) path.heights.resize(path.points.size());
    if (haveHeights) part.heights.resize(part.points.size());
    if (goesOn) path.points.pop_back();
    if (goesOn && haveHeights) path.heights.pop_back();
    for (std::size_t i = 0; i < part.points.size(); ++i) {
      const bool isMiddle = kind == "CIRCULARSTRING" && i % 2 == 1;
      if (isMiddle && AddArc(part.points[i - 1], part.points[i], part.points[i + 1], path)) continue;
      path.points.push_back(part.points[i]);
      if (haveHeights) path.heights.push_back(part.heights[i]);
    }
  }

  // From the last point of the path through the middle to the end; all around where both are the same and the middle is opposite.
  // False where the three lie on a line, or so nearly that the arc rises by less from it than coordinates tell.
  static bool AddArc(const ZBR_PT& from, const ZBR_PT& middle, const ZBR_PT& to, Path& path) {
    constexpr double kFlat = 1e-9;
    const ZBR_PT a = middle - from, b = to - from;
    const double turn = a.OuterProduct(b);
    const bool isWhole = AreIdentical(from, to);
    if (!isWhole && std::abs(turn) <= kFlat * a.Length() * b.Length()) return false;
    const ZBR_PT centre =
        isWhole ? a * 0.5
                : ZBR_PT(b.y() * a.Length2() - a.y() * b.Length2(), a.x() * b.Length2() - b.x() * a.Length2()) * (0.5 / turn);
    if (!std::isfinite(centre.x()) || !std::isfinite(centre.y()) || (isWhole && a.Length2() == 0)) return false;
    Curve arc;
    arc.at = path.points.size() - 1;
    arc.centre = from + centre;
    arc.u = centre * -1.0;
    arc.v = ZBR_PT(-arc.u.y(), arc.u.x()) * (turn < 0 ? -1.0 : 1.0);
    const ZBR_PT end = b - centre;
    const double angle = Atan2(end.InnerProduct(arc.v), end.InnerProduct(arc.u));
    arc.t1 = isWhole || angle <= 0 ? angle + kFullTurn : angle;
    path.curves.push_back(arc);
    return true;
  }

  void ReadPoint(Path& path) {
    const double x = ReadNumber();
    const double y = ReadNumber();
    path.points.emplace_back(x, y);
    double z = 0;
    for (int more = 0; more < 2 && token_ != "," && token_ != ")"; ++more) {
      const double value = ReadNumber();
      if (more == 0) z = value;
    }
    if (hasHeights_) path.heights.push_back(z);
  }

  double ReadNumber() {
    const std::optional<double> value = ParseNumber(token_);
    if (!value) Fail("a finite number");
    Advance();
    return *value;
  }

  void SkipParentheses() {
    Expect("(");
    for (int open = 1; open > 0; Advance()) {
      if (token_.empty()) Fail("')'");
      open += token_ == "(" ? 1 : (token_ == ")" ? -1 : 0);
    }
  }

  std::string_view text_;  // behind the token
  std::string_view token_;
  std::size_t line_ = 1;
  int polygons_ = 0;
  bool isForLines_;
  bool hasHeights_ = false;  // of the geometry being read
  Drawing drawing_;
};

}  // namespace

Drawing ReadWkt(const std::string& text, const std::string& file, Content content) {
  return WktReader(text, file, content).Read();
}

}  // namespace zbr::formats
