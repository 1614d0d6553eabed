// What the browser works on, without a window: the library, the open medium, the stack and the graph that shows it.
#pragma once

#include "host/browse/LiveGraph.h"
#include "host/browse/Medium.h"
#include "host/browse/StackModel.h"
#include "host/effects/EffectCatalogue.h"

#include <functional>
#include <memory>
#include <optional>

namespace vixahost::browse {

// One thread, in which COM must be running. Everything that changes what is to be seen sends the current frame through
// the graph again; the graph is only built anew when the row of effects or the medium changes.
class Session
{
public:
    // Begins with the sample picture and one step, the catalogue's first effect that is seen without being set.
    // `notify` is called on the graph's thread. Throws HostError.
    explicit Session(std::function<void()> notify);

    const std::vector<effects::CatalogueEntry>& Catalogue() const noexcept { return catalogue; }
    std::filesystem::path LibraryFile() const { return library.File(); }
    LANGID Language() const noexcept { return language; }
    // The catalogue in another language. Every settings panel must be closed.
    void SetLanguage(LANGID newLanguage);

    const StackModel& Stack() const noexcept { return stack; }
    // Changes the stack through a function that takes a StackModel&, and shows the result. True when something changed.
    // Throws HostError when it can't be shown; the stack then stays.
    template <typename Function>
    bool Change(Function change)
    {
        StackModel changed = stack;
        change(changed);
        std::swap(stack, changed);
        if (stack.Items() == changed.Items())
            return false;
        try {
            Show();
        } catch (...) {
            std::swap(stack, changed);
            throw;
        }
        return true;
    }

    const Medium& Open() const noexcept { return *medium; }
    // Throws HostError; the old medium then stays.
    void OpenFile(const std::filesystem::path& file, const media::ClipChoice& choice = {});
    // How the clip was asked to be read.
    const media::ClipChoice& Choice() const noexcept { return clipChoice; }
    // Reads the open clip of YUV with other colours, where it stands. Throws as OpenFile.
    void SetColours(const media::YuvChoice& colours);
    const class Player& Player() const noexcept { return player; }
    void Play(std::uint64_t now) { player.Play(now); }
    void Pause() { player.Pause(); }
    // Pauses on frame `index` and sends it. Throws HostError when it can't be had; the position then stays.
    void Seek(std::int64_t index);
    // Sends the frame that is due, when the graph is ready for it. True when the position has changed. Throws as Seek.
    bool Advance(std::uint64_t now);

    LiveResult Latest() const { return graph->Latest(); }
    bool Busy() const { return graph->Busy(); }
    // Sends the current frame again.
    void Push();
    // The time that the effects took for a frame; ends the live graph and begins a new one.
    double RestartAndMedian();

private:
    void Show();
    void BuildGraph();
    void MoveTo(const class Player& moved);

    std::function<void()> onResult;
    effects::EffectLibrary library; // outlives all that follows
    LANGID language = effects::englishLanguage;
    std::vector<effects::CatalogueEntry> catalogue;
    StackModel stack;
    std::unique_ptr<Medium> medium;
    media::ClipChoice clipChoice;
    class Player player;
    SharedFrame frame;            // the current one
    effects::EffectStack running; // what the graph was built from, with its present parameters
    std::unique_ptr<LiveGraph> graph;
};

} // namespace vixahost::browse
