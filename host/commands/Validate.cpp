#include "host/commands/Validate.h"
#include "host/base/HostError.h"
#include "host/base/Json.h"
#include "host/base/ModuleFile.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"
#include "host/commands/HandOver.h"
#include "host/commands/Words.h"
#include "host/effects/EffectLibrary.h"
#include "host/effects/LibraryFile.h"
#include "host/validate/Attack.h"
#include "host/validate/Soak.h"
#include "host/validate/Validation.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace vixahost::commands {

namespace {

constexpr validate::Status statuses[] = {validate::Status::Success, validate::Status::Skipped,
                                         validate::Status::Warning, validate::Status::Failed,
                                         validate::Status::Crashed};

std::ptrdiff_t Count(const std::vector<validate::Result>& results, validate::Status status)
{
    return std::count_if(results.begin(), results.end(),
                         [&](const validate::Result& one) { return one.status == status; });
}

std::string Line(const validate::Result& result)
{
    char front[64];
    std::snprintf(front, sizeof front, "%-8s %6d ms  ", validate::NameOf(result.status), result.milliseconds);
    std::string line = front + result.check->Id();
    if (!result.reason.empty())
        line += ": " + result.reason;
    return line + "\n";
}

std::string Tally(const std::vector<validate::Result>& results)
{
    std::string text = std::to_string(results.size()) + " checks:";
    for (const validate::Status status : statuses)
        text += std::string(status == validate::Status::Success ? " " : ", ") + std::to_string(Count(results, status)) +
                " " + validate::NameOf(status);
    return text + "\n";
}

std::string ToJson(const std::filesystem::path& library, const std::vector<validate::Result>& results)
{
    Json tally, checks = Json::array();
    for (const validate::Status status : statuses)
        tally[validate::NameOf(status)] = Count(results, status);
    for (const validate::Result& result : results)
        checks.push_back({{"id", result.check->Id()},
                          {"sentence", result.check->sentence},
                          {"status", validate::NameOf(result.status)},
                          {"reason", result.reason},
                          {"milliseconds", result.milliseconds}});
    const Json document = {{"library", Show(library)}, {"checks", checks}, {"tally", tally}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string ListChecks(bool json)
{
    Json list = Json::array();
    std::string text;
    for (const validate::Check& check : validate::AllChecks()) {
        list.push_back({{"id", check.Id()}, {"sentence", check.sentence}});
        std::string id = check.Id();
        id.resize(std::max<std::size_t>(id.size() + 1, 34), ' ');
        text += id + check.sentence + "\n";
    }
    return json ? list.dump(2) + "\n" : text;
}

} // namespace

void Run(const ValidateCommand& command)
{
    if (command.list)
        return Say(ListChecks(command.json));
    for (const std::string& name : command.groups)
        if (validate::ChecksOf(name).empty()) {
            auto names = validate::Groups();
            if (name.find('/') != std::string::npos) {
                names.clear();
                for (const validate::Check& check : validate::AllChecks())
                    names.push_back(check.Id());
            }
            throw WrongWords("There is no check and no group of checks \"" + name + "\"; did you mean " +
                             Alternatives(NearestNames(name, names)) + "? `vixahost validate --list` shows all.");
        }
    validate::ValidationRequest request;
    request.dll = effects::LibraryOr(command.dll);
    request.program = ThisProgram();
    request.groups = command.groups;
    request.secondsPerCheck = command.secondsPerCheck;
    if (GetFileAttributesW(request.dll.c_str()) == INVALID_FILE_ATTRIBUTES)
        throw FailedJob("There is no library to check: " + Show(request.dll));
    if (HandOver(request.dll))
        return;

    if (command.attackMinutes > 0)
        return validate::Attack(request.dll, command.attackMinutes, Say);
    if (command.soakMinutes > 0)
        return validate::Soak(request.dll, command.soakMinutes, Say);

    const auto results = validate::Validate(request, [&](const validate::Result& result) {
        if (!command.json)
            Say(Line(result));
    });
    Say(command.json ? ToJson(request.dll, results) : Tally(results));
    const auto bad = Count(results, validate::Status::Failed) + Count(results, validate::Status::Crashed);
    if (bad > 0)
        throw FailedJob(std::to_string(bad) + (bad == 1 ? " check" : " checks") + " failed on " + Show(request.dll) +
                        "; docs/validator.md says what each one asks for.");
}

void Run(const ChildCommand& command)
{
    validate::RunAsChild(command.dll, command.group, command.firstCheck);
}

std::optional<ChildCommand> ReadChildWords(const std::vector<std::string>& words)
{
    if (words.size() != 4 || words.front() != "validate-child")
        return std::nullopt;
    return ChildCommand{Wide(words[1]), words[2], std::atoi(words[3].c_str())};
}

Words ValidateWords(CLI::App& program)
{
    struct Given
    {
        std::string library;
        std::vector<std::string> groups;
        bool json = false, list = false;
        int seconds = 20, attack = 0, soak = 0;
    };
    CLI::App* const parser =
        program.add_subcommand("validate", "Checks a build of the library as a foreign host would");
    const auto given = std::make_shared<Given>();
    parser->add_flag("--json", given->json, "For programs");
    parser->add_option("DLL", given->library, "The library; without it the one beside this program");
    parser->add_option("--only", given->groups, "This group of checks only, or this check (may be repeated)")
        ->type_name("GROUP or GROUP/NAME")
        ->allow_extra_args(false);
    parser->add_flag("--list", given->list, "Names and describes the checks");
    parser->add_option("--time-limit", given->seconds, "How long one check may take")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 600));
    parser->add_option("--attack", given->attack, "Instead of the checks: tries that long to break the library")
        ->type_name("MINUTES")
        ->check(CLI::Range(1, 1440));
    parser->add_option("--soak", given->soak, "Instead of the checks: sends frames that long while all else changes")
        ->type_name("MINUTES")
        ->check(CLI::Range(1, 1440));
    return {parser, [given] {
                return ValidateCommand{Wide(given->library), given->groups, given->json, given->list,
                                       given->seconds,       given->attack, given->soak};
            }};
}

} // namespace vixahost::commands
