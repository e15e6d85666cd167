#include "component/control.h"

#include <algorithm>
#include <initializer_list>

#include "component/com.h"
#include "component/counted.h"
#include "component/dispatch.h"
#include "component/model.h"

namespace aq::com {
namespace {

constexpr LONG kSize = 28;  // pixels, each way
constexpr LONG kHimetricPerInch = 2540;
constexpr LONG kPixelsPerInch = 96;
constexpr LONG kExtent = kSize * kHimetricPerInch / kPixelsPerInch;
constexpr DWORD kSavedVersion = 1;  // all that a stream or storage holds
constexpr DWORD kStatus = OLEMISC_SETCLIENTSITEFIRST | OLEMISC_INVISIBLEATRUNTIME |
                          OLEMISC_CANTLINKINSIDE | OLEMISC_RECOMPOSEONRESIZE;

/// An icon in the middle of its area on a form. It has no window, verbs or members, and never
/// changes; containers require a control to have all of these interfaces.
class Control final : public Counted<IOleObject, IOleControl, IOleInPlaceObject, IViewObject2,
                                     IPersistStreamInit, IPersistStorage, IPersistPropertyBag,
                                     IDataObject, IProvideClassInfo, IDispatch> {
 public:
  // IUnknown
  STDMETHODIMP QueryInterface(REFIID iid, void** to) override {
    if (to == nullptr) return E_POINTER;
    *to = shown(iid);
    if (*to == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  // IOleObject
  STDMETHODIMP SetClientSite(IOleClientSite* site) override {
    site_ = Held<IOleClientSite>::share(site);
    return S_OK;
  }
  STDMETHODIMP GetClientSite(IOleClientSite** to) override {
    if (to == nullptr) return E_POINTER;
    *to = Held<IOleClientSite>::share(site_.get()).release();
    return S_OK;
  }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP Close(DWORD) override { return S_OK; }
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) override {
    // Nothing to show or hide: the container draws.
    return verb <= 0 ? S_OK : OLEOBJ_S_INVALIDVERB;
  }
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return OLEOBJ_E_NOVERBS; }
  STDMETHODIMP Update() override { return S_OK; }
  STDMETHODIMP IsUpToDate() override { return S_OK; }
  STDMETHODIMP GetUserClassID(CLSID* to) override { return GetClassID(to); }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR* to) override {
    if (to == nullptr) return E_POINTER;
    constexpr wchar_t name[] = L"AQ_Data";
    *to = static_cast<LPOLESTR>(CoTaskMemAlloc(sizeof name));
    if (*to == nullptr) return E_OUTOFMEMORY;
    std::copy(std::begin(name), std::end(name), *to);
    return S_OK;
  }
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override {
    if (size == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    return size->cx == kExtent && size->cy == kExtent ? S_OK : E_FAIL;  // the size is fixed
  }
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* to) override {
    if (to == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    *to = {kExtent, kExtent};
    return S_OK;
  }
  STDMETHODIMP Advise(IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP Unadvise(DWORD) override { return OLE_E_NOCONNECTION; }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD* to) override {
    if (to == nullptr) return E_POINTER;
    *to = kStatus;
    return S_OK;
  }
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  // IOleControl
  STDMETHODIMP GetControlInfo(CONTROLINFO* to) override {
    if (to == nullptr) return E_POINTER;
    *to = {sizeof *to, nullptr, 0, 0};
    return S_OK;
  }
  STDMETHODIMP OnMnemonic(MSG*) override { return S_OK; }
  STDMETHODIMP OnAmbientPropertyChange(DISPID) override { return S_OK; }
  STDMETHODIMP FreezeEvents(BOOL) override { return S_OK; }

  // IOleInPlaceObject
  STDMETHODIMP GetWindow(HWND* to) override {
    if (to == nullptr) return E_POINTER;
    *to = nullptr;
    return E_FAIL;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }
  STDMETHODIMP InPlaceDeactivate() override { return S_OK; }
  STDMETHODIMP UIDeactivate() override { return S_OK; }
  STDMETHODIMP SetObjectRects(LPCRECT, LPCRECT) override { return S_OK; }
  STDMETHODIMP ReactivateAndUndo() override { return E_NOTIMPL; }

  // IViewObject2
  STDMETHODIMP Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC canvas, LPCRECTL bounds,
                    LPCRECTL, BOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) override {
    if (bounds == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    return draw(canvas, *bounds);
  }
  STDMETHODIMP GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE**) override {
    return S_FALSE;
  }
  STDMETHODIMP Freeze(DWORD, LONG, void*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP Unfreeze(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP SetAdvise(DWORD, DWORD, IAdviseSink*) override { return S_OK; }  // it never changes
  STDMETHODIMP GetAdvise(DWORD*, DWORD*, IAdviseSink** to) override {
    if (to != nullptr) *to = nullptr;
    return S_OK;
  }
  STDMETHODIMP GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL to) override {
    return GetExtent(aspect, to);
  }

  // IPersistStreamInit, IPersistStorage and IPersistPropertyBag
  STDMETHODIMP GetClassID(CLSID* to) override {
    if (to == nullptr) return E_POINTER;
    *to = guid(classIdentifier(kControlNumber));
    return S_OK;
  }
  STDMETHODIMP IsDirty() override { return S_FALSE; }
  STDMETHODIMP Load(IStream* stream) override {
    if (stream == nullptr) return E_POINTER;
    DWORD version = 0;
    ULONG read = 0;
    const HRESULT result = stream->Read(&version, sizeof version, &read);
    if (FAILED(result)) return result;
    return read == sizeof version && version == kSavedVersion ? S_OK : E_FAIL;
  }
  STDMETHODIMP Save(IStream* stream, BOOL) override {
    if (stream == nullptr) return E_POINTER;
    return stream->Write(&kSavedVersion, sizeof kSavedVersion, nullptr);
  }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER* to) override {
    if (to == nullptr) return E_POINTER;
    to->QuadPart = sizeof kSavedVersion;
    return S_OK;
  }
  STDMETHODIMP InitNew() override { return S_OK; }
  STDMETHODIMP InitNew(IStorage*) override { return S_OK; }
  STDMETHODIMP Load(IStorage* storage) override {
    return withStream(storage, STGM_READ, [this](IStream* stream) { return Load(stream); });
  }
  STDMETHODIMP Save(IStorage* storage, BOOL) override {
    return withStream(storage, STGM_WRITE | STGM_CREATE,
                      [this](IStream* stream) { return Save(stream, TRUE); });
  }
  STDMETHODIMP SaveCompleted(IStorage*) override { return S_OK; }
  STDMETHODIMP HandsOffStorage() override { return S_OK; }
  STDMETHODIMP Load(IPropertyBag*, IErrorLog*) override { return S_OK; }
  STDMETHODIMP Save(IPropertyBag*, BOOL, BOOL) override { return S_OK; }

