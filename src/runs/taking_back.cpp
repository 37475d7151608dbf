#include "runs/taking_back.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include "base/dates.h"
#include "runs/putting_back.h"
#include "runs/run_listing.h"

namespace tidyfold {

namespace {

constexpr std::size_t items_named = 10;

std::string Key(const std::string& store_id, const std::string& entry_id) {
  return store_id + "/" + entry_id;
}

Days Days_Of(const Logged_Run& run, Date today) {
  const auto day = [](const std::string& time) { return Parse_Date(std::string_view(time).substr(0, 10)); };
  Days days;
  if (const auto first = day(run.began)) days.first = *first;
  days.last = today;
  if (const auto last = run.ended.empty() ? std::nullopt : day(run.ended)) days.last = *last;
  return days;
}

bool May_Lie_In_Deleted_Items(const Logged_Item& item) {
  if (item.action == Item_Action::Moved)
    return item.result == Item_Result::Done || item.result == Item_Result::Begun;
  // To delete for good is to move first.
  return item.action == Item_Action::Deleted && item.result == Item_Result::Begun;
}

bool Is_Gone_For_Good(const Logged_Item& item) {
  return item.result == Item_Result::Done &&
         (item.action == Item_Action::Deleted || item.action == Item_Action::Folder_Deleted);
}

}  // namespace

// What a run has left to be taken back.
struct Taking_Back_Count {
  std::int64_t to_put_back = 0, put_back_before = 0, gone_for_good = 0, uncertain = 0;
  std::vector<std::pair<std::string, std::int64_t>> folders;  // and how many items of each
  std::map<std::string, Folder_Finder::Item_Types> types;
  std::unordered_set<std::string> put_back;  // by earlier takings back
};

namespace {

Taking_Back_Count Count(Run_Log& log, const Logged_Run& run) {
  Taking_Back_Count count;
  for (const Logged_Run& later : log.Runs()) {
    if (later.run <= run.run || later.header.kind == Run_Kind::Cleaning) continue;
    log.Items(later.run, [&](const Logged_Item& item) {
      if (item.action == Item_Action::Put_Back && item.result == Item_Result::Done)
        count.put_back.insert(Key(item.folder.store_id, item.entry_id));
    });
  }
  log.Items(run.run, [&](const Logged_Item& item) {
    count.types[item.folder.store_id].emplace(item.folder.path, item.folder.item_type);
    if (Is_Gone_For_Good(item)) ++count.gone_for_good;
    if (!May_Lie_In_Deleted_Items(item)) return;
    if (count.put_back.contains(Key(item.folder.store_id, item.Id_After()))) {
      ++count.put_back_before;
      return;
    }
    ++count.to_put_back;
    if (item.result == Item_Result::Begun) ++count.uncertain;
    const std::string path = Folder_Text(run, item.folder);
    const auto known = std::find_if(count.folders.rbegin(), count.folders.rend(),
                                    [&](const auto& folder) { return folder.first == path; });
    if (known == count.folders.rend()) {
      count.folders.emplace_back(path, 1);
    } else {
      ++known->second;
    }
  });
  return count;
}

}  // namespace

template <class Work>
Taking_Back_Report Taking_Back::Guarded(Literal name, Work&& work) {
  Taking_Back_Report report;
  if (under_way_ || session_.name_space == nullptr) return report;
  struct Under_Way_Flag {
    bool& flag;
    explicit Under_Way_Flag(bool& under_way) : flag(under_way) { flag = true; }
    ~Under_Way_Flag() { flag = false; }
  } under_way(under_way_);
  cancelled_ = false;
  looked_at_ = to_look_at_ = 0;
  report.ending = Taking_Back_Report::Ending::Broken_Off;
  errors_.Run(name, [&] {
    try {
      work(report);
    } catch (const Run_Log_Error& error) {
      report.ending = Taking_Back_Report::Ending::Broken_Off;
      report.failure = error.what();
      Tell(report.failure, Icon::Critical);
    }
  });
  return report;
}

std::optional<Logged_Run> Taking_Back::Find_Run(std::optional<std::int64_t> wanted,
                                                Taking_Back_Report& report) {
  std::optional<Logged_Run> run = wanted ? log_.Run(*wanted) : log_.Last_To_Take_Back();
  report.ending = Taking_Back_Report::Ending::Nothing_To_Do;
  if (!run) {
    Tell(wanted ? "The log holds no run " + std::to_string(*wanted) + "." : "There is no run to take back.");
    return std::nullopt;
  }
  report.undo_of = run->run;
  const char* refusal =
      run->header.kind != Run_Kind::Cleaning ? " put items back. Only a run that deleted can be taken back."
      : run->state == Run_State_In_Log::Under_Way ? " is still under way. Take it back when it has ended."
                                                  : nullptr;
  if (refusal == nullptr) return run;
  report.ending = Taking_Back_Report::Ending::Refused;
  Tell(Run_Text(*run) + refusal, Icon::Critical);
  return std::nullopt;
}

// Also where there is nothing to be confirmed, which is told.
bool Taking_Back::Confirm(const Logged_Run& run, const Taking_Back_Count& count, Taking_Back_Report& report) {
  report.gone_for_good = count.gone_for_good;
  const std::string gone = count.gone_for_good == 0 ? ""
                                                    : Counted(count.gone_for_good, "item was", "items were") +
                                                          " deleted for good and cannot be put back.";
  const std::string before =
      count.put_back_before == 0
          ? ""
          : Counted(count.put_back_before, "item was", "items were") + " put back before.";
  if (count.to_put_back == 0) {
    Tell(Run_Text(run) + " has nothing to put back." + (before.empty() ? "" : "\r\n" + before) +
             (gone.empty() ? "" : "\r\n" + gone),
         gone.empty() ? Icon::None : Icon::Critical);
    report.ending = Taking_Back_Report::Ending::Nothing_To_Do;
    return false;
  }
  Review review;
  review.sentence = Run_Text(run) + ": " + Counted(count.to_put_back, "item", "items") +
                    " will be put back from \"Deleted Items\".";
  review.headers = {"Folder", "Items"};
  for (const auto& [folder, items] : count.folders) review.rows.push_back({folder, std::to_string(items)});
  if (count.uncertain > 0) {
    review.notes.push_back("The run was killed. Of " + Counted(count.uncertain, "item", "items") +
                           " it is not known whether they were deleted; those that lie in \"Deleted Items\" "
                           "are put back.");
  }
  for (const std::string& note : {before, gone})
    if (!note.empty()) review.notes.push_back(note);
  if (message_box_.Show_Review(review) == Answer::OK) return true;
  report.ending = Taking_Back_Report::Ending::Refused;
  return false;
}

Taking_Back_Report Taking_Back::Take_Back_Run(std::optional<std::int64_t> wanted) {
  return Guarded("Take_Back_Run", [&](Taking_Back_Report& report) {
    const std::optional<Logged_Run> run = Find_Run(wanted, report);
    if (!run) return;
    const Taking_Back_Count count = Count(log_, *run);
    if (!Confirm(*run, count, report)) return;
    report.ending = Taking_Back_Report::Ending::Broken_Off;

    const std::shared_ptr<NameSpace> name_space = session_.name_space;
    Putting_Back putting(*name_space, groups_, log_, item_day_, count.types, events_, errors_, report);
    Run_Header header;
    header.kind = Run_Kind::Taking_Back;
    header.undo_of = run->run;
    header.stores = run->header.stores;
    header.options = "Taking back of run " + std::to_string(run->run);
    header.items = count.to_put_back;
    header.folders = static_cast<std::int64_t>(count.folders.size());
    header.exact = count.uncertain == 0;
    putting.Begin(header, clock_.Now());
    const Days days = Days_Of(*run, clock_.Today());
    to_look_at_ = count.to_put_back;
    bool go_on = true;
    try {
      log_.Items(run->run, [&](const Logged_Item& item) {
        if (!go_on || cancelled_ || !May_Lie_In_Deleted_Items(item) ||
            count.put_back.contains(Key(item.folder.store_id, item.Id_After())))
          return;
        ++looked_at_;
        go_on = putting.Put_Back(item, days);
      });
    } catch (const Run_Log_Error& error) {
      putting.Break_Off(error.what());
    }
    putting.End(cancelled_, clock_.Now());
    if (report.ending == Taking_Back_Report::Ending::Done && !report.store_failed)
      log_.Mark_Taken_Back(run->run, report.run);
    Tell_Result(report);
  });
}

Taking_Back_Report Taking_Back::Put_Back(const std::vector<Item_Identity>& items) {
  return Guarded("Put_Back", [&](Taking_Back_Report& report) {
    const std::shared_ptr<NameSpace> name_space = session_.name_space;
    Putting_Back putting(*name_space, groups_, log_, item_day_, {}, events_, errors_, report);
    Run_Header header;
    header.kind = Run_Kind::Putting_Back;
    header.options = "Put back";
    header.items = static_cast<std::int64_t>(items.size());
    putting.Begin(header, clock_.Now());
    for (const Item_Identity& item : items) {
      if (cancelled_) break;
      if (const auto moved = log_.Find_Moved(item.store_id, item.entry_id)) {
        // The person pointed at it, so it may have been modified on any day.
        if (!putting.Put_Back(*moved, Days{})) break;
        continue;
      }
      Logged_Item unknown;
      unknown.folder.store_id = item.store_id;
      unknown.entry_id = item.entry_id;
      errors_.Try(
          [&] { unknown.subject = name_space->GetItemFromID(item.entry_id, item.store_id)->Subject(); });
      errors_.error.Clear();
      unknown.action = Item_Action::Put_Back;
      unknown.result = Item_Result::Failed;
      unknown.reason = "The log of runs does not tell where it came from.";
      putting.Leave(std::move(unknown));
    }
    putting.End(cancelled_, clock_.Now());
    if (report.ending != Taking_Back_Report::Ending::Done || !report.Complete()) Tell_Result(report);
  });
}

void Taking_Back::Tell_Result(const Taking_Back_Report& report) {
  std::string text =
      (report.put_back == 0 ? "No items were" : Counted(report.put_back, "item was", "items were")) +
      " put back.";
  if (report.ending == Taking_Back_Report::Ending::Cancelled) text += "\r\nCancelled before the rest.";
  if (!report.failure.empty()) text += "\r\nIt ended early: " + report.failure;
  if (report.gone_for_good > 0) {
    text += "\r\n" + Counted(report.gone_for_good, "item was", "items were") +
            " deleted for good and cannot be put back.";
  }
  const std::vector<Logged_Item>& left = report.not_put_back;
  if (!left.empty()) {
    text += "\r\n\r\n" + Counted(static_cast<std::int64_t>(left.size()), "item", "items") +
            " could not be put back:";
    for (std::size_t i = 0; i < left.size() && i < items_named; ++i)
      text += "\r\n" + left[i].subject + ": " + left[i].reason;
    if (left.size() > items_named)
      text += "\r\n... and " + std::to_string(left.size() - items_named) + " more, which run " +
              std::to_string(report.run) + " lists.";
  }
  Tell(text, report.Complete() && report.failure.empty() ? Icon::None : Icon::Critical);
}

}  // namespace tidyfold
