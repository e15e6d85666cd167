#include "component/values.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <new>

#include "aq/core/error.h"
#include "component/dispatch.h"

namespace aq::com {
namespace {

[[noreturn]] void mismatch() { throw Fault{DISP_E_TYPEMISMATCH}; }

/// Follows references from one VARIANT to another; the content still belongs to the host.
VARIANT followed(const VARIANT& given) {
  VARIANT value = given;
  while (value.vt == (VT_BYREF | VT_VARIANT)) {
    if (value.pvarVal == nullptr) mismatch();
    value = *value.pvarVal;
  }
  return value;
}

/// A copy of a value, or of what it refers to if it is a reference.
Value copied(const VARIANT& given) {
  Value value;
  const HRESULT result = VariantCopyInd(&value, const_cast<VARIANT*>(&given));
  if (result == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(result)) mismatch();
  return value;
}

IDispatch* dispatchOf(const VARIANT& value) {
  switch (value.vt) {
    case VT_DISPATCH: return value.pdispVal;
    case VT_DISPATCH | VT_BYREF: return *value.ppdispVal;
    default: mismatch();
  }
}

bool holdsObject(const VARIANT& value) {
  const VARTYPE type = value.vt & static_cast<VARTYPE>(~VT_BYREF);
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

/// The object's IDispatch; null if there is no object. Having no IDispatch is a type mismatch.
Held<IDispatch> callable(const VARIANT& value) {
  const VARTYPE type = value.vt & static_cast<VARTYPE>(~VT_BYREF);
  if (type == VT_DISPATCH) return Held<IDispatch>::share(dispatchOf(value));
  IUnknown* const object = (value.vt & VT_BYREF) != 0 ? *value.ppunkVal : value.punkVal;
  Held<IDispatch> found;
  if (object != nullptr &&
      FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(found.put())))) {
    mismatch();
  }
  return found;
}

Value read(IDispatch& object, DISPID id) {
  DISPPARAMS none{};
  Value value;
  if (FAILED(object.Invoke(id, IID_NULL, LOCALE_INVARIANT, DISPATCH_PROPERTYGET | DISPATCH_METHOD,
                           &none, &value, nullptr, nullptr))) {
    mismatch();
  }
  return value;
}

Variant variantOfObject(const VARIANT& value, TextKind kind) {
  const Held<IDispatch> object = callable(value);
  if (!object) return nullptr;
  if (const Dispatch* const own = ownObject(object.get())) return own->table().hold(own->object());
  const Value inner = read(*object, DISPID_VALUE);
  if (holdsObject(inner)) mismatch();
  return variantOf(inner, kind);
}

Variant changed(const VARIANT& given, VARTYPE type) {
  Value value;
  if (FAILED(VariantChangeTypeEx(&value, const_cast<VARIANT*>(&given), LOCALE_INVARIANT, 0, type)))
    mismatch();
  return value.dblVal;
}

}  // namespace

bool isMissing(const VARIANT* given) {
  if (given == nullptr) return true;
  const VARIANT value = followed(*given);
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

bool isNoObject(const VARIANT& given) {
  const VARIANT value = followed(given);
  if (value.vt == VT_EMPTY || value.vt == VT_NULL) return true;
  return holdsObject(value) && !callable(value);
}

Variant variantOf(const VARIANT& given, TextKind kind) {
  const VARIANT value = followed(given);
  if (holdsObject(value)) return variantOfObject(value, kind);
  if ((value.vt & VT_ARRAY) != 0) mismatch();
  if ((value.vt & VT_BYREF) != 0) return variantOf(copied(value), kind);
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL: return {};
    case VT_I2: return std::int16_t{value.iVal};
    case VT_I4: return static_cast<std::int32_t>(value.lVal);
    case VT_R4: return value.fltVal;
    case VT_R8: return value.dblVal;
    case VT_BOOL: return value.boolVal != VARIANT_FALSE;
    case VT_BSTR: return bytesOf(textOf(value.bstrVal), kind);
    case VT_DATE: return Variant::date(value.date);
    case VT_UI1: return std::int16_t{value.bVal};
    case VT_I1: return std::int16_t{static_cast<signed char>(value.cVal)};
    case VT_UI2: return std::int32_t{value.uiVal};
    case VT_INT: return static_cast<std::int32_t>(value.intVal);
    case VT_UI4: return static_cast<std::uint32_t>(value.ulVal);
    case VT_UINT: return static_cast<std::uint32_t>(value.uintVal);
    case VT_I8:
    case VT_UI8:
    case VT_CY:
    case VT_DECIMAL: return changed(value, VT_R8);
    default: mismatch();
  }
}

