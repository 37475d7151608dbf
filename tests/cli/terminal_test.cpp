// The program with a terminal on all its streams.
#include <pty.h>
#include <unistd.h>

#include <algorithm>

#include "program.h"

namespace tidyfold::cli {
namespace {

class At_Terminal : public Program_Test {
 protected:
  void SetUp() override { Make_Sample(); }

  // Types one answer at each question. Returns the exit status; shown_ is the output.
  int Type(const Words& words, const Words& answers) {
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0) {
      std::vector<char*> arguments{const_cast<char*>(TIDYFOLD_CLI), const_cast<char*>("--store"),
                                   store_.data()};
      for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
      arguments.push_back(nullptr);
      execv(TIDYFOLD_CLI, arguments.data());
      _exit(127);
    }
    shown_.clear();
    std::size_t answered = 0, looked = 0;
    char piece[512];
    for (ssize_t size = 0; (size = read(terminal, piece, sizeof piece)) > 0;) {
      shown_.append(piece, static_cast<std::size_t>(size));
      // Every list of buttons of a question ends so.
      const auto at = std::min(shown_.find("/No] ", looked), shown_.find("/Cancel] ", looked));
      if (at == std::string::npos || answered == answers.size()) continue;
      looked = shown_.find("] ", at) + 2;
      const std::string& answer = answers[answered++];
      EXPECT_EQ(write(terminal, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    }
    close(terminal);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(answered, answers.size()) << shown_;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::size_t In_Notes() const {
    return On_Store({"items", "--folder", "Notes", "--json"}).Document().size();
  }

  std::string shown_;
};

TEST_F(At_Terminal, a_question_waits_for_an_answer_that_is_one) {
  const Words clean = Split("clean --folder Notes --permanent");
  const std::size_t notes = In_Notes();
  const Words refusals[] = {{"c\n"},         {"\x04"},         {"ok\n", "n\n"},
                            {"o\n", "No\n"}, {"ok\n", "\x04"}, {"ok\n", "\x03"}};
  for (const Words& answers : refusals) {
    EXPECT_EQ(Type(clean, answers), 3) << shown_;
    EXPECT_EQ(In_Notes(), notes);
  }
  EXPECT_EQ(Type(clean, {"y\n", "ok\n", "perhaps\n", "\n", "yes\n"}), 0) << shown_;
  EXPECT_NE(shown_.find(" items were deleted."), std::string::npos) << shown_;
  EXPECT_EQ(In_Notes(), 0u);
  EXPECT_EQ(Type(Split("clean --folder Journal --confirm-folders"), {"ok\n", "n\n"}), 3) << shown_;
}

TEST_F(At_Terminal, items_are_asked_for_until_the_run_is_cancelled) {
  const std::size_t notes = In_Notes();
  ASSERT_GT(notes, 3u);
  for (const char* stop : {"c\n", "\x03"}) {
    EXPECT_EQ(Type(Split("clean --folder Notes --confirm-items"), {"ok\n", "y\n", "n\n", stop}), 4) << shown_;
    EXPECT_NE(shown_.find("1 item was moved to the \"Deleted Items\" folder."), std::string::npos) << shown_;
  }
  EXPECT_EQ(In_Notes(), notes - 2);
}

}  // namespace
}  // namespace tidyfold::cli
