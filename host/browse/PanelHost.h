// The place in the window where the library's settings panel of one effect lives.
#pragma once

#include "host/base/Handles.h"
#include "host/browse/Texts.h"
#include "host/effects/DataPropertySet.h"
#include "host/effects/EffectCatalogue.h"
#include "host/effects/PanelWindow.h"

#include <functional>

namespace vixahost::browse {

class PanelHost : public effects::PanelWindow
{
public:
    // `language` is what the panels speak; it lives as long as this.
    PanelHost(HWND parent, const Texts& language);
    ~PanelHost() override;

    // Opens the effect's panel on a block, or loads the block into the panel that is open already. Throws FailedJob.
    void Open(const effects::CatalogueEntry& entry, const std::vector<std::int32_t>& block);
    // Takes the panel away; the library then keeps nothing of the host's.
    void Close();
    // The defaults, as the library writes them into the open panel's set.
    void Reset();

    HWND Panel() const noexcept { return panel; }
    SIZE PanelSize() const noexcept;
    // True when the open panel has nothing to set.
    bool IsEmpty() const noexcept { return !panel || !GetWindow(panel, GW_CHILD); }

    // Called with the new block when the user has changed something.
    std::function<void(const std::vector<std::int32_t>&)> onNewBlock;

private:
    void Show();
    void NameSliders() const;
    void ReplaceFont();

    Microsoft::WRL::ComPtr<IEffectInfo> info;
    Microsoft::WRL::ComPtr<effects::DataPropertySet> set;
    const Texts& texts;
    UniqueFont font; // the panel's, where its own lacks letters
    GUID classId = {};
    HWND panel = nullptr;
};

} // namespace vixahost::browse
