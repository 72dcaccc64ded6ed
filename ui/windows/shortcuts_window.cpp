#include "ui/windows/shortcuts_window.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "ui/records/key_table.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kMargin = 180, kWidth = 8400, kHeight = 8700, kKeyHeight = 510;  // twips
constexpr int kRow = 390, kChipHeight = 330, kChipWidth = 1260, kChipGap = 90, kScrollbar = 300;
constexpr int kSmallChange = 300, kLargeChange = 1000;
constexpr Colour kLightChip = 0xFFFFFF, kDarkChip = 0x3C3A38;

std::string keyName(const std::string& key) { return key.starts_with("scKey") ? Ln(key) : key; }

std::string helpFile() { return InProgramFolder("Language/Zentrova.chm"); }

void place(Control& control, int left, int top, int width, int height) {
    control.left = left;
    control.top = top;
    control.width = width;
    control.height = height;
}

Control& label(std::vector<std::unique_ptr<Control>>& labels, const char* name, std::size_t i) {
    while (labels.size() <= i) {
        labels.push_back(std::make_unique<Control>(name, ControlKind::label, &frmShortcuts().fraKeys,
                                                   static_cast<int>(labels.size())));
    }
    labels[i]->visible = true;
    return *labels[i];
}

void showChip(Control& chip, const std::string& text, int left, int top) {
    place(chip, left, top, kChipWidth, kChipHeight);
    chip.caption = text;
    chip.alignment = 2;
    chip.backColor = settings.DarkMode == 1 ? kDarkChip : kLightChip;
    chip.foreColor = settings.DarkMode == 1 ? settings.DarkForeColor : 0;
}

/// The scrollbar stands at its upper end for the begin of the list.
void scrolled() {
    ShortcutsWindow& s = frmShortcuts();
    s.fraKeys.top = s.ucScrollbarV.value - s.ucScrollbarV.maximum;
}

void scrollBy(int twips) {
    Control& bar = frmShortcuts().ucScrollbarV;
    bar.value = std::clamp(bar.value - twips, 0, bar.maximum());
    scrolled();
}

void fill() {
    ShortcutsWindow& s = frmShortcuts();
    s.window.caption = Ln("scShortcuts");
    s.window.backColor = frmMain().window.backColor();
    s.btOK.caption = Ln("scbtOK");
    s.btHelp.caption = Ln("scbtHelp");
    s.btHelp.visible = FileExists(helpFile());
    std::size_t i = 0;
    for (const KeyRow& row : KeyTable()) {
        if (*row.text == '\0' || (row.needs != nullptr && !row.needs->enabled())) {
            continue;
        }
        const int top = static_cast<int>(i) * kRow;
        showChip(label(s.lblKey, "lblKey", i), keyName(row.first), 0, top);
        Control& second = label(s.lblKeyBis, "lblKeyBis", i);
        showChip(second, keyName(row.second), kChipWidth + kChipGap, top);
        second.visible = *row.second != '\0';
        Control& text = label(s.lblSCDesc, "lblSCDesc", i);
        const int left = 2 * (kChipWidth + kChipGap) + kChipGap;
        place(text, left, top, s.fraShow.width - left, kChipHeight);
        text.caption = Ln(row.text);
        text.foreColor = settings.DarkMode == 1 ? settings.DarkForeColor : 0;
        ++i;
    }
    for (std::size_t rest = i; rest < s.lblKey.size(); ++rest) {
        for (Control* unused : {s.lblKey[rest].get(), s.lblKeyBis[rest].get(), s.lblSCDesc[rest].get()}) {
            unused->visible = false;
        }
    }
    const int height = static_cast<int>(i) * kRow;
    place(s.fraKeys, 0, 0, s.fraShow.width, height);
    s.ucScrollbarV.maximum = std::max(0, height - s.fraShow.height());
    s.ucScrollbarV.value = s.ucScrollbarV.maximum();
    s.ucScrollbarV.visible = s.ucScrollbarV.maximum > 0;
}

void help() {
    CloseShortcuts();
    if (FileExists(helpFile())) {
        openDocument(helpFile());
    }
}

void keyDown(KeyEvent& event) {
    event.consumed = true;
    switch (event.key) {
        case Key::escape:
            CloseShortcuts();
            return;
        case Key::f1:
            help();
            return;
        case Key::up:
            scrollBy(-kSmallChange);
            return;
        case Key::down:
            scrollBy(kSmallChange);
            return;
        case Key::pageUp:
            scrollBy(-kLargeChange);
            return;
        case Key::pageDown:
            scrollBy(kLargeChange);
            return;
        default:
            event.consumed = false;
    }
}

}  // namespace

ShortcutsWindow::ShortcutsWindow()
    : window("frmShortcuts", ControlKind::window),
      fraShow("fraShow", ControlKind::frame, &window),
      fraKeys("fraKeyList", ControlKind::frame, &fraShow),
      ucScrollbarV("ucScrollbarV", ControlKind::slider, &window),
      btHelp("scbtHelp", ControlKind::button, &window),
      btOK("scbtOK", ControlKind::button, &window) {
    window.width = kWidth;
    window.height = kHeight;
    const int foot = kHeight - kMargin - kKeyHeight;
    place(fraShow, kMargin, kMargin, kWidth - 2 * kMargin - kScrollbar - kChipGap, foot - 2 * kMargin);
    place(ucScrollbarV, kWidth - kMargin - kScrollbar, kMargin, kScrollbar, fraShow.height);
    constexpr int key = 1650;
    place(btOK, kWidth - kMargin - key, foot, key, kKeyHeight);
    place(btHelp, kMargin, foot, key, kKeyHeight);
    ucScrollbarV.onChange = [] { guarded("frmShortcuts.ucScrollbarV_Change", scrolled); };
    btOK.onClick = [] { guarded("frmShortcuts.btOK_Click", CloseShortcuts); };
    btHelp.onClick = [] { guarded("frmShortcuts.btHelp_Click", help); };
    window.onClose = [] { guarded("frmShortcuts.Form_Unload", CloseShortcuts); };
    window.onKeyDown = [](KeyEvent& e) { guarded("frmShortcuts.Form_KeyDown", [&] { keyDown(e); }); };
}

ShortcutsWindow& frmShortcuts() {
    static ShortcutsWindow shortcuts;
    return shortcuts;
}

void OpenShortcuts() {
    guarded("frmShortcuts.Form_Load", [] {
        fill();
        Control& window = frmShortcuts().window;
        const Control& over = frmMain().window;
        window.left = over.left + (over.width - window.width) / 2;
        window.top = over.top + std::max(0, (over.height - window.height) / 2);
        showWindow(window);
        setAlwaysOnTop(window, settings.AlwaysOnTop == 1);
        setFocus(frmShortcuts().btOK);
    });
}

void CloseShortcuts() {
    hideWindow(frmShortcuts().window);
    setFocus(frmMain().window);
}

}  // namespace zv
