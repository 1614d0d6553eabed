// The child process: one group's checks on one copy of the library.
#include "host/base/HostError.h"
#include "host/fixtures/PushGraph.h"
#include "host/validate/CrashWatch.h"
#include "host/validate/Report.h"
#include "host/validate/Subject.h"
#include "host/validate/Validation.h"

#include <atomic>
#include <cinttypes>
#include <cstdio>

namespace vixahost::validate {

namespace {

// What the parent said before the library was loaded.
ReportKey key;
HANDLE report = nullptr;
std::atomic_flag writing;
unsigned long lines = 0; // guarded by `writing`, like the buffer
char line[maxLine];

void Report(Statement::Kind kind, int check, Status status = Status::Success, const char* reason = "") noexcept
{
    // A thread of the library may crash while this line is written; one that crashes in here has nobody to wait for.
    for (int i = 0; writing.test_and_set() && i < 1000; ++i)
        Sleep(1);
    const std::string_view text = WriteLine(line, key, lines++, kind, check, status, reason);
    DWORD written = 0;
    WriteFile(report, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    writing.clear();
}

// Standard input holds the key and the report's handle, in numbers. Nothing of it stays where the library can look them
// up: not in the command line, not in the environment, not in the stream.
bool ReadOrders()
{
    char orders[maxOrders] = "";
    DWORD got = 0;
    ReadFile(GetStdHandle(STD_INPUT_HANDLE), orders, sizeof orders - 1, &got, nullptr);
    std::uint64_t handle = 0;
    const bool understood =
        std::sscanf(orders, "%" SCNx64 " %" SCNx64 " %" SCNx64, key.data(), key.data() + 1, &handle) == 3;
    SecureZeroMemory(orders, sizeof orders);
    report = reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(handle));
    return std::freopen("NUL", "r", stdin) && understood && SetHandleInformation(report, HANDLE_FLAG_INHERIT, 0);
}

void LastWords(const char* words)
{
    Report(Statement::Kind::Crashes, 0, Status::Success, words);
}

Finding RunOne(const Check& check, Subject& library)
{
    try {
        check.run(library);
        return {Status::Success, ""};
    } catch (const Finding& finding) {
        return finding;
    } catch (const fixtures::Refusal& refusal) {
        return {Status::Failed, refusal.what()};
    } catch (const fixtures::NoFilterGraph& lack) {
        return {Status::Skipped, lack.what()};
    } catch (const std::exception& fault) {
        return {Status::Failed, std::string("the check itself could not go on: ") + fault.what()};
    }
}

} // namespace

void RunAsChild(const std::filesystem::path& library, const std::string& group, int firstCheck)
{
    if (!ReadOrders())
        throw WrongWords("validate-child is for `vixahost validate` alone.");
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    WatchForCrashes(LastWords);
    Subject subject(library);
    const auto checks = ChecksOf(group);
    for (int i = firstCheck; i < static_cast<int>(checks.size()); ++i) {
        Report(Statement::Kind::Begins, i);
        const Finding finding = RunOne(*checks[static_cast<std::size_t>(i)], subject);
        Report(Statement::Kind::Ends, i, finding.status, finding.reason.c_str());
    }
    subject.Unload();
    Report(Statement::Kind::Over, 0);
}

} // namespace vixahost::validate
