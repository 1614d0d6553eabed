#include "bench/Series.h"

#include "bench/LimitPass.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <random>

namespace vixa::bench {

namespace {

constexpr std::size_t pageBytes = 4096;

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double MedianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

TestFrame::TestFrame(std::size_t bytes) : original(bytes), room(bytes + pageBytes)
{
    std::mt19937 random(1);
    for (std::size_t at = 0; at + 4 <= bytes; at += 4) {
        const auto word = static_cast<std::uint32_t>(random());
        std::memcpy(original.data() + at, &word, sizeof word);
    }
    const auto start = (pageBytes - reinterpret_cast<std::uintptr_t>(room.data()) % pageBytes) % pageBytes;
    frame = kernels::Frame(room).subspan(start, bytes);
}

void TestFrame::Restore() noexcept
{
    std::memcpy(frame.data(), original.data(), original.size());
}

std::vector<Timing> Measure(TestFrame& frame, const std::vector<Candidate>& candidates, double seconds)
{
    struct Record
    {
        double spent = 0;
        double fastest = std::numeric_limits<double>::max();
        std::vector<double> ratios;

        // A candidate slower than its time is run once.
        bool Done(double limit) const { return spent >= limit && ratios.size() >= (spent >= 2 * limit ? 1 : 3); }
    };
    constexpr int turns = 8;
    std::vector<Record> records(candidates.size());
    double fastestLimit = std::numeric_limits<double>::max();

    const auto runOnce = [&](const Candidate& candidate, Record& record) {
        frame.Restore();
        const double limit = Seconds([&] { LimitPass(frame.Bytes()); });
        const double time = Seconds([&] { candidate.run(frame.Bytes()); });
        fastestLimit = std::min(fastestLimit, limit);
        record.fastest = std::min(record.fastest, time);
        record.ratios.push_back(time / limit);
        record.spent += limit + time;
    };
    for (int turn = 1; turn <= turns; ++turn) {
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            while (!records[i].Done(seconds * turn / turns))
                runOnce(candidates[i], records[i]);
        }
    }

    std::vector<Timing> timings;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const Record& record = records[i];
        timings.push_back({candidates[i].name, record.fastest, record.fastest / fastestLimit, MedianOf(record.ratios),
                           static_cast<int>(record.ratios.size())});
    }
    return timings;
}

} // namespace vixa::bench
