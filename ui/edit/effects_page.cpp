#include "ui/edit/effects_page.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "audio/edit_sound.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/edited_jingle.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

constexpr int kKilo = 1000;
constexpr double kPercentPerTenth = 0.1, kSecondsPerMs = 0.001;
constexpr std::size_t kTempo = 0, kRate = 1, kPitch = 2;

/// "+3", "-2.5", "0".
std::string withSign(double value) { return (value > 0 ? "+" : "") + NumberText(value); }

int rounded(double value) { return static_cast<int>(std::lround(value)); }

/// With one decimal at most, so that a tenth is not shown as 0.30000000000000004.
double tenth(double value) { return std::round(value * 10) / 10; }

std::string bandName(double hertz) {
    return hertz < kKilo ? NumberText(hertz) + " Hz" : NumberText(hertz / kKilo) + " kHz";
}

void showTexts() {
    JingleWindow& w = frmFX();
    const EffectVector& e = Edited.effects;
    for (int i = 0; i < kEqBands; ++i)
        w.lblEQV[static_cast<std::size_t>(i)]->caption = withSign(e.gain(i)) + " dB";
    w.lblReverbVal.caption = NumberText(e.reverbMs * kSecondsPerMs) + " " + Ln("fxlblReverbUnit");
    w.lblTempoVal[kTempo]->caption = withSign(e.tempo) + " %";
    w.lblTempoVal[kRate]->caption =
        withSign(tenth(SliderOfRate(e.rate, EditedRecord().Freq) * kPercentPerTenth)) + " %";
    w.lblTempoVal[kPitch]->caption = withSign(e.pitch) + " " + Ln("fxlblSemitones");
    w.lblSamplerateHz.caption = NumberText(e.rate == 0 ? EditedRecord().Freq : e.rate) + " Hz";
}

void showSliders() {
    JingleWindow& w = frmFX();
    const EffectVector& e = Edited.effects;
    for (std::size_t i = 0; i < kEqBands; ++i) w.sldEQ[i]->value = rounded(e.sliders[i]);
    w.sldReverb.value = rounded(e.reverbMs);
    w.sldTempo[kTempo]->value = rounded(e.tempo);
    w.sldTempo[kRate]->value = rounded(SliderOfRate(e.rate, EditedRecord().Freq));
    w.sldTempo[kPitch]->value = rounded(e.pitch);
}

/// The sliders as they stand, the rate as its slider has it.
EffectVector sliderValues() {
    const JingleWindow& w = frmFX();
    EffectVector e;
    for (std::size_t i = 0; i < kEqBands; ++i) e.sliders[i] = w.sldEQ[i]->value();
    e.reverbMs = w.sldReverb.value();
    e.tempo = w.sldTempo[kTempo]->value();
    e.rate = w.sldTempo[kRate]->value();
    e.pitch = w.sldTempo[kPitch]->value();
    return e;
}

/// Nobody's hand moves it: within its limits.
void slide(Control& slider, double value) {
    slider.value = std::clamp(rounded(value), slider.minimum(), slider.maximum());
}

void fillPresets(const std::string& selected) {
    Control& list = frmFX().cmbFXpreset;
    const auto names = EffectPresets();
    list.items = names;
    const auto found =
        std::ranges::find_if(names, [&](const std::string& n) { return SameText(n, selected); });
    list.listIndex = found == names.end() ? -1 : static_cast<int>(found - names.begin());
    frmFX().btDelFXpreset.enabled = list.listIndex() >= 0;
}

void changed() {
    showTexts();
    UpdateJFX();
}

void sldEQ_Change(int band) {
    const auto i = static_cast<std::size_t>(band);
    Edited.effects.sliders[i] = frmFX().sldEQ[i]->value();
    EditBand(Edited.index, band, Edited.effects.gain(band));
    changed();
}

void sldReverb_Change() {
    Edited.effects.reverbMs = frmFX().sldReverb.value();
    EditReverb(Edited.index, Edited.effects.reverbMs);
    changed();
}

void sldTempo_Change(std::size_t part) {
    const double value = frmFX().sldTempo[part]->value();
    EffectVector& e = Edited.effects;
    double* const targets[] = {&e.tempo, &e.rate, &e.pitch};
    *targets[part] = part == kRate ? RateOfSlider(value, EditedRecord().Freq) : value;
    EditTempo(Edited.index, static_cast<TempoPart>(part), *targets[part]);
    changed();
}

