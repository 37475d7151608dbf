// The stack of procedure and step labels, and the reports of failures made from it.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/interaction.h"

namespace tidyfold {

// The run time's single record of the failure being handled.
class Current_Error {
 public:
  std::int32_t Number = 0;
  std::string Description;
  std::string Source;

  void Clear() { *this = Current_Error{}; }
  // Takes number, description and source from an Automation_Error; any other exception becomes number 440
  // (the platform's "automation error"), 7 (out of memory) or 6 (overflow) with its own text.
  void Set(const std::exception_ptr& failure);
};

// A text that lives as long as the program: pushing it costs no allocation.
class Literal {
 public:
  template <std::size_t size>
  consteval Literal(const char (&text)[size]) : text_(text, size - 1) {}
  std::string_view Text() const { return text_; }

 private:
  std::string_view text_;
};

struct StackEntry {
  std::string_view literal;
  std::string text;  // used where the label is no literal
  std::int32_t Kind = 0;
  std::string_view Label() const { return text.empty() ? literal : std::string_view(text); }
};

class ErrorStack {
 public:
  ErrorStack(Message_Box& message_box, Current_Error& error);

  // Kind 1 marks work on folders or items that may disappear meanwhile; it changes the report's words.
  void PUSH(Literal label, std::int32_t kind = 0) {
    StackEntry& entry = Next();
    entry.literal = label.Text();
    if (!entry.text.empty()) entry.text.clear();
    entry.Kind = kind;
  }
  template <std::same_as<std::string> Text>
  void PUSH(Text label, std::int32_t kind = 0) {
    Push_Text(std::move(label), kind);
  }
  // Popping more than there is empties the stack.
  void POP(std::int32_t n) {
    if (n > 0) count_ = n < count_ ? count_ - n : 0;
  }
  void Clear() { count_ = 0; }
  // Shows the labels, outermost first.
  void DisplayStack() const;
  // Shows the current error and the stack, then clears the error. `trap` names the procedure that caught it.
  void Display(std::string_view trap);

  std::int32_t Count() const { return count_; }
  std::int32_t Capacity() const { return capacity_; }
  // Counts from 1. Throws std::out_of_range for an entry that is not in use.
  const StackEntry& Entry(std::int32_t index) const;

 private:
  // Here, with pushing and popping, because predicates that run a million times stand in it.
  StackEntry& Next() {
    if (capacity_ <= count_ + 1) Enlarge();
    return entries_[static_cast<std::size_t>(count_++)];
  }
  void Enlarge();
  void Push_Text(std::string label, std::int32_t kind);

  Message_Box& message_box_;
  Current_Error& error_;
  std::int32_t count_ = 0;
  std::int32_t capacity_ = 10;
  std::vector<StackEntry> entries_;
};

// Reports failures on single items; a Yes to its question silences it for the rest of its life.
class ProcessError {
 public:
  ProcessError(Message_Box& message_box, const Current_Error& error)
      : message_box_(message_box), error_(error) {}
  bool SuppressMessages = false;
  void DisplayProcessingError(std::string_view process, std::string_view item);

 private:
  Message_Box& message_box_;
  const Current_Error& error_;
};

}  // namespace tidyfold
