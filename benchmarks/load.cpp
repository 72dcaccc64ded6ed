// Full load: 120 channels at once, bare and with effects, and 32 stretched ones, each against a plain loop.
#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <list>
#include <thread>

#include "benchmarks/measure.h"
#include "benchmarks/plain_effects.h"
#include "benchmarks/studio.h"
#include "engine/dsp/denormals.h"
#include "engine/dsp/mix.h"
#include "platform/soundtouch/stretching_library.h"

namespace zv::bench {
namespace {

constexpr std::size_t kChannels = 120;
constexpr std::size_t kFrames = 3 * kRate;  // of a sound; all of them are far larger than the caches
constexpr std::size_t kPeriods = 172;       // a second
constexpr int kRuns = 9;

/// Plain, four sources a pass: the sum is read and written once for all of them.
#if defined(__x86_64__)
__attribute__((target("avx2")))
#endif
void addFour(float* out, const std::array<const float*, 4>& in, std::size_t samples, float gain) {
    using Eight = float __attribute__((vector_size(32), aligned(4), may_alias));
    for (std::size_t i = 0; i < samples; i += 8) {
        Eight sum = *reinterpret_cast<const Eight*>(out + i);
        for (const float* from : in) sum += *reinterpret_cast<const Eight*>(from + i) * gain;
        *reinterpret_cast<Eight*>(out + i) = sum;
    }
}

/// The mixing loop over the same sounds, from `at` on, looping.
class PlainMix {
  public:
    explicit PlainMix(const std::vector<std::vector<float>>& sounds) : sounds_(sounds) {}
    void period() {
        std::fill(bus_.begin(), bus_.end(), 0.0f);
        if (at_ + kPeriod > kFrames) at_ = 0;
        for (std::size_t k = 0; k < sounds_.size(); k += 4)
            addFour(bus_.data(), {from(k), from(k + 1), from(k + 2), from(k + 3)}, bus_.size(), 1.0f);
        at_ += kPeriod;
    }

