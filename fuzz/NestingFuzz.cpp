// Whether the parser ever goes deeper than the check before it believed. The input is a sentence of XML's own pieces,
// so that long nested texts are common.
#include "sxs/XmlText.h"
#include "tests/sxs/XmlDepth.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const char* const pieces[] = {"<a>", "</a>",   "<a/>", "<a b='",    "<a b=\"",      "'",        "\"",
                                         ">",   "/>",     "</",   "<",         "<!--",         "-->",      "<![CDATA[",
                                         "]]>", "<?xml ", "?>",   "version='", "encoding=\"",  "<!d ",     "&#x",
                                         ";",   " c=''",  " ",    "x",         "\xEF\xBB\xBF", "\xC3\xA9", "\xF0",
                                         "=",   "/",      "b=c",  "\n"};
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        // The upper bits repeat what was written last: that is how an input gets past the shallow bound.
        const std::size_t start = text.size();
        text += pieces[data[i] % std::size(pieces)];
        const std::size_t repeats = data[i] / std::size(pieces);
        const std::size_t back = i % 4 == 3 ? std::min<std::size_t>(start, 24) : 0;
        const std::string last = text.substr(start - back);
        for (std::size_t n = 0; n < repeats * repeats * 4 && text.size() < 20000; ++n)
            text += last;
    }
    TiXmlDocument document;
    vixa::sxs::ParseXml(text, document);
    if (DepthOf(document) > vixa::sxs::maxXmlDepth + 1)
        std::abort();
    return 0;
}
