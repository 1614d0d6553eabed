#include "host/effects/StackFile.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"

#include <fstream>
#include <iterator>

namespace vixahost::effects {

using vixavideofx::ParameterDescription;
using vixavideofx::ParametersOf;

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view effectWord = "effect", onWord = "on";

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

class StackParser
{
public:
    explicit StackParser(const std::vector<CatalogueEntry>& known) : catalogue(known) {}

    EffectStack Parse(std::string_view text)
    {
        if (text.starts_with(byteOrderMark))
            text.remove_prefix(byteOrderMark.size());
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            ++line;
            ParseLine(Trim(text.substr(0, end)));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        }
        return std::move(stack);
    }

private:
    [[noreturn]] void Fail(const std::string& message) const
    {
        throw FailedJob("Line " + std::to_string(line) + ": " + message);
    }

    void ParseLine(std::string_view content)
    {
        if (content.empty() || content.starts_with('#'))
            return;
        const std::size_t equals = content.find('=');
        if (equals == std::string_view::npos)
            Fail("\"" + Excerpt(content) + "\" is no line of a stack; write name = value, or # before a remark.");
        const std::string name = LowerCase(Trim(content.substr(0, equals)));
        const std::string_view value = Trim(content.substr(equals + 1));
        if (name == effectWord)
            BeginEffect(value);
        else if (stack.empty())
            Fail("\"" + Excerpt(name) + "\" stands before the first effect; begin with a line such as effect = " +
                 (catalogue.empty() ? std::string("NAME") : catalogue.front().englishName) + ".");
        else if (name == onWord)
            SwitchEffect(value);
        else
            SetParameter(name, value);
    }

    void BeginEffect(std::string_view name)
    {
        const CatalogueEntry* const entry = FindEntry(catalogue, name);
        if (!entry) {
            std::vector<std::string> names;
            for (const CatalogueEntry& known : catalogue)
                names.push_back(known.englishName);
            Fail("there is no effect \"" + Excerpt(name) + "\"; did you mean " +
                 Alternatives(NearestNames(name, names)) + "?");
        }
        stack.push_back(StepOf(*entry));
    }

    void SwitchEffect(std::string_view value)
    {
        const std::string word = LowerCase(value);
        if (word != "yes" && word != "no")
            Fail("on is yes or no, not \"" + Excerpt(value) + "\".");
        stack.back().on = word == "yes";
    }

    void SetParameter(const std::string& name, std::string_view value)
    {
        try {
            effects::SetParameter(stack.back(), name + "=" + std::string(value));
        } catch (const HostError& fault) {
            Fail(fault.what());
        }
    }

    const std::vector<CatalogueEntry>& catalogue;
    EffectStack stack;
    int line = 0;
};

} // namespace

std::string WriteStack(const EffectStack& stack)
{
    std::string text = "# VixaVideoFX stack: the effects in order, each with its parameters.\n";
    for (const EffectStep& step : stack) {
        text += "\neffect = " + step.name + "\n";
        if (!step.on)
            text += "on = no\n";
        for (const ParameterDescription& parameter : ParametersOf(step.classId))
            text += std::string(parameter.name) + " = " +
                    ShowValue(parameter, step.block.at(parameter.offset / sizeof(std::int32_t))) + "\n";
    }
    return text;
}

EffectStack ParseStack(std::string_view text, const std::vector<CatalogueEntry>& catalogue)
{
    return StackParser(catalogue).Parse(text);
}

void SaveStackFile(const std::filesystem::path& file, const EffectStack& stack)
{
    TargetFile target(file);
    std::ofstream stream(target.Temporary(), std::ios::binary);
    stream << WriteStack(stack);
    stream.close();
    if (!stream)
        throw FailedJob("Can't write " + Show(file) + "; is the disk full or the folder protected?");
    target.Commit();
}

EffectStack LoadStackFile(const std::filesystem::path& file, const std::vector<CatalogueEntry>& catalogue)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw FailedJob("The stack file " + Show(file) + " can't be opened; check its name and folder.");
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    try {
        return ParseStack(text, catalogue);
    } catch (const HostError& fault) {
        throw FailedJob(Show(file) + ", " + fault.what());
    }
}

} // namespace vixahost::effects
