#include "desktop/window_driver.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tidyfold {

namespace {

using std::chrono::steady_clock;
constexpr std::chrono::seconds patience{60};

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

int Milliseconds_Until(steady_clock::time_point end) {
  return static_cast<int>(
      std::chrono::duration_cast<std::chrono::milliseconds>(end - steady_clock::now()).count());
}

bool On_Path(const std::string& program) {
  std::istringstream folders(std::getenv("PATH") == nullptr ? "" : std::getenv("PATH"));
  for (std::string folder; std::getline(folders, folder, ':');)
    if (access((folder + "/" + program).c_str(), X_OK) == 0) return true;
  return false;
}

}  // namespace

// --- Processes ------------------------------------------------------------------------------------------

Child_Process::Child_Process(const std::vector<std::string>& command,
                             const std::vector<std::string>& environment, const std::filesystem::path& output,
                             const std::string& descriptor_name) {
  int ends[2] = {-1, -1};
  if (!descriptor_name.empty() && pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ == 0) {
    std::vector<std::string> arguments = command;
    if (ends[1] >= 0) {
      fcntl(ends[1], F_SETFD, 0);
      for (std::string& argument : arguments)
        if (argument == descriptor_name) argument = std::to_string(ends[1]);
    }
    const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    execvpe(arguments[0].c_str(), Pointers(arguments).data(), Pointers(environment).data());
    _exit(127);
  }
  if (ends[1] >= 0) close(ends[1]);
  pipe_ = ends[0];
}

Child_Process::~Child_Process() {
  if (Running()) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  if (pipe_ >= 0) close(pipe_);
}

std::string Child_Process::First_Line() {
  std::string line;
  for (char letter = 0; read(pipe_, &letter, 1) == 1 && letter != '\n';) line += letter;
  return line;
}

bool Child_Process::Running() {
  if (status_) return false;
  int status = 0;
  if (waitpid(process_, &status, WNOHANG) != process_) return true;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return false;
}

std::optional<int> Child_Process::Wait_For_End() {
  const auto end = steady_clock::now() + patience;
  while (Running() && steady_clock::now() < end) poll(nullptr, 0, 10);
  return status_;
}

void Child_Process::Signal(int signal) const {
  kill(process_, signal);
}

bool Window_Driver::Wait_In_Folder(const std::function<bool()>& condition) const {
  const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  inotify_add_watch(watch, folder_.c_str(), IN_MOVED_TO | IN_CREATE);
  const auto end = steady_clock::now() + patience;
  bool held = condition();
  while (!held && Milliseconds_Until(end) > 0) {
    pollfd change{watch, POLLIN, 0};
    poll(&change, 1, std::min(Milliseconds_Until(end), 1000));
    char events[4096];
    while (read(watch, events, sizeof events) > 0) {
    }
    held = condition();
  }
  close(watch);
  return held;
}

// --- The window -----------------------------------------------------------------------------------------

std::string Window_Driver::What_Is_Missing() {
  for (const char* const program : {"Xvfb", "openbox", "xdotool"})
    if (!On_Path(program)) return program;
  return {};
}

Window_Driver::Window_Driver(const std::filesystem::path& folder,
                             const std::vector<std::filesystem::path>& stores)
    : folder_(folder), state_file_(folder / "window.json"), output_(folder / "output.txt") {
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string entry = *variable;
    // Keeps the user's theme, configuration and screen out of the test.
    if (!entry.starts_with("DISPLAY=") && !entry.starts_with("XDG_") && !entry.starts_with("GTK_") &&
        !entry.starts_with("WAYLAND_") && !entry.starts_with("HOME=") && !entry.starts_with("GDK_"))
      environment_.push_back(entry);
  }
  environment_.push_back("HOME=" + folder.string());
  environment_.push_back("XDG_CONFIG_HOME=" + (folder / "config").string());
  environment_.push_back("NO_AT_BRIDGE=1");
  environment_.push_back("GDK_BACKEND=x11");
  environment_.push_back("TIDYFOLD_WINDOW_STATE=" + state_file_.string());
  screen_.emplace(
      std::vector<std::string>{"Xvfb", "-displayfd", "N", "-screen", "0", "1280x900x24", "-nolisten", "tcp"},
      environment_, output_, "N");
  environment_.push_back("DISPLAY=:" + screen_->First_Line());
  // A window that opens before the window manager runs never gets the keyboard.
  const std::filesystem::path managed = folder / "managed";
  manager_.emplace(
      std::vector<std::string>{"openbox", "--sm-disable", "--startup", "touch '" + managed.string() + "'"},
      environment_, output_);
  if (!Wait_In_Folder([&] { return std::filesystem::exists(managed); }))
    throw std::runtime_error("The window manager has not started.");
  std::filesystem::remove(managed);
  std::vector<std::string> command{TIDYFOLD_PROGRAM};
  for (const std::filesystem::path& store : stores)
    command.insert(command.end(), {"--store", store.string()});
  program_.emplace(command, environment_, output_);
}

std::optional<Window_Driver::State> Window_Driver::Read() const {
  std::ifstream file(state_file_, std::ios::binary);
  if (!file) return std::nullopt;
  return State::parse(file);
}

Window_Driver::State Window_Driver::Wait(const std::string& what,
                                         const std::function<bool(const State&)>& condition) {
  std::optional<State> state;
  const bool held = Wait_In_Folder([&] {
    state = Read();
    return (state && condition(*state)) || !program_->Running();
  });
  if (held && program_->Running()) return *state;
  std::ifstream printed(output_);
  std::ostringstream text;
  text << "Waited in vain for: " << what << "\nThe program is " << (program_->Running() ? "running" : "gone")
       << ", has printed:\n"
       << std::string(std::istreambuf_iterator<char>(printed), {}) << "\nand shows:\n"
       << (state ? state->dump() : "nothing");
  throw std::runtime_error(text.str());
}

