#include "sxs/SxsConfiguration.h"
#include "tests/sxs/ThrownError.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using namespace vixa::sxs;

// Every path is distinct, so that a mix-up shows. Some elements stand where a lenient walk has to find them.
constexpr const char* sample = R"(<?xml version="1.0" encoding="utf-8" standalone="yes"?>
<!--VIXA-->
<VIXA>
  GENERATION
  <NOTE><PRODUCT-LINE id="1" name="before the first generation"/></NOTE>
  <GENERATION id="12" name="Twelve">
    <!--PRODUCT-LINE-->
    <PRODUCT-LINE id="1025" name="St&#xFC;dio">
      <!--REGISTRY-SHARED-FOR-ALL-->
      <REGISTRY-SHARED-FOR-ALL HKLM="m0" HKCU="u0"/>
      <REGISTRY-SHARED-FOR-LINES HKLM="m1" HKCU="u1"/>
      <REGISTRY-SHARED-FOR-APPLICATIONS HKLM="m2"/>
      <REGISTRY-APPLICATIONS HKLM="m4\" HKCU="u4"/>
      <REGISTRY-APPLICATIONS HKLM="second" HKCU="second"/>
      <APPLICATION id="130" name="Editor" subkey="Vixa 12\Editor" folder="f"/>
      <TOOL id="131" name="Tool" subkey="\Tool"/>
      <APPLICATION name="APPLICATIONSROOT" id="0" subkey="decoy"/>
      <APPLICATION id="132" name="Bare"/>
      <APPLICATION id="133" name="caf&#xE9;" subkey="k" folder="g"/>
    </PRODUCT-LINE>
    <LINE id="1026" name="by another name"><REGISTRY-INSTALLATION HKLM="m3" HKCU="u3"/></LINE>
  </GENERATION>
  <GENERATION>
    <PRODUCT-LINE id="1025" name="later"/>
    <PRODUCT-LINE id="708"><REGISTRY-SHARED-FOR-ALL HKLM="m708" HKCU="u708"/></PRODUCT-LINE>
  </GENERATION>
</VIXA>)";

TEST(Configuration, ResolvesEachElementBelowEachRoot)
{
    SxsConfiguration configuration(sample);
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 0, 0, L"", 1025), L"m0");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 0, 0, L"", 1025), L"u0");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 1, 0, L"", 1025), L"u1");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 2, 0, L"", 1025), L"m2");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 3, 0, L"", 1026), L"m3");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 130, L"", 1025), L"m4\\Vixa 12\\Editor");
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 131, L"", 1025), L"m4\\Tool");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 4, 131, L"", 1025), L"u4\\Tool");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 4, 0, L"APPLICATIONSROOT", 1025), L"u4");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 4, 5, L"APPLICATIONSROOT", 1025), L"u4\\decoy");
    // A name that is given outweighs the identifier.
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 4, 130, L"caf\x00E9", 1025), L"u4\\k");
    // The line with one shared area gives it for both of the finer ones, and for nothing else.
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 1, 0, L"", 708), L"m708");
    EXPECT_EQ(configuration.ResolveRegistryPath(2, 2, 0, L"", 708), L"u708");
    EXPECT_EQ(ThrownBy([&] { configuration.ResolveRegistryPath(1, 3, 0, L"", 708); }), ErrorIn(13, AREA_DOCUMENT));
}

TEST(Configuration, EachFailureHasItsCodeAndArea)
{
    SxsConfiguration configuration(sample);
    const auto resolve = [&](long root, long element, long application, const wchar_t* name, long line) {
        return ThrownBy([&] { configuration.ResolveRegistryPath(root, element, application, name, line); });
    };
    EXPECT_EQ(resolve(1, 0, 0, L"", 1), ErrorIn(1630, AREA_DOCUMENT)); // stands before the first generation
    EXPECT_EQ(resolve(1, 0, 0, L"", 9999), ErrorIn(1630, AREA_DOCUMENT));
    EXPECT_EQ(resolve(3, 0, 0, L"", 1025), ErrorIn(13, AREA_DOCUMENT));
    EXPECT_EQ(resolve(1, 3, 0, L"", 1025), ErrorIn(13, AREA_DOCUMENT));
    EXPECT_EQ(resolve(2, 2, 0, L"", 1025), ErrorIn(9, AREA_DOCUMENT));
    EXPECT_EQ(resolve(1, 4, 77, L"", 1025), ErrorIn(1630, AREA_DOCUMENT));
    EXPECT_EQ(resolve(1, 4, 130, L"editor", 1025), ErrorIn(1630, AREA_DOCUMENT)); // case matters
    EXPECT_EQ(resolve(1, 4, 132, L"", 1025), ErrorIn(3, AREA_APPLICATION));
    EXPECT_EQ(resolve(1, 5, 0, L"", 1025), ErrorIn(1, AREA_REQUEST));
    EXPECT_EQ(resolve(1, -1, 0, L"", 1025), ErrorIn(1, AREA_REQUEST));
    EXPECT_EQ(resolve(1, 4, 130, L"", 708), ErrorIn(13, AREA_DOCUMENT)); // no REGISTRY-APPLICATIONS

    const auto load = [](const char* text) {
        return ThrownBy([&] { SxsConfiguration(text).ResolveRegistryPath(1, 0, 0, L"", 1025); });
    };
    EXPECT_EQ(load(""), ErrorIn(13, AREA_DOCUMENT));
    EXPECT_EQ(load("<VIXA><GENERATION></VIXA>"), ErrorIn(13, AREA_DOCUMENT));
    EXPECT_EQ(load("<VIXA/>"), ErrorIn(1630, AREA_DOCUMENT));
    EXPECT_EQ(load("<OTHER><GENERATION><PRODUCT-LINE id='1025'/></GENERATION></OTHER>"), ErrorIn(1630, AREA_DOCUMENT));
    EXPECT_EQ(load("<?xml version='1.0' encoding='utf-8'?><VIXA><GENERATION><PRODUCT-LINE id='1025'>"
                   "<REGISTRY-SHARED-FOR-ALL HKLM='\xC3('/></PRODUCT-LINE></GENERATION></VIXA>"),
              ErrorIn(1113, AREA_TEXT));
}

