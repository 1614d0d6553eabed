// Group "bad-input": property sets, samples and arguments that are wrong on purpose.
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/PixelModel.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;
using Frame = std::vector<std::uint8_t>;

constexpr LONG width = 8, height = 6;
constexpr std::size_t frameBytes = std::size_t{width} * height * 4;

Frame Ramp()
{
    Frame frame(frameBytes);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<std::uint8_t>(i * 37);
    return frame;
}

void NullSet(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        const auto parameters = Parameters(filter.Get());
        parameters->SetPropertySet(&set);
        RequireResult(parameters->SetPropertySet(nullptr), S_OK, std::string(effect.name) + ": SetPropertySet(null)");
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
        Require(graph.Through(Ramp()) ==
                    fixtures::ExpectedFrame(*effect.classId, effect.working, Ramp(), width, height),
                std::string(effect.name) + ": SetPropertySet(null) changed the parameters");
    }
}

void FailingSet(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set;
        set.answer = [](void*, int*) { return E_FAIL; };
        RequireResult(Parameters(filter.Get())->SetPropertySet(&set), S_OK,
                      std::string(effect.name) + ": SetPropertySet with a set that can't be read");
        Require(set.reads <= 2, std::string(effect.name) + ": the failing set was read over and over");
    }
}

// What a frame of equal bytes becomes after an honest block, if there is one, and then a set that answers like this.
using SetAnswer = std::function<HRESULT(IEffectFilter& filter, void* buffer, int* size)>;
Frame AfterReads(Subject& library, const GUID& effect, const std::vector<std::int32_t>& honest, const SetAnswer& answer,
                 std::uint8_t value = 100)
{
    const auto filter = library.Filter(effect);
    const auto parameters = Parameters(filter.Get());
    fixtures::RecordedSet first(honest), second;
    second.answer = [&](void* buffer, int* size) { return answer(*parameters.Get(), buffer, size); };
    for (fixtures::RecordedSet* const set : {&first, &second})
        RequireResult(parameters->SetPropertySet(set), S_OK, "SetPropertySet, whatever GetData answers");
    fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(3, 3));
    return graph.Through(Frame(36, value));
}

void RequireBytes(const Frame& frame, std::size_t at, const Frame& wanted, const std::string& what)
{
    for (std::size_t i = 0; i < wanted.size(); ++i)
        RequireNumber(frame[at + i], wanted[i], what + ": byte " + std::to_string(at + i));
}

// Writes one value, says that it gave so many bytes, and answers that.
SetAnswer Gives(std::int32_t value, int bytes, HRESULT result)
{
    return [=](IEffectFilter&, void* buffer, int* size) {
        std::memcpy(buffer, &value, sizeof value);
        if (bytes > 0)
            *size = bytes;
        return result;
    };
}

void PartialReads(Subject& library)
{
    const SetAnswer fails = [](IEffectFilter&, void*, int*) { return E_FAIL; };
    RequireBytes(AfterReads(library, CLSID_AddPixel, {10, 20, 30, 0}, fails), 0, {130, 120, 110, 100},
                 "a failed read keeps what was there");
    RequireBytes(AfterReads(library, CLSID_AddPixel, {10, 20, 30, 0}, Gives(50, 0, E_FAIL)), 0, {130, 120, 150, 100},
                 "what a failing read wrote has landed");
    RequireBytes(AfterReads(library, CLSID_FilterColor, {-40, 0}, Gives(60, 0, S_OK)), 0, {40},
                 "\"Filter color\" keeps the sign when a read gives nothing");
    RequireBytes(AfterReads(library, CLSID_FilterColor, {-40, 0}, Gives(60, 1, S_OK)), 0, {160},
                 "\"Filter color\" takes the sign from a read that gives a byte");
    RequireBytes(AfterReads(library, CLSID_SoftenFilter, {8}, fails, 1), 16, {99},
                 "a convolution whose kind can't be read keeps its kernel and doesn't divide");
    RequireBytes(AfterReads(library, CLSID_SoftenFilter, {8}, Gives(11, 0, S_OK), 2), 16, {198},
                 "a convolution whose kind is none keeps its kernel and doesn't divide");
    RequireBytes(AfterReads(library, CLSID_Emboss, {2}, fails), 16, {0}, "a kind that can't be read has no offset");
}

