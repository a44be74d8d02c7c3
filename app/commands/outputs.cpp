// Sharing results out among output files.
#include "commands/outputs.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "io/failure.h"

namespace tool {
namespace {

constexpr std::string_view kPlaceholder = "{op}";

}  // namespace

Format OutputFormat(const std::string& file, Format chosen, const std::string& input) {
  Format format = FormatOf(file, chosen);
  if (format == Format::kUnknown && file == "-") format = FormatOf(input, chosen);
  if (format == Format::kUnknown) throw Failure(file + ": the name does not tell the format; give --format");
  return format;
}

std::vector<OutputPlan> PlanOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& results, Format chosen,
                                    const std::string& input) {
  std::vector<std::size_t> all(results.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  const bool onePerResult = results.size() > 1 && outputs.size() == results.size();
  std::vector<OutputPlan> plans;
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const std::string& output = outputs[i];
    const Format format = OutputFormat(output, chosen, input);
    const std::size_t place = output.find(kPlaceholder);
    if (place == std::string::npos) {
      plans.push_back({output, format, onePerResult ? std::vector<std::size_t>{i} : all});
      continue;
    }
    for (const std::size_t k : all) {
      std::string name = output;
      plans.push_back({name.replace(place, kPlaceholder.size(), results[k]), format, {k}});
    }
  }
  return plans;
}

bool UsesStandardOutput(const std::vector<OutputPlan>& plans) {
  return std::any_of(plans.begin(), plans.end(), [](const OutputPlan& plan) { return plan.file == "-"; });
}

}  // namespace tool
