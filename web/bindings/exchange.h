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
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
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

// What went wrong, and where.
void GiveFailure(const Failure& failure);
void GiveFailure(const std::exception& error);

template <class Work>
int Answer(Work work) {
  Exchange& exchange = Exchange::Get();
  exchange.LetGo();
  Status status = Status::kDone;
  try {
    work(exchange);
  } catch (const Stopped&) {
    status = Status::kStopped;
  } catch (const std::bad_alloc&) {
    status = Status::kNoMemory;
  } catch (const std::length_error&) {  // of a container
    status = Status::kNoMemory;
  } catch (const Failure& failure) {
    GiveFailure(failure);
    status = Status::kFailed;
  } catch (const std::exception& error) {
    GiveFailure(error);
    status = Status::kFailed;
  }
  exchange.DropTexts();
  if (status == Status::kStopped || status == Status::kNoMemory) exchange.LetGo();
  return static_cast<int>(status);
}

}  // namespace zbr::web
