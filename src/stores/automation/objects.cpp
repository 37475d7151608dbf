#include "stores/automation/objects.h"

#include <cmath>
#include <optional>
#include <utility>

#include "base/text.h"
#include "controls/interaction.h"
#include "errors/automation_error.h"
#include "outlook/default_folders.h"
#include "stores/automation/item_table.h"

namespace tidyfold::com {

namespace {

// OlObjectClass of the namespace, the parent of a store's top folder.
constexpr std::int32_t namespace_class = 1;

constexpr const char* companion_program = "TidyDll.TidyMAPIUtils";

// An automation object whose interface has the same member ids in every object.
class Object {
 protected:
  Object(Session_Ptr session, Member_Ids Session::*ids, Ptr<IDispatch> object)
      : session_(std::move(session)), ids_(ids), object_(std::move(object)) {}

  Variant Get(Member member) { return Invoke(member, DISPATCH_PROPERTYGET, {}); }
  Variant Call(Member member, std::initializer_list<const Variant*> arguments) {
    return Invoke(member, DISPATCH_METHOD, arguments);
  }
  // Servers implement an indexed property as a method or as a property.
  Variant At(Member member, std::int32_t index) {
    const Variant argument(index);
    return Invoke(member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {&argument});
  }
  const Session_Ptr& Shared_Session() const { return session_; }
  Variant Itself() const { return object_; }

 private:
  Variant Invoke(Member member, WORD kind, std::initializer_list<const Variant*> arguments) {
    const DISPID id = (*session_.*ids_).Of(session_->caller, *object_, member);
    return session_->caller.Invoke(*object_, id, kind, arguments);
  }

  Session_Ptr session_;
  Member_Ids Session::*ids_;
  Ptr<IDispatch> object_;
};

// Throws when the answer holds no object.
Ptr<IDispatch> Object_In(const Variant& answer) {
  Ptr<IDispatch> object = answer.Object();
  if (!object) {
    throw Automation_Error(automation_error::not_found, "Outlook gave no object where one was asked for.",
                           "Outlook");
  }
  return object;
}

class Automation_Mapi_Object : public Mapi_Object {
 public:
  Automation_Mapi_Object(Session_Ptr session, Variant object)
      : session_(std::move(session)), object_(std::move(object)) {}
  std::string String_Property(std::uint32_t property_tag) override {
    return Create_Companion(session_, companion_program)->HrGetOneProp(*this, property_tag);
  }
  const Variant& Value() const { return object_; }

 private:
  Session_Ptr session_;
  Variant object_;
};

class Automation_Item : public Item {
 public:
  Automation_Item(Session_Ptr session, Ptr<IDispatch> object)
      : session_(std::move(session)), object_(std::move(object)) {}

  std::int32_t Class() override {
    if (class_) return Get(Member::Class).Number();
    class_ = session_->item.Read_Class(session_->caller, *object_);
    return *class_;
  }
  std::string Subject() override { return Get(Member::Subject).Text(); }
  std::string EntryID() override { return Get(Member::EntryID).Text(); }
  std::string Body(std::size_t characters) override {
    const std::string text = Get(Member::Body).Text();
    return std::string(First_Characters(text, characters));
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    return std::make_shared<Automation_Mapi_Object>(session_, Get(Member::MAPIOBJECT));
  }
  Date ReceivedTime() override { return Get(Member::ReceivedTime).Day(); }
  Date LastModificationTime() override { return Get(Member::LastModificationTime).Day(); }
  Date DateCompleted() override { return Get(Member::DateCompleted).Day(); }
  Date DueDate() override { return Get(Member::DueDate).Day(); }
  Date End() override {
    if (!class_) Class();
    if (*class_ == item_class::appointment && Get(Member::IsRecurring).Truth()) return End_Of_Series();
    return Get(Member::End).Day();
  }
  bool UnRead() override { return Get(Member::UnRead).Truth(); }
  std::int32_t FlagStatus() override { return Get(Member::FlagStatus).Number(); }
  std::int64_t Size() override { return 0; }
  MAPIFolder_Ptr Parent() override { return Make_Folder(session_, Object_In(Get(Member::Parent))); }
  void Delete() override { Call(Member::Delete); }
  Item_Ptr Move(MAPIFolder& folder) override;
  void Display() override {
    // Only the program in front may let another one come to the front.
    CoAllowSetForegroundWindow(object_.Get(), nullptr);
    Call(Member::Display);
  }

