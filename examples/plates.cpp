// A first program with the library: cuts the shape of one plate out of another.
//
// A region is a list of closed loops, in any order and direction; zbrMakeLoopTree tells outer loops from holes. Operations take two
// regions and leave a third.

#include <zbr/zbr.h>

#include <cstdio>
#include <memory>
#include <vector>

using Region = std::vector<std::shared_ptr<ZBR_LOOP>>;

static std::shared_ptr<ZBR_LOOP> Rectangle(double x0, double y0, double x1, double y1) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt() = {ZBR_PT(x0, y0), ZBR_PT(x1, y0), ZBR_PT(x1, y1), ZBR_PT(x0, y1)};
  return loop;
}

static void Print(const char* name, const Region& region) {
  std::printf("%s: area %g\n", name, ZBR_LOOP::get_area(region));
  for (const auto& outer : region) {
    std::printf("  outer loop of %zu points, %zu holes\n", outer->pt().size(), outer->children().size());
  }
}

int main() {
  Region plate = {Rectangle(0, 0, 100, 60), Rectangle(10, 10, 40, 50)};
  Region cutter = {Rectangle(30, 20, 120, 40)};
  zbrMakeLoopTree(plate);
  zbrMakeLoopTree(cutter);
  Print("plate", plate);

  // Several operations in one call share the search for crossings.
  ZBR_BOOLEAN_OPE operations[] = {ZBR_BOOL_A_MINUS_B, ZBR_BOOL_AND};
  Region results[2];
  std::vector<ZBR_CROSS> crossings;
  zbrBooleanLoops(plate, cutter, operations, results, 2, crossings);
  Print("plate without cutter", results[0]);
  Print("common to both", results[1]);
  std::printf("boundaries cross %zu times\n", crossings.size());

  const ZBR_LOOP_LOCATOR locator(results[0]);
  const bool inside = locator.IsInside(ZBR_PT(5, 5)) == ZBR_PI_IN;
  std::printf("(5, 5) is %s\n", inside ? "inside" : "outside");
}
