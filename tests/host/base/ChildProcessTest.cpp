// What a process that the host starts gets of the host's, and when it ends.
#include "host/base/ChildProcess.h"
#include "host/base/HostError.h"
#include "host/base/ModuleFile.h"

#include <gtest/gtest.h>

namespace vixahost {
namespace {

TEST(ChildProcess, InheritsWhatIsNamedAndEndsWithItsOwner)
{
    struct Pipe
    {
        UniquePipe reading, writing;
        Pipe()
        {
            SECURITY_ATTRIBUTES anybody = {sizeof anybody, nullptr, TRUE};
            HANDLE read = nullptr, write = nullptr;
            CreatePipe(&read, &write, &anybody, 0);
            reading.reset(read);
            writing.reset(write);
        }
    } orders, other;
    SetHandleInformation(orders.reading.get(), HANDLE_FLAG_INHERIT, 0);
    UniqueProcess afterwards;
    {
        // It waits for orders; it could not if its input were closed.
        const ChildProcess child({.program = ThisProgram().parent_path() / L"vixahost.exe",
                                  .words = L" validate-child none none 0",
                                  .purpose = "a test",
                                  .input = orders.reading.get()});
        HANDLE copy = nullptr;
        DuplicateHandle(GetCurrentProcess(), child.Handle(), GetCurrentProcess(), &copy, SYNCHRONIZE, FALSE, 0);
        afterwards.reset(copy);
        EXPECT_FALSE(child.EndsWithin(500));
        EXPECT_EQ(child.Status(), DWORD{STILL_ACTIVE});
        other.writing.reset();
        EXPECT_FALSE(PeekNamedPipe(other.reading.get(), nullptr, 0, nullptr, nullptr, nullptr))
            << "the child holds the other end";
    }
    EXPECT_EQ(WaitForSingleObject(afterwards.get(), 0), WAIT_OBJECT_0);
    DWORD flags = HANDLE_FLAG_INHERIT;
    EXPECT_TRUE(GetHandleInformation(orders.reading.get(), &flags));
    EXPECT_EQ(flags, 0u) << "for this child only";
    EXPECT_THROW(ChildProcess({.program = L"nothing.exe", .words = L"", .purpose = "a test"}), FailedJob);
}

} // namespace
} // namespace vixahost
