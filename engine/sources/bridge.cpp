#include "engine/sources/bridge.h"

#include <algorithm>
#include <cmath>

#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr std::size_t kChunk = 256;       ///< frames made in one go
constexpr double kLongestMs = 90;         ///< more distance than that is given up at once
constexpr double kMostPpm = 480;          ///< 0.048 %: under what anyone hears; a glide has 488
constexpr double kAverageSeconds = 4;     ///< periods come in lumps; only their mean counts
constexpr double kIntegralSeconds = 600;  ///< a lasting difference of the clocks is learnt in this time
constexpr double kStepSlackMs = 50;       ///< in step: more than that ahead was not read for a while
// What must be left when the reader has taken its part: less, and the distance grows; much more for long, and
// it shrinks.
constexpr double kSpareMs = 8, kAmpleMs = 12;
constexpr double kWatchSeconds = 2, kCalmSeconds = 60, kShrinkMs = 1;
constexpr double kUnderrunMs = 10;  ///< by which it grows at once when it was not enough

}  // namespace

Bridge::Bridge(const BridgeOptions& options)
    : options_(options),
      inStep_(options.oneClock && options.inRate == options.outRate),
      ring_(std::size_t{options.inRate}),  // half a second
      resampler_(options.inRate, options.outRate) {
    aimAt(options.targetMs);
    if (!inStep_) in_.resize((resampler_.inputNeeded(kChunk) + 64) * 2);
}

void Bridge::write(std::span<const float> stereo) {
    assertAudioThread();
    // Whole frames only.
    const std::size_t room = ring_.free() / 2 * 2;
    ring_.write(stereo.data(), std::min(stereo.size(), room));
}

void Bridge::clear() {
    restart_.store(false, std::memory_order_relaxed);
    ring_.read(nullptr, ring_.filled());
    if (!running_ && !averaging_) return;
    beginAnew();
    integral_ = 0;
}

void Bridge::beginAnew() {
    running_ = averaging_ = false;
    debt_ = 0;
    glideLeft_ = 0;
    resampler_.setCorrection(0);
    resampler_.reset();
}

void Bridge::read(std::span<float> stereo) {
    assertAudioThread();
    if (restart_.exchange(false, std::memory_order_acq_rel)) clear();
    if (const std::size_t mark = restedAt_.load(std::memory_order_acquire); mark != seenRest_) {
        seenRest_ = mark;
        ring_.skipTo(mark);
        beginAnew();  // what was learnt of the clocks holds
    }
    if (inStep_) {
        readInStep(stereo);
    } else {
        readCorrected(stereo);
    }
}

void Bridge::readInStep(std::span<float> stereo) {
    const auto slack = static_cast<std::size_t>(kStepSlackMs * 0.001 * options_.inRate) * 2;
    const std::size_t filled = ring_.filled();
    if (filled > stereo.size() + slack) ring_.read(nullptr, filled - stereo.size());
    // What is missing stands in front: from then on the reader is that far behind, and has enough.
    const std::size_t there = std::min(ring_.filled(), stereo.size());
    const std::size_t missing = stereo.size() - there;
    std::fill_n(stereo.begin(), missing, 0.0F);
    ring_.read(stereo.data() + missing, there);
    if (missing > 0 && running_ && there > 0) underruns_.fetch_add(1, std::memory_order_relaxed);
    if (there > 0) running_ = true;
}

void Bridge::readCorrected(std::span<float> stereo) {
    const auto aim = static_cast<std::size_t>(target_ * perMs());
    const double lump = static_cast<double>(stereo.size() / 2) * options_.inRate / options_.outRate;
    if (ring_.filled() / 2 > static_cast<std::size_t>(kLongestMs * perMs() + lump)) {
        ring_.read(nullptr, (ring_.filled() / 2 - aim) * 2);
        averaging_ = false;
    }
    if (!running_) {
        if (ring_.filled() / 2 < aim) {
            std::ranges::fill(stereo, 0.0F);
            return;
        }
        running_ = true;
        averaging_ = false;
        watched_ = 0;
    }
    const double seconds = static_cast<double>(stereo.size() / 2) / options_.outRate;
    follow(static_cast<double>(ring_.filled() / 2), stereo.size() / 2);
    convert(stereo);
    learn(static_cast<double>(ring_.filled() / 2) / perMs(), seconds);
}

