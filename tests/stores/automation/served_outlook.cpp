#include "served_outlook.h"

#include <cmath>
#include <type_traits>
#include <utility>

#include "errors/automation_error.h"
#include "outlook/default_folders.h"
#include "served_table.h"
#include "server_ids.h"

namespace tidyfold::test_server {

using com::Ptr;
using com::Variant;

namespace {

constexpr std::int32_t application_class = 0, namespace_class = 1, folder_class = 2;

Ptr<IDispatch> Serve(World& world, const Folders_Ptr& folders);
Ptr<IDispatch> Serve(World& world, const Items_Ptr& items);
Ptr<IDispatch> Serve(World& world, const Item_Ptr& item);
Ptr<IDispatch> Serve(World& world, const Store_Ptr& store);
Ptr<IUnknown> Serve(World& world, const std::shared_ptr<Mapi_Object>& message);

// Converts a result for automation. Only dates are doubles.
template <class Value>
Variant Pass(World& world, const Value& value) {
  if constexpr (std::is_same_v<Value, Date>) {
    return Variant::Of_Date(value);
  } else if constexpr (std::is_convertible_v<Value, Variant>) {
    return Variant(value);
  } else {
    return Variant(Serve(world, value));
  }
}

template <class Value>
Value Receive(const Variant& argument) {
  if constexpr (std::is_integral_v<Value>) {
    return argument.Number();
  } else {
    return argument.Text();
  }
}

template <class Object, class Result, class... Parameters>
void Offer(World& world, Served& served, const std::shared_ptr<Object>& object, const char* name,
           Result (Object::*member)(Parameters...)) {
  served.Offer(name, [=, &world](const Arguments& arguments) {
    const auto call = [&]<std::size_t... at>(std::index_sequence<at...>) {
      return (object.get()->*member)(Receive<std::decay_t<Parameters>>(arguments.at(at))...);
    };
    constexpr std::index_sequence_for<Parameters...> places;
    if constexpr (std::is_void_v<Result>) {
      return call(places), Variant();
    } else {
      return Pass(world, call(places));
    }
  });
}

// Takes names and members in turn.
template <class Object, class Member, class... More>
void Offer(World& world, Served& served, const std::shared_ptr<Object>& object, const char* name,
           Member member, More... more) {
  Offer(world, served, object, name, member);
  Offer(world, served, object, more...);
}

template <class Object, class... Members>
Ptr<Served> Make(World& world, const char* type, const std::shared_ptr<Object>& object, Members... members) {
  Ptr<Served> served(new Served(world.switches, type));
  Offer(world, *served, object, members...);
  return served;
}

Ptr<IDispatch> As_Dispatch(Ptr<Served> served) {
  return Ptr<IDispatch>(served.Detach());
}

Ptr<IDispatch> Open_Name_Space(World& world, const std::string& type) {
  const auto name_space = world.Outlook().GetObject("", "Outlook.Application")->GetNamespace(type);
  Ptr<Served> served = Make(world, "NameSpace", name_space, "Folders", &NameSpace::Folders,
                            "GetDefaultFolder", &NameSpace::GetDefaultFolder, "GetItemFromID",
                            &NameSpace::GetItemFromID, "CompareEntryIDs", &NameSpace::CompareEntryIDs);
  served->Offer("Class", [](auto&) { return Variant(namespace_class); });
  return As_Dispatch(std::move(served));
}

// Marshals itself into client processes as message_proxy.dll, which offers IMAPIProp.
class Message : public com::Com_Object<IMarshal> {
 public:
  explicit Message(Ptr<IDispatch> reader) : reader_(std::move(reader)) {}
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
};

Ptr<IUnknown> Serve(World& world, const std::shared_ptr<Mapi_Object>& message) {
  Ptr<Served> reader(new Served(world.switches, "Message"));
  reader->Offer("GetProps", [=](auto& a) {
    // The only property that the stores in memory keep.
    const auto number = static_cast<std::uint32_t>(a.at(0).Number());
    const std::string text = message->String_Property((number << 16) | (sender_name_tag & 0xFFFF));
    return number == sender_name_tag >> 16 ? Variant(text) : Variant();
  });
  return Ptr<IUnknown>(new Message(As_Dispatch(std::move(reader))));
}

Ptr<IDispatch> Serve(World& world, const Folders_Ptr& folders) {
  Ptr<Served> served = Make(world, "Folders", folders, "Count", &Folders::Count, "Item", &Folders::Item,
                            "Remove", &Folders::Remove);
  served->Offer("Add", [=, &world](auto& a) {
    const Default_Folder* like = Find_Default_Folder(a.at(1).Number());
    if (like == nullptr || like->type == default_folder_deleted_items) com::Fail(E_INVALIDARG);
    return Variant(Serve(world, folders->Add(a.at(0).Text(), like->item_type)));
  });
  return As_Dispatch(std::move(served));
}

Ptr<IDispatch> Serve(World& world, const Store_Ptr& store) {
  return As_Dispatch(Make(world, "Store", store, "GetDefaultFolder", &Store::GetDefaultFolder));
}

class Served_Folder : public Served {
 public:
  Served_Folder(Switches& switches, MAPIFolder_Ptr inner)
      : Served(switches, "MAPIFolder"), folder(std::move(inner)) {}
  const MAPIFolder_Ptr folder;
};

Ptr<IDispatch> Serve(World& world, const Items_Ptr& items) {
  return As_Dispatch(
      Make(world, "Items", items, "Count", &Items::Count, "Item", &Items::Item, "Remove", &Items::Remove));
}

// An hour, as a day count.
constexpr Date series_hours = 1.0 / 24;

Ptr<IDispatch> Serve_Pattern(World& world, Date last_end) {
  Ptr<Served> served(new Served(world.switches, "RecurrencePattern"));
  const Date last_start = last_end - series_hours;
  served->Offer("NoEndDate", [=](auto&) { return Variant(last_end == no_date); });
  served->Offer("PatternEndDate", [=](auto&) { return Variant::Of_Date(std::floor(last_start)); });
  served->Offer("StartTime", [=](auto&) { return Variant::Of_Date(last_start - std::floor(last_start)); });
  served->Offer("Duration", [](auto&) { return Variant(60); });
  return As_Dispatch(std::move(served));
}

Ptr<IDispatch> Serve(World& world, const Item_Ptr& item) {
  Ptr<Served> served(new Served(world.switches, "Item", item->Class()));
  Offer(world, *served, item, "Class", &Item::Class, "Subject", &Item::Subject, "EntryID", &Item::EntryID,
        "UnRead", &Item::UnRead, "FlagStatus", &Item::FlagStatus, "ReceivedTime", &Item::ReceivedTime,
        "LastModificationTime", &Item::LastModificationTime, "DateCompleted", &Item::DateCompleted, "DueDate",
        &Item::DueDate, "MAPIOBJECT", &Item::MAPIOBJECT, "Parent", &Item::Parent, "Delete", &Item::Delete,
        "Display", &Item::Display);
  served->Offer("Body", [=](auto&) { return Variant(item->Body()); });
  const auto is_series = [=] {
    return item->Class() == item_class::appointment && item->Subject().starts_with("series");
  };
  // The first occurrence ends an hour after the item was received.
  served->Offer("End", [=](auto&) {
    return Variant::Of_Date(is_series() ? item->ReceivedTime() + series_hours : item->End());
  });
  served->Offer("IsRecurring", [=](auto&) { return Variant(is_series()); });
  served->Offer("GetRecurrencePattern", [=, &world](auto&) {
    if (!is_series())
      throw Automation_Error(automation_error::call_failed, "This made it a series.", "Test Outlook");
    return Variant(Serve_Pattern(world, item->End()));
  });
  // A served folder comes back as the same object.
  served->Offer("Move", [=, &world](auto& a) {
    return Variant(Serve(world, item->Move(*dynamic_cast<Served_Folder&>(*a.at(0).Object()).folder)));
  });
  return As_Dispatch(std::move(served));
}

}  // namespace

Ptr<IDispatch> Serve(World& world, const MAPIFolder_Ptr& folder) {
  Ptr<Served> served(new Served_Folder(world.switches, folder));
  Offer(world, *served, folder, "Name", &MAPIFolder::Name, "EntryID", &MAPIFolder::EntryID, "StoreID",
        &MAPIFolder::StoreID, "DefaultItemType", &MAPIFolder::DefaultItemType, "Folders",
        &MAPIFolder::Folders, "Items", &MAPIFolder::Items, "Store", &MAPIFolder::Store);
  served->Offer("Class", [](auto&) { return Variant(folder_class); });
  served->Offer("GetTable", [=, &world](auto&) { return Variant(Serve_Table(world, folder->GetTable())); });
  served->Offer("Parent", [=, &world](auto&) {
    const MAPIFolder_Ptr above = folder->Parent();
    return Variant(above == nullptr ? Open_Name_Space(world, "MAPI") : Serve(world, above));
  });
  return As_Dispatch(std::move(served));
}

Ptr<IDispatch> Make_Application(World& world) {
  Ptr<Served> served(new Served(world.switches, "Application"));
  served->Offer("Class", [](auto&) { return Variant(application_class); });
  served->Offer("GetNamespace",
                [&world](auto& a) { return Variant(Open_Name_Space(world, a.at(0).Text())); });
  return As_Dispatch(std::move(served));
}

}  // namespace tidyfold::test_server
