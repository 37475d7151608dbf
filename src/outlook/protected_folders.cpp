#include "outlook/protected_folders.h"

#include <algorithm>
#include <vector>

#include "controls/interaction.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

std::string Quoted(const FolderData& record) {
  return "\"" + record.FolderName + "\"";
}

}  // namespace

void Protected_Folders::Read(int node, const std::string& store_id, const std::string& entry_id) {
  Note(node, true);
  if (store_id.empty()) return;
  records_[node].MayChangeProtection = marks_.Can_Change(store_id);
  Note(node, marks_.Is_Protected(store_id, entry_id));
}

void Protected_Folders::Set(int node, bool is_protected) {
  const MAPIFolder_Ptr folder = records_[node].Folder;
  const std::string store_id = folder->StoreID(), entry_id = folder->EntryID();
  try {
    marks_.Set_Protected(store_id, entry_id, is_protected);
  } catch (const Automation_Error&) {
    Note(node, marks_.Is_Protected(store_id, entry_id));
    throw;
  }
  Note(node, is_protected);
}

// Parents before children. Not recursive, as trees may be deep.
void Protected_Folders::Note(int node, bool itself) {
  records_[node].ProtectedItself = itself;
  std::vector<int> due{node};
  while (!due.empty()) {
    const int at = due.back();
    due.pop_back();
    FolderData& record = records_[at];
    record.Protected = record.ProtectedItself || Is_Protected(tree_.Parent(at));
    tree_.Set_Lock(at, record.ProtectedItself ? Node_Lock::Own
                       : record.Protected     ? Node_Lock::From_Above
                                              : Node_Lock::None);
    tree_.Set_Node_Tip(at, Reason(at));
    for (int child = tree_.Child(at); child != 0; child = tree_.Next(child)) due.push_back(child);
  }
}

bool Protected_Folders::Holds_Protected(int node) const {
  std::vector<int> due{node};
  while (!due.empty()) {
    const int at = due.back();
    due.pop_back();
    for (int child = tree_.Child(at); child != 0; child = tree_.Next(child)) {
      if (records_[child].Protected) return true;
      due.push_back(child);
    }
  }
  return false;
}

int Protected_Folders::Protector_Of(int node) const {
  while (node != 0 && !Is_Protected_Itself(node)) node = tree_.Parent(node);
  return node;
}

std::string Protected_Folders::Reason(int node) const {
  if (!Is_Protected(node)) return {};
  const int protector = Protector_Of(node);
  if (protector == node)
    return Quoted(records_[node]) + " is protected." +
           (Can_Change(node) ? " Protect Folder in its menu takes the lock off." : "");
  return Quoted(records_[node]) + " lies below " + Quoted(records_[protector]) + ", which is protected.";
}

void Protected_Folders::Say_Why(int node) {
  const std::string reason = Reason(node);
  const bool stands = !said_.empty() && window_.sbStatusBar.Panel_Text(1) == said_;
  if (!reason.empty() || stands) window_.sbStatusBar.Set_Panel_Text(1, reason);
  said_ = reason;
}

bool Protected_Folders::Is_Marked(MAPIFolder& folder) const {
  return marks_.Is_Protected(folder.StoreID(), folder.EntryID());
}

bool Protected_Folders::Is_One_Of(const std::vector<int>& nodes, MAPIFolder& folder) const {
  return std::any_of(nodes.begin(), nodes.end(), [&](int node) {
    MAPIFolder& known = *records_[node].Folder;
    return known.StoreID() == folder.StoreID() && session_.Same_Folder(known.EntryID(), folder.EntryID());
  });
}

void Protected_Folders::Demand_Unprotected(int node) const {
  bool is_protected = records_[node].Protected;
  for (int at = node; !is_protected && at != 0 && records_[at].Folder != nullptr; at = tree_.Parent(at))
    is_protected = Is_Marked(*records_[at].Folder);
  // On the way up a store may tell other texts for its folders than those that marks are kept by.
  std::vector<int> known;
  for (int at = 1; at <= tree_.Upper_Bound(); ++at)
    if (Is_Protected_Itself(at) && records_[at].Folder != nullptr) known.push_back(at);
  const MAPIFolder_Ptr folder = records_[node].Folder;
  for (MAPIFolder_Ptr above = folder == nullptr ? nullptr : folder->Parent();
       !is_protected && above != nullptr; above = above->Parent())
    is_protected = Is_Marked(*above) || Is_One_Of(known, *above);
  if (is_protected)
    throw Automation_Error(automation_error::no_access,
                           "The folder " + Quoted(records_[node]) + " is protected.", application_title);
}

}  // namespace tidyfold
