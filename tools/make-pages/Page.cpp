#include "tools/make-pages/Page.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace vixa::pages {

using vixavideofx::ParameterDescription;

namespace {

constexpr const char* made =
    "<!-- Made by tools/make-pages from the code and words.txt there: change those, then build the target "
    "'pages'. -->\n";

std::vector<std::string> Split(const std::string& text, const std::string& at)
{
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t to = 0; (to = text.find(at, from)) != std::string::npos; from = to + at.size())
        parts.push_back(text.substr(from, to - from));
    parts.push_back(text.substr(from));
    return parts;
}

std::string Repeated(const std::string& text, std::size_t times)
{
    std::string all;
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string NamedValue(const ParameterDescription& parameter, std::int32_t value)
{
    for (const auto& choice : parameter.choices)
        if (choice.value == value)
            return std::string(choice.name) + " (" + std::to_string(value) + ")";
    return std::to_string(value);
}

std::string Range(const ParameterDescription& parameter)
{
    std::string text = std::to_string(parameter.minimum) + " to " + std::to_string(parameter.maximum);
    if (parameter.choices.empty())
        return text;
    std::string names;
    for (const auto& choice : parameter.choices)
        names += (names.empty() ? "" : ", ") + NamedValue(parameter, choice.value);
    return parameter.closed ? names : text + "; " + names;
}

std::int32_t ValueOf(const ParameterDescription& parameter, const std::string& text)
{
    for (const auto& choice : parameter.choices)
        if (choice.name == text)
            return choice.value;
    std::int32_t value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || value < parameter.minimum ||
        value > parameter.maximum || parameter.closed)
        throw std::runtime_error(std::string("words.txt: ") + parameter.name + " is never " + text);
    return value;
}

std::string ClassId(const Effect& effect)
{
    const auto& n = effect.number;
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", n[0], n[1], n[2], n[3], n[4],
                  n[5], n[6], n[7], n[8], n[9], n[10]);
    return text;
}

bool IsConvolution(const Effect& effect)
{
    return std::holds_alternative<kernels::PictureConvolution>(effect.stepOf(effect.defaults));
}

// A kernel as it lies on the screen: a frame's lowest row has the lowest address.
std::string KernelText(const kernels::ConvolutionKernel& kernel)
{
    std::string text;
    int sum = 0;
    for (const std::size_t row : {2u, 1u, 0u}) {
        text += "    ";
        for (std::size_t column = 0; column < 3; ++column) {
            char cell[16];
            const std::int32_t weight = kernel.coefficients[row * 3 + column];
            std::snprintf(cell, sizeof cell, "%4d", weight);
            text += cell;
            sum += weight;
        }
        text += "\n";
    }
    text += "\n    sum = the weights times this channel of the pixel and its neighbours\n    channel = clamp(sum";
    if (kernel.divides && sum != 1)
        text += " / " + std::to_string(sum);
    if (kernel.offsets)
        text += " + 128";
    text += "), clamp to 0 ... 255\n";
    return kernel.divides && sum != 1 ? text + "    (the quotient without its fraction)\n" : text;
}

std::string Formula(const Effect& effect, const Section& words)
{
    std::string text;
    for (const std::string& line : words.All("formula"))
        text += "    " + line + "\n";
    if (!IsConvolution(effect))
        return text;
    const auto kernelOf = [](std::int32_t kind) {
        const kernels::ConvolutionKernel* const kernel = kernels::KernelOf(kind);
        if (!kernel)
            throw std::runtime_error("there is no kernel " + std::to_string(kind));
        return KernelText(*kernel);
    };
    if (effect.parameters.empty())
        text += kernelOf(effect.defaults[0]);
    else
        for (const auto& choice : effect.parameters[0].choices)
            text += std::string(choice.name) + ":\n\n" + kernelOf(choice.value) + "\n";
    if (text.ends_with("\n\n"))
        text.pop_back();
    return text + "\nThe weights are those of the pixel and its neighbours as one sees them in a bottom-up frame, the "
                  "usual one; in a\n"
                  "top-down frame they stand upside down.\n";
}

