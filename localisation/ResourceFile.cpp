#include "localisation/ResourceFile.h"

#include "localisation/LittleEndian.h"

#include <cstdint>
#include <optional>

namespace vixa {

namespace {

// Offsets of the PE/COFF format, of the fields that are looked at.
constexpr std::size_t dosHeaderSize = 64;
constexpr std::size_t newHeaderOffsetField = 0x3C;
constexpr std::size_t signatureSize = 4;
constexpr std::size_t fileHeaderSize = 20;
constexpr std::size_t sectionCountField = 2;
constexpr std::size_t optionalHeaderSizeField = 16;
constexpr std::size_t directoryCountField = 92;
constexpr std::size_t directories = 96;
constexpr std::size_t resourceDirectory = 2;
constexpr std::size_t directorySize = 8;
constexpr std::size_t sectionHeaderSize = 40;
constexpr std::uint16_t dosMagic = 0x5A4D;
constexpr std::uint32_t peSignature = 0x00004550;
constexpr std::uint16_t pe32Magic = 0x10B;

constexpr std::size_t tableHeaderSize = 16;
constexpr std::size_t tableEntrySize = 8;
constexpr std::size_t dataEntrySize = 16;
constexpr std::uint32_t highBit = 0x80000000;
// Type, name, language.
constexpr int treeDepth = 3;
// Tables may share subtables, so a small file can describe a huge tree; no honest language file comes near this.
constexpr int mostEntries = 65536;

bool fits(std::span<const std::byte> bytes, std::size_t offset, std::size_t size) noexcept
{
    return offset <= bytes.size() && size <= bytes.size() - offset;
}

class ResourceModule
{
public:
    explicit ResourceModule(std::span<const std::byte> bytes) noexcept : file(bytes) {}

    bool isWhole() noexcept
    {
        if (!readHeaders() || !sectionsAreInside())
            return false;
        if (resourceRva == 0)
            return true;
        const auto found = inSection(resourceRva, tableHeaderSize);
        if (!found)
            return false;
        tree = *found;
        return tableIsInside(0, 1);
    }

private:
    bool readHeaders() noexcept
    {
        if (!fits(file, 0, dosHeaderSize) || readU16(file, 0) != dosMagic)
            return false;
        const std::size_t header = readU32(file, newHeaderOffsetField);
        if (!fits(file, header, signatureSize + fileHeaderSize) || readU32(file, header) != peSignature)
            return false;
        const auto fileHeader = file.subspan(header + signatureSize);
        const std::size_t optionalSize = readU16(fileHeader, optionalHeaderSizeField);
        const std::size_t sectionsSize = readU16(fileHeader, sectionCountField) * sectionHeaderSize;
        if (optionalSize < directories || !fits(fileHeader, fileHeaderSize, optionalSize + sectionsSize))
            return false;
        const auto optional = fileHeader.subspan(fileHeaderSize, optionalSize);
        sections = fileHeader.subspan(fileHeaderSize + optionalSize, sectionsSize);
        if (readU16(optional, 0) != pe32Magic)
            return false;
        constexpr std::size_t field = directories + resourceDirectory * directorySize;
        if (readU32(optional, directoryCountField) > resourceDirectory && fits(optional, field, directorySize))
            resourceRva = readU32(optional, field);
        return true;
    }

    struct Section
    {
        std::uint32_t address, rawSize, rawOffset;
    };

    Section section(std::size_t offset) const noexcept
    {
        return {readU32(sections, offset + 12), readU32(sections, offset + 16), readU32(sections, offset + 20)};
    }

    bool sectionsAreInside() const noexcept
    {
        for (std::size_t offset = 0; offset < sections.size(); offset += sectionHeaderSize) {
            const Section s = section(offset);
            if (s.rawSize != 0 && !fits(file, s.rawOffset, s.rawSize))
                return false;
        }
        return true;
    }

    // The stored bytes from address `rva` to the end of its section, when at least `size` of them are stored.
    std::optional<std::span<const std::byte>> inSection(std::uint32_t rva, std::size_t size) const noexcept
    {
        for (std::size_t offset = 0; offset < sections.size(); offset += sectionHeaderSize) {
            const Section s = section(offset);
            if (rva < s.address || rva - s.address >= s.rawSize)
                continue;
            const auto stored = file.subspan(s.rawOffset, s.rawSize).subspan(rva - s.address);
            if (stored.size() >= size)
                return stored;
            return std::nullopt;
        }
        return std::nullopt;
    }

    bool tableIsInside(std::size_t offset, int level) noexcept
    {
        if (level > treeDepth || !fits(tree, offset, tableHeaderSize))
            return false;
        const std::size_t count = std::size_t{readU16(tree, offset + 12)} + readU16(tree, offset + 14);
        if (!fits(tree, offset + tableHeaderSize, count * tableEntrySize))
            return false;
        for (std::size_t i = 0; i < count; ++i) {
            if (++entries > mostEntries || !entryIsInside(offset + tableHeaderSize + i * tableEntrySize, level))
                return false;
        }
        return true;
    }

    bool entryIsInside(std::size_t entry, int level) noexcept
    {
        const std::uint32_t name = readU32(tree, entry);
        if ((name & highBit) != 0 && !nameIsInside(name & ~highBit))
            return false;
        const std::uint32_t target = readU32(tree, entry + 4);
        if ((target & highBit) != 0)
            return tableIsInside(target & ~highBit, level + 1);
        // The system takes what it finds at the third level for data, and above it for a table.
        return level == treeDepth && dataIsInside(target);
    }

    bool nameIsInside(std::size_t offset) const noexcept
    {
        return fits(tree, offset, 2) && fits(tree, offset + 2, std::size_t{2} * readU16(tree, offset));
    }

    bool dataIsInside(std::size_t offset) const noexcept
    {
        if (!fits(tree, offset, dataEntrySize))
            return false;
        const std::size_t size = readU32(tree, offset + 4);
        return size == 0 || inSection(readU32(tree, offset), size).has_value();
    }

    std::span<const std::byte> file, sections, tree;
    std::uint32_t resourceRva = 0;
    int entries = 0;
};

} // namespace

bool isWholeResourceModule(std::span<const std::byte> file) noexcept
{
    return ResourceModule(file).isWhole();
}

} // namespace vixa
