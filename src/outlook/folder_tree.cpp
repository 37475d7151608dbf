#include "outlook/folder_tree.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "base/size_text.h"
#include "outlook/folder_roles.h"

namespace tidyfold {

Folder_Tree::Folder_Tree(MainWindow& window, FolderData_Array& records, Protected_Folders& protection,
                         Outlook_Session& session, Message_Box& message_box, Events& events,
                         Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      protection_(protection),
      session_(session),
      message_box_(message_box),
      events_(events),
      errors_(errors) {}

void Folder_Tree::Build_Folder_Tree() {
  errors_.Run("Build_Folder_Tree", [&](Procedure& procedure) {
    window_.lblMessage.Set_Caption("Building Folder Tree.\r\n\r\nPlease wait ...");
    window_.frmMessageBox.Show();
    tree_.Set_Visible(false);
    TopLevelIsRoot = false;
    events_.Do_Events();
    // The rows go first: a grid that is painted meanwhile asks the records for their texts.
    window_.grdItems.Set_Rows(1);
    records_.Recreate();
    tree_.Clear();
    places_.clear();
    adding_failure_reported_ = count_failure_reported_ = protection_failure_reported_ = false;

    procedure.Step("Build_Folder_Tree - Get Namespace Folders");
    const Folders_Ptr stores = session_.name_space->Folders();
    const std::int32_t store_count = stores->Count();

    procedure.Step("Build_Folder_Tree - Create Root Node");
    const int root = tree_.Add(0, "OUTLOOK", "Outlook");
    tree_.Set_Node_Tag(root, std::to_string(root));
    tree_.Set_Sorted(root, true);
    tree_.Set_Fore_Colour(root, unloaded_colour);
    Reset_Folder_Node(root);
    Folders_Ptr children = stores;
    if (store_count == 1) {
      procedure.Step("Build_Folder_Tree - Save Root Folder");
      const MAPIFolder_Ptr top = stores->Item(1);
      records_[root].Folder = top;
      procedure.End_Step();
      // What lies below can be cleaned though the top folder does not answer.
      errors_.Run("Build_Folder_Tree - Configure Root Node", [&] {
        records_[root].FolderName = top->Name();
        tree_.Set_Text(root, records_[root].FolderName);
        records_[root].Loaded = Own_Item_Count(root, Counts::Asked) == 0;
      });
      std::string entry_id, store_id;
      errors_.Try([&] { entry_id = top->EntryID(), store_id = top->StoreID(); });
      Read_Protection(root, store_id, entry_id);
      procedure.Step("Build_Folder_Tree - Get Root Folder's Folders");
      children = top->Folders();
    } else {
      records_[root].Loaded = true;
      TopLevelIsRoot = true;
      // Stores keep the order in which they are open.
      tree_.Set_Sorted(root, false);
    }
    if (records_[root].Loaded) tree_.Set_Fore_Colour(root, loaded_colour);

    Add_Children(*children, root, "Build_Folder_Tree - Process all sub-Folders");
    Assign_Roles();
    Tell_Stores_Apart();
    for (int node = 1; node <= tree_.Upper_Bound() && !errors_.Store_Gone(); ++node) Set_Node_Text(node);
  });
}

void Folder_Tree::Add_Tree_Node(const MAPIFolder_Ptr& folder, int parent) {
  errors_.Run("Add_Tree_Node", [&](Procedure& procedure) {
    procedure.Step("Add_Tree_Node - Accessing EntryID");
    std::string entry_id, store_id;
    const bool identified = errors_.Try([&] { entry_id = folder->EntryID(), store_id = folder->StoreID(); });
    const std::string key = identified ? Key_Of(entry_id, store_id) : "-:::-";
    int node = 0;
    Folders_Ptr children;
    const bool added = errors_.Report_First(adding_failure_reported_, [&] {
      procedure.Step("Add_Tree_Node - Creating Node");
      node = tree_.Add(parent, key, folder->Name());
      tree_.Set_Sorted(node, true);
      tree_.Set_Node_Tag(node, std::to_string(node));
      tree_.Set_Fore_Colour(node, unloaded_colour);
      procedure.Step("Add_Tree_Node - Adding Folder Data Element");
      records_.Grow(node);
      Reset_Folder_Node(node);
      procedure.Step("Add_Tree_Node - Saving Folder Pointer");
      records_[node].Folder = folder;
      procedure.Step("Add_Tree_Node - Configuring Node");
      Set_Node_Text(node);
      procedure.Step("Add_Tree_Node - Reading Protection");
      Read_Protection(node, store_id, entry_id);
      procedure.Step("Add_Tree_Node - Setting Folder Collection");
      children = folder->Folders();
    });
    procedure.End_Step();
    if (added) Add_Children(*children, node, "Add_Tree_Node - Processing Children");
  });
}

// A settings file that cannot be read fails for every folder; it is told once.
void Folder_Tree::Read_Protection(int node, const std::string& store_id, const std::string& entry_id) {
  errors_.Run("Read_Protection", [&] {
    errors_.Report_First(protection_failure_reported_, [&] { protection_.Read(node, store_id, entry_id); });
  });
}

// A folder that cannot be fetched leaves its siblings in the tree. The first failure is reported for all: a
// store that fails for one folder often fails for thousands.
void Folder_Tree::Add_Children(Folders& children, int parent, Literal step) {
  std::int32_t count = 0;
  errors_.Run(step,
              [&] { errors_.Report_First(adding_failure_reported_, [&] { count = children.Count(); }); });
  for (std::int32_t i = 1; i <= count && !errors_.Store_Gone(); ++i) {
    errors_.Run(step, [&] {
      MAPIFolder_Ptr child;
      if (errors_.Report_First(adding_failure_reported_, [&] { child = children.Item(i); }))
        Add_Tree_Node(child, parent);
    });
  }
}

void Folder_Tree::Set_Start_Folder() {
  errors_.Run("Set_Start_Folder", [&] {
    const bool found = errors_.Try([&] {
      const MAPIFolder_Ptr inbox = session_.name_space->GetDefaultFolder(default_folder_inbox);
      const int node = Find_Node(*inbox);
      if (node == 0) throw std::runtime_error("The Inbox is not in the folder tree.");
      tree_.Set_Selected_Item(node);
      tree_.Ensure_Visible(node);
      Set_Folder_Label(node);
    });
    errors_.error.Clear();
    if (!found && !errors_.Store_Gone()) message_box_.Show("Error assigning startup folder");
  });
}

bool Folder_Tree::Check_Default_Folder(const MAPIFolder_Ptr& folder) {
  // A folder that does not tell its name is kept from being deleted as well.
  bool is_default = folder != nullptr;
  errors_.Run("Check_Default_Folder", [&] {
    if (folder == nullptr) return;
    const int node = tree_.Find_Key(Key_Of(*folder));
    is_default = (node != 0 && records_[node].Role != 0) || Is_Default_Folder_Name(folder->Name());
  });
  return is_default;
}

int Folder_Tree::Find_Node(MAPIFolder& folder) const {
  const int node = tree_.Find_Key(Key_Of(folder));
  if (node != 0) return node;
  const std::string entry_id = folder.EntryID(), store_id = folder.StoreID();
  for (int other = 1; other <= records_.Upper_Bound(); ++other) {
    const MAPIFolder_Ptr& known = records_[other].Folder;
    if (known != nullptr && known->StoreID() == store_id && session_.Same_Folder(known->EntryID(), entry_id))
      return other;
  }
  return 0;
}

// A store that does not tell its folders' roles is told so by nobody: names protect what they can.
void Folder_Tree::Assign_Roles() {
  for (int store = TopLevelIsRoot ? tree_.Child(1) : 1; store != 0; store = tree_.Next(store)) {
    const MAPIFolder_Ptr top = records_[store].Folder;
    for (const std::int32_t role : folder_roles) {
      if (top == nullptr || errors_.Store_Gone()) break;
      errors_.Try([&] {
        const MAPIFolder_Ptr folder = Find_Folder_With_Role(*session_.name_space, *top, role);
        const int node = folder == nullptr ? 0 : Find_Node(*folder);
        if (node != 0) records_[node].Role = role;
      });
    }
  }
  errors_.error.Clear();
}

// Stores of one name: by the names of their files, or by the whole paths where those are the same too.
void Folder_Tree::Tell_Stores_Apart() {
  if (!TopLevelIsRoot) return;
  std::map<std::string, std::map<int, std::filesystem::path>> by_name;
  for (int store = tree_.Child(1); store != 0; store = tree_.Next(store)) {
    errors_.Try([&] {
      const MAPIFolder_Ptr top = records_[store].Folder;
      by_name[top->Name()][store] = session_.Place_Of_Store(top->StoreID());
    });
  }
  errors_.error.Clear();
  for (const auto& [name, stores] : by_name) {
    if (stores.size() < 2) continue;
    std::set<std::filesystem::path> files;
    for (const auto& [store, path] : stores)
      if (path.has_filename()) files.insert(path.filename());
    for (const auto& [store, path] : stores)
      if (!path.empty()) places_[store] = (files.size() == stores.size() ? path.filename() : path).string();
  }
}

std::vector<std::string> Folder_Tree::Store_Names() const {
  std::vector<std::string> names;
  for (int store = TopLevelIsRoot ? tree_.Child(1) : 1; store != 0; store = tree_.Next(store)) {
    if (!tree_.Exists(store) || records_[store].Folder == nullptr) continue;
    const auto place = places_.find(store);
    names.push_back(records_[store].FolderName + (place == places_.end() ? "" : " [" + place->second + "]"));
  }
  return names;
}

std::string Folder_Tree::Key_Of(const std::string& entry_id, const std::string& store_id) {
  return "-:::-" + entry_id + "-:::-" + store_id;
}

int Folder_Tree::Get_Node_Index(int node) const {
  if (!tree_.Exists(node)) return 0;
  const std::string& tag = tree_.Node_Tag(node);
  int index = 0;
  std::from_chars(tag.data(), tag.data() + tag.size(), index);
  return index;
}

void Folder_Tree::Set_Node_Text(int node) {
  errors_.Run("Set_Node_Text", [&] {
    if (!tree_.Exists(node)) return;
    const MAPIFolder_Ptr folder = records_[node].Folder;
    const std::string name = folder == nullptr ? "Outlook" : folder->Name();
    records_[node].FolderName = name;
    Make_Caption(node, name, Counts::Asked);
  });
}

void Folder_Tree::Take_From_Count(int node) {
  if (!tree_.Exists(node)) return;
  std::int32_t& count = records_[node].ItemCount;
  count = std::max(0, count - 1);
  Make_Caption(node, records_[node].FolderName, Counts::Known);
}

void Folder_Tree::Make_Caption(int node, const std::string& name, Counts counts) {
  bool bold = tree_.Checked(node);
  std::int32_t count = 0;
  if (tree_.Expanded(node)) {
    count = Own_Item_Count(node, counts);
  } else {
    // Marked folders that a collapsed node hides make it bold too.
    count = Branch_Count(node, true, counts);
    bold = bold || count > 0;
    if (!bold) count = Branch_Count(node, false, counts);
  }
  // The report of a failure lets other handlers run.
  if (!tree_.Exists(node)) return;
  tree_.Set_Bold(node, bold);
  const auto place = places_.find(node);
  tree_.Set_Text(node, name + (place == places_.end() ? "" : " [" + place->second + "]") + " - (" +
                           Format_Count(count) + ")");
}

std::int32_t Folder_Tree::Own_Item_Count(int node, Counts counts) {
  const MAPIFolder_Ptr folder = records_[node].Folder;
  if (folder == nullptr) return 0;
  if (counts == Counts::Known) return records_[node].ItemCount;
  std::int32_t count = 0;
  // The captions of all folders above count this one too, and they are made again and again.
  if (errors_.Report_First(count_failure_reported_, [&] { count = folder->Items()->Count(); }))
    records_[node].ItemCount = count;
  return count;
}

std::int32_t Folder_Tree::Get_Folder_Item_Count(int node, bool only_marked) {
  return Branch_Count(node, only_marked, Counts::Asked);
}

std::int32_t Folder_Tree::Branch_Count(int node, bool only_marked, Counts counts) {
  return errors_.Run("Get_Folder_Item_Count", [&] {
    if (!tree_.Exists(node)) return 0;
    std::int32_t count = !only_marked || tree_.Checked(node) ? Own_Item_Count(node, counts) : 0;
    for (int child = tree_.Child(node); child != 0; child = tree_.Next(child))
      count += Branch_Count(child, only_marked, counts);
    return count;
  });
}

void Folder_Tree::Set_Folder_Label(int folder) {
  errors_.Run("Set_Folder_Label", [&] {
    const MAPIFolder_Ptr object = records_.Has(folder) ? records_[folder].Folder : nullptr;
    window_.lblCurrentFolder.Set_Caption(object == nullptr ? "Current Folder:"
                                                           : "Current Folder: " + object->Name());
  });
}

void Folder_Tree::Reset_Folder_Node(int index) {
  FolderData& record = records_[index];
  record.DeletedItemsIndex = 0;
  record.CachedCount = 0;
  record.RowCount = 0;
  record.Loaded = false;
  record.Reload = false;
  record.LoadError = false;
  record.Reading.reset();
  record.Judged = {};
  ++record.Resets;
  record.ItemCache = {};
}

void Folder_Tree::Remove_Folder_Node(int node) {
  errors_.Run("Remove_Folder_Node", [&] {
    std::vector<int> doomed{node};
    for (std::size_t i = 0; i < doomed.size(); ++i)
      for (int child = tree_.Child(doomed[i]); child != 0; child = tree_.Next(child)) doomed.push_back(child);
    for (const int gone : doomed) {
      Reset_Folder_Node(gone);
      records_[gone].Folder.reset();
      protection_.Forget(gone);
      records_[gone].Role = 0;
      records_[gone].Loaded = true;
    }
    // A store's wastebasket that went is nobody's wastebasket any more.
    for (int index = 1; index <= records_.Upper_Bound(); ++index) {
      std::int32_t& wastebasket = records_[index].DeletedItemsIndex;
      if (std::find(doomed.begin(), doomed.end(), wastebasket) != doomed.end()) wastebasket = 0;
    }
    tree_.Remove(node);
  });
}

}  // namespace tidyfold
