#include "engine/tempo/meeting.h"

namespace zv::engine {

/// Seqlock writer: the version is odd while the data is being updated.
void TempoMeeting::publish(std::uint32_t epoch, std::uint64_t clock, std::uint64_t start,
                           std::uint64_t source, std::uint64_t zero, TempoLane* current) {
    constexpr auto release = std::memory_order_release;
    const std::uint32_t version = published.version.load(std::memory_order_relaxed);
    published.version.store(version + 1, std::memory_order_relaxed);
    published.epoch.store(epoch, release);
    published.clock.store(clock, release);
    published.start.store(start, release);
    published.source.store(source, release);
    published.zero.store(zero, release);
    published.current.store(current, release);
    published.version.store(version + 2, release);
}

TempoSnapshot TempoMeeting::snapshot(const FrameReader& reader) const {
    constexpr auto acquire = std::memory_order_acquire;
    std::uint32_t before = 0;
    TempoSnapshot s{};
    do {
        before = published.version.load(acquire);
        s = {published.epoch.load(acquire),
             published.clock.load(acquire),
             published.start.load(acquire),
             published.source.load(acquire),
             published.zero.load(acquire),
             published.current.load(acquire),
             {}};
    } while (before % 2 != 0 || published.version.load(std::memory_order_relaxed) != before);
    s.range = reader.range();
    return s;
}

}  // namespace zv::engine
