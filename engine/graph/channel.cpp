#include "engine/graph/channel.h"

namespace zv::engine {
SplitHub::SplitHub(std::shared_ptr<Channel> of, std::uint32_t rate)
    : source(std::move(of)), frames(std::uint64_t{rate} * 2) {
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
