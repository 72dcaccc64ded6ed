#include "ui/edit/level_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "audio/edit_sound.h"
#include "audio/file_level.h"
#include "platform/jobs.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/editor_settings.h"
#include "startup/settings_file.h"
#include "ui/edit/edited_jingle.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

constexpr int kPercent = 100, kMostRange = 400;
constexpr Colour kTooLoud = 255;                    ///< red
constexpr std::array kTargets{-23, -18, -16, -14};  // LUFS
constexpr int kRestTicks = 8;                       ///< that a position must rest before its part is measured

struct Measured {
    FileLevel level;
    bool known = false;
    double start = 0, stop = 0;  ///< bytes: the part
    int resting = 0;             ///< ticks since the part became another
    Job job;
};
Measured measured;

int rangeFor(int percent) {
    return std::clamp((percent + kPercent - 1) / kPercent, 1, kMostRange / kPercent) - 1;
}

/// btMaxVol says the highest volume that does not clip, and is red above it.
void showSafeVolume() {
    JingleWindow& w = frmFX();
    const int safe = measured.level.safeVolume;
    std::string text = safe > 0 ? Ln("fxbtMaxVol") : Ln(measured.known ? "fxNotMeasured" : "fxMeasuring");
    if (const auto at = text.find("vol"); safe > 0 && at != std::string::npos)
        text.replace(at, 3, std::to_string(safe));
    w.btMaxVol.caption = text;
    w.btMaxVol.enabled = safe > 0;
    w.btMaxVol.backColor = safe > 0 && EditedRecord().Volm > safe ? kTooLoud : kButtonFace;
}

std::string decimal(double value) {
    if (!std::isfinite(value)) return "-\xE2\x88\x9E";
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

/// As it is heard at the volume that is set.
void showLoudness() {
    JingleWindow& w = frmFX();
    const double gain = DecibelsOfVolume(EditedRecord().Volm);
    const Loudness& part = measured.level.part;
    const bool there = measured.known && measured.level.safeVolume > 0;
    w.lblLoudness.caption =
        there ? decimal(part.integrated + gain) + " LUFS \xC2\xB7 " + decimal(part.truePeak + gain) + " dBTP"
              : Ln(measured.known ? "fxNotMeasured" : "fxMeasuring");
    w.btLoudness.enabled = there && VolumeForLoudness(editorSettings.LoudnessTarget, part.integrated,
                                                      measured.level.safeVolume) > 0;
    std::string text = Ln("fxbtLoudness");
    if (const auto at = text.find("%1"); at != std::string::npos)
        text.replace(at, 2, std::to_string(editorSettings.LoudnessTarget));
    w.btLoudness.caption = text;
}

void showTargets() {
    std::vector<int> targets(kTargets.begin(), kTargets.end());
    if (!std::ranges::count(targets, editorSettings.LoudnessTarget))
        targets.push_back(editorSettings.LoudnessTarget);
    std::vector<std::string> names;
    for (const int target : targets) names.push_back(std::to_string(target) + " LUFS");
    Control& list = frmFX().cmbTarget;
    list.items = names;
    list.listIndex =
        static_cast<int>(std::ranges::find(targets, editorSettings.LoudnessTarget) - targets.begin());
}

void measure() {
    const JingleRecord& j = EditedRecord();
    measured.start = j.CueStart;
    measured.stop = j.StopPos;
    measured.resting = 0;
    const double from = EditSeconds(Edited.index, j.CueStart),
                 to = j.StopPos <= j.CueStart ? 0 : EditSeconds(Edited.index, j.StopPos);
    measured.job = startJob<FileLevel>(
        "frmFX.SafeVol",
        [path = GetFullPath(j.Path), from, to](JobWork& work) { return MeasureLevel(path, from, to, work); },
        [](FileLevel level) {
            guarded("frmFX.SafeVol", [&] {
                measured.level = level;
                measured.known = true;
                showSafeVolume();
                showLoudness();
            });
        },
        JobLane::longer);
}

void showVolume() {
    JingleWindow& w = frmFX();
    const int volume = EditedRecord().Volm;
    w.cmbRange.listIndex = std::max(w.cmbRange.listIndex(), rangeFor(volume));
    w.SlideVolCh.maximum = (w.cmbRange.listIndex() + 1) * kPercent;
    w.SlideVolCh.value = volume;
    w.lblVolVal.caption = std::to_string(volume) + " %";
    showSafeVolume();
    showLoudness();
}

/// With the smallest range that holds it.
void setWithRange(int percent) {
    frmFX().cmbRange.listIndex = rangeFor(percent);
    SetLevel(percent);
}

void btLoudness_Click() {
    const int volume = VolumeForLoudness(editorSettings.LoudnessTarget, measured.level.part.integrated,
                                         measured.level.safeVolume);
    if (measured.known && volume > 0) setWithRange(volume);
}

void cmbTarget_Click() {
    const int target = std::atoi(frmFX().cmbTarget.text().c_str());
    if (target == 0 || target == editorSettings.LoudnessTarget) return;
    editorSettings.LoudnessTarget = target;
    WriteSetting("LoudnessTarget", std::to_string(target));
    showLoudness();
}

void cmbRange_Click() {
    JingleWindow& w = frmFX();
    const int most = (w.cmbRange.listIndex() + 1) * kPercent;
    w.SlideVolCh.maximum = most;
    if (EditedRecord().Volm > most) SetLevel(most);
}

void showFlags() {
    JingleWindow& w = frmFX();
    const JingleRecord& j = EditedRecord();
    w.ckAutoDuck.value = j.AutoDuck == 1 ? 1 : 0;
    w.ckNoTrigDuck.value = j.NoTrigDuck;
    w.ckNoAutomix.value = j.NoAutomix;
}

void ckFlags_Click() {
    JingleWindow& w = frmFX();
    JingleRecord& j = EditedRecord();
    j.NoTrigDuck = w.ckNoTrigDuck.value == 1 ? 1 : 0;
    j.NoAutomix = w.ckNoAutomix.value == 1 ? 1 : 0;
    UpdateJFX();
}

void ckAutoDuck_Click() {
    constexpr std::uint8_t kDucks = 1, kDoesNot = 2;
    JingleRecord& j = EditedRecord();
    j.AutoDuck = frmFX().ckAutoDuck.value == 1 ? kDucks : kDoesNot;
    if (j.AutoDuck == kDucks) j.NoTrigDuck = 1;
    showFlags();
    UpdateJFX();
}

}  // namespace

