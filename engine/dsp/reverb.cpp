#include "engine/dsp/reverb.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/lanes.h"

namespace zv::dsp {
namespace {

constexpr std::size_t kChunk = 128;  // most frames computed in one go

/// What the kernels share for one chunk.
struct Block {
    const ReverbGains* from;
    const ReverbGains* to;
    const float* way;  // how far the change has come, 0..1, frame by frame
};

/// A stretch in which no line comes to the end of its memory.
struct Run {
    std::array<float*, ReverbGains::kLines> line;
    const float* last;  // what left each line a frame ago
    float *left, *right;
    const float* way;
};

#define ZV_KERNELS "engine/dsp/reverb_kernels.h"
#include "engine/dsp/two_paths.h"

constexpr double kRampSeconds = 0.02;
constexpr double kLowestMix = -96;
// Highest loss of a pass at half the rate: more would shorten the tail as a whole.
constexpr double kDarkest = 0.3;
constexpr double kRegain = 0.06;
constexpr float kMostNormalisation = 6;  // very short times would call for any gain

// No common factors (the lengths in frames are made prime), no simple ratios, long enough together that the
// modes of a 3 s tail lie dense; the diffusers ring far shorter than the shortest tail.
constexpr std::array<double, ReverbGains::kLines> kLineMs{19.9, 23.3, 27.7, 32.1, 37.3, 42.9, 49.1, 56.3};
constexpr double kDiffuserMs[2][3] = {{2.3, 3.7, 5.9}, {2.7, 4.1, 5.3}};

bool isPrime(std::size_t n) {
    for (std::size_t d = 2; d * d <= n; ++d)
        if (n % d == 0) return false;
    return n > 1;
}

std::size_t primeFrames(double ms, double rate) {
    auto n = static_cast<std::size_t>(std::max(8.0, ms * 0.001 * rate));
    while (!isPrime(n)) ++n;
    return n;
}

double finite(double v, double fallback) { return std::isfinite(v) ? v : fallback; }

}  // namespace

Reverb::Reverb(double rate) : rate_(std::max(rate, 4000.0)), chunk_(kChunk) {
    std::size_t memory = 0;
    const auto place = [&](Delay& delay, double ms) {
        delay = {primeFrames(ms, rate_), 0, memory};
        memory += delay.length;
        chunk_ = std::min(chunk_, delay.length / kLaneCount * kLaneCount);
    };
    for (std::size_t k = 0; k < kLines; ++k) place(lines_[k], kLineMs[k]);
    for (std::size_t side = 0; side < 2; ++side)
        for (std::size_t k = 0; k < kDiffusers; ++k) place(diffusers_[side][k], kDiffuserMs[side][k]);
    memory_.assign(memory, 0.0f);
    rampFrames_ = rampAt_ = static_cast<std::uint32_t>(rate_ * kRampSeconds);
}

void Reverb::set(const ReverbSettings& wish) {
    settings_.inGainDb = std::clamp(finite(wish.inGainDb, 0), -96.0, 0.0);
    settings_.mixDb = std::clamp(finite(wish.mixDb, kLowestMix), kLowestMix, 0.0);
    settings_.timeMs = std::clamp(finite(wish.timeMs, 1000), 1.0, 20000.0);
    settings_.highRatio = std::clamp(finite(wish.highRatio, 0.001), 0.001, 0.999);

    if (settings_.mixDb <= kLowestMix) {
        if (!running_) return;
        ReverbGains out = target_;
        out.dry = 1;
        out.wet = 0;
        begin(out);
        leaving_ = true;
        return;
    }
    // Damping takes from the tail as a whole too; half of that is given back, so that the sound of all
    // frequencies falls in the time that was asked for.
    const double timeMs = settings_.timeMs * (1 + kRegain * std::min(1.0, 1 / settings_.highRatio - 1));
    ReverbGains goal;
    double power = 0;  // mean of the squared gains of a pass
    for (std::size_t k = 0; k < kLines; ++k) {
        const double passes = static_cast<double>(lines_[k].length) / rate_ * 1000 / timeMs;
        const double gain = std::pow(10.0, -3 * passes);
        const double high = std::max(kDarkest, std::pow(10.0, -3 * passes * (1 / settings_.highRatio - 1)));
        goal.line[k] = static_cast<float>(gain);
        goal.damp[k] = static_cast<float>((1 - high) / 2);
        power += gain * gain / kLines;
    }
    const double wet = std::pow(10.0, settings_.mixDb / 20);
    const double norm = std::min<double>(kMostNormalisation, std::sqrt((1 - power) / (4 * power + 1e-30)));
    goal.wet = static_cast<float>(wet * norm);
    const double in = std::pow(10.0, settings_.inGainDb / 20);
    goal.dry = static_cast<float>(in * std::sqrt(std::max(0.0, 1 - wet * wet)));
    goal.send = static_cast<float>(in);
    if (!running_) {
        clear();
        running_ = true;
        target_ = goal;
        target_.send = target_.wet = 0;  // sound that is under way enters the lines without an edge
        target_.dry = 1;
    }
    begin(goal);
    leaving_ = false;
}

/// Sets out for `goal` from where the gains are now; at once when nothing has passed yet.
void Reverb::begin(const ReverbGains& goal) {
    if (passed_) {
        const float t = static_cast<float>(rampAt_) / static_cast<float>(rampFrames_);
        const auto now = [t](float a, float b) { return a + (b - a) * t; };
        if (rampAt_ < rampFrames_) {
            for (std::size_t k = 0; k < kLines; ++k) {
                from_.line[k] = now(from_.line[k], target_.line[k]);
                from_.damp[k] = now(from_.damp[k], target_.damp[k]);
            }
            from_.send = now(from_.send, target_.send);
            from_.dry = now(from_.dry, target_.dry);
            from_.wet = now(from_.wet, target_.wet);
        } else {
            from_ = target_;
        }
        rampAt_ = 0;
    } else {
        rampAt_ = rampFrames_;
    }
    target_ = goal;
}

void Reverb::process(float* stereo, std::size_t frames) {
    if (frames == 0) return;
    passed_ = true;
    while (running_ && frames > 0) {
        std::size_t part = std::min(frames, chunk_);
        if (rampAt_ < rampFrames_) {
            part = std::min<std::size_t>(part, rampFrames_ - rampAt_);
        } else if (leaving_) {
            running_ = leaving_ = false;
            return;
        }
        chunk(stereo, part);
        stereo += 2 * part;
        frames -= part;
    }
}

void Reverb::chunk(float* stereo, std::size_t frames) {
    alignas(32) float left[kChunk], right[kChunk], way[kChunk];
    const bool ramp = rampAt_ < rampFrames_;
    if (ramp)
        for (std::size_t i = 0; i < frames; ++i)
            way[i] = static_cast<float>(rampAt_ + i) / static_cast<float>(rampFrames_);
    const Block block{&from_, &target_, way};
    const bool w = wideChosen();

    (ramp ? (w ? wide::spread<true> : plain::spread<true>)
          : (w ? wide::spread<false> : plain::spread<false>))(stereo, frames, block, left, right);
    for (std::size_t side = 0; side < 2; ++side) {
        float* x = side == 0 ? left : right;
        for (Delay& d : diffusers_[side]) {
            const std::size_t first = std::min(frames, d.length - d.at);
            float* memory = memory_.data() + d.offset;
            (w ? wide::diffuse : plain::diffuse)(x, memory + d.at, first);
            if (first < frames) (w ? wide::diffuse : plain::diffuse)(x + first, memory, frames - first);
            d.at += frames;
            if (d.at >= d.length) d.at -= d.length;
        }
    }
    for (std::size_t done = 0; done < frames;) {
        std::size_t run = frames - done;
        for (const Delay& d : lines_) run = std::min(run, d.length - d.at);
        turn(left + done, right + done, way + done, run);
        done += run;
    }
    (ramp ? (w ? wide::blend<true> : plain::blend<true>) : (w ? wide::blend<false> : plain::blend<false>))(
        stereo, frames, block, left, right);
    if (ramp) rampAt_ += static_cast<std::uint32_t>(frames);
    filled_ = true;
}

/// Turns the lines by `frames` frames, within which none of them wraps.
void Reverb::turn(float* left, float* right, const float* way, std::size_t frames) {
    const bool ramp = rampAt_ < rampFrames_;
    const auto network = ramp ? (wideChosen() ? wide::network<true> : plain::network<true>)
                              : (wideChosen() ? wide::network<false> : plain::network<false>);
    const Block block{&from_, &target_, way};
    const std::size_t whole = frames / kLaneCount * kLaneCount, rest = frames - whole;
    Run run{{}, last_.data(), left, right, way};
    for (std::size_t k = 0; k < kLines; ++k) run.line[k] = memory_.data() + lines_[k].offset + lines_[k].at;
    std::array<float, kLines> leaving;
    for (std::size_t k = 0; k < kLines; ++k) leaving[k] = run.line[k][frames - 1];

    std::array<float, kLines> between;
    if (whole > 0) {
        for (std::size_t k = 0; k < kLines; ++k) between[k] = run.line[k][whole - 1];
        network(run, whole, block);
        run.last = between.data();
    }
    if (rest > 0) {  // the last frames pass through a whole group of their own
        alignas(32) float group[kLines + 3][kLaneCount] = {};
        const auto copy = [rest](float* to, const float* from) { std::copy_n(from, rest, to); };
        Run small{{}, run.last, group[kLines], group[kLines + 1], group[kLines + 2]};
        for (std::size_t k = 0; k < kLines; ++k) {
            copy(group[k], run.line[k] + whole);
            small.line[k] = group[k];
        }
        copy(small.left, left + whole);
        copy(small.right, right + whole);
        if (ramp) copy(group[kLines + 2], way + whole);
        network(small, kLaneCount, block);
        for (std::size_t k = 0; k < kLines; ++k) copy(run.line[k] + whole, group[k]);
        copy(left + whole, small.left);
        copy(right + whole, small.right);
    }
    last_ = leaving;
    for (Delay& d : lines_) {
        d.at += frames;
        if (d.at == d.length) d.at = 0;
    }
}

void Reverb::clear() {
    if (!filled_) return;
    std::fill(memory_.begin(), memory_.end(), 0.0f);
    last_ = {};
    filled_ = false;
}

void Reverb::reset() {
    if (!passed_) return;
    passed_ = false;
    clear();
    rampAt_ = rampFrames_;
    if (leaving_) running_ = leaving_ = false;
}

}  // namespace zv::dsp
