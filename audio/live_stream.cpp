#include "audio/live_stream.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "audio/devices.h"
#include "audio/stream_title.h"
#include "audio/upcalls.h"
#include "audio/url_list.h"
#include "engine/bass.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/jobs.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/upcalls.h"

namespace zv {

bool LiveOn = false, LiveMixByTa = false;
LiveState LiveNow = LiveState::off;
std::string StreamChoice, LiveStatus, LiveTitle;
int LiveInputIdx = -1;

namespace {

constexpr int kConnectMs = 10'000;   // a connection without sound is given up after it
constexpr int kStalledMs = 10'000;   // a stream that is dry for so long counts as broken off
constexpr int kSettledMs = 15'000;   // after so long on air the next break begins with the shortest wait
constexpr int kReconnectFade = 300;  // ms
constexpr float kStopAtEnd = -1;     // of a slide: to silence, then stop
constexpr std::array kWaits{1, 2, 4, 8, 15};  // s
constexpr int kDefaultInput = -1;
constexpr std::size_t kHttps = 8;  // letters of "https://"

/// A stream that a worker has opened, freed unless it goes on air.
class Opened {
  public:
    Opened() = default;
    Opened(DWORD handle, int error) : error_(error), handle_(handle) {}
    Opened(Opened&& other) noexcept : error_(other.error_), handle_(std::exchange(other.handle_, 0)) {}
    Opened& operator=(Opened&& other) noexcept {
        std::swap(handle_, other.handle_);
        error_ = other.error_;
        return *this;
    }
    ~Opened() {
        if (handle_ != 0) BASS_StreamFree(handle_);
    }
    DWORD take() { return std::exchange(handle_, 0); }
    int error() const { return error_; }

