// Group "streaming": frames through each effect, against pixels worked out by hand and against the plain arithmetic.
#include "host/fixtures/PixelModel.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;
using Frame = std::vector<std::uint8_t>;
using Block = std::vector<std::int32_t>;

ComPtr<IBaseFilter> Prepared(Subject& library, const GUID& effect, const Block& block)
{
    auto filter = library.Filter(effect);
    fixtures::RecordedSet set(block);
    RequireResult(Parameters(filter.Get())->SetPropertySet(&set), S_OK, "SetPropertySet");
    return filter;
}

std::string Pixel(const std::uint8_t* bytes)
{
    std::string text = "(";
    for (int i = 0; i < 4; ++i)
        text += (i ? ", " : "") + std::to_string(bytes[i]);
    return text + ")";
}

// One pixel (blue, green, red, fourth) through a point effect; a second one makes up the eight bytes that some of them
// work in.
void Point(Subject& library, const GUID& effect, const Block& block, const Frame& in, const Frame& wanted)
{
    fixtures::PushGraph graph(Prepared(library, effect, block).Get(), fixtures::VideoType(2, 1));
    Frame frame = in;
    frame.insert(frame.end(), in.begin(), in.end());
    frame = graph.Through(frame);
    for (const std::size_t at : {std::size_t{0}, std::size_t{4}})
        if (!std::equal(wanted.begin(), wanted.end(), frame.begin() + static_cast<std::ptrdiff_t>(at)))
            throw Finding{Status::Failed,
                          Pixel(in.data()) + " becomes " + Pixel(&frame[at]) + " instead of " + Pixel(wanted.data())};
}

// The middle of a frame of 3 x 3 pixels, the same in all four bytes; the border must be 0.
void Middle(Subject& library, const GUID& effect, int kind, const Frame& nine, int wanted)
{
    fixtures::PushGraph graph(Prepared(library, effect, {kind}).Get(), fixtures::VideoType(3, 3));
    Frame frame;
    for (const std::uint8_t value : nine)
        frame.insert(frame.end(), 4, value);
    frame = graph.Through(frame);
    for (std::size_t i = 0; i < frame.size(); ++i)
        RequireNumber(frame[i], i / 4 == 4 ? wanted : 0, "byte " + std::to_string(i) + " of a frame of 3 x 3 pixels");
}

void AddPixel(Subject& library)
{
    Point(library, CLSID_AddPixel, {50, -30, 0, 0}, {100, 20, 230, 9}, {100, 0, 255, 9});
    Point(library, CLSID_AddPixel, {0, 0, 0, 1}, {100, 20, 230, 9}, {100, 20, 230, 9});
    Point(library, CLSID_AddPixel, {-255, 255, 1, 0}, {254, 0, 255, 77}, {255, 255, 0, 77});
}

void FilterColor(Subject& library)
{
    Point(library, CLSID_FilterColor, {40, 2}, {50, 60, 200, 8}, {50, 60, 240, 8});
    Point(library, CLSID_FilterColor, {40, 0}, {50, 60, 200, 8}, {50, 60, 200, 8});
    Point(library, CLSID_FilterColor, {-60, 2}, {60, 50, 200, 8}, {60, 50, 140, 8});
    Point(library, CLSID_FilterColor, {40, 0}, {128, 128, 128, 8}, {168, 128, 128, 8});
    Point(library, CLSID_FilterColor, {40, 0}, {30, 30, 30, 8}, {30, 30, 30, 8});
}

void InvertColor(Subject& library)
{
    Point(library, CLSID_InvertColor, {4}, {10, 20, 30, 40}, {0, 0, 225, 0});
    Point(library, CLSID_InvertColor, {7}, {10, 20, 30, 40}, {245, 235, 225, 0});
    Point(library, CLSID_InvertColor, {0}, {10, 20, 30, 40}, {10, 20, 30, 40});
}

void MultiplyPixel(Subject& library)
{
    Point(library, CLSID_MultiplyPixel, {150}, {100, 200, 10, 77}, {150, 255, 15, 0});
    Point(library, CLSID_MultiplyPixel, {100}, {100, 200, 10, 77}, {100, 200, 10, 0});
    Point(library, CLSID_MultiplyPixel, {0}, {100, 200, 10, 77}, {0, 0, 0, 0});
}

