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

ZBR_REGION_OPTIONS Canonical(bool hasCurves) {
  ZBR_REGION_OPTIONS options;
  options.canonical = true;
  options.sources = hasCurves;
  return options;
}

// Of two drawings: all operations share one search for crossings, on the rings as they are.
std::vector<CurvedRegion> CombineTwo(const std::vector<Operation>& operations, const Region& a, const Region& b) {
  std::vector<ZBR_BOOLEAN_OPE> codes;
  for (const Operation& operation : operations) codes.push_back(operation.code);
  std::vector<ZBR_REGION> combined(codes.size());
  ZBR_REGION_OPTIONS options = Canonical(a.HasCurves() || b.HasCurves());
  options.fill_a = a.fill;
  options.fill_b = b.fill;
  zbrCombineRegions(a.rings.view(), b.rings.view(), codes.data(), combined.data(), static_cast<int>(codes.size()), options);
  std::vector<CurvedRegion> results;
  for (ZBR_REGION& result : combined) results.push_back(Traced(std::move(result), {&a, &b}));
  return results;
}

using Shapes = std::vector<const CurvedRegion*>;

CurvedRegion Covered(const Shapes& shapes, int times, bool hasCurves) {
  std::vector<ZBR_REGION_VIEW> views;
  for (const CurvedRegion* const shape : shapes) views.push_back(shape->rings.view());
  ZBR_REGION result;
  zbrCoverRegions(views.data(), views.size(), times, result, Canonical(hasCurves));
  return Traced(std::move(result), shapes);
}

// The rings of valid regions lie around a place as often as regions cover it.
CurvedRegion CoveredOddly(const Shapes& shapes, bool hasCurves) {
  CurvedRegion all;
  for (const CurvedRegion* const shape : shapes) {
    const ZBR_REGION& rings = shape->rings;
    for (std::size_t r = 0; r < rings.ring_count(); ++r) {
      const auto first = static_cast<std::size_t>(rings.ring_offsets()[r]);
      all.rings.AddRing(rings.points().data() + first, static_cast<std::size_t>(rings.ring_offsets()[r + 1]) - first);
    }
    if (!hasCurves) continue;
    all.origins.insert(all.origins.end(), shape->origins.begin(), shape->origins.end());
    all.origins.resize(all.rings.point_count());
    all.curves = shape->curves;
  }
  ZBR_REGION result;
  zbrMakeValidRegion(all.rings.view(), result, Canonical(hasCurves));
  return Traced(std::move(result), {&all});
}

// Of any number: union and intersection are what one and what all of them cover, the differences those of the first and the union
// of the others.
CurvedRegion CombineMany(const Operation& operation, const Shapes& shapes, bool hasCurves) {
  switch (operation.code) {
    case ZBR_BOOL_OR:
      return Covered(shapes, 1, hasCurves);
    case ZBR_BOOL_AND:
      return Covered(shapes, static_cast<int>(shapes.size()), hasCurves);
    case ZBR_BOOL_XOR:
      return CoveredOddly(shapes, hasCurves);
    default:
      break;
  }
  const CurvedRegion others = Covered({shapes.begin() + 1, shapes.end()}, 1, hasCurves);
  const ZBR_BOOLEAN_OPE code = operation.code;
  ZBR_REGION result;
  zbrCombineRegions(shapes[0]->rings.view(), others.rings.view(), &code, &result, 1, Canonical(hasCurves));
  return Traced(std::move(result), {shapes[0], &others});
}

std::vector<CurvedRegion> Combine(const Run& run) {
  if (run.regions.size() == 2) return CombineTwo(run.operations, run.regions[0], run.regions[1]);
  std::vector<CurvedRegion> shapes, results;
  for (const Region& region : run.regions) shapes.push_back(CurvedShape(region));
  Shapes all;
  for (const CurvedRegion& shape : shapes) all.push_back(&shape);
  const auto isCurved = [](const CurvedRegion& shape) { return shape.HasCurves(); };
  const bool hasCurves = std::any_of(shapes.begin(), shapes.end(), isCurved);
  for (const Operation& operation : run.operations) results.push_back(CombineMany(operation, all, hasCurves));
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
    files.Add(plan.file, WriteResults(plan.format, layers, run.loaded.units, run.loaded.writing));
  }
  files.Commit();
}

// What the operands have for themselves.
std::vector<OperandOptions> OperandsOf(const BoolOptions& options, std::size_t count) {
  std::vector<OperandOptions> operands;
  for (const std::optional<Affine>& map : MapsOf(options.placements, count)) operands.push_back({{}, map});
  operands[0].layers = options.layersA;
  operands[0].layersFrom = "--layer-a";
  if (count == 1) return operands;
  operands[1].layers = options.layersB;
  operands[1].layersFrom = "--layer-b";
  return operands;
}

// One file may be both operands, by its layers.
std::vector<std::string> FilesOf(const BoolOptions& options) {
  std::vector<std::string> files = options.files;
  if (files.size() == 1 && !options.layersA.empty() && !options.layersB.empty()) files.push_back(files.front());
  return files;
}

}  // namespace

int RunBool(const BoolOptions& options) {
  Progress progress;
  Run run;
  run.operations = FindOperations(options.operations);
  const std::vector<std::string> names = NamesOf(run.operations);
  const std::vector<std::string> inputs = FilesOf(options);
  const Results results{names, "{op}", true};
  run.plans = PlanOutputs(options.outputs, results, FormatOption(options.input), inputs[0]);
  NoteSharedOut(results, run.plans, progress);
  NoteUnused(options.input.writing, run.plans, progress);
  const bool isReported = options.stats || run.plans.empty();

  Stopwatch watch;
  Stats stats;
  run.loaded = Load(inputs, options.input, progress, OperandsOf(options, inputs.size()));
  stats.Stage("read", watch.Lap());

  for (const Contours& contours : run.loaded.contours) {
    run.regions.push_back(LoadRegion(contours, options.input, progress));
    if (contours.rings.empty()) progress.Note(contours.file + ": note: holds no region");
  }
  stats.Stage("check", watch.Lap());

  progress.Stage("combining");
  for (const CurvedRegion& result : Combine(run))
    run.results.push_back(ResultLayer(names[run.results.size()], result, run.loaded.writing));
  NoteBeside(run.results, progress);
  stats.Stage("boolean", watch.Lap());

  progress.Stage("writing");
  const auto isPicture = [](const OutputPlan& plan) { return plan.format == Format::kSvg; };
  if (isReported || std::any_of(run.plans.begin(), run.plans.end(), isPicture)) {
    for (const Region& region : run.regions)
      run.operands.push_back(MakeLayer(BaseName(inputs[run.operands.size()]), CurvedShape(region)));
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
