// The panels' templates as the built library holds them.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Control
{
    unsigned id;
    std::wstring windowClass, text;
    std::uint32_t style, extendedStyle;
    int x, y, width, height;
    bool operator==(const Control&) const = default;
};

struct Template
{
    bool extended;
    std::uint32_t style, extendedStyle;
    int width, height;
    std::vector<Control> controls;
    std::wstring font = L"MS Shell Dlg";
    int points = 8;
};

std::ostream& operator<<(std::ostream& out, const Control& control)
{
    const auto narrow = [](const std::wstring& text) { return std::string(text.begin(), text.end()); };
    return out << control.id << " " << narrow(control.windowClass) << " \"" << narrow(control.text) << "\" " << std::hex
               << control.style << "/" << control.extendedStyle << std::dec << " " << control.x << "," << control.y
               << "," << control.width << "," << control.height;
}

// Reads a dialog template of either form.
class Reader
{
public:
    explicit Reader(const std::uint8_t* start) : begin(start), at(start) {}

    Template read()
    {
        Template result{};
        const bool extended = value<std::uint16_t>() == 1 && value<std::uint16_t>() == 0xFFFF;
        if (!extended)
            at = begin;
        result.extended = extended;
        if (extended) {
            value<std::uint32_t>(); // help
            result.extendedStyle = value<std::uint32_t>();
            result.style = value<std::uint32_t>();
        } else {
            result.style = value<std::uint32_t>();
            result.extendedStyle = value<std::uint32_t>();
        }
        const int count = value<std::uint16_t>();
        EXPECT_EQ(value<std::int16_t>(), 0) << "x";
        EXPECT_EQ(value<std::int16_t>(), 0) << "y";
        result.width = value<std::int16_t>();
        result.height = value<std::int16_t>();
        EXPECT_EQ(name(), L"") << "menu";
        EXPECT_EQ(name(), L"") << "window class";
        EXPECT_EQ(name(), L"") << "caption";
        result.points = value<std::int16_t>();
        if (extended)
            value<std::uint32_t>(); // weight, italic, character set
        result.font = name();
        for (int i = 0; i < count; ++i)
            result.controls.push_back(control(extended));
        return result;
    }

private:
    template <typename T>
    T value()
    {
        T result;
        std::memcpy(&result, at, sizeof result);
        at += sizeof result;
        return result;
    }
    // A text, or 0xFFFF and an ordinal, given as "#ordinal".
    std::wstring name()
    {
        std::wstring text;
        for (;;) {
            const auto character = value<std::uint16_t>();
            if (text.empty() && character == 0xFFFF)
                return L"#" + std::to_wstring(value<std::uint16_t>());
            if (character == 0)
                return text;
            text += static_cast<wchar_t>(character);
        }
    }
    Control control(bool extended)
    {
        at = begin + (at - begin + 3) / 4 * 4;
        Control result{};
        if (extended) {
            value<std::uint32_t>();
            result.extendedStyle = value<std::uint32_t>();
            result.style = value<std::uint32_t>();
        } else {
            result.style = value<std::uint32_t>();
            result.extendedStyle = value<std::uint32_t>();
        }
        result.x = value<std::int16_t>();
        result.y = value<std::int16_t>();
        result.width = value<std::int16_t>();
        result.height = value<std::int16_t>();
        result.id = extended ? value<std::uint32_t>() : value<std::uint16_t>();
        result.windowClass = name();
        for (const auto& [ordinal, known] :
             {std::pair{L"#128", L"BUTTON"}, {L"#130", L"STATIC"}, {L"#133", L"COMBOBOX"}})
            if (result.windowClass == ordinal)
                result.windowClass = known;
        CharUpperW(result.windowClass.data());
        result.text = name();
        EXPECT_EQ(value<std::uint16_t>(), 0) << "creation data";
        return result;
    }

    const std::uint8_t* const begin;
    const std::uint8_t* at;
};

const std::wstring combo = L"COMBOBOX", label = L"STATIC", button = L"BUTTON", trackbar = L"MSCTLS_TRACKBAR32";
constexpr std::uint32_t panelStyle = 0x40000040, left = 0x50020000, right = 0x50020002, check = 0x50018003;

