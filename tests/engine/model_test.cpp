// Seven jingles, told at random what a presenter and a palette may tell them: heard is the plain sum of what the model
// computes, whatever the period, and positions, states, attributes, levels and syncs are the model's.
#include "tests/engine/model.h"

#include <random>
#include <sstream>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr SoundFormat kFormats[] = {{44100, 2, 16}, {44100, 1, 16}, {48000, 2, 16}, {22050, 1, 16},
                                    {44100, 2, 16}, {44100, 2, 16}, {44100, 2, 16}};
constexpr std::size_t kVoices = std::size(kFormats), kWithEffects = 4;
constexpr std::uint64_t kLength = 9000, kNone = ~std::uint64_t{0};
constexpr DWORD kTimedMs = 20;

enum class Kind {
    Play,
    Stop,
    Move,
    Vol,
    Voldsp,
    Loop,
    Range,
    Tail,
    Gain,
    Eq,
    Reverb,
    Reset,
    Sync,
    NoSync,
    Timed,
    Master
};
constexpr unsigned kKinds = 16;

/// Something that is done before frame `at`.
struct Act {
    std::uint64_t at;
    Kind kind;
    std::size_t voice;
    double value = 1;
    std::uint64_t
        a = 0,
        b = 0;  ///< frames; of a slide `a` is its ms, and `b` how it goes: 1 logarithmic, 2 to the stop
};

struct Scene {
    std::vector<Act> acts;
    std::vector<std::uint64_t> looks;  ///< frames at which everything is looked at
    std::vector<double> main, aux;
    std::vector<std::string> states;            ///< of each jingle
    std::vector<std::array<double, 2>> levels;  ///< of each jingle's sides
};

std::string stateOf(bool active, std::uint64_t position, double vol, double voldsp, bool volSlides,
                    bool voldspSlides, const std::vector<int>& fired) {
    std::ostringstream out;
    out.precision(3);
    out << std::fixed << (active ? "plays " : "stands ") << position << ' ' << vol + 1e-9 << ' '
        << voldsp + 1e-9 << (volSlides ? '~' : ' ') << (voldspSlides ? '~' : ' ');
    for (const int count : fired) out << ' ' << count;
    return out.str();
}

