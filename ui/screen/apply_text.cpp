#include "ui/screen/apply_text.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "audio/automix.h"
#include "platform/controls.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/program_settings.h"
#include "ui/records/main_window.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/live_view.h"

namespace zv {

namespace {

/// Keys whose text explains a control that shows a symbol.
bool isToolTip(std::string_view key) { return key == "mbtUp" || key == "mbtDn" || key == "mbtSearchJingle"; }

/// Tool tips of keys bear the key's name and this behind it; those of the tabs' headers are numbered.
constexpr std::string_view kTip = "Tip", kTabTip = "mTabCtTip";

bool applyTip(std::string_view key, const std::string& text) {
    Control* control = nullptr;
    if (key.starts_with(kTabTip) && key.size() == kTabTip.size() + 1) {
        control = findControl("ckTab", key.back() - '0', frmMain().window);
    } else if (key.ends_with(kTip)) {
        control = findControl(key.substr(1, key.size() - 1 - kTip.size()), -1, frmMain().window);
    }
    if (control == nullptr) {
        return false;
    }
    control->toolTip = text;
    return true;
}

void captionOf(Control& control, const std::string& text) { control.caption = text; }

}  // namespace

void ApplyText(const std::string& window, const std::string& key, const std::string& text) {
    if (window != "frmMain" || key.size() < 2 || key[0] != 'm') {
        return;
    }
    MainWindow& w = frmMain();
    if (applyTip(key, text)) {
        return;
    }
    if (key.starts_with("mTabCt") && key.size() == 7) {
        const int tab = key[6] - '0';
        if (tab >= 0 && tab < kTabs) {
            captionOf(w.ckTab[static_cast<std::size_t>(tab)], text);
        }
        return;
    }
    // Automix and Exit show another text in another state.
    if (key.starts_with("mckAutoMix")) {
        const std::string_view wanted = automixSettings.AutoMix == kAutomixCrossfade ? "mckAutoMixA"
                                        : automixSettings.AutoMix == kAutomixLock    ? "mckAutoMixB"
                                                                                     : "mckAutoMix";
        if (key == wanted) {
            captionOf(w.keys.ckAutoMix, text);
        }
        return;
    }
    if (key == "mbtExit" || key == "mbtExitSD") {
        if ((key == "mbtExitSD") == (programSettings.HoldExitToShutDown == 1)) {
            captionOf(w.keys.btExit, text);
        }
        return;
    }
    if (key == "mb_tmAnJin" || key == "mckTmAnn") {
        ShowAnnouncer();  // as the announcer's state wants them
        return;
    }
    if (key == "mStrNoCo" || key == "mckPlayStream" || key == "mckStopStream") {
        ShowLive();  // as the stream's state wants them
        return;
    }
    Control* control = findControl(std::string_view(key).substr(1));
    if (control == nullptr) {
        return;
    }
    const Control* top = control;
    while (top->parent != nullptr) {
        top = top->parent;
    }
    if (top != &w.window) {
        return;
    }
    if (isToolTip(key)) {
        control->toolTip = text;
    } else {
        captionOf(*control, text);
    }
}

}  // namespace zv