std::string stringOf(const VARIANT& given, TextKind kind) {
  const VARIANT value = followed(given);
  if (value.vt == VT_BSTR) return bytesOf(textOf(value.bstrVal), kind);
  if (value.vt == VT_EMPTY) return {};
  return variantOf(value, kind).toString();
}

std::shared_ptr<void> objectOf(const VARIANT& given, const ClassTable& table) {
  if (isNoObject(given)) return nullptr;
  const VARIANT value = followed(given);
  if (!holdsObject(value)) mismatch();
  const Held<IDispatch> object = callable(value);
  const Dispatch* const own = ownObject(object.get());
  if (own == nullptr || &own->table() != &table) mismatch();
  return own->object();
}

bool isObjectOf(const VARIANT& given, const ClassTable& table) {
  const VARIANT value = followed(given);
  if (!holdsObject(value)) return false;
  const Held<IDispatch> object = callable(value);
  const Dispatch* const own = object ? ownObject(object.get()) : nullptr;
  return own != nullptr && &own->table() == &table;
}

GivenArray::GivenArray(const VARIANT& given) {
  const VARIANT value = followed(given);
  if ((value.vt & VT_ARRAY) == 0) mismatch();
  array_ = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
  if (array_ == nullptr) return;
  // `at` returns references, and a reference to a record would need a description of its fields.
  if (FAILED(SafeArrayGetVartype(array_, &type_)) || type_ == VT_RECORD ||
      FAILED(SafeArrayAccessData(array_, &data_))) {
    mismatch();
  }
}

std::span<const SAFEARRAYBOUND> GivenArray::bounds() const {
  if (array_ == nullptr) return {};
  return {array_->rgsabound, array_->cDims};
}

VARIANT GivenArray::at(std::size_t place) const {
  VARIANT element{};
  element.vt = static_cast<VARTYPE>(type_ | VT_BYREF);
  element.byref = static_cast<std::byte*>(data_) + place * array_->cbElements;
  return element;
}

namespace {

std::vector<Value> arrayEntries(const GivenArray& array) {
  std::size_t count = array.bounds().empty() ? 0 : 1;
  int longSides = 0;
  for (const SAFEARRAYBOUND& bound : array.bounds()) {
    count *= bound.cElements;
    if (bound.cElements != 1) ++longSides;
  }
  if (longSides > 1) mismatch();
  std::vector<Value> entries;
  for (std::size_t place = 0; place < count; ++place) {
    entries.push_back(copied(followed(array.at(place))));
  }
  return entries;
}

std::vector<Value> objectEntries(IDispatch& object) {
  const Value made = read(object, DISPID_NEWENUM);
  IUnknown* const source = made.vt == VT_UNKNOWN    ? made.punkVal
                           : made.vt == VT_DISPATCH ? made.pdispVal
                                                    : nullptr;
  Held<IEnumVARIANT> enumerator;
  if (source == nullptr || FAILED(source->QueryInterface(
                               IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator.put())))) {
    mismatch();
  }
  std::vector<Value> entries;
  for (Value entry; enumerator->Next(1, &entry, nullptr) == S_OK;) {
    entries.push_back(std::exchange(entry, Value()));
  }
  return entries;
}

}  // namespace

std::vector<Value> entriesOf(const VARIANT& given) {
  const VARIANT value = followed(given);
  if ((value.vt & VT_ARRAY) != 0) return arrayEntries(GivenArray(value));
  if (!holdsObject(value)) mismatch();
  const Held<IDispatch> object = callable(value);
  if (!object) mismatch();
  return objectEntries(*object);
}

