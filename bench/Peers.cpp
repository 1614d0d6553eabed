#include "bench/Peers.h"

#include <utility>

namespace vixa::bench {

std::vector<Peer> PeersFor([[maybe_unused]] Size size)
{
    std::vector<Peer> all;
    [[maybe_unused]] const auto add = [&](std::vector<Peer> peers) {
        for (Peer& peer : peers)
            all.push_back(std::move(peer));
    };
#ifdef VIXA_HAS_OPENCV
    add(OpenCvPeers(size));
#endif
#ifdef VIXA_HAS_LIBYUV
    add(LibyuvPeers(size));
#endif
#ifdef VIXA_HAS_FFMPEG
    add(FfmpegPeers(size));
#endif
#ifdef VIXA_HAS_VIPS
    add(VipsPeers(size));
#endif
    return all;
}

} // namespace vixa::bench
