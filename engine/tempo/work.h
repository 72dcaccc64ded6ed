/// The worker's side of a tempo channel: fills the lane that plays, and prepares every change of the parameters or of
/// the loop as another lane, which it offers to the audio thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "engine/tempo/meeting.h"
#include "engine/tempo/wishes.h"

namespace zv::engine {

class TempoWork {
  public:
    TempoWork(std::uint32_t rate, std::uint32_t channels, FrameReader& reader, const TempoWishes& wishes,
              TempoMeeting& meeting)
        : rate_(rate), channels_(channels), reader_(reader), wishes_(wishes), meeting_(meeting) {}

    /// See TempoProcessor::prime. [control]
    void prime(std::uint64_t frame);
    /// Whether work() would do something now. [any]
    bool due() const;
    /// Fills ahead, prepares changes. Calls from several threads take turns. [worker]
    void work();

  private:
    using Wish = TempoWishes::Wish;

    std::uint64_t turn() const;
    TempoLane* freeLane();
    void offer(TempoLane* lane, const TempoSnapshot& now, std::uint64_t switchAt);
    static bool follows(const TempoLane& lane, const Wish& wish, std::uint64_t base);
    static bool offerStands(const TempoLane& lane, const TempoSnapshot& now, const Wish& wish);
    void enter(const TempoSnapshot& now, const Wish& wish);
    void replace(const TempoSnapshot& now, const Wish& wish, bool follows);
    std::int64_t bestLag(std::span<const float> old, std::uint64_t source, const PlayRange& range);

    const std::uint32_t rate_, channels_;
    FrameReader& reader_;
    const TempoWishes& wishes_;
    TempoMeeting& meeting_;
    /// turn() of the last work() that left nothing to do but filling. More is due once turn() differs.
    std::atomic<std::uint64_t> settled_{~std::uint64_t{0}};

    std::mutex mutex_;  ///< of everything below: control and worker
    std::vector<std::unique_ptr<TempoLane>> lanes_;
    TempoLane* pending_ = nullptr;  ///< made last
    std::vector<float> old_, search_;
};

}  // namespace zv::engine
