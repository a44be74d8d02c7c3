// The file is a list of numbered objects, with a table of the bytes at which they start, and a stream of drawing operations in
// points (1/72 inch), to which the page is scaled once.
#include "formats/pictures/pdf_page.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>

#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

constexpr double kPointsPerMm = 72.0 / 25.4;
constexpr double kLongestSide = 14400.0;  // in units of the page, which are points, or multiples of them for larger pages

// The objects that there are in every file.
enum Object : std::size_t { kCatalog = 1, kPages, kPage, kContent, kFont, kInfo, kFirstLayer };

// Numbers have no exponents in this format; a ten-thousandth of a millimetre is left to no one's eye.
std::string Number(double value) {
  constexpr int kDecimals = 4;
  std::string text = FixedText(value, kDecimals);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

std::string Reference(std::size_t object) {
  return std::to_string(object) + " 0 R";
}

void AppendHex(std::string& text, unsigned value, unsigned digits) {
  for (unsigned i = digits; i-- > 0;) text += "0123456789ABCDEF"[value >> 4 * i & 0xFU];
}

// Of the document's properties: UTF-16 in hexadecimal digits.
std::string WideText(const std::string& utf8) {
  std::string text = "<FEFF";
  for (std::size_t i = 0; i < utf8.size();) {
    const auto [code, length] = CharacterAt(utf8, i);
    i += length;
    constexpr char32_t kPairs = 0x10000;
    if (code >= kPairs) {
      AppendHex(text, 0xD800U + ((code - kPairs) >> 10U), 4);
      AppendHex(text, 0xDC00U + ((code - kPairs) & 0x3FFU), 4);
    } else {
      const bool isBlank = code == '\n' || code == '\r' || code == '\t';
      AppendHex(text, isBlank ? ' ' : code < 0x20 ? '?' : code, 4);
    }
  }
  return text + ">";
}

// What stands for a character that western languages lack: a letter without its marks, or a sign that looks alike; '?' where there
// is none.
unsigned Substitute(char32_t code) {
  constexpr char32_t kFirst = 0x100;
  constexpr std::string_view kLetters =  // up to the long s
      "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIiIiJjKkkLlLlLlLlLlNnNnNnnNnOoOoOoOoRrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUuWwYyYZzZ"
      "zZzs";
  static_assert(kLetters.size() == 128);
  constexpr std::pair<char32_t, char> kSigns[] = {{0x218, 'S'},   {0x219, 's'},  {0x21A, 'T'},  {0x21B, 't'},    {0x2002, ' '},
                                                  {0x2003, ' '},  {0x2009, ' '}, {0x2010, '-'}, {0x2011, '-'},   {0x202F, ' '},
                                                  {0x2032, '\''}, {0x2033, '"'}, {0x2212, '-'}, {0x2300, '\xD8'}};
  if (code >= kFirst && code < kFirst + kLetters.size()) return static_cast<unsigned char>(kLetters[code - kFirst]);
  const auto* const found =
      std::find_if(std::begin(kSigns), std::end(kSigns), [&](const auto& sign) { return sign.first == code; });
  return found != std::end(kSigns) ? static_cast<unsigned char>(found->second) : '?';
}

// The place of a character in the encoding of western languages, or of what stands for it.
unsigned WesternCode(char32_t code) {
  constexpr char32_t kAbove127[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                      0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  if ((code >= 0x20 && code < 0x7F) || (code >= 0xA0 && code <= 0xFF)) return code;
  const auto* const found = std::find(std::begin(kAbove127), std::end(kAbove127), code);
  return code != 0 && found != std::end(kAbove127) ? 0x80U + static_cast<unsigned>(found - std::begin(kAbove127))
                                                   : Substitute(code);
}

}  // namespace

PdfPage::PdfPage(double width, double height, const std::string& title, std::vector<PdfLayer> layers)
    : width_(width), height_(height), title_(title), layers_(std::move(layers)) {
  SetRoundEnds(false);
  content_ += "1 j\n";
}

void PdfPage::Add(double value) {
  content_ += Number(value);
  content_ += ' ';
}

void PdfPage::Add(const ZBR_PT& p, const char* operation) {
  Add(p.x());
  Add(p.y());
  content_ += operation;
}

void PdfPage::BeginLayer(std::size_t layer) {
  content_ += "/OC /L" + std::to_string(layer) + " BDC q\n";
}

void PdfPage::EndLayer() {
  content_ += "Q EMC\n";
}

void PdfPage::SetWidth(double width) {
  Add(width);
  content_ += "w\n";
}

void PdfPage::SetRoundEnds(bool round) {
  content_ += round ? "1 J\n" : "0 J\n";
}

void PdfPage::SetDashes(double dash, double gap) {
  content_ += '[';
  if (dash > 0) {
    Add(dash);
    Add(gap);
  }
  content_ += "] 0 d\n";
}

void PdfPage::SetDashes(const std::array<double, 4>& pattern) {
  content_ += '[';
  for (const double part : pattern) Add(part);
  content_ += "] 0 d\n";
}

void PdfPage::SetShade(const std::array<int, 3>& rgb) {
  for (const char* operation : {"rg\n", "RG\n"}) {
    for (const int value : rgb) Add(value / 255.0);
    content_ += operation;
  }
}

// Pieces of an eighth of a turn.
void PdfPage::ArcTo(const Curve& arc) {
  const double turn = arc.t1 - arc.t0;
  const double pieces = std::max(std::ceil(std::fabs(turn) / (kPi / 4) - 1e-9), 1.0);
  const double reach = 4.0 / 3.0 * Tan(turn / pieces / 4.0);
  const auto tangent = [&](double t) { return arc.v * (Cos(t) * reach) - arc.u * (Sin(t) * reach); };
  for (double k = 0; k < pieces; ++k) {
    const double t0 = arc.t0 + turn * (k / pieces), t1 = arc.t0 + turn * ((k + 1) / pieces);
    Add(arc.At(t0) + tangent(t0), "");
    Add(arc.At(t1) - tangent(t1), "");
    Add(arc.At(t1), "c\n");
  }
}

void PdfPage::Outline(const Path& path) {
  auto curve = path.curves.begin();
  bool isArc = false;
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    if (!isArc) Add(path.points[i], i == 0 ? "m\n" : "l\n");
    isArc = curve != path.curves.end() && curve->at == i;
    if (isArc) ArcTo(*curve++);
  }
  if (path.closed) content_ += "h\n";
}

