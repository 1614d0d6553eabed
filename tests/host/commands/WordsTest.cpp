// The command line.
#include "host/base/HostError.h"
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
    EXPECT_TRUE(std::holds_alternative<commands::ShowAllCommand>(commands::ParseCommandLine({})));
    EXPECT_TRUE(std::holds_alternative<commands::EffectsCommand>(commands::ParseCommandLine({"effects"})));
    for (const char* word : {"--help", "--version"})
        EXPECT_TRUE(std::holds_alternative<commands::TextCommand>(commands::ParseCommandLine({word}))) << word;
    EXPECT_NE(std::get<commands::TextCommand>(commands::ParseCommandLine({"apply", "--help"})).text.find("--then"),
              std::string::npos);

    const commands::ApplyCommand apply = ParseApply({"apply", "EMBOSS", "/tmp/in.png", "out/\xC3\xA4.png"});
    EXPECT_EQ(apply.input.native(), L"/tmp/in.png") << "a path in Unix spelling is no option";
    EXPECT_EQ(apply.output.native(), L"out/\x00e4.png");
    ASSERT_EQ(apply.steps.size(), 1u);
    EXPECT_EQ(apply.steps[0].name, "EMBOSS");
    EXPECT_FALSE(apply.frames.clip.colours.matrix || apply.frames.clip.colours.range || apply.frames.bare);
    const auto colours =
        ParseApply({"apply", "Emboss", "--matrix", "709", "--range=full", "a.avi", "b.avi"}).frames.clip.colours;
    EXPECT_TRUE(colours.matrix == media::YuvMatrix::Bt709 && colours.range == media::YuvRange::Full);
    const auto bare =
        ParseApply({"apply", "Emboss", "-", "-", "--format", "rgb32", "--size", "64x48", "--rate", "30000/1001"})
            .frames.bare;
    EXPECT_TRUE(bare && bare->width == 64 && bare->height == 48 && bare->rate == 30000 && bare->scale == 1001);
    EXPECT_EQ(Complaint({"apply", "No such effect", "a.png", "b.png"}), "") << "words don't ask the library";
}

TEST(Words, ASettingBelongsToTheEffectBeforeIt)
{
    const commands::ApplyCommand apply =
        ParseApply({"apply", "Gamma correction", "--set", "gamma=160", "--then", "add pixel", "--set", "red=-30",
                    "--set=Blue=+7", "--then", "gamma correction", "--set", "GAMMA=45", "in.png", "out.png"});
    ASSERT_EQ(apply.steps.size(), 3u);
    EXPECT_EQ(apply.steps[0].settings, (std::vector<std::string>{"gamma=160"}));
    EXPECT_EQ(apply.steps[1].name, "add pixel");
    EXPECT_EQ(apply.steps[1].settings, (std::vector<std::string>{"red=-30", "Blue=+7"}));
    EXPECT_EQ(apply.steps[2].settings, (std::vector<std::string>{"GAMMA=45"}));
    // Options may stand anywhere among the names.
    EXPECT_EQ(ParseApply({"apply", "Multiply pixel", "a.png", "--set", "factor=0", "b.png"}).steps[0].settings,
              (std::vector<std::string>{"factor=0"}));
}

TEST(Words, WrongOnesAreRefusedInOneLine)
{
    EXPECT_NE(Complaint({"aply", "Emboss", "a", "b"}).find("\"apply\""), std::string::npos);
    EXPECT_NE(Complaint({"apply", "--set", "gamma=3", "Gamma correction", "a.png", "b.png"}).find("after"),
              std::string::npos);
    EXPECT_NE(Complaint({"apply", "--then", "Emboss", "Emboss", "a.png", "b.png"}).find("first"), std::string::npos);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"apply"},
                                                  {"apply", "Emboss"},
                                                  {"apply", "Emboss", "a.png"},
                                                  {"apply", "Emboss", "a.png", "b.png", "c.png"},
                                                  {"apply", "Emboss", "a.png", "b.png", "--set"},
                                                  {"apply", "Emboss", "a.png", "b.png", "--loud"},
                                                  {"apply", "Emboss", "a.png", "b.png", "--matrix", "2020"},
                                                  {"apply", "Emboss", "-", "-", "--size", "64x48"},
                                                  {"apply", "Emboss", "-", "-", "--format", "rgb32", "--size", "64x"},
                                                  {"apply", "Emboss", "-", "-", "--format", "rgb32", "--rate", "1/0"},
                                                  {"apply", "Emboss", "a%d.png", "b.avi", "--rate", "1/61"},
                                                  {"--loud"},
                                                  {""},
                                                  {"effects", "all"}})
        EXPECT_NE(Complaint(words), "") << (words.empty() ? "" : words.back());
}

} // namespace
} // namespace vixahost
