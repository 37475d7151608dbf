#include "cli/terminal.h"

#include <cstdio>

#include "base/text.h"
#include "cli/console.h"
#include "cli/failure.h"

namespace tidyfold::cli {

namespace {

using namespace std::chrono_literals;

constexpr auto before_progress = 1s;
constexpr auto between_progress = 100ms;
// Longer lines would wrap, and a wrapped line cannot be overwritten.
constexpr std::size_t progress_width = 79;

bool Steers_Terminal(char32_t character) {
  return (character < 0x20 && character != '\t' && character != '\n') ||
         (character >= 0x7F && character < 0xA0);
}

constexpr std::string_view replacement = "\xEF\xBF\xBD";

}  // namespace

std::string Printable(std::string_view text) {
  const std::string valid = Valid_Utf8(text);
  std::string printable;
  printable.reserve(valid.size());
  for (std::size_t at = 0; at < valid.size(); ++at) {
    const auto byte = static_cast<unsigned char>(valid[at]);
    if (byte == '\r' && at + 1 < valid.size() && valid[at + 1] == '\n') continue;
    // The C1 controls, U+0080 to U+009F, are the only ones beyond ASCII.
    const bool pair = byte == 0xC2 && at + 1 < valid.size();
    const char32_t character = pair ? static_cast<unsigned char>(valid[at + 1]) : byte;
    if ((byte < 0x80 || pair) && Steers_Terminal(character)) {
      printable += replacement;
      if (pair) ++at;
    } else {
      printable += valid[at];
    }
  }
  return printable;
}

std::string Printable_Line(std::string_view text) {
  std::string line;
  for (const char character : Printable(text)) {
    const bool blank = character == '\n' || character == '\t';
    // Runs of line ends and tabs are only layout.
    if (!blank || (!line.empty() && line.back() != ' ')) line += blank ? ' ' : character;
  }
  return line;
}

Terminal::Terminal()
    : can_ask_(Is_Terminal(stdin)),
      output_is_terminal_(Is_Terminal(stdout)),
      error_is_terminal_(Is_Terminal(stderr)),
      next_progress_(Clock::now() + before_progress) {
  Catch_Interrupt();
}

void Terminal::Write(std::string_view text) {
  End_Progress();
  Write_Text(stdout, text);
}

void Terminal::Flush() {
  std::fflush(stdout);
}

void Terminal::Check_Output() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw Failure(Exit_Status::Not_All_Done,
                  "Standard output could not be written. Check the room on its disk.");
  }
}

void Terminal::Write_Aside(std::string_view text) {
  End_Progress();
  // Keeps the order of the two streams.
  std::fflush(stdout);
  Write_Text(stderr, text);
}

void Terminal::Write_Error(std::string_view text) {
  Write_Aside("tidyfold-cli: " + Printable_Line(text) + "\n");
}

std::optional<std::string> Terminal::Read_Line() {
  std::string line;
  for (;;) {
    const int byte = Read_Byte();
    if (byte < 0) return std::nullopt;
    if (byte == '\n') return line;
    if (byte != '\r') line += static_cast<char>(byte);
  }
}

bool Terminal::Progress_Due() const {
  return error_is_terminal_ && Clock::now() >= next_progress_;
}

void Terminal::Progress(std::string_view text) {
  if (!Progress_Due()) return;
  next_progress_ = Clock::now() + between_progress;
  const std::string line = Printable_Line(text);
  Clear_Line();
  Write_Text(stderr, First_Characters(line, progress_width));
  std::fflush(stderr);
  progress_shown_ = true;
}

void Terminal::End_Progress() {
  if (!progress_shown_) return;
  Clear_Line();
  progress_shown_ = false;
}

// With blanks: not every terminal knows a sequence that clears.
void Terminal::Clear_Line() {
  if (progress_shown_) Write_Text(stderr, '\r' + std::string(progress_width, ' ') + '\r');
}

bool Terminal::Interrupted() const {
  return Interrupt_Caught();
}

std::function<bool(std::int64_t done, std::int64_t total)> Told_On(Terminal& terminal, std::string what) {
  return [&terminal, what = std::move(what)](std::int64_t done, std::int64_t total) {
    if (terminal.Progress_Due() && total > 0)
      terminal.Progress(what + "  " + std::to_string(done * 100 / total) + " %");
    return !terminal.Interrupted();
  };
}

}  // namespace tidyfold::cli
