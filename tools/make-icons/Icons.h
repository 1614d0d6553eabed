// The thirteen icons: the scene, its left part as it is, the rest seen through an effect.
#pragma once

#include "tools/make-icons/Picture.h"
#include "tools/make-icons/Scene.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vixa::icons {

struct Icon
{
    int id;           // bitmap resource
    const char* name; // of the effect, and of the file
    // Applies the effect once to a whole picture.
    void (*apply)(Picture& picture);
    int passes;       // how often: what is faint in a small picture is done more than once
    int scale;        // picture pixels per icon pixel while the effect is applied: more makes its lines finer
    int split = 0;    // columns on the left that stay as they are
    int softened = 0; // times that the scene was softened before, so that it is out of focus
};

// In the order of their ids.
std::span<const Icon> AllIcons();

// The icon's pixels at its real size.
Picture DrawIcon(const Icon& icon);

// A bitmap file: 14 bytes, then the 40-byte header and bottom-up rows of 24-bit pixels.
std::vector<std::uint8_t> BitmapFile(const Picture& picture);

// "332-soften-filter.bmp" of "Soften filter".
std::string FileName(const Icon& icon);

} // namespace vixa::icons
