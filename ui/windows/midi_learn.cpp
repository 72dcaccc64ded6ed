#include "ui/windows/midi_learn.h"

#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "midi/state.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/midi_settings.h"
#include "ui/records/main_window.h"
#include "ui/windows/midi_button_window.h"
#include "ui/windows/midi_small_windows.h"

namespace zv {

namespace {

LearnWindow shownWindow = LearnWindow::none;

FormWindow* formOf(LearnWindow window) {
    switch (window) {
        case LearnWindow::button:
            return &frmMIDIButton().form;
        case LearnWindow::scroll:
            return &frmMIDIScroll().form;
        case LearnWindow::fader:
            return &frmMIDIFader().form;
        case LearnWindow::reset:
            return &frmMIDIReset().form;
        case LearnWindow::none:
            break;
    }
    return nullptr;
}

void fill(LearnWindow window) {
    switch (window) {
        case LearnWindow::button:
            frmMIDIButton().show();
            break;
        case LearnWindow::scroll:
            frmMIDIScroll().show();
            break;
        case LearnWindow::fader:
            frmMIDIFader().show();
            break;
        case LearnWindow::reset:
            frmMIDIReset().show();
            break;
        case LearnWindow::none:
            break;
    }
}

}  // namespace

bool MidiLearnOffered() {
    return MIDIInOpen && !midiSettings.MIDIDevice.empty() && midiSettings.MIDIEnabled == 1;
}

void clMIDI(const std::string& ctrl, int index) {
    guarded("modMidiFunctions.clMIDI", [&] {
        if (MIDILearnActive) {
            return;
        }
        if (!OpenLearn(ctrl, index)) {
            return;
        }
        FormWindow& form = *formOf(MIDILearn.window);
        form.window.caption = MIDILearn.name + " - " + Ln("mmnuMIDI");
        shownWindow = MIDILearn.window;
        form.open();
        fill(shownWindow);
    });
}

void ShowLearn() {
    if (MIDILearn.window != LearnWindow::none) {
        fill(MIDILearn.window);
        return;
    }
    if (FormWindow* form = formOf(shownWindow)) {
        fill(shownWindow);
        shownWindow = LearnWindow::none;
        form->close();
    }
}

void OpenLearnMenu(const std::string& ctrl) {
    if (!MidiLearnOffered()) {
        return;
    }
    popupMenu(frmMain().window, {{"mnuMIDI", Ln("mmnuMIDI"), true, false, [ctrl] { clMIDI(ctrl, -1); }}});
}

}  // namespace zv
