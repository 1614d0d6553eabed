// The library's entry points as a foreign host uses them.
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

TEST_F(Contract, ClassObjects)
{
    void* const untouched = &library;
    void* object = untouched;

    // The interface is judged before the class.
    EXPECT_EQ(library.getClassObject(effects[0].clsid, IID_IEffectInfo, &object), E_NOINTERFACE);
    EXPECT_EQ(library.getClassObject(IID_IUnknown, IID_IEffectInfo, &object), E_NOINTERFACE);
    EXPECT_EQ(library.getClassObject(IID_IUnknown, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, untouched);
    EXPECT_EQ(library.getClassObject(effects[0].clsid, IID_IClassFactory, nullptr), E_POINTER);

    for (const auto& effect : effects) {
        ComPtr<IUnknown> factory;
        ASSERT_EQ(library.getClassObject(effect.clsid, IID_IUnknown, reinterpret_cast<void**>(factory.GetAddressOf())),
                  S_OK)
            << effect.name;
        // The factory itself: it can be called as a class factory without another query.
        auto* const asFactory = static_cast<IClassFactory*>(factory.Get());
        ComPtr<IBaseFilter> filter;
        EXPECT_EQ(asFactory->CreateInstance(nullptr, IID_IBaseFilter, reinterpret_cast<void**>(filter.GetAddressOf())),
                  S_OK);
        EXPECT_EQ(library.canUnloadNow(), S_FALSE);
    }
}

TEST_F(Contract, CreateInstance)
{
    const auto factory = library.Factory(vixavideofx::CLSID_Emboss);
    void* object = &library;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IBaseFilter, &object), E_NOINTERFACE) << "aggregation";
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE) << "a failed query";
    EXPECT_EQ(object, nullptr);
}

TEST_F(Contract, FactoryInterfacesAndCounts)
{
    auto factory = library.Factory(vixavideofx::CLSID_SoftenFilter);
    EXPECT_EQ(factory->AddRef(), 2u);
    EXPECT_EQ(factory->Release(), 1u);
    void* object = &library;
    EXPECT_EQ(factory->QueryInterface(IID_IBaseFilter, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory.Detach()->Release(), 0u);
}

TEST_F(Contract, ServerLocksKeepTheLibrary)
{
    auto factory = library.Factory(vixavideofx::CLSID_Emboss);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    auto other = library.Factory(vixavideofx::CLSID_AddPixel);
    factory.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);
    EXPECT_EQ(other->LockServer(FALSE), S_OK);
    other.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_OK);
}

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
