#include "ui/press/actions.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "audio/devices.h"
#include "audio/play.h"
#include "model/actions.h"
#include "model/jingle.h"
#include "model/slot_index.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/timers.h"
#include "platform/waiting.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/keys_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/stores.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_steps.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/search.h"
#include "ui/edit/selection.h"
#include "ui/edit/undo.h"
#include "ui/press/exit_key.h"
#include "ui/press/global_keys.h"
#include "ui/press/keyboard.h"
#include "ui/press/press.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/display_message.h"
#include "ui/screen/layout.h"
#include "ui/screen/layout_strip.h"
#include "ui/settings/mixer_window.h"
#include "ui/windows/console_window.h"
#include "ui/windows/shortcuts_window.h"

namespace zv {

namespace {

constexpr int kSmallestScript = 3;  // bytes: a shorter script does nothing
constexpr int kHotPlaces = 3;       // none, above the grid, below it
constexpr int kFullPercent = 100;
constexpr int kLongestAutoMix = 5000;  // ms
constexpr int kVolumeMs = 5;

void bring(MainTab tab) {
    const int n = static_cast<int>(tab);
    if (!frmMain().fraTab[static_cast<std::size_t>(n)].visible) {
        ckTab_MouseDown(n);
    }
}

void runUserScript() {
#ifdef _WIN32
    const std::string script = InProgramFolder("myscript.bat");
#else
    const std::string script = InProgramFolder("myscript.sh");
#endif
    if (FileLength(script) > kSmallestScript) {
        runMinimised(script);
    }
}

bool paletteStep(PaletteKey how, bool up) {
    const Control& list = frmMain().palettes.lstPal;
    Timer& jump = up ? timers().Timerlstpaltop : timers().Timerlstpalbot;
    const auto step = [up] { up ? evbtUp() : evBtDn(); };
    switch (how) {
        case PaletteKey::once:
            step();
            return true;
        case PaletteKey::repeated:
            StartPageKey(up ? Key::pageUp : Key::pageDown);
            return true;
        case PaletteKey::held:
            if (!list.enabled) {
                return false;
            }
            jump.restart();
            step();
            return true;
        case PaletteKey::letGo:
            jump.stop();
            return true;
        case PaletteKey::wheel: {
            jump.stop();
            const int last = static_cast<int>(list.items().size()) - 1;
            const bool more = up ? list.listIndex > 0 : list.listIndex < last;
            if (more) {
                step();
            }
            return more;
        }
    }
    return false;
}

bool onJingle(Action action, int index, int velocity) {
    if (!IsSlot(index)) {
        return false;
    }
    if (action == Action::play) {
        clPlay(index, velocity);
        SayWhyBroken(index);
    } else if (action == Action::release) {
        ReleaseJingle(index);
    } else {
        btClic(index);
    }
    return true;
}

bool onLast(Action action) {
    if (!IsSlot(LastPlayedJ)) {
        return false;
    }
    if (action == Action::pressLast) {
        PlayJing(LastPlayedJ);
        return true;
    }
    if (keySettings.InhibSpBar != 0) {
        return false;
    }
    ReleaseJingle(LastPlayedJ);
    return true;
}

bool act(Action action, int argument, int velocity) {
    switch (action) {
        case Action::none:
        case Action::minimalView:
            return false;
        case Action::search:
            JingSearch();
            break;
        case Action::settings:
            // The devices, until the window of all settings leads there.
            OpenMixer();
            break;
        case Action::play:
        case Action::press:
        case Action::release:
            return onJingle(action, argument, velocity);
        case Action::pressLast:
        case Action::releaseLast:
            return onLast(action);
        case Action::stopAll:
            evStop();
            break;
        case Action::paletteUp:
        case Action::paletteDown:
            return paletteStep(static_cast<PaletteKey>(argument), action == Action::paletteUp);
        case Action::newPalette:
            bring(MainTab::palettes);
            btNewTog();
            break;
        case Action::savePalette:
            ChangeTab(static_cast<int>(MainTab::palettes));
            SavePal();
            break;
        case Action::remove:
            DeleteObj();
            break;
        case Action::autoRepeat:
            CkAutoRepTog();
            break;
        case Action::touch:
            CkTouchTog();
            break;
        case Action::autoMix:
            CkAutoMixTog();
            break;
        case Action::micDown:
            MicPush();
            break;
        case Action::micUp:
            MicRelease();
            break;
        case Action::talkOver:
            TalkOverTog();
            break;
        case Action::volume:
            volumeSettings.Volume = std::clamp(argument, 0, kFullPercent);
            SetOutputVolume(0, volumeSettings.Volume, kVolumeMs);
            break;
        case Action::autoMixTime:
            automixSettings.AutoMixTime = std::clamp(argument, 1, kLongestAutoMix);
            break;
        case Action::assign:
            bring(MainTab::palettes);
            CkAssignTog();
            break;
        case Action::effects:
            bring(MainTab::jingleOptions);
            if (frmMain().options.ckFXI.enabled) {
                ckFXI_MouseDown();
            }
            break;
        case Action::loop:
            bring(MainTab::jingleOptions);
            ckLoopITog();
            break;
        case Action::tickAll:
            CheckAllSelectors();
            break;
        case Action::copyCaptions:
            CopyAllJings();
            break;
        case Action::undo:
            Undo();
            break;
        case Action::redo:
            Redo();
            break;
        case Action::announcer:
            bring(MainTab::timeAnnouncer);
            CkTmAnnTog();
            break;
        case Action::announcerJingle:
            bring(MainTab::timeAnnouncer);
            b_tmAnJinTog();
            break;
        case Action::tab:
            ckTab_MouseDown(argument);  // as a click on it: an armed option is given up
            break;
        case Action::joinedButtons:
            SetJoinedJButtons(gridSettings.JoinedJButtons != 1);
            break;
        case Action::hotJinglesPlace:
            gridSettings.HotJinglesPos = (gridSettings.HotJinglesPos + 1) % kHotPlaces;
            FormDraw("init");
            break;
        case Action::fullScreen:
            ChangeWindowMode();
            break;
        case Action::shortcuts:
            OpenShortcuts();
            break;
        case Action::console:
            OpenConsole();
            break;
        case Action::userScript:
            runUserScript();
            break;
        case Action::close:
            timers().TimerShutDown.stop();
            UnloadMain(kClosedByUser);
            break;
    }
    return true;
}

/// Actions that act while a question or a modal window waits.
bool steersSound(Action action) {
    switch (action) {
        case Action::play:
        case Action::press:
        case Action::release:
        case Action::pressLast:
        case Action::releaseLast:
        case Action::stopAll:
        case Action::micDown:
        case Action::micUp:
        case Action::talkOver:
        case Action::volume:
        case Action::autoMixTime:
            return true;
        case Action::close:
            return waitingNow()->what == Waiting::For::window;  // it closes the window as well
        default:
            return false;
    }
}

}  // namespace

void FillActions() {
    perform = [](Action action, int argument, int velocity) {
        if (onlyPlays() && !steersSound(action)) {
            if (action != Action::none && refusedMeanwhile) refusedMeanwhile();
            return true;  // handled: the key goes no further
        }
        return guardedOr("frmMain.Perform", false, [&] { return act(action, argument, velocity); });
    };
}

}  // namespace zv
