// Five jingles, told at random what a presenter and a palette may tell them: heard is the plain sum of what the model
// computes, whatever the period, and positions, states, attributes, levels and syncs are the model's.
#include "tests/engine/model.h"

#include <random>
#include <sstream>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr SoundFormat kFormats[] = {
    {44100, 2, 16}, {44100, 1, 16}, {48000, 2, 16}, {22050, 1, 16}, {44100, 2, 16}};
constexpr std::uint64_t kLength = 9000;

enum class Kind {
    Play,
    Stop,
    Move,
    Volume,
    Slide,
    LogSlide,
    FadeOut,
    Voldsp,
    VoldspSlide,
    Loop,
    Once,
    Range,
    Tail,
    Effect,
    Equaliser,
    Reverb,
    Reset,
    AddSync,
    RemoveSync,
    SlideAtSync,
    Master,
    Kinds
};

/// Something that is done before frame `at`.
struct Act {
    std::uint64_t at;
    Kind kind;
    std::size_t voice;
    double value;
    std::uint64_t a, b;
};

struct Scene {
    std::vector<Act> acts;
    std::vector<std::uint64_t> looks;  ///< frames at which everything is looked at
    std::vector<double> main, aux;
    std::vector<std::string> states;
    std::vector<std::array<double, 2>> levels;  ///< of each jingle's sides
};

std::string stateOf(bool active, std::uint64_t position, double vol, double voldsp,
                    const std::vector<int>& fired) {
    std::ostringstream out;
    out.precision(3);
    out << std::fixed << (active ? "plays " : "stands ") << position << " vol " << vol + 1e-9 << " dsp "
        << voldsp + 1e-9;
    for (const int count : fired) out << ' ' << count;
    return out.str();
}

class Stage {
  public:
    Stage() {
        for (int k = 0; k < 5; ++k)
            voices.push_back(std::make_unique<Model>(Made{kFormats[k], kLength, {}}, k));
        voices.back()->effects = true;
    }
    void act(const Act& act) {
        Model& v = *voices[act.voice];
        const auto frames = (act.a * kModelRate + 500) / 1000;
        switch (act.kind) {
            case Kind::Play:
                v.play(clock);
                break;
            case Kind::Stop:
                v.stop();
                break;
            case Kind::Move:
                v.move(act.a, clock);
                break;
            case Kind::Volume:
                v.volume(act.value, 0, false, false);
                break;
            case Kind::Slide:
                v.volume(act.value, frames, false, false);
                break;
            case Kind::LogSlide:
                v.volume(act.value, frames, true, false);
                break;
            case Kind::FadeOut:
                v.volume(0, frames, act.b % 2 == 1, true);
                break;
            case Kind::Voldsp:
                v.voldsp.start(act.value, 0);
                break;
            case Kind::VoldspSlide:
                v.voldsp.start(act.value, frames, act.b % 2 == 1);
                break;
            case Kind::Loop:
                v.loop = true;
                break;
            case Kind::Once:
                v.loop = false;
                break;
            case Kind::Range:
                v.loopStart = act.a, v.end = act.b;
                break;
            case Kind::Tail:
                v.tail = act.value;
                break;
            case Kind::Effect:
                v.effect.start(act.value, v.playing ? 441 : 0);
                break;
            case Kind::Equaliser:
                v.eq.setBand(act.a, {500.0 + 900.0 * static_cast<double>(act.a), act.value, 2, 0});
                break;
            case Kind::Reverb:
                v.reverb.set({0, act.value, 300, 0.5F});
                break;
            case Kind::Reset:
                v.reset();
                break;
            case Kind::AddSync:
                v.syncs.push_back({act.a, act.b == 1});
                break;
            case Kind::RemoveSync:
                v.syncs[act.a].frame = ~std::uint64_t{0};
                if (v.timed == static_cast<int>(act.a)) v.timed = -1;
                break;
            case Kind::SlideAtSync:
                v.timed = static_cast<int>(act.a);
                break;
            case Kind::Master:
                master.start(act.value, frames);
                break;
            default:
                break;
        }
    }
    void render(Scene& scene, std::uint64_t frames) {
        const auto from = static_cast<std::ptrdiff_t>(scene.aux.size());
        scene.aux.resize(scene.aux.size() + 2 * frames);
        for (const auto& v : voices) v->render(scene.aux.data() + from, frames);
        for (std::uint64_t i = 0; i < frames; ++i, master.step())
            for (int c = 0; c < 2; ++c) scene.main.push_back(scene.aux[scene.main.size()] * master.value());
        clock += frames;
    }
    std::string state(std::size_t k) const {
        const Model& v = *voices[k];
        std::vector<int> fired;
        for (const auto& sync : v.syncs) fired.push_back(sync.fired);
        return stateOf(v.playing, v.heard, v.vol.value(), v.voldsp.value(), fired);
    }
    std::vector<std::unique_ptr<Model>> voices;
    Fade master;
    std::uint64_t clock = 0;
};

