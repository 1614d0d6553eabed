// The browser's stack of effects with its selection and its history.
#pragma once

#include "host/browse/UndoStack.h"
#include "host/effects/EffectStack.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vixahost::browse {

// Every change but a mere change of the selection can be undone. An index that doesn't exist changes nothing. The
// times are milliseconds of any one clock.
class StackModel
{
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    StackModel() = default;
    // Begins with these, the first selected and nothing to undo.
    explicit StackModel(effects::EffectStack items) { Begin(std::move(items)); }

    const effects::EffectStack& Items() const noexcept { return state.items; }
    // The step whose panel is open: none for an empty stack only.
    std::size_t Selected() const noexcept { return state.selected; }
    const effects::EffectStep* Current() const noexcept;

    void Select(std::size_t index) noexcept;
    // Puts the effect after the selected one and selects it.
    void Add(effects::EffectStep step);
    // The selected step becomes this one, with the parameters that its effect had last or else its own. With an empty
    // stack it is added. False when the selected step has that effect already.
    bool Choose(effects::EffectStep step);
    void Remove(std::size_t index);
    // Down by one for +1, up by one for -1; the selection moves along. False at the ends.
    bool Move(std::size_t index, int by);
    void Switch(std::size_t index, bool on);
    // False when the block is the same already.
    bool SetBlock(std::size_t index, const std::vector<std::int32_t>& block, std::uint64_t now);
    void Replace(effects::EffectStack items);

    bool CanUndo() const noexcept { return history.CanUndo(); }
    bool CanRedo() const noexcept { return history.CanRedo(); }
    bool Undo();
    bool Redo();

private:
    struct State
    {
        effects::EffectStack items;
        std::size_t selected = none;
    };

    void Begin(effects::EffectStack items);
    void Record() { history.Record(state, 0, 0); }
    void Remember(const effects::EffectStep& item);

    State state;
    UndoStack<State> history;
    effects::EffectStack remembered; // the last parameters of each effect that another took the place of
};

} // namespace vixahost::browse
