#include "host/browse/Texts.h"

#include <algorithm>
#include <string_view>

namespace vixahost::browse {

// Strings are kept in blocks of sixteen, each with its length before it.
std::wstring Texts::Find(UINT id, LANGID language)
{
    const HINSTANCE program = GetModuleHandleW(nullptr);
    const HRSRC block = FindResourceExW(program, MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(id / 16 + 1), language);
    const HGLOBAL loaded = block ? LoadResource(program, block) : nullptr;
    if (!loaded)
        return {};
    std::wstring_view words(static_cast<const wchar_t*>(LockResource(loaded)),
                            SizeofResource(program, block) / sizeof(wchar_t));
    for (UINT i = 0; i < id % 16 && !words.empty(); ++i)
        words.remove_prefix(std::min<std::size_t>(1u + words[0], words.size()));
    return words.empty() ? std::wstring() : std::wstring(words.substr(1, words[0]));
}

std::wstring Texts::operator()(UINT id) const
{
    std::wstring text = Find(id, language);
    return text.empty() ? Find(id, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)) : text;
}

std::wstring Texts::operator()(UINT id, std::initializer_list<std::wstring> words) const
{
    std::wstring text = (*this)(id), whole;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t number =
            text[i] == L'%' && i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - L'1') : words.size();
        if (number < words.size()) {
            whole += words.begin()[number];
            ++i;
        } else {
            whole += text[i];
        }
    }
    return whole;
}

} // namespace vixahost::browse
