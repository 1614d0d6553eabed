#include "sxs/HostManifest.h"

#include "sxs/CVixaSXSError.h"
#include "sxs/XmlText.h"

#include <tinyxml.h>

#include <string_view>
#include <vector>

namespace vixa::sxs {

std::wstring ManifestPath(ProgramPathQuery query)
{
    static constexpr std::wstring_view ending = L".manifest";
    std::vector<wchar_t> path(pathCapacity);
    std::int32_t error = 0;
    const std::uint32_t length = query(path.data(), pathCapacity, error);
    if (length == 0)
        throw CVixaSXSError(error, AREA_REQUEST);
    if (length >= pathCapacity)
        throw CVixaSXSError(CODE_NOT_ENOUGH_MEMORY, AREA_REQUEST);
    if (length + ending.size() >= pathCapacity)
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_REQUEST);
    return std::wstring(path.data(), length).append(ending);
}

std::wstring ManifestName(const std::string& text)
{
    TiXmlDocument document;
    if (!ParseXml(text, document))
        return {};
    const TiXmlElement* identity =
        TiXmlHandle(&document).FirstChildElement("assembly").FirstChildElement("assemblyIdentity").ToElement();
    const char* name = identity ? identity->Attribute("name") : nullptr;
    return name ? WideFromUtf8(name) : std::wstring();
}

std::wstring HostApplicationName(ProgramPathQuery query)
{
    std::string text;
    return ReadWholeFile(ManifestPath(query), maxXmlBytes, text) ? ManifestName(text) : std::wstring();
}

} // namespace vixa::sxs