const std::pair<int, Template> expected[] = {
    {800,
     {true,
      panelStyle,
      0x400,
      129,
      65,
      {{1002, label, L"Select color", left, 0, 5, 4, 101, 8},
       {1003, combo, L"", 0x50210102, 0, 13, 15, 92, 55},
       {1004, label, L"Select intensity", left, 0, 5, 31, 100, 8},
       {1005, trackbar, L"Slider1", 0x50010024, 0, 9, 41, 100, 12},
       {1014, label, L"Static", left, 0, 110, 46, 14, 8}}}},
    {801,
     {true,
      panelStyle,
      0x400,
      136,
      81,
      {{1010, label, L"Red", left, 0, 5, 2, 43, 8},
       {1007, trackbar, L"Slider1", 0x50010020, 0, 13, 11, 99, 11},
       {1011, label, L"Green", left, 0, 5, 21, 43, 8},
       {1008, trackbar, L"Slider2", 0x50010020, 0, 13, 31, 99, 11},
       {1012, label, L"Blue", left, 0, 5, 41, 43, 8},
       {1009, trackbar, L"Slider3", 0x50010020, 0, 13, 50, 99, 11},
       {1013, label, L"Static", right, 0, 112, 12, 16, 8},
       {1014, label, L"Static", right, 0, 112, 31, 16, 8},
       {1015, label, L"Static", right, 0, 112, 49, 16, 8},
       {1040, button, L"Move all sliders", check, 0, 17, 64, 91, 10}}}},
    {802,
     {true,
      panelStyle,
      0x400,
      69,
      77,
      {{1016, label, L"Select color", left, 0, 7, 7, 75, 8},
       {1020, button, L"Red", check, 0, 20, 21, 42, 10},
       {1021, button, L"Green", check, 0, 19, 35, 43, 10},
       {1022, button, L"Blue", check, 0, 19, 49, 43, 10}}}},
    {803,
     {false,
      panelStyle,
      0,
      154,
      48,
      {{1028, label, L"Multiply factor", left, 0, 7, 7, 75, 8},
       {1029, trackbar, L"Slider1", 0x50010000, 0, 7, 22, 113, 12},
       {1030, label, L"Static", left, 0, 121, 23, 19, 8}}}},
    {804,
     {true,
      panelStyle,
      0x1000,
      164,
      85,
      {{1031, label, L"Gamma correction", left, 0, 7, 7, 75, 8},
       {1032, label, L"Brighter", left, 0, 18, 39, 43, 8},
       {1033, label, L"Darker", left, 0x1000, 96, 40, 42, 8},
       {1034, trackbar, L"Slider1", 0x50010000, 0, 14, 24, 130, 11},
       {1035, button, L"Button1", 0x5001000B, 0, 17, 55, 122, 14}}}},
    {805,
     {true,
      panelStyle,
      0,
      84,
      68,
      {{1036, button, L"Choose direction", 0x50000007, 0, 7, 7, 75, 51},
       {1038, button, L"Horizontal", 0x50038003, 0, 15, 20, 62, 10},
       {1039, button, L"Vertical", check, 0, 15, 37, 62, 10}}}},
    {806, {false, panelStyle, 0, 91, 18, {}}},
};

TEST(Templates, AreWhatTheLibraryHolds)
{
    const HMODULE library = LoadLibraryExW(VIXA_TEMPLATES_FILE, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(library, nullptr);
    for (const auto& [id, wanted] : expected) {
        const HRSRC resource =
            FindResourceExW(library, RT_DIALOG, MAKEINTRESOURCEW(id), MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL));
        ASSERT_NE(resource, nullptr) << id;
        const void* bytes = LockResource(LoadResource(library, resource));
        const Template found = Reader(static_cast<const std::uint8_t*>(bytes)).read();
        EXPECT_EQ(found.extended, wanted.extended) << id;
        EXPECT_EQ(found.style, wanted.style) << id;
        EXPECT_EQ(found.extendedStyle, wanted.extendedStyle) << id;
        EXPECT_EQ(found.width, wanted.width) << id;
        EXPECT_EQ(found.height, wanted.height) << id;
        EXPECT_EQ(found.font, wanted.font) << id;
        EXPECT_EQ(found.points, wanted.points) << id;
        EXPECT_EQ(found.controls, wanted.controls) << id;
    }
    FreeLibrary(library);
}

} // namespace
