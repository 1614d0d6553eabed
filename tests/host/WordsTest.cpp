// The command line, effects' names and settings, and the words of the progress display.
#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"
#include "host/commands/CommandLine.h"

#include <gtest/gtest.h>

namespace vixahost {
namespace {

commands::ApplyCommand ParseApply(const std::vector<std::string>& words)
{
    return std::get<commands::ApplyCommand>(commands::ParseCommandLine(words));
}

// The complaint about wrong words; "" when they were taken.
std::string Complaint(const std::vector<std::string>& words)
{
    try {
        commands::ParseCommandLine(words);
        return "";
    } catch (const HostError& fault) {
        EXPECT_EQ(fault.Status(), 2);
        EXPECT_EQ(std::string(fault.what()).find('\n'), std::string::npos) << fault.what();
        return fault.what();
    }
}

TEST(Words, EachCommandIsUnderstood)
{
    EXPECT_TRUE(std::holds_alternative<commands::ShowCommand>(commands::ParseCommandLine({})));
    EXPECT_TRUE(std::holds_alternative<commands::EffectsCommand>(commands::ParseCommandLine({"effects"})));
    for (const char* word : {"--help", "--version"})
        EXPECT_TRUE(std::holds_alternative<commands::TextCommand>(commands::ParseCommandLine({word}))) << word;
    EXPECT_NE(std::get<commands::TextCommand>(commands::ParseCommandLine({"apply", "--help"})).text.find("--then"),
              std::string::npos);

    const commands::ApplyCommand apply = ParseApply({"apply", "EMBOSS", "/tmp/in.png", "out/\xC3\xA4.png"});
    EXPECT_EQ(apply.input.native(), L"/tmp/in.png") << "a path in Unix spelling is no option";
    EXPECT_EQ(apply.output.native(), L"out/\x00e4.png");
    ASSERT_EQ(apply.stack.size(), 1u);
    EXPECT_STREQ(apply.stack[0].Effect().name, "Emboss");
}

TEST(Words, ASettingBelongsToTheEffectBeforeIt)
{
    const commands::ApplyCommand apply =
        ParseApply({"apply", "Gamma correction", "--set", "gamma=160", "--then", "add pixel", "--set", "red=-30",
                    "--set=Blue=+7", "--then", "gamma correction", "--set", "GAMMA=45", "in.png", "out.png"});
    ASSERT_EQ(apply.stack.size(), 3u);
    EXPECT_EQ(apply.stack[0].Settings(), "gamma=160");
    EXPECT_EQ(apply.stack[1].Settings(), "red=-30, green=0, blue=7");
    EXPECT_EQ(apply.stack[1].Block().size(), 4u) << "the block has a fourth number that no setting reaches";
    EXPECT_EQ(apply.stack[2].Settings(), "gamma=45");
    // Options may stand anywhere among the names.
    EXPECT_EQ(ParseApply({"apply", "Multiply pixel", "a.png", "--set", "factor=0", "b.png"}).stack[0].Block()[0], 0);
}

TEST(Words, NamedValuesAndRangesAreKept)
{
    const auto set = [](const char* effect, const char* assignment) {
        effects::EffectStep step(effects::FindEffect(effect));
        step.Set(assignment);
        return step.Settings();
    };
    EXPECT_EQ(set("Shift edges", "direction=Horizontal"), "direction=horizontal");
    EXPECT_EQ(set("Shift edges", "direction=9"), "direction=vertical");
    EXPECT_EQ(set("Filter color", "colour=red"), "intensity=0, colour=red");
    EXPECT_EQ(set("Invert color", "mask=all"), "mask=all");
    EXPECT_EQ(set("Invert color", "mask=5"), "mask=5");

    struct Case
    {
        const char *effect, *assignment, *mentions;
    };
    for (const Case& wrong : {Case{"Gamma correction", "gamma=44", "45 to 220"},
                              {"Gamma correction", "gamma=221", "45 to 220"},
                              {"Gamma correction", "gamma=99999999999", "45 to 220"},
                              {"Gamma correction", "gamma=", "45 to 220"},
                              {"Gamma correction", "gamma=100x", "45 to 220"},
                              {"Gamma correction", "gamma", "name=value"},
                              {"Gamma correction", "gama=100", "gamma"},
                              {"Shift edges", "direction=8", "both, vertical or horizontal"},
                              {"Emboss", "depth=3", "takes none"},
                              {"Add pixel", "red=--3", "-255 to 255"},
                              {"Add pixel", "moveAll=1", "red"}}) {
        effects::EffectStep step(effects::FindEffect(wrong.effect));
        const std::string before = step.Settings();
        try {
            step.Set(wrong.assignment);
            ADD_FAILURE() << wrong.assignment << " was taken";
        } catch (const WrongWords& fault) {
            EXPECT_NE(std::string(fault.what()).find(wrong.mentions), std::string::npos) << fault.what();
        }
        EXPECT_EQ(step.Settings(), before);
    }
}

TEST(Words, WrongOnesAreRefusedInOneLine)
{
    EXPECT_NE(Complaint({"aply", "Emboss", "a", "b"}).find("\"apply\""), std::string::npos);
    EXPECT_NE(Complaint({"apply", "Embos", "a.png", "b.png"}).find("\"Emboss\""), std::string::npos);
    EXPECT_NE(Complaint({"apply", "Emboss", "--then", "", "a.png", "b.png"}).find("no effect"), std::string::npos);
    EXPECT_NE(Complaint({"apply", "--set", "gamma=3", "Gamma correction", "a.png", "b.png"}).find("after"),
              std::string::npos);
    EXPECT_NE(Complaint({"apply", "--then", "Emboss", "Emboss", "a.png", "b.png"}).find("first"), std::string::npos);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"apply"},
                                                  {"apply", "Emboss"},
                                                  {"apply", "Emboss", "a.png"},
                                                  {"apply", "Emboss", "a.png", "b.png", "c.png"},
                                                  {"apply", "Emboss", "a.png", "b.png", "--set"},
                                                  {"apply", "Emboss", "a.png", "b.png", "--loud"},
                                                  {"--loud"},
                                                  {""},
                                                  {"effects", "all"}})
        EXPECT_NE(Complaint(words), "") << (words.empty() ? "" : words.back());
}

TEST(Words, NearestNamesComeFirst)
{
    EXPECT_EQ(EditDistance("", "abc"), 3u);
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(EditDistance("emobss", "emboss"), 1u) << "two neighbours swapped are one mistake";

    std::vector<std::string> names;
    for (const effects::EffectEntry& effect : effects::Effects())
        names.emplace_back(effect.name);
    ASSERT_EQ(names.size(), 13u);
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

TEST(Words, ProgressSaysWhatIsDoneAndWhatIsLeft)
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

TEST(Words, TextKeepsEveryLetter)
{
    const std::wstring wide = L"\x00e4\x4e2d\xd83c\xdfac.png";
    EXPECT_EQ(Utf8(wide), "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x8E\xAC.png");
    EXPECT_EQ(Wide(Utf8(wide)), wide);
    EXPECT_EQ(Utf8(L""), "");
    EXPECT_EQ(LowerCase("Add PIXEL \xC3\x84"), "add pixel \xC3\x84");
}

} // namespace
} // namespace vixahost
