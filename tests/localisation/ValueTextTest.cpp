#include "localisation/ValueText.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using vixa::FormatValue;

TEST(ValueText, FormatsOneDouble)
{
    EXPECT_EQ(FormatValue(L"%.0lf", 79.6), L"80");
    EXPECT_EQ(FormatValue(L"%lf", 0.5), L"0.500000");
    EXPECT_EQ(FormatValue(L"%+08.2f", 3.14159), L"+0003.14");
    EXPECT_EQ(FormatValue(L"%-6.1f|", 2.0), L"2.0   |");
    EXPECT_EQ(FormatValue(L"%.f", 2.4), L"2");
    EXPECT_EQ(FormatValue(L"%.2e", 12345.0), L"1.23e+04");
    EXPECT_EQ(FormatValue(L"%g %%", 50.0), L"50 %");
    EXPECT_EQ(FormatValue(L"ca. %.1f\u00B0", -1.25), L"ca. -1.2\u00B0");
    EXPECT_EQ(FormatValue(L"Auto", 1.0), L"Auto") << "no conversion at all";
    EXPECT_EQ(FormatValue(L"100%%", 1.0), L"100%");
    EXPECT_EQ(FormatValue(L"%- +#0--100.0f|", 1.0).size(), 101u);
    EXPECT_EQ(FormatValue(L"%.100f", 1.0), L"1." + std::wstring(100, L'0'));
    EXPECT_EQ(FormatValue(std::wstring_view(L"%.0f\0%n", 7), 1.0), L"1") << "a terminator ends the format";
}

TEST(ValueText, AnyOtherFormatGivesNoText)
{
    const wchar_t* const refused[] = {L"%",    L"%s",    L"%ls",   L"%d",   L"%ld",   L"%n",   L"%hn",    L"%p",
                                      L"%c",   L"%Lf",   L"%llf",  L"%hf",  L"%*f",   L"%.*f", L"%*.*f",  L"%1$f",
                                      L"%f%f", L"%f %s", L"%s %f", L"%f%n", L"%",     L"%5",   L"%.",     L"%.3",
                                      L"%l",   L"%-",    L"%I64f", L"%'f",  L"% f %", L"%wf",  L"%F %%%", L"%.-3f"};
    for (const wchar_t* format : refused)
        EXPECT_EQ(FormatValue(format, 1.0), L"") << testing::PrintToString(std::wstring(format));
}

TEST(ValueText, TheLongestNumbersFit)
{
    const double largest = std::numeric_limits<double>::max();
    for (const wchar_t* places : {L"4095", L"4096", L"2147483647", L"99999999999999999999999"}) {
        const std::wstring number(places);
        EXPECT_EQ(FormatValue(L"%." + number + L"f", -largest).size(), 1u + 309u + 1u + 4095u) << number;
        EXPECT_EQ(FormatValue(L"%" + number + L"." + number + L"e|", 1.0).size(), 2u + 4095u + 4u + 1u) << number;
        EXPECT_EQ(FormatValue(L"%" + number + L".0f", 1.0).size(), 4095u) << number;
    }
    EXPECT_FALSE(FormatValue(L"%f", std::numeric_limits<double>::quiet_NaN()).empty());
    EXPECT_FALSE(FormatValue(L"%.99a", std::numeric_limits<double>::denorm_min()).empty());
}

} // namespace
