#include "stores/faulty/faulty_automation.h"

#include <functional>
#include <utility>

namespace tidyfold {

namespace {

using Identity = std::function<std::string()>;

// Reads the object's EntryID when it is first needed and keeps it: an object that is gone later is still
// known.
template <class Object>
Identity Identity_Of(const std::shared_ptr<Object>& object) {
  return [object, known = std::make_shared<std::string>()] {
    try {
      if (known->empty()) *known = object->EntryID();
    } catch (const Automation_Error&) {
      // The call itself meets the same failure and reports it.
    }
    return *known;
  };
}

template <class Interface>
class Decorated : public Interface {
 public:
  Decorated(std::shared_ptr<Interface> inner, Fault_Plan& plan, Identity identity)
      : inner_(std::move(inner)), plan_(plan), identity_(std::move(identity)) {}

  Interface& Inner() { return *inner_; }
  const Identity& Its_Identity() const { return identity_; }

 protected:
  Interface& Call(const char* member, std::int32_t index = 0) {
    plan_.Before(member, index, identity_);
    return *inner_;
  }
  Fault_Plan& Plan() const { return plan_; }

 private:
  std::shared_ptr<Interface> inner_;
  Fault_Plan& plan_;
  Identity identity_;
};

// Null stays null.
template <class Wrapper, class Interface>
std::shared_ptr<Interface> Decorate(std::shared_ptr<Interface> inner, Fault_Plan& plan, Identity identity) {
  if (inner == nullptr) return nullptr;
  return std::make_shared<Wrapper>(std::move(inner), plan, std::move(identity));
}

MAPIFolder_Ptr Decorate_Folder(const MAPIFolder_Ptr& folder, Fault_Plan& plan);

class Faulty_Mapi_Object : public Decorated<Mapi_Object> {
 public:
  using Decorated::Decorated;
  std::string String_Property(std::uint32_t property_tag) override {
    return Call("Mapi_Object.String_Property").String_Property(property_tag);
  }
};

// A store may expect its own folder object.
MAPIFolder& Undecorated(MAPIFolder& folder) {
  auto* decorated = dynamic_cast<Decorated<MAPIFolder>*>(&folder);
  return decorated != nullptr ? decorated->Inner() : folder;
}

Item_Ptr Decorate_Item(const Item_Ptr& item, Fault_Plan& plan);

class Faulty_Item : public Decorated<Item> {
 public:
  using Decorated::Decorated;
  std::int32_t Class() override { return Call("Item.Class").Class(); }
  std::string Subject() override { return Call("Item.Subject").Subject(); }
  std::string EntryID() override { return Call("Item.EntryID").EntryID(); }
  std::string Body(std::size_t characters) override { return Call("Item.Body").Body(characters); }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    return Decorate<Faulty_Mapi_Object>(Call("Item.MAPIOBJECT").MAPIOBJECT(), Plan(), Its_Identity());
  }
  Date ReceivedTime() override { return Call("Item.ReceivedTime").ReceivedTime(); }
  Date LastModificationTime() override { return Call("Item.LastModificationTime").LastModificationTime(); }
  Date DateCompleted() override { return Call("Item.DateCompleted").DateCompleted(); }
  Date DueDate() override { return Call("Item.DueDate").DueDate(); }
  Date End() override { return Call("Item.End").End(); }
  bool UnRead() override { return Call("Item.UnRead").UnRead(); }
  std::int32_t FlagStatus() override { return Call("Item.FlagStatus").FlagStatus(); }
  std::int64_t Size() override { return Call("Item.Size").Size(); }
  MAPIFolder_Ptr Parent() override { return Decorate_Folder(Call("Item.Parent").Parent(), Plan()); }
  void Delete() override { Call("Item.Delete").Delete(); }
  Item_Ptr Move(MAPIFolder& folder) override {
    return Decorate_Item(Call("Item.Move").Move(Undecorated(folder)), Plan());
  }
  void Display() override { Call("Item.Display").Display(); }
};

Item_Ptr Decorate_Item(const Item_Ptr& item, Fault_Plan& plan) {
  return Decorate<Faulty_Item>(item, plan, Identity_Of(item));
}

class Faulty_Items : public Decorated<Items> {
 public:
  using Decorated::Decorated;
  std::int32_t Count() override { return Call("Items.Count").Count(); }
  Item_Ptr Item(std::int32_t index) override {
    return Decorate_Item(Call("Items.Item", index).Item(index), Plan());
  }
  void Remove(std::int32_t index) override { Call("Items.Remove", index).Remove(index); }
};

class Faulty_Folders : public Decorated<Folders> {
 public:
  using Decorated::Decorated;
  std::int32_t Count() override { return Call("Folders.Count").Count(); }
  MAPIFolder_Ptr Item(std::int32_t index) override {
    return Decorate_Folder(Call("Folders.Item", index).Item(index), Plan());
  }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    return Decorate_Folder(Call("Folders.Add").Add(name, default_item_type), Plan());
  }
  void Remove(std::int32_t index) override { Call("Folders.Remove", index).Remove(index); }
};

