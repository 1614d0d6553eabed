#include "host/base/Progress.h"

#include "host/base/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vixahost {

std::string ProgressText(std::int64_t done, std::int64_t total, double seconds)
{
    std::string text = std::to_string(done) + " of " + std::to_string(total) + " frames";
    if (done <= 0 || seconds <= 0)
        return text;
    char rate[32];
    std::snprintf(rate, sizeof rate, ", %.1f frames/s", static_cast<double>(done) / seconds);
    text += rate;
    if (done < total) {
        const auto left = static_cast<long long>(std::ceil(seconds * double(total - done) / double(done)));
        text += ", ";
        if (left >= 60)
            text += std::to_string(left / 60) + " min ";
        text += std::to_string(left % 60) + " s left";
    }
    return text;
}

std::string ProgressBar(std::int64_t done, std::int64_t total, int width)
{
    const auto filled = total > 0 ? static_cast<std::size_t>(std::min(done, total) * width / total) : 0;
    return "[" + std::string(filled, '#') + std::string(static_cast<std::size_t>(width) - filled, '.') + "]";
}

Progress::Progress(std::int64_t totalFrames) : total(totalFrames), terminal(IsTerminal(GetStdHandle(STD_OUTPUT_HANDLE)))
{
}

void Progress::Show(std::int64_t done)
{
    const Clock::time_point now = Clock::now();
    const std::string text = ProgressText(done, total, std::chrono::duration<double>(now - start).count());
    if (terminal) {
        if (now - shown < std::chrono::milliseconds(100) && done < total)
            return;
        shown = now;
        std::string line = ProgressBar(done, total, 24) + " " + text;
        const std::size_t length = line.size();
        if (length < lineLength)
            line.append(lineLength - length, ' '); // rub out what is left of a longer line
        lineLength = length;
        Say("\r" + line);
    } else if (total > 0 && done * 10 / total > tenth) {
        tenth = done * 10 / total;
        Say(text + "\n");
    }
}

void Progress::End()
{
    if (terminal && lineLength > 0)
        Say("\n");
    lineLength = 0;
}

} // namespace vixahost
