/// The peers of each library that the build has.
#pragma once

#include "benchmarks/Peers.h"

namespace kestrix::bench {

std::vector<Peer> libyuvPeers();
std::vector<Peer> swscalePeers();
std::vector<Peer> zimgPeers();

std::string libyuvVersion();
std::string swscaleVersion();
std::string zimgVersion();

} // namespace kestrix::bench
