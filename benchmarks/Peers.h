/// What other libraries offer for conversions of the table.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestrix::bench {

/// What of the processor a peer may use.
enum class Level {
    Ssse3, ///< what this library uses
    Free,  ///< all that the processor has
};

/// A conversion of whole pictures, made for one size. Buffers hold a picture as the peer takes and
/// gives it, without padding at the ends of rows if the peer lets one choose; they are aligned to
/// 64 bytes and followed by 64 bytes that may be read and written.
struct PeerJob {
    std::size_t srcBytes;
    std::size_t dstBytes;
    std::function<void(const unsigned char* src, unsigned char* dst)> convert;
};

struct Peer {
    std::string row;     ///< the conversion it stands beside, as "2vuy:709/BGRA:709"
    std::string library; ///< "libyuv", "swscale", "avcodec", "zimg"
    std::string differs; ///< what it does differently, empty if nothing
    /// Of an even width. One thread. Levels are told apart for the whole process, so jobs of one
    /// level are made and run before those of the other.
    std::function<PeerJob(Level, unsigned width, unsigned height)> make;
};

/// All that this build has; none where no peer was found.
const std::vector<Peer>& peers();

/// Name and version of each library that was found, for reports.
std::vector<std::string> peerVersions();

} // namespace kestrix::bench
