#include "component/registration.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "component/class_table.h"
#include "component/com.h"
#include "component/dispatch.h"
#include "component/model.h"
#include "component/server.h"

extern "C" {
// Declared here because they are in the import library but in no header.
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID identifier, WORD major, WORD minor, LCID locale,
                                        SYSKIND kind);
}

namespace aq::com {
namespace {

constexpr SYSKIND kThisSize = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
constexpr REGSAM kOtherSize = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

void check(LSTATUS status) {
  if (status != ERROR_SUCCESS) throw Fault{HRESULT_FROM_WIN32(static_cast<DWORD>(status))};
}
void checkResult(HRESULT result) {
  if (FAILED(result)) throw Fault{result};
}

std::wstring text(const GUID& identifier) {
  std::array<wchar_t, 40> letters{};
  StringFromGUID2(identifier, letters.data(), static_cast<int>(letters.size()));
  return letters.data();
}

HKEY rootOf(Scope scope) {
  return scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

/// The registry key for the classes of the machine or of the current user.
class Classes {
 public:
  explicit Classes(Scope scope) : root_(rootOf(scope)) {}

  void set(const std::wstring& path, const wchar_t* name, const std::wstring& value) const {
    HKEY key = nullptr;
    check(RegCreateKeyExW(root_, (kFolder + path).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                          nullptr));
    const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    const LSTATUS status =
        RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()), size);
    RegCloseKey(key);
    check(status);
  }

  /// Keeps a failure for `checkRemoved`, so that the other keys can still be removed.
  void remove(const std::wstring& path) {
    const LSTATUS status = RegDeleteTreeW(root_, (kFolder + path).c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) failure_ = status;
  }
  void checkRemoved() const { check(failure_); }

  /// Whether the DLL of the other word size, 32 or 64 bits, has registered the class at `path`.
  [[nodiscard]] bool hasOtherSize(const std::wstring& path) const {
    HKEY key = nullptr;
    const LSTATUS status =
        RegOpenKeyExW(root_, (kFolder + path).c_str(), 0, KEY_READ | kOtherSize, &key);
    if (status == ERROR_SUCCESS) RegCloseKey(key);
    return status == ERROR_SUCCESS;
  }

 private:
  static inline const std::wstring kFolder = L"Software\\Classes\\";

  HKEY root_;
  LSTATUS failure_ = ERROR_SUCCESS;
};

/// A class that hosts can create.
struct Entry {
  std::wstring name;
  int number;

  [[nodiscard]] std::wstring progId() const { return widened(kServer) + L"." + name; }
  [[nodiscard]] std::wstring path() const {
    return L"CLSID\\" + text(guid(classIdentifier(number)));
  }

 private:
  static std::wstring widened(std::string_view name) { return {name.begin(), name.end()}; }
};

std::vector<Entry> entries() {
  std::vector<Entry> made;
  forClasses([&made]<class C>() {
    if constexpr (isCreatable<C>) {
      const std::string name = className<C>();
      made.push_back({{name.begin(), name.end()}, describe::Description<C>::number});
    }
  });
  made.push_back({L"AQ_Data", kControlNumber});
  return made;
}

void addControl(const Classes& classes, const std::wstring& path, const std::wstring& dll) {
  classes.set(path + L"\\Control", nullptr, L"");
  classes.set(path + L"\\ToolboxBitmap32", nullptr, dll + L", 1");
  classes.set(path + L"\\MiscStatus", nullptr, L"0");
  // Control flags: it is redrawn when resized, cannot be a link source, is invisible at run
  // time, and gets its client site before anything else.
  classes.set(path + L"\\MiscStatus\\1", nullptr, L"132113");
  const std::wstring categories = path + L"\\Implemented Categories\\";
  classes.set(categories + L"{40FC6ED4-2438-11CF-A3DB-080036F12502}", nullptr, L"");  // controls
}

void addClass(const Classes& classes, const Entry& entry, const std::wstring& dll) {
  const std::wstring version = L"." + std::to_wstring(kMajorVersion);
  const std::wstring identifier = text(guid(classIdentifier(entry.number)));
  for (const std::wstring& progId : {entry.progId(), entry.progId() + version}) {
    classes.set(progId, nullptr, entry.name);
    classes.set(progId + L"\\CLSID", nullptr, identifier);
  }
  classes.set(entry.progId() + L"\\CurVer", nullptr, entry.progId() + version);
  const std::wstring path = entry.path();
  classes.set(path, nullptr, entry.name);
  classes.set(path + L"\\InprocServer32", nullptr, dll);
  classes.set(path + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  classes.set(path + L"\\ProgID", nullptr, entry.progId() + version);
  classes.set(path + L"\\VersionIndependentProgID", nullptr, entry.progId());
  classes.set(path + L"\\TypeLib", nullptr, text(guid(kTypeLibraryIdentifier)));
  classes.set(path + L"\\Version", nullptr,
              std::to_wstring(kMajorVersion) + L"." + std::to_wstring(kMinorVersion));
  classes.set(path + L"\\Programmable", nullptr, L"");
  if (entry.number == kControlNumber) addControl(classes, path, dll);
}

void removeClass(Classes& classes, const Entry& entry) {
  classes.remove(entry.path());
  if (classes.hasOtherSize(entry.path())) return;
  classes.remove(entry.progId());
  classes.remove(entry.progId() + L"." + std::to_wstring(kMajorVersion));
}

void addTypeLibrary(Scope scope, const std::wstring& dll) {
  Held<ITypeLib> library;
  checkResult(LoadTypeLibEx(dll.c_str(), REGKIND_NONE, library.put()));
  std::wstring path = dll;
  checkResult(scope == Scope::Machine
                  ? RegisterTypeLib(library.get(), path.data(), nullptr)
                  : RegisterTypeLibForUser(library.get(), path.data(), nullptr));
}

void removeTypeLibrary(Scope scope) {
  const auto remove = scope == Scope::Machine ? UnRegisterTypeLib : UnRegisterTypeLibForUser;
  const HRESULT result =
      remove(guid(kTypeLibraryIdentifier), kMajorVersion, kMinorVersion, 0, kThisSize);
  // Versions of Windows return different codes if there is no type library to remove.
  constexpr std::array kAbsent{TYPE_E_REGISTRYACCESS, TYPE_E_LIBNOTREGISTERED, E_INVALIDARG};
  if (std::find(kAbsent.begin(), kAbsent.end(), result) == kAbsent.end()) checkResult(result);
}

}  // namespace

HRESULT registerServer(Scope scope) {
  const Classes classes(scope);
  const std::wstring dll = modulePath();
  try {
    for (const Entry& entry : entries()) addClass(classes, entry, dll);
    addTypeLibrary(scope, dll);
  } catch (...) {
    static_cast<void>(guarded([scope] { return unregisterServer(scope); }));
    throw;
  }
  return S_OK;
}

HRESULT unregisterServer(Scope scope) {
  Classes classes(scope);
  for (const Entry& entry : entries()) removeClass(classes, entry);
  removeTypeLibrary(scope);
  classes.checkRemoved();
  return S_OK;
}

}  // namespace aq::com