/// What a random act may be; nothing that is by right as the period has it.
std::optional<Act> chosen(std::mt19937& random, const Stage& stage) {
    const auto below = [&](std::uint64_t n) { return random() % n; };
    Act act{
        stage.clock, static_cast<Kind>(below(static_cast<std::uint64_t>(Kind::Kinds))), below(5), 0, 0, 0};
    const Model& v = *stage.voices[act.voice];
    act.value = static_cast<double>(below(9)) / 8;
    act.a = 3 + below(60);
    act.b = below(2);
    switch (act.kind) {
        case Kind::Play:
            // What a conversion holds of the very end goes with the start; how much that is, is its own affair.
            if (v.drained) return std::nullopt;
            break;
        case Kind::Move:
            act.a = below(kLength + 1);
            break;
        case Kind::Voldsp:
        case Kind::VoldspSlide:
        case Kind::Effect:
            if (v.converted()) return std::nullopt;  // its conversion has read ahead of it
            break;
        case Kind::Range:
            act.a = below(6000);
            act.b = below(3) == 0 ? ~std::uint64_t{0} : act.a + 700 + below(3000);
            // What a conversion has taken beyond an end that comes to lie behind it is heard first.
            if (v.converted() && v.heard + 100 > std::min(v.last(), act.b)) return std::nullopt;
            break;
        case Kind::Tail:
            act.value /= 4;
            break;
        case Kind::Equaliser:
        case Kind::Reverb:
            if (!v.effects) return std::nullopt;
            act.a %= 2;
            act.value = act.kind == Kind::Reverb ? (act.b == 0 ? -96 : -6)
                        : act.b == 0             ? 0
                                                 : 8 * act.value - 3;
            break;
        case Kind::AddSync:
            act.a = below(kLength + 1);
            break;
        case Kind::RemoveSync:
        case Kind::SlideAtSync:
            if (v.syncs.empty()) return std::nullopt;
            act.a = below(v.syncs.size());
            break;
        default:
            break;
    }
    return act;
}

Scene written(unsigned number) {
    Scene scene;
    std::mt19937 random(number);
    Stage stage;
    for (std::size_t k = 0; k < 5; ++k) scene.acts.push_back({0, Kind::Play, k, 0, 0, 0});
    for (const Act& act : scene.acts) stage.act(act);
    for (int part = 0; part < 24; ++part) {
        for (auto n = random() % 6; n > 0; --n)
            if (const auto act = chosen(random, stage)) {
                scene.acts.push_back(*act);
                stage.act(*act);
                if (act->kind == Kind::Move && random() % 3 != 0) {
                    scene.acts.push_back({stage.clock, Kind::Play, act->voice, 0, 0, 0});
                    stage.act(scene.acts.back());
                }
            }
        stage.render(scene, 1 + random() % 1700);
        scene.looks.push_back(stage.clock);
        for (std::size_t k = 0; k < 5; ++k) scene.states.push_back(stage.state(k));
        for (std::size_t k = 0; k < 5; ++k)
            for (std::size_t side : {0, 1}) scene.levels.push_back(stage.voices[k]->level(side));
    }
    return scene;
}

