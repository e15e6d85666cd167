#include <cwctype>
#include <map>

#include "component/model.h"
#include "host.h"

namespace host {
namespace {

std::wstring wide(std::string_view text) { return {text.begin(), text.end()}; }

GUID identifierOf(int number) {
  GUID made{};
  IIDFromString((L"{00000000" + wide(aq::com::kIdentifierRest) + L"}").c_str(), &made);
  made.Data1 = aq::com::kIdentifierBase + static_cast<unsigned>(number);
  return made;
}

std::string text(BSTR given) {
  std::wstring copy(given == nullptr ? L"" : given);
  SysFreeString(given);
  return {copy.begin(), copy.end()};
}

/// Whether a property's value has the type that the type library declares.
bool fits(const TYPEDESC& type, const VARIANT& value) {
  if (type.vt == VT_VARIANT) return true;
  if (type.vt == VT_PTR) return value.vt == VT_DISPATCH;
  if (type.vt == VT_USERDEFINED) return value.vt == VT_I4;  // an enumeration
  return value.vt == type.vt;
}

/// Checks the number, arguments and help of every member, and that each property without arguments
/// gives its declared type or an error.
void testMembers(ITypeInfo& type, const TYPEATTR& attributes, IDispatch* object) {
  for (UINT i = 0; i < attributes.cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    type.GetFuncDesc(i, &function);
    BSTR help = nullptr;
    type.GetDocumentation(function->memid, nullptr, &help, nullptr, nullptr);
    BSTR names[9]{};
    UINT count = 0;
    type.GetNames(function->memid, names, 9, &count);
    std::vector<std::wstring> spelled;
    std::vector<DISPID> numbers;
    for (UINT place = 0; place < count; ++place) {
      spelled.push_back(wide(text(names[place])));
      numbers.push_back(place == 0 ? function->memid : static_cast<DISPID>(place - 1));
    }
    const std::string what(spelled[0].begin(), spelled[0].end());
    const bool isHelped = !text(help).empty() || function->memid == DISPID_NEWENUM;
    check(what + " has its number, its arguments and its help",
          isHelped && idsOf(object, spelled) == numbers);
    if (function->invkind == INVOKE_PROPERTYGET && function->cParams == 0) {
      const Outcome read = invoke(object, function->memid, DISPATCH_PROPERTYGET, {});
      check(what + " has its declared type", read.result == S_OK
                                                 ? fits(function->elemdescFunc.tdesc, read.value)
                                                 : read.result == DISP_E_EXCEPTION);
    }
    type.ReleaseFuncDesc(function);
  }
}

void testClass(ITypeInfo& type, const TYPEATTR& attributes) {
  BSTR name = nullptr;
  type.GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  const std::string what = text(name);
  void* made = nullptr;
  const HRESULT result =
      CoCreateInstance(attributes.guid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made);
  const bool isCreatable = (attributes.wTypeFlags & TYPEFLAG_FCANCREATE) != 0;
  check(what + " can be created if and only if the type library says so",
        SUCCEEDED(result) == isCreatable);
  if (FAILED(result)) return;
  auto* const object = static_cast<IDispatch*>(made);
  HREFTYPE reference = 0;
  ITypeInfo* face = nullptr;
  TYPEATTR* faceAttributes = nullptr;
  type.GetRefTypeOfImplType(0, &reference);
  type.GetRefTypeInfo(reference, &face);
  face->GetTypeAttr(&faceAttributes);
  void* asked = nullptr;
  check(what + " has its interface",
        SUCCEEDED(object->QueryInterface(faceAttributes->guid, &asked)) && asked == made);
  object->Release();
  ITypeInfo* own = nullptr;
  check(what + " describes itself", SUCCEEDED(object->GetTypeInfo(0, 0, &own)));
  own->Release();
  testMembers(*face, *faceAttributes, object);
  face->ReleaseTypeAttr(faceAttributes);
  face->Release();
  object->Release();
}

}  // namespace

void testTypeLibrary() {
  ITypeLib* library = nullptr;
  LoadRegTypeLib(identifierOf(aq::com::kTypeLibraryIdentifier), aq::com::kMajorVersion,
                 aq::com::kMinorVersion, 0, &library);
  check("the type library is registered", library != nullptr);
  if (library == nullptr) return;
  int classes = 0;
  std::map<std::string, std::string> enumerations;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ITypeInfo* type = nullptr;
    TYPEATTR* attributes = nullptr;
    library->GetTypeInfo(i, &type);
    type->GetTypeAttr(&attributes);
    if (attributes->typekind == TKIND_ENUM) {
      BSTR name = nullptr;
      BSTR help = nullptr;
      type->GetDocumentation(MEMBERID_NIL, &name, &help, nullptr, nullptr);
      enumerations.emplace(text(name), text(help));
    }
    if (attributes->typekind == TKIND_COCLASS) {
      ++classes;
      testClass(*type, *attributes);
    }
    type->ReleaseTypeAttr(attributes);
    type->Release();
  }
  int described = 1;  // the control
  aq::com::forClasses([&described]<class C>() { ++described; });
  check("all classes", classes == described);
  std::map<std::string, std::string> wanted;
  aq::com::forEnumerations([&wanted]<class E>() {
    wanted.emplace(aq::describe::Description<E>::name, aq::describe::Description<E>::text);
  });
  check("exactly the described enumerations, with their help", enumerations == wanted);
  library->Release();
}

