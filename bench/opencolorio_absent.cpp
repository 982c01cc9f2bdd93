#include "bench/peer.h"

namespace bench {

std::unique_ptr<Peer> openColorIo(const std::filesystem::path&, const Picture&) { return nullptr; }
std::string openColorIoVersion() { return {}; }
void openColorIoLoad(const std::filesystem::path&) {}
void openColorIoClearCache() {}

}  // namespace bench
