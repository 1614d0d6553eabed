// An effect as the code describes it, and its page in Markdown.
#pragma once

#include "bridges/frei0r/Knobs.h"
#include "effects/kernels/Step.h"
#include "tools/make-pages/Words.h"

#include <vixavideofx/Effects.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vixa::pages {

using Block = std::vector<std::int32_t>; // the data block's fields

struct Effect
{
    std::string identifier;               // in the headers: "AddPixel"
    std::array<std::uint32_t, 11> number; // the class identifier's
    std::span<const vixavideofx::ParameterDescription> parameters;
    Block defaults;
    kernels::StepParameters (*stepOf)(const Block& block);
    std::vector<frei0r::Knob> knobs; // the frei0r plug-in's parameters
    std::string name;                // "Add pixel"

    // What the page's file, and those of its pictures, begin with: "add-pixel".
    std::string Stem() const;
};

// What a picture shows.
struct Setting
{
    std::string text; // "gamma=160", "once"
    Block block;
    int times = 1; // that the effect is applied
};

// Of one "picture" line. Throws std::runtime_error for a parameter or value that the effect hasn't.
Setting ParseSetting(const Effect& effect, const std::string& text);

// The file of the effect's picture with that index.
std::string PictureFile(const Effect& effect, std::size_t index);

// The effect's whole page. `performance` is the text of docs/performance.md.
std::string PageOf(const Effect& effect, const Section& words, const std::vector<Setting>& settings,
                   const std::string& performance);

std::string IndexOf(const std::vector<Effect>& effects, const std::vector<Section>& words);

} // namespace vixa::pages
