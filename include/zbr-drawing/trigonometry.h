// Functions of angles with the same bits on every machine. The C library's differ from one system to the next in their last digit,
// and with it angles, bulges and points on circles in the files that are written.
//
// Sin, Cos, Atan and Atan2 are within one unit in the last place, the others within three; zeros, quarter turns and infinities give
// what the C library's do, NaN and angles without end NaN. Angles are in radians; beyond 2^20 turns are taken off as multiples of
// the nearest double to one.
#pragma once

namespace zbr::drawing {

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kFullTurn = 2 * kPi;
inline constexpr double kDegree = kPi / 180.0;

double Sin(double angle);
double Cos(double angle);
double Tan(double angle);

double Atan(double tangent);       // -pi/2 to pi/2
double Atan2(double y, double x);  // -pi to pi
double Asin(double sine);          // of -1 to 1
double Acos(double cosine);        // of -1 to 1

double Hypot(double x, double y);  // neither overflows nor underflows on the way
double Hypot(double x, double y, double z);

}  // namespace zbr::drawing
