#include "clean/safety_checks.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "base/dates.h"
#include "base/text.h"

namespace tidyfold {

namespace {

// A number as the run time writes it: positive ones with a blank in front.
std::string Str(std::int32_t number) {
  return (number < 0 ? "" : " ") + std::to_string(number);
}

std::string Counted(std::int32_t count, const char* word) {
  return std::to_string(count) + word + (count == 1 ? "" : "s");
}

std::int32_t Sum(std::int32_t a, std::int32_t b) {
  std::int32_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) throw std::overflow_error("Overflow");
  return sum;
}

constexpr const char* to_deleted_items = " to \"Deleted Items\" folder?";

}  // namespace

Safety_Checks::Safety_Checks(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                             Deleted_Items_Folders& deleted_items, Item_Filters& filters, Grid_Rows& rows,
                             Folder_Marking& marking, Run_State& run, Message_Box& message_box, Clock& clock,
                             Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      deleted_items_(deleted_items),
      filters_(filters),
      rows_(rows),
      marking_(marking),
      run_(run),
      message_box_(message_box),
      clock_(clock),
      errors_(errors) {}

bool Safety_Checks::Ask(const std::string& question) {
  return message_box_.Show(question, Buttons::Yes_No) == Answer::Yes;
}

bool Safety_Checks::Check_Screen() {
  return errors_.Run("Check_Screen", [&] {
    // What is shown and what is taken go by the same filters, also when a command's key came before the box
    // that was being filled in has lost the focus.
    if (!window_.chkSelectByRow.Checked()) filters_.Focus_Lost();
    if (!Confirm_Selection_Count() || !Check_Deleted_Items_Folder()) return false;
    if (window_.chkTurbo.Checked()) {
      return Ask(
          "CAUTION!\r\n"
          "\r\n"
          "Turbo selected.\r\n"
          "ALL items in selected folders will be deleted.\r\n"
          "\r\n"
          "Do you wish to continue?");
    }
    if (window_.chkDeleteFolders.Checked()) {
      return Ask(
          "CAUTION!\r\n"
          "\r\n"
          "ALL selected FOLDERS and their content will be permanantly deleted.\r\n"
          "\r\n"
          "Press Yes to delete folders?");
    }
    if (window_.chkPermanentDelete.Checked() && !Ask("Permanently delete items in selected folders?"))
      return false;
    const Date cutoff = window_.dtpCutoffDate.Value();
    if (window_.chkSelectDate.Checked() && cutoff >= clock_.Today() &&
        !Ask("Selecting the date " + Format_Date(cutoff) +
             " may result in all items in selected folders being deleted.  Continue?"))
      return false;
    std::string input_errors;
    if (window_.chkSelectSubject.Checked() && Trim(window_.txtSelectSubject.Text()).empty())
      input_errors = "Subject required!";
    const bool no_type = std::none_of(window_.chkType.begin(), window_.chkType.end(),
                                      [](const TypeBox& type) { return type.box.Checked(); });
    if (window_.chkSelectType.Checked() && no_type) input_errors += "\r\nNo item type selected!";
    if (input_errors.empty()) return true;
    message_box_.Show(input_errors, Buttons::OK_Only, Icon::Critical);
    return false;
  });
}

// What a run would take from a marked folder, as far as is known.
std::int32_t Safety_Checks::Items_To_Take(int node) {
  const int index = folder_tree_.Get_Node_Index(node);
  if (window_.chkTurbo.Checked() || window_.chkDeleteFolders.Checked())
    return records_[index].Folder->Items()->Count();
  std::int32_t count = 0;
  for (std::int32_t item = 1; item <= records_[index].CachedCount; ++item)
    if (filters_.Check_Filtered_Record(node, index, item)) ++count;
  return count;
}

bool Safety_Checks::Confirm_Selection_Count() {
  return errors_.Run("Confirm_Selection_Count", [&] {
    if (window_.chkSelectByRow.Checked()) {
      message_box_.Show(Counted(rows_.Get_Rows_Selected_Count(), " item") + " identified for cleaning");
      return true;
    }
    const bool count_items = !window_.chkDeleteFolders.Checked() || window_.chkTurbo.Checked();
    std::int32_t folders = 0, items = 0;
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      if (!tree_.Exists(node) || !tree_.Checked(node)) continue;
      if (records_[folder_tree_.Get_Node_Index(node)].Folder == nullptr) continue;
      ++folders;
      if (count_items) items = Sum(items, Items_To_Take(node));
    }
    if (!count_items) {
      message_box_.Show(Counted(folders, " folder") + " identified for deletion.");
    } else {
      message_box_.Show(Counted(items, " item") + " in " + Counted(folders, " folder") +
                        " identified for cleaning.");
    }
    if (marking_.Check_Selected_Folders()) return true;
    return message_box_.Show(
               "Warning!  Not all marked folders have be fully loaded.\r\n"
               "These folders may be cleaned but not all items to be\r\n"
               "cleaned have been displayed or counted.\r\n"
               "\r\n"
               "Press OK to continue with cleaning.",
               Buttons::OK_Cancel) == Answer::OK;
  });
}

