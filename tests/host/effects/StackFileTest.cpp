// The stack's text file, written and read by the library's own catalogue.
#include "host/effects/StackFile.h"
#include "host/base/HostError.h"

#include <vixavideofx/DataBlocks.h>

#include <gtest/gtest.h>

#include <fstream>

using namespace vixavideofx;

namespace vixahost {
namespace {

class StackFile : public testing::Test
{
protected:
    effects::EffectLibrary library;
    std::vector<effects::CatalogueEntry> catalogue = effects::ReadCatalogue(library);

    std::string FaultOf(std::string_view text)
    {
        try {
            effects::ParseStack(text, catalogue);
        } catch (const FailedJob& fault) {
            return fault.what();
        }
        return "nothing was refused";
    }
};

TEST_F(StackFile, EveryEffectComesBackAsItWas)
{
    effects::EffectStack stack;
    for (const effects::CatalogueEntry& entry : catalogue)
        stack.push_back({entry.classId, entry.englishName, entry.defaults, stack.size() % 3 != 1});
    for (effects::EffectStep& item : stack)
        if (item.classId == CLSID_FilterColor)
            item.block = {-120, FilterColorBlock::Red};
        else if (item.classId == CLSID_ShiftEdges)
            item.block = {static_cast<std::int32_t>(ConvolutionKind::ShiftEdgesHorizontal)};
    ASSERT_EQ(stack.size(), 13u);
    EXPECT_EQ(effects::ParseStack(effects::WriteStack(stack), catalogue), stack);

    const std::filesystem::path file = L"st\u00E4ck \u65E5\u672C.txt";
    effects::SaveStackFile(file, stack);
    EXPECT_EQ(effects::LoadStackFile(file, catalogue), stack);
    std::filesystem::remove(file);
}

TEST_F(StackFile, MeansTheSameInEveryLanguage)
{
    const effects::EffectStack stack = {effects::StepOf(*effects::FindEntry(catalogue, CLSID_Emboss))};
    const std::string english = effects::WriteStack(stack);
    const auto german = effects::ReadCatalogue(library, MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN));
    EXPECT_NE(effects::FindEntry(german, CLSID_Emboss)->name, effects::FindEntry(catalogue, CLSID_Emboss)->name);
    EXPECT_EQ(effects::WriteStack({effects::StepOf(*effects::FindEntry(german, CLSID_Emboss))}), english);
    EXPECT_EQ(effects::ParseStack(english, german), stack);
}

TEST_F(StackFile, TakesWhatAPersonWrites)
{
    const auto stack = effects::ParseStack("\xEF\xBB\xBF# mine\r\n\r\n  EFFECT=gamma CORRECTION\r\n\tGamma =  +160 \r\n"
                                           "effect = {488284b2-d3ce-48d1-b7ad-a23541d20453}\r\non = NO\r\n"
                                           "effect = Filter color\r\ncolour = red",
                                           catalogue);
    ASSERT_EQ(stack.size(), 3u);
    EXPECT_EQ(stack[0].block, std::vector<std::int32_t>{160});
    EXPECT_TRUE(stack[1].classId == CLSID_SoftenFilter);
    EXPECT_FALSE(stack[1].on);
    EXPECT_EQ(stack[2].block, (std::vector<std::int32_t>{0, FilterColorBlock::Red}));
    EXPECT_TRUE(effects::ParseStack("", catalogue).empty());
    EXPECT_EQ(effects::SwitchedOn(stack).size(), 2u) << "what is switched off doesn't run";
}

TEST_F(StackFile, SaysWhereAndWhyALineIsRefused)
{
    using testing::internal::RE;
    const std::pair<const char*, const char*> wrong[] = {
        {"gamma = 100", "Line 1: .*before the first effect"},
        {"# x\n\neffect = Embos", "Line 3: .*\"Emboss\""},
        {"effect = Emboss\nloud", "Line 2: \"loud\" is no line"},
        {"effect = Gamma correction\ngamma = 300", "Line 2: .*45 to 220"},
        {"effect = Gamma correction\nfactor = 3", "Line 2: .*no parameter \"factor\""},
        {"effect = Gamma correction\non = maybe", "Line 2: on is yes or no"},
        {"effect = {488284B2-D3CE-48D1-B7AD-A23541D20454}", "Line 1: there is no effect"},
    };
    for (const auto& [text, expected] : wrong)
        EXPECT_TRUE(RE::PartialMatch(FaultOf(text), RE(expected))) << text << " -> " << FaultOf(text);
    for (const char* line :
         {"%", "%=", "effect=%", "effect=Emboss\non=%", "effect=Emboss\n%=1", "effect=Gamma correction\ngamma=%"}) {
        std::string text = line;
        text.replace(text.find('%'), 1, "\x1B[31m" + std::string(100'000, 'x'));
        const std::string fault = FaultOf(text);
        EXPECT_LT(fault.size(), 300u) << line;
        EXPECT_EQ(fault.find('\x1B'), std::string::npos) << line;
    }
    EXPECT_THROW(effects::LoadStackFile(L"no such stack.txt", catalogue), FailedJob);
}

} // namespace
} // namespace vixahost
