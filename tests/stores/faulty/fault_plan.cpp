#include "stores/faulty/fault_plan.h"

#include <utility>

namespace tidyfold {

void Fault_Plan::Fail_Call(std::string member, int number, Automation_Error error) {
  numbered_.push_back({std::move(member), number, std::move(error)});
}

void Fault_Plan::Fail_Where(std::function<bool(const Store_Call&)> predicate, Automation_Error error) {
  conditional_.push_back({std::move(predicate), std::move(error)});
}

void Fault_Plan::Fail_Always(std::string member, Automation_Error error) {
  Fail_Where([member = std::move(member)](const Store_Call& call) { return call.member == member; },
             std::move(error));
}

void Fault_Plan::Forget_Faults() {
  numbered_.clear();
  conditional_.clear();
}

int Fault_Plan::Calls(std::string_view member) const {
  const auto found = calls_.find(member);
  return found == calls_.end() ? 0 : found->second;
}

void Fault_Plan::Before(std::string_view member, std::int32_t index,
                        const std::function<std::string()>& entry_id) {
  const auto count = calls_.find(member);
  if (count == calls_.end()) {
    calls_.emplace(member, 1);
  } else {
    ++count->second;
  }
  std::optional<Store_Call> call;
  const auto the_call = [&]() -> const Store_Call& {
    if (!call) call = Store_Call{member, entry_id ? entry_id() : std::string(), index};
    return *call;
  };
  if (on_call && !in_hook_) Run_Hook(the_call());
  const std::optional<Automation_Error> due = Count_Down(member);
  for (const Conditional_Fault& fault : conditional_) {
    if (fault.predicate(the_call())) Throw(fault.error);
  }
  if (due) Throw(*due);
}

void Fault_Plan::Run_Hook(const Store_Call& call) {
  struct In_Hook {
    explicit In_Hook(bool& flag) : flag_(flag) { flag_ = true; }
    ~In_Hook() { flag_ = false; }
    bool& flag_;
  } in_hook(in_hook_);
  // The hook may replace itself while it runs.
  const auto hook = on_call;
  hook(call);
}

std::optional<Automation_Error> Fault_Plan::Count_Down(std::string_view member) {
  std::optional<Automation_Error> due;
  for (Numbered_Fault& fault : numbered_) {
    if (fault.member == member && --fault.calls_left == 0) due = fault.error;
  }
  return due;
}

void Fault_Plan::Throw(const Automation_Error& error) {
  ++thrown_;
  throw Automation_Error(error);
}

}  // namespace tidyfold
