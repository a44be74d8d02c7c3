// What JavaScript and the library hand each other in a call.
//
// Idea: a call is a C function that answers with a status. What goes in are numbers, addresses of arrays that the caller put into
// memory, and texts (options as JSON, contents of files) that it filled beforehand. What comes out is kept here, and a table tells
// where each array lies; the caller copies them and lets go, so no object of JavaScript owns memory of the library. Whatever a call
// throws ends here: no exception leaves the module.
#pragma once

#include <zbr-drawing/failure.h>
#include <zbr/region.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zbr::web {

using namespace drawing;

enum class Status : int { kDone = 0, kFailed = 1, kNoMemory = 2, kStopped = 3 };

// Thrown where the caller's progress function wants no more.
struct Stopped {};

class Exchange {
 public:
  // The one of this instance of the module.
  static Exchange& Get();

  // Room for a text of the next call, and what was put there.
  char* AddText(std::size_t size);
  std::string TakeText(std::size_t which) { return std::move(texts_.at(which)); }

  // One array of the answer.
  template <class T>
  void Give(std::vector<T> items) {
    const auto kept = std::make_shared<std::vector<T>>(std::move(items));
    Give(kept->data(), kept->size() * sizeof(T));
    kept_.push_back(kept);
  }
  void Give(std::string text);
  // Three arrays: coordinates, ring offsets, polygon offsets; and two more when the region has sources: offsets and records.
  void Give(ZBR_REGION region);

  void LetGo();
  void DropTexts() { texts_.clear(); }
  const std::vector<std::uintptr_t>& Table() const { return table_; }

 private:
  void Give(const void* data, std::size_t bytes);

  std::vector<std::string> texts_;
  std::vector<std::shared_ptr<const void>> kept_;
  std::vector<std::uintptr_t> table_;  // address and number of bytes of each array
};

// Tells the caller's progress function how far a call is, if it has one; throws Stopped when that answers so.
void Report(double share, const char* stage);
// The same in the form that regions ask for.
bool MayGoOn(double share, void* data);

// Throws unless the call went well; what was wrong names the place.
void Demand(const ZBR_REGION_STATUS& status);

// What `work` of `context` gives, or what went wrong and where.
int AnswerOf(void (*work)(void* context, Exchange& out), void* context);

template <class Work>
int Answer(Work work) {
  return AnswerOf([](void* context, Exchange& out) { (*static_cast<Work*>(context))(out); }, &work);
}

}  // namespace zbr::web
