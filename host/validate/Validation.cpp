#include "host/validate/Validation.h"

#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <algorithm>
#include <cstdio>

namespace vixahost::validate {

namespace {

// A child process and the reading end of its reports.
class Child
{
public:
    Child(const ValidationRequest& request, const std::string& group, int firstCheck)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        HANDLE read = nullptr, write = nullptr;
        if (!CreatePipe(&read, &write, &inherited, 1 << 16))
            throw FailedJob("The system gives no pipe (system error " + std::to_string(GetLastError()) + ").");
        reports.reset(read);
        const UniquePipe writingEnd(write);
        SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
        std::wstring words = L"\"" + request.program.wstring() + L"\" validate-child \"" + request.dll.wstring() +
                             L"\" " + Wide(group) + L" " + std::to_wstring(firstCheck) + L" " +
                             std::to_wstring(reinterpret_cast<UINT_PTR>(write));
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        PROCESS_INFORMATION made = {};
        if (!CreateProcessW(request.program.c_str(), words.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                            &made))
            throw FailedJob("No process can be started for the checks (system error " + std::to_string(GetLastError()) +
                            "): " + Show(request.program));
        const UniqueThread firstThread(made.hThread);
        process.reset(made.hProcess);
    }
    ~Child()
    {
        if (WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT)
            End();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    enum class Answer
    {
        Line,
        Ended,
        TimeIsOver
    };

    // The next line of the report, if it comes within the time.
    Answer Next(std::string& line, DWORD milliseconds)
    {
        for (const DWORD begin = GetTickCount();;) {
            if (const std::size_t end = pending.find('\n'); end != std::string::npos) {
                line = pending.substr(0, end);
                pending.erase(0, end + 1);
                return Answer::Line;
            }
            // Asked before the pipe is looked into: what the process wrote before its end is still in it.
            const bool ended = WaitForSingleObject(process.get(), 0) != WAIT_TIMEOUT;
            DWORD waiting = 0;
            if (PeekNamedPipe(reports.get(), nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
                std::string part(waiting, '\0');
                DWORD got = 0;
                ReadFile(reports.get(), part.data(), waiting, &got, nullptr);
                pending.append(part, 0, got);
                continue;
            }
            if (ended)
                return Answer::Ended;
            if (GetTickCount() - begin >= milliseconds)
                return Answer::TimeIsOver;
            Sleep(2);
        }
    }
    void End()
    {
        TerminateProcess(process.get(), 4);
        WaitForSingleObject(process.get(), 5000);
    }
    DWORD ExitCode() const
    {
        DWORD code = 0;
        GetExitCodeProcess(process.get(), &code);
        return code;
    }

private:
    UniquePipe reports;
    UniqueProcess process;
    std::string pending;
};

struct Run
{
    const ValidationRequest& request;
    const std::function<void(const Result&)>& done;
    std::vector<Result> results;
    std::size_t told = 0; // how many results `done` has heard of

    void Add(const Check* check, Status status, std::string reason, int milliseconds)
    {
        Tell(); // the last result may still change, at its process's end
        results.push_back({check, status, std::move(reason), milliseconds});
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
        Child child(request, group, static_cast<int>(first));
        const auto limit = static_cast<DWORD>(request.secondsPerCheck) * 1000;
        std::size_t current = first;
        std::string line, words;
        for (DWORD begun = GetTickCount();;) {
            const auto answer = child.Next(line, limit);
            const int spent = static_cast<int>(GetTickCount() - begun);
            if (answer == Child::Answer::TimeIsOver) {
                child.End();
                const std::string seconds = std::to_string(request.secondsPerCheck);
                if (current < checks.size())
                    Add(checks[current], Status::Crashed, "no end after " + seconds + " s; the process was ended",
                        spent);
                else
                    Replace("the process does not end after the last check");
                return current + 1;
            }
            if (answer == Child::Answer::Ended) {
                if (words.empty())
                    words = "the process ended by itself with status " + std::to_string(child.ExitCode());
                if (current < checks.size())
                    Add(checks[current], Status::Crashed, words, spent);
                else
                    Replace("after the last check: " + words);
                return current + 1;
            }
            int status = 0, milliseconds = 0, reasonAt = 0;
            if (line.starts_with("begin ")) {
                begun = GetTickCount();
            } else if (line.starts_with("crash ")) {
                words = line.substr(6);
            } else if (line == "over") {
                return Finish(child, limit);
            } else if (std::sscanf(line.c_str(), "end %d %d %n", &status, &milliseconds, &reasonAt) >= 2 &&
                       current < checks.size()) {
                Add(checks[current++], static_cast<Status>(status),
                    line.substr(std::min(line.size(), static_cast<std::size_t>(reasonAt))), milliseconds);
            }
        }
    }

    // What the library does while the process ends belongs to the last check as well.
    std::size_t Finish(Child& child, DWORD limit)
    {
        std::string line;
        const auto answer = child.Next(line, limit);
        if (answer == Child::Answer::TimeIsOver) {
            child.End();
            Replace("the process does not end after the last check");
        } else if (answer == Child::Answer::Line && line.starts_with("crash ")) {
            Replace("at the process's end: " + line.substr(6));
        }
        return std::string::npos;
    }

    void Replace(const std::string& reason)
    {
        if (!results.empty() && results.back().status != Status::Crashed) {
            results.back().status = Status::Crashed;
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

std::vector<const Check*> ChecksOf(std::string_view group)
{
    std::vector<const Check*> checks;
    for (const Check& check : AllChecks())
        if (check.group == group)
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
