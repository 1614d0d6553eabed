// A complete little host: it loads the library, asks an effect what it is, lets it fill a property set with its
// defaults and show its settings panel, sends one frame through it, and takes everything down again.
//
//     host [PATH OF VixaVideoFX.dll]
//
// A program in C++17, as wide as the library; that one's include folder is all it needs besides the platform's ole32,
// user32 and strmiids. An editing host has a source of its own instead of FrameSource, and a renderer instead of the
// null renderer.
#include <vixavideofx/VixaVideoFX.h>

#include <dshow.h>
#include <wrl/client.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

using namespace vixavideofx;
using Microsoft::WRL::ComPtr;

namespace {

void Check(HRESULT result, const char* what)
{
    if (FAILED(result)) {
        char text[100];
        std::snprintf(text, sizeof text, "%s: 0x%08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

// QueryInterface of an object with these faces.
template <typename... Faces, typename Object>
HRESULT Answer(Object* object, REFIID riid, void** out)
{
    const bool known = (... || (riid == __uuidof(Faces)));
    *out = known ? object : nullptr;
    if (known)
        object->AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

// The host owns the parameters: a block of bytes that it stores with its project and never looks into. The library
// keeps no reference, so the object may stand on the stack.
class Parameters final : public IDataPropertySet
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        return Answer<IUnknown>(this, riid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) override
    {
        if (bytes.empty())
            return E_FAIL;
        std::memcpy(buffer, bytes.data(), bytes.size());
        *size = static_cast<int>(bytes.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) override
    {
        const auto* first = static_cast<const std::uint8_t*>(data);
        bytes.assign(first, first + size);
        return S_OK;
    }

private:
    std::vector<std::uint8_t> bytes;
};

// Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type. It
// may stand on the stack, before the graph: whoever is in the graph lets go of it when the graph goes.
class FrameSource final : public IBaseFilter
{
public:
    FrameSource(LONG width, LONG height)
    {
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = height; // bottom-up
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biSizeImage = static_cast<DWORD>(width * height * 4);
        type.majortype = MEDIATYPE_Video;
        type.subtype = MEDIASUBTYPE_RGB32;
        type.bFixedSizeSamples = TRUE;
        type.lSampleSize = info.bmiHeader.biSizeImage;
        type.formattype = FORMAT_VideoInfo;
        type.cbFormat = sizeof info;
        type.pbFormat = reinterpret_cast<BYTE*>(&info);
    }

    IPin* Output() { return &pin; }
    const AM_MEDIA_TYPE* Type() const { return &type; }

    // Sends a frame downstream, in a graph that runs, and answers what it has become: an effect changes the frame in
    // the buffer that brings it.
    std::vector<std::uint32_t> Send(const std::vector<std::uint32_t>& frame)
    {
        ComPtr<IMediaSample> sample;
        Check(allocator->GetBuffer(&sample, nullptr, nullptr, 0), "GetBuffer");
        BYTE* bytes = nullptr;
        Check(sample->GetPointer(&bytes), "GetPointer");
        std::memcpy(bytes, frame.data(), frame.size() * 4);
        Check(sample->SetActualDataLength(static_cast<LONG>(frame.size()) * 4), "SetActualDataLength");
        Check(receiver->Receive(sample.Get()), "Receive");
        std::vector<std::uint32_t> result(frame.size());
        std::memcpy(result.data(), bytes, result.size() * 4);
        return result;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        return Answer<IUnknown, IPersist, IMediaFilter, IBaseFilter>(this, riid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE Stop() override
    {
        state = State_Stopped;
        return allocator ? allocator->Decommit() : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Pause() override
    {
        state = State_Paused;
        return allocator ? allocator->Commit() : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME) override
    {
        state = State_Running;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetState(DWORD, FILTER_STATE* out) override
    {
        *out = state;
        return state == State_Paused ? VFW_S_CANT_CUE : S_OK; // it sends nothing by itself
    }
    HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock*) override { return S_OK; } // its frames have no times
    HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** out) override
    {
        *out = nullptr;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) override
    {
        *pins = new PinEnumerator(*this);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR, IPin**) override { return VFW_E_NOT_FOUND; }
    HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* out) override
    {
        std::copy_n(name, std::size(name), out->achName);
        out->pGraph = graph;
        if (graph)
            graph->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR newName) override
    {
        graph = newGraph; // not counted: the graph owns the filter
        std::fill(std::begin(name), std::end(name), L'\0');
        std::wstring(newName ? newName : L"").copy(name, std::size(name) - 1);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR*) override { return E_NOTIMPL; }

private:
    class OutputPin final : public IPin
    {
    public:
        explicit OutputPin(FrameSource& owner) : source(owner) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
        {
            return Answer<IUnknown, IPin>(this, riid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return source.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return source.Release(); }

        HRESULT STDMETHODCALLTYPE Connect(IPin* input, const AM_MEDIA_TYPE*) override
        {
            HRESULT result = input->ReceiveConnection(this, &source.type);
            if (FAILED(result))
                return result;
            // Both sides agree on who makes the buffers: here whoever the input pin names.
            result = input->QueryInterface(IID_PPV_ARGS(&source.receiver));
            if (SUCCEEDED(result))
                result = source.receiver->GetAllocator(&source.allocator);
            ALLOCATOR_PROPERTIES wanted = {1, static_cast<long>(source.type.lSampleSize), 1, 0}, granted = {};
            if (SUCCEEDED(result))
                result = source.allocator->SetProperties(&wanted, &granted);
            if (SUCCEEDED(result))
                result = source.receiver->NotifyAllocator(source.allocator.Get(), FALSE); // may be written to
            if (FAILED(result)) {
                input->Disconnect();
                Disconnect();
                return result;
            }
            peer = input;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) override { return E_UNEXPECTED; }
        HRESULT STDMETHODCALLTYPE Disconnect() override
        {
            const HRESULT result = peer ? S_OK : S_FALSE;
            peer.Reset();
            source.receiver.Reset();
            source.allocator.Reset();
            return result;
        }
        HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** out) override
        {
            peer.CopyTo(out);
            return peer ? S_OK : VFW_E_NOT_CONNECTED;
        }
        HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE* out) override
        {
            *out = {};
            if (!peer)
                return VFW_E_NOT_CONNECTED;
            void* const format = CoTaskMemAlloc(sizeof source.info); // the caller's from here on
            if (!format)
                return E_OUTOFMEMORY;
            std::memcpy(format, &source.info, sizeof source.info);
            *out = source.type;
            out->pbFormat = static_cast<BYTE*>(format);
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* out) override
        {
            *out = {&source, PINDIR_OUTPUT, L"Out"};
            source.AddRef();
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* out) override
        {
            *out = PINDIR_OUTPUT;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE QueryId(LPWSTR*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE QueryAccept(const AM_MEDIA_TYPE* offered) override
        {
            return offered->subtype == source.type.subtype ? S_OK : S_FALSE;
        }
        // The pins are connected with their type; nobody needs to look for one.
        HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes**) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin**, ULONG*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE EndOfStream() override { return E_UNEXPECTED; }
        HRESULT STDMETHODCALLTYPE BeginFlush() override { return E_UNEXPECTED; }
        HRESULT STDMETHODCALLTYPE EndFlush() override { return E_UNEXPECTED; }
        HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return E_UNEXPECTED; }

    private:
        FrameSource& source;
        ComPtr<IPin> peer;
    };

    class PinEnumerator final : public IEnumPins
    {
    public:
        explicit PinEnumerator(FrameSource& owner) : source(&owner) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
        {
            return Answer<IUnknown, IEnumPins>(this, riid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
        ULONG STDMETHODCALLTYPE Release() override
        {
            const ULONG left = --references;
            if (left == 0)
                delete this;
            return left;
        }
        HRESULT STDMETHODCALLTYPE Next(ULONG count, IPin** pins, ULONG* fetched) override
        {
            const ULONG given = count > 0 && !done ? 1 : 0;
            if (given) {
                done = true;
                *pins = source->Output();
                (*pins)->AddRef();
            }
            if (fetched)
                *fetched = given;
            return given == count ? S_OK : S_FALSE;
        }
        HRESULT STDMETHODCALLTYPE Skip(ULONG count) override
        {
            const bool enough = count <= (done ? 0u : 1u);
            done = done || count > 0;
            return enough ? S_OK : S_FALSE;
        }
        HRESULT STDMETHODCALLTYPE Reset() override
        {
            done = false;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE Clone(IEnumPins**) override { return E_NOTIMPL; }

    private:
        ComPtr<FrameSource> source;
        std::atomic<ULONG> references = 1;
        bool done = false;
    };

    VIDEOINFOHEADER info = {};
    AM_MEDIA_TYPE type = {};
    OutputPin pin{*this};
    ComPtr<IMemInputPin> receiver;
    ComPtr<IMemAllocator> allocator;
    IFilterGraph* graph = nullptr;
    WCHAR name[128] = {};
    std::atomic<FILTER_STATE> state = State_Stopped;
    std::atomic<ULONG> references = 0;
};

// What the window procedure needs to hand changes of the panel to the filter.
struct Editing
{
    IEffectFilter* effect;
    Parameters* parameters;
};

constexpr UINT panelChanged = WM_APP + 1;

LRESULT CALLBACK HostWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == panelChanged) {
        // The panel has written the change into the property set; the filter learns of it only now.
        const auto* editing = reinterpret_cast<Editing*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        editing->effect->SetPropertySet(editing->parameters);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message loop.
void OpenPanel(IEffectInfo* info, Editing& editing)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = HostWindow;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"Host";
    RegisterClassW(&windowClass);
    const HWND window = CreateWindowW(L"Host", L"Host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                      windowClass.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&editing));

    HWND panel = nullptr;
    Check(info->ShowSettingsDialog(0, window, panelChanged, editing.parameters, &panel), "ShowSettingsDialog");
    ShowWindow(panel, SW_SHOW); // it comes hidden, at the upper left of the window
    std::printf("Its panel is a child of the host's window: %s\n", GetParent(panel) == window ? "yes" : "no");

    DestroyWindow(window); // and the panel with it
}

void UseEffect(IClassFactory* factory)
{
    // What the effect is called in the user's language. From here on the whole library speaks German.
    ComPtr<IEffectInfo> info;
    Check(factory->QueryInterface(IID_PPV_ARGS(&info)), "IEffectInfo");
    ULONG length = 0; // with the terminator
    Check(info->GetEffectName(1031, nullptr, &length), "GetEffectName");
    std::vector<WCHAR> name(length);
    Check(info->GetEffectName(1031, name.data(), &length), "GetEffectName");
    std::printf("The effect is called %ls\n", name.data());

    // What it starts with.
    Parameters parameters;
    Check(info->SetDefaults(&parameters), "SetDefaults");
    GammaBlock block = {};
    int size = 0;
    Check(parameters.GetData(&block, &size), "GetData");
    std::printf("It starts with %d bytes: %d\n", size, static_cast<int>(block.gamma));

    // The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
    FrameSource source(4, 2);
    ComPtr<IBaseFilter> filter, renderer;
    Check(factory->CreateInstance(nullptr, IID_PPV_ARGS(&filter)), "CreateInstance");
    ComPtr<IGraphBuilder> graph;
    Check(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&graph)), "filter graph");
    constexpr CLSID nullRenderer = {0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    Check(CoCreateInstance(nullRenderer, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&renderer)), "null renderer");
    Check(graph->AddFilter(&source, L"Frames"), "AddFilter");
    Check(graph->AddFilter(filter.Get(), name.data()), "AddFilter");
    Check(graph->AddFilter(renderer.Get(), L"Nowhere"), "AddFilter");
    ComPtr<IPin> in, out, end;
    Check(filter->FindPin(L"In", &in), "FindPin");
    Check(filter->FindPin(L"Out", &out), "FindPin");
    Check(renderer->FindPin(L"In", &end), "FindPin");
    Check(graph->ConnectDirect(source.Output(), in.Get(), source.Type()), "ConnectDirect");
    Check(graph->ConnectDirect(out.Get(), end.Get(), source.Type()), "ConnectDirect");

    // Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
    ComPtr<IEffectFilter> effect;
    Check(filter.As(&effect), "IEffectFilter");
    block.gamma = 160;
    parameters.SetData(&block, sizeof block);
    Check(effect->SetPropertySet(&parameters), "SetPropertySet");

    ComPtr<IMediaControl> control;
    Check(graph.As(&control), "IMediaControl");
    Check(control->Run(), "Run");
    const std::vector<std::uint32_t> result = source.Send(std::vector<std::uint32_t>(4 * 2, 0x404040));
    std::printf("404040 becomes %06X\n", static_cast<unsigned>(result.front()));
    if (result.front() != 0x6B6B6B)
        throw std::runtime_error("that should have been 6B6B6B");
    Check(control->Stop(), "Stop");

    Editing editing = {effect.Get(), &parameters};
    OpenPanel(info.Get(), editing);

    // The graph lets go of its filters when it goes, so the host's reference is then the last.
    control.Reset();
    effect.Reset();
    end.Reset();
    out.Reset();
    in.Reset();
    graph.Reset();
    renderer.Reset();
    if (filter.Reset() != 0 || info.Reset() != 0)
        throw std::runtime_error("somebody still holds the filter or the catalogue object");
}

// Answers whether the library could be unloaded.
bool UseLibrary(const wchar_t* path)
{
    const HMODULE library = LoadLibraryW(path);
    if (!library)
        throw std::runtime_error("the library cannot be loaded: is it there, and as wide as this program?");
    const auto function = [library](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    };
    const auto getClassObject = reinterpret_cast<decltype(&DllGetClassObject)>(function("DllGetClassObject"));
    const auto canUnloadNow = reinterpret_cast<decltype(&DllCanUnloadNow)>(function("DllCanUnloadNow"));
    if (!getClassObject || !canUnloadNow)
        throw std::runtime_error("that is no library of effects");

    {
        ComPtr<IClassFactory> factory;
        Check(getClassObject(CLSID_GammaCorrection, IID_PPV_ARGS(&factory)), "DllGetClassObject");
        UseEffect(factory.Get());
    }

    // Every reference is released, so the library may go.
    const bool unused = canUnloadNow() == S_OK;
    std::printf("The library can be unloaded: %s\n", unused ? "yes" : "no");
    if (unused)
        FreeLibrary(library);
    return unused;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    if (FAILED(CoInitialize(nullptr)))
        return 1;
    int code = 0;
    try {
        code = UseLibrary(count > 1 ? arguments[1] : L"VixaVideoFX.dll") ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "host: %s\n", error.what());
        code = 1;
    }
    CoUninitialize();
    return code;
}
