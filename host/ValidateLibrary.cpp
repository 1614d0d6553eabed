#include "host/Commands.h"
#include "host/EffectLibrary.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/NearestNames.h"
#include "host/Text.h"
#include "host/validate/Validation.h"

#include <algorithm>
#include <cstdio>

namespace vixa::host {

namespace {

constexpr Status statuses[] = {Status::Success, Status::Skipped, Status::Warning, Status::Failed, Status::Crashed};

std::ptrdiff_t Count(const std::vector<Result>& results, Status status)
{
    return std::count_if(results.begin(), results.end(), [&](const Result& one) { return one.status == status; });
}

std::string Line(const Result& result)
{
    char front[64];
    std::snprintf(front, sizeof front, "%-8s %6d ms  ", NameOf(result.status), result.milliseconds);
    std::string line = front + result.check->Id();
    if (!result.reason.empty())
        line += ": " + result.reason;
    return line + "\n";
}

std::string Tally(const std::vector<Result>& results)
{
    std::string text = std::to_string(results.size()) + " checks:";
    for (const Status status : statuses)
        text += std::string(status == Status::Success ? " " : ", ") + std::to_string(Count(results, status)) + " " +
                NameOf(status);
    return text + "\n";
}

std::string ToJson(const std::filesystem::path& library, const std::vector<Result>& results)
{
    Json tally, checks = Json::array();
    for (const Status status : statuses)
        tally[NameOf(status)] = Count(results, status);
    for (const Result& result : results)
        checks.push_back({{"id", result.check->Id()},
                          {"sentence", result.check->sentence},
                          {"status", NameOf(result.status)},
                          {"reason", result.reason},
                          {"milliseconds", result.milliseconds}});
    const Json document = {{"library", Show(library)}, {"checks", checks}, {"tally", tally}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string ListChecks(bool json)
{
    Json list = Json::array();
    std::string text;
    for (const Check& check : AllChecks()) {
        list.push_back({{"id", check.Id()}, {"sentence", check.sentence}});
        std::string id = check.Id();
        id.resize(std::max<std::size_t>(id.size() + 1, 34), ' ');
        text += id + check.sentence + "\n";
    }
    return json ? list.dump(2) + "\n" : text;
}

} // namespace

void ValidateLibrary(const ValidateCommand& command)
{
    if (command.list)
        return Say(ListChecks(command.json));
    const auto groups = Groups();
    for (const std::string& group : command.groups)
        if (std::find(groups.begin(), groups.end(), group) == groups.end())
            throw WrongWords("There is no group \"" + group + "\" of checks; did you mean " +
                             Alternatives(NearestNames(group, groups)) + "? `vixahost validate --list` shows all.");
    ValidationRequest request;
    request.dll =
        std::filesystem::absolute(command.dll.empty() ? LibraryBesideTheProgram() : command.dll).make_preferred();
    request.program = ThisProgram();
    request.groups = command.groups;
    request.secondsPerCheck = command.secondsPerCheck;
    if (GetFileAttributesW(request.dll.c_str()) == INVALID_FILE_ATTRIBUTES)
        throw FailedJob("There is no library to check: " + Show(request.dll));

    const auto results = Validate(request, [&](const Result& result) {
        if (!command.json)
            Say(Line(result));
    });
    Say(command.json ? ToJson(request.dll, results) : Tally(results));
    const auto bad = Count(results, Status::Failed) + Count(results, Status::Crashed);
    if (bad > 0)
        throw FailedJob(std::to_string(bad) + (bad == 1 ? " check" : " checks") + " failed on " + Show(request.dll) +
                        "; docs/validator.md says what each one asks for.");
}

void RunChecksAsChild(const ChildCommand& command)
{
    RunAsChild(command.dll, command.group, command.firstCheck, reinterpret_cast<HANDLE>(command.report));
}

} // namespace vixa::host