void WireLevel() {
    JingleWindow& w = frmFX();
    w.SlideVolCh.onDescribe = [] { return frmFX().lblVolVal.caption(); };
    w.SlideVolCh.onChange = [] {
        guarded("frmFX.SlideVolCh_Change", [] { SetLevel(frmFX().SlideVolCh.value()); });
    };
    w.btMaxVol.onClick = [] {
        guarded("frmFX.btMaxVol_Click", [] {
            if (measured.level.safeVolume > 0) setWithRange(measured.level.safeVolume);
        });
    };
    w.btLoudness.onClick = [] { guarded("frmFX.btLoudness_Click", btLoudness_Click); };
    w.cmbTarget.onChange = [] { guarded("frmFX.cmbTarget_Click", cmbTarget_Click); };
    w.cmbRange.onChange = [] { guarded("frmFX.cmbRange_Click", cmbRange_Click); };
    w.ckAutoDuck.onChange = [] { guarded("frmFX.ckAutoDuck_Click", ckAutoDuck_Click); };
    w.ckNoTrigDuck.onChange = [] { guarded("frmFX.ckNoTrigDuck_Click", ckFlags_Click); };
    w.ckNoAutomix.onChange = [] { guarded("frmFX.ckNoAutomix_Click", ckFlags_Click); };
}

void ShowLevel() {
    frmFX().cmbRange.listIndex = 0;
    showVolume();
    showTargets();
    showFlags();
}

void SetLevel(int percent) {
    EditVolume(Edited.index, percent);
    showVolume();
    UpdateJFX();
}

void OpenLevel() {
    measured = Measured();
    measure();
}

void CloseLevel() { measured = Measured(); }

void FollowPart() {
    const JingleRecord& j = EditedRecord();
    if (j.CueStart == measured.start && j.StopPos == measured.stop) return;
    if (++measured.resting >= kRestTicks) measure();
}

}  // namespace zv
