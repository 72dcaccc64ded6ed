// What operations answer, with the code that they leave.
#include <future>
#include <limits>
#include <sstream>

#include "tests/engine/show.h"
#include "tests/support/approved.h"

namespace zv::engine::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr DWORD kDecode = BASS_STREAM_DECODE;

// ---- what an operation answered, and the code that it left

std::string with(const std::string& answer) {
    const int code = BASS_ErrorGetCode();
    return code == BASS_OK ? answer : answer + "!" + std::to_string(code);
}
std::string said(bool success) { return with(success ? "+" : "-"); }
std::string said(const char* text) { return with(text ? text : "-"); }
template <typename T>
std::string said(T number) {
    std::ostringstream out;
    out << number;
    return with(std::is_unsigned_v<T> && number == static_cast<T>(-1) ? "-" : out.str());
}
std::string made(DWORD handle) { return said(handle != 0); }

/// Asks an operation about a channel, with these arguments besides.
template <typename Result, typename... P, typename... A>
auto asks(Result (*operation)(DWORD, P...), A... arguments) {
    return [=](DWORD channel) { return said(operation(channel, static_cast<P>(arguments)...)); };
}
/// The same of what makes something.
template <typename... P, typename... A>
auto makes(DWORD (*operation)(DWORD, P...), A... arguments) {
    return [=](DWORD channel) { return made(operation(channel, static_cast<P>(arguments)...)); };
}
/// The same of what needs no channel.
template <typename Result, typename... P, typename... A>
auto does(Result (*operation)(P...), A... arguments) {
    return [=] { return said(operation(static_cast<P>(arguments)...)); };
}
template <typename... P, typename... A>
auto opens(DWORD (*operation)(P...), A... arguments) {
    return [=] { return made(operation(static_cast<P>(arguments)...)); };
}

std::string info(DWORD channel) {
    BASS_CHANNELINFO i{};
    const bool known = BASS_ChannelGetInfo(channel, &i);
    std::ostringstream out;
    out << i.freq << " Hz x" << i.chans << " flags " << std::hex << i.flags << std::dec << " kind " << i.ctype
        << " bits " << i.origres;
    return with(known ? out.str() : "-");
}
std::string attribute(DWORD channel, DWORD which) {
    float value = 0;
    const bool given = BASS_ChannelGetAttribute(channel, which, &value);
    return given ? said(value) : with("-");
}
template <bool (*ask)(DWORD, BASS_DEVICEINFO*)>
std::string described(DWORD device) {
    BASS_DEVICEINFO i{};
    return ask(device, &i) ? with(std::string(i.name) + "/" + i.driver + "/" + std::to_string(i.flags))
                           : with("-");
}
std::string inputRate() {
    BASS_RECORDINFO i{};
    return BASS_RecordGetInfo(&i) ? said(i.freq) : with("-");
}

std::string listed(std::initializer_list<float> values) {
    std::ostringstream out;
    for (const float value : values) out << '/' << value;
    return out.str();
}
std::string fields(const BASS_BFX_PEAKEQ& p) { return listed({p.fBandwidth, p.fQ, p.fCenter, p.fGain}); }
std::string fields(const BASS_DX8_REVERB& p) {
    return listed({p.fInGain, p.fReverbMix, p.fReverbTime, p.fHighFreqRTRatio});
}
std::string fields(const BASS_BFX_VOLUME& p) { return listed({p.fVolume}); }

int recordingOf = 0;  ///< what stands for a procedure that nobody may ask for

void ignore(HSYNC, DWORD, DWORD, void*) {}