class AgainstTheModel : public Show, public testing::WithParamInterface<std::uint32_t> {
  protected:
    struct Jingle {
        DWORD source = 0, play = 0;
        HFX effect = 0, reverb = 0, eq = 0;
        std::vector<HSYNC> syncs{};
        std::vector<std::unique_ptr<int>> fired{};
    };
    void perform(const Act& act) {
        Jingle& j = jingles[act.voice];
        const auto ms = static_cast<DWORD>(act.a);
        const auto value = static_cast<float>(act.value);
        const DWORD frame = 2 * kFormats[act.voice].channels;
        const auto slide = [&](DWORD attribute, float to, bool log = false) {
            BASS_ChannelSlideAttribute(j.play, attribute | (log ? BASS_SLIDE_LOG : 0), to, ms);
        };
        switch (act.kind) {
            case Kind::Play:
                BASS_ChannelPlay(j.play, false);
                break;
            case Kind::Stop:
                BASS_ChannelStop(j.play);
                break;
            case Kind::Move:
                BASS_ChannelSetPosition(j.play, act.a * frame + act.b, BASS_POS_BYTE);
                break;
            case Kind::Volume:
                BASS_ChannelSetAttribute(j.play, BASS_ATTRIB_VOL, value);
                break;
            case Kind::Slide:
                slide(BASS_ATTRIB_VOL, value);
                break;
            case Kind::LogSlide:
                slide(BASS_ATTRIB_VOL, value, true);
                break;
            case Kind::FadeOut:
                slide(BASS_ATTRIB_VOL, -1, act.b % 2 == 1);
                break;
            case Kind::Voldsp:
                BASS_ChannelSetAttribute(j.play, BASS_ATTRIB_VOLDSP, value);
                break;
            case Kind::VoldspSlide:
                slide(BASS_ATTRIB_VOLDSP, value, act.b % 2 == 1);
                break;
            case Kind::Loop:
                BASS_ChannelFlags(j.source, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
                break;
            case Kind::Once:
                BASS_ChannelFlags(j.source, 0, BASS_SAMPLE_LOOP);
                break;
            case Kind::Range:
                BASS_ChannelSetPosition(j.source, act.a * frame, BASS_POS_LOOP);
                BASS_ChannelSetPosition(
                    j.source, act.b == ~std::uint64_t{0} ? BASS_NO_POSITION : act.b * frame, BASS_POS_END);
                break;
            case Kind::Tail:
                BASS_ChannelSetAttribute(j.play, BASS_ATTRIB_TAIL, value);
                break;
            case Kind::Effect: {
                const BASS_BFX_VOLUME p{BASS_BFX_CHANALL, value};
                BASS_FXSetParameters(j.effect, &p);
                break;
            }
            case Kind::Equaliser: {
                const BASS_BFX_PEAKEQ p{
                    static_cast<int>(act.a), 2, 0, 500.0F + 900.0F * static_cast<float>(act.a), value,
                    BASS_BFX_CHANALL};
                BASS_FXSetParameters(j.eq, &p);
                break;
            }
            case Kind::Reverb: {
                const BASS_DX8_REVERB p{0, value, 300, 0.5F};
                BASS_FXSetParameters(j.reverb, &p);
                break;
            }
            case Kind::Reset:
                BASS_FXReset(j.play);
                break;
            case Kind::AddSync:
                j.fired.push_back(std::make_unique<int>(0));
                j.syncs.push_back(BASS_ChannelSetSync(
                    j.play, BASS_SYNC_POS | (act.b == 1 ? BASS_SYNC_ONETIME : 0), act.a * frame,
                    [](HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); },
                    j.fired.back().get()));
                break;
            case Kind::RemoveSync:
                BASS_ChannelRemoveSync(j.play, j.syncs[act.a]);
                break;
            case Kind::SlideAtSync:
                engineControl()->slideAtSync(j.play, j.syncs[act.a], -1, 20, false);
                break;
            case Kind::Master:
                BASS_ChannelSlideAttribute(studio->mainSplit[0], BASS_ATTRIB_VOLDSP, value, ms);
                break;
            default:
                break;
        }
    }
    void pullInPeriods(std::uint64_t frames) {
        while (frames > 0) {
            const auto period = static_cast<std::uint32_t>(std::min<std::uint64_t>(frames, GetParam()));
            devices->setPeriod(period);
            pull(frames / period * period);
            frames %= period;
        }
    }
    std::string state(const Jingle& j) const {
        float vol = 0, voldsp = 0;
        BASS_ChannelGetAttribute(j.play, BASS_ATTRIB_VOL, &vol);
        BASS_ChannelGetAttribute(j.play, BASS_ATTRIB_VOLDSP, &voldsp);
        std::vector<int> fired;
        for (const auto& count : j.fired) fired.push_back(*count);
        const DWORD frame = 2 * kFormats[&j - jingles.data()].channels;
        return stateOf(BASS_ChannelIsActive(j.play) == BASS_ACTIVE_PLAYING,
                       BASS_ChannelGetPosition(j.play, BASS_POS_BYTE) / frame, vol, voldsp, fired);
    }
    std::optional<Topology> studio;
    std::vector<Jingle> jingles;
};

