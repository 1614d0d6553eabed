#include "sxs/XmlText.h"

#include "sxs/CVixaSXSError.h"
#include "sxs/Platform.h"

#include <tinyxml.h>

#include <algorithm>
#include <string_view>

namespace vixa::sxs {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool IsNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x7F;
}

bool IsNameChar(char c)
{
    return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

// Walks well-formed XML and keeps count of its nesting. What it doesn't understand it refuses: the parser is more
// lenient than XML, and where the two could read a text differently the count would mean nothing.
class NestingWalk
{
public:
    explicit NestingWalk(std::string_view text) : rest(text) {}

    bool StaysInBounds()
    {
        Take("\xEF\xBB\xBF");
        if (rest.starts_with("<?xml") && !Declaration())
            return false;
        while (!rest.empty()) {
            const std::size_t open = rest.find('<');
            if (open == std::string_view::npos)
                break;
            rest.remove_prefix(open);
            if (!Markup())
                return false;
        }
        return true;
    }

private:
    bool Take(std::string_view token)
    {
        if (!rest.starts_with(token))
            return false;
        rest.remove_prefix(token.size());
        return true;
    }

    bool SkipBlanks()
    {
        const std::size_t count = std::min(rest.find_first_not_of(blanks), rest.size());
        rest.remove_prefix(count);
        return count > 0;
    }

    bool SkipPast(std::string_view end)
    {
        const std::size_t at = rest.find(end);
        if (at == std::string_view::npos)
            return false;
        rest.remove_prefix(at + end.size());
        return true;
    }

    std::string_view Name()
    {
        if (rest.empty() || !IsNameStart(rest.front()))
            return {};
        const auto length = std::find_if_not(rest.begin(), rest.end(), IsNameChar) - rest.begin();
        const std::string_view found = rest.substr(0, static_cast<std::size_t>(length));
        rest.remove_prefix(found.size());
        return found;
    }

    // name="value" or name='value'; gives the name, empty when it is anything else.
    std::string_view Attribute()
    {
        const std::string_view found = Name();
        SkipBlanks();
        if (!Take("="))
            return {};
        SkipBlanks();
        const bool closed = Take("\"") ? SkipPast("\"") : Take("'") && SkipPast("'");
        return closed ? found : std::string_view();
    }

    // The parser looks for these three names only, and skips others by a rule of its own.
    bool Declaration()
    {
        Take("<?xml");
        while (SkipBlanks() && !rest.starts_with("?>")) {
            const std::string_view found = Attribute();
            if (found != "version" && found != "encoding" && found != "standalone")
                return false;
        }
        return Take("?>");
    }

    bool Markup()
    {
        if (Take("<!--"))
            return SkipPast("-->");
        if (Take("<![CDATA["))
            return SkipPast("]]>");
        if (Take("<!")) {
            const std::size_t end = rest.find_first_of("<>");
            return end != std::string_view::npos && rest[end] == '>' && SkipPast(">");
        }
        if (Take("</")) {
            if (depth == 0 || Name().empty())
                return false;
            SkipBlanks();
            --depth;
            return Take(">");
        }
        return Take("<") && StartTag();
    }

    bool StartTag()
    {
        if (Name().empty())
            return false;
        for (std::size_t attributes = 0;; ++attributes) {
            const bool separated = SkipBlanks();
            if (Take("/>"))
                return true;
            if (Take(">"))
                return ++depth <= maxXmlDepth;
            if (!separated || attributes == maxXmlAttributes || Attribute().empty())
                return false;
        }
    }

    std::string_view rest;
    std::size_t depth = 0;
};

bool IsUtf8(std::string_view text)
{
    try {
        WideFromUtf8(std::string(text));
        return true;
    } catch (const CVixaSXSError&) {
        return false;
    }
}

} // namespace

bool IsSafeToParse(const std::string& text)
{
    const std::string_view seen(text.c_str()); // the parser stops at the first zero
    if (seen.size() > maxXmlBytes)
        return false;
    std::size_t starts = 0;
    for (std::size_t at = seen.find('<'); at != std::string_view::npos; at = seen.find('<', at + 1))
        starts += at + 1 < seen.size() && IsNameStart(seen[at + 1]);
    const auto attributes = static_cast<std::size_t>(std::count(seen.begin(), seen.end(), '='));
    if (starts <= maxXmlDepth && attributes <= maxXmlAttributes)
        return true;
    // The parser steps over as many bytes as a lead byte announces, so that a damaged sequence hides what follows it.
    return IsUtf8(seen) && NestingWalk(seen).StaysInBounds();
}

bool ParseXml(const std::string& text, TiXmlDocument& document)
{
    if (!IsSafeToParse(text))
        return false;
    // A lead byte before the terminator takes the parser up to three bytes beyond it: it must find terminators there
    // too, not what may follow a zero within the text.
    std::string padded(text, 0, text.find('\0'));
    padded.append(3, '\0');
    document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    return !document.Error();
}

} // namespace vixa::sxs
