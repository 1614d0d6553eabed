#include "host/media/FrameDecoder.h"

#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ModuleFile.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/base/Verbose.h"
#include "host/media/ClipDecoder.h"
#include "host/media/DibSize.h"
#include "host/media/GraphDecoder.h"
#include "host/media/Room.h"

#include <objbase.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

namespace vixahost::media {

namespace {

enum class Answer : std::uint32_t
{
    Given,
    End, // there is no such frame
    Failed,
    NoDecoder,
};

// Each side reads what the other wrote after its event.
struct Shared
{
    FrameFormat known; // by the clip's header; without a size: nothing
    bool verbose;      // the graph is described on standard error
    DecodedClip clip;
    std::uint64_t pixels; // the decoder's handle of the memory for a frame
    std::int64_t index;
    Answer answer;
    std::array<char, 1024> failure; // ends with a zero
};

Shared& HeadOf(const UniqueView& view)
{
    return *static_cast<Shared*>(view.get());
}

UniqueMapping NewMapping(std::uint64_t bytes)
{
    return UniqueMapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE,
                                            static_cast<DWORD>(bytes >> 32), static_cast<DWORD>(bytes), nullptr));
}

// The host beside the program that runs, which may be a test.
std::filesystem::path HostProgram()
{
    const std::filesystem::path self = ThisProgram();
    const std::filesystem::path host = self.parent_path() / L"vixahost.exe";
    return GetFileAttributesW(host.c_str()) == INVALID_FILE_ATTRIBUTES ? self : host;
}

LONG WINAPI EndOnFault(EXCEPTION_POINTERS* fault)
{
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

FrameDecoder::FrameDecoder(std::filesystem::path source, const std::optional<FrameFormat>& frames, DWORD milliseconds)
    : clip(std::move(source)), patience(milliseconds), mapping(NewMapping(sizeof(Shared)))
{
    if (mapping)
        view.reset(MapViewOfFile(mapping.get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!view)
        throw FailedJob("The system gives no memory to share (" + ExplainError(GetLastError()) + ").");
    Start(frames);
}

void FrameDecoder::Start(const std::optional<FrameFormat>& frames)
{
    HeadOf(view) = {frames.value_or(FrameFormat{}), verbose, {}, 0, -1, Answer::Given, {}};
    asked.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    answered.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    HANDLE self = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &self, SYNCHRONIZE, FALSE, 0);
    const UniqueProcess parent(self);
    if (!asked || !answered || !parent)
        throw FailedJob("The system gives no event (" + ExplainError(GetLastError()) + ").");
    ChildStart start = {HostProgram(), L" decode-child \"" + clip.native() + L"\"", "the decoder"};
    start.inherited = {mapping.get(), asked.get(), answered.get(), parent.get()};
    for (const HANDLE end : start.inherited)
        start.words += L" " + std::to_wstring(reinterpret_cast<UINT_PTR>(end));
    start.flags = CREATE_NO_WINDOW;
    if (verbose)
        start.error = GetStdHandle(STD_ERROR_HANDLE);
    process.emplace(start);
    Wait("can't be opened");
    facts = HeadOf(view).clip;
    const auto bytes = DibBytes(facts.format.width, facts.format.height, 32);
    HANDLE theirs = reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(HeadOf(view).pixels)), own = nullptr;
    if (bytes && facts.format.rate > 0 && facts.format.scale > 0)
        DuplicateHandle(process->Handle(), theirs, GetCurrentProcess(), &own, 0, FALSE, DUPLICATE_SAME_ACCESS);
    const UniqueMapping memory(own);
    pixels.reset(memory ? MapViewOfFile(memory.get(), FILE_MAP_READ, 0, 0, *bytes) : nullptr);
    if (!pixels)
        throw NoRoomFor(facts.format.width, facts.format.height);
}

