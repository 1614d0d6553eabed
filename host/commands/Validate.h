// vixahost validate, and the processes that it starts
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::commands {

struct ValidateCommand
{
    std::filesystem::path dll;       // empty: the one beside the program
    std::vector<std::string> groups; // or single checks; empty: all
    bool json, list;
    int secondsPerCheck;
    int attackMinutes = 0, soakMinutes = 0; // instead of the checks
};

// Checks a library, or attacks it. Throws FailedJob when a check fails, after the report was written.
void Run(const ValidateCommand& command);

// One group of checks in a process of its own; what `validate` starts, not for people.
struct ChildCommand
{
    std::filesystem::path dll;
    std::string group;
    int firstCheck;
};
void Run(const ChildCommand& command);

// The words of such a process; none for any others.
std::optional<ChildCommand> ReadChildWords(const std::vector<std::string>& words);

} // namespace vixahost::commands
