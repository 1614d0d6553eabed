#include "sxs/SxsConfiguration.h"

#include "sxs/CVixaSXSError.h"
#include "sxs/HostManifest.h"
#include "sxs/Platform.h"
#include "sxs/XmlText.h"

#include <tinyxml.h>

#include <iterator>
#include <string_view>

using namespace vixa::sxs;

namespace {

// Product line 708 of generation 7 shares one area among everything.
constexpr long lineWithOneSharedArea = 708;

constexpr const char* elementNames[] = {"REGISTRY-SHARED-FOR-ALL", "REGISTRY-SHARED-FOR-LINES",
                                        "REGISTRY-SHARED-FOR-APPLICATIONS", "REGISTRY-INSTALLATION",
                                        "REGISTRY-APPLICATIONS"};

bool HasId(const TiXmlElement& element, long id)
{
    int value = 0;
    return element.QueryIntAttribute("id", &value) == TIXML_SUCCESS && value == id;
}

// An attribute in wide characters; empty when absent.
std::wstring TextOf(const TiXmlElement& element, const char* attribute)
{
    const char* value = element.Attribute(attribute);
    return value ? WideFromUtf8(value) : std::wstring();
}

} // namespace

SxsConfiguration::SxsConfiguration(const char* text) noexcept : documentText(text) {}

SxsConfiguration::~SxsConfiguration() = default;

void SxsConfiguration::LoadDocument()
{
    if (document)
        return;
    auto parsed = std::make_unique<TiXmlDocument>();
    if (!ParseXml(documentText, *parsed))
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_DOCUMENT);
    root = std::make_unique<TiXmlHandle>(parsed.get());
    document = std::move(parsed);
}

void SxsConfiguration::SelectProductLine(long id)
{
    if (selected && selectedId == id)
        return;
    if (!document)
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_LOOKUP);
    for (const TiXmlElement* generation = root->FirstChildElement("VIXA").FirstChildElement("GENERATION").ToElement();
         generation; generation = generation->NextSiblingElement()) {
        for (const TiXmlElement* line = generation->FirstChildElement("PRODUCT-LINE"); line;
             line = line->NextSiblingElement()) {
            if (!HasId(*line, id))
                continue;
            std::wstring name = TextOf(*line, "name"); // may throw: the old selection stands until then
            int number = -1;
            if (generation->QueryIntAttribute("id", &number) != TIXML_SUCCESS)
                number = -1;
            generationId = number;
            selected = line;
            selectedId = static_cast<std::int32_t>(id);
            selectedName = std::move(name);
            return;
        }
    }
    throw CVixaSXSError(CODE_UNSUPPORTED_TYPE, AREA_DOCUMENT);
}

std::wstring SxsConfiguration::GetRegistryPath(const char* element, long rootKind) const
{
    if (!selected)
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_LOOKUP);
    const TiXmlElement* paths = selected->FirstChildElement(element);
    if (!paths || (rootKind != LOCAL_MACHINE && rootKind != CURRENT_USER))
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_DOCUMENT);
    const char* path = paths->Attribute(rootKind == LOCAL_MACHINE ? "HKLM" : "HKCU");
    if (!path)
        throw CVixaSXSError(CODE_INVALID_BLOCK, AREA_DOCUMENT);
    return WideFromUtf8(path);
}

void SxsConfiguration::FindApplication(long id, const std::wstring& name, std::wstring& subkey,
                                       std::wstring& folder) const
{
    if (!selected)
        throw CVixaSXSError(CODE_INVALID_DATA, AREA_LOOKUP);
    for (const TiXmlElement* application = selected->FirstChildElement("APPLICATION"); application;
         application = application->NextSiblingElement()) {
        if (name.empty() ? HasId(*application, id) : TextOf(*application, "name") == name) {
            std::wstring foundSubkey = TextOf(*application, "subkey");
            folder = TextOf(*application, "folder");
            subkey = std::move(foundSubkey);
            return;
        }
    }
    throw CVixaSXSError(CODE_UNSUPPORTED_TYPE, AREA_DOCUMENT);
}

std::wstring SxsConfiguration::ResolveRegistryPath(long rootKind, long element, long applicationId,
                                                   const std::wstring& applicationName, long productLineId)
{
    const bool byManifest = element == APPLICATIONS && applicationId == 0 && applicationName.empty();
    const std::wstring name = byManifest ? HostApplicationName() : applicationName;
    LoadDocument();
    SelectProductLine(productLineId);
    if (productLineId == lineWithOneSharedArea && (element == SHARED_FOR_LINES || element == SHARED_FOR_APPLICATIONS))
        element = SHARED_FOR_ALL;
    if (element < 0 || element >= std::ssize(elementNames))
        throw CVixaSXSError(CODE_INVALID_FUNCTION, AREA_REQUEST);
    std::wstring path = GetRegistryPath(elementNames[element], rootKind);
    if (element != APPLICATIONS || (applicationId == 0 && name == L"APPLICATIONSROOT"))
        return path;
    std::wstring subkey, folder;
    FindApplication(applicationId, name, subkey, folder);
    if (subkey.empty())
        throw CVixaSXSError(CODE_PATH_NOT_FOUND, AREA_APPLICATION);
    return JoinPath(path, subkey);
}

std::wstring SxsConfiguration::JoinPath(const std::wstring& head, const std::wstring& tail)
{
    if (head.empty() || tail.empty())
        return head + tail;
    const bool headEnds = head.back() == L'\\', tailStarts = tail.front() == L'\\';
    if (headEnds && tailStarts)
        return head + tail.substr(1);
    return headEnds || tailStarts ? head + tail : head + L'\\' + tail;
}
