// What may be wrong with panels, and with the hosts that they are in.
#include "tests/validator/Hooks.h"

#include <vixavideofx/ClassIds.h>

#include <commctrl.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace broken {

namespace {

using namespace vixavideofx;

constexpr auto show = &IEffectInfo::ShowSettingsDialog;

IEffectInfo* Info(IUnknown* object)
{
    return static_cast<IEffectInfo*>(object);
}

void Speak(IUnknown* info, ULONG language)
{
    ULONG ignored = 0;
    Info(info)->GetEffectName(language, nullptr, &ignored);
}

struct Shown
{
    IUnknown* info;
    HWND parent;
    UINT message;
    IUnknown* set;
    HWND panel;
};

// A plant: the body is called with each panel that was shown.
template <typename Body>
constexpr auto AfterShowing(Body)
{
    return On<IEffectInfo, show>(
        [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
            const HRESULT result = real(ignored, parent, message, set, window);
            if (SUCCEEDED(result))
                Body{}(Shown{real.Object(), parent, message, set, *window});
            return result;
        });
}

WNDPROC dialogProcedure = nullptr; // of all dialogs

template <typename Body>
LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto pass = [&](WPARAM given) { return CallWindowProcW(dialogProcedure, window, message, given, lParam); };
    return Body{}(window, message, wParam, pass);
}

// A plant: the panel's messages go to the body, which may pass them on, as body(window, message, wParam, pass).
template <typename Body>
constexpr auto AtMessages(Body)
{
    return AfterShowing([](const Shown& shown) {
        const auto before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(shown.panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure<Body>)));
        if (before != Procedure<Body>)
            dialogProcedure = before;
    });
}

LRESULT CALLBACK Swallow(int, WPARAM, LPARAM)
{
    return 0;
}

// Between a panel and the host's property set; kept for good.
struct Between : IDataPropertySet
{
    IDataPropertySet* set;
    HWND parent;
    UINT message;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        return set->QueryInterface(riid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return set->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return set->Release(); }
    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) override { return set->GetData(buffer, size); }
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) override { return set->SetData(data, size); }
};

// A plant: panels get such a set.
template <typename Set>
constexpr auto WithSet()
{
    return On<IEffectInfo, show>(
        [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* given, HWND* window) -> HRESULT {
            auto* const set = new Set;
            set->set = static_cast<IDataPropertySet*>(given);
            set->parent = parent;
            set->message = message;
            return real(ignored, parent, message, set, window);
        });
}

struct WritesTwice final : Between
{
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) override
    {
        set->SetData(data, size);
        return set->SetData(data, size);
    }
};

struct ReadsNoLink final : Between
{
    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) override
    {
        const HRESULT result = set->GetData(buffer, size);
        static_cast<std::int32_t*>(buffer)[3] = 0;
        return result;
    }
};

struct WritesVertical final : Between
{
    HRESULT STDMETHODCALLTYPE SetData(const void*, int size) override
    {
        const std::int32_t kind = 9;
        return set->SetData(&kind, size);
    }
};

struct TellsWhoeverIsLeft final : Between
{
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) override
    {
        const HRESULT result = set->SetData(data, size);
        SendMessageW(parent, message, 0, 0);
        return result;
    }
};

std::atomic<bool> disturbed = false;
HWND lastPanel = nullptr;

