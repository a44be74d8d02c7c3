// One document of a 3MF package: objects that are meshes or made up of others, and what is to be built of them.
#pragma once

#include <zbr/spatial.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "formats/meshes/place.h"

namespace zbr::formats {

// An object in its place. `part` names the document it is in, where that is another one.
struct ThreeMfItem {
  std::string part;
  long long id = 0;
  Place place;
  std::size_t line = 0;
};

struct ThreeMfObject {
  bool isShape = true;  // else a support of one, or what is not to be built with it
  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> triangles;
  std::vector<ThreeMfItem> components;  // of the same document those before it only, so that none holds itself
};

struct ThreeMfPart {
  double millimetres = 1.0;            // in a unit
  std::vector<ThreeMfObject> objects;  // in the order of the document
  std::map<long long, std::size_t> objectById;
  std::vector<ThreeMfItem> items;
};

// Fails with "file:line: cause" for what is malformed, and where the document requires an extension that would change the shapes.
ThreeMfPart ReadThreeMfPart(std::string_view text, const std::string& file);

}  // namespace zbr::formats
