// Message boxes on the terminal.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/terminal.h"
#include "controls/interaction.h"

namespace tidyfold::cli {

enum class Answering {
  Ask,       // ask at the terminal
  Agree,     // Yes or OK to everything
  Decline,   // No or Cancel; nobody is there
  Rehearse,  // Yes or OK to everything, silently: nothing will be changed
};

struct Shown_Message {
  std::string text;
  Buttons buttons;
  Icon icon;
  Answer answer;
};

class Terminal_Message_Box : public Message_Box {
 public:
  // With `quiet`, boxes are recorded but not shown, except questions.
  Terminal_Message_Box(Terminal& terminal, Answering answering, bool quiet)
      : terminal_(terminal), answering_(answering), quiet_(quiet) {}

  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;

  // While the stores load, boxes are recorded separately and not shown.
  void Begin_Loading() { loading_ = true; }
  void End_Loading() { loading_ = false; }
  const std::vector<Shown_Message>& Shown_While_Loading() const { return shown_while_loading_; }
  const std::vector<Shown_Message>& Shown() const { return shown_; }

  // Boxes during this time are answered Yes or OK without asking.
  void Agree_During(const std::function<void()>& work);

 private:
  Answer Choose(const std::string& text, Buttons buttons);
  Answer Ask(const std::string& text, Buttons buttons);

  Terminal& terminal_;
  Answering answering_;
  bool quiet_;
  bool loading_ = false;
  std::vector<Shown_Message> shown_, shown_while_loading_;
};

const char* Answer_Name(Answer answer);
// The possible answers, in the order of the buttons.
std::vector<Answer> Answers(Buttons buttons);

}  // namespace tidyfold::cli
