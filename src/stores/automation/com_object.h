// The base of all COM objects in this program.
#pragma once

#include <functional>
#include <tuple>
#include <utility>

#include "stores/automation/com.h"

namespace tidyfold::com {

// Specialise it for interfaces that the headers declare without an id.
template <class Interface>
const IID& Id_Of() {
  return __uuidof(Interface);
}

// Starts with one reference and deletes itself with the last.
template <class... Interfaces>
class Com_Object : public Interfaces... {
 public:
  Com_Object() = default;
  Com_Object(const Com_Object&) = delete;
  Com_Object& operator=(const Com_Object&) = delete;
  virtual ~Com_Object() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;
    if (IsEqualIID(wanted, IID_IUnknown)) *object = static_cast<First*>(this);
    ((IsEqualIID(wanted, Id_Of<Interfaces>()) ? void(*object = static_cast<Interfaces*>(this)) : void()),
     ...);
    if (*object == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

 private:
  LONG references_ = 1;
};

// Creates objects by calling `make`.
class Class_Factory : public Com_Object<IClassFactory> {
 public:
  explicit Class_Factory(std::function<Ptr<IUnknown>()> make) : make_(std::move(make)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID wanted, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      return make_()->QueryInterface(wanted, object);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  std::function<Ptr<IUnknown>()> make_;
};

}  // namespace tidyfold::com