class Answers : public Show {
  protected:
    /// Everything anew: a studio, and one channel of each kind.
    void everythingAnew() {
        begin({});
        decoders->sounds["wide"] = {.format = {48000, 6, 24}, .length = 96000, .sample = ramp};
        decoders->sounds["mono"] = {.format = {8000, 1, 8}, .length = 16000, .sample = ramp};
        decoders->sounds["live"] = {
            .format = {22050, 2, 0}, .length = 1 << 24, .sample = ramp, .endless = true};
        BASS_SetConfig(BASS_CONFIG_NET_TIMEOUT, 1234);
        studio.emplace();
        BASS_RecordInit(-1);
        const auto tempo = [](DWORD of) { return BASS_FX_TempoCreate(of, kDecode | BASS_FX_FREESOURCE); };
        const DWORD freed = file("ramp");
        BASS_StreamFree(freed);
        channels = {
            {"0", 0},
            {"freed", freed},
            {"file", file("mono")},
            {"floats", file("wide", kDecode | BASS_SAMPLE_FLOAT | BASS_SAMPLE_LOOP)},
            {"module", BASS_MusicLoad(false, "ramp", 0, 0, kDecode | BASS_MUSIC_PRESCAN | BASS_UNICODE, 0)},
            {"playing", file("mono", 0)},
            {"web", BASS_StreamCreateURL("live", 0, kDecode, nullptr, nullptr)},
            {"record", BASS_RecordStart(48000, 2, 0, nullptr, nullptr)},
            {"jingle", studio->jingle(file("wide"))},
            {"live", tempo(BASS_StreamCreateURL("live", 0, kDecode, nullptr, nullptr))},
            {"mixer", BASS_Mixer_StreamCreate(32000, 2, kDecode)},
            {"split", studio->mainSplit[0]},
            {"output", studio->outSplit[0]}};
        EXPECT_EQ(decoders->timeoutMs, 1234U);
        pull(4410);
    }
    std::optional<Topology> studio;
    std::vector<std::pair<const char*, DWORD>> channels;
};