// A read that fails or gives less while another one completes must not bring back what it found at its start. Here the
// other one runs inside GetData; on another thread it would be the same.
void ReadsInOrder(Subject& library)
{
    const auto require = [&](const GUID& effect, const std::vector<std::int32_t>& meanwhile, const SetAnswer& answer,
                             const Frame& wanted) {
        HRESULT between = E_FAIL;
        const SetAnswer slow = [&](IEffectFilter& filter, void* buffer, int* size) {
            fixtures::RecordedSet set(meanwhile);
            between = filter.SetPropertySet(&set);
            return answer(filter, buffer, size);
        };
        const Frame frame = AfterReads(library, effect, {}, slow);
        RequireResult(between, S_OK, "SetPropertySet inside GetData");
        RequireBytes(frame, 0, wanted, std::string(PromiseOf(effect).name) + " after a slow read");
    };
    const SetAnswer fails = [](IEffectFilter&, void*, int*) { return E_FAIL; };
    require(CLSID_AddPixel, {10, 20, 30, 0}, fails, {130, 120, 110});
    require(CLSID_AddPixel, {10, 20, 30, 0}, Gives(50, 4, S_OK), {130, 120, 150});
    require(CLSID_FilterColor, {-40, 0}, fails, {60, 100, 100});
    require(CLSID_FilterColor, {-40, 0}, Gives(50, 4, S_OK), {150, 100, 100});
    require(CLSID_GammaCorrection, {200}, fails, {160, 160, 160});
}

void LetsGoInRead(Subject& library)
{
    for (const Promise& effect : Promises()) {
        auto parameters = Parameters(library.Filter(*effect.classId).Get());
        fixtures::RecordedSet set;
        bool stays = false;
        set.answer = [&](void*, int*) {
            parameters.Reset();
            stays = library.CanUnload() == S_FALSE;
            return S_OK;
        };
        RequireResult(parameters.Get()->SetPropertySet(&set), S_OK, "SetPropertySet");
        Require(stays, std::string(effect.name) + ": DllCanUnloadNow lets the library go under its own call");
        RequireResult(library.CanUnload(), S_OK, std::string(effect.name) + ": DllCanUnloadNow afterwards");
    }
}

// A set that holds much more than the effect asks for, and says so, or lies about it.
void LongSet(Subject& library)
{
    for (const Promise& effect : Promises())
        for (const int claimed : {1 << 16, INT_MAX, INT_MIN, -1, 1}) {
            const auto filter = library.Filter(*effect.classId);
            fixtures::RecordedSet set;
            set.answer = [&](void* buffer, int* size) {
                std::memset(buffer, 0xEE, 1 << 16);
                std::memcpy(buffer, effect.working.data(), effect.working.size() * 4);
                *size = claimed;
                return S_OK;
            };
            // A set that says that it gave nothing leaves the sign of "Filter color" open; the others don't look.
            RequireResult(Parameters(filter.Get())->SetPropertySet(&set), S_OK, "SetPropertySet with a long set");
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
            Require(graph.Through(Ramp()) ==
                        fixtures::ExpectedFrame(*effect.classId, effect.working, Ramp(), width, height),
                    std::string(effect.name) + ": a long set spoilt the parameters");
        }
}

void ExtremeValues(Subject& library)
{
    for (const Promise& effect : Promises())
        for (const std::int32_t value : {INT_MIN, INT_MIN + 1, -256, -1, 0, 3, 11, 256, 1000, INT_MAX}) {
            const auto filter = library.Filter(*effect.classId);
            fixtures::RecordedSet set(std::vector<std::int32_t>(effect.working.size(), value));
            Parameters(filter.Get())->SetPropertySet(&set);
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
            graph.Through(Ramp()); // nothing outside the frame, no crash
        }
}

void Guarded(Subject& library, fixtures::GuardedMemory::Guard guard)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        for (const auto& [columns, rows] : {std::pair{1L, 1L}, {3L, 3L}, {5L, 4L}, {33L, 7L}, {64L, 8L}}) {
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(columns, rows));
            const fixtures::GuardedMemory memory(static_cast<std::size_t>(columns * rows) * 4, guard);
            std::fill(memory.Bytes().begin(), memory.Bytes().end(), std::uint8_t{123});
            RequireResult(graph.Send(memory.Bytes()), S_OK, std::string(effect.name) + ": Receive");
        }
    }
}

void GuardBehind(Subject& library)
{
    Guarded(library, fixtures::GuardedMemory::Guard::Behind);
}

void GuardBefore(Subject& library)
{
    Guarded(library, fixtures::GuardedMemory::Guard::Before);
}

