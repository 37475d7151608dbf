#include "cli/session.h"

#include <algorithm>
#include <utility>

#include "cli/failure.h"
#include "controls/widgets.h"

namespace tidyfold::cli {

namespace {

std::string Identity(const std::string& store_id, const std::string& entry_id) {
  return store_id + "/" + entry_id;
}

std::string Identity(MAPIFolder& folder) {
  return Identity(folder.StoreID(), folder.EntryID());
}

}  // namespace

Session::Session(const Arguments& arguments, Store_Mode mode, Terminal& terminal, Answering answering,
                 bool quiet, Protection protection)
    : terminal_(terminal),
      stores_(arguments),
      message_box_(terminal, answering, quiet),
      registry_(Make_System_Registry([&terminal](const std::string& text) { terminal.Write_Error(text); })),
      limits_(stored_limits_, arguments.deleted_items_limit),
      copies_([this](const std::string& store_id,
                     const std::string& entry_id) { return stores_.Read_Whole_Item(store_id, entry_id); },
              clock_),
      stored_protection_(*registry_),
      app_(window_, {stores_.Source(), message_box_, events_, clock_, log_, limits_, Marks(protection),
                     nullptr, arguments.outlook ? nullptr : &copies_}) {
  stores_.Open(arguments.stores, Opening_For(arguments, mode, terminal));
  folders_ = List_Folders(*stores_.Name_Space(), stores_.Names());
  events_.due = [this] { Events_Due(); };
  events_.urgent = [this] { return !interrupt_handled_ && terminal_.Interrupted(); };
}

Folder_Protection& Session::Marks(Protection protection) {
  if (protection == Protection::Ignored) return no_protection_;
  Store_Session* const own = stores_.Own_Stores();
  if (own == nullptr) return stored_protection_;
  own->Keep_Marks_In(&stored_protection_);
  return *own;
}

void Session::Events_Due() {
  stores_.Commit_Due();
  if (terminal_.Interrupted() && !std::exchange(interrupt_handled_, true)) {
    if (loading_) {
      Raise(window_.frmRemoveItems.Close);
    } else if (app_.phase.Processing()) {
      message_box_.Agree_During([this] { Raise(window_.cmdRun.Click); });
    }
  }
  if (terminal_.Progress_Due()) {
    const StatusBar& bar = window_.sbStatusBar;
    terminal_.Progress(bar.Panel_Text(1) + "  " + bar.Panel_Text(2));
  }
}

void Session::Load() {
  loading_ = true;
  message_box_.Begin_Loading();
  app_.Form_Load();
  message_box_.End_Loading();
  loading_ = false;
  terminal_.End_Progress();
  if (terminal_.Interrupted())
    throw Failure(Exit_Status::Cancelled, "Cancelled while the stores were read; nothing was changed.");
  const bool closed = !window_.frmRemoveItems.Loaded();
  // The first failure is the cause; the stack of procedures and a note that not all is loaded follow it. All
  // other messages are only for the window.
  std::string failure;
  for (const Shown_Message& message : message_box_.Shown_While_Loading())
    if (failure.empty() && (closed || message.icon == Icon::Critical)) failure = message.text;
  if (closed || !failure.empty()) {
    std::string files;
    for (const std::string& name : stores_.Names()) files += (files.empty() ? "\"" : ", \"") + name + "\"";
    const std::string advice = files.empty()
                                   ? "Outlook; nothing was changed. Look there, and try again."
                                   : files +
                                         "; nothing was changed. Run the command \"check\" on it, and "
                                         "restore what is damaged from a backup copy.";
    throw Failure(Exit_Status::Bad_Input,
                  "Not everything could be read in " + advice + " What went wrong: " + failure);
  }
  for (int node = 1; node <= Records().Upper_Bound(); ++node)
    if (const MAPIFolder_Ptr& folder = Records()[node].Folder) nodes_.emplace(Identity(*folder), node);
}

void Session::Commit() {
  stores_.Commit();
}

std::vector<Store_Folder> Session::Find(const std::vector<std::string>& paths) const {
  std::vector<Store_Folder> found;
  found.reserve(paths.size());
  for (const std::string& path : paths) found.push_back(Find_Folder(folders_, path));
  return found;
}

int Session::Node(const Store_Folder& folder) const {
  return nodes_.at(Identity(*folder.folder));
}

int Session::Find_Node(const std::string& store_id, const std::string& entry_id) const {
  const auto found = nodes_.find(Identity(store_id, entry_id));
  return found == nodes_.end() ? 0 : found->second;
}

}  // namespace tidyfold::cli
