#include "engine/graph/channel.h"

namespace zv::engine {
namespace {
constexpr double kMeterSeconds = 1.0;
}

Plug::Plug(std::uint32_t from, std::uint32_t to)
    : rate(to), meter(std::make_shared<Metering>(to, kMeterSeconds)) {
    if (from == to) return;
    resampler = std::make_unique<dsp::Resampler>(from, to, 2U);
    in.resize((resampler->inputNeeded(kBlock) + 64) * 2);
    out.resize(std::size_t{kBlock} * 2);
}

void Plug::restart() {
    if (resampler) resampler->reset();
    pending = 0;
    fed = 0;
    drained = false;
}

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
