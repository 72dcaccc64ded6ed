#include "tests/engine/random_operations.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <thread>

#include "tests/engine/made_sounds.h"

namespace zv::engine::test {

/// What a sync procedure does; read on the dispatcher's thread.
struct SyncAct {
    unsigned what = 0;
    std::atomic<HSYNC> sync = 0;
};

namespace {

constexpr std::uint64_t kMostFrames = 40'000;  // rendered by one input
constexpr std::uint32_t kSmallPeriod = 64, kLargePeriod = 256;
const std::string kOutputs[] = {"Main output", "Auxiliary output"}, kMicrophone = "Microphone";

void require(bool holds, const char* what, long detail = 0) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s (%ld)\n", what, detail);
    std::abort();
}

constexpr const char* kFiles[] = {"stereo", "mono", "six", "frame", "high", "long", "many", "low", "wild"};
constexpr SoundFormat kFormats[] = {{44'100, 2, 16},  {8'000, 1, 8},    {48'000, 6, 24},
                                    {44'100, 2, 16},  {192'000, 2, 24}, {44'100, 2, 16},
                                    {22'050, 17, 16}, {1'000, 1, 16},   {44'100, 2, 32}};
constexpr std::uint64_t kLengths[] = {20'000, 6'000, 9'001, 1, 40'000, 44'100 * 30, 4'097, 300, 5'000};

/// Noise; of the wild one some samples are no sound at all; of the web one every fourth read has nothing.
std::shared_ptr<MadeSource> sounds() {
    const auto noise = [](std::uint32_t channels, bool wild) {
        return [channels, wild](std::uint64_t frame, std::uint32_t channel) {
            const std::uint32_t hash = static_cast<std::uint32_t>(frame * channels + channel) * 2654435761U;
            if (wild && hash % 97 == 5) return hash % 2 ? std::numeric_limits<float>::quiet_NaN() : 3e38F;
            return static_cast<float>(static_cast<std::int32_t>(hash)) * 0x1p-32F;
        };
    };
    auto source = std::make_shared<MadeSource>();
    for (std::size_t i = 0; i < std::size(kFiles); ++i)
        source->sounds[kFiles[i]] = {kFormats[i], kLengths[i],
                                     noise(kFormats[i].channels, i + 1 == std::size(kFiles))};
    source->sounds["web"] = {{32'000, 2, 16}, ~0ULL, noise(2, false), true, 4};
    return source;
}

constexpr DWORD kAttributes[] = {BASS_ATTRIB_VOL,        BASS_ATTRIB_VOL | BASS_SLIDE_LOG,
                                 BASS_ATTRIB_VOLDSP,     BASS_ATTRIB_VOLDSP | BASS_SLIDE_LOG,
                                 BASS_ATTRIB_BUFFER,     BASS_ATTRIB_TAIL,
                                 BASS_ATTRIB_TEMPO,      BASS_ATTRIB_TEMPO_PITCH,
                                 BASS_ATTRIB_TEMPO_FREQ, BASS_ATTRIB_VOLDSP_PRIORITY};
constexpr DWORD kModes[] = {BASS_POS_BYTE, BASS_POS_BYTE, BASS_POS_LOOP, BASS_POS_END};
constexpr DWORD kDecode = BASS_STREAM_DECODE;
constexpr DWORD kFlags[] = {kDecode,
                            kDecode,
                            kDecode | BASS_SAMPLE_FLOAT,
                            kDecode | BASS_SAMPLE_LOOP,
                            0,
                            BASS_STREAM_AUTOFREE,
                            BASS_SAMPLE_FLOAT,
                            kDecode | BASS_FX_FREESOURCE,
                            kDecode | BASS_MIXER_NONSTOP};
constexpr DWORD kRates[] = {44'100, 44'100, 48'000, 8'000, 192'000, 1'000, 100, 768'000};
constexpr DWORD kKinds[] = {BASS_FX_BFX_PEAKEQ, BASS_FX_DX8_REVERB, BASS_FX_BFX_VOLUME};
constexpr DWORD kLevels[] = {0, BASS_LEVEL_STEREO, BASS_LEVEL_RMS, BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN,
                             BASS_LEVEL_STEREO | BASS_LEVEL_RMS | BASS_LEVEL_VOLPAN};
constexpr DWORD kOptions[] = {BASS_CONFIG_BUFFER, BASS_CONFIG_GVOL_STREAM, BASS_CONFIG_NET_TIMEOUT,
                              BASS_CONFIG_DEV_NONSTOP};

/// A flag is true, and all else a success, just when the code is 0.
void checkCode(bool success, const char* what) {
    const int code = BASS_ErrorGetCode();
    require(code >= BASS_OK && code <= BASS_ERROR_BUSY && success == (code == BASS_OK), what, code);
}

void onSync(HSYNC sync, DWORD channel, DWORD, void* user) {
    const auto& act = *static_cast<const SyncAct*>(user);
    const HSYNC own = act.sync;
    require(own == 0 || sync == own, "a sync's own handle");
    if (act.what == 1) BASS_ChannelSlideAttribute(channel, BASS_ATTRIB_VOL, -1, 3);
    if (act.what == 2) BASS_ChannelStop(channel);
    if (act.what == 3) BASS_ChannelSetPosition(channel, 400, BASS_POS_BYTE);
    if (act.what == 4) BASS_StreamFree(channel);
    if (act.what == 5) BASS_ChannelRemoveSync(channel, sync);
}

}  // namespace

// ---- arguments out of the input

unsigned RandomOperations::byte() {
    if (input_.empty()) return 0;
    const unsigned first = input_.front();
    input_ = input_.subspan(1);
    return first;
}

float RandomOperations::number() {
    using Limits = std::numeric_limits<float>;
    constexpr float huge = Limits::infinity();
    constexpr float nasty[] = {0,     1,      -1,     0.5F,          -96,  10,    100,
                               1e30F, -1e30F, 1e-40F, Limits::max(), huge, -huge, Limits::quiet_NaN()};
    const unsigned which = byte();
    if (which < std::size(nasty)) return nasty[which];
    const auto value = static_cast<float>(static_cast<std::int16_t>(word()));
    return which < 120 ? value / 32768 : which < 190 ? value / 256 : value;
}

/// A band's or a room's number: mostly within what it is meant for.
float RandomOperations::between(float low, float high) {
    const unsigned part = byte();
    return part < 16 ? number() : low + (high - low) * static_cast<float>(part - 16) / 239;
}

QWORD RandomOperations::position() {
    constexpr QWORD nasty[] = {0, 1, 3, 4, 8, 79'996, 80'000, 80'001, 264'600 * 4, ~QWORD{0}, QWORD{1} << 63};
    const unsigned which = byte();
    return which < std::size(nasty) ? nasty[which] : QWORD{word()} * (which < 200 ? 4 : 1);
}

DWORD RandomOperations::milliseconds() {
    const unsigned which = byte();
    return which == 255 ? ~DWORD{0} : which > 240 ? which * 1000 : which;
}

DWORD RandomOperations::of(std::span<const DWORD> list) {
    const unsigned which = byte();
    return which == 255 ? word() << 8 : list[which % list.size()];
}

DWORD RandomOperations::any() {
    const unsigned which = byte();
    return which == 255 || handles_.empty() ? which : handles_[which % handles_.size()];
}

// ---- one performance

RandomOperations::RandomOperations(Bytes input, std::uint32_t period, bool compared)
    : input_(input), compared_(compared), devices_(makeOfflineDevices({.period = period})) {
    engineControl()->install({sounds(), devices_});
    BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 10'000);
    BASS_Init(1, 44'100, 0, nullptr, nullptr);
}

RandomOperations::RandomOperations(Bytes input, const std::vector<DWORD>& studio)
    : input_(input), handles_(studio) {}

RandomOperations::~RandomOperations() { engineControl()->install({}); }

std::vector<float> RandomOperations::run(int most) {
    for (int i = 0; i < most && !input_.empty(); ++i) operation(byte());
    pull(512);
    return std::move(heard_);
}

DWORD RandomOperations::created(DWORD handle, const char* what) {
    checkCode(handle != 0, what);
    const auto known = [handle](const std::vector<DWORD>& handles) {
        return std::ranges::find(handles, handle) != handles.end();
    };
    require(handle == 0 || (!known(handles_) && !known(effects_)), "a handle of its own");
    return handle;
}

void RandomOperations::adopt(DWORD handle, const char* what) {
    if (created(handle, what) != 0) handles_.push_back(handle);
}

void RandomOperations::pull(std::uint64_t frames) {
    if (!devices_) return std::this_thread::yield();
    if (compared_) frames = (frames + kLargePeriod - 1) / kLargePeriod * kLargePeriod;
    frames = std::min(frames, kMostFrames - std::min(kMostFrames, rendered_));
    rendered_ += frames;
    devices_->pull(frames, 44'100);
    for (const std::string& output : kOutputs) {
        const auto sound = devices_->takeSound(output);
        for (const float sample : sound) require(std::isfinite(sample), "finite sound");
        heard_.insert(heard_.end(), sound.begin(), sound.end());
    }
}

void RandomOperations::create(unsigned what) {
    const DWORD flags = of(kFlags);
    if (what <= 1) {
        const unsigned which = byte();
        const char* name = which == 255 ? "missing" : kFiles[which % std::size(kFiles)];
        adopt(BASS_StreamCreateFile(false, name, 0, 0, flags), "StreamCreateFile");
    } else if (what == 2) {
        adopt(BASS_FX_TempoCreate(any(), flags), "TempoCreate");
    } else if (what == 3) {
        const DWORD rate = of(kRates);
        adopt(BASS_Mixer_StreamCreate(rate, 2 + (byte() == 1), flags | BASS_MIXER_NONSTOP),
              "Mixer_StreamCreate");
    } else if (what == 4) {
        adopt(BASS_Split_StreamCreate(any(), flags, nullptr), "Split_StreamCreate");
    } else if (what == 5) {  // when a stream is dry depends on who asks how often
        if (!compared_) adopt(BASS_StreamCreateURL("web", 0, flags, nullptr, nullptr), "StreamCreateURL");
    } else if (what == 6) {  // the sound waits for periods
        if (!compared_) adopt(BASS_RecordStart(of(kRates), 2, 0, nullptr, nullptr), "RecordStart");
    } else {
        adopt(BASS_MusicLoad(false, "stereo", 0, 0, flags, 0), "MusicLoad");
    }
}

void RandomOperations::device(unsigned what) {
    if (compared_ && what > 3) return;
    const std::string& output = kOutputs[byte() % 2];
    if (what == 0) {
        const int which = static_cast<int>(byte() % 5) - 1;
        checkCode(BASS_Init(which, of(kRates), 0, nullptr, nullptr), "Init");
    } else if (what == 1) {
        checkCode(BASS_SetDevice(byte() % 4), "SetDevice");
    } else if (what == 2) {
        checkCode(BASS_Free(), "Free");
    } else if (what == 3) {
        BASS_DEVICEINFO info{};
        const bool there = BASS_GetDeviceInfo(byte() % 4, &info);
        checkCode(there, "GetDeviceInfo");
        require(!there || (info.name && info.driver), "GetDeviceInfo");
    } else if (what == 8) {
        checkCode(BASS_RecordInit(static_cast<int>(byte() % 4) - 1), "RecordInit");
    } else if (what == 9) {
        checkCode(BASS_RecordFree(), "RecordFree");
    } else if (what == 10) {
        checkCode(BASS_RecordSetDevice(byte() == 0 ? ~DWORD{0} : byte() % 3), "RecordSetDevice");
    } else if (!devices_) {
        return;  // its threads tell of losses by themselves
    } else if (what == 4) {
        devices_->unplug(flag() ? output : kMicrophone);
    } else if (what == 5) {
        devices_->plug(flag() ? output : kMicrophone);
    } else if (what == 6) {
        devices_->setClockError(output, static_cast<double>(word()) - 32'768);
    } else if (what == 7) {
        devices_->setPeriod(1 + word() % 2'000);
    } else {
        const std::vector<float> sound(word() % 4096 * 2, 0.25F);
        devices_->feedInput(kMicrophone, sound, of(kRates));
    }
}

void RandomOperations::setEffect() {
    const HFX effect = anyEffect();
    union {
        BASS_BFX_PEAKEQ eq;
        BASS_DX8_REVERB reverb;
        BASS_BFX_VOLUME volume;
    } p{};
    const unsigned kind = byte() % 3;  // mostly not the effect's own
    if (kind == 0)
        p.eq = {static_cast<int>(byte() % 70) - 1,
                between(0.1F, 5),
                flag() ? 0 : between(0, 10),
                between(20, 24'000),
                between(-15, 15),
                flag() ? BASS_BFX_CHANALL : 0};
    else if (kind == 1)
        p.reverb = {between(-96, 0), between(-96, 0), between(1, 3000), between(0.001F, 0.999F)};
    else
        p.volume = {BASS_BFX_CHANALL, between(0, 2)};
    checkCode(BASS_FXSetParameters(effect, &p), "FXSetParameters");
    p.eq = {};
    checkCode(BASS_FXGetParameters(effect, &p), "FXGetParameters");
}

void RandomOperations::data() {
    const DWORD channel = any();
    BASS_CHANNELINFO info{};
    const bool known = BASS_ChannelGetInfo(channel, &info);
    checkCode(known, "ChannelGetInfo");
    std::vector<float> buffer(16'384);
    const DWORD wanted = byte() == 7 ? ~DWORD{0} >> 20 : word();
    const DWORD got = BASS_ChannelGetData(channel, buffer.data(), wanted);
    checkCode(got != ~DWORD{0}, "ChannelGetData");
    if (got == ~DWORD{0}) return;
    const bool floats = info.flags & BASS_SAMPLE_FLOAT;
    require(known && got <= wanted && got % (info.chans * (floats ? 4 : 2)) == 0, "whole frames", got);
    if (floats)
        for (DWORD i = 0; i < got / 4; ++i) require(std::isfinite(buffer[i]), "finite data");
}

void RandomOperations::look(unsigned what) {
    const DWORD channel = any();
    if (what == 0) {
        float out[2] = {0, 0};
        const DWORD flags = of(kLevels);
        const float seconds = between(0, 1);
        const bool given = flag() ? BASS_ChannelGetLevelEx(channel, out, seconds, flags)
                                  : BASS_Mixer_ChannelGetLevelEx(channel, out, seconds, flags);
        checkCode(given, "GetLevelEx");
        for (const float level : out) require(!given || (std::isfinite(level) && level >= 0), "a level");
    } else if (what == 1) {
        checkCode(BASS_ChannelGetPosition(channel, of(kModes)) != BASS_NO_POSITION, "GetPosition");
    } else if (what == 2) {
        const QWORD length = BASS_ChannelGetLength(channel, BASS_POS_BYTE);
        checkCode(length != BASS_NO_POSITION, "GetLength");
        const QWORD at = BASS_ChannelGetPosition(channel, BASS_POS_BYTE);
        require(length == BASS_NO_POSITION || at <= length, "a position within the length",
                static_cast<long>(at - length));
    } else if (what == 3) {
        require(BASS_ChannelIsActive(channel) <= BASS_ACTIVE_PAUSED, "a state");
    } else if (what == 4) {
        float value = std::numeric_limits<float>::quiet_NaN();
        const bool given = BASS_ChannelGetAttribute(channel, of(kAttributes), &value);
        checkCode(given, "GetAttribute");
        require(!given || std::isfinite(value), "an attribute");
    } else if (what == 5) {
        const double seconds = BASS_ChannelBytes2Seconds(channel, position());
        require(seconds == -1 || (std::isfinite(seconds) && seconds >= 0), "seconds");
        BASS_ChannelSeconds2Bytes(channel, static_cast<double>(number()));
    } else if (what == 6) {
        BASS_ChannelIsSliding(channel, of(kAttributes));
    } else {
        checkCode(BASS_ChannelUpdate(channel, byte()), "ChannelUpdate");
    }
}

void RandomOperations::setSync(DWORD channel) {
    acts_.push_back(std::make_unique<SyncAct>());
    SyncAct& act = *acts_.back();
    act.what = compared_ ? 0 : byte() % 6;
    const DWORD type = flag() ? BASS_SYNC_POS | BASS_SYNC_ONETIME : BASS_SYNC_POS;
    const HSYNC sync = BASS_ChannelSetSync(channel, type, position(), &onSync, &act);
    checkCode(sync != 0, "SetSync");
    act.sync = sync;
    if (sync != 0) syncs_.emplace_back(channel, sync);
}

void RandomOperations::change(unsigned what, DWORD channel) {
    const unsigned kind = (what - 100) / 8;
    if (kind == 0) {
        checkCode(BASS_Mixer_StreamAddChannel(channel, any(), 0), "StreamAddChannel");
    } else if (kind == 1) {
        checkCode(BASS_ChannelPlay(channel, flag()), "Play");
    } else if (kind == 2) {
        checkCode(what % 2 ? BASS_ChannelStop(channel) : BASS_ChannelPause(channel), "Stop");
    } else if (kind == 3) {
        const QWORD to = position();
        checkCode(BASS_ChannelSetPosition(channel, to, of(kModes)), "SetPosition");
    } else if (kind == 4) {
        const DWORD flags = flag() ? BASS_SAMPLE_LOOP : 0;
        BASS_ChannelFlags(channel, flags, flag() ? BASS_SAMPLE_LOOP : ~DWORD{0});
    } else if (kind <= 6) {
        const DWORD attribute = of(kAttributes);
        checkCode(BASS_ChannelSetAttribute(channel, attribute, number()), "SetAttribute");
    } else if (kind <= 8) {
        const DWORD attribute = of(kAttributes);
        const float value = number();
        checkCode(BASS_ChannelSlideAttribute(channel, attribute, value, milliseconds()), "SlideAttribute");
    } else if (kind == 9) {
        const DWORD effectKind = of(kKinds);
        const int priority = static_cast<std::int8_t>(byte());
        const HFX effect = created(BASS_ChannelSetFX(channel, effectKind, priority), "SetFX");
        if (effect != 0) effects_.push_back(effect);
    } else if (kind <= 11) {
        setEffect();
    } else if (kind == 12) {
        checkCode(BASS_FXReset(flag() ? channel : anyEffect()), "FXReset");
    } else if (kind == 13) {
        checkCode(BASS_ChannelRemoveFX(channel, anyEffect()), "RemoveFX");
    } else if (kind == 14) {
        setSync(channel);
    } else if (kind == 15 && !syncs_.empty()) {
        const bool removed = BASS_ChannelRemoveSync(syncs_.back().first, syncs_.back().second);
        checkCode(removed, "RemoveSync");
        syncs_.pop_back();
    } else if (kind == 16) {
        data();
    } else if (kind == 17) {
        const bool freed = flag() ? BASS_StreamFree(channel) : BASS_MusicFree(channel);
        checkCode(freed, "Free");
        require(!freed || BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED, "nothing plays that is free");
    } else if (kind == 18 && what % 2) {
        checkCode(BASS_Mixer_ChannelRemove(channel), "ChannelRemove");
    } else if (kind == 18) {
        const DWORD option = of(kOptions);
        checkCode(BASS_SetConfig(option, word()), "SetConfig");
    } else if (kind > 18) {
        create(0);
    }
}

/// Often what makes sound, seldom what takes everything away.
void RandomOperations::operation(unsigned what) {
    if (what < 50) return create(what % 8);
    if (what < 60) return look(what % 8);
    if (what < 66) return device(byte() % 12);
    if (what < 100) return pull(1 + word() % 3'000);
    change(what, any());
}

void RandomOperations::performInput(Bytes input) {
    const unsigned first = input.empty() ? 0U : input.front();
    input = input.subspan(input.empty() ? 0 : 1);
    if (first % 2 == 0) {
        RandomOperations(input, 1 + first * 8, false).run();
        return;
    }
    const auto small = RandomOperations(input, kSmallPeriod, true).run();
    const auto large = RandomOperations(input, kLargePeriod, true).run();
    require(small.size() == large.size(), "as much sound for each period",
            static_cast<long>(small.size()) - static_cast<long>(large.size()));
    for (std::size_t i = 0; i < small.size(); ++i)
        require(std::bit_cast<std::uint32_t>(small[i]) == std::bit_cast<std::uint32_t>(large[i]),
                "the same sound for each period", static_cast<long>(i));
}

}  // namespace zv::engine::test
