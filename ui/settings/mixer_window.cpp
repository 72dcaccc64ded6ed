#include "ui/settings/mixer_window.h"

#include <cstddef>
#include <string>
#include <vector>

#include "audio/device_levels.h"
#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/talk_over.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/volumes_settings.h"
#include "ui/settings/mixer_controls.h"
#include "ui/settings/mixer_devices.h"
#include "ui/windows/midi_settings_window.h"

namespace zv {

namespace {

constexpr int kSliderStep = 10;        // ms of one step of a slider of times
constexpr int kLongestAdvance = 3000;  // ms
constexpr int kFull = 100;

/// The element of a language key whose text is a list.
std::string element(const std::string& list, int index) {
    const std::vector<std::string> parts = Split(list, ",");
    return index >= 0 && index < static_cast<int>(parts.size()) ? parts[static_cast<std::size_t>(index)] : "";
}

std::string listOr(const char* key, const char* otherwise) {
    const std::string text = Ln(key);
    return text.empty() ? otherwise : text;
}

void setVolume(int output, int percent) {
    (output == 0 ? volumeSettings.Volume : volumeSettings.VolumeAux) = percent;
    SetOutputVolume(output, percent);
    frmMixer().lblVolDeviceVal[static_cast<std::size_t>(output)]->caption = std::to_string(percent) + " %";
}

void showInputLevels() {
    MixerWindow& m = frmMixer();
    const int levels[] = {volumeSettings.VolumeInMain, volumeSettings.VolumeInAux};
    for (std::size_t i = 0; i < 2; ++i) {
        m.SlideVolIn[i]->value = levels[i];
        m.lblVolInVal[i]->caption = std::to_string(levels[i]) + " %";
    }
}

void setInputLevel(int output, int percent) {
    const bool both = volumeSettings.VolInLink == 1;
    for (int i = 0; i < 2; ++i) {
        if (both || output == i) SetInputVolume(i, percent);
    }
    showInputLevels();
}

/// What the microphone holds down goes to the new level at once.
void attnChanged() {
    if (MicPushed) RaiseMic();
}

void linkChanged() {
    if (volumeSettings.VolInLink == 1) SetInputVolume(1, volumeSettings.VolumeInMain);
    showInputLevels();
}

/// One slider stands for the threshold or for the time before the end, as the mode says.
void showAdvance() {
    MixerWindow& m = frmMixer();
    const bool level = duckSettings.AutoDuckMode == kDuckByLevel;
    Control& slider = m.SlideFadeInAdvance;
    slider.minimum = 0;
    slider.maximum = level ? kFull : kLongestAdvance / kSliderStep;
    slider.standard = level ? DuckSettings{}.AutoDuckThreshold : DuckSettings{}.FadeInAdvance / kSliderStep;
    slider.value = level ? duckSettings.AutoDuckThreshold : duckSettings.FadeInAdvance / kSliderStep;
    m.lblFadeInAdvanceVal.caption = level ? std::to_string(duckSettings.AutoDuckThreshold) + " %"
                                          : std::to_string(duckSettings.FadeInAdvance) + " ms";
    m.lblFadeInAdvance.caption = element(Ln("mixLblFadeInAdvance"), duckSettings.AutoDuckMode);
}

void advanceChanged() {
    const int value = frmMixer().SlideFadeInAdvance.value;
    if (duckSettings.AutoDuckMode == kDuckByLevel) {
        duckSettings.AutoDuckThreshold = value;
    } else {
        duckSettings.FadeInAdvance = value * kSliderStep;
    }
    showAdvance();
}

void showLevels() {
    MixerWindow& m = frmMixer();
    for (int i = 0; i < 2; ++i) m.VuOut[static_cast<std::size_t>(i)]->value = OutputLevel(i);
    m.VuIn.value = InputLevel();
}

/// What is there in the topology of this run.
void showTopology() {
    MixerWindow& m = frmMixer();
    const bool mix = deviceSettings.DeviceSingle == 0;
    for (Control* c : {m.cmbDev[1], m.SlideVolDevice[1], m.VuOut[1], m.VuOut[0], &m.ckInputEnable,
                       &m.lblTOThreshold, &m.SlideTOThresh, &m.lblTORelease, &m.SlideTORelease}) {
        c->visible = mix;
    }
    ShowInputControls();
}

void fillTexts() {
    MixerWindow& m = frmMixer();
    for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        m.lblDevice[at]->caption = element(Ln("mixLblDevice"), i);
        m.lblVolIn[at]->caption = element(Ln("mixLblVolIn"), i);
        m.optDevBy[at]->caption = element(Ln("mixOptDevBy"), i);
    }
    m.cmbAutoDuckMode.items = Split(listOr("mixCmbAutoDuckMode", "Hidden,At top,At bottom"), ",");
    showAdvance();
    ShowPending();
}

/// Once: what each control does.
void wire(MixerWindow& m) {
    for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        m.cmbDev[at]->onChange = [i] { guarded("frmMixer.cmbDev_Click", [i] { OutputChosen(i); }); };
        m.optDevBy[at]->onChange = [i] { guarded("frmMixer.optDevBy_Click", [i] { RememberBy(i); }); };
        m.SlideVolDevice[at]->onChange = [&m, i, at] {
            guarded("frmMixer.SlideVolDevice_Change", [&] { setVolume(i, m.SlideVolDevice[at]->value); });
        };
        m.SlideVolIn[at]->onChange = [&m, i, at] {
            guarded("frmMixer.SlideVolIn_Change", [&] { setInputLevel(i, m.SlideVolIn[at]->value); });
        };
    }
    const auto times = [](Control& shown) {
        return BindOptions{.step = kSliderStep, .shown = &shown, .unit = " ms"};
    };
    m.bound.bind(m.SlideAttnVol, "AttnVol", {.shown = &m.lblAttnVal, .unit = " %", .changed = attnChanged});
    m.bound.bind(m.SlideFadeOutSpeed, "FadeOutSpeed", times(m.lblOutVal));
    m.bound.bind(m.SlideFadeInSpeed, "FadeInSpeed", times(m.lblInVal));
    m.bound.bind(m.SlideTOThresh, "InTOThresh", {.shown = &m.lblThreshVal, .unit = " %"});
    m.bound.bind(m.SlideTORelease, "InTORelease", times(m.lblReleaseVal));
    m.bound.bind(m.cmbAutoDuckMode, "AutoDuckMode", {.changed = showAdvance});
    m.bound.greyUnless(m.SlideFadeInAdvance, [] { return duckSettings.AutoDuckMode <= kDuckByTime; });
    m.bound.bind(m.ckVolInLink, "VolInLink", {.changed = linkChanged});
    m.SlideFadeInAdvance.onChange = [] { guarded("frmMixer.SlideFadeInAdvance_Change", advanceChanged); };
    m.ckDeviceSingle.onChange = [] { guarded("frmMixer.ckDeviceSingle_Click", TopologyChosen); };
    m.cmbSystem.onChange = [] { guarded("frmMixer.cmbSystem_Click", SystemChosen); };
    m.cmbFreq.onChange = [] { guarded("frmMixer.cmbFreq_Click", RateChosen); };
    m.ckInputEnable.onChange = [] { guarded("frmMixer.ckInputEnable_Click", InputSwitched); };
    m.cmbInDev.onChange = [] { guarded("frmMixer.cmbInDev_Click", InputChosen); };
    m.btOk.onClick = [&m] { guarded("frmMixer.btOk_Click", [&m] { m.form.close(); }); };
    m.btMIDI.onClick = [] { guarded("frmMixer.btMIDI_Click", OpenMidiSettings); };
    m.Timer1.handler = [] { guarded("frmMixer.Timer1_Timer", showLevels); };
    m.form.onClosed = [&m] { m.Timer1.stop(); };
    m.form.onTexts = fillTexts;
}

}  // namespace

void OpenMixer() {
    guarded("frmMixer.Form_Load", [] {
        MixerWindow& m = frmMixer();
        if (!m.Timer1.handler) wire(m);
        FillDeviceLists();
        m.SlideVolDevice[0]->value = volumeSettings.Volume;
        m.SlideVolDevice[1]->value = volumeSettings.VolumeAux;
        for (int i = 0; i < 2; ++i) {
            const auto at = static_cast<std::size_t>(i);
            m.lblVolDeviceVal[at]->caption = std::to_string(m.SlideVolDevice[at]->value()) + " %";
        }
        showInputLevels();
        m.form.fillTexts();
        m.bound.load();
        showTopology();
        m.form.open();
        m.Timer1.start();
    });
}

}  // namespace zv
