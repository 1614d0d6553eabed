// Any document and any request: a path or an error of the subsystem, and a second request that agrees with the first.
#include "sxs/CVixaSXSError.h"
#include "sxs/SxsConfiguration.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

namespace {

std::pair<std::wstring, std::int32_t> Resolve(SxsConfiguration& configuration, const std::uint8_t* request)
{
    static constexpr long ids[] = {130, 0, 1025, 708, 12, 7, -1, 1026};
    static const std::wstring names[] = {L"", L"", L"Editor", L"APPLICATIONSROOT"};
    const long application = ids[request[1] % std::size(ids)];
    const std::wstring& name = names[request[1] / std::size(ids) % std::size(names)];
    try {
        const std::wstring path = configuration.ResolveRegistryPath(request[0] % 4, request[0] / 4 % 7 - 1, application,
                                                                    name, ids[request[2] % std::size(ids)]);
        return {path, 0};
    } catch (const CVixaSXSError& error) {
        const std::uint32_t area = error.GetArea();
        if (error.GetCode() <= 0 || area == 0 || (area & 0xFFFF) != 0 || area > vixa::sxs::AREA_TEXT ||
            *error.what() != 'C')
            std::abort();
        return {L"", error.GetCode()};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 6)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 6, size - 6);
    SxsConfiguration configuration(text.c_str());
    const auto first = Resolve(configuration, data);
    Resolve(configuration, data + 3);
    if (Resolve(configuration, data) != first)
        std::abort();
    return 0;
}
