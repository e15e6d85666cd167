#pragma once

#include <atomic>

#include "component/com.h"
#include "component/server.h"

namespace aq::com {

/// Base of reference-counted objects, which keep the DLL loaded as long as they exist.
template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  STDMETHODIMP_(ULONG) AddRef() override { return ++count_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG count = --count_;
    if (count == 0) delete this;
    return count;
  }

 protected:
  Counted() = default;
  virtual ~Counted() = default;

 private:
  std::atomic<ULONG> count_ = 1;
  const InUse inUse_;
};

/// QueryInterface for an object with a single interface.
template <class T>
HRESULT answer(T* object, REFIID offered, REFIID asked, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = asked == IID_IUnknown || asked == offered ? object : nullptr;
  if (*to == nullptr) return E_NOINTERFACE;
  object->AddRef();
  return S_OK;
}

}  // namespace aq::com
