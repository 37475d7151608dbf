// The log of runs: runs, undo.
#include <nlohmann/json.hpp>
#include <utility>

#include "base/system_clock.h"
#include "cache/item_dates.h"
#include "cli/chosen_stores.h"
#include "cli/cli_events.h"
#include "cli/commands.h"
#include "cli/killed_runs.h"
#include "cli/listing.h"
#include "controls/main_window.h"
#include "outlook/session.h"
#include "runs/run_listing.h"
#include "runs/taking_back.h"

namespace tidyfold::cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t number_width = 5, time_width = 17, kind_width = 12, processed_width = 10;
constexpr std::size_t date_width = 11, done_width = 15, result_width = 26, subject_width = 41;

Logged_Run Find_Run(Run_Log& log, std::int64_t number) {
  std::optional<Logged_Run> run = log.Run(number);
  if (!run) {
    throw Failure(Exit_Status::Bad_Input, "The log holds no run " + std::to_string(number) +
                                              ". \"tidyfold-cli runs\" lists what it holds.");
  }
  return *std::move(run);
}

Json Run_Json(const Logged_Run& run) {
  return {{"run", run.run},
          {"kind", Kind_Text(run.header.kind)},
          {"undo_of", run.header.undo_of},
          {"began", run.began},
          {"ended", run.ended},
          {"state", State_Text(run.state)},
          {"stores", Store_Texts(run)},
          {"options", run.header.options},
          {"processed", run.outcome.processed},
          {"not_known", run.uncertain},
          {"not_all_deleted", run.outcome.not_all_deleted},
          {"cancelled", run.outcome.cancelled},
          {"taken_back", run.taken_back != 0}};
}

Json Item_Json(const Logged_Run& run, const Logged_Item& item) {
  return {{"entry_id", item.entry_id},
          {"folder", Folder_Text(run, item.folder)},
          {"subject", item.subject},
          {"date", Date_Text(item)},
          {"done", Action_Text(item.action)},
          {"result", Result_Text(item.result)},
          {"reason", item.reason}};
}

// Rows of one form, as they come.
class Rows {
 public:
  Rows(Terminal& terminal, Form form) : terminal_(terminal), form_(form) {}
  void Begin(const std::vector<std::string>& csv_headers, const std::string& text_header) {
    terminal_.Write(form_ == Form::Json  ? "["
                    : form_ == Form::Csv ? Csv_Line(csv_headers) + "\n"
                                         : text_header);
  }
  template <class Make_Json, class Make_Cells, class Make_Text>
  void Add(Make_Json&& json, Make_Cells&& cells, Make_Text&& text) {
    if (form_ == Form::Json) terminal_.Write(std::exchange(separator_, ",\n") + To_Json(json()));
    if (form_ == Form::Csv) terminal_.Write(Csv_Line(cells()) + "\n");
    if (form_ == Form::Text) terminal_.Write(text());
  }
  void End() {
    if (form_ == Form::Json) terminal_.Write("\n]\n");
  }

 private:
  Terminal& terminal_;
  Form form_;
  const char* separator_ = "\n";
};

std::string Remarks(const Logged_Run& run) {
  std::string remarks = run.header.options;
  const auto add = [&](const std::string& remark) { remarks += (remarks.empty() ? "" : "; ") + remark; };
  if (run.state != Run_State_In_Log::Ended) add(State_Text(run.state));
  if (run.uncertain > 0) add(std::to_string(run.uncertain) + " more not known");
  if (run.outcome.cancelled) add("cancelled");
  if (run.outcome.not_all_deleted) add("not everything could be processed");
  if (run.taken_back != 0) add("taken back by run " + std::to_string(run.taken_back));
  return remarks;
}

void List_Runs(Run_Log& log, Terminal& terminal, Form form) {
  Rows rows(terminal, form);
  rows.Begin(Run_Headers(), Cell("Run", number_width) + Cell("Began", time_width) + Cell("What", kind_width) +
                                Cell("Processed", processed_width) + "Options\n");
  for (const Logged_Run& run : log.Runs()) {
    rows.Add([&] { return Run_Json(run); }, [&] { return Run_Cells(run); },
             [&] {
               std::string began = run.began.substr(0, 16);
               if (began.size() > 10) began[10] = ' ';
               return Cell(std::to_string(run.run), number_width) + Cell(began, time_width) +
                      Cell(Kind_Text(run.header.kind), kind_width) +
                      Cell(std::to_string(run.outcome.processed), processed_width) +
                      Printable_Line(Remarks(run)) + "\n";
             });
  }
  rows.End();
}

void List_Run_Items(Run_Log& log, const Logged_Run& run, Terminal& terminal, Form form) {
  Rows rows(terminal, form);
  rows.Begin(Run_Item_Headers(), Cell("Date", date_width) + Cell("Done", done_width) +
                                     Cell("Result", result_width) + Cell("Subject", subject_width) +
                                     "Folder\n");
  log.Items(run.run, [&](const Logged_Item& item) {
    rows.Add([&] { return Item_Json(run, item); }, [&] { return Run_Item_Cells(run, item); },
             [&] {
               const std::string reason = item.reason.empty() ? "" : ": " + item.reason;
               return Cell(Date_Text(item), date_width) + Cell(Action_Text(item.action), done_width) +
                      Cell(Result_Text(item.result), result_width) + Cell(item.subject, subject_width - 1) +
                      " " + Printable_Line(Folder_Text(run, item.folder) + reason) + "\n";
             });
  });
  rows.End();
}

