#include "ui/edit/jingle_editor.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "audio/edit_sound.h"
#include "audio/play.h"
#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/editor_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings_file.h"
#include "ui/edit/edited_file.h"
#include "ui/edit/edited_jingle.h"
#include "ui/edit/effects_page.h"
#include "ui/edit/level_page.h"
#include "ui/edit/playhead.h"
#include "ui/edit/positions_page.h"
#include "ui/edit/undo.h"
#include "ui/edit/wave_canvas.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/captions.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/highlight.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

constexpr int kFollowMs = 40;  ///< of the digits
constexpr int kEffectsPage = 0;
constexpr int kFullVolume = 100;  ///< percent
constexpr double kKilo = 1000;

bool wired = false;

UiTimer& timerPos() {
    static UiTimer timer("TimerPos", kFollowMs);
    return timer;
}

UiTimer& timerWindow() {
    static UiTimer timer("TimerFX", kFollowMs);
    return timer;
}

/// ckPlay in the playing colour or in that of the jingle's button.
void showPlaying() {
    JingleWindow& w = frmFX();
    const JingleRecord& j = EditedRecord();
    const bool sounding = Plays(Edited.index);
    w.ckPlay.backColor =
        sounding ? playingSettings.PlayingColor : (j.BTNCol == kFaceColourText ? kButtonFace : j.BackRGB);
    w.ckPlay.caption = (sounding ? "\xE2\x96\xA0 " : "\xE2\x96\xB6 ") + w.lblJingleToFX.caption();
}

void TimerPosTick() {
    guarded("frmFX.TimerPos_Timer", [] {
        if (!FxOpen) return;
        ShowPlayhead();
        if (Sounds(Edited.index)) return;
        timerPos().stop();
        showPlaying();
    });
}

/// What the jingle is, or what is wrong with it.
std::string facts() {
    const JingleRecord& j = EditedRecord();
    if (!FileNote().empty()) return FileNote();
    if (j.StopPos != 0 && j.StopPos <= j.CueStart) return Ln("fxStopBeforeStart");
    std::string line = GetFileName(j.Path);
    const double length = EditSeconds(Edited.index, EditLength(Edited.index).length);
    for (const std::string& fact :
         {paletteSettings.PaletteIndex, NumberText(j.Freq / kKilo) + " kHz", seconds2msd(length)})
        if (!fact.empty()) line += "  \xC2\xB7  " + fact;
    return line;
}

/// What goes on by itself while the window is open.
void TimerWindowTick() {
    guarded("frmFX.TimerWindow_Timer", [] {
        if (!FxOpen) return;
        if (!EditedIsThere()) {
            OKfx();
            return;
        }
        ShowWave();
        FollowPart();
        FollowFile();
        frmFX().lblFacts.caption = facts();
    });
}

void follow() {
    showPlaying();
    ShowPlayhead();
    if (Sounds(Edited.index)) timerPos().start();
}

/// A sequence plays straight through while its positions are worked on, unless it is on air.
void putSeqAside() {
    JingleRecord& j = EditedRecord();
    if (Edited.entry.Seq == 0 || Sounds(Edited.index)) return;
    j.Seq = frmFX().TabFX.listIndex() == kEffectsPage ? Edited.entry.Seq : 0;
}

void TabFX_Click() {
    const int page = frmFX().TabFX.listIndex();
    if (page != editorSettings.ActiveFXTab) {
        editorSettings.ActiveFXTab = static_cast<std::uint8_t>(page);
        WriteSetting("ActiveFXTab", std::to_string(page));
    }
    putSeqAside();
}

void listen(ListenFrom from) {
    if (!EditedIsThere()) return;
    if (!ListenTo(Edited.index, from)) Error_("Can't play jingle stream from the jingle editor");
    follow();
}

void key(KeyEvent& event) {
    const Control* focused = focusedControl();
    const ControlKind kind = focused == nullptr ? ControlKind::window : focused->kind;
    const bool typing =
        kind == ControlKind::textBox || kind == ControlKind::comboBox || kind == ControlKind::number;
    const bool presses =
        kind == ControlKind::button || kind == ControlKind::checkBox || kind == ControlKind::option;
    if (event.shift != 0) return;
    if (event.key == Key::space && !typing && !presses) {
        event.consumed = true;
        if (!event.repeat) Play();
    } else if ((event.key == static_cast<Key>('I') || event.key == static_cast<Key>('O')) && !typing &&
               (Sounds(Edited.index) || Playhead() > 0)) {
        event.consumed = true;
        MovePoint(event.key == static_cast<Key>('O') ? CuePoint::stop : CuePoint::start, Playhead());
    }
}

void wire() {
    JingleWindow& w = frmFX();
    WireEffectsPage();
    WirePositionsPage();
    WireLevel();
    WireWave();
    WirePlayhead();
    timerWindow().handler = TimerWindowTick;
    timerPos().handler = TimerPosTick;
    w.ckPlay.onClick = Play;
    w.PlayFromStart.onClick = PlayFromStart_Click;
    w.PlayFromLoopIn.onClick = PlayFromLoopIn_Click;
    w.TestLoopOut.onClick = TestLoopOut_Click;
    w.btUndoAll.onClick = UndoAll;
    w.btReset.onClick = resetfx;
    w.btOK.onClick = OKfx;
    w.TabFX.onChange = [] { guarded("frmFX.TabFX_Click", TabFX_Click); };
    w.form.onKey = key;
    w.form.onTexts = [] {
        if (FxOpen) ShowPositionTexts();
    };
    w.form.onClosed = [] { guarded("frmFX.Form_Unload", OKfx); };
}