 private:
  Variant Get(Member member) { return Invoke(member, DISPATCH_PROPERTYGET); }
  void Call(Member member) { Invoke(member, DISPATCH_METHOD); }
  Date End_Of_Series();
  Variant Invoke(Member member, WORD kind, std::initializer_list<const Variant*> arguments = {}) {
    return session_->item.Invoke(session_->caller, *object_, class_, member, kind, arguments);
  }

  Session_Ptr session_;
  Ptr<IDispatch> object_;
  std::optional<std::int32_t> class_;
};

class Recurrence_Pattern : Object {
 public:
  Recurrence_Pattern(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::pattern, std::move(object)) {}
  Date Last_End() {
    if (Get(Member::NoEndDate).Truth()) return no_date;
    const Date time = Get(Member::StartTime).Day();
    return std::floor(Get(Member::PatternEndDate).Day()) + (time - std::floor(time)) +
           Get(Member::Duration).Number() / minutes_per_day;
  }

 private:
  static constexpr double minutes_per_day = 1440;
};

// Only of a series: to ask an item for its pattern makes it one.
Date Automation_Item::End_Of_Series() {
  return Recurrence_Pattern(session_, Object_In(Invoke(Member::GetRecurrencePattern, DISPATCH_METHOD)))
      .Last_End();
}

Item_Ptr Make_Item(const Session_Ptr& session, const Variant& answer) {
  return std::make_shared<Automation_Item>(session, Object_In(answer));
}

class Automation_Items : public Items, Object {
 public:
  Automation_Items(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::items, std::move(object)) {}
  std::int32_t Count() override { return Get(Member::Count).Number(); }
  Item_Ptr Item(std::int32_t index) override { return Make_Item(Shared_Session(), At(Member::Item, index)); }
  void Remove(std::int32_t index) override {
    const Variant argument(index);
    Call(Member::Remove, {&argument});
  }
};

class Automation_Folders : public Folders, Object {
 public:
  Automation_Folders(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::folders, std::move(object)) {}
  std::int32_t Count() override { return Get(Member::Count).Number(); }
  MAPIFolder_Ptr Item(std::int32_t index) override {
    return Make_Folder(Shared_Session(), Object_In(At(Member::Item, index)));
  }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    const Variant caption(name), type(Default_Folder_Holding(default_item_type));
    return Make_Folder(Shared_Session(), Object_In(Call(Member::Add, {&caption, &type})));
  }
  void Remove(std::int32_t index) override {
    const Variant argument(index);
    Call(Member::Remove, {&argument});
  }
};

Folders_Ptr Make_Folders(const Session_Ptr& session, const Variant& answer) {
  return std::make_shared<Automation_Folders>(session, Object_In(answer));
}

// Outlook has tables and Store objects since 2007, and GetDefaultFolder of the latter since 2010.
template <class Call>
auto In_A_New_Outlook(Call&& call) {
  try {
    return call();
  } catch (const Automation_Error& error) {
    if (error.Number() != DISP_E_UNKNOWNNAME) throw;
    throw Automation_Error(automation_error::not_supported, "This Outlook is too old for that.", "Outlook");
  }
}

class Automation_Store : public Store, Object {
 public:
  Automation_Store(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::store, std::move(object)) {}
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    const Variant type(folder_type);
    return In_A_New_Outlook(
        [&] { return Make_Folder(Shared_Session(), Object_In(Call(Member::GetDefaultFolder, {&type}))); });
  }
};

class Automation_Folder : public MAPIFolder, Object {
 public:
  Automation_Folder(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::folder, std::move(object)) {}

  MAPIFolder_Ptr Parent() override {
    Ptr<IDispatch> above = Get(Member::Parent).Object();
    if (!above) return nullptr;
    // The parent is a folder or, above a top folder, the namespace; their member ids differ.
    Caller& caller = Shared_Session()->caller;
    const DISPID id = caller.Id_Of(*above, Member::Class);
    if (caller.Invoke(*above, id, DISPATCH_PROPERTYGET).Number() == namespace_class) return nullptr;
    return Make_Folder(Shared_Session(), std::move(above));
  }
  std::int32_t DefaultItemType() override { return Get(Member::DefaultItemType).Number(); }
  // The identifiers of a folder object never change; each is read once.
  std::string EntryID() override { return Once(entry_id_, Member::EntryID); }
  std::string StoreID() override { return Once(store_id_, Member::StoreID); }
  std::string Name() override { return Get(Member::Name).Text(); }
  Folders_Ptr Folders() override { return Make_Folders(Shared_Session(), Get(Member::Folders)); }
  Items_Ptr Items() override {
    return std::make_shared<Automation_Items>(Shared_Session(), Object_In(Get(Member::Items)));
  }
  Table_Ptr GetTable() override {
    const auto find = [session = Shared_Session(), store_id = StoreID()](const std::string& entry_id) {
      const Variant item(entry_id), store(store_id);
      if (!session->open_name_space) Fail(E_UNEXPECTED);
      IDispatch& name_space = *session->open_name_space;
      const DISPID id = session->name_space.Of(session->caller, name_space, Member::GetItemFromID);
      return Make_Item(session, session->caller.Invoke(name_space, id, DISPATCH_METHOD, {&item, &store}));
    };
    return In_A_New_Outlook(
        [&] { return Make_Table(Shared_Session(), Object_In(Call(Member::GetTable, {})), find); });
  }
  Store_Ptr Store() override {
    return In_A_New_Outlook(
        [&] { return std::make_shared<Automation_Store>(Shared_Session(), Object_In(Get(Member::Store))); });
  }
  Variant Value() const { return Itself(); }

