#include "component/dispatch.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <new>

#include "aq/core/error.h"
#include "component/model.h"
#include "component/values.h"

namespace aq::com {
namespace {

// The library objects that hosts currently hold, each with its host object. Keyed by address and
// class, since a member may have the same address as its owner.
using Shown = std::map<std::pair<const void*, const ClassTable*>, Dispatch*>;
std::mutex& shownMutex() {
  static auto* const mutex = new std::mutex;  // objects may outlive the DLL's cleanup
  return *mutex;
}
Shown& shown() {
  static auto* const all = new Shown;
  return *all;
}

/// The Visual Basic error number, which hosts test for.
SCODE numberOf(ErrorCode code) {
  constexpr SCODE kFacility = static_cast<SCODE>(0x800A0000);
  switch (code) {
    case ErrorCode::InvalidArgument: return kFacility + 5;
    case ErrorCode::InvalidIndex: return kFacility + 9;
    case ErrorCode::InvalidValue: return kFacility + 380;
    case ErrorCode::TypeMismatch: return kFacility + 13;
    case ErrorCode::Overflow: return kFacility + 6;
    case ErrorCode::ObjectNotSet: return kFacility + 91;
    case ErrorCode::MemberNotSupported: return kFacility + 438;
  }
  return kFacility + 5;
}

HRESULT tell(EXCEPINFO* exception, SCODE code, const ClassTable& table, const char* text) {
  if (exception == nullptr) return DISP_E_EXCEPTION;
  *exception = EXCEPINFO{};
  exception->scode = code;
  exception->bstrSource = hostText(table.progId, TextKind::Name);
  exception->bstrDescription = hostText(text, TextKind::Name);
  return DISP_E_EXCEPTION;
}

/// The arguments of a call by position, in whatever order they were passed.
class Places {
 public:
  Places(const Member& member, DISPPARAMS& parameters, bool isPut) : parameters_(parameters) {
    const UINT named = parameters.cNamedArgs;
    if (named > parameters.cArgs) throw Fault{E_INVALIDARG};
    positional_ = parameters.cArgs - named;
    size_ = std::max<std::size_t>(member.parameters.size(), positional_);
    if (size_ > places_.size()) throw Fault{DISP_E_BADPARAMCOUNT};
    for (UINT i = 0; i < positional_; ++i)
      places_[i] = &parameters.rgvarg[parameters.cArgs - 1 - i];
    for (UINT i = 0; i < named; ++i) takeNamed(parameters.rgdispidNamedArgs[i], i, isPut);
    if (isPut && value_ == nullptr) throw Fault{DISP_E_PARAMNOTOPTIONAL};
  }

  [[nodiscard]] std::span<VARIANTARG* const> all() const { return std::span(places_).first(size_); }
  [[nodiscard]] VARIANTARG* value() const { return value_; }
  [[nodiscard]] UINT positional() const { return positional_; }

  /// The host's index of the argument at a position.
  [[nodiscard]] UINT hostPlace(std::size_t place) const {
    const VARIANTARG* const argument = place < size_ ? places_[place] : value_;
    return argument == nullptr ? 0 : static_cast<UINT>(argument - parameters_.rgvarg);
  }

 private:
  void takeNamed(DISPID id, UINT at, bool isPut) {
    VARIANTARG* const argument = &parameters_.rgvarg[at];
    if (id == DISPID_PROPERTYPUT && isPut) {
      value_ = argument;
      return;
    }
    const auto place = static_cast<std::size_t>(id);
    if (place >= size_ || places_[place] != nullptr) throw Fault{DISP_E_PARAMNOTFOUND};
    places_[place] = argument;
  }

  DISPPARAMS& parameters_;
  // No member has more arguments, and allocating a list would cost more than most calls.
  std::array<VARIANTARG*, 8> places_{};
  std::size_t size_ = 0;
  VARIANTARG* value_ = nullptr;
  UINT positional_ = 0;
};

/// The result of a call such as `header.cCommentLines(2)`: passes the argument to the default
/// member of the collection.
Value entryOf(const Member& member, const Call& call, std::span<VARIANTARG* const> given) {
  if (!member.givesCollection || given.size() != 1) throw Fault{DISP_E_BADPARAMCOUNT};
  member.get(call);
  const Dispatch* const collection = ownObject(call.result.pdispVal);
  if (collection == nullptr) throw Error(ErrorCode::ObjectNotSet, "the collection is Nothing");
  Value result;
  collection->table().find(DISPID_VALUE)->get({collection->object().get(), given, nullptr, result});
  return result;
}

}  // namespace

GUID guid(int number) {
  static const GUID base = [] {
    GUID parsed{};
    const std::string text = "{00000000" + std::string(kIdentifierRest) + "}";
    IIDFromString(std::wstring(text.begin(), text.end()).c_str(), &parsed);
    return parsed;
  }();
  GUID made = base;
  made.Data1 = kIdentifierBase + static_cast<std::uint32_t>(number);
  return made;
}

HRESULT typeInfo(const GUID& identifier, ITypeInfo** to) {
  if (to == nullptr) return E_POINTER;
  Held<ITypeLib> library;
  const HRESULT loaded = LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.put());
  return FAILED(loaded) ? loaded : library->GetTypeInfoOfGuid(identifier, to);
}

Dispatch::Dispatch(std::shared_ptr<void> object, const ClassTable& table)
    : table_(table), object_(std::move(object)) {}

Dispatch::~Dispatch() = default;

