#include "cli/terminal_message_box.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace tidyfold::cli {

namespace {

std::string Buttons_Line(Buttons buttons) {
  std::string line;
  for (const Answer answer : Answers(buttons))
    line.append(line.empty() ? "[" : "/").append(Answer_Name(answer));
  return line + "] ";
}

}  // namespace

const char* Answer_Name(Answer answer) {
  switch (answer) {
    case Answer::OK:
      return "OK";
    case Answer::Cancel:
      return "Cancel";
    case Answer::Retry:
      return "Retry";
    case Answer::Yes:
      return "Yes";
    case Answer::No:
      return "No";
  }
  return "";
}

std::vector<Answer> Answers(Buttons buttons) {
  switch (buttons) {
    case Buttons::OK_Only:
      return {Answer::OK};
    case Buttons::OK_Cancel:
      return {Answer::OK, Answer::Cancel};
    case Buttons::Yes_No:
      return {Answer::Yes, Answer::No};
    case Buttons::Yes_No_Cancel:
      return {Answer::Yes, Answer::No, Answer::Cancel};
    case Buttons::Retry_Stop:
      return {Answer::Retry, Answer::Cancel};
  }
  return {};
}

Answer Terminal_Message_Box::Show(const std::string& text, Buttons buttons, Icon icon, const std::string&) {
  if (loading_) {
    shown_while_loading_.push_back({text, buttons, icon, Safest_Answer(buttons)});
    return Safest_Answer(buttons);
  }
  // A rehearsal reports only refusals.
  if (answering_ == Answering::Rehearse && icon != Icon::Critical) return Answers(buttons).front();
  const Answer answer = Choose(text, buttons);
  shown_.push_back({text, buttons, icon, answer});
  return answer;
}

void Terminal_Message_Box::Agree_During(const std::function<void()>& work) {
  const Answering before = std::exchange(answering_, Answering::Agree);
  work();
  answering_ = before;
}

Answer Terminal_Message_Box::Choose(const std::string& text, Buttons buttons) {
  const bool agree = answering_ == Answering::Agree || answering_ == Answering::Rehearse;
  if (answering_ == Answering::Ask && buttons != Buttons::OK_Only) return Ask(text, buttons);
  // Nobody is there who could do what another attempt would wait for.
  const bool goes_on = agree && buttons != Buttons::Retry_Stop;
  const Answer answer = goes_on ? Answers(buttons).front() : Safest_Answer(buttons);
  if (!quiet_) {
    terminal_.Write(Printable(text) + "\n");
    if (buttons != Buttons::OK_Only) terminal_.Write(Buttons_Line(buttons) + Answer_Name(answer) + "\n");
    terminal_.Flush();
  }
  return answer;
}

// If standard output is not a terminal, questions go to standard error.
Answer Terminal_Message_Box::Ask(const std::string& text, Buttons buttons) {
  const bool aside = quiet_ || !terminal_.Output_Is_Terminal();
  const auto say = [&](const std::string& words) {
    aside ? terminal_.Write_Aside(words) : terminal_.Write(words);
  };
  say(Printable(text) + "\n");
  for (;;) {
    say(Buttons_Line(buttons));
    if (!aside) terminal_.Flush();
    const std::optional<std::string> line = terminal_.Read_Line();
    if (!line) {
      say("\n");
      return Safest_Answer(buttons);
    }
    const std::string given = Upper_Case(Trim(*line));
    for (const Answer answer : Answers(buttons)) {
      const std::string name = Upper_Case(Answer_Name(answer));
      if (given == name || given == name.substr(0, 1)) return answer;
    }
  }
}

}  // namespace tidyfold::cli
