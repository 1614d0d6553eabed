// What may be wrong with filters: their pins, their connections, their frames and what they believe.
#include "effects/kernels/Step.h"
#include "framework/DirectShow.h"
#include "tests/validator/Hooks.h"

#include <vixavideofx/ClassIds.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <variant>

using vixa::kernels::PictureConvolution;
using vixa::kernels::Step;

// The linker sends everybody who calls the library's RunStep here.
void RealRunStep(const Step& step) noexcept __asm__(SYMBOL("__real__ZN4vixa7kernels7RunStepERKNS0_4StepE"));
void WrappedRunStep(const Step& step) noexcept __asm__(SYMBOL("__wrap__ZN4vixa7kernels7RunStepERKNS0_4StepE"));

namespace broken {

namespace {

void (*damage)(const Step& step) = nullptr;

using namespace vixavideofx;

constexpr auto receive = &IMemInputPin::Receive;
constexpr auto notify = &IMemInputPin::NotifyAllocator;
constexpr auto take = &IEffectFilter::SetPropertySet;
constexpr auto accept = &IPin::ReceiveConnection;

// A plant: the body is called with each step that was done.
template <typename Body>
constexpr auto AfterSteps(Body)
{
    return [](Objects&) { damage = [](const Step& step) { Body{}(step); }; };
}

// A plant: one byte of what a step makes is one higher. Point effects go by their place among the parameters,
// convolutions by their kind.
enum Made
{
    Gamma,
    Multiply,
    Invert,
    Filter,
    Add,
    Convolution
};
template <Made effect, int kind = 0>
constexpr auto wrong = [](Objects&) {
    damage = [](const Step& step) {
        const auto* const convolution = std::get_if<PictureConvolution>(&step.parameters);
        if (step.parameters.index() == effect && (!convolution || convolution->parameters.kind == kind))
            ++step.frame[convolution ? static_cast<std::size_t>(convolution->width) * 4 + 4 : 0];
    };
};

BYTE* BytesOf(IMediaSample* sample)
{
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    return bytes;
}

// The picture that an input pin was connected for.
BITMAPINFOHEADER PictureOf(IUnknown* pin)
{
    ComPtr<IPin> face;
    AM_MEDIA_TYPE type = {};
    BITMAPINFOHEADER picture = {};
    if (SUCCEEDED(pin->QueryInterface(IID_PPV_ARGS(&face))) && SUCCEEDED(face->ConnectionMediaType(&type))) {
        picture = reinterpret_cast<const VIDEOINFOHEADER*>(type.pbFormat)->bmiHeader;
        CoTaskMemFree(type.pbFormat);
    }
    return picture;
}

ComPtr<IPin> OtherPin(IUnknown* pin)
{
    ComPtr<IPin> face, other;
    PIN_INFO info = {};
    if (SUCCEEDED(pin->QueryInterface(IID_PPV_ARGS(&face))) && SUCCEEDED(face->QueryPinInfo(&info))) {
        info.pFilter->FindPin(L"Out", &other);
        info.pFilter->Release();
    }
    return other;
}

std::int32_t FirstValue(IUnknown* set, HRESULT* result = nullptr)
{
    static std::int32_t block[1 << 15];
    block[0] = 0;
    int size = 0;
    const HRESULT got = set ? static_cast<IDataPropertySet*>(set)->GetData(block, &size) : E_POINTER;
    if (result)
        *result = got;
    return block[0];
}

void Crash()
{
    static volatile int* nowhere = nullptr;
    *nowhere = 0; // cppcheck-suppress nullPointer // the fault
}

std::atomic<int> reading = 0; // calls of SetPropertySet under way

constexpr Fault filterFaults[] = {
    {"filters/pins", On<IPin, &IPin::QueryPinInfo>([](auto real, PIN_INFO* info) -> HRESULT {
         const HRESULT result = real(info);
         if (SUCCEEDED(result))
             CharUpperW(info->achName);
         return result;
     })},
    {"filters/find-pins", On<IBaseFilter, &IBaseFilter::FindPin>([](auto real, const WCHAR* id, IPin** pin) -> HRESULT {
         return real(lstrcmpW(id, L"Input") == 0 ? L"In" : id, pin);
     })},
    {"filters/class-ids", On<IBaseFilter, &IBaseFilter::GetClassID>([](auto real, CLSID* id) -> HRESULT {
         const HRESULT result = real(id);
         if (*id == CLSID_AddPixel)
             *id = CLSID_Emboss;
         return result;
     })},
    {"filters/types-accepted", On<IPin, &IPin::QueryAccept>([](auto real, const AM_MEDIA_TYPE* type) -> HRESULT {
         return type->formattype == FORMAT_VideoInfo ? real(type) : S_FALSE;
     })},
    {"filters/types-refused", On<IPin, accept>([](auto real, IPin* from, const AM_MEDIA_TYPE* type) -> HRESULT {
         AM_MEDIA_TYPE taken = *type;
         taken.subtype = MEDIASUBTYPE_RGB32;
         return real(from, &taken);
     })},
    {"filters/short-formats", On<IPin, accept>([](auto real, IPin* from, const AM_MEDIA_TYPE* type) -> HRESULT {
         return type->pbFormat ? real(from, type) : E_POINTER;
     })},
    {"filters/outside-graph", On<IPin, accept>(answers<VFW_E_NOT_IN_GRAPH, E_UNEXPECTED>)},
    {"filters/output-type", On<IPin, &IPin::ConnectionMediaType>([](auto real, AM_MEDIA_TYPE* type) -> HRESULT {
         const HRESULT result = real(type);
         if (SUCCEEDED(result))
             ++type->pbFormat[0];
         return result;
     })},
    {"filters/unconnected", On<IPin, &IPin::ConnectedTo>(answers<VFW_E_NOT_CONNECTED, E_FAIL>)},
    {"filters/states",
     On<IBaseFilter, &IBaseFilter::GetState>([](auto real, DWORD wait, FILTER_STATE* state) -> HRESULT {
         const HRESULT result = real(wait, state);
         *state = *state == State_Stopped ? State_Paused : *state;
         return result;
     })},
    {"filters/durations", On<IEffectFilter, &IEffectFilter::SetDuration>([](auto real, REFERENCE_TIME time) -> HRESULT {
         return time < 0 ? E_INVALIDARG : real(time);
     })},
    {"filters/reconnects", On<IPin, accept>([](auto real, IPin* from, const AM_MEDIA_TYPE* type) -> HRESULT {
         static int connections = 0;
         return ++connections > 1 ? VFW_E_ALREADY_CONNECTED : real(from, type);
     })},

    {"connections/sinks-allocator",
     On<IMemInputPin, &IMemInputPin::GetAllocator>([](auto, IMemAllocator** allocator) -> HRESULT {
         return CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, IID_IMemAllocator,
                                 reinterpret_cast<void**>(allocator));
     })},
    {"connections/sources-allocator",
     On<IMemInputPin, notify>([](auto real, IMemAllocator* allocator, BOOL) { return real(allocator, TRUE); })},
    {"connections/another-sink",
     On<IMemInputPin, &IMemInputPin::GetAllocator>([](auto real, IMemAllocator** allocator) -> HRESULT {
         static ComPtr<IMemAllocator> first; // kept when its sink has gone
         if (!first)
             real(&first);
         return first.CopyTo(allocator);
     })},
    {"connections/read-only-allocator",
     On<IMemInputPin, notify>([](auto real, IMemAllocator* allocator, BOOL) { return real(allocator, FALSE); })},
    {"connections/protected-memory", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         BYTE* const bytes = BytesOf(sample);
         const BYTE before = bytes[0]; // changed, and put back
         bytes[0] = 0;
         const HRESULT result = real(sample);
         bytes[0] = before;
         return result;
     })},
    {"connections/both-insist", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         static int frames = 0; // as many as there are buffers, none of which comes back
         return ++frames > 4 ? VFW_E_TIMEOUT : real(sample);
     })},
    {"connections/input-again", On<IPin, accept>([](auto real, IPin* from, const AM_MEDIA_TYPE* type) -> HRESULT {
         const ComPtr<IPin> output = OtherPin(real.Object());
         const LONG width = output ? PictureOf(output.Get()).biWidth : 0; // 0: not connected
         const auto* const offered = reinterpret_cast<const VIDEOINFOHEADER*>(type->pbFormat);
         return width != 0 && width != offered->bmiHeader.biWidth ? VFW_E_TYPE_NOT_ACCEPTED : real(from, type);
     })},
    {"connections/while-running", On<IMemInputPin, notify>(answers<VFW_E_NOT_STOPPED, S_OK>)},
    {"connections/rings", On<IPin, accept>(answers<VFW_E_CIRCULAR_GRAPH, VFW_E_CANNOT_CONNECT>)},
    {"connections/questions", On<IPin, &IPin::QueryAccept>([](auto real, const AM_MEDIA_TYPE* type) -> HRESULT {
         ComPtr<IPin> peer;
         const ComPtr<IPin> output = OtherPin(real.Object());
         if (output && SUCCEEDED(output->ConnectedTo(&peer)))
             peer->QueryAccept(type);
         return real(type);
     })},

    {"streaming/gamma-correction", wrong<Gamma>},
    {"streaming/multiply-pixel", wrong<Multiply>},
    {"streaming/invert-color", wrong<Invert>},
    {"streaming/filter-color", wrong<Filter>},
    {"streaming/add-pixel", wrong<Add>},
    {"streaming/detect-edges", wrong<Convolution, 1>},
    {"streaming/emboss", wrong<Convolution, 2>},
    {"streaming/enhance-details", wrong<Convolution, 3>},
    {"streaming/enhance-edges", wrong<Convolution, 4>},
    {"streaming/enhance-focus", wrong<Convolution, 5>},
    {"streaming/light-edges", wrong<Convolution, 6>},
    {"streaming/shift-edges", wrong<Convolution, 10>},
    {"streaming/soften-filter", wrong<Convolution, 8>},
    {"streaming/whole-frames", AfterSteps([](const Step& step) {
         if (step.frame.size() > 64 * 16 * 4)
             ++step.frame[step.frame.size() / 2]; // in large frames only
     })},
    {"streaming/borders", AfterSteps([](const Step& step) { step.frame[4] = 1; })},
    {"streaming/in-place",
     On<IMemInputPin, notify>([](auto real, IMemAllocator* allocator, BOOL) { return real(allocator, TRUE); })},
    {"streaming/one-copy", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         const HRESULT result = real(sample);
         ++BytesOf(sample)[0];
         return result;
     })},
    {"streaming/sample-untouched", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         REFERENCE_TIME start = 0, end = 1;
         sample->SetTime(&start, &end);
         return real(sample);
     })},
    {"streaming/end-of-stream", On<IPin, &IPin::EndOfStream>([](auto real) -> HRESULT {
         real();
         return real();
     })},
    {"streaming/flush", On<IPin, &IPin::EndFlush>([](auto) -> HRESULT { return S_OK; })},
    {"streaming/segments",
     On<IPin, &IPin::NewSegment>([](auto real, REFERENCE_TIME from, REFERENCE_TIME to, double rate) -> HRESULT {
         return real(0, to - from, rate);
     })},
    {"streaming/next-frame", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         static int sets = 0;
         return ++sets > 1 ? S_OK : real(set);
     })},
    {"streaming/two-filters", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         static void* before = nullptr; // whom it reaches as well
         const HRESULT result = real(set);
         if (before && before != real.self)
             Real<HRESULT, IUnknown*>{before, real.function}(set);
         before = real.self;
         return result;
     })},

    {"bad-input/null-set", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         set->AddRef();
         set->Release();
         return real(set);
     })},
    {"bad-input/failing-set", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         for (HRESULT got = E_FAIL; FAILED(got); Sleep(1))
             FirstValue(set, &got);
         return real(set);
     })},
    {"bad-input/no-block", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         ++BytesOf(sample)[0];
         return real(sample);
     })},
    {"bad-input/partial-reads", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         HRESULT got = S_OK;
         FirstValue(set, &got);
         return SUCCEEDED(got) ? real(set) : S_OK;
     })},
    {"bad-input/reads-in-order", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         const HRESULT result = reading++ > 0 ? S_OK : real(set); // the inner one is undone
         --reading;
         return result;
     })},
    {"bad-input/lets-go-in-read", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         real.Object()->AddRef(); // and nobody takes it away again
         return real(set);
     })},
    {"bad-input/long-set", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         static void* const page = VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
         int size = 0;
         static_cast<IDataPropertySet*>(set)->GetData(page, &size); // into the room of a block
         return real(set);
     })},
    {"bad-input/extreme-values", On<IEffectFilter, take>([](auto real, IUnknown* set) -> HRESULT {
         if (FirstValue(set) == INT_MIN)
             Crash();
         return real(set);
     })},
    {"bad-input/guard-behind", AfterSteps([](const Step& step) { step.frame.data()[step.frame.size()] = 0; })},
    {"bad-input/guard-before", AfterSteps([](const Step& step) { *(step.frame.data() - 1) = 0; })},
    {"bad-input/short-samples", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         const BITMAPINFOHEADER picture = PictureOf(real.Object());
         BytesOf(sample)[picture.biWidth * picture.biHeight * 4 - 1] = 0; // believes the type
         return real(sample);
     })},
    {"bad-input/lying-lengths", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         const long length = sample->GetActualDataLength(); // and believes it
         if (length > 0)
             BytesOf(sample)[length - 1] = 0;
         return real(sample);
     })},
    {"bad-input/huge-frames", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         const BITMAPINFOHEADER picture = PictureOf(real.Object());
         if (picture.biWidth >= 65536)
             BytesOf(sample)[65536] = 0;
         return real(sample);
     })},
    {"bad-input/no-pixels", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         if (PictureOf(real.Object()).biHeight == 0)
             BytesOf(sample)[0] = 0;
         return real(sample);
     })},
    {"bad-input/unsavable-rows", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         return PictureOf(real.Object()).biWidth > 1 << 28 ? E_OUTOFMEMORY : real(sample);
     })},
    {"bad-input/unknown-size", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         return sample->GetSize() > 0 ? real(sample) : S_OK;
     })},
    {"bad-input/no-buffer", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         return BytesOf(sample) ? real(sample) : E_POINTER;
     })},
    {"bad-input/null-sample", On<IMemInputPin, receive>(answers<E_POINTER, E_INVALIDARG>)},
    {"bad-input/trailing-bytes", AfterSteps([](const Step& step) { step.frame.back() = 0; })},
    {"bad-input/null-queries", On<IBaseFilter, query>(answers<E_POINTER, E_INVALIDARG>)},
    {"bad-input/null-pins", On<IPin, &IPin::QueryDirection>(answers<E_POINTER, E_INVALIDARG>)},

    {"unloading/after-streaming", On<IMemInputPin, receive>([](auto real, IMediaSample* sample) -> HRESULT {
         real.Object()->AddRef();
         return real(sample);
     })},
};

} // namespace

std::span<const Fault> FilterFaults()
{
    return filterFaults;
}

} // namespace broken

void WrappedRunStep(const Step& step) noexcept
{
    RealRunStep(step);
    if (broken::damage)
        broken::damage(step);
}
