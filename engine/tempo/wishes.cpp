#include "engine/tempo/wishes.h"

namespace zv::engine {

void TempoWishes::slide(TempoPart part, double value, std::uint64_t frames, bool ratios) {
    const std::lock_guard lock(mutex_);
    const std::uint64_t now = time();
    curve_.move(part, cutTempo(part, value), now, frames, ratios);
    wanted_.store(curve_.moves(now) || !curve_.last().neutral(), std::memory_order_release);
    restsFrom_.store(curve_.restsFrom(now), std::memory_order_release);
    changes_.fetch_add(1, std::memory_order_release);
}

TempoParameters TempoWishes::now() const {
    const std::lock_guard lock(mutex_);
    return curve_.at(time());
}

bool TempoWishes::sliding(TempoPart part) const {
    const std::lock_guard lock(mutex_);
    return curve_.line(part).moves(time());
}

TempoWishes::Wish TempoWishes::wish() const {
    const std::lock_guard lock(mutex_);
    return {curve_, changes()};
}

}  // namespace zv::engine
