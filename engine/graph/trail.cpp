#include "engine/graph/trail.h"

#include <algorithm>

namespace zv::engine {

void Trail::reset() {
    oldest_.store(count_.load(std::memory_order_relaxed), std::memory_order_release);
    next_ = ~std::uint64_t{0};
}

void Trail::add(std::uint64_t from, std::uint32_t count, float gain) {
    const std::uint64_t runs = count_.load(std::memory_order_relaxed);
    if (from == next_ && gain == gain_) {
        next_ += count;
        slots_[(runs - 1) % kRuns].to.store(next_, std::memory_order_relaxed);
        return;
    }
    next_ = from + count;
    gain_ = gain;
    Slot& slot = slots_[runs % kRuns];
    slot.from.store(from, std::memory_order_relaxed);
    slot.to.store(next_, std::memory_order_relaxed);
    slot.gain.store(gain, std::memory_order_relaxed);
    count_.store(runs + 1, std::memory_order_release);
}

std::size_t Trail::last(std::uint64_t frames, std::array<Run, kRuns>& out) const {
    const std::uint64_t runs = count_.load(std::memory_order_acquire);
    const std::uint64_t first =
        std::max(oldest_.load(std::memory_order_acquire), runs > kRuns ? runs - kRuns : 0);
    std::size_t found = 0;
    for (std::uint64_t i = runs; i > first && frames > 0 && found < kRuns; --i) {
        const Slot& slot = slots_[(i - 1) % kRuns];
        Run run{slot.from.load(std::memory_order_relaxed), slot.to.load(std::memory_order_relaxed),
                slot.gain.load(std::memory_order_relaxed)};
        if (run.to <= run.from) continue;  // being written anew
        run.from = std::max(run.from, run.to - std::min(run.to, frames));
        frames -= run.to - run.from;
        out[found++] = run;
    }
    return found;
}

}  // namespace zv::engine
