#include "ui/screen/live_view.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "audio/devices.h"
#include "audio/live_stream.h"
#include "audio/url_list.h"
#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/playing_settings.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr std::size_t kRule = 160;  // characters of a line above and below the title of the inputs
constexpr const char* kIconFont = "ZVR";

std::string ErrorShown;  // in the list; empty: none

std::string rule(const char* character) {
    std::string line;
    for (std::size_t i = 0; i < kRule; ++i) line += character;
    return line;
}

int rowOf(const Control& list, const std::string& text) {
    const std::vector<std::string>& rows = list.items();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const std::string& row) { return Trim(row) == Trim(text); });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

/// How many rows of the list are addresses.
int addresses() {
    const std::vector<std::string>& rows = frmMain().live.cmbStream.items();
    const auto end = std::find(rows.begin(), rows.end(), rule("_"));
    return static_cast<int>(end - rows.begin());
}

/// A row between the addresses and the inputs, which names no source.
bool isHeading(int row) { return row >= addresses() && row < addresses() + 3; }

void showKey() {
    Control& key = frmMain().live.ckPlayStream;
    const bool minimal = minimalSettings.MinimalView == 1;
    key.fontName = std::string(minimal ? kIconFont : "");
    key.caption = minimal ? std::string("z") : Ln(LiveOn ? "mckStopStream" : "mckPlayStream");
    key.toolTip = !LiveTitle.empty() ? LiveTitle : Ln(LiveOn ? "mTipStopStream" : "mTipPlayStream");
    if (LiveOn) {
        key.backColor = playingSettings.PlayingColor;
        key.foreColor = playingSettings.PlayingFColor;
    } else {
        Disarm(key);
    }
}

void showLevels() {
    LiveTab& t = frmMain().live;
    t.SlideVolLive.value = liveSettings.VolLive;
    t.lblVolLive.caption = std::to_string(liveSettings.VolLive) + " %";
    t.btCoefVolLive.caption = "x" + std::to_string(liveSettings.CoefVolLive);
    t.ckAutoDuckLive.value = liveSettings.LiveAutoDuck == 1 ? 1 : 0;
    LiveMixByTa ? Arm(t.ckMixByTa, markSettings.taColor) : Disarm(t.ckMixByTa);
}

void showTips() {
    LiveTab& t = frmMain().live;
    t.cmbStream.toolTip = Ln("mlblRemLoc");
    t.btRemUrl.toolTip = Ln("mTipRemUrl");
    t.ckMixByTa.toolTip = Ln("mTipMixByTa");
    t.ckAutoDuckLive.toolTip = Ln("mTipAutoDuckLive");
    t.SlideVolLive.toolTip = Ln("mTipVolLive");
    t.btCoefVolLive.toolTip = Ln("mTipCoefVolLive");
}

}  // namespace

void ShowLive() {
    LiveTab& t = frmMain().live;
    if (LiveOn && !ErrorShown.empty()) {
        ErrorShown.clear();
        t.cmbStream.caption = StreamChoice;
    }
    showKey();
    showLevels();
    showTips();
    t.lblStream.caption = Ampersand(LiveStatus.empty() ? Ln("mStrNoCo") : LiveStatus);
    t.lblStream.toolTip = LiveOn ? LiveStatus : std::string();
    t.cmbStream.enabled = !LiveOn;
    EnableStreamsButtons();
}

void ListPlayStreams() {
    Control& list = frmMain().live.cmbStream;
    std::vector<std::string> rows = ReadUrls();
    if (deviceSettings.DeviceSingle == 0) {
        rows.push_back(rule("_"));
        rows.push_back(Ln("mixlblAudioDev") + "        ");
        rows.push_back(rule("\u00AF"));
        rows.insert(rows.end(), InputNames.begin(), InputNames.end());
    }
    list.items = rows;
    list.listIndex = rowOf(list, list.caption);
    EnableStreamsButtons();
}

void EnableStreamsButtons() {
    LiveTab& t = frmMain().live;
    const std::string chosen = ChosenSource();
    const int row = rowOf(t.cmbStream, chosen);
    const bool source = !chosen.empty() && !isHeading(row);
    t.ckPlayStream.enabled = LiveOn || source;
    t.ckMixByTa.enabled = LiveOn || source;
    t.btRemUrl.enabled = row < addresses();
}

void ShowStreamError(const std::string& text) {
    LiveStatus = text;
    ErrorShown = text;
    frmMain().live.cmbStream.caption = text;
}

std::string ChosenSource() {
    const std::string& shown = frmMain().live.cmbStream.caption;
    return !ErrorShown.empty() && shown == ErrorShown ? StreamChoice : Trim(shown);
}

}  // namespace zv
