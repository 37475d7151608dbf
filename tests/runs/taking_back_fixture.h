// A log, and takings back of its runs over any store.
#pragma once

#include <string>
#include <vector>

#include "cache/item_dates.h"
#include "doubles/fake_events.h"
#include "doubles/fixed_clock.h"
#include "doubles/scripted_message_box.h"
#include "outlook/folder_path.h"
#include "outlook/store_writer.h"
#include "runs/log_fixture.h"
#include "runs/taking_back.h"

namespace tidyfold {

class Taking_Back_Fixture : public Log_Fixture {
 protected:
  explicit Taking_Back_Fixture(Automation& store) : automation(store) {
    errors.Trap_Errors = true;
    session.Start_Outlook();
  }

  static std::vector<std::string> Add_Items(Store_Writer& writer, MAPIFolder& folder, int count) {
    std::vector<std::string> ids;
    for (int i = 0; i < count; ++i) {
      New_Item item;
      item.subject = folder.Name() + " " + std::to_string(i + 1);
      item.received = 40000 + i + 0.5;
      ids.push_back(writer.Add_Item(folder, item));
    }
    return ids;
  }
  Logged_Item Describe(Item& item) const {
    Logged_Item logged;
    logged.folder = Describe_Folder(*item.Parent());
    logged.entry_id = item.EntryID();
    logged.subject = item.Subject();
    logged.item_class = item.Class();
    logged.date = Get_Item_Date(item, logged.item_class);
    return logged;
  }
  // Deletes items as a run does. Returns the run.
  std::int64_t Clean(const std::vector<std::string>& ids, const std::string& store_id,
                     Item_Action action = Item_Action::Moved, Item_Result result = Item_Result::Done) {
    const std::int64_t run = log.Begin({}, now);
    for (const std::string& id : ids) {
      const Item_Ptr item = session.name_space->GetItemFromID(id, store_id);
      Logged_Item logged = Describe(*item);
      logged.action = action;
      logged.result = result;
      log.Note(logged);
      item->Delete();
      if (action == Item_Action::Deleted) session.name_space->GetItemFromID(id, store_id)->Delete();
    }
    log.End({static_cast<std::int64_t>(ids.size()), false, false}, now);
    return run;
  }
  std::string Place(const std::string& id, const std::string& store_id) const {
    return Path_Of_Folder(*session.name_space->GetItemFromID(id, store_id)->Parent());
  }
  void Confirm(Answer answer = Answer::OK) {
    box.Expect("will be put back from \"Deleted Items\".", Buttons::OK_Cancel, answer);
  }
  void Expect_Told(const std::string& part) { box.Expect(part, Buttons::OK_Only, Answer::OK); }

  Automation& automation;
  Run_Log log{file};
  Fixed_Clock clock;
  Fake_Events events;
  Scripted_Message_Box box;
  MainWindow window;
  Error_Handler errors{box};
  Outlook_Session session{automation, window, box, errors};
  Taking_Back taking_back{session, automation.Groups(), log, &Get_Item_Date, clock, box, events, errors};
};

}  // namespace tidyfold
