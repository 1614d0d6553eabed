// How deep the parser went.
#pragma once

#include <tinyxml.h>

#include <algorithm>
#include <cstddef>

// Depth of the deepest node that was built, also when parsing stopped half-way; without recursion.
inline std::size_t DepthOf(const TiXmlDocument& document)
{
    std::size_t depth = 0, deepest = 0;
    for (const TiXmlNode* node = &document;;) {
        if (const TiXmlNode* child = node->FirstChild()) {
            node = child;
            deepest = std::max(deepest, ++depth);
            continue;
        }
        while (node != &document && !node->NextSibling()) {
            node = node->Parent();
            --depth;
        }
        if (node == &document)
            return deepest;
        node = node->NextSibling();
    }
}
