// What a process holds that a language file could leave behind, and the languages to switch through.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <psapi.h>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <utility>

namespace vixa::test {

// One identifier for each language file.
inline constexpr std::pair<LANGID, std::wstring_view> identifiers[] = {
    {0x0405, L"cs-CZ"}, {0x0406, L"da-DK"}, {0x0407, L"de-DE"}, {0x0408, L"el-GR"}, {0x0409, L"en-US"},
    {0x040A, L"es-ES"}, {0x340A, L"es-CL"}, {0x040B, L"fi-FI"}, {0x040C, L"fr-FR"}, {0x040E, L"hu-HU"},
    {0x0410, L"it-IT"}, {0x0411, L"ja-JP"}, {0x0412, L"ko-KR"}, {0x0413, L"nl-NL"}, {0x0414, L"nb-NO"},
    {0x0415, L"pl-PL"}, {0x0416, L"pt-BR"}, {0x0816, L"pt-PT"}, {0x0419, L"ru-RU"}, {0x041B, L"sk-SK"},
    {0x0424, L"sl-SI"}, {0x041D, L"sv-SE"}, {0x041E, L"th-TH"}, {0x041F, L"tr-TR"}, {0x0422, L"uk-UK"},
    {0x0804, L"zh-CN"}, {0x0404, L"zh-TW"}};

struct Holdings
{
    std::size_t handles = 0, mappedViews = 0, committedBytes = 0, modules = 0;

    static Holdings Now()
    {
        Holdings holdings;
        // Asked one by one: not every system counts them.
        for (ULONG_PTR handle = 4; handle < 0x4000; handle += 4) {
            DWORD flags = 0;
            holdings.handles += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) ? 1 : 0;
        }
        MEMORY_BASIC_INFORMATION region;
        for (ULONG_PTR at = 0; VirtualQuery(reinterpret_cast<const void*>(at), &region, sizeof region) != 0;) {
            if (region.State == MEM_COMMIT) {
                holdings.committedBytes += region.RegionSize;
                holdings.mappedViews += region.Type == MEM_MAPPED && region.BaseAddress == region.AllocationBase;
            }
            const ULONG_PTR next = reinterpret_cast<ULONG_PTR>(region.BaseAddress) + region.RegionSize;
            if (next <= at)
                break;
            at = next;
        }
        HMODULE list[256];
        DWORD bytes = 0;
        K32EnumProcessModules(GetCurrentProcess(), list, sizeof list, &bytes);
        holdings.modules = bytes / sizeof(HMODULE);
        return holdings;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Holdings& h)
{
    return out << h.handles << " handles, " << h.mappedViews << " mapped views, " << h.modules << " modules, "
               << h.committedBytes << " bytes";
}

// Runs `step` with 0, 1, 2, ... and expects the process to hold afterwards what it held before: 270 times, or as often
// as VIXA_SWITCHES says for a long measurement, which is then printed.
template <typename Step>
void ExpectNothingIsLeft(const Step& step)
{
    const char* const wanted = std::getenv("VIXA_SWITCHES");
    const std::size_t times = wanted ? std::strtoul(wanted, nullptr, 10) : 270;
    const Holdings before = Holdings::Now();
    for (std::size_t i = 0; i < times; ++i)
        step(i);
    const Holdings after = Holdings::Now();
    if (wanted)
        std::cout << times << " switches: before " << before << "; after " << after << '\n';
    ASSERT_GT(before.handles, 0u);
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.mappedViews, before.mappedViews);
    EXPECT_EQ(after.modules, before.modules);
    // A heap may grow by a segment for other reasons; a view left behind by each switch would be far more.
    EXPECT_LT(after.committedBytes, before.committedBytes + 256 * 1024);
}

} // namespace vixa::test
