#include "tests/show/plain_model.h"

#include <algorithm>
#include <cmath>

#include "audio/duck.h"
#include "model/colours.h"
#include "model/state.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/minimal_settings.h"
#include "tests/support/ear.h"

namespace zv::test {

void Slide::start(double target, int ms, bool log, bool stopsAtEnd) {
    to = target, left = ms, waits = 0, stops = stopsAtEnd;
    logarithmic = log && now > 0;
    if (ms == 0) now = target;
    if (logarithmic && ms > 0) ratio = std::pow(0.001, 1.0 / ms);  // 60 dB
}

double Slide::pass() {
    if (left == 0 || waits-- > 0) return now;
    const double before = now;
    now = logarithmic ? now * ratio : now + (to - now) / left;
    const double mean = (before + now) / 2;
    if (--left == 0) now = to;
    return mean;
}

double Tones::bytes(int ms) const { return rate * ms / 1000 * channels * 2; }
int Tones::ms(double of) const { return static_cast<int>(std::lround(of * 1000 / bytes(1000))); }

std::vector<std::int16_t> Tones::samples() const {
    std::vector<std::int16_t> all;
    for (const auto& [letter, ms] : {std::pair(first, 300), std::pair(second, lengthMs - 300)})
        for (const std::int16_t sample : tone(letter, ms, rate))
            for (int channel = 0; channel < channels; ++channel) all.push_back(sample);
    return all;
}

int Slot::cue() const {
    const int ms = sound.ms(is.CueStart);
    return ms < sound.lengthMs ? ms : 0;
}

double Slot::endOffset() const {
    if (is.StopPos == 0) return 0;
    return std::max(0.0, sound.bytes(sound.lengthMs) - is.StopPos + sound.bytes(is.FadeOut));
}

int Slot::left() const {
    const int ms = (sound.lengthMs - at - sound.ms(endOffset()) + 5) / 10 * 10;
    return ms < 100 ? 0 : ms;
}

void Slot::fade(int ms, bool log) {
    vol.start(0, ms, log, true);
    if (ms == 0) sounds = false;
}

void Slot::leave(int ms) {
    is.Leaving = true;
    fade(ms, is.LogFadeOut == 1);
}

void Slot::arm() {
    stopAt = sound.ms(is.StopPos);
    stopMs = is.FadeOut;
    stopLog = is.LogFadeOut == 1;
}

void Slot::move() {
    if (loops && at == loopOut) at = loopIn;
    if (at >= sound.lengthMs) sounds = false;
    if (!sounds || stopAt == 0 || at != stopAt) return;
    stopAt = 0;
    is.Leaving = true;
    fade(stopMs, stopLog);
}

void Slot::derive() {
    if (is.LoopOut == 0) is.LoopOut = sound.bytes(sound.lengthMs);
    is.FXV = "0,0,0,0,0,0,0,0,0," + std::to_string(sound.rate) + ",0";
    is.FadeAttrib = is.LogFadeOut == 1 ? 0x1000002 : 2;
    is.BackRGB = ButtonColour(is.BTNCol);
    is.ForeRGB = GetForeColor(is.BackRGB, "jingle");
    is.EndOffset = endOffset();
    is.Duration =
        std::max(0.0, sound.bytes(sound.lengthMs) - sound.bytes(cue()) - endOffset()) / sound.bytes(1000);
}

void Model::open(int index, const PersistedJingle& content) {
    Slot& s = slots[index] = Slot();
    s.sound = files.at(content.Path);
    s.is.persisted() = content;
    s.is.Freq = s.sound.rate;
    s.is.Kind = SlotKind::stream;
    s.is.hPlay = s.is.hSrc = 1;
    s.derive();
    s.own.start(content.Volm / 100.0, 0);
    s.at = s.cue();
}

void Model::openPalette() {
    for (auto& [i, s] : slots) {
        if (i >= kPaletteSlots) continue;
        if (s.sounds)
            s.is.PlayingOtherPal = true, s.is.Kind = SlotKind::nothing;
        else
            open(i, palette[i]);
    }
}

void Model::bring(int index, const PersistedJingle& content) {
    Slot& s = slots[index];
    if (s.is.Path != content.Path) {
        if (!s.sounds) return open(index, content);
        s.waits = content;
        s.is.PlayingOtherPal = true;
        return;
    }
    if (s.waits) s.waits.reset(), s.is.PlayingOtherPal = false;
    s.is.persisted() = content;
    s.derive();
    s.own.start(content.Volm / 100.0, s.sounds ? 10 : 0);
    s.own.waits = s.sounds && s.heard ? s.sound.heldMs() : 0;
    if (s.sounds) {
        if (s.loops && s.is.Loop == 0)
            s.loopIn = s.sound.ms(s.is.LoopIn), s.loopOut = s.sound.ms(s.is.LoopOut);
        return s.arm();
    }
    s.at = s.cue();
    s.vol.start(1, 0);
}

void Model::start(int index, int velocity) {
    if (automixSettings.AutoMix == 2) {
        if (remain != 0) return;
        for (const auto& [n, s] : slots)
            if (s.is.Playing && s.sounds && s.left() > 0) return;
    }
    Slot& s = slots[index];
    const bool sequence = s.is.Seq != 0;
    s.loops = s.is.Loop != 0 || sequence;
    s.loopIn = sequence ? s.sound.ms(s.is.LoopIn) : 0;
    s.loopOut = sequence ? s.sound.ms(s.is.LoopOut) : s.sound.lengthMs;
    s.at = s.cue();
    s.vol.start(velocity / 127.0, 10);
    s.dsp.start(1, 0);
    s.sounds = true, s.heard = false;
    s.arm();
    s.is.Playing = true, s.is.Leaving = false;
    s.is.State = PlayState::playing;
    if (s.is.CueStart > 0 && s.at == 0) told += " ignored" + std::to_string(index);
    told += " starting" + std::to_string(index) + " started" + std::to_string(index);
}

void Model::release(int index) {
    Slot& s = slots[index];
    if (!SelectorsOn) told += " stopping" + std::to_string(index);
    s.is.State = PlayState::stopping;
    s.is.Playing = false;
    s.leave(s.is.FadeOut);
}

void Model::pressSequence(int index) {
    using enum PlayState;
    Slot& s = slots[index];
    const int in = s.sound.ms(s.is.LoopIn), at = s.at;
    const bool keeps = s.is.LoopFadeOut != 0;
    if (!keeps) s.loops = false, told += " left" + std::to_string(index);
    const PlayState before = s.is.State;
    if (before == stopping) {
        s.leave(0);
        s.is.State = idle;
    } else if (before == leavingLoop || (before == playing && (at < in || (at > in && keeps)))) {
        s.leave(s.is.FadeOut);
        s.is.State = stopping;
    } else if (before == playing && at > in) {
        s.is.State = leavingLoop;
    }
}

void Model::press(int index, int velocity) {
    last = index;
    if (MIDILearnActive) return;
    Slot& s = slots[index];
    if (velocity < 0 || velocity > 127) velocity = 127;
    if (automixSettings.AutoMix == 1)
        for (auto& [n, other] : slots) {
            if (n == index || other.is.NoAutomix != 0 || !other.sounds) continue;
            other.fade(automixSettings.AutoMixTime, automixSettings.LogFadeOut == 1);
            other.is.Leaving = true;
        }
    if (minimalSettings.MinimalView == 1 && ClockShown) told += " clock";
    if (!s.sounds) return start(index, velocity);
    if (CtrlDown || ShiftDown || AltDown) return;
    if (s.is.Seq != 0) return pressSequence(index);
    const bool global = s.is.PlayMod == PlayMode::global;
    if (s.is.PlayMod == PlayMode::autoRepeat || (global && ToggleAutoRep == 1)) {
        s.dsp.start(0, 10);
        s.dsp.waits = s.heard ? s.sound.heldMs() : 0;
        step(), step();
        s.sounds = false;
        return start(index, velocity);
    }
    if (s.is.PlayMod == PlayMode::touch || (global && ToggleTouch == 1)) return start(index, velocity);
    if (s.is.PlayMod == PlayMode::noStop) return;
    if (s.is.State != PlayState::stopping) return release(index);
    s.sounds = s.is.Playing = false;
    s.is.State = PlayState::idle;
}

void Model::stopAll() {
    if (MIDILearnActive) return;
    for (auto& [i, s] : slots) s.sounds = false;
    told += " announcer stream";
}

void Model::duck(bool down) {
    ducked = down;
    for (auto& [i, s] : slots)
        if (s.is.AutoDuck == 1 && !s.is.Leaving)
            s.vol.start((down ? duckSettings.AttnVol : s.is.Volm) / 100.0,
                        down ? duckSettings.FadeOutSpeed : duckSettings.FadeInSpeed);
}

void Model::tick(int level) {
    const double early = duckSettings.FadeInAdvance;
    int least = 0, duckLeft = 0;
    bool wanted = false;
    for (auto& [i, s] : slots) {
        JingleRecord& j = s.is;
        if (s.sounds) {
            const int left = s.left();
            if (left > 0 && (least == 0 || left < least)) least = left;
            if (j.AutoDuck == 1) continue;
            if (duckLeft == 0 || duckLeft > left) duckLeft = left;
            wanted = wanted || (j.NoTrigDuck == 0 && duckLeft > early);
            continue;
        }
        j.State = PlayState::idle;
        j.Playing = j.Leaving = false;
        if (j.PlayingOtherPal) open(i, s.waits ? PersistedJingle(*s.waits) : palette[i]);
    }
    remain = least;
    if (duckSettings.AutoDuckMode == kDuckByTime) {
        if (duckLeft < early && ducked) duck(false), wanted = false;
        if (wanted) duck(true);
    } else {
        const bool push =
            duckSettings.AutoDuckMode == kDuckByLevel && level >= duckSettings.AutoDuckThreshold;
        if (push != ducked) duck(push);
    }
}

void Model::step() {
    std::array<std::array<double, 8>, 2> level{};
    for (int ms = 0; ms < kStepMs; ++ms) {
        std::array<double, 2> outputs{};
        for (std::size_t o = 0; o < 2; ++o) outputs[o] = bus[o].pass() * out[o].pass() / kStepMs;
        for (auto& [i, s] : slots) {
            s.move();
            const auto tone = static_cast<std::size_t>((s.at < 300 ? s.sound.first : s.sound.second) - 'a');
            const bool slides = s.vol.left > 0;
            const double gain = s.vol.pass() * s.dsp.pass() * s.own.pass();
            if (!s.sounds) continue;
            for (std::size_t o = 0; o < 2; ++o) level[o][tone] += gain * outputs[o];
            ++s.at;
            s.heard = true;
            if (slides && s.vol.left == 0 && s.vol.stops) s.sounds = false;
        }
    }
    for (std::size_t o = 0; o < 2; ++o) levels[o].push_back(level[o]);
}

}  // namespace zv::test
