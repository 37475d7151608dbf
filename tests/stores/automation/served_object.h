// What the test server makes its automation objects of, and what a test can do to their calls.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "stores/automation/com.h"

namespace tidyfold::test_server {

// Every call into a served object passes here first.
struct Switches {
  int calls = 0;
  std::map<std::string, int> calls_of;  // "Item.Subject", "Folders.Count", ...
  std::string fail_member;
  int fail_in = 0;  // the how-manieth call of it from now on fails, once
  std::int32_t fail_number = 0;
  int vanish_in = 0;        // the how-manieth call of anything from now on ends the process; 0: none
  bool ids_unlike = false;  // items of different classes share no ids, and one's id is another's name's

  void Before(const std::string& member);
};

using Arguments = std::vector<com::Variant>;

// Its members are those that it offers; called by name.
class Served : public IDispatch {
 public:
  // `type` stands in front of the names in counts and faults; an empty one is neither counted nor failed.
  Served(Switches& switches, std::string type) : switches_(switches), type_(std::move(type)) {}
  virtual ~Served() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* answer, EXCEPINFO* told, UINT*) override;

 protected:
  using Body = std::function<com::Variant(const Arguments&)>;
  void Offer(const char* name, Body body) { members_[name] = std::move(body); }
  const Switches& The_Switches() const { return switches_; }
  // From a name's place among all names to its id, and back.
  virtual DISPID Id_At(std::size_t place, const std::string&) const { return static_cast<DISPID>(place) + 1; }
  virtual std::size_t Place_Of(DISPID id) const { return static_cast<std::size_t>(id) - 1; }

 private:
  Switches& switches_;
  std::string type_;
  std::map<std::string, Body> members_;
  ULONG references_ = 1;
};

inline constexpr std::size_t most_names = 64;

}  // namespace tidyfold::test_server
