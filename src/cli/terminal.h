// The standard streams: results, errors, questions and progress.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold::cli {

// Makes text from a store safe for a terminal: valid UTF-8, LF line ends, no control characters but tabs and
// line ends.
std::string Printable(std::string_view text);
// The same on a single line.
std::string Printable_Line(std::string_view text);

class Terminal {
 public:
  // From now on Ctrl-C cancels instead of killing; a second one kills.
  Terminal();

  // Standard output.
  void Write(std::string_view text);
  // Flushes the output.
  void Flush();
  // Throws Failure if standard output could not be written, now or before.
  void Check_Output();
  // Standard error, unchanged.
  void Write_Aside(std::string_view text);
  // Standard error, as "tidyfold-cli: TEXT".
  void Write_Error(std::string_view text);

  // Whether standard input is a terminal.
  bool Can_Ask() const { return can_ask_; }
  bool Output_Is_Terminal() const { return output_is_terminal_; }
  // A line of standard input without its line end; nothing at the end of the input and after Ctrl-C.
  std::optional<std::string> Read_Line();

  // Shows progress on one line that the next call overwrites; nothing during the first second, nor if
  // standard error is not a terminal. Cheap to call.
  void Progress(std::string_view text);
  // Whether Progress would show something now, so that callers need not build the text in vain.
  bool Progress_Due() const;
  void End_Progress();

  // True after Ctrl-C.
  bool Interrupted() const;

 private:
  using Clock = std::chrono::steady_clock;

  void Clear_Line();

  bool can_ask_ = false;
  bool output_is_terminal_ = false;
  bool error_is_terminal_ = false;
  bool progress_shown_ = false;
  Clock::time_point next_progress_;
};

// Shows how much of some work is done, in percent, and cancels it after Ctrl-C. The terminal must outlive it.
std::function<bool(std::int64_t done, std::int64_t total)> Told_On(Terminal& terminal, std::string what);

}  // namespace tidyfold::cli
