// Which calls into a store fail, and what happens before them. A test sets it up and reads its counts;
// faulty_automation.h applies it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "errors/automation_error.h"

namespace tidyfold {

// A call that is about to be made.
struct Store_Call {
  // Interface and member, as in object_model.h: "Item.Delete", "NameSpace.Folders", "Automation.GetObject".
  std::string_view member;
  // Of the item or folder; for a collection or a message object, of its owner. Empty if there is none, or if
  // it cannot be read.
  std::string entry_id;
  // The argument of a collection's Item and Remove, otherwise 0.
  std::int32_t index;
};

class Fault_Plan {
 public:
  using Predicate = std::function<bool(const Store_Call&)>;

  // Every call for which the predicate holds fails.
  void Fail_Where(Predicate predicate, Automation_Error error) {
    faults_.emplace_back(std::move(predicate), std::move(error));
  }
  void Fail_Always(const std::string& member, Automation_Error error) {
    Fail_Where([=](const Store_Call& call) { return call.member == member; }, std::move(error));
  }
  // Only the number-th call of the member from now on fails, counted from 1.
  void Fail_Call(const std::string& member, int number, Automation_Error error) {
    Fail_Where([=](const Store_Call& call) mutable { return call.member == member && --number == 0; },
               std::move(error));
  }
  void Forget_Faults() { faults_.clear(); }

  // Calls of a member so far, failed ones included.
  int Calls(std::string_view member) const {
    const auto found = calls_.find(member);
    return found == calls_.end() ? 0 : found->second;
  }
  // Faults thrown so far.
  int Thrown() const { return thrown_; }

  // Runs before every call, so that a test can act as another program at that moment. Not run for calls that
  // it makes itself.
  std::function<void(const Store_Call&)> on_call;

  // Called by decorated objects before they pass a call on; asks for the identity only if something depends
  // on it.
  void Before(std::string_view member, std::int32_t index, const std::function<std::string()>& entry_id) {
    const auto count = calls_.find(member);
    ++(count == calls_.end() ? calls_.emplace(member, 0).first : count)->second;
    if (faults_.empty() && !on_call) return;
    const Store_Call call{member, entry_id ? entry_id() : std::string(), index};
    // The hook may replace itself while it runs.
    if (const auto hook = on_call; hook && !std::exchange(in_hook_, true)) {
      const std::shared_ptr<void> leave(nullptr, [this](void*) { in_hook_ = false; });
      hook(call);
    }
    const Automation_Error* due = nullptr;
    for (auto& [fails, error] : faults_)
      if (fails(call) && due == nullptr) due = &error;
    if (due == nullptr) return;
    ++thrown_;
    throw Automation_Error(*due);
  }

 private:
  std::map<std::string, int, std::less<>> calls_;
  std::vector<std::pair<Predicate, Automation_Error>> faults_;
  int thrown_ = 0;
  bool in_hook_ = false;
};

}  // namespace tidyfold
