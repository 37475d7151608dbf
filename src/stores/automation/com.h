// The little of COM that late-bound automation needs: owned references, texts and values. Only for this
// store, the companion and what tests them: nothing above them sees the system's headers.
#pragma once

#include <windows.h>

#include <oleauto.h>
// The system's headers rename what is called so.
#undef GetObject

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tidyfold::com {

// One counted reference.
template <class Interface>
class Ptr {
 public:
  Ptr() = default;
  // Takes over the caller's reference.
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
  // Where a call is to leave a reference, in place of the one held.
  Interface** Receive() {
    *this = Ptr();
    return &object_;
  }
  // Leaves the reference to the caller.
  Interface* Detach() { return std::exchange(object_, nullptr); }
  Interface* Get() const { return object_; }
  Interface* operator->() const { return object_; }
  Interface& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  Interface* object_ = nullptr;
};

// Bytes that are no UTF-8, and halves of characters, become U+FFFD.
std::wstring To_Wide(std::string_view text);
std::string To_Utf8(std::wstring_view text);

// A value as automation passes it, with what belongs to it. Throws std::bad_alloc where a text finds no room.
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

  // Conversions as automation makes them. They throw Automation_Error for what cannot be one.
  std::int32_t Number() const { return Changed(VT_I4).value_.lVal; }
  bool Truth() const { return Changed(VT_BOOL).value_.boolVal != VARIANT_FALSE; }
  double Day() const { return Changed(VT_DATE).value_.date; }
  // Nothing and null are the empty text.
  std::string Text() const;
  // Empty for nothing and null.
  Ptr<IDispatch> Object() const;

  VARIANT& Raw() { return value_; }
  const VARIANT& Raw() const { return value_; }
  // Leaves what is held to the caller.
  VARIANT Detach() {
    VARIANT value = value_;
    value_.vt = VT_EMPTY;
    return value;
  }

 private:
  Variant Changed(VARTYPE type) const;

  VARIANT value_;
};

// Throws Automation_Error for a call's result and, where it is DISP_E_EXCEPTION, for what the call told of
// its failure, whose texts are freed. The number is the HRESULT; automation_error::unavailable stands for
// every one that means that Outlook has gone or does not get round to answering.
[[noreturn]] void Fail(HRESULT result, EXCEPINFO* told = nullptr);
inline void Check(HRESULT result) {
  if (FAILED(result)) Fail(result);
}

// The called program has something else to do just now.
bool Is_Busy(HRESULT result);

}  // namespace tidyfold::com