Variant propertyOf(const VARIANT& given, const wchar_t* name) {
  if (isNoObject(given)) throw Error(ErrorCode::ObjectNotSet, "an object is required");
  const VARIANT value = followed(given);
  if (!holdsObject(value)) mismatch();
  const Held<IDispatch> object = callable(value);
  std::wstring asked(name);
  wchar_t* names = asked.data();
  DISPID id = 0;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_INVARIANT, &id))) {
    throw Error(ErrorCode::MemberNotSupported,
                "the object has no " + bytesOf(asked, TextKind::Name));
  }
  return variantOf(read(*object, id));
}

void setText(VARIANT& to, std::string_view text, TextKind kind) {
  to.bstrVal = hostText(text, kind);
  to.vt = VT_BSTR;
}

void setObject(VARIANT& to, std::shared_ptr<void> object, const ClassTable& table) {
  to.pdispVal = wrap(std::move(object), table);
  to.vt = VT_DISPATCH;
}

void setVariant(VARIANT& to, const Variant& value) {
  switch (value.type()) {
    case Variant::Type::Empty: return;
    case Variant::Type::Int16:
      to.iVal = value.toInt16();
      to.vt = VT_I2;
      return;
    case Variant::Type::Int32:
      to.lVal = value.toInt32();
      to.vt = VT_I4;
      return;
    case Variant::Type::Single:
      to.fltVal = value.toSingle();
      to.vt = VT_R4;
      return;
    case Variant::Type::Double:
    case Variant::Type::Date:
      to.dblVal = value.toDouble();
      to.vt = value.type() == Variant::Type::Date ? VT_DATE : VT_R8;
      return;
    case Variant::Type::Boolean:
      to.boolVal = value.toBoolean() ? VARIANT_TRUE : VARIANT_FALSE;
      to.vt = VT_BOOL;
      return;
    case Variant::Type::String: setText(to, value.toString(), TextKind::Plain); return;
    case Variant::Type::Object: break;
  }
  for (const ClassTable* const table : allTables()) {
    if (auto object = table->held(value)) return setObject(to, std::move(object), *table);
  }
  to.pdispVal = nullptr;
  to.vt = VT_DISPATCH;
}

namespace {

/// The last variable in a chain of references: late-bound hosts pass on a reference that they
/// received.
const VARIANT& variableOf(const VARIANT& given) {
  const VARIANT* last = &given;
  while (last->vt == (VT_BYREF | VT_VARIANT) && last->pvarVal != nullptr &&
         (last->pvarVal->vt & VT_BYREF) != 0) {
    last = last->pvarVal;
  }
  return *last;
}

bool isVariableOf(const VARIANT& given, std::initializer_list<int> types) {
  const VARIANT& variable = variableOf(given);
  return (variable.vt & VT_BYREF) != 0 && variable.byref != nullptr &&
         std::find(types.begin(), types.end(), variable.vt & ~VT_BYREF) != types.end();
}

}  // namespace

bool isObjectVariable(const VARIANT& given) {
  return isVariableOf(given, {VT_VARIANT, VT_DISPATCH, VT_UNKNOWN});
}

bool isNumberVariable(const VARIANT& given) {
  return isVariableOf(given, {VT_VARIANT, VT_I4, VT_I2, VT_INT});
}

void writeBack(const VARIANT& given, Value& value) {
  const VARIANT& variable = variableOf(given);
  switch (variable.vt & ~VT_BYREF) {
    case VT_VARIANT:
      VariantClear(variable.pvarVal);
      value.release(*variable.pvarVal);
      return;
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      IUnknown* const old = std::exchange(*variable.ppunkVal, value.punkVal);
      VariantInit(&value);
      if (old != nullptr) old->Release();
      return;
    }
    case VT_I2: *variable.piVal = static_cast<SHORT>(value.lVal); return;
    case VT_I4:
    case VT_INT: *variable.plVal = value.lVal; return;
  }
}

}  // namespace aq::com
