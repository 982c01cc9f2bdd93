#include "bench/peer.h"

namespace bench {

std::unique_ptr<Peer> ffmpegFilters(const std::string&, const Picture&, int) { return nullptr; }
std::string ffmpegVersion() { return {}; }

}  // namespace bench