Window_Driver::State Window_Driver::Wait_For_Box(const std::string& words) {
  return Wait("a box that says " + words, [&](const State& state) {
    return !state["boxes"].empty() &&
           state["boxes"].back().get<std::string>().find(words) != std::string::npos;
  });
}

Window_Driver::State Window_Driver::Wait_For_No_Box() {
  return Wait("no box", [](const State& state) { return state["boxes"].empty(); });
}

void Window_Driver::Xdotool(std::initializer_list<std::string> arguments) {
  std::vector<std::string> command{"xdotool"};
  command.insert(command.end(), arguments);
  Child_Process tool(command, environment_, output_);
  if (tool.Wait_For_End() != 0) {
    std::string said;
    for (const std::string& argument : command) said += argument + " ";
    throw std::runtime_error(said + "failed");
  }
}

void Window_Driver::Click_At(const State& rectangle, int from_left, int times) {
  const int left = rectangle[0], top = rectangle[1], width = rectangle[2], height = rectangle[3];
  Xdotool({"mousemove", std::to_string(left + (from_left == 0 ? width / 2 : from_left)),
           std::to_string(top + height / 2), "click", "--repeat", std::to_string(times), "--delay", "50",
           "1"});
}

namespace {

constexpr int tick_box_middle = 8;  // pixels from the left edge of a check box or node
constexpr int beyond_tick_box = 40;

}  // namespace

Window_Driver::State Window_Driver::Usable(const std::string& control) {
  return Wait(control + " can be used", [&](const State& now) {
    return now["widgets"].contains(control) && now["widgets"][control]["enabled"].get<bool>();
  })["widgets"][control];
}

void Window_Driver::Click(const std::string& control) {
  Click_At(Usable(control)["rectangle"]);
}

void Window_Driver::Tick_Option(const std::string& control) {
  const State option = Usable(control);
  Click_At(option["rectangle"], tick_box_middle);
  Wait(control + " is turned",
       [&](const State& now) { return now["widgets"][control]["checked"] != option["checked"]; });
}

Window_Driver::State Window_Driver::Node(const std::string& name) {
  // A node's text is its folder's name and, in parentheses, a count.
  const auto is_it = [&](const State& node) {
    return node["text"].get<std::string>().starts_with(name + " ");
  };
  const State state = Wait("the folder " + name, [&](const State& now) {
    return now.contains("tree") && std::any_of(now["tree"].begin(), now["tree"].end(), is_it) &&
           now["widgets"]["trvFolders"]["enabled"].get<bool>();
  });
  return *std::find_if(state["tree"].begin(), state["tree"].end(), is_it);
}

void Window_Driver::Tick_Folder(const std::string& name) {
  Click_At(Node(name)["rectangle"], tick_box_middle);
}

void Window_Driver::Click_Folder(const std::string& name) {
  Click_At(Node(name)["rectangle"], beyond_tick_box);
}

void Window_Driver::Click_Row(int row, const std::string& held_key, int times) {
  const State state = Wait("row " + std::to_string(row), [&](const State& now) {
    return now.contains("grid") && static_cast<int>(now["grid"].size()) >= row;
  });
  if (!held_key.empty()) Xdotool({"keydown", held_key});
  Click_At(state["grid"][static_cast<std::size_t>(row - 1)]["rectangle"], 0, times);
  if (!held_key.empty()) Xdotool({"keyup", held_key});
}

void Window_Driver::Wait_For_Keyboard() {
  Wait("the keyboard to be the window's", [](const State& state) { return state["keyboard"] == "window"; });
}

void Window_Driver::Type(const std::string& text) {
  Wait_For_Keyboard();
  Xdotool({"type", text});
}

void Window_Driver::Key(const std::string& key) {
  Wait_For_Keyboard();
  Xdotool({"key", key});
}

Window_Driver::State Window_Driver::Key_In_The_Middle(const std::string& what,
                                                      const std::function<bool(const State&)>& condition,
                                                      const std::string& key) {
  const State state =
      Wait(what, [&](const State& now) { return now["keyboard"] == "window" && condition(now); });
  program_->Signal(SIGSTOP);
  Xdotool({"key", key});
  program_->Signal(SIGCONT);
  return state;
}

void Window_Driver::Key_To_Other(const std::string& key) {
  Wait("the keyboard to be another window's",
       [](const State& state) { return state["keyboard"] == "other"; });
  Xdotool({"key", key});
}

void Window_Driver::Drag(const std::string& control, int by_x) {
  const State state = Wait(control, [&](const State& now) { return now["widgets"].contains(control); });
  const State& at = state["widgets"][control]["rectangle"];
  const int x = at[0].get<int>() + at[2].get<int>() / 2, y = at[1].get<int>() + at[3].get<int>() / 3;
  Xdotool({"mousemove", std::to_string(x), std::to_string(y), "mousedown", "1"});
  for (const int step : {1, 2, 3, 4})
    Xdotool({"mousemove", std::to_string(std::max(x + by_x * step / 4, 0)), std::to_string(y)});
  Xdotool({"mouseup", "1"});
}

void Window_Driver::Close_Window() {
  Key("alt+F4");
}

int Window_Driver::Press(const std::string& words, const std::string& key) {
  const int closed = Wait_For_Box(words)["boxes_closed"];
  Wait("the keyboard to be the box's", [](const State& state) { return state["keyboard"] == "box"; });
  Xdotool({"key", key});
  return closed;
}

void Window_Driver::Answer(const std::string& words, const std::string& key) {
  const int closed = Press(words, key);
  Wait("the box to go", [&](const State& state) { return state["boxes_closed"] > closed; });
}

}  // namespace tidyfold