TEST_P(AgainstTheModel, AnyShowSoundsAsThePlainSumOfItsJingles) {
    for (unsigned number = 1; number <= (GetParam() == 1 ? 5 : 40); ++number) {
        const Scene scene = written(number);
        begin({});
        jingles.clear();
        const Stage sounds;
        for (std::size_t k = 0; k < 5; ++k) decoders->sounds[std::to_string(k)] = sounds.voices[k]->sound;
        studio.emplace();
        for (std::size_t k = 0; k < 5; ++k) {
            const DWORD source = file(std::to_string(k)), play = studio->jingle(source);
            jingles.push_back({source, play, BASS_ChannelSetFX(play, BASS_FX_BFX_VOLUME, 20)});
            if (k < 4) continue;
            jingles.back().reverb = BASS_ChannelSetFX(play, BASS_FX_DX8_REVERB, 10);
            jingles.back().eq = BASS_ChannelSetFX(play, BASS_FX_BFX_PEAKEQ, 5);
        }
        std::size_t act = 0, heard = 0;
        std::uint64_t clock = 0;
        for (std::size_t look = 0; look < scene.looks.size(); ++look) {
            std::string told;
            for (; act < scene.acts.size() && scene.acts[act].at == clock; ++act) {
                perform(scene.acts[act]);
                told += " " + std::to_string(static_cast<int>(scene.acts[act].kind)) + ":" +
                        std::to_string(scene.acts[act].voice);
            }
            pullInPeriods(scene.looks[look] - clock);
            engineControl()->settleSyncs();
            const std::string where =
                "scene " + std::to_string(number) + ", look " + std::to_string(look) + told;
            const std::vector<float> main = take(), aux = take(kAuxName);
            ASSERT_EQ(main.size(), 2 * (scene.looks[look] - clock)) << where;
            ASSERT_EQ(main.size(), aux.size()) << where;
            for (std::size_t i = 0; i < main.size(); ++i, ++heard) {
                ASSERT_NEAR(main[i], scene.main[heard], 3e-6) << where << ", frame " << i / 2;
                ASSERT_NEAR(aux[i], scene.aux[heard], 3e-6) << where << ", frame " << i / 2;
            }
            clock = scene.looks[look];
            for (std::size_t k = 0; k < 5; ++k) {
                ASSERT_EQ(state(jingles[k]), scene.states[look * 5 + k]) << where << ", jingle " << k;
                float levels[2]{};
                BASS_Mixer_ChannelGetLevelEx(jingles[k].play, levels, 0.02F, BASS_LEVEL_STEREO);
                for (std::size_t c = 0; c < 2; ++c) {
                    const auto& [least, most] = scene.levels[(look * 5 + k) * 2 + c];
                    ASSERT_GE(levels[c], least) << where << ", level of " << k;
                    ASSERT_LE(levels[c], most + 1e-6) << where << ", level of " << k;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Periods, AgainstTheModel, testing::Values(1, 64, 997));

}  // namespace
}  // namespace zv::engine::test
