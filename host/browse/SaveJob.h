// Writes the open picture or clip with all its effects, on a thread of its own.
#pragma once

#include "host/effects/EffectStack.h"
#include "host/media/Clips.h"
#include "host/media/Picture.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace vixahost::browse {

struct SaveOrder
{
    std::filesystem::path source; // a clip; empty for `still`
    media::ClipChoice choice = {};
    media::Picture still;
    effects::EffectStack stack;
    std::filesystem::path target;
};

// The target appears under its name only when it is whole; an older one stays as it was until then.
class SaveJob
{
public:
    // Begins at once. Throws WrongWords for a target whose ending fits no format, or that is the source.
    // `notify` is called on the job's thread as its last act.
    SaveJob(SaveOrder what, std::function<void()> notify);
    // Cancels and waits.
    ~SaveJob();
    SaveJob(const SaveJob&) = delete;
    SaveJob& operator=(const SaveJob&) = delete;

    void Cancel() noexcept { cancelled = true; }
    std::int64_t Done() const noexcept { return done; }
    std::int64_t Total() const noexcept { return total; } // 0 while it isn't known
    // Waits for the end. What went wrong, or "" when the target is written; cancelled jobs wrote nothing.
    std::string Wait();
    bool Cancelled() const noexcept { return cancelled; }
    // Whether the target lacks the clip's sound; after Wait.
    bool LostSound() const noexcept { return lostSound; }

private:
    void Run();

    SaveOrder order;
    std::function<void()> onEnd;
    std::atomic<bool> cancelled = false;
    std::atomic<std::int64_t> done = 0, total = 0;
    std::string failure;
    bool lostSound = false;
    std::thread thread;
};

} // namespace vixahost::browse
