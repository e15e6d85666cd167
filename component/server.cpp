#include "component/server.h"

#include <atomic>
#include <functional>
#include <new>

#include "component/com.h"
#include "component/control.h"
#include "component/counted.h"
#include "component/dispatch.h"
#include "component/model.h"
#include "component/registration.h"

namespace aq::com {
namespace {

HINSTANCE theModule = nullptr;
std::atomic<LONG> inUse = 0;

/// Creates objects of one class.
class Factory final : public Counted<IClassFactory> {
 public:
  using Make = std::function<Held<IUnknown>()>;

  explicit Factory(Make make) : make_(std::move(make)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** to) override {
    return answer<IClassFactory>(this, IID_IClassFactory, iid, to);
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** to) override {
    if (to == nullptr) return E_POINTER;
    *to = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return guarded([&] { return make_()->QueryInterface(iid, to); });
  }
  STDMETHODIMP LockServer(BOOL locks) override {
    locks != FALSE ? ++inUse : --inUse;
    return S_OK;
  }

 private:
  Make make_;
};

Factory::Make makerOf(const GUID& identifier) {
  if (identifier == guid(classIdentifier(kControlNumber))) return makeControl;
  for (const ClassTable* const table : allTables()) {
    if (table->create && identifier == guid(classIdentifier(table->number))) {
      return [table] { return Held<IUnknown>(wrap(table->create(), *table)); };
    }
  }
  throw Fault{CLASS_E_CLASSNOTAVAILABLE};
}

}  // namespace

HINSTANCE module() { return theModule; }

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(theModule, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) return path.substr(0, size);
    path.resize(2 * path.size());
  }
}

InUse::InUse() noexcept { ++inUse; }
InUse::~InUse() { --inUse; }

}  // namespace aq::com

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    aq::com::theModule = module;
    DisableThreadLibraryCalls(module);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID identifier, REFIID iid, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = nullptr;
  return aq::com::guarded([&] {
    const aq::com::Held<IUnknown> factory(new aq::com::Factory(aq::com::makerOf(identifier)));
    return factory->QueryInterface(iid, to);
  });
}

STDAPI DllCanUnloadNow() { return aq::com::inUse == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  return aq::com::guarded([] { return aq::com::registerServer(aq::com::Scope::Machine); });
}

STDAPI DllUnregisterServer() {
  return aq::com::guarded([] { return aq::com::unregisterServer(aq::com::Scope::Machine); });
}

/// `regsvr32 /n /i:user` registers only for the current user, who need not be an administrator;
/// with `/u` as well, it unregisters.
STDAPI DllInstall(BOOL installs, LPCWSTR forWhom) {
  using namespace aq::com;
  return guarded([&] {
    const bool isUser = forWhom != nullptr && lowerCase(forWhom) == L"user";
    if (!isUser && forWhom != nullptr && *forWhom != L'\0') return E_INVALIDARG;
    const Scope scope = isUser ? Scope::User : Scope::Machine;
    return installs != FALSE ? registerServer(scope) : unregisterServer(scope);
  });
}

}  // extern "C"
