#pragma once

#include <atomic>
#include <memory>

#include "component/class_table.h"
#include "component/com.h"
#include "component/held.h"
#include "component/server.h"

namespace aq::com {

/// The component's identifier with this number.
[[nodiscard]] GUID guid(int number);

/// A library object as hosts hold it. As long as it is held, a library object always has the same
/// host object, so that hosts can compare objects. Belongs to the thread that created it: COM
/// forwards calls from other apartments; direct calls from other threads are refused.
class Dispatch final : public IDispatch, public IProvideClassInfo {
 public:
  Dispatch(std::shared_ptr<void> object, const ClassTable& table);
  Dispatch(const Dispatch&) = delete;
  Dispatch& operator=(const Dispatch&) = delete;

  [[nodiscard]] const ClassTable& table() const { return table_; }
  [[nodiscard]] const std::shared_ptr<void>& object() const { return object_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** to) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** to) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;
  STDMETHODIMP GetClassInfo(ITypeInfo** to) override;

 private:
  ~Dispatch();
  [[nodiscard]] Value run(DISPID id, WORD flags, DISPPARAMS& parameters) const;

  std::atomic<ULONG> count_ = 1;
  const ClassTable& table_;
  const std::shared_ptr<void> object_;
  const DWORD thread_ = GetCurrentThreadId();
  const InUse inUse_;
};

/// The host object of a library object, with a reference for the caller; null for no object.
[[nodiscard]] IDispatch* wrap(std::shared_ptr<void> object, const ClassTable& table);

/// The object, if it is one of the component's own in this apartment; null otherwise.
[[nodiscard]] const Dispatch* ownObject(IDispatch* object);

/// A type description from the DLL's type library.
[[nodiscard]] HRESULT typeInfo(const GUID& identifier, ITypeInfo** to);

/// Runs `work`, which returns an HRESULT; converts exceptions to HRESULTs, so that no exception
/// leaves the DLL.
template <class Work>
HRESULT guarded(const Work& work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const Fault& fault) {
    return fault.code;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace aq::com
