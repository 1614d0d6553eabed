// Effects by their names, and their settings.
#include "host/base/HostError.h"
#include "host/effects/DataPropertySet.h"
#include "host/effects/EffectStack.h"

#include <gtest/gtest.h>

namespace vixahost {
namespace {

class Steps : public testing::Test
{
protected:
    effects::EffectStep Step(const char* effect, const std::vector<std::string>& settings = {}) const
    {
        return effects::StepOf(catalogue, {effect, settings});
    }

    effects::EffectLibrary library;
    std::vector<effects::CatalogueEntry> catalogue = effects::ReadCatalogue(library);
};

TEST_F(Steps, NamedValuesAndRangesAreKept)
{
    const auto set = [this](const char* effect, const char* assignment) {
        return effects::SettingsText(Step(effect, {assignment}));
    };
    EXPECT_EQ(set("Shift edges", "direction=Horizontal"), "direction=horizontal");
    EXPECT_EQ(set("Shift edges", "direction=9"), "direction=vertical");
    EXPECT_EQ(set("Filter color", "colour=red"), "intensity=0, colour=red");
    EXPECT_EQ(set("Invert color", "mask=all"), "mask=all");
    EXPECT_EQ(set("Invert color", "mask=5"), "mask=5");
    const effects::EffectStep add = Step("ADD pixel", {"red=-30", "Blue=+7"});
    EXPECT_EQ(effects::SettingsText(add), "red=-30, green=0, blue=7");
    EXPECT_EQ(add.block.size(), 4u) << "the block has a fourth number that no setting reaches";

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
        effects::EffectStep step = Step(wrong.effect);
        const std::string before = effects::SettingsText(step);
        try {
            effects::SetParameter(step, wrong.assignment);
            ADD_FAILURE() << wrong.assignment << " was taken";
        } catch (const WrongWords& fault) {
            EXPECT_NE(std::string(fault.what()).find(wrong.mentions), std::string::npos) << fault.what();
        }
        EXPECT_EQ(effects::SettingsText(step), before);
    }
    try {
        Step("Embos");
        ADD_FAILURE() << "an effect that doesn't exist was found";
    } catch (const WrongWords& fault) {
        EXPECT_NE(std::string(fault.what()).find("\"Emboss\""), std::string::npos) << fault.what();
    }
}

TEST(PropertySets, GoWithTheirLastReference)
{
    const auto set = effects::DataPropertySet::Create(std::vector<std::int32_t>{1});
    EXPECT_EQ(set->AddRef(), 2u);
    EXPECT_EQ(set->Release(), 1u);
}

} // namespace
} // namespace vixahost
