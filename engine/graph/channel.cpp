#include "engine/graph/channel.h"

#include <algorithm>

namespace zv::engine {
SplitHub::SplitHub(std::shared_ptr<Channel> of, std::uint32_t rate)
    : source(std::move(of)), frames(std::max(std::uint64_t{rate} * 2, std::uint64_t{kBlock} * 2)) {
    ring.resize(frames * 2);
}

Channel::~Channel() {
    while (SyncNode* sync = audio.syncs) {
        audio.syncs = sync->next;
        delete sync;
    }
    delete audio.chain;
    delete audio.plug;
}

}  // namespace zv::engine
