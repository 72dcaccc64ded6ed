#include "engine/graph/timed_slides.h"

#include <cmath>

namespace zv::engine {
namespace {

constexpr double kHalfFrame = 0.5, kRounding = 1e-6;
constexpr std::uint32_t kStretchedNear = 8 * kBlock, kStretchedStep = 64;

}  // namespace

void TimedSlides::begin(Channel& channel) {
    AudioState& a = channel.audio;
    SyncNode& node = *a.timed;
    Command slide;
    slide.channel = &channel;
    slide.value = node.value;
    slide.ms = node.ms;
    slide.flags = node.flags;
    slide.b = channel.shared.appliedVolume.load(std::memory_order_relaxed);
    const bool told = a.timedDue;
    a.timed = nullptr;
    slides_.volume(slide);
    // A slide that stops at once leaves nothing to be passed: the sync is told here.
    if (!a.playing && !told && syncs_.tell(channel, node)) Syncs::findFirst(a);
}

std::uint64_t TimedSlides::until(Channel& channel) {
    AudioState& a = channel.audio;
    const AudioState& file = channel.root().audio;
    double at = static_cast<double>(file.position);
    if (a.plug->resampler) {
        const Plug& plug = *a.plug;
        const double held =
            static_cast<double>(plug.fed - (a.inTail ? a.tailDone : 0)) - plug.resampler->position();
        const auto since = static_cast<double>(file.position - file.wrapTo);
        const bool wrapped = file.wrapFrom > file.wrapTo && file.position >= file.wrapTo && since < held;
        at = wrapped ? static_cast<double>(file.wrapFrom) - (held - since) : at - held;
    }
    double left = static_cast<double>(a.timed->frame) - at;
    if (const auto& sound = channel.root().sound; sound && left <= -1) {
        // It may come in the next pass of a loop.
        const PlayRange range = sound->range();
        if (range.loop && a.timed->frame >= range.loopStart && range.end > range.loopStart)
            left += static_cast<double>(range.end - range.loopStart);
    }
    const double frames = std::ceil(left * a.plug->rate / channel.rate - kHalfFrame - kRounding);
    if (a.timedDue || (!a.stretched && frames <= 0 && left > -1)) {
        begin(channel);
        return kBlock;
    }
    if (left < 0) return kBlock;
    // The position of stretched sound is known every so many frames only.
    if (a.stretched) return left < double{kStretchedNear} ? kStretchedStep : kBlock;
    return static_cast<std::uint64_t>(frames);
}

}  // namespace zv::engine
