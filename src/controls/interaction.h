// How procedures talk to the person and to the window system: message boxes and yields.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tidyfold {

// Of Retry_Stop the second counts as Cancel.
enum class Buttons { OK_Only = 0, OK_Cancel = 1, Yes_No_Cancel = 3, Yes_No = 4, Retry_Stop = 5 };
enum class Icon { None = 0, Critical = 16 };
enum class Answer { OK = 1, Cancel = 2, Retry = 4, Yes = 6, No = 7 };

// The answer that changes nothing: what a box that is closed without one counts as.
Answer Safest_Answer(Buttons buttons);

// The application's title, which a message box without a title of its own shows.
inline constexpr const char* application_title = "Tidyfold";

// What stands before a person who is to confirm a run.
struct Review {
  std::string sentence;  // says how much it is
  // A table: every row has as many cells as there are headers.
  std::vector<std::string> headers;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> lines;  // the rows as text, one line each
  std::vector<std::string> notes;  // what else decides, one line each

  // The same as lines, joined by CR LF: the sentence, the rows, the notes.
  std::string Text() const;
};

class Message_Box {
 public:
  virtual ~Message_Box() = default;
  // Modal: returns when the person has answered. Other handlers may run meanwhile.
  virtual Answer Show(const std::string& text, Buttons buttons = Buttons::OK_Only, Icon icon = Icon::None,
                      const std::string& title = application_title) = 0;
  // What a person may choose not to be told again.
  virtual void Inform(const std::string& text) { Show(text); }
  // OK or Cancel. Where there is no sheet with a table, its text.
  virtual Answer Show_Review(const Review& review);
  // A whole number from `least` to `most`; none when the person gives none, or where nobody can be asked.
  virtual std::optional<std::int32_t> Ask_Number(const std::string& /*question*/, std::int32_t /*now*/,
                                                 std::int32_t /*least*/, std::int32_t /*most*/) {
    return std::nullopt;
  }
  // A directory, beginning with the one given; UTF-8.
  virtual std::optional<std::string> Ask_Directory(const std::string& /*question*/,
                                                   const std::string& /*now*/) {
    return std::nullopt;
  }
};

class Events {
 public:
  virtual ~Events() = default;
  // Lets other handlers run. Whatever the caller knew of trees, grids and records may have changed
  // afterwards.
  virtual void Do_Events() = 0;
};

}  // namespace tidyfold