  // IDataObject
  STDMETHODIMP GetData(FORMATETC*, STGMEDIUM*) override { return DV_E_FORMATETC; }
  STDMETHODIMP GetDataHere(FORMATETC*, STGMEDIUM*) override { return DV_E_FORMATETC; }
  STDMETHODIMP QueryGetData(FORMATETC*) override { return DV_E_FORMATETC; }
  STDMETHODIMP GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
  STDMETHODIMP SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
  STDMETHODIMP DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
    return OLE_E_ADVISENOTSUPPORTED;
  }
  STDMETHODIMP DUnadvise(DWORD) override { return OLE_E_NOCONNECTION; }
  STDMETHODIMP EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

  // IProvideClassInfo and IDispatch
  STDMETHODIMP GetClassInfo(ITypeInfo** to) override {
    return guarded([&] { return typeInfo(guid(classIdentifier(kControlNumber)), to); });
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** to) override {
    if (index != 0) return DISP_E_BADINDEX;
    return guarded([&] { return typeInfo(guid(interfaceIdentifier(kControlNumber)), to); });
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) override {
    if (ids == nullptr) return E_POINTER;
    std::fill_n(ids, count, DISPID_UNKNOWN);
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  void* shown(REFIID iid) {
    void* found = nullptr;
    const auto offer = [&](auto* as, std::initializer_list<IID> identifiers) {
      if (std::find(identifiers.begin(), identifiers.end(), iid) != identifiers.end()) found = as;
    };
    offer(static_cast<IDispatch*>(this),
          {IID_IUnknown, IID_IDispatch, guid(interfaceIdentifier(kControlNumber))});
    offer(static_cast<IOleObject*>(this), {IID_IOleObject});
    offer(static_cast<IOleControl*>(this), {IID_IOleControl});
    offer(static_cast<IOleInPlaceObject*>(this), {IID_IOleInPlaceObject, IID_IOleWindow});
    offer(static_cast<IViewObject2*>(this), {IID_IViewObject2, IID_IViewObject});
    offer(static_cast<IPersistStreamInit*>(this), {IID_IPersistStreamInit, IID_IPersist});
    offer(static_cast<IPersistStorage*>(this), {IID_IPersistStorage});
    offer(static_cast<IPersistPropertyBag*>(this), {IID_IPersistPropertyBag});
    offer(static_cast<IDataObject*>(this), {IID_IDataObject});
    offer(static_cast<IProvideClassInfo*>(this), {IID_IProvideClassInfo});
    return found;
  }

  static HRESULT draw(HDC canvas, const RECTL& bounds) {
    const auto picture = static_cast<HBITMAP>(
        LoadImageW(module(), MAKEINTRESOURCEW(1), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    if (picture == nullptr) return E_OUTOFMEMORY;
    BITMAP size{};
    GetObjectW(picture, sizeof size, &size);
    const HDC source = CreateCompatibleDC(canvas);
    const HGDIOBJ before = SelectObject(source, picture);
    const int left = static_cast<int>((bounds.left + bounds.right - size.bmWidth) / 2);
    const int top = static_cast<int>((bounds.top + bounds.bottom - size.bmHeight) / 2);
    const BOOL isDrawn =
        BitBlt(canvas, left, top, size.bmWidth, size.bmHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, before);
    DeleteDC(source);
    DeleteObject(picture);
    return isDrawn != FALSE ? S_OK : E_FAIL;
  }

  template <class Use>
  static HRESULT withStream(IStorage* storage, DWORD mode, const Use& use) {
    if (storage == nullptr) return E_POINTER;
    Held<IStream> stream;
    const DWORD how = mode | STGM_SHARE_EXCLUSIVE;
    const HRESULT opened = (mode & STGM_CREATE) != 0
                               ? storage->CreateStream(L"AQ_Data", how, 0, 0, stream.put())
                               : storage->OpenStream(L"AQ_Data", nullptr, how, 0, stream.put());
    return FAILED(opened) ? opened : use(stream.get());
  }

  Held<IOleClientSite> site_;
};

}  // namespace

Held<IUnknown> makeControl() { return Held<IUnknown>(static_cast<IDispatch*>(new Control)); }

}  // namespace aq::com
