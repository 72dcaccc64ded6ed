// Any sequence of operations of the engine, with any arguments, on offline devices: nothing crashes, hangs or
// leaks; results, codes and states fit together; what goes out is finite sound of the length that was asked
// for. Half of the inputs are performed twice, with device periods of 64 and of 256 frames, and must give the
// same bits.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "engine/bass.h"
#include "engine/ports.h"
#include "platform/offline/offline_devices.h"
#include "platform/soundtouch/soundtouch_stretcher.h"

namespace {

constexpr int mostOperations = 150;
constexpr std::uint64_t mostFrames = 40'000;  // rendered by one input
constexpr std::uint32_t smallPeriod = 64, largePeriod = 256;
const std::string outputs[] = {"Main output", "Auxiliary output"};
const std::string microphone = "Microphone";

void require(bool holds, const char* what, long detail = 0) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s (%ld)\n", what, detail);
    std::abort();
}

// ---- sounds

struct Sound {
    const char* name;
    zv::engine::SoundFormat format;
    std::uint64_t length;  ///< frames; 0: endless
};
constexpr Sound sounds[] = {
    {"stereo", {44'100, 2, 16}, 20'000}, {"mono", {8'000, 1, 8}, 6'000},
    {"six", {48'000, 6, 24}, 9'001},     {"frame", {44'100, 2, 16}, 1},
    {"high", {192'000, 2, 24}, 40'000},  {"long", {44'100, 2, 16}, 44'100 * 30},
    {"many", {22'050, 17, 16}, 4'097},   {"low", {1'000, 1, 16}, 300},
    {"wild", {44'100, 2, 32}, 5'000},    {"web", {32'000, 2, 16}, 0},
};

constexpr std::size_t files = std::size(sounds) - 1;  ///< the last one is no file

/// Noise from a few operations; of the wild one some samples are no sound at all.
class SoundDecoder final : public zv::engine::Decoder {
  public:
    explicit SoundDecoder(const Sound& sound) : sound_(sound) {}
    zv::engine::SoundFormat format() const override { return sound_.format; }
    std::optional<std::uint64_t> length() const override {
        return sound_.length > 0 ? std::optional(sound_.length) : std::nullopt;
    }
    std::size_t read(std::span<float> out) override {
        const std::size_t channels = sound_.format.channels;
        std::size_t frames = out.size() / channels;
        if (sound_.length > 0) frames = std::min<std::size_t>(frames, sound_.length - at_);
        const bool dry = sound_.length == 0 && ++reads_ % 4 == 0;  // a web stream that has nothing just now
        if (dry) return 0;
        for (std::size_t i = 0; i < frames * channels; ++i) {
            const auto hash = static_cast<std::uint32_t>(at_ * channels + i) * 2654435761U;
            out[i] = static_cast<float>(static_cast<std::int32_t>(hash)) * 0x1p-32F;
            if (&sound_ == &sounds[8] && hash % 97 == 5)
                out[i] = hash % 2 ? std::numeric_limits<float>::quiet_NaN() : 3e38F;
        }
        at_ += frames;
        return frames;
    }
    bool seek(std::uint64_t frame) override {
        at_ = frame;
        return sound_.length > 0;
    }
    bool ended() const override { return sound_.length > 0 && at_ >= sound_.length; }

  private:
    const Sound& sound_;
    std::uint64_t at_ = 0;
    unsigned reads_ = 0;
};

class Sounds final : public zv::engine::DecoderSource {
  public:
    std::unique_ptr<zv::engine::Decoder> openFile(const std::string& path, int& error) override {
        for (const Sound& sound : sounds)
            if (path == sound.name) return std::make_unique<SoundDecoder>(sound);
        error = BASS_ERROR_FILEOPEN;
        return nullptr;
    }
    std::unique_ptr<zv::engine::Decoder> openModule(const std::string& path, int& error) override {
        return openFile(path, error);
    }
    std::unique_ptr<zv::engine::Decoder> openUrl(const std::string& url, std::uint32_t, int& error) override {
        return openFile(url, error);
    }
};

// ---- arguments out of the input

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    bool empty() const { return at_ == end_; }
    unsigned byte() { return empty() ? 0U : *at_++; }
    unsigned word() { return byte() | byte() << 8; }
    bool flag() { return byte() % 2 != 0; }

    float number() {
        constexpr float nasty[] = {0,
                                   1,
                                   -1,
                                   0.5F,
                                   -96,
                                   10,
                                   100,
                                   1e30F,
                                   -1e30F,
                                   1e-40F,
                                   std::numeric_limits<float>::max(),
                                   std::numeric_limits<float>::infinity(),
                                   -std::numeric_limits<float>::infinity(),
                                   std::numeric_limits<float>::quiet_NaN()};
        const unsigned which = byte();
        if (which < std::size(nasty)) return nasty[which];
        const auto value = static_cast<float>(static_cast<std::int16_t>(word()));
        return which < 120 ? value / 32768 : which < 190 ? value / 256 : value;
    }
    /// A band's or a room's number: mostly within what it is meant for.
    float between(float low, float high) {
        const unsigned part = byte();
        return part < 16 ? number() : low + (high - low) * static_cast<float>(part - 16) / 239;
    }
    QWORD position() {
        constexpr QWORD nasty[] = {
            0, 1, 3, 4, 8, 79'996, 80'000, 80'001, 264'600 * 4, ~QWORD{0}, QWORD{1} << 63};
        const unsigned which = byte();
        return which < std::size(nasty) ? nasty[which] : QWORD{word()} * (which < 200 ? 4 : 1);
    }
    DWORD milliseconds() {
        const unsigned which = byte();
        return which == 255 ? ~DWORD{0} : which > 240 ? which * 1000 : which;
    }
    template <std::size_t count>
    DWORD of(const DWORD (&list)[count]) {
        const unsigned which = byte();
        return which == 255 ? word() << 8 : list[which % count];
    }

  private:
    const std::uint8_t *at_, *end_;
};

constexpr DWORD attributes[] = {BASS_ATTRIB_VOL,        BASS_ATTRIB_VOL | BASS_SLIDE_LOG,
                                BASS_ATTRIB_VOLDSP,     BASS_ATTRIB_VOLDSP | BASS_SLIDE_LOG,
                                BASS_ATTRIB_BUFFER,     BASS_ATTRIB_TAIL,
                                BASS_ATTRIB_TEMPO,      BASS_ATTRIB_TEMPO_PITCH,
                                BASS_ATTRIB_TEMPO_FREQ, BASS_ATTRIB_VOLDSP_PRIORITY};
constexpr DWORD modes[] = {BASS_POS_BYTE, BASS_POS_BYTE, BASS_POS_LOOP, BASS_POS_END};
constexpr DWORD channelFlags[] = {BASS_STREAM_DECODE,
                                  BASS_STREAM_DECODE,
                                  BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT,
                                  BASS_STREAM_DECODE | BASS_SAMPLE_LOOP,
                                  0,
                                  BASS_STREAM_AUTOFREE,
                                  BASS_SAMPLE_FLOAT,
                                  BASS_STREAM_DECODE | BASS_FX_FREESOURCE,
                                  BASS_STREAM_DECODE | BASS_MIXER_NONSTOP};
constexpr DWORD rates[] = {44'100, 44'100, 48'000, 8'000, 192'000, 1'000, 100, 768'000};
constexpr DWORD kinds[] = {BASS_FX_BFX_PEAKEQ, BASS_FX_DX8_REVERB, BASS_FX_BFX_VOLUME};
constexpr DWORD levels[] = {0, BASS_LEVEL_STEREO, BASS_LEVEL_RMS, BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN,
                            BASS_LEVEL_STEREO | BASS_LEVEL_RMS | BASS_LEVEL_VOLPAN};
constexpr DWORD options[] = {BASS_CONFIG_BUFFER, BASS_CONFIG_GVOL_STREAM, BASS_CONFIG_NET_TIMEOUT,
                             BASS_CONFIG_DEV_NONSTOP};

// ---- what must hold after each operation

bool knownCode(int code) {
    constexpr int codes[] = {BASS_OK,
                             BASS_ERROR_MEM,
                             BASS_ERROR_FILEOPEN,
                             BASS_ERROR_DRIVER,
                             BASS_ERROR_HANDLE,
                             BASS_ERROR_FORMAT,
                             BASS_ERROR_POSITION,
                             BASS_ERROR_INIT,
                             BASS_ERROR_START,
                             BASS_ERROR_ALREADY,
                             BASS_ERROR_ILLTYPE,
                             BASS_ERROR_ILLPARAM,
                             BASS_ERROR_DEVICE,
                             BASS_ERROR_NOPLAY,
                             BASS_ERROR_FREQ,
                             BASS_ERROR_NOFX,
                             BASS_ERROR_NOTAVAIL,
                             BASS_ERROR_DECODE,
                             BASS_ERROR_ENDED,
                             BASS_ERROR_BUSY};
    return std::ranges::find(codes, code) != std::end(codes);
}

/// A flag is true, and all else a success, just when the code is 0.
void checkCode(bool success, const char* what) {
    const int code = BASS_ErrorGetCode();
    require(knownCode(code), what, code);
    require(success == (code == BASS_OK), what, code);
}

// ---- one performance

/// What a sync procedure does; read on the dispatcher's thread while the main one waits for it.
struct SyncAct {
    unsigned what = 0;
    HSYNC sync = 0;
};

void onSync(HSYNC sync, DWORD channel, DWORD, void* user) {
    const auto& act = *static_cast<const SyncAct*>(user);
    require(sync == act.sync, "a sync's own handle");
    switch (act.what) {
        case 1:
            BASS_ChannelSlideAttribute(channel, BASS_ATTRIB_VOL, -1, 3);
            break;
        case 2:
            BASS_ChannelStop(channel);
            break;
        case 3:
            BASS_ChannelSetPosition(channel, 400, BASS_POS_BYTE);
            break;
        case 4:
            BASS_StreamFree(channel);
            break;
        case 5:
            BASS_ChannelRemoveSync(channel, sync);
            break;
        default:
            break;
    }
}

class Performance {
  public:
    Performance(Input input, std::uint32_t period, bool compared)
        : in_(input), compared_(compared), devices_(zv::makeOfflineDevices({.period = period})) {
        zv::engine::engineControl()->install(
            {std::make_shared<Sounds>(), zv::soundTouchStretchers(), devices_});
        BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 10'000);
        BASS_Init(1, 44'100, 0, nullptr, nullptr);
    }
    ~Performance() { zv::engine::engineControl()->install({}); }
    Performance(const Performance&) = delete;
    Performance& operator=(const Performance&) = delete;

    std::vector<float> run() {
        for (int i = 0; i < mostOperations && !in_.empty(); ++i) operation(in_.byte());
        pull(512);
        return std::move(heard_);
    }

  private:
    DWORD any() {
        const unsigned which = in_.byte();
        return which == 255 || handles_.empty() ? which : handles_[which % handles_.size()];
    }
    DWORD anyEffect() { return effects_.empty() ? 0 : effects_[in_.byte() % effects_.size()]; }

    DWORD created(DWORD handle, const char* what) {
        checkCode(handle != 0, what);
        if (handle == 0) return 0;
        require(std::ranges::find(handles_, handle) == handles_.end() &&
                    std::ranges::find(effects_, handle) == effects_.end(),
                "a handle of its own");
        return handle;
    }
    void adopt(DWORD handle, const char* what) {
        if (created(handle, what) != 0) handles_.push_back(handle);
    }

    void pull(std::uint64_t frames) {
        if (compared_) frames = (frames + largePeriod - 1) / largePeriod * largePeriod;
        frames = std::min(frames, mostFrames - std::min(mostFrames, rendered_));
        rendered_ += frames;
        devices_->pull(frames, 44'100);
        for (const std::string& output : outputs) {
            const auto sound = devices_->takeSound(output);
            for (const float sample : sound) require(std::isfinite(sample), "finite sound");
            heard_.insert(heard_.end(), sound.begin(), sound.end());
        }
    }

    void operation(unsigned what);
    void devices(unsigned what);
    void create(unsigned what);
    void look(unsigned what);
    void setEffect();
    void data();

    Input in_;
    bool compared_;
    std::shared_ptr<zv::OfflineDevices> devices_;
    std::vector<DWORD> handles_;
    std::vector<HFX> effects_;
    std::vector<std::pair<DWORD, HSYNC>> syncs_;
    std::vector<std::unique_ptr<SyncAct>> acts_;
    std::vector<float> heard_;
    std::uint64_t rendered_ = 0;
};

void Performance::create(unsigned what) {
    const DWORD flags = in_.of(channelFlags);
    switch (what) {
        case 0:
        case 1: {
            const unsigned which = in_.byte();
            const char* name = which == 255 ? "missing" : sounds[which % files].name;
            adopt(BASS_StreamCreateFile(false, name, 0, 0, flags), "StreamCreateFile");
            break;
        }
        case 2:
            adopt(BASS_FX_TempoCreate(any(), flags), "TempoCreate");
            break;
        case 3:
            adopt(BASS_Mixer_StreamCreate(in_.of(rates), 2 + (in_.byte() == 1), flags | BASS_MIXER_NONSTOP),
                  "Mixer_StreamCreate");
            break;
        case 4:
            adopt(BASS_Split_StreamCreate(any(), flags, nullptr), "Split_StreamCreate");
            break;
        case 5:
            if (compared_) break;  // when a stream is dry depends on who asks how often
            adopt(BASS_StreamCreateURL("web", 0, flags, nullptr, nullptr), "StreamCreateURL");
            break;
        case 6:
            if (compared_) break;  // the sound waits for periods
            adopt(BASS_RecordStart(in_.of(rates), 2, 0, nullptr, nullptr), "RecordStart");
            break;
        default:
            adopt(BASS_MusicLoad(false, "stereo", 0, 0, flags, 0), "MusicLoad");
            break;
    }
}

void Performance::devices(unsigned what) {
    if (compared_ && what > 3) return;
    const std::string& name = outputs[in_.byte() % 2];
    switch (what) {
        case 0:
            checkCode(BASS_Init(static_cast<int>(in_.byte() % 5) - 1, in_.of(rates), 0, nullptr, nullptr),
                      "Init");
            break;
        case 1:
            checkCode(BASS_SetDevice(in_.byte() % 4), "SetDevice");
            break;
        case 2:
            checkCode(BASS_Free(), "Free");
            break;
        case 3: {
            BASS_DEVICEINFO info{};
            const bool there = BASS_GetDeviceInfo(in_.byte() % 4, &info);
            checkCode(there, "GetDeviceInfo");
            require(!there || (info.name && info.driver), "GetDeviceInfo");
            break;
        }
        case 4:
            devices_->unplug(in_.flag() ? name : microphone);
            break;
        case 5:
            devices_->plug(in_.flag() ? name : microphone);
            break;
        case 6:
            devices_->setClockError(name, static_cast<double>(in_.word()) - 32'768);
            break;
        case 7:
            devices_->setPeriod(1 + in_.word() % 2'000);
            break;
        case 8:
            checkCode(BASS_RecordInit(static_cast<int>(in_.byte() % 4) - 1), "RecordInit");
            break;
        case 9:
            checkCode(BASS_RecordFree(), "RecordFree");
            break;
        case 10:
            checkCode(BASS_RecordSetDevice(in_.byte() == 0 ? ~DWORD{0} : in_.byte() % 3), "RecordSetDevice");
            break;
        default:
            devices_->feedInput(microphone, std::vector<float>(in_.word() % 4096 * 2, 0.25F), in_.of(rates));
            break;
    }
}

void Performance::setEffect() {
    const HFX effect = anyEffect();
    union {
        BASS_BFX_PEAKEQ eq;
        BASS_DX8_REVERB reverb;
        BASS_BFX_VOLUME volume;
    } p{};
    const unsigned kind = in_.byte() % 3;  // mostly not the effect's own
    if (kind == 0)
        p.eq = {static_cast<int>(in_.byte() % 70) - 1,
                in_.between(0.1F, 5),
                in_.flag() ? 0 : in_.between(0, 10),
                in_.between(20, 24'000),
                in_.between(-15, 15),
                in_.flag() ? BASS_BFX_CHANALL : 0};
    else if (kind == 1)
        p.reverb = {in_.between(-96, 0), in_.between(-96, 0), in_.between(1, 3000),
                    in_.between(0.001F, 0.999F)};
    else
        p.volume = {BASS_BFX_CHANALL, in_.between(0, 2)};
    checkCode(BASS_FXSetParameters(effect, &p), "FXSetParameters");
    p.eq = {};
    checkCode(BASS_FXGetParameters(effect, &p), "FXGetParameters");
}

void Performance::data() {
    const DWORD channel = any();
    BASS_CHANNELINFO info{};
    const bool known = BASS_ChannelGetInfo(channel, &info);
    checkCode(known, "ChannelGetInfo");
    std::vector<float> buffer(16'384);
    const DWORD wanted = in_.byte() == 7 ? ~DWORD{0} >> 20 : in_.word();
    const DWORD got = BASS_ChannelGetData(channel, buffer.data(), wanted);
    checkCode(got != ~DWORD{0}, "ChannelGetData");
    if (got == ~DWORD{0}) return;
    const bool floats = info.flags & BASS_SAMPLE_FLOAT;
    require(known && got <= wanted && got % (info.chans * (floats ? 4 : 2)) == 0, "whole frames", got);
    if (floats)
        for (DWORD i = 0; i < got / 4; ++i) require(std::isfinite(buffer[i]), "finite data");
}

void Performance::look(unsigned what) {
    const DWORD channel = any();
    switch (what) {
        case 0: {
            float out[2] = {-1, -1};
            const DWORD flags = in_.of(levels);
            const float seconds = in_.between(0, 1);
            const bool given = in_.flag() ? BASS_ChannelGetLevelEx(channel, out, seconds, flags)
                                          : BASS_Mixer_ChannelGetLevelEx(channel, out, seconds, flags);
            checkCode(given, "GetLevelEx");
            if (given) require(std::isfinite(out[0]) && out[0] >= 0, "a level");
            if (given && flags & BASS_LEVEL_STEREO) require(std::isfinite(out[1]) && out[1] >= 0, "a level");
            break;
        }
        case 1: {
            const QWORD at = BASS_ChannelGetPosition(channel, in_.of(modes));
            checkCode(at != BASS_NO_POSITION, "GetPosition");
            break;
        }
        case 2: {
            const QWORD length = BASS_ChannelGetLength(channel, BASS_POS_BYTE);
            checkCode(length != BASS_NO_POSITION, "GetLength");
            const QWORD at = BASS_ChannelGetPosition(channel, BASS_POS_BYTE);
            require(length == BASS_NO_POSITION || at <= length, "a position within the length",
                    static_cast<long>(at - length));
            break;
        }
        case 3:
            require(BASS_ChannelIsActive(channel) <= BASS_ACTIVE_PAUSED, "a state");
            break;
        case 4: {
            float value = std::numeric_limits<float>::quiet_NaN();
            const bool given = BASS_ChannelGetAttribute(channel, in_.of(attributes), &value);
            checkCode(given, "GetAttribute");
            require(!given || std::isfinite(value), "an attribute");
            break;
        }
        case 5: {
            const double seconds = BASS_ChannelBytes2Seconds(channel, in_.position());
            require(seconds == -1 || (std::isfinite(seconds) && seconds >= 0), "seconds");
            BASS_ChannelSeconds2Bytes(channel, static_cast<double>(in_.number()));
            break;
        }
        case 6:
            BASS_ChannelIsSliding(channel, in_.of(attributes));
            break;
        default:
            checkCode(BASS_ChannelUpdate(channel, in_.byte()), "ChannelUpdate");
            break;
    }
}

void Performance::operation(unsigned what) {
    // Often what makes sound, seldom what takes everything away.
    if (what < 50) return create(what % 8);
    if (what < 60) return look(what % 8);
    if (what < 66) return devices(in_.byte() % 12);
    if (what < 100) return pull(1 + in_.word() % 3'000);
    const DWORD channel = any();
    switch ((what - 100) / 8) {
        case 0:
            checkCode(BASS_Mixer_StreamAddChannel(channel, any(), 0), "StreamAddChannel");
            break;
        case 1:
            checkCode(BASS_ChannelPlay(channel, in_.flag()), "Play");
            break;
        case 2:
            checkCode(what % 2 ? BASS_ChannelStop(channel) : BASS_ChannelPause(channel), "Stop");
            break;
        case 3:
            checkCode(BASS_ChannelSetPosition(channel, in_.position(), in_.of(modes)), "SetPosition");
            break;
        case 4:
            BASS_ChannelFlags(channel, in_.flag() ? BASS_SAMPLE_LOOP : 0,
                              in_.flag() ? BASS_SAMPLE_LOOP : ~DWORD{0});
            break;
        case 5:
        case 6:
            checkCode(BASS_ChannelSetAttribute(channel, in_.of(attributes), in_.number()), "SetAttribute");
            break;
        case 7:
        case 8:
            checkCode(
                BASS_ChannelSlideAttribute(channel, in_.of(attributes), in_.number(), in_.milliseconds()),
                "SlideAttribute");
            break;
        case 9: {
            const HFX effect = created(
                BASS_ChannelSetFX(channel, in_.of(kinds), static_cast<std::int8_t>(in_.byte())), "SetFX");
            if (effect != 0) effects_.push_back(effect);
            break;
        }
        case 10:
        case 11:
            setEffect();
            break;
        case 12:
            checkCode(BASS_FXReset(in_.flag() ? channel : anyEffect()), "FXReset");
            break;
        case 13:
            checkCode(BASS_ChannelRemoveFX(channel, anyEffect()), "RemoveFX");
            break;
        case 14: {
            acts_.push_back(std::make_unique<SyncAct>());
            SyncAct& act = *acts_.back();
            act.what = compared_ ? 0 : in_.byte() % 6;
            act.sync =
                BASS_ChannelSetSync(channel, in_.flag() ? BASS_SYNC_POS | BASS_SYNC_ONETIME : BASS_SYNC_POS,
                                    in_.position(), &onSync, &act);
            checkCode(act.sync != 0, "SetSync");
            if (act.sync != 0) syncs_.push_back({channel, act.sync});
            break;
        }
        case 15:
            if (syncs_.empty()) break;
            checkCode(BASS_ChannelRemoveSync(syncs_.back().first, syncs_.back().second), "RemoveSync");
            syncs_.pop_back();
            break;
        case 16:
            data();
            break;
        case 17: {
            const bool freed = in_.flag() ? BASS_StreamFree(channel) : BASS_MusicFree(channel);
            checkCode(freed, "Free");
            if (freed)
                require(BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED, "nothing plays that is free");
            break;
        }
        case 18:
            if (what % 2)
                checkCode(BASS_Mixer_ChannelRemove(channel), "ChannelRemove");
            else
                checkCode(BASS_SetConfig(in_.of(options), in_.word()), "SetConfig");
            break;
        default:
            create(0);
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned first = input.byte();
    if (first % 2 == 0) {
        Performance(input, 1 + first * 8, false).run();
        return 0;
    }
    const auto small = Performance(input, smallPeriod, true).run();
    const auto large = Performance(input, largePeriod, true).run();
    require(small.size() == large.size(), "as much sound for each period",
            static_cast<long>(small.size()) - static_cast<long>(large.size()));
    for (std::size_t i = 0; i < small.size(); ++i) {
        if (std::bit_cast<std::uint32_t>(small[i]) == std::bit_cast<std::uint32_t>(large[i])) continue;
        std::fprintf(stderr, "%.9g %.9g\n", static_cast<double>(small[i]), static_cast<double>(large[i]));
        require(false, "the same sound for each period", static_cast<long>(i));
    }
    return 0;
}
