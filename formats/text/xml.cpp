// One pass over the tags. Comments, instructions, character data and the document type are passed over: none of them says anything
// about shapes.
#include "formats/text/xml.h"

#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "formats/text/blanks.h"
#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

using drawing::FailAt;
using drawing::Quoted;

constexpr std::size_t kDeepest = 1000;         // elements within each other
constexpr std::size_t kMostAttributes = 1000;  // of an element: they are gone through one by one
constexpr std::size_t kLongestCharacter = 32;  // from its '&': where no ';' comes, the rest is not searched for one each time

class XmlReader {
 public:
  XmlReader(std::string_view text, const std::string& file, XmlListener& listener)
      : rest_(text), file_(file), listener_(listener) {}

  void Read() {
    for (;;) {
      Skip(std::min(rest_.find('<'), rest_.size()));
      if (rest_.empty()) break;
      ReadMarkup();
    }
    if (!open_.empty()) Fail("the file ends within " + Quoted(open_.back()));
    if (!hasRoot_) FailAt(file_, 1, "is no XML");
  }

 private:
  [[noreturn]] void Fail(const std::string& cause) const { FailAt(file_, line_, cause); }

  void Skip(std::size_t count) {
    line_ += static_cast<std::size_t>(std::count(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(count), '\n'));
    rest_.remove_prefix(count);
  }

  void SkipBlanks() { Skip(std::min(rest_.find_first_not_of(kXmlBlanks), rest_.size())); }

  // Beyond the next of these, which has to come.
  void SkipBeyond(std::string_view end, const char* what) {
    const std::size_t at = rest_.find(end);
    if (at == std::string_view::npos) Fail(std::string("the file ends within ") + what);
    Skip(at + end.size());
  }

  void ReadMarkup() {
    if (rest_.starts_with("<!--")) return SkipBeyond("-->", "a comment");
    if (rest_.starts_with("<![CDATA[")) return SkipBeyond("]]>", "character data");
    if (rest_.starts_with("<?")) return SkipBeyond("?>", "an instruction");
    if (rest_.starts_with("<!")) return SkipDeclaration();
    if (rest_.starts_with("</")) return ReadEnd();
    ReadElement();
  }

  // A document type, with the declarations that it holds in brackets.
  void SkipDeclaration() {
    const std::size_t end = rest_.find_first_of("[>");
    if (end == std::string_view::npos) Fail("the file ends within a declaration");
    const bool holdsOthers = rest_[end] == '[';
    Skip(end + 1);
    if (!holdsOthers) return;
    SkipBeyond("]", "a document type");
    SkipBeyond(">", "a document type");
  }

  std::string_view ReadName() {
    const std::size_t end = std::min(rest_.find_first_of(" \t\r\n/>=<\"'"), rest_.size());
    if (end == 0) Fail("a name expected, but found " + (rest_.empty() ? "the end of the file" : Quoted(rest_.substr(0, 1))));
    const std::string_view name = rest_.substr(0, end);
    Skip(end);
    return name;
  }

  static std::string LocalName(std::string_view name) {
    return std::string(name.substr(name.find(':') == std::string_view::npos ? 0 : name.find(':') + 1));
  }

  void ReadEnd() {
    Skip(2);
    const std::string name = LocalName(ReadName());
    if (open_.empty() || open_.back() != name) Fail(Quoted("</" + name + ">") + " closes nothing");
    open_.pop_back();
    SkipBlanks();
    if (!rest_.starts_with('>')) Fail("'>' expected");
    Skip(1);
    listener_.End();
  }

  void ReadElement() {
    Skip(1);
    if (open_.empty() && hasRoot_) Fail("a second root element");
    if (open_.size() == kDeepest) Fail("elements are nested too deeply");
    hasRoot_ = true;
    element_.attributes.clear();
    element_.line = line_;
    element_.name = LocalName(ReadName());
    for (SkipBlanks(); !rest_.starts_with('>') && !rest_.starts_with("/>"); SkipBlanks()) ReadAttribute();
    const bool isEmpty = rest_.starts_with('/');
    Skip(isEmpty ? 2 : 1);
    listener_.Begin(element_);
    if (!isEmpty) return open_.push_back(element_.name);
    listener_.End();
  }

  void ReadAttribute() {
    if (element_.attributes.size() == kMostAttributes) Fail("too many attributes");
    const std::string name(ReadName());
    SkipBlanks();
    if (!rest_.starts_with('=')) Fail("'=' expected after " + Quoted(name));
    Skip(1);
    SkipBlanks();
    const char quote = rest_.empty() ? '\0' : rest_.front();
    if (quote != '"' && quote != '\'') Fail("the value of " + Quoted(name) + " is not quoted");
    const std::size_t end = rest_.find(quote, 1);
    if (end == std::string_view::npos) Fail("the file ends within the value of " + Quoted(name));
    element_.attributes.emplace_back(name, Resolved(rest_.substr(1, end - 1)));
    Skip(end + 1);
  }

  // With characters in place of what stands for them.
  static std::string Resolved(std::string_view text) {
    std::string resolved;
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&')) {
      resolved += text.substr(0, at);
      text.remove_prefix(at);
      const std::size_t end = text.substr(0, kLongestCharacter).find(';');
      const std::string character = end == std::string_view::npos ? "" : CharacterOf(text.substr(1, end - 1));
      resolved += character.empty() ? "&" : character;
      text.remove_prefix(character.empty() ? 1 : end + 1);
    }
    return resolved.append(text);
  }

  static std::string CharacterOf(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, char>, 5> kNamed = {
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto& [known, character] : kNamed) {
      if (name == known) return {character};
    }
    if (!name.starts_with('#')) return "";
    constexpr int kDecimal = 10, kHexadecimal = 16;
    const bool isHexadecimal = name.starts_with("#x");
    name.remove_prefix(isHexadecimal ? 2 : 1);
    unsigned code = 0;
    const auto [end, error] =
        std::from_chars(name.data(), name.data() + name.size(), code, isHexadecimal ? kHexadecimal : kDecimal);
    std::string character;
    if (error == std::errc() && end == name.data() + name.size()) AppendUtf8(character, code);
    return character;
  }

  std::string_view rest_;
  const std::string& file_;
  XmlListener& listener_;
  std::size_t line_ = 1;
  bool hasRoot_ = false;
  XmlElement element_;  // at hand
  std::vector<std::string> open_;
};

class Tree : public XmlListener {
 public:
  void Begin(const XmlElement& element) override {
    if (!open_.empty()) elements[open_.back()].children.push_back(elements.size());
    open_.push_back(elements.size());
    elements.push_back(element);
  }
  void End() override { open_.pop_back(); }

  std::vector<XmlElement> elements;

 private:
  std::vector<std::size_t> open_;
};

}  // namespace

const std::string& XmlElement::Attribute(std::string_view attribute) const {
  static const std::string kNone;
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return value;
  }
  return kNone;
}

void ReadXml(std::string_view text, const std::string& file, XmlListener& listener) {
  XmlReader(text, file, listener).Read();
}

std::vector<XmlElement> ReadXml(std::string_view text, const std::string& file) {
  Tree tree;
  ReadXml(text, file, tree);
  return std::move(tree.elements);
}

}  // namespace zbr::formats
