#include "served_outlook.h"

namespace tidyfold::test_server {

using com::Ptr;
using com::Variant;

namespace {

// Passes a folder's identifiers where a store expects a folder.
class Folder_Key : public MAPIFolder {
 public:
  Folder_Key(const Variant& store_id, const Variant& entry_id)
      : store_id_(store_id.Text()), entry_id_(entry_id.Text()) {}
  MAPIFolder_Ptr Parent() override { return nullptr; }
  std::int32_t DefaultItemType() override { return 0; }
  std::string EntryID() override { return entry_id_; }
  std::string StoreID() override { return store_id_; }
  std::string Name() override { return {}; }
  Folders_Ptr Folders() override { return nullptr; }
  Items_Ptr Items() override { return nullptr; }
  Table_Ptr GetTable() override { return nullptr; }
  Store_Ptr Store() override { return nullptr; }

 private:
  std::string store_id_, entry_id_;
};

New_Item Item_In(const Arguments& a) {
  New_Item item;
  item.item_class = a.at(3).Number();
  item.sender = a.at(4).Text();
  item.subject = a.at(5).Text();
  item.body = a.at(6).Text();
  item.unread = a.at(7).Truth();
  item.flagged = a.at(8).Truth();
  std::size_t at = 9;
  for (Date* date : {&item.received, &item.last_modified, &item.completed, &item.due, &item.end})
    *date = a.at(at++).Day();
  if (at < a.size()) item.size = a.at(at++).Number();
  if (at < a.size() && a.at(at).Truth()) item.attachments = {{}};
  return item;
}

}  // namespace

Ptr<IDispatch> Make_Control(World& world) {
  auto* control = new Served(world.switches, "");
  const auto order = [control](const char* name, auto work) {
    control->Offer(name, [work](const Arguments& a) { return work(a), Variant(); });
  };
  const auto store = [&world](const Arguments& a) -> Memory_Store& {
    return world.Outlook().Store(static_cast<std::size_t>(a.at(0).Number()));
  };
  Switches& switches = world.switches;

  order("Reset", [&](auto&) {
    world.outlooks.push_back(std::make_unique<Memory_Outlook>());
    // Objects of an earlier test are still open.
    const Switches before = std::move(switches);
    switches = {};
    switches.most_open = switches.open = before.open;
    switches.vanish = before.vanish;
    world.busy_calls = 0;
  });
  order("AddStore", [&](auto& a) {
    using Folders_There = Memory_Outlook::Default_Folders;
    world.Outlook().Add_Store(a.at(0).Text(), a.at(1).Truth() ? Folders_There::All : Folders_There::None);
  });
  control->Offer("TopFolder", [=, &world](auto& a) { return Variant(Serve(world, store(a).Top_Folder())); });
  control->Offer("AddFolder", [=, &world](auto& a) {
    Folder_Key parent(a.at(1), a.at(2));
    return Variant(Serve(world, store(a).Add_Folder(parent, a.at(3).Text(), a.at(4).Number())));
  });
  control->Offer("AddItem", [=](auto& a) {
    Folder_Key folder(a.at(1), a.at(2));
    return Variant(store(a).Add_Item(folder, Item_In(a)));
  });
  // Mail in great numbers: store, StoreID, EntryID, how many.
  order("AddMails", [=](auto& a) {
    Folder_Key folder(a.at(1), a.at(2));
    New_Item mail;
    for (std::int32_t number = 1; number <= a.at(3).Number(); ++number) {
      mail.subject = "Subject " + std::to_string(number);
      mail.sender = "Sender " + std::to_string(number % 100);
      mail.received = 44000.5;
      mail.size = number;
      store(a).Add_Item(folder, mail);
    }
  });
  order("Behave", [=](auto& a) { store(a).Behave(a.at(1).Text()); });
  order("Begin", [=](auto& a) { store(a).Begin(); });
  order("Commit", [=](auto& a) { store(a).Commit(); });
  order("RollBack", [=](auto& a) { store(a).Roll_Back(); });
  control->Offer("CallsOf", [&](auto& a) { return Variant(switches.calls_of[a.at(0).Text()]); });
  control->Offer("MostOpen", [&](auto& a) { return Variant(switches.most_open[a.at(0).Text()]); });
  order("Busy", [&](auto& a) { world.busy_calls = a.at(0).Number(); });
  order("Fail", [&](auto& a) {
    switches.fail_member = a.at(0).Text();
    switches.fail_in = a.at(1).Number();
    switches.fail_number = a.at(2).Number();
  });
  order("Forget", [&](auto& a) { switches.missing_member = a.at(0).Text(); });
  order("RefuseColumn", [&](auto& a) { switches.refused_columns.insert(a.at(0).Text()); });
  order("Vanish", [&](auto& a) { switches.vanish_in = a.at(0).Number(); });
  order("UnlikeIds", [&](auto&) { switches.ids_unlike = true; });
  control->Offer("Process", [](auto&) { return Variant(static_cast<std::int32_t>(GetCurrentProcessId())); });
  order("Quit", [](auto&) { PostQuitMessage(0); });
  return Ptr<IDispatch>(control);
}

}  // namespace tidyfold::test_server
