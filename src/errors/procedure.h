// The pattern of every procedure, written once: push the name, run the body, pop; a failure is caught,
// reported with the stack, and the procedure ends as though it had ended normally.
#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "errors/error_stack.h"

namespace tidyfold {

// Names the steps of a running procedure; a new step takes the place of the one before.
class Procedure {
 public:
  explicit Procedure(ErrorStack& stack) : stack_(stack) {}
  void Step(Literal label, std::int32_t kind = 0) { Push(label, kind); }
  template <std::same_as<std::string> Text>
  void Step(Text label, std::int32_t kind = 0) {
    Push(std::move(label), kind);
  }
  void End_Step() {
    if (std::exchange(in_step_, false)) stack_.POP(1);
  }

 private:
  template <class Label>
  void Push(Label label, std::int32_t kind) {
    End_Step();
    stack_.PUSH(std::move(label), kind);
    in_step_ = true;
  }

  ErrorStack& stack_;
  bool in_step_ = false;
};

// The window's error handling: its stack, the current error, and the switch that makes procedures trap.
//
// A store that has gone (automation_error::unavailable) is told of in its own words, once for everything that
// fails until the command that met it has ended; then the next one tells it again.
class Error_Handler {
 public:
  explicit Error_Handler(Message_Box& message_box) : stack(message_box, error), message_box_(message_box) {}

  Current_Error error;
  ErrorStack stack;
  // While off, a failure travels to the caller unreported.
  bool Trap_Errors = false;

  // Ends what is under way; runs whenever a call finds the store gone.
  std::function<void()> End_Without_Store;
  // True until the command that found the store gone has ended.
  bool Store_Gone() const { return store_gone_; }

  // Runs a procedure. The body takes nothing or a Procedure& to name its steps; what it returns is returned,
  // a value-initialised result after a failure.
  template <class Body>
  auto Run(Literal name, Body&& body) {
    return Guarded(
        name.Text(), [&] { stack.PUSH(name); }, body);
  }
  // For a label that is put together at run time.
  template <std::same_as<std::string> Text, class Body>
  auto Run(Text name, Body&& body) {
    return Guarded(
        name, [&] { stack.PUSH(name); }, body);
  }

  // Continue-on-error for one call: false when it failed, which the current error then describes.
  template <class Call>
  bool Try(Call&& call) {
    error.Clear();
    try {
      call();
      return true;
    } catch (...) {
      Record(std::current_exception());
      return false;
    }
  }
  // The same for a store that is only being looked for: one that is not there has not gone.
  template <class Call>
  bool Try_To_Reach(Call&& call) {
    error.Clear();
    try {
      call();
      return true;
    } catch (...) {
      error.Set(std::current_exception());
      return false;
    }
  }

  // For work that is done for many folders or items: the first failure goes on, to be reported for all; false
  // after each later one. That the store has gone always goes on.
  template <class Work>
  bool Report_First(bool& reported, Work&& work) {
    try {
      work();
      return true;
    } catch (...) {
      if (Is_Gone(std::current_exception()) || !std::exchange(reported, true)) throw;
      return false;
    }
  }

  // A reporter of failures on single items, for one run of a strategy.
  ProcessError Make_Process_Error() { return ProcessError(message_box_, error); }

 private:
  template <class Push, class Body>
  auto Guarded(std::string_view trap, Push&& push, Body& body) {
    // The outermost procedure is a command. A report empties the stack under those that still run.
    const bool is_command = stack.Count() == 0 && !emptied_;
    push();
    Procedure procedure(stack);
    const auto call = [&] {
      if constexpr (std::is_invocable_v<Body&, Procedure&>) {
        return body(procedure);
      } else {
        return body();
      }
    };
    using Result = decltype(call());
    try {
      if constexpr (std::is_void_v<Result>) {
        call();
        Leave(procedure, is_command);
        return;
      } else {
        Result result = call();
        Leave(procedure, is_command);
        return result;
      }
    } catch (...) {
      if (!Trap_Errors) throw;
      Record(std::current_exception());
    }
    Report(trap, is_command);
    if constexpr (!std::is_void_v<Result>) return Result{};
  }
  void Leave(Procedure& procedure, bool is_command) {
    procedure.End_Step();
    stack.POP(1);
    if (store_gone_ || emptied_) [[unlikely]]
      Leave_After_Failure(is_command);
  }
  void Leave_After_Failure(bool is_command);
  static bool Is_Gone(const std::exception_ptr& failure);
  void Record(const std::exception_ptr& failure);
  void Report(std::string_view trap, bool is_command);
  void Tell_Gone();

  Message_Box& message_box_;
  bool emptied_ = false;
  bool store_gone_ = false;
  std::string untold_;  // a box may stand only where every procedure expects one, when one of them ends
};

}  // namespace tidyfold
