#include "bench/Report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace vixa::bench {

Options ReadOptions(int count, char** words)
{
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        int width = 0, height = 0;
        if (word == "--json")
            options.json = true;
        else if (word == "--quick")
            options.seconds = 0.03;
        else if (word == "--only" && i + 1 < count)
            options.only = words[++i];
        else if (std::sscanf(word.c_str(), "%dx%d", &width, &height) == 2 && width > 0 && height > 0 &&
                 width <= 16384 && height <= 16384)
            options.sizes.push_back({width, height});
        else
            throw std::invalid_argument("unknown word '" + word +
                                        "'; known are WIDTHxHEIGHT, --only PART-OF-A-NAME, --quick, --json");
    }
    if (options.sizes.empty())
        options.sizes.assign(std::begin(sizes), std::end(sizes));
    return options;
}

Report::Report(const std::string& program, bool asJson) : json(asJson)
{
    if (json)
        std::printf(R"({"program": "%s", "figures": [)", program.c_str());
    else
        std::printf("%s, in units of the limit pass (one load, change and store of the frame)\n", program.c_str());
}

Report::~Report()
{
    if (json)
        std::printf("\n]}\n");
}

void Report::AddFigures(Size size, const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        for (const Timing& timing : row.timings) {
            std::printf("%s\n  {\"width\": %d, \"height\": %d, \"effect\": \"%s\", \"form\": \"%s\", "
                        "\"milliseconds\": %.4f, \"ratio\": %.3f, \"median\": %.3f, \"runs\": %d}",
                        first ? "" : ",", size.width, size.height, row.effect.c_str(), timing.name.c_str(),
                        timing.seconds * 1e3, timing.ratio, timing.median, timing.runs);
            first = false;
        }
    }
}

void Report::Add(Size size, const std::vector<std::string>& columns, const std::vector<Row>& rows)
{
    if (rows.empty())
        return;
    if (json) {
        AddFigures(size, rows);
        return;
    }

    const auto isOther = [&](const Timing& timing) { return std::ranges::find(columns, timing.name) == columns.end(); };
    const auto widthOf = [](const std::string& column) { return std::max(10, static_cast<int>(column.size()) + 2); };
    std::printf("\n%-26s", (std::to_string(size.width) + " x " + std::to_string(size.height)).c_str());
    for (const std::string& column : columns)
        std::printf("%*s", widthOf(column), column.c_str());
    if (std::ranges::any_of(rows, [&](const Row& row) { return std::ranges::any_of(row.timings, isOther); }))
        std::printf("%10s", "best peer");
    std::printf("\n");
    for (const Row& row : rows) {
        std::printf("%-26s", row.effect.c_str());
        for (const std::string& column : columns) {
            const auto timing = std::ranges::find(row.timings, column, &Timing::name);
            if (timing != row.timings.end())
                std::printf("%*.2f", widthOf(column), timing->ratio);
            else
                std::printf("%*s", widthOf(column), "");
        }
        const Timing* best = nullptr;
        for (const Timing& timing : row.timings) {
            if (isOther(timing) && (!best || timing.seconds < best->seconds))
                best = &timing;
        }
        if (best)
            std::printf("%10.2f  %s", best->ratio, best->name.c_str());
        std::printf("\n");
    }
    std::fflush(stdout);
}

void Report::Add(const std::string& name, double value, const std::string& unit)
{
    if (json) {
        std::printf("%s\n  {\"name\": \"%s\", \"value\": %.4f, \"unit\": \"%s\"}", first ? "" : ",", name.c_str(),
                    value, unit.c_str());
        first = false;
    } else {
        std::printf("%-60s %10.3f %s\n", name.c_str(), value, unit.c_str());
    }
    std::fflush(stdout);
}

} // namespace vixa::bench
