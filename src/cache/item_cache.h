// Reads every item of every folder once into memory, in the user-interface thread, yielding after every item.
#pragma once

#include <functional>
#include <string>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_tree.h"

namespace tidyfold {

// Closes the holes that deleted items left among the records that were read; the others keep their order.
void Pack_Items_Array(FolderData& record);

class Item_Cache {
 public:
  Item_Cache(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
             Outlook_Session& session, Message_Box& message_box, Events& events, Error_Handler& errors);

  // Loads what is not loaded: the selected folder first, then marked ones, then all others. Does nothing
  // while it runs already.
  void Cache_Folder_Items();
  // The first node, in the order of the tree's collection, that is marked and not loaded; 0 if there is none.
  int Get_Next_Unloaded_Checked_Node();
  bool All_Folders_Cached();
  // True when nothing is left to load; may prepare the folder's array.
  bool Check_Cache_Status(int folder, int node);
  // True when the folder was read to its end, false when loading was broken off.
  bool Cache_Selected_Folder(int folder, int node);
  // True when the item was read.
  bool Cache_Current_Item(Items& items, std::int32_t item, int folder);
  // Hands newly read records to the grid if the folder is in view.
  void Add_100_New_Rows(int folder);
  void Display_Cache_Status(const std::string& folder_name, std::int32_t count);

  // Whether a loading run is under way; then handlers talk to it only through the flags below.
  bool Running() const { return running_; }

  bool StopCaching = false;       // end loading altogether
  bool LoadGivenUp = false;       // and it does not start over
  bool InterruptCaching = false;  // stop loading the current folder now
  bool AllFoldersCached = false;
  bool LoadFailed = false;
  int LastSelectedNode = 0;

  // Whether the grid shows a folder's items, and the rows of the records that it has not been given yet.
  std::function<bool(int folder)> In_View;
  std::function<void(int folder)> Add_Folder_Rows;
  std::function<void(int folder)> Remove_Folder_Rows;
  std::function<void()> Set_Grid_Order;
  std::function<void()> Display_Selected_Items_Total;

 private:
  bool Load_Next_Folders();
  template <class Work>
  bool Attempt(int folder, Work&& work);
  void Create_Companion();
  void Say_That_Senders_Are_Missing();
  bool Read_Items(Items& items, const std::string& name, int folder, int node);
  bool Is_Touched(int folder, std::int32_t item);
  bool Leave_Touched(int folder, std::int32_t unchecked);
  bool Another_Folder_Is_Wanted();
  // Tells, without a look at them all, that among a folder's items some have come or gone.
  struct Extent {
    std::int32_t count = 0;
    std::string last_id;
  };
  std::string Id_At(Items& items, std::int32_t item);
  Extent Extent_Of(Items& items);
  bool Nothing_Moved(Items& items, int folder, std::int32_t checked, Extent& extent);
  bool Has_Its_Place(Items& items, int folder, std::int32_t item);
  void Keep_What_Has_Its_Place(Items& items, int folder, std::int32_t count);
  void Keep(int folder, std::int32_t kept);
  void Finish_Folder(int folder, int node);
  void Show_Progress();

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Outlook_Session& session_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  std::shared_ptr<Mapi_Utils> mapi_utils_;
  std::int64_t items_to_read_ = 0;
  bool running_ = false;
  bool item_failure_reported_ = false;
  bool folder_failure_reported_ = false;
  bool missing_senders_told_ = false;
};

}  // namespace tidyfold
