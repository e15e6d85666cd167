// Drives the registered component as hosts do, with early and with late binding. Arguments: DATA to
// run the tests, or `speed`, `forget DATA`, `keys machine|user`, or `values machine|user DLL`.

#include <algorithm>
#include <thread>

#include "host.h"

namespace host {
namespace {

/// Calls that must fail with the error in their row and leave the objects unchanged.
void testRefusals() {
  const Value spectrum = create(L"AQ_Spectrum");
  const Value time = create(L"AQ_Time");
  const Value lines = create(L"AQ_Collection");
  const Value library = create(L"AQ_Library");
  const Value history =
      call(create(L"AQ_SpectralTimeHistory").pdispVal, L"Init", {1, 2, 17, 18}).value;
  SAFEARRAY* numbers = SafeArrayCreateVector(VT_R8, 0, 3);
  const Value array = Value::reference(VT_ARRAY | VT_R8, &numbers);
  IDispatch* const object = spectrum.pdispVal;
  const DISPID spl = idOf(object, L"spl");
  check("a level is set", put(object, L"SPL", {24, 65.5}).result == S_OK);
  const struct {
    const char* what;
    Outcome outcome;
    HRESULT result;
    int number;
    UINT argument = UINT_MAX;  // 0 is the last argument
  } rows[] = {
      {"no level", call(object, L"SPL", {30}), DISP_E_EXCEPTION, 5},
      {"overflow", call(object, L"SPL", {70000}), DISP_E_EXCEPTION, 6},
      {"not a number", call(object, L"SPL", {L"12,5"}), DISP_E_EXCEPTION, 13},
      {"empty", call(object, L"SPL", {Value()}), DISP_E_EXCEPTION, 13},
      {"missing", call(object, L"SPL"), DISP_E_BADPARAMCOUNT, 0},
      {"extra argument", call(object, L"SPL", {1, 2}), DISP_E_BADPARAMCOUNT, 0},
      {"extra argument, simple property", call(object, L"LowBand", {1}), DISP_E_BADPARAMCOUNT, 0},
      {"put without a value", invoke(object, spl, DISPATCH_PROPERTYPUT, {}), E_INVALIDARG, 0},
      {"read only", put(object, L"LowBand", {3}), DISP_E_MEMBERNOTFOUND, 0},
      {"no such number", call(object, L"nothing"), DISP_E_MEMBERNOTFOUND, 0},
      {"another class", put(object, L"Time", {spectrum}), DISP_E_TYPEMISMATCH, 0},
      {"a number as object", put(object, L"Time", {5}), DISP_E_TYPEMISMATCH, 0},
      {"no object", put(time.pdispVal, L"setRelTime", {static_cast<IDispatch*>(nullptr)}),
       DISP_E_EXCEPTION, 91},
      {"unsuitable object", call(object, L"Encompasses", {time}), DISP_E_EXCEPTION, 438},
      {"no variable", call(create(L"AQ_DataSTH").pdispVal, L"readFile", {L"x", 1, 2}),
       DISP_E_TYPEMISMATCH, 0, 1},
      {"missing value", put(object, L"SPL", {24, Value::missing()}), DISP_E_PARAMNOTOPTIONAL, 0, 0},
      {"array as place", call(lines.pdispVal, L"Item", {array}), DISP_E_TYPEMISMATCH, 0, 0},
      {"array as key", call(lines.pdispVal, L"Add", {L"x", array}), DISP_E_TYPEMISMATCH, 0, 0},
      {"no bands", call(object, L"Encompasses", {array}), DISP_E_TYPEMISMATCH, 0, 0},
      {"no table", put(history.pdispVal, L"Levels", {5}), DISP_E_TYPEMISMATCH, 0, 0},
      {"array as metric", call(history.pdispVal, L"MetricTable", {array}), DISP_E_TYPEMISMATCH, 0,
       0},
      {"array as name", call(library.pdispVal, L"checkFixes", {array, 3}), DISP_E_TYPEMISMATCH, 0,
       1},
      {"a name twice", invoke(object, spl, DISPATCH_PROPERTYGET, {24, 24}, {0}),
       DISP_E_PARAMNOTFOUND, 0},
  };
  for (const auto& row : rows) {
    const bool isTold = row.number == 0 || row.outcome.raised(row.number);
    const bool isPlaced = row.argument == UINT_MAX || row.outcome.argument == row.argument;
    check(row.what, row.outcome.result == row.result && isTold && isPlaced);
    if (row.outcome.result != row.result) std::cout << std::hex << row.outcome.result << "\n";
  }
  check("nothing changed", call(object, L"SPL", {24}).value.dblVal == 65.5);
  check("bands unchanged", call(object, L"LowBand").value.iVal == 24);
  check("no entry", call(lines.pdispVal, L"Count").value.lVal == 0);
  SafeArrayDestroy(numbers);
}

/// A host's procedure may pass on a typed variable as a Variant. Sets all 64 bits of such a
/// variable and checks which of them a result of 2 overwrites, and which types of variable take an
/// object.
void testTypedVariables(IDispatch* reader, const std::wstring& file) {
  constexpr struct {
    int type;
    std::int64_t number;
    bool takesObject;
  } rows[] = {{VT_BSTR, -1, false},      {VT_R8, -1, false},           {VT_BOOL, -1, false},
              {VT_ARRAY, -1, false},     {VT_DISPATCH, -1, true},      {VT_UNKNOWN, -1, true},
              {VT_I2, -0xfffeLL, false}, {VT_I4, -0xfffffffeLL, false}};
  for (const auto& row : rows) {
    Value header;
    Value positions;
    Value result;
    std::int64_t number = -1;
    Value variable = Value::reference(row.type, &number);
    const auto told =
        call(reader, L"readFile",
             {L"none", Value::late(header), Value::late(positions), Value::late(variable)});
    const std::string type = " of type " + std::to_string(row.type);
    check("a result in a variable" + type,
          number == row.number && (number == -1) == (told.result == DISP_E_TYPEMISMATCH));
    IUnknown* object = nullptr;
    variable = Value::reference(row.type, &object);
    call(reader, L"readFile",
         {file.c_str(), Value::late(variable), Value::late(positions), Value::late(result)});
    check("an object in a variable" + type, (object != nullptr) == row.takesObject);
    if (object != nullptr && row.takesObject) object->Release();
  }
}

/// Arrays that only some hosts can make: decimal numbers are accepted, records are refused.
void testArrays() {
  const Value library = create(L"AQ_Library");
  SAFEARRAY* decimals = SafeArrayCreateVector(VT_DECIMAL, 0, 3);
  for (LONG i = 0; i < 3; ++i) {
    DECIMAL level{};
    VarDecFromI4(i == 1 ? 95 : 80, &level);
    SafeArrayPutElement(decimals, &i, &level);
  }
  const auto event = call(library.pdispVal, L"noiseEvent",
                          {Value::reference(VT_ARRAY | VT_DECIMAL, &decimals), 0.5});
  check("decimal numbers",
        event.result == S_OK && call(event.value.pdispVal, L"pnltm").value.dblVal == 95);
  SafeArrayDestroy(decimals);
  SAFEARRAY* records = nullptr;
  SafeArrayAllocDescriptorEx(VT_RECORD, 1, &records);
  std::int64_t content[24]{};
  records->pvData = content;
  records->cbElements = sizeof content / 3;
  records->rgsabound[0] = {3, 0};
  const auto refused = call(library.pdispVal, L"noiseEvent",
                            {Value::reference(VT_ARRAY | VT_RECORD, &records), 0.5});
  check("records", refused.result == DISP_E_TYPEMISMATCH && refused.argument == 1);
  SafeArrayDestroyDescriptor(records);
}

/// Arguments by reference, with late and with early binding, and arguments by name.
void testArguments(const std::wstring& data) {
  const Value reader = create(L"AQ_DataPTH");
  const std::wstring file = data + L"\\position-time-history\\good\\three-positions.csv";
  Value header;
  Value positions;
  Value result;
  const auto late =
      call(reader.pdispVal, L"readFile",
           {file.c_str(), Value::late(header), Value::late(positions), Value::late(result)});
  check("late variables", late.result == S_OK && result.lVal == 0 && header.vt == VT_DISPATCH);
  check("late object", call(positions.pdispVal, L"Count").value.iVal == 3);

  IDispatch* earlyHeader = nullptr;
  IDispatch* earlyPositions = header.pdispVal;  // the call releases and replaces it
  earlyPositions->AddRef();
  long earlyResult = 7;
  const auto early = call(reader.pdispVal, L"readFile",
                          {file.c_str(), Value::early(earlyHeader), Value::early(earlyPositions),
                           Value::early(earlyResult)});
  check("early variables", early.result == S_OK && earlyResult == 0 && earlyHeader != nullptr);
  check("early object", call(earlyPositions, L"Count").value.iVal == 3);
  for (IDispatch* const object : {earlyHeader, earlyPositions}) object->Release();

  const auto none =
      call(reader.pdispVal, L"readFile",
           {L"none", Value::late(header), Value::late(positions), Value::late(result)});
  check("a failure keeps variables", none.result == S_OK && result.lVal == 2 &&
                                         call(positions.pdispVal, L"Count").value.iVal == 3);
  testTypedVariables(reader.pdispVal, file);

  const Value history = create(L"AQ_SpectralTimeHistory");
  std::vector<DISPID> ids =
      idsOf(history.pdispVal, {L"INIT", L"hiband", L"LoBand", L"HIREC", L"lorec"});
  check("names of arguments", std::find(ids.begin(), ids.end(), DISPID_UNKNOWN) == ids.end());
  // The names are in reverse order: the first belongs to the last argument.
  const auto named = invoke(history.pdispVal, ids[0], DISPATCH_METHOD, {1, 2, 30, 33},
                            {ids.begin() + 1, ids.end()});
  const auto bands = named.result == S_OK ? call(named.value.pdispVal, L"Levels") : Outcome();
  check("named arguments", bands.value.vt == (VT_ARRAY | VT_VARIANT) &&
                               bands.value.parray->rgsabound[0].cElements == 4 &&
                               bands.value.parray->rgsabound[1].cElements == 2);
  check("an entry and its key", idsOf(create(L"AQ_Collection").pdispVal,
                                      {L"Add", L"Item", L"Key"}) == std::vector<DISPID>{1, 0, 1});
}

/// Asking twice for an object gives the same one, COM's identity rules hold, and aggregation is
/// refused.
void testIdentity() {
  const Value spectrum = create(L"AQ_Spectrum");
  const Value time = call(spectrum.pdispVal, L"Time").value;
  check("the same again", call(spectrum.pdispVal, L"Time").value.pdispVal == time.pdispVal);
  IProvideClassInfo* information = nullptr;
  time.pdispVal->QueryInterface(IID_IProvideClassInfo, reinterpret_cast<void**>(&information));
  IUnknown* first = nullptr;
  IUnknown* second = nullptr;
  time.pdispVal->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&first));
  information->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&second));
  check("one identity", first == second);
  for (IUnknown* const object : {first, second, static_cast<IUnknown*>(information)}) {
    object->Release();
  }
  CLSID identifier{};
  CLSIDFromProgID(L"AQ_Data_Control.AQ_Time.1", &identifier);
  void* made = nullptr;
  check("no aggregation", CoCreateInstance(identifier, time.pdispVal, CLSCTX_INPROC_SERVER,
                                           IID_IUnknown, &made) == CLASS_E_NOAGGREGATION);
}