// Samples that hold less than the connection's frame.
void ShortSamples(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(64, 64));
        for (const std::size_t bytes : {0u, 1u, 3u, 4u, 12u, 255u, 4096u, 64u * 64u * 4u - 1u}) {
            const fixtures::GuardedMemory memory(bytes, fixtures::GuardedMemory::Guard::Behind);
            std::fill(memory.Bytes().begin(), memory.Bytes().end(), std::uint8_t{123});
            RequireResult(graph.Send(memory.Bytes()), S_OK, std::string(effect.name) + ": Receive of a short sample");
        }
    }
}

void LyingLengths(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
        for (const long length : {LONG_MAX, long{frameBytes} + 8, -1L, LONG_MIN, 0L}) {
            const fixtures::GuardedMemory memory(frameBytes, fixtures::GuardedMemory::Guard::Behind);
            std::fill(memory.Bytes().begin(), memory.Bytes().end(), std::uint8_t{123});
            fixtures::HandSample sample(memory.Bytes());
            sample.length = length;
            RequireResult(graph.Send(&sample), S_OK, std::string(effect.name) + ": Receive of a lying sample");
        }
    }
}

void HugeFrames(Subject& library)
{
    for (const Promise& effect : Promises())
        for (const auto& [columns, rows] :
             {std::pair{LONG_MAX, LONG_MAX}, {LONG_MIN, LONG_MIN}, {65536L, 65536L}, {0L, 100L}, {-5L, 5L}}) {
            const auto filter = library.Filter(*effect.classId);
            fixtures::RecordedSet set(effect.working);
            Parameters(filter.Get())->SetPropertySet(&set);
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(columns, rows));
            const fixtures::GuardedMemory memory(256, fixtures::GuardedMemory::Guard::Behind);
            RequireResult(graph.Send(memory.Bytes()), S_OK,
                          std::string(effect.name) + ": Receive with an absurd frame size");
        }
}

// Before the first block, and after one that is none, colours stay; "Multiply pixel" clears the fourth byte at once.
void NoValidBlock(Subject& library)
{
    for (const Promise& effect : Promises()) {
        Frame wanted = Ramp();
        for (std::size_t i = 3; *effect.classId == CLSID_MultiplyPixel && i < wanted.size(); i += 4)
            wanted[i] = 0;
        fixtures::PushGraph graph(library.Filter(*effect.classId).Get(), fixtures::VideoType(width, height));
        Require(graph.Through(Ramp()) == wanted, std::string(effect.name) + ": a frame before any block was changed");
    }
    const auto filter = library.Filter(CLSID_SoftenFilter);
    fixtures::RecordedSet none{11};
    Parameters(filter.Get())->SetPropertySet(&none);
    fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
    Require(graph.Through(Ramp()) == Ramp(), "a convolution of a kind that is none changed a frame");
}

void NoPixels(Subject& library)
{
    const auto filter = library.Filter(CLSID_Emboss);
    fixtures::RecordedSet set{2};
    Parameters(filter.Get())->SetPropertySet(&set);
    for (const auto& [columns, rows] : {std::pair{5L, 0L}, {LONG_MAX, 0L}, {-2L, 2L}}) {
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(columns, rows));
        Require(graph.Through(Frame(16, 90)) == Frame(16, 90), "a frame without rows or columns was changed");
    }
}

// A type and a sample that claim a frame whose saved rows no memory could hold.
void UnsavableRows(Subject& library)
{
    // A sample has at most 2 GB, and a row of that can be saved.
    if constexpr (sizeof(void*) == 8)
        Skip("in 64 bit there is memory for the widest frame");
    for (const Promise& effect : Promises()) {
        if (effect.group == 3)
            continue;
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(0x10000001, 1));
        graph.Seen().keepsContent = false;
        const fixtures::GuardedMemory memory(256, fixtures::GuardedMemory::Guard::Behind);
        std::fill(memory.Bytes().begin(), memory.Bytes().end(), std::uint8_t{100});
        fixtures::HandSample sample(memory.Bytes());
        sample.size = LONG_MAX;
        RequireResult(graph.Send(&sample), S_OK, std::string(effect.name) + ": Receive");
        RequireNumber(graph.Seen().samples, 1, std::string(effect.name) + ": samples delivered");
        RequireBytes({memory.Bytes().begin(), memory.Bytes().end()}, 0, Frame(256, 100), effect.name);
    }
}

