#include "engine/tempo/wishes.h"

namespace zv::engine {

template <typename Change>
void TempoWishes::change(Change change) {
    const std::lock_guard lock(mutex_);
    const std::uint64_t now = time();
    change(now);
    wanted_.store(curve_.moves(now) || !curve_.last().neutral(), std::memory_order_release);
    restsFrom_.store(curve_.restsFrom(now), std::memory_order_release);
    changes_.fetch_add(1, std::memory_order_release);
}

void TempoWishes::set(const TempoParameters& parameters) {
    change([&](std::uint64_t now) {
        curve_.move(TempoPart::Tempo, cutTempo(TempoPart::Tempo, parameters.tempo), now, 0, false);
        curve_.move(TempoPart::Pitch, cutTempo(TempoPart::Pitch, parameters.pitch), now, 0, false);
        curve_.move(TempoPart::Rate, cutTempo(TempoPart::Rate, parameters.rate), now, 0, false);
    });
}

void TempoWishes::slide(TempoPart part, double value, std::uint64_t frames, bool ratios) {
    change([&](std::uint64_t now) { curve_.move(part, cutTempo(part, value), now, frames, ratios); });
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
