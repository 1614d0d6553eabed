// Many small pictures on one, each with its name.
#pragma once

#include "host/media/Picture.h"

#include <string>
#include <vector>

namespace vixahost::media {

struct SheetTile
{
    std::string title;
    std::string note; // in smaller letters below the title; may be empty
    Picture picture;
};

// Five tiles a row, each picture at half its size. All pictures have the first one's size; at least one tile.
Picture DrawContactSheet(const std::string& heading, const std::vector<SheetTile>& tiles);

} // namespace vixahost::media
