// Folders that a person has protected. Such a folder, and everything below it, is never marked, emptied or
// removed. A folder that holds a protected one anywhere below is never removed either.
#pragma once

#include <string>
#include <vector>

#include "controls/main_window.h"
#include "outlook/folder_data.h"
#include "outlook/folder_protection.h"
#include "outlook/session.h"

namespace tidyfold {

class Protected_Folders {
 public:
  Protected_Folders(MainWindow& window, FolderData_Array& records, Outlook_Session& session,
                    Folder_Protection& marks)
      : window_(window), tree_(window.trvFolders), records_(records), session_(session), marks_(marks) {}

  // Reads the mark of a folder whose node has just been added below one that was read before. A folder that
  // does not tell its identifiers counts as protected, and so does one whose mark cannot be read, for which
  // Automation_Error is thrown.
  void Read(int node, const std::string& store_id, const std::string& entry_id);
  // Sets the folder's own mark, and shows the locks of it and of all below. Throws Automation_Error; the
  // locks then say which mark the folder has.
  void Set(int node, bool is_protected);
  // The folder is not there any more.
  void Forget(int node) { Note(node, false); }

  // By its own mark or that of a folder above.
  bool Is_Protected(int node) const { return records_.Has(node) && records_[node].Protected; }
  bool Is_Protected_Itself(int node) const { return records_.Has(node) && records_[node].ProtectedItself; }
  bool Can_Change(int node) const { return records_.Has(node) && records_[node].MayChangeProtection; }
  // True when a protected folder lies anywhere below the node.
  bool Holds_Protected(int node) const;
  // The node of the folder whose mark protects this one: itself, or the nearest above; 0 for none.
  int Protector_Of(int node) const;
  // Why the folder cannot be marked, for a person; empty for one that is not protected.
  std::string Reason(int node) const;

  // The same in the status bar, in place of what it said of another folder; 0 for no folder.
  void Say_Why(int node);

  // The last look before something is removed: asks again where the marks are kept, for the folder and for
  // each above it, in the tree and where it lies now. Throws Automation_Error (no_access) for a protected
  // one.
  void Demand_Unprotected(int node) const;

 private:
  void Note(int node, bool itself);
  bool Is_Marked(MAPIFolder& folder) const;
  bool Is_One_Of(const std::vector<int>& nodes, MAPIFolder& folder) const;

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Outlook_Session& session_;
  Folder_Protection& marks_;
  std::string said_;  // as the status bar was given it last
};

}  // namespace tidyfold
