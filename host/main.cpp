// vixahost: a small host of the effect library. Exit status: 0 done, 1 the job failed, 2 the words were wrong.
#include "host/Commands.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/Text.h"

#include <objbase.h>

#include <new>

namespace {

using namespace vixa::host;

struct Runner
{
    void operator()(const ShowCommand&) const { ShowAllEffects(); }
    void operator()(const EffectsCommand&) const { ListEffects(); }
    void operator()(const ApplyCommand& command) const { Apply(command); }
    void operator()(const BrowseCommand& command) const
    {
        Effects(); // read in English now, so that it doesn't happen under a window in another language
        Browse(command);
    }
    void operator()(const ListCommand& command) const { ListCatalogue(command); }
    void operator()(const IconCommand& command) const { WriteIcons(command); }
    void operator()(const PanelCommand& command) const { PicturePanel(command); }
    void operator()(const ValidateCommand& command) const { ValidateLibrary(command); }
    void operator()(const ChildCommand& command) const { RunChecksAsChild(command); }
    void operator()(const TextCommand& command) const { Say(command.text); }
};

int Complaint(int status, const std::string& message)
{
    Complain("vixahost: " + message + "\n");
    return status;
}

} // namespace

int wmain(int count, wchar_t** words)
{
    CatchInterrupts();
    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    int status = statusDone;
    try {
        std::vector<std::string> utf8;
        for (int i = 1; i < count; ++i)
            utf8.push_back(Utf8(words[i]));
        std::visit(Runner(), ParseCommandLine(utf8));
    } catch (const HostError& fault) {
        status = Complaint(fault.Status(), fault.what());
    } catch (const std::bad_alloc&) {
        status = Complaint(statusFailedJob, "There is not enough memory for a picture of this size; make it smaller.");
    } catch (const std::exception& fault) {
        status = Complaint(statusFailedJob, std::string("Something unforeseen failed: ") + fault.what());
    }
    if (SUCCEEDED(com))
        CoUninitialize();
    return status;
}
