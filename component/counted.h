#pragma once

#include <atomic>

#include "component/com.h"
#include "component/server.h"

namespace aq::com {

/// What hosts share by counting: the last share ends it, and as long as there is one, the DLL
/// stays.
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

/// Answers for an object that has one interface.
template <class T>
HRESULT answer(T* object, REFIID offered, REFIID asked, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = asked == IID_IUnknown || asked == offered ? object : nullptr;
  if (*to == nullptr) return E_NOINTERFACE;
  object->AddRef();
  return S_OK;
}

}  // namespace aq::com
