// Any bytes as a host's manifest: a name, no name or a text error, and never deeper than the parser may go.
#include "sxs/CVixaSXSError.h"
#include "sxs/HostManifest.h"
#include "sxs/XmlText.h"
#include "tests/sxs/XmlDepth.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    TiXmlDocument document;
    vixa::sxs::ParseXml(text, document);
    // Text counts as one level below its element.
    if (DepthOf(document) > vixa::sxs::maxXmlDepth + 1)
        std::abort();
    try {
        vixa::sxs::ManifestName(text);
    } catch (const CVixaSXSError& error) {
        if (error.GetArea() != vixa::sxs::AREA_TEXT || error.GetCode() <= 0)
            std::abort();
    }
    return 0;
}
