#include "framework/Rings.h"

#include <algorithm>
#include <vector>

namespace vixa {

namespace {

// Of all filters together; enumerators that never end must not keep a connection waiting.
constexpr int mostPins = 10000;

ComPtr<IBaseFilter> FilterOf(IPin* pin) noexcept
{
    PIN_INFO info = {};
    ComPtr<IBaseFilter> filter;
    if (SUCCEEDED(pin->QueryPinInfo(&info)))
        *filter.GetAddressOf() = info.pFilter;
    return filter;
}

// What tells filters apart: one object may hand out several faces.
ComPtr<IUnknown> IdentityOf(IBaseFilter* filter) noexcept
{
    ComPtr<IUnknown> identity;
    if (filter)
        filter->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.GetAddressOf()));
    return identity;
}

} // namespace

bool WouldCloseARing(IPin* output, IPin* input)
{
    const ComPtr<IUnknown> wanted = IdentityOf(FilterOf(input).Get());
    std::vector<ComPtr<IBaseFilter>> filters = {FilterOf(output)};
    std::vector<ComPtr<IUnknown>> seen = {IdentityOf(filters[0].Get())};
    int pinsLeft = mostPins;
    for (std::size_t next = 0; next < filters.size() && wanted && seen[next]; ++next) {
        if (seen[next].Get() == wanted.Get())
            return true;
        ComPtr<IEnumPins> pins;
        if (FAILED(filters[next]->EnumPins(&pins)) || !pins)
            continue;
        ComPtr<IPin> pin, peer;
        while (pinsLeft-- > 0 && pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr) == S_OK && pin) {
            PIN_DIRECTION direction = PINDIR_OUTPUT;
            if (FAILED(pin->QueryDirection(&direction)) || direction != PINDIR_INPUT ||
                FAILED(pin->ConnectedTo(peer.ReleaseAndGetAddressOf())) || !peer)
                continue;
            const ComPtr<IBaseFilter> filter = FilterOf(peer.Get());
            const ComPtr<IUnknown> identity = IdentityOf(filter.Get());
            if (identity && std::ranges::find(seen, identity.Get(), &ComPtr<IUnknown>::Get) == seen.end()) {
                filters.push_back(filter);
                seen.push_back(identity);
            }
        }
    }
    return false;
}

} // namespace vixa
