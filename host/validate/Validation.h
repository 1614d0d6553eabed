// Runs the checks in child processes, so that a crash or a hang of the library is a result like any other.
#pragma once

#include "host/validate/Check.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vixahost::validate {

struct Result
{
    const Check* check;
    Status status;
    std::string reason; // empty for a success
    int milliseconds;   // by the parent's clock
};

struct ValidationRequest
{
    std::filesystem::path dll;
    std::filesystem::path program;   // a vixahost, which is started for the children
    std::vector<std::string> groups; // or single checks, as "group/name"; empty: all
    int secondsPerCheck = 20;        // a check that takes longer counts as crashed, and its process is ended
};

// One child a group, and a new one after each crash and after each report that somebody else wrote in. Every check of
// the groups gets one result. `done` is called for each check as it ends, in order. Throws FailedJob when no child can
// be started.
std::vector<Result> Validate(const ValidationRequest& request, const std::function<void(const Result&)>& done);

// The child's side: runs one group's checks from the given one on. Standard input says where the report goes and how it
// is signed; throws WrongWords when it doesn't.
void RunAsChild(const std::filesystem::path& library, const std::string& group, int firstCheck);

// The checks of one group, or one check by its "group/name"; empty for a name that is none.
std::vector<const Check*> ChecksOf(std::string_view name);

// The groups in their order.
std::vector<std::string> Groups();

} // namespace vixahost::validate
