// Factory and catalogue object, either of which may die first, also while threads ask for the other.
#include "tests/support/Library.h"

#include <vixavideofx/IEffectInfo.h>

#include <objbase.h>
#include <strmif.h>

#include <thread>

using namespace test;

namespace {

class Contract : public LibraryTest
{
};

TEST_F(Contract, FactoryAndCatalogueObjectFindEachOther)
{
    auto factory = library.Factory(vixavideofx::CLSID_Emboss);
    ComPtr<IEffectInfo> info, again;
    ASSERT_EQ(factory.As(&info), S_OK);
    ASSERT_EQ(factory.As(&again), S_OK);
    EXPECT_EQ(info.Get(), again.Get());
    ComPtr<IClassFactory> back;
    ASSERT_EQ(info.As(&back), S_OK);
    EXPECT_EQ(back.Get(), factory.Get());

    // The factory dies first: the catalogue object makes another one, of the same effect.
    back.Reset();
    EXPECT_EQ(factory.Detach()->Release(), 0u);
    ASSERT_EQ(info.As(&factory), S_OK);
    ComPtr<IPersist> filter;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IPersist, reinterpret_cast<void**>(filter.GetAddressOf())), S_OK);
    ASSERT_EQ(factory.As(&again), S_OK);
    EXPECT_EQ(info.Get(), again.Get());

    // The catalogue object dies first: the factory makes another one.
    again.Reset();
    EXPECT_EQ(info.Detach()->Release(), 0u);
    ASSERT_EQ(factory.As(&info), S_OK);
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);
}

// Every pair of threads releases and asks at the same time; a lost or doubled object shows in the counts at the end, a
// dangling pointer as a crash.
TEST_F(Contract, CatalogueObjectFromManyThreads)
{
    const auto factory = library.Factory(vixavideofx::CLSID_Emboss);
    const auto work = [&] {
        for (int i = 0; i < 3000; ++i) {
            ComPtr<IEffectInfo> info;
            ASSERT_EQ(factory.As(&info), S_OK);
            ComPtr<IClassFactory> back;
            ASSERT_EQ(info.As(&back), S_OK);
            ASSERT_EQ(back.Get(), factory.Get());
        }
    };
    std::thread first(work), second(work), third(work);
    first.join();
    second.join();
    third.join();
}

TEST_F(Contract, BothMayDieAtOnce)
{
    for (int i = 0; i < 2000; ++i) {
        auto factory = library.Factory(vixavideofx::CLSID_Emboss);
        ComPtr<IEffectInfo> info;
        ASSERT_EQ(factory.As(&info), S_OK);
        std::thread other([&] {
            ComPtr<IClassFactory> back;
            info.As(&back);
            info.Reset();
        });
        ComPtr<IEffectInfo> again;
        factory.As(&again);
        factory.Reset();
        again.Reset();
        other.join();
    }
}

TEST_F(Contract, LoadsAndUnloads)
{
    for (int i = 0; i < 20; ++i) {
        const HMODULE second = LoadLibraryW(L"VixaVideoFX.dll");
        ASSERT_NE(second, nullptr);
        FreeLibrary(second);
    }
}

} // namespace