/// The jingles as the model has them, and the act that is chosen next.
class Stage {
  public:
    explicit Stage(unsigned seed) : random(seed) {
        for (std::size_t k = 0; k < kVoices; ++k)
            voices.push_back(std::make_unique<Model>(Made{kFormats[k], kLength, {}}, static_cast<int>(k)));
        for (const auto& v : voices) v->gainPriority = std::array{0, 5, 7, 10, 15, 20, 50}[seed % 7];
    }
    void perform(const Act& act) {
        scene.acts.push_back(act);
        Model& v = *voices[act.voice];
        const std::uint64_t frames = (act.a * kModelRate + 500) / 1000;
        const bool log = act.b == 1, stops = act.b == 2;
        if (act.kind == Kind::Play) v.play(clock);
        if (act.kind == Kind::Stop) v.stop();
        if (act.kind == Kind::Move) v.move(act.a, clock);
        if (act.kind == Kind::Vol) v.volume(stops ? 0 : act.value, frames, log, stops);
        if (act.kind == Kind::Voldsp) v.voldsp.start(act.value, frames, log);
        if (act.kind == Kind::Loop) v.loop = act.b == 1;
        if (act.kind == Kind::Range) v.loopStart = act.a, v.end = act.b;
        if (act.kind == Kind::Tail) v.tail = act.value;
        if (act.kind == Kind::Gain) v.effect.start(act.value, v.playing ? 441 : 0);
        if (act.kind == Kind::Eq)
            v.eq.setBand(act.a, {900.0 * static_cast<double>(1 + act.a), act.value, 2, 0});
        if (act.kind == Kind::Reverb) v.reverb.set({0, act.value, 300, 0.5});
        if (act.kind == Kind::Reset) v.reset();
        if (act.kind == Kind::Sync) v.syncs.push_back({act.a, act.b == 1});
        if (act.kind == Kind::NoSync) v.syncs[act.a].frame = kNone;
        if (act.kind == Kind::NoSync && v.timed == static_cast<int>(act.a)) v.timed = -1;
        if (act.kind == Kind::Timed)
            v.timed = static_cast<int>(act.a), v.timedTo = {1, stops ? 0 : act.value, 0, 0, log, stops};
        if (act.kind == Kind::Master) masters[act.voice % 2].start(act.value, frames, log);
    }
    /// What a conversion has read ahead of is its own affair: such acts are left out.
    void performAny() {
        const auto below = [&](std::uint64_t n) { return random() % n; };
        Act act{clock,
                static_cast<Kind>(below(kKinds)),
                below(kVoices),
                static_cast<double>(below(9)) / 8,
                below(3) == 0 ? 0 : below(60),
                below(3)};
        const bool effect = act.kind == Kind::Eq || act.kind == Kind::Reverb;
        if (effect || (act.kind == Kind::Voldsp && below(2) == 0)) act.voice = kWithEffects;
        const Model& v = *voices[act.voice];
        if (act.kind == Kind::Play && v.drained) return;
        if ((act.kind == Kind::Voldsp || act.kind == Kind::Gain) && v.converted() && v.playing) return;
        if (act.kind == Kind::Voldsp && v.converted()) act.a = 0;
        if (act.kind == Kind::Move || act.kind == Kind::Sync) act.a = below(kLength + 1);
        if (act.kind == Kind::Range) {
            act.a = below(6000);
            act.b = act.b == 0 ? kNone : act.a + 700 + below(3000);
            if (v.converted() && v.heard + 100 > std::min(kLength, act.b)) return;
        }
        if (act.kind == Kind::Tail) act.value /= 4;
        if (act.kind == Kind::Reverb) act.value = act.b == 0 ? -96 : -6;
        if (act.kind == Kind::Eq) act.value = act.b == 0 ? 0 : 8 * act.value - 3, act.a %= 2;
        if (act.kind == Kind::NoSync || act.kind == Kind::Timed) {
            if (v.syncs.empty()) return;
            act.a = below(v.syncs.size());
        }
        perform(act);
        const bool again = (act.kind == Kind::Voldsp || act.kind == Kind::Gain) && v.converted();
        if (again) perform({clock, Kind::Move, act.voice, 0, below(kLength)});
        if (again || (act.kind == Kind::Move && below(3) != 0)) perform({clock, Kind::Play, act.voice});
    }
    /// Frames up to the next look: often to shortly before a converted jingle comes to its end, which is then moved.
    std::uint64_t untilNextLook() {
        near = nullptr;
        for (const auto& v : voices) {
            const std::uint64_t left = (v->last() - std::min(v->last(), v->heard)) * kModelRate / v->rate();
            if (!v->converted() || !v->playing || left < 50 || left > 1700 || random() % 3 == 0) continue;
            near = v.get();
            return left - random() % 45;
        }
        return 1 + random() % 1700;
    }
    void moveTheEnd() {
        if (!near || !near->playing) return;
        const auto voice = static_cast<std::size_t>(near->seed);
        const bool later = random() % 3 == 0;
        if (later)
            perform({clock, Kind::Range, voice, 1, random() % 2 == 0 ? near->loopStart : 500,
                     near->last() < 5000 ? 7000 : kNone});
        if (!later) perform({clock, Kind::Loop, voice, 1, 0, near->loop ? 0U : 1U});
    }
    void render(std::uint64_t frames) {
        std::vector<double> sum(2 * frames);
        for (const auto& v : voices) v->render(sum.data(), frames);
        for (std::uint64_t i = 0; i < 2 * frames; ++i) {
            scene.main.push_back(sum[i] * masters[0].value());
            scene.aux.push_back(sum[i] * masters[1].value());
            if (i % 2 == 1)
                for (Fade& master : masters) master.step();
        }
        clock += frames;
        scene.looks.push_back(clock);
        for (const auto& v : voices) {
            std::vector<int> fired;
            for (const auto& sync : v->syncs) fired.push_back(sync.fired);
            scene.states.push_back(stateOf(v->playing, v->heard, v->vol.value(), v->voldsp.value(),
                                           v->vol.length > 0, v->voldsp.length > 0, fired));
            for (std::size_t side : {0, 1}) scene.levels.push_back(v->level(side));
        }
    }
    std::vector<std::unique_ptr<Model>> voices;
    std::mt19937 random;
    std::uint64_t clock = 0;
    std::array<Fade, 2> masters;  ///< of the main output, and of the auxiliary one
    Scene scene;
    const Model* near = nullptr;
};

