#include "served_outlook.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tidyfold::test_server {

using com::Ptr;
using com::Variant;

namespace {

constexpr std::int32_t application_class = 0, namespace_class = 1, folder_class = 2;

template <class Object, class... Parts>
Ptr<IDispatch> Make(Parts&&... parts) {
  return Ptr<IDispatch>(new Object(std::forward<Parts>(parts)...));
}

class Served_Item : public Served {
 public:
  Served_Item(World& world, const Item_Ptr& item) : Served(world.switches, "Item"), class_(item->Class()) {
    Offer("Class", [=](auto&) { return Variant(item->Class()); });
    Offer("Subject", [=](auto&) { return Variant(item->Subject()); });
    Offer("EntryID", [=](auto&) { return Variant(item->EntryID()); });
    Offer("Body", [=](auto&) { return Variant(item->Body()); });
    Offer("UnRead", [=](auto&) { return Variant(item->UnRead()); });
    Offer("ReceivedTime", [=](auto&) { return Variant::Of_Date(item->ReceivedTime()); });
    Offer("LastModificationTime", [=](auto&) { return Variant::Of_Date(item->LastModificationTime()); });
    Offer("DateCompleted", [=](auto&) { return Variant::Of_Date(item->DateCompleted()); });
    Offer("DueDate", [=](auto&) { return Variant::Of_Date(item->DueDate()); });
    Offer("End", [=](auto&) { return Variant::Of_Date(item->End()); });
    Offer("MAPIOBJECT", [=, &world](auto&) { return Variant(Make_Message(world, item->MAPIOBJECT())); });
    Offer("Parent", [=, &world](auto&) { return Variant(Make_Folder(world, item->Parent())); });
    Offer("Delete", [=](auto&) { return item->Delete(), Variant(); });
    Offer("Display", [=](auto&) { return item->Display(), Variant(); });
  }

 protected:
  // Names that every item has bear the same id in all of them, the others one of their class's own.
  DISPID Id_At(std::size_t place, const std::string& name) const override {
    static constexpr std::string_view shared[] = {"Class",   "Delete", "Display",
                                                  "EntryID", "Parent", "Subject"};
    if (The_Switches().ids_unlike) return static_cast<DISPID>(first_unlike + (place + Turn()) % most_names);
    const bool is_shared = std::find(std::begin(shared), std::end(shared), name) != std::end(shared);
    return static_cast<DISPID>(place) + 1 + (is_shared ? 0 : 100 * class_);
  }
  std::size_t Place_Of(DISPID id) const override {
    const auto number = static_cast<std::size_t>(id);
    if (The_Switches().ids_unlike) return (number - first_unlike + 2 * most_names - Turn()) % most_names;
    return number <= most_names ? number - 1 : number - 1 - 100 * Turn();
  }

 private:
  static constexpr std::size_t first_unlike = 1000;
  std::size_t Turn() const { return static_cast<std::size_t>(class_); }

