#include <algorithm>

#include "errors/automation_error.h"
#include "served_outlook.h"

namespace tidyfold::test_server {

using com::Ptr;
using com::Variant;

namespace {

// Stands for the folder with these identifiers, wherever a store asks for one.
class Folder_Key : public MAPIFolder {
 public:
  Folder_Key(std::string store_id, std::string entry_id)
      : store_id_(std::move(store_id)), entry_id_(std::move(entry_id)) {}
  MAPIFolder_Ptr Parent() override { return nullptr; }
  std::int32_t DefaultItemType() override { return 0; }
  std::string EntryID() override { return entry_id_; }
  std::string StoreID() override { return store_id_; }
  std::string Name() override { return {}; }
  Folders_Ptr Folders() override { return nullptr; }
  Items_Ptr Items() override { return nullptr; }

 private:
  std::string store_id_, entry_id_;
};

class Control : public Served {
 public:
  explicit Control(World& world) : Served(world.switches, ""), world_(world) {
    Offer_Stores();
    Offer_Switches();
  }

 private:
  Memory_Store& Store(const Variant& number) {
    return world_.Outlook().Store(static_cast<std::size_t>(number.Number()));
  }

  void Offer_Stores() {
    Offer("Reset", [this](auto&) {
      world_.outlooks.push_back(std::make_unique<Memory_Outlook>());
      world_.switches = {};
      world_.busy_calls = 0;
      return Variant();
    });
    Offer("AddStore", [this](auto& a) {
      world_.Outlook().Add_Store(a.at(0).Text(), a.at(1).Truth() ? Memory_Outlook::Default_Folders::All
                                                                 : Memory_Outlook::Default_Folders::None);
      return Variant();
    });
    Offer("TopFolder", [this](auto& a) { return Variant(Make_Folder(world_, Store(a.at(0)).Top_Folder())); });
    Offer("AddFolder", [this](auto& a) {
      Folder_Key parent(a.at(1).Text(), a.at(2).Text());
      return Variant(
          Make_Folder(world_, Store(a.at(0)).Add_Folder(parent, a.at(3).Text(), a.at(4).Number())));
    });
    Offer("AddItem", [this](auto& a) {
      Folder_Key folder(a.at(1).Text(), a.at(2).Text());
      New_Item item;
      item.item_class = a.at(3).Number();
      item.sender = a.at(4).Text();
      item.subject = a.at(5).Text();
      item.body = a.at(6).Text();
      item.unread = a.at(7).Truth();
      std::size_t at = 8;
      for (Date* date : {&item.received, &item.last_modified, &item.completed, &item.due, &item.end})
        *date = a.at(at++).Day();
      return Variant(Store(a.at(0)).Add_Item(folder, item));
    });
    Offer("Begin", [this](auto& a) { return Store(a.at(0)).Begin(), Variant(); });
    Offer("Commit", [this](auto& a) { return Store(a.at(0)).Commit(), Variant(); });
    Offer("RollBack", [this](auto& a) { return Store(a.at(0)).Roll_Back(), Variant(); });
    Offer("Displayed", [this](auto&) {
      std::string all;
      for (const std::string& id : world_.Outlook().displayed) all += id + " ";
      return Variant(all);
    });
  }

  void Offer_Switches() {
    Switches& switches = world_.switches;
    Offer("Calls", [&switches](auto&) { return Variant(switches.calls); });
    Offer("CallsOf", [&switches](auto& a) { return Variant(switches.calls_of[a.at(0).Text()]); });
    Offer("Busy", [this](auto& a) { return world_.busy_calls = a.at(0).Number(), Variant(); });
    Offer("Fail", [&switches](auto& a) {
      switches.fail_member = a.at(0).Text();
      switches.fail_in = a.at(1).Number();
      switches.fail_number = a.at(2).Number();
      return Variant();
    });
    Offer("Vanish", [&switches](auto& a) { return switches.vanish_in = a.at(0).Number(), Variant(); });
    Offer("UnlikeIds", [&switches](auto&) { return switches.ids_unlike = true, Variant(); });
    Offer("Process", [](auto&) { return Variant(static_cast<std::int32_t>(GetCurrentProcessId())); });
    Offer("Quit", [](auto&) { return PostQuitMessage(0), Variant(); });
  }

  World& world_;
};

}  // namespace

Ptr<IDispatch> Make_Control(World& world) {
  return Ptr<IDispatch>(new Control(world));
}

}  // namespace tidyfold::test_server
