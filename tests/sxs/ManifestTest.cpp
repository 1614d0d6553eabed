// The host's manifest is anyone's file: whatever it holds gives a name, an empty name or an error of this subsystem.
#include "sxs/HostManifest.h"
#include "sxs/SxsConfiguration.h"
#include "sxs/XmlText.h"
#include "tests/sxs/ThrownError.h"
#include "tests/sxs/XmlDepth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

using namespace vixa::sxs;
using namespace std::string_literals;

std::string Repeat(std::size_t count, const std::string& piece)
{
    std::string text;
    text.reserve(count * piece.size());
    for (std::size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";

TEST(Manifest, NameComesFromTheIdentityBelowTheRoot)
{
    EXPECT_EQ(ManifestName("\xEF\xBB\xBF" + declaration +
                           "<!--assembly--><assembly xmlns='urn:x' manifestVersion='1.0'>\r\n"
                           "<assemblyIdentity type='win32' name='Edit\xC3\xB6r &amp; Co' version='1.0.0.0'/>\r\n"
                           "<assemblyIdentity name='second'/></assembly>\r\n"),
              L"Edit\x00F6r & Co");
    EXPECT_EQ(ManifestName("<assembly><dependency><assemblyIdentity name='nested'/></dependency></assembly>"), L"");
    EXPECT_EQ(ManifestName("<assembly><assemblyIdentity Name='Case'/></assembly>"), L"");
    EXPECT_EQ(ManifestName("<x><assembly><assemblyIdentity name='n'/></assembly></x>"), L"");
    EXPECT_EQ(ManifestName("<assembly><assemblyIdentity name=bare></assemblyIdentity></assembly>"), L"bare");
}

TEST(Manifest, WhatDoesNotParseGivesNoName)
{
    const std::string good = "<assembly><assemblyIdentity name='n'/></assembly>";
    std::string wide;
    for (const char c : declaration + good)
        wide += {c, '\0'};
    for (const std::string& text : {""s,
                                    "\0"s,
                                    " \r\n"s,
                                    "plain text"s,
                                    R"({"assembly": 1})"s,
                                    good.substr(0, 20),
                                    good.substr(0, good.size() - 3),
                                    "<assembly><assemblyIdentity name='n' name='m'/></assembly>"s,
                                    "\xFF\xFE" + wide,
                                    "\xFE\xFF" + wide,
                                    "MZ\x90\0\x03"s,
                                    "<assembly><assemblyIdentity name='&#x110000000;'/></assembly>"s,
                                    "<assembly"s,
                                    "<"s,
                                    "<!"s,
                                    "<?xml"s,
                                    "<a b='\xF0"s,
                                    "<a>\xF0"s,
                                    "\xF0"s,
                                    declaration + "<a b='\xF4"s})
        EXPECT_EQ(ManifestName(text), L"") << text;
}

TEST(Manifest, NameThatIsNotUtf8IsAnError)
{
    for (const std::string& name : {"\x80x"s, "\xC3(x"s, "\xC0\xAF."s, "\xED\xA0\x80."s, "\xF0\x8F\xBF\xBF."s,
                                    "\xF5\x80\x80\x80."s, "ab\xE2\x82"s})
        EXPECT_EQ(ThrownBy([&] {
                      ManifestName("<?xml version='1.0' encoding='iso-8859-1'?><assembly><assemblyIdentity name='" +
                                   name + "'/></assembly>");
                  }),
                  ErrorIn(1113, AREA_TEXT))
            << name;
}

TEST(Manifest, NestingAndAttributesAreBoundedBeforeParsing)
{
    const std::string deep = Repeat(maxXmlDepth, "<a>") + Repeat(maxXmlDepth, "</a>");
    TiXmlDocument document;
    EXPECT_TRUE(ParseXml(deep, document));
    EXPECT_EQ(DepthOf(document), maxXmlDepth);
    const std::string many =
        "<r>" + Repeat(5000, "<a x='1'><b/>text<!-- </a> <c> --><![CDATA[</a><c>]]></a>\n") + "</r>";
    EXPECT_TRUE(IsSafeToParse(many));
    EXPECT_TRUE(IsSafeToParse(declaration + "<!DOCTYPE r>" + many));
    // The first and the last character of four bytes; text behind the last tag.
    EXPECT_TRUE(IsSafeToParse(many + "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));

    for (const std::string& text : {
             "<a>" + deep + "</a>",
             Repeat(100000, "<a>"),
             Repeat(100000, "<a b='"),
             Repeat(200, "<\x7F>"), // the least of what the parser takes for a name besides letters
             // Each hides an end tag where only a careless reader would see one.
             Repeat(200, "<a><!--</a>-->"),
             Repeat(200, "<a b='</a>'>"),
             Repeat(200, "<a><![CDATA[</a>]]>"),
             Repeat(200, R"(<a b="'/>" c="'">)"),
             Repeat(200, "<a><!x </a>"),
             Repeat(200, "<a><?xml x='?></a>'?>"),
             declaration + "<r>" + Repeat(200, "<a b='\xF0'></a><c d='>'/>") + "</r>",
             "<?xml a\"version=\"?>" + Repeat(200, "<a></a><a>"),
             "<r " + Repeat(maxXmlAttributes + 1, "a='1' ") + "/>",
             std::string(maxXmlBytes + 1, ' '),
         })
        EXPECT_FALSE(IsSafeToParse(text)) << text.substr(0, 100);

    // Only what stands before the first zero counts, and nothing takes the parser beyond it.
    TiXmlDocument cut;
    EXPECT_TRUE(IsSafeToParse("<a/>\0"s + Repeat(100000, "<a>")));
    EXPECT_FALSE(ParseXml(declaration + "<a>\xF0\0bc"s + Repeat(1000, "<a>"), cut));
    EXPECT_LE(DepthOf(cut), 2u);
}

// The largest texts that pass: their cost is what the bounds promise. A hang shows as the program's time limit.
TEST(Manifest, CostliestTextsAreRead)
{
    std::string attributes;
    for (std::size_t i = 0; i < maxXmlAttributes; ++i)
        attributes += " a" + std::to_string(i) + "=''";
    const std::string element = "<e" + attributes + "/>";
    TiXmlDocument document;
    EXPECT_TRUE(ParseXml("<r>" + Repeat((maxXmlBytes - 7) / element.size(), element) + "</r>", document));
    EXPECT_EQ(ManifestName("<assembly>" + Repeat(170000, "<a/>") + "<assemblyIdentity name='n'/></assembly>"), L"n");
    EXPECT_EQ(ManifestName("<a>" + Repeat(300000, "&#x") + "</a>"), L"");
}

std::uint32_t answerLength = 0;

std::uint32_t LongProgramPath(wchar_t* buffer, std::uint32_t capacity, std::int32_t& error) noexcept
{
    std::fill_n(buffer, std::min(answerLength, capacity), L'p');
    error = answerLength == 0 ? 126 : 0;
    return answerLength;
}

TEST(Manifest, PathsThatCannotBeHadAreErrors)
{
    const auto ask = [](std::uint32_t length) {
        answerLength = length;
        return ThrownBy([] { HostApplicationName(LongProgramPath); });
    };
    EXPECT_EQ(ask(0), ErrorIn(126, AREA_REQUEST));
    EXPECT_EQ(ask(32767), ErrorIn(8, AREA_REQUEST));
    EXPECT_EQ(ask(32766), ErrorIn(13, AREA_REQUEST));
    EXPECT_EQ(ask(32758), ErrorIn(13, AREA_REQUEST));
    answerLength = 32757;
    EXPECT_EQ(ManifestPath(LongProgramPath).size(), 32766u);
    EXPECT_EQ(HostApplicationName(LongProgramPath), L"");
}

class ManifestFile : public testing::Test
{
protected:
    void SetUp() override
    {
        path = ManifestPath();
        ASSERT_FALSE(std::filesystem::exists(path));
    }
    void TearDown() override { std::filesystem::remove(path); }
    void Write(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }

    std::filesystem::path path;
};

TEST_F(ManifestFile, NamesTheApplicationThatIsLookedUp)
{
    SxsConfiguration configuration;
    // Without a name the lookup is by identifier 0, which no application has.
    EXPECT_EQ(ThrownBy([&] { configuration.ResolveRegistryPath(1, 4, 0, L"", 1025); }), ErrorIn(1630, AREA_DOCUMENT));
    Write(declaration + "<assembly><assemblyIdentity name=\"Recorder\"/></assembly>");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 0, L"", 1025), L"Software\\Vixa\\Vixa 12\\Recorder");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 130, L"", 1025), L"Software\\Vixa\\Vixa 12\\Editor");
    Write("<assembly><assemblyIdentity name='APPLICATIONSROOT'/></assembly>");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 0, L"", 1025), L"Software\\Vixa");
    Write("<assembly><assemblyIdentity name='\xC3('/></assembly>");
    EXPECT_EQ(ThrownBy([&] { configuration.ResolveRegistryPath(1, 4, 0, L"", 1025); }), ErrorIn(1113, AREA_TEXT));
}

TEST_F(ManifestFile, UnreadableAndHugeOnesGiveNoName)
{
    const std::string good = "<assembly><assemblyIdentity name='n'/></assembly>";
    Write(good + std::string(maxXmlBytes - good.size(), ' '));
    EXPECT_EQ(HostApplicationName(), L"n");
    Write(good + std::string(maxXmlBytes, ' '));
    EXPECT_EQ(HostApplicationName(), L"");
    std::filesystem::resize_file(path, std::uintmax_t(5) << 30); // no bytes on the disk: a sparse file
    EXPECT_EQ(HostApplicationName(), L"");
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(HostApplicationName(), L"");
}

} // namespace