  private:
    int error_ = BASS_OK;
    DWORD handle_ = 0;
};

Job connecting;
std::int64_t since = 0;    // ms: when LiveNow last changed, or a connection was begun
std::int64_t dryFrom = 0;  // ms: when the stream stalled; 0 while it flows
std::size_t breaks = 0;    // breaks in a row
bool told = false;         // the status line says that the stream has ended

bool mix() { return deviceSettings.DeviceSingle == 0; }
DWORD ms(int value) { return static_cast<DWORD>(std::max(0, value)); }
/// The number under which the engine knows an input of the list.
int inputNumber(int index) { return index == 0 ? kDefaultInput : index; }

void enter(LiveState state) {
    LiveNow = state;
    since = monotonicMs();
    dryFrom = 0;
    told = false;
}

void say(const std::string& status) {
    LiveStatus = status;
    callUp(audioUpcalls.liveChanged);
}

/// Opens an address; a secure one that fails is tried once more without security. [worker]
Opened openAddress(const std::string& url, DWORD device, bool decoding, JobWork& work) {
    // The engine plays a channel that does not decode on the device that its creating thread has selected.
    if (!decoding) BASS_SetDevice(device);
    const DWORD flags = decoding ? BASS_STREAM_DECODE : BASS_STREAM_AUTOFREE;
    const std::int64_t start = monotonicMs();
    DWORD handle = BASS_StreamCreateURL(url.c_str(), 0, flags, nullptr, nullptr);
    const bool secure = SameText(std::string_view(url).substr(0, kHttps), "https://");
    if (handle == 0 && secure && !work.cancelled() && monotonicMs() - start < kConnectMs) {
        const std::string plain = "http" + url.substr(kHttps - 3);
        handle = BASS_StreamCreateURL(plain.c_str(), 0, flags, nullptr, nullptr);
    }
    return {handle, handle != 0 ? BASS_OK : BASS_ErrorGetCode()};
}

/// The channel goes on air from silence.
void putOnAir(int fadeMs) {
    BASS_ChannelSetAttribute(hLive, BASS_ATTRIB_BUFFER, 0);
    BASS_ChannelUpdate(hLive, 0);
    BASS_ChannelSlideAttribute(hLive, BASS_ATTRIB_VOLDSP, 0, 0);
    BASS_ChannelUpdate(hLive, 0);
    if (mix()) BASS_Mixer_StreamAddChannel(MainMixer, hLive, BASS_MIXER_CHAN_BUFFER);
    BASS_ChannelSlideAttribute(hLive, BASS_ATTRIB_VOLDSP, LiveLevel(), ms(fadeMs));
}

void saysOnAir() { say(Ln("mStrPla1") + StreamChoice + Ln("mStrPla2")); }

/// Ends the sound of the channel and gives it back.
void dropChannel() {
    if (hLive == 0) return;
    if (!mix()) {
        // Opened with BASS_STREAM_AUTOFREE: the engine frees it when it has faded.
        BASS_ChannelSlideAttribute(hLive, BASS_ATTRIB_VOL, kStopAtEnd, ms(duckSettings.FadeOutSpeed));
        return;
    }
    BASS_StreamFree(hLive);
    hLive = 0;
}

void waitForNext() {
    dropChannel();
    ++breaks;
    enter(LiveState::waiting);
}

std::int64_t waitMs() { return std::int64_t{kWaits[std::min(breaks, kWaits.size()) - 1]} * 1000; }

void connected(Opened& opened, bool again) {
    hLive = opened.take();
    if (hLive == 0) {
        if (again) return waitForNext();
        ErrorLive_(Ln("mError"), opened.error());
        return;
    }
    putOnAir(again ? kReconnectFade : duckSettings.FadeInSpeed);
    enter(LiveState::onAir);
    LiveTitle.clear();
    liveSettings.StreamPoint = StreamChoice;
    if (UrlAdd(StreamChoice)) callUp(audioUpcalls.addressesChanged);
    saysOnAir();
    if (!mix()) BASS_ChannelPlay(hLive, false);
}

void connect(bool again) {
    BASS_SetConfig(BASS_CONFIG_NET_TIMEOUT, kConnectMs);
    if (!again) enter(LiveState::connecting);
    const DWORD device = mix() ? 0 : BASS_GetDevice();
    since = monotonicMs();
    connecting = startJob<Opened>(
        "frmMain.SubPlayStream",
        [url = StreamChoice, device, decoding = mix()](JobWork& work) {
            return openAddress(url, device, decoding, work);
        },
        [again](Opened opened) { guarded("frmMain.SubPlayStream", [&] { connected(opened, again); }); });
}

/// Selects the microphone's input again, which the rest of the program expects.
void selectMicrophone() { BASS_RecordSetDevice(static_cast<DWORD>(inputNumber(deviceSettings.DeviceIn))); }

void openInput(int index) {
    LiveInputIdx = index;
    const bool known =
        BASS_RecordInit(inputNumber(index)) || BASS_RecordSetDevice(static_cast<DWORD>(inputNumber(index)));
    say(Ln("mStrPla1") + StreamChoice + Ln("mStrPla2"));
    BASS_RECORDINFO info{};
    if (known) {
        BASS_RecordGetInfo(&info);
        hLive = BASS_RecordStart(info.freq, 2, 0, nullptr, nullptr);
    }
    const int error = BASS_ErrorGetCode();
    selectMicrophone();
    if (hLive == 0) {
        ErrorLive_(Ln("mError"), error);
        return;
    }
    putOnAir(duckSettings.FadeInSpeed);
    enter(LiveState::onAir);
    liveSettings.StreamPoint = StreamChoice;
    callUp(audioUpcalls.liveChanged);
}

void closeInput() {
    if (LiveInputIdx < 0 || LiveInputIdx == deviceSettings.DeviceIn) return;
    if (BASS_RecordSetDevice(static_cast<DWORD>(inputNumber(LiveInputIdx)))) BASS_RecordFree();
    selectMicrophone();
}

void begin(const std::string& choice) {
    StreamChoice = choice;
    LiveOn = true;
    LiveInputIdx = -1;
    breaks = 0;
    const auto input = std::find(InputNames.begin(), InputNames.end(), choice);
    if (IsWebAddress(choice)) {
        connect(false);
        if (LiveNow == LiveState::connecting) say(Ln("mStrCon"));
    } else if (mix() && input != InputNames.end()) {
        openInput(static_cast<int>(input - InputNames.begin()));
    } else {
        enter(LiveState::leaving);  // nothing sounds: the next press ends it
        say(Ln("mStrNoAd"));
    }
}

void watchConnection() {
    if (monotonicMs() - since < kConnectMs || !connecting.running()) return;
    connecting.cancel();
    if (LiveNow == LiveState::waiting)
        waitForNext();
    else
        ErrorLive_(Ln("mError"), BASS_ERROR_TIMEOUT);
}

/// Connects when the wait is over; until then the status line counts its seconds.
void watchWait() {
    if (connecting.running()) return watchConnection();
    const std::int64_t left = waitMs() - (monotonicMs() - since);
    if (left <= 0) {
        say(Ln("mStrAgain"));
        connect(true);
        return;
    }
    say(Ln("mStrBroke") + " " + std::to_string((left + 999) / 1000) + " s");
}

/// True when no more sound is to be expected of it.
bool brokenOff() {
    const DWORD active = BASS_ChannelIsActive(hLive);
    if (active == BASS_ACTIVE_STOPPED) return true;
    if (active != BASS_ACTIVE_STALLED) {
        dryFrom = 0;
        return false;
    }
    if (dryFrom == 0) dryFrom = monotonicMs();
    return monotonicMs() - dryFrom >= kStalledMs;
}

void watchSound() {
    if (monotonicMs() - since >= kSettledMs) breaks = 0;
    if (brokenOff()) {
        if (LiveInputIdx < 0 && liveSettings.LiveReconnect == 1) return waitForNext();
        if (!std::exchange(told, true)) say(Ln("mStrEr5"));
        return;
    }
    const char* text = BASS_ChannelGetTags(hLive, BASS_TAG_META);
    std::string title = text == nullptr ? std::string() : StreamTitle(text);
    if (title == LiveTitle && !told) return;
    told = false;
    LiveTitle = std::move(title);
    if (LiveTitle.empty())
        saysOnAir();
    else
        say(Ln("mStrPla1") + LiveTitle);
}

}  // namespace

float LiveLevel() { return static_cast<float>(liveSettings.VolLive * liveSettings.CoefVolLive * 0.01); }

bool LivePlays() { return hLive != 0 && BASS_ChannelIsActive(hLive) == BASS_ACTIVE_PLAYING; }

bool FadeLive(std::uint32_t attribute, int fadeMs) {
    if (LiveNow != LiveState::onAir) return false;
    BASS_ChannelSlideAttribute(hLive, attribute, kStopAtEnd, ms(fadeMs));
    enter(LiveState::leaving);
    return true;
}

void SubPlayStream(const std::string& choice) {
    guarded("frmMain.SubPlayStream", [&] {
        LastCtrl = "ckPlayStream";
        const std::string wanted = Trim(choice);
        if (!LiveOn) {
            if (!wanted.empty()) begin(wanted);
            return;
        }
        if (LiveNow == LiveState::connecting || LiveNow == LiveState::waiting) {
            StopPlayStream();
            return;
        }
        FadeLive(BASS_ATTRIB_VOL, duckSettings.FadeOutSpeed);
        callUp(audioUpcalls.liveFadesOut);
    });
}

void StopPlayStream(bool quiet) {
    guarded("frmMain.StopPlayStream", [&] {
        connecting.cancel();
        dropChannel();
        closeInput();
        LiveOn = false;
        LiveTitle.clear();
        enter(LiveState::off);
        if (!quiet) LiveStatus = Ln("mStrNoCo");
        callUp(audioUpcalls.liveChanged);
    });
}

void WatchLive() {
    guarded("frmMain.TimerLive_Timer", [] {
        switch (LiveNow) {
            case LiveState::connecting:
                return watchConnection();
            case LiveState::waiting:
                return watchWait();
            case LiveState::onAir:
                return watchSound();
            case LiveState::off:
            case LiveState::leaving:
                break;
        }
    });
}

}  // namespace zv
