#include "engine/dsp/reverb.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {

/// A stretch in which no line comes to the end of its memory.
struct Reverb::Run {
    std::array<float*, kLines> line;
    std::array<std::array<float*, kDiffusers>, 2> diffuser, diffused;  // what comes out, what goes in
    float* stereo;
    const ReverbGains *from, *to;
    std::size_t rampAt, rampFrames;
};

namespace {

constexpr std::size_t kLines = ReverbGains::kLines, kDiffusers = ReverbGains::kDiffusers;
constexpr std::size_t kBlock = 256;  // most frames computed in one go
constexpr double kLeastRate = 4000, kMostRate = 768000;
constexpr std::size_t kMostRoom = 20'480;  // frames of all diffusers at the highest rate, and a block of each

using Run = Reverb::Run;

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
constexpr std::array<double, kLines> kLineMs{19.9, 23.3, 27.7, 32.1, 37.3, 42.9, 49.1, 56.3};
constexpr double kDiffuserMs[2][kDiffusers] = {{2.3, 3.7, 5.9}, {2.7, 4.1, 5.3}};
constexpr std::size_t kOver = kLaneCount + 1;         // frames that a group touches
constexpr std::size_t kLeastFrames = 2 * kLaneCount;  // of a delay: more than one group of frames

bool isPrime(std::size_t n) {
    for (std::size_t d = 2; d * d <= n; ++d)
        if (n % d == 0) return false;
    return n > 1;
}

std::size_t primeFrames(double ms, double rate) {
    auto n = static_cast<std::size_t>(std::max<double>(kLeastFrames, ms * 0.001 * rate));
    while (!isPrime(n)) ++n;
    return n;
}

}  // namespace

Reverb::Reverb(double rate) : rate_(std::clamp(rate, kLeastRate, kMostRate)) {
    std::size_t memory = 0;
    for (std::size_t k = 0; k < kLines; ++k) {
        lines_[k] = {primeFrames(kLineMs[k], rate_) + 1, 0, memory};
        memory += lines_[k].frames + kOver;
    }
    for (std::size_t side = 0; side < 2; ++side)
        for (std::size_t k = 0; k < kDiffusers; ++k) {
            Diffuser& d = diffusers_[side][k];
            d = {primeFrames(kDiffuserMs[side][k], rate_), memory};
            memory += d.length;
        }
    memory_.assign(memory, 0.0f);
    rampFrames_ = rampAt_ = static_cast<std::uint32_t>(rate_ * kRampSeconds);
}

void Reverb::set(const ReverbSettings& wish) {
    settings_.inGainDb = std::clamp(wish.inGainDb, -96.0, 0.0);
    settings_.mixDb = std::clamp(wish.mixDb, kLowestMix, 0.0);
    settings_.timeMs = std::clamp(wish.timeMs, 1.0, 20000.0);
    settings_.highRatio = std::clamp(wish.highRatio, 0.001, 0.999);

    if (settings_.mixDb <= kLowestMix) {
        if (!running_) return;
        ReverbGains out = target_;
        out.dry = 1;
        out.wet = 0;
        begin(out, true);
        return;
    }
    // Damping takes from the tail as a whole too; half of that is given back, so that the sound of all
    // frequencies falls in the time that was asked for.
    const double timeMs = settings_.timeMs * (1 + kRegain * std::min(1.0, 1 / settings_.highRatio - 1));
    ReverbGains goal;
    double power = 0;  // mean of the squared gains of a pass
    for (std::size_t k = 0; k < kLines; ++k) {
        const double passes = static_cast<double>(lines_[k].frames - 1) / rate_ * 1000 / timeMs;
        const double gain = std::pow(10.0, -3 * passes);
        const double high = std::max(kDarkest, std::pow(10.0, -3 * passes * (1 / settings_.highRatio - 1)));
        goal.line[k] = static_cast<float>(gain);
        goal.damp[k] = static_cast<float>((1 - high) / 2);
        power += gain * gain / kLines;
    }
    const double wet = std::pow(10.0, settings_.mixDb / 20);
    const double norm = std::min<double>(kMostNormalisation, std::sqrt((1 - power) / (4 * power)));
    goal.wet = static_cast<float>(wet * norm);
    const double in = std::pow(10.0, settings_.inGainDb / 20);
    goal.dry = static_cast<float>(in);
    goal.send = static_cast<float>(in);
    if (!running_) {
        clear();
        running_ = true;
        target_ = goal;
        target_.send = target_.wet = 0;  // sound that is under way enters the lines without an edge
        target_.dry = 1;
    }
    begin(goal, false);
}

/// Begins the ramp from the present gains to `goal`; when nothing has passed yet, the gains are there at once.
/// `leaving`: the reverb is bypassed at the end of the ramp.
void Reverb::begin(const ReverbGains& goal, bool leaving) {
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
    leaving_ = leaving;
}

