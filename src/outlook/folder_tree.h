// The tree of folders and the record behind each of its nodes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/default_folders.h"
#include "outlook/folder_data.h"
#include "outlook/protected_folders.h"
#include "outlook/session.h"

namespace tidyfold {

// The fore colours of nodes whose folders are read to the end, and of those that are not.
inline constexpr Colour loaded_colour = 0;
inline constexpr Colour unloaded_colour = Rgb(150, 150, 255);

class Folder_Tree {
 public:
  Folder_Tree(MainWindow& window, FolderData_Array& records, Protected_Folders& protection,
              Outlook_Session& session, Message_Box& message_box, Events& events, Error_Handler& errors);

  // Rebuilds tree and records from the stores. The only yield is at its beginning.
  void Build_Folder_Tree();
  // Adds a folder and everything below it.
  void Add_Tree_Node(const MAPIFolder_Ptr& folder, int parent);
  // Selects the default Inbox; a message when there is none.
  void Set_Start_Folder();
  // True for a folder that has a role in its store, for the ten English names of default folders, wherever in
  // the tree the folder stands, and for a folder that does not tell who it is.
  bool Check_Default_Folder(const MAPIFolder_Ptr& folder);
  // The folder's node, also where the store has another text for its EntryID; 0 if it has none. Throws
  // Automation_Error.
  int Find_Node(MAPIFolder& folder) const;
  // The key of a folder's node. Throws Automation_Error.
  static std::string Key_Of(MAPIFolder& folder) { return Key_Of(folder.EntryID(), folder.StoreID()); }
  // A folder's number is its node's index, its record's number and the number in the node's tag alike; this
  // reads the tag, as the program's fixed interface has it. 0 for a node that does not exist.
  int Get_Node_Index(int node) const;
  // Makes the caption, "name - (count)", and the boldness of a node.
  void Set_Node_Text(int node);
  // An item has left the node's folder: the same, with what is known of names and counts and without a call.
  void Take_From_Count(int node);
  // Items in the node's folder and in all below it; of the marked ones alone when only those are to count.
  std::int32_t Get_Folder_Item_Count(int node, bool only_marked);
  // Writes the current-folder label; 0 for no folder.
  void Set_Folder_Label(int folder);
  void Reset_Folder_Node(int index);
  // The open stores by name, those of one name told apart by what opens them.
  std::vector<std::string> Store_Names() const;
  // Takes a deleted folder's node and all below it out of the tree; their records are emptied.
  void Remove_Folder_Node(int node);

  // True when the root stands for several stores; then the top two levels both count as roots.
  bool TopLevelIsRoot = false;

 private:
  static std::string Key_Of(const std::string& entry_id, const std::string& store_id);
  void Read_Protection(int node, const std::string& store_id, const std::string& entry_id);
  // Whether counts are asked for or taken as they are known.
  enum class Counts { Asked, Known };

  void Add_Children(Folders& children, int parent, Literal step);
  void Assign_Roles();
  void Tell_Stores_Apart();
  void Make_Caption(int node, const std::string& name, Counts counts);
  std::int32_t Own_Item_Count(int node, Counts counts);
  std::int32_t Branch_Count(int node, bool only_marked, Counts counts);

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Protected_Folders& protection_;
  Outlook_Session& session_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  // What follows a store's name in its node's caption, by node.
  std::map<int, std::string> places_;
  // Until the tree is built anew.
  bool adding_failure_reported_ = false;
  bool count_failure_reported_ = false;
  bool protection_failure_reported_ = false;
};

}  // namespace tidyfold
