// Makes the example models: a bearing housing, in millimetres, a house of several bodies, in metres, two of bodies with round
// surfaces that pass through each other, and bodies that stand on a plate.
//
//   zbr-make-models FOLDER     writes housing.obj, house.obj, cover.obj, cone.obj and assembly.stl
//
// The files are OBJ, the plainest of the formats that every modelling program reads. Numbers have fixed decimals, so the bytes are
// the same on every machine. The last one is binary STL, which holds numbers in single precision: turned, its bodies no longer
// quite stand on each other.

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>

#include "models/models.h"
#include "write_file.h"

namespace {

std::string Number(double value) {
  const double rounded = std::round(value * 1e6) / 1e6 + 0.0;  // adding zero turns -0 into 0
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", rounded);
  std::string digits = buffer;
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  return digits;
}

// Points are counted from 1.
std::string Obj(const std::string& title, const zbr::drawing::Mesh& mesh) {
  std::string text = "# " + title + "\n";
  for (const ZBR_PT3& p : mesh.points) text += "v " + Number(p.x()) + " " + Number(p.y()) + " " + Number(p.z()) + "\n";
  for (const auto& t : mesh.triangles)
    text += "f " + std::to_string(t[0] + 1) + " " + std::to_string(t[1] + 1) + " " + std::to_string(t[2] + 1) + "\n";
  return text;
}

// Normals are left 0: readers take them from the vertices.
std::string Stl(const std::string& title, const zbr::drawing::Mesh& mesh) {
  constexpr std::size_t kTitle = 80;
  std::string bytes = title;
  bytes.resize(kTitle);
  const auto add = [&](std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xffU);
  };
  add(static_cast<std::uint32_t>(mesh.triangles.size()));
  for (const auto& t : mesh.triangles) {
    for (int i = 0; i < 3; ++i) add(0);
    for (const std::uint32_t v : t) {
      const ZBR_PT3& p = mesh.points[v];
      for (const double value : {p.x(), p.y(), p.z()}) add(std::bit_cast<std::uint32_t>(static_cast<float>(value)));
    }
    bytes.append(2, 0);
  }
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: zbr-make-models FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  zbr::drawing::Mesh assembly = example::Assembly();
  example::Turn(assembly, {0.3, 0.5, 0.8}, 0.137);
  return WriteFile(folder + "housing.obj", Obj("Bearing housing, millimetres", example::Housing())) &&
                 WriteFile(folder + "house.obj", Obj("House, metres", example::House())) &&
                 WriteFile(folder + "cover.obj", Obj("Cover with fillets, millimetres", example::Cover())) &&
                 WriteFile(folder + "cone.obj", Obj("Cone through a sphere", example::ConeThroughSphere())) &&
                 WriteFile(folder + "assembly.stl", Stl("Boxes and pegs on a plate, millimetres", assembly))
             ? 0
             : 2;
}
