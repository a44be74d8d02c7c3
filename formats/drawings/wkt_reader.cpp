// Reads well-known text: any number of geometries, usually one a line. Polygons, multi-polygons and collections of them are taken;
// points are left out and counted, and so are lines unless they are asked for. Z values are kept for lines alone, M values dropped.
// An "SRID=...;" before a geometry is allowed.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cctype>
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
    std::string kind = Word();
    // "POLYGONZ" and "POLYGON Z" mean the same.
    hasHeights_ = false;
    while (kind.size() > 5 && (kind.back() == 'Z' || kind.back() == 'M')) {
      hasHeights_ = isForLines_ && kind.back() == 'Z';
      kind.pop_back();
    }
    static constexpr std::array<std::string_view, 7> kKinds = {"POLYGON",    "MULTIPOLYGON", "GEOMETRYCOLLECTION", "POINT",
                                                               "MULTIPOINT", "LINESTRING",   "MULTILINESTRING"};
    if (std::find(kKinds.begin(), kKinds.end(), kind) == kKinds.end()) Fail("a geometry");
    Advance();
    const std::string dimension = Word();
    if (dimension == "Z" || dimension == "M" || dimension == "ZM") Advance();
    if (isForLines_ && dimension.starts_with('Z')) hasHeights_ = true;
    if (Word() == "EMPTY") return Advance();
    if (kind == "POLYGON") return ReadPolygon();
    if (kind == "MULTIPOLYGON") return ReadList([&] { ReadPolygon(); });
    if (kind == "GEOMETRYCOLLECTION") return ReadList([&] { ReadGeometry(depth + 1); });
    if (isForLines_ && kind == "LINESTRING") return ReadLine();
    if (isForLines_ && kind == "MULTILINESTRING") return ReadList([&] { ReadLine(); });
    drawing_.LeaveOut(kind, line_, kind.ends_with("LINESTRING"));
    SkipParentheses();
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

  void ReadLine() {
    if (Word() == "EMPTY") return Advance();
    Path line;
    line.line = line_;
    ReadList([&] { ReadPoint(line); });
    drawing_.paths.push_back(std::move(line));
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
