// The operations of one call that no way of forming their results has done yet.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include <zbr/region.h>

namespace zbr {

// Each result goes its own way, by itself alone, so that several at once are those of calls one by one, to the bit. A result may be
// the owner of an operand's arrays: all are formed before the first is handed over.
class OpenOperations {
 public:
  explicit OpenOperations(std::span<const ZBR_BOOLEAN_OPE> ops) : ops_(ops.begin(), ops.end()), formed_(ops.size()) {
    for (std::size_t k = 0; k < ops.size(); ++k) open_.push_back(k);
  }

  bool empty() const { return open_.empty(); }
  // Those that are open, by their numbers.
  const std::vector<std::size_t>& numbers() const { return open_; }
  ZBR_BOOLEAN_OPE op(std::size_t number) const { return ops_[number]; }
  ZBR_REGION& formed(std::size_t number) { return formed_[number]; }
  void CloseAll() { open_.clear(); }
  // The same ones, of which nothing is formed.
  OpenOperations Anew() const {
    OpenOperations anew(ops_);
    anew.open_ = open_;
    return anew;
  }
  void ClearOpen() {
    for (const std::size_t k : open_) formed_[k].Clear();
  }
  void HandOver(ZBR_REGION* results) { std::move(formed_.begin(), formed_.end(), results); }

  // Calls form(op, isLast, result) for each that is open; those for which it answers true are done.
  template <class Form>
  void Try(Form form) {
    std::vector<std::size_t> left;
    for (const std::size_t k : open_) {
      if (form(ops_[k], k == open_.back(), formed_[k])) continue;
      formed_[k].Clear();
      left.push_back(k);
    }
    open_.swap(left);
  }
  // Calls form(k, count) for each that is open, the k-th of so many, while only that is, and as long as it answers true; then none
  // is.
  template <class Form>
  void OneByOne(Form form) {
    const std::vector<std::size_t> all = std::exchange(open_, {});
    for (std::size_t i = 0; i < all.size(); ++i) {
      open_.assign(1, all[i]);
      if (!form(i, all.size())) break;
    }
    open_.clear();
  }

 private:
  std::vector<ZBR_BOOLEAN_OPE> ops_;
  std::vector<ZBR_REGION> formed_;
  std::vector<std::size_t> open_;
};

}  // namespace zbr