/// Another thread can use its own objects and, through COM, one of ours; a direct call to ours is
/// refused.
void testApartments() {
  const Value ours = create(L"AQ_Time");
  IStream* stream = nullptr;
  CoMarshalInterThreadInterfaceInStream(IID_IDispatch, ours.pdispVal, &stream);
  Outcome direct;
  Outcome marshalled;
  Outcome own;
  const DWORD thisThread = GetCurrentThreadId();
  std::thread other([&] {
    CoInitialize(nullptr);
    {
      direct = call(ours.pdispVal, L"TODseconds");
      const Value time = create(L"AQ_Time");
      for (int i = 0; i < 10000; ++i) own = put(time.pdispVal, L"TODseconds", {i});
      void* proxy = nullptr;
      if (SUCCEEDED(CoGetInterfaceAndReleaseStream(stream, IID_IDispatch, &proxy))) {
        marshalled = put(static_cast<IDispatch*>(proxy), L"TODseconds", {77});
        static_cast<IDispatch*>(proxy)->Release();
      }
    }
    CoUninitialize();
    PostThreadMessageW(thisThread, WM_QUIT, 0, 0);
  });
  for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
  other.join();
  check("called directly", direct.result == RPC_E_WRONG_THREAD);
  check("of its own", own.result == S_OK);
  check("through COM",
        marshalled.result == S_OK && call(ours.pdispVal, L"TODseconds").value.dblVal == 77);
}

