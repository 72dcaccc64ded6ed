#include "ui/records/jingle_buttons.h"

#include <algorithm>
#include <array>
#include <memory>

#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/edit_commands.h"
#include "ui/press/press.h"
#include "ui/records/main_window.h"
#include "ui/screen/clock.h"
#include "ui/screen/colours.h"
#include "ui/screen/counter.h"

namespace zv {

namespace {

using enum ControlKind;

std::array<std::unique_ptr<JingleButton>, kJingles> family;

bool inRange(int index) { return index >= 0 && index < kJingles; }

/// What the marks of a button tell.
std::string optionsOf(const JingleRecord& j) {
    static constexpr std::array<const char*, 5> modes{"", "mmnuAutoRep", "mmnuTouch", "mmnuPlayStop",
                                                      "mmnuNoStop"};
    const auto mode = static_cast<std::size_t>(j.PlayMod);
    std::string told;
    for (const char* key : {j.Loop != 0 ? "mmnuLoop" : "", j.Seq != 0 ? "mmnuSeq" : "",
                            mode < modes.size() ? modes[mode] : ""}) {
        told += *key != '\0' ? ", " + Ln(key) : "";
    }
    return told;
}

/// State and time left, for a screen reader.
std::string described(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Path.empty()) {
        return Ln("aEmpty");
    }
    if (j.MissingFile || j.Unplayable) {
        return Ln("aMissing");
    }
    // Asked of the sound itself: the bar may be off, and is a tick behind.
    if (j.hPlay == 0 || BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_STOPPED) {
        return Ln("aReady") + " " + seconds2msd(j.Duration) + optionsOf(j);
    }
    const auto length = static_cast<double>(BASS_ChannelGetLength(j.hPlay, BASS_POS_BYTE));
    const auto position = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    const double bytes = std::max(0.0, length - position - j.EndOffset);
    const std::string left = seconds2msd(BASS_ChannelBytes2Seconds(j.hPlay, static_cast<QWORD>(bytes)));
    if (j.State == PlayState::stopping) {
        return Ln("aFading") + ", " + Ln("aTimeLeft") + " " + left;
    }
    if (j.PlayingOtherPal) {
        return Ln("aOtherPal") + ", " + Ln("aTimeLeft") + " " + left;
    }
    return Ln("aPlaying") + " " + left;
}

}  // namespace

JingleButton::JingleButton(Control& block, int index)
    : b_Jingle("b_Jingle", jingle, &block, index),
      JremBG("JremBG", shape, &b_Jingle, index),
      JRemLev("JRemLev", shape, &b_Jingle, index),
      lp_Jingle("lp_Jingle", symbol, &b_Jingle, index),
      sq_Jingle("sq_Jingle", symbol, &b_Jingle, index),
      fx_Jingle("fx_Jingle", symbol, &b_Jingle, index),
      pm_Jingle("pm_Jingle", symbol, &b_Jingle, index),
      picPlaylist("picPlaylist", picture, &b_Jingle, index),
      lblPlaylist("lblPlaylist", symbol, &b_Jingle, index),
      picbtnumber("picbtnumber", picture, &b_Jingle, index),
      lblbtnumber("lblbtnumber", label, &b_Jingle, index),
      ckJingSel("ckJingSel", checkBox, &b_Jingle, index) {
    for (Control* c :
         {&JremBG, &JRemLev, &lp_Jingle, &sq_Jingle, &fx_Jingle, &pm_Jingle, &picPlaylist, &ckJingSel}) {
        c->visible = false;
    }
    lblbtnumber.caption = std::to_string(index);
    lp_Jingle.caption = "l";
    sq_Jingle.caption = "s";
    fx_Jingle.caption = "e";
    pm_Jingle.caption = "m";
    JremBG.backColor = settings.JRemLevTrBg == 1 ? kNoColour : settings.JRemLevColBg;
    JRemLev.backColor = settings.JRemLevCol;
    lp_Jingle.foreColor = Shaded.lp;
    sq_Jingle.foreColor = Shaded.sq;
    fx_Jingle.foreColor = Shaded.fx;
    b_Jingle.onMouseDown = [index](const MouseEvent& e) { b_Jingle_MouseDown(index, e); };
    b_Jingle.onMouseUp = [index](const MouseEvent& e) { b_Jingle_MouseUp(index, e); };
    b_Jingle.onKeyDown = [index](KeyEvent& e) { b_Jingle_KeyDown(index, e); };
    b_Jingle.onDrop = [index](const std::string& path) { b_Jingle_OLEDragDrop(index, path); };
    b_Jingle.onDescribe = [index] {
        return guardedOr(".b_Jingle_Describe", std::string(), [&] { return described(index); });
    };
    ckJingSel.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::right) {
            ckJingleMenu();
        }
    };
}

JingleButton* Button(int index) {
    return inRange(index) ? family[static_cast<std::size_t>(index)].get() : nullptr;
}

JingleButton& MakeButton(int index) {
    auto& slot = family.at(static_cast<std::size_t>(index));
    if (!slot) {
        MainWindow& w = frmMain();
        slot = std::make_unique<JingleButton>(index >= kPaletteSlots ? w.fraHotJingles : w.fraJingles, index);
        slot->b_Jingle.visible = false;
        PaintButton(index, BtnFaceColor, JingleForeColor);
    }
    return *slot;
}

void ShowButton(int index, bool visible) {
    if (JingleButton* b = Button(index)) {
        b->b_Jingle.visible = visible;
    }
}

void HideMarks(int index) {
    if (JingleButton* b = Button(index)) {
        for (Control* c : {&b->lp_Jingle, &b->sq_Jingle, &b->fx_Jingle, &b->pm_Jingle}) {
            c->visible = false;
        }
    }
}

void ShowMarks(int index) {
    if (JingleButton* b = Button(index)) {
        const JingleRecord& j = Jingle(index);
        b->lp_Jingle.visible = j.Loop != 0;
        b->sq_Jingle.visible = j.Seq != 0;
        ShowPlayModeMark(index);
    }
}

void PaintButton(int index, Colour back, Colour fore) {
    if (JingleButton* b = Button(index)) {
        b->b_Jingle.backColor = back;
        b->b_Jingle.foreColor = fore;
        b->picPlaylist.backColor = back;
        b->picbtnumber.backColor = back;
        b->lblPlaylist.foreColor = fore;
        b->lblbtnumber.foreColor = fore;
    }
}

void ShowState(int index, bool sounds) {
    if (JingleButton* b = Button(index)) {
        const JingleRecord& j = Jingle(index);
        JingleState state = JingleState::rest;
        if (sounds) {
            state = j.PlayingOtherPal ? JingleState::otherPalette : JingleState::sounding;
        } else if (!j.Path.empty() && (j.MissingFile || j.Unplayable)) {
            state = JingleState::broken;
        }
        b->b_Jingle.value = static_cast<int>(state);
    }
}

void RestColours(int index, Colour& back, Colour& fore) {
    const JingleRecord& j = Jingle(index);
    if (j.MissingFile) {
        back = BtnFaceColor;
        fore = kMissingColour;
    } else if (j.BTNCol.empty() || j.BTNCol == kFaceColourText) {
        back = BtnFaceColor;
        fore = JingleForeColor;
    } else {
        back = j.BackRGB;
        fore = j.ForeRGB;
    }
}

bool HasPlaylistMark(int index, char letter) {
    const JingleButton* b = Button(index);
    return b != nullptr && b->picPlaylist.visible && b->lblPlaylist.caption() == std::string(1, letter);
}

}  // namespace zv