void cmbFXpreset_Click() {
    JingleWindow& w = frmFX();
    const std::string name = w.cmbFXpreset.text();
    if (name.empty()) return;
    // What lies beyond a slider of these settings counts as the slider's end.
    const EffectVector stored = ReadEffectPreset(name);
    for (std::size_t i = 0; i < kEqBands; ++i) slide(*w.sldEQ[i], stored.sliders[i]);
    slide(w.sldReverb, stored.reverbMs);
    slide(*w.sldTempo[kTempo], stored.tempo);
    slide(*w.sldTempo[kRate], stored.rate);
    slide(*w.sldTempo[kPitch], stored.pitch);
    Edited.effects = sliderValues();
    Edited.effects.rate = RateOfSlider(Edited.effects.rate, EditedRecord().Freq);
    w.txtFXpreset.caption = name;
    w.btDelFXpreset.enabled = true;
    ApplyEffects();
    changed();
}

bool agreed(const char* question, const char* verb) {
    return messageBox(LnBox(question), frmFX().cmbFXpreset.text(), BoxKind::question, BoxButtons::yesNo,
                      Verbs(verb, "vbKeep", true)) == BoxAnswer::yes;
}

void btAddFXpreset_Click() {
    JingleWindow& w = frmFX();
    std::string name = Trim(w.txtFXpreset.caption());
    if (name.empty()) {
        setFocus(w.txtFXpreset);
        return;
    }
    const auto names = EffectPresets();
    const bool known = std::ranges::any_of(names, [&](const std::string& n) { return SameText(n, name); });
    if (known && !agreed("fxMsrp", "vbReplace")) return;
    if (WriteEffectPreset(name, sliderValues())) {
        fillPresets(name);
    } else {
        messageBox(LnBox("mFolderNotWritable"), name, BoxKind::warning, BoxButtons::ok);
    }
}

void btDelFXpreset_Click() {
    const std::string name = frmFX().cmbFXpreset.text();
    if (name.empty() || !agreed("fxMsdp", "vbDelete")) return;
    DeleteEffectPreset(name);
    fillPresets({});
}

}  // namespace

void WireEffectsPage() {
    JingleWindow& w = frmFX();
    const auto told = [](Control& slider, const Control& value) {
        slider.onDescribe = [&value] { return value.caption(); };
    };
    for (std::size_t i = 0; i < kEqBands; ++i) told(*w.sldEQ[i], *w.lblEQV[i]);
    for (std::size_t i = 0; i < w.sldTempo.size(); ++i) told(*w.sldTempo[i], *w.lblTempoVal[i]);
    told(w.sldReverb, w.lblReverbVal);
    for (int i = 0; i < kEqBands; ++i)
        w.sldEQ[static_cast<std::size_t>(i)]->onChange = [i] {
            guarded("frmFX.sldEQ_Change", [&] { sldEQ_Change(i); });
        };
    w.sldReverb.onChange = [] { guarded("frmFX.sldReverb_Change", sldReverb_Change); };
    for (std::size_t i = 0; i < w.sldTempo.size(); ++i)
        w.sldTempo[i]->onChange = [i] { guarded("frmFX.sldTempo_Change", [&] { sldTempo_Change(i); }); };
    w.cmbFXpreset.onChange = [] { guarded("frmFX.cmbFXpreset_Click", cmbFXpreset_Click); };
    w.btAddFXpreset.onClick = [] { guarded("frmFX.btAddFXpreset_Click", btAddFXpreset_Click); };
    w.btDelFXpreset.onClick = [] { guarded("frmFX.btDelFXpreset_Click", btDelFXpreset_Click); };
}

void ShowEffects() {
    JingleWindow& w = frmFX();
    guarded("frmFX.EQBands", [&] {
        const auto centres = EqCentres();
        for (std::size_t i = 0; i < kEqBands; ++i) w.lblEQ[i]->caption = bandName(centres[i]);
    });
    for (Control* slider : w.sldEQ) {
        slider->minimum = -MostGain();
        slider->maximum = MostGain();
    }
    w.sldTempo[kTempo]->minimum = -MostTempo();
    w.sldTempo[kTempo]->maximum = MostTempo();
    w.sldTempo[kRate]->minimum = -MostRateDown();
    w.sldTempo[kRate]->maximum = MostRateUp();
    w.sldTempo[kPitch]->minimum = -MostPitch();
    w.sldTempo[kPitch]->maximum = MostPitch();
    fillPresets({});
    w.txtFXpreset.caption = std::string();
    showSliders();
    showTexts();
}

void ResetEffects() {
    Edited.effects = EffectVector();
    Edited.effects.rate = EditedRecord().Freq;
    ApplyEffects();
    fillPresets({});
    showSliders();
    changed();
}

void ApplyEffects() {
    const EffectVector& e = Edited.effects;
    for (int i = 0; i < kEqBands; ++i) EditBand(Edited.index, i, e.gain(i));
    EditReverb(Edited.index, e.reverbMs);
    EditTempo(Edited.index, TempoPart::tempo, e.tempo);
    EditTempo(Edited.index, TempoPart::rate, e.rate);
    EditTempo(Edited.index, TempoPart::pitch, e.pitch);
}

}  // namespace zv
