// vixahost: a small host of the effect library. Exit status: 0 done, 1 the job failed, 2 the words were wrong.
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/Text.h"
#include "host/commands/Commands.h"

#include <objbase.h>

#include <new>

namespace {

using namespace vixahost;

struct Runner
{
    void operator()(const commands::ShowCommand&) const { commands::ShowAllEffects(); }
    void operator()(const commands::EffectsCommand&) const { commands::ListEffects(); }
    void operator()(const commands::ApplyCommand& command) const { commands::Apply(command); }
    void operator()(const commands::BrowseCommand& command) const
    {
        effects::Effects(); // read in English now, so that it doesn't happen under a window in another language
        commands::Browse(command);
    }
    void operator()(const commands::ListCommand& command) const { commands::ListCatalogue(command); }
    void operator()(const commands::IconCommand& command) const { commands::WriteIcons(command); }
    void operator()(const commands::PanelCommand& command) const { commands::PicturePanel(command); }
    void operator()(const commands::ValidateCommand& command) const { commands::ValidateLibrary(command); }
    void operator()(const commands::ChildCommand& command) const { commands::RunChecksAsChild(command); }
    void operator()(const commands::TextCommand& command) const { Say(command.text); }
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
        std::visit(Runner(), commands::ParseCommandLine(utf8));
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