class Undo_Command {
 public:
  Undo_Command(const Arguments& arguments, Terminal& terminal)
      : arguments_(arguments),
        terminal_(terminal),
        json_(arguments.form == Form::Json),
        answering_(arguments.yes        ? Answering::Agree
                   : terminal.Can_Ask() ? Answering::Ask
                                        : Answering::Decline),
        log_(Default_Run_Log_File()),
        stores_(arguments),
        message_box_(terminal, answering_, json_) {
    errors_.Trap_Errors = true;
    events_.due = [this] { Events_Due(); };
    events_.urgent = [this] { return terminal_.Interrupted() && taking_back_.Under_Way(); };
  }

  Exit_Status Run() {
    Tell_Killed_Runs(log_, terminal_);
    const std::optional<Logged_Run> run =
        arguments_.run ? std::optional(Find_Run(log_, *arguments_.run)) : log_.Last_To_Take_Back();
    if (arguments_.outlook) {
      stores_.Name_Space();
    } else if (run) {
      stores_.Open(arguments_.stores.empty() ? Places(*run) : arguments_.stores,
                   Opening_For(arguments_, Store_Mode::Read_Write, terminal_));
    }
    session_.Start_Outlook();
    const Taking_Back_Report report =
        taking_back_.Take_Back_Run(run ? std::optional(run->run) : std::nullopt);
    terminal_.End_Progress();
    for (const Logged_Item& item : report.not_put_back) {
      terminal_.Write_Error("\"" + item.subject + "\" (" + (run ? Folder_Text(*run, item.folder) : "") +
                            ") was not put back: " + item.reason);
    }
    Write_Document(report, run);
    return Status(report);
  }

 private:
  // The stores as they were opened for the run.
  static std::vector<Store_Address> Places(const Logged_Run& run) {
    std::vector<Store_Address> places;
    for (const Logged_Store& store : run.header.stores)
      if (!store.place.empty()) places.push_back(Read_Store_Address(store.place));
    if (places.empty()) {
      throw Failure(Exit_Status::Bad_Input,
                    "The log does not tell where the stores of the run lie. Name them with --store, or give "
                    "--outlook.");
    }
    return places;
  }

  void Events_Due() {
    stores_.Commit_Due();
    if (terminal_.Interrupted()) taking_back_.Cancel();
    if (terminal_.Progress_Due()) {
      terminal_.Progress("Putting back  " + std::to_string(taking_back_.Looked_At()) + " of " +
                         std::to_string(taking_back_.To_Look_At()));
    }
  }

  Exit_Status Status(const Taking_Back_Report& report) {
    switch (report.ending) {
      case Taking_Back_Report::Ending::Refused:
        terminal_.Write_Error(answering_ == Answering::Decline
                                  ? "There is no terminal to confirm it on. Give --yes to confirm it "
                                    "beforehand. Nothing was changed."
                                  : "Nothing was changed.");
        return Exit_Status::Refused;
      case Taking_Back_Report::Ending::Cancelled:
        terminal_.Write_Error("Cancelled on the way; what had been put back by then stays so.");
        return Exit_Status::Cancelled;
      case Taking_Back_Report::Ending::Broken_Off:
        if (!report.failure.empty()) terminal_.Write_Error(report.failure);
        return Exit_Status::Not_All_Done;
      case Taking_Back_Report::Ending::Nothing_To_Do:
      case Taking_Back_Report::Ending::Done:
        break;
    }
    return report.Complete() ? Exit_Status::Done : Exit_Status::Not_All_Done;
  }

  void Write_Document(const Taking_Back_Report& report, const std::optional<Logged_Run>& run) {
    if (!json_) return;
    Json left = Json::array();
    for (const Logged_Item& item : report.not_put_back) left.push_back(Item_Json(*run, item));
    terminal_.Write(To_Json({{"messages", Messages_Json(message_box_)},
                             {"run", report.run},
                             {"undo_of", report.undo_of},
                             {"put_back", report.put_back},
                             {"deleted_for_good", report.gone_for_good},
                             {"not_put_back", left}}) +
                    "\n");
  }

  const Arguments& arguments_;
  Terminal& terminal_;
  bool json_;
  Answering answering_;
  Run_Log log_;
  Chosen_Stores stores_;
  Terminal_Message_Box message_box_;
  Cli_Events events_;
  System_Clock clock_;
  MainWindow window_;
  Error_Handler errors_{message_box_};
  Outlook_Session session_{stores_.Source(), window_, message_box_, errors_};
  Taking_Back taking_back_{
      session_, stores_.Source().Groups(), log_, &Get_Item_Date, clock_, message_box_, events_, errors_};
};

}  // namespace

void Tell_Killed_Runs(Run_Log& log, Terminal& terminal) {
  for (const Logged_Run& run : log.Killed_Since_Last_Told()) {
    const std::string number = std::to_string(run.run);
    std::string text = Killed_Text(run);
    text.append(" \"tidyfold-cli runs ").append(number).append("\" lists them, \"undo ");
    text.append(number).append("\" takes back what was moved.");
    terminal.Write_Error(text);
    log.Told(run.run);
  }
}

Exit_Status Runs(const Arguments& arguments, Terminal& terminal) {
  Run_Log log(Default_Run_Log_File());
  if (arguments.run) {
    List_Run_Items(log, Find_Run(log, *arguments.run), terminal, arguments.form);
  } else {
    List_Runs(log, terminal, arguments.form);
  }
  return Exit_Status::Done;
}

Exit_Status Undo(const Arguments& arguments, Terminal& terminal) {
  return Undo_Command(arguments, terminal).Run();
}

}  // namespace tidyfold::cli
