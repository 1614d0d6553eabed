#include "host/commands/CommandLine.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"
#include "host/effects/LanguageCodes.h"

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#endif
#include <CLI/CLI.hpp>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#include <vixavideofx/IInstructionCeiling.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace vixahost::commands {

namespace {

// The words of `apply`, in the order in which they stood: a setting belongs to the effect before it.
effects::EffectStack BuildStack(const std::vector<CLI::Option*>& order, const CLI::Option* first,
                                const CLI::Option* then, const CLI::Option* set)
{
    effects::EffectStack stack;
    std::size_t effects = 0, settings = 0;
    for (const CLI::Option* option : order) {
        if (option == first) {
            if (!stack.empty())
                throw WrongWords("--then comes after the first effect: vixahost apply EFFECT --then EFFECT IN OUT.");
            stack.emplace_back(effects::FindEffect(first->results().front()));
        } else if (option == then) {
            if (stack.empty())
                throw WrongWords("--then comes after the first effect: vixahost apply EFFECT --then EFFECT IN OUT.");
            stack.emplace_back(effects::FindEffect(then->results().at(effects++)));
        } else if (option == set) {
            const std::string& assignment = set->results().at(settings++);
            if (stack.empty())
                throw WrongWords("--set " + assignment + " belongs after the name of the effect that it sets.");
            stack.back().Set(assignment);
        }
    }
    return stack;
}

// "1180x760". Throws WrongWords.
void ReadSize(const std::string& text, BrowseCommand& command)
{
    if (text.empty())
        return;
    int length = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%n", &command.width, &command.height, &length) != 2 ||
        static_cast<std::size_t>(length) != text.size() || command.width < 1 || command.height < 1)
        throw WrongWords("--size takes the window's width and height in pixels, as in --size 1180x760; \"" + text +
                         "\" is none.");
}

constexpr const char* examples = "Examples:\n"
                                 "  vixahost apply \"Emboss\" in.png out.png\n"
                                 "  vixahost apply \"Gamma correction\" --set gamma=160 clip.avi out.avi\n"
                                 "  vixahost apply \"Soften filter\" --then \"Enhance edges\" in.png out.png\n"
                                 "  vixahost apply --stack looks.txt in.png out.png\n"
                                 "  vixahost browse in.png\n"
                                 "  vixahost list --language de\n"
                                 "  vixahost icon \"Emboss\" icon.png\n"
                                 "  vixahost panel \"Add pixel\" panel.png --set red=50\n"
                                 "  vixahost validate VixaVideoFX.dll\n";

} // namespace

