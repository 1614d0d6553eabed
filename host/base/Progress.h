// How far a clip is: a bar that stays on one line of a terminal, plain lines elsewhere.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace vixahost {

// "120 of 300 frames, 45.2 frames/s, 4 s left". `seconds` have passed for the frames done.
std::string ProgressText(std::int64_t done, std::int64_t total, double seconds);

// "[########............]", `width` characters between the brackets.
std::string ProgressBar(std::int64_t done, std::int64_t total, int width);

class Progress
{
public:
    explicit Progress(std::int64_t totalFrames);
    // Call as often as you like; it writes ten times a second on a terminal, else once per tenth of the work.
    void Show(std::int64_t done);
    // Ends the terminal's line, so that what follows begins a new one.
    void End();

private:
    using Clock = std::chrono::steady_clock;

    std::int64_t total;
    bool terminal;
    Clock::time_point start = Clock::now();
    Clock::time_point shown = {};
    std::int64_t tenth = 0;
    std::size_t lineLength = 0;
};

} // namespace vixahost
