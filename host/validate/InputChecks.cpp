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

void NoBuffer(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        fixtures::RecordedSet set(effect.working);
        Parameters(filter.Get())->SetPropertySet(&set);
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
        fixtures::HandSample failing;
        failing.size = failing.length = 64;
        failing.pointerResult = E_UNEXPECTED;
        // "Gamma correction" alone gives a frame up; the others pass it on.
        RequireResult(graph.Send(&failing), *effect.classId == CLSID_GammaCorrection ? E_FAIL : S_OK,
                      std::string(effect.name) + ": Receive of a sample without a buffer");
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

// A caller that keeps the stack aligned to 4 bytes, which is all that 32-bit callers promise.
__attribute__((noinline)) HRESULT SendMisaligned(IMemInputPin* pin, IMediaSample* sample, unsigned offset)
{
    HRESULT result;
    __asm__ volatile("movl %%esp, %%esi\n\t"
                     "andl $-64, %%esp\n\t"
                     "subl %[offset], %%esp\n\t"
                     "pushl %[sample]\n\t"
                     "pushl %[pin]\n\t"
                     "call *%[receive]\n\t"
                     "movl %%esi, %%esp\n\t"
                     : "=&a"(result), "+c"(offset)
                     : [pin] "b"(pin), [sample] "D"(sample), [offset] "c"(offset),
                       [receive] "d"((*reinterpret_cast<void***>(pin))[6])
                     : "esi", "memory", "cc");
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
        for (unsigned offset = 0; offset < 64; offset += 4) {
            Frame frame = Ramp();
            fixtures::HandSample sample(frame);
            RequireResult(SendMisaligned(pin.Get(), &sample, offset), S_OK, std::string(effect.name) + ": Receive");
        }
    }
}

constexpr Check checks[] = {
    {"bad-input", "null-set", "SetPropertySet(null) is S_OK and changes nothing.", NullSet},
    {"bad-input", "failing-set", "A property set that can't be read is S_OK and is not asked again and again.",
     FailingSet},
    {"bad-input", "long-set", "A property set with 64 KiB, or with a lying size, spoils nothing.", LongSet},
    {"bad-input", "extreme-values", "Values far out of range stay within the frame.", ExtremeValues},
    {"bad-input", "guard-behind", "No byte behind a frame is touched.", GuardBehind},
    {"bad-input", "guard-before", "No byte before a frame is touched.", GuardBefore},
    {"bad-input", "short-samples", "A sample smaller than the frame is not overrun.", ShortSamples},
    {"bad-input", "lying-lengths", "A data length beyond the buffer, or below 0, is not believed.", LyingLengths},
    {"bad-input", "huge-frames", "Absurd frame sizes do not lead outside the sample.", HugeFrames},
    {"bad-input", "no-buffer", "A sample without a buffer passes; \"Gamma correction\" answers E_FAIL.", NoBuffer},
    {"bad-input", "null-sample", "Receive(null) answers E_POINTER.", NullSample},
    {"bad-input", "trailing-bytes", "Effects that work on eight bytes leave the rest alone.", TrailingBytes},
    {"bad-input", "null-queries", "Requests for an object without a place for it answer E_POINTER.", NullQueries},
    {"bad-input", "null-pins", "Pin and filter queries without a place for the answer give E_POINTER.", NullPins},
    {"bad-input", "misaligned-stack", "A stack aligned to 4 bytes is enough.", MisalignedStack},
};

} // namespace

std::span<const Check> InputChecks()
{
    return checks;
}

} // namespace vixahost::validate
