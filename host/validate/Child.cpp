// The child process: one group's checks on one copy of the library.
#include "host/base/Text.h"
#include "host/fixtures/PushGraph.h"
#include "host/validate/Subject.h"
#include "host/validate/Validation.h"

#include <chrono>
#include <cstdio>

namespace vixahost::validate {

namespace {

HANDLE pipe = nullptr;

void Report(std::string line)
{
    for (char& letter : line)
        if (letter == '\n' || letter == '\r')
            letter = ' ';
    line += '\n';
    DWORD written = 0;
    WriteFile(pipe, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

// "VixaVideoFX.dll+0x1234".
void DescribePlace(const void* address, char* text, std::size_t size)
{
    HMODULE module = nullptr;
    char file[MAX_PATH] = "";
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCSTR>(address), &module))
        GetModuleFileNameA(module, file, MAX_PATH);
    const char* name = file;
    for (const char* at = file; *at; ++at)
        if (*at == '\\' || *at == '/')
            name = at + 1;
    if (*name)
        std::snprintf(
            text, size, "%s+0x%lX", name,
            static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(address) - reinterpret_cast<UINT_PTR>(module)));
    else
        std::snprintf(text, size, "%p", address);
}

// The last words of a process that crashes; no allocation, because the heap may be what is broken.
LONG WINAPI LastWords(EXCEPTION_POINTERS* fault)
{
    const EXCEPTION_RECORD& record = *fault->ExceptionRecord;
    char place[MAX_PATH + 32], line[MAX_PATH + 128];
    DescribePlace(record.ExceptionAddress, place, sizeof place);
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2)
        std::snprintf(line, sizeof line, "crash access violation at %s, %s address 0x%08lX\n", place,
                      record.ExceptionInformation[0] == 1   ? "writing to"
                      : record.ExceptionInformation[0] == 8 ? "executing"
                                                            : "reading from",
                      static_cast<unsigned long>(record.ExceptionInformation[1]));
    else
        std::snprintf(line, sizeof line, "crash exception 0x%08lX at %s\n",
                      static_cast<unsigned long>(record.ExceptionCode), place);
    DWORD written = 0;
    WriteFile(pipe, line, static_cast<DWORD>(strlen(line)), &written, nullptr);
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
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

void RunAsChild(const std::filesystem::path& library, const std::string& group, int firstCheck, HANDLE report)
{
    pipe = report;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(LastWords);
    Subject subject(library);
    const auto checks = ChecksOf(group);
    for (auto i = static_cast<std::size_t>(firstCheck); i < checks.size(); ++i) {
        Report("begin " + std::to_string(i));
        const auto start = std::chrono::steady_clock::now();
        const Finding finding = RunOne(*checks[i], subject);
        const auto spent =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
        Report("end " + std::to_string(static_cast<int>(finding.status)) + " " + std::to_string(spent.count()) + " " +
               finding.reason);
    }
    subject.Unload();
    Report("over");
}

} // namespace vixahost::validate
