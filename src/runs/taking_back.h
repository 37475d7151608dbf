// Taking a run back: its items leave "Deleted Items" for the folders that they came from.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "controls/interaction.h"
#include "errors/procedure.h"
#include "outlook/session.h"
#include "runs/run_log.h"

namespace tidyfold {

struct Taking_Back_Report {
  enum class Ending {
    Nothing_To_Do,  // which was told
    Refused,        // or not confirmed
    Done,           // Complete() tells whether that was everything
    Cancelled,
    Broken_Off,  // `failure` says why, unless it was reported
  };
  Ending ending = Ending::Nothing_To_Do;
  std::int64_t run = 0;  // of the taking back itself; 0: none was begun
  std::int64_t undo_of = 0;
  std::int64_t put_back = 0;
  std::int64_t gone_for_good = 0;         // deleted, not moved
  std::vector<Logged_Item> not_put_back;  // each with its reason
  std::vector<Logged_Folder> folders;     // that items went into
  bool folders_made = false;
  bool store_failed = false;  // or was not open, for some of them: worth another attempt
  std::string failure;

  bool Complete() const { return not_put_back.empty() && gone_for_good == 0; }
};

// An item in "Deleted Items".
struct Item_Identity {
  std::string entry_id, store_id;
};

// One at a time; what is asked for meanwhile does nothing. All questions and reports are message boxes.
class Taking_Back {
 public:
  // The day of an item that the log notes, as it is shown.
  using Item_Day = std::function<Date(Item&, std::int32_t item_class)>;

  // `groups` is nullptr where each change lasts at once.
  Taking_Back(Outlook_Session& session, Change_Groups* groups, Run_Log& log, Item_Day item_day, Clock& clock,
              Message_Box& message_box, Events& events, Error_Handler& errors)
      : session_(session),
        groups_(groups),
        log_(log),
        item_day_(std::move(item_day)),
        clock_(clock),
        message_box_(message_box),
        events_(events),
        errors_(errors) {}

  // The last run that can be taken back, or the one with this number. Asks before anything is changed, and
  // tells what was done.
  Taking_Back_Report Take_Back_Run(std::optional<std::int64_t> run = std::nullopt);
  // Single items, to where the newest run that moved them found them. Tells only what could not be put back.
  Taking_Back_Report Put_Back(const std::vector<Item_Identity>& items);

  // Ends what is under way after the item that it is at.
  void Cancel() { cancelled_ = true; }
  bool Under_Way() const { return under_way_; }
  // How far it has come, in items.
  std::int64_t Looked_At() const { return looked_at_; }
  std::int64_t To_Look_At() const { return to_look_at_; }

 private:
  template <class Work>
  Taking_Back_Report Guarded(Literal name, Work&& work);
  std::optional<Logged_Run> Find_Run(std::optional<std::int64_t> wanted, Taking_Back_Report& report);
  bool Confirm(const Logged_Run& run, const struct Taking_Back_Count& count, Taking_Back_Report& report);
  void Tell_Result(const Taking_Back_Report& report);
  void Tell(const std::string& text, Icon icon = Icon::None) {
    message_box_.Show(text, Buttons::OK_Only, icon);
  }

  Outlook_Session& session_;
  Change_Groups* groups_;
  Run_Log& log_;
  Item_Day item_day_;
  Clock& clock_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  bool under_way_ = false;
  bool cancelled_ = false;
  std::int64_t looked_at_ = 0, to_look_at_ = 0;
};

}  // namespace tidyfold
