// The base of the settings panels: what the catalogue asks of a panel, whichever effect it belongs to.
#pragma once

#include "dialogs/CColourEffects.h"
#include "framework/CBaseObject.h"
#include "parameters/BlockReader.h"
#include "ui/CBaseCheckBox.h"
#include "ui/CBaseListBox.h"
#include "ui/CBaseSlider.h"
#include "ui/CBaseText.h"
#include "ui/CBaseWnd.h"

#include <vixavideofx/PropertySets.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <variant>

class EffectPanel : public CBaseWnd
{
public:
    // `templateId` is the panel's dialog template in the library.
    explicit EffectPanel(std::uint32_t templateId) : dialogTemplate(templateId) {}

    // Shows the property set's values in the controls; a panel without controls shows nothing.
    virtual void LoadValues() {}

    // Puts the controls back after the effect's defaults were written. Not every panel does: some stay as they are
    // until they are shown again.
    virtual void ResetControls() {}

    // Makes the window as a child of `parent` and loads the values, or, when the window exists, hands it out again for
    // another property set (not owned; it must live as long as the panel is used). A new window sends `notifyMessage`
    // to `parent` on each change; one that exists keeps its own. `*window` is null when no window can be made, or when
    // the host destroys it while its values are read.
    void Show(HINSTANCE library, HWND parent, UINT notifyMessage, IDataPropertySet* propertySet, HWND* window);
    using CBaseWnd::Show;

protected:
    // One control of a panel: the wrapper that drives it; the text that it shows and those of its tooltip, as string
    // resources, 0 for none; and the widest of the values that it shows.
    struct Control
    {
        int id = 0;
        std::variant<std::monostate, CBaseText*, CBaseSlider*, CBaseListBox*, CBaseCheckBox*> wrapper;
        UINT label = 0;
        UINT tip = 0;
        UINT tipTitle = 0;
        const wchar_t* widest = nullptr;
    };

    // What WM_INITDIALOG asks of every panel with controls: attaches the wrappers, makes tooltips and message hook,
    // shows the labels, and gives the controls the room they need. `focusControl` is the message's wParam.
    HWND SetUp(WPARAM focusControl, std::initializer_list<Control> controls);

    // The block of the property set: none when there is no set, when reading fails or gives nothing. What a short read
    // leaves out is 0.
    template <typename Block>
    std::optional<Block> TryReadBlock() const noexcept
    {
        if (!params)
            return std::nullopt;
        const auto read = vixa::ReadBlock(*static_cast<IDataPropertySet*>(params), Block{});
        return read.HasData() ? std::optional(read.block) : std::nullopt;
    }

    // Writes the block, when there is a property set, and tells the host: a handler's last step.
    template <typename Block>
    void StoreBlock(const Block& block)
    {
        if (params)
            static_cast<IDataPropertySet*>(params)->SetData(&block, sizeof block);
        NotifyParent();
    }

private:
    const std::uint32_t dialogTemplate;
    CColourEffects resources;
    CBaseObject alive; // a panel at work holds the library, also when its catalogue object has gone
};

namespace vixa {

// Makes an effect's panel: what an effect's row names.
using PanelMaker = std::shared_ptr<EffectPanel> (*)();

template <typename Panel>
std::shared_ptr<EffectPanel> MakePanel()
{
    return std::make_shared<Panel>();
}

// The settings panel of one catalogue object: made when it is first shown, retired with its owner. Belongs to the
// thread that shows it, but may go on any. An owner that never showed a panel shares nothing with anybody.
class PanelOwner
{
public:
    PanelOwner() = default;
    ~PanelOwner();
    PanelOwner(const PanelOwner&) = delete;
    PanelOwner& operator=(const PanelOwner&) = delete;

    // As EffectPanel::Show, after the panel has been made when there is none yet. The host's code that runs on the way
    // may destroy this owner.
    void Show(PanelMaker make, HINSTANCE library, HWND parent, UINT notifyMessage, IDataPropertySet* propertySet,
              HWND* window);

    // Puts the controls of an open panel back.
    void Reset();

private:
    std::shared_ptr<EffectPanel> panel;
};

} // namespace vixa
