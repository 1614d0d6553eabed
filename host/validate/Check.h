// What a check is, and how it says what it found.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

namespace vixahost::validate {

class Subject;

enum class Status
{
    Success,
    Skipped, // nothing to look at here, or an earlier check already failed for the same cause
    Warning, // within the contract, and yet worth a look
    Failed,
    Crashed, // the child process ended, or did not answer in time
};

// "success", "skipped", "warning", "failed", "crashed".
const char* NameOf(Status status) noexcept;

struct Check
{
    const char* group;
    const char* name;
    const char* sentence;  // what the library must do, for people
    void (*run)(Subject&); // returns: success; throws Finding: anything else

    std::string Id() const { return std::string(group) + "/" + name; }
};

// All checks, group by group, in the order in which they run.
std::span<const Check> AllChecks();

// One group's table each.
std::span<const Check> LoadingChecks();
std::span<const Check> ExportChecks();
std::span<const Check> FactoryChecks();
std::span<const Check> IdentityChecks();
std::span<const Check> CatalogueChecks();
std::span<const Check> TextChecks();
std::span<const Check> IconChecks();
std::span<const Check> DefaultsChecks();
std::span<const Check> PanelChecks();
std::span<const Check> EmbeddingChecks();
std::span<const Check> FilterChecks();
std::span<const Check> ConnectionChecks();
std::span<const Check> StreamingChecks();
std::span<const Check> InputChecks();
std::span<const Check> UnloadingChecks();

// How a check ends when it is not a success. Thrown inside the host only, never through the library.
struct Finding
{
    Status status;
    std::string reason; // one line of UTF-8
};

void Require(bool holds, std::string_view reason);
void RequireResult(HRESULT got, HRESULT wanted, std::string_view call);
void RequireNumber(long long got, long long wanted, std::string_view what);
[[noreturn]] void Skip(std::string_view reason);
[[noreturn]] void Warn(std::string_view reason);

} // namespace vixahost::validate
