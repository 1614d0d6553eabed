// Group "panels": the settings windows, embedded as a host embeds them.
#include "host/base/Text.h"
#include "host/validate/EmbeddedPanel.h"

#include <vixavideofx/EffectParameters.h>

#include <optional>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

enum class Kind
{
    Slider,
    Box,
    List
};

// One control that changes a value, and how far in the block that value lies.
struct Control
{
    const GUID* effect;
    int id;
    Kind kind;
    std::size_t index;
};

// The box "Move all sliders" is not among them: its state is written with the next slider's move.
constexpr Control controls[] = {
    {&CLSID_FilterColor, 1005, Kind::Slider, 0},   {&CLSID_FilterColor, 1003, Kind::List, 1},
    {&CLSID_AddPixel, 1007, Kind::Slider, 0},      {&CLSID_AddPixel, 1008, Kind::Slider, 1},
    {&CLSID_AddPixel, 1009, Kind::Slider, 2},      {&CLSID_InvertColor, 1020, Kind::Box, 0},
    {&CLSID_InvertColor, 1021, Kind::Box, 0},      {&CLSID_InvertColor, 1022, Kind::Box, 0},
    {&CLSID_MultiplyPixel, 1029, Kind::Slider, 0}, {&CLSID_GammaCorrection, 1034, Kind::Slider, 0},
    {&CLSID_ShiftEdges, 1038, Kind::Box, 0},       {&CLSID_ShiftEdges, 1039, Kind::Box, 0},
};

void Opens(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const Embedded panel(library, *effect.classId, effect.defaults);
        const std::string name = effect.name;
        Require(GetParent(panel.panel) == panel.host.Handle(), name + ": the panel is no child of the host's window");
        Require((GetWindowLongW(panel.panel, GWL_STYLE) & WS_CHILD) != 0, name + ": the panel is no child window");
        Require((GetWindowLongW(panel.panel, GWL_STYLE) & (WS_CAPTION & ~WS_BORDER)) == 0,
                name + ": the panel has a caption");
        RECT area = {};
        GetWindowRect(panel.panel, &area);
        Require(area.right - area.left > 40 && area.bottom - area.top > 10, name + ": the panel has no size");
        RequireNumber(panel.notifications, 0, name + ": notifications while opening");
        RequireNumber(panel.set.writes, 0, name + ": writes while opening");
    }
}

void PanelArguments(Subject& library)
{
    const effects::PanelWindow host(100, 100);
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        fixtures::RecordedSet set(effect.defaults);
        HWND window = host.Handle();
        RequireResult(host.ShowPanel(*info.Get(), nullptr, &window), E_FAIL,
                      "ShowSettingsDialog without a property set");
        RequireResult(host.ShowPanel(*info.Get(), &set, nullptr), E_FAIL,
                      "ShowSettingsDialog without a place for the window");
        RequireResult(info->ShowSettingsDialog(0, nullptr, WM_APP, &set, &window), E_FAIL,
                      "ShowSettingsDialog without a parent");
        Require(window == nullptr, "ShowSettingsDialog without a parent answers a window");
    }
}

void Reused(Subject& library)
{
    for (const Promise& effect : Promises()) {
        Embedded panel(library, *effect.classId, effect.defaults);
        const HWND first = panel.panel;
        panel.Open();
        Require(panel.panel == first, std::string(effect.name) + ": an open panel is not handed out again");
    }
}

void Reopened(Subject& library)
{
    for (const Promise& effect : Promises()) {
        Embedded panel(library, *effect.classId, effect.defaults);
        DestroyWindow(panel.panel);
        panel.Open();
        Require(GetParent(panel.panel) == panel.host.Handle(), std::string(effect.name) + ": no new panel");
    }
}

void DiesWithTheHost(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        fixtures::RecordedSet set(effect.defaults);
        HWND panel = nullptr;
        {
            const effects::PanelWindow host(100, 100);
            host.ShowPanel(*info.Get(), &set, &panel);
        }
        Require(!IsWindow(panel), std::string(effect.name) + ": the panel outlives the host's window");
        const effects::PanelWindow other(100, 100);
        RequireResult(other.ShowPanel(*info.Get(), &set, &panel), S_OK,
                      std::string(effect.name) + ": ShowSettingsDialog in another window");
        Require(GetParent(panel) == other.Handle(), std::string(effect.name) + ": the panel is not in its new window");
    }
}

std::optional<ParameterDescription> RangeOf(const Control& control)
{
    for (const ParameterDescription& parameter : ParametersOf(*control.effect))
        if (parameter.offset == control.index * sizeof(std::int32_t))
            return parameter;
    return std::nullopt;
}