void GammaCorrection(Subject& library)
{
    Point(library, CLSID_GammaCorrection, {200}, {128, 0, 255, 7}, {181, 0, 255, 7});
    Point(library, CLSID_GammaCorrection, {45}, {128, 0, 255, 7}, {55, 0, 255, 7});
    Point(library, CLSID_GammaCorrection, {100}, {128, 1, 254, 7}, {128, 1, 254, 7});
}

void DetectEdges(Subject& library)
{
    Middle(library, CLSID_DetectEdges, 1, {1, 2, 3, 4, 20, 5, 6, 7, 8}, 8 * 20 - 36);
    Middle(library, CLSID_DetectEdges, 1, {9, 9, 9, 9, 9, 9, 9, 9, 9}, 0);
}

void Emboss(Subject& library)
{
    Middle(library, CLSID_Emboss, 2, {10, 20, 0, 30, 99, 40, 0, 50, 60}, 128 - 10 - 20 - 30 + 40 + 50 + 60);
    Middle(library, CLSID_Emboss, 2, {60, 60, 0, 60, 99, 10, 0, 10, 10}, 0);
}

void EnhanceDetails(Subject& library)
{
    Middle(library, CLSID_EnhanceDetails, 3, {0, 50, 0, 50, 100, 50, 0, 50, 0}, 140);
}

void EnhanceEdges(Subject& library)
{
    Middle(library, CLSID_EnhanceEdges, 4, {1, 2, 3, 4, 20, 5, 6, 7, 8}, 9 * 20 - 36);
    Middle(library, CLSID_EnhanceEdges, 4, {33, 33, 33, 33, 33, 33, 33, 33, 33}, 33);
}

void EnhanceFocus(Subject& library)
{
    Middle(library, CLSID_EnhanceFocus, 5, {10, 0, 20, 0, 50, 0, 30, 0, 40}, (350 - 100) / 3);
}

void LightEdges(Subject& library)
{
    Middle(library, CLSID_LightEdges, 6, {0, 50, 0, 60, 40, 70, 0, 80, 0}, 260 - 160);
}

void ShiftEdges(Subject& library)
{
    const Frame nine = {10, 20, 0, 30, 50, 0, 0, 0, 0};
    Middle(library, CLSID_ShiftEdges, 7, nine, 128 + 40);
    Middle(library, CLSID_ShiftEdges, 9, nine, 128 + 30);
    Middle(library, CLSID_ShiftEdges, 10, nine, 128 + 20);
}

void SoftenFilter(Subject& library)
{
    Middle(library, CLSID_SoftenFilter, 8, {0, 1, 2, 3, 4, 5, 6, 7, 8}, 4);
    Middle(library, CLSID_SoftenFilter, 8, {200, 200, 200, 200, 200, 200, 200, 200, 200}, 200);
}

// Noise with runs of equal values, so that hues, ends of the range and edges all occur.
Frame Noise(std::size_t bytes)
{
    Frame frame(bytes);
    std::uint32_t seed = 12345;
    for (auto& byte : frame) {
        seed = seed * 1664525 + 1013904223;
        byte = seed >> 30 == 0   ? std::uint8_t{0}
               : seed >> 30 == 1 ? std::uint8_t{255}
                                 : static_cast<std::uint8_t>(seed >> 20);
    }
    return frame;
}

void WholeFrames(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = Prepared(library, *effect.classId, effect.working);
        for (const auto& [width, height] :
             {std::pair{1L, 1L}, {2L, 2L}, {3L, 3L}, {5L, 7L}, {67L, 9L}, {64L, -16L}, {131L, 33L}}) {
            fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, height));
            const Frame in = Noise(static_cast<std::size_t>(width * std::abs(height)) * 4);
            const Frame out = graph.Through(in);
            const Frame wanted = fixtures::ExpectedFrame(*effect.classId, effect.working, in, width, height);
            const auto wrong = std::mismatch(out.begin(), out.end(), wanted.begin());
            if (wrong.first != out.end()) {
                const long pixel = static_cast<long>(wrong.first - out.begin()) / 4;
                throw Finding{Status::Failed,
                              std::string(effect.name) + ", " + std::to_string(width) + " x " + std::to_string(height) +
                                  ": pixel (" + std::to_string(pixel % width) + ", " + std::to_string(pixel / width) +
                                  "), byte " + std::to_string((wrong.first - out.begin()) % 4) + " is " +
                                  std::to_string(*wrong.first) + " instead of " + std::to_string(*wrong.second)};
            }
        }
    }
}

