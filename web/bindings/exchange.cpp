#include "web/bindings/exchange.h"

#include <emscripten.h>

#include <exception>
#include <new>
#include <stdexcept>

#include "web/bindings/exports.h"

// The page's function is a property of the module while a call lasts.
EM_JS(int, zbrTellProgress, (double share, const char* stage),
      { return Module.progress ? Module.progress(share, UTF8ToString(stage)) : 1; });

namespace zbr::web {
namespace {

// A region call's complaint, with numbers instead of a line.
class RegionFailure : public std::runtime_error {
 public:
  explicit RegionFailure(const ZBR_REGION_STATUS& status) : std::runtime_error("region"), status_(status) {}
  const ZBR_REGION_STATUS& status() const { return status_; }

 private:
  ZBR_REGION_STATUS status_;
};

const char* TextOf(ZBR_REGION_CODE code) {
  switch (code) {
    case ZBR_REGION_BAD_OFFSETS:
      return "offsets descend, or lead beyond the points or rings";
    case ZBR_REGION_NOT_FINITE:
      return "a coordinate is not finite, or beyond 1e150";
    case ZBR_REGION_TOO_LARGE:
      return "more points than 32 bits can number";
    default:
      return "unknown";
  }
}

// A line, and an operand with its ring and point, and three texts.
void GiveFailure(const std::vector<std::int32_t>& place, const char* message, const std::string& file = {},
                 const std::string& reason = {}) {
  Exchange& exchange = Exchange::Get();
  exchange.LetGo();
  exchange.Give(place);
  for (const std::string& text : {std::string(message), file, reason}) exchange.Give(text);
}

}  // namespace

Exchange& Exchange::Get() {
  static Exchange exchange;
  return exchange;
}

char* Exchange::AddText(std::size_t size) {
  return texts_.emplace_back(size, '\0').data();
}

void Exchange::Give(std::string text) {
  Give(std::vector<char>(text.begin(), text.end()));
}

void Exchange::Give(ZBR_REGION region) {
  const auto kept = std::make_shared<ZBR_REGION>(std::move(region));
  const auto give = [&](const auto& items) { Give(items.data(), items.size() * sizeof(items[0])); };
  give(kept->points());
  give(kept->ring_offsets());
  give(kept->polygon_offsets());
  if (!kept->source_offsets().empty()) {
    give(kept->source_offsets());
    give(kept->sources());
  }
  kept_.push_back(kept);
}

void Exchange::Give(const void* data, std::size_t bytes) {
  table_.push_back(reinterpret_cast<std::uintptr_t>(data));
  table_.push_back(bytes);
}

void Exchange::LetGo() {
  table_.clear();
  kept_.clear();
}

void Report(double share, const char* stage) {
  if (zbrTellProgress(share, stage) == 0) throw Stopped();
}

bool MayGoOn(double share, void*) {
  return zbrTellProgress(share, "combining") != 0;
}

void Demand(const ZBR_REGION_STATUS& status) {
  if (status.code == ZBR_REGION_STOPPED) throw Stopped();
  if (status.code != ZBR_REGION_OK) throw RegionFailure(status);
}

int AnswerOf(void (*work)(void* context, Exchange& out), void* context) {
  Exchange& exchange = Exchange::Get();
  exchange.LetGo();
  Status status = Status::kFailed;
  try {
    work(context, exchange);
    status = Status::kDone;
  } catch (const Stopped&) {
    status = Status::kStopped;
  } catch (const std::bad_alloc&) {
    status = Status::kNoMemory;
  } catch (const std::length_error&) {  // of a container
    status = Status::kNoMemory;
  } catch (const Failure& failure) {
    GiveFailure({static_cast<std::int32_t>(failure.Line()), -1, -1, -1}, failure.what(), failure.File(), failure.Cause());
  } catch (const RegionFailure& failure) {
    const ZBR_REGION_STATUS& region = failure.status();
    GiveFailure({0, region.operand, region.ring, region.point}, TextOf(region.code));
  } catch (const std::exception& error) {
    GiveFailure({0, -1, -1, -1}, error.what());
  }
  exchange.DropTexts();
  if (status == Status::kStopped || status == Status::kNoMemory) exchange.LetGo();
  return static_cast<int>(status);
}

}  // namespace zbr::web

using zbr::web::Exchange;

char* zbrwAddText(std::size_t size) {
  try {
    return Exchange::Get().AddText(size);
  } catch (const std::exception&) {
    return nullptr;
  }
}

const std::uintptr_t* zbrwTable() {
  return Exchange::Get().Table().data();
}

std::size_t zbrwTableSize() {
  return Exchange::Get().Table().size();
}

void zbrwLetGo() {
  Exchange::Get().LetGo();
  Exchange::Get().DropTexts();
}
