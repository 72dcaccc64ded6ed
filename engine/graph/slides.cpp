#include "engine/graph/slides.h"

#include <cmath>
#include <utility>

namespace zv::engine {
namespace {

constexpr std::uint32_t kStandsStillPart = 20;  ///< of a second

std::uint64_t framesOf(std::uint32_t ms, std::uint32_t rate) {
    return (std::uint64_t{ms} * rate + 500) / 1000;
}

/// Whole frames of `rate` in `frames` of `of`; the rest is kept for the next block.
std::uint64_t share(std::uint32_t frames, std::uint32_t rate, std::uint32_t of, double& rest) {
    const double exact = static_cast<double>(frames) * rate / of + rest;
    const double whole = std::floor(exact);
    rest = exact - whole;
    return static_cast<std::uint64_t>(whole);
}

}  // namespace

void Slides::keep(Channel& channel) {
    if (channel.audio.inSlides) return;
    channel.audio.inSlides = true;
    channel.audio.nextSlide = first_;
    first_ = &channel;
}

void Slides::forget(Channel& channel) {
    for (Channel** at = &first_; *at; at = &(*at)->audio.nextSlide) {
        if (*at != &channel) continue;
        *at = channel.audio.nextSlide;
        break;
    }
}

void Slides::volume(const Command& command) {
    Channel& channel = *command.channel;
    AudioState& a = channel.audio;
    const std::uint32_t rate = a.plug ? a.plug->rate : channel.rate;
    a.volume.start(command.value, framesOf(command.ms, rate), (command.flags & kSlideLog) != 0,
                   (command.flags & kSlideStops) != 0);
    channel.shared.volume.store(a.volume.value(), std::memory_order_relaxed);
    channel.shared.volumeSlides.store(a.volume.active(), std::memory_order_relaxed);
    channel.shared.appliedVolume.store(static_cast<std::uint32_t>(command.b), std::memory_order_release);
    if (a.volume.active()) {
        keep(channel);
    } else if (a.volume.stopsAtEnd()) {
        playback_.finish(channel);
    }
}

void Slides::voldsp(const Command& command) {
    Channel& channel = *command.channel;
    AudioState& a = channel.audio;
    a.voldsp.start(command.value, framesOf(command.ms, channel.rate), (command.flags & kSlideLog) != 0,
                   false);
    channel.shared.voldsp.store(a.voldsp.value(), std::memory_order_relaxed);
    channel.shared.voldspSlides.store(a.voldsp.active(), std::memory_order_relaxed);
    channel.shared.appliedVoldsp.store(static_cast<std::uint32_t>(command.b), std::memory_order_release);
    if (a.voldsp.active()) keep(channel);
}

void Slides::tempo(Channel& channel) {
    channel.audio.tempoSlides = true;
    keep(channel);
}

void Slides::passTime(std::uint32_t frames) {
    const std::uint32_t rate = time_.rate.load(std::memory_order_relaxed);
    Channel** at = &first_;
    while (Channel* channel = *at) {
        AudioState& a = channel->audio;
        const std::uint32_t mixed = a.mixBlock == time_.block ? a.mixDone : 0;
        const std::uint32_t mixRate = a.plug ? a.plug->rate : channel->rate;
        if (a.volume.active()) {
            std::uint64_t left = 0;
            if (mixed == 0) {
                left = share(frames, mixRate, rate, a.volumeRest);
            } else if (!a.playing && mixRate == rate && mixed < frames) {
                left = frames - mixed;  // it ended in this block
            }
            if (a.volume.advance(left) && a.volume.stopsAtEnd()) playback_.finish(*channel);
        }
        // A block may be so short that a conversion needs nothing new for it.
        const bool enough = a.mixBlock == time_.block && !a.dry && a.plug && a.plug->resampler;
        if (a.voldsp.active()) {
            if (a.chainBlock != time_.block && !enough) {
                a.voldsp.advance(share(frames, channel->rate, rate, a.voldspRest));
            } else if (!a.playing && channel->rate == rate && a.chainBlock == time_.block &&
                       a.chainDone < frames) {
                a.voldsp.advance(frames - a.chainDone);  // it ended in this block
            }
        }
        if (a.tempoSlides) {
            // A conversion does not pull in every block. A channel that is not pulled for longer stands still.
            a.tempoIdle += share(frames, channel->rate, rate, a.tempoRest);
            if (a.tempoBlock == time_.block) {
                a.tempoIdle = 0;
            } else if (!a.playing || a.dry || a.tempoIdle > channel->rate / kStandsStillPart) {
                channel->tempo->idle(std::exchange(a.tempoIdle, 0));
            }
            a.tempoSlides = channel->tempo->slides();
        }
        SharedState& s = channel->shared;
        s.volume.store(a.volume.value(), std::memory_order_relaxed);
        s.voldsp.store(a.voldsp.value(), std::memory_order_relaxed);
        s.volumeSlides.store(a.volume.active(), std::memory_order_relaxed);
        s.voldspSlides.store(a.voldsp.active(), std::memory_order_relaxed);
        if (a.volume.active() || a.voldsp.active() || a.tempoSlides) {
            at = &a.nextSlide;
        } else {
            a.inSlides = false;
            *at = a.nextSlide;
        }
    }
}

}  // namespace zv::engine
