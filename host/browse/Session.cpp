#include "host/browse/Session.h"

#include "host/media/SampleScene.h"

#include <algorithm>

namespace vixahost::browse {

Session::Session(std::function<void()> notify)
    : onResult(std::move(notify)), catalogue(effects::ReadCatalogue(library)),
      medium(std::make_unique<Medium>(media::DrawSampleScene(), "sample")), frame(medium->Frame(0))
{
    // One that can be seen: an effect without parameters always does something.
    const auto seen = std::find_if(catalogue.begin(), catalogue.end(), [](const effects::CatalogueEntry& entry) {
        return vixavideofx::ParametersOf(entry.classId).empty();
    });
    if (!catalogue.empty())
        stack = StackModel({effects::StepOf(seen == catalogue.end() ? catalogue.front() : *seen)});
    BuildGraph();
    Push();
}

void Session::SetLanguage(LANGID newLanguage)
{
    catalogue = effects::ReadCatalogue(library, newLanguage);
    language = newLanguage;
}

void Session::OpenFile(const std::filesystem::path& file, const media::ClipChoice& choice)
{
    auto opened = std::make_unique<Medium>(file, choice);
    SharedFrame first = opened->Frame(0);
    effects::EffectStack steps = effects::SwitchedOn(stack.Items());
    auto fresh = std::make_unique<LiveGraph>(library, opened->Format(), steps, opened->Duration(), onResult);
    medium = std::move(opened);
    clipChoice = choice;
    frame = std::move(first);
    player = {medium->Format(), medium->FrameCount()};
    running = std::move(steps);
    graph = std::move(fresh);
    Push();
}

void Session::SetColours(const media::YuvChoice& colours)
{
    const std::int64_t position = player.Position();
    media::ClipChoice choice = clipChoice;
    choice.colours = colours;
    OpenFile(std::filesystem::path(medium->File()), choice);
    Seek(position);
}

void Session::Seek(std::int64_t index)
{
    class Player moved = player;
    moved.Seek(index);
    MoveTo(moved);
}

void Session::MoveTo(const class Player& moved)
{
    frame = medium->Frame(moved.Position());
    player = moved;
    Push();
}

bool Session::Advance(std::uint64_t now)
{
    if (!player.Playing() || graph->Busy())
        return false;
    class Player moved = player;
    if (moved.Advance(now) == player.Position()) {
        player = moved;
        return !player.Playing();
    }
    MoveTo(moved);
    return true;
}

void Session::Push()
{
    graph->Push(frame);
}

double Session::RestartAndMedian()
{
    const double median = graph->EndAndMedian();
    BuildGraph();
    Push();
    return median;
}

void Session::BuildGraph()
{
    effects::EffectStack steps = effects::SwitchedOn(stack.Items());
    graph = std::make_unique<LiveGraph>(library, medium->Format(), steps, medium->Duration(), onResult);
    running = std::move(steps);
}

void Session::Show()
{
    const effects::EffectStack items = effects::SwitchedOn(stack.Items());
    const bool sameRow = std::equal(items.begin(), items.end(), running.begin(), running.end(),
                                    [](const effects::EffectStep& a, const effects::EffectStep& b) {
                                        return IsEqualGUID(a.classId, b.classId) != FALSE;
                                    });
    if (!sameRow || graph->Failed()) {
        BuildGraph();
    } else {
        for (std::size_t i = 0; i < items.size(); ++i)
            if (items[i].block != running[i].block)
                graph->SetBlock(i, items[i].block);
        running = items;
    }
    Push();
}

} // namespace vixahost::browse
