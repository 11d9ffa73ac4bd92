/// Conversions of other libraries that correspond to rows of the table.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestrix::bench {

/// The instructions that a peer may use.
enum class Level {
    Ssse3, ///< what this library uses
    Free,  ///< all that the processor has
};

/// A conversion of whole pictures of one size. Buffers hold a picture in the peer's formats,
/// without padding at the ends of rows if the peer allows that. They are aligned to 64 bytes, and
/// the 64 bytes after them may be read and written.
struct PeerJob {
    std::size_t srcBytes;
    std::size_t dstBytes;
    std::function<void(const unsigned char* src, unsigned char* dst)> convert;
};

struct Peer {
    std::string row;     ///< the conversion of the table, such as "2vuy:709/BGRA:709"
    std::string library; ///< "libyuv", "swscale", "avcodec", "zimg"
    std::string differs; ///< what it does differently; empty if nothing
    /// For an even width, on one thread. The level is a setting of the whole process: make and run
    /// the jobs of one level before those of the other.
    std::function<PeerJob(Level, unsigned width, unsigned height)> make;
};

/// The peers that this build has. There may be none.
const std::vector<Peer>& peers();

/// Name and version of each library that was found, for reports.
std::vector<std::string> peerVersions();

} // namespace kestrix::bench
