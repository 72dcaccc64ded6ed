/// A jingle as it must sound, computed frame by frame: without blocks, pages, queues, views or anything set aside.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "engine/dsp/denormals.h"
#include "engine/dsp/peak_eq.h"
#include "engine/dsp/resampler.h"
#include "engine/dsp/reverb.h"
#include "tests/engine/made_sounds.h"

namespace zv::engine::test {

constexpr std::uint32_t kModelRate = 44100;
constexpr std::size_t kMostBlock = 256;

/// A gain on its way.
struct Fade {
    double from = 1, to = 1;
    std::uint64_t at = 0, length = 0;
    bool logarithmic = false, stops = false;

    double value() const {
        if (length == 0) return to;
        const double way = static_cast<double>(at) / static_cast<double>(length);
        if (!logarithmic) return from + (to - from) * way;
        const double first = std::max(from, to * 0.001), last = std::max(to, first * 0.001);
        return first * std::pow(last / first, way);
    }
    void start(double target, std::uint64_t frames, bool ratios = false, bool stop = false) {
        const double now = value();
        *this = {now, target, 0, frames, ratios && (now > 0 || target > 0), stop};
    }
    /// A frame passes; true when it was the last one.
    bool step() {
        if (length == 0 || ++at < length) return false;
        at = length = 0;
        return true;
    }
};

class Model {
  public:
    struct Sync {
        std::uint64_t frame;
        bool once;
        int fired = 0;
    };

    Model(Made made, int number) : sound(std::move(made)), seed(number), eq(rate()), reverb(rate()) {
        sound.sample = [this](auto f, auto c) { return sample(f, c); };
    }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    std::uint32_t rate() const { return sound.format.rate; }
    bool converted() const { return rate() != kModelRate; }
    std::uint64_t last() const { return std::min(end, sound.length); }
    /// Noise of its own level, the right side half as loud.
    float sample(std::uint64_t frame, std::uint32_t channel) const {
        const auto hash = static_cast<std::uint32_t>((frame * 2 + channel) * 2654435761U) ^
                          static_cast<std::uint32_t>(seed * 40503);
        const float one = static_cast<float>(hash * 2246822519U >> 8) / 8388608.0F - 1;
        return one * 0.1F * static_cast<float>(1 + seed) * (channel == 0 ? 1.0F : 0.5F);
    }

    void play(std::uint64_t clock) {
        if (playing) return;
        if (drained || inTail) forget();
        if (taken.empty()) began = clock;
        playing = true;
        inTail = false;
        heardLately.clear();
        levelsBegan = 0;
    }
    void stop() { playing = false; }
    void move(std::uint64_t frame, std::uint64_t clock) {
        forget();
        began = clock;
        heard = next = frame;
        inTail = false;
    }
    void volume(double target, std::uint64_t frames, bool ratios, bool stops) {
        vol.start(target, frames, ratios, stops);
        if (frames == 0 && stops) finish();
    }
    void reset() {
        eq.reset(), reverb.reset();
        effect = {.to = effect.to};
    }

    /// Adds `frames` frames to interleaved stereo `out`.
    void render(double* out, std::uint64_t frames) {
        const FlushToZero flush;
        if (converted()) readAhead(frames);
        for (std::uint64_t i = 0; i < frames; ++i) {
            const std::uint64_t before = converted() ? index() : 0;
            if (playing) beginTimed();
            std::optional<std::array<float, 2>> now;
            if (playing) now = converted() ? fromConversion() : fromChain();
            if (playing && !now) finish();
            if (now) {
                for (int c = 0; c < 2; ++c) out[2 * i + c] += (*now)[c] * vol.value();
                if (converted()) {
                    ++made;
                    for (std::uint64_t k = before; k < std::min<std::uint64_t>(index(), taken.size()); ++k)
                        pass(k);
                }
                publish();
            }
            if (vol.step() && vol.stops) finish();
            voldsp.step();
        }
    }
    /// The loudest sample before VOL of the last 20 ms: at least, and at most. Levels are kept in steps of 64 frames,
    /// and begin anew in the block in which sound from the file and computed sound follow each other.
    std::array<double, 2> level(std::size_t side) const {
        std::array<double, 2> out{};
        const double more =
            converted() && voldsp.value() * effect.value() != 1 ? 1.9 : 1.000001;  // measured behind it
        for (std::size_t k = heardLately.size(), age = 0; playing && k > 0; ++age) {
            const double size = std::abs(double{heardLately[--k][side]});
            if (age > 64 && age < rate() / 55 && k > levelsBegan + kMostBlock)
                out[0] = std::max(out[0], size / more);
            out[1] = std::max(out[1], size * more);
        }
        return out;
    }