void showAll() {
    ShowEffects();
    ShowPositions();
    ShowLevel();
}

void open(int index) {
    JingleWindow& w = frmFX();
    const JingleRecord& j = Jingle(index);
    if (!std::exchange(wired, true)) wire();
    MenuJ = index;
    ResetJingles();
    const bool marked = frmMain().display.lblErr.visible && !ErrMarkShows("h");
    if (marked) ErrDisp("wait");
    Edited.index = index;
    Edited.entry = j.persisted();
    Edited.channel = j.hPlay;
    Edited.unsavedOnEntry = PalToSave;
    Edited.fileLength = std::numeric_limits<double>::infinity();
    Edited.effects = ParseFXV(j.FXV, j.Freq).effects;
    FxOpen = true;
    w.JID.caption = std::to_string(index);
    w.lblJingleToFX.caption = btCaption(j.Path);
    w.lblFacts.caption = facts();
    w.TabFX.listIndex = std::clamp<int>(editorSettings.ActiveFXTab, 0, 1);
    EditAtOnce(index);
    w.showLoop(j.Seq != 0, Ln(j.Seq != 0 ? "fxlblSeqModNotice" : "fxNoSequence"));
    ResetPlayhead();
    showAll();  // before it opens, so that there is room for every text
    w.form.open(&w.ckPlay);
    OpenWave();
    OpenLevel();
    OpenFileWatch();
    timerWindow().start();
    // Positions beyond the end of their file were brought into it: nobody edited that.
    Edited.entry.CueStart = j.CueStart;
    Edited.entry.StopPos = j.StopPos;
    Edited.entry.LoopIn = j.LoopIn;
    Edited.entry.LoopOut = j.LoopOut;
    Jingle(index).SeqBefore = Edited.entry.Seq;
    OpenEditorStep(index);
    putSeqAside();
    follow();
    if (marked) ErrDisp("hide");  // the mark that was there comes back
}

}  // namespace

void clFXSet(int index) {
    guarded("modClick.clFXSet", [&] {
        Disarm(frmMain().options.ckFXI);
        OptionControl.clear();
        OptionCode.clear();
        OKfx();
        if (Jingle(index).Path.empty() || Jingle(index).MissingFile || Jingle(index).hPlay == 0) {
            ResetJingles();
            return;
        }
        open(index);
    });
}

void Play() {
    guarded("frmFX.ckPlay_Click", [] {
        if (!FxOpen) return;
        if (Plays(Edited.index)) {
            ListenEnd(Edited.index);
            follow();
        } else {
            putSeqAside();
            listen(ListenFrom::start);
        }
    });
}

void PlayFromStart_Click() {
    guarded("frmFX.PlayFromStart_Click",
            [] { listen(frmFX().optStartEnd[1]->value == 1 ? ListenFrom::end : ListenFrom::start); });
}

void PlayFromLoopIn_Click() {
    guarded("frmFX.PlayFromLoopIn_Click", [] { listen(ListenFrom::loopIn); });
}

void TestLoopOut_Click() {
    guarded("frmFX.TestLoopOut_Click", [] { listen(ListenFrom::loopsTurn); });
}

void resetfx() {
    guarded("frmFX.resetfx", [] {
        if (frmFX().TabFX.listIndex() == kEffectsPage) {
            ResetEffects();
            return;
        }
        EditVolume(Edited.index, kFullVolume);
        ResetPositions();
        ShowLevel();
    });
}

void UndoAll() {
    guarded("frmFX.btUndoAll_Click", [] {
        JingleRecord& j = EditedRecord();
        const std::uint8_t seq = j.Seq;
        j.persisted() = Edited.entry;
        j.Seq = seq;
        j.FadeAttrib = FadeAttribOf(j);
        Edited.effects = ParseFXV(j.FXV, j.Freq).effects;
        ApplyEffects();
        EditVolume(Edited.index, j.Volm);
        EditLoop(Edited.index);
        ArmStopSync(Edited.index);
        showAll();
        UpdateJFX();
    });
}

void OKfx() {
    if (!FxOpen) return;
    guarded("frmFX.OKfx", [] {
        JingleWindow& w = frmFX();
        JingleRecord& j = EditedRecord();
        const bool there = EditedIsThere();
        if (there) {
            UpdateJFX();
            if (Plays(Edited.index)) ListenEnd(Edited.index);
            j.Seq = j.SeqBefore;
            EditDone(Edited.index);
        }
        timerPos().stop();
        timerWindow().stop();
        CloseWave();
        CloseLevel();
        const bool otherFile = there && EditedFileReplaced();
        CloseFileWatch();
        FxOpen = false;
        CloseEditorStep();
        if (there) {
            j.EndOffset = EndOffsetCalc(Edited.index);
            j.Duration = JDurationCalc(Edited.index);
        }
        if (JingleButton* b = Button(Edited.index); there && b != nullptr)
            b->b_Jingle.caption = ButtonText(Edited.index);
        ResetJingles();
        w.form.close();
        w.cmbFXpreset.items = std::vector<std::string>();
        if (otherFile) EditReopen(Edited.index);
    });
    FxOpen = false;
}

}  // namespace zv