std::string Parameters(const Effect& effect)
{
    if (effect.parameters.empty())
        return "None.\n";
    std::string text = "| Name | Meaning, unit | Range | At first |\n|---|---|---|---|\n";
    for (const auto& parameter : effect.parameters)
        text += std::string("| `") + parameter.name + "` | " + parameter.meaning + " | " + Range(parameter) + " | " +
                NamedValue(parameter, effect.defaults[parameter.offset / sizeof(std::int32_t)]) + " |\n";
    return text;
}

std::string DataBlock(const Effect& effect, const Section& words)
{
    std::string text = std::to_string(effect.defaults.size() * sizeof(std::int32_t)) +
                       " bytes, numbers of 32 bits with a sign, the lowest byte first:\n\n"
                       "| Byte | What | At first |\n|---|---|---|\n";
    for (std::size_t field = 0; field < effect.defaults.size(); ++field) {
        const std::string offset = std::to_string(field * sizeof(std::int32_t));
        const auto parameter =
            std::ranges::find(effect.parameters, field * sizeof(std::int32_t), &ParameterDescription::offset);
        const std::string what = parameter != effect.parameters.end() ? "`" + std::string(parameter->name) + "`"
                                 : IsConvolution(effect)
                                     ? "the kernel: always this number, which tells the filter which effect it is"
                                     : words.One("field " + offset);
        text += "| " + offset + " | " + what + " | " + std::to_string(effect.defaults[field]) + " |\n";
    }
    return text + "\nClass identifier: `" + ClassId(effect) + "`.\n";
}

// The effect in frei0r's hosts, whose parameters go from 0 to 1.
std::string PlugIn(const Effect& effect)
{
    std::string file = "vixa_" + effect.Stem();
    std::replace(file.begin(), file.end(), '-', '_');
    std::string text = "The plug-in `" + file + "` ([how it is used](../linux-hosts.md))";
    if (effect.knobs.empty())
        return text + " has no parameters.\n";
    text += ":\n\n| Parameter | What its number stands for | At first |\n|---|---|---|\n";
    for (const frei0r::Knob& knob : effect.knobs) {
        char initial[32];
        std::snprintf(initial, sizeof initial, "%.3g", knob.initial);
        text += "| `" + std::string(knob.name) + "` | " + knob.explanation.CString() + " | " +
                (!knob.isSwitch               ? initial
                 : frei0r::IsOn(knob.initial) ? "on"
                                              : "off") +
                " |\n";
    }
    return text;
}

// The effect's rows of the last table of figures by level, which is that of the newest forms.
std::string Speed(const Effect& effect, const std::string& performance)
{
    std::string section, table, found, heading;
    std::istringstream stream(performance);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("## "))
            section = line.substr(3);
        else if (line.starts_with("| Effect |") && line.find("SSE2") != std::string::npos)
            table = line + "\n|---|" + Repeated("---:|", Split(line, "|").size() - 3) + "\n";
        else if (line.empty())
            table.clear();
        else if (!table.empty() &&
                 (line.starts_with("| " + effect.name + " |") || line.starts_with("| " + effect.name + ","))) {
            if (table.starts_with("| Effect")) {
                found = table; // of a table not seen before
                heading = section;
                table = "-";
            }
            found += line + "\n";
        }
    }
    return (found.empty() ? ""
                          : "In passes over the frame's memory (" + heading +
                                "); 1 is what loading, changing and storing each byte takes:\n\n" + found + "\n") +
           "How this is measured, and other machines: [performance.md](../performance.md).\n";
}

// Words as the command line takes them.
std::string CommandOf(const Effect& effect, const Setting& setting)
{
    std::string text = "vixahost apply \"" + effect.name + "\"";
    if (!effect.parameters.empty())
        for (const std::string& one : Split(setting.text, ", "))
            text += " --set " + one;
    for (int i = 1; i < setting.times; ++i)
        text += " --then \"" + effect.name + "\"";
    return text + " in.png out.png";
}

} // namespace

