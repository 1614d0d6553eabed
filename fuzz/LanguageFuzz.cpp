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

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class TrustingWalker
{
public:
    explicit TrustingWalker(const Bytes& bytes) : file(bytes)
    {
        const std::size_t header = U32(0x3C);
        sections = header + 24 + U16(header + 20);
        sectionCount = U16(header + 6);
        const std::size_t directories = U16(header + 24) == 0x20B ? 112 : 96;
        if (U32(header + 24 + directories - 4) <= 2 || U16(header + 20) < directories + 24)
            return;
        if (const std::uint32_t rva = U32(header + 24 + directories + 16); rva != 0) {
            tree = OffsetOf(rva);
            Walk(tree, 1);
        }
    }

private:
    std::uint16_t U16(std::size_t offset) const
    {
        Require(offset + 2 <= file.size());
        return vixa::ReadU16(file, offset);
    }
    std::uint32_t U32(std::size_t offset) const
    {
        Require(offset + 4 <= file.size());
        return vixa::ReadU32(file, offset);
    }

    std::size_t OffsetOf(std::uint32_t rva) const
    {
        for (std::size_t i = 0; i < sectionCount; ++i) {
            const std::size_t section = sections + 40 * i;
            const std::uint32_t address = U32(section + 12);
            if (rva >= address && rva - address < U32(section + 16))
                return U32(section + 20) + (rva - address);
        }
        std::abort();
    }

    void Walk(std::size_t table, int level) const
    {
        Require(level <= 3);
        const std::size_t count = std::size_t{U16(table + 12)} + U16(table + 14);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t entry = table + 16 + 8 * i;
            if (const std::uint32_t name = U32(entry); name >> 31) {
                const std::size_t text = tree + (name & 0x7FFFFFFF);
                for (std::size_t c = 0; c < U16(text); ++c)
                    U16(text + 2 + 2 * c);
            }
            const std::uint32_t target = U32(entry + 4);
            if (target >> 31) {
                Walk(tree + (target & 0x7FFFFFFF), level + 1);
                continue;
            }
            Require(level == 3);
            const std::size_t size = U32(tree + target + 4);
            if (size == 0)
                continue;
            const std::size_t data = OffsetOf(U32(tree + target));
            Require(data + size <= file.size());
            for (std::uint32_t index = 0; index < 16; ++index)
                vixa::StringOfBlock(std::span(file).subspan(data, size), index);
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
    if (vixa::IsWholeResourceModule(bytes))
        TrustingWalker walker(bytes);
    for (std::uint32_t index = 0; index < 16; ++index)
        Require(vixa::StringOfBlock(bytes, index).size() * 2 <= size);
    const std::wstring format(data, data + size);
    Require(vixa::FormatValue(format, -1.5e300).size() <= size + 4095 + 512);
    return 0;
}
