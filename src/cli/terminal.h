// The streams that the program was started with: results, errors, questions and progress.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold::cli {

// Text that came from a store, fit for a terminal: UTF-8, lines end with LF, and no character that steers
// the terminal but tabs and line ends.
std::string Printable(std::string_view text);
// The same on a single line.
std::string Printable_Line(std::string_view text);

class Terminal {
 public:
  // From here on Ctrl-C asks instead of killing; a second one kills.
  Terminal();

  // Standard output.
  void Write(std::string_view text);
  // Lets what was written be seen.
  void Flush();
  // Throws Failure where standard output could not be written, now or before.
  void Check_Output();
  // Standard error, as it is.
  void Write_Aside(std::string_view text);
  // Standard error, in the form that errors have.
  void Write_Error(std::string_view text);

  // Whether somebody sits at standard input.
  bool Can_Ask() const { return can_ask_; }
  bool Output_Is_Terminal() const { return output_is_terminal_; }
  // A line of standard input without its end; nothing at the end of the input and on Ctrl-C.
  std::optional<std::string> Read_Line();

  // Shows how far long work has come, on one line that the next one replaces; nothing before the work has
  // lasted a second, nor where standard error is no terminal. May be called often.
  void Progress(std::string_view text);
  // Whether a progress line would be shown now; for callers whose texts cost something.
  bool Progress_Due() const;
  void End_Progress();

  // True once Ctrl-C was pressed.
  bool Interrupted() const;

 private:
  using Clock = std::chrono::steady_clock;

  bool can_ask_ = false;
  bool output_is_terminal_ = false;
  bool error_is_terminal_ = false;
  bool progress_shown_ = false;
  Clock::time_point next_progress_;
};

}  // namespace tidyfold::cli