Command ParseCommandLine(const std::vector<std::string>& words)
{
    CLI::App app("Shows VixaVideoFX's effects and applies them to pictures and clips. Without arguments: all effects "
                 "on a sample picture, into the folder \"out\".",
                 "vixahost");
    // A path such as /tmp/in.png is a path here, not an option.
    app.allow_windows_style_options(false);
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "vixahost " VIXA_VERSION);
    app.footer(examples);
    app.add_subcommand("effects", "Lists the effects, their identifiers and their parameters with ranges");

    CLI::App* apply = app.add_subcommand("apply", "Sends a picture (PNG, BMP, JPEG, TIFF) or an AVI clip through "
                                                  "one or more effects");
    apply->allow_windows_style_options(false);
    std::string effect, input, output;
    std::vector<std::string> settings, more;
    const CLI::Option* first = apply->add_option("EFFECT", effect, "The effect's name, as `vixahost effects` lists it");
    first = apply->get_option("EFFECT")->required();
    apply->add_option("IN", input, "Picture or clip to read")->required();
    CLI::Option* const out =
        apply->add_option("OUT", output, "Picture or clip to write; its ending says the picture's format");
    std::string stackFile;
    apply->add_option("--stack", stackFile, "A stack file instead of EFFECT, as the browser saves it")
        ->type_name("FILE");
    const CLI::Option* set = apply->add_option("--set", settings, "A parameter of the effect before it")
                                 ->type_name("NAME=VALUE")
                                 ->allow_extra_args(false);
    const CLI::Option* then =
        apply->add_option("--then", more, "A further effect")->type_name("EFFECT")->allow_extra_args(false);
    const std::map<std::string, unsigned long> levels = {
        {"plain", IInstructionCeiling::Plain},
        {"sse2", IInstructionCeiling::Sse2},
        {"avx2", IInstructionCeiling::Avx2},
        {"avx512", IInstructionCeiling::Avx512},
    };
    unsigned long level = IInstructionCeiling::Avx512;
    apply->add_option("--level", level, "The best instruction set to use, to compare times: plain, sse2, avx2, avx512")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(levels, CLI::ignore_case));
    apply->footer(examples);

    CLI::App* browse = app.add_subcommand("browse", "Opens a window in which effects are tried on a picture or a clip");
    browse->allow_windows_style_options(false);
    std::string opened, firstStack, screenshot, size, language;
    browse->add_option("FILE", opened, "Picture or clip to open");
    browse->add_option("--stack", firstStack, "A stack file to begin with")->type_name("FILE");
    browse->add_option("--screenshot", screenshot, "Writes a picture of the window (.png) and ends")->type_name("FILE");
    browse->add_option("--size", size, "The window's size in pixels")->type_name("WIDTHxHEIGHT");
    browse->add_option("--language", language, "The effects' language, as de or pt-BR")->type_name("CODE");

    CLI::App* list = app.add_subcommand("list", "Lists the catalogue: groups, names, sort order, kinds and defaults");
    CLI::App* icon = app.add_subcommand("icon", "Writes an effect's icon as PNG");
    CLI::App* panel = app.add_subcommand("panel", "Writes a picture of an effect's settings panel as PNG");
    CLI::App* validate = app.add_subcommand("validate", "Checks a build of the library as a foreign host would");
    for (CLI::App* command : {list, icon, panel, validate})
        command->allow_windows_style_options(false);
    bool json = false;
    std::string library, shown, folder;
    for (CLI::App* command : {list, panel})
        command->add_option("--language", language, "de, de-DE, pt-BR, or a number such as 1031");
    for (CLI::App* command : {list, validate})
        command->add_flag("--json", json, "For programs");
    for (CLI::App* command : {icon, panel}) {
        command->add_option("EFFECT", effect, "The effect's English name");
        command->add_option("FILE", shown, "PNG file to write");
    }
    icon->add_option("--all", folder, "Writes every effect's icon into this folder")->type_name("DIR");
    panel->add_option("--set", settings, "A value that the panel shows")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    std::vector<std::string> groups;
    bool listChecks = false;
    int seconds = 20;
    validate->add_option("DLL", library, "The library; without it the one beside this program");
    validate->add_option("--only", groups, "This group of checks only (may be repeated)")
        ->type_name("GROUP")
        ->allow_extra_args(false);
    validate->add_flag("--list", listChecks, "Names and describes the checks");
    validate->add_option("--time-limit", seconds, "How long one check may take")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 600));

    if (words.size() == 5 && words.front() == "validate-child")
        return ChildCommand{Wide(words[1]), words[2], std::atoi(words[3].c_str()),
                            static_cast<UINT_PTR>(std::strtoul(words[4].c_str(), nullptr, 10))};
    const std::string commands[] = {"effects", "apply", "browse", "list", "icon", "panel", "validate"};
    if (!words.empty() && !words.front().starts_with('-') &&
        std::find(std::begin(commands), std::end(commands), words.front()) == std::end(commands)) {
        throw WrongWords("There is no command \"" + words.front() + "\"; did you mean " +
                         Alternatives(NearestNames(words.front(), commands)) + "? `vixahost --help` shows all.");
    }
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
        return TextCommand{app.help()};
    } catch (const CLI::CallForAllHelp&) {
        return TextCommand{app.help("", CLI::AppFormatMode::All)};
    } catch (const CLI::CallForVersion& version) {
        return TextCommand{std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& fault) {
        std::string message = fault.what();
        std::replace(message.begin(), message.end(), '\n', ' ');
        throw WrongWords(message + " (`vixahost --help` shows how it goes)");
    }
    if (app.got_subcommand("effects"))
        return EffectsCommand{};
    if (app.got_subcommand("browse")) {
        BrowseCommand command{Wide(opened), Wide(firstStack), Wide(screenshot), language, 0, 0};
        ReadSize(size, command);
        return command;
    }
    if (app.got_subcommand("apply")) {
        if (stackFile.empty() && out->count() == 0)
            throw WrongWords("OUT is required: vixahost apply EFFECT IN OUT (`vixahost --help` shows how it goes)");
        if (stackFile.empty())
            return ApplyCommand{
                BuildStack(apply->parse_order(), first, then, set), {}, Wide(input), Wide(output), level};
        if (out->count() > 0 || then->count() > 0 || set->count() > 0)
            throw WrongWords("--stack FILE takes the place of EFFECT, --then and --set: vixahost apply --stack FILE IN "
                             "OUT.");
        // Without EFFECT the two files are the first two words.
        return ApplyCommand{{}, Wide(stackFile), Wide(effect), Wide(input), level};
    }
    if (app.got_subcommand(list))
        return ListCommand{effects::ParseLanguage(language.empty() ? "en" : language), json};
    if (app.got_subcommand(validate))
        return ValidateCommand{Wide(library), groups, json, listChecks, seconds};
    if (app.got_subcommand(icon)) {
        if (!folder.empty() && effect.empty())
            return IconCommand{"", Wide(folder)};
        if (!folder.empty() || effect.empty() || shown.empty())
            throw WrongWords("It goes: vixahost icon EFFECT FILE, or vixahost icon --all DIR.");
        return IconCommand{effect, Wide(shown)};
    }
    if (app.got_subcommand(panel)) {
        if (effect.empty() || shown.empty())
            throw WrongWords("It goes: vixahost panel EFFECT FILE [--language LANGUAGE] [--set NAME=VALUE].");
        return PanelCommand{effect, Wide(shown), effects::ParseLanguage(language.empty() ? "en" : language), settings};
    }
    return ShowCommand{};
}

} // namespace vixahost::commands
