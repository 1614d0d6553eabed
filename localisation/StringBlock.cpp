#include "localisation/StringBlock.h"

#include "localisation/LittleEndian.h"

namespace vixa {

std::wstring StringOfBlock(std::span<const std::byte> block, std::uint32_t index)
{
    for (;; --index) {
        if (block.size() < 2)
            return {};
        const std::size_t bytes = std::size_t{2} * ReadU16(block, 0);
        block = block.subspan(2);
        if (block.size() < bytes)
            return {};
        if (index == 0) {
            std::wstring text(bytes / 2, L'\0');
            for (std::size_t i = 0; i < text.size(); ++i)
                text[i] = static_cast<wchar_t>(ReadU16(block, 2 * i));
            return text;
        }
        block = block.subspan(bytes);
    }
}

} // namespace vixa
