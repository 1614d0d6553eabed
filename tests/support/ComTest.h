// A test whose threads are in the multi-threaded apartment.
#pragma once

#include <gtest/gtest.h>
#include <objbase.h>

namespace test {

class ComTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))); }
    static void TearDownTestSuite() { CoUninitialize(); }
};

} // namespace test
