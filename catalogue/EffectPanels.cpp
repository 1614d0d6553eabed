#include "catalogue/EffectPanels.h"

#include <vixavideofx/ClassIds.h>

namespace vixa {

using namespace vixavideofx;

namespace {

// The dialog templates, one a panel.
enum Template : std::uint32_t
{
    SelectColorTemplate = 800,
    AddPixelTemplate = 801,
    InvertTemplate = 802,
    MultiplyTemplate = 803,
    GammaTemplate = 804,
    ShiftEdgesTemplate = 805,
    NoPropertiesTemplate = 806,
};

struct Request
{
    HINSTANCE instance;
    HWND parent;
    UINT notifyMessage;
    IDataPropertySet* propertySet;
};

void Open(CBaseWnd& panel, CColourEffects& context, Template dialogTemplate, const Request& request)
{
    context.SetInstance(request.instance);
    panel.SetContext(&context);
    panel.Create(request.parent, dialogTemplate);
}

template <typename Panel>
HWND ShowPanel(Panel& panel, CColourEffects& context, Template dialogTemplate, const Request& request)
{
    if (panel.GetHwnd()) {
        panel.SetParams(request.propertySet);
        const HWND window = panel.GetHwnd();
        panel.OnReuse();
        panel.LoadValues();
        return window;
    }
    Open(panel, context, dialogTemplate, request);
    panel.SetParams(request.propertySet);
    panel.LoadValues();
    panel.SetNotifyMessage(request.notifyMessage);
    return panel.GetHwnd();
}

// A panel without controls has nothing to load and nobody to tell.
HWND ShowPanel(CDialogNoPropreties& panel, CColourEffects& context, Template dialogTemplate, const Request& request)
{
    if (panel.GetHwnd())
        panel.OnReuse();
    else
        Open(panel, context, dialogTemplate, request);
    return panel.GetHwnd();
}

} // namespace

HWND EffectPanels::Show(REFCLSID effect, HINSTANCE instance, HWND parent, UINT notifyMessage,
                        IDataPropertySet* propertySet)
{
    const Request request{instance, parent, notifyMessage, propertySet};
    if (effect == CLSID_FilterColor)
        return ShowPanel(selectColor, colourContext, SelectColorTemplate, request);
    if (effect == CLSID_AddPixel)
        return ShowPanel(addPixel, addContext, AddPixelTemplate, request);
    if (effect == CLSID_InvertColor)
        return ShowPanel(invert, invertContext, InvertTemplate, request);
    if (effect == CLSID_MultiplyPixel)
        return ShowPanel(multiply, multiplyContext, MultiplyTemplate, request);
    if (effect == CLSID_GammaCorrection)
        return ShowPanel(gamma, gammaContext, GammaTemplate, request);
    if (effect == CLSID_ShiftEdges)
        return ShowPanel(shiftEdges, shiftContext, ShiftEdgesTemplate, request);
    for (const CLSID& plain : {CLSID_DetectEdges, CLSID_Emboss, CLSID_EnhanceDetails, CLSID_EnhanceEdges,
                               CLSID_EnhanceFocus, CLSID_LightEdges, CLSID_SoftenFilter})
        if (effect == plain)
            return ShowPanel(noProperties, plainContext, NoPropertiesTemplate, request);
    return nullptr;
}

void EffectPanels::Reset(REFCLSID effect)
{
    if (effect == CLSID_FilterColor && selectColor.GetHwnd())
        selectColor.ResetControls();
    else if (effect == CLSID_AddPixel && addPixel.GetHwnd())
        addPixel.ResetControls();
    else if (effect == CLSID_InvertColor && invert.GetHwnd())
        invert.ClearChecks();
    else if (effect == CLSID_MultiplyPixel && multiply.GetHwnd())
        multiply.ResetControls();
    else if (effect == CLSID_GammaCorrection && gamma.GetHwnd())
        gamma.ResetControls();
}

} // namespace vixa