void Ranges(Subject& library)
{
    for (const Control& control : controls) {
        const Embedded panel(library, *control.effect, PromiseOf(*control.effect).defaults);
        const HWND item = panel.Item(control.id);
        const auto range = RangeOf(control);
        if (control.kind == Kind::Slider && range) {
            RequireNumber(SendMessageW(item, TBM_GETRANGEMIN, 0, 0), range->minimum,
                          panel.name + ": a slider's lower end");
            RequireNumber(SendMessageW(item, TBM_GETRANGEMAX, 0, 0), range->maximum,
                          panel.name + ": a slider's upper end");
        } else if (control.kind == Kind::List && range) {
            RequireNumber(SendMessageW(item, CB_GETCOUNT, 0, 0), static_cast<long long>(range->choices.size()),
                          panel.name + ": the entries of the list");
        }
    }
}

void ShowsTheBlock(Subject& library)
{
    {
        Embedded panel(library, CLSID_AddPixel, std::vector<std::int32_t>{11, -22, 33, 1});
        RequireNumber(panel.Position(1007), 11, "Add pixel: red's slider");
        RequireNumber(panel.Position(1008), -22, "Add pixel: green's slider");
        RequireNumber(panel.Position(1009), 33, "Add pixel: blue's slider");
        Require(panel.Checked(1040), "Add pixel: the box is not ticked");
        // The same panel for another instance of the effect.
        panel.set.Store({1, 2, 3, 0});
        panel.Open();
        RequireNumber(panel.Position(1008), 2, "Add pixel: green's slider for another block");
        Require(!panel.Checked(1040), "Add pixel: the box is ticked for another block");
    }
    {
        const Embedded panel(library, CLSID_FilterColor, std::vector<std::int32_t>{-100, 2});
        RequireNumber(panel.Position(1005), -100, "Filter color: the slider");
        RequireNumber(SendMessageW(panel.Item(1003), CB_GETCURSEL, 0, 0), 2, "Filter color: the list's entry");
    }
    {
        const Embedded panel(library, CLSID_InvertColor, std::vector<std::int32_t>{5});
        Require(panel.Checked(1020) && !panel.Checked(1021) && panel.Checked(1022),
                "Invert color: a mask of 5 does not tick red and blue");
    }
    {
        const Embedded panel(library, CLSID_GammaCorrection, std::vector<std::int32_t>{160});
        RequireNumber(panel.Position(1034), 160, "Gamma correction: the slider");
    }
    {
        const Embedded panel(library, CLSID_MultiplyPixel, std::vector<std::int32_t>{105});
        RequireNumber(panel.Position(1029), 105, "Multiply pixel: the slider");
        WCHAR text[32] = {};
        GetWindowTextW(panel.Item(1030), text, 32);
        Require(std::wstring_view(text) == L"1.05", "Multiply pixel: 105 % is not shown as 1.05");
    }
    {
        const Embedded panel(library, CLSID_ShiftEdges, std::vector<std::int32_t>{9});
        Require(!panel.Checked(1038) && panel.Checked(1039), "Shift edges: kind 9 does not tick Vertical alone");
    }
}

// Changes one control; the block it must lead to.
void Change(const Embedded& panel, const Control& control, std::vector<std::int32_t>& wanted)
{
    switch (control.kind) {
    case Kind::Slider:
        wanted[control.index] = 77;
        panel.Scroll(control.id, 77, TB_ENDTRACK);
        break;
    case Kind::List:
        wanted[control.index] = 2;
        panel.Choose(control.id, 2);
        break;
    case Kind::Box:
        if (*control.effect == CLSID_ShiftEdges) // both are ticked at first
            wanted[0] = control.id == 1038 ? 9 : 10;
        else
            wanted[0] = control.id == 1020 ? 4 : control.id == 1021 ? 2 : 1;
        panel.Tick(control.id, *control.effect != CLSID_ShiftEdges);
        break;
    }
}

void Writes(Subject& library)
{
    for (const Control& control : controls) {
        auto wanted = PromiseOf(*control.effect).defaults;
        const Embedded panel(library, *control.effect, wanted);
        Change(panel, control, wanted);
        const std::string what = panel.name + ", control " + std::to_string(control.id);
        RequireNumber(panel.set.writes, 1, what + ": the number of writes");
        Require(panel.set.Block() == wanted, what + ": the wrong block was written");
    }
}

void Notifies(Subject& library)
{
    for (const Control& control : controls) {
        auto wanted = PromiseOf(*control.effect).defaults;
        const Embedded panel(library, *control.effect, wanted);
        Change(panel, control, wanted);
        effects::PanelWindow::Pump();
        const std::string what = panel.name + ", control " + std::to_string(control.id);
        RequireNumber(panel.notifications, 1, what + ": the number of notifications");
        Require(panel.bare, what + ": a notification carries parameters");
        RequireNumber(panel.writesBefore, 1, what + ": the writes before the notification");
        RequireNumber(panel.host.otherMessages, 0, what + ": messages that the host did not ask for");
    }
}

