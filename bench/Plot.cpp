// vixa_bench_plot FIGURES.json PICTURE.svg [WIDTHxHEIGHT]: draws what ./run bench --json measured natively, one line
// per effect on a logarithmic scale: the forms of the kernel, the best peer, and the limit that all of them are
// multiples of.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iomanip>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Line
{
    std::string effect;
    std::map<std::string, double> forms; // ratio by name
    std::string peer;                    // the fastest one's name
    double peerRatio = 0;
};

struct Mark
{
    const char* form;
    const char* colour;
};
constexpr Mark marks[] = {{"scalar", "#9a9a9a"}, {"SSE2", "#a6cee3"}, {"AVX2", "#4f9bd0"}, {"AVX-512", "#08519c"}};
constexpr const char* peerColour = "#d95f02";

std::vector<Line> ReadLines(const nlohmann::json& figures, int width, int height)
{
    std::vector<Line> lines;
    for (const auto& figure : figures) {
        if (!figure.contains("effect") || figure.at("width") != width || figure.at("height") != height)
            continue;
        const std::string effect = figure.at("effect"), form = figure.at("form");
        const double ratio = figure.at("ratio");
        if (lines.empty() || lines.back().effect != effect)
            lines.push_back({effect, {}, {}, 0});
        Line& line = lines.back();
        const bool own = std::ranges::any_of(marks, [&](const Mark& mark) { return form == mark.form; });
        if (own) {
            line.forms[form] = ratio;
        } else if (line.peer.empty() || ratio < line.peerRatio) {
            line.peer = form;
            line.peerRatio = ratio;
        }
    }
    if (lines.empty())
        throw std::runtime_error("no figures for that size");
    return lines;
}

class Picture
{
public:
    Picture(const std::string& file, std::size_t lines)
        : out(file), height(top + static_cast<double>(lines) * step + 40)
    {
        if (!out)
            throw std::runtime_error("cannot write " + file);
        out << std::fixed << std::setprecision(1) << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 960 "
            << height << "' font-family='sans-serif' font-size='13'>\n<rect width='960' height='" << height
            << "' fill='white'/>\n";
    }

    void Draw(const std::vector<Line>& lines, const std::string& title)
    {
        Text(20, 28, title, "start", "font-size='16'");
        double x = left;
        for (const Mark& mark : marks) {
            Dot(x, 50, mark.colour);
            Text(x + 10, 54, mark.form);
            x += 90;
        }
        Dot(x, 50, peerColour);
        Text(x + 10, 54, "best peer");

        const double bottom = top + static_cast<double>(lines.size()) * step;
        for (const double value : {0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0}) {
            const bool limit = value == 1.0;
            out << "<line x1='" << At(value) << "' x2='" << At(value) << "' y1='" << top - 8 << "' y2='" << bottom
                << "' stroke='" << (limit ? "#c00000" : "#e4e4e4") << "' stroke-width='" << (limit ? 1.5 : 1)
                << "'/>\n";
            std::string label = std::to_string(value);
            label.erase(label.find_last_not_of('0') + 1);
            if (label.ends_with('.'))
                label.pop_back();
            Text(At(value), bottom + 18, limit ? "1 = limit" : label, "middle");
        }
        double y = top + step / 2;
        for (const Line& line : lines) {
            Text(left - 14, y + 4, line.effect, "end");
            for (const Mark& mark : marks) {
                if (const auto form = line.forms.find(mark.form); form != line.forms.end())
                    Dot(At(form->second), y, mark.colour);
            }
            if (!line.peer.empty()) {
                Dot(At(line.peerRatio), y, peerColour);
                Text(right + 14, y + 4, line.peer, "start", "font-size='11' fill='#8a4a10'");
            }
            y += step;
        }
        out << "</svg>\n";
    }

private:
    static double At(double ratio)
    {
        const double low = std::log(0.5), high = std::log(600.0);
        return left + (std::log(std::clamp(ratio, 0.5, 600.0)) - low) / (high - low) * (right - left);
    }
    void Dot(double x, double y, const char* colour)
    {
        out << "<circle cx='" << x << "' cy='" << y << "' r='5' fill='" << colour << "'/>\n";
    }
    void Text(double x, double y, const std::string& text, const char* anchor = "start", const char* more = "")
    {
        out << "<text x='" << x << "' y='" << y << "' text-anchor='" << anchor << "' " << more << ">" << text
            << "</text>\n";
    }

    static constexpr double left = 190, right = 770, top = 84, step = 24;
    std::ofstream out;
    double height;
};

} // namespace

int main(int count, char** words)
{
    try {
        int width = 1920, height = 1080;
        if (count < 3 || count > 4 || (count == 4 && std::sscanf(words[3], "%dx%d", &width, &height) != 2))
            throw std::invalid_argument("usage: vixa_bench_plot FIGURES.json PICTURE.svg [WIDTHxHEIGHT]");
        std::ifstream in(words[1]);
        if (!in)
            throw std::runtime_error(std::string("cannot read ") + words[1]);
        const auto figures = nlohmann::json::parse(in);
        const auto lines = ReadLines(figures.at("programs").at(0).at("figures"), width, height);
        Picture(words[2], lines.size())
            .Draw(lines, "Time for a frame of " + std::to_string(width) + " x " + std::to_string(height) +
                             ", in passes over its memory");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vixa_bench_plot: %s\n", error.what());
        return 2;
    }
}
