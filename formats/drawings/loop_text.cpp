// Plain text of loops: a line for each point, x and y separated by blanks or a comma; a blank line between loops; '#' starts a
// comment. Every loop is closed; stating the first point again at the end is allowed. Of lines each is as open as it is given, and
// points may have a third number, the height; regions have none, and take no notice of it.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/types.h>

#include <optional>
#include <string_view>

namespace zbr::formats {
namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";

std::string_view NextToken(std::string_view& rest) {
  const std::size_t start = rest.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return rest = {};
  const std::size_t end = std::min(rest.find_first_of(kBlanks, start), rest.size());
  const std::string_view token = rest.substr(start, end - start);
  rest.remove_prefix(end);
  return token;
}

class LoopTextReader {
 public:
  LoopTextReader(const std::string& file, Content content) : isForLines_(content == Content::kLines) { drawing_.file = file; }

  Drawing Read(std::string_view text) {
    while (!text.empty()) {
      ++line_;
      const std::size_t end = std::min(text.find('\n'), text.size());
      ReadLine(text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::move(drawing_);
  }

 private:
  void ReadLine(std::string_view text) {
    const std::size_t comment = text.find('#');
    std::string line(text.substr(0, comment));
    for (char& c : line) c = c == ',' ? ' ' : c;
    std::string_view rest = line;
    const std::string_view x = NextToken(rest);
    if (x.empty()) {
      inLoop_ = inLoop_ && comment != std::string_view::npos;  // a comment between points does not end the loop
      return;
    }
    const std::string_view y = NextToken(rest);
    if (y.empty()) FailAt(drawing_.file, line_, "a point needs two numbers");
    const std::string_view z = NextToken(rest);
    if (const std::string_view more = NextToken(rest); !more.empty()) FailAt(drawing_.file, line_, "unexpected " + Quoted(more));
    if (!inLoop_) {
      drawing_.paths.emplace_back();
      drawing_.paths.back().closed = !isForLines_;
      drawing_.paths.back().line = line_;
    }
    inLoop_ = true;
    Path& path = drawing_.paths.back();
    if (isForLines_ && !z.empty() && path.heights.empty()) path.heights.resize(path.points.size());  // those before are at 0
    path.points.emplace_back(Coordinate(x), Coordinate(y));
    const double height = z.empty() ? 0.0 : Coordinate(z);
    if (isForLines_ && (!path.heights.empty() || !z.empty())) path.heights.push_back(height);
  }

  double Coordinate(std::string_view token) const {
    const std::optional<double> value = ParseNumber(token);
    if (!value) FailAt(drawing_.file, line_, Quoted(token) + " is not a finite number");
    return *value;
  }

  Drawing drawing_;
  bool isForLines_;
  std::size_t line_ = 0;
  bool inLoop_ = false;
};

}  // namespace

Drawing ReadLoopText(const std::string& text, const std::string& file, Content content) {
  return LoopTextReader(file, content).Read(text);
}

std::string WriteLoopText(const std::vector<Layer>& layers) {
  std::string text;
  for (const Layer& layer : layers) {
    if (layers.size() > 1) text += "# " + layer.name + "\n\n";
    ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) {
      for (const ZBR_PT& p : ring.pt()) {
        AppendNumber(text, p.x());
        text += ' ';
        AppendNumber(text, p.y());
        text += '\n';
      }
      text += '\n';
    });
  }
  return text;
}

std::string WriteTextLines(const std::vector<LineLayer>& layers, bool heights) {
  std::string text;
  for (const LineLayer& layer : layers) {
    if (layers.size() > 1) text += "# " + layer.name + "\n\n";
    for (const SpaceLine& line : layer.lines) {
      for (const ZBR_PT3& p : line.points) {
        AppendNumber(text, p.x());
        text += ' ';
        AppendNumber(text, p.y());
        if (heights) {
          text += ' ';
          AppendNumber(text, p.z());
        }
        text += '\n';
      }
      text += '\n';
    }
  }
  return text;
}

}  // namespace zbr::formats
