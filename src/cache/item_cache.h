// Reads every item of every folder once into memory, in the user-interface thread, yielding after every item.
// A folder is read through its table, a hundred rows a call; where the store has none, item by item.
#pragma once

#include <string>

#include "cache/window_updates.h"
#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_tree.h"
#include "plan/phase.h"

namespace tidyfold {

// Closes the holes that deleted items left among the records that were read; the others keep their order.
void Pack_Items_Array(FolderData& record);

class Item_Cache {
 public:
  Item_Cache(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
             Outlook_Session& session, Item_View& view, Program_Phase& phase, Message_Box& message_box,
             Events& events, Error_Handler& errors);

  // Loads what is not loaded: the selected folder first, then marked ones, then all others. Does nothing
  // while it runs already.
  void Cache_Folder_Items();
  // The first node, in the order of the tree's collection, that is marked and not loaded; 0 if there is none.
  int Get_Next_Unloaded_Checked_Node();
  bool All_Folders_Cached();
  // True when nothing is left to load; may prepare the folder's array.
  bool Check_Cache_Status(int folder);
  // True when the folder was read to its end, false when loading was broken off.
  bool Cache_Selected_Folder(int folder);
  // True when the item was read.
  bool Cache_Current_Item(Items& items, std::int32_t item, int folder);
  // Hands newly read records to the grid if the folder is in view.
  void Add_100_New_Rows(int folder);
  void Display_Cache_Status(const std::string& folder_name, std::int32_t count);

  // Whether items are being read; then handlers talk to the loader only through the flags below.
  bool Running() const { return running_; }

  bool StopCaching = false;       // end loading altogether
  bool LoadGivenUp = false;       // the person has stopped it: it goes on only when asked to
  bool InterruptCaching = false;  // stop loading the current folder now
  bool AllFoldersCached = false;
  // The program's own flag for the message about items that could not be loaded; nothing sets it.
  bool LoadFailed = false;
  int LastSelectedNode = 0;

 private:
  bool Load_Next_Folders();
  template <class Work>
  bool Attempt(int folder, Work&& work);
  Mapi_Utils* Companion();
  void Say_That_Senders_Are_Missing();
  bool Read_Items(Items& items, const std::string& name, int folder);
  void Open_Table(int folder);
  bool Has_Row(int folder);
  void Take_Row(std::int32_t item, int folder);
  bool By_Table(int folder) const;
  void Read(Item& object, ItemData& data);
  bool Is_Touched(int folder, std::int32_t item);
  bool Leave_Touched(int folder, std::int32_t unchecked);
  bool Another_Folder_Is_Wanted();
  std::string Id_At(Items& items, std::int32_t item);
  Folder_Extent Extent_Of(Items& items);
  bool Nothing_Moved(Items& items, int folder, std::int32_t checked, Folder_Extent& extent);
  bool Goes_On(Items& items, int folder, const Folder_Extent& extent);
  void Begin_Reading(Items& items, int folder, const Folder_Extent& extent);
  bool Has_Its_Place(Items& items, int folder, std::int32_t item);
  void Keep_What_Has_Its_Place(Items& items, int folder, std::int32_t count);
  void Keep(int folder, std::int32_t kept);
  void Finish_Folder(int folder);
  void Show_Progress();

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Outlook_Session& session_;
  Item_View& view_;
  Program_Phase& phase_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  std::shared_ptr<Mapi_Utils> mapi_utils_;
  std::int64_t items_to_read_ = 0;
  std::uint32_t resets_ = 0;  // of the folder that is being read, when reading began
  bool running_ = false;
  bool item_failure_reported_ = false;
  bool folder_failure_reported_ = false;
  bool companion_created_ = false;  // or tried to be, in this loading run
  bool missing_senders_told_ = false;
};

}  // namespace tidyfold
