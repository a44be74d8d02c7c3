// XML as a tree of elements, or one element after the other. Text between them is dropped.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zbr::formats {

struct XmlElement {
  std::string name;                                             // without the prefix of a namespace
  std::vector<std::pair<std::string, std::string>> attributes;  // by their names as written
  std::size_t line = 0;
  std::vector<std::size_t> children;  // places in the list of all elements

  // What an attribute says; empty where there is none.
  const std::string& Attribute(std::string_view attribute) const;
};

// Told of each element where it starts and where it ends: documents of millions of elements need not be held as a tree.
class XmlListener {
 public:
  XmlListener() = default;
  XmlListener(const XmlListener&) = delete;
  XmlListener& operator=(const XmlListener&) = delete;
  virtual ~XmlListener() = default;
  virtual void Begin(const XmlElement& element) = 0;  // whose children are not known yet
  virtual void End() = 0;                             // of the one that began last among those that have not ended
};
void ReadXml(std::string_view text, const std::string& file, XmlListener& listener);

// All elements of a document, each before its children, the first one the root. Fails with "file:line: cause" where elements do not
// close or attributes have no value. Names that a document type declares for texts are not known: what uses them keeps their names.
std::vector<XmlElement> ReadXml(std::string_view text, const std::string& file);

}  // namespace zbr::formats
