// What a row of connected filters is made of, in words.
#pragma once

#include <dshow.h>
#include <wrl/client.h>

#include <string>

namespace vixahost::graph {

using Microsoft::WRL::ComPtr;

// A filter's first pin of that direction; null when it has none.
ComPtr<IPin> FindPin(IBaseFilter* filter, PIN_DIRECTION wanted);

// The row that begins with `source`, a line or more for each connection (pins, media type, allocator) and for each
// effect (its instruction set, and whether it makes frames together with its neighbours). `lastOwn` is the allocator
// that the row's last filter made, to tell it from others.
std::string DescribeRow(IBaseFilter* source, const IMemAllocator* lastOwn);

} // namespace vixahost::graph
