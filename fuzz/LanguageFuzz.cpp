// Language files from outside. What the check accepts is walked the way a system's resource functions do, which look at
// no end: a copy of exactly the file's bytes lets the sanitizers see a byte too far. The same bytes serve as a string
// block and as the format of a number.
#include "localisation/LittleEndian.h"
#include "localisation/ResourceFile.h"
#include "localisation/StringBlock.h"
#include "localisation/ValueText.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using Bytes = std::vector<std::byte>;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

class TrustingWalker
{
public:
    explicit TrustingWalker(const Bytes& bytes) : file(bytes)
    {
        const std::size_t header = u32(0x3C);
        sections = header + 24 + u16(header + 20);
        sectionCount = u16(header + 6);
        if (u32(header + 24 + 92) <= 2 || u16(header + 20) < 120)
            return;
        if (const std::uint32_t rva = u32(header + 24 + 112); rva != 0) {
            tree = offsetOf(rva);
            walk(tree, 1);
        }
    }

private:
    std::uint16_t u16(std::size_t offset) const
    {
        require(offset + 2 <= file.size());
        return vixa::readU16(file, offset);
    }
    std::uint32_t u32(std::size_t offset) const
    {
        require(offset + 4 <= file.size());
        return vixa::readU32(file, offset);
    }

    std::size_t offsetOf(std::uint32_t rva) const
    {
        for (std::size_t i = 0; i < sectionCount; ++i) {
            const std::size_t section = sections + 40 * i;
            const std::uint32_t address = u32(section + 12);
            if (rva >= address && rva - address < u32(section + 16))
                return u32(section + 20) + (rva - address);
        }
        std::abort();
    }

    void walk(std::size_t table, int level) const
    {
        require(level <= 3);
        const std::size_t count = std::size_t{u16(table + 12)} + u16(table + 14);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t entry = table + 16 + 8 * i;
            if (const std::uint32_t name = u32(entry); name >> 31) {
                const std::size_t text = tree + (name & 0x7FFFFFFF);
                for (std::size_t c = 0; c < u16(text); ++c)
                    u16(text + 2 + 2 * c);
            }
            const std::uint32_t target = u32(entry + 4);
            if (target >> 31) {
                walk(tree + (target & 0x7FFFFFFF), level + 1);
                continue;
            }
            require(level == 3);
            const std::size_t size = u32(tree + target + 4);
            if (size == 0)
                continue;
            const std::size_t data = offsetOf(u32(tree + target));
            require(data + size <= file.size());
            for (std::uint32_t index = 0; index < 16; ++index)
                vixa::stringOfBlock(std::span(file).subspan(data, size), index);
        }
    }

    const Bytes& file;
    std::size_t sections = 0, sectionCount = 0, tree = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* first = reinterpret_cast<const std::byte*>(data);
    const Bytes bytes(first, first + size);
    if (vixa::isWholeResourceModule(bytes))
        TrustingWalker walker(bytes);
    for (std::uint32_t index = 0; index < 16; ++index)
        require(vixa::stringOfBlock(bytes, index).size() * 2 <= size);
    const std::wstring format(data, data + size);
    require(vixa::formatValue(format, -1.5e300).size() <= size + 512);
    return 0;
}
