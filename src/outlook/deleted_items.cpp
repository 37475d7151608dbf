#include "outlook/deleted_items.h"

namespace tidyfold {

int Deleted_Items_Folders::First_Store_Node() const {
  if (!tree_.Exists(1)) return 0;
  return folder_tree_.TopLevelIsRoot ? tree_.Child(1) : 1;
}

void Deleted_Items_Folders::Assigne_Deleted_Items_Folders() {
  errors_.Run("Assigne_Deleted_Items_Folders", [&] {
    for (int store = First_Store_Node(); store != 0; store = tree_.Next(store))
      Assign_Deleted_Items_Folder_Index(store, Get_Deleted_Items_Folder(store));
  });
}

int Deleted_Items_Folders::Get_Deleted_Items_Folder(int store_node) {
  return errors_.Run("Get_Deleted_Items_Folder", [&] {
    for (int child = tree_.Child(store_node); child != 0; child = tree_.Next(child)) {
      const int index = folder_tree_.Get_Node_Index(child);
      const MAPIFolder_Ptr& folder = records_[index].Folder;
      if (folder == nullptr) continue;
      bool found = false;
      if (errors_.Try([&] { found = folder->Name() == deleted_items_name; }) && found) return index;
    }
    return 0;
  });
}

void Deleted_Items_Folders::Assign_Deleted_Items_Folder_Index(int node, int index) {
  errors_.Run("Assign_Deleted_Items_Folder_Index", [&] {
    records_[folder_tree_.Get_Node_Index(node)].DeletedItemsIndex = index;
    for (int child = tree_.Child(node); child != 0; child = tree_.Next(child))
      Assign_Deleted_Items_Folder_Index(child, index);
  });
}

bool Deleted_Items_Folders::Is_Deleted_Items_Folder(int node) {
  return errors_.Run("Is_Deleted_Items_Folder", [&] {
    if (!tree_.Exists(node)) return false;
    const MAPIFolder_Ptr& folder = records_[folder_tree_.Get_Node_Index(node)].Folder;
    return folder != nullptr && folder->Name() == deleted_items_name;
  });
}

bool Deleted_Items_Folders::Allow_Deleted_Items_Folder(int node) {
  return errors_.Run("Allow_Deleted_Items_Folder", [&] {
    return window_.chkPermanentDelete.Checked() || !tree_.Checked(node) || !Is_Deleted_Items_Folder(node);
  });
}

}  // namespace tidyfold
