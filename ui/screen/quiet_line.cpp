#include "ui/screen/quiet_line.h"

#include <cstdint>
#include <string>

#include "audio/automix.h"
#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/levels.h"
#include "audio/sounding.h"
#include "audio/talk_over.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "startup/language.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/volumes_settings.h"
#include "ui/records/main_window.h"
#include "ui/screen/captions.h"
#include "ui/screen/display_foot.h"

namespace zv {

namespace {

constexpr int kFull = 100;            // percent
constexpr std::int64_t kTold = 3000;  // ms that a remark stands

std::string remark;
std::int64_t remarkedAt = 0;

/// What pushed the ducked sounds down.
std::string duckedBy() {
    switch (DuckTrigger) {
        case kAnnouncer:
            return Ln("mTabCt1");
        case kLiveStream:
            return Ln("mTabCt2");
        default:
            return DuckTrigger >= 0 && DuckTrigger < kJingles ? btCaption(Jingle(DuckTrigger).Path)
                                                              : std::string();
    }
}

/// Something that goes down for others sounds, and is not on its way out.
bool somethingIsDucked() {
    if (liveSettings.LiveAutoDuck == 1 && hLive != 0) {
        return true;
    }
    for (const int i : LiveJingles()) {
        if (Jingle(i).AutoDuck == 1 && !Jingle(i).Leaving && Sounds(i)) {
            return true;
        }
    }
    return false;
}

/// Automix takes something away.
bool somethingFades() {
    if (automixSettings.AutoMix != kAutomixCrossfade) {
        return false;
    }
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (j.Leaving && j.State == PlayState::playing && Sounds(i)) {
            return true;
        }
    }
    return false;
}

std::string percent(const std::string& what, int value) { return what + " " + std::to_string(value) + " %"; }

}  // namespace

std::string WhyQuiet() {
    std::string line;
    const auto add = [&](const std::string& cause) { line += (line.empty() ? "" : " · ") + cause; };
    const bool mix = deviceSettings.DeviceSingle == 0;
    if (mix && MicPushed) {
        add(Ln("mbtMicPush"));
    } else if (mix && BusLevel < 1) {
        add(percent(Ln("mbtMicTO"), static_cast<int>(BusLevel * kFull + 0.5F)));
    }
    if (Ducked && somethingIsDucked()) {
        const std::string name = duckedBy();
        add(Ln("mDuck") + (name.empty() ? "" : ": " + name));
    }
    if (somethingFades()) {
        add(Ln("mckAutoMix"));
    }
    if (const int refused = RefusedLately(); refused >= 0) {
        add(Ln("mckAutoMixB") + ": " + btCaption(Jingle(refused).Path));
    }
    if (!remark.empty() && monotonicMs() - remarkedAt < kTold) {
        add(remark);
    }
    if (volumeSettings.Volume < kFull) {
        add(percent(Ln("mixLblVol"), volumeSettings.Volume));
    }
    if (mix && Device[1] != 0 && volumeSettings.VolumeAux < kFull) {
        add(percent(Ln("mVolumeAux"), volumeSettings.VolumeAux));
    }
    return line;
}

void TellForAWhile(const std::string& text) {
    remark = text;
    remarkedAt = monotonicMs();
    ShowWhyQuiet();
}

void ShowWhyQuiet() {
    Control& line = frmMain().display.lblQuiet;
    const std::string why = WhyQuiet();
    line.caption = why;
    line.toolTip = why;
    if (line.visible != !why.empty()) {
        line.visible = !why.empty();
        DrawDisplayFoot();
    }
}

}  // namespace zv