IDispatch* wrap(std::shared_ptr<void> object, const ClassTable& table) {
  if (object == nullptr) return nullptr;
  const std::pair<const void*, const ClassTable*> key(object.get(), &table);
  const std::lock_guard lock(shownMutex());
  const auto [place, isNew] = shown().try_emplace(key, nullptr);
  if (!isNew) {
    place->second->AddRef();
    return place->second;
  }
  try {
    return place->second = new Dispatch(std::move(object), table);
  } catch (...) {
    shown().erase(place);
    throw;
  }
}

const Dispatch* ownObject(IDispatch* object) {
  static const GUID own = guid(kOwnIdentifier);
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(own, &found))) return nullptr;
  auto* const dispatch = static_cast<Dispatch*>(found);
  dispatch->Release();
  return dispatch;
}

STDMETHODIMP Dispatch::QueryInterface(REFIID iid, void** to) {
  if (to == nullptr) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IDispatch ||
      iid == guid(interfaceIdentifier(table_.number))) {
    *to = static_cast<IDispatch*>(this);
  } else if (iid == IID_IProvideClassInfo) {
    *to = static_cast<IProvideClassInfo*>(this);
  } else if (iid == guid(kOwnIdentifier)) {
    *to = this;
  } else {
    *to = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) Dispatch::AddRef() { return ++count_; }

STDMETHODIMP_(ULONG) Dispatch::Release() {
  ULONG count = count_;
  while (count > 1) {
    if (count_.compare_exchange_weak(count, count - 1)) return count - 1;
  }
  {
    // The last reference is released under the mutex, so that no thread can get an object that is
    // about to be destroyed.
    const std::lock_guard lock(shownMutex());
    if (--count_ != 0) return count_;
    shown().erase({object_.get(), &table_});
  }
  delete this;
  return 0;
}

STDMETHODIMP Dispatch::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP Dispatch::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** to) {
  if (index != 0) return DISP_E_BADINDEX;
  return guarded([&] { return typeInfo(guid(interfaceIdentifier(table_.number)), to); });
}

STDMETHODIMP Dispatch::GetClassInfo(ITypeInfo** to) {
  return guarded([&] { return typeInfo(guid(classIdentifier(table_.number)), to); });
}

STDMETHODIMP Dispatch::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                     DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  return guarded([&] {
    std::fill_n(ids, count, DISPID_UNKNOWN);
    if (count == 0) return S_OK;
    const auto found = table_.byName.find(lowerCase(names[0]));
    if (found == table_.byName.end()) return DISP_E_UNKNOWNNAME;
    const Member& member = *found->second;
    ids[0] = member.id;
    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
      const std::wstring name = lowerCase(names[i]);
      const auto place = std::find_if(
          member.parameters.begin(), member.parameters.end(),
          [&name](const std::wstring& parameter) { return lowerCase(parameter) == name; });
      if (place == member.parameters.end()) {
        result = DISP_E_UNKNOWNNAME;
      } else {
        ids[i] = static_cast<DISPID>(place - member.parameters.begin());
      }
    }
    return result;
  });
}

namespace {

Value called(const Member& member, void* object, const Places& places) {
  Value result;
  const auto all = places.all();
  const std::size_t wanted = member.parameters.size();
  const Call call{object, all.first(wanted), places.value(), result};
  if (all.size() > wanted) {
    if (places.value() != nullptr) throw Fault{DISP_E_BADPARAMCOUNT};
    return entryOf(member, call, all);
  }
  for (std::size_t i = 0; i < member.required; ++i) {
    if (i >= places.positional() && all[i] == nullptr) throw Fault{DISP_E_BADPARAMCOUNT};
    if (isMissing(all[i])) throw Fault{DISP_E_PARAMNOTOPTIONAL, i};
  }
  if (places.value() != nullptr && isMissing(places.value())) {
    throw Fault{DISP_E_PARAMNOTOPTIONAL, wanted};
  }
  const Thunk& thunk = places.value() == nullptr ? member.get : member.put;
  thunk(call);
  return result;
}

}  // namespace

Value Dispatch::run(DISPID id, WORD flags, DISPPARAMS& parameters) const {
  const Member* const member = table_.find(id);
  const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  if (member == nullptr || !(isPut ? member->put : member->get)) throw Fault{DISP_E_MEMBERNOTFOUND};
  const Places places(*member, parameters, isPut);
  try {
    return called(*member, object_.get(), places);
  } catch (const Fault& fault) {
    if (fault.argument == SIZE_MAX) throw;
    throw Fault{fault.code, places.hostPlace(fault.argument)};
  }
}

STDMETHODIMP Dispatch::Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD flags,
                              DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                              UINT* badArgument) {
  if (GetCurrentThreadId() != thread_) return RPC_E_WRONG_THREAD;
  if (parameters == nullptr) return E_POINTER;
  return guarded([&] {
    // The host must not destroy this object or unload the DLL in the middle of a call.
    const Held<IDispatch> self = Held<IDispatch>::share(this);
    try {
      Value value = run(id, flags, *parameters);
      if (result != nullptr) value.release(*result);
      return S_OK;
    } catch (const Fault& fault) {
      if (badArgument != nullptr && fault.argument != SIZE_MAX) {
        *badArgument = static_cast<UINT>(fault.argument);
      }
      return fault.code;
    } catch (const Error& error) {
      return tell(exception, numberOf(error.code()), table_, error.what());
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (const std::exception& error) {
      return tell(exception, numberOf(ErrorCode::InvalidArgument), table_, error.what());
    }
  });
}

}  // namespace aq::com
