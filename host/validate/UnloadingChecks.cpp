// Group "unloading": when the library may go, and that it goes.
#include "host/fixtures/OpenObjects.h"
#include "host/fixtures/PushGraph.h"
#include "host/validate/EmbeddedPanel.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

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

// What becomes of the windows when a library that held panels goes.
void WindowsLeft(Subject& library)
{
    enum class Way
    {
        ObjectsFirst, // released, the windows stay
        PanelsFirst,  // windows destroyed, then the objects
        HostsFirst,   // the hosts' windows destroyed, then the objects
        Leaked,       // nothing is released at all
    };
    const auto name = library.File().filename();
    for (const Way way : {Way::ObjectsFirst, Way::PanelsFirst, Way::HostsFirst, Way::Leaked}) {
        std::vector<std::unique_ptr<Embedded>> panels;
        for (const Promise& effect : Promises())
            panels.push_back(std::make_unique<Embedded>(library, *effect.classId, effect.defaults));
        for (const auto& panel : panels) {
            panel->Disturb();
            if (way == Way::PanelsFirst)
                DestroyWindow(panel->panel);
            else if (way == Way::HostsFirst)
                DestroyWindow(panel->host.Handle());
            if (way == Way::Leaked)
                panel->info.Detach();
            panel->info.Reset();
        }
        if (way != Way::Leaked)
            MayGo(library, "with windows that nobody answers for");
        library.Unload();
        Require(!GetModuleHandleW(name.c_str()), "the library does not leave the process");
        for (int i = 0; i < 2; ++i) {
            effects::PanelWindow::Pump();
            for (const auto& panel : panels) {
                panel->Disturb();
                panel->Use();
                RequireNumber(panel->notifications, 0, panel->name + ": notifications by a library that has gone");
            }
        }
    }
}

// The first index of thread-local storage that is free; a process has about a thousand.
long FreeThreadIndex()
{
    const DWORD index = TlsAlloc();
    TlsFree(index);
    return static_cast<long>(index);
}

void LoadsLeaveNothing(Subject& library)
{
    constexpr int loads = 20;
    const auto load = [&] {
        ULONG length = 0;
        library.Info(CLSID_Emboss)->GetEffectName(0x0407, nullptr, &length);
        library.Unload();
    };
    load(); // what the system keeps of a first time is no leak
    const long handles = fixtures::OpenHandles(), index = FreeThreadIndex();
    for (int i = 0; i < loads; ++i)
        load();
    const long handlesLeft = fixtures::OpenHandles() - handles, indicesLeft = FreeThreadIndex() - index;
    Require(handlesLeft < loads / 2 && indicesLeft < loads / 2,
            std::to_string(loads) + " loads leave " + std::to_string(handlesLeft) + " open handles and " +
                std::to_string(indicesLeft) + " indices of thread-local storage behind");
}

void PanelsLeaveNothing(Subject& library)
{
    constexpr int loads = 10;
    const auto load = [&] {
        {
            const Embedded panel(library, CLSID_GammaCorrection, PromiseOf(CLSID_GammaCorrection).defaults);
        }
        library.Unload();
    };
    load();
    const long drawing = fixtures::OpenDrawingObjects(), windows = fixtures::OpenWindows();
    for (int i = 0; i < loads; ++i)
        load();
    const long drawingLeft = fixtures::OpenDrawingObjects() - drawing, windowsLeft = fixtures::OpenWindows() - windows;
    Require(drawingLeft < loads / 2 && windowsLeft < loads / 2,
            std::to_string(loads) + " loads with a panel leave " + std::to_string(drawingLeft) +
                " drawing objects and " + std::to_string(windowsLeft) + " windows behind");
}

constexpr Check unloadingChecks[] = {
    {"unloading", "fresh", "A library that was just loaded may go.", Fresh},
    {"unloading", "objects", "Each factory, catalogue object and filter holds the library, and lets go.",
     ObjectsHoldIt},
    {"unloading", "pins", "Pins and enumerations hold the library too.", PinsHoldIt},
    {"unloading", "locks", "Server locks hold the library without objects.", LocksHoldIt},
    {"unloading", "refusals", "Refused requests leave no object behind.", AfterRefusals},
    {"unloading", "after-streaming", "After a graph has run, the library may go.", AfterStreaming},
    {"unloading", "after-panels", "After a panel was open, the library may go.", AfterPanels},
    {"unloading", "cycles", "Twenty loads and unloads in one process work and leave nothing.", Cycles},
    {"unloading", "windows-left", "Windows that outlive the library do not call into it.", WindowsLeft},
    {"unloading", "handles", "Loads leave no handles and no thread-local storage behind.", LoadsLeaveNothing},
    {"unloading", "drawing-objects", "Loads with panels leave no drawing objects and no windows behind.",
     PanelsLeaveNothing},
};

} // namespace

std::span<const Check> UnloadingChecks()
{
    return unloadingChecks;
}

} // namespace vixahost::validate
