// zbr check: everything about a drawing that keeps its loops from bounding a region, each with its place; and the region that it is
// taken for.

#include <zbr-formats/files.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

#include "app/commands/json.h"
#include "app/commands/left_out.h"
#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

constexpr std::size_t kMostFaults = 1000000;

struct Finding {
  const char* kind;
  std::size_t line;  // of the file
  std::string text;
  std::vector<ZBR_PT> places = {};
  std::size_t otherLine = 0;  // where the other loop starts, if there is one
};

// One finding for each kind of fault that a loop has, or that two loops have with each other.
class Search {
 public:
  Search(const Contours& contours, const std::map<std::string, LeftOut>& leftOut) : contours_(contours), leftOut_(leftOut) {}

  // Whether all there is was found.
  bool Run() {
    for (const auto& [what, left] : leftOut_) {
      if (left.bearsContours) findings_.push_back({"left_out", left.line, "left out " + LeftOutText(what, left)});
    }
    for (const OpenEnds& open : contours_.open) {
      findings_.push_back(
          {"open",
           open.line,
           "contour does not close, from " + PointText(open.from) + " to " + PointText(open.to) + GapText(contours_, open),
           {open.from, open.to}});
    }
    for (const Fork& fork : contours_.forks) {
      findings_.push_back({"fork",
                           fork.line,
                           std::to_string(fork.ends) + " lines meet at " + PointText(fork.at) +
                               ", so that they bound no single contour; what they enclose together is taken, see --faces",
                           {fork.at}});
    }
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(RingsOf(contours_).view(), faults, kMostFaults);
    AddFaults(faults);
    return faults.size() < kMostFaults;
  }

  const std::vector<Finding>& findings() const { return findings_; }

 private:
  void AddFaults(const std::vector<ZBR_REGION_FAULT>& faults) {
    // The turns of a loop that crosses itself may cancel in its area.
    std::set<std::int32_t> crossed;
    for (const ZBR_REGION_FAULT& fault : faults) {
      if (fault.kind == ZBR_FAULT_CROSSING && fault.ring_a == fault.ring_b) crossed.insert(fault.ring_a);
    }
    for (std::size_t i = 0, next = 0; i < faults.size(); i = next) {
      while (next < faults.size() && AreAlike(faults[i], faults[next])) ++next;
      if (faults[i].kind == ZBR_FAULT_NO_AREA && crossed.contains(faults[i].ring_a)) continue;
      const Ring& ring = contours_.rings[static_cast<std::size_t>(faults[i].ring_a)];
      Finding& finding =
          findings_.emplace_back(Finding{NameOf(faults[i].kind), ring.line, TextOf(faults[i], ring) + More(next - i - 1)});
      for (std::size_t k = i; k < next && faults[i].kind != ZBR_FAULT_NOT_FINITE && !ring.points.empty(); ++k)
        finding.places.push_back(faults[k].place);
      if (faults[i].ring_b >= 0 && faults[i].ring_b != faults[i].ring_a)
        finding.otherLine = contours_.rings[static_cast<std::size_t>(faults[i].ring_b)].line;
    }
  }

  static bool AreAlike(const ZBR_REGION_FAULT& a, const ZBR_REGION_FAULT& b) {
    return a.kind == b.kind && a.ring_a == b.ring_a && a.ring_b == b.ring_b;
  }

  static std::string More(std::size_t count) {
    return count == 0 ? "" : " and " + std::to_string(count) + (count == 1 ? " more place" : " more places");
  }

  std::string TextOf(const ZBR_REGION_FAULT& fault, const Ring& ring) const {
    switch (fault.kind) {
      case ZBR_FAULT_REPEATED_POINT:
        return "loop repeats a point at " + PointText(fault.place);
      case ZBR_FAULT_NO_AREA:
        return "loop of " + std::to_string(ring.points.size()) + " points encloses no area" +
               (ring.points.empty() ? "" : " at " + PointText(fault.place));
      case ZBR_FAULT_NOT_FINITE:
        return "loop has coordinates out of range";
      default:
        return Describe(fault, contours_);
    }
  }

  const Contours& contours_;
  const std::map<std::string, LeftOut>& leftOut_;
  std::vector<Finding> findings_;
};

std::string TextReport(const Contours& contours, const std::vector<Finding>& findings, bool isComplete) {
  std::string text;
  for (const Finding& finding : findings) text += contours.file + ":" + std::to_string(finding.line) + ": " + finding.text + "\n";
  if (!isComplete) text += contours.file + ": the search for crossings stopped, there are too many\n";
  if (text.empty()) text = contours.file + ": clean, " + std::to_string(contours.rings.size()) + " loops\n";
  return text;
}

std::string JsonReport(const Contours& contours, const std::vector<Finding>& findings, bool isComplete) {
  Json json = {{"file", BaseName(contours.file)},
               {"clean", findings.empty()},
               {"loops", contours.rings.size()},
               {"complete", isComplete},
               {"findings", Json::array()}};
  for (const Finding& finding : findings) {
    Json& entry = json["findings"].emplace_back(Json{{"kind", finding.kind}, {"line", finding.line}});
    if (finding.otherLine > 0) entry["other_line"] = finding.otherLine;
    Json& places = entry["places"] = Json::array();
    for (const ZBR_PT& p : finding.places) places.push_back(JsonOf(p));
    entry["text"] = finding.text;
  }
  return TextOf(json);
}

void WriteFixed(const Loaded& loaded, ZBR_FILL_RULE rule, const std::vector<OutputPlan>& plans, const std::string& name,
                Progress& progress) {
  OutputFiles files;
  const Layer layer = ResultLayer(name, CurvedShape(MakeRegion(loaded.contours.front(), rule)), loaded.writing);
  NoteBeside({layer}, progress);
  for (const OutputPlan& plan : plans) files.Add(plan.file, WriteRegion(plan.format, layer, loaded.units, loaded.writing));
  files.Commit();
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  if (options.fix != !options.outputs.empty()) throw Failure("--fix and -o need each other");
  Progress progress;
  const std::string name = StemOf(options.file);
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, FormatOption(options.input), options.file);
  NoteUnused(options.input.writing, plans, progress);
  InputOptions input = options.input;
  input.leftOutIsFound = true;
  const Loaded loaded = Load({options.file}, input, progress);
  const Contours& contours = loaded.contours.front();
  progress.Stage("checking " + options.file);
  Search search(contours, loaded.leftOut.front());
  const bool isComplete = search.Run(), isClean = search.findings().empty();
  std::string report = (options.json ? JsonReport : TextReport)(contours, search.findings(), isComplete);
  if (options.fix) WriteFixed(loaded, FillRule(options.input.fill), plans, name, progress);
  progress.Stage("");
  if (UsesStandardOutput(plans)) {
    std::fputs(report.c_str(), stderr);
  } else {
    WriteToStandardOutput(std::move(report));
  }
  return isClean || options.fix ? kExitFine : kExitFound;
}

}  // namespace tool
