// Gauss's rule of twelve points, exact for polynomials up to degree 23.
#pragma once

#include <array>
#include <cstddef>

namespace zbr::drawing {

// Calls visit with the places in [a, b] and their weights.
template <class Visit>
void ForEachNode(double a, double b, Visit visit) {
  constexpr std::array<double, 6> kNodes = {0.1252334085114689, 0.3678314989981802, 0.5873179542866175,
                                            0.7699026741943047, 0.9041172563704749, 0.9815606342467192};
  constexpr std::array<double, 6> kWeights = {0.2491470458134028, 0.2334925365383548, 0.2031674267230659,
                                              0.1600783285433462, 0.1069393259953184, 0.0471753363865118};
  const double middle = (a + b) / 2, half = (b - a) / 2;
  for (std::size_t i = 0; i < kNodes.size(); ++i) {
    visit(middle - half * kNodes[i], kWeights[i] * half);
    visit(middle + half * kNodes[i], kWeights[i] * half);
  }
}

// The integral of f(t) over [a, b].
template <class Function>
double Integral(double a, double b, const Function& f) {
  double sum = 0.0;
  ForEachNode(a, b, [&](double t, double weight) { sum += f(t) * weight; });
  return sum;
}

}  // namespace zbr::drawing
