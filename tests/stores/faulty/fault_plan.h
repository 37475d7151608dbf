// Which calls into a store fail, and what happens in front of them. A test sets it up and reads the counts
// from it; faulty_automation.h puts it to work.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "errors/automation_error.h"

namespace tidyfold {

// One call, about to be made.
struct Store_Call {
  // The interface and the member, as in object_model.h: "Item.Delete", "Items.Count", "NameSpace.Folders",
  // "Automation.GetObject".
  std::string_view member;
  // Of the item or folder; for a collection, and for a message object, of that which it belongs to. Empty
  // where there is none, or where it cannot be read.
  std::string entry_id;
  // The argument of a collection's Item and Remove, otherwise 0.
  std::int32_t index;
};

class Fault_Plan {
 public:
  // The number-th call of the member from now on fails, counted from 1; those before and after it do not.
  void Fail_Call(std::string member, int number, Automation_Error error);
  // Every call for which the predicate holds fails.
  void Fail_Where(std::function<bool(const Store_Call&)> predicate, Automation_Error error);
  void Fail_Always(std::string member, Automation_Error error);
  // No fault is set any more; the counts stay.
  void Forget_Faults();

  // Calls of a member so far, those that failed included.
  int Calls(std::string_view member) const;
  // Faults that have been thrown.
  int Thrown() const { return thrown_; }

  // Runs in front of every call, before it is decided whether the call fails, so that a test can act as
  // another program at that very moment. Not called for calls that it makes itself.
  std::function<void(const Store_Call&)> on_call;

  // What a decorated object calls before it passes the call on; the identity is asked for only when somebody
  // wants to know it.
  void Before(std::string_view member, std::int32_t index, const std::function<std::string()>& entry_id);

 private:
  struct Numbered_Fault {
    std::string member;
    int calls_left;
    Automation_Error error;
  };
  struct Conditional_Fault {
    std::function<bool(const Store_Call&)> predicate;
    Automation_Error error;
  };

  void Run_Hook(const Store_Call& call);
  // The error of the numbered fault whose turn it is.
  std::optional<Automation_Error> Count_Down(std::string_view member);
  [[noreturn]] void Throw(const Automation_Error& error);

  std::map<std::string, int, std::less<>> calls_;
  std::vector<Numbered_Fault> numbered_;
  std::vector<Conditional_Fault> conditional_;
  int thrown_ = 0;
  bool in_hook_ = false;
};

}  // namespace tidyfold
