// Parsing XML text that nobody vouches for.
#pragma once

#include <string>

class TiXmlDocument;

namespace vixa::sxs {

// The parser calls itself for every nested element, searches an element's attributes for each further one, and may step
// a few bytes over a text's end; these bounds keep its stack, its time and its memory small.
inline constexpr std::size_t maxXmlBytes = 1 << 20;
inline constexpr std::size_t maxXmlDepth = 128;
inline constexpr std::size_t maxXmlAttributes = 512; // of one element

// True when the parser stays within the bounds whatever the text is. Only bytes before the first zero count. A text
// with no more than maxXmlDepth start tags and maxXmlAttributes equals signs always passes; a longer one must be plain,
// well-formed XML, so that its nesting can be told without parsing it.
bool IsSafeToParse(const std::string& text);

// Parses `text` into an empty document. False when the text isn't safe to parse or the parser reports an error.
bool ParseXml(const std::string& text, TiXmlDocument& document);

} // namespace vixa::sxs
