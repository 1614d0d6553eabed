// Finds registry paths in the shared-install configuration: one XML document that lists, for every product generation
// and product line of the family, where its shared areas and its applications keep their registry keys.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

class TiXmlDocument;
class TiXmlElement;
class TiXmlHandle;

namespace vixa::sxs {

// The configuration document that is compiled in: sxs/VixaFamily.xml, UTF-8.
extern const char* const familyDocument;

// Which registry path of a product line is asked for.
enum RegistryElement : long
{
    SHARED_FOR_ALL = 0,
    SHARED_FOR_LINES = 1,
    SHARED_FOR_APPLICATIONS = 2,
    INSTALLATION = 3,
    APPLICATIONS = 4,
};

// Below which root it is asked for.
enum RootKind : long
{
    LOCAL_MACHINE = 1,
    CURRENT_USER = 2,
    CLASSES_ROOT = 3, // registry keys only: the document has no paths for it
};

} // namespace vixa::sxs

// For one thread at a time. Every operation reports failures by throwing CVixaSXSError.
class SxsConfiguration
{
public:
    // The text must outlive the object; another than the family's own is for tests.
    explicit SxsConfiguration(const char* text = vixa::sxs::familyDocument) noexcept;
    ~SxsConfiguration();
    SxsConfiguration(const SxsConfiguration&) = delete;
    SxsConfiguration& operator=(const SxsConfiguration&) = delete;

    // Parses the document unless one is loaded. 13 in AREA_DOCUMENT when it does not parse.
    void LoadDocument();

    // Selects the first PRODUCT-LINE with that id; the selection stays until another is found.
    // 13 in AREA_LOOKUP without a document, 1630 in AREA_DOCUMENT when no line has the id.
    void SelectProductLine(long id);

    // The HKLM (root kind 1) or HKCU (2) attribute of a child element of the selected line. 13 in AREA_LOOKUP without a
    // line; 13 in AREA_DOCUMENT for a missing element or another root kind; 9 there for a missing attribute.
    std::wstring GetRegistryPath(const char* element, long rootKind) const;

    // The subkey and folder (empty when absent) of the selected line's first application with that name, or, when the
    // name is empty, with that id. 13 in AREA_LOOKUP without a line, 1630 in AREA_DOCUMENT without a match.
    void FindApplication(long id, const std::wstring& name, std::wstring& subkey, std::wstring& folder) const;

    // The complete registry path below the hive for one RegistryElement of a product line. For APPLICATIONS it is the
    // path of one application: by name, by id, or by the name in the host program's manifest when neither is given; the
    // name "APPLICATIONSROOT" with id 0 asks for the path above them all. Besides what the operations above throw: 3 in
    // AREA_APPLICATION for an application without subkey, 1 in AREA_REQUEST for an unknown element.
    std::wstring ResolveRegistryPath(long rootKind, long element, long applicationId,
                                     const std::wstring& applicationName, long productLineId);

    // head and tail with exactly one backslash between them; just the two when either is empty.
    static std::wstring JoinPath(const std::wstring& head, const std::wstring& tail);

    std::int32_t GenerationId() const noexcept { return generationId; } // of the selected line; -1 when it has none
    std::int32_t ProductLineId() const noexcept { return selectedId; }
    const std::wstring& ProductLineName() const noexcept { return selectedName; }
    // Whether keys of other generations than the current one may be written to. Always false in this library.
    bool WriteAnyGeneration() const noexcept { return writeAnyGeneration; }

private:
    std::int32_t generationId = -1;
    std::unique_ptr<TiXmlDocument> document;
    std::unique_ptr<TiXmlHandle> root;
    const TiXmlElement* selected = nullptr; // product line within document
    std::int32_t selectedId = -1;
    std::wstring selectedName;
    bool writeAnyGeneration = false;
    const char* documentText;
};
