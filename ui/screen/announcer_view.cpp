#include "ui/screen/announcer_view.h"

#include "audio/announcer.h"
#include "audio/time_jingle.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/playing_settings.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/screen/captions.h"
#include "ui/screen/highlight.h"
#include "ui/screen/layout_strip.h"

namespace zv {

bool ChoosingTimeJingle = false;

namespace {

constexpr const char* kCode = "ta";
constexpr int kLastOfSixty = 59;
constexpr const char* kIconFont = "ZVR";

std::string withDuration(const std::string& path, double seconds) {
    const std::string name = Ampersand(btCaption(path));
    return labelSettings.JDispDuration == 1
               ? name + "  " + JDurationPrefix() + seconds2msd(seconds) + JDurationSuffix()
               : name;
}

void paint(Control& key, bool sounds, bool armed) {
    if (sounds) {
        key.backColor = playingSettings.PlayingColor;
        key.foreColor = playingSettings.PlayingFColor;
    } else if (armed) {
        Arm(key, markSettings.taColor);
    } else {
        Disarm(key);
    }
}

void showMark(Control& mark, bool visible, bool on, const char* tip) {
    mark.visible = visible;
    mark.toolTip = Ln(tip);
    on ? Arm(mark, markSettings.amColor) : Disarm(mark);
}

void showField(Control& field, int value, int highest, const char* tip) {
    field.maximum = highest;
    field.value = value;
    field.enabled = TmAnnOn;
    field.toolTip = Ln(tip);
}

}  // namespace

std::string TmAnnFormat() {
    return withDuration(announcerSettings.TimeAnnouncer, TmAnDuration) + "\r\n" +
           NextAnnouncement(wallTime());
}

void ShowAnnouncer() {
    AnnouncerTab& t = frmMain().announcer;
    const bool minimal = minimalSettings.MinimalView == 1;
    const bool voice = AnnouncementSounds();
    if (!TmAnnOn) {
        t.ckTmAnn.caption = Ln("mckTmAnn");
    } else if (!voice && !minimal) {
        t.ckTmAnn.caption = TmAnnFormat();
    }
    t.ckTmAnn.toolTip = Ln("mTipTmAnn");
    paint(t.ckTmAnn, voice, TmAnnOn);
    if (TmAnPath.empty()) {
        t.b_tmAnJin.fontName = std::string(minimal ? kIconFont : "");
        t.b_tmAnJin.caption = minimal ? std::string("d") : Ln("mb_tmAnJin");
    } else if (!minimal) {
        t.b_tmAnJin.caption = withDuration(TmAnPath, TmJingleDuration);
    }
    t.b_tmAnJin.toolTip = Ln(TmAnPath.empty() ? "mTiptmAnJin" : "mTiptmAnJinOff");
    paint(t.b_tmAnJin, TimeJingleSounds(), ChoosingTimeJingle || !TmAnPath.empty());
    const bool marks = t.ckTmAnnAM.visible, jingleMark = t.b_tmAnJinAM.visible;
    showMark(t.ckTmAnnAM, TmAnnOn, TmAnnAM, "mTipTmAnnAM");
    showMark(t.b_tmAnJinAM, TmAnnOn && !TmAnPath.empty(), TmJingleAM, "mTiptmAnJinAM");
    if (marks != t.ckTmAnnAM.visible || jingleMark != t.b_tmAnJinAM.visible) {
        TabDraw(static_cast<int>(MainTab::timeAnnouncer));
    }
    Control& next = frmMain().display.lblTa;
    next.visible = minimal && TmAnnOn;
    next.toolTip = Ln("mTipTa");
    showField(t.DTMinute, announcerSettings.TimeAnnMin, kLastOfSixty, "mTipDTMinute");
    showField(t.DTSecond, announcerSettings.TimeAnnSec, kLastOfSixty, "mTipDTSecond");
    showField(t.DTDelay, announcerSettings.TimeAnnDel, TmAnnOn ? TmAnLen : announcerSettings.TimeAnnDel,
              "mTipDTDelay");
}

void HighlightTimeJingles() {
    if (!ChoosingTimeJingle) {
        return;
    }
    if (!OptionCode.empty() && OptionCode != kCode) {
        ChoosingTimeJingle = false;
        ShowAnnouncer();
        return;
    }
    if (OptionCode == kCode && SelectorsOn) {
        return;
    }
    OptionCode = kCode;
    SelectorsOn = true;
    HighlightArmed();
}

void EndChoosing() {
    ChoosingTimeJingle = false;
    if (OptionCode == kCode) {
        OptionCode.clear();
    }
    SelectorsOn = false;
    ResetJingles();
    ShowAnnouncer();
}

}  // namespace zv
