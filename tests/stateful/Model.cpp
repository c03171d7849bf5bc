#include "Model.h"

#include <algorithm>
#include <utility>

bool InputBlock::MayBeKnown(int value) const {
  return value == value_ || std::find(known_.begin(), known_.end(), value) != known_.end();
}

void InputBlock::Change(int value, bool polled, bool heard) {
  known_.push_back(value_);
  value_ = value;
  Expect(polled, heard);
}

// While it is not sure that the block is polled, a link that is opened again may poll it.
void InputBlock::Expect(bool polled, bool heard) {
  due_ = polled && heard;
  unseen_ = !polled && heard;
  if (!due_) may_come_.push_back(value_);
}

void InputBlock::BecomePolled(bool heard) {
  if (unseen_ && heard) {
    due_ = true;
    may_come_.pop_back();
  }
  unseen_ = false;
}

void InputBlock::BecomeUnheard() {
  if (due_) may_come_.push_back(value_);
  due_ = false;
  unseen_ = false;
}

void InputBlock::Forget(bool polled, bool heard) {
  BecomeUnheard();
  known_.push_back(0);
  if (value_ != 0) Expect(polled, heard);
}

Complaint InputBlock::TakeReport(int value) {
  const auto found = std::find(may_come_.begin(), may_come_.end(), value);
  const bool was_due = due_ && value == value_;
  if (!was_due && found == may_come_.end()) return "a report that is wrong or comes twice";
  // Where it may have been either, the other one may still come.
  const bool was_either = was_due && found != may_come_.end();
  may_come_.erase(may_come_.begin(), found == may_come_.end() ? found : found + !was_either);
  if (value != value_) return "";
  if (!was_either) known_.clear();
  due_ = unseen_ = false;
  return "";
}

void OutputCard::Accept(int block, int value, bool must) {
  accepted_.push_back({block, value, must});
}

Complaint OutputCard::TakeFrame(const std::vector<int>& data) {
  const auto found = std::find_if(accepted_.begin(), accepted_.end(), [&](const Write& write) {
    return data.at(static_cast<std::size_t>(write.block)) == write.value;
  });
  if (found == accepted_.end()) return "a write that nobody sent, or out of its order";
  missing_ += static_cast<int>(
      std::count_if(accepted_.begin(), found, [](const Write& write) { return write.must; }));
  accepted_.erase(accepted_.begin(), found + 1);
  return "";
}

int OutputCard::TakeMissing() {
  for (const Write& write : accepted_) missing_ += write.must;
  accepted_.clear();
  return std::exchange(missing_, 0);
}
