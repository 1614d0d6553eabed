#include "host/validate/Validation.h"

#include "host/base/ChildProcess.h"
#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/validate/Report.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>

namespace vixahost::validate {

namespace {

struct Pipe
{
    Pipe()
    {
        HANDLE read = nullptr, write = nullptr;
        if (!CreatePipe(&read, &write, nullptr, 1 << 16))
            throw FailedJob("The system gives no pipe (" + ExplainError(GetLastError()) + ").");
        reading.reset(read);
        writing.reset(write);
    }
    UniquePipe reading, writing;
};

// A child process and the reading end of its report. What the library prints goes nowhere.
class Child
{
public:
    Child(const ValidationRequest& request, const std::string& group, std::size_t firstCheck, const ReportKey& key)
        : reader(key)
    {
        Pipe report, orders;
        // Nothing else is inherited, so that the library under test can't write into this program's own output.
        ChildStart start = {request.program,
                            L" validate-child \"" + request.dll.wstring() + L"\" " + Wide(group) + L" " +
                                std::to_wstring(firstCheck),
                            "the checks"};
        start.input = orders.reading.get();
        start.inherited = {report.writing.get()};
        process.emplace(start);
        char text[maxOrders];
        const int length = std::snprintf(text, sizeof text, "%" PRIx64 " %" PRIx64 " %" PRIx64 "\n", key[0], key[1],
                                         std::uint64_t{reinterpret_cast<UINT_PTR>(report.writing.get())});
        DWORD written = 0;
        WriteFile(orders.writing.get(), text, static_cast<DWORD>(length), &written, nullptr);
        reports = std::move(report.reading);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    enum class Answer
    {
        Line,
        Foreign,
        Ended,
        TimeIsOver
    };

    // The next line of the report, if it comes before the deadline, in milliseconds of GetTickCount64.
    Answer Next(Statement& statement, ULONGLONG deadline)
    {
        for (;;) {
            if (const auto found = reader.Next(statement); found != ReportReader::Found::Nothing)
                return found == ReportReader::Found::Line ? Answer::Line : Answer::Foreign;
            if (GetTickCount64() >= deadline)
                return Answer::TimeIsOver;
            // Asked before the pipe is looked into: what the process wrote before its end is still in it.
            const bool ended = process->EndsWithin(0);
            DWORD waiting = 0;
            if (PeekNamedPipe(reports.get(), nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
                char part[maxLine];
                DWORD got = 0;
                ReadFile(reports.get(), part, std::min<DWORD>(waiting, sizeof part), &got, nullptr);
                reader.Take({part, got});
            } else if (ended) {
                return Answer::Ended;
            } else {
                Sleep(2);
            }
        }
    }
    void End() { process->End(4); }
    DWORD ExitCode() const { return process->Status(); }

private:
    UniquePipe reports;
    std::optional<ChildProcess> process;
    ReportReader reader;
};

// A loaded system may refuse a process, or what one needs, for a moment: a validation of many processes doesn't end at
// that.
std::unique_ptr<Child> StartChild(const ValidationRequest& request, const std::string& group, std::size_t firstCheck)
{
    for (int attempt = 1;; ++attempt) {
        try {
            return std::make_unique<Child>(request, group, firstCheck, RandomKey());
        } catch (const std::exception&) {
            if (attempt == 3)
                throw;
        }
        Sleep(250);
    }
}

// How long a process may take to begin its first check. None of the library's code runs before.
constexpr ULONGLONG startMilliseconds = 60'000;

struct Run
{
    const ValidationRequest& request;
    const std::function<void(const Result&)>& done;
    std::vector<Result> results;
    std::size_t told = 0; // how many results `done` has heard of

    void Add(const Check* check, Status status, std::string reason, ULONGLONG since)
    {
        Tell(); // the last result may still change, at its process's end
        results.push_back({check, status, std::move(reason), static_cast<int>(GetTickCount64() - since)});
    }
    void Tell()
    {
        for (; told < results.size(); ++told)
            if (done)
                done(results[told]);
    }

    // One child's life. Answers the index of the check with which the next one begins.
    std::size_t Attend(const std::string& group, const std::vector<const Check*>& checks, std::size_t first)
    {
        const auto started = StartChild(request, group, first);
        Child& child = *started;
        const ULONGLONG limit = static_cast<ULONGLONG>(request.secondsPerCheck) * 1000;
        std::size_t current = first;
        bool running = false; // the current check has begun
        Statement said;
        std::string words; // of a crash
        ULONGLONG since = GetTickCount64(), deadline = since + startMilliseconds;
        // What ends the process also ends the check that it was at, or spoils the last one.
        const auto stop = [&](Status status, const std::string& reason) {
            child.End();
            if (current < checks.size())
                Add(checks[current], status, reason, since);
            else
                Spoil(status, "after the last check: " + reason);
            return current + 1;
        };
        for (;;) {
            switch (child.Next(said, deadline)) {
            case Child::Answer::TimeIsOver:
                return stop(Status::Crashed, "no end after " + std::to_string((GetTickCount64() - since) / 1000) +
                                                 " s; the process was ended");
            case Child::Answer::Ended:
                return stop(Status::Crashed, words.empty() ? "the process ended by itself with status " +
                                                                 std::to_string(child.ExitCode())
                                                           : words);
            case Child::Answer::Foreign:
                return stop(Status::Failed, "somebody else wrote into the check's report: \"" + said.reason + "\"");
            case Child::Answer::Line:
                break;
            }
            const bool isCurrent = current < checks.size() && said.check == static_cast<int>(current);
            if (said.kind == Statement::Kind::Crashes) {
                words = said.reason;
            } else if (said.kind == Statement::Kind::Begins && isCurrent && !running) {
                running = true;
                since = GetTickCount64();
                deadline = since + limit;
            } else if (said.kind == Statement::Kind::Ends && isCurrent && running) {
                running = false;
                Add(checks[current++], said.status, said.reason, since);
                since = GetTickCount64();
                deadline = since + limit;
            } else if (said.kind == Statement::Kind::Over && current == checks.size()) {
                return Finish(child, GetTickCount64() + limit);
            } else {
                return stop(Status::Failed, "the checking process reports out of turn");
            }
        }
    }

    // What the library does while the process ends belongs to the last check as well.
    std::size_t Finish(Child& child, ULONGLONG deadline)
    {
        Statement said;
        switch (child.Next(said, deadline)) {
        case Child::Answer::TimeIsOver:
            child.End();
            Spoil(Status::Crashed, "the process does not end after the last check");
            break;
        case Child::Answer::Foreign:
            child.End();
            Spoil(Status::Failed, "somebody else wrote into the report after the last check: \"" + said.reason + "\"");
            break;
        case Child::Answer::Line:
            Spoil(Status::Crashed, "at the process's end: " + said.reason);
            break;
        case Child::Answer::Ended:
            break;
        }
        return std::string::npos;
    }

    void Spoil(Status status, const std::string& reason)
    {
        if (!results.empty() && results.back().status != Status::Crashed) {
            results.back().status = status;
            results.back().reason = reason;
        }
    }
};

} // namespace

std::vector<std::string> Groups()
{
    std::vector<std::string> groups;
    for (const Check& check : AllChecks())
        if (groups.empty() || groups.back() != check.group)
            groups.emplace_back(check.group);
    return groups;
}

std::vector<const Check*> ChecksOf(std::string_view name)
{
    std::vector<const Check*> checks;
    for (const Check& check : AllChecks())
        if (check.group == name || check.Id() == name)
            checks.push_back(&check);
    return checks;
}

std::vector<Result> Validate(const ValidationRequest& request, const std::function<void(const Result&)>& done)
{
    Run run{request, done, {}};
    for (const std::string& group : request.groups.empty() ? Groups() : request.groups) {
        const auto checks = ChecksOf(group);
        for (std::size_t next = 0; next < checks.size();)
            next = run.Attend(group, checks, next);
        run.Tell();
    }
    return std::move(run.results);
}

} // namespace vixahost::validate
