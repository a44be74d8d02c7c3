// zbr bool: combinations of two drawings.

#include <zbr-drawing/result.h>
#include <zbr-formats/files.h>
#include <zbr-formats/picture.h>
#include <zbr/boolean.h>

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
  ZBR_BOOLEAN_OPE code;
};

constexpr std::array<Operation, 5> kOperations = {{{"union", "A ∪ B", ZBR_BOOL_OR},
                                                   {"intersection", "A ∩ B", ZBR_BOOL_AND},
                                                   {"a-b", "A − B", ZBR_BOOL_A_MINUS_B},
                                                   {"b-a", "B − A", ZBR_BOOL_B_MINUS_A},
                                                   {"xor", "A ⊕ B", ZBR_BOOL_XOR}}};

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
  std::vector<Layer> operands;  // in the drawing's coordinates
  std::vector<Layer> results;
};

// All operations share one search for crossings.
void Combine(Run& run, const std::vector<Region>& regions, Stats& stats) {
  std::vector<ZBR_BOOLEAN_OPE> codes;
  for (const Operation& operation : run.operations) codes.push_back(operation.code);
  std::vector<LoopList> results(codes.size());
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(regions[0].loops, regions[1].loops, codes.data(), results.data(), static_cast<int>(codes.size()), crosses);
  stats.crossings = crosses.size();
  for (std::size_t i = 0; i < results.size(); ++i) {
    run.results.push_back(MakeResult(run.operations[i].name, std::move(results[i]), run.loaded.frame));
  }
}

std::string PictureOf(const Run& run, const std::vector<std::size_t>& results) {
  Picture picture;
  picture.operands = run.operands;
  picture.title = run.operands[0].name + " and " + run.operands[1].name;
  picture.units = run.loaded.units;
  for (const std::size_t i : results) picture.panels.push_back({run.operations[i].caption, run.results[i]});
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
  if (inputs.size() > 2)
    throw Failure("unexpected argument '" + inputs[2] + "'; two drawings are combined, outputs are named by -o");
  run.plans = PlanOutputs(options.outputs, {names, "{op}", true}, FormatOption(options.input), inputs[0]);

  Stopwatch watch;
  Stats stats;
  run.loaded = Load(inputs, options.input, progress);
  stats.Stage("read", watch.Lap());

  std::vector<Region> regions;
  for (const Contours& contours : run.loaded.contours) regions.push_back(LoadRegion(contours, run.loaded.frame, progress));
  stats.Stage("nest", watch.Lap());

  progress.Stage("combining");
  Combine(run, regions, stats);
  stats.Stage("boolean", watch.Lap());

  progress.Stage("writing");
  for (std::size_t i = 0; i < regions.size(); ++i) {
    run.operands.push_back(MakeLayer(BaseName(inputs[i]), std::move(regions[i].loops), run.loaded.frame));
  }
  WriteOutputs(run);
  stats.Stage("write", watch.Lap());
  progress.Stage("");

  if (options.stats || run.plans.empty()) {
    const std::string report = stats.Text(run.operands, run.results);
    std::fputs(report.c_str(), UsesStandardOutput(run.plans) ? stderr : stdout);
  }
  return kExitFine;
}

}  // namespace tool
