// vixahost: a small host of the effect library. Exit status: 0 done, 1 the job failed, 2 the words were wrong, 3 the
// system has no decoder for the clip.
#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/commands/CommandLine.h"

#include <objbase.h>

#include <new>

namespace {

using namespace vixahost;

int Complaint(int status, const std::string& message)
{
    if (!message.empty())
        Complain("vixahost: " + message + "\n");
    return status;
}

} // namespace

int wmain(int count, wchar_t** words)
{
    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    int status = statusDone;
    try {
        std::vector<std::string> utf8;
        for (int i = 1; i < count; ++i)
            utf8.push_back(Utf8(words[i]));
        std::visit([](const auto& command) { commands::Run(command); }, commands::ParseCommandLine(utf8));
    } catch (const HostError& fault) {
        status = Complaint(fault.Status(), fault.what());
    } catch (const std::bad_alloc&) {
        status = Complaint(statusFailedJob, "There is not enough memory for this; a smaller picture needs less.");
    } catch (const std::exception& fault) {
        status = Complaint(statusFailedJob, std::string("Something unforeseen failed: ") + fault.what());
    }
    if (SUCCEEDED(com))
        CoUninitialize();
    return status;
}
