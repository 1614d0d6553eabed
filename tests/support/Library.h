// The library as a host sees it: loaded beside the test program, reached through its exports only.
#pragma once

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectFilter.h>

#include <gtest/gtest.h>
#include <windows.h>
#include <wrl/client.h>

#include <array>

namespace test {

using Microsoft::WRL::ComPtr;

struct Effect
{
    const char* name;
    GUID clsid;
};

inline const std::array<Effect, 13> effects = {{
    {"Add pixel", vixavideofx::CLSID_AddPixel},
    {"Filter color", vixavideofx::CLSID_FilterColor},
    {"Invert color", vixavideofx::CLSID_InvertColor},
    {"Multiply pixel", vixavideofx::CLSID_MultiplyPixel},
    {"Gamma correction", vixavideofx::CLSID_GammaCorrection},
    {"Detect edges", vixavideofx::CLSID_DetectEdges},
    {"Emboss", vixavideofx::CLSID_Emboss},
    {"Enhance details", vixavideofx::CLSID_EnhanceDetails},
    {"Enhance edges", vixavideofx::CLSID_EnhanceEdges},
    {"Enhance focus", vixavideofx::CLSID_EnhanceFocus},
    {"Light edges", vixavideofx::CLSID_LightEdges},
    {"Shift edges", vixavideofx::CLSID_ShiftEdges},
    {"Soften filter", vixavideofx::CLSID_SoftenFilter},
}};

class Library
{
public:
    Library() : module(LoadLibraryW(L"VixaVideoFX.dll"))
    {
        if (!module)
            ADD_FAILURE() << "VixaVideoFX.dll does not load: error " << GetLastError();
        getClassObject = Function<decltype(getClassObject)>("DllGetClassObject");
        canUnloadNow = Function<decltype(canUnloadNow)>("DllCanUnloadNow");
    }
    ~Library() { FreeLibrary(module); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <typename Pointer>
    Pointer Function(const char* name) const
    {
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

    ComPtr<IClassFactory> Factory(REFCLSID clsid) const
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())), S_OK);
        return factory;
    }

    template <typename Interface = IBaseFilter>
    ComPtr<Interface> Create(REFCLSID clsid) const
    {
        ComPtr<Interface> object;
        EXPECT_EQ(Factory(clsid)->CreateInstance(nullptr, __uuidof(Interface),
                                                 reinterpret_cast<void**>(object.GetAddressOf())),
                  S_OK);
        return object;
    }

    HMODULE module;
    HRESULT(WINAPI* getClassObject)(REFCLSID, REFIID, void**);
    HRESULT(WINAPI* canUnloadNow)();
};

// A test that closes the books: no object of the library is left when it ends.
class LibraryTest : public testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(library.canUnloadNow(), S_OK) << "an object of the library is still alive"; }

    Library library;
};

} // namespace test
