#pragma once

#include <memory>

#include <zbr/zbr.h>

// A square with its lower left corner at (x, y).
std::shared_ptr<ZBR_LOOP> MakeSquare(double x, double y, double side);
