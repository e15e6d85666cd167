// Drives the registered component as hosts do, with early and with late binding: DATA, or `speed`,
// or `forget DATA`, or `keys machine|user`.

#include <thread>

#include "host.h"

namespace host {
namespace {

/// Calls that must fail, each in its own way, and leave the object unchanged.
void testRefusals() {
  const Value spectrum = create(L"AQ_Spectrum");
  const Value time = create(L"AQ_Time");
  IDispatch* const object = spectrum.pdispVal;
  const DISPID spl = idOf(object, L"spl");
  check("a level is set", put(object, L"SPL", {24, 65.5}).result == S_OK);
  const struct {
    const char* what;
    Outcome outcome;
    HRESULT result;
    int number;
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
       DISP_E_TYPEMISMATCH, 0},
      {"a name twice", invoke(object, spl, DISPATCH_PROPERTYGET, {24, 24}, {0}),
       DISP_E_PARAMNOTFOUND, 0},
  };
  for (const auto& row : rows) {
    const bool isTold = row.number == 0 || row.outcome.raised(row.number);
    check(row.what, row.outcome.result == row.result && isTold);
    if (row.outcome.result != row.result) std::cout << std::hex << row.outcome.result << "\n";
  }
  check("which argument", rows[14].outcome.argument == 1);
  check("nothing changed", call(object, L"SPL", {24}).value.dblVal == 65.5);
  check("bands unchanged", call(object, L"LowBand").value.iVal == 24);
}

/// Arguments by reference and by name, both ways of binding.
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

  const Value history = create(L"AQ_SpectralTimeHistory");
  std::wstring texts[] = {L"INIT", L"hiband", L"LoBand", L"HIREC", L"lorec"};
  wchar_t* names[5];
  for (int i = 0; i < 5; ++i) names[i] = texts[i].data();
  DISPID ids[5];
  check("names of arguments",
        history.pdispVal->GetIDsOfNames(IID_NULL, names, 5, LOCALE_INVARIANT, ids) == S_OK);
  // The last argument is the first that is named.
  const auto named = invoke(history.pdispVal, ids[0], DISPATCH_METHOD, {1, 2, 30, 33},
                            {ids[1], ids[2], ids[3], ids[4]});
  const auto bands = named.result == S_OK ? call(named.value.pdispVal, L"Levels") : Outcome();
  check("named arguments", bands.value.vt == (VT_ARRAY | VT_VARIANT) &&
                               bands.value.parray->rgsabound[0].cElements == 4 &&
                               bands.value.parray->rgsabound[1].cElements == 2);
}

/// One object of the library is one object of the host, and all of COM's rules of identity hold.
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

/// Another thread with objects of its own and with one of ours, through COM and directly.
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

/// Objects in use keep working after the component is unregistered, as do those that they create.
void testUnregisteredInUse() {
  const Value spectrum = create(L"AQ_Spectrum");
  CLSID identifier{};
  CLSIDFromProgID(L"AQ_Data_Control.AQ_Spectrum", &identifier);
  check("unregistered in use", ask("DllUnregisterServer") == S_OK);
  check("still works", put(spectrum.pdispVal, L"SPL", {24, 65.5}).result == S_OK);
  const Outcome time = call(spectrum.pdispVal, L"Time");
  ITypeInfo* type = nullptr;
  check("a new object",
        time.value.vt == VT_DISPATCH && time.value.pdispVal->GetTypeInfo(0, 0, &type) == S_OK);
  if (type != nullptr) type->Release();
  void* made = nullptr;
  check(
      "no new object by name",
      CLSIDFromProgID(L"AQ_Data_Control.AQ_Time", &identifier) == CO_E_CLASSSTRING &&
          FAILED(CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &made)));
  check("twice", ask("DllUnregisterServer") == S_OK);
  check("registered again", ask("DllRegisterServer") == S_OK);
}

/// What keeps the DLL loaded besides objects.
void testLocks() {
  CLSID identifier{};
  CLSIDFromProgID(L"AQ_Data_Control.AQ_Collection", &identifier);
  IClassFactory* factory = nullptr;
  CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   reinterpret_cast<void**>(&factory));
  check("a factory is left", !canUnload());
  factory->LockServer(TRUE);
  factory->Release();
  check("a lock is left", !canUnload());
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
  check("an enumerator is left", entries.vt == VT_UNKNOWN && !canUnload());
}

/// Ends with objects, a factory and a thread's objects that nobody releases.
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
  testIdentity();
  testApartments();
  testControl();
  testUnregisteredInUse();
  check("an object is left", !canUnload());
}

}  // namespace
}  // namespace host

int wmain(int count, wchar_t** arguments) {
  CoInitialize(nullptr);
  const std::wstring what = count > 1 ? arguments[1] : L"";
  if (what == L"keys") {
    const bool isUser = arguments[2] == std::wstring(L"user");
    std::cout << host::registered(isUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE) << " keys\n";
  } else if (what == L"speed") {
    host::testSpeed();
  } else if (what == L"forget") {
    host::forget(arguments[2]);
    return 0;  // without CoUninitialize
  } else {
    host::testAll(what);
    host::check("no object is left", host::canUnload());
    host::testLocks();
    host::check("nothing is left", host::canUnload());
    std::cout << host::passed << " passed, " << host::failed << " failed\n";
  }
  CoUninitialize();
  return 0;
}
