// The built DLL as a file: what it imports, and how it lets the system protect it.
#include "tests/support/Library.h"

#include <algorithm>
#include <set>
#include <string>

using namespace test;

namespace {

class Image : public LibraryTest
{
protected:
    template <typename Type>
    const Type* At(DWORD offset) const
    {
        return reinterpret_cast<const Type*>(reinterpret_cast<const BYTE*>(library.module) + offset);
    }

    const IMAGE_NT_HEADERS32& Headers() const
    {
        return *At<IMAGE_NT_HEADERS32>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
    }

    const IMAGE_DATA_DIRECTORY& Directory(int index) const { return Headers().OptionalHeader.DataDirectory[index]; }
};

TEST_F(Image, ImportsSystemLibrariesOnly)
{
    static const std::set<std::string> system = {"advapi32.dll", "comctl32.dll", "gdi32.dll",  "kernel32.dll",
                                                 "msimg32.dll",  "msvcrt.dll",   "ole32.dll",  "oleaut32.dll",
                                                 "shell32.dll",  "strmiids.dll", "user32.dll", "winmm.dll"};
    const auto* entry = At<IMAGE_IMPORT_DESCRIPTOR>(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
    ASSERT_NE(entry->Name, 0u);
    for (; entry->Name; ++entry) {
        std::string name = At<char>(entry->Name);
        std::ranges::transform(name, name.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
        EXPECT_TRUE(system.contains(name)) << name;
    }
}

TEST_F(Image, IsProtected)
{
    const auto& header = Headers().OptionalHeader;
    EXPECT_TRUE(header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) << "address space layout";
    EXPECT_TRUE(header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) << "data execution";
    // Without relocations the flag alone would be an empty promise.
    EXPECT_GT(Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0u);
    EXPECT_EQ(Headers().FileHeader.Machine, IMAGE_FILE_MACHINE_I386);
    EXPECT_TRUE(Headers().FileHeader.Characteristics & IMAGE_FILE_DLL);
    EXPECT_EQ(Directory(IMAGE_DIRECTORY_ENTRY_DEBUG).Size, 0u);
}

} // namespace