int registered(HKEY root) {
  std::wstring mark = wide(aq::com::kIdentifierRest);
  for (wchar_t& letter : mark) letter = static_cast<wchar_t>(towupper(letter));
  int found = 0;
  for (const wchar_t* const folder :
       {L"Software\\Classes", L"Software\\Classes\\CLSID", L"Software\\Classes\\TypeLib",
        L"Software\\Classes\\Interface", L"Software\\Classes\\Wow6432Node\\CLSID"}) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, folder, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
    wchar_t name[256];
    for (DWORD i = 0, size = 256;
         RegEnumKeyExW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, size = 256) {
      std::wstring upper(name);
      for (wchar_t& letter : upper) letter = static_cast<wchar_t>(towupper(letter));
      found += upper.find(mark) != upper.npos || upper.starts_with(L"AQ_DATA_CONTROL.");
    }
    RegCloseKey(key);
  }
  return found;
}

void testRegistration(HKEY root, const std::wstring& dll) {
  const GUID identifier =
      identifierOf(aq::com::classIdentifier(aq::describe::Description<aq::AQ_Time>::number));
  const std::wstring time = keyOf(identifier);
  const std::wstring control =
      keyOf(identifierOf(aq::com::classIdentifier(aq::com::kControlNumber)));
  const std::wstring name = L"AQ_Data_Control.AQ_Time";
  const auto braced = [](const std::wstring& key) { return key.substr(key.find(L'{')); };
  const std::wstring library = braced(keyOf(identifierOf(aq::com::kTypeLibraryIdentifier)));
  const struct {
    std::wstring key;
    std::wstring value;
    const wchar_t* name = L"";
  } rows[] = {
      {name + L"\\CLSID", braced(time)},
      {name + L".1\\CLSID", braced(time)},
      {name + L"\\CurVer", name + L".1"},
      {time + L"\\InprocServer32", dll},
      {time + L"\\InprocServer32", L"Apartment", L"ThreadingModel"},
      {time + L"\\ProgID", name + L".1"},
      {time + L"\\VersionIndependentProgID", name},
      {time + L"\\TypeLib", library},
      {time + L"\\Version", L"1.0"},
      {time + L"\\Programmable", L""},
      {control + L"\\Programmable", L""},
      {control + L"\\Control", L""},
      {control + L"\\ToolboxBitmap32", dll + L", 1"},
      {control + L"\\MiscStatus", L"0"},
      {control + L"\\MiscStatus\\1", L"132113"},
      {control + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}", L""},
  };
  for (const auto& row : rows) {
    wchar_t value[1024];
    DWORD size = sizeof value;
    const LSTATUS status = RegGetValueW(root, (kClasses + row.key).c_str(), row.name, RRF_RT_REG_SZ,
                                        nullptr, value, &size);
    check({row.key.begin(), row.key.end()}, status == ERROR_SUCCESS && row.value == value);
  }
}

}  // namespace host
