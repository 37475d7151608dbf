#include "outlook/deleted_items.h"

#include "outlook/folder_roles.h"

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
    if (const int known = Known_By_The_Store(store_node); known != 0) return known;
    for (int child = tree_.Child(store_node); child != 0; child = tree_.Next(child)) {
      const MAPIFolder_Ptr& folder = records_[child].Folder;
      if (folder == nullptr) continue;
      bool found = false;
      if (errors_.Try([&] { found = folder->Name() == deleted_items_name; }) && found) return child;
    }
    return 0;
  });
}

// By its identity, where the store tells it: two top folders may bear the name.
int Deleted_Items_Folders::Known_By_The_Store(int store_node) {
  const MAPIFolder_Ptr top = records_[store_node].Folder;
  int found = 0;
  errors_.Try([&] {
    if (top == nullptr) return;
    const MAPIFolder_Ptr wastebasket =
        Find_Folder_With_Role(*session_.name_space, *top, default_folder_deleted_items);
    if (wastebasket != nullptr) found = folder_tree_.Find_Node(*wastebasket);
  });
  errors_.error.Clear();
  return found;
}

void Deleted_Items_Folders::Assign_Deleted_Items_Folder_Index(int node, int index) {
  errors_.Run("Assign_Deleted_Items_Folder_Index", [&] {
    records_[node].DeletedItemsIndex = index;
    for (int child = tree_.Child(node); child != 0; child = tree_.Next(child))
      Assign_Deleted_Items_Folder_Index(child, index);
  });
}

bool Deleted_Items_Folders::Is_Deleted_Items_Folder(int node) {
  return errors_.Run("Is_Deleted_Items_Folder", [&] {
    if (!tree_.Exists(node)) return false;
    const MAPIFolder_Ptr folder = records_[node].Folder;
    if (folder == nullptr) return false;
    return records_[node].DeletedItemsIndex == node || records_[node].Role == default_folder_deleted_items ||
           folder->Name() == deleted_items_name;
  });
}

bool Deleted_Items_Folders::Allow_Deleted_Items_Folder(int node) {
  return errors_.Run("Allow_Deleted_Items_Folder", [&] {
    return window_.chkPermanentDelete.Checked() || !tree_.Checked(node) || !Is_Deleted_Items_Folder(node);
  });
}

}  // namespace tidyfold
