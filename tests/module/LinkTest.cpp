// Class factory and catalogue object, either of which may die while threads ask the other for it. The library's own
// objects are part of this program, whose released memory is filled, kept and looked at: who still reaches for the dead
// crashes or is found out.
#include "framework/CBaseObject.h"
#include "module/VixaVideoFXModule.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectInfo.h>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

namespace {

constexpr unsigned char dead = 0xDD;

std::mutex graveyardLock;
void* graveyard[4096];
std::size_t graves = 0;
bool disturbed = false; // something was written to the dead

// On such a thread an object takes its time to be made, so that others come along meanwhile.
thread_local bool dawdles = false;

void Bury(void* memory) noexcept
{
    if (memory)
        std::memset(memory, dead, _msize(memory));
    const std::scoped_lock guard(graveyardLock);
    std::swap(memory, graveyard[graves++ % std::size(graveyard)]);
    if (!memory)
        return;
    const auto* const bytes = static_cast<const unsigned char*>(memory);
    disturbed = disturbed || !std::all_of(bytes, bytes + _msize(memory), [](auto byte) { return byte == dead; });
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    for (int i = 0; dawdles && i < 20; ++i)
        SwitchToThread();
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    Bury(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Bury(memory);
}

namespace {

using Microsoft::WRL::ComPtr;

class Links : public testing::Test
{
protected:
    static void SetUpTestSuite() { TheModule().Attach(GetModuleHandleW(nullptr)); }
    static void TearDownTestSuite() { TheModule().Detach(); }
    void TearDown() override
    {
        EXPECT_EQ(CBaseObject::ObjectsActive(), 0);
        for (std::size_t i = 0; i < std::size(graveyard); ++i)
            Bury(nullptr);
        EXPECT_FALSE(disturbed);
    }

    static ComPtr<IClassFactory> Factory()
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(DllGetClassObject(vixavideofx::CLSID_Emboss, IID_PPV_ARGS(&factory)), S_OK);
        return factory;
    }
    static ComPtr<IEffectInfo> Info()
    {
        ComPtr<IEffectInfo> info;
        EXPECT_EQ(Factory().As(&info), S_OK);
        return info;
    }

    // Two threads ask the keeper for the partner that it lacks.
    template <typename Partner, typename Keeper>
    static void ExpectOnePartner(Keeper make)
    {
        for (int i = 0; i < 100; ++i) {
            const auto keeper = make();
            std::atomic<int> waiting = 2;
            ComPtr<Partner> first, second;
            const auto ask = [&](ComPtr<Partner>& partner) {
                dawdles = true;
                for (--waiting; waiting > 0;)
                    SwitchToThread();
                EXPECT_EQ(keeper.As(&partner), S_OK);
                dawdles = false;
            };
            std::thread other(ask, std::ref(first));
            ask(second);
            other.join();
            ASSERT_EQ(first.Get(), second.Get());
        }
    }

    // One thread lets go of the partner while another asks for it; a third one keeps both waiting on the way.
    template <typename Partner, typename Keeper>
    static void ExpectNoRevival(const ComPtr<Keeper>& keeper)
    {
        const std::jthread crowd([](const std::stop_token& stop) {
            const auto factory = Factory();
            dawdles = true;
            for (ComPtr<IEffectInfo> info; !stop.stop_requested(); info.Reset())
                factory.As(&info);
            dawdles = false;
        });
        for (int i = 0; i < 300; ++i) {
            ComPtr<Partner> partner, again;
            ASSERT_EQ(keeper.As(&partner), S_OK);
            std::thread other([&] { partner.Reset(); });
            ASSERT_EQ(keeper.As(&again), S_OK);
            other.join();
            ComPtr<Keeper> back;
            ASSERT_EQ(again.As(&back), S_OK);
            ASSERT_EQ(back.Get(), keeper.Get());
            ASSERT_EQ(keeper.As(&partner), S_OK);
            ASSERT_EQ(partner.Get(), again.Get());
        }
    }
};

TEST_F(Links, EachHasOnePartner)
{
    ExpectOnePartner<IEffectInfo>(Factory);
    ExpectOnePartner<IClassFactory>(Info);
}

TEST_F(Links, TheDyingAreReplaced)
{
    ExpectNoRevival<IEffectInfo>(Factory());
    ExpectNoRevival<IClassFactory>(Info());
}

} // namespace
