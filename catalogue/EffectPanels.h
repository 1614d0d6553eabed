// The settings panels of one catalogue object: one dialog of every class, and the window of the one that its effect
// needs.
#pragma once

#include "dialogs/CColourEffects.h"
#include "dialogs/CDialogInvert.h"
#include "dialogs/CDialogMultiply.h"
#include "dialogs/CDialogNoPropreties.h"
#include "dialogs/CDialogSelectAddPixel.h"
#include "dialogs/CDialogSelectColor.h"
#include "dialogs/CDialogSelectGamma.h"
#include "dialogs/CDialogShiftEdges.h"

#include <vixavideofx/PropertySets.h>

namespace vixa {

// Belongs to the thread that shows the panel.
class EffectPanels
{
public:
    // Creates the effect's panel as a child of `parent`, or takes the one that is open, and lets it edit the property
    // set (not owned; it must live as long as the panel is used). A new panel sends `notifyMessage` to `parent` on each
    // change; an open one keeps its own. The window, or null when it can't be made or the effect is unknown.
    HWND Show(REFCLSID effect, HINSTANCE instance, HWND parent, UINT notifyMessage, IDataPropertySet* propertySet);

    // Puts an open panel's controls back after the defaults were written; those of the convolution effects stay.
    void Reset(REFCLSID effect);

private:
    // In the order in which the contexts are named below.
    CColourEffects addContext, colourContext, invertContext, multiplyContext, gammaContext, shiftContext, plainContext;
    CDialogSelectColor selectColor;
    CDialogInvert invert;
    CDialogMultiply multiply;
    CDialogSelectGamma gamma;
    CDialogShiftEdges shiftEdges;
    CDialogNoPropreties noProperties;
    CDialogSelectAddPixel addPixel;
};

} // namespace vixa