class Faulty_Store : public Decorated<Store> {
 public:
  using Decorated::Decorated;
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return Decorate_Folder(Call("Store.GetDefaultFolder").GetDefaultFolder(folder_type), Plan());
  }
};

class Faulty_Table : public Decorated<Table> {
 public:
  using Decorated::Decorated;
  std::vector<Table_Row> GetArray(std::int32_t most) override {
    return Call("Table.GetArray").GetArray(most);
  }
};

class Faulty_Folder : public Decorated<MAPIFolder> {
 public:
  using Decorated::Decorated;
  MAPIFolder_Ptr Parent() override { return Decorate_Folder(Call("MAPIFolder.Parent").Parent(), Plan()); }
  std::int32_t DefaultItemType() override { return Call("MAPIFolder.DefaultItemType").DefaultItemType(); }
  std::string EntryID() override { return Call("MAPIFolder.EntryID").EntryID(); }
  std::string StoreID() override { return Call("MAPIFolder.StoreID").StoreID(); }
  std::string Name() override { return Call("MAPIFolder.Name").Name(); }
  Folders_Ptr Folders() override {
    return Decorate<Faulty_Folders>(Call("MAPIFolder.Folders").Folders(), Plan(), Its_Identity());
  }
  Items_Ptr Items() override {
    return Decorate<Faulty_Items>(Call("MAPIFolder.Items").Items(), Plan(), Its_Identity());
  }
  Table_Ptr GetTable() override {
    return Decorate<Faulty_Table>(Call("MAPIFolder.GetTable").GetTable(), Plan(), Its_Identity());
  }
  Store_Ptr Store() override { return Decorate<Faulty_Store>(Call("MAPIFolder.Store").Store(), Plan(), {}); }
};

MAPIFolder_Ptr Decorate_Folder(const MAPIFolder_Ptr& folder, Fault_Plan& plan) {
  return Decorate<Faulty_Folder>(folder, plan, Identity_Of(folder));
}

class Faulty_Name_Space : public Decorated<NameSpace> {
 public:
  using Decorated::Decorated;
  Folders_Ptr Folders() override {
    return Decorate<Faulty_Folders>(Call("NameSpace.Folders").Folders(), Plan(), {});
  }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return Decorate_Folder(Call("NameSpace.GetDefaultFolder").GetDefaultFolder(folder_type), Plan());
  }
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override {
    Plan().Before("NameSpace.GetItemFromID", 0, [&] { return entry_id; });
    return Decorate_Item(Inner().GetItemFromID(entry_id, store_id), Plan());
  }
  bool CompareEntryIDs(const std::string& one, const std::string& other) override {
    return Call("NameSpace.CompareEntryIDs").CompareEntryIDs(one, other);
  }
};

class Faulty_Application : public Decorated<Application> {
 public:
  using Decorated::Decorated;
  std::shared_ptr<NameSpace> GetNamespace(const std::string& type) override {
    return Decorate<Faulty_Name_Space>(Call("Application.GetNamespace").GetNamespace(type), Plan(), {});
  }
};

class Faulty_Mapi_Utils : public Decorated<Mapi_Utils> {
 public:
  using Decorated::Decorated;
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) override {
    auto* decorated = dynamic_cast<Faulty_Mapi_Object*>(&object);
    Plan().Before("Mapi_Utils.HrGetOneProp", 0, decorated != nullptr ? decorated->Its_Identity() : nullptr);
    // A store's companion may expect the store's own message object.
    return Inner().HrGetOneProp(decorated != nullptr ? decorated->Inner() : object, property_tag);
  }
};

}  // namespace

std::shared_ptr<Application> Faulty_Automation::GetObject(const std::string& path,
                                                          const std::string& program) {
  plan_.Before("Automation.GetObject", 0, {});
  return Decorate<Faulty_Application>(inner_.GetObject(path, program), plan_, {});
}

std::shared_ptr<Application> Faulty_Automation::CreateObject(const std::string& program) {
  plan_.Before("Automation.CreateObject", 0, {});
  return Decorate<Faulty_Application>(inner_.CreateObject(program), plan_, {});
}

std::shared_ptr<Mapi_Utils> Faulty_Automation::Create_Mapi_Utils(const std::string& program) {
  plan_.Before("Automation.Create_Mapi_Utils", 0, {});
  return Decorate<Faulty_Mapi_Utils>(inner_.Create_Mapi_Utils(program), plan_, {});
}

}  // namespace tidyfold
