#include "ui/edit/live_tab.h"

#include <string>

#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/live_stream.h"
#include "audio/upcalls.h"
#include "audio/url_list.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/live_settings.h"
#include "startup/upcalls.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/live_view.h"

namespace zv {

namespace {

constexpr int kHighestCoefficient = 8;
constexpr int kFullVolume = 100;

void play() { SubPlayStream(ChosenSource()); }

/// A source was chosen from the list: its text is selected, so that typing takes its place.
void chosen() {
    guarded(".cmbStream_Click", [] {
        selectAllText(frmMain().live.cmbStream);
        EnableStreamsButtons();
    });
}

void removeUrl() {
    guarded(".btRemUrl_Click", [] {
        const std::string url = ChosenSource();
        if (url.empty() ||
            messageBox(LnBox("mMsRemUrl") + "\r\n" + url, "Zentrova", BoxKind::question, BoxButtons::yesNo,
                       Verbs("vbDelete", "vbKeep", true)) != BoxAnswer::yes) {
            return;
        }
        if (LiveOn) {
            StopPlayStream();
        }
        RemoveUrl(url);
        frmMain().live.cmbStream.caption = std::string();
        ListInDev();
    });
}

void mixByTa() {
    guarded(".ckMixByTa_MouseDown", [] {
        if (!ChosenSource().empty()) {
            LiveMixByTa = !LiveMixByTa;
            ShowLive();
        }
    });
}

void volumeMoved() {
    guarded(".SlideVolLive_Change", [] {
        liveSettings.VolLive = frmMain().live.SlideVolLive.value;
        LiveVolumeChanged();
        ShowLive();
    });
}

/// The left button raises the coefficient, the right one lowers it; both go round.
void coefficient(bool up) {
    guarded(".btCoefVolLive_Click", [&] {
        const int next = liveSettings.CoefVolLive + (up ? 1 : -1);
        liveSettings.CoefVolLive = next > kHighestCoefficient ? 1 : next < 1 ? kHighestCoefficient : next;
        LiveVolumeChanged();
        ShowLive();
    });
}

void onLeft(Control& control, void (*handler)()) {
    control.onMouseDown = [handler](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            handler();
        }
    };
}

/// The timer runs while there is something to look after.
void liveChanged() {
    UiTimers& t = timers();
    if (LiveOn) {
        t.TimerLive.start();
    } else {
        t.TimerLive.stop();
        t.TimerFadOutLive.stop();
    }
    const bool ended = !LiveOn && !frmMain().live.cmbStream.enabled;
    ShowLive();
    if (ended) {
        selectAllText(frmMain().live.cmbStream);
    }
}

}  // namespace

void WireLiveTab() {
    LiveTab& t = frmMain().live;
    onLeft(t.ckPlayStream, play);
    onLeft(t.ckMixByTa, mixByTa);
    t.btRemUrl.onClick = removeUrl;
    t.cmbStream.onChange = [] { guarded(".cmbStream_Change", EnableStreamsButtons); };
    t.cmbStream.onClick = chosen;
    t.cmbStream.onKeyDown = [](KeyEvent& e) {
        if (e.key == Key::enter) {
            e.consumed = true;
            play();
        }
    };
    t.SlideVolLive.onChange = volumeMoved;
    t.SlideVolLive.standard = kFullVolume;
    t.ckAutoDuckLive.onChange = [] {
        guarded(".ckAutoDuckLive_Click",
                [] { liveSettings.LiveAutoDuck = frmMain().live.ckAutoDuckLive.value; });
    };
    t.btCoefVolLive.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::right) {
            coefficient(false);
        }
    };
    t.btCoefVolLive.onClick = [] { coefficient(true); };
}

void FillLiveUpcalls() {
    audioUpcalls.liveChanged = liveChanged;
    audioUpcalls.liveFadesOut = [] { timers().TimerFadOutLive.restart(); };
    audioUpcalls.addressesChanged = ListPlayStreams;
    audioUpcalls.inputsListed = [](const InputLists&) { ListPlayStreams(); };
    audioUpcalls.stopStream = [] {
        if (LiveOn) {
            StopPlayStream();
        }
    };
    startupUpcalls.showStreamError = ShowStreamError;
    startupUpcalls.stopPlayStream = [] { StopPlayStream(true); };
}

void TimerFadOutLiveTick() {
    guarded("frmMain.TimerFadOutLive_Timer", [] {
        if (!LivePlays()) {
            timers().TimerFadOutLive.stop();
            StopPlayStream();
        }
    });
}

void TimerLiveTick() { WatchLive(); }

}  // namespace zv
