#include <cwctype>

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

/// Every member is there under its name and number, and every property can be read.
void testMembers(ITypeInfo& type, const TYPEATTR& attributes, IDispatch* object) {
  for (UINT i = 0; i < attributes.cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    type.GetFuncDesc(i, &function);
    BSTR name = nullptr;
    BSTR help = nullptr;
    type.GetDocumentation(function->memid, &name, &help, nullptr, nullptr);
    const std::string what = text(name);
    const bool isHelped = !text(help).empty() || function->memid == DISPID_NEWENUM;
    check(what + " has its number and its help",
          isHelped && idOf(object, wide(what)) == function->memid);
    if (function->invkind == INVOKE_PROPERTYGET && function->cParams == 0) {
      const Outcome read = invoke(object, function->memid, DISPATCH_PROPERTYGET, {});
      check(what + " is of its type", read.result == S_OK
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
  check(what + " is made if the library says so", SUCCEEDED(result) == isCreatable);
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
  int enumerations = 0;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ITypeInfo* type = nullptr;
    TYPEATTR* attributes = nullptr;
    library->GetTypeInfo(i, &type);
    type->GetTypeAttr(&attributes);
    enumerations += attributes->typekind == TKIND_ENUM;
    if (attributes->typekind == TKIND_COCLASS) {
      ++classes;
      testClass(*type, *attributes);
    }
    type->ReleaseTypeAttr(attributes);
    type->Release();
  }
  int described = 1;  // the control
  aq::com::forClasses([&described]<class C>() { ++described; });
  check("all classes and enumerations", classes == described && enumerations == 10);
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

}  // namespace host