// What a store's marked folders hold. Unlike the counts in captions it throws for a folder that cannot be
// counted: it must not be taken for an empty one.
std::int32_t Safety_Checks::Items_In_Marked_Folders(int deleted_items_index) {
  std::int32_t count = 0;
  for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
    if (!tree_.Exists(node) || !tree_.Checked(node)) continue;
    const FolderData& record = records_[folder_tree_.Get_Node_Index(node)];
    if (record.Folder == nullptr || record.DeletedItemsIndex != deleted_items_index) continue;
    count = Sum(count, record.Folder->Items()->Count());
  }
  return count;
}

bool Safety_Checks::Check_Deleted_Items_Folder() {
  return errors_.Run("Check_Deleted_Items_Folder", [&] {
    if (window_.chkPermanentDelete.Checked()) return true;
    // A folder that was reset has forgotten where its items would go.
    deleted_items_.Assigne_Deleted_Items_Folders();
    bool fits = true;
    for (int store = deleted_items_.First_Store_Node(); store != 0; store = tree_.Next(store)) {
      const int wastebasket = records_[folder_tree_.Get_Node_Index(store)].DeletedItemsIndex;
      if (wastebasket <= 0) continue;
      const std::int32_t selected = window_.chkSelectByRow.Checked()
                                        ? rows_.Get_Rows_Selected_Count(wastebasket)
                                        : Items_In_Marked_Folders(wastebasket);
      const std::int32_t present = records_[wastebasket].Folder->Items()->Count();
      const std::int32_t combined = Sum(selected, present);
      if (combined <= most_deleted_items) continue;
      fits = false;
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
              Str(combined) +
              "\r\n"
              "     Total Allowed:\t\t" +
              Str(most_deleted_items) +
              "\r\n"
              "\r\n"
              "You must either: \r\n"
              "   - Delete items from the Deleted Items Folder OR \r\n"
              "   - Select fewer items to delete OR \r\n"
              "   - Check the Permanent Delete box",
          Buttons::OK_Only, Icon::Critical);
    }
    return fits;
  });
}

bool Safety_Checks::Confirm_Current_Folder(int index) {
  if (!window_.chkConfirmFolders.Checked()) return true;
  bool asked = false;
  const bool confirmed = errors_.Run("Confirm_Current_Folder", [&] {
    const bool permanent = window_.chkPermanentDelete.Checked();
    std::string question = permanent ? "Delete" : "Move";
    // Of a folder that is not loaded nobody knows yet how many items pass the filters.
    if (records_[index].Loaded || window_.chkTurbo.Checked()) question += Str(Items_To_Take(index));
    question += " items in \"" + records_[index].Folder->Name() + "\"";
    question += permanent ? " folder?" : std::string(" folder") + to_deleted_items;
    asked = true;
    return Ask(question);
  });
  if (!asked) run_.NotAllDeleted = true;
  return confirmed;
}

Answer Safety_Checks::Confirm_Current_Item(Item& item) {
  return errors_.Run("Confirm_Current_Item", [&] {
    if (!window_.chkConfirmItems.Checked()) return Answer::Yes;
    const bool permanent = window_.chkPermanentDelete.Checked();
    std::string question = permanent ? "Delete" : "Move";
    question += " item " + item.Subject();
    question += permanent ? "?" : to_deleted_items;
    return message_box_.Show(question, Buttons::Yes_No_Cancel);
  });
}

}  // namespace tidyfold