std::string Effect::Stem() const
{
    std::string stem = name;
    for (char& letter : stem)
        letter = letter == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return stem;
}

Setting ParseSetting(const Effect& effect, const std::string& text)
{
    Setting setting = {text, effect.defaults, 1};
    if (text == "once")
        return setting;
    for (const std::string& one : Split(text, ", ")) {
        const auto equals = one.find('=');
        const std::string name = one.substr(0, equals),
                          value = equals == std::string::npos ? "" : one.substr(equals + 1);
        const auto parameter = std::ranges::find(effect.parameters, name, &ParameterDescription::name);
        if (name == "times" && (value == "2" || value == "3")) {
            setting.times = value[0] - '0';
            setting.text = value + " times";
        } else if (parameter == effect.parameters.end())
            throw std::runtime_error("words.txt: " + effect.name + " has no " + one);
        else
            setting.block[parameter->offset / sizeof(std::int32_t)] = ValueOf(*parameter, value);
    }
    return setting;
}

std::string PictureFile(const Effect& effect, std::size_t index)
{
    return effect.Stem() + "-" + std::to_string(index + 1) + ".png";
}

std::string PageOf(const Effect& effect, const Section& words, const std::vector<Setting>& settings,
                   const std::string& performance)
{
    const auto cell = [&](std::size_t index) {
        return "![" + effect.name + ", " + settings[index].text + "](" + PictureFile(effect, index) + ") | ";
    };
    const auto caption = [&](std::size_t index) { return "`" + settings[index].text + "` | "; };
    std::string text = made;
    text += "# " + effect.name + "\n\n" + words.One("does") + "\n\n";
    text += "| ![before](sample.png) | " + cell(0) + "\n|---|---|\n| before | " + caption(0) + "\n| " + cell(1) +
            cell(2) + "\n| " + caption(1) + caption(2) + "\n\n";
    text += "    " + CommandOf(effect, settings[0]) + "\n\n";
    text += "## Formula\n\n" + Formula(effect, words) + "\n";
    text += "## Parameters\n\n" + Parameters(effect) + "\nWhat changes nothing: " + words.One("identity") + ".\n\n";
    text += "## Good for\n\n" + words.One("good for") + "\n\n";
    text += "## Borders and extremes\n\n" + words.One("borders") + "\n\n" + words.One("extremes") + "\n\n";
    text += "## Data block\n\n" + DataBlock(effect, words) + "\n";
    text += "## In FFmpeg, MLT and GStreamer\n\n" + PlugIn(effect) + "\n";
    text += "## Speed\n\n" + Speed(effect, performance);
    text += "\n[All effects](README.md)\n";
    for (std::size_t at = 0; (at = text.find(" \n", at)) != std::string::npos;)
        text.erase(at, 1);
    return text;
}

std::string IndexOf(const std::vector<Effect>& effects, const std::vector<Section>& words)
{
    constexpr std::size_t columns = 3;
    std::string text = std::string(made) + "# The effects\n\nA page each: what it does, formula, parameters, data "
                                           "block, speed. From the sources `vixahost` is `./run`. The "
                                           "pictures are of this one:\n\n![The sample picture](sample.png)\n";
    for (std::size_t first = 0; first < effects.size(); first += columns) {
        std::string pictures = "\n|", rule = "\n|", names = "\n|";
        for (std::size_t i = first; i < std::min(first + columns, effects.size()); ++i) {
            const std::string page = effects[i].Stem() + ".md";
            pictures += " [![" + effects[i].name + "](" + PictureFile(effects[i], 0) + ")](" + page + ") |";
            rule += "---|";
            names += " [" + effects[i].name + "](" + page + "): " + words[i].One("does") + " |";
        }
        text += pictures + rule + names + "\n";
    }
    return text;
}

} // namespace vixa::pages