// Samples of other makers that don't tell how large their buffer is.
void UnknownSize(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
        graph.Seen().keepsContent = false;
        for (const long size : {0L, -1L}) {
            Frame frame = Ramp();
            fixtures::HandSample sample(frame);
            sample.size = size;
            RequireResult(graph.Send(&sample), S_OK, std::string(effect.name) + ": Receive");
            Require(frame == fixtures::ExpectedFrame(*effect.classId, effect.working, Ramp(), width, height),
                    std::string(effect.name) + ": a frame with GetSize " + std::to_string(size) + " comes out wrong");
        }
    }
}

void NoBuffer(Subject& library)
{
    const auto send = [](IBaseFilter* filter) {
        fixtures::PushGraph graph(filter, fixtures::VideoType(width, height));
        fixtures::HandSample failing;
        failing.size = failing.length = 64;
        failing.pointerResult = E_UNEXPECTED;
        return graph.Send(&failing);
    };
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        const std::string call = std::string(effect.name) + ": Receive of a sample without a buffer";
        RequireResult(send(filter.Get()), S_OK, call + ", without parameters");
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        // "Gamma correction" alone gives a frame up; the others pass it on.
        RequireResult(send(filter.Get()), *effect.classId == CLSID_GammaCorrection ? E_FAIL : S_OK, call);
    }
}

void NullSample(Subject& library)
{
    const auto filter = library.Filter(CLSID_AddPixel);
    fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
    RequireResult(graph.Send(static_cast<IMediaSample*>(nullptr)), E_POINTER, "Receive(null)");
}

void TrailingBytes(Subject& library)
{
    for (const GUID* effect : {&CLSID_AddPixel, &CLSID_InvertColor}) {
        const Promise& promise = PromiseOf(*effect);
        const auto filter = library.Filter(*effect);
        fixtures::RecordedSet set(promise.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(3, 1));
        const Frame in = {1, 2, 3, 4, 5, 6, 7, 8, 90, 91, 92, 93};
        Require(graph.Through(in) == fixtures::ExpectedFrame(*effect, promise.working, in, 3, 1),
                std::string(promise.name) + ": the four bytes beyond a multiple of eight were not left alone");
    }
}

void NullQueries(Subject& library)
{
    const auto factory = library.Factory(CLSID_AddPixel);
    RequireResult(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER, "the factory's QueryInterface(null)");
    const auto info = library.Info(CLSID_AddPixel);
    RequireResult(info->QueryInterface(IID_IUnknown, nullptr), E_POINTER,
                  "the catalogue object's QueryInterface(null)");
    const auto filter = library.Filter(CLSID_AddPixel);
    for (const IID* riid : {&IID_IUnknown, &IID_IBaseFilter, &IID_IEffectFilter})
        RequireResult(filter->QueryInterface(*riid, nullptr), E_POINTER, "the filter's QueryInterface(null)");
    RequireResult(library.ClassObject(CLSID_AddPixel, IID_IClassFactory, nullptr), E_POINTER,
                  "DllGetClassObject without a place for the result");
}

void NullPins(Subject& library)
{
    const auto filter = library.Filter(CLSID_AddPixel);
    RequireResult(filter->EnumPins(nullptr), E_POINTER, "EnumPins(null)");
    RequireResult(filter->FindPin(L"In", nullptr), E_POINTER, "FindPin without a place for the pin");
    RequireResult(filter->GetState(0, nullptr), E_POINTER, "GetState(null)");
    ComPtr<IPin> pin;
    filter->FindPin(L"In", &pin);
    RequireResult(pin->QueryPinInfo(nullptr), E_POINTER, "QueryPinInfo(null)");
    RequireResult(pin->QueryDirection(nullptr), E_POINTER, "QueryDirection(null)");
    RequireResult(pin->ConnectedTo(nullptr), E_POINTER, "ConnectedTo(null)");
    RequireResult(pin->ReceiveConnection(nullptr, nullptr), E_POINTER, "ReceiveConnection(null, null)");
}

// A caller that keeps the stack aligned as callers promise and no better.
constexpr unsigned promisedAlignment = sizeof(void*) == 4 ? 4 : 16;