    Made sound;
    int seed;
    bool playing = false, loop = false, effects = false;
    std::uint64_t loopStart = 0, end = ~std::uint64_t{0}, heard = 0;
    double tail = 0;
    int gainPriority = 0;  ///< of VOLDSP; the effects have 20, 10 and 5, and of equals VOLDSP is first
    Fade vol, voldsp, effect;
    dsp::PeakEq eq;
    dsp::Reverb reverb;
    std::vector<Sync> syncs;
    int timed = -1;        ///< the sync whose slide of 882 frames has not begun
    Fade timedTo;          ///< its target, curve and stop
    bool drained = false;  ///< everything up to the end was taken for the conversion

  private:
    struct Taken {
        std::array<float, 2> frame;
        std::uint64_t place;
        bool tail;
    };

    void forget() {
        taken.clear();
        made = 0;
        drained = false;
    }
    void finish() {
        if (!playing) return;
        publish();
        playing = false;
    }
    void fire(std::uint64_t frame) {
        for (Sync& sync : syncs)
            if (sync.frame == frame && (!sync.once || sync.fired == 0)) ++sync.fired;
    }
    /// Frame `k` of what was taken has been heard, and with it the end where the next one lies elsewhere.
    void pass(std::uint64_t k) {
        const auto gain = static_cast<float>(voldsp.value() * effect.value());
        if (!taken[k].tail || gain != 1) note({taken[k].frame[0] * gain, taken[k].frame[1] * gain});
        if (taken[k].tail) return;
        fire(taken[k].place);
        const bool ends = k + 1 == taken.size() || taken[k + 1].tail;
        if (ends || taken[k + 1].place != taken[k].place + 1) fire(taken[k].place + 1);
    }
    /// The next frame in the order of play; nothing behind the end and its tail.
    std::optional<Taken> take() {
        if (!inTail && next >= last()) {
            if (!converted()) fire(last());
            inTail = !loop;
            if (inTail) tailLeft = static_cast<std::uint64_t>(std::llround(tail * rate()));
            next = loop ? loopStart : last();
        }
        if (!inTail) {
            const bool mono = sound.format.channels == 1;
            ++next;
            return Taken{{sample(next - 1, 0), sample(next - 1, mono ? 0 : 1)}, next - 1, false};
        }
        if (tailLeft == 0) return std::nullopt;
        --tailLeft;
        return Taken{{0, 0}, last(), true};
    }
    void chain(std::array<float, 2>& frame) {
        const bool effective = effect.length > 0 || effect.to != 1 || !reverb.bypassed() || !eq.bypassed();
        const bool computes = effective || voldsp.length > 0 || inTail;
        if (computes != std::exchange(computed, computes)) levelsBegan = heardLately.size();
        const int stage = gainPriority >= 20 ? 0 : gainPriority >= 10 ? 1 : gainPriority >= 5 ? 2 : 3;
        for (int k = 0; k <= 3; ++k) {
            if (k == stage)
                for (float& side : frame) side *= static_cast<float>(voldsp.value());
            if (k == 0)
                for (float& side : frame) side *= static_cast<float>(effect.value());
            if (k == 1 && !reverb.bypassed()) reverb.process(frame.data(), 1);
            if (k == 2 && !eq.bypassed()) eq.process(frame.data(), 1);
        }
        effect.step();
        note(frame);
    }
    void note(const std::array<float, 2>& frame) {
        heardLately.push_back(frame);
        if (heardLately.size() <= rate() / 40) return;
        heardLately.erase(heardLately.begin());
        levelsBegan -= std::min<std::size_t>(levelsBegan, 1);
    }
    std::optional<std::array<float, 2>> fromChain() {
        auto frame = take();
        if (!frame) return std::nullopt;
        if (!frame->tail) fire(frame->place);
        chain(frame->frame);
        return frame->frame;
    }

