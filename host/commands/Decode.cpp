#include "host/commands/Decode.h"

#include "host/base/Text.h"

#include <cstdlib>

namespace vixahost::commands {

void Run(const DecodeCommand& command)
{
    media::RunDecoder(command.clip, command.ends);
}

std::optional<DecodeCommand> ReadDecodeWords(const std::vector<std::string>& words)
{
    if (words.size() != 6 || words.front() != "decode-child")
        return std::nullopt;
    const auto handle = [&](std::size_t word) {
        return static_cast<UINT_PTR>(std::strtoull(words[word].c_str(), nullptr, 10));
    };
    return DecodeCommand{Wide(words[1]), {handle(2), handle(3), handle(4), handle(5)}};
}

} // namespace vixahost::commands
