#include "ui/settings/mixer_controls.h"

#include <cstddef>
#include <string>
#include <vector>

#include "audio/levels.h"
#include "ui/windows/form_place.h"

namespace zv {

namespace {

constexpr int kMeterWidth = 72, kRateWidth = 112, kSystemWidth = 128;  // pixels
constexpr int kFull = 100, kPercentStep = 5;
constexpr int kLongestTime = 500;  // of a slider, in steps of 10 ms

FormRow levelRow(Control& label, Control& slider, Control& value, const char* tip) {
    return {.label = label, .cells = {{.control = &slider, .tip = tip, .unit = value}}};
}

}  // namespace

/// What there is of each output: one of an array for the main and one for the auxiliary.
void MixerWindow::makePairs() {
    for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const auto made = [&](const char* name, ControlKind kind) {
            return &form.control(name, kind, {}, i);
        };
        lblDevice[at] = made("lblDevice", ControlKind::label);
        cmbDev[at] = made("cmbDev", ControlKind::comboBox);
        VuOut[at] = made("VuOut", ControlKind::meter);
        SlideVolDevice[at] = made("SlideVolDevice", ControlKind::slider);
        lblVolDeviceVal[at] = made("lblVolDeviceVal", ControlKind::label);
        optDevBy[at] = made("optDevBy", ControlKind::option);
        lblVolIn[at] = made("lblVolIn", ControlKind::label);
        SlideVolIn[at] = made("SlideVolIn", ControlKind::slider);
        lblVolInVal[at] = made("lblVolInVal", ControlKind::label);
        optDevBy[at]->segmented = true;
        for (Control* slider : {SlideVolDevice[at], SlideVolIn[at]}) slider->standard = kFull;
    }
}

MixerWindow::MixerWindow() {
    makePairs();
    lblFreqChg.visible = false;
    MeterLook look;
    look.vertical = false;
    for (Control* meter : {VuOut[0], VuOut[1], &VuIn}) {
        meter->meterLook = look;
        meter->maximum = kMeterMax;
    }
    for (Control* percent : {SlideVolDevice[0], SlideVolDevice[1], SlideVolIn[0], SlideVolIn[1],
                             &SlideAttnVol, &SlideTOThresh}) {
        percent->maximum = kFull;
        percent->step = kPercentStep;
    }
    for (Control* time : {&SlideFadeOutSpeed, &SlideFadeInSpeed, &SlideTORelease})
        time->maximum = kLongestTime;
    cmbAutoDuckMode.segmented = true;
    cmbAutoDuckMode.items = std::vector<std::string>(3);

    FormCard outputs{.title = "mixFrmOutputs"};
    for (std::size_t i = 0; i < 2; ++i) {
        outputs.rows.push_back(
            {.label = *lblDevice[i],
             .cells = {{.control = cmbDev[i], .tip = "mixDeviceTip", .width = kRestOfRow}}});
        outputs.rows.push_back(
            {.label = i == 0 ? FormText("mixLblVol")
                             : FormText(form.control("lblVolAux", ControlKind::label, "mixLblVol")),
             .cells = {{.control = SlideVolDevice[i], .tip = "mixVolTip", .unit = *lblVolDeviceVal[i]},
                       {.control = VuOut[i], .tip = "mixLblLevel", .width = kRestOfRow}}});
    }
    const FormCard microphone{
        .title = "mixFrmInput",
        .rows = {{.cells = {{&ckInputEnable, "mixInputTip"}, {&ckVolInLink, "mixLinkTip"}}},
                 {.label = "mixLblDeviceIn",
                  .cells = {{.control = &cmbInDev, .tip = "mixDeviceInTip", .width = kRestOfRow},
                            {.control = &VuIn, .tip = "mixLblLevel", .width = kMeterWidth}}},
                 levelRow(*lblVolIn[0], *SlideVolIn[0], *lblVolInVal[0], "mixVolInTip"),
                 levelRow(*lblVolIn[1], *SlideVolIn[1], *lblVolInVal[1], "mixVolInTip")}};
    const FormCard duck{
        .title = "mixFrmAutoDuck",
        .rows = {{.label = "mixLblAutoDuckMode", .cells = {{&cmbAutoDuckMode, "mixModeTip"}}},
                 levelRow(lblFadeInAdvance, SlideFadeInAdvance, lblFadeInAdvanceVal, "mixAdvanceTip")}};
    const FormCard other{
        .title = "mixlblOtherSources",
        .rows = {{.label = "mixLblAttn",
                  .cells = {{.control = &SlideAttnVol, .tip = "mixAttnTip", .unit = lblAttnVal}}},
                 {.label = "mixLblFadeOutSpeed",
                  .cells = {{.control = &SlideFadeOutSpeed, .tip = "mixFadeOutTip", .unit = lblOutVal}}},
                 {.label = "mixLblFadeInSpeed",
                  .cells = {{.control = &SlideFadeInSpeed, .tip = "mixFadeInTip", .unit = lblInVal}}}}};
    const FormCard rest{
        .rows = {{.label = "mixLblTalkOver",
                  .cells = {{.control = &lblTOThreshold},
                            {.control = &SlideTOThresh, .tip = "mixTOThresholdTip", .unit = lblThreshVal},
                            {.control = &lblTORelease},
                            {.control = &SlideTORelease, .tip = "mixTOReleaseTip", .unit = lblReleaseVal}}},
                 {.label = "mixLblSavDevBy",
                  .cells = {{optDevBy[0], "mixByNumberTip"},
                            {optDevBy[1], "mixByNameTip"},
                            {.control = &lblSystem},
                            {.control = &cmbSystem, .tip = "mixSystemTip", .width = kSystemWidth},
                            {.control = &frmMixerFreq},
                            {.control = &cmbFreq, .tip = "mixFreqTip", .width = kRateWidth},
                            {&ckDeviceSingle, "mixSingleTip"}}}}};
    form.describe({.blocks = {{outputs, microphone}, {duck, other}, {rest}},
                   .note = lblNote,
                   .keysLeft = {{.control = &btMIDI, .tip = "mixbtMIDITip"}},
                   .keys = {{.control = &btOk, .tip = "mixbtOkTip", .role = KeyRole::accept}},
                   .width = kWidestWindow,
                   .evenCards = true});
}

MixerWindow& frmMixer() {
    static MixerWindow window;
    return window;
}

}  // namespace zv