TEST_F(Answers, OfEveryKindOfChannel) {
    std::ostringstream all;
    const auto state = [](DWORD h) { return std::to_string(BASS_ChannelIsActive(h)); };
    /// Every channel is asked the same in a fresh studio; those that answer alike share a line. ">1": the state that
    /// it left.
    const auto ask = [&](const char* what, const auto&... operations) {
        everythingAnew();
        std::vector<std::pair<std::string, std::string>> alike;
        for (const auto& [name, h] : channels) {
            std::string answers;
            const auto answer = [&, h = h](const auto& operation) {
                const std::string before = state(h), said = operation(h), after = state(h);
                answers += ' ' + said + (after == before ? "" : ">" + after);
            };
            (..., answer(operations));
            auto at = std::ranges::find(alike, answers, &std::pair<std::string, std::string>::first);
            if (at == alike.end()) at = alike.insert(at, {answers, ""});
            at->second += std::string(" ") + name;
        }
        all << what << ':';
        for (const auto& [answers, names] : alike) all << "   " << answers << " :" << names << '\n';
    };
    const auto sets = [](DWORD which, float to) { return asks(BASS_ChannelSetAttribute, which, to); };
    const auto moves = [](QWORD to, DWORD mode) { return asks(BASS_ChannelSetPosition, to, mode); };
    const auto is = [](DWORD which) { return [=](DWORD h) { return attribute(h, which); }; };
    const auto slides = [](DWORD which, float to) {
        return [=](DWORD h) {
            const std::string answer = said(BASS_ChannelSlideAttribute(h, which, to, 50));
            return answer + with(BASS_ChannelIsSliding(h, which & ~BASS_SLIDE_LOG) ? "~" : "");
        };
    };
    const auto at = [](DWORD mode) { return asks(BASS_ChannelGetPosition, mode); };
    const auto effect = [](DWORD h) { return BASS_ChannelSetFX(h, BASS_FX_BFX_PEAKEQ, 5); };
    float place[24];
    const int map[] = {0, -1};
    constexpr DWORD vol = BASS_ATTRIB_VOL, dsp = BASS_ATTRIB_VOLDSP, buffer = BASS_ATTRIB_BUFFER,
                    tail = BASS_ATTRIB_TAIL, priority = BASS_ATTRIB_VOLDSP_PRIORITY,
                    tempo = BASS_ATTRIB_TEMPO, pitch = BASS_ATTRIB_TEMPO_PITCH, freq = BASS_ATTRIB_TEMPO_FREQ;
    constexpr QWORD beyond = QWORD{1} << 40;
    ask("made of", info, asks(BASS_ChannelGetInfo, nullptr));
    ask("state, length, to the loop", asks(BASS_ChannelIsActive), asks(BASS_ChannelGetLength, BASS_POS_BYTE),
        asks(BASS_ChannelGetLength, BASS_POS_LOOP));
    ask("position, loop, end, mode 7", at(BASS_POS_BYTE), at(BASS_POS_LOOP), at(BASS_POS_END), at(7));
    ask("loop, end, position near 8000, 16000, 12000", moves(8003, BASS_POS_LOOP), moves(16007, BASS_POS_END),
        moves(12001, BASS_POS_BYTE), at(BASS_POS_LOOP), at(BASS_POS_END), at(BASS_POS_BYTE));
    ask("end beyond, loop to none, mode 7, end away", moves(beyond, BASS_POS_END),
        moves(BASS_NO_POSITION, BASS_POS_LOOP), moves(0, 7), moves(BASS_NO_POSITION, BASS_POS_END),
        at(BASS_POS_END));
    ask(
        "to its length, beyond",
        [](DWORD h) { return said(BASS_ChannelSetPosition(h, BASS_ChannelGetLength(h, 0), 0)); },
        moves(beyond, BASS_POS_BYTE), at(BASS_POS_BYTE), asks(BASS_ChannelPlay, true), at(BASS_POS_BYTE));
    ask("seconds of 96000, bytes of 0.25, of nan, of 1.1e9", asks(BASS_ChannelBytes2Seconds, 96000),
        asks(BASS_ChannelSeconds2Bytes, 0.25), asks(BASS_ChannelSeconds2Bytes, kNan),
        asks(BASS_ChannelSeconds2Bytes, 1.1e9));
    ask("flags, loop on, off", asks(BASS_ChannelFlags, 0, 0),
        asks(BASS_ChannelFlags, ~DWORD{0}, BASS_SAMPLE_LOOP), asks(BASS_ChannelFlags, 0, ~DWORD{0}));
    ask("tags, others", asks(BASS_ChannelGetTags, BASS_TAG_META), asks(BASS_ChannelGetTags, 1));
    ask("play, pause, pause, play anew, stop, start, update", asks(BASS_ChannelPlay, false),
        asks(BASS_ChannelPause), asks(BASS_ChannelPause), asks(BASS_ChannelPlay, true),
        asks(BASS_ChannelStop), asks(BASS_ChannelStart), asks(BASS_ChannelUpdate, 0));
    ask("pause, stop, pause", asks(BASS_ChannelPause), asks(BASS_ChannelStop), asks(BASS_ChannelPause));
    ask("all attributes", is(vol), is(dsp), is(buffer), is(tail), is(priority), is(tempo), is(pitch),
        is(freq));
    ask("as they are set", sets(vol, 0.5F), is(vol), sets(dsp, 0.25F), is(dsp), sets(buffer, 5), is(buffer),
        sets(tail, 3600), is(tail), sets(priority, -7), is(priority), sets(tempo, 3), is(tempo),
        sets(pitch, 4), is(pitch), sets(freq, 24000), is(freq));
    ask("VOL 1000, 1001, -1, nan, log; VOLDSP -1, 1001", sets(vol, 1000), sets(vol, 1001), sets(vol, -1),
        sets(vol, kNan), sets(vol | BASS_SLIDE_LOG, 1), sets(dsp, -1), sets(dsp, 1001));
    ask("BUFFER 5.1, -1; TAIL 3601, -1; PRIORITY 2e6; FREQ -1; 99", sets(buffer, 5.1F), sets(buffer, -1),
        sets(tail, 3601), sets(tail, -1), sets(priority, 2e6F), sets(freq, -1), sets(99, 1), is(99),
        asks(BASS_ChannelGetAttribute, vol, nullptr));
    ask("slides of VOL, log, 1e30, VOLDSP, TEMPO, PITCH, BUFFER, VOL at once to the stop", slides(vol, 0.2F),
        slides(vol | BASS_SLIDE_LOG, 0.2F), slides(vol, 1e30F), slides(dsp, 0.2F), slides(tempo, 20),
        slides(pitch, 2), slides(buffer, 1), asks(BASS_ChannelSlideAttribute, vol, -1, 0));
    ask("level, of 0 s, of 1.1 s, nowhere, in the mixer", asks(BASS_ChannelGetLevelEx, place, 1, 0),
        asks(BASS_ChannelGetLevelEx, place, 0, 0), asks(BASS_ChannelGetLevelEx, place, 1.1F, 0),
        asks(BASS_ChannelGetLevelEx, nullptr, 1, 0), asks(BASS_Mixer_ChannelGetLevelEx, place, 0.1F, 0));
    ask("data, nowhere", asks(BASS_ChannelGetData, place, sizeof place - 1),
        asks(BASS_ChannelGetData, nullptr, 4));
    ask("sync, of kind 2, of nothing, none away",
        makes(BASS_ChannelSetSync, BASS_SYNC_POS, 9, ignore, nullptr),
        makes(BASS_ChannelSetSync, 2, 9, ignore, nullptr), makes(BASS_ChannelSetSync, 0, 9, nullptr, nullptr),
        asks(BASS_ChannelRemoveSync, 5));
    ask("fade at a sync", [](DWORD h) {
        const HSYNC sync = BASS_ChannelSetSync(h, BASS_SYNC_POS | BASS_SYNC_ONETIME, 9, ignore, nullptr);
        return std::string(engineControl()->slideAtSync(h, sync, -1, 5, false) ? "+" : "-");
    });
    ask(
        "effect, of kind 99, away, from another channel, reset",
        makes(BASS_ChannelSetFX, BASS_FX_DX8_REVERB, 5), makes(BASS_ChannelSetFX, 99, 0),
        [&](DWORD h) { return said(BASS_ChannelRemoveFX(h, effect(h))); },
        [&](DWORD h) { return said(BASS_ChannelRemoveFX(studio->mainMixer, effect(h))); },
        asks(BASS_FXReset));
    const auto more = makes(BASS_ChannelSetFX, BASS_FX_DX8_REVERB, 5);
    ask(
        "32 effects, 33",
        [&](DWORD h) {
            for (int i = 0; i < 31; ++i) effect(h);
            return more(h);
        },
        more);
    ask("tempo over it", makes(BASS_FX_TempoCreate, kDecode));
    ask("split of it, by a map", makes(BASS_Split_StreamCreate, kDecode, nullptr),
        makes(BASS_Split_StreamCreate, kDecode, map));
    ask(
        "into a mixer, out, out again",
        [&](DWORD h) { return said(BASS_Mixer_StreamAddChannel(studio->micMixer, h, 0)); },
        asks(BASS_Mixer_ChannelRemove), asks(BASS_Mixer_ChannelRemove));
    ask(
        "mixes another mixer, its own split",
        [&](DWORD h) { return said(BASS_Mixer_StreamAddChannel(h, studio->micMixer, 0)); },
        [](DWORD h) {
            const DWORD split = BASS_Split_StreamCreate(h, kDecode, nullptr);
            return said(BASS_Mixer_StreamAddChannel(h, split, 0));
        });
    ask("freed as a module, as a stream", asks(BASS_MusicFree), asks(BASS_StreamFree));
    zv::test::expectApproved("engine/answers.txt", all.str());
}