  std::int32_t class_;
};

class Served_Items : public Served {
 public:
  Served_Items(World& world, const Items_Ptr& items) : Served(world.switches, "Items") {
    Offer("Count", [=](auto&) { return Variant(items->Count()); });
    Offer("Item",
          [=, &world](auto& a) { return Variant(Make<Served_Item>(world, items->Item(a.at(0).Number()))); });
    Offer("Remove", [=](auto& a) { return items->Remove(a.at(0).Number()), Variant(); });
  }
};

class Served_Folders : public Served {
 public:
  Served_Folders(World& world, const Folders_Ptr& folders) : Served(world.switches, "Folders") {
    Offer("Count", [=](auto&) { return Variant(folders->Count()); });
    Offer("Item",
          [=, &world](auto& a) { return Variant(Make_Folder(world, folders->Item(a.at(0).Number()))); });
    Offer("Remove", [=](auto& a) { return folders->Remove(a.at(0).Number()), Variant(); });
  }
};

class Served_Name_Space : public Served {
 public:
  Served_Name_Space(World& world, const std::shared_ptr<NameSpace>& name_space)
      : Served(world.switches, "NameSpace") {
    Offer("Class", [](auto&) { return Variant(namespace_class); });
    Offer("Folders",
          [=, &world](auto&) { return Variant(Make<Served_Folders>(world, name_space->Folders())); });
    Offer("GetDefaultFolder", [=, &world](auto& a) {
      return Variant(Make_Folder(world, name_space->GetDefaultFolder(a.at(0).Number())));
    });
    Offer("GetItemFromID", [=, &world](auto& a) {
      return Variant(Make<Served_Item>(world, name_space->GetItemFromID(a.at(0).Text(), a.at(1).Text())));
    });
  }
};

Ptr<IDispatch> Open_Name_Space(World& world, const std::string& type) {
  const auto application = world.Outlook().GetObject("", "Outlook.Application");
  return Make<Served_Name_Space>(world, application->GetNamespace(type));
}

class Served_Folder : public Served {
 public:
  Served_Folder(World& world, const MAPIFolder_Ptr& folder) : Served(world.switches, "MAPIFolder") {
    Offer("Class", [](auto&) { return Variant(folder_class); });
    Offer("Name", [=](auto&) { return Variant(folder->Name()); });
    Offer("EntryID", [=](auto&) { return Variant(folder->EntryID()); });
    Offer("StoreID", [=](auto&) { return Variant(folder->StoreID()); });
    Offer("DefaultItemType", [=](auto&) { return Variant(folder->DefaultItemType()); });
    Offer("Folders", [=, &world](auto&) { return Variant(Make<Served_Folders>(world, folder->Folders())); });
    Offer("Items", [=, &world](auto&) { return Variant(Make<Served_Items>(world, folder->Items())); });
    Offer("Parent", [=, &world](auto&) {
      const MAPIFolder_Ptr above = folder->Parent();
      return Variant(above == nullptr ? Open_Name_Space(world, "MAPI") : Make_Folder(world, above));
    });
  }
};

class Served_Application : public Served {
 public:
  explicit Served_Application(World& world) : Served(world.switches, "Application") {
    Offer("Class", [](auto&) { return Variant(application_class); });
    Offer("GetNamespace", [&world](auto& a) { return Variant(Open_Name_Space(world, a.at(0).Text())); });
  }
};

// What a message answers to its proxy.
class Message_Reader : public Served {
 public:
  Message_Reader(World& world, const std::shared_ptr<Mapi_Object>& message)
      : Served(world.switches, "Message") {
    Offer("GetProps", [=](auto& a) {
      // Of all properties the stores in memory keep one.
      const auto number = static_cast<std::uint32_t>(a.at(0).Number());
      const std::string text = message->String_Property((number << 16) | (sender_name_tag & 0xFFFF));
      return number == sender_name_tag >> 16 ? Variant(text) : Variant();
    });
  }
};

class Message : public IMarshal {
 public:
  explicit Message(Ptr<IDispatch> reader) : reader_(std::move(reader)) {}
  virtual ~Message() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
    *object = nullptr;
    if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, IID_IMarshal)) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IMarshal*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID, void*, DWORD, void*, DWORD, CLSID* proxy) override {
    *proxy = message_proxy_class;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID, void*, DWORD context, void* more, DWORD flags,
                                              DWORD* size) override {
    return CoGetMarshalSizeMax(size, IID_IDispatch, reader_.Get(), context, more, flags);
  }
  HRESULT STDMETHODCALLTYPE MarshalInterface(IStream* stream, REFIID, void*, DWORD context, void* more,
                                             DWORD flags) override {
    return CoMarshalInterface(stream, IID_IDispatch, reader_.Get(), context, more, flags);
  }
  HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream*, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream* stream) override {
    return CoReleaseMarshalData(stream);
  }
  HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD) override { return S_OK; }

 private:
  Ptr<IDispatch> reader_;
  ULONG references_ = 1;
};

}  // namespace

Ptr<IDispatch> Make_Application(World& world) {
  return Make<Served_Application>(world);
}

Ptr<IDispatch> Make_Folder(World& world, MAPIFolder_Ptr folder) {
  return Make<Served_Folder>(world, folder);
}

Ptr<IUnknown> Make_Message(World& world, std::shared_ptr<Mapi_Object> message) {
  return Ptr<IUnknown>(new Message(Make<Message_Reader>(world, message)));
}

}  // namespace tidyfold::test_server
