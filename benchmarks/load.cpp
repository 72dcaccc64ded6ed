// Full load: 120 channels at once, bare and with effects, and 32 stretched ones, each against a plain loop.
#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "benchmarks/measure.h"
#include "benchmarks/studio.h"
#include "engine/dsp/denormals.h"
#include "engine/dsp/peak_eq.h"
#include "engine/dsp/reverb.h"
#include "platform/soundtouch/soundtouch_stretcher.h"

namespace zv::bench {
namespace {

constexpr std::size_t kChannels = 120;
constexpr std::size_t kFrames = 3 * kRate;  // of a sound; all of them are far larger than the caches
constexpr std::size_t kPeriods = 172;       // a second
constexpr int kRuns = 9;

/// Plain, one source a pass, as one writes it by hand.
#if defined(__x86_64__)
__attribute__((target("avx2")))
#endif
void addPlain(float* out, const float* in, std::size_t samples, float gain) {
    using Eight = float __attribute__((vector_size(32), aligned(4), may_alias));
    for (std::size_t i = 0; i < samples; i += 8)
        *reinterpret_cast<Eight*>(out + i) += *reinterpret_cast<const Eight*>(in + i) * gain;
}

/// The mixing loop over the same sounds, from `at` on, looping.
class PlainMix {
  public:
    explicit PlainMix(const std::vector<std::vector<float>>& sounds) : sounds_(sounds) {}
    void period() {
        std::fill(bus_.begin(), bus_.end(), 0.0f);
        if (at_ + kPeriod > kFrames) at_ = 0;
        for (const auto& sound : sounds_) addPlain(bus_.data(), sound.data() + 2 * at_, bus_.size(), 1.0f);
        at_ += kPeriod;
    }

  private:
    const std::vector<std::vector<float>>& sounds_;
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

    FlushToZero flush;
    PlainMix plain(sounds);
    std::vector<double> engineTimes, plainTimes, ratios;
    for (int run = 0; run < kRuns; ++run) {
        engineTimes.push_back(secondsOf([&] { studio.play(kPeriods); }));
        plainTimes.push_back(secondsOf([&] {
            for (std::size_t i = 0; i < kPeriods; ++i) plain.period();
        }));
        ratios.push_back(engineTimes.back() / plainTimes.back());
    }
    atMost("mix-120", median(ratios), "x plain loop", 1.6);
    tell("mix-120-speed", kSecondsOfSound / median(engineTimes), "x real time");
    tell("mix-120-plain-speed", kSecondsOfSound / median(plainTimes), "x real time");
}

struct PlainEffects {
    PlainEffects() : eq(kRate), reverb(kRate) {}
    dsp::PeakEq eq;
    dsp::Reverb reverb;
};

void effects() {
    constexpr double kCentres[] = {60, 150, 400, 1000, 2400, 6000, 15000};
    constexpr double kGains[] = {7, 3, 1, -2, 2, 3, 7};
    const auto sounds = makeSounds(kChannels, kFrames);
    Studio studio(sounds);
    std::vector<DWORD> jingles;
    std::vector<std::unique_ptr<PlainEffects>> plain;
    for (std::size_t k = 0; k < kChannels; ++k) {
        const DWORD jingle = studio.jingle(k);
        plain.push_back(std::make_unique<PlainEffects>());
        const HFX eq = BASS_ChannelSetFX(jingle, BASS_FX_BFX_PEAKEQ, 5);
        for (int band = 0; band < 7; ++band) {
            const BASS_BFX_PEAKEQ wish{band,
                                       2.5f,
                                       0,
                                       static_cast<float>(kCentres[band]),
                                       static_cast<float>(kGains[band]),
                                       BASS_BFX_CHANALL};
            BASS_FXSetParameters(eq, &wish);
            plain.back()->eq.setBand(static_cast<std::size_t>(band), {kCentres[band], kGains[band], 2.5, 0});
        }
        const BASS_DX8_REVERB wish{0, -6, 1000, 0.5f};
        BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_DX8_REVERB, 10), &wish);
        plain.back()->reverb.set({0, -6, 1000, 0.5});
        jingles.push_back(jingle);
    }
    start(jingles);
    settle(studio);

