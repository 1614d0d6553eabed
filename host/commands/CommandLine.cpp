#include "host/commands/CommandLine.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"
#include "host/commands/Words.h"

#include <algorithm>

namespace vixahost::commands {

namespace {

void RequireKnown(const std::string& word, const std::vector<Words>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const Words& command : commands)
        names.push_back(command.parser->get_name());
    if (!word.starts_with('-') && std::find(names.begin(), names.end(), word) == names.end())
        throw WrongWords("There is no command \"" + word + "\"; did you mean " +
                         Alternatives(NearestNames(word, names)) + "? `vixahost --help` shows all.");
}

} // namespace

Command ParseCommandLine(const std::vector<std::string>& words)
{
    if (const auto child = ReadChildWords(words))
        return *child;
    if (const auto decoder = ReadDecodeWords(words))
        return *decoder;
    CLI::App program(
        "Shows VixaVideoFX's effects and applies them to pictures and clips. Without arguments: all effects "
        "on a sample picture, into the folder \"out\".",
        "vixahost");
    // A path such as /tmp/in.png is a path here, not an option; the commands inherit this.
    program.allow_windows_style_options(false);
    program.require_subcommand(0, 1);
    program.set_version_flag("--version", "vixahost " VIXA_VERSION);
    AddVerbose(program); // for the run without a command
    program.footer(examples);
    const std::vector<Words> commands = {EffectsWords(program),  ApplyWords(program),   BrowseWords(program),
                                         ListWords(program),     IconWords(program),    PanelWords(program),
                                         ManifestWords(program), ValidateWords(program)};
    if (!words.empty())
        RequireKnown(words.front(), commands);
    try {
        program.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
        return TextCommand{program.help()};
    } catch (const CLI::CallForAllHelp&) {
        return TextCommand{program.help("", CLI::AppFormatMode::All)};
    } catch (const CLI::CallForVersion& version) {
        return TextCommand{std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& fault) {
        std::string message = fault.what();
        std::replace(message.begin(), message.end(), '\n', ' ');
        throw WrongWords(message + " (`vixahost --help` shows how it goes)");
    }
    for (const Words& command : commands)
        if (program.got_subcommand(command.parser))
            return command.read();
    return ShowAllCommand{};
}

void Run(const TextCommand& command)
{
    Say(command.text);
}

} // namespace vixahost::commands
