#include "host/media/StandardStreams.h"

#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ResultCode.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace vixahost::media {

// Bytes on their way from one thread to another. One of the two works for the host and stops when the user says so; the
// other waits for the system, and shares the ownership so that it may be left behind.
class ByteQueue
{
public:
    // Room for new bytes, for the one who puts them; waits until there is some. Empty when the other has left.
    std::span<std::uint8_t> Room(bool stoppable)
    {
        Wait(stoppable, [this] { return over || put - taken < bytes.size(); });
        const std::size_t from = put % bytes.size();
        return over ? std::span<std::uint8_t>()
                    : std::span(bytes).subspan(from, std::min(bytes.size() - (put - taken), bytes.size() - from));
    }
    void Put(std::size_t count)
    {
        Change([=, this] { put += count; });
    }
    // The oldest bytes, for the one who takes them; waits until there are some. Empty behind the last ones.
    std::span<const std::uint8_t> Bytes(bool stoppable)
    {
        Wait(stoppable, [this] { return over || put > taken; });
        const std::size_t from = taken % bytes.size();
        return std::span(bytes).subspan(from, std::min(put - taken, bytes.size() - from));
    }
    void Take(std::size_t count)
    {
        Change([=, this] { taken += count; });
    }
    // There will be no more bytes, or nobody takes them; the system's reason, if it was its.
    void End(std::optional<DWORD> reason = {})
    {
        Change([=, this] {
            over = true;
            if (reason)
                error = reason;
        });
    }
    // The host's thread: until all bytes are taken.
    void Drain()
    {
        Wait(true, [this] { return error || put == taken; });
    }
    std::optional<DWORD> Error()
    {
        const std::scoped_lock hold(lock);
        return error;
    }

private:
    template <typename Done>
    void Wait(bool stoppable, Done done)
    {
        std::unique_lock hold(lock);
        while (!changed.wait_for(hold, std::chrono::milliseconds(100), done))
            if (stoppable && Interrupted())
                throw StoppedJob();
    }
    template <typename Function>
    void Change(Function function)
    {
        {
            const std::scoped_lock hold(lock);
            function();
        }
        changed.notify_all();
    }

    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(4 << 20);
    std::size_t put = 0, taken = 0; // of all; the type's end is a multiple of the ring's
    bool over = false;
    std::optional<DWORD> error;
};

namespace {

constexpr std::size_t mostAtOnce = 1 << 20;

void ReadInput(const std::shared_ptr<ByteQueue>& queue)
{
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    for (;;) {
        const std::span<std::uint8_t> room = queue->Room(false);
        if (room.empty())
            return;
        DWORD got = 0;
        const auto wanted = static_cast<DWORD>(std::min(room.size(), mostAtOnce));
        if (!ReadFile(input, room.data(), wanted, &got, nullptr)) {
            const DWORD error = GetLastError();
            // Its writer has gone.
            return error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF ? queue->End() : queue->End(error);
        }
        if (got == 0)
            return queue->End();
        queue->Put(got);
    }
}

void WriteOutput(const std::shared_ptr<ByteQueue>& queue)
{
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    for (;;) {
        const std::span<const std::uint8_t> bytes = queue->Bytes(false);
        if (bytes.empty())
            return;
        DWORD written = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), mostAtOnce));
        if (!WriteFile(output, bytes.data(), wanted, &written, nullptr) || written == 0)
            return queue->End(GetLastError());
        queue->Take(written);
    }
}

} // namespace

StandardInput::StandardInput() : queue(std::make_shared<ByteQueue>())
{
    std::thread([shared = queue] { ReadInput(shared); }).detach();
}

StandardInput::~StandardInput()
{
    queue->End();
}

std::size_t StandardInput::Read(std::span<std::uint8_t> into)
{
    std::size_t done = 0;
    while (done < into.size()) {
        const std::span<const std::uint8_t> bytes = queue->Bytes(true);
        if (bytes.empty())
            break;
        const std::size_t count = std::min(bytes.size(), into.size() - done);
        std::memcpy(into.data() + done, bytes.data(), count);
        queue->Take(count);
        done += count;
    }
    if (const auto error = queue->Error(); error && done < into.size())
        throw FailedJob("Standard input can't be read (" + ExplainError(*error) + ").");
    return done;
}

StandardOutput::StandardOutput() : queue(std::make_shared<ByteQueue>())
{
    std::thread([shared = queue] { WriteOutput(shared); }).detach();
}

StandardOutput::~StandardOutput()
{
    queue->End();
}

void StandardOutput::Write(std::uint64_t, std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const std::span<std::uint8_t> room = queue->Room(true);
        if (room.empty())
            break;
        const std::size_t count = std::min(room.size(), bytes.size());
        std::memcpy(room.data(), bytes.data(), count);
        queue->Put(count);
        bytes = bytes.subspan(count);
    }
    if (const auto error = queue->Error())
        throw *error == ERROR_BROKEN_PIPE || *error == ERROR_NO_DATA || *error == ERROR_PIPE_NOT_CONNECTED
            ? FailedJob("Whoever took the frames from standard output has stopped before the end.")
            : FailedJob("Frames can't be written to standard output (" + ExplainError(*error) +
                        "); is a disk full behind it?");
}

void StandardOutput::Close()
{
    queue->Drain();
    Write(0, {});
}

} // namespace vixahost::media
