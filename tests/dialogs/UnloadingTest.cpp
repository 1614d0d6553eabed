// The windows of panels that outlive the library, in a program that does not hold the common controls itself.
#include "host/effects/EffectLibrary.h"
#include "host/validate/Subject.h"

#include <gtest/gtest.h>

using namespace vixahost;

namespace {

TEST(Unloading, LeavesWindowsTheirControls)
{
    ASSERT_EQ(GetModuleHandleW(L"comctl32.dll"), nullptr) << "what a panel's windows need is the library's business";
    validate::Subject library(effects::LibraryBesideTheProgram());
    for (const validate::Check& check : validate::UnloadingChecks()) {
        if (check.Id() == "unloading/windows-left") {
            EXPECT_NO_THROW(check.run(library));
            return;
        }
    }
    FAIL() << "the check has another name";
}

} // namespace
