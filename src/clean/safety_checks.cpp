#include "clean/safety_checks.h"

#include <algorithm>

#include "base/dates.h"
#include "base/size_text.h"
#include "base/text.h"
#include "outlook/folder_path.h"

namespace tidyfold {

namespace {

// A number as the run time writes it: positive ones with a blank in front.
std::string Str(std::int64_t number) {
  return (number < 0 ? "" : " ") + Format_Count(number);
}

std::string Counted(std::int64_t count, const char* word) {
  return Format_Count(count) + word + (count == 1 ? "" : "s");
}

constexpr const char* to_deleted_items = " to \"Deleted Items\" folder?";

std::string Day(Date date) {
  return date == no_date ? std::string() : Format_Date(date);
}

// A row of the review, and the same as a line of text.
void Add_Row(Review& review, const std::string& folder, const Plan_Stop& stop) {
  const Tally& tally = stop.tally;
  const std::string more = stop.exact ? "" : "at least ";
  const std::string size = tally.bytes > 0 ? Format_Size(tally.bytes) : "";
  std::string where = stop.destination == Destination::For_Good ? "for good" : "to Deleted Items";
  if (stop.way == Way::Whole_Folder) where = stop.folder_goes ? "with its folder, for good" : "stays";
  review.rows.push_back(
      {folder, more + Format_Count(tally.items), size, Day(tally.oldest), Day(tally.newest), where});
  std::string line = folder + ": " + more + Counted(tally.items, " item");
  if (!size.empty()) line += ", " + size;
  if (tally.oldest != no_date)
    line += ", " + Day(tally.oldest) + (tally.oldest == tally.newest ? "" : " to " + Day(tally.newest));
  review.lines.push_back(line + ", " + where);
}

}  // namespace

Safety_Checks::Safety_Checks(MainWindow& window, FolderData_Array& records,
                             Deleted_Items_Folders& deleted_items, Deleted_Items_Limits& limits,
                             Run_State& run, Message_Box& message_box, Clock& clock, Error_Handler& errors)
    : window_(window),
      records_(records),
      deleted_items_(deleted_items),
      limits_(limits),
      run_(run),
      message_box_(message_box),
      clock_(clock),
      errors_(errors) {}

bool Safety_Checks::Ask(const std::string& question) {
  return message_box_.Show(question, Buttons::Yes_No) == Answer::Yes;
}

bool Safety_Checks::Check_Screen(const Clean_Plan& plan) {
  return errors_.Run("Check_Screen", [&] {
    if (!Confirm_Selection_Count(plan) || !Check_Deleted_Items_Folder(plan)) return false;
    const Run_Options& options = plan.options;
    if (options.turbo) {
      return Ask(
          "CAUTION!\r\n"
          "\r\n"
          "Turbo selected.\r\n"
          "ALL items in selected folders will be deleted.\r\n"
          "\r\n"
          "Do you wish to continue?");
    }
    if (options.delete_folders) {
      return Ask(
          "CAUTION!\r\n"
          "\r\n"
          "ALL selected FOLDERS and their content will be permanantly deleted.\r\n"
          "\r\n"
          "Press Yes to delete folders?");
    }
    if (options.permanent && !Ask("Permanently delete items in selected folders?")) return false;
    if (options.filter.by_date && options.filter.cutoff >= clock_.Today() &&
        !Ask("Selecting the date " + Format_Date(options.filter.cutoff) +
             " may result in all items in selected folders being deleted.  Continue?"))
      return false;
    return Check_Input(options);
  });
}

bool Safety_Checks::Check_Input(const Run_Options& options) {
  std::string input_errors;
  if (options.filter.by_subject && Trim(options.filter.subject).empty()) input_errors = "Subject required!";
  const bool no_type = std::none_of(options.filter.types.begin(), options.filter.types.end(),
                                    [](std::int32_t type) { return type != 0; });
  if (options.filter.by_type && no_type) input_errors += "\r\nNo item type selected!";
  if (input_errors.empty()) return true;
  message_box_.Show(input_errors, Buttons::OK_Only, Icon::Critical);
  return false;
}

Review Safety_Checks::Make_Review(const Clean_Plan& plan) const {
  Review review;
  const Run_Options& options = plan.options;
  if (options.by_row) {
    review.sentence = Counted(plan.total.items, " item") + " identified for cleaning";
  } else if (options.delete_folders && !options.turbo) {
    review.sentence = Counted(plan.folders_marked, " folder") + " identified for deletion.";
  } else {
    review.sentence = Counted(plan.total.items, " item") + " in " + Counted(plan.folders_marked, " folder") +
                      " identified for cleaning.";
  }
  review.headers = {"Folder", "Items", "Size", "Oldest", "Newest", "Goes"};
  for (const Plan_Stop& stop : plan.stops) {
    const FolderData& record = records_[stop.folder];
    std::string path = record.FolderName;
    errors_.Try([&] { path = Path_Of_Folder(*record.Folder); });
    Add_Row(review, path == top_folder_path ? record.FolderName : path, stop);
  }
  errors_.error.Clear();
  const std::string words = options.In_Words();
  if (!words.empty()) review.notes.push_back("Options: " + words + ".");
  if (plan.total.bytes > 0) review.notes.push_back("Together: " + Format_Size(plan.total.bytes) + ".");
  return review;
}

bool Safety_Checks::Confirm_Selection_Count(const Clean_Plan& plan) {
  return errors_.Run("Confirm_Selection_Count", [&] {
    if (message_box_.Show_Review(Make_Review(plan)) != Answer::OK) return false;
    const bool all_loaded = std::all_of(plan.stops.begin(), plan.stops.end(), [&](const Plan_Stop& stop) {
      return stop.way == Way::By_Row || records_[stop.folder].Loaded;
    });
    if (all_loaded) return true;
    return message_box_.Show(
               "Warning!  Not all marked folders have be fully loaded.\r\n"
               "These folders may be cleaned but not all items to be\r\n"
               "cleaned have been displayed or counted.\r\n"
               "\r\n"
               "Press OK to continue with cleaning.",
               Buttons::OK_Cancel) == Answer::OK;
  });
}

// Of items that have not been read nobody knows yet whether they pass the filters.
std::int64_t Safety_Checks::Most_That_Could_Go(const Plan_Stop& stop) {
  if (stop.way != Way::Live) return stop.tally.items;
  const FolderData& record = records_[stop.folder];
  const std::int64_t unread = record.Folder->Items()->Count() - record.CachedCount;
  return stop.tally.items + std::max<std::int64_t>(0, unread);
}

bool Safety_Checks::Check_Deleted_Items_Folder(const Clean_Plan& plan) {
  return errors_.Run("Check_Deleted_Items_Folder", [&] {
    if (plan.options.permanent) return true;
    // A folder that was reset has forgotten where its items would go.
    deleted_items_.Assigne_Deleted_Items_Folders();
    bool fits = true;
    const TreeView& tree = window_.trvFolders;
    for (int store = deleted_items_.First_Store_Node(); store != 0; store = tree.Next(store)) {
      const int wastebasket = records_[store].DeletedItemsIndex;
      if (wastebasket <= 0) continue;
      const std::int32_t limit = limits_.Limit(records_[wastebasket].Folder->StoreID());
      std::int64_t selected = 0;
      for (const Plan_Stop& stop : plan.stops)
        if (records_[stop.folder].DeletedItemsIndex == wastebasket) selected += Most_That_Could_Go(stop);
      const std::int64_t present = records_[wastebasket].Folder->Items()->Count();
      if (limit == no_deleted_items_limit || selected + present <= limit) continue;
      fits = false;
      Say_Overflow(present, selected, limit);
    }
    return fits;
  });
}

void Safety_Checks::Say_Overflow(std::int64_t present, std::int64_t selected, std::int32_t limit) {
  message_box_.Show(
      "Deleted Items Folder Overflow: \r\n"
      "\r\n"
      "     Deleted Items Folder:\t\t" +
          Str(present) +
          "\r\n"
          "     Selected total:\t\t" +
          Str(selected) +
          "\r\n"
          "     Combined:\t\t" +
          Str(present + selected) +
          "\r\n"
          "     Total Allowed:\t\t" +
          Str(limit) +
          "\r\n"
          "\r\n"
          "You must either: \r\n"
          "   - Delete items from the Deleted Items Folder OR \r\n"
          "   - Select fewer items to delete OR \r\n"
          "   - Check the Permanent Delete box",
      Buttons::OK_Only, Icon::Critical);
}

Answer Safety_Checks::Confirm_Current_Folder(const Plan_Stop& stop, const Run_Options& options) {
  if (!options.confirm_folders) return Answer::Yes;
  const Answer answer = errors_.Run("Confirm_Current_Folder", [&] {
    const bool for_good = stop.destination == Destination::For_Good;
    std::string question = for_good ? "Delete" : "Move";
    // Of a folder that is not loaded nobody knows yet how many items pass the filters.
    if (stop.way != Way::Live) question += Str(stop.tally.items);
    question += " items in \"" + records_[stop.folder].Folder->Name() + "\"";
    question += " folder";
    question += for_good ? "?" : to_deleted_items;
    return message_box_.Show(question, Buttons::Yes_No_Cancel);
  });
  if (answer == Answer{}) run_.NotAllDeleted = true;
  return answer;
}

Answer Safety_Checks::Confirm_Current_Item(Item& item, const Run_Options& options) {
  return errors_.Run("Confirm_Current_Item", [&] {
    if (!options.confirm_items) return Answer::Yes;
    std::string question = options.permanent ? "Delete" : "Move";
    question += " item " + item.Subject();
    question += options.permanent ? "?" : to_deleted_items;
    return message_box_.Show(question, Buttons::Yes_No_Cancel);
  });
}

}  // namespace tidyfold
