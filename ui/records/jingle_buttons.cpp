#include "ui/records/jingle_buttons.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "model/jingle.h"
#include "model/slot_index.h"
#include "platform/controls.h"
#include "ui/records/main_window.h"

namespace zv {

std::function<void(int index)> buttonMade;

namespace {

using enum ControlKind;

std::array<std::unique_ptr<JingleButton>, kJingles> family;

}  // namespace

JingleButton::JingleButton(Control& block, int index)
    : b_Jingle("b_Jingle", jingle, &block, index),
      JremBG("JremBG", shape, &b_Jingle, index),
      JRemLev("JRemLev", shape, &b_Jingle, index),
      lp_Jingle("lp_Jingle", symbol, &b_Jingle, index),
      sq_Jingle("sq_Jingle", symbol, &b_Jingle, index),
      fx_Jingle("fx_Jingle", symbol, &b_Jingle, index),
      pm_Jingle("pm_Jingle", symbol, &b_Jingle, index),
      picPlaylist("picPlaylist", picture, &b_Jingle, index),
      lblPlaylist("lblPlaylist", symbol, &b_Jingle, index),
      picbtnumber("picbtnumber", picture, &b_Jingle, index),
      lblbtnumber("lblbtnumber", label, &b_Jingle, index),
      ckJingSel("ckJingSel", checkBox, &b_Jingle, index) {
    for (Control* c :
         {&JremBG, &JRemLev, &lp_Jingle, &sq_Jingle, &fx_Jingle, &pm_Jingle, &picPlaylist, &ckJingSel}) {
        c->visible = false;
    }
    lblbtnumber.caption = std::to_string(index);
    lp_Jingle.caption = "l";
    sq_Jingle.caption = "s";
    fx_Jingle.caption = "e";
    pm_Jingle.caption = "m";
}

JingleButton* Button(int index) {
    return IsSlot(index) ? family[static_cast<std::size_t>(index)].get() : nullptr;
}

JingleButton& MakeButton(int index) {
    auto& slot = family.at(static_cast<std::size_t>(index));
    if (!slot) {
        MainWindow& w = frmMain();
        slot = std::make_unique<JingleButton>(index >= kPaletteSlots ? w.fraHotJingles : w.fraJingles, index);
        slot->b_Jingle.visible = false;
        if (buttonMade) {
            buttonMade(index);
        }
    }
    return *slot;
}

}  // namespace zv
