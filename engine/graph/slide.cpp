#include "engine/graph/slide.h"

#include <algorithm>
#include <cmath>

namespace zv::engine {

float Slide::value() const {
    if (!active()) return target_;
    if (logarithmic_) return static_cast<float>(curve_.value(base_, at_ % kSpan));
    return static_cast<float>(from_ + step_ * static_cast<double>(at_));
}

void Slide::set(float value) {
    target_ = value;
    length_ = at_ = 0;
}

void Slide::start(float target, std::uint64_t frames, bool logarithmic, bool stopAtEnd) {
    const double now = value();
    target_ = target;
    stop_ = stopAtEnd;
    at_ = 0;
    length_ = frames;
    logarithmic_ = logarithmic && (now > 0 || target > 0) && now >= 0 && target >= 0;
    if (frames == 0) return;
    const auto count = static_cast<double>(frames);
    if (!logarithmic_) {
        from_ = now;
        step_ = (static_cast<double>(target) - now) / count;
        return;
    }
    constexpr double floorRatio = 0.001;  // 60 dB
    from_ = std::max(now, target * floorRatio);
    const double to = std::max(static_cast<double>(target), from_ * floorRatio);
    // From one span to the next by one multiplication, whatever the blocks: the same for all of their sizes.
    const double ofFrame = std::log(to / from_) / count;
    const auto power = [ofFrame](std::size_t frame) {
        return std::exp(ofFrame * static_cast<double>(frame));
    };
    constexpr std::size_t kFine = dsp::GainCurve::kFine;
    base_ = from_;
    curve_.ratio = power(kSpan);
    for (std::size_t i = 0; auto& gain : curve_.fine) gain = power(i++);
    for (std::size_t i = 0; auto& gain : curve_.coarse) gain = power(kFine * i++);
}

bool Slide::advance(std::uint64_t frames) {
    const std::uint64_t before = at_;
    at_ += std::min(frames, left());
    if (logarithmic_)
        for (std::uint64_t span = before / kSpan; span < at_ / kSpan; ++span) base_ *= curve_.ratio;
    if (at_ < length_) return false;
    length_ = at_ = 0;
    return true;
}

void Slide::gains(float* out, std::size_t frames) const {
    dsp::curveGains(out, curve_, base_, at_ % kSpan, frames);
}

void Slide::mix(float* out, const float* in, std::size_t frames) const {
    if (!active()) {
        dsp::mixStereo(out, in, frames, target_);
    } else if (!logarithmic_) {
        dsp::mixStereo(out, in, frames, dsp::GainRamp{from_, step_, at_});
    } else {
        std::array<float, kMost> gain;
        gains(gain.data(), std::min(frames, kMost));
        dsp::mixStereo(out, in, std::min(frames, kMost), gain.data());
    }
}

void Slide::scale(float* stereo, std::size_t frames) {
    std::array<float, kMost> gain;
    while (frames > 0 && active()) {
        const std::size_t n = std::min({frames, kMost, static_cast<std::size_t>(left())});
        if (logarithmic_) {
            gains(gain.data(), n);
            dsp::scaleStereo(stereo, stereo, n, gain.data());
        } else {
            dsp::scaleStereo(stereo, stereo, n, dsp::GainRamp{from_, step_, at_});
        }
        advance(n);
        stereo += n * 2;
        frames -= n;
    }
    if (frames > 0 && target_ != 1.0F) dsp::scale(stereo, stereo, frames * 2, target_);
}

}  // namespace zv::engine