 private:
  const std::string& Once(std::string& kept, Member member) {
    if (kept.empty()) kept = Get(member).Text();
    return kept;
  }

  std::string entry_id_, store_id_;
};

// Outlook decides whether it can move to a folder of another store.
Item_Ptr Automation_Item::Move(MAPIFolder& folder) {
  const auto* target = dynamic_cast<const Automation_Folder*>(&folder);
  if (target == nullptr) {
    throw Automation_Error(automation_error::not_supported, "The folder is not one of Outlook's.", "Outlook");
  }
  const Variant argument = target->Value();
  return Make_Item(session_, Invoke(Member::Move, DISPATCH_METHOD, {&argument}));
}

class Automation_Name_Space : public NameSpace, Object {
 public:
  Automation_Name_Space(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::name_space, std::move(object)) {}
  Folders_Ptr Folders() override { return Make_Folders(Shared_Session(), Get(Member::Folders)); }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    const Variant type(folder_type);
    return Make_Folder(Shared_Session(), Object_In(Call(Member::GetDefaultFolder, {&type})));
  }
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override {
    const Variant item(entry_id), store(store_id);
    return Make_Item(Shared_Session(), Call(Member::GetItemFromID, {&item, &store}));
  }
  bool CompareEntryIDs(const std::string& one, const std::string& other) override {
    const Variant first(one), second(other);
    return Call(Member::CompareEntryIDs, {&first, &second}).Truth();
  }
};

class Automation_Application : public Application, Object {
 public:
  Automation_Application(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::application, std::move(object)) {}
  std::shared_ptr<NameSpace> GetNamespace(const std::string& type) override {
    const Variant name(type);
    Ptr<IDispatch> opened = Object_In(Call(Member::GetNamespace, {&name}));
    Shared_Session()->open_name_space = opened;
    return std::make_shared<Automation_Name_Space>(Shared_Session(), std::move(opened));
  }
};

class Automation_Mapi_Utils : public Mapi_Utils, Object {
 public:
  Automation_Mapi_Utils(const Session_Ptr& session, Ptr<IDispatch> object)
      : Object(session, &Session::mapi_utils, std::move(object)) {}
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) override {
    const auto* message = dynamic_cast<const Automation_Mapi_Object*>(&object);
    if (message == nullptr) {
      throw Automation_Error(automation_error::not_supported, "The message comes from another store.",
                             companion_program);
    }
    const Variant tag(static_cast<std::int32_t>(property_tag));
    return Call(Member::HrGetOneProp, {&message->Value(), &tag}).Text();
  }
};

}  // namespace

std::shared_ptr<Application> Make_Application(const Session_Ptr& session, Ptr<IDispatch> object) {
  return std::make_shared<Automation_Application>(session, std::move(object));
}

MAPIFolder_Ptr Make_Folder(const Session_Ptr& session, Ptr<IDispatch> object) {
  if (!object) return nullptr;
  return std::make_shared<Automation_Folder>(session, std::move(object));
}

std::shared_ptr<Mapi_Utils> Create_Companion(const Session_Ptr& session, const std::string& program) {
  CLSID id{};
  Ptr<IDispatch> companion;
  HRESULT result = CLSIDFromProgID(To_Wide(program).c_str(), &id);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(companion.Receive()));
  }
  if (FAILED(result)) {
    throw Automation_Error(static_cast<std::int32_t>(result),
                           program +
                               " is not registered. Run \"regsvr32 TidyDll.dll\" in the folder of Tidyfold, "
                               "and start it again.",
                           application_title);
  }
  return std::make_shared<Automation_Mapi_Utils>(session, std::move(companion));
}

}  // namespace tidyfold::com
