// States to go back to.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace vixahost::browse {

// Holds whole states; the current one is the caller's. A series of changes with one key that follow each other within
// `mergeWithin` milliseconds is undone at once, so that a held arrow key is one step.
template <typename State>
class UndoStack
{
public:
    static constexpr std::uint64_t mergeWithin = 700;
    static constexpr std::size_t limit = 500; // steps; older ones are forgotten

    // `before` is the state that the change left. Key 0 never merges. `now` is any clock in milliseconds.
    void Record(State before, int key, std::uint64_t now)
    {
        const bool merges =
            key != 0 && key == lastKey && !past.empty() && future.empty() && now - lastTime < mergeWithin;
        lastKey = key;
        lastTime = now;
        future.clear();
        if (merges)
            return;
        past.push_back(std::move(before));
        if (past.size() > limit)
            past.erase(past.begin());
    }

    bool CanUndo() const noexcept { return !past.empty(); }
    bool CanRedo() const noexcept { return !future.empty(); }

    // The state to go to from `current`; none when there is none.
    std::optional<State> Undo(State current) { return Move(past, future, std::move(current)); }
    std::optional<State> Redo(State current) { return Move(future, past, std::move(current)); }

private:
    std::optional<State> Move(std::vector<State>& from, std::vector<State>& to, State current)
    {
        if (from.empty())
            return std::nullopt;
        lastKey = 0;
        State state = std::move(from.back());
        from.pop_back();
        to.push_back(std::move(current));
        return state;
    }

    std::vector<State> past, future;
    int lastKey = 0;
    std::uint64_t lastTime = 0;
};

} // namespace vixahost::browse