std::size_t Bridge::due(std::size_t frames) {
    resampler_.setCorrection(0);
    glideLeft_ = 0;
    // At its full distance, so that a writer that comes back has time for its first period.
    const auto aim = static_cast<std::size_t>(target_ * perMs());
    const std::size_t filled = ring_.filled() / 2;
    return resampler_.inputNeeded(frames) + (filled < aim ? aim - filled : 0);
}

bool Bridge::runsDry(std::size_t frames) const {
    return follows() && ring_.filled() / 2 < resampler_.inputNeeded(frames);
}

void Bridge::readOwn(std::span<float> stereo) {
    convert(stereo);
    averaging_ = false;
    watched_ = 0;
}

void Bridge::convert(std::span<float> stereo) {
    for (std::size_t done = 0; done < stereo.size();) {
        std::size_t frames = std::min(kChunk, (stereo.size() - done) / 2);
        if (glideLeft_ > 0) frames = std::min(frames, glideLeft_);
        const std::size_t need = resampler_.inputNeeded(frames) * 2;
        const std::size_t got = ring_.read(in_.data(), std::min(need, in_.size()));
        if (got < need) {
            std::fill(in_.begin() + static_cast<std::ptrdiff_t>(got),
                      in_.begin() + static_cast<std::ptrdiff_t>(need), 0.0F);
            if (running_) {
                underruns_.fetch_add(1, std::memory_order_relaxed);
                aimAt(target_ + kUnderrunMs);
            }
            running_ = false;
        }
        resampler_.process({in_.data(), need}, stereo.subspan(done, frames * 2));
        if (glideLeft_ > 0 && (glideLeft_ -= frames) == 0) resampler_.setCorrection(0);
        done += frames * 2;
    }
}

void Bridge::follow(double distance, std::size_t frames) {
    const double seconds = static_cast<double>(frames) / options_.outRate;
    const double deviation = distance - target_ * perMs();
    if (!averaging_) {
        average_ = deviation;
        averaging_ = true;
    }
    average_ += (deviation - average_) * std::min(1.0, seconds / kAverageSeconds);
    const double proportional = average_ / perMs() * options_.ppmPerMs;
    integral_ = std::clamp(integral_ + proportional * seconds / kIntegralSeconds, -kMostPpm, kMostPpm);
    const double ppm = std::clamp(proportional + integral_, -kMostPpm, kMostPpm);
    if (options_.inRate != options_.outRate) {
        resampler_.setCorrection(ppm);
    } else {
        // Most of the time equal rates pass the samples themselves; a frame is given or taken now and then.
        debt_ += ppm * 1e-6 * static_cast<double>(frames);
        if (glideLeft_ == 0 && std::abs(debt_) >= 1) {
            const double frame = std::copysign(1.0, debt_);
            resampler_.glide(static_cast<int>(frame));
            debt_ -= frame;
            glideLeft_ = dsp::Resampler::kGlideFrames;
        }
    }
    published_.store(ppm, std::memory_order_relaxed);
}

void Bridge::learn(double spareMs, double seconds) {
    leastSpare_ = watched_ == 0 ? spareMs : std::min(leastSpare_, spareMs);
    watched_ += seconds;
    if (watched_ < kWatchSeconds) return;
    calm_ = leastSpare_ > kAmpleMs ? calm_ + watched_ : 0;
    watched_ = 0;
    if (leastSpare_ < kSpareMs) {
        aimAt(target_ + kSpareMs - leastSpare_);
    } else if (calm_ >= kCalmSeconds) {
        calm_ = 0;
        aimAt(target_ - kShrinkMs);
    }
}

void Bridge::aimAt(double ms) {
    target_ = std::clamp(ms, options_.leastMs > 0 ? options_.leastMs : options_.targetMs,
                         options_.mostMs > 0 ? options_.mostMs : options_.targetMs);
    publishedTarget_.store(target_, std::memory_order_relaxed);
}

}  // namespace zv::engine
