
#include "component/com.h"
#include "host.h"

namespace host {
namespace {

template <class T>
T* asked(IUnknown* object, REFIID iid) {
  void* found = nullptr;
  const bool isThere = object != nullptr && SUCCEEDED(object->QueryInterface(iid, &found));
  check("the control has the requested interface", isThere);
  return static_cast<T*>(found);
}

/// The form's side of a control; only counts references.
class Site final : public IOleClientSite {
 public:
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return ++count; }
  STDMETHODIMP_(ULONG) Release() override { return --count; }
  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOTIMPL; }
  STDMETHODIMP ShowObject() override { return E_NOTIMPL; }
  STDMETHODIMP OnShowWindow(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  ULONG count = 0;
};

void testSite(IOleObject& object) {
  Site site;
  IOleClientSite* given = nullptr;
  check("a site", object.SetClientSite(&site) == S_OK && site.count == 1);
  check("the site again",
        object.GetClientSite(&given) == S_OK && given == &site && site.count == 2);
  site.Release();
  check("no site", object.SetClientSite(nullptr) == S_OK && site.count == 0);
}

/// Draws the control into a black bitmap of its size; returns how many pixels are then not black,
/// or -1 if drawing fails.
int drawnPixels(IViewObject2& view) {
  BITMAPINFO format{};
  format.bmiHeader = {sizeof(BITMAPINFOHEADER), 28, 28, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP picture = CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HDC canvas = CreateCompatibleDC(nullptr);
  const HGDIOBJ before = SelectObject(canvas, picture);
  const RECTL bounds{0, 0, 28, 28};
  const HRESULT drawn = view.Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, canvas, &bounds,
                                  nullptr, nullptr, 0);
  GdiFlush();
  int changed = 0;
  for (int i = 0; i < 28 * 28; ++i) changed += (static_cast<DWORD*>(bits)[i] & 0xffffff) != 0;
  SelectObject(canvas, before);
  DeleteDC(canvas);
  DeleteObject(picture);
  return drawn == S_OK ? changed : -1;
}

void testSaving(IUnknown* control) {
  auto* const persisted = asked<IPersistStreamInit>(control, IID_IPersistStreamInit);
  IStream* stream = nullptr;
  CreateStreamOnHGlobal(nullptr, TRUE, &stream);
  check("a new one", persisted->InitNew() == S_OK);
  check("saved", persisted->Save(stream, TRUE) == S_OK);
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  check("loaded", persisted->Load(stream) == S_OK);
  check("not loaded past the end", persisted->Load(stream) == E_FAIL);
  stream->Release();
  persisted->Release();
  auto* const stored = asked<IPersistStorage>(control, IID_IPersistStorage);
  IStorage* storage = nullptr;
  StgCreateDocfile(nullptr,
                   STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_DELETEONRELEASE, 0,
                   &storage);
  check("not loaded from an empty storage", FAILED(stored->Load(storage)));
  check("saved in a storage", stored->Save(storage, TRUE) == S_OK);
  check("loaded from a storage", stored->Load(storage) == S_OK);
  storage->Release();
  stored->Release();
}

}  // namespace

void testControl() {
  const Value control = create(L"AQ_Data");
  auto* const object = asked<IOleObject>(control.pdispVal, IID_IOleObject);
  auto* const view = asked<IViewObject2>(control.pdispVal, IID_IViewObject2);
  for (const IID& iid : {IID_IOleControl, IID_IOleInPlaceObject, IID_IPersistPropertyBag,
                         IID_IDataObject, IID_IProvideClassInfo}) {
    asked<IUnknown>(control.pdispVal, iid)->Release();
  }
  DWORD status = 0;
  SIZEL size{};
  check("status", object->GetMiscStatus(DVASPECT_CONTENT, &status) == S_OK && status == 132113);
  check("size", object->GetExtent(DVASPECT_CONTENT, &size) == S_OK && size.cx == 740);
  testSite(*object);
  check("drawn", drawnPixels(*view) == 16 * 15 - 16);  // one row of the icon is black
  testSaving(control.pdispVal);
  object->Release();
  view->Release();
  const HMODULE dll = GetModuleHandleW(L"AQ_Data_Control.dll");
  const HANDLE picture =
      LoadImageW(dll, MAKEINTRESOURCEW(1), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
  BITMAP shape{};
  GetObjectW(picture, sizeof shape, &shape);
  check("picture for toolboxes", shape.bmWidth == 16 && shape.bmHeight == 15);
  DeleteObject(picture);
}

}  // namespace host