/// The answers to calls in their order, a line for each few.
struct Story {
    template <typename... Calls>
    void tell(const char* what, Calls... calls) {
        all << what << ':';
        (..., (all << ' ' << calls()));
        all << '\n';
    }
    std::ostringstream all;
};

TEST_F(Answers, InTheOrderOfAShow) {
    const auto init = [](int device, DWORD rate = 44100) {
        return does(BASS_Init, device, rate, 0, nullptr, nullptr);
    };
    const auto select = [](DWORD device) { return does(BASS_SetDevice, device); };
    const auto selected = does(BASS_GetDevice);
    const auto free = does(BASS_Free);
    const auto name = [](DWORD device) { return [=] { return described<BASS_GetDeviceInfo>(device); }; };
    const auto inputName = [](DWORD device) {
        return [=] { return described<BASS_RecordGetDeviceInfo>(device); };
    };
    const auto use = [](int device) { return does(BASS_RecordInit, device); };
    const auto choose = [](DWORD device) { return does(BASS_RecordSetDevice, device); };
    const auto letGo = does(BASS_RecordFree);
    DWORD playing = 0, recording = 0;
    const auto play = [&] { return made(playing = file("ramp", 0)); };
    const auto record = [&](DWORD rate, DWORD count = 2) {
        return
            [=, &recording] { return made(recording = BASS_RecordStart(rate, count, 0, nullptr, nullptr)); };
    };
    const auto state = [](DWORD& channel) { return [&] { return said(BASS_ChannelIsActive(channel)); }; };
    Story story;
    engineControl()->install({});
    story.tell("without a system", init(1), use(0), play);
    begin({.inputs = {"Desk", "Phone"}});
    const auto unplug = [&](const std::string& device) {
        return [=, this] { return devices->unplug(device), "unplugged,"; };
    };
    story.tell("outputs", name(0), name(1), name(2), name(3), does(BASS_GetDeviceInfo, 1, nullptr));
    story.tell("none open", selected, free, play, select(1));
    story.tell("none such, no such rate", init(3), init(-2), select(3), select(32), init(1, 999),
               init(1, 768'001));
    story.tell("the default, again, again as the default", init(-1), init(1), init(-1), selected, name(1));
    story.tell("the second, the first selected again", select(2), init(2), selected, select(1), selected);
    story.tell(
        "played on it", play, [&] { return said(BASS_ChannelPlay(playing, false)); }, state(playing));
    story.tell("the first", unplug(kMainName), name(1), name(2), state(playing));
    devices->plug(kMainName);
    story.tell("back, closed, closed again", name(1), state(playing), free, state(playing), selected, free,
               select(1));
    story.tell("on the one that is open", play, state(playing));
    story.tell("another thread selects for itself", [&] { return std::async(selected).get(); });
    story.tell("the first, not open", unplug(kMainName), init(1), init(-1));
    story.tell("the last one closed", select(2), free, state(playing), name(2));
    story.tell("at the list's end", unplug(kAuxName), name(2), name(1));
    story.tell("no sound by its number", init(0), name(0), init(0));
    story.tell("inputs", inputName(0), inputName(1), inputName(2),
               does(BASS_RecordGetDeviceInfo, 0, nullptr));
    story.tell("none in use, none such", inputRate, record(48000), letGo, choose(1), choose(2), use(-2),
               use(2));
    story.tell("the second, again, the default", use(1), inputName(1), use(1), use(-1), inputName(0),
               inputRate);
    story.tell("no place for the rate", does(BASS_RecordGetInfo, nullptr));
    story.tell("not to be had", opens(BASS_RecordStart, 48000, 2, 0, &recordingOf, nullptr), record(48000, 1),
               record(999), record(768'001));
    for (int i = 0; i < 7; ++i) record(8000)();
    story.tell(
        "eight, nine, one less, eight", record(8000), [&] { return said(BASS_StreamFree(recording)); },
        record(48000), record(8000));
    story.tell("of the other", choose(1), record(8000));
    story.tell("the default let go", choose(~DWORD{0}), letGo, letGo, state(recording));
    story.tell("the other too", choose(1), letGo, state(recording), letGo);
    story.tell("the default", unplug("Desk"), inputName(0), use(0), use(-1), inputRate);
    begin({.outputs = {}});
    story.tell("no outputs", init(-1), init(1), name(1), inputName(1), use(0), init(0));
    // Into the no-sound device everything plays as ever.
    playing = BASS_FX_TempoCreate(file("ramp"), 0);
    BASS_ChannelPlay(playing, false);
    pull(44100);
    story.tell("played into no sound", [&] { return said(BASS_ChannelGetPosition(playing, BASS_POS_BYTE)); });
    zv::test::expectApproved("engine/answers_devices.txt", story.all.str());
}

TEST_F(Answers, OfSourcesOptionsAndEffects) {
    everythingAnew();
    const auto format = [&](std::uint32_t rate, std::uint32_t count) {
        return [=, this] {
            decoders->sounds["odd"] = {.format = {rate, count, 16}, .length = 100, .sample = ramp};
            return made(file("odd"));
        };
    };
    const auto opened = [](const char* name) { return [=] { return made(file(name)); }; };
    const auto created = [](bool memory, const char* path, QWORD offset, QWORD length) {
        return [=] {
            return made(BASS_StreamCreateFile(memory, path, offset, length, kDecode)) + "/" +
                   made(BASS_MusicLoad(memory, path, offset, static_cast<DWORD>(length), kDecode, 0));
        };
    };
    const auto streamed = [](const char* url, DWORD offset, void* procedure) {
        return opens(BASS_StreamCreateURL, url, offset, kDecode, procedure, nullptr);
    };
    const auto option = [](DWORD which, DWORD value) {
        return [=] {
            const std::string answer = said(BASS_SetConfig(which, value));
            return answer + "/" + said(BASS_GetConfig(which));
        };
    };
    const auto mixer = [](DWORD rate, DWORD count) {
        return opens(BASS_Mixer_StreamCreate, rate, count, kDecode);
    };
    const DWORD jingle = channels[8].second;
    const auto effect = [&](DWORD kind) { return BASS_ChannelSetFX(jingle, kind, 1); };
    const HFX eq = effect(BASS_FX_BFX_PEAKEQ), reverb = effect(BASS_FX_DX8_REVERB),
              volume = effect(BASS_FX_BFX_VOLUME);
    // The answer, and the record as it is then.
    const auto set = [](HFX fx, const auto& record) {
        return [=] {
            auto r = record;
            const std::string answer = said(BASS_FXSetParameters(fx, &r));
            return answer + (BASS_FXGetParameters(fx, &r) ? fields(r) : "/-");
        };
    };
    const auto band = [&](int at, float width, float q, float centre, float gain) {
        return set(eq, BASS_BFX_PEAKEQ{at, width, q, centre, gain, BASS_BFX_CHANALL});
    };
    const auto bandIs = [&](int at) {
        return [=] {
            BASS_BFX_PEAKEQ p{at, 0, 0, 0, 0, 0};
            return BASS_FXGetParameters(eq, &p) ? fields(p) : with("-");
        };
    };
    const auto room = [&](float in, float mix, float ms, float high) {
        return set(reverb, BASS_DX8_REVERB{in, mix, ms, high});
    };
    const auto gain = [&](float value) { return set(volume, BASS_BFX_VOLUME{BASS_BFX_CHANALL, value}); };
    Story story;
    story.tell("away, no reason, no memory, trouble", opened("away"), opened("no reason"),
               opened("no memory"), opened("trouble"));
    story.tell("no path, in memory, from within, a part", created(false, nullptr, 0, 0),
               created(true, "ramp", 0, 0), created(false, "ramp", 1, 0), created(false, "ramp", 0, 1));
    story.tell("a stream: no address, a procedure, from within", streamed(nullptr, 0, nullptr),
               streamed("live", 0, &recordingOf), streamed("live", 1, nullptr));
    story.tell("formats", format(0, 2), format(768'000, 2), format(768'001, 2), format(44100, 0),
               format(44100, 32), format(44100, 33));
    story.tell("mixers", mixer(44100, 1), mixer(99, 2), mixer(100, 2), mixer(768'000, 2), mixer(768'001, 2));
    story.tell("buffer", option(BASS_CONFIG_BUFFER, 600'000), option(BASS_CONFIG_BUFFER, 600'001));
    story.tell("gain of all", option(BASS_CONFIG_GVOL_STREAM, 10'000),
               option(BASS_CONFIG_GVOL_STREAM, 10'001));
    story.tell("others", option(BASS_CONFIG_NET_TIMEOUT, 7), option(BASS_CONFIG_DEV_NONSTOP, 1),
               option(99, 1));
    story.tell("third band, those beside it", band(2, 0.5F, 0.25F, 700, -3), bandIs(2), bandIs(1), bandIs(3));
    story.tell("the first and last, those beyond", band(63, 1, 0, 100, 1), band(64, 1, 0, 100, 1),
               band(-1, 1, 0, 100, 1), bandIs(-1));
    story.tell("no numbers", band(2, kNan, 0, 700, -3), band(2, 1, kNan, 700, -3), band(2, 1, 0, kNan, -3),
               band(2, 1, 0, 700, kNan), bandIs(2));
    story.tell("a room", room(-1, -2, 300, 0.5F), room(kNan, -2, 300, 0.5F), room(-1, kNan, 300, 0.5F),
               room(-1, -2, kNan, 0.5F), room(-1, -2, 300, kNan));
    story.tell("a volume", gain(1000), gain(1001), gain(-0.1F));
    const auto without = [&](HFX fx) { return [=] { return said(BASS_ChannelRemoveFX(jingle, fx)); }; };
    story.tell("no record", does(BASS_FXSetParameters, eq, nullptr), does(BASS_FXGetParameters, eq, nullptr));
    story.tell("taken out, twice, set", does(BASS_FXReset, volume), without(volume), without(volume),
               does(BASS_FXReset, volume), gain(1));
    story.tell("freed with its channel", does(BASS_FXReset, eq), does(BASS_StreamFree, jingle),
               does(BASS_FXReset, eq));
    zv::test::expectApproved("engine/answers_sources.txt", story.all.str());
}

}  // namespace
}  // namespace zv::engine::test
