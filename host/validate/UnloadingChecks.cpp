// Group "unloading": when the library may go, and that it goes.
#include "host/effects/PanelWindow.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

void MayGo(Subject& library, const std::string& when)
{
    RequireResult(library.CanUnload(), S_OK, "DllCanUnloadNow " + when);
}

void MustStay(Subject& library, const std::string& why)
{
    RequireResult(library.CanUnload(), S_FALSE, "DllCanUnloadNow with " + why);
}

void Fresh(Subject& library)
{
    MayGo(library, "after loading");
}

void ObjectsHoldIt(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const std::string name = effect.name;
        {
            const auto factory = library.Factory(*effect.classId);
            MustStay(library, name + "'s factory");
        }
        MayGo(library, "after " + name + "'s factory");
        {
            const auto info = library.Info(*effect.classId);
            MustStay(library, name + "'s catalogue object");
        }
        MayGo(library, "after " + name + "'s catalogue object");
        {
            const auto filter = library.Filter(*effect.classId);
            MustStay(library, name + "'s filter");
        }
        MayGo(library, "after " + name + "'s filter");
    }
}

void PinsHoldIt(Subject& library)
{
    ComPtr<IPin> pin;
    library.Filter(CLSID_Emboss)->FindPin(L"Out", &pin);
    MustStay(library, "a pin");
    pin.Reset();
    MayGo(library, "after a pin");
    ComPtr<IEnumPins> pins;
    library.Filter(CLSID_Emboss)->EnumPins(&pins);
    MustStay(library, "an enumeration of pins");
    pins.Reset();
    MayGo(library, "after an enumeration");
}

void LocksHoldIt(Subject& library)
{
    auto factory = library.Factory(CLSID_Emboss);
    factory->LockServer(TRUE);
    factory->LockServer(TRUE);
    factory.Reset();
    MustStay(library, "two server locks and no object");
    factory = library.Factory(CLSID_AddPixel);
    factory->LockServer(FALSE);
    factory.Reset();
    MustStay(library, "one server lock and no object");
    factory = library.Factory(CLSID_AddPixel);
    factory->LockServer(FALSE);
    factory.Reset();
    MayGo(library, "after the last lock");
}

void AfterRefusals(Subject& library)
{
    void* object = nullptr;
    library.Factory(CLSID_Emboss)->CreateInstance(nullptr, IID_IClassFactory, &object);
    library.Factory(CLSID_Emboss)->QueryInterface(IID_IBaseFilter, &object);
    library.Factory(CLSID_Emboss)->CreateInstance(nullptr, IID_IUnknown, nullptr);
    library.ClassObject(IID_IUnknown, IID_IClassFactory, &object);
    MayGo(library, "after refused requests");
}

void AfterStreaming(Subject& library)
{
    for (const Promise& effect : Promises()) {
        {
            const auto filter = library.Filter(*effect.classId);
            fixtures::RecordedSet set(effect.working);
            Parameters(filter.Get())->SetPropertySet(&set);
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(16, 16));
            graph.Through(std::vector<std::uint8_t>(16 * 16 * 4, 100));
        }
        MayGo(library, std::string("after a graph with ") + effect.name);
    }
}

void AfterPanels(Subject& library)
{
    for (const Promise& effect : Promises()) {
        {
            const auto info = library.Info(*effect.classId);
            const effects::PanelWindow host(200, 200);
            fixtures::RecordedSet set(effect.defaults);
            HWND panel = nullptr;
            host.ShowPanel(*info.Get(), &set, &panel);
        }
        MayGo(library, std::string("after the panel of ") + effect.name);
    }
}

void Cycles(Subject& library)
{
    library.Unload();
    const auto name = library.File().filename();
    Require(!GetModuleHandleW(name.c_str()), "the library does not leave the process");
    for (int i = 0; i < 20; ++i) {
        {
            const auto info = library.Info(CLSID_Emboss);
            ULONG length = 0;
            RequireResult(info->GetEffectName(i % 2 ? 0x0407 : 1033, nullptr, &length), S_OK, "GetEffectName");
        }
        MayGo(library, "in load number " + std::to_string(i + 1));
        library.Unload();
        Require(!GetModuleHandleW(name.c_str()), "the library stays after load number " + std::to_string(i + 1));
    }
}

void LanguageFilesGo(Subject& library)
{
    library.Unload();
    DWORD before = 0, after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 5; ++i) {
        ULONG length = 0;
        library.Info(CLSID_Emboss)->GetEffectName(0x0407, nullptr, &length);
        library.Unload();
        if (i == 0)
            GetProcessHandleCount(GetCurrentProcess(), &before);
    }
    GetProcessHandleCount(GetCurrentProcess(), &after);
    Require(after <= before + 2, "four loads leave " + std::to_string(after - before) + " open handles behind");
}

constexpr Check checks[] = {
    {"unloading", "fresh", "A library that was just loaded may go.", Fresh},
    {"unloading", "objects", "Each factory, catalogue object and filter holds the library, and lets go.",
     ObjectsHoldIt},
    {"unloading", "pins", "Pins and enumerations hold the library too.", PinsHoldIt},
    {"unloading", "locks", "Server locks hold the library without objects.", LocksHoldIt},
    {"unloading", "refusals", "Refused requests leave no object behind.", AfterRefusals},
    {"unloading", "after-streaming", "After a graph has run, the library may go.", AfterStreaming},
    {"unloading", "after-panels", "After a panel was open, the library may go.", AfterPanels},
    {"unloading", "cycles", "Twenty loads and unloads in one process work and leave nothing.", Cycles},
    {"unloading", "handles", "Loads with a language leave no handles open.", LanguageFilesGo},
};

} // namespace

std::span<const Check> UnloadingChecks()
{
    return checks;
}

} // namespace vixahost::validate
