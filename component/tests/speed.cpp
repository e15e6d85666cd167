#include <algorithm>
#include <chrono>

#include "host.h"

namespace host {
namespace {

/// The time of the fastest of several runs, in seconds.
template <class Work>
double best(const Work& work) {
  double least = 1e9;
  for (int run = 0; run < 7; ++run) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    least = std::min(least, taken.count());
  }
  return least;
}

double secondsOfCall(IDispatch* object, const wchar_t* name, std::vector<VARIANTARG> given) {
  constexpr int kCalls = 200000;
  const DISPID id = idOf(object, name);
  DISPPARAMS parameters{given.data(), nullptr, static_cast<UINT>(given.size()), 0};
  VARIANT result;
  VariantInit(&result);
  return best([&] {
           for (int i = 0; i < kCalls; ++i) {
             object->Invoke(id, IID_NULL, LOCALE_INVARIANT, DISPATCH_PROPERTYGET, &parameters,
                            &result, nullptr, nullptr);
           }
         }) /
         kCalls;
}

/// Fills an array of this size with numbers in a plain loop.
void fillPlainly(ULONG rows, ULONG columns) {
  SAFEARRAYBOUND bounds[] = {{rows, 1}, {columns, 1}};
  SAFEARRAY* const array = SafeArrayCreate(VT_VARIANT, 2, bounds);
  void* data = nullptr;
  SafeArrayAccessData(array, &data);
  auto* const cells = static_cast<VARIANT*>(data);
  for (ULONG i = 0; i < rows * columns; ++i) {
    cells[i].vt = VT_R8;
    cells[i].dblVal = i;
  }
  SafeArrayUnaccessData(array);
  SafeArrayDestroy(array);
}

}  // namespace

void testSpeed() {
  const Value spectrum = create(L"AQ_Spectrum");
  for (int band = 17; band <= 40; ++band) put(spectrum.pdispVal, L"SPL", {band, 60.25});
  const double empty = secondsOfCall(spectrum.pdispVal, L"LowBand", {});
  const double level = secondsOfCall(spectrum.pdispVal, L"SPL", {Value(24)});
  std::cout << "a level " << level * 1e9 << " ns, an Invoke that returns a stored number "
            << empty * 1e9 << " ns, ratio " << level / empty << "\n";

  const Value history =
      call(create(L"AQ_SpectralTimeHistory").pdispVal, L"Init", {1, 32767, 17, 40}).value;
  const double plain = best([] { fillPlainly(32767, 24); });
  const double levels = best([&] { call(history.pdispVal, L"Levels"); });
  std::cout << "Levels of 32767 x 24 " << levels * 1e3 << " ms, a plain fill " << plain * 1e3
            << " ms, ratio " << levels / plain << "\n";
}

}  // namespace host
