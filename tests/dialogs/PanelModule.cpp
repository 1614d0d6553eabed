// A small library that holds the panels, to be loaded and unloaded by a test.
#include "tests/dialogs/PanelModule.h"

#include "dialogs/CColourEffects.h"
#include "dialogs/CDialogInvert.h"
#include "dialogs/CDialogMultiply.h"
#include "dialogs/CDialogNoPropreties.h"
#include "dialogs/CDialogSelectAddPixel.h"
#include "dialogs/CDialogSelectColor.h"
#include "dialogs/CDialogSelectGamma.h"
#include "dialogs/CDialogShiftEdges.h"
#include "localisation/ModuleBase.h"

#include <memory>

namespace {

ModuleBase library;

struct Panels final : PanelModulePanels
{
    Panels() { context.SetInstance(library.ModuleHandle()); }
    template <typename Dialog>
    void open(Dialog& dialog, HWND host, UINT message, std::uint32_t templateId, IDataPropertySet* set)
    {
        dialog.SetContext(&context);
        dialog.Create(host, templateId);
        dialog.SetParams(set);
        dialog.SetNotifyMessage(message);
        dialog.Show(1);
    }
    int Open(HWND host, UINT message, IDataPropertySet* set) override
    {
        open(colour, host, message, 800, set);
        open(add, host, message, 801, set);
        open(invert, host, message, 802, set);
        open(multiply, host, message, 803, set);
        open(gamma, host, message, 804, set);
        open(shift, host, message, 805, set);
        open(empty, host, message, 806, set);
        int count = 0;
        for (CBaseWnd* dialog :
             std::initializer_list<CBaseWnd*>{&colour, &add, &invert, &multiply, &gamma, &shift, &empty})
            count += dialog->GetHwnd() != nullptr;
        return count;
    }
    void Release() override { delete this; }

    CColourEffects context;
    CDialogSelectColor colour;
    CDialogSelectAddPixel add;
    CDialogInvert invert;
    CDialogMultiply multiply;
    CDialogSelectGamma gamma;
    CDialogShiftEdges shift;
    CDialogNoPropreties empty;
};

} // namespace

extern "C" __declspec(dllexport) PanelModulePanels* makePanels()
{
    return new Panels;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH)
        library.Attach(instance);
    if (reason == DLL_PROCESS_DETACH)
        library.Detach();
    return TRUE;
}
