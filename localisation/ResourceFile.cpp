#include "localisation/ResourceFile.h"

#include "localisation/LittleEndian.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
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
constexpr std::size_t resourceDirectory = 2;
constexpr std::size_t directorySize = 8;
constexpr std::size_t sectionHeaderSize = 40;
constexpr std::uint16_t dosMagic = 0x5A4D;
constexpr std::uint32_t peSignature = 0x00004550;

// The optional header has two forms. Only the addresses in it differ, so what lies behind them does too.
struct OptionalHeaderForm
{
    std::uint16_t magic;
    std::size_t directoryCountField, directories;
};
constexpr OptionalHeaderForm headerForms[] = {{0x10B, 92, 96}, {0x20B, 108, 112}};

constexpr std::size_t tableHeaderSize = 16;
constexpr std::size_t tableEntrySize = 8;
constexpr std::size_t dataEntrySize = 16;
constexpr std::uint32_t highBit = 0x80000000;
// Type, name, language.
constexpr int treeDepth = 3;
// Tables may share subtables, so a small file can describe a huge tree; no honest language file comes near this.
constexpr int mostEntries = 65536;

bool Fits(std::span<const std::byte> bytes, std::size_t offset, std::size_t size) noexcept
{
    return offset <= bytes.size() && size <= bytes.size() - offset;
}

class ResourceModule
{
public:
    explicit ResourceModule(std::span<const std::byte> bytes) noexcept : file(bytes) {}

    bool IsWhole() noexcept
    {
        if (!ReadHeaders() || !SectionsAreInside())
            return false;
        if (resourceRva == 0)
            return true;
        const auto found = InSection(resourceRva, tableHeaderSize);
        if (!found)
            return false;
        tree = *found;
        return TableIsInside(0, 1);
    }

private:
    bool ReadHeaders() noexcept
    {
        if (!Fits(file, 0, dosHeaderSize) || ReadU16(file, 0) != dosMagic)
            return false;
        const std::size_t header = ReadU32(file, newHeaderOffsetField);
        if (!Fits(file, header, signatureSize + fileHeaderSize) || ReadU32(file, header) != peSignature)
            return false;
        const auto fileHeader = file.subspan(header + signatureSize);
        const std::size_t optionalSize = ReadU16(fileHeader, optionalHeaderSizeField);
        const std::size_t sectionsSize = ReadU16(fileHeader, sectionCountField) * sectionHeaderSize;
        if (optionalSize < sizeof(std::uint16_t) || !Fits(fileHeader, fileHeaderSize, optionalSize + sectionsSize))
            return false;
        const auto optional = fileHeader.subspan(fileHeaderSize, optionalSize);
        sections = fileHeader.subspan(fileHeaderSize + optionalSize, sectionsSize);
        const auto* const form = std::ranges::find(headerForms, ReadU16(optional, 0), &OptionalHeaderForm::magic);
        if (form == std::end(headerForms) || optionalSize < form->directories)
            return false;
        const std::size_t field = form->directories + resourceDirectory * directorySize;
        if (ReadU32(optional, form->directoryCountField) > resourceDirectory && Fits(optional, field, directorySize))
            resourceRva = ReadU32(optional, field);
        return true;
    }

    struct Section
    {
        std::uint32_t address, rawSize, rawOffset;
    };

    Section SectionAt(std::size_t offset) const noexcept
    {
        return {ReadU32(sections, offset + 12), ReadU32(sections, offset + 16), ReadU32(sections, offset + 20)};
    }

    bool SectionsAreInside() const noexcept
    {
        for (std::size_t offset = 0; offset < sections.size(); offset += sectionHeaderSize) {
            const Section s = SectionAt(offset);
            if (s.rawSize != 0 && !Fits(file, s.rawOffset, s.rawSize))
                return false;
        }
        return true;
    }

    // The stored bytes from address `rva` to the end of its section, when at least `size` of them are stored.
    std::optional<std::span<const std::byte>> InSection(std::uint32_t rva, std::size_t size) const noexcept
    {
        for (std::size_t offset = 0; offset < sections.size(); offset += sectionHeaderSize) {
            const Section s = SectionAt(offset);
            if (rva < s.address || rva - s.address >= s.rawSize)
                continue;
            const auto stored = file.subspan(s.rawOffset, s.rawSize).subspan(rva - s.address);
            if (stored.size() >= size)
                return stored;
            return std::nullopt;
        }
        return std::nullopt;
    }

    bool TableIsInside(std::size_t offset, int level) noexcept
    {
        if (level > treeDepth || !Fits(tree, offset, tableHeaderSize))
            return false;
        const std::size_t count = std::size_t{ReadU16(tree, offset + 12)} + ReadU16(tree, offset + 14);
        if (!Fits(tree, offset + tableHeaderSize, count * tableEntrySize))
            return false;
        for (std::size_t i = 0; i < count; ++i) {
            if (++entries > mostEntries || !EntryIsInside(offset + tableHeaderSize + i * tableEntrySize, level))
                return false;
        }
        return true;
    }

    bool EntryIsInside(std::size_t entry, int level) noexcept
    {
        const std::uint32_t name = ReadU32(tree, entry);
        if ((name & highBit) != 0 && !NameIsInside(name & ~highBit))
            return false;
        const std::uint32_t target = ReadU32(tree, entry + 4);
        if ((target & highBit) != 0)
            return TableIsInside(target & ~highBit, level + 1);
        // The system takes what it finds at the third level for data, and above it for a table.
        return level == treeDepth && DataIsInside(target);
    }

    bool NameIsInside(std::size_t offset) const noexcept
    {
        return Fits(tree, offset, 2) && Fits(tree, offset + 2, std::size_t{2} * ReadU16(tree, offset));
    }

    bool DataIsInside(std::size_t offset) const noexcept
    {
        if (!Fits(tree, offset, dataEntrySize))
            return false;
        const std::size_t size = ReadU32(tree, offset + 4);
        return size == 0 || InSection(ReadU32(tree, offset), size).has_value();
    }

    std::span<const std::byte> file, sections, tree;
    std::uint32_t resourceRva = 0;
    int entries = 0;
};

} // namespace

bool IsWholeResourceModule(std::span<const std::byte> file) noexcept
{
    return ResourceModule(file).IsWhole();
}

} // namespace vixa
