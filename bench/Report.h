// What the benchmarks print: a table for people, and the same figures as JSON.
#pragma once

#include "bench/Cases.h"
#include "bench/Series.h"

#include <string>
#include <vector>

namespace vixa::bench {

struct Row
{
    std::string effect;
    std::vector<Timing> timings;
};

struct Options
{
    std::vector<Size> sizes;
    double seconds = 0.25; // per candidate
    bool json = false;
    std::string only; // effects and stacks whose name holds this

    bool Wants(const std::string& name) const { return name.find(only) != std::string::npos; }
};

// Throws std::invalid_argument with one line for words that it does not know.
Options ReadOptions(int count, char** words);

class Report
{
public:
    // `program` names the program and its width of addresses.
    Report(const std::string& program, bool asJson);
    ~Report();

    // One table: a line per row, a column per name in `columns`, and last the fastest of the other candidates. Nothing
    // without rows.
    void Add(Size size, const std::vector<std::string>& columns, const std::vector<Row>& rows);
    // A figure of its own, such as a time.
    void Add(const std::string& name, double value, const std::string& unit);

private:
    void AddFigures(Size size, const std::vector<Row>& rows);

    bool json;
    bool first = true;
};

} // namespace vixa::bench
