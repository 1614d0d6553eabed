#include "module/EffectTable.h"

#include "effects/CAddPixel.h"
#include "effects/CConvCorrection.h"
#include "effects/CFilterColor.h"
#include "effects/CGammaCorrection.h"
#include "effects/CMultiplyPixel.h"
#include "effects/CPixelControl.h"

#include <vixavideofx/ClassIds.h>

using namespace vixavideofx;

// No row has an init routine. None describes itself to the filter mapper either: the effects are the host's own, found
// through its categories, and must not turn up in a graph that is built automatically.
CFactoryTemplate g_Templates[] = {
    {L"Add pixel", &CLSID_AddPixel, CAddPixel::CreateInstance, nullptr, nullptr},
    {L"Filter color", &CLSID_FilterColor, CFilterColor::CreateInstance, nullptr, nullptr},
    {L"Invert color", &CLSID_InvertColor, CPixelControl::CreateInstance, nullptr, nullptr},
    {L"Multiply pixel", &CLSID_MultiplyPixel, CMultiplyPixel::CreateInstance, nullptr, nullptr},
    {L"Gamma correction", &CLSID_GammaCorrection, CGammaCorrection::CreateInstance, nullptr, nullptr},
    {L"Detect edges", &CLSID_DetectEdges, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Emboss", &CLSID_Emboss, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Enhance details", &CLSID_EnhanceDetails, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Enhance edges", &CLSID_EnhanceEdges, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Enhance focus", &CLSID_EnhanceFocus, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Light edges", &CLSID_LightEdges, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Shift edges", &CLSID_ShiftEdges, CConvCorrection::CreateInstance, nullptr, nullptr},
    {L"Soften filter", &CLSID_SoftenFilter, CConvCorrection::CreateInstance, nullptr, nullptr},
};
int g_cTemplates = static_cast<int>(std::size(g_Templates));

CFactoryTemplate* FindEffect(REFCLSID clsid) noexcept
{
    for (int row = 0; row < g_cTemplates; ++row)
        if (*g_Templates[row].m_ClsID == clsid)
            return &g_Templates[row];
    return nullptr;
}
