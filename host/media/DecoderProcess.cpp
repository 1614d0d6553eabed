#include "host/media/DecoderProcess.h"

#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ModuleFile.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/base/Verbose.h"
#include "host/media/ClipDecoder.h"
#include "host/media/DibSize.h"
#include "host/media/GraphDecoder.h"
#include "host/media/GraphSound.h"
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
    End, // there is no such frame, and no more sound
    Failed,
    NoDecoder,
};

// Each side reads what the other wrote after its event.
struct Shared
{
    bool wantsSound;
    FrameFormat known; // by the clip's header; without a size: nothing
    bool verbose;      // the graph is described on standard error
    DecodedClip clip;
    DecodedSound sound;
    std::uint64_t memory; // the decoder's handle of the memory for a frame or a piece of sound
    std::int64_t index;
    std::uint32_t given; // bytes
    Answer answer;
    std::array<char, 1024> failure; // ends with a zero
};

constexpr std::uint32_t soundBytes = 64 * 1024; // of sound

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

DecoderProcess::DecoderProcess(DecoderTask wanted) : task(std::move(wanted)), mapping(NewMapping(sizeof(Shared)))
{
    if (mapping)
        view.reset(MapViewOfFile(mapping.get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!view)
        throw FailedJob("The system gives no memory to share (" + ExplainError(GetLastError()) + ").");
    HeadOf(view) = {task.sound, task.known.value_or(FrameFormat{}), verbose, {}, {}, {}, -1, 0, Answer::Given, {}};
    asked.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    answered.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    HANDLE self = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &self, SYNCHRONIZE, FALSE, 0);
    const UniqueProcess parent(self);
    if (!asked || !answered || !parent)
        throw FailedJob("The system gives no event (" + ExplainError(GetLastError()) + ").");
    ChildStart start = {HostProgram(), L" decode-child \"" + task.clip.native() + L"\"", "the decoder"};
    start.inherited = {mapping.get(), asked.get(), answered.get(), parent.get()};
    for (const HANDLE end : start.inherited)
        start.words += L" " + std::to_wstring(reinterpret_cast<UINT_PTR>(end));
    start.flags = CREATE_NO_WINDOW;
    if (verbose)
        start.error = GetStdHandle(STD_ERROR_HANDLE);
    process.emplace(start);
    Wait("can't be opened");
    TakeMemory();
}

void DecoderProcess::TakeMemory()
{
    clip = HeadOf(view).clip;
    sound = HeadOf(view).sound;
    const FrameFormat& format = clip.format;
    const bool sensible = task.sound || (format.rate > 0 && format.scale > 0);
    const auto frame = DibBytes(format.width, format.height, 32);
    memoryBytes = task.sound ? soundBytes : frame.value_or(0);
    HANDLE theirs = reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(HeadOf(view).memory)), own = nullptr;
    if (memoryBytes > 0 && sensible)
        DuplicateHandle(process->Handle(), theirs, GetCurrentProcess(), &own, 0, FALSE, DUPLICATE_SAME_ACCESS);
    const UniqueMapping shared(own);
    memory.reset(shared ? MapViewOfFile(shared.get(), FILE_MAP_READ, 0, 0, memoryBytes) : nullptr);
    if (!memory)
        throw NoRoomFor(format.width, format.height);
}

void DecoderProcess::Wait(const std::string& what)
{
    const std::array<HANDLE, 2> ends = {answered.get(), process->Handle()};
    const ULONGLONG begun = GetTickCount64();
    DWORD which = WAIT_TIMEOUT;
    while (which == WAIT_TIMEOUT && GetTickCount64() - begun < task.patience && !Interrupted())
        which = WaitForMultipleObjects(static_cast<DWORD>(ends.size()), ends.data(), FALSE, 100);
    const Answer answer = HeadOf(view).answer;
    if (which == WAIT_OBJECT_0 && (answer == Answer::Given || answer == Answer::End))
        return;
    const bool stopped = which == WAIT_TIMEOUT && Interrupted();
    std::string reason = Show(task.clip) + " " + what + ": ";
    if (which == WAIT_OBJECT_0) {
        const auto& text = HeadOf(view).failure;
        reason.assign(text.begin(), std::find(text.begin(), text.end() - 1, '\0'));
        std::ranges::replace_if(
            reason, [](char letter) { return letter >= 0 && letter < ' '; }, '?');
    } else if (which == WAIT_OBJECT_0 + 1) {
        reason += "the system's decoder crashed (" + ShowHex(process->Status()) +
                  "). The clip is damaged, or convert it to uncompressed RGB first.";
    } else {
        reason += "the system's decoder gave no answer for " + std::to_string((task.patience + 999) / 1000) +
                  " s. The clip is damaged, or convert it to uncompressed RGB first.";
    }
    if (stopped)
        throw StoppedJob();
    if (which == WAIT_OBJECT_0 && answer == Answer::NoDecoder)
        throw NoDecoder(reason);
    throw FailedJob(reason);
}

std::span<const std::uint8_t> DecoderProcess::Ask(std::int64_t index, const std::string& what)
{
    HeadOf(view).index = index;
    SetEvent(asked.get());
    Wait(what);
    if (HeadOf(view).answer == Answer::End)
        return {};
    const std::size_t given = std::min<std::size_t>(HeadOf(view).given, memoryBytes);
    return {static_cast<const std::uint8_t*>(memory.get()), given};
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

// One of the two.
struct OpenedSource
{
    std::unique_ptr<Decoder> frames;
    std::unique_ptr<GraphSound> sound;
};

// Answers until the process ends.
void Serve(const OpenedSource& clip, Shared& shared, const std::function<void()>& answerAndWait)
{
    std::size_t bytes = soundBytes;
    if (clip.frames) {
        shared.clip = clip.frames->Clip();
        bytes = shared.clip.format.FrameBytes();
    } else {
        shared.sound = clip.sound->Facts();
    }
    const UniqueMapping memory = NewMapping(bytes);
    const UniqueView view(memory ? MapViewOfFile(memory.get(), FILE_MAP_WRITE, 0, 0, 0) : nullptr);
    if (!view)
        throw NoRoomFor(shared.clip.format.width, shared.clip.format.height);
    shared.memory = reinterpret_cast<UINT_PTR>(memory.get());
    const std::span room(static_cast<std::uint8_t*>(view.get()), bytes);
    for (;;) {
        answerAndWait();
        const std::size_t given = clip.sound                                ? clip.sound->Read(room)
                                  : clip.frames->Decode(shared.index, room) ? bytes
                                                                            : 0;
        shared.given = static_cast<std::uint32_t>(given);
        shared.answer = given > 0 ? Answer::Given : Answer::End;
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
        OpenedSource opened;
        if (shared.wantsSound)
            opened.sound = std::make_unique<GraphSound>(clip);
        else
            opened.frames = OpenDecoder(clip, shared.known);
        Serve(opened, shared, [&] {
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
