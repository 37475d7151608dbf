#include "runs/run_listing.h"

#include <algorithm>
#include <cmath>

#include "base/csv.h"
#include "base/size_text.h"
#include "outlook/folder_path.h"

namespace tidyfold {

namespace {

const char* Yes_No(bool value) {
  return value ? "true" : "false";
}

}  // namespace

std::string Counted(std::int64_t count, const char* one, const char* many) {
  return Format_Count(count) + " " + (count == 1 ? one : many);
}

std::string Run_Text(const Logged_Run& run) {
  std::string began = run.began.substr(0, 16);
  std::replace(began.begin(), began.end(), 'T', ' ');
  return "Run " + std::to_string(run.run) + " (" + began + ")";
}

std::string Folder_Text(const Logged_Run& run, const Logged_Folder& folder) {
  const std::vector<Logged_Store>& stores = run.header.stores;
  if (stores.size() < 2) return folder.path;
  const auto store = std::find_if(stores.begin(), stores.end(),
                                  [&](const Logged_Store& each) { return each.store_id == folder.store_id; });
  if (store == stores.end()) return folder.path;
  const std::string name = Escape_Folder_Name(store->name);
  return folder.path == top_folder_path ? name : name + "/" + folder.path;
}

std::vector<std::string> Store_Texts(const Logged_Run& run) {
  std::vector<std::string> texts;
  for (const Logged_Store& store : run.header.stores)
    texts.push_back(store.place.empty() ? store.name : store.place);
  return texts;
}

std::string Date_Text(const Logged_Item& item) {
  return std::floor(item.date) == no_date ? std::string() : Format_Date(item.date);
}

const char* Kind_Text(Run_Kind kind) {
  switch (kind) {
    case Run_Kind::Cleaning:
      return "clean";
    case Run_Kind::Taking_Back:
      return "undo";
    case Run_Kind::Putting_Back:
      return "put back";
  }
  return "";
}

const char* State_Text(Run_State_In_Log state) {
  switch (state) {
    case Run_State_In_Log::Under_Way:
      return "under way";
    case Run_State_In_Log::Ended:
      return "ended";
    case Run_State_In_Log::Killed:
      return "killed";
  }
  return "";
}

const char* Action_Text(Item_Action action) {
  switch (action) {
    case Item_Action::Moved:
      return "moved";
    case Item_Action::Deleted:
      return "deleted";
    case Item_Action::Folder_Deleted:
      return "folder deleted";
    case Item_Action::Put_Back:
      return "put back";
  }
  return "";
}

const char* Result_Text(Item_Result result) {
  switch (result) {
    case Item_Result::Begun:
      return "not known";
    case Item_Result::Done:
      return "done";
    case Item_Result::Failed:
      return "failed";
    case Item_Result::Changed:
      return "changed since it was shown";
    case Item_Result::Declined:
      return "declined";
  }
  return "";
}

std::string Killed_Text(const Logged_Run& run) {
  std::string text = Run_Text(run) + " was killed. " +
                     (run.outcome.processed == 0 ? "No items were"
                                                 : Counted(run.outcome.processed, "item was", "items were")) +
                     " processed";
  if (run.uncertain > 0) text += "; of " + std::to_string(run.uncertain) + " more that is not known";
  return text + ".";
}

std::string Csv_Line(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (&field == fields.data() ? "" : ",") + Csv_Field(field);
  return line;
}

const std::vector<std::string>& Run_Headers() {
  static const std::vector<std::string> headers = {
      "run",    "kind",    "undo_of",   "began",           "ended",     "state",
      "stores", "options", "processed", "not_all_deleted", "cancelled", "taken_back"};
  return headers;
}

std::vector<std::string> Run_Cells(const Logged_Run& run) {
  std::string stores;
  for (const std::string& store : Store_Texts(run)) stores += (stores.empty() ? "" : "; ") + store;
  return {std::to_string(run.run),
          Kind_Text(run.header.kind),
          run.header.undo_of == 0 ? "" : std::to_string(run.header.undo_of),
          run.began,
          run.ended,
          State_Text(run.state),
          stores,
          run.header.options,
          std::to_string(run.outcome.processed),
          Yes_No(run.outcome.not_all_deleted),
          Yes_No(run.outcome.cancelled),
          Yes_No(run.taken_back != 0)};
}

const std::vector<std::string>& Run_Item_Headers() {
  static const std::vector<std::string> headers = {"entry_id", "folder", "subject", "date",
                                                   "done",     "result", "reason"};
  return headers;
}

std::vector<std::string> Run_Item_Cells(const Logged_Run& run, const Logged_Item& item) {
  return {item.entry_id,   Folder_Text(run, item.folder), item.subject,
          Date_Text(item), Action_Text(item.action),      Result_Text(item.result),
          item.reason};
}

}  // namespace tidyfold
