// vixa_filter_bench: the library's filters as a graph runs them. Frames go in through the input pin and out through the
// output pin; beside it stand the same kernels called directly, so that the difference is what the filter costs.
#include "bench/Cases.h"
#include "bench/Report.h"
#include "bench/Series.h"
#include "host/effects/EffectCatalogue.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IEffectFilter.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>

using namespace vixa;
using namespace vixa::bench;
using vixahost::effects::EffectLibrary;

namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

Microsoft::WRL::ComPtr<IBaseFilter> CreateFilter(const EffectLibrary& library, const std::string& effect)
{
    for (const vixahost::effects::CatalogueEntry& known : vixahost::effects::ReadCatalogue(library)) {
        if (effect.starts_with(known.englishName))
            return library.CreateFilter(known.classId, known.englishName);
    }
    throw std::logic_error("no class for " + effect);
}

// A row of effects, connected and running, with their cases' settings.
class RunningRow
{
public:
    RunningRow(const EffectLibrary& library, const std::vector<std::string>& effects, Size size, bool together = true)
        : graph(FiltersOf(library, effects, together), vixahost::fixtures::VideoType(size.width, size.height))
    {
        graph.Seen().keepsContent = false;
    }

    void Receive(kernels::Frame frame)
    {
        vixahost::fixtures::HandSample sample(frame);
        graph.Send(&sample);
    }

private:
    static std::vector<Microsoft::WRL::ComPtr<IBaseFilter>>
    FiltersOf(const EffectLibrary& library, const std::vector<std::string>& effects, bool together)
    {
        std::vector<Microsoft::WRL::ComPtr<IBaseFilter>> filters;
        for (const std::string& name : effects) {
            filters.push_back(CreateFilter(library, name));
            vixahost::fixtures::RecordedSet settings(CaseNamed(name).block);
            Microsoft::WRL::ComPtr<IEffectFilter> effect;
            filters.back().As(&effect);
            effect->SetPropertySet(&settings);
            Microsoft::WRL::ComPtr<IEffectChaining> chaining;
            filters.back().As(&chaining);
            chaining->SetChaining(together);
        }
        return filters;
    }

    vixahost::fixtures::PushGraph graph;
};

// Frames so small that the kernel is a small part of the cost, many at a time because the clock is coarse.
void MeasureOverhead(const EffectLibrary& library, Report& report)
{
    constexpr Size small = {64, 64};
    constexpr int calls = 2000, rounds = 40;
    std::vector<std::uint8_t> bytes(small.width * small.height * 4, std::uint8_t{100});
    std::vector<std::uint8_t> scratch(kernels::ConvolutionScratchBytes(small.width));
    for (const Case& measured : Cases()) {
        RunningRow effect(library, {measured.effect}, small);
        double received = 1e9, direct = 1e9;
        for (int round = 0; round < rounds; ++round) {
            auto start = Clock::now();
            for (int call = 0; call < calls; ++call)
                RunStep(measured.StepFor(kernels::KernelsOf(kernels::Level::Avx512), bytes, small, scratch));
            direct = std::min(direct, Since(start) / calls);
            start = Clock::now();
            for (int call = 0; call < calls; ++call)
                effect.Receive(bytes);
            received = std::min(received, Since(start) / calls);
        }
        report.Add("Receive less kernel, 64 x 64, " + measured.effect, (received - direct) * 1e6, "microseconds");
        report.Add("Receive, 64 x 64, " + measured.effect, received * 1e9 / (small.width * small.height),
                   "nanoseconds a pixel");
    }
}

void MeasureStart(Report& report)
{
    constexpr int rounds = 30;
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        const EffectLibrary library;
        const auto filter = library.CreateFilter(vixavideofx::CLSID_AddPixel, "Add pixel");
        times.push_back(Since(start));
    }
    report.Add("LoadLibrary to the first filter, first time", times.front() * 1e3, "milliseconds");
    std::ranges::sort(times);
    report.Add("LoadLibrary to the first filter, fastest", times.front() * 1e3, "milliseconds");
    report.Add("LoadLibrary to the first filter, median", times[times.size() / 2] * 1e3, "milliseconds");
}

void MeasureSize(Size size, const Options& options, const EffectLibrary& library, Report& report)
{
    TestFrame frame(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    std::vector<std::uint8_t> scratch(kernels::ConvolutionScratchBytes(size.width));
    std::vector<Row> effects, stacks;
    for (const Case& measured : Cases()) {
        if (!options.Wants(measured.effect))
            continue;
        RunningRow effect(library, {measured.effect}, size);
        const Candidate kernel = {
            "kernel", [&](kernels::Frame bytes) {
                RunStep(measured.StepFor(kernels::KernelsOf(kernels::Level::Avx512), bytes, size, scratch));
            }};
        const Candidate received = {"Receive", [&](kernels::Frame bytes) { effect.Receive(bytes); }};
        effects.push_back({measured.effect, Measure(frame, {kernel, received}, options.seconds)});
    }
    for (const Stack& stack : Stacks()) {
        if (!options.Wants(stack.name))
            continue;
        RunningRow alone(library, stack.effects, size, false), together(library, stack.effects, size);
        stacks.push_back({stack.name, Measure(frame,
                                              {{"alone", [&](kernels::Frame bytes) { alone.Receive(bytes); }},
                                               {"together", [&](kernels::Frame bytes) { together.Receive(bytes); }}},
                                              options.seconds)});
    }
    report.Add(size, {"kernel", "Receive"}, effects);
    report.Add(size, {"alone", "together"}, stacks);
}

} // namespace

int main(int count, char** words)
{
    try {
        const Options options = ReadOptions(count, words);
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        Report report(sizeof(void*) == 8 ? "Filters, 64-bit library" : "Filters, 32-bit library", options.json);
        MeasureStart(report);
        const EffectLibrary library;
        MeasureOverhead(library, report);
        for (const Size size : options.sizes)
            MeasureSize(size, options, library, report);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vixa_filter_bench: %s\n", error.what());
        return 2;
    }
}
