// What late-bound automation needs of COM: owned references, strings and variants. Only this store, the
// companion and their tests include it, so that no other code sees the system's headers.
#pragma once

#include <windows.h>

#include <oleauto.h>
// A macro of the system's headers.
#undef GetObject

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tidyfold::com {

// A counted reference.
template <class Interface>
class Ptr {
 public:
  Ptr() = default;
  // Takes over the caller's reference without counting.
  explicit Ptr(Interface* taken) : object_(taken) {}
  Ptr(const Ptr& other) : object_(other.object_) {
    if (object_ != nullptr) object_->AddRef();
  }
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ptr& operator=(Ptr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ptr() {
    if (object_ != nullptr) object_->Release();
  }

  static Ptr Share(Interface* object) {
    if (object != nullptr) object->AddRef();
    return Ptr(object);
  }
  // An out parameter; releases the reference that is held.
  Interface** Receive() {
    *this = Ptr();
    return &object_;
  }
  // Gives the reference to the caller.
  Interface* Detach() { return std::exchange(object_, nullptr); }
  Interface* Get() const { return object_; }
  Interface* operator->() const { return object_; }
  Interface& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  Interface* object_ = nullptr;
};

// Invalid UTF-8 and unpaired surrogates become U+FFFD.
std::wstring To_Wide(std::string_view text);
std::string To_Utf8(std::wstring_view text);

// An owned VARIANT. Throws std::bad_alloc when memory for a string runs out.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(std::int32_t number) : Variant() {
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  Variant(bool truth) : Variant() {
    value_.vt = VT_BOOL;
    value_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  }
  Variant(std::string_view text);
  Variant(const std::string& text) : Variant(std::string_view(text)) {}
  Variant(const char* text) : Variant(std::string_view(text)) {}
  Variant(Ptr<IDispatch> object) : Variant() {
    value_.vt = VT_DISPATCH;
    value_.pdispVal = object.Detach();
  }
  Variant(Ptr<IUnknown> object) : Variant() {
    value_.vt = VT_UNKNOWN;
    value_.punkVal = object.Detach();
  }
  static Variant Of_Date(double date) {
    Variant value;
    value.value_.vt = VT_DATE;
    value.value_.date = date;
    return value;
  }
  static Variant Copy_Of(const VARIANT& other);
  Variant(Variant&& other) noexcept : value_(other.value_) { other.value_.vt = VT_EMPTY; }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  // Conversions by the rules of automation. Throw Automation_Error when there is none.
  std::int32_t Number() const { return Changed(VT_I4).value_.lVal; }
  bool Truth() const { return Changed(VT_BOOL).value_.boolVal != VARIANT_FALSE; }
  double Day() const { return Changed(VT_DATE).value_.date; }
  // Empty and null values are the empty string.
  std::string Text() const;
  // Empty for empty and null values.
  Ptr<IDispatch> Object() const;

  VARIANT& Raw() { return value_; }
  const VARIANT& Raw() const { return value_; }
  // Gives the value to the caller.
  VARIANT Detach() {
    VARIANT value = value_;
    value_.vt = VT_EMPTY;
    return value;
  }

 private:
  Variant Changed(VARTYPE type) const;

  VARIANT value_;
};

// Throws Automation_Error for a failed call; for DISP_E_EXCEPTION with the texts of `told`, which are freed.
// The number is the HRESULT, or automation_error::unavailable for all results that mean that Outlook has
// been closed or stays busy.
[[noreturn]] void Fail(HRESULT result, EXCEPINFO* told = nullptr);
inline void Check(HRESULT result) {
  if (FAILED(result)) Fail(result);
}

// The server rejected the call because it is busy.
bool Is_Busy(HRESULT result);

}  // namespace tidyfold::com
