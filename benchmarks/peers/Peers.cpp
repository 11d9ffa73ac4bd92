#include "benchmarks/peers/Libraries.h"

#include <iterator>

namespace kestrix::bench {

const std::vector<Peer>& peers()
{
    static const std::vector<Peer> all = [] {
        std::vector<Peer> found;
        [[maybe_unused]] const auto add = [&](std::vector<Peer> more) {
            found.insert(found.end(), std::make_move_iterator(more.begin()),
                         std::make_move_iterator(more.end()));
        };
#ifdef KESTRIX_HAVE_LIBYUV
        add(libyuvPeers());
#endif
#ifdef KESTRIX_HAVE_SWSCALE
        add(swscalePeers());
#endif
#ifdef KESTRIX_HAVE_ZIMG
        add(zimgPeers());
#endif
        return found;
    }();
    return all;
}

std::vector<std::string> peerVersions()
{
    return {
#ifdef KESTRIX_HAVE_LIBYUV
        libyuvVersion(),
#endif
#ifdef KESTRIX_HAVE_SWSCALE
        swscaleVersion(),
#endif
#ifdef KESTRIX_HAVE_ZIMG
        zimgVersion(),
#endif
    };
}

} // namespace kestrix::bench
