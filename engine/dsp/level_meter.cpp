#include "engine/dsp/level_meter.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {
namespace {

#define ZV_KERNELS "engine/dsp/level_meter_kernels.h"
#include "engine/dsp/two_paths.h"

}  // namespace

StereoSums measureStereo(const float* stereo, std::size_t frames) {
    return (wideChosen() ? wide::measure : plain::measure)(stereo, frames);
}

StereoSums measureMono(const float* mono, std::size_t frames) {
    const StereoSums pairs = measureStereo(mono, frames / 2);  // every second one counts as the other side
    const float last = frames % 2 == 0 ? 0 : mono[frames - 1];
    const float peak = std::max({pairs.peakLeft, pairs.peakRight, std::fabs(last)});
    const float power = pairs.powerLeft + pairs.powerRight + last * last;
    return {peak, peak, power, power};
}

LevelMeter::LevelMeter(double rate, double seconds)
    : rate_(std::max(rate, 1.0)),
      // One bucket more than asked for: the one that is being overwritten does not count.
      ring_(static_cast<std::size_t>(std::ceil(std::max(seconds, 0.0) * rate_ / kBucket)) + 2) {}

void LevelMeter::close() {
    const std::uint64_t n = written_.load(std::memory_order_relaxed);
    Bucket& bucket = ring_[n % ring_.size()];
    bucket.peakLeft.store(peakLeft_, std::memory_order_relaxed);
    bucket.peakRight.store(peakRight_, std::memory_order_relaxed);
    bucket.powerLeft.store(powerLeft_, std::memory_order_relaxed);
    bucket.powerRight.store(powerRight_, std::memory_order_relaxed);
    written_.store(n + 1, std::memory_order_release);
    peakLeft_ = peakRight_ = powerLeft_ = powerRight_ = 0;
    inBucket_ = 0;
}

void LevelMeter::feed(const float* stereo, std::size_t frames, float gain) {
    while (frames > 0) {
        const std::size_t part = std::min(frames, kBucket - inBucket_);
        const StereoSums s = measureStereo(stereo, part);
        const float size = std::fabs(gain), square = gain * gain;
        peakLeft_ = std::max(peakLeft_, s.peakLeft * size);
        peakRight_ = std::max(peakRight_, s.peakRight * size);
        powerLeft_ += s.powerLeft * square;
        powerRight_ += s.powerRight * square;
        inBucket_ += part;
        if (inBucket_ == kBucket) close();
        stereo += 2 * part;
        frames -= part;
    }
}

void LevelMeter::feedSilence(std::size_t frames) {
    while (frames > 0) {
        const std::size_t part = std::min(frames, kBucket - inBucket_);
        inBucket_ += part;
        if (inBucket_ == kBucket) close();
        frames -= part;
    }
}

void LevelMeter::reset() {
    for (std::size_t i = 0; i < ring_.size(); ++i) close();  // the open one lies behind any window then
}

std::size_t LevelMeter::bucketsOf(double seconds) const {
    const double wanted = std::ceil(std::max(seconds, 0.0) * rate_ / kBucket);
    return static_cast<std::size_t>(std::clamp(wanted, 1.0, static_cast<double>(ring_.size() - 1)));
}

StereoLevel LevelMeter::peak(double seconds) const {
    const std::uint64_t end = written_.load(std::memory_order_acquire);
    StereoLevel level;
    for (std::uint64_t i = end - std::min<std::uint64_t>(end, bucketsOf(seconds)); i < end; ++i) {
        const Bucket& bucket = ring_[i % ring_.size()];
        level.left = std::max(level.left, bucket.peakLeft.load(std::memory_order_relaxed));
        level.right = std::max(level.right, bucket.peakRight.load(std::memory_order_relaxed));
    }
    return level;
}

StereoLevel LevelMeter::rms(double seconds) const {
    const std::uint64_t end = written_.load(std::memory_order_acquire);
    const std::size_t count = bucketsOf(seconds);
    double left = 0, right = 0;
    for (std::uint64_t i = end - std::min<std::uint64_t>(end, count); i < end; ++i) {
        const Bucket& bucket = ring_[i % ring_.size()];
        left += bucket.powerLeft.load(std::memory_order_relaxed);
        right += bucket.powerRight.load(std::memory_order_relaxed);
    }
    const auto frames = static_cast<double>(count * kBucket);
    return {static_cast<float>(std::sqrt(left / frames)), static_cast<float>(std::sqrt(right / frames))};
}

}  // namespace zv::engine::dsp
