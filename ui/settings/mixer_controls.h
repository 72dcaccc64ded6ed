/// The controls of the mixer window "frmMixer" and how they stand in it. [control]
#pragma once

#include <array>

#include "platform/timers.h"
#include "ui/settings/bound_controls.h"
#include "ui/windows/form_window.h"

namespace zv {

struct MixerWindow {
    MixerWindow();

    FormWindow form{"frmMixer", "mixTitle"};

    // ---- outputs: 0 main, 1 auxiliary ----
    std::array<Control*, 2> lblDevice{}, cmbDev{}, SlideVolDevice{}, lblVolDeviceVal{}, VuOut{};
    Control& ckDeviceSingle = form.control("ckDeviceSingle", ControlKind::checkBox, "mixckDeviceSingle");
    Control& cmbSystem = form.control("cmbSystem", ControlKind::comboBox);
    Control& cmbFreq = form.control("cmbFreq", ControlKind::comboBox);
    std::array<Control*, 2> optDevBy{};
    Control& lblSystem = form.control("lblSystem", ControlKind::label, "mixLblSystem");
    Control& frmMixerFreq = form.control("frmMixerFreq", ControlKind::label, "mixfrmMixerFreq");
    Control& lblFreqChg = form.control("lblFreqChg", ControlKind::label, "mixLblValChg");
    Control& lblNote = form.control("lblNote", ControlKind::label, "mixNote");  ///< or lblFreqChg's text

    // ---- microphone ----
    Control& ckInputEnable = form.control("ckInputEnable", ControlKind::checkBox, "mixCkInputEnable");
    Control& cmbInDev = form.control("cmbInDev", ControlKind::comboBox);
    Control& VuIn = form.control("VuIn", ControlKind::meter);
    std::array<Control*, 2> lblVolIn{}, SlideVolIn{}, lblVolInVal{};
    Control& ckVolInLink = form.control("ckVolInLink", ControlKind::checkBox, "mixCkVolInLink");

    // ---- talk-over and auto-duck ----
    Control& SlideAttnVol = form.control("SlideAttnVol", ControlKind::slider);
    Control& SlideFadeOutSpeed = form.control("SlideFadeOutSpeed", ControlKind::slider);
    Control& SlideFadeInSpeed = form.control("SlideFadeInSpeed", ControlKind::slider);
    Control& SlideTOThresh = form.control("SlideTOThresh", ControlKind::slider);
    Control& SlideTORelease = form.control("SlideTORelease", ControlKind::slider);
    Control& lblTOThreshold = form.control("lblTOThreshold", ControlKind::label, "mixLblTOThreshold");
    Control& lblTORelease = form.control("lblTORelease", ControlKind::label, "mixLblTORelease");
    Control& cmbAutoDuckMode = form.control("cmbAutoDuckMode", ControlKind::comboBox);
    Control& SlideFadeInAdvance = form.control("SlideFadeInAdvance", ControlKind::slider);
    Control& lblFadeInAdvance = form.control("lblFadeInAdvance", ControlKind::label);
    Control& lblFadeInAdvanceVal = form.control("lblFadeInAdvanceVal", ControlKind::label);

    Control& lblAttnVal = form.control("lblAttnVolVal", ControlKind::label);
    Control& lblOutVal = form.control("lblFadeOutSpeedVal", ControlKind::label);
    Control& lblInVal = form.control("lblFadeInSpeedVal", ControlKind::label);
    Control& lblThreshVal = form.control("lblTOThreshVal", ControlKind::label);
    Control& lblReleaseVal = form.control("lblTOReleaseVal", ControlKind::label);

    Control& btMIDI = form.control("btMIDI", ControlKind::button, "mixbtMIDI");
    Control& btOk = form.control("btOk", ControlKind::button, "mixbtOk");

    BoundControls bound;
    Timer Timer1{"Timer1", 50, {}};  ///< the meters, while the window is open

  private:
    void makePairs();
};

MixerWindow& frmMixer();
}  // namespace zv