void Borders(Subject& library)
{
    for (const Promise& effect : Promises()) {
        if (effect.group == 3)
            continue;
        const LONG width = 19, height = 11;
        fixtures::PushGraph graph(Prepared(library, *effect.classId, effect.working).Get(),
                                  fixtures::VideoType(width, height));
        const Frame out = graph.Through(Frame(static_cast<std::size_t>(width * height) * 4, 200));
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x)
                if (y == 0 || x == 0 || y == height - 1 || x == width - 1)
                    for (LONG byte = 0; byte < 4; ++byte)
                        RequireNumber(out[static_cast<std::size_t>((y * width + x) * 4 + byte)], 0,
                                      std::string(effect.name) + ": border pixel (" + std::to_string(x) + ", " +
                                          std::to_string(y) + ")");
    }
}

void InPlace(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::PushGraph graph(Prepared(library, *effect.classId, effect.working).Get(), fixtures::VideoType(8, 8));
        Frame frame(8 * 8 * 4, 100);
        fixtures::HandSample sample(frame);
        RequireResult(graph.Send(&sample), S_OK, "Receive");
        Require(graph.Seen().last == &sample, std::string(effect.name) + ": another sample came out");
        Require(graph.Seen().bytes == frame.data(), std::string(effect.name) + ": the frame was moved");
    }
}

void OneCopy(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::PushGraph graph(Prepared(library, *effect.classId, effect.working).Get(), fixtures::VideoType(8, 8),
                                  fixtures::PushGraph::Allocator::ReadOnly);
        const Frame original = Noise(8 * 8 * 4);
        const Frame wanted = fixtures::ExpectedFrame(*effect.classId, effect.working, original, 8, 8);
        // More frames than there are buffers: a copy that is not given back would end the stream.
        for (int i = 1; i <= 8; ++i) {
            Frame frame = original;
            fixtures::HandSample sample(frame);
            RequireResult(graph.Send(&sample), S_OK, "Receive from a read-only source");
            Require(frame == original, std::string(effect.name) + ": the read-only source's bytes were changed");
            Require(graph.Seen().last != &sample, std::string(effect.name) + ": a read-only sample was handed on");
            RequireNumber(graph.Seen().samples, i, std::string(effect.name) + ": samples delivered");
            Require(graph.Seen().content == wanted, std::string(effect.name) + ": the copy has other pixels");
            Require(graph.Seen().start == sample.start && graph.Seen().end == sample.end,
                    std::string(effect.name) + ": the copy has other times");
        }
    }
}

void TimesUntouched(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::PushGraph graph(Prepared(library, *effect.classId, effect.working).Get(), fixtures::VideoType(8, 8));
        Frame frame(8 * 8 * 4, 100);
        fixtures::HandSample sample(frame);
        graph.Send(&sample);
        RequireNumber(sample.changes, 0,
                      std::string(effect.name) + ": changes to the sample's times, flags, type or length");
        Require(graph.Seen().start == 1234 && graph.Seen().end == 5678, std::string(effect.name) + ": other times");
    }
}

void EndOfStream(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::PushGraph graph(Prepared(library, *effect.classId, effect.working).Get(), fixtures::VideoType(8, 8));
        RequireResult(graph.Input()->EndOfStream(), S_OK, "EndOfStream");
        RequireNumber(graph.Seen().endsOfStream, 1, std::string(effect.name) + ": ends of stream delivered");
    }
}

void Flush(Subject& library)
{
    fixtures::PushGraph graph(Prepared(library, CLSID_Emboss, {2}).Get(), fixtures::VideoType(8, 8));
    Frame frame(8 * 8 * 4, 100);
    RequireResult(graph.Input()->BeginFlush(), S_OK, "BeginFlush");
    RequireNumber(graph.Seen().flushBegins, 1, "BeginFlush calls delivered");
    RequireResult(graph.Send(frame), S_FALSE, "Receive during a flush");
    RequireResult(graph.Input()->EndFlush(), S_OK, "EndFlush");
    RequireNumber(graph.Seen().flushEnds, 1, "EndFlush calls delivered");
    RequireResult(graph.Send(frame), S_OK, "Receive after a flush");
    RequireNumber(graph.Seen().samples, 1, "samples delivered after the flush");
}