/// Calls a function that the DLL exports.
HRESULT ask(const char* name) {
  const HMODULE dll = GetModuleHandleW(L"AQ_Data_Control.dll");
  return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(dll, name)))();
}
bool canUnload() { return ask("DllCanUnloadNow") == S_OK; }

/// Objects in use keep working after the component is unregistered, and so do objects they create.
void testUnregisteredInUse() {
  const Value spectrum = create(L"AQ_Spectrum");
  CLSID identifier{};
  CLSIDFromProgID(L"AQ_Data_Control.AQ_Spectrum", &identifier);
  // As if the DLL for the other word size were registered too; both share the class names.
  const std::wstring key = kClasses + keyOf(identifier);
  constexpr REGSAM kOtherSize = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
  HKEY made = nullptr;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE | kOtherSize, nullptr,
                  &made, nullptr);
  RegCloseKey(made);
  check("unregistered in use", ask("DllUnregisterServer") == S_OK);
  const bool isNamed = CLSIDFromProgID(L"AQ_Data_Control.AQ_Spectrum", &identifier) == S_OK;
  check("shared names stay", isNamed == (sizeof(void*) == 8));  // not in 32-bit wine
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), kOtherSize, 0);
  check("still works", put(spectrum.pdispVal, L"SPL", {24, 65.5}).result == S_OK);
  const Outcome time = call(spectrum.pdispVal, L"Time");
  ITypeInfo* type = nullptr;
  check("a new object",
        time.value.vt == VT_DISPATCH && time.value.pdispVal->GetTypeInfo(0, 0, &type) == S_OK);
  if (type != nullptr) type->Release();
  void* created = nullptr;
  check("no new object by name",
        CLSIDFromProgID(L"AQ_Data_Control.AQ_Time", &identifier) == CO_E_CLASSSTRING &&
            FAILED(CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                    &created)));
  check("twice", ask("DllUnregisterServer") == S_OK);
  // A volatile key cannot have permanent subkeys, so registering the last class fails.
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, (kClasses + L"AQ_Data_Control.AQ_Data").c_str(), 0, nullptr,
                  REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &made, nullptr);
  RegCloseKey(made);
  check("a failed registration", FAILED(ask("DllRegisterServer")));
  check("leaves nothing", registered(HKEY_LOCAL_MACHINE) == 0);
  check("registered again", ask("DllRegisterServer") == S_OK);
}

