// Drives the built program on a virtual screen with real mouse and keyboard events.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tidyfold {

// A process that ends with its owner.
class Child_Process {
 public:
  // `output` is the file for what it prints. An argument equal to `descriptor_name` is replaced by the number
  // of a pipe's writing end, whose first line First_Line reads.
  Child_Process(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                const std::filesystem::path& output, const std::string& descriptor_name = {});
  Child_Process(const Child_Process&) = delete;
  Child_Process& operator=(const Child_Process&) = delete;
  ~Child_Process();

  std::string First_Line();
  // The exit status, negative for a signal; nothing if the process does not end in time.
  std::optional<int> Wait_For_End();
  bool Running();
  void Signal(int signal) const;

 private:
  pid_t process_ = -1;
  int pipe_ = -1;
  std::optional<int> status_;
};

// One window on one screen. Waits are for a state of the window and fail after a minute.
class Window_Driver {
 public:
  // A program that is missing on this machine, or an empty text.
  static std::string What_Is_Missing();

  // `stores` are given with --store each.
  Window_Driver(const std::filesystem::path& folder, const std::vector<std::filesystem::path>& stores);

  using State = nlohmann::json;
  // The first state for which the condition holds.
  State Wait(const std::string& what, const std::function<bool(const State&)>& condition);
  // A message box whose text holds `words` is open.
  State Wait_For_Box(const std::string& words);
  State Wait_For_No_Box();

  void Click(const std::string& control);
  void Tick_Option(const std::string& control);
  // On the tick box of a tree's node, or on its name.
  void Tick_Folder(const std::string& name);
  void Click_Folder(const std::string& name);
  void Click_Row(int row, const std::string& held_key = {}, int times = 1);
  // To the main window; for boxes there are Press and Answer.
  void Type(const std::string& text);
  void Key(const std::string& key);
  // Stops the program when the condition holds until the key is pressed, so that the key comes in the middle
  // of the work. Returns that state.
  State Key_In_The_Middle(const std::string& what, const std::function<bool(const State&)>& condition,
                          const std::string& key);
  // To the window in front, which is neither the main one nor a box.
  void Key_To_Other(const std::string& key);
  void Drag(const std::string& control, int by_x);
  // Like the close button of the window manager.
  void Close_Window();
  // Presses a key in the box with `words`; returns how many boxes had been closed before.
  int Press(const std::string& words, const std::string& key);
  // Press, then waits until the box is closed.
  void Answer(const std::string& words, const std::string& key);

  // For everything else.
  void Xdotool(std::initializer_list<std::string> arguments);

  Child_Process& Program() { return *program_; }

 private:
  // `from_left` pixels from the left edge; 0 for the middle.
  void Click_At(const State& rectangle, int from_left = 0, int times = 1);
  // The control, once it is enabled.
  State Usable(const std::string& control);
  void Wait_For_Keyboard();
  // Checks the condition whenever a file in the test's folder is replaced; false if it never holds.
  bool Wait_In_Folder(const std::function<bool()>& condition) const;
  std::optional<State> Read() const;
  State Node(const std::string& name);

  std::filesystem::path folder_, state_file_, output_;
  std::vector<std::string> environment_;
  std::optional<Child_Process> screen_, manager_, program_;
};

}  // namespace tidyfold
