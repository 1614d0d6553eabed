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
    int milliseconds;
};

struct ValidationRequest
{
    std::filesystem::path dll;
    std::filesystem::path program;   // a vixahost, which is started for the children
    std::vector<std::string> groups; // empty: all
    int secondsPerCheck = 20;        // a check that takes longer counts as crashed, and its process is ended
};

// One child a group, and a new one after each crash. `done` is called for each check as it ends, in order. Throws
// FailedJob when no child can be started.
std::vector<Result> Validate(const ValidationRequest& request, const std::function<void(const Result&)>& done);

// The child's side: runs one group's checks from the given one on and reports through a pipe that it inherited.
void RunAsChild(const std::filesystem::path& library, const std::string& group, int firstCheck, HANDLE report);

// The checks of one group; empty for a name that is none.
std::vector<const Check*> ChecksOf(std::string_view group);

// The groups in their order.
std::vector<std::string> Groups();

} // namespace vixahost::validate