void FrameDecoder::Wait(const std::string& what)
{
    const std::array<HANDLE, 2> ends = {answered.get(), process->Handle()};
    const ULONGLONG begun = GetTickCount64();
    DWORD which = WAIT_TIMEOUT;
    while (which == WAIT_TIMEOUT && GetTickCount64() - begun < patience && !Interrupted())
        which = WaitForMultipleObjects(static_cast<DWORD>(ends.size()), ends.data(), FALSE, 100);
    const Answer answer = HeadOf(view).answer;
    if (which == WAIT_OBJECT_0 && (answer == Answer::Given || answer == Answer::End))
        return;
    const bool stopped = which == WAIT_TIMEOUT && Interrupted();
    std::string reason = Show(clip) + " " + what + ": ";
    if (which == WAIT_OBJECT_0) {
        const auto& text = HeadOf(view).failure;
        reason.assign(text.begin(), std::find(text.begin(), text.end() - 1, '\0'));
        std::ranges::replace_if(
            reason, [](char letter) { return letter >= 0 && letter < ' '; }, '?');
    } else if (which == WAIT_OBJECT_0 + 1) {
        reason += "the system's decoder crashed (" + ShowHex(process->Status()) +
                  "). The clip is damaged, or convert it to uncompressed RGB first.";
    } else {
        reason += "the system's decoder gave no answer for " + std::to_string((patience + 999) / 1000) +
                  " s. The clip is damaged, or convert it to uncompressed RGB first.";
    }
    process.reset();
    if (stopped)
        throw StoppedJob();
    if (which == WAIT_OBJECT_0 && answer == Answer::NoDecoder)
        throw NoDecoder(reason);
    throw FailedJob(reason);
}

bool FrameDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
{
    if (!process)
        Start(facts.format); // the last frame that was asked for took it along
    HeadOf(view).index = index;
    SetEvent(asked.get());
    Wait("has a frame " + std::to_string(index) + " that can't be decoded");
    if (HeadOf(view).answer == Answer::End)
        return false;
    std::memcpy(frame.data(), pixels.get(), frame.size());
    return true;
}

namespace {

std::unique_ptr<Decoder> OpenDecoder(const std::filesystem::path& clip, const FrameFormat& known)
{
    if (known.width == 0)
        return std::make_unique<GraphDecoder>(clip, std::nullopt);
    try {
        return std::make_unique<ClipDecoder>(clip, known);
    } catch (const FailedJob& fault) {
        // The graph knows more formats. What it can't decode is told by the interface, which can name it.
        try {
            return std::make_unique<GraphDecoder>(clip, known);
        } catch (const NoDecoder&) {
        }
        throw;
    }
}

// Answers until the process ends.
void Serve(Decoder& decoder, Shared& shared, const std::function<void()>& answerAndWait)
{
    const FrameFormat& format = decoder.Clip().format;
    const std::size_t bytes = format.FrameBytes();
    const UniqueMapping memory = NewMapping(bytes);
    const UniqueView view(memory ? MapViewOfFile(memory.get(), FILE_MAP_WRITE, 0, 0, 0) : nullptr);
    if (!view)
        throw NoRoomFor(format.width, format.height);
    shared.clip = decoder.Clip();
    shared.pixels = reinterpret_cast<UINT_PTR>(memory.get());
    for (;;) {
        answerAndWait();
        const bool given = decoder.Decode(shared.index, {static_cast<std::uint8_t*>(view.get()), bytes});
        shared.answer = given ? Answer::Given : Answer::End;
    }
}

} // namespace

void RunDecoder(const std::filesystem::path& clip, const DecoderEnds& ends)
{
    const auto handle = [](UINT_PTR number) { return reinterpret_cast<HANDLE>(number); };
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(EndOnFault);
    // Also while a decoder hangs.
    std::thread([parent = handle(ends.parent)] {
        WaitForSingleObject(parent, INFINITE);
        TerminateProcess(GetCurrentProcess(), 0);
    }).detach();
    const UniqueView view(MapViewOfFile(handle(ends.mapping), FILE_MAP_WRITE, 0, 0, 0));
    if (!view)
        return;
    Shared& shared = HeadOf(view);
    verbose = shared.verbose;
    try {
        const auto decoder = OpenDecoder(clip, shared.known);
        Serve(*decoder, shared, [&] {
            SetEvent(handle(ends.answered));
            WaitForSingleObject(handle(ends.asked), INFINITE);
        });
    } catch (const std::exception& fault) {
        const bool none = dynamic_cast<const NoDecoder*>(&fault) != nullptr;
        shared.answer = none ? Answer::NoDecoder : Answer::Failed;
        std::snprintf(shared.failure.data(), shared.failure.size(), "%s", fault.what());
    }
    SetEvent(handle(ends.answered));
    WaitForSingleObject(handle(ends.parent), INFINITE); // which ends this one
}

} // namespace vixahost::media
