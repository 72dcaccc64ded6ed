// The window's keys, and the Exit key.
#include "ui/press/keyboard.h"

#include <string_view>

#include "audio/play.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "ui/edit/edit_commands.h"
#include "ui/edit/palette_list.h"
#include "ui/press/global_keys.h"
#include "ui/press/press.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/layout.h"
#include "ui/windows/console_window.h"
#include "ui/windows/shortcuts_window.h"

namespace zv {

namespace {

constexpr int kSmallestScript = 3;  // bytes: a shorter script does nothing
constexpr int kFromCode = 1;        // reason of closing: asked for by the program
constexpr int kByUser = 0;
constexpr int kWindowModes = 2;  // normal window, full screen

constexpr int letter(char c) { return static_cast<int>(c); }

void bring(MainTab tab) {
    const int n = static_cast<int>(tab);
    if (!frmMain().fraTab[static_cast<std::size_t>(n)].visible) {
        ChangeTab(n);
    }
}

/// Keys belong to the text while one is typed.
bool typing() {
    const Control* focus = focusedControl();
    return focus != nullptr && (focus->kind == ControlKind::textBox || focus->kind == ControlKind::comboBox);
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

/// The function keys, which leave the key to the control as well. True: it was one.
bool functionKey(const KeyEvent& event) {
    const bool alt = (event.shift & kAltMask) != 0;
    switch (event.key) {
        case Key::f1:
            OpenShortcuts();
            return true;
        case Key::f4:
            if (alt) {
                timers().TimerShutDown.stop();
                UnloadMain(kByUser);
            }
            return true;
        case Key::f5:
            ChangeTab(0);
            return true;
        case Key::f6:
            ChangeTab(1);
            return true;
        case Key::f7:
            ChangeTab(2);
            return true;
        case Key::f8:
            ChangeTab(3);
            return true;
        case Key::f9:
            if (alt) {
                SetJoinedJButtons(settings.JoinedJButtons != 1);
            }
            return true;
        case Key::f10:
            settings.HotJinglesPos = (settings.HotJinglesPos + 1) % 3;
            FormDraw("init");
            return true;
        case Key::f11:
            ChangeWindowMode();
            return true;
        default:
            return false;
    }
}

/// The letters of the window.
bool isShortcut(Key key) {
    const int code = static_cast<int>(key);
    return code >= letter('A') && code <= letter('Z') &&
           std::string_view("RTMEASFLNC").find(static_cast<char>(code)) != std::string_view::npos;
}

/// True when the key is one of the window's.
bool consumedKey(KeyEvent& event) {
    switch (event.key) {
        case Key::del:
            DeleteObj();
            return true;
        case Key::escape:
            evStop();
            return true;
        case Key::pageUp:
        case Key::pageDown:
            StartPageKey(event.key);
            return true;
        case Key::space:
            if (LastPlayedJ < 0) {
                return false;  // the button with the focus may have it
            }
            if (!event.repeat) {
                PlayJing(LastPlayedJ);
            }
            return true;
        default:
            break;
    }
    if (event.repeat) {
        return isShortcut(event.key);  // once is enough, and the focused control shall not have the rest
    }
    switch (static_cast<int>(event.key)) {
        case letter('R'):
            CkAutoRepTog();
            return true;
        case letter('T'):
            CkTouchTog();
            return true;
        case letter('M'):
            CkAutoMixTog();
            return true;
        case letter('E'):
            bring(MainTab::palettes);
            btNewTog();
            return true;
        case letter('A'):
            if (CtrlDown) {
                CheckAllSelectors();
            } else {
                bring(MainTab::palettes);
                CkAssignTog();
            }
            return true;
        case letter('S'):
            ChangeTab(static_cast<int>(MainTab::palettes));
            SavePal();
            return true;
        case letter('F'):
            bring(MainTab::jingleOptions);
            if (frmMain().options.ckFXI.enabled) {
                ckFXI_MouseDown();
            }
            return true;
        case letter('L'):
            bring(MainTab::jingleOptions);
            ckLoopITog();
            return true;
        case letter('X'):
            if (!AltDown) {
                return false;
            }
            OpenConsole();
            return true;
        case letter('N'):
            bring(MainTab::timeAnnouncer);
            return true;
        case letter('C'):
            if (AltDown && !CtrlDown) {
                runUserScript();
            } else if (!AltDown && !CtrlDown) {
                bring(MainTab::timeAnnouncer);
            } else if (CtrlDown && !AltDown) {
                CopyAllJings();
            }
            return true;
        default:
            return false;
    }
}

}  // namespace

void Form_KeyDown(KeyEvent& event) {
    guarded(".Form_KeyDown", [&] {
        if (functionKey(event)) {
            return;
        }
        if (!typing() && consumedKey(event)) {
            event.consumed = true;
        }
    });
}

void Form_KeyUp(KeyEvent& event) {
    guarded(".Form_KeyUp", [&] {
        if (event.key == Key::pageUp || event.key == Key::pageDown) {
            StopPageKey();
        }
        if (event.key == Key::space && !typing() && !event.repeat && LastPlayedJ >= 0 &&
            J[static_cast<std::size_t>(LastPlayedJ)].PlayMod == PlayMode::touch) {
            PlayJing(LastPlayedJ);
            event.consumed = true;
        }
    });
}

void ChangeWindowMode() {
    guarded("frmMain.ChangeWindowMode", [] {
        settings.FullScreen = settings.FullScreen == 1 ? 0 : 1;
        settings.WindowMode = settings.FullScreen == 1 ? kWindowModes : 0;
        setFullScreen(frmMain().window, settings.FullScreen == 1);
        FormDraw();
    });
}

void btExit_MouseDown(const MouseEvent& event) {
    guarded(".btExit_MouseDown", [&] {
        if (event.button == MouseButton::left && settings.HoldExitToShutDown == 1) {
            timers().TimerShutDown.restart();
        }
    });
}

void btExit_MouseUp(const MouseEvent& event) {
    guarded(".btExit_MouseUp", [&] {
        timers().TimerShutDown.stop();
        if (event.button != MouseButton::right) {
            UnloadMain(kByUser);
        }
    });
}

void TimerShutDownTick() {
    guarded("frmMain.TimerShutDown_Timer", [] {
        timers().TimerShutDown.stop();
        settings.ConfirmExit = 0;
        settings.ShutdownOnQuit = 1;
        KeepOutOfFile("ConfirmExit");
        KeepOutOfFile("ShutdownOnQuit");
        UnloadMain(kFromCode);
    });
}

void UnloadMain(int reason) {
    guarded("frmMain.Unload", [&] {
        Control& window = frmMain().window;
        if (Unloading || (window.onQueryClose && !window.onQueryClose(reason))) {
            return;
        }
        if (window.onClose) {
            window.onClose();
        }
    });
}

}  // namespace zv