void Dragging(Subject& library)
{
    for (const Control& control : controls) {
        if (control.kind != Kind::Slider)
            continue;
        const Embedded panel(library, *control.effect, PromiseOf(*control.effect).defaults);
        panel.Scroll(control.id, 60, TB_THUMBTRACK);
        panel.Scroll(control.id, 61, TB_THUMBPOSITION);
        RequireNumber(panel.set.writes, 0, panel.name + ": writes during a drag");
        panel.Scroll(control.id, 61, TB_ENDTRACK);
        RequireNumber(panel.set.writes, 1, panel.name + ": writes at its end");
        RequireNumber(panel.notifications, 1, panel.name + ": notifications at its end");
    }
}

void MoveAll(Subject& library)
{
    const Embedded panel(library, CLSID_AddPixel, std::vector<std::int32_t>{0, 0, 0, 1});
    panel.Scroll(1007, 100, TB_ENDTRACK);
    Require(panel.set.Block() == std::vector<std::int32_t>({100, 100, 100, 1}),
            "with \"Move all sliders\" the other sliders do not follow");
    panel.Scroll(1008, 250, TB_ENDTRACK);
    Require(panel.set.Block() == std::vector<std::int32_t>({250, 250, 250, 1}),
            "with \"Move all sliders\" the other sliders do not follow a second time");
}

void LastBox(Subject& library)
{
    const Embedded panel(library, CLSID_ShiftEdges, std::vector<std::int32_t>{10});
    panel.Tick(1038, false);
    Require(panel.Checked(1038) && panel.Checked(1039), "clearing the last box does not tick both again");
    RequireNumber(panel.set.Block().at(0), 7, "the kind after the last box was cleared");
}

void ResetsWithDefaults(Subject& library)
{
    {
        Embedded panel(library, CLSID_AddPixel, std::vector<std::int32_t>{11, 22, 33, 0});
        panel.info->SetDefaults(&panel.set);
        RequireNumber(panel.Position(1007), 0, "Add pixel: red's slider after SetDefaults");
    }
    {
        Embedded panel(library, CLSID_InvertColor, std::vector<std::int32_t>{7});
        panel.info->SetDefaults(&panel.set);
        Require(!panel.Checked(1020) && !panel.Checked(1021) && !panel.Checked(1022),
                "Invert color: boxes are ticked after SetDefaults");
    }
    Embedded panel(library, CLSID_GammaCorrection, std::vector<std::int32_t>{160});
    panel.info->SetDefaults(&panel.set);
    RequireNumber(panel.Position(1034), 100, "Gamma correction: the slider after SetDefaults");
}

void EmptySet(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const Embedded panel(library, *effect.classId, {});
        RequireNumber(panel.set.writes, 0, std::string(effect.name) + ": writes to an empty property set");
    }
}

void Translated(Subject& library)
{
    auto file = library.File();
    file.replace_filename(file.stem().wstring() + L"_de-DE.nls");
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES)
        Skip("no German language file lies beside the library");
    const auto label = [&](ULONG language) {
        const auto info = library.Info(CLSID_InvertColor);
        ULONG length = 0;
        info->GetEffectName(language, nullptr, &length);
        const Embedded panel(library, CLSID_InvertColor, std::vector<std::int32_t>{0});
        WCHAR text[64] = {};
        GetWindowTextW(panel.Item(1020), text, 64);
        return std::wstring(text);
    };
    const std::wstring german = label(0x0407), english = label(1033);
    Require(english == L"Red", "the red box reads \"" + Utf8(english) + "\" in English");
    Require(german != english && !german.empty(), "a panel's labels do not follow the language");
}

constexpr Check panelChecks[] = {
    {"panels", "opens", "Every panel opens silently as a child of the host's window.", Opens},
    {"panels", "arguments", "Without a property set, a place for the window or a parent: E_FAIL.", PanelArguments},
    {"panels", "reused", "An open panel is handed out again.", Reused},
    {"panels", "reopened", "A closed panel is made anew.", Reopened},
    {"panels", "dies-with-the-host", "A panel goes with the host's window and comes back in another.", DiesWithTheHost},
    {"panels", "ranges", "Sliders and lists have the ranges of the public parameter description.", Ranges},
    {"panels", "shows-the-block", "The controls show the property set's values.", ShowsTheBlock},
    {"panels", "writes", "Every control writes the changed block once.", Writes},
    {"panels", "notifies", "Every change is announced once, after it was written, with the host's message.", Notifies},
    {"panels", "dragging", "A drag writes once, at its end.", Dragging},
    {"panels", "move-all", "Linked sliders move together.", MoveAll},
    {"panels", "last-box", "Shift edges always has a direction.", LastBox},
    {"panels", "defaults", "SetDefaults puts an open panel back.", ResetsWithDefaults},
    {"panels", "empty-set", "A property set without a block is no obstacle.", EmptySet},
    {"panels", "language", "A panel speaks the language that is current when it opens.", Translated},
};

} // namespace

std::span<const Check> PanelChecks()
{
    return panelChecks;
}

} // namespace vixahost::validate
