// What commands report, for programs.
#pragma once

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <nlohmann/json.hpp>

#include <string>

namespace tool {

using Json = nlohmann::ordered_json;

// An object as text: a line for each member, and for each element of lists of objects. Numbers that are not finite become null.
std::string TextOf(const Json& object);

Json JsonOf(const ZBR_PT& p);
Json JsonOf(const ZBR_PT3& p);

}  // namespace tool
