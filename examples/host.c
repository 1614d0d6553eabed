// What host.cpp does, in C: loads the library, asks an effect what it is, lets it fill a property set with its defaults
// and show its settings panel, sends one frame through it, and takes everything down again.
//
//     host [PATH OF VixaVideoFX.dll]
//
// A program in C99, as wide as the library; that one's include folder is all it needs besides the platform's ole32,
// user32 and strmiids. An editing host has a source of its own instead of Source, and a renderer instead of the null
// renderer.
#define COBJMACROS
#include <vixavideofx/VixaVideoFX.h>

#include <dshow.h>

#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void Fail(const char* text)
{
    fprintf(stderr, "host: %s\n", text);
    exit(1);
}

static void Check(HRESULT result, const char* what)
{
    char text[100];
    if (FAILED(result)) {
        snprintf(text, sizeof text, "%s: 0x%08lX", what, (unsigned long)result);
        Fail(text);
    }
}

// The object that a face is part of.
#define OBJECT(face, type, member) ((type*)((char*)(face)-offsetof(type, member)))

// The host owns the parameters: a block of bytes that it stores with its project and never looks into. The library
// keeps no reference, so the object may stand on the stack.
typedef struct Parameters
{
    IDataPropertySet face;
    BYTE bytes[64];
    int size;
} Parameters;

