#include "host/browse/StackModel.h"

#include <algorithm>

namespace vixahost::browse {

const effects::EffectStep* StackModel::Current() const noexcept
{
    return state.selected < state.items.size() ? &state.items[state.selected] : nullptr;
}

void StackModel::Select(std::size_t index) noexcept
{
    if (index < state.items.size())
        state.selected = index;
}

void StackModel::Add(effects::EffectStep step)
{
    Record();
    const std::size_t position = state.items.empty() ? 0 : state.selected + 1;
    state.items.insert(state.items.begin() + static_cast<std::ptrdiff_t>(position), std::move(step));
    state.selected = position;
}

bool StackModel::Choose(effects::EffectStep step)
{
    const effects::EffectStep* const current = Current();
    if (current && IsEqualGUID(current->classId, step.classId))
        return false;
    const auto known = std::find_if(remembered.begin(), remembered.end(), [&](const effects::EffectStep& item) {
        return IsEqualGUID(item.classId, step.classId) != FALSE;
    });
    if (known != remembered.end())
        step.block = known->block;
    if (!current) {
        Add(std::move(step));
        return true;
    }
    Record();
    Remember(*current);
    state.items[state.selected] = std::move(step);
    return true;
}

void StackModel::Remember(const effects::EffectStep& item)
{
    std::erase_if(remembered,
                  [&](const effects::EffectStep& old) { return IsEqualGUID(old.classId, item.classId) != FALSE; });
    remembered.push_back(item);
}

void StackModel::Remove(std::size_t index)
{
    if (index >= state.items.size())
        return;
    Record();
    state.items.erase(state.items.begin() + static_cast<std::ptrdiff_t>(index));
    if (state.items.empty())
        state.selected = none;
    else if (state.selected > index || state.selected == state.items.size())
        --state.selected;
}

bool StackModel::Move(std::size_t index, int by)
{
    const std::size_t other = index + static_cast<std::size_t>(by);
    if (index >= state.items.size() || other >= state.items.size())
        return false;
    Record();
    std::swap(state.items[index], state.items[other]);
    if (state.selected == index)
        state.selected = other;
    else if (state.selected == other)
        state.selected = index;
    return true;
}

void StackModel::Switch(std::size_t index, bool on)
{
    if (index >= state.items.size() || state.items[index].on == on)
        return;
    Record();
    state.items[index].on = on;
}

bool StackModel::SetBlock(std::size_t index, const std::vector<std::int32_t>& block, std::uint64_t now)
{
    if (index >= state.items.size() || state.items[index].block == block)
        return false;
    history.Record(state, static_cast<int>(index) + 1, now);
    state.items[index].block = block;
    return true;
}

void StackModel::Replace(effects::EffectStack items)
{
    Record();
    Begin(std::move(items));
}

void StackModel::Begin(effects::EffectStack items)
{
    state.items = std::move(items);
    state.selected = state.items.empty() ? none : 0;
}

bool StackModel::Undo()
{
    auto to = history.Undo(state);
    if (to)
        state = std::move(*to);
    return to.has_value();
}

bool StackModel::Redo()
{
    auto to = history.Redo(state);
    if (to)
        state = std::move(*to);
    return to.has_value();
}

} // namespace vixahost::browse
