// zbr bool: combinations of drawings.

#include <zbr-drawing/region.h>
#include <zbr-formats/files.h>
#include <zbr-formats/picture.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/commands/stats.h"
#include "app/io/output_files.h"
#include "app/libraries.h"

namespace tool {
namespace {

struct Operation {
  const char* name;
  const char* caption;
  const char* captionOfMany;  // three and more
  ZBR_BOOLEAN_OPE code;
};

constexpr std::array<Operation, 5> kOperations = {{{"union", "A ∪ B", "A ∪ B ∪ …", ZBR_BOOL_OR},
                                                   {"intersection", "A ∩ B", "A ∩ B ∩ …", ZBR_BOOL_AND},
                                                   {"a-b", "A − B", "A − (B ∪ …)", ZBR_BOOL_A_MINUS_B},
                                                   {"b-a", "B − A", "(B ∪ …) − A", ZBR_BOOL_B_MINUS_A},
                                                   {"xor", "A ⊕ B", "A ⊕ B ⊕ …", ZBR_BOOL_XOR}}};

std::vector<Operation> FindOperations(const std::vector<std::string>& names) {
  std::vector<Operation> operations;
  for (const std::string& name : names) {
    const auto found = std::find_if(kOperations.begin(), kOperations.end(), [&](const Operation& o) { return name == o.name; });
    if (found == kOperations.end())
      throw Failure("'" + name + "' is no operation; there are union, intersection, a-b, b-a and xor");
    operations.push_back(*found);
  }
  return operations;
}

std::vector<std::string> NamesOf(const std::vector<Operation>& operations) {
  std::vector<std::string> names;
  for (const Operation& operation : operations) names.emplace_back(operation.name);
  return names;
}

// What the run works with, filled stage by stage.
struct Run {
  std::vector<Operation> operations;
  std::vector<OutputPlan> plans;
  Loaded loaded;
  std::vector<Region> regions;
  std::vector<Layer> operands;  // where they are shown
  std::vector<Layer> results;
};

// Of two drawings: all operations share one search for crossings, on the rings as they are.
std::vector<ZBR_REGION> CombineTwo(const std::vector<Operation>& operations, const Region& a, const Region& b) {
  std::vector<ZBR_BOOLEAN_OPE> codes;
  for (const Operation& operation : operations) codes.push_back(operation.code);
  std::vector<ZBR_REGION> results(codes.size());
  ZBR_REGION_OPTIONS options;
  options.fill_a = a.fill;
  options.fill_b = b.fill;
  options.canonical = true;
  zbrCombineRegions(a.rings.view(), b.rings.view(), codes.data(), results.data(), static_cast<int>(codes.size()), options);
  return results;
}

ZBR_REGION_OPTIONS Canonical() {
  ZBR_REGION_OPTIONS options;
  options.canonical = true;
  return options;
}

ZBR_REGION Covered(const std::vector<ZBR_REGION>& shapes, std::size_t from, int times) {
  std::vector<ZBR_REGION_VIEW> views;
  for (std::size_t i = from; i < shapes.size(); ++i) views.push_back(shapes[i].view());
  ZBR_REGION result;
  zbrCoverRegions(views.data(), views.size(), times, result, Canonical());
  return result;
}

// The rings of valid regions lie around a place as often as regions cover it.
ZBR_REGION CoveredOddly(const std::vector<ZBR_REGION>& shapes) {
  ZBR_REGION rings;
  for (const ZBR_REGION& shape : shapes) {
    for (std::size_t r = 0; r < shape.ring_count(); ++r) {
      const auto first = static_cast<std::size_t>(shape.ring_offsets()[r]);
      rings.AddRing(shape.points().data() + first, static_cast<std::size_t>(shape.ring_offsets()[r + 1]) - first);
    }
  }
  ZBR_REGION result;
  zbrMakeValidRegion(rings.view(), result, Canonical());
  return result;
}

// Of any number: union and intersection are what one and what all of them cover, the differences those of the first and the union
// of the others.
ZBR_REGION CombineMany(const Operation& operation, const std::vector<ZBR_REGION>& shapes) {
  switch (operation.code) {
    case ZBR_BOOL_OR:
      return Covered(shapes, 0, 1);
    case ZBR_BOOL_AND:
      return Covered(shapes, 0, static_cast<int>(shapes.size()));
    case ZBR_BOOL_XOR:
      return CoveredOddly(shapes);
    default:
      return zbrCombineRegions(shapes[0], Covered(shapes, 1, 1), operation.code, Canonical());
  }
}

std::vector<ZBR_REGION> Combine(const Run& run) {
  if (run.regions.size() == 2) return CombineTwo(run.operations, run.regions[0], run.regions[1]);
  std::vector<ZBR_REGION> shapes, results;
  for (const Region& region : run.regions) shapes.push_back(ValidShape(region));
  for (const Operation& operation : run.operations) results.push_back(CombineMany(operation, shapes));
  return results;
}

std::string PictureOf(const Run& run, const std::vector<std::size_t>& results) {
  Picture picture;
  picture.operands = run.operands;
  const std::size_t count = run.operands.size();
  picture.title = run.operands[0].name;
  if (count == 2) picture.title += " and " + run.operands[1].name;
  if (count > 2) picture.title += " and " + std::to_string(count - 1) + " others";
  picture.units = run.loaded.units;
  for (const std::size_t i : results)
    picture.panels.push_back({count > 2 ? run.operations[i].captionOfMany : run.operations[i].caption, run.results[i]});
  return WriteSvg(picture);
}

void WriteOutputs(const Run& run) {
  OutputFiles files;
  for (const OutputPlan& plan : run.plans) {
    if (plan.format == Format::kSvg) {
      files.Add(plan.file, PictureOf(run, plan.results));
      continue;
    }
    std::vector<Layer> layers;
    for (const std::size_t i : plan.results) layers.push_back(run.results[i]);
    files.Add(plan.file, WriteDrawing(plan.format, layers, run.loaded.units));
  }
  files.Commit();
}

}  // namespace

int RunBool(const BoolOptions& options) {
  Progress progress;
  Run run;
  run.operations = FindOperations(options.operations);
  const std::vector<std::string> names = NamesOf(run.operations);
  const std::vector<std::string>& inputs = options.files;
  run.plans = PlanOutputs(options.outputs, {names, "{op}", true}, FormatOption(options.input), inputs[0]);
  const bool isReported = options.stats || run.plans.empty();

  Stopwatch watch;
  Stats stats;
  run.loaded = Load(inputs, options.input, progress);
  stats.Stage("read", watch.Lap());

  for (const Contours& contours : run.loaded.contours) run.regions.push_back(LoadRegion(contours, options.input, progress));
  stats.Stage("check", watch.Lap());

  progress.Stage("combining");
  for (const ZBR_REGION& result : Combine(run)) run.results.push_back(MakeLayer(names[run.results.size()], result));
  stats.Stage("boolean", watch.Lap());

  progress.Stage("writing");
  const auto isPicture = [](const OutputPlan& plan) { return plan.format == Format::kSvg; };
  if (isReported || std::any_of(run.plans.begin(), run.plans.end(), isPicture)) {
    for (const Region& region : run.regions)
      run.operands.push_back(MakeLayer(BaseName(inputs[run.operands.size()]), ValidShape(region)));
  }
  WriteOutputs(run);
  stats.Stage("write", watch.Lap());
  progress.Stage("");

  if (isReported) {
    const std::string report = stats.Text(run.operands, run.results);
    std::fputs(report.c_str(), UsesStandardOutput(run.plans) ? stderr : stdout);
  }
  return kExitFine;
}

}  // namespace tool
