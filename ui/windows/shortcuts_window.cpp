#include "ui/windows/shortcuts_window.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/forms.h"
#include "startup/datafiles.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/dark_settings.h"
#include "ui/records/key_table.h"

namespace zv {

namespace {

constexpr int kChipWidth = 80, kRowHeight = 23, kRowGap = 2, kWidth = 1000;  // pixels
constexpr int kSmallChange = 300, kLargeChange = 1000;                       // twips
constexpr Colour kLightChip = 0xEEEBE9, kDarkChip = 0x3C3A38;

std::string keyName(const std::string& key) { return key.starts_with("scKey") ? Ln(key) : key; }

std::string helpFile() { return ShippedFile("Manual/Zentrova.html"); }

/// The rows of the table that the list shows.
std::vector<const KeyRow*> shownRows() {
    std::vector<const KeyRow*> rows;
    for (const KeyRow& row : KeyTable()) {
        if (*row.text != '\0') {
            rows.push_back(&row);
        }
    }
    return rows;
}

void showChip(Control& chip, const std::string& text, bool seen) {
    const bool there = seen && !text.empty();
    chip.visible = seen;
    chip.caption = there ? text : std::string();
    chip.alignment = 2;
    chip.backColor = !there ? kNoColour : darkSettings.DarkMode == 1 ? kDarkChip : kLightChip;
}

void fill() {
    ShortcutsWindow& s = frmShortcuts();
    s.btHelp.visible = FileExists(helpFile());
    std::size_t i = 0;
    for (const KeyRow* row : shownRows()) {
        const bool seen = row->needs == nullptr || row->needs->enabled();
        showChip(*s.lblKey[i], keyName(row->first), seen);
        showChip(*s.lblKeyBis[i], keyName(row->second), seen);
        s.lblSCDesc[i]->visible = seen;
        s.lblSCDesc[i]->caption = Ln(row->text);
        ++i;
    }
}

void help() {
    CloseShortcuts();
    if (FileExists(helpFile())) {
        openDocument(helpFile());
    }
}

void keyDown(KeyEvent& event) {
    const std::pair<Key, int> steps[] = {{Key::up, -kSmallChange},
                                         {Key::down, kSmallChange},
                                         {Key::pageUp, -kLargeChange},
                                         {Key::pageDown, kLargeChange}};
    event.consumed = true;
    if (event.key == Key::f1) {
        help();
        return;
    }
    for (const auto& [key, by] : steps) {
        if (event.key == key) {
            scrollForm(frmShortcuts().form.window, by);
            return;
        }
    }
    event.consumed = false;
}

}  // namespace

ShortcutsWindow::ShortcutsWindow() {
    const std::size_t count = shownRows().size();
    FormCard cards[2];
    for (std::size_t i = 0; i < count; ++i) {
        const int index = static_cast<int>(i);
        lblKey.push_back(&form.control("lblKey", ControlKind::label, {}, index));
        lblKeyBis.push_back(&form.control("lblKeyBis", ControlKind::label, {}, index));
        lblSCDesc.push_back(&form.control("lblSCDesc", ControlKind::label, {}, index));
        cards[i < (count + 1) / 2 ? 0 : 1].rows.push_back(
            {.cells = {{.control = lblKey[i], .width = kChipWidth},
                       {.control = lblKeyBis[i], .width = kChipWidth},
                       {.control = lblSCDesc[i], .width = kRestOfRow}},
             .height = kRowHeight});
    }
    for (FormCard& card : cards) {
        card.gap = kRowGap;
    }
    form.describe({.blocks = {{cards[0], cards[1]}},
                   .keysLeft = {{.control = &btHelp, .tip = "scbtHelpTip"}},
                   .keys = {{.control = &btOK, .tip = "scbtOKTip", .role = KeyRole::accept}},
                   .width = kWidth});
    btOK.onClick = [] { guarded("frmShortcuts.btOK_Click", CloseShortcuts); };
    btHelp.onClick = [] { guarded("frmShortcuts.btHelp_Click", help); };
    form.onKey = keyDown;
}

ShortcutsWindow& frmShortcuts() {
    static ShortcutsWindow shortcuts;
    return shortcuts;
}

void OpenShortcuts() {
    guarded("frmShortcuts.Form_Load", [] {
        fill();
        frmShortcuts().form.open(&frmShortcuts().btOK);
    });
}

void CloseShortcuts() { frmShortcuts().form.close(); }

}  // namespace zv
