#include "filter/Guarded.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(Guarded, ReadersAndWritersWaitForAWholeChange)
{
    struct Pair
    {
        int first, second;
    };
    vixa::Guarded<Pair> shared({0, 0});
    std::atomic<bool> changing = false;
    const auto whileChanging = [&](auto action) {
        return std::thread([&changing, action] {
            while (!changing)
                SwitchToThread();
            action();
        });
    };
    Pair seen{};
    std::thread reader = whileChanging([&] { seen = shared.Get(); });
    std::thread writer = whileChanging([&] { shared.Change([](Pair& now) { now = {2, 2}; }); });
    shared.Change([&](Pair& now) {
        now.first = 1;
        changing = true;
        for (int i = 0; i < 1000; ++i)
            SwitchToThread();
        now.second = 1;
    });
    reader.join();
    writer.join();
    EXPECT_EQ(seen.first, seen.second);
    EXPECT_EQ(shared.Get().second, 2) << "a change was overwritten in its midst";
}

} // namespace
