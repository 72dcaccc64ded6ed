#include "ui/screen/button_faces.h"

#include <array>
#include <cstddef>
#include <string>

#include "audio/sounding.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/language.h"
#include "startup/settings/bars_settings.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/captions.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

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

}  // namespace

void ShowPlayModeMark(int index) {
    JingleButton* b = Button(index);
    if (b == nullptr) {
        return;
    }
    const JingleRecord& j = Jingle(index);
    const bool filled = !j.Path.empty();
    constexpr std::array kSymbols{"m", "r", "v", "m", "w"};
    const auto mode = static_cast<std::size_t>(j.PlayMod);
    const ModeColour mark = PlayMod2Color(j.PlayMod);
    b->pm_Jingle.foreColor = mark.colour;
    b->pm_Jingle.caption = kSymbols[mode < kSymbols.size() ? mode : 0];
    b->pm_Jingle.visible = filled && mark.visible && j.Seq == 0;
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

void PaintMarks(int index, Colour lp, Colour sq, Colour fx) {
    if (JingleButton* b = Button(index)) {
        b->lp_Jingle.foreColor = lp;
        b->sq_Jingle.foreColor = sq;
        b->fx_Jingle.foreColor = fx;
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

ButtonColours RestColours(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.MissingFile || j.Unplayable) {
        return {BtnFaceColor, kMissingColour};
    }
    if (j.BTNCol.empty() || j.BTNCol == kFaceColourText) {
        return {BtnFaceColor, JingleForeColor};
    }
    return {j.BackRGB, j.ForeRGB};
}

bool HasPlaylistMark(int index, char letter) {
    const JingleButton* b = Button(index);
    return b != nullptr && b->picPlaylist.visible && b->lblPlaylist.caption() == std::string(1, letter);
}

std::string DescribeButton(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Kind == SlotKind::playlist) {
        return Ln("aPlaylist");
    }
    if (j.Path.empty()) {
        return Ln("aEmpty");
    }
    if (j.MissingFile || j.Unplayable) {
        return Ln("aMissing");
    }
    // Asks the engine: the bar may be hidden, and shows the state of the last tick.
    if (!Sounds(index)) {
        return Ln("aReady") + " " + seconds2msd(j.Duration) + optionsOf(j);
    }
    const std::string left = seconds2msd(PlayTimeOf(index).left);
    if (j.State == PlayState::stopping) {
        return Ln("aFading") + ", " + Ln("aTimeLeft") + " " + left;
    }
    if (j.PlayingOtherPal) {
        return Ln("aOtherPal") + ", " + Ln("aTimeLeft") + " " + left;
    }
    return Ln("aPlaying") + " " + left;
}

void DressButton(int index) {
    JingleButton& b = *Button(index);
    b.JremBG.backColor = barSettings.JRemLevTrBg == 1 ? kNoColour : barSettings.JRemLevColBg;
    b.JRemLev.backColor = barSettings.JRemLevCol;
    PaintMarks(index, Shaded.lp, Shaded.sq, Shaded.fx);
    PaintButton(index, BtnFaceColor, JingleForeColor);
}

}  // namespace zv
