#include "ui/edit/announcer_tab.h"

#include <cstdint>

#include "audio/announcer.h"
#include "audio/time_jingle.h"
#include "audio/upcalls.h"
#include "audio/wall_seconds.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/settings/announcer_settings.h"
#include "ui/edit/announcer_file.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout_strip.h"

namespace zv {

namespace {

constexpr int kSecondMs = 1000, kSixty = 60;

WallSeconds wallSeconds;

void fieldChanged() {
    guarded(".DTMinute_Change", [] {
        const AnnouncerTab& t = frmMain().announcer;
        announcerSettings.TimeAnnMin = t.DTMinute.value;
        announcerSettings.TimeAnnSec = t.DTSecond.value;
        announcerSettings.TimeAnnDel = t.DTDelay.value;
        DTChange();
        ShowAnnouncer();
    });
}

void turn(bool& mark) {
    mark = !mark;
    ShowAnnouncer();
}

void onLeft(Control& control, void (*handler)()) {
    control.onMouseDown = [handler](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            handler();
        }
    };
}

}  // namespace

void CkTmAnnTog() {
    guarded("frmMain.CkTmAnnTog", [] {
        LastCtrl = "CkTmAnn";
        if (TmAnnOn || AnnouncerOpens()) {
            DisarmAnnouncer();
            EndChoosing();
        } else {
            ArmAnnouncer();
        }
    });
}

void b_tmAnJinTog() {
    guarded("frmMain.b_tmAnJinTog", [] {
        if (!TmAnPath.empty() || ChoosingTimeJingle) {
            DropTimeJingle();
            EndChoosing();
            return;
        }
        DisarmOptions();
        OptionCode.clear();
        OptionControl.clear();
        ChoosingTimeJingle = true;
        HighlightTimeJingles();
        ShowAnnouncer();
    });
}

void clTmAn(int index) {
    guarded("modClick.clTmAn", [&] {
        if (Jingle(index).Path.empty() || Jingle(index).MissingFile) {
            return;
        }
        EndChoosing();
        ChooseTimeJingle(index);
    });
}

void PlayAfterAnnouncement(int index) {
    guarded("frmMain.mnuTa_Click", [&] {
        ChangeTab(static_cast<int>(MainTab::timeAnnouncer));
        if (TmAnnOn) {
            CkTmAnnTog();
        }
        clTmAn(index);
    });
}

int UntilNextSecond() { return kSecondMs - wallTime().millisecond; }

void TimerTimeAndTATick() {
    guarded("frmMain.TimerTimeAndTA_Timer", [] {
        const WallSeconds::Span begun = wallSeconds.begun(WallMs(wallTime()), monotonicMs());
        timers().TimerTimeAndTA.setInterval(UntilNextSecond());
        DateTimeUpdate();
        for (std::int64_t second = begun.first; second <= begun.last; ++second) {
            AnnounceAt(static_cast<int>(second / kSixty % kSixty), static_cast<int>(second % kSixty));
        }
        ShowAnnouncer();
    });
}

void WireAnnouncerTab() {
    AnnouncerTab& t = frmMain().announcer;
    t.ckTmAnn.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            CkTmAnnTog();
        } else if (e.button == MouseButton::right) {
            OpenAnnouncerSettings(false);
        }
    };
    onLeft(t.b_tmAnJin, b_tmAnJinTog);
    onLeft(t.ckTmAnnAM, [] { guarded(".ckTmAnnAM_MouseDown", [] { turn(TmAnnAM); }); });
    onLeft(t.b_tmAnJinAM, [] { guarded(".b_tmAnJinAM_MouseDown", [] { turn(TmJingleAM); }); });
    for (Control* field : {&t.DTMinute, &t.DTSecond, &t.DTDelay}) {
        field->onChange = fieldChanged;
    }
}

void FillAnnouncerUpcalls() {
    audioUpcalls.announcerChanged = ShowAnnouncer;
    audioUpcalls.announcementFailed = [] { OpenAnnouncerSettings(true); };
    audioUpcalls.stopAnnouncer = [] {
        if (TmAnnOn || AnnouncerOpens()) {
            CkTmAnnTog();
        }
        if (!TmAnPath.empty() || ChoosingTimeJingle) {
            b_tmAnJinTog();
        }
    };
}

}  // namespace zv
