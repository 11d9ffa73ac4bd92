#include "benchmarks/Peers.h"
namespace kestrix::bench {
const std::vector<Peer>& peers() { static const std::vector<Peer> none; return none; }
std::vector<std::string> peerVersions() { return {}; }
}
