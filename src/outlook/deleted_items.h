// Which folder is the wastebasket of which store.
#pragma once

#include "errors/procedure.h"
#include "outlook/folder_tree.h"

namespace tidyfold {

class Deleted_Items_Folders {
 public:
  Deleted_Items_Folders(MainWindow& window, FolderData_Array& records, Outlook_Session& session,
                        Folder_Tree& folder_tree, Error_Handler& errors)
      : window_(window),
        tree_(window.trvFolders),
        records_(records),
        session_(session),
        folder_tree_(folder_tree),
        errors_(errors) {}

  // Finds each store's Deleted Items folder and notes it in every record of that store.
  void Assigne_Deleted_Items_Folders();
  // The store's Deleted Items folder, known by its identity or else by its name at the store's top level; 0
  // if there is none.
  int Get_Deleted_Items_Folder(int store_node);
  void Assign_Deleted_Items_Folder_Index(int node, int index);
  // The store's own one, and every other folder of that name, wherever in the tree it stands.
  bool Is_Deleted_Items_Folder(int node);
  // False for a marked Deleted Items folder while items are not deleted for good.
  bool Allow_Deleted_Items_Folder(int node);
  // The first of the store nodes, which follow one another as siblings; 0 when the tree is empty.
  int First_Store_Node() const;

 private:
  int Known_By_The_Store(int store_node);

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Outlook_Session& session_;
  Folder_Tree& folder_tree_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
