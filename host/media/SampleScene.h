// A picture that shows what an effect does: colours, ramps, smooth shapes, text and fine detail.
#pragma once

#include "host/media/Picture.h"

namespace vixahost::media {

// 640 x 480 pixels, opaque. Needs a font for its text; everything else is computed.
Picture DrawSampleScene();

// The colour of a hue in turns (0 red, 1/3 green, 2/3 blue), a saturation and a value from 0 to 1.
struct Rgb
{
    double red = 0, green = 0, blue = 0; // 0 to 1
};
Rgb FromHue(double hue, double saturation, double value);

} // namespace vixahost::media