    FlushToZero flush;
    std::vector<float> bus(2 * kPeriod), block(2 * kPeriod);
    std::size_t at = 0;
    std::vector<double> engineTimes, ratios;
    for (int run = 0; run < kRuns; ++run) {
        engineTimes.push_back(secondsOf([&] { studio.play(kPeriods); }));
        const double plainTime = secondsOf([&] {
            for (std::size_t i = 0; i < kPeriods; ++i) {
                std::fill(bus.begin(), bus.end(), 0.0f);
                if (at + kPeriod > kFrames) at = 0;
                for (std::size_t k = 0; k < kChannels; ++k) {
                    std::copy_n(sounds[k].data() + 2 * at, block.size(), block.data());
                    plain[k]->reverb.process(block.data(), kPeriod);
                    plain[k]->eq.process(block.data(), kPeriod);
                    addPlain(bus.data(), block.data(), bus.size(), 1.0f);
                }
                at += kPeriod;
            }
        });
        ratios.push_back(engineTimes.back() / plainTime);
    }
    atMost("effects-120", median(ratios), "x plain loop", 1.5);
    atLeast("effects-120-speed", kSecondsOfSound / median(engineTimes), "x real time", 10);
}

/// In step with the wall, as on air: the workers must keep ahead.
double playPaced(Studio& studio, double seconds) {
    const auto begin = std::chrono::steady_clock::now();
    const auto periods = static_cast<std::size_t>(seconds * kRate / kPeriod);
    const double before = processSeconds();
    for (std::size_t i = 0; i < periods; ++i) {
        std::this_thread::sleep_until(begin + std::chrono::microseconds(i * kPeriod * 1'000'000ull / kRate));
        studio.play(1);
    }
    return processSeconds() - before;
}

/// The stretching library alone over the same sounds, one after the other.
double bareLibrary(StretcherSource& library, const std::vector<std::vector<float>>& sounds, double tempo,
                   double seconds) {
    return secondsOf([&] {
        std::vector<float> out(2 * kPeriod);
        for (const auto& sound : sounds) {
            const auto stretcher = library.make(kRate, 2);
            stretcher->setTempo(tempo);
            stretcher->setPitch(0);
            stretcher->setRate(1);
            std::size_t at = 0, made = 0;
            while (made < static_cast<std::size_t>(seconds * kRate)) {
                if (const std::size_t got = stretcher->take(out); got > 0) {
                    made += got;
                    continue;
                }
                if (at + 1024 > sound.size()) at = 0;
                stretcher->put({sound.data() + at, 1024});
                at += 1024;
            }
        }
    });
}

void stretching() {
    constexpr std::size_t kStretched = 32, kLong = 9 * kRate;
    constexpr double kSeconds = 6, kTempo = 10;
    const auto sounds = makeSounds(kStretched, kLong);
    Studio studio(sounds);
    std::vector<DWORD> jingles;
    for (std::size_t k = 0; k < kStretched; ++k) jingles.push_back(studio.jingle(k));
    start(jingles);
    settle(studio);
    for (DWORD jingle : jingles) BASS_ChannelStop(jingle);
    studio.play(2);
    const double idle = playPaced(studio, 2) / 2;  // what the empty studio costs a second

    std::vector<double> ratios, sameSettings, longest;
    for (int run = 0; run < 3; ++run) {
        for (DWORD jingle : jingles) BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO, 0);
        playPaced(studio, 0.2);
        const double before = processSeconds();
        for (DWORD jingle : jingles) BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO, kTempo);
        start(jingles);
        studio.devices->takeLongest();
        playPaced(studio, kSeconds);
        const double engine = processSeconds() - before - idle * kSeconds;
        longest.push_back(studio.devices->takeLongest() * 1000);
        for (DWORD jingle : jingles) BASS_ChannelStop(jingle);

        // The library as it comes, and with the settings that the engine gives it.
        ratios.push_back(engine / bareLibrary(*plainSoundTouchStretchers(), sounds, kTempo, kSeconds));
        sameSettings.push_back(engine / bareLibrary(*soundTouchStretchers(), sounds, kTempo, kSeconds));
    }
    atMost("stretch-32", median(ratios), "x bare library", 1.15);
    tell("stretch-32-same-settings", median(sameSettings), "x bare library");
    atMost("stretch-32-callback", median(longest), "ms", 1000.0 * kPeriod / kRate / 4);
}

const Known knowsMixing("mix-120", mixing), knowsEffects("effects-120", effects),
    knowsStretching("stretch-32", stretching);

}  // namespace
}  // namespace zv::bench