__attribute__((noinline)) HRESULT SendMisaligned(IMemInputPin* pin, IMediaSample* sample, unsigned offset)
{
    HRESULT result;
#ifdef _WIN64
    register void* receive asm("r8") = (*reinterpret_cast<void***>(pin))[6];
    register UINT_PTR shift asm("r9") = offset;
    __asm__ volatile("movq %%rsp, %%rbx\n\t"
                     "andq $-64, %%rsp\n\t"
                     "subq %[shift], %%rsp\n\t"
                     "subq $64, %%rsp\n\t"
                     "call *%[receive]\n\t"
                     "movq %%rbx, %%rsp\n\t"
                     : "=a"(result), "+c"(pin), "+d"(sample), [receive] "+r"(receive), [shift] "+r"(shift)
                     :
                     : "rbx", "r10", "r11", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "memory", "cc");
#else
    void* receive = (*reinterpret_cast<void***>(pin))[6];
    __asm__ volatile("movl %%esp, %%esi\n\t"
                     "andl $-64, %%esp\n\t"
                     "subl %[offset], %%esp\n\t"
                     "pushl %[sample]\n\t"
                     "pushl %[pin]\n\t"
                     "call *%[receive]\n\t"
                     "movl %%esi, %%esp\n\t"
                     : "=&a"(result), [offset] "+c"(offset), [receive] "+d"(receive)
                     : [pin] "b"(pin), [sample] "D"(sample)
                     : "esi", "st", "st(1)", "st(2)", "st(3)", "st(4)", "st(5)", "st(6)", "st(7)", "xmm0", "xmm1",
                       "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "memory", "cc");
#endif
    return result;
}

void MisalignedStack(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
        ComPtr<IMemInputPin> pin;
        graph.Input()->QueryInterface(IID_IMemInputPin, &pin);
        for (unsigned offset = 0; offset < 64; offset += promisedAlignment) {
            Frame frame = Ramp();
            fixtures::HandSample sample(frame);
            RequireResult(SendMisaligned(pin.Get(), &sample, offset), S_OK, std::string(effect.name) + ": Receive");
        }
    }
}

constexpr Check inputChecks[] = {
    {"bad-input", "null-set", "SetPropertySet(null) is S_OK and changes nothing.", NullSet},
    {"bad-input", "failing-set", "A property set that can't be read is S_OK and is not asked again and again.",
     FailingSet},
    {"bad-input", "no-block", "Without a valid block an effect leaves the colours as they are.", NoValidBlock},
    {"bad-input", "partial-reads", "What a failed or short read wrote counts, and the rest stays.", PartialReads},
    {"bad-input", "reads-in-order", "A slow read that fails or is short undoes nothing that was set meanwhile.",
     ReadsInOrder},
    {"bad-input", "lets-go-in-read", "A host may let go of a filter inside GetData.", LetsGoInRead},
    {"bad-input", "long-set", "A property set with 64 KiB, or with a lying size, spoils nothing.", LongSet},
    {"bad-input", "extreme-values", "Values far out of range stay within the frame.", ExtremeValues},
    {"bad-input", "guard-behind", "No byte behind a frame is touched.", GuardBehind},
    {"bad-input", "guard-before", "No byte before a frame is touched.", GuardBefore},
    {"bad-input", "short-samples", "A sample smaller than the frame is not overrun.", ShortSamples},
    {"bad-input", "lying-lengths", "A data length beyond the buffer, or below 0, is not believed.", LyingLengths},
    {"bad-input", "huge-frames", "Absurd frame sizes do not lead outside the sample.", HugeFrames},
    {"bad-input", "no-pixels", "A frame without rows or columns passes unchanged.", NoPixels},
    {"bad-input", "unsavable-rows", "A frame too wide for any memory passes unchanged.", UnsavableRows},
    {"bad-input", "unknown-size", "A sample that does not tell its buffer's size is processed.", UnknownSize},
    {"bad-input", "no-buffer", "A sample without a buffer passes; \"Gamma correction\" answers E_FAIL.", NoBuffer},
    {"bad-input", "null-sample", "Receive(null) answers E_POINTER.", NullSample},
    {"bad-input", "trailing-bytes", "Effects that work on eight bytes leave the rest alone.", TrailingBytes},
    {"bad-input", "null-queries", "Requests for an object without a place for it answer E_POINTER.", NullQueries},
    {"bad-input", "null-pins", "Pin and filter queries without a place for the answer give E_POINTER.", NullPins},
    {"bad-input", "misaligned-stack", "A stack aligned as callers promise is enough: to 4 bytes, in 64 bit to 16.",
     MisalignedStack},
};

} // namespace

std::span<const Check> InputChecks()
{
    return inputChecks;
}

} // namespace vixahost::validate