void Segments(Subject& library)
{
    fixtures::PushGraph graph(Prepared(library, CLSID_Emboss, {2}).Get(), fixtures::VideoType(8, 8));
    const int before = graph.Seen().segments;
    RequireResult(graph.Input()->NewSegment(100, 200, 2.0), S_OK, "NewSegment");
    RequireNumber(graph.Seen().segments, before + 1, "segments delivered");
    Require(graph.Seen().start == 100 && graph.Seen().end == 200, "the segment's times were changed");
}

void NextFrame(Subject& library)
{
    const auto filter = Prepared(library, CLSID_AddPixel, {1, 1, 1, 0});
    fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(2, 1));
    RequireNumber(graph.Through(Frame(8, 100))[0], 101, "blue before the change");
    fixtures::RecordedSet set(Block{5, 5, 5, 0});
    Parameters(filter.Get())->SetPropertySet(&set);
    set.Store({9, 9, 9, 0}); // the filter has a copy
    RequireNumber(graph.Through(Frame(8, 100))[0], 105, "blue in the frame after SetPropertySet");
}

void TwoFilters(Subject& library)
{
    const auto bright = Prepared(library, CLSID_GammaCorrection, {200});
    const auto dark = Prepared(library, CLSID_GammaCorrection, {45});
    fixtures::PushGraph first(bright.Get(), fixtures::VideoType(2, 1)), second(dark.Get(), fixtures::VideoType(2, 1));
    for (int i = 0; i < 3; ++i) {
        RequireNumber(first.Through(Frame(8, 128))[0], 181, "128 at a gamma of 2.00");
        RequireNumber(second.Through(Frame(8, 128))[0], 55, "128 at a gamma of 0.45");
    }
    fixtures::RecordedSet set(Block{200});
    Parameters(dark.Get())->SetPropertySet(&set);
    RequireNumber(second.Through(Frame(8, 128))[0], 181, "128 after the gamma changed to 2.00");
}

constexpr Check streamingChecks[] = {
    {"streaming", "add-pixel", "\"Add pixel\" adds to each colour and stays within a byte.", AddPixel},
    {"streaming", "filter-color", "\"Filter color\" changes its channel in pixels of its hue only.", FilterColor},
    {"streaming", "invert-color", "\"Invert color\" inverts the chosen channels and clears the others.", InvertColor},
    {"streaming", "multiply-pixel", "\"Multiply pixel\" scales the colours and clears the fourth byte.", MultiplyPixel},
    {"streaming", "gamma-correction", "\"Gamma correction\" follows its power curve.", GammaCorrection},
    {"streaming", "detect-edges", "\"Detect edges\" shows what differs from its surroundings.", DetectEdges},
    {"streaming", "emboss", "\"Emboss\" shades around middle grey.", Emboss},
    {"streaming", "enhance-details", "\"Enhance details\" sharpens along rows and columns.", EnhanceDetails},
    {"streaming", "enhance-edges", "\"Enhance edges\" adds the edges to the picture.", EnhanceEdges},
    {"streaming", "enhance-focus", "\"Enhance focus\" sharpens along the diagonals.", EnhanceFocus},
    {"streaming", "light-edges", "\"Light edges\" shows what is darker than its neighbours.", LightEdges},
    {"streaming", "shift-edges", "\"Shift edges\" shifts both ways, vertically and horizontally.", ShiftEdges},
    {"streaming", "soften-filter", "\"Soften filter\" is the mean of nine pixels.", SoftenFilter},
    {"streaming", "whole-frames", "Frames of seven sizes come out exactly as the plain arithmetic says.", WholeFrames},
    {"streaming", "borders", "The border of a convolved frame is 0 in all four bytes.", Borders},
    {"streaming", "in-place", "A frame is changed where it lies.", InPlace},
    {"streaming", "one-copy", "A read-only source's frame is copied once and left alone.", OneCopy},
    {"streaming", "sample-untouched", "Times, flags, type and length of a sample stay as they were.", TimesUntouched},
    {"streaming", "end-of-stream", "The end of the stream is passed on once.", EndOfStream},
    {"streaming", "flush", "A flush is passed on and stops frames while it lasts.", Flush},
    {"streaming", "segments", "Segments are passed on unchanged.", Segments},
    {"streaming", "next-frame", "New parameters count from the next frame on.", NextFrame},
    {"streaming", "two-filters", "Two filters of one effect keep their own parameters.", TwoFilters},
};

} // namespace

std::span<const Check> StreamingChecks()
{
    return streamingChecks;
}

} // namespace vixahost::validate