TEST(Configuration, OperationsOutOfTurnAreRefused)
{
    SxsConfiguration configuration(sample);
    std::wstring subkey = L"s", folder = L"f";
    EXPECT_EQ(ThrownBy([&] { configuration.SelectProductLine(1025); }), ErrorIn(13, AREA_LOOKUP));
    EXPECT_EQ(ThrownBy([&] { configuration.GetRegistryPath("REGISTRY-SHARED-FOR-ALL", 1); }), ErrorIn(13, AREA_LOOKUP));
    EXPECT_EQ(ThrownBy([&] { configuration.FindApplication(130, L"", subkey, folder); }), ErrorIn(13, AREA_LOOKUP));
    configuration.LoadDocument();
    EXPECT_EQ(ThrownBy([&] { configuration.GetRegistryPath("REGISTRY-SHARED-FOR-ALL", 1); }), ErrorIn(13, AREA_LOOKUP));
    EXPECT_EQ(configuration.GenerationId(), -1);
    EXPECT_EQ(configuration.ProductLineId(), -1);
    EXPECT_FALSE(configuration.WriteAnyGeneration());
}

TEST(Configuration, SelectionStandsUntilAnotherIsFound)
{
    SxsConfiguration configuration(sample);
    configuration.LoadDocument();
    configuration.LoadDocument();
    configuration.SelectProductLine(1025);
    EXPECT_EQ(configuration.GenerationId(), 12); // the first of the two lines with this id
    EXPECT_EQ(configuration.ProductLineName(), L"St\x00FC"
                                               "dio");
    EXPECT_THROW(configuration.SelectProductLine(4711), CVixaSXSError);
    EXPECT_EQ(configuration.ProductLineId(), 1025);
    configuration.SelectProductLine(708);
    EXPECT_EQ(configuration.GenerationId(), -1); // its generation has no id
    EXPECT_EQ(configuration.ProductLineName(), L"");

    // A later step fails: what was selected stays selected, and the results of a search stay as they were.
    std::wstring subkey = L"s", folder = L"f";
    EXPECT_EQ(ThrownBy([&] { configuration.FindApplication(130, L"", subkey, folder); }), ErrorIn(1630, AREA_DOCUMENT));
    EXPECT_EQ(subkey + folder, L"sf");
    EXPECT_EQ(configuration.ProductLineId(), 708);
    configuration.SelectProductLine(1025);
    configuration.FindApplication(132, L"", subkey, folder);
    EXPECT_EQ(subkey + folder, L"");
    configuration.FindApplication(0, L"Editor", subkey, folder);
    EXPECT_EQ(subkey + L"|" + folder, L"Vixa 12\\Editor|f");
}

TEST(Configuration, JoinedPathsHaveOneBackslashBetween)
{
    const auto join = SxsConfiguration::JoinPath;
    EXPECT_EQ(join(L"A", L"B"), L"A\\B");
    EXPECT_EQ(join(L"A\\", L"B"), L"A\\B");
    EXPECT_EQ(join(L"A", L"\\B"), L"A\\B");
    EXPECT_EQ(join(L"A\\", L"\\B"), L"A\\B");
    EXPECT_EQ(join(L"A\\\\", L"\\\\B"), L"A\\\\\\B"); // one of them is dropped, not all
    EXPECT_EQ(join(L"", L"B"), L"B");
    EXPECT_EQ(join(L"", L"\\"), L"\\");
    EXPECT_EQ(join(L"A\\", L""), L"A\\");
    EXPECT_EQ(join(L"\\", L"\\"), L"\\");
}

TEST(SxsError, TextNamesCodeAndAreaAndFits)
{
    const CVixaSXSError invalid(13, AREA_DOCUMENT);
    const std::string text = invalid.what();
    EXPECT_TRUE(text.starts_with("CVixaSXSError 0x0000000D -> 0x00010000 [ ")) << text;
    EXPECT_TRUE(text.ends_with(" ]")) << text;
    EXPECT_GT(text.size(), std::strlen("CVixaSXSError 0x0000000D -> 0x00010000 [  ]"));
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);

    const char* buffer = invalid.what();
    EXPECT_EQ(CVixaSXSError(5, AREA_REGISTRY).what(), buffer); // one buffer for all
    EXPECT_EQ(std::string(buffer).find("0x0000000D"), std::string::npos);

    // Codes without a message, and whatever the system's longest message is.
    for (long code = -2; code < 20000; code += (code > 300 ? 97 : 1))
        ASSERT_LT(std::strlen(CVixaSXSError(static_cast<std::int32_t>(code), AREA_TEXT).what()), 1024u) << code;
}

} // namespace
