#include "ui/windows/midi_settings_window.h"

#include <string>
#include <vector>

#include "midi/settings_commands.h"
#include "midi/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/midi_settings.h"
#include "ui/windows/midi_learn.h"

namespace zv {

namespace {

constexpr int kWidth = 640, kChannels = 16, kLargestVelocity = 127, kChannelPixels = 90;

/// Part `i` of a text that names several controls.
std::string part(const char* key, int i) {
    const std::string text = Ln(key);
    std::size_t from = 0;
    for (; i > 0 && from != std::string::npos; --i) {
        from = text.find(',', from);
        from = from == std::string::npos ? from : from + 1;
    }
    return from == std::string::npos ? std::string() : text.substr(from, text.find(',', from) - from);
}

void show(Control& box, const ShownList& list) {
    box.items = list.rows;
    box.listIndex = list.selected;
}

/// A list or key of the window, guarded and only while it is open: filling it triggers nothing.
template <class Body>
std::function<void()> whileOpen(FormWindow& form, const char* procedure, Body body) {
    return [&form, procedure, body] {
        if (form.isOpen()) {
            guarded(procedure, body);
        }
    };
}

}  // namespace

MidiSettingsWindow::MidiSettingsWindow() {
    for (int i = 0; i < static_cast<int>(ckMIDIEnable.size()); ++i) {
        ckMIDIEnable[static_cast<std::size_t>(i)] =
            &form.control("ckMIDIEnable", ControlKind::checkBox, {}, i);
    }
    for (int i = 0; i < static_cast<int>(lblMIDIOutFixed.size()); ++i) {
        lblMIDIOutFixed[static_cast<std::size_t>(i)] =
            &form.control("lblMIDIOutFixed", ControlKind::label, {}, i);
    }
    txtMIDIOutVel.maximum = kLargestVelocity;
    txtMIDIOutVel.standard = kLargestVelocity;
    FormCard surface{
        .title = "sMIDISurface",
        .rows = {{.cells = {{.control = ckMIDIEnable[0], .tip = "sMIDIEnableTip"}}},
                 {.label = "sMIDIDevice",
                  .cells = {{.control = &cmbInDevsGUI, .tip = "sMIDIDeviceTip", .width = kRestOfRow}}},
                 {.cells = {{.control = ckMIDIEnable[1], .tip = "sMIDIHideTip"}}},
                 {.label = lblMIDIpresets,
                  .cells = {{.control = &cmbMIDIpresets, .tip = "sMIDIPresetsTip", .width = kRestOfRow},
                            {.control = &btMIDICopy, .tip = "sMIDICopyTip"},
                            {.control = &btMIDIDelete, .tip = "sMIDIDeleteTip", .role = KeyRole::destroy}}},
                 {.label = "sMIDILearn",
                  .cells = {{.control = &MIDIVol, .tip = "sMIDIVolTip"},
                            {.control = &MIDIAmix, .tip = "sMIDIAmixTip"},
                            {.control = &btMIDIOutReset, .tip = "mMIDIOutResetDesc"}}}}};
    FormCard fixed{
        .title = "sMIDIFixed",
        .rows = {
            {.cells = {{.control = ckMIDIEnable[2], .tip = "sMIDIFixedTip"}}},
            {.label = "sMIDIDevice",
             .cells =
                 {{.control = &cmbMIDIOutFixedDevsGUI, .tip = "sMIDIFixedDeviceTip", .width = kRestOfRow}}},
            {.label = *lblMIDIOutFixed[0],
             .cells = {{.control = &cmbMIDIOutFixedChan, .tip = "sMIDIChanTip", .width = kChannelPixels}}},
            {.label = *lblMIDIOutFixed[1], .cells = {{.control = &txtMIDIOutVel, .tip = "sMIDIVelTip"}}}}};
    form.describe({.blocks = {{surface}, {fixed}},
                   .note = "sMIDIActsAtOnce",
                   .keys = {{.control = &btOK, .tip = "sMIDIOKTip", .role = KeyRole::accept}},
                   .width = kWidth});
    wire();
}

void MidiSettingsWindow::wire() {
    for (std::size_t i = 0; i < ckMIDIEnable.size(); ++i) {
        ckMIDIEnable[i]->onChange = whileOpen(form, "frmSett.ckMIDIEnable_Click", [this, i] {
            ckMIDIEnable_Click(static_cast<MidiSwitch>(i), ckMIDIEnable[i]->value == 1);
            ShowMidiLists();
        });
    }
    cmbInDevsGUI.onChange =
        whileOpen(form, "frmSett.cmbInDevsGUI_Click", [this] { cmbInDevsGUI_Click(cmbInDevsGUI.listIndex); });
    cmbMIDIOutFixedDevsGUI.onChange = whileOpen(form, "frmSett.cmbMIDIOutFixedDevsGUI_Click", [this] {
        cmbMIDIOutFixedDevsGUI_Click(cmbMIDIOutFixedDevsGUI.listIndex);
    });
    cmbMIDIpresets.onChange = whileOpen(form, "frmSett.cmbMIDIpresets_Click",
                                        [this] { cmbMIDIpresets_Click(cmbMIDIpresets.listIndex); });
    cmbMIDIOutFixedChan.onChange = whileOpen(form, "frmSett.cmbMIDIOutFixedChan_Click", [this] {
        cmbMIDIOutFixedChan_Click(cmbMIDIOutFixedChan.listIndex + 1);
    });
    txtMIDIOutVel.onChange = whileOpen(form, "frmSett.txtMIDIOutVel_Change",
                                       [this] { txtMIDIOutVel_Change(txtMIDIOutVel.value); });
    btMIDICopy.onClick = btMIDICopy_Click;
    btMIDIDelete.onClick = btMIDIDelete_Click;
    MIDIVol.onClick = [] { clMIDI("Vol", -1); };
    MIDIAmix.onClick = [] { clMIDI("Amix", -1); };
    btMIDIOutReset.onClick = [] { clMIDI("btMIDIOutReset", -1); };
    btOK.onClick = [this] { guarded("frmMIDISettings.btOK_Click", [this] { form.close(); }); };
}

void ShowMidiLists() {
    MidiSettingsWindow& w = frmMIDISettings();
    if (!w.form.isOpen()) {
        return;
    }
    for (std::size_t i = 0; i < w.ckMIDIEnable.size(); ++i) {
        w.ckMIDIEnable[i]->caption = part("sckMIDIEnable", static_cast<int>(i));
    }
    for (std::size_t i = 0; i < w.lblMIDIOutFixed.size(); ++i) {
        w.lblMIDIOutFixed[i]->caption = part("slblMIDIOutFixed", static_cast<int>(i));
    }
    const bool in = midiSettings.MIDIEnabled == 1, out = midiSettings.MIDIOutFixedEnabled == 1;
    w.ckMIDIEnable[0]->value = in ? 1 : 0;
    w.ckMIDIEnable[1]->value = midiSettings.MIDIAutoHide == 1 ? 1 : 0;
    w.ckMIDIEnable[2]->value = out ? 1 : 0;
    show(w.cmbInDevsGUI, cmbInDevsGUI);
    show(w.cmbMIDIOutFixedDevsGUI, cmbMIDIOutFixedDevsGUI);
    show(w.cmbMIDIpresets, cmbMIDIpresets);
    std::vector<std::string> channels;
    for (int i = 1; i <= kChannels; ++i) {
        channels.push_back(std::to_string(i));
    }
    w.cmbMIDIOutFixedChan.items = channels;
    w.cmbMIDIOutFixedChan.listIndex = midiSettings.MIDIOutFixedChan - 1;
    w.txtMIDIOutVel.value = midiSettings.MIDIOutFixedVel;
    for (Control* c : {&w.cmbInDevsGUI, &w.lblMIDIpresets, &w.cmbMIDIpresets, w.ckMIDIEnable[1]}) {
        c->enabled = in;
    }
    for (Control* c : {&w.cmbMIDIOutFixedDevsGUI, w.lblMIDIOutFixed[0], w.lblMIDIOutFixed[1],
                       &w.cmbMIDIOutFixedChan, &w.txtMIDIOutVel}) {
        c->enabled = out;
    }
    w.btMIDICopy.enabled = in && MIDICopyEnabled();
    w.btMIDIDelete.enabled = in && MIDIDeleteEnabled();
    for (Control* c : {&w.MIDIVol, &w.MIDIAmix, &w.btMIDIOutReset}) {
        c->enabled = MidiLearnOffered();
    }
}

void OpenMidiSettings() {
    guarded("frmMIDISettings.Open", [] {
        frmMIDISettings().form.open();
        ShowMidiLists();
    });
}

MidiSettingsWindow& frmMIDISettings() {
    static MidiSettingsWindow window;
    return window;
}

}  // namespace zv