void Reverb::process(float* stereo, std::size_t frames) {
    passed_ = true;
    while (running_ && frames > 0) {
        std::size_t part = frames;
        if (rampAt_ < rampFrames_) {
            part = std::min<std::size_t>(part, rampFrames_ - rampAt_);
        } else if (leaving_) {
            running_ = false;
            return;
        }
        part = std::min(part, kBlock);
        block(stereo, part);
        stereo += 2 * part;
        frames -= part;
        filled_ = true;
    }
}

void Reverb::block(float* stereo, std::size_t frames) {
    alignas(32) float room[kMostRoom];
    Run run{{}, {}, {}, stereo, &from_, &target_, rampAt_, rampFrames_};
    float* free = room;
    for (std::size_t side = 0; side < 2; ++side)
        for (std::size_t k = 0; k < kDiffusers; ++k) {
            const Diffuser& d = diffusers_[side][k];
            run.diffuser[side][k] = free;
            run.diffused[side][k] = std::copy_n(memory_.data() + d.offset, d.length, free);
            free += d.length + kBlock + kLaneCount;
        }
    const std::size_t groups = frames / kLaneCount, rest = frames % kLaneCount;
    turn(run, groups, kLaneCount);
    if (rest > 0) {
        float few[2 * kLaneCount] = {};
        float* const from = stereo + 2 * kLaneCount * groups;
        std::copy_n(from, 2 * rest, few);
        run.stereo = few;
        turn(run, 1, rest);
        std::copy_n(few, 2 * rest, from);
    }
    for (std::size_t side = 0; side < 2; ++side)
        for (std::size_t k = 0; k < kDiffusers; ++k) {
            const Diffuser& d = diffusers_[side][k];
            std::copy_n(run.diffuser[side][k], d.length, memory_.data() + d.offset);
        }
}

/// Turns the network by `groups` groups of `lanes` frames; of fewer than eight only one.
void Reverb::turn(Run& run, std::size_t groups, std::size_t lanes) {
    while (groups > 0) {
        std::size_t fit = groups;
        for (const Line& line : lines_) fit = std::min(fit, (line.frames - line.at - 1) / kLaneCount);
        if (fit > 0) {
            kernel(run, fit, lanes);
            groups -= fit;
            continue;
        }
        const auto copy = [this](std::size_t from, std::size_t to) {
            std::copy_n(memory_.data() + from, kOver, memory_.data() + to);
        };
        std::array<bool, kLines> over;
        for (std::size_t k = 0; k < kLines; ++k) {
            const Line& line = lines_[k];
            over[k] = line.at + kOver > line.frames;
            if (over[k]) copy(line.offset, line.offset + line.frames);
        }
        kernel(run, 1, lanes);
        for (std::size_t k = 0; k < kLines; ++k)
            if (over[k]) copy(lines_[k].offset + lines_[k].frames, lines_[k].offset);
        --groups;
    }
}

void Reverb::kernel(Run& run, std::size_t groups, std::size_t lanes) {
    for (std::size_t k = 0; k < kLines; ++k) run.line[k] = memory_.data() + lines_[k].offset + lines_[k].at;
    run.rampAt = rampAt_;
    const bool w = wideChosen(), ramp = rampAt_ < rampFrames_;
    const auto network = lanes < kLaneCount
                             ? ramp ? (w ? wide::network<true, true> : plain::network<true, true>)
                                    : (w ? wide::network<false, true> : plain::network<false, true>)
                         : ramp ? (w ? wide::network<true, false> : plain::network<true, false>)
                                : (w ? wide::network<false, false> : plain::network<false, false>);
    network(run, groups, static_cast<std::int32_t>(lanes));

    const std::size_t frames = (groups - 1) * kLaneCount + lanes;
    for (Line& line : lines_) {
        line.at += frames;
        if (line.at >= line.frames) line.at -= line.frames;
    }
    for (std::size_t side = 0; side < 2; ++side)
        for (std::size_t k = 0; k < kDiffusers; ++k) {
            run.diffuser[side][k] += frames;
            run.diffused[side][k] += frames;
        }
    run.stereo += 2 * frames;
    if (ramp) rampAt_ += static_cast<std::uint32_t>(frames);
}

void Reverb::prefetch() const {
    if (!running_) return;
    for (const Line& line : lines_) __builtin_prefetch(memory_.data() + line.offset + line.at, 1);
    for (const auto& side : diffusers_)
        for (const Diffuser& d : side) __builtin_prefetch(memory_.data() + d.offset, 1);
}

void Reverb::clear() {
    if (!filled_) return;
    std::fill(memory_.begin(), memory_.end(), 0.0f);
    filled_ = false;
}

void Reverb::reset() {
    passed_ = false;
    clear();
    rampAt_ = rampFrames_;
    if (leaving_) running_ = false;
}

}  // namespace zv::engine::dsp
