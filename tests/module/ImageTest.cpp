// The built DLL as a file: how it lets the system protect it.
#include "host/base/Handles.h"
#include "host/effects/EffectLibrary.h"

#include <gtest/gtest.h>

namespace {

TEST(Image, IsProtected)
{
    const vixahost::UniqueModule library{LoadLibraryW(vixahost::effects::LibraryBesideTheProgram().c_str())};
    ASSERT_TRUE(library);
    const auto* const bytes = reinterpret_cast<const BYTE*>(library.get());
    const LONG at = reinterpret_cast<const IMAGE_DOS_HEADER*>(bytes)->e_lfanew;
    const auto& header = reinterpret_cast<const IMAGE_NT_HEADERS*>(bytes + at)->OptionalHeader;
    EXPECT_TRUE(header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) << "address space layout";
    EXPECT_TRUE(header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) << "data execution";
#ifdef _WIN64
    EXPECT_TRUE(header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA) << "the whole address space";
    EXPECT_GT(header.ImageBase, 0xFFFFFFFFu) << "an image made for low addresses is put there";
#endif
    // Without relocations the flag alone would be an empty promise.
    EXPECT_GT(header.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u);
    EXPECT_EQ(header.DataDirectory[IMAGE_DIRECTORY_ENTRY_DEBUG].Size, 0u);
}

} // namespace