class AgainstTheModel : public Show {
  protected:
    struct Jingle {
        DWORD source = 0, play = 0, frameBytes = 0;
        HFX gain = 0, reverb = 0, eq = 0;
        std::vector<HSYNC> syncs{};
        std::vector<std::unique_ptr<int>> fired{};
    };
    void build(const Stage& stage) {
        begin({});
        studio.emplace();
        jingles.clear();
        for (std::size_t k = 0; k < kVoices; ++k) {
            decoders->sounds["sound"] = stage.voices[k]->sound;
            Jingle& j =
                jingles.emplace_back(Jingle{.source = file("sound"), .frameBytes = 2 * kFormats[k].channels});
            j.play = studio->jingle(j.source);
            j.gain = BASS_ChannelSetFX(j.play, BASS_FX_BFX_VOLUME, 20);
            BASS_ChannelSetAttribute(j.play, BASS_ATTRIB_VOLDSP_PRIORITY,
                                     static_cast<float>(stage.voices[k]->gainPriority));
            if (k != kWithEffects) continue;
            j.reverb = BASS_ChannelSetFX(j.play, BASS_FX_DX8_REVERB, 10);
            j.eq = BASS_ChannelSetFX(j.play, BASS_FX_BFX_PEAKEQ, 5);
        }
    }
    void perform(const Act& act) {
        Jingle& j = jingles[act.voice];
        const auto value = static_cast<float>(act.value);
        const auto slide = [&](DWORD channel, DWORD attribute) {
            BASS_ChannelSlideAttribute(channel, attribute | (act.b == 1 ? BASS_SLIDE_LOG : 0),
                                       attribute == BASS_ATTRIB_VOL && act.b == 2 ? -1 : value,
                                       static_cast<DWORD>(act.a));
        };
        const auto bytes = [&](std::uint64_t frame) {
            return frame == kNone ? BASS_NO_POSITION : frame * j.frameBytes;
        };
        const BASS_BFX_VOLUME gain{BASS_BFX_CHANALL, value};
        const BASS_BFX_PEAKEQ band{
            static_cast<int>(act.a), 2, 0, 900.0F * static_cast<float>(1 + act.a), value, BASS_BFX_CHANALL};
        const BASS_DX8_REVERB room{0, value, 300, 0.5F};
        if (act.kind == Kind::Play) BASS_ChannelPlay(j.play, false);
        if (act.kind == Kind::Stop) BASS_ChannelStop(j.play);
        if (act.kind == Kind::Move) BASS_ChannelSetPosition(j.play, bytes(act.a) + act.b % 2, BASS_POS_BYTE);
        if (act.kind == Kind::Vol) slide(j.play, BASS_ATTRIB_VOL);
        if (act.kind == Kind::Voldsp) slide(j.play, BASS_ATTRIB_VOLDSP);
        if (act.kind == Kind::Loop)
            BASS_ChannelFlags(j.source, act.b == 1 ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        if (act.kind == Kind::Range) BASS_ChannelSetPosition(j.source, bytes(act.a), BASS_POS_LOOP);
        if (act.kind == Kind::Range) BASS_ChannelSetPosition(j.source, bytes(act.b), BASS_POS_END);
        if (act.kind == Kind::Tail) BASS_ChannelSetAttribute(j.play, BASS_ATTRIB_TAIL, value);
        if (act.kind == Kind::Gain) BASS_FXSetParameters(j.gain, &gain);
        if (act.kind == Kind::Eq) BASS_FXSetParameters(j.eq, &band);
        if (act.kind == Kind::Reverb) BASS_FXSetParameters(j.reverb, &room);
        if (act.kind == Kind::Reset)
            for (const DWORD of : act.b == 0 ? std::vector{j.play} : std::vector{j.gain, j.reverb, j.eq})
                BASS_FXReset(of);
        if (act.kind == Kind::Sync) {
            j.fired.push_back(std::make_unique<int>(0));
            j.syncs.push_back(BASS_ChannelSetSync(
                j.play, BASS_SYNC_POS | (act.b == 1 ? BASS_SYNC_ONETIME : 0), bytes(act.a),
                [](HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); }, j.fired.back().get()));
        }
        if (act.kind == Kind::NoSync) BASS_ChannelRemoveSync(j.play, j.syncs[act.a]);
        if (act.kind == Kind::Timed)
            engineControl()->slideAtSync(j.play, j.syncs[act.a], act.b == 2 ? -1 : value, kTimedMs,
                                         act.b == 1);
        if (act.kind == Kind::Master)
            slide(act.voice % 2 == 0 ? studio->mainSplit[0] : studio->outMixer[1], BASS_ATTRIB_VOLDSP);
    }
    void pullInPeriods(std::uint64_t frames, std::uint32_t most) {
        while (frames > 0) {
            const auto period = static_cast<std::uint32_t>(std::min<std::uint64_t>(frames, most));
            devices->setPeriod(period);
            pull(frames / period * period);
            frames %= period;
        }
    }
    void holds(const Scene& scene, std::uint32_t period, const std::string& name, std::vector<float>& sound) {
        std::size_t act = 0;
        std::uint64_t clock = 0;
        for (std::size_t look = 0; look < scene.looks.size(); clock = scene.looks[look++]) {
            std::string where = name + ", look " + std::to_string(look) + ":";
            for (; act < scene.acts.size() && scene.acts[act].at == clock; ++act) {
                const Act& a = scene.acts[act];
                perform(a);
                where += " " + std::to_string(static_cast<int>(a.kind)) + "-" + std::to_string(a.voice);
            }
            pullInPeriods(scene.looks[look] - clock, period);
            engineControl()->settleSyncs();
            const std::vector<float> main = take(), aux = take(kAuxName);
            ASSERT_EQ(main.size(), 2 * (scene.looks[look] - clock)) << where;
            for (std::size_t i = 0; i < main.size(); ++i) {
                ASSERT_NEAR(main[i], scene.main[sound.size() + i], 3e-6) << where << ", frame " << i / 2;
                ASSERT_NEAR(aux.at(i), scene.aux[sound.size() + i], 3e-6) << where << ", frame " << i / 2;
            }
            sound.insert(sound.end(), main.begin(), main.end());
            for (std::size_t k = 0; k < kVoices; ++k) {
                ASSERT_EQ(state(jingles[k]), scene.states[look * kVoices + k]) << where << ", jingle " << k;
                float levels[2]{};
                BASS_Mixer_ChannelGetLevelEx(jingles[k].play, levels, 0.02F, BASS_LEVEL_STEREO);
                for (std::size_t c = 0; c < 2; ++c) {
                    const auto& [least, most] = scene.levels[(look * kVoices + k) * 2 + c];
                    ASSERT_TRUE(levels[c] >= least && levels[c] <= most + 1e-6)
                        << where << ", level of " << k << ": " << levels[c] << " not in " << least << " to "
                        << most;
                }
            }
        }
    }
    static std::string state(const Jingle& j) {
        float vol = 0, voldsp = 0;
        BASS_ChannelGetAttribute(j.play, BASS_ATTRIB_VOL, &vol);
        BASS_ChannelGetAttribute(j.play, BASS_ATTRIB_VOLDSP, &voldsp);
        std::vector<int> fired;
        for (const auto& count : j.fired) fired.push_back(*count);
        return stateOf(BASS_ChannelIsActive(j.play) == BASS_ACTIVE_PLAYING,
                       BASS_ChannelGetPosition(j.play, BASS_POS_BYTE) / j.frameBytes, vol, voldsp,
                       BASS_ChannelIsSliding(j.play, BASS_ATTRIB_VOL),
                       BASS_ChannelIsSliding(j.play, BASS_ATTRIB_VOLDSP), fired);
    }
    std::optional<Topology> studio;
    std::vector<Jingle> jingles;
};

TEST_F(AgainstTheModel, AnyShowSoundsAsThePlainSumOfItsJingles) {
    for (unsigned number = 1; number <= 24; ++number) {
        Stage stage(number);
        for (std::size_t k = 0; k < kVoices; ++k) stage.perform({0, Kind::Play, k});
        for (std::size_t k = 0; k < kVoices && number % 4 == 0; ++k)
            stage.perform({0, Kind::Vol, k, 0.25, 90, 1});
        for (int part = 0; part < 30; ++part) {
            stage.moveTheEnd();
            for (auto acts = stage.random() % 8; acts > 0; --acts) stage.performAny();
            stage.render(stage.untilNextLook());
        }
        std::vector<float> first;
        for (const std::uint32_t period : {997U, 64U, 1U}) {
            if (period == 1 && number > 4) continue;
            std::vector<float> sound;
            build(stage);
            holds(stage.scene, period, "scene " + std::to_string(number), sound);
            if (HasFatalFailure()) return;
            if (first.empty()) first = sound;
            ASSERT_EQ(sound, first) << number << ": other bits with a period of " << period;
        }
    }
}

}  // namespace
}  // namespace zv::engine::test
