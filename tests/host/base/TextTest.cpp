// Names that are nearly right, the words of the progress display, result codes, and text between its encodings.
#include "host/base/Text.h"
#include "host/base/NearestNames.h"
#include "host/base/Progress.h"
#include "host/base/ResultCode.h"

#include <gtest/gtest.h>

#include <dshow.h>

namespace vixahost {
namespace {

TEST(NearestNames, TheNearestComesFirst)
{
    EXPECT_EQ(EditDistance("", "abc"), 3u);
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(EditDistance("emobss", "emboss"), 1u) << "two neighbours swapped are one mistake";

    const std::vector<std::string> names = {"Add pixel",        "Filter color",  "Invert color", "Multiply pixel",
                                            "Gamma correction", "Detect edges",  "Emboss",       "Enhance details",
                                            "Enhance edges",    "Enhance focus", "Light edges",  "Shift edges",
                                            "Soften filter"};
    EXPECT_EQ(NearestNames("Filter colour", names).front(), "Filter color");
    EXPECT_EQ(NearestNames("gamma", names).front(), "Gamma correction");
    EXPECT_EQ(NearestNames("sofen", names).front(), "Soften filter");
    EXPECT_EQ(NearestNames("focus", names).front(), "Enhance focus");
    EXPECT_EQ(NearestNames("detect edge", names).front(), "Detect edges");
    for (const char* word : {"", "zzzzzzzzzzzzzzzzzzz", "\xC3\xA4"}) {
        const auto offered = NearestNames(word, names);
        EXPECT_GE(offered.size(), 1u) << word;
        EXPECT_LE(offered.size(), 3u) << word;
    }
}

TEST(Progress, SaysWhatIsDoneAndWhatIsLeft)
{
    EXPECT_EQ(ProgressText(0, 300, 0), "0 of 300 frames");
    EXPECT_EQ(ProgressText(120, 300, 3), "120 of 300 frames, 40.0 frames/s, 5 s left");
    EXPECT_EQ(ProgressText(10, 3010, 1), "10 of 3010 frames, 10.0 frames/s, 5 min 0 s left");
    EXPECT_EQ(ProgressText(300, 300, 10), "300 of 300 frames, 30.0 frames/s");
    EXPECT_EQ(ProgressBar(0, 300, 10), "[..........]");
    EXPECT_EQ(ProgressBar(149, 300, 10), "[####......]");
    EXPECT_EQ(ProgressBar(300, 300, 10), "[##########]");
    EXPECT_EQ(ProgressBar(400, 300, 10), "[##########]") << "a clip may hold more frames than it said";
}

TEST(ResultCode, HasNameNumberAndWords)
{
    EXPECT_EQ(Explain(VFW_E_TYPE_NOT_ACCEPTED), "VFW_E_TYPE_NOT_ACCEPTED (0x8004022A): the media type is not accepted");
    EXPECT_EQ(Show(S_OK), "S_OK (0x00000000)");
    EXPECT_EQ(Show(HRESULT_FROM_WIN32(ERROR_DISK_FULL)), "ERROR_DISK_FULL (0x80070070)");
    constexpr auto unknown = static_cast<HRESULT>(0x8899AABB);
    EXPECT_EQ(Explain(unknown), "0x8899AABB") << "nobody has words for it";
    const std::string systems = Explain(HRESULT_FROM_WIN32(ERROR_CRC)); // whose words differ between systems
    EXPECT_EQ(systems.find("0x80070017: "), 0u) << systems;
    EXPECT_TRUE(systems.size() > 12 && systems.back() > ' ' && systems.back() != '.') << systems;
    EXPECT_EQ(ExplainError(ERROR_SHARING_VIOLATION), "system error 32: another program has the file open");
    EXPECT_EQ(ExplainError(ERROR_CRC), "system error 23" + systems.substr(10)) << "the same words";
    EXPECT_EQ(ExplainError(0xAABB), "system error 43707") << "nobody has words for it";
}

TEST(Text, KeepsEveryLetter)
{
    const std::wstring wide = L"\x00e4\x4e2d\xd83c\xdfac.png";
    EXPECT_EQ(Utf8(wide), "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x8E\xAC.png");
    EXPECT_EQ(Wide(Utf8(wide)), wide);
    EXPECT_EQ(Utf8(L""), "");
    EXPECT_EQ(LowerCase("Add PIXEL \xC3\x84"), "add pixel \xC3\x84");
    EXPECT_EQ(Excerpt("a\tb\r\x1B[2J\xE2\x80\xAE\xFF\xE2\x80\xAC"),
              "a b \xEF\xBF\xBD[2J\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Excerpt("ab\xF0\x9F\x8E\xAC", 3), "ab...") << "whole characters";
    EXPECT_EQ(Excerpt("abc", 3), "abc");
}

} // namespace
} // namespace vixahost
