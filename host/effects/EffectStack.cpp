#include "host/effects/EffectStack.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace vixahost::effects {

using vixavideofx::ParameterChoice;
using vixavideofx::ParameterDescription;
using vixavideofx::ParametersOf;

namespace {

std::optional<std::int32_t> Number(std::string_view text)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    std::int32_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

std::optional<std::int32_t> ValueOf(const ParameterDescription& parameter, std::string_view text)
{
    for (const ParameterChoice& choice : parameter.choices)
        if (LowerCase(choice.name) == LowerCase(text))
            return choice.value;
    const std::optional<std::int32_t> value = Number(text);
    if (!value || *value < parameter.minimum || *value > parameter.maximum)
        return std::nullopt;
    const auto named = [&](const ParameterChoice& choice) { return choice.value == *value; };
    if (parameter.closed && std::none_of(parameter.choices.begin(), parameter.choices.end(), named))
        return std::nullopt;
    return value;
}

[[noreturn]] void RefuseName(const EffectStep& step, std::string_view name)
{
    std::string message = "\"" + step.name + "\" has no parameter \"" + Excerpt(name) + "\"; ";
    const auto parameters = ParametersOf(step.classId);
    if (parameters.empty())
        throw WrongWords(message + "it takes none, so leave --set away.");
    message += "it takes ";
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (i > 0)
            message += i + 1 == parameters.size() ? " and " : ", ";
        message += std::string(parameters[i].name) + " (" + RangeOf(parameters[i]) + ")";
    }
    throw WrongWords(message + ".");
}

} // namespace

EffectStep StepOf(const CatalogueEntry& entry)
{
    return {entry.classId, entry.englishName, entry.defaults};
}

EffectStep StepOf(const std::vector<CatalogueEntry>& catalogue, const EffectWords& words)
{
    EffectStep step = StepOf(RequireEntry(catalogue, words.name));
    for (const std::string& setting : words.settings)
        SetParameter(step, setting);
    return step;
}

void SetParameter(EffectStep& step, std::string_view assignment)
{
    const std::size_t equals = assignment.find('=');
    if (equals == std::string_view::npos)
        throw WrongWords("--set takes name=value, as in --set gamma=160; \"" + Excerpt(assignment) +
                         "\" has no value.");
    const std::string_view name = assignment.substr(0, equals), text = assignment.substr(equals + 1);
    for (const ParameterDescription& parameter : ParametersOf(step.classId)) {
        if (LowerCase(parameter.name) != LowerCase(name))
            continue;
        const std::optional<std::int32_t> value = ValueOf(parameter, text);
        if (!value)
            throw WrongWords("\"" + step.name + "\": " + parameter.name + " can't be \"" + Excerpt(text) +
                             "\"; it takes " + RangeOf(parameter) + " (" + parameter.meaning + ").");
        step.block.at(parameter.offset / sizeof(std::int32_t)) = *value;
        return;
    }
    RefuseName(step, name);
}

EffectStack SwitchedOn(EffectStack stack)
{
    std::erase_if(stack, [](const EffectStep& step) { return !step.on; });
    return stack;
}

std::string SettingsText(const EffectStep& step)
{
    std::string text;
    for (const ParameterDescription& parameter : ParametersOf(step.classId)) {
        if (!text.empty())
            text += ", ";
        text += std::string(parameter.name) + "=" +
                ShowValue(parameter, step.block.at(parameter.offset / sizeof(std::int32_t)));
    }
    return text;
}

std::string RangeOf(const ParameterDescription& parameter)
{
    std::string text;
    if (!parameter.closed)
        text = std::to_string(parameter.minimum) + " to " + std::to_string(parameter.maximum);
    for (std::size_t i = 0; i < parameter.choices.size(); ++i) {
        if (!text.empty())
            text += i + 1 == parameter.choices.size() ? " or " : ", ";
        text += parameter.choices[i].name;
    }
    return text;
}

std::string ShowValue(const ParameterDescription& parameter, std::int32_t value)
{
    for (const ParameterChoice& choice : parameter.choices)
        if (choice.value == value)
            return choice.name;
    return std::to_string(value);
}

} // namespace vixahost::effects
