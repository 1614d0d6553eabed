#include "framework/DirectShow.h"

#include <gtest/gtest.h>

int main(int count, char** arguments)
{
    testing::InitGoogleTest(&count, arguments);
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
        return 1;
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
