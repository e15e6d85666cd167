#pragma once

#include <initializer_list>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "component/com.h"

// A host in C++ that finds the component through its registration and calls it through automation.

namespace host {

inline int passed = 0;
inline int failed = 0;

inline void check(const std::string& what, bool holds) {
  ++(holds ? passed : failed);
  if (!holds) std::cout << "failed: " << what << "\n";
}

class Value : public VARIANT {
 public:
  Value() { VariantInit(this); }
  Value(double number) : Value() { vt = VT_R8, dblVal = number; }
  Value(int number) : Value() { vt = VT_I4, lVal = number; }
  Value(const wchar_t* text) : Value() { vt = VT_BSTR, bstrVal = SysAllocString(text); }
  Value(IDispatch* object) : Value() {
    vt = VT_DISPATCH, pdispVal = object;
    if (object != nullptr) object->AddRef();
  }
  Value(const Value& other) : Value() { VariantCopy(this, const_cast<Value*>(&other)); }
  Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
  Value& operator=(Value other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
    return *this;
  }
  ~Value() { VariantClear(this); }

  /// A reference to one of the host's variables, as late-bound and early-bound hosts pass it.
  static Value late(Value& variable) { return reference(VT_VARIANT, &variable); }
  static Value early(IDispatch*& variable) { return reference(VT_DISPATCH, &variable); }
  static Value early(long& variable) { return reference(VT_I4, &variable); }
  static Value reference(int type, void* variable) {
    Value made;
    made.vt = static_cast<VARTYPE>(VT_BYREF | type), made.byref = variable;
    return made;
  }
  /// An optional argument that a host's procedure passes on although its own caller omitted it.
  static Value missing() {
    Value made;
    made.vt = VT_ERROR, made.scode = DISP_E_PARAMNOTFOUND;
    return made;
  }
};

struct Outcome {
  HRESULT result = S_OK;
  Value value = {};
  SCODE number = 0;
  std::wstring source = {};
  std::wstring text = {};
  UINT argument = UINT_MAX;

  [[nodiscard]] bool raised(int vbNumber) const {
    return result == DISP_E_EXCEPTION && number == static_cast<SCODE>(0x800A0000) + vbNumber &&
           source.starts_with(L"AQ_Data_Control.AQ_") && !text.empty();
  }
};

/// Calls a member by its number. `given` has the arguments in order, `named` the numbers of the
/// last of them in reverse order; a put sets `named` itself.
inline Outcome invoke(IDispatch* object, DISPID id, WORD flags, const std::vector<Value>& given,
                      std::vector<DISPID> named = {}) {
  std::vector<VARIANTARG> all(given.rbegin(), given.rend());
  DISPID put = DISPID_PROPERTYPUT;
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) named = {put};
  DISPPARAMS parameters{all.data(), named.data(), static_cast<UINT>(all.size()),
                        static_cast<UINT>(named.size())};
  EXCEPINFO told{};
  Outcome outcome;
  outcome.result = object->Invoke(id, IID_NULL, LOCALE_INVARIANT, flags, &parameters,
                                  &outcome.value, &told, &outcome.argument);
  outcome.number = told.scode;
  const auto taken = [](BSTR text) {
    std::wstring copy(text == nullptr ? L"" : text);
    SysFreeString(text);
    return copy;
  };
  outcome.source = taken(told.bstrSource);
  outcome.text = taken(told.bstrDescription);
  SysFreeString(told.bstrHelpFile);
  return outcome;
}

/// The numbers of a member and of its arguments, `DISPID_UNKNOWN` for an unknown name.
inline std::vector<DISPID> idsOf(IDispatch* object, std::vector<std::wstring> names) {
  std::vector<wchar_t*> texts;
  for (std::wstring& name : names) texts.push_back(name.data());
  std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
  if (object != nullptr) {
    object->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()), LOCALE_INVARIANT,
                          ids.data());
  }
  return ids;
}
inline DISPID idOf(IDispatch* object, const std::wstring& name) {
  return idsOf(object, {name}).front();
}

inline Outcome call(IDispatch* object, const std::wstring& name,
                    const std::vector<Value>& given = {}) {
  return invoke(object, idOf(object, name), DISPATCH_METHOD | DISPATCH_PROPERTYGET, given);
}
inline Outcome put(IDispatch* object, const std::wstring& name, const std::vector<Value>& given) {
  return invoke(object, idOf(object, name), DISPATCH_PROPERTYPUT, given);
}

/// Creates an object by its name, which must be registered.
inline Value create(const std::wstring& name) {
  CLSID identifier{};
  Value made;
  void* object = nullptr;
  if (SUCCEEDED(CLSIDFromProgID((L"AQ_Data_Control." + name).c_str(), &identifier)) &&
      SUCCEEDED(
          CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object))) {
    made.vt = VT_DISPATCH;
    made.pdispVal = static_cast<IDispatch*>(object);
  } else {
    check("an object is made: " + std::string(name.begin(), name.end()), false);
  }
  return made;
}

/// The registry key of all classes, and the key of one class below it.
inline const std::wstring kClasses = L"Software\\Classes\\";
inline std::wstring keyOf(const GUID& identifier) {
  wchar_t letters[40];
  StringFromGUID2(identifier, letters, 40);
  return std::wstring(L"CLSID\\") + letters;
}

void testTypeLibrary();  // also checks that objects agree with it
void testControl();
void testSpeed();
/// How many registry keys name the component.
int registered(HKEY root);
/// Checks the values registered for a class and for the control; `dll` is the path in them.
void testRegistration(HKEY root, const std::wstring& dll);

}  // namespace host
