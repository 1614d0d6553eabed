#include "bench/Peers.h"

#include <libyuv.h>

#include <memory>

namespace vixa::bench {

std::vector<Peer> LibyuvPeers(Size size)
{
    using Bytes = std::vector<std::uint8_t>;
    const int width = size.width, height = size.height, stride = width * 4;
    std::vector<Peer> peers;
    const auto add = [&](const char* effect, const char* name, const std::function<void(std::uint8_t*)>& work) {
        peers.push_back(
            {effect, {std::string("libyuv ") + name, [work](kernels::Frame frame) { work(frame.data()); }}});
    };

    // One row of the constant serves all rows.
    auto row = std::make_shared<Bytes>(static_cast<std::size_t>(stride), std::uint8_t{30});
    add("Add pixel", "ARGBAdd",
        [=](std::uint8_t* frame) { libyuv::ARGBAdd(frame, stride, row->data(), 0, frame, stride, width, height); });
    auto white = std::make_shared<Bytes>(static_cast<std::size_t>(stride), std::uint8_t{255});
    add("Invert color", "ARGBSubtract", [=](std::uint8_t* frame) {
        libyuv::ARGBSubtract(white->data(), 0, frame, stride, frame, stride, width, height);
    });
    add("Multiply pixel", "ARGBShade",
        [=](std::uint8_t* frame) { libyuv::ARGBShade(frame, stride, frame, stride, width, height, 0x00C0C0C0); });
    auto table = std::make_shared<Bytes>();
    for (const std::uint8_t entry : kernels::MakeGammaTable(160).entries)
        table->insert(table->end(), 4, entry);
    add("Gamma correction", "RGBColorTable",
        [=](std::uint8_t* frame) { libyuv::RGBColorTable(frame, stride, table->data(), 0, 0, width, height); });

    auto target = std::make_shared<Bytes>(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
    // A gradient of the luminance, and so less work than the kernel on every channel.
    add("Detect edges", "ARGBSobel",
        [=](std::uint8_t* frame) { libyuv::ARGBSobel(frame, stride, target->data(), stride, width, height); });
    auto sums = std::make_shared<std::vector<std::int32_t>>(static_cast<std::size_t>(stride) * 8);
    add("Soften filter", "ARGBBlur", [=](std::uint8_t* frame) {
        libyuv::ARGBBlur(frame, stride, target->data(), stride, sums->data(), stride, width, height, 1);
    });
    return peers;
}

} // namespace vixa::bench
