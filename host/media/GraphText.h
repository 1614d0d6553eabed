// What a row of connected filters is made of, in words.
#pragma once

#include <dshow.h>

#include <functional>
#include <string>

namespace vixahost::media {

// The row that begins with `source`, a line or more for each connection (pins, media type, allocator) and for each
// filter, with what `more` knows of it. Where a filter leads to several others, the first counts. `lastOwn` is the
// allocator that the row's last filter made, to tell it from others; null: nobody asks.
std::string DescribeRow(IBaseFilter* source, const IMemAllocator* lastOwn = nullptr,
                        const std::function<std::string(IBaseFilter*)>& more = {});

} // namespace vixahost::media