  private:
    const float* from(std::size_t k) const { return sounds_[k].data() + 2 * at_; }
    const std::vector<std::vector<float>>& sounds_;  ///< a multiple of four
    std::vector<float> bus_ = std::vector<float>(2 * kPeriod);
    std::size_t at_ = 0;
};

double secondsOf(auto&& work) {
    const double before = threadSeconds();
    work();
    return threadSeconds() - before;
}

constexpr double kSecondsOfSound = static_cast<double>(kPeriods) * kPeriod / kRate;

void start(const std::vector<DWORD>& jingles) {
    for (DWORD jingle : jingles) {
        BASS_ChannelSetPosition(jingle, 0, BASS_POS_BYTE);
        BASS_ChannelPlay(jingle, false);
    }
}

/// Lets the workers bring all sounds into memory.
void settle(Studio& studio) {
    for (std::size_t i = 0; i < 4 * kPeriods; ++i) {
        studio.play(1);
        if (i % 16 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void mixing() {
    const auto sounds = makeSounds(kChannels, kFrames);
    Studio studio(sounds);
    std::vector<DWORD> jingles;
    for (std::size_t k = 0; k < kChannels; ++k) jingles.push_back(studio.jingle(k));
    start(jingles);
    settle(studio);

    engine::FlushToZero flush;
    PlainMix plain(sounds);
    std::vector<double> engineTimes, plainTimes, ratios;
    for (int run = 0; run < kRuns; ++run) {
        engineTimes.push_back(secondsOf([&] { studio.play(kPeriods); }));
        plainTimes.push_back(secondsOf([&] {
            for (std::size_t i = 0; i < kPeriods; ++i) plain.period();
        }));
        ratios.push_back(engineTimes.back() / plainTimes.back());
    }
    atMost("mix-120", median(ratios), "x plain loop of four a pass", 1.6);
    tell("mix-120-speed", kSecondsOfSound / median(engineTimes), "x real time");
    tell("mix-120-plain-speed", kSecondsOfSound / median(plainTimes), "x real time");
}

/// What setting something costs: 120 sounds of another form, or with something set, against 120 that are neither.
void forms() {
    constexpr std::size_t kLength = kRate;
    const auto sounds = makeSounds(kChannels, kLength);
    Studio studio(sounds);
    const auto open = [&](const char* form) {
        std::vector<DWORD> jingles;
        for (std::size_t k = 0; k < kChannels; ++k) jingles.push_back(studio.jingle(k, form));
        return jingles;
    };
    const std::vector<DWORD> neutral = open(""), mono = open("mono"), fast = open("fast");
    const auto attribute = [](DWORD which, float value, DWORD ms) {
        return [=](DWORD jingle) { BASS_ChannelSlideAttribute(jingle, which, value, ms); };
    };
    constexpr DWORD kLong = 3'600'000;  // ms: slides for the whole measurement
    struct Row {
        const char* name;
        const std::vector<DWORD>& jingles;
        std::function<void(DWORD)> set, reset;
        double limit;
    };
    const auto nothing = [](DWORD) {};
    const std::vector<Row> rows{
        {"forms-120-48khz", fast, nothing, nothing, 5},
        {"forms-120-mono", mono, nothing, nothing, 1.3},
        {"forms-120-slides", neutral, attribute(BASS_ATTRIB_VOL, 0.5F, kLong),
         attribute(BASS_ATTRIB_VOL, 1, 0), 1.3},
        {"forms-120-log-slides", neutral, attribute(BASS_ATTRIB_VOL | BASS_SLIDE_LOG, 0.5F, kLong),
         attribute(BASS_ATTRIB_VOL, 1, 0), 1.3},
        {"forms-120-voldsp", neutral, attribute(BASS_ATTRIB_VOLDSP, 0.7F, 0),
         attribute(BASS_ATTRIB_VOLDSP, 1, 0), 1.3},
    };
    const engine::FlushToZero flush;
    const auto secondsFor = [&](const std::vector<DWORD>& jingles) {
        start(jingles);
        studio.play(2);
        const double seconds = secondsOf([&] { studio.play(kPeriods / 2); });
        for (const DWORD jingle : jingles) BASS_ChannelStop(jingle);
        studio.play(1);
        return seconds;
    };
    for (const std::vector<DWORD>* jingles : {&neutral, &mono, &fast}) {
        start(*jingles);
        settle(studio);
        for (const DWORD jingle : *jingles) BASS_ChannelStop(jingle);
    }
    for (const Row& row : rows) {
        std::vector<double> ratios;
        for (int run = 0; run < kRuns; ++run) {
            const double plain = secondsFor(neutral);
            for (const DWORD jingle : row.jingles) row.set(jingle);
            ratios.push_back(secondsFor(row.jingles) / plain);
            for (const DWORD jingle : row.jingles) row.reset(jingle);
        }
        atMost(row.name, median(ratios), "x neutral", row.limit);
    }
}

/// What the engine takes for itself: one sound, two outputs with clocks of their own.
void alone() {
    const auto sounds = makeSounds(1, kRate);
    Studio studio(sounds);
    start({studio.jingle(0)});
    settle(studio);
    const engine::FlushToZero flush;
    std::vector<double> costs;
    for (int run = 0; run < kRuns; ++run)
        costs.push_back(secondsOf([&] { studio.play(kPeriods); }) / kSecondsOfSound * 1000);
    atMost("one-sound", median(costs), "ms per s of sound", 0.5);
}

void effects() {
    constexpr PlainBand kBands[] = {{60, 7, 2.5},   {150, 3, 2.5},  {400, 1, 2.5},  {1000, -2, 2.5},
                                    {2400, 2, 2.5}, {6000, 3, 2.5}, {15000, 7, 2.5}};
    if (!engine::dsp::usesWidePath()) return missing("effects-120", "the loop it is held against needs AVX2");
    const auto sounds = makeSounds(kChannels, kFrames);
    Studio studio(sounds);
    std::vector<DWORD> jingles;
    for (std::size_t k = 0; k < kChannels; ++k) {
        const DWORD jingle = studio.jingle(k);
        const HFX eq = BASS_ChannelSetFX(jingle, BASS_FX_BFX_PEAKEQ, 5);
        for (int band = 0; const PlainBand& b : kBands) {
            const BASS_BFX_PEAKEQ wish{band++,
                                       static_cast<float>(b.octaves),
                                       0,
                                       static_cast<float>(b.centreHz),
                                       static_cast<float>(b.gainDb),
                                       BASS_BFX_CHANALL};
            BASS_FXSetParameters(eq, &wish);
        }
        const BASS_DX8_REVERB wish{0, -6, 1000, 0.5f};  // as PlainEffects has it
        BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_DX8_REVERB, 10), &wish);
        jingles.push_back(jingle);
    }
    start(jingles);
    settle(studio);

    engine::FlushToZero flush;
    std::vector<float> bus(2 * kPeriod);
    PlainEffects plain(sounds, kBands, PlainForm::Integrators, kRate);
    PlainEffects direct(sounds, kBands, PlainForm::Direct, kRate);
    const auto ofLoop = [&](PlainEffects& loop) {
        return secondsOf([&] {
            for (std::size_t i = 0; i < kPeriods; ++i) loop.render(bus.data(), kPeriod);
        });
    };
    std::vector<double> engineTimes, plainTimes, ratios, directRatios;
    for (int run = 0; run < kRuns; ++run) {
        engineTimes.push_back(secondsOf([&] { studio.play(kPeriods); }));
        plainTimes.push_back(ofLoop(plain));
        ratios.push_back(engineTimes.back() / plainTimes.back());
        directRatios.push_back(engineTimes.back() / ofLoop(direct));
    }
    atMost("effects-120", median(ratios), "x plain loop", 1.3);
    tell("effects-120-direct-form", median(directRatios), "x plain loop of direct forms");
    atLeast("effects-120-speed", kSecondsOfSound / median(engineTimes), "x real time", 10);
    tell("effects-120-plain-speed", kSecondsOfSound / median(plainTimes), "x real time");
}

/// Calls `period` in step with the wall, as on air: the workers must keep ahead.
void inStep(double seconds, const std::function<void()>& period) {
    const auto begin = std::chrono::steady_clock::now();
    const auto periods = static_cast<std::size_t>(seconds * kRate / kPeriod);
    for (std::size_t i = 0; i < periods; ++i) {
        std::this_thread::sleep_until(begin + std::chrono::microseconds(i * kPeriod * 1'000'000ull / kRate));
        period();
    }
}

constexpr std::size_t kStretched = 32;
constexpr double kTempo = 10, kStretchedSeconds = 4;

/// The stretching library over one of the sounds, looping.
class LibraryVoice {
  public:
    LibraryVoice(const std::vector<float>& sound, LibraryPart part)
        : sound_(sound), library_(kRate, 2, 1 + kTempo / 100, part) {}
    void make(std::size_t frames) {
        for (std::size_t made = 0; made < frames;) {
            const std::size_t got =
                library_.take(std::span(out_).first(2 * std::min<std::size_t>(kPeriod, frames - made)));
            made += got;
            if (got > 0) continue;
            if (at_ + kPiece > sound_.size()) at_ = 0;
            library_.put({sound_.data() + at_, kPiece});
            at_ += kPiece;
        }
    }

  private:
    static constexpr std::size_t kPiece = 1024;  ///< samples that are put at a time
    const std::vector<float>& sound_;
    StretchingLibrary library_;
    std::vector<float> out_ = std::vector<float>(2 * kPeriod);
    std::size_t at_ = 0;
};

/// The library alone over the sounds, one after the other without a pause, so that it never leaves the caches: it
/// stretches as much sound as is heard, and nothing else.
double bareLibrary(const std::vector<std::vector<float>>& sounds, LibraryPart part) {
    return secondsOf([&] {
        for (const auto& sound : sounds)
            LibraryVoice(sound, part).make(static_cast<std::size_t>(kStretchedSeconds * kRate));
    });
}

/// The same as the engine is asked: a period of each sound in turn, in step with the wall. What waking up takes does
/// not count.
double libraryInStep(const std::vector<std::vector<float>>& sounds) {
    std::list<LibraryVoice> voices;
    for (const auto& sound : sounds) voices.emplace_back(sound, LibraryPart::stretching);
    double seconds = 0;
    inStep(kStretchedSeconds, [&] {
        seconds += secondsOf([&] {
            for (LibraryVoice& voice : voices) voice.make(kPeriod);
        });
    });
    return seconds;
}

/// The engine starts all of them in the same period and plays in step with the wall: what it takes over the idle
/// studio, on all threads, is stretching, being ahead by up to 0.2 s, reading, mixing, metering, and waking up.
void stretching() {
    constexpr std::size_t kLong = 9 * kRate;
    constexpr int kStretchingRuns = 5;
    const auto sounds = makeSounds(kStretched, kLong);
    Studio studio(sounds);
    std::vector<DWORD> jingles;
    for (std::size_t k = 0; k < kStretched; ++k) jingles.push_back(studio.jingle(k));
    start(jingles);
    settle(studio);
    const auto stop = [&] {
        for (DWORD jingle : jingles) BASS_ChannelStop(jingle);
        studio.play(2);
    };
    const auto setTempo = [&](float percent) {
        for (DWORD jingle : jingles) BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO, percent);
    };
    const auto playPaced = [&](double seconds) {
        const double before = processSeconds();
        inStep(seconds, [&] { studio.play(1); });
        return processSeconds() - before;
    };
    stop();

    std::vector<double> ratios, sameSettings, interleaved, costs, longest;
    for (int run = 0; run < kStretchingRuns; ++run) {
        setTempo(0);
        playPaced(0.2);
        const double idle = playPaced(1) * kStretchedSeconds;  // what the empty studio costs meanwhile
        const double before = processSeconds();
        setTempo(kTempo);
        start(jingles);
        studio.devices->takeLongest();
        playPaced(kStretchedSeconds);
        const double engine = processSeconds() - before - idle;
        longest.push_back(studio.devices->takeLongest() * 1000);
        stop();
        ratios.push_back(engine / bareLibrary(sounds, LibraryPart::whole));
        sameSettings.push_back(engine / bareLibrary(sounds, LibraryPart::stretching));
        interleaved.push_back(engine / libraryInStep(sounds));
        costs.push_back(engine / kStretchedSeconds * 1000);
    }
    atMost("stretch-32", median(ratios), "x bare library", 1.15);
    atMost("stretch-32-same-settings", median(sameSettings), "x bare library", 1.3);
    atMost("stretch-32-in-step", median(interleaved), "x bare library asked in step", 1.3);
    tell("stretch-32-cost", median(costs), "ms per s of sound");
    atMost("stretch-32-callback", median(longest), "ms", 1000.0 * kPeriod / kRate / 4);
}

const Known knowsMixing("mix-120", mixing), knowsForms("forms-120", forms), knowsAlone("one-sound", alone),
    knowsEffects("effects-120", effects), knowsStretching("stretch-32", stretching);

}  // namespace
}  // namespace zv::bench
