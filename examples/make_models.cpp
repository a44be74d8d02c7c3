// Makes the example models: a bearing housing, in millimetres, a house of several bodies, in metres, and two of bodies with round
// surfaces that pass through each other.
//
//   zbr-make-models FOLDER     writes housing.obj, house.obj, cover.obj and cone.obj
//
// The files are OBJ, the plainest of the formats that every modelling program reads. Numbers have fixed decimals, so the bytes are
// the same on every machine.

#include <cmath>
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

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: zbr-make-models FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  return WriteFile(folder + "housing.obj", Obj("Bearing housing, millimetres", example::Housing())) &&
                 WriteFile(folder + "house.obj", Obj("House, metres", example::House())) &&
                 WriteFile(folder + "cover.obj", Obj("Cover with fillets, millimetres", example::Cover())) &&
                 WriteFile(folder + "cone.obj", Obj("Cone through a sphere", example::ConeThroughSphere()))
             ? 0
             : 2;
}