static HRESULT STDMETHODCALLTYPE ParametersQuery(IDataPropertySet* This, REFIID riid, void** object)
{
    *object = IsEqualIID(riid, &IID_IUnknown) ? This : NULL;
    return *object ? S_OK : E_NOINTERFACE;
}
static ULONG STDMETHODCALLTYPE ParametersCount(IDataPropertySet* This)
{
    return 1;
}
static HRESULT STDMETHODCALLTYPE ParametersGet(IDataPropertySet* This, void* buffer, int* size)
{
    const Parameters* own = OBJECT(This, Parameters, face);
    if (own->size == 0)
        return E_FAIL;
    memcpy(buffer, own->bytes, (size_t)own->size);
    *size = own->size;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE ParametersSet(IDataPropertySet* This, const void* data, int size)
{
    Parameters* own = OBJECT(This, Parameters, face);
    if (size < 0 || size > (int)sizeof own->bytes)
        return E_INVALIDARG;
    memcpy(own->bytes, data, (size_t)size);
    own->size = size;
    return S_OK;
}
static const IDataPropertySetVtbl parametersTable = {ParametersQuery, ParametersCount, ParametersCount, ParametersGet,
                                                     ParametersSet};

// Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type. It
// may stand on the stack, since whoever is in the graph lets go of it when the graph goes.
typedef struct Source
{
    IBaseFilter filter;
    IPin pin;
    LONG references;
    VIDEOINFOHEADER info;
    AM_MEDIA_TYPE type;
    IPin* peer;
    IMemInputPin* receiver;
    IMemAllocator* allocator;
    IFilterGraph* graph; // not counted: the graph owns the filter
    WCHAR name[128];
    FILTER_STATE state;
} Source;

static void SourceLetGo(Source* own)
{
    if (own->allocator)
        IMemAllocator_Release(own->allocator);
    if (own->receiver)
        IMemInputPin_Release(own->receiver);
    if (own->peer)
        IPin_Release(own->peer);
    own->allocator = NULL;
    own->receiver = NULL;
    own->peer = NULL;
}

static HRESULT STDMETHODCALLTYPE PinQuery(IPin* This, REFIID riid, void** object)
{
    *object = IsEqualIID(riid, &IID_IUnknown) || IsEqualIID(riid, &IID_IPin) ? This : NULL;
    if (*object)
        IPin_AddRef(This);
    return *object ? S_OK : E_NOINTERFACE;
}
static ULONG STDMETHODCALLTYPE PinAddRef(IPin* This)
{
    return (ULONG)InterlockedIncrement(&OBJECT(This, Source, pin)->references);
}
static ULONG STDMETHODCALLTYPE PinRelease(IPin* This)
{
    return (ULONG)InterlockedDecrement(&OBJECT(This, Source, pin)->references);
}
static HRESULT STDMETHODCALLTYPE PinConnect(IPin* This, IPin* input, const AM_MEDIA_TYPE* type)
{
    Source* own = OBJECT(This, Source, pin);
    ALLOCATOR_PROPERTIES wanted = {1, 0, 1, 0}, granted;
    HRESULT result = IPin_ReceiveConnection(input, This, &own->type);
    if (FAILED(result))
        return result;
    // Both sides agree on who makes the buffers: here whoever the input pin names.
    wanted.cbBuffer = (long)own->type.lSampleSize;
    result = IPin_QueryInterface(input, &IID_IMemInputPin, (void**)&own->receiver);
    if (SUCCEEDED(result))
        result = IMemInputPin_GetAllocator(own->receiver, &own->allocator);
    if (SUCCEEDED(result))
        result = IMemAllocator_SetProperties(own->allocator, &wanted, &granted);
    if (SUCCEEDED(result))
        result = IMemInputPin_NotifyAllocator(own->receiver, own->allocator, FALSE); // may be written to
    if (FAILED(result)) {
        IPin_Disconnect(input);
        SourceLetGo(own);
        return result;
    }
    own->peer = input;
    IPin_AddRef(input);
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinReceiveConnection(IPin* This, IPin* pin, const AM_MEDIA_TYPE* type)
{
    return E_UNEXPECTED;
}
static HRESULT STDMETHODCALLTYPE PinDisconnect(IPin* This)
{
    Source* own = OBJECT(This, Source, pin);
    const HRESULT result = own->peer ? S_OK : S_FALSE;
    SourceLetGo(own);
    return result;
}
static HRESULT STDMETHODCALLTYPE PinConnectedTo(IPin* This, IPin** out)
{
    *out = OBJECT(This, Source, pin)->peer;
    if (!*out)
        return VFW_E_NOT_CONNECTED;
    IPin_AddRef(*out);
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinConnectionType(IPin* This, AM_MEDIA_TYPE* out)
{
    const Source* own = OBJECT(This, Source, pin);
    if (!own->peer)
        return VFW_E_NOT_CONNECTED;
    *out = own->type;
    out->pbFormat = CoTaskMemAlloc(sizeof own->info);
    if (!out->pbFormat)
        return E_OUTOFMEMORY;
    memcpy(out->pbFormat, &own->info, sizeof own->info);
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinInfo(IPin* This, PIN_INFO* out)
{
    out->pFilter = &OBJECT(This, Source, pin)->filter;
    out->dir = PINDIR_OUTPUT;
    memcpy(out->achName, L"Out", sizeof L"Out");
    IPin_AddRef(This); // counts for the filter
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinDirection(IPin* This, PIN_DIRECTION* out)
{
    *out = PINDIR_OUTPUT;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinId(IPin* This, LPWSTR* id)
{
    return E_NOTIMPL;
}
static HRESULT STDMETHODCALLTYPE PinAccept(IPin* This, const AM_MEDIA_TYPE* type)
{
    return IsEqualGUID(&type->subtype, &MEDIASUBTYPE_RGB32) ? S_OK : S_FALSE;
}
static HRESULT STDMETHODCALLTYPE PinTypes(IPin* This, IEnumMediaTypes** types)
{
    return E_NOTIMPL;
} // connected with its type only
static HRESULT STDMETHODCALLTYPE PinInternal(IPin* This, IPin** pins, ULONG* count)
{
    return E_NOTIMPL;
}
static HRESULT STDMETHODCALLTYPE PinNothing(IPin* This)
{
    return E_UNEXPECTED;
}
static HRESULT STDMETHODCALLTYPE PinSegment(IPin* This, REFERENCE_TIME start, REFERENCE_TIME stop, double rate)
{
    return E_UNEXPECTED;
}
static IPinVtbl pinTable = {PinQuery,      PinAddRef,      PinRelease,        PinConnect,  PinReceiveConnection,
                            PinDisconnect, PinConnectedTo, PinConnectionType, PinInfo,     PinDirection,
                            PinId,         PinAccept,      PinTypes,          PinInternal, PinNothing,
                            PinNothing,    PinNothing,     PinSegment};

// The list of the one pin.
typedef struct Pins
{
    IEnumPins face;
    LONG references;
    IPin* pin;
    BOOL done;
} Pins;

static HRESULT STDMETHODCALLTYPE PinsQuery(IEnumPins* This, REFIID riid, void** object)
{
    *object = IsEqualIID(riid, &IID_IUnknown) || IsEqualIID(riid, &IID_IEnumPins) ? This : NULL;
    if (*object)
        IEnumPins_AddRef(This);
    return *object ? S_OK : E_NOINTERFACE;
}
static ULONG STDMETHODCALLTYPE PinsAddRef(IEnumPins* This)
{
    return (ULONG)InterlockedIncrement(&OBJECT(This, Pins, face)->references);
}
static ULONG STDMETHODCALLTYPE PinsRelease(IEnumPins* This)
{
    Pins* own = OBJECT(This, Pins, face);
    const LONG left = InterlockedDecrement(&own->references);
    if (left == 0) {
        IPin_Release(own->pin);
        free(own);
    }
    return (ULONG)left;
}
static HRESULT STDMETHODCALLTYPE PinsNext(IEnumPins* This, ULONG count, IPin** pins, ULONG* fetched)
{
    Pins* own = OBJECT(This, Pins, face);
    const ULONG given = count > 0 && !own->done ? 1 : 0;
    if (given) {
        own->done = TRUE;
        *pins = own->pin;
        IPin_AddRef(own->pin);
    }
    if (fetched)
        *fetched = given;
    return given == count ? S_OK : S_FALSE;
}
static HRESULT STDMETHODCALLTYPE PinsSkip(IEnumPins* This, ULONG count)
{
    Pins* own = OBJECT(This, Pins, face);
    const BOOL enough = count <= (own->done ? 0u : 1u);
    own->done = own->done || count > 0;
    return enough ? S_OK : S_FALSE;
}
static HRESULT STDMETHODCALLTYPE PinsReset(IEnumPins* This)
{
    OBJECT(This, Pins, face)->done = FALSE;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE PinsClone(IEnumPins* This, IEnumPins** out)
{
    return E_NOTIMPL;
}
static IEnumPinsVtbl pinsTable = {PinsQuery, PinsAddRef, PinsRelease, PinsNext, PinsSkip, PinsReset, PinsClone};

static HRESULT STDMETHODCALLTYPE SourceQuery(IBaseFilter* This, REFIID riid, void** object)
{
    const BOOL known = IsEqualIID(riid, &IID_IUnknown) || IsEqualIID(riid, &IID_IPersist) ||
                       IsEqualIID(riid, &IID_IMediaFilter) || IsEqualIID(riid, &IID_IBaseFilter);
    *object = known ? This : NULL;
    if (known)
        IBaseFilter_AddRef(This);
    return known ? S_OK : E_NOINTERFACE;
}
static ULONG STDMETHODCALLTYPE SourceAddRef(IBaseFilter* This)
{
    return (ULONG)InterlockedIncrement(&OBJECT(This, Source, filter)->references);
}
static ULONG STDMETHODCALLTYPE SourceRelease(IBaseFilter* This)
{
    return (ULONG)InterlockedDecrement(&OBJECT(This, Source, filter)->references);
}
static HRESULT STDMETHODCALLTYPE SourceClass(IBaseFilter* This, CLSID* out)
{
    return E_NOTIMPL;
}
static HRESULT STDMETHODCALLTYPE SourceStop(IBaseFilter* This)
{
    Source* own = OBJECT(This, Source, filter);
    own->state = State_Stopped;
    return own->allocator ? IMemAllocator_Decommit(own->allocator) : S_OK;
}
static HRESULT STDMETHODCALLTYPE SourcePause(IBaseFilter* This)
{
    Source* own = OBJECT(This, Source, filter);
    own->state = State_Paused;
    return own->allocator ? IMemAllocator_Commit(own->allocator) : S_OK;
}
static HRESULT STDMETHODCALLTYPE SourceRun(IBaseFilter* This, REFERENCE_TIME start)
{
    OBJECT(This, Source, filter)->state = State_Running;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE SourceState(IBaseFilter* This, DWORD wait, FILTER_STATE* out)
{
    *out = OBJECT(This, Source, filter)->state;
    return *out == State_Paused ? VFW_S_CANT_CUE : S_OK; // it sends nothing by itself
}
static HRESULT STDMETHODCALLTYPE SourceSetClock(IBaseFilter* This, IReferenceClock* clock)
{
    return S_OK;
} // its frames have no times
static HRESULT STDMETHODCALLTYPE SourceGetClock(IBaseFilter* This, IReferenceClock** out)
{
    *out = NULL;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE SourcePins(IBaseFilter* This, IEnumPins** out)
{
    Pins* pins = calloc(1, sizeof *pins);
    *out = NULL;
    if (!pins)
        return E_OUTOFMEMORY;
    pins->face.lpVtbl = &pinsTable;
    pins->references = 1;
    pins->pin = &OBJECT(This, Source, filter)->pin;
    IPin_AddRef(pins->pin);
    *out = &pins->face;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE SourceFindPin(IBaseFilter* This, LPCWSTR id, IPin** out)
{
    *out = NULL;
    return VFW_E_NOT_FOUND;
}
static HRESULT STDMETHODCALLTYPE SourceInfo(IBaseFilter* This, FILTER_INFO* out)
{
    Source* own = OBJECT(This, Source, filter);
    memcpy(out->achName, own->name, sizeof own->name);
    out->pGraph = own->graph;
    if (own->graph)
        IFilterGraph_AddRef(own->graph);
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE SourceJoin(IBaseFilter* This, IFilterGraph* graph, LPCWSTR name)
{
    Source* own = OBJECT(This, Source, filter);
    own->graph = graph;
    memset(own->name, 0, sizeof own->name);
    if (name)
        wcsncpy(own->name, name, sizeof own->name / sizeof own->name[0] - 1);
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE SourceVendor(IBaseFilter* This, LPWSTR* out)
{
    return E_NOTIMPL;
}
static IBaseFilterVtbl sourceTable = {SourceQuery, SourceAddRef,  SourceRelease, SourceClass,    SourceStop,
                                      SourcePause, SourceRun,     SourceState,   SourceSetClock, SourceGetClock,
                                      SourcePins,  SourceFindPin, SourceInfo,    SourceJoin,     SourceVendor};

static void SourceInit(Source* own, LONG width, LONG height)
{
    memset(own, 0, sizeof *own);
    own->filter.lpVtbl = &sourceTable;
    own->pin.lpVtbl = &pinTable;
    own->info.bmiHeader.biSize = sizeof own->info.bmiHeader;
    own->info.bmiHeader.biWidth = width;
    own->info.bmiHeader.biHeight = height; // bottom-up
    own->info.bmiHeader.biPlanes = 1;
    own->info.bmiHeader.biBitCount = 32;
    own->info.bmiHeader.biSizeImage = (DWORD)(width * height * 4);
    own->type.majortype = MEDIATYPE_Video;
    own->type.subtype = MEDIASUBTYPE_RGB32;
    own->type.bFixedSizeSamples = TRUE;
    own->type.lSampleSize = own->info.bmiHeader.biSizeImage;
    own->type.formattype = FORMAT_VideoInfo;
    own->type.cbFormat = sizeof own->info;
    own->type.pbFormat = (BYTE*)&own->info;
}

// Sends a frame downstream, in a graph that runs, and takes back what it has become: an effect changes the frame in the
// buffer that brings it.
static void SourceSend(Source* own, UINT32* frame)
{
    const LONG size = (LONG)own->type.lSampleSize;
    IMediaSample* sample = NULL;
    BYTE* bytes = NULL;
    Check(IMemAllocator_GetBuffer(own->allocator, &sample, NULL, NULL, 0), "GetBuffer");
    Check(IMediaSample_GetPointer(sample, &bytes), "GetPointer");
    memcpy(bytes, frame, (size_t)size);
    Check(IMediaSample_SetActualDataLength(sample, size), "SetActualDataLength");
    Check(IMemInputPin_Receive(own->receiver, sample), "Receive");
    memcpy(frame, bytes, (size_t)size);
    IMediaSample_Release(sample);
}

// What the window procedure needs to hand changes of the panel to the filter.
typedef struct Editing
{
    IEffectFilter* effect;
    IUnknown* parameters;
} Editing;

enum
{
    PanelChanged = WM_APP + 1
};

static LRESULT CALLBACK HostWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == PanelChanged) {
        // The panel has written the change into the property set; the filter learns of it only now.
        Editing* editing = (Editing*)GetWindowLongPtrW(window, GWLP_USERDATA);
        editing->effect->lpVtbl->SetPropertySet(editing->effect, editing->parameters);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message loop.
static void OpenPanel(IEffectInfo* info, Editing* editing)
{
    WNDCLASSW windowClass = {0};
    HWND window, panel = NULL;
    windowClass.lpfnWndProc = HostWindow;
    windowClass.hInstance = GetModuleHandleW(NULL);
    windowClass.lpszClassName = L"Host";
    RegisterClassW(&windowClass);
    window =
        CreateWindowW(L"Host", L"Host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, NULL, NULL, windowClass.hInstance, NULL);
    SetWindowLongPtrW(window, GWLP_USERDATA, (LONG_PTR)editing);

    Check(info->lpVtbl->ShowSettingsDialog(info, 0, window, PanelChanged, editing->parameters, &panel),
          "ShowSettingsDialog");
    ShowWindow(panel, SW_SHOW); // it comes hidden, at the upper left of the window
    printf("Its panel is a child of the host's window: %s\n", GetParent(panel) == window ? "yes" : "no");

    DestroyWindow(window); // and the panel with it
}

static void UseEffect(IClassFactory* factory)
{
    IEffectInfo* info = NULL;
    WCHAR* name;
    ULONG length = 0; // with the terminator
    Parameters parameters = {{&parametersTable}, {0}, 0};
    IUnknown* set = (IUnknown*)&parameters.face;
    VixaGammaBlock block;
    int size = 0;
    static const CLSID nullRenderer = {0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    IGraphBuilder* graph = NULL;
    IMediaControl* control = NULL;
    IBaseFilter *filter = NULL, *renderer = NULL;
    IEffectFilter* effect = NULL;
    IPin *in = NULL, *out = NULL, *end = NULL;
    Source source;
    UINT32 frame[4 * 2];
    Editing editing;
    int i;

    // What the effect is called in the user's language. From here on the whole library speaks German.
    Check(IClassFactory_QueryInterface(factory, &IID_IEffectInfo, (void**)&info), "IEffectInfo");
    Check(info->lpVtbl->GetEffectName(info, 1031, NULL, &length), "GetEffectName");
    name = calloc(length, sizeof *name);
    Check(name ? info->lpVtbl->GetEffectName(info, 1031, name, &length) : E_OUTOFMEMORY, "GetEffectName");
    printf("The effect is called %ls\n", name);

    // What it starts with.
    Check(info->lpVtbl->SetDefaults(info, set), "SetDefaults");
    Check(parameters.face.lpVtbl->GetData(&parameters.face, &block, &size), "GetData");
    printf("It starts with %d bytes: %d\n", size, (int)block.gamma);

    // The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
    SourceInit(&source, 4, 2);
    Check(IClassFactory_CreateInstance(factory, NULL, &IID_IBaseFilter, (void**)&filter), "CreateInstance");
    Check(CoCreateInstance(&CLSID_FilterGraph, NULL, CLSCTX_INPROC_SERVER, &IID_IGraphBuilder, (void**)&graph),
          "filter graph");
    Check(CoCreateInstance(&nullRenderer, NULL, CLSCTX_INPROC_SERVER, &IID_IBaseFilter, (void**)&renderer),
          "null renderer");
    Check(IGraphBuilder_AddFilter(graph, &source.filter, L"Frames"), "AddFilter");
    Check(IGraphBuilder_AddFilter(graph, filter, name), "AddFilter");
    Check(IGraphBuilder_AddFilter(graph, renderer, L"Nowhere"), "AddFilter");
    Check(IBaseFilter_FindPin(filter, L"In", &in), "FindPin");
    Check(IBaseFilter_FindPin(filter, L"Out", &out), "FindPin");
    Check(IBaseFilter_FindPin(renderer, L"In", &end), "FindPin");
    Check(IGraphBuilder_ConnectDirect(graph, &source.pin, in, &source.type), "ConnectDirect");
    Check(IGraphBuilder_ConnectDirect(graph, out, end, &source.type), "ConnectDirect");

    // Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
    Check(IBaseFilter_QueryInterface(filter, &IID_IEffectFilter, (void**)&effect), "IEffectFilter");
    block.gamma = 160;
    parameters.face.lpVtbl->SetData(&parameters.face, &block, sizeof block);
    Check(effect->lpVtbl->SetPropertySet(effect, set), "SetPropertySet");

    Check(IGraphBuilder_QueryInterface(graph, &IID_IMediaControl, (void**)&control), "IMediaControl");
    Check(IMediaControl_Run(control), "Run");
    for (i = 0; i < 4 * 2; ++i)
        frame[i] = 0x404040;
    SourceSend(&source, frame);
    printf("404040 becomes %06X\n", frame[0]);
    if (frame[0] != 0x6B6B6B)
        Fail("that should have been 6B6B6B");
    Check(IMediaControl_Stop(control), "Stop");

    editing.effect = effect;
    editing.parameters = set;
    OpenPanel(info, &editing);

    // The graph lets go of its filters when it goes, so the host's reference is then the last.
    IMediaControl_Release(control);
    effect->lpVtbl->Release(effect);
    IPin_Release(end);
    IPin_Release(out);
    IPin_Release(in);
    IGraphBuilder_Release(graph);
    IBaseFilter_Release(renderer);
    free(name);
    if (IBaseFilter_Release(filter) != 0 || info->lpVtbl->Release(info) != 0)
        Fail("somebody still holds the filter or the catalogue object");
}

typedef HRESULT(STDMETHODCALLTYPE* GetClassObject)(REFCLSID, REFIID, void**);
typedef HRESULT(STDMETHODCALLTYPE* CanUnloadNow)(void);
typedef void (*AnyFunction)(void);

int wmain(int count, wchar_t** arguments)
{
    GetClassObject getClassObject;
    CanUnloadNow canUnloadNow;
    IClassFactory* factory = NULL;
    HMODULE library;
    BOOL unused;

    Check(CoInitialize(NULL), "CoInitialize");
    library = LoadLibraryW(count > 1 ? arguments[1] : L"VixaVideoFX.dll");
    if (!library)
        Fail("the library cannot be loaded: is it there, and as wide as this program?");
    getClassObject = (GetClassObject)(AnyFunction)GetProcAddress(library, "DllGetClassObject");
    canUnloadNow = (CanUnloadNow)(AnyFunction)GetProcAddress(library, "DllCanUnloadNow");
    if (!getClassObject || !canUnloadNow)
        Fail("that is no library of effects");

    Check(getClassObject(&CLSID_VixaGammaCorrection, &IID_IClassFactory, (void**)&factory), "DllGetClassObject");
    UseEffect(factory);
    IClassFactory_Release(factory);

    // Every reference is released, so the library may go.
    unused = canUnloadNow() == S_OK;
    printf("The library can be unloaded: %s\n", unused ? "yes" : "no");
    if (unused)
        FreeLibrary(library);
    CoUninitialize();
    return unused ? 0 : 1;
}