constexpr Fault panelFaults[] = {
    {"panels/opens", AfterShowing([](const Shown& shown) { SendMessageW(shown.parent, shown.message, 0, 0); })},
    {"panels/arguments", On<IEffectInfo, show>(answers<E_FAIL, E_INVALIDARG>)},
    {"panels/reused",
     On<IEffectInfo, show>(
         [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
             DestroyWindow(GetWindow(parent, GW_CHILD));
             return real(ignored, parent, message, set, window);
         })},
    {"panels/reopened",
     On<IEffectInfo, show>(
         [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
             static void* before = nullptr;
             return std::exchange(before, real.self) == real.self
                        ? E_FAIL
                        : real(ignored, parent, message, set, window);
         })},
    {"panels/dies-with-the-host",
     AfterShowing([](const Shown& shown) { SetParent(shown.panel, GetDesktopWindow()); })},
    {"panels/ranges", AfterShowing([](const Shown& shown) {
         SendMessageW(GetDlgItem(shown.panel, 1034), TBM_SETRANGEMAX, FALSE, 99);
     })},
    {"panels/shows-the-block", AfterShowing([](const Shown& shown) {
         SendMessageW(GetDlgItem(shown.panel, 1034), TBM_SETPOS, TRUE, 100);
     })},
    {"panels/writes", WithSet<WritesTwice>()},
    {"panels/notifies",
     On<IEffectInfo, show>([](auto real, ULONG ignored, HWND parent, UINT, IUnknown* set, HWND* window) -> HRESULT {
         return real(ignored, parent, 0, set, window);
     })},
    {"panels/dragging", AtMessages([](HWND, UINT message, WPARAM wParam, auto pass) {
         const bool drag = message == WM_HSCROLL && LOWORD(wParam) == TB_THUMBTRACK;
         return pass(drag ? TB_ENDTRACK : wParam);
     })},
    {"panels/move-all", WithSet<ReadsNoLink>()},
    {"panels/last-box", WithSet<WritesVertical>()},
    {"panels/defaults",
     [](Objects& objects) {
         AfterShowing([](const Shown& shown) { lastPanel = shown.panel; })(objects);
         On<IEffectInfo, &IEffectInfo::SetDefaults>([](auto real, IUnknown* set) -> HRESULT {
             const HWND slider = GetDlgItem(lastPanel, 1034);
             const LRESULT position = SendMessageW(slider, TBM_GETPOS, 0, 0);
             const HRESULT result = real(set);
             SendMessageW(slider, TBM_SETPOS, TRUE, position);
             return result;
         })(objects);
     }},
    {"panels/empty-set", AfterShowing([](const Shown& shown) {
         std::int32_t block[1 << 14] = {};
         int size = 0;
         auto* const set = static_cast<IDataPropertySet*>(shown.set);
         if (FAILED(set->GetData(block, &size)))
             set->SetData(block, 4);
     })},
    {"panels/language",
     On<IEffectInfo, show>(
         [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
             Speak(real.Object(), 1033);
             return real(ignored, parent, message, set, window);
         })},
    {"report/window-procedure", AtMessages([](HWND, UINT message, WPARAM wParam, auto pass) {
         static volatile int* nowhere = nullptr;
         if (message == WM_DESTROY) // where the system may swallow it
             *nowhere = 0;          // cppcheck-suppress nullPointer // the fault
         return pass(wParam);
     })},

    {"embedding/other-threads",
     [](Objects& objects) {
         On<IEffectInfo, &IEffectInfo::GetSortKey>([](auto real, ULONG* key) -> HRESULT {
             disturbed = true;
             return real(key);
         })(objects);
         AtMessages([](HWND, UINT message, WPARAM wParam, auto pass) {
             return message == WM_HSCROLL && disturbed.exchange(false) ? 0 : pass(wParam);
         })(objects);
     }},
    {"embedding/two-threads", AtMessages([](HWND, UINT message, WPARAM wParam, auto pass) {
         static const DWORD first = GetCurrentThreadId(); // the only one whose panels work
         return GetCurrentThreadId() != first && (message == WM_HSCROLL || message == WM_COMMAND) ? 0 : pass(wParam);
     })},
    {"embedding/lets-go-in-write", WithSet<TellsWhoeverIsLeft>()},
    {"embedding/lets-go-while-made",
     On<IEffectInfo, show>(
         [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
             real.Object()->AddRef(); // and nobody takes it away again
             return real(ignored, parent, message, set, window);
         })},
    {"embedding/window-gone",
     On<IEffectInfo, show>(
         [](auto real, ULONG ignored, HWND parent, UINT message, IUnknown* set, HWND* window) -> HRESULT {
             const HRESULT result = real(ignored, parent, message, set, window);
             *window = result == E_FAIL ? parent : *window;
             return result;
         })},
    {"embedding/released-elsewhere", On<IEffectInfo, &IEffectInfo::Release>([](auto real) -> ULONG {
         static const DWORD first = GetCurrentThreadId();
         return GetCurrentThreadId() == first ? real() : 1;
     })},
    {"embedding/hosts-hook", AfterShowing([](const Shown&) {
         SetWindowsHookExW(WH_GETMESSAGE, Swallow, nullptr, GetCurrentThreadId());
     })},
    {"embedding/set-up-once", AtMessages([](HWND window, UINT message, WPARAM wParam, auto pass) {
         if (message == WM_INITDIALOG)
             SendDlgItemMessageW(window, 1003, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"Red"));
         return pass(wParam);
     })},

    {"unloading/after-panels", AfterShowing([](const Shown&) {
         void* factory = nullptr;
         DllGetClassObject(CLSID_Emboss, IID_IClassFactory, &factory);
     })},
    {"unloading/windows-left",
     AtMessages([](HWND, UINT, WPARAM wParam, auto pass) { return pass(wParam); })}, // and is never taken back
    {"unloading/drawing-objects", AfterShowing([](const Shown&) { CreateSolidBrush(0); })},
};

} // namespace

std::span<const Fault> PanelFaults()
{
    return panelFaults;
}

} // namespace broken
