// What a user could pick instead: the same work, or the nearest that a library offers, done by other libraries on one
// thread. Each is given a frame to read; those that cannot work in place write to a frame of their own.
#pragma once

#include "bench/Cases.h"
#include "bench/Series.h"

#include <string>
#include <vector>

namespace vixa::bench {

struct Peer
{
    std::string work; // an effect as in Cases(), or a stack as in Stacks()
    Candidate candidate;
};

// For frames of one size, of the libraries that were there when this was built.
std::vector<Peer> PeersFor(Size size);

// Those of one library.
std::vector<Peer> OpenCvPeers(Size size);
std::vector<Peer> LibyuvPeers(Size size);
std::vector<Peer> FfmpegPeers(Size size);
std::vector<Peer> VipsPeers(Size size); // empty when it isn't installed

} // namespace vixa::bench
