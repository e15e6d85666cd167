#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "component/class_table.h"
#include "component/com.h"
#include "component/counted.h"
#include "component/dispatch.h"

namespace aq::com {

/// The entries that For Each visits, as they were when the loop began.
class Enumerator final : public Counted<IEnumVARIANT> {
 public:
  using Entries = std::shared_ptr<const std::vector<Value>>;

  explicit Enumerator(std::vector<Value> entries)
      : entries_(std::make_shared<const std::vector<Value>>(std::move(entries))) {}
  Enumerator(Entries entries, std::size_t at) : entries_(std::move(entries)), at_(at) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** to) override {
    return answer<IEnumVARIANT>(this, IID_IEnumVARIANT, iid, to);
  }

  STDMETHODIMP Next(ULONG count, VARIANT* to, ULONG* fetched) override {
    if (to == nullptr) return E_POINTER;
    ULONG given = 0;
    while (given < count && at_ < entries_->size()) {
      VariantInit(&to[given]);
      if (FAILED(VariantCopy(&to[given], const_cast<Value*>(&(*entries_)[at_])))) {
        for (; given > 0; --at_) VariantClear(&to[--given]);
        if (fetched != nullptr) *fetched = 0;
        return E_OUTOFMEMORY;
      }
      ++given;
      ++at_;
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t rest = entries_->size() - at_;
    at_ += std::min<std::size_t>(count, rest);
    return count <= rest ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    at_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumVARIANT** to) override {
    if (to == nullptr) return E_POINTER;
    return guarded([&] {
      *to = new Enumerator(entries_, at_);
      return S_OK;
    });
  }

 private:
  Entries entries_;
  std::size_t at_ = 0;
};

}  // namespace aq::com
