// The pins of a filter, by their direction.
#pragma once

#include <dshow.h>
#include <wrl/client.h>

namespace vixahost::media {

// Calls the function with each of a filter's pins of that direction until it answers true; whether it did.
template <typename Function>
bool AnyPin(IBaseFilter& filter, PIN_DIRECTION wanted, Function function)
{
    Microsoft::WRL::ComPtr<IEnumPins> pins;
    if (FAILED(filter.EnumPins(&pins)))
        return false;
    for (Microsoft::WRL::ComPtr<IPin> pin; pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr) == S_OK;) {
        PIN_DIRECTION direction = PINDIR_INPUT;
        if (SUCCEEDED(pin->QueryDirection(&direction)) && direction == wanted && function(*pin.Get()))
            return true;
    }
    return false;
}

// A filter's first pin of that direction; null when it has none.
inline Microsoft::WRL::ComPtr<IPin> FindPin(IBaseFilter& filter, PIN_DIRECTION wanted)
{
    Microsoft::WRL::ComPtr<IPin> found;
    AnyPin(filter, wanted, [&](IPin& pin) {
        found = &pin;
        return true;
    });
    return found;
}

} // namespace vixahost::media