void PdfPage::Stroke(const Path& path) {
  if (path.points.empty()) return;
  Outline(path);
  content_ += "S\n";
}

void PdfPage::Fill(const std::vector<Path>& paths) {
  for (const Path& path : paths) Outline(path);
  if (!paths.empty()) content_ += "B*\n";
}

void PdfPage::StrokeCircle(const ZBR_PT& centre, double radius) {
  Path circle;
  Curve& whole = circle.curves.emplace_back();
  whole.centre = centre;
  whole.u.Set(radius, 0);
  whole.v.Set(0, radius);
  whole.t1 = kFullTurn;
  circle.points = {whole.At(0)};
  circle.closed = true;
  Stroke(circle);
}

void PdfPage::Text(const ZBR_PT& at, double size, const std::string& text) {
  content_ += "BT /F0 ";
  Add(size);
  content_ += "Tf ";
  Add(at, "Td <");
  for (std::size_t i = 0; i < text.size();) {
    const auto [code, length] = CharacterAt(text, i);
    i += length;
    AppendHex(content_, WesternCode(code), 2);
  }
  content_ += "> Tj ET\n";
}

std::string PdfPage::Take() {
  const double unit = std::max(std::ceil(std::max(width_, height_) * kPointsPerMm / kLongestSide), 1.0);
  const double scale = kPointsPerMm / unit;
  const std::string box = "[0 0 " + Number(width_ * scale) + " " + Number(height_ * scale) + "]";
  std::string all, hidden, names;
  for (std::size_t k = 0; k < layers_.size(); ++k) {
    const std::string layer = Reference(kFirstLayer + k) + " ";
    all += layer;
    if (!layers_[k].isShown) hidden += layer;
    names += "/L" + std::to_string(k) + " " + layer;
  }
  const std::string factor = FixedText(scale, 9);
  const std::string stream = factor + " 0 0 " + factor + " 0 0 cm\n" + content_;
  std::vector<std::string> objects = {"<< /Type /Catalog /Pages " + Reference(kPages) + " /OCProperties << /OCGs [" + all +
                                          "] /D << /Order [" + all + "] /OFF [" + hidden + "] >> >> >>",
                                      "<< /Type /Pages /Kids [" + Reference(kPage) + "] /Count 1 >>",
                                      "<< /Type /Page /Parent " + Reference(kPages) + " /MediaBox " + box + " /UserUnit " +
                                          Number(unit) + " /Contents " + Reference(kContent) + " /Resources << /Font << /F0 " +
                                          Reference(kFont) + " >> /Properties << " + names + ">> >> >>",
                                      "<< /Length " + std::to_string(stream.size()) + " >>\nstream\n" + stream + "endstream",
                                      "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
                                      "<< /Title " + WideText(title_) + " >>"};
  for (const PdfLayer& layer : layers_) objects.push_back("<< /Type /OCG /Name " + WideText(layer.name) + " >>");

  std::string file = "%PDF-1.6\n%\xE2\xE3\xCF\xD3\n";  // bytes that no text has, so that nothing converts the ends of lines
  std::string table;
  for (std::size_t k = 0; k < objects.size(); ++k) {
    const std::string start = std::to_string(file.size());
    table += std::string(10 - std::min<std::size_t>(start.size(), 10), '0') + start + " 00000 n \n";
    file += std::to_string(k + 1) + " 0 obj\n" + objects[k] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1), start = std::to_string(file.size());
  file += "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer\n<< /Size " + size + " /Root " + Reference(kCatalog) +
          " /Info " + Reference(kInfo) + " >>\nstartxref\n" + start + "\n%%EOF\n";
  return file;
}

}  // namespace zbr::formats
