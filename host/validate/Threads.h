// Checks that need more than one thread.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

namespace vixahost::validate {

// Runs work(0) on this thread and work(1) on another at once. What the other one finds is thrown here.
inline void OnTwoThreads(const std::function<void(int)>& work)
{
    std::exception_ptr found[2];
    std::atomic<int> ready = 0;
    const auto guarded = [&](int number) {
        for (++ready; ready < 2;)
            std::this_thread::yield();
        try {
            work(number);
        } catch (...) {
            found[number] = std::current_exception();
        }
    };
    std::thread second(guarded, 1);
    guarded(0);
    second.join();
    for (const std::exception_ptr& each : found)
        if (each)
            std::rethrow_exception(each);
}

// Does something over and over on threads of its own for as long as it lives. The work throws nothing.
class Meanwhile
{
public:
    Meanwhile(int count, const std::function<void(int)>& work)
    {
        for (int i = 0; i < count; ++i)
            threads.emplace_back([this, work, i] {
                while (!over)
                    work(i);
            });
    }
    ~Meanwhile()
    {
        over = true;
        for (std::thread& each : threads)
            each.join();
    }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

private:
    std::atomic<bool> over = false;
    std::vector<std::thread> threads;
};

} // namespace vixahost::validate
