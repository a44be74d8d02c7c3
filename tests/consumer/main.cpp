// Combines two squares with the installed library; exits with 0 when every area is right.
#include <cmath>
#include <cstdio>

#include "square.h"

int main() {
  std::vector<std::shared_ptr<ZBR_LOOP>> a{MakeSquare(0, 0, 3), MakeSquare(1, 1, 1)};  // the small one becomes a hole
  std::vector<std::shared_ptr<ZBR_LOOP>> b{MakeSquare(2, 1, 2)};
  zbrMakeLoopTree(a);
  zbrMakeLoopTree(b);

  ZBR_BOOLEAN_OPE ops[] = {ZBR_BOOL_A_MINUS_B, ZBR_BOOL_B_MINUS_A, ZBR_BOOL_OR, ZBR_BOOL_AND, ZBR_BOOL_XOR};
  const double expected[] = {6, 2, 10, 2, 8};
  std::vector<std::shared_ptr<ZBR_LOOP>> results[5];
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(a, b, ops, results, 5, crosses);

  int wrong = 0;
  for (int k = 0; k < 5; ++k) {
    const double area = ZBR_LOOP::get_area(results[k]);
    if (std::fabs(area - expected[k]) > 1e-9) ++wrong;
    std::printf("operation %d: area %g, expected %g\n", static_cast<int>(ops[k]), area, expected[k]);
  }
  return wrong == 0 ? 0 : 1;
}