/// Things other than objects that keep the DLL loaded.
void testLocks() {
  CLSID identifier{};
  CLSIDFromProgID(L"AQ_Data_Control.AQ_Collection", &identifier);
  IClassFactory* factory = nullptr;
  CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   reinterpret_cast<void**>(&factory));
  check("a factory keeps the DLL loaded", !canUnload());
  factory->LockServer(TRUE);
  factory->Release();
  check("a lock keeps the DLL loaded", !canUnload());
  CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   reinterpret_cast<void**>(&factory));
  factory->LockServer(FALSE);
  factory->Release();
  Value entries;
  {
    const Value lines = create(L"AQ_Collection");
    call(lines.pdispVal, L"Add", {L"a"});
    entries = invoke(lines.pdispVal, DISPID_NEWENUM, DISPATCH_PROPERTYGET, {}).value;
  }
  check("an enumerator keeps the DLL loaded", entries.vt == VT_UNKNOWN && !canUnload());
}

/// Leaves objects unreleased when the program ends, one of them created by another thread.
void forget(const std::wstring& data) {
  static Value kept[] = {create(L"AQ_DataSTH"), Value(), Value()};
  const std::wstring file = data + L"\\spectral-time-history\\good\\three-records.csv";
  call(kept[0].pdispVal, L"readFile", {file.c_str(), Value::late(kept[1]), Value::late(kept[2])});
  std::thread([] {
    CoInitialize(nullptr);
    create(L"AQ_Time").pdispVal->AddRef();
  }).join();
  const bool isRead = kept[2].vt == VT_DISPATCH;
  for (const Value& value : kept) value.pdispVal->AddRef();
  std::cout << (isRead && !canUnload() ? "forgotten\n" : "not read\n");
}

void testAll(const std::wstring& data) {
  const Value kept = create(L"AQ_Time");
  testTypeLibrary();
  testRefusals();
  testArguments(data);
  testArrays();
  testIdentity();
  testApartments();
  testControl();
  testUnregisteredInUse();
  check("an object keeps the DLL loaded", !canUnload());
}

}  // namespace
}  // namespace host

int wmain(int count, wchar_t** arguments) {
  CoInitialize(nullptr);
  const std::wstring what = count > 1 ? arguments[1] : L"";
  const bool isUser = count > 2 && arguments[2] == std::wstring(L"user");
  const HKEY root = isUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  if (what == L"keys") {
    std::cout << host::registered(root) << " keys\n";
  } else if (what == L"values") {
    host::testRegistration(root, arguments[3]);
  } else if (what == L"speed") {
    host::testSpeed();
  } else if (what == L"forget") {
    host::forget(arguments[2]);
    return 0;  // without CoUninitialize
  } else {
    host::testAll(what);
    host::check("without objects, the DLL can be unloaded", host::canUnload());
    host::testLocks();
    host::check("without locks, the DLL can be unloaded", host::canUnload());
  }
  if (host::passed + host::failed > 0) {
    std::cout << host::passed << " passed, " << host::failed << " failed\n";
  }
  CoUninitialize();
  return 0;
}
