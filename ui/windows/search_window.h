/// The window that finds a jingle by a part of its name, with a keyboard of its own for a touch screen. [control]
#pragma once

#include <array>

#include "ui/windows/form_window.h"

namespace zv {

/// Letters and digits of the keyboard: three rows of ten, one of eight.
inline constexpr int kSearchKeys = 38;

struct SearchWindow {
    SearchWindow();

    FormWindow form{"frmSearchJing", "mSearchTitle"};
    Control& txtJSearch = form.control("txtJSearch", ControlKind::textBox);
    Control& VUSearchDelay = form.control("VUSearchDelay", ControlKind::progress);
    Control& lstPalRes = form.control("lstPalRes", ControlKind::listBox);
    Control& lstJingRes = form.control("lstJingRes", ControlKind::listBox);
    Control& btKbUpPal = form.control("btKbUpPal", ControlKind::button);
    Control& btKbDnPal = form.control("btKbDnPal", ControlKind::button);
    Control& btKbUp = form.control("btKbUp", ControlKind::button);
    Control& btKbDn = form.control("btKbDn", ControlKind::button);
    Control& btKbBack = form.control("btKbBack", ControlKind::button);
    Control& btKbSp = form.control("btKbSp", ControlKind::button, "mSearchSp");
    Control& ShowHideKb = form.control("ShowHideKb", ControlKind::button, "mSearchKb");
    Control& btKbEsc = form.control("btKbEsc", ControlKind::button, "mKbEsc");
    Control& btKbGo = form.control("btKbGo", ControlKind::button, "mSearchGo");
    std::array<Control*, kSearchKeys> btKb{};

    /// Letters on the keys, in the order of the language's keyboard.
    void fillKeys();
    /// Shows or hides the keyboard.
    void showKeys(bool shown);
    bool keysShown() const { return keysShown_; }

  private:
    bool keysShown_ = false;
};

SearchWindow& frmSearchJing();

}  // namespace zv
