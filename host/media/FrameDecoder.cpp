#include "host/media/FrameDecoder.h"

#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ModuleFile.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/media/ClipDecoder.h"
#include "host/media/DibSize.h"
#include "host/media/Room.h"

#include <objbase.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <thread>
#include <utility>

namespace vixahost::media {

namespace {

// Behind it the frame's pixels. Each side reads what the other wrote after its event.
struct Shared
{
    std::int32_t width, height;
    std::int64_t index;
    std::uint32_t failed;
    std::array<char, 1024> failure; // ends with a zero
};

constexpr std::size_t pixelsAt = 4096;

Shared& HeadOf(const UniqueView& view)
{
    return *static_cast<Shared*>(view.get());
}

std::uint8_t* PixelsOf(const UniqueView& view)
{
    return static_cast<std::uint8_t*>(view.get()) + pixelsAt;
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

FrameDecoder::FrameDecoder(std::filesystem::path source, int width, int height, DWORD milliseconds)
    : clip(std::move(source)), patience(milliseconds)
{
    const std::uint64_t bytes = pixelsAt + DibBytes(width, height, 32).value_or(0);
    mapping.reset(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, static_cast<DWORD>(bytes >> 32),
                                     static_cast<DWORD>(bytes), nullptr));
    if (mapping)
        view.reset(MapViewOfFile(mapping.get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!view)
        throw NoRoomFor(width, height);
    HeadOf(view) = {width, height, -1, 0, {}};
    Start();
}

void FrameDecoder::Start()
{
    HeadOf(view).failed = 0;
    asked.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    answered.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    HANDLE self = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &self, SYNCHRONIZE, FALSE, 0);
    const UniqueProcess parent(self);
    if (!asked || !answered || !parent)
        throw FailedJob("The system gives no event (system error " + std::to_string(GetLastError()) + ").");
    ChildStart start = {HostProgram(), L" decode-child \"" + clip.native() + L"\"", "the decoder"};
    start.inherited = {mapping.get(), asked.get(), answered.get(), parent.get()};
    for (const HANDLE end : start.inherited)
        start.words += L" " + std::to_wstring(reinterpret_cast<UINT_PTR>(end));
    start.flags = CREATE_NO_WINDOW;
    process.emplace(start);
    Wait("can't be opened");
}

void FrameDecoder::Wait(const std::string& what)
{
    const std::array<HANDLE, 2> ends = {answered.get(), process->Handle()};
    const ULONGLONG begun = GetTickCount64();
    DWORD which = WAIT_TIMEOUT;
    while (which == WAIT_TIMEOUT && GetTickCount64() - begun < patience && !Interrupted())
        which = WaitForMultipleObjects(static_cast<DWORD>(ends.size()), ends.data(), FALSE, 100);
    if (which == WAIT_OBJECT_0 && HeadOf(view).failed == 0)
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
    throw FailedJob(reason);
}

void FrameDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
{
    if (!process)
        Start(); // the last frame that was asked for took it along
    HeadOf(view).index = index;
    SetEvent(asked.get());
    Wait("has a frame " + std::to_string(index) + " that can't be decoded");
    std::memcpy(frame.data(), PixelsOf(view), frame.size());
}

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
    const std::span frame(PixelsOf(view), DibBytes(shared.width, shared.height, 32).value_or(0));
    try {
        ClipDecoder decoder(clip, shared.width, shared.height);
        for (;;) {
            SetEvent(handle(ends.answered));
            WaitForSingleObject(handle(ends.asked), INFINITE);
            decoder.Decode(shared.index, frame);
        }
    } catch (const std::exception& fault) {
        shared.failed = 1;
        std::snprintf(shared.failure.data(), shared.failure.size(), "%s", fault.what());
    }
    SetEvent(handle(ends.answered));
    WaitForSingleObject(handle(ends.parent), INFINITE); // which ends this one
}

} // namespace vixahost::media
