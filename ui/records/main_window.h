/// The main window's controls as records, grouped as they stand on the screen. They are made at the first
/// call of frmMain() and live for the whole run; their places come from layout.h, their colours from
/// colours.h.
#pragma once

#include <array>

#include "platform/controls.h"

namespace zv {

inline constexpr int kTabs = 4;

/// The tabs of the panel, in their order.
enum class MainTab : int { palettes = 0, timeAnnouncer = 1, liveStream = 2, jingleOptions = 3 };

/// The display: one painted panel; the shell paints the labels below at their own places.
/// lblPosMinC .. lblPosMisC are seven-segment digits (caption: one character or empty), sepms and sepsd the
/// separators; unlit segments are the shell's. lblErr is in the symbol font.
struct DisplayControls {
    explicit DisplayControls(Control& window);

    Control picDispBack;
    Control lblPosMinC, lblPosMinD, lblPosMin, sepms, lblPosSecD, lblPosSecU, sepsd, lblPosMisD, lblPosMisC;
    Control lblDate, lblTime, txtDisPal, lblQuiet, lblDispMessage, lblErr;
    std::array<Control, 3> lblClock;     ///< clock mark, AM, PM: minimal view
    std::array<Control, 2> lblPlayMode;  ///< play mode letters: minimal view
    Control lblTa;  ///< held, the digits show when the next announcement comes: minimal view
    Control lblMIDIIcon, lblMIDIDevice;  ///< the control surface, or what its faders set

    /// The nine digit controls, from the left.
    std::array<Control*, 9> digits();
};

/// Tab 0. PalNameCar and txtSave are seen while a palette is named only.
struct PaletteTab {
    explicit PaletteTab(Control& frame);

    Control btUp, btSearchJingle, btDn, lstPal;
    Control ckAssign, btSave, btNew, btDelPal;
    Control PalNameCar, txtSave;
    Control lstSection, lstJID;  ///< hidden, in step: jingles cut to another palette
};

/// Tab 1: the time announcer.
struct AnnouncerTab {
    explicit AnnouncerTab(Control& frame);

    Control ckTmAnn, ckTmAnnAM, b_tmAnJin, b_tmAnJinAM;  ///< AM: fades everything else
    Control lblMinute, lblSecond, lblDelay, DTMinute, DTSecond, DTDelay;
};

/// Tab 2: the live stream.
struct LiveTab {
    explicit LiveTab(Control& frame);

    Control cmbStream, ckPlayStream, btRemUrl, ckMixByTa, ckAutoDuckLive, SlideVolLive, btCoefVolLive,
        lblVolLive, lblStream;
};

/// Tab 3: the jingle options, each with the LED of its colour.
struct OptionsTab {
    explicit OptionsTab(Control& frame);

    Control ckPlayStopI, ckAutoRepI, ckTouchI, ckNoStopI, ckLoopI, ckFXI, ckColorI;
    Control ps_LED, ar_LED, tc_LED, ns_LED, lp_LED, sq_LED, fx_LED;
};

/// The keys that are always needed.
struct KeyControls {
    explicit KeyControls(Control& window);

    Control fraKeys;
    Control ckAutoRep, ckTouch, ckAutoMix, btMicPush, btMicTO, btSettings, btStop, btExit;
};

struct MainWindow {
    MainWindow();

    Control window;  ///< "frmMain"
    DisplayControls display;
    Control fraPanel;
    std::array<Control, kTabs> ckTab;
    std::array<Control, kTabs> fraTab;
    PaletteTab palettes;
    AnnouncerTab announcer;
    LiveTab live;
    OptionsTab options;
    KeyControls keys;
    Control fraJingles, fraHotJingles, linHotJingles;  ///< the grid, the hot block, the line between them
    Control fraVU, VuL, VuR, lblL, lblR, lblVUSrc;
};

/// The one main window. [control]
MainWindow& frmMain();

}  // namespace zv
