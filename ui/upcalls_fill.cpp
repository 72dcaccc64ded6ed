#include "ui/upcalls_fill.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "audio/output_watch.h"
#include "audio/play.h"
#include "audio/streams.h"
#include "audio/upcalls.h"
#include "midi/feedback.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/palette_lines.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "model/upcalls.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/dialog_language.h"
#include "platform/waiting.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/upcalls.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/carried.h"
#include "ui/edit/leave_palette.h"
#include "ui/edit/live_tab.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/playlists.h"
#include "ui/edit/remove.h"
#include "ui/edit/selection.h"
#include "ui/press/actions.h"
#include "ui/press/midi_fill.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/apply_text.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/clock.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/highlight.h"
#include "ui/screen/quiet_line.h"
#include "ui/screen/shaded.h"
#include "ui/windows/console_window.h"
#include "ui/windows/question_window.h"
#include "ui/windows/report_window.h"
#include "ui/windows/splash.h"

namespace zv {

namespace {

constexpr Colour kMarkOff = 0;

void fillStartup() {
    startupUpcalls.showErrorMark = ShowErrorMark;
    startupUpcalls.startSaveTimer = [] { timers().SaveTimer.restart(); };
    startupUpcalls.applyText = ApplyText;
    startupUpcalls.paletteNames = [] { return frmMain().palettes.lstPal.items(); };
    startupUpcalls.gridChanged = [] { LastPalIdx = gridSettings.JinglesRows * gridSettings.JinglesCols - 1; };
    startupUpcalls.splashStep = [](const std::string& text) { frmSplash().lblStep.caption = text; };
    startupUpcalls.splashBar = [](int width) { frmSplash().picLoad.width = width; };
}

/// The small field, the number and the marks of a slot that holds nothing.
void showEmpty(int index) {
    JingleButton* b = Button(index);
    if (b == nullptr) {
        return;
    }
    b->b_Jingle.caption = std::string();
    b->b_Jingle.toolTip = std::string();
    b->picPlaylist.visible = false;
    HideMarks(index);
    PaintAtRest(index);
}

void paintAtRest(int index) {
    if (!SelectorsOn) {
        ShowState(index, Jingle(index).PlayingOtherPal);
        if (Jingle(index).PlayingOtherPal) {
            PaintButton(index, playingSettings.PlayingColorAnotherPal,
                        GetForeColor(playingSettings.PlayingColorAnotherPal));
            return;
        }
    }
    PaintAtRest(index);
}

void showNames(int index) {
    JingleButton* b = Button(index);
    if (b == nullptr) {
        return;
    }
    if (!Jingle(index).PlayingOtherPal) {
        b->b_Jingle.caption = Ampersand(btCaption(Jingle(index).Path));
        HideMarks(index);
    }
    if (PlaylistsEnabled) {
        PLicon(index);
    }
    paintAtRest(index);
}

void showLoaded(int index) {
    JingleButton* b = Button(index);
    if (b == nullptr) {
        return;
    }
    const JingleRecord& j = Jingle(index);
    b->b_Jingle.caption = ButtonText(index);
    b->b_Jingle.toolTip = StartIgnored(index) ? Ln("mStartIgnored") : std::string();
    ShowMarks(index);
    b->fx_Jingle.visible = j.CueStart != 0 || j.FadeOut != 0 || j.StopPos != 0 || j.FXV != NeutralFXV(j.Freq);
    if (!j.Playing || j.PlayingOtherPal) {
        paintAtRest(index);
    }
}

void showFailed(int index) {
    JingleButton* b = Button(index);
    if (b == nullptr) {
        return;
    }
    const JingleRecord& j = Jingle(index);
    b->b_Jingle.caption = Ampersand(btCaption(j.Path));
    b->b_Jingle.toolTip =
        j.MissingFile ? Ln("errMissFile") : MakeBJingName(BassErrMessage(j.BassErr), j.Path);
    HideMarks(index);
    paintAtRest(index);
}

void showStarting(int index) {
    if (JingleButton* b = Button(index)) {
        b->JRemLev.width = b->JremBG.width();
        b->JRemLev.backColor = barSettings.JRemLevCol;
    }
}

void showStarted(int index) {
    if (JingleButton* b = Button(index)) {
        b->JRemLev.visible = barSettings.JRemLevPos > 0;
        b->JremBG.visible = barSettings.JRemLevPos > 0;
        // A fade that the start took back may have left them flashing.
        b->lp_Jingle.foreColor = Shaded.lp;
        b->sq_Jingle.foreColor = Shaded.sq;
        b->fx_Jingle.foreColor = Shaded.fx;
    }
}

void fillAudio() {
    audioUpcalls.slotReset = showEmpty;
    audioUpcalls.slotBound = ShowBound;
    audioUpcalls.namesRead = showNames;
    audioUpcalls.fileMissing = [](int index) {
        if (JingleButton* b = Button(index)) {
            b->b_Jingle.toolTip = Ln("errMissFile");
        }
    };
    audioUpcalls.slotFailed = showFailed;
    audioUpcalls.slotLoaded = showLoaded;
    audioUpcalls.slotOpened = [](int index) {
        const JingleRecord& j = Jingle(index);
        if (!j.PlayingOtherPal && ChoosingTimeJingle && !j.Path.empty() && !j.MissingFile) {
            PaintButton(index, Shaded.ta, GetForeColor(Shaded.ta, "jingle"));
        }
    };
    audioUpcalls.startIgnored = [](int) { TellForAWhile(Ln("mStartIgnored")); };
    audioUpcalls.slotWaits = [](int) { ErrDisp("wait", 0, Ln("errFileWait")); };
    audioUpcalls.pressReady = [](int index, int velocity) {
        if (ErrMarkShows("h")) {
            HideErrMark();
        }
        clPlay(index, velocity);
    };
    audioUpcalls.playStarting = showStarting;
    audioUpcalls.playStarted = showStarted;
    audioUpcalls.loopLeft = [](int index) {
        if (JingleButton* b = Button(index)) {
            b->sq_Jingle.foreColor = kMarkOff;
        }
    };
    audioUpcalls.feedback = [](int index, Feedback moment) {
        if (moment == Feedback::stopping) {
            SlotStopping(index);
        } else {
            SlotOpened(index, moment == Feedback::loaded);
        }
    };
    audioUpcalls.streamFades = [](int ms) {
        timers().TimerAutoMixStreamByTA.setInterval(std::max(1, ms));
        timers().TimerAutoMixStreamByTA.restart();
    };
    audioUpcalls.hideClock = StopClock;
    audioUpcalls.outputsChanged = [] {
        if (OutputTrouble().empty()) {
            ErrDisp("ok", 0, Ln("mOutBack"));
        } else {
            ErrDisp("no", 1, OutputTrouble());
        }
        DateTimeUpdate();
    };
    audioUpcalls.noOutputDevice = [] { ErrDisp("no", 0, Ln("mNoOutDev")); };
}

void fillModel() {
    modelUpcalls.beginLoad = [] {
        PaletteOpening = true;
        ErrDisp("hide");
        ErrDisp("wait", 0, Ln("errLoadPal"));
        HideSelectors();
        if (paletteListSettings.CenterLstPal == 1) {
            CentrePaletteList();
        }
    };
    modelUpcalls.endLoad = [] {
        PaletteOpening = false;
        PaletteOpened();
    };
    modelUpcalls.paletteNamed = MovedPaletteNamed;
    modelUpcalls.paletteLeaves = LeavePalette;
    modelUpcalls.slotMoved = ClearButton;
    modelUpcalls.showPaletteName = [](const std::string& name) {
        frmMain().display.txtDisPal.caption = name;
    };
    modelUpcalls.paletteListChanged = [](const std::string& name) {
        lstPalRefresh();
        SelectPalette(name);
        if (paletteListSettings.CenterLstPal == 1) {
            CentrePaletteList();
        }
    };
    modelUpcalls.removalsChanged = [] {
        std::vector<std::string> sections, slots;
        for (const Removal& removal : PendingRemovals()) {
            sections.push_back(removal.section);
            slots.push_back(std::to_string(removal.slot));
        }
        frmMain().palettes.lstSection.items = sections;
        frmMain().palettes.lstJID.items = slots;
    };
    modelUpcalls.pumpEvents = processEvents;
}

}  // namespace

void FillUpcalls() {
    FillMidiUpcalls();
    fillStartup();
    boxWords = [] { return BoxWords{Ln("mOK"), Ln("mCancel"), Ln("mYes"), Ln("mNo")}; };
    dialogLanguage = [] {
        static const std::map<std::string, std::string> codes{
            {kFrench, "fr"}, {"Deutsch", "de"}, {"Español", "es"}};
        const auto found = codes.find(programSettings.Language);
        return found == codes.end() ? std::string() : found->second;
    };
    FillQuestions();
    refusedMeanwhile = [] {
        const Waiting* waiting = waitingNow();
        const bool answer = waiting != nullptr && waiting->what == Waiting::For::answer;
        TellForAWhile(Ln(answer ? "mAnswerFirst" : "mWindowFirst"));
    };
    FillConsoleUpcalls();
    FillReportUpcalls();
    fillModel();
    fillAudio();
    FillActions();
    FillLiveUpcalls();
    FillAnnouncerUpcalls();
}

}  // namespace zv
