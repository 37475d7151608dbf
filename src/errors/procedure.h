// The pattern of every procedure, written once: push the name, run the body, pop; a failure is caught,
// reported with the stack, and the procedure ends as though it had ended normally.
#pragma once

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
class Error_Handler {
 public:
  explicit Error_Handler(Message_Box& message_box) : stack(message_box, error), message_box_(message_box) {}

  Current_Error error;
  ErrorStack stack;
  // While off, a failure travels to the caller unreported.
  bool Trap_Errors = false;

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
      error.Set(std::current_exception());
      return false;
    }
  }

  // For work that is done for many folders or items: the first failure goes on, to be reported for all; false
  // after each later one.
  template <class Work>
  bool Report_First(bool& reported, Work&& work) {
    try {
      work();
      return true;
    } catch (...) {
      if (std::exchange(reported, true)) return false;
      throw;
    }
  }

  // A reporter of failures on single items, for one run of a strategy.
  ProcessError Make_Process_Error() { return ProcessError(message_box_, error); }

 private:
  template <class Push, class Body>
  auto Guarded(std::string_view trap, Push&& push, Body& body) {
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
        Leave(procedure);
        return;
      } else {
        Result result = call();
        Leave(procedure);
        return result;
      }
    } catch (...) {
      if (!Trap_Errors) throw;
      error.Set(std::current_exception());
    }
    stack.Display(trap);
    stack.Clear();
    if constexpr (!std::is_void_v<Result>) return Result{};
  }
  void Leave(Procedure& procedure) {
    procedure.End_Step();
    stack.POP(1);
  }

  Message_Box& message_box_;
};

}  // namespace tidyfold