    // ---- a file of another rate: all that is heard up to the next command is taken and converted at once
    std::uint64_t scaled() const { return began * rate() % kModelRate + made * rate(); }
    /// Of the frame in `taken` that is heard now.
    std::uint64_t index() const { return scaled() / kModelRate; }
    void readAhead(std::uint64_t frames) {
        const std::uint64_t unheard = (scaled() + kModelRate - 1) / kModelRate;
        // At the very end it has not ended yet: a loop that is set now is followed.
        const bool atEnd = playing && drained && !taken.empty() && unheard == taken.size();
        if (unheard < taken.size() || atEnd) {
            const bool inIt = unheard > 0 && taken[unheard - 1].tail;
            next = unheard == 0 ? taken[0].place : inIt ? last() : taken[unheard - 1].place + 1;
            if (!inIt) inTail = false;
            if (inIt) tailLeft += taken.size() - unheard;
            taken.resize(unheard);
            drained = false;
        }
        if (!playing) return;
        constexpr std::uint64_t kReach = 600;
        while (!drained && taken.size() < index() + frames * rate() / kModelRate + kReach) {
            const auto frame = take();
            drained = !frame;
            if (frame) taken.push_back(*frame);
        }
        dsp::Resampler resampler(rate(), kModelRate);
        resampler.align(began);
        std::vector<float> in(2 * resampler.inputNeeded(made + frames));
        for (std::size_t k = 0; k < std::min(taken.size(), in.size() / 2); ++k)
            for (std::size_t c = 0; c < 2; ++c)
                in[2 * k + c] = taken[k].frame[c] * static_cast<float>(voldsp.value() * effect.value());
        out_.resize(2 * (made + frames));
        resampler.process(in, out_);
    }
    std::optional<std::array<float, 2>> fromConversion() {
        if (index() >= taken.size()) return std::nullopt;
        return std::array{out_[2 * made], out_[2 * made + 1]};
    }
    void publish() {
        const std::uint64_t over = loop ? loopStart : last();
        if (!converted()) {
            heard = next < last() ? next : over;
        } else {
            heard = index() < taken.size() && !taken[index()].tail ? taken[index()].place : over;
        }
    }
    /// A slide that is tied to a sync begins with the very frame.
    void beginTimed() {
        if (timed < 0) return;
        const Sync& sync = syncs[static_cast<std::size_t>(timed)];
        bool due = sync.frame == next;
        if (converted()) {
            // The first frame of the mixer that lies at most half a frame before it.
            const std::uint64_t k = index();
            const double at = k < taken.size() ? static_cast<double>(taken[k].place) +
                                                     static_cast<double>(scaled() % kModelRate) / kModelRate
                                               : 0;
            const double left = static_cast<double>(sync.frame) - at;
            due = left * kModelRate / rate() <= 0.5 + 1e-6 && left > -1;
        }
        if (!due) return;
        timed = -1;
        volume(timedTo.to, 882, timedTo.logarithmic, timedTo.stops);
    }

    bool inTail = false;
    std::uint64_t next = 0, tailLeft = 0;
    std::vector<Taken> taken;           ///< since `began`, in the order of play
    std::uint64_t began = 0, made = 0;  ///< the clock then; frames heard since
    std::vector<float> out_;
    std::vector<std::array<float, 2>> heardLately;
    std::size_t levelsBegan = 0;  ///< frame of them
    bool computed = false;        ///< levels are measured, not looked up in the file
};

}  // namespace zv::engine::test
