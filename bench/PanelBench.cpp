// What a slider's move costs until the host's property set has it, as a ratio to the bare message that moves the
// slider.
#include "tests/dialogs/PanelFixture.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int moves = 10000;

// The median and the 99th percentile of `moves` calls, in microseconds; what lies above is the machine's other work.
template <typename Call>
std::pair<double, double> Timed(Call call)
{
    LARGE_INTEGER frequency, before, after;
    QueryPerformanceFrequency(&frequency);
    std::vector<double> times;
    for (int i = 0; i < moves; ++i) {
        QueryPerformanceCounter(&before);
        call(i % 201);
        QueryPerformanceCounter(&after);
        times.push_back(static_cast<double>(after.QuadPart - before.QuadPart) * 1e6 /
                        static_cast<double>(frequency.QuadPart));
    }
    std::sort(times.begin(), times.end());
    return {times[moves / 2], times[moves / 100 * 99]};
}

} // namespace

int main()
{
    const TestModule module;
    HostWindow host;
    MultiplyPanel multiply(host, {100});
    AddPanel add(host, {0, 0, 0, 1});
    const auto bare = Timed([&](int position) { multiply.Put(1029, position); });
    const auto panel = Timed([&](int position) {
        multiply.Put(1029, position);
        multiply.Scroll(1029, TB_LINEDOWN);
    });
    const auto linked = Timed([&](int position) {
        add.Put(1007, position);
        add.Scroll(1007, TB_LINEDOWN);
    });
    const bool complete = multiply.set.writes == moves && add.set.writes == moves;
    std::printf("bare message to the slider    median %7.1f us, 99 %% below %8.1f us\n", bare.first, bare.second);
    std::printf("move written, one slider      median %7.1f us, 99 %% below %8.1f us, ratio %.2f\n", panel.first,
                panel.second, panel.first / bare.first);
    std::printf("move written, three together  median %7.1f us, 99 %% below %8.1f us, ratio %.2f\n", linked.first,
                linked.second, linked.first / bare.first);
    std::printf("%d moves each, %s reached the property set\n", moves, complete ? "all" : "NOT all");
    return complete ? 0 : 1;
}
