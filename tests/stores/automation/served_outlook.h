// The part of Outlook's published object model that the program uses, over stores in memory, and the switches
// by which a test changes how calls behave.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "stores/automation/com_object.h"
#include "stores/memory/memory_store.h"

namespace tidyfold::test_server {

// Consulted before every call of a served object.
struct Switches {
  std::map<std::string, int> calls_of;  // "Item.Subject", "Folders.Count", ..., "GetIDsOfNames", "" for all
  std::map<std::string, int> open, most_open;  // objects, by type
  std::string fail_member;
  int fail_in = 0;  // which call of it from now on fails; negative: all
  std::int32_t fail_number = 0;
  std::function<void()> vanish;
  int vanish_in = 0;           // which call from now on ends the process; 0: none
  std::string missing_member;  // an older Outlook does not know it
  std::set<std::string> refused_columns;
  bool ids_unlike = false;  // classes of items have different, overlapping ids

  void Before(const std::string& member);
};

using Arguments = std::vector<com::Variant>;

// An object whose members are added one by one and called by name.
class Served : public com::Com_Object<IDispatch> {
 public:
  using Body = std::function<com::Variant(const Arguments&)>;
  // `type` is the prefix of names in counts and faults; calls of an empty type are neither counted nor
  // failed. The class is that of items.
  Served(Switches& switches, std::string type, std::int32_t item_class = 0);
  ~Served() override { --switches_.open[type_]; }
  void Offer(const char* name, Body body) { members_[name] = std::move(body); }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* answer, EXCEPINFO* told, UINT*) override;

 private:
  // Converts the place of a name among all names to its id and back.
  DISPID Id_At(std::size_t place, const std::string& name) const;
  std::size_t Place_Of(DISPID id) const;

  Switches& switches_;
  std::string type_;
  std::size_t class_;
  std::map<std::string, Body> members_;
};

struct World {
  Switches switches;
  int busy_calls = 0;  // the next calls that are rejected
  // The last one is open; clients may still hold objects of the others.
  std::vector<std::unique_ptr<Memory_Outlook>> outlooks;

  Memory_Outlook& Outlook() { return *outlooks.back(); }
};

com::Ptr<IDispatch> Make_Application(World& world);
com::Ptr<IDispatch> Serve(World& world, const MAPIFolder_Ptr& folder);
// For tests: fills the stores and sets the switches. Not part of the object model.
com::Ptr<IDispatch> Make_Control(World& world);

}  // namespace tidyfold::test_server
