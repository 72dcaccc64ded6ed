#include "app/rehearsed_screen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "audio/announcer.h"
#include "audio/devices.h"
#include "audio/sounding.h"
#include "audio/time_jingle.h"
#include "engine/bass.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/palette_lines.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings/warning_settings.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout_strip.h"
#include "ui/screen/warning.h"

namespace zv {
namespace {

constexpr Colour kRed = 255;
constexpr Colour kCarriedBorder = 0x0060FF;
constexpr double kAtItsEnd = 0.1;  // s: less left than this counts as none
constexpr int kBarMargin = 60;     // twips

std::string textOf(const std::string& value) { return "\"" + value + "\""; }
std::string textOf(int value) { return std::to_string(value); }

/// Keeps the first difference that it is told of.
struct Faults {
    std::string first;

    void expect(const Control& c, std::string_view what, const std::string& shown,
                const std::string& wanted) {
        if (shown != wanted) note(c, what, shown, wanted);
    }
    void expect(const Control& c, std::string_view what, int shown, int wanted) {
        if (shown != wanted) note(c, what, shown, wanted);
    }
    void expectOneOf(const Control& c, std::string_view what, int shown, std::initializer_list<int> allowed) {
        if (std::ranges::find(allowed, shown) == allowed.end()) note(c, what, shown, *allowed.begin());
    }
    void note(const Control& c, std::string_view what, const auto& shown, const auto& wanted) {
        if (!first.empty()) return;
        first = c.name + (c.index < 0 ? "" : "(" + std::to_string(c.index) + ")") + "." + std::string(what) +
                ": " + textOf(shown) + " instead of " + textOf(wanted);
    }
};

Colour shaded(Colour colour) { return ShadeColor(colour, darkSettings.ShadeOffsetVal); }

/// What an option is armed for: its key, its colour, and where it can go.
struct ArmedOption {
    std::string_view code;
    const Control* key;
    Colour colour;
    enum class Fits { all, filled, modes } fits;
    PlayMode mode = PlayMode::global;  ///< a button that has it shows it
};

std::array<ArmedOption, 10> armedOptions() {
    using enum ArmedOption::Fits;
    const MainWindow& w = frmMain();
    return {{{"ass", &w.palettes.ckAssign, markSettings.assColor, all},
             {"lp", &w.options.ckLoopI, markSettings.lpColor, all},
             {"sq", &w.options.ckLoopI, markSettings.sqColor, all},
             {"ar", &w.options.ckAutoRepI, markSettings.arColor, modes, PlayMode::autoRepeat},
             {"tc", &w.options.ckTouchI, markSettings.tcColor, modes, PlayMode::touch},
             {"ps", &w.options.ckPlayStopI, markSettings.psColor, modes, PlayMode::playStop},
             {"ns", &w.options.ckNoStopI, markSettings.nsColor, modes, PlayMode::noStop},
             {"co", &w.options.ckColorI, markSettings.coColor, filled},
             {"fx", &w.options.ckFXI, markSettings.fxColor, filled},
             {"ta", nullptr, markSettings.taColor, filled}}};
}

bool isBroken(const JingleRecord& j) { return j.MissingFile || j.Unplayable; }

std::pair<Colour, Colour> atRest(const JingleRecord& j) {
    if (isBroken(j)) return {BtnFaceColor, kRed};
    if (j.BTNCol.empty() || j.BTNCol == kFaceColourText) return {BtnFaceColor, JingleForeColor};
    const Colour back = shaded(HexToRGB(j.BTNCol));
    return {back, GetForeColor(back, "jingle")};
}

/// Face and border of a silent button while an option is armed.
void checkArmed(Faults& f, const JingleButton& b, const JingleRecord& j, const ArmedOption& option) {
    using enum ArmedOption::Fits;
    const bool fits =
        option.fits == all || (!j.Path.empty() && (option.fits == modes ? j.Seq == 0 : !j.MissingFile));
    const bool has = (option.code == "lp" && j.Loop != 0) || (option.code == "sq" && j.Seq != 0) ||
                     (option.mode != PlayMode::global && j.PlayMod == option.mode);
    const Colour back = fits ? shaded(option.colour) : BtnFaceColor;
    // What ended meanwhile keeps the face of what sounds until the option is spent.
    const Control& c = b.b_Jingle;
    if (c.backColor == playingSettings.PlayingColor || c.backColor == playingSettings.PlayingColorAnotherPal)
        return;
    f.expect(c, "backColor", c.backColor, back);
    f.expect(c, "foreColor", c.foreColor, j.MissingFile ? kRed : GetForeColor(back, "jingle"));
    f.expectOneOf(c, "borderColor", c.borderColor,
                  {!fits ? kNoColour
                   : has ? ShadeColor(back, -60)
                         : back,
                   kCarriedBorder});
}

void checkFace(Faults& f, int index, const JingleButton& b, DWORD active) {
    const JingleRecord& j = Jingle(index);
    const Control& c = b.b_Jingle;
    const bool sounds = active != BASS_ACTIVE_STOPPED;
    const JingleState state = sounds ? j.PlayingOtherPal ? JingleState::otherPalette : JingleState::sounding
                              : j.Path.empty() || !isBroken(j) ? JingleState::rest
                                                               : JingleState::broken;
    f.expect(c, "value", c.value, static_cast<int>(state));
    for (const Control* field : {&b.picPlaylist, &b.picbtnumber})
        f.expect(*field, "backColor", field->backColor, c.backColor);
    for (const Control* letter : {&b.lblPlaylist, &b.lblbtnumber})
        f.expect(*letter, "foreColor", letter->foreColor, c.foreColor);
    const auto [back, fore] = atRest(j);
    if (active == BASS_ACTIVE_PLAYING) {
        const Colour wanted =
            j.PlayingOtherPal ? playingSettings.PlayingColorAnotherPal : playingSettings.PlayingColor;
        f.expect(c, "backColor", c.backColor, wanted);
        if (wanted == back) return;
        f.expect(c, "foreColor", c.foreColor,
                 j.PlayingOtherPal ? GetForeColor(wanted) : playingSettings.PlayingFColor);
    }
    if (sounds || ColorPickerOpen) return;
    if (!SelectorsOn) {
        f.expect(c, "backColor", c.backColor, back);
        f.expect(c, "foreColor", c.foreColor, fore);
        f.expectOneOf(c, "borderColor", c.borderColor, {kNoColour, kCarriedBorder});
        return;
    }
    for (const ArmedOption& option : armedOptions())
        if (option.code == OptionCode) checkArmed(f, b, j, option);
}

/// Time left and length of what a slot plays, seconds.
std::pair<double, double> playTime(const JingleRecord& j) {
    const auto length = static_cast<double>(BASS_ChannelGetLength(j.hPlay, BASS_POS_BYTE));
    const auto at = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    const auto seconds = [&](double bytes) {
        return BASS_ChannelBytes2Seconds(j.hPlay, static_cast<QWORD>(std::max(0.0, bytes)));
    };
    const double left = std::floor(seconds(length - at - j.EndOffset) * 100 + 0.5) / 100;
    return {left < kAtItsEnd ? 0 : left,
            seconds(length - (j.CueStart < length ? j.CueStart : 0) - j.EndOffset)};
}

/// "1:04" or, in the last ten seconds, "9.8".
std::string shortTime(double seconds) {
    const int tenths = static_cast<int>(std::floor(seconds * 10 + 0.5 + 1e-9));
    const std::string whole = std::to_string(tenths / 10 % 60);
    const std::string minutes =
        tenths < 600 ? "" : std::to_string(tenths / 600) + (whole.size() < 2 ? ":0" : ":");
    return minutes + whole + (seconds < 10 ? "." + std::to_string(tenths % 10) : "");
}

void checkBar(Faults& f, const JingleButton& b, const JingleRecord& j, bool sounds) {
    if (BlinkTestOn) return;
    const bool shown = sounds && barSettings.JRemLevPos != 0;
    f.expect(b.JremBG, "visible", b.JremBG.visible, shown);
    f.expect(b.JRemLev, "visible", b.JRemLev.visible, shown);
    if (!sounds) return;
    const auto [left, length] = playTime(j);
    const double share = length > 0 ? std::min(1.0, left / length) : 0;
    const int width =
        static_cast<int>((b.b_Jingle.width() - kBarMargin) * share) / kTwipsPerPixel * kTwipsPerPixel;
    f.expect(b.JRemLev, "width", b.JRemLev.width, width);
    f.expect(b.JRemLev, "caption", b.JRemLev.caption,
             labelSettings.JDispDuration == 1 ? shortTime(left) : "");
    if (left > warningSettings.RemainWarn || !timers().TimerWarnBlink.enabled())
        f.expect(b.JRemLev, "backColor", b.JRemLev.backColor, barSettings.JRemLevCol);
}

void checkMarks(Faults& f, const JingleButton& b, const JingleRecord& j, bool sounds) {
    if (j.hSrc == 0 && !j.Path.empty()) return;  // being opened, or broken
    const bool filled = !j.Path.empty();
    f.expect(b.lp_Jingle, "visible", b.lp_Jingle.visible, filled && j.Loop != 0);
    constexpr const char* letters[] = {"m", "r", "v", "m", "w"};
    const Colour colours[] = {0, markSettings.arColor, markSettings.tcColor, markSettings.psColor,
                              markSettings.nsColor};
    const auto mode = static_cast<std::size_t>(j.PlayMod);
    if (!FxOpen) {  // the editor puts the sequence aside
        f.expect(b.sq_Jingle, "visible", b.sq_Jingle.visible, filled && j.Seq != 0);
        f.expect(b.pm_Jingle, "visible", b.pm_Jingle.visible, filled && mode != 0 && j.Seq == 0);
    }
    if (b.pm_Jingle.visible) {
        f.expect(b.pm_Jingle, "caption", b.pm_Jingle.caption, letters[mode]);
        f.expect(b.pm_Jingle, "foreColor", b.pm_Jingle.foreColor, shaded(colours[mode]));
    }
    const bool changed =
        filled && (j.CueStart != 0 || j.StopPos != 0 || j.FadeOut != 0 || j.FXV != NeutralFXV(j.Freq));
    if (!FxOpen) f.expect(b.fx_Jingle, "visible", b.fx_Jingle.visible, changed);
    const Colour lp = shaded(markSettings.lpColor), sq = shaded(markSettings.sqColor),
                 fx = shaded(markSettings.fxColor);
    if (!sounds) {
        f.expect(b.lp_Jingle, "foreColor", b.lp_Jingle.foreColor, lp);
        f.expect(b.sq_Jingle, "foreColor", b.sq_Jingle.foreColor, sq);
        f.expect(b.fx_Jingle, "foreColor", b.fx_Jingle.foreColor, fx);
    }
    // A fading jingle flashes all of them, one that leaves its loop has no mark of its sequence.
    const bool fades = j.State == PlayState::stopping;
    f.expectOneOf(b.lp_Jingle, "foreColor", b.lp_Jingle.foreColor, {lp, fades ? 0 : lp, fades ? sq : lp});
    f.expectOneOf(b.fx_Jingle, "foreColor", b.fx_Jingle.foreColor, {fx, fades ? 0 : fx});
    f.expectOneOf(b.sq_Jingle, "foreColor", b.sq_Jingle.foreColor, {sq, lp, 0});
}

/// The words of a button. The name is worked out for names as they stand only.
void checkCaption(Faults& f, const Control& c, const JingleRecord& j) {
    if (j.Path.empty()) f.expect(c, "caption", c.caption, "");
    if (labelSettings.JLabelFormat != 0) return;
    std::string name = j.Path.substr(j.Path.find_last_of("/\\") + 1);
    name.erase(std::min(name.size(), name.rfind('.')));
    std::string shown = c.caption;
    if (labelSettings.JDispDuration == 1 && !j.MissingFile && j.hSrc != 0) {
        const std::size_t line = shown.find("\r\n");
        if (line == std::string::npos) return f.note(c, "caption", shown, name);
        shown.erase(0, line + 2);
    }
    std::string wanted;
    for (const char letter : name) {
        if (letter == '&') wanted += '&';
        wanted += letter == '_' && labelSettings.JU2Sp == 1 ? ' ' : letter;
    }
    f.expect(c, "caption", shown, wanted);
}

void checkButton(Faults& f, int index) {
    const JingleButton* b = Button(index);
    const bool hot = index >= kPaletteSlots;
    const int place = hot ? index - kPaletteSlots : index;
    const bool shown = hot ? place < gridSettings.JinglesCols * gridSettings.HotJinglesRows
                           : place < gridSettings.JinglesCols * gridSettings.JinglesRows;
    if (b == nullptr) {
        if (shown) f.first = "button " + std::to_string(index) + " was never made";
        return;
    }
    const Control& c = b->b_Jingle;
    f.expect(c, "visible", c.visible, shown);
    const JingleRecord& j = Jingle(index);
    if (!shown || IsSearchHit(index) || j.Kind == SlotKind::playlist) return;
    f.expect(b->lblbtnumber, "caption", b->lblbtnumber.caption, std::to_string(index));
    if (!SelectorsShown) f.expect(b->ckJingSel, "visible", b->ckJingSel.visible, false);
    const DWORD active = j.hPlay == 0 ? BASS_ACTIVE_STOPPED : BASS_ChannelIsActive(j.hPlay);
    const bool sounds = active != BASS_ACTIVE_STOPPED;
    checkFace(f, index, *b, active);
    checkBar(f, *b, j, sounds);
    checkMarks(f, *b, j, sounds);
    checkCaption(f, c, j);
}

/// The smallest time left of what sounds; 0 when nothing counts. `shortest`: the smallest length.
double leastLeft(double& shortest) {
    double least = 0;
    const auto take = [&](double left) {
        if (left > 0 && (least == 0 || left < least)) least = left;
    };
    shortest = 1e8;
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (j.hPlay == 0 || BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_STOPPED) continue;
        const auto [left, length] = playTime(j);
        shortest = std::min(shortest, length);
        take(left);
    }
    for (const double left : {TimeLeftOf(hTmAnVoice), TimeJingleLeft()}) take(left);
    return least;
}

std::string counterText(double seconds) {
    const int parts = displaySettings.DispCSec == 1 ? 100 : 10;
    const int total = static_cast<int>(std::floor(seconds * parts + 0.5));
    const auto two = [](int n) { return std::to_string(n / 10) + std::to_string(n % 10); };
    const int whole = total / parts;
    const std::string behind = parts == 100 ? two(total % 100) : std::to_string(total % 10);
    return (whole < 60 ? "" : std::to_string(whole / 60) + ":") + two(whole % 60) + "." + behind;
}

void checkCounter(Faults& f) {
    DisplayControls& d = frmMain().display;
    if (BlinkTestOn || ClockShown || TaHeld) return;
    double shortest = 0;
    const double least = leastLeft(shortest);
    std::string shown;
    for (const Control* digit : d.digits()) shown += digit->visible ? digit->caption() : "";
    f.expect(d.picDispBack, "digits", shown, counterText(least));
    const bool warns = timers().TimerWarnBlink.enabled();
    const bool wanted = least > 0 && least <= warningSettings.RemainWarn &&
                        (warningSettings.WarnAllJ == 1 || shortest > warningSettings.RemainWarn);
    f.expect(d.picDispBack, "warning", warns, wanted);
    for (const Control* digit : d.digits()) {
        const Colour colour = warns ? warningSettings.RemainColor : displaySettings.CountDownColor;
        const Colour other = warns ? displaySettings.DispBackCol : colour;
        f.expectOneOf(*digit, "foreColor", digit->foreColor, {colour, other});
    }
}

void checkDisplay(Faults& f) {
    const DisplayControls& d = frmMain().display;
    const bool message = d.lblDispMessage.visible;
    f.expect(d.lblDate, "visible", d.lblDate.visible, !message);
    f.expect(d.lblTime, "visible", d.lblTime.visible, !message);
    f.expect(d.lblQuiet, "visible", d.lblQuiet.visible, !d.lblQuiet.caption().empty());
    const std::string volume = " " + std::to_string(volumeSettings.Volume) + " %";
    if (volumeSettings.Volume < 100 && d.lblQuiet.caption().find(volume) == std::string::npos)
        return f.note(d.lblQuiet, "caption", d.lblQuiet.caption(), volume);
    f.expect(d.txtDisPal, "caption", d.txtDisPal.caption, paletteSettings.PaletteIndex);
    checkCounter(f);
}

void checkKeys(Faults& f) {
    const MainWindow& w = frmMain();
    for (int i = 0; i < kTabs; ++i) {
        const auto at = static_cast<std::size_t>(i);
        f.expect(w.fraTab[at], "visible", w.fraTab[at].visible, i == ActiveTab);
        f.expect(w.ckTab[at], "value", w.ckTab[at].value, i == ActiveTab);
    }
    const auto options = armedOptions();
    for (const ArmedOption& option : options) {
        if (option.key == nullptr || ColorPickerOpen) continue;  // the picker is opened by a menu too
        Colour wanted = BtnFaceColor;
        for (const ArmedOption& other : options)
            if (other.code == OptionCode && other.key == option.key) wanted = other.colour;
        f.expect(*option.key, "backColor", option.key->backColor, wanted);
    }
    const int step = OptionCode == "lp" ? 1 : OptionCode == "sq" ? 2 : 0;
    f.expect(w.options.ckLoopI, "step", LoopToggleStep, step);
    f.expect(w.options.lp_LED, "visible", w.options.lp_LED.visible, step != 2);
    f.expect(w.options.sq_LED, "visible", w.options.sq_LED.visible, step != 1);
    const bool mix = deviceSettings.DeviceSingle == 0;
    const struct {
        const Control& key;
        bool on;
        Colour colour;
    } toggles[] = {
        {w.keys.ckAutoRep, ToggleAutoRep == 1, markSettings.arColor},
        {w.keys.ckTouch, ToggleTouch == 1, markSettings.tcColor},
        {w.keys.ckAutoMix, automixSettings.AutoMix != 0,
         shaded(automixSettings.AutoMix == 1 ? markSettings.amColor : 0xFFFFFF - markSettings.amColor)}};
    for (const auto& [key, on, colour] : toggles)
        f.expect(key, "backColor", key.backColor, on ? colour : BtnFaceColor);
    for (const Control* key : {&w.keys.btMicPush, &w.keys.btMicTO}) {
        f.expect(*key, "visible", key->visible, mix);
        f.expect(*key, "enabled", key->enabled, volumeSettings.InputEnabled == 1);
    }
}

}  // namespace

std::string screenFault() {
    if (minimalSettings.MinimalView == 1) return {};
    Faults f;
    for (int i = 0; i < kJingles; ++i) checkButton(f, i);
    checkDisplay(f);
    checkKeys(f);
    return f.first;
}

}  // namespace zv
